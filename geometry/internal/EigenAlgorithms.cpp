#include "geometry/internal/EigenAlgorithms.h"

// Renames the namespace of Eigen in this source. In a statically linked program the linker keeps one copy of
// each inline function. A caller's copy, compiled for wider vectors, would read local variables of this
// source with an alignment that they do not have, or round differently.
#define Eigen lum_eigen
#include <Eigen/Geometry>
#include <Eigen/LU>
#include <Eigen/SVD>
#include <cmath>
#include <cstddef>
#include <limits>

#include "geometry/internal/StrictArithmetic.h"

namespace lum::internal {
namespace {

template <class T>
void Invert(T const* ip_values, T* op_inverse) noexcept {
  using Values = lum_eigen::Matrix<T, 4, 4>;
  lum_eigen::Map<Values>{op_inverse} = lum_eigen::Map<Values const>(ip_values).inverse();
}

}  // namespace

void InvertMatrix(float const* ip_values, float* op_inverse) noexcept { Invert(ip_values, op_inverse); }
void InvertMatrix(double const* ip_values, double* op_inverse) noexcept { Invert(ip_values, op_inverse); }

std::array<float, 4> ExtractRotation(float const* ip_values) {
  lum_eigen::Transform<float, 3, lum_eigen::Projective> transform;
  transform.matrix() = lum_eigen::Map<lum_eigen::Matrix4f const>(ip_values);
  for (int column = 0; column < 3; ++column) {
    for (int row = 0; row < 3; ++row) {
      if (!std::isfinite(transform(row, column))) {
        // Newer versions of Eigen do not decompose such a block and leave the rotation uninitialised.
        constexpr float nan = std::numeric_limits<float>::quiet_NaN();
        return {nan, nan, nan, nan};
      }
    }
  }
  // Transform::computeRotationScaling of Eigen 3.4, written out because older versions reverse a different
  // column if the block mirrors.
  lum_eigen::Matrix3f const block = transform.matrix().topLeftCorner<3, 3>();
  lum_eigen::JacobiSVD<lum_eigen::Matrix3f> const svd(block,
                                                      lum_eigen::ComputeFullU | lum_eigen::ComputeFullV);
  bool const mirrors = (svd.matrixU() * svd.matrixV().transpose()).determinant() < 0;
  lum_eigen::Matrix3f u = svd.matrixU();
  if (mirrors) u.col(2) = -u.col(2);
  lum_eigen::Matrix3f const rotation = u * svd.matrixV().transpose();
  lum_eigen::Quaternionf const quaternion(rotation);
  return {quaternion.x(), quaternion.y(), quaternion.z(), quaternion.w()};
}

SingularValueDecomposition DecomposeSingularValues(double const* ip_values) {
  using Values = lum_eigen::Matrix3d;
  lum_eigen::JacobiSVD<Values> const svd(Values(lum_eigen::Map<Values const>(ip_values)),
                                         lum_eigen::ComputeFullU | lum_eigen::ComputeFullV);
  SingularValueDecomposition result{};
  lum_eigen::Map<Values>(result.u.data()) = svd.matrixU();
  lum_eigen::Map<lum_eigen::Vector3d>(result.singular_values.data()) = svd.singularValues();
  lum_eigen::Map<Values>(result.v.data()) = svd.matrixV();
  return result;
}

}  // namespace lum::internal
