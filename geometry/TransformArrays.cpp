#include "geometry/TransformArrays.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

#include "geometry/Matrix.h"
#include "geometry/internal/Lanes.h"
#include "geometry/internal/RequireSameSize.h"
#include "geometry/internal/StrictArithmetic.h"

namespace lum {
namespace {

using internal::DoubleLanes;
using internal::FloatLanes;

// The two overloads compute the sums that `Matrix` documents for one point, with a last addend for each row.
// They copy the coefficients, which the compiler would otherwise reload after every store.
void TransformTriples(double const* ip_matrix, std::array<double, 3> const& i_last, double const* ip_values,
                      double* op_values, std::size_t i_count) {
  std::array<DoubleLanes, 12> c;
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t column = 0; column < 3; ++column) {
      c[row + 3 * column] = internal::Broadcast(ip_matrix[row + 4 * column]);
    }
    c[row + 9] = internal::Broadcast(i_last[row]);
  }
  auto const transform_group = [c](double const* ip_group, double* op_group, auto const& i_store) {
    auto const [x, y, z] = internal::LoadTriples(ip_group);
    internal::StoreTriples({((c[0] * x + c[3] * y) + c[6] * z) + c[9],   //
                            ((c[1] * x + c[4] * y) + c[7] * z) + c[10],  //
                            ((c[2] * x + c[5] * y) + c[8] * z) + c[11]},
                           op_group, i_store);
  };
  internal::TransformTriples(ip_values, op_values, i_count, transform_group);
}

// Each loads four consecutive floats, and repeats the first and the last of them as often as its name states.
FloatLanes LoadThreeAndOne(float const* ip_window) {
  FloatLanes const window = internal::LoadLanes(ip_window);
  return __builtin_shufflevector(window, window, 0, 0, 0, 3);
}
FloatLanes LoadTwoAndTwo(float const* ip_window) {
  FloatLanes const window = internal::LoadLanes(ip_window);
  return __builtin_shufflevector(window, window, 0, 0, 3, 3);
}
FloatLanes LoadOneAndThree(float const* ip_window) {
  FloatLanes const window = internal::LoadLanes(ip_window);
  return __builtin_shufflevector(window, window, 0, 3, 3, 3);
}

// The coefficients of one matrix column, or the last addends, for the three vectors that hold a group.
std::array<FloatLanes, 3> Arrange(float const* v) {
  return {FloatLanes{v[0], v[1], v[2], v[0]},  //
          FloatLanes{v[1], v[2], v[0], v[1]},  //
          FloatLanes{v[2], v[0], v[1], v[2]}};
}

// Computes the results in their order in memory: x0 y0 z0 x1, y1 z1 x2 y2, z2 x3 y3 z3. That takes fewer
// shuffles than one vector for each axis.
void TransformTriples(float const* ip_matrix, std::array<float, 3> const& i_last, float const* ip_values,
                      float* op_values, std::size_t i_count) {
  auto const cx = Arrange(ip_matrix);
  auto const cy = Arrange(ip_matrix + 4);
  auto const cz = Arrange(ip_matrix + 8);
  auto const last = Arrange(i_last.data());
  auto const transform_group = [cx, cy, cz, last](float const* v, float* op_group, auto const& i_store) {
    FloatLanes const xyzx =
        ((cx[0] * LoadThreeAndOne(v) + cy[0] * LoadThreeAndOne(v + 1)) + cz[0] * LoadThreeAndOne(v + 2)) +
        last[0];
    FloatLanes const yzxy =
        ((cx[1] * LoadTwoAndTwo(v + 3) + cy[1] * LoadTwoAndTwo(v + 4)) + cz[1] * LoadTwoAndTwo(v + 5)) +
        last[1];
    FloatLanes const zxyz =
        ((cx[2] * LoadOneAndThree(v + 6) + cy[2] * LoadOneAndThree(v + 7)) + cz[2] * LoadOneAndThree(v + 8)) +
        last[2];
    i_store(xyzx, op_group);
    i_store(yzxy, op_group + 4);
    i_store(zxyz, op_group + 8);
  };
  internal::TransformTriples(ip_values, op_values, i_count, transform_group);
}

// The last addend is the translation times 1 for points and times 0 for vectors, so a non-finite translation
// still yields NaN.
template <class T, class Value>
void Transform(Matrix<T> const& i_matrix, T i_translation_factor, std::span<Value const> i_values,
               std::span<Value> o_images) {
  static_assert(sizeof(Value) == 3 * sizeof(T), "three numbers and nothing else");
  internal::RequireSameSize(i_values.size(), o_images.size());
  if (i_matrix.IsKnownIdentity()) {
    if (i_values.data() != o_images.data()) std::copy(i_values.begin(), i_values.end(), o_images.begin());
    return;
  }
  if (i_values.empty()) return;
  T const* const m = i_matrix.GetAsPtr();
  std::array<T, 3> const last = {m[12] * i_translation_factor, m[13] * i_translation_factor,
                                 m[14] * i_translation_factor};
  TransformTriples(m, last, i_values.data()->data(), o_images.data()->data(), i_values.size());
}

}  // namespace

template <class T>
void Matrix<T>::Apply(std::span<Point<T, 3> const> i_points, std::span<Point<T, 3>> o_images) const {
  Transform(*this, T(1), i_points, o_images);
}

template <class T>
void Matrix<T>::Apply(std::span<Vector<T, 3> const> i_vectors, std::span<Vector<T, 3>> o_images) const {
  Transform(*this, T(0), i_vectors, o_images);
}

template void Matrix<float>::Apply(std::span<Point<float, 3> const>, std::span<Point<float, 3>>) const;
template void Matrix<double>::Apply(std::span<Point<double, 3> const>, std::span<Point<double, 3>>) const;
template void Matrix<float>::Apply(std::span<Vector<float, 3> const>, std::span<Vector<float, 3>>) const;
template void Matrix<double>::Apply(std::span<Vector<double, 3> const>, std::span<Vector<double, 3>>) const;

}  // namespace lum
