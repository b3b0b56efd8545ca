// Transforms with their inverses: created and destroyed, kept, copied and inverted.

#include <Eigen/Geometry>
#include <algorithm>
#include <array>
#include <cstddef>
#include <numeric>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "Pair.h"
#include "Register.h"
#include "Row.h"
#include "geometry/Matrix.h"

#ifdef WITH_GLM
#include <glm/glm.hpp>
#endif
#ifdef WITH_IMATH
#include <Imath/ImathMatrix.h>
#endif
#ifdef WITH_CGAL
#include <CGAL/Aff_transformation_3.h>
#include <CGAL/Simple_cartesian.h>
#endif

namespace lum::bench {
namespace {

template <class T>
std::array<T, 16> MakeValues() {
  Matrix<T> const matrix =
      Matrix<T>::Translate(1, 2, 3) * Matrix<T>::Rotate({0, 0, 1}, T(0.3)) * Matrix<T>::Scale(2);
  std::array<T, 16> values{};
  std::copy_n(matrix.GetAsPtr(), 16, values.begin());
  return values;
}

// A value that the compiler must not treat as a constant.
template <class T>
T Opaque(T i_value) {
  benchmark::DoNotOptimize(i_value);
  return i_value;
}

template <class T>
void AddCreation() {
  std::string const of = ", " + GetName<T>();
  Add("Translate" + of, "lum", Repeat([] { return Matrix<T>::Translate(Opaque<T>(1), 2, 3); }));
  Add("Translate" + of, "R", Repeat([] { return Pair<T>::Translate(Opaque<T>(1), 2, 3); }));
  Add("Scale" + of, "lum", Repeat([] { return Matrix<T>::Scale(Opaque<T>(2), 3, 4); }));
  Add("Scale" + of, "R", Repeat([] { return Pair<T>::Scale(Opaque<T>(2), 3, 4); }));
  Add("Rotate" + of, "lum", Repeat([] { return Matrix<T>::Rotate({0, 0, 1}, Opaque(T(0.3))); }));
  Add("Rotate" + of, "R", Repeat([] { return Pair<T>::Rotate({0, 0, 1}, Opaque(T(0.3))); }));

  auto const values = MakeValues<T>();
  Add("from values" + of, "lum", Repeat([values]() mutable {
        benchmark::DoNotOptimize(values);
        return Matrix<T>(values.data());
      }));
  Add("from values" + of, "R", Repeat([values]() mutable {
        benchmark::DoNotOptimize(values);
        return Pair<T>::FromValues(values.data());
      }));
}

template <class T>
void AddProducts() {
  std::string const of = ", " + GetName<T>();
  auto const values = MakeValues<T>();
  Matrix<T> const a(values.data());
  Matrix<T> const b = Matrix<T>::Rotate({0, 1, 0}, 1);
  auto const pair_a = Pair<T>::FromValues(values.data());
  auto const pair_b = Pair<T>::Rotate({0, 1, 0}, 1);
  Add("product" + of, "lum", Repeat([a, b] { return a * b; }));
  Add("product" + of, "R", Repeat([pair_a, pair_b] { return pair_a * pair_b; }));
  Add("product" + of, "Eigen values", Repeat([x = *pair_a.transform, y = *pair_b.transform]() mutable {
        benchmark::DoNotOptimize(x);
        benchmark::DoNotOptimize(y);
        EigenTransform<T> product;
        product.matrix().noalias() = x.matrix() * y.matrix();
        EigenTransform<T> const inverse(product.matrix().inverse().eval());
        return std::pair(product, inverse);
      }));
#ifdef WITH_GLM
  using GlmMatrix = glm::mat<4, 4, T>;
  Add("product" + of, "GLM values", Repeat([x = GlmMatrix(2), y = GlmMatrix(3)]() mutable {
        benchmark::DoNotOptimize(x);
        benchmark::DoNotOptimize(y);
        GlmMatrix const product = x * y;
        return std::pair(product, glm::inverse(product));
      }));
#endif
#ifdef WITH_IMATH
  using ImathMatrix = Imath::Matrix44<T>;
  Add("product" + of, "Imath values", Repeat([x = ImathMatrix(2), y = ImathMatrix()]() mutable {
        benchmark::DoNotOptimize(x);
        benchmark::DoNotOptimize(y);
        ImathMatrix const product = x * y;
        return std::pair(product, product.inverse());
      }));
#endif
#ifdef WITH_CGAL
  using Kernel = CGAL::Simple_cartesian<T>;
  using Aff = CGAL::Aff_transformation_3<Kernel>;
  Aff const cgal_a(1, 2, 0, 4, 0, 3, 1, 2, 1, 0, 2, 5);
  Aff const cgal_b(2, 2, 0, 1, 0, 1, 1, 2, 1, 0, 4, 5);
  Add("product" + of, "CGAL", Repeat([cgal_a, cgal_b] {
        Aff const product = cgal_a * cgal_b;
        return std::pair(product, product.inverse());
      }));
#endif
}

template <class T>
void AddSharing() {
  std::string const of = ", " + GetName<T>();
  Add("default construct" + of, "lum", Repeat([] { return Matrix<T>(); }));
  Add("default construct" + of, "R", Repeat([] { return Pair<T>::Identity(); }));

  auto const matrix = Matrix<T>::Translate(1, 2, 3);
  auto const pair = Pair<T>::Translate(1, 2, 3);
  Matrix<T> const identity;
  auto const copy_pair = Repeat([pair] { return Pair<T>(pair); });
  Add("copy" + of, "lum", Repeat([matrix] { return Matrix<T>(matrix); }));
  Add("copy" + of, "R", copy_pair);
  Add("GetInverse" + of, "lum", Repeat([matrix] { return matrix.GetInverse(); }));
  Add("GetInverse" + of, "R", copy_pair);
  Add("copy" + of, "Eigen values", Repeat([x = *pair.transform]() mutable {
        benchmark::DoNotOptimize(x);
        return x;
      }));
  Add("GetInverse" + of, "Eigen values", Repeat([x = *pair.transform]() mutable {
        benchmark::DoNotOptimize(x);
        return x.inverse();
      }));
  Add("GetInverse" + of, "Eigen values, affine",
      Repeat([x = Eigen::Transform<T, 3, Eigen::Affine>(pair.transform->matrix())]() mutable {
        benchmark::DoNotOptimize(x);
        return x.inverse();
      }));
  Add("times the identity" + of, "lum", Repeat([matrix, identity] { return matrix * identity; }));
  Add("times the identity" + of, "R", copy_pair);
  Add("Translate, inverted as a temporary" + of, "lum",
      Repeat([] { return Matrix<T>::Translate(Opaque<T>(1), 2, 3).GetInverse(); }));
  // The report subtracts the row Translate, which creates the same transform.
  Add("Translate, inverted in place" + of, "lum", Repeat([] {
        auto created = Matrix<T>::Translate(Opaque<T>(1), 2, 3);
        created.Invert();
        return created;
      }));
}

// Repeats a change of a value in place.
template <class Value, class Change>
auto RepeatInPlace(Value i_value, Change i_change) {
  return [i_value, i_change](benchmark::State& io_state) {
    Value value = i_value;
    for ([[maybe_unused]] auto const iteration : io_state) {
      benchmark::DoNotOptimize(value);
      i_change(value);
      benchmark::ClobberMemory();
    }
  };
}

template <class T>
void AddInverses() {
  std::string const of = ", " + GetName<T>();
  auto const values = MakeValues<T>();
  Matrix<T> const matrix(values.data());
  auto const pair = Pair<T>::FromValues(values.data());
  EigenTransform<T> const general = *pair.transform;
  Eigen::Transform<T, 3, Eigen::Affine> const affine(general.matrix());

  Add("Invert" + of, "lum", RepeatInPlace(matrix, [](auto& io_value) { io_value.Invert(); }));
  Add("Invert" + of, "R",
      RepeatInPlace(pair, [](auto& io_value) { std::swap(io_value.transform, io_value.inverse); }));
  auto const invert = [](auto& io_value) { io_value = io_value.inverse(); };
  Add("Invert" + of, "Eigen values", RepeatInPlace(general, invert));
  Add("Invert" + of, "Eigen values, affine", RepeatInPlace(affine, invert));

  Add("RebuildInverse" + of, "lum", RepeatInPlace(matrix, [](auto& io_value) { io_value.RebuildInverse(); }));
  Add("RebuildInverse" + of, "R", RepeatInPlace(pair, [](auto& io_value) {
        io_value.inverse->matrix() = io_value.transform->matrix().inverse();
      }));

  Add("GetNormalTransform" + of, "lum", Repeat([matrix] { return matrix.GetNormalTransform(); }));
  Add("GetNormalTransform" + of, "Eigen values, affine", Repeat([affine]() mutable {
        benchmark::DoNotOptimize(affine);
        return affine.linear().inverse().transpose().eval();
      }));

  Plane<T> const plane(1, 2, 3, 4);
  Eigen::Hyperplane<T, 3> const eigen_plane(Eigen::Matrix<T, 3, 1>(1, 2, 3).normalized(), -4);
  Add("times plane" + of, "lum", Repeat([matrix, plane]() mutable {
        benchmark::DoNotOptimize(plane);
        return matrix * plane;
      }));
  Add("times plane" + of, "Eigen values, affine", Repeat([affine, eigen_plane]() mutable {
        benchmark::DoNotOptimize(affine);
        benchmark::DoNotOptimize(eigen_plane);
        auto image = eigen_plane;
        image.transform(affine);
        return image;
      }));
}

constexpr std::size_t kMany = 1000;

// Creates kMany values and releases them in the given order.
template <class Make>
auto CreateAndRelease(std::vector<std::size_t> i_order, Make const& i_make) {
  return [order = std::move(i_order), i_make](benchmark::State& io_state) {
    using Value = decltype(i_make(1));
    std::vector<Value> values;
    values.reserve(kMany);
    for ([[maybe_unused]] auto const iteration : io_state) {
      for (std::size_t i = 0; i < kMany; ++i) values.push_back(i_make(i));
      for (std::size_t const i : order) Value(std::move(values[i]));
      values.clear();
    }
  };
}

template <class Make>
auto ReplaceInTurn(Make const& i_make) {
  return [i_make](benchmark::State& io_state) {
    std::vector<decltype(i_make(1))> values;
    for (std::size_t i = 0; i < kMany; ++i) values.push_back(i_make(i));
    for ([[maybe_unused]] auto const iteration : io_state) {
      for (std::size_t i = 0; i < kMany; ++i) values[i] = i_make(i);
    }
  };
}

template <class T>
void AddMany() {
  auto const make = [](std::size_t i_x) { return Matrix<T>::Translate(static_cast<T>(i_x), 2, 3); };
  auto const make_pair = [](std::size_t i_x) { return Pair<T>::Translate(static_cast<T>(i_x), 2, 3); };
  std::vector<std::size_t> order(kMany);
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::string const of = ", " + GetName<T>();
  Add("1,000 released first in first out" + of, "lum", CreateAndRelease(order, make));
  Add("1,000 released first in first out" + of, "R", CreateAndRelease(order, make_pair));
  std::shuffle(order.begin(), order.end(), std::mt19937(20261121));
  Add("1,000 released at random" + of, "lum", CreateAndRelease(order, make));
  Add("1,000 released at random" + of, "R", CreateAndRelease(order, make_pair));
  Add("1,000 replaced in turn" + of, "lum", ReplaceInTurn(make));
  Add("1,000 replaced in turn" + of, "R", ReplaceInTurn(make_pair));
}

}  // namespace

void Register() {
  AddCreation<float>();
  AddCreation<double>();
  AddProducts<float>();
  AddProducts<double>();
  AddSharing<float>();
  AddSharing<double>();
  AddInverses<float>();
  AddInverses<double>();
  AddMany<float>();
  AddMany<double>();
}

}  // namespace lum::bench
