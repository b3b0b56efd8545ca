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

/// A die: a cube with a spherical bite for each pip, rotated so that no face is parallel to the grid.
class Die {
 public:
  static constexpr double half_edge = 0.54;
  static constexpr double bite_radius = 0.13;
  /// The distance of a bite's centre above the face.
  static constexpr double bite_height = 0.04;

  Die();

  /// Positive inside. The signed distance, but of smaller magnitude outside edges and corners.
  double Evaluate(Point const& i_world) const;

  lum::Matrix<double> const& GetDieToWorld() const { return m_die_to_world; }
  /// The centres of the bites in the die's frame.
  std::vector<Point> const& GetBites() const { return m_bites; }

 private:
  lum::Matrix<double> m_die_to_world;
  // Kept, since every thread that evaluates the field would otherwise copy the inverse, and the threads would
  // contend for its reference counts.
  lum::Matrix<double> m_world_to_die;
  std::vector<Point> m_bites;
};

/// The names of the solids, separated by commas.
std::string_view GetSolidNames();

/// The named solid on a grid with i_cells cells along each side of the box from -1 to 1. Throws
/// `std::invalid_argument` for an unknown name; the message lists the known ones.
std::unique_ptr<Field> MakeSolid(std::string_view i_name, std::size_t i_cells);

}  // namespace surface
