#include "surface/Solid.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>
#include <utility>

namespace surface {
namespace {

lum::Matrix<double> MakeGridToWorld(std::size_t i_cells) {
  return lum::Matrix<double>::Translate(-1, -1, -1) *
         lum::Matrix<double>::Scale(2 / static_cast<double>(i_cells));
}

template <class Shape>
class SolidField : public Field {
 public:
  SolidField(Shape i_shape, std::size_t i_cells)
      : Field({{i_cells + 1, i_cells + 1, i_cells + 1}, MakeGridToWorld(i_cells), 1e-12, 1e-5}),
        m_shape(std::move(i_shape)) {}

  double Evaluate(Point const& i_grid_point) const override {
    return m_shape.Evaluate(GetGridToWorld() * i_grid_point);
  }

 private:
  Shape m_shape;
};

// The positions of a number's pips, in units of the distance between rows.
std::vector<lum::Vector<double, 2>> GetPips(int i_number) {
  switch (i_number) {
    case 1:
      return {{0, 0}};
    case 2:
      return {{-1, -1}, {1, 1}};
    case 3:
      return {{-1, -1}, {0, 0}, {1, 1}};
    case 4:
      return {{-1, -1}, {-1, 1}, {1, -1}, {1, 1}};
    case 5:
      return {{-1, -1}, {-1, 1}, {0, 0}, {1, -1}, {1, 1}};
    default:
      return {{-1, -1}, {-1, 0}, {-1, 1}, {1, -1}, {1, 0}, {1, 1}};
  }
}

}  // namespace

double Sphere::Evaluate(Point const& i_world) {
  return radius - lum::GetLength(i_world - Point(lum::Origin));
}

Die::Die()
    : m_die_to_world(lum::Matrix<double>::Rotate(lum::GetNormalized(Vector(1, 1, 0.2)), 0.6)),
      m_world_to_die(m_die_to_world.GetInverse()) {
  constexpr double row_distance = 0.55 * half_edge;
  for (int number = 1; number <= 6; ++number) {
    // Opposite faces add up to seven.
    auto const axis = static_cast<std::size_t>(number <= 3 ? number - 1 : 6 - number);
    double const side = number <= 3 ? 1 : -1;
    for (auto const& [u, v] : GetPips(number)) {
      Point bite;
      bite[axis] = side * (half_edge + bite_height);
      bite[(axis + 1) % 3] = u * row_distance;
      bite[(axis + 2) % 3] = v * row_distance;
      m_bites.push_back(bite);
    }
  }
}

double Die::Evaluate(Point const& i_world) const {
  Point const point = m_world_to_die * i_world;
  auto const [x, y, z] = point;
  double value = half_edge - std::max({std::abs(x), std::abs(y), std::abs(z)});
  for (Point const& bite : m_bites) value = std::min(value, lum::GetLength(point - bite) - bite_radius);
  return value;
}

std::string_view GetSolidNames() { return "die, sphere"; }

std::unique_ptr<Field> MakeSolid(std::string_view i_name, std::size_t i_cells) {
  if (i_name == "die") return std::make_unique<SolidField<Die>>(Die(), i_cells);
  if (i_name == "sphere") return std::make_unique<SolidField<Sphere>>(Sphere(), i_cells);
  throw std::invalid_argument("unknown solid \"" + std::string(i_name) + "\"; the solids are " +
                              std::string(GetSolidNames()));
}

}  // namespace surface
