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
#include <limits>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "Measure.h"

namespace accuracy {
namespace {

using lum::Matrix;
using lum::Quaternionf;

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
    lum::Point<T, 3> const p{io_inputs.Number(), io_inputs.Number(), io_inputs.Number()};
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
    lum::Vector<T, 3> const axis = io_inputs.Direction();
    Matrix<T> const matrix = Matrix<T>::Rotate(axis, io_inputs.Angle()) *
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
  auto const take = [&] { return Quaternionf{io_inputs.Direction(), io_inputs.Angle()}; };
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
    lum::Vector<float, 3> const v{io_inputs.Number(), io_inputs.Number(), io_inputs.Number()};
    lum::Vector<float, 3> const image = q.Transform(v);
    std::array<Sum, 3> const exact = Rotate(c, v);
    for (std::size_t axis = 0; axis < 3; ++axis) {
      Compare("Quaternionf Transform, each component", kind, 8, image[axis], exact[axis].value,
              exact[axis].terms);
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

- A matrix times a point: one product and three additions, so 4. For a vector, the last addend is 0 and its
  addition does not round, so 3. Arrays have the bounds of the single operations.
- `LinearInterpolation`: the difference, the product and the sum, so 3. `GetSignedDistance`: one product, two
  additions and a subtraction, so 4 at most.
- A quaternion from axis and angle: halving the angle is exact. The sine is within one ulp, which may be two
  roundings. The product is one more, so 3. `GetAsMatrix`: a product, a sum and a difference, so 3.
- `InverseTransform` inverts the matrix R of the quaternion q. The roundings of the entries, at most 3, pass through
  the inverse; the inverse by cofactors adds at most 10; the product with a vector adds 3. The terms are the sums
  of the magnitudes of all three, so the bound is the largest number, 10.
- A quaternion from a matrix and `CalculatePseudoInverse` go through a singular value decomposition, whose number
  of sweeps depends on the input. Their bounds are measured instead: they are at least twice the largest errors.
  The terms follow from how a change of the input changes the result. For the quaternion they are |A| |A^-1|, and
  for the pseudo-inverse P they are |P|^2 |A|, where |A| is the Frobenius norm.

Uniform inputs lie between -1 and 1, and angles between -7 and 7. Adversarial inputs range from denormals to
the largest magnitudes whose products do not overflow, with zeros and numbers that nearly cancel. Adversarial
matrices to invert are nearly singular, angles are close to multiples of a quarter turn, quaternions to blend are
nearly parallel, quaternions to convert are not of unit length, and matrices to convert scale their axes
by 1/64 to 64 instead of 1/2 to 2. Adversarial matrices to pseudo-invert have rank 1, 2 or 3.

A matrix counts as singular, and its inverse is not compared, if rounding could change its determinant by a
thousandth; its pseudo-inverse is compared while |P| |A| is below a million. The entries of determinants are so large
that no product of two underflows: after an underflow, large factors would make the error unbounded. For the same
reason no angle is denormal. No matrix that is converted to a quaternion mirrors.

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
}  // namespace accuracy

int main(int i_count, char** ip_words) {
  using namespace accuracy;
  std::size_t const inputs = i_count > 1 ? std::strtoul(ip_words[1], nullptr, 10) : 1000000;
  for (Kind const kind : {Kind::kUniform, Kind::kAdversarial}) {
    MeasureAll<float>("float", kind, inputs);
    MeasureAll<double>("double", kind, inputs);
    MeasureQuaternions(Inputs<float>(kind), inputs);
    MeasureInterpolations(Inputs<double>(kind), inputs);
    MeasureVectors(kind, inputs);
    MeasureArrays(kind, inputs);
    MeasureConversions(kind, inputs);
    MeasureDecompositions(kind, inputs);
  }
  bool const is_within = Print();
  PrintChains();
  if (is_within) return 0;
  std::fputs("accuracy: an error exceeds its bound\n", stderr);
  return 1;
}
