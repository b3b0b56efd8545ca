// Long chains of products: how far the stored inverse departs from the transform.

#include <geometry/Matrix.h>

#include <cmath>
#include <cstdio>
#include <numbers>

#include "Measure.h"

namespace accuracy {
namespace {

// The distance of a point from itself, moved there and back.
template <class T>
double GetError(lum::Matrix<T> const& i_matrix) {
  lum::Point<T, 3> const point(1, 2, 3);
  return std::sqrt(static_cast<double>(GetSquaredLength(i_matrix.GetInverse() * (i_matrix * point) - point)));
}

constexpr char const* section = R"(
## Long chains of products

The inverse of a product is the product of the inverses, so the rounding errors of transform and inverse drift
apart in a chain `m *= step`. `RebuildInverse` computes the inverse from the values of the transform. The table
shows how far the point (1, 2, 3) is from itself, moved there by the transform and back by the inverse. A step
rotates by 0.1 degrees about (1, 2, 3) and moves by (0.01, 0.02, 0.03).

| Precision | Products | Inverse of the products | After `RebuildInverse` |
|---|---|---|---|)";

template <class T>
void Print(char const* ip_precision) {
  auto const axis = lum::GetNormalized(lum::Vector<T, 3>(1, 2, 3));
  auto const step = lum::Matrix<T>::Rotate(axis, std::numbers::pi_v<T> / 1800) *
                    lum::Matrix<T>::Translate(T(0.01), T(0.02), T(0.03));
  lum::Matrix<T> chain;
  int products = 0;
  for (int const length : {10, 100, 1000, 10000, 100000}) {
    for (; products < length; ++products) chain *= step;
    lum::Matrix<T> rebuilt = chain;
    rebuilt.RebuildInverse();
    std::printf("| %s | %d | %.2g | %.2g |\n", ip_precision, length, GetError(chain), GetError(rebuilt));
  }
}

}  // namespace

void PrintChains() {
  std::puts(section);
  Print<float>("float");
  Print<double>("double");
}

}  // namespace accuracy
