#pragma once

#include <cstddef>
#include <functional>
#include <thread>

#include "surface/Field.h"
#include "surface/Mesh.h"

namespace surface {

/// Called from time to time with the finished fraction, from 0 to 1. An exception from it ends the work.
using Progress = std::function<void(double)>;

/// The surface where the field is zero, in world coordinates, by dual contouring: one vertex in each grid
/// cell that the surface crosses, and one quadrilateral around each grid edge that it crosses.
///
/// Each thread sweeps its share of the grid layer by layer, so it needs memory for the mesh and a few layers
/// only. All threads evaluate the field concurrently; only the calling thread calls i_progress. The mesh does
/// not depend on the number of threads. An exception that the field or i_progress throws is passed on.
Mesh Contour(Field const& i_field, Progress const& i_progress,
             std::size_t i_threads = std::thread::hardware_concurrency());

}  // namespace surface
