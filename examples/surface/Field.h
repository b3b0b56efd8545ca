#pragma once

#include <geometry/Matrix.h>
#include <geometry/Point.h>
#include <geometry/Vector.h>

#include <array>
#include <cstddef>

namespace surface {

using Point = lum::Point<double, 3>;
using Vector = lum::Vector<double, 3>;

/// A function on a grid, positive inside the solid. It must not be positive on the border of the grid.
///
/// The corners of the grid have integer coordinates from 0 upwards.
class Field {
 public:
  virtual ~Field() = default;

  std::array<std::size_t, 3> const& GetSize() const { return m_size; }  ///< corners along each axis
  lum::Matrix<double> const& GetGridToWorld() const { return m_grid_to_world; }
  /// Values of at most this magnitude count as zero.
  double GetTolerance() const { return m_tolerance; }

  /// Must be safe to call from several threads at the same time.
  virtual double Evaluate(Point const& i_grid_point) const = 0;

  /// The gradient in grid coordinates, by central differences.
  Vector GetGradient(Point const& i_grid_point) const;

 protected:
  struct Description {
    std::array<std::size_t, 3> size;
    lum::Matrix<double> grid_to_world;
    double tolerance;
    double gradient_step;  ///< in cells
  };

  explicit Field(Description i_description);

 private:
  std::array<std::size_t, 3> m_size;
  lum::Matrix<double> m_grid_to_world;
  double m_tolerance;
  double m_gradient_step;
};

}  // namespace surface
