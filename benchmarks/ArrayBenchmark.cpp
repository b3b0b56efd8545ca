// Transforms and rotations applied, to one value and to arrays; quaternions combined.

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

// Runs a step on arrays, and has the compiler take them for read and written.
template <class In, class Out, class Step>
auto OnArrays(In const& i_in, Out const& i_out, Step const& i_step) {
  return [i_in, i_out, i_step](benchmark::State& io_state) {
    Out out = i_out;
    for ([[maybe_unused]] auto const iteration : io_state) {
      i_step(i_in, out);
      benchmark::DoNotOptimize(out.data());
      benchmark::ClobberMemory();
    }
  };
}

template <class T>
void AddArrays(std::size_t i_count) {
  std::string const of = std::to_string(i_count) + " ";
  std::string const kind = ", " + GetName<T>();
  using EigenVector = Eigen::Matrix<T, 3, 1>;
  using EigenArray = Eigen::Matrix<T, 3, Eigen::Dynamic>;
  auto const columns = static_cast<Eigen::Index>(i_count);

  std::vector<Point<T, 3>> const points(i_count, Point<T, 3>(1, 2, 3));
  std::vector<Vector<T, 3>> const vectors(i_count, Vector<T, 3>(1, 2, 3));
  std::vector<EigenVector> const eigen_list(i_count, EigenVector(1, 2, 3));
  EigenArray const eigen_array = EigenArray::Constant(3, columns, 2);
  auto const transform = MakeEigen<T>();
  EigenVector const translation = transform.translation();
  Eigen::Matrix<T, 3, 3> const linear = transform.linear();

  Add(of + "points" + kind, "lum",
      OnArrays(points, points,
               [matrix = MakeMatrix<T>()](auto const& in, auto& out) { TransformPoints(matrix, in, out); }));
  Add(of + "points" + kind, "Eigen in a loop",
      OnArrays(eigen_list, eigen_list, [transform](auto const& in, auto& out) {
        for (std::size_t i = 0; i < in.size(); ++i) out[i] = transform * in[i];
      }));
  Add(of + "points" + kind, "Eigen, product and sum",
      OnArrays(eigen_array, eigen_array, [linear, translation](auto const& in, auto& out) {
        out.noalias() = linear * in;
        out.colwise() += translation;
      }));
  Add(of + "points" + kind, "Eigen, lazy product",
      OnArrays(eigen_array, eigen_array, [linear, translation](auto const& in, auto& out) {
        out = linear.lazyProduct(in).colwise() + translation;
      }));

  Add(of + "vectors" + kind, "lum",
      OnArrays(vectors, vectors,
               [matrix = MakeMatrix<T>()](auto const& in, auto& out) { TransformVectors(matrix, in, out); }));
  Add(of + "vectors" + kind, "Eigen in a loop",
      OnArrays(eigen_list, eigen_list, [linear](auto const& in, auto& out) {
        for (std::size_t i = 0; i < in.size(); ++i) out[i] = linear * in[i];
      }));
  Add(of + "vectors" + kind, "Eigen, product",
      OnArrays(eigen_array, eigen_array,
               [linear](auto const& in, auto& out) { out.noalias() = linear * in; }));
  Add(of + "vectors" + kind, "Eigen, lazy product",
      OnArrays(eigen_array, eigen_array,
               [linear](auto const& in, auto& out) { out = linear.lazyProduct(in); }));
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
        benchmark::DoNotOptimize(v);
        return Eigen::Vector3f(eigen_a * v);
      }));
  Add("quaternion product", "lum", Repeat([a, b] { return a * b; }));
  Add("quaternion product", "lum, the object alone",
      Repeat([] { return CreateGlobalObject<QuaternionObject>(); }));
  Add("quaternion product", "Eigen", Repeat([eigen_a, eigen_b]() mutable {
        benchmark::DoNotOptimize(eigen_a);
        benchmark::DoNotOptimize(eigen_b);
        return eigen_a * eigen_b;
      }));
  Add("Slerp", "lum", Repeat([a, b, t = 0.3F]() mutable {
        benchmark::DoNotOptimize(t);
        return a.Slerp(t, b);
      }));
  Add("Slerp", "lum, the object alone", Repeat([] { return CreateGlobalObject<QuaternionObject>(); }));
  Add("Slerp", "Eigen", Repeat([eigen_a, eigen_b, t = 0.3F]() mutable {
        benchmark::DoNotOptimize(t);
        return eigen_a.slerp(t, eigen_b);
      }));

  constexpr std::size_t count = 4096;
  std::vector<Vector<float, 3>> const vectors(count, Vector<float, 3>(1, 2, 3));
  std::vector<Eigen::Vector3f> const eigen(count, Eigen::Vector3f(1, 2, 3));
  Add("4096 vectors rotated", "lum",
      OnArrays(vectors, vectors, [a](auto const& in, auto& out) { a.Transform(in, out); }));
  Add("4096 vectors rotated", "Eigen", OnArrays(eigen, eigen, [eigen_a](auto const& in, auto& out) {
        for (std::size_t i = 0; i < in.size(); ++i) out[i] = eigen_a * in[i];
      }));
}

}  // namespace

void Register() {
  AddOne<float>();
  AddOne<double>();
  for (std::size_t const count : {std::size_t{4096}, std::size_t{10000000}}) {
    AddArrays<float>(count);
    AddArrays<double>(count);
  }
  AddRotations();
}

}  // namespace lum::bench
