#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>

#include "common/Volume.h"
#include "geometry/Plane.h"
#include "reslice/Slice.h"

namespace lum::test {

/// Runs a step of an example program, which may refuse its input by an error of one line.
void RunOrRefuse(std::function<void()> const& i_step);

/// Reads the bytes as a file. Empty if the file is refused, or holds more voxels than can be used quickly.
std::optional<common::Volume> ReadFile(std::span<std::uint8_t const> i_bytes);

/// Slices the volume as `reslice` does. Slices must stay within the range of the voxels.
void UseSlice(common::Volume const& i_volume, reslice::Placement const& i_placement);

/// What the user of `surface` asks for.
struct SurfaceRequest {
  double level_part = 0.5;  ///< the level, from 0 for the lowest finite value to 1 for the highest
  lum::Plane<double> clip{0, 0, 1, 0};
  bool is_clipped = true;
  bool is_turning = false;
};

/// Contours and draws the volume as `surface` does. Meshes must refer to vertices that exist.
void UseSurface(common::Volume const& i_volume, SurfaceRequest const& i_request);

}  // namespace lum::test
