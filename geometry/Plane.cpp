#include "geometry/Plane.h"

#include <cmath>
#include <limits>
#include <stdexcept>

#include "geometry/internal/StrictArithmetic.h"

namespace lum {

template <class T>
Plane<T>::Plane(T i_a, T i_b, T i_c, T i_d) {
  T const squared_length = ((0 + i_a * i_a) + i_b * i_b) + i_c * i_c;
  // Written so that a NaN passes.
  if (std::numeric_limits<T>::min() > squared_length) {
    throw std::invalid_argument("i_a, i_b, i_c cannot be all zeroes");
  }
  T const length = std::sqrt(squared_length);
  m_a = i_a / length;
  m_b = i_b / length;
  m_c = i_c / length;
  m_d = i_d / length;
}

template class Plane<float>;
template class Plane<double>;

}  // namespace lum
