#pragma once

#include <cstddef>
#include <functional>
#include <thread>

#include "surface/Field.h"
#include "surface/Mesh.h"

namespace surface {

/// Called now and then with the part that is done, from 0 to 1; what it throws ends the work.
using Progress = std::function<void(double)>;

/// The surface where the field is zero, in the field's world, by dual contouring: one vertex in each cell
/// that the surface crosses, one quadrilateral around each edge of the grid that it crosses.
///
/// Each thread sweeps its share of the grid layer by layer, so besides the mesh this takes memory for a few
/// layers for each thread only. The field is read by all threads at once; progress is told by the calling
/// one. The mesh does not depend on the number of threads.
Mesh Contour(Field const& i_field, Progress const& i_progress,
             std::size_t i_threads = std::thread::hardware_concurrency());

}  // namespace surface
