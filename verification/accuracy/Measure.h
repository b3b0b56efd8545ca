#pragma once

#include <geometry/Vector.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <map>
#include <numbers>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "Exact.h"

namespace accuracy {

inline constexpr unsigned seed = 20261121;

// The unit in the last place of a magnitude in type T.
template <class T>
double GetUlp(double i_magnitude) {
  double const least = std::numeric_limits<T>::min();
  int exponent = 0;
  std::frexp(std::max(i_magnitude, least), &exponent);
  return std::ldexp(1.0, exponent - std::numeric_limits<T>::digits);
}

// The largest errors of one operation.
struct Worst {
  double bound = 0;      // in ulps of the terms, by the order of operations
  double of_terms = 0;   // in ulps of the sum of the terms' magnitudes
  double of_result = 0;  // in ulps of the result, if it is at least a sixteenth of the terms
  std::size_t inputs = 0;
};

inline std::map<std::pair<std::string, std::string>, Worst> table;

// i_terms is the sum of the terms' magnitudes, to which the error is proportional. If the terms cancel, the
// result may be much smaller.
template <class T>
void Compare(std::string const& i_operation, char const* ip_kind, double i_bound, T i_value,
             Exact const& i_exact, Exact const& i_terms) {
  double const terms = i_terms.ToDouble();
  if (!(terms < static_cast<double>(std::numeric_limits<T>::max()) / 4)) return;
  Worst& worst = table[{i_operation, ip_kind}];
  double const error = Abs(Exact(static_cast<double>(i_value)) - i_exact).ToDouble();
  worst.bound = i_bound;
  ++worst.inputs;
  // The error of a result that is NaN is NaN. It exceeds every bound, but std::max would leave it out.
  double const ulps = error / GetUlp<T>(terms);
  worst.of_terms =
      std::max(worst.of_terms, std::isnan(ulps) ? std::numeric_limits<double>::infinity() : ulps);
  double const exact = std::abs(i_exact.ToDouble());
  if (exact >= terms / 16) worst.of_result = std::max(worst.of_result, error / GetUlp<T>(exact));
}

enum class Kind { kUniform, kAdversarial };

// Callers with several numbers put them in braces, which order the calls: the order of function arguments
// differs between compilers.
template <class T>
class Inputs {
 public:
  explicit Inputs(Kind i_kind) : m_kind(i_kind) {}

  // Uniform from -1 to 1, or of any magnitude that lets a few factors multiply without overflow, with zeros,
  // equal numbers and denormals among them.
  T Number() {
    T const uniform = std::uniform_real_distribution<T>(-1, 1)(m_random);
    if (m_kind == Kind::kUniform) return uniform;
    int const reach = std::numeric_limits<T>::max_exponent / 5;
    switch (m_random() % 8) {
      case 0:
        return 0;
      case 1:
        return m_last;
      case 2:
        return -std::nextafter(m_last, T(1));
      case 3:
        return uniform * std::numeric_limits<T>::min();
      case 4:
        return m_last = std::ldexp(
                   uniform,
                   static_cast<int>(m_random() % (std::size_t{2} * static_cast<std::size_t>(reach))) - reach);
      default:
        return m_last = uniform;
    }
  }
  // Uniform from -7 to 7, or within a few ulps of a multiple of a quarter turn.
  T Angle() {
    if (m_kind == Kind::kUniform) return std::uniform_real_distribution<T>(-7, 7)(m_random);
    T angle = static_cast<T>(static_cast<double>(m_random() % 17) * std::numbers::pi / 2);
    for (auto steps = m_random() % 4; steps > 0; --steps)
      angle = std::nextafter(angle, T(m_random() % 2 * 100));
    // Halving a denormal number may round.
    if (angle < 2 * std::numeric_limits<T>::min()) angle = 0;
    return m_random() % 2 == 0 ? angle : -angle;
  }
  lum::Vector<T, 3> Direction() {
    lum::Vector<T, 3> direction;
    do {
      for (T& component : direction) component = std::uniform_real_distribution<T>(-1, 1)(m_random);
    } while (!(lum::GetSquaredLength(direction) > T(0.01)));
    return lum::GetNormalized(direction);
  }
  std::array<T, 16> Affine() {
    std::array<T, 16> values{};
    for (T& value : values) value = Number();
    return values;
  }
  std::mt19937& GetRandom() { return m_random; }
  bool IsAdversarial() const { return m_kind == Kind::kAdversarial; }
  char const* GetName() const { return IsAdversarial() ? "adversarial" : "uniform"; }

 private:
  Kind m_kind;
  std::mt19937 m_random{seed};
  T m_last = T(0.75);
};

inline Exact ToExact(float i_value) { return {static_cast<double>(i_value)}; }
inline Exact ToExact(double i_value) { return {i_value}; }
inline Exact const& ToExact(Exact const& i_value) { return i_value; }

// A sum and the sum of its terms' magnitudes.
struct Sum {
  Exact value;
  Exact terms;

  void Add(Exact const& i_term) {
    value += i_term;
    terms += Abs(i_term);
  }
};

// The determinant of the given rows and columns, as the sum over all permutations.
// The matrix is stored column by column.
template <class Values>
Sum GetMinor(Values const& i_m, std::vector<std::size_t> const& i_rows, std::vector<std::size_t> i_columns,
             std::size_t i_stride = 4) {
  Sum sum;
  std::vector<std::size_t> const sorted = i_columns;
  do {
    int inversions = 0;
    for (std::size_t i = 0; i < i_columns.size(); ++i) {
      for (std::size_t j = i + 1; j < i_columns.size(); ++j)
        inversions += i_columns[i] > i_columns[j] ? 1 : 0;
    }
    Exact term(inversions % 2 == 0 ? 1 : -1);
    for (std::size_t i = 0; i < i_rows.size(); ++i) term *= ToExact(i_m[i_rows[i] + i_stride * i_columns[i]]);
    sum.Add(term);
  } while (std::next_permutation(i_columns.begin(), i_columns.end()));
  return sum;
}

// A vector rotated by a quaternion of x, y, z, w.
inline std::array<Sum, 3> Rotate(std::array<float, 4> const& i_quaternion,
                                 lum::Vector<float, 3> const& i_vector) {
  std::array<Exact, 4> q;
  for (std::size_t i = 0; i < 4; ++i) q[i] = ToExact(i_quaternion[i]);
  std::array<Sum, 3> u;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    std::size_t const next = (axis + 1) % 3;
    std::size_t const last = (axis + 2) % 3;
    u[axis].Add(Exact(2) * q[next] * ToExact(i_vector[last]));
    u[axis].Add(-(Exact(2) * q[last] * ToExact(i_vector[next])));
  }
  std::array<Sum, 3> image;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    std::size_t const next = (axis + 1) % 3;
    std::size_t const last = (axis + 2) % 3;
    Exact const component = ToExact(i_vector[axis]);
    image[axis] = {component + q[3] * u[axis].value + q[next] * u[last].value - q[last] * u[next].value,
                   Abs(component) + Abs(q[3]) * u[axis].terms + Abs(q[next]) * u[last].terms +
                       Abs(q[last]) * u[next].terms};
  }
  return image;
}

// An inverse of 3x3 values, and the sums of the magnitudes to which the errors of an inverse by cofactors are
// proportional.
struct ExactInverse {
  std::array<Exact, 9> values;
  std::array<Exact, 9> terms;
};
ExactInverse Invert(std::array<Exact, 9> const& i_values);

void MeasureVectors(Kind i_kind, std::size_t i_inputs);
void MeasureArrays(Kind i_kind, std::size_t i_inputs);
void MeasureConversions(Kind i_kind, std::size_t i_inputs);
void MeasureDecompositions(Kind i_kind, std::size_t i_inputs);
void PrintChains();

}  // namespace accuracy
