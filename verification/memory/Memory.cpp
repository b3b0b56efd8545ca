// Every operation of the library under the memory sanitizer, with each result checked. Only those standard
// headers are used whose code is compiled here: the sanitizer would report values that the shared standard
// library writes as uninitialised. With an argument, reads a fresh object before it is written, which must be
// reported.

#include <array>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <span>
#include <stdexcept>
#include <vector>

#include "geometry/CanonicalCubeElement.h"
#include "geometry/CubeEdgeIterator.h"
#include "geometry/CubeFaceIterator.h"
#include "geometry/CubeVertexIterator.h"
#include "geometry/LinearInterpolation.h"
#include "geometry/Matrix.h"
#include "geometry/PseudoInverse.h"
#include "geometry/Quaternion.h"
#include "geometry/RootFinding.h"
#include "geometry/TransformArrays.h"
#include "geometry/TrilinearInterpolation.h"

namespace {

int looked_at = 0;

// The sanitizer reports branches on uninitialised values.
template <class T>
void Look(T i_value) {
  if (i_value != T(12345)) ++looked_at;
}
template <class T>
void LookAtAll(T const* ip_values, std::size_t i_count) {
  for (std::size_t i = 0; i < i_count; ++i) Look(ip_values[i]);
}
template <class T>
void Look(lum::Matrix<T> const& i_matrix) {
  LookAtAll(i_matrix.GetAsPtr(), 16);
  if (i_matrix.HasInverse()) LookAtAll(i_matrix.GetMatrixInverse()->data(), 16);
}
void Look(lum::Quaternionf const& i_quaternion) { LookAtAll(i_quaternion.GetCoefficients().data(), 4); }

// Transforms arrays of all lengths that differ in their groups, and one that is so long that its results are
// streamed. The results go to memory from malloc, where a value that is not written is uninitialised.
template <class Value, class Transformation>
void LookAtArrays(Transformation const& i_transform) {
  constexpr std::size_t streamed = (std::size_t{32} << 20U) / sizeof(Value) + 3;
  for (std::size_t const count : {0UL, 1UL, 2UL, 3UL, 4UL, 5UL, 6UL, 7UL, 8UL, 9UL, streamed}) {
    std::vector<Value> values(count, Value(1, 2, 3));
    auto* const images = static_cast<Value*>(std::malloc(count * sizeof(Value)));
    if (images == nullptr && count > 0) throw std::bad_alloc();
    i_transform(std::span<Value const>(values), std::span(images, count));
    for (std::size_t i = 0; i < count; ++i) LookAtAll(images[i].data(), 3);
    std::free(images);
    i_transform(std::span<Value const>(values), std::span(values));
    for (Value const& value : values) LookAtAll(value.data(), 3);
  }
}

template <class T>
void LookAtTransformedArrays() {
  lum::Matrix<T> const matrix = lum::Matrix<T>::Translate(1, 2, 3) * lum::Matrix<T>::Scale(2);
  for (lum::Matrix<T> const& m : {matrix, lum::Matrix<T>()}) {
    LookAtArrays<lum::Point<T, 3>>([&](auto i_from, auto i_to) { TransformPoints(m, i_from, i_to); });
    LookAtArrays<lum::Vector<T, 3>>([&](auto i_from, auto i_to) { TransformVectors(m, i_from, i_to); });
  }
}

template <class T>
void LookAtTransforms() {
  using M = lum::Matrix<T>;
  using Vector = lum::Vector<T, 3>;
  // More objects than a block holds, so that objects are recycled and a second block is made.
  for (int round = 0; round < 100; ++round) {
    auto const x = static_cast<T>(round + 1);
    M const translation = M::Translate(x, 2, 3);
    M const rotation = M::Rotate(lum::GetNormalized(Vector(1, x, 2)), x);
    M product = translation * rotation * M::Scale(x, 2, 1) * M::Normalize(1, x, 3);
    Look(M());
    Look(translation);
    Look(product);
    Look(M::Scale(0));
    Look(product.GetInverse());
    Look(M(product).Invert());
    Look(M(product).RebuildInverse());
    Look(product.GetTranspose());
    Look(product.GetNormalTransform());
    Look(product.GetDeterminant());
    Look(M(product.GetAsPtr()));
    Look(M(lum::Point<T, 3>(1, 2, 3), Vector(x, 0, 0), Vector(0, 1, 0), Vector(0, 0, 1)));
    LookAtAll((product * Vector(1, 2, x)).data(), 3);
    LookAtAll((product * lum::Point<T, 3>(1, 2, x)).data(), 3);
    lum::Plane<T> const plane = product * lum::Plane<T>(1, 2, 3, x);
    Look(plane.GetA() + plane.GetB() + plane.GetC() + plane.GetD());
    Look(GetSignedDistance(plane, lum::Point<T, 3>(1, 2, x)));
    Look(lum::LinearInterpolation(x, plane.GetD(), T(0.25)));
    LookAtAll(lum::LinearInterpolation(Vector(1, 2, x), Vector(x, 2, 1), T(0.25)).data(), 3);
    LookAtAll(lum::LinearInterpolation(lum::Point<T, 3>(1, 2, x), lum::Point<T, 3>(x, 2, 1), T(0.25)).data(),
              3);
    M copy = product;
    copy.GetMutableInternal()->translation().x() = 1;
    copy.GetMutableInverseInternal()->translation().x() = 1;
    Look(copy);
    product *= copy;
    Look(product);
    Look(M(product).Invert());
    Look(M(product).RebuildInverse());
    if (product == copy) ++looked_at;
  }
  Look(lum::Matrix<float>(lum::Matrix<double>::Rotate({0, 0, 1}, 1)));
  Look(lum::Matrix<double>(lum::Matrix<float>::Rotate({0, 0, 1}, 1)));
}

void LookAtRotations() {
  for (int round = 0; round < 100; ++round) {
    auto const angle = static_cast<float>(round);
    lum::Quaternionf const q({0, 0, 1}, angle);
    lum::Quaternionf const p(lum::Matrix<float>::Rotate({1, 0, 0}, angle));
    Look(lum::Quaternionf());
    Look(q);
    Look(p);
    Look(q * p);
    Look(q.Slerp(0.25F, p));
    Look(q.GetAsMatrix());
    LookAtAll(q.Transform({1, 2, 3}).data(), 3);
    LookAtAll(q.InverseTransform({1, 2, 3}).data(), 3);
    if (q.IsApproximately(p, 0.1F)) ++looked_at;
  }
  lum::Quaternionf const rotation({0, 0, 1}, 1);
  LookAtArrays<lum::Vector<float, 3>>(
      [&](auto i_from, auto i_to) { TransformVectors(rotation, i_from, i_to); });
}

void LookAtNumerics() {
  std::array<double, 8> const corners = {1, 2, 3, 4, 5, 6, 7, 8};
  Look(lum::TrilinearInterpolation(corners, {0.25, 0.5, 0.75}));
  Look(lum::RootFinding::RegulaFalsi([](double i_x) { return i_x * i_x - 2; }, {0, 2}, 1e-9));
  for (int const limit : {2, 100}) {
    lum::RootFinding::RegulaFalsiResult const result =
        lum::RootFinding::RegulaFalsiWithLimit([](double i_x) { return i_x * i_x - 2; }, {0, 2}, 1e-9, limit);
    Look(result.root + result.bracket.GetLower() + result.bracket.GetUpper());
    Look(result.evaluations);
    Look(result.converged);
  }
  Eigen::Matrix3d matrix;
  matrix << 1, 2, 3, 4, 5, 6, 7, 8, 10;
  for (double const corner : {10.0, 9.0, 1.0 / 0.0}) {
    matrix(2, 2) = corner;
    auto const [inverse, rank] = lum::CalculatePseudoInverse(matrix, 1e-9);
    LookAtAll(inverse.data(), 9);
    Look(rank);
  }
}

void LookAtTheCube() {
  using namespace lum::CubeElementIds;
  for (Edge const edge : lum::CubeEdgeIterable<Cube>()) {
    for (Vertex const vertex : lum::CubeVertexIterable<Edge>(edge)) Look(static_cast<unsigned>(vertex));
    Look(lum::CanonicalCubeElement(lum::CubeElement(edge)).GetDimensionality());
  }
  for (Face const face : lum::CubeFaceIterable<Cube>()) {
    for (Edge const edge : lum::CubeEdgeIterable<Face>(face)) Look(static_cast<unsigned>(edge));
  }
}

}  // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): an exception ends the test, which then fails
int main(int i_count, char**) {
  LookAtTransforms<float>();
  LookAtTransforms<double>();
  LookAtTransformedArrays<float>();
  LookAtTransformedArrays<double>();
  LookAtRotations();
  LookAtNumerics();
  LookAtTheCube();
  if (i_count > 1) {
    // More objects than were ever in use at once, so the last one is fresh.
    std::array<lum::Matrix<double>::ObjectHandle, 100> handles;
    for (auto& handle : handles) handle = lum::CreateGlobalObject<lum::Matrix<double>::Object>();
    Look(*handles.back()->data());
  }
  std::printf("%d values looked at\n", looked_at);
  return 0;
}
