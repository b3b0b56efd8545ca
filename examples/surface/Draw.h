#pragma once

#include <geometry/Matrix.h>
#include <geometry/Plane.h>
#include <geometry/Point.h>
#include <geometry/Quaternion.h>

#include <cstddef>
#include <functional>
#include <optional>

#include "common/Picture.h"
#include "surface/Colour.h"
#include "surface/Contour.h"
#include "surface/Mesh.h"

namespace surface {

/// How a mesh is shown: rotated, then seen from +z with x to the right and y up.
struct View {
  lum::Quaternionf rotation;
  /// Whether the mesh has the same scale and centre at every rotation, or fills the picture at this one.
  bool is_turning = false;
  /// The part above this plane of the world, on the side of its normal, is cut away.
  std::optional<lum::Plane<double>> clip;
  /// The colour of the inside at a point of the world, where the clip plane cuts it.
  std::function<Colour(lum::Point<double, 3> const&)> inside;
  Palette palette{};
  std::size_t size = 0;  ///< pixels along each side
};

/// The rotation that shows z upwards and -y in front, after a rotation about z by an angle in radians, seen
/// from slightly above.
lum::Quaternionf LookAt(double i_angle);

/// `LookAt` of the angle plus i_step of i_steps equal parts of a full turn.
lum::Quaternionf Turn(double i_angle, std::size_t i_step, std::size_t i_steps);

/// Draws a picture with a z-buffer: parallel projection, shaded, with several samples for each pixel.
///
/// An exception that i_progress throws is passed on.
common::Picture Draw(Mesh const& i_mesh, View const& i_view, Progress const& i_progress);

}  // namespace surface
