#pragma once

#include "common/OutputFiles.h"
#include "surface/Colour.h"
#include "surface/Contour.h"
#include "surface/Mesh.h"

namespace surface {

/// Writes a binary little-endian PLY file with positions, normals and colours. Throws `std::runtime_error`
/// with a one-line message on failure, and passes on an exception of i_progress.
void WritePly(Mesh const& i_mesh, Palette const& i_palette, common::OutputFile& io_file,
              Progress const& i_progress);

}  // namespace surface
