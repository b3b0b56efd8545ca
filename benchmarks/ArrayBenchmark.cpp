// Transforms and rotations applied to one value and to arrays, and products and blends of quaternions.

#include <Eigen/Geometry>
#include <cstddef>
#include <string>
#include <vector>

#include "Register.h"
#include "Row.h"
#include "geometry/Matrix.h"
#include "geometry/Quaternion.h"

namespace lum::bench {
namespace {

template <class T>
Matrix<T> MakeMatrix() {
  return Matrix<T>::Translate(1, 2, 3) * Matrix<T>::Rotate({0, 0, 1}, T(0.3)) * Matrix<T>::Scale(2);
}

template <class T>
Eigen::Transform<T, 3, Eigen::Affine> MakeEigen() {
  Eigen::Transform<T, 3, Eigen::Affine> transform;
  transform.matrix() = Eigen::Map<Eigen::Matrix<T, 4, 4> const>(MakeMatrix<T>().GetAsPtr());
  return transform;
}

template <class T>
void AddOne() {
  std::string const row = "one point, " + GetName<T>();
  Add(row, "lum", Repeat([matrix = MakeMatrix<T>(), point = Point<T, 3>(1, 2, 3)]() mutable {
        benchmark::DoNotOptimize(matrix);
        benchmark::DoNotOptimize(point);
        return matrix * point;
      }));
  Add(row, "Eigen inlined",
      Repeat([transform = MakeEigen<T>(), point = Eigen::Matrix<T, 3, 1>(1, 2, 3)]() mutable {
        benchmark::DoNotOptimize(transform);
        benchmark::DoNotOptimize(point);
        return Eigen::Matrix<T, 3, 1>(transform * point);
      }));
}

// Runs a step on an input and an output array of i_count values. The compiler must assume that both are read
// and written in each iteration.
template <class Value, class Step>
auto OnArrays(std::size_t i_count, Value const& i_value, Step const& i_step) {
  return [i_count, i_value, i_step](benchmark::State& io_state) {
    std::vector<Value> const in(i_count, i_value);
    std::vector<Value> out(in);
    for ([[maybe_unused]] auto const iteration : io_state) {
      i_step(in, out);
      benchmark::DoNotOptimize(out.data());
      benchmark::ClobberMemory();
    }
  };
}

// The same for matrices with i_count columns.
template <class T, class Step>
auto OnColumns(std::size_t i_count, Step const& i_step) {
  return [i_count, i_step](benchmark::State& io_state) {
    using Columns = Eigen::Matrix<T, 3, Eigen::Dynamic>;
    Columns const in = Columns::Constant(3, static_cast<Eigen::Index>(i_count), 2);
    Columns out(in);
    for ([[maybe_unused]] auto const iteration : io_state) {
      i_step(in, out);
      benchmark::DoNotOptimize(out.data());
      benchmark::ClobberMemory();
    }
  };
}

template <class T>
void AddArrays(std::size_t i_count) {
  std::string const points = std::to_string(i_count) + " points, " + GetName<T>();
  std::string const vectors = std::to_string(i_count) + " vectors, " + GetName<T>();
  using EigenVector = Eigen::Matrix<T, 3, 1>;
  EigenVector const value(1, 2, 3);
  auto const transform = MakeEigen<T>();
  EigenVector const translation = transform.translation();
  Eigen::Matrix<T, 3, 3> const linear = transform.linear();

  Add(points, "lum",
      OnArrays(i_count, Point<T, 3>(1, 2, 3),
               [matrix = MakeMatrix<T>()](auto const& in, auto& out) { TransformPoints(matrix, in, out); }));
  Add(points, "Eigen in a loop", OnArrays(i_count, value, [transform](auto const& in, auto& out) {
        for (std::size_t i = 0; i < in.size(); ++i) out[i] = transform * in[i];
      }));
  Add(points, "Eigen, product and sum",
      OnColumns<T>(i_count, [linear, translation](auto const& in, auto& out) {
        out.noalias() = linear * in;
        out.colwise() += translation;
      }));
  Add(points, "Eigen, lazy product", OnColumns<T>(i_count, [linear, translation](auto const& in, auto& out) {
        out = linear.lazyProduct(in).colwise() + translation;
      }));

  Add(vectors, "lum",
      OnArrays(i_count, Vector<T, 3>(1, 2, 3),
               [matrix = MakeMatrix<T>()](auto const& in, auto& out) { TransformVectors(matrix, in, out); }));
  Add(vectors, "Eigen in a loop", OnArrays(i_count, value, [linear](auto const& in, auto& out) {
        for (std::size_t i = 0; i < in.size(); ++i) out[i] = linear * in[i];
      }));
  Add(vectors, "Eigen, product",
      OnColumns<T>(i_count, [linear](auto const& in, auto& out) { out.noalias() = linear * in; }));
  Add(vectors, "Eigen, lazy product",
      OnColumns<T>(i_count, [linear](auto const& in, auto& out) { out = linear.lazyProduct(in); }));
}

void AddRotations() {
  Quaternionf const a({0, 0, 1}, 0.3F);
  Quaternionf const b({0, 1, 0}, 1.1F);
  Eigen::Quaternionf const eigen_a(Eigen::AngleAxisf(0.3F, Eigen::Vector3f::UnitZ()));
  Eigen::Quaternionf const eigen_b(Eigen::AngleAxisf(1.1F, Eigen::Vector3f::UnitY()));
  Add("one vector rotated", "lum", Repeat([a, v = Vector<float, 3>(1, 2, 3)]() mutable {
        benchmark::DoNotOptimize(v);
        return a.Transform(v);
      }));
  Add("one vector rotated", "Eigen", Repeat([eigen_a, v = Eigen::Vector3f(1, 2, 3)]() mutable {
        benchmark::DoNotOptimize(eigen_a);
        benchmark::DoNotOptimize(v);
        return Eigen::Vector3f(eigen_a * v);
      }));
  Add("quaternion product", "lum", Repeat([a, b] { return a * b; }));
  Add("quaternion product", "lum, pool object only",
      Repeat([] { return CreateGlobalObject<Quaternionf::Object>(); }));
  Add("quaternion product", "Eigen", Repeat([eigen_a, eigen_b]() mutable {
        benchmark::DoNotOptimize(eigen_a);
        benchmark::DoNotOptimize(eigen_b);
        return eigen_a * eigen_b;
      }));
  Add("Slerp", "lum", Repeat([a, b, t = 0.3F]() mutable {
        benchmark::DoNotOptimize(t);
        return a.Slerp(t, b);
      }));
  Add("Slerp", "lum, pool object only", Repeat([] { return CreateGlobalObject<Quaternionf::Object>(); }));
  Add("Slerp", "Eigen", Repeat([eigen_a, eigen_b, t = 0.3F]() mutable {
        benchmark::DoNotOptimize(eigen_a);
        benchmark::DoNotOptimize(eigen_b);
        benchmark::DoNotOptimize(t);
        return eigen_a.slerp(t, eigen_b);
      }));

  constexpr std::size_t count = 4096;
  Add("4096 vectors rotated", "lum",
      OnArrays(count, Vector<float, 3>(1, 2, 3),
               [a](auto const& in, auto& out) { TransformVectors(a, in, out); }));
  Add("4096 vectors rotated", "Eigen",
      OnArrays(count, Eigen::Vector3f(1, 2, 3), [eigen_a](auto const& in, auto& out) {
        for (std::size_t i = 0; i < in.size(); ++i) out[i] = eigen_a * in[i];
      }));
}

}  // namespace

void Register() {
  AddOne<float>();
  AddOne<double>();
  for (std::size_t const count : {std::size_t{8}, std::size_t{4096}, std::size_t{10000000}}) {
    AddArrays<float>(count);
    AddArrays<double>(count);
  }
  AddRotations();
}

}  // namespace lum::bench
