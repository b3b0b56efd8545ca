// Writes objects of the library with Eigen's widest stores, calls the functions of Eigen that the library
// calls, and prints the bits that the library computes from the objects.

#include <Eigen/Geometry>
#include <Eigen/LU>
#include <Eigen/SVD>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "geometry/Matrix.h"
#include "geometry/Quaternion.h"

namespace {

bool HasVectors() {
  bool has = true;
#ifdef __AVX512F__
  has = has && __builtin_cpu_supports("avx512f") != 0;
#endif
#ifdef __AVX2__
  has = has && __builtin_cpu_supports("avx2") != 0;
#endif
#ifdef __AVX__
  has = has && __builtin_cpu_supports("avx") != 0;
#endif
  return has;
}

void Require(bool i_holds, char const* i_what) {
  if (i_holds) return;
  std::printf("failed: %s\n", i_what);
  std::exit(1);
}

template <class T>
void Print(char const* i_what, T const* ip_values, int i_count) {
  std::printf("%s", i_what);
  for (int i = 0; i < i_count; ++i) std::printf(" %a", static_cast<double>(ip_values[i]));
  std::printf("\n");
}

template <class T>
void WriteAndCompute(char const* i_what) {
  using EigenMatrix = Eigen::Matrix<T, 4, 4>;
  EigenMatrix values;
  values << 2, 1, 0, 5, -1, 3, T(0.25), 6, 0, T(0.5), 4, 7, 0, 0, 0, 1;

  // More than two blocks of objects, so that every slot of a block is written.
  std::vector<lum::Matrix<T>> matrices;
  for (int i = 0; i < 80; ++i) {
    matrices.push_back(lum::Matrix<T>::Scale(static_cast<T>(i + 1)));
    lum::Matrix<T> shared = matrices.back();
    auto* const transform = matrices.back().GetMutableInternal();
    auto* const inverse = matrices.back().GetMutableInverseInternal();
    Require(reinterpret_cast<std::uintptr_t>(transform) % 64 == 0, "objects start on a multiple of 64");
    Require(reinterpret_cast<std::uintptr_t>(inverse) % 64 == 0, "objects start on a multiple of 64");
    transform->setIdentity();
    transform->matrix() = values * static_cast<T>(i + 1);
    transform->matrix() += EigenMatrix::Identity();
    *inverse = *transform;
    inverse->matrix() = inverse->matrix().inverse().eval();
    Require(shared(0, 0) == static_cast<T>(i + 1), "the shared object is untouched");
  }
  for (int i = 0; i < 80; ++i) {
    EigenMatrix const expected = values * static_cast<T>(i + 1) + EigenMatrix::Identity();
    lum::Matrix<T> const& matrix = matrices[static_cast<std::size_t>(i)];
    Require(Eigen::Map<EigenMatrix const>(matrix.GetAsPtr()) == expected, "what was written is read");
    EigenMatrix const product = expected * matrix.GetMatrixInverse()->matrix();
    Require(product.isIdentity(T(1e-4)), "the inverse is the inverse");
  }

  lum::Matrix<T> const computed(values.data());
  lum::Matrix<T> const product = computed * lum::Matrix<T>::Rotate({0, T(0.6), T(0.8)}, T(0.7));
  Print(i_what, computed.GetMatrixInverse()->data(), 16);
  Print(i_what, product.GetAsPtr(), 16);
  Print(i_what, product.GetMatrixInverse()->data(), 16);
}

}  // namespace

int main() {
  if (!HasVectors()) return 77;
  WriteAndCompute<float>("float");
  WriteAndCompute<double>("double");

  Eigen::Matrix3f block;
  block << 1, 2, 3, 0, 1, 4, 5, 6, 0;
  Eigen::JacobiSVD<Eigen::Matrix3f> const svd(block, Eigen::ComputeFullU | Eigen::ComputeFullV);
  Eigen::Quaternionf const own(Eigen::Matrix3f(svd.matrixU() * svd.matrixV().transpose()));
  Require(own.coeffs().allFinite(), "the caller's own decomposition is finite");
  std::array<float, 16> const values = {1, 0, 5, 0, 2, 1, 6, 0, 3, 4, 0, 0, 0, 0, 0, 1};
  lum::Quaternionf const rotation{lum::Matrix<float>(values.data())};
  Print("rotation", rotation.GetCoefficients().data(), 4);
  return 0;
}
