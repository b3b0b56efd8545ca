#include "geometry/PseudoInverse.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

#include "geometry/internal/EigenAlgorithms.h"
#include "geometry/internal/StrictArithmetic.h"

namespace lum {
namespace {

// Counted here, so that the rank does not depend on the version of Eigen: newer versions raise the threshold
// to the smallest normal number.
std::int32_t CountRank(std::array<double, 3> const& i_singular_values, double i_tolerance) {
  double const threshold = i_singular_values[0] * i_tolerance;
  std::size_t rank = 3;
  while (rank > 0 && (i_singular_values[rank - 1] == 0 || i_singular_values[rank - 1] < threshold)) --rank;
  return static_cast<std::int32_t>(rank);
}

}  // namespace

PseudoInverseResult CalculatePseudoInverse(Eigen::Matrix3d const& i_matrix, double i_tolerance) {
  if (!std::all_of(i_matrix.data(), i_matrix.data() + 9,
                   [](double i_value) { return std::isfinite(i_value); })) {
    // Newer versions of Eigen do not decompose such a matrix and leave the result uninitialised.
    return {Eigen::Matrix3d::Constant(std::numeric_limits<double>::quiet_NaN()), 0};
  }

  internal::SingularValueDecomposition const decomposition =
      internal::DecomposeSingularValues(i_matrix.data());
  auto const& [u, singular_values, v] = decomposition;
  std::array<double, 3> inverted{};
  std::transform(singular_values.begin(), singular_values.end(), inverted.begin(),
                 [i_tolerance](double i_value) { return i_value >= i_tolerance ? 1 / i_value : 0; });
  PseudoInverseResult result{};
  double* const values = result.pseudoInverse.data();
  for (std::size_t column = 0; column < 3; ++column) {
    for (std::size_t row = 0; row < 3; ++row) {
      values[row + 3 * column] = v[row] * inverted[0] * u[column] +          //
                                 v[row + 3] * inverted[1] * u[column + 3] +  //
                                 v[row + 6] * inverted[2] * u[column + 6];
    }
  }
  result.rank = CountRank(singular_values, i_tolerance);
  return result;
}

}  // namespace lum
