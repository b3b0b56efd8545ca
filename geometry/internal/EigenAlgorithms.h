#pragma once

#include <array>

namespace lum::internal {

/// \file
/// The algorithms that Eigen implements. Matrices are arrays of values, column by column.

/// The closed-form inverse of a 4x4 matrix: its cofactors times the reciprocal of its determinant. The
/// determinant is not tested.
void InvertMatrix(float const* ip_values, float* op_inverse) noexcept;
void InvertMatrix(double const* ip_values, double* op_inverse) noexcept;

/// The rotation of the upper-left 3x3 block of a 4x4 matrix, without its scale and shear, by polar
/// decomposition. Quaternion coefficients x, y, z, w; NaNs if the block has a non-finite value.
std::array<float, 4> ExtractRotation(float const* ip_values);

/// U diag(singular values) V^T. U and V are stored column by column; the singular values descend.
struct SingularValueDecomposition {
  std::array<double, 9> u;
  std::array<double, 3> singular_values;
  std::array<double, 9> v;
};

/// The singular value decomposition of a 3x3 matrix of finite values, by two-sided Jacobi rotations.
SingularValueDecomposition DecomposeSingularValues(double const* ip_values);

}  // namespace lum::internal
