#pragma once

#include <array>

namespace lum::internal {

/// What is left to Eigen's own arithmetic, in terms of plain values, column by column.

/// The closed-form inverse of a 4x4 matrix: its cofactors times the reciprocal of its determinant, untested.
void InvertMatrix(float const* ip_values, float* op_inverse) noexcept;
void InvertMatrix(double const* ip_values, double* op_inverse) noexcept;

/// The rotation of the upper-left 3x3 block of a 4x4 matrix, freed of scale and shear by its polar
/// decomposition, as quaternion coefficients x, y, z, w; NaNs when the block holds a value that is not
/// finite.
std::array<float, 4> ExtractRotation(float const* ip_values);

/// U diag(singular values) V^T, with U and V column by column and the singular values falling.
struct SingularValueDecomposition {
  std::array<double, 9> u;
  std::array<double, 3> singular_values;
  std::array<double, 9> v;
};

/// The decomposition of a 3x3 matrix of finite values by two-sided Jacobi rotations.
SingularValueDecomposition DecomposeSingularValues(double const* ip_values);

}  // namespace lum::internal
