#pragma once

#include <Eigen/Core>
#include <cstdint>

#include "geometry/internal/Export.h"

namespace lum {

/// What `CalculatePseudoInverse` finds.
struct PseudoInverseResult {
  Eigen::Matrix3d pseudoInverse;  ///< In the reciprocal of the matrix's unit.
  std::int32_t rank;              ///< 0 to 3.
};

/// The Moore-Penrose pseudo-inverse of a 3x3 matrix, and its numerical rank.
///
/// From the singular value decomposition U diag(s0 >= s1 >= s2) V^T, the pseudo-inverse is the sum over i of
/// column i of V, times 1 / si where si >= tolerance and 0 elsewhere, times the transposed column i of U.
/// (Golub and Van Loan, Matrix Computations, 5.5.2.)
///
/// The two tests differ: a singular value is inverted when it reaches the tolerance itself, but counts for
/// the rank when it is not 0 and reaches the tolerance times s0. So rank and number of inverted values may
/// differ when s0 is not near 1.
///
/// A tolerance of 0 or less inverts singular values of 0 too, to infinities. A matrix with a value that is
/// not finite gives NaNs and rank 0. Throws nothing; safe from any thread.
///
/// \param i_matrix     3x3
/// \param i_tolerance  in the unit of the matrix's values for the inverse, relative to s0 for the rank
LUM_EXPORT PseudoInverseResult CalculatePseudoInverse(Eigen::Matrix3d const& i_matrix, double i_tolerance);

}  // namespace lum
