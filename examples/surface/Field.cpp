#include "surface/Field.h"

#include <utility>

namespace surface {

Field::Field(Description i_description)
    : m_size(i_description.size),
      m_grid_to_world(std::move(i_description.grid_to_world)),
      m_tolerance(i_description.tolerance),
      m_gradient_step(i_description.gradient_step) {}

Vector Field::GetGradient(Point const& i_grid_point) const {
  Vector gradient;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    Vector step;
    step[axis] = m_gradient_step;
    gradient[axis] = (Evaluate(i_grid_point + step) - Evaluate(i_grid_point - step)) / (2 * m_gradient_step);
  }
  return gradient;
}

}  // namespace surface
