#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include "surface/Field.h"

namespace surface {

/// A ball about the origin.
struct Sphere {
  static constexpr double radius = 0.8;

  /// The signed distance, positive inside.
  static double Evaluate(Point const& i_world);
};

/// A die: a cube with a spherical bite for each pip, turned out of the grid.
class Die {
 public:
  static constexpr double half_edge = 0.54;
  static constexpr double bite_radius = 0.13;
  /// How far the centre of a bite lies above the face.
  static constexpr double bite_height = 0.04;

  Die();

  /// Positive inside; the signed distance, but for rounded-off corners outside.
  double Evaluate(Point const& i_world) const;

  lum::Matrix<double> const& GetDieToWorld() const { return m_die_to_world; }
  /// The centres of the bites in the die's frame.
  std::vector<Point> const& GetBites() const { return m_bites; }

 private:
  lum::Matrix<double> m_die_to_world;
  // Held, since all threads that evaluate the field would count references to a copy that each makes.
  lum::Matrix<double> m_world_to_die;
  std::vector<Point> m_bites;
};

/// The names of the solids, separated by commas.
std::string_view GetSolidNames();

/// The solid of a name on a grid of so many cells along each side of the box from -1 to 1. A name that there
/// is not throws `std::invalid_argument` with those that there are.
std::unique_ptr<Field> MakeSolid(std::string_view i_name, std::size_t i_cells);

}  // namespace surface
