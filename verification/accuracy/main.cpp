// accuracy [INPUTS]
//
// Compares the library's arithmetic with MPFR on INPUTS seeded inputs (a million by default) for each
// operation and kind of inputs, and prints docs/accuracy.md. Fails if an error exceeds the bound that the
// order of operations guarantees.

#include <geometry/Matrix.h>
#include <geometry/Quaternion.h>
#include <geometry/TrilinearInterpolation.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <limits>
#include <map>
#include <numbers>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "Exact.h"

namespace {

using accuracy::Exact;
using lum::Matrix;
using lum::Quaternionf;

constexpr unsigned seed = 20261121;

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

std::map<std::pair<std::string, std::string>, Worst> table;

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
  worst.of_terms = std::max(worst.of_terms, error / GetUlp<T>(terms));
  double const exact = std::abs(i_exact.ToDouble());
  if (exact >= terms / 16) worst.of_result = std::max(worst.of_result, error / GetUlp<T>(exact));
}

enum class Kind { kUniform, kAdversarial };

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

Exact ToExact(float i_value) { return {static_cast<double>(i_value)}; }
Exact ToExact(double i_value) { return {i_value}; }

// A sum and the sum of its terms' magnitudes.
struct Sum {
  Exact value;
  Exact terms;

  void Add(Exact const& i_term) {
    value += i_term;
    terms += Abs(i_term);
  }
};

template <class T>
void MeasureProducts(std::string const& i_precision, Inputs<T> io_inputs, std::size_t i_inputs) {
  for (std::size_t done = 0; done < i_inputs; done += 16) {
    std::array<T, 16> const a = io_inputs.Affine();
    std::array<T, 16> const b = io_inputs.Affine();
    Matrix<T> const product = Matrix<T>(a.data()) * Matrix<T>(b.data());
    for (std::size_t row = 0; row < 4; ++row) {
      for (std::size_t column = 0; column < 4; ++column) {
        Sum sum;
        for (std::size_t k = 0; k < 4; ++k) sum.Add(ToExact(a[row + 4 * k]) * ToExact(b[k + 4 * column]));
        Compare(i_precision + " product, each entry", io_inputs.GetName(), 4,
                product.GetAsPtr()[row + 4 * column], sum.value, sum.terms);
      }
    }
  }
  for (std::size_t done = 0; done < i_inputs; done += 3) {
    std::array<T, 16> const a = io_inputs.Affine();
    lum::Point<T, 3> const p(io_inputs.Number(), io_inputs.Number(), io_inputs.Number());
    lum::Point<T, 3> const image = Matrix<T>(a.data()) * p;
    for (std::size_t row = 0; row < 3; ++row) {
      Sum sum;
      for (std::size_t k = 0; k < 3; ++k) sum.Add(ToExact(a[row + 4 * k]) * ToExact(p[k]));
      sum.Add(ToExact(a[row + 12]));
      Compare(i_precision + " times point, each coordinate", io_inputs.GetName(), 4, image[row], sum.value,
              sum.terms);
    }
  }
}

// The determinant of the given rows and columns, as the sum over all permutations.
template <class T>
Sum GetMinor(std::array<T, 16> const& i_m, std::vector<std::size_t> const& i_rows,
             std::vector<std::size_t> i_columns) {
  Sum sum;
  std::vector<std::size_t> const sorted = i_columns;
  do {
    int inversions = 0;
    for (std::size_t i = 0; i < i_columns.size(); ++i) {
      for (std::size_t j = i + 1; j < i_columns.size(); ++j)
        inversions += i_columns[i] > i_columns[j] ? 1 : 0;
    }
    Exact term(inversions % 2 == 0 ? 1 : -1);
    for (std::size_t i = 0; i < i_rows.size(); ++i) term *= ToExact(i_m[i_rows[i] + 4 * i_columns[i]]);
    sum.Add(term);
  } while (std::next_permutation(i_columns.begin(), i_columns.end()));
  return sum;
}

template <class T>
void MeasureInverses(std::string const& i_precision, Inputs<T> io_inputs, std::size_t i_inputs) {
  std::vector<std::size_t> const all = {0, 1, 2, 3};
  for (std::size_t done = 0; done < i_inputs;) {
    std::array<T, 16> m = io_inputs.Affine();
    if (io_inputs.IsAdversarial()) {
      // Nearly singular: column 3 is close to the sum of the others.
      Inputs<T> plain(Kind::kUniform);
      plain.GetRandom().seed(io_inputs.GetRandom()());
      m = plain.Affine();
      for (std::size_t row = 0; row < 4; ++row) {
        m[row + 12] = m[row] + m[row + 4] + m[row + 8] + std::ldexp(plain.Number(), -6);
      }
    }
    Matrix<T> const matrix(m.data());
    Sum const determinant = GetMinor(m, all, all);
    // To first order, an entry's error comes from its cofactor and the determinant. If that is not a small
    // part of the determinant, the matrix counts as singular.
    Exact const size = Abs(determinant.value);
    double const lost = determinant.terms.ToDouble() * GetUlp<T>(1);
    if (!(lost < 1e-3 * size.ToDouble())) continue;
    done += 16;
    T const* const inverse = matrix.GetMatrixInverse()->data();
    for (std::size_t row = 0; row < 4; ++row) {
      for (std::size_t column = 0; column < 4; ++column) {
        std::vector<std::size_t> rows = all;
        std::vector<std::size_t> columns = all;
        rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(column));
        columns.erase(columns.begin() + static_cast<std::ptrdiff_t>(row));
        Sum const cofactor = GetMinor(m, rows, columns);
        Exact const sign((row + column) % 2 == 0 ? 1 : -1);
        Exact const exact = sign * cofactor.value / determinant.value;
        Exact const terms = cofactor.terms / size + Abs(exact) * determinant.terms / size;
        Compare(i_precision + " inverse, each entry", io_inputs.GetName(), 10, inverse[row + 4 * column],
                exact, terms);
      }
    }
  }
  for (std::size_t done = 0; done < i_inputs; ++done) {
    std::array<T, 16> m{};
    // The bound counts roundings only, so no product of two entries may underflow.
    T const least = std::sqrt(std::numeric_limits<T>::min() / std::numeric_limits<T>::epsilon());
    for (T& value : m) {
      do value = io_inputs.Number();
      while (value != 0 && std::abs(value) < least);
    }
    Sum const determinant = GetMinor(m, all, all);
    Compare(i_precision + " GetDeterminant", io_inputs.GetName(), 8, Matrix<T>(m.data()).GetDeterminant(),
            determinant.value, determinant.terms);
  }
}

template <class T>
void MeasureRotations(std::string const& i_precision, Inputs<T> io_inputs, std::size_t i_inputs) {
  for (std::size_t done = 0; done < i_inputs;) {
    lum::Vector<T, 3> const axis = io_inputs.Direction();
    T const angle = io_inputs.Angle();
    if (angle == 0) continue;
    done += 9;
    Matrix<T> const rotation = Matrix<T>::Rotate(axis, angle);
    Exact const sine = Sin(ToExact(angle));
    Exact const cosine = Cos(ToExact(angle));
    for (std::size_t row = 0; row < 3; ++row) {
      for (std::size_t column = 0; column < 3; ++column) {
        Exact const square = ToExact(axis[row]) * ToExact(axis[column]);
        Sum sum;
        sum.Add(square);
        sum.Add(-(square * cosine));
        if (row == column) {
          sum.Add(cosine);
        } else {
          std::size_t const other = 3 - row - column;
          bool const is_positive = (row + 1) % 3 != column;
          sum.Add(sine * ToExact(axis[other]) * Exact(is_positive ? 1 : -1));
        }
        Compare(i_precision + " Rotate, each entry", io_inputs.GetName(), 6,
                rotation.GetAsPtr()[row + 4 * column], sum.value, sum.terms);
      }
    }
  }
}

template <class T>
void MeasureNormals(std::string const& i_precision, Inputs<T> io_inputs, std::size_t i_inputs) {
  // Excludes vectors whose squares overflow or underflow; docs/edge-cases.md states their results.
  double const least = std::sqrt(std::numeric_limits<T>::min()) * 1e4;
  double const most = std::sqrt(std::numeric_limits<T>::max()) * 1e-4;
  auto const take = [&] {
    lum::Vector<T, 3> vector;
    double length = 0;
    do {
      for (T& component : vector) component = io_inputs.Number();
      length = lum::GetLength(lum::Vector<double, 3>(vector[0], vector[1], vector[2]));
    } while (!(length > least && length < most));
    return vector;
  };
  for (std::size_t done = 0; done < i_inputs; ++done) {
    lum::Vector<T, 3> const v = take();
    lum::Vector<T, 3> const normalized = GetNormalized(v);
    Exact square;
    for (T const component : v) square += ToExact(component) * ToExact(component);
    for (std::size_t axis = 0; axis < 3; ++axis) {
      Exact const exact = ToExact(v[axis]) / Sqrt(square);
      Compare(i_precision + " GetNormalized, each component", io_inputs.GetName(), 4, normalized[axis], exact,
              Abs(exact));
    }
    T const d = static_cast<T>(std::uniform_real_distribution<double>(-1, 1)(io_inputs.GetRandom()));
    lum::Plane<T> const plane(v[0], v[1], v[2], d);
    Exact const exact = ToExact(d) / Sqrt(square);
    Compare(i_precision + " Plane, d", io_inputs.GetName(), 4, plane.GetD(), exact, Abs(exact));
  }
}

template <class T>
void MeasurePlanes(std::string const& i_precision, Inputs<T> io_inputs, std::size_t i_inputs) {
  for (std::size_t done = 0; done < i_inputs; done += 4) {
    lum::Vector<T, 3> const n = io_inputs.Direction();
    T const d = static_cast<T>(std::uniform_real_distribution<double>(-1, 1)(io_inputs.GetRandom()));
    Matrix<T> const matrix = Matrix<T>::Rotate(io_inputs.Direction(), io_inputs.Angle()) *
                             Matrix<T>::Translate(n[0], d, n[1]) * Matrix<T>::Scale(2, T(0.75), T(-1.5));
    lum::Plane<T> const plane(n[0], n[1], n[2], d);
    lum::Plane<T> const image = matrix * plane;
    T const* const inverse = matrix.GetMatrixInverse()->data();
    std::array<T, 4> const row = {plane.GetA(), plane.GetB(), plane.GetC(), -plane.GetD()};
    std::array<Sum, 4> q;
    Exact square;
    Exact square_terms;
    for (std::size_t j = 0; j < 4; ++j) {
      for (std::size_t i = 0; i < 4; ++i) q[j].Add(ToExact(inverse[i + 4 * j]) * ToExact(row[i]));
      if (j == 3) continue;
      square += q[j].value * q[j].value;
      square_terms += Abs(q[j].value) * q[j].terms;
    }
    Exact const length = Sqrt(square);
    std::array<T, 4> const values = {image.GetA(), image.GetB(), image.GetC(), -image.GetD()};
    for (std::size_t j = 0; j < 4; ++j) {
      Exact const terms = q[j].terms / length + Abs(q[j].value) * square_terms / (square * length);
      Compare(i_precision + " times plane, each coefficient", io_inputs.GetName(), 8, values[j],
              q[j].value / length, terms);
    }
  }
}

using Coefficients = std::array<float, 4>;

// Products of coefficients with signs: x y z w each.
void MeasureQuaternions(Inputs<float> io_inputs, std::size_t i_inputs) {
  char const* const kind = io_inputs.GetName();
  auto const take = [&] { return Quaternionf(io_inputs.Direction(), io_inputs.Angle()); };
  for (std::size_t done = 0; done < i_inputs; done += 4) {
    Quaternionf const p = take();
    Quaternionf const q = take();
    Coefficients const a = p.GetCoefficients();
    Coefficients const b = q.GetCoefficients();
    Coefficients const product = (p * q).GetCoefficients();
    auto const term = [&](std::size_t i_a, std::size_t i_b) { return ToExact(a[i_a]) * ToExact(b[i_b]); };
    for (std::size_t axis = 0; axis < 3; ++axis) {
      std::size_t const next = (axis + 1) % 3;
      std::size_t const last = (axis + 2) % 3;
      Sum sum;
      sum.Add(term(3, axis));
      sum.Add(term(axis, 3));
      sum.Add(term(next, last));
      sum.Add(-term(last, next));
      Compare("Quaternionf product, each coefficient", kind, 4, product[axis], sum.value, sum.terms);
    }
    Sum sum;
    sum.Add(term(3, 3));
    for (std::size_t axis = 0; axis < 3; ++axis) sum.Add(-term(axis, axis));
    Compare("Quaternionf product, each coefficient", kind, 4, product[3], sum.value, sum.terms);
  }
  for (std::size_t done = 0; done < i_inputs; done += 3) {
    Quaternionf const q = take();
    Coefficients const c = q.GetCoefficients();
    lum::Vector<float, 3> const v(io_inputs.Number(), io_inputs.Number(), io_inputs.Number());
    lum::Vector<float, 3> const image = q.Transform(v);
    std::array<Sum, 3> u;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      std::size_t const next = (axis + 1) % 3;
      std::size_t const last = (axis + 2) % 3;
      u[axis].Add(Exact(2) * ToExact(c[next]) * ToExact(v[last]));
      u[axis].Add(-(Exact(2) * ToExact(c[last]) * ToExact(v[next])));
    }
    for (std::size_t axis = 0; axis < 3; ++axis) {
      std::size_t const next = (axis + 1) % 3;
      std::size_t const last = (axis + 2) % 3;
      Exact const exact = ToExact(v[axis]) + ToExact(c[3]) * u[axis].value +
                          ToExact(c[next]) * u[last].value - ToExact(c[last]) * u[next].value;
      Exact const terms = Abs(ToExact(v[axis])) + Abs(ToExact(c[3])) * u[axis].terms +
                          Abs(ToExact(c[next])) * u[last].terms + Abs(ToExact(c[last])) * u[next].terms;
      Compare("Quaternionf Transform, each component", kind, 8, image[axis], exact, terms);
    }
  }
  for (std::size_t done = 0; done < i_inputs; done += 4) {
    lum::Vector<float, 3> const axis = io_inputs.Direction();
    float const angle = io_inputs.Angle();
    // Adversarial: nearly parallel.
    float const step = io_inputs.IsAdversarial()
                           ? std::ldexp(1.0F, -static_cast<int>(io_inputs.GetRandom()() % 24))
                           : io_inputs.Angle();
    Quaternionf const p(axis, angle);
    Quaternionf const q = io_inputs.IsAdversarial() ? Quaternionf(axis, angle + step) : take();
    float const t = std::uniform_real_distribution<float>(0, 1)(io_inputs.GetRandom());
    Coefficients const a = p.GetCoefficients();
    Coefficients const b = q.GetCoefficients();
    Exact dot;
    for (std::size_t i = 0; i < 4; ++i) dot += ToExact(a[i]) * ToExact(b[i]);
    Exact const cosine = Abs(dot);
    Exact s0 = Exact(1) - ToExact(t);
    Exact s1 = ToExact(t);
    if (cosine < Exact(1)) {
      Exact const theta = Acos(cosine);
      s0 = Sin((Exact(1) - ToExact(t)) * theta) / Sin(theta);
      s1 = Sin(ToExact(t) * theta) / Sin(theta);
    }
    if (dot < Exact(0)) s1 = -s1;
    Coefficients const blend = p.Slerp(t, q).GetCoefficients();
    for (std::size_t i = 0; i < 4; ++i) {
      Exact const exact = s0 * ToExact(a[i]) + s1 * ToExact(b[i]);
      // Errors are relative to the unit quaternion, not to a coefficient.
      Compare("Quaternionf Slerp, each coefficient", kind, 4, blend[i], exact, Exact(1));
    }
  }
}

void MeasureInterpolations(Inputs<double> io_inputs, std::size_t i_inputs) {
  for (std::size_t done = 0; done < i_inputs; ++done) {
    std::array<double, 8> corners{};
    for (double& corner : corners) corner = io_inputs.Number();
    lum::Point<double, 3> point;
    for (double& coordinate : point) {
      coordinate = std::uniform_real_distribution<double>(0, 1)(io_inputs.GetRandom());
      if (io_inputs.IsAdversarial() && io_inputs.GetRandom()() % 4 == 0)
        coordinate = std::nextafter(1.0, 0.0);
      if (io_inputs.IsAdversarial() && io_inputs.GetRandom()() % 4 == 0) coordinate = io_inputs.Number();
    }
    Sum sum;
    for (std::size_t corner = 0; corner < 8; ++corner) {
      Exact term = ToExact(corners[corner]);
      for (std::size_t axis = 0; axis < 3; ++axis) {
        Exact const coordinate = ToExact(point[axis]);
        term *= (corner >> axis & 1U) != 0 ? coordinate : Exact(1) - coordinate;
      }
      sum.Add(term);
    }
    Compare("double TrilinearInterpolation", io_inputs.GetName(), 13,
            lum::TrilinearInterpolation(corners, point), sum.value, sum.terms);
  }
}

template <class T>
void MeasureAll(std::string const& i_precision, Kind i_kind, std::size_t i_inputs) {
  MeasureProducts<T>(i_precision, Inputs<T>(i_kind), i_inputs);
  MeasureInverses<T>(i_precision, Inputs<T>(i_kind), i_inputs);
  MeasureRotations<T>(i_precision, Inputs<T>(i_kind), i_inputs);
  MeasureNormals<T>(i_precision, Inputs<T>(i_kind), i_inputs);
  MeasurePlanes<T>(i_precision, Inputs<T>(i_kind), i_inputs);
}

// The text above the rows of the table.
constexpr char const* page = R"(# Accuracy

`verification/accuracy` writes this page. It compares results with MPFR at 320 bits, on inputs from a fixed seed.

The rounding error of a sum of products is proportional to the magnitudes of its terms. If the terms cancel,
the result may be much smaller than this error. So errors are given in units in the last place (ulp) of the
*terms*, that is, of the sum of their magnitudes. The bound follows to first order from the stated order of
operations: one ulp for each rounding that a term passes through. Errors in ulps of the *result* are given
only for results of at least a sixteenth of their terms.

Uniform inputs lie between -1 and 1, and angles between -7 and 7. Adversarial inputs range from denormals to
the largest magnitudes whose products do not overflow, with zeros and numbers that nearly cancel. Adversarial
matrices to invert are nearly singular, angles are close to multiples of a quarter turn, and quaternions to
blend are nearly parallel.

A matrix counts as singular, and its inverse is not compared, if rounding could change its determinant by a
thousandth. The entries of determinants are so large that no product of two underflows: after an underflow,
large factors would make the error unbounded.

| Operation | Inputs | Comparisons | Largest error, ulps of the terms | Bound | Largest error, ulps of the result |
|---|---|---|---|---|---|)";

// Prints the page and returns whether every error is within its bound.
bool Print() {
  std::puts(page);
  bool is_within = true;
  for (auto const& [key, worst] : table) {
    std::printf("| %s | %s | %zu | %.2f | %g | %.2f |\n", key.first.c_str(), key.second.c_str(), worst.inputs,
                worst.of_terms, worst.bound, worst.of_result);
    is_within = is_within && worst.of_terms <= worst.bound && worst.inputs > 0;
  }
  return is_within;
}

}  // namespace

int main(int i_count, char** ip_words) {
  std::size_t const inputs = i_count > 1 ? std::strtoul(ip_words[1], nullptr, 10) : 1000000;
  for (Kind const kind : {Kind::kUniform, Kind::kAdversarial}) {
    MeasureAll<float>("float", kind, inputs);
    MeasureAll<double>("double", kind, inputs);
    MeasureQuaternions(Inputs<float>(kind), inputs);
    MeasureInterpolations(Inputs<double>(kind), inputs);
  }
  if (Print()) return 0;
  std::fputs("accuracy: an error exceeds its bound\n", stderr);
  return 1;
}
