#include "geometry/Vector.h"

#include <cmath>

#include "geometry/internal/StrictArithmetic.h"

namespace lum {
namespace {

template <class T>
Vector<T, 2> Normalize(Vector<T, 2> const& i_vector) {
  auto const [x, y] = i_vector;
  T const length = std::sqrt(x * x + y * y);
  return {x / length, y / length};
}

template <class T>
Vector<T, 3> Normalize(Vector<T, 3> const& i_vector) {
  auto const [x, y, z] = i_vector;
  T const length = std::sqrt((z * z + y * y) + x * x);
  return {x / length, y / length, z / length};
}

}  // namespace

Vector<float, 2> GetNormalized(Vector<float, 2> const& i_vector) { return Normalize(i_vector); }
Vector<double, 2> GetNormalized(Vector<double, 2> const& i_vector) { return Normalize(i_vector); }
Vector<float, 3> GetNormalized(Vector<float, 3> const& i_vector) { return Normalize(i_vector); }
Vector<double, 3> GetNormalized(Vector<double, 3> const& i_vector) { return Normalize(i_vector); }

}  // namespace lum
