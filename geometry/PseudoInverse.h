#pragma once

#include <Eigen/Core>
#include <cstdint>

#include "geometry/internal/Export.h"

namespace lum {

/// The result of `CalculatePseudoInverse`.
struct PseudoInverseResult {
  Eigen::Matrix3d pseudoInverse;  ///< Its unit is the reciprocal of the matrix's unit.
  std::int32_t rank;              ///< 0 to 3.
};

/// The Moore-Penrose pseudo-inverse of a 3x3 matrix, and its numerical rank.
///
/// With the singular value decomposition U diag(s0 >= s1 >= s2) V^T, the pseudo-inverse is the sum over i of
/// (column i of V) (1 / si) (column i of U)^T, for each si >= tolerance (Golub and Van Loan, Matrix
/// Computations, 5.5.2).
///
/// A singular value is inverted if it is at least the tolerance. It counts for the rank if it is not 0 and is
/// at least the tolerance times s0. So the rank can differ from the number of inverted values if s0 is not
/// near 1.
///
/// A tolerance of 0 or less also inverts singular values of 0, which gives infinities. A matrix with a
/// non-finite value gives NaNs and rank 0. Throws nothing; safe from any thread.
///
/// \param i_matrix     3x3
/// \param i_tolerance  in the unit of the matrix's values for the inverse, relative to s0 for the rank
LUM_EXPORT PseudoInverseResult CalculatePseudoInverse(Eigen::Matrix3d const& i_matrix, double i_tolerance);

}  // namespace lum
