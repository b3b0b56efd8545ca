#include <benchmark/benchmark.h>

#include <Eigen/Geometry>
#include <Eigen/LU>

#include "geometry/Matrix.h"
#include "geometry/Quaternion.h"

namespace lum {
namespace {

template <class T>
Matrix<T> MakeTransform() {
  return Matrix<T>::Translate(1, 2, 3) * Matrix<T>::Rotate({0, 0, 1}, static_cast<T>(0.3)) *
         Matrix<T>::Scale(2);
}

template <class T>
Eigen::Matrix<T, 4, 4> ToEigen(Matrix<T> const& i_matrix) {
  return Eigen::Map<Eigen::Matrix<T, 4, 4> const>(i_matrix.GetAsPtr());
}

template <class T>
void Copy(benchmark::State& io_state) {
  Matrix<T> const matrix = MakeTransform<T>();
  for ([[maybe_unused]] auto const iteration : io_state) {
    Matrix<T> copy = matrix;
    benchmark::DoNotOptimize(copy);
  }
}
BENCHMARK_TEMPLATE(Copy, float);

template <class T>
void ProductWithInverse(benchmark::State& io_state) {
  Matrix<T> const a = MakeTransform<T>();
  Matrix<T> const b = a.GetInverse();
  for ([[maybe_unused]] auto const iteration : io_state) {
    Matrix<T> product = a * b;
    benchmark::DoNotOptimize(product);
  }
}
BENCHMARK_TEMPLATE(ProductWithInverse, float);
BENCHMARK_TEMPLATE(ProductWithInverse, double);

// A product and an inversion of bare matrices: what a caller without carried inverses would compute.
template <class T>
void EigenProductAndInverse(benchmark::State& io_state) {
  Eigen::Matrix<T, 4, 4> a = ToEigen(MakeTransform<T>());
  Eigen::Matrix<T, 4, 4> b = a.inverse();
  for ([[maybe_unused]] auto const iteration : io_state) {
    benchmark::DoNotOptimize(a);
    benchmark::DoNotOptimize(b);
    Eigen::Matrix<T, 4, 4> product = a * b;
    Eigen::Matrix<T, 4, 4> inverse = product.inverse();
    benchmark::DoNotOptimize(product);
    benchmark::DoNotOptimize(inverse);
  }
}
BENCHMARK_TEMPLATE(EigenProductAndInverse, float);
BENCHMARK_TEMPLATE(EigenProductAndInverse, double);

template <class T>
void Invert(benchmark::State& io_state) {
  Matrix<T> const matrix = MakeTransform<T>();
  for ([[maybe_unused]] auto const iteration : io_state) {
    Matrix<T> inverse = matrix.GetInverse();
    benchmark::DoNotOptimize(inverse);
  }
}
BENCHMARK_TEMPLATE(Invert, double);

template <class T>
void ApplyToAPoint(benchmark::State& io_state) {
  Matrix<T> const matrix = MakeTransform<T>();
  Point<T, 3> point(1, 2, 3);
  for ([[maybe_unused]] auto const iteration : io_state) {
    Point<T, 3> image = matrix * point;
    benchmark::DoNotOptimize(image);
  }
}
BENCHMARK_TEMPLATE(ApplyToAPoint, float);
BENCHMARK_TEMPLATE(ApplyToAPoint, double);

void RotateAVector(benchmark::State& io_state) {
  Quaternionf const rotation({0, 0, 1}, 0.3F);
  Vector<float, 3> const vector(1, 2, 3);
  for ([[maybe_unused]] auto const iteration : io_state) {
    Vector<float, 3> image = rotation.Transform(vector);
    benchmark::DoNotOptimize(image);
  }
}
BENCHMARK(RotateAVector);

}  // namespace
}  // namespace lum
