#pragma once

#include "common/OutputFile.h"
#include "surface/Colour.h"
#include "surface/Contour.h"
#include "surface/Mesh.h"

namespace surface {

/// Writes a binary little-endian PLY file with positions, normals and colours. What cannot be written throws
/// `std::runtime_error` with one line of text.
void WritePly(Mesh const& i_mesh, Palette const& i_palette, common::OutputFile& io_file,
              Progress const& i_progress);

}  // namespace surface
