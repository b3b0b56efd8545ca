#pragma once

#include <geometry/Matrix.h>
#include <geometry/Point.h>
#include <geometry/Vector.h>

#include <array>
#include <cstddef>

namespace surface {

using Point = lum::Point<double, 3>;
using Vector = lum::Vector<double, 3>;

/// A function on a grid, positive inside of what is to be shown.
///
/// Its corners have whole grid coordinates from 0 up; those on the border of the grid are never inside.
class Field {
 public:
  virtual ~Field() = default;

  std::array<std::size_t, 3> const& GetSize() const { return m_size; }  ///< corners along each axis
  lum::Matrix<double> const& GetGridToWorld() const { return m_grid_to_world; }
  /// How near to zero a value is taken for zero.
  double GetTolerance() const { return m_tolerance; }

  virtual double Evaluate(Point const& i_grid_point) const = 0;

  /// By central differences, in grid coordinates.
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
