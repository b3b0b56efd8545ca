// Conversions between rotations: from axis and angle to a quaternion, from a quaternion to a matrix, and the
// inverse rotation, which inverts that matrix.

#include <geometry/Matrix.h>
#include <geometry/Quaternion.h>

#include "Measure.h"

namespace accuracy {
namespace {

using lum::Quaternionf;

void MeasureAxisAndAngle(Inputs<float> io_inputs, std::size_t i_inputs) {
  for (std::size_t done = 0; done < i_inputs; done += 4) {
    lum::Vector<float, 3> const axis{io_inputs.Number(), io_inputs.Number(), io_inputs.Number()};
    float const angle = io_inputs.Angle();
    std::array<float, 4> const values = Quaternionf(axis, angle).GetCoefficients();
    Exact const half = ToExact(angle) / Exact(2);
    for (std::size_t i = 0; i < 4; ++i) {
      Exact const exact = i == 3 ? Cos(half) : ToExact(axis[i]) * Sin(half);
      Compare("Quaternionf from axis and angle, each coefficient", io_inputs.GetName(), 3, values[i], exact,
              Abs(exact));
    }
  }
}

// The entries of the matrix of a quaternion, column by column.
std::array<Sum, 9> GetEntries(std::array<float, 4> const& i_quaternion) {
  std::array<Sum, 9> entries;
  auto const product = [&](std::size_t i_a, std::size_t i_b) {
    return Exact(2) * ToExact(i_quaternion[i_a]) * ToExact(i_quaternion[i_b]);
  };
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t column = 0; column < 3; ++column) {
      Sum& entry = entries[row + 3 * column];
      if (row == column) {
        entry.Add(Exact(1));
        entry.Add(-product((row + 1) % 3, (row + 1) % 3));
        entry.Add(-product((row + 2) % 3, (row + 2) % 3));
      } else {
        Exact const turn = product(3, 3 - row - column);
        entry.Add(product(row, column));
        entry.Add((column + 1) % 3 == row ? turn : -turn);
      }
    }
  }
  return entries;
}

void MeasureMatrices(Inputs<float> io_inputs, std::size_t i_inputs) {
  for (std::size_t done = 0; done < i_inputs; done += 9) {
    // Adversarial quaternions are not of unit length.
    lum::Vector<float, 3> axis = io_inputs.Direction();
    if (io_inputs.IsAdversarial()) axis = {io_inputs.Number(), io_inputs.Number(), io_inputs.Number()};
    Quaternionf const rotation(axis, io_inputs.Angle());
    lum::Matrix<float> const matrix = rotation.GetAsMatrix();
    std::array<Sum, 9> const entries = GetEntries(rotation.GetCoefficients());
    for (std::size_t row = 0; row < 3; ++row) {
      for (std::size_t column = 0; column < 3; ++column) {
        Sum const& exact = entries[row + 3 * column];
        Compare("Quaternionf GetAsMatrix, each entry", io_inputs.GetName(), 3,
                matrix.GetAsPtr()[row + 4 * column], exact.value, exact.terms);
      }
    }
  }
}

// The rounding errors of the entries pass through the inverse, which adds its own and is then applied.
void MeasureInverseRotations(Inputs<float> io_inputs, std::size_t i_inputs) {
  for (std::size_t done = 0; done < i_inputs; done += 3) {
    Quaternionf const rotation{io_inputs.Direction(), io_inputs.Angle()};
    lum::Vector<float, 3> const v{io_inputs.Number(), io_inputs.Number(), io_inputs.Number()};
    lum::Vector<float, 3> const image = rotation.InverseTransform(v);
    std::array<Sum, 9> const entries = GetEntries(rotation.GetCoefficients());
    std::array<Exact, 9> values;
    for (std::size_t i = 0; i < 9; ++i) values[i] = entries[i].value;
    ExactInverse const inverse = Invert(values);
    for (std::size_t row = 0; row < 3; ++row) {
      Sum sum;
      Exact terms;
      for (std::size_t column = 0; column < 3; ++column) {
        Exact const size = Abs(ToExact(v[column]));
        sum.Add(inverse.values[row + 3 * column] * ToExact(v[column]));
        terms += inverse.terms[row + 3 * column] * size;
        for (std::size_t i = 0; i < 3; ++i) {
          for (std::size_t j = 0; j < 3; ++j) {
            terms += Abs(inverse.values[row + 3 * i] * inverse.values[j + 3 * column]) *
                     entries[i + 3 * j].terms * size;
          }
        }
      }
      Compare("Quaternionf InverseTransform, each component", io_inputs.GetName(), 10, image[row], sum.value,
              sum.terms + terms);
    }
  }
}

}  // namespace

ExactInverse Invert(std::array<Exact, 9> const& i_values) {
  auto const at = [&](std::size_t i_row, std::size_t i_column) -> Exact const& {
    return i_values[i_row % 3 + 3 * (i_column % 3)];
  };
  // Cyclic indices give cofactors the right sign.
  std::array<Sum, 9> cofactors;
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t column = 0; column < 3; ++column) {
      Sum& cofactor = cofactors[row + 3 * column];
      cofactor.Add(at(row + 1, column + 1) * at(row + 2, column + 2));
      cofactor.Add(-(at(row + 1, column + 2) * at(row + 2, column + 1)));
    }
  }
  Sum determinant;
  for (std::size_t row = 0; row < 3; ++row) {
    determinant.value += at(row, 0) * cofactors[row].value;
    determinant.terms += Abs(at(row, 0)) * cofactors[row].terms;
  }
  Exact const size = Abs(determinant.value);
  ExactInverse inverse;
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t column = 0; column < 3; ++column) {
      Sum const& cofactor = cofactors[column + 3 * row];
      Exact const value = cofactor.value / determinant.value;
      inverse.values[row + 3 * column] = value;
      inverse.terms[row + 3 * column] = (cofactor.terms + Abs(value) * determinant.terms) / size;
    }
  }
  return inverse;
}

void MeasureConversions(Kind i_kind, std::size_t i_inputs) {
  MeasureAxisAndAngle(Inputs<float>(i_kind), i_inputs);
  MeasureMatrices(Inputs<float>(i_kind), i_inputs);
  MeasureInverseRotations(Inputs<float>(i_kind), i_inputs);
}

}  // namespace accuracy
