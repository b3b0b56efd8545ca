#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

#include "geometry/Matrix.h"
#include "geometry/internal/Lanes.h"
#include "geometry/internal/StrictArithmetic.h"

namespace lum {
namespace {

using internal::DoubleLanes;
using internal::FloatLanes;

// Carry triples by the sums that `Matrix` states for one, with a last addend for each row. Coefficients are
// copied: the compiler would have to read them again after every store.
void Carry(double const* ip_matrix, std::array<double, 3> const& i_last, double const* ip_values,
           double* op_values, std::size_t i_count) {
  std::array<DoubleLanes, 12> c;
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t column = 0; column < 3; ++column) {
      c[row + 3 * column] = internal::Broadcast(ip_matrix[row + 4 * column]);
    }
    c[row + 9] = internal::Broadcast(i_last[row]);
  }
  internal::CarryTriples(
      ip_values, op_values, i_count, [c](double const* ip_triples, double* op_triples, auto const& i_store) {
        auto const [x, y, z] = internal::LoadTriples(ip_triples);
        internal::StoreTriples(
            {((c[0] * x + c[3] * y) + c[6] * z) + c[9], ((c[1] * x + c[4] * y) + c[7] * z) + c[10],
             ((c[2] * x + c[5] * y) + c[8] * z) + c[11]},
            op_triples, i_store);
      });
}

// Results are computed in the places where they are stored: x0 y0 z0 x1, y1 z1 x2 y2, z2 x3 y3 z3. That takes
// fewer shuffles than sorting the numbers by their axis does.
void Carry(float const* ip_matrix, std::array<float, 3> const& i_last, float const* ip_values,
           float* op_values, std::size_t i_count) {
  // The coefficients of one column, or the last addends, for each of the three.
  auto const arrange = [](float const* v) {
    return std::array<FloatLanes, 3>{FloatLanes{v[0], v[1], v[2], v[0]}, FloatLanes{v[1], v[2], v[0], v[1]},
                                     FloatLanes{v[2], v[0], v[1], v[2]}};
  };
  auto const cx = arrange(ip_matrix);
  auto const cy = arrange(ip_matrix + 4);
  auto const cz = arrange(ip_matrix + 8);
  auto const last = arrange(i_last.data());
  internal::CarryTriples(
      ip_values, op_values, i_count,
      [cx, cy, cz, last](float const* v, float* op_triples, auto const& i_store) {
        // From a window of four numbers that starts at a coordinate: that of one point, and of the next.
        auto const three_and_one = [v](std::size_t i_start) {
          FloatLanes const window = internal::LoadLanes(v + i_start);
          return __builtin_shufflevector(window, window, 0, 0, 0, 3);
        };
        auto const two_and_two = [v](std::size_t i_start) {
          FloatLanes const window = internal::LoadLanes(v + i_start);
          return __builtin_shufflevector(window, window, 0, 0, 3, 3);
        };
        auto const one_and_three = [v](std::size_t i_start) {
          FloatLanes const window = internal::LoadLanes(v + i_start);
          return __builtin_shufflevector(window, window, 0, 3, 3, 3);
        };
        FloatLanes const xyzx =
            ((cx[0] * three_and_one(0) + cy[0] * three_and_one(1)) + cz[0] * three_and_one(2)) + last[0];
        FloatLanes const yzxy =
            ((cx[1] * two_and_two(3) + cy[1] * two_and_two(4)) + cz[1] * two_and_two(5)) + last[1];
        FloatLanes const zxyz =
            ((cx[2] * one_and_three(6) + cy[2] * one_and_three(7)) + cz[2] * one_and_three(8)) + last[2];
        i_store(xyzx, op_triples);
        i_store(yzxy, op_triples + 4);
        i_store(zxyz, op_triples + 8);
      });
}

// Points carry the translation once, vectors no time: it is the last addend then, so that one that is not
// finite shows.
template <class T, class Value>
void Transform(Matrix<T> const& i_matrix, T i_translations, std::span<Value const> i_values,
               std::span<Value> o_values) {
  static_assert(sizeof(Value) == 3 * sizeof(T), "three numbers and nothing else");
  internal::RequireSameSize(i_values.size(), o_values.size());
  if (i_matrix.IsKnownIdentity()) {
    if (i_values.data() != o_values.data()) std::copy(i_values.begin(), i_values.end(), o_values.begin());
    return;
  }
  if (i_values.empty()) return;
  T const* const m = i_matrix.GetAsPtr();
  std::array<T, 3> const last = {m[12] * i_translations, m[13] * i_translations, m[14] * i_translations};
  Carry(m, last, i_values.data()->data(), o_values.data()->data(), i_values.size());
}

}  // namespace

void TransformPoints(Matrix<float> const& i_matrix, std::span<Point<float, 3> const> i_points,
                     std::span<Point<float, 3>> o_points) {
  Transform(i_matrix, 1.0F, i_points, o_points);
}

void TransformPoints(Matrix<double> const& i_matrix, std::span<Point<double, 3> const> i_points,
                     std::span<Point<double, 3>> o_points) {
  Transform(i_matrix, 1.0, i_points, o_points);
}

void TransformVectors(Matrix<float> const& i_matrix, std::span<Vector<float, 3> const> i_vectors,
                      std::span<Vector<float, 3>> o_vectors) {
  Transform(i_matrix, 0.0F, i_vectors, o_vectors);
}

void TransformVectors(Matrix<double> const& i_matrix, std::span<Vector<double, 3> const> i_vectors,
                      std::span<Vector<double, 3>> o_vectors) {
  Transform(i_matrix, 0.0, i_vectors, o_vectors);
}

}  // namespace lum
