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

/// How a mesh is shown: from +z once it is turned, x to the right and y up.
struct View {
  lum::Quaternionf rotation;
  /// Whether the mesh is to keep its size and place at any other rotation too, or just to fill the picture.
  bool is_turning = false;
  /// What lies above this plane of the world, on the side of its normal, is cut away.
  std::optional<lum::Plane<double>> clip;
  /// The colour of the inside at a point of the world, where the plane cuts it.
  std::function<Colour(lum::Point<double, 3> const&)> inside;
  Palette palette{};
  std::size_t size = 0;  ///< pixels along each side
};

/// The rotation that shows z upwards and -y in front, turned about z by an angle in radians, seen from a
/// little above.
lum::Quaternionf LookAt(double i_angle);

/// `LookAt` of the angle and one of so many equal steps of a full turn beyond it.
lum::Quaternionf Turn(double i_angle, std::size_t i_step, std::size_t i_steps);

/// A picture by a plain z-buffer: parallel projection, shaded, edges smoothed.
common::Picture Draw(Mesh const& i_mesh, View const& i_view, Progress const& i_progress);

}  // namespace surface
