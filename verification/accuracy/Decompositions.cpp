// The two operations that go through a singular value decomposition. The number of its sweeps depends on the
// input, so their bounds do not follow from an order of operations. They are at least twice the errors
// measured.

#include <geometry/Matrix.h>
#include <geometry/PseudoInverse.h>
#include <geometry/Quaternion.h>

#include "Measure.h"

namespace accuracy {
namespace {

using lum::Quaternionf;
using Block = std::array<Exact, 9>;

Exact GetNorm(Block const& i_block) {
  Exact square;
  for (Exact const& value : i_block) square += value * value;
  return Sqrt(square);
}

// i_a times i_b, both column by column; i_a has i_rows rows, i_b has i_columns columns.
std::vector<Exact> Multiply(std::vector<Exact> const& i_a, std::vector<Exact> const& i_b, std::size_t i_rows,
                            std::size_t i_columns) {
  std::size_t const inner = i_a.size() / i_rows;
  std::vector<Exact> product(i_rows * i_columns);
  for (std::size_t row = 0; row < i_rows; ++row) {
    for (std::size_t column = 0; column < i_columns; ++column) {
      for (std::size_t k = 0; k < inner; ++k)
        product[row + i_rows * column] += i_a[row + i_rows * k] * i_b[k + inner * column];
    }
  }
  return product;
}

// The orthogonal factor of the polar decomposition, by Newton's iteration (Higham, Computing the Polar
// Decomposition, 1986).
Block GetPolarFactor(Block i_block) {
  for (int step = 0; step < 100; ++step) {
    Block const inverse = Invert(i_block).values;
    Exact change;
    for (std::size_t row = 0; row < 3; ++row) {
      for (std::size_t column = 0; column < 3; ++column) {
        Exact& value = i_block[row + 3 * column];
        Exact const next = (value + inverse[column + 3 * row]) / Exact(2);
        change += Abs(next - value);
        value = next;
      }
    }
    if (change < Exact(1e-40)) break;
  }
  return i_block;
}

// The blocks scale by 1/2 to 2 along each axis of another frame; adversarial ones by 1/64 to 64, and rotate
// by nearly a multiple of a quarter turn. None of them mirrors.
void MeasureQuaternionsOfMatrices(Inputs<float> io_inputs, std::size_t i_inputs) {
  int const reach = io_inputs.IsAdversarial() ? 6 : 1;
  auto const factor = [&] {
    return std::exp2(std::uniform_real_distribution<float>(static_cast<float>(-reach),
                                                           static_cast<float>(reach))(io_inputs.GetRandom()));
  };
  for (std::size_t done = 0; done < i_inputs; done += 4) {
    auto const frame = lum::Matrix<float>::Rotate(io_inputs.Direction(), 1);
    lum::Vector<float, 3> const axis = io_inputs.Direction();
    std::array<float, 3> const factors{factor(), factor(), factor()};
    auto const scale = lum::Matrix<float>::Scale(factors[0], factors[1], factors[2]);
    auto const matrix = lum::Matrix<float>::Translate(1, 2, 3) *
                        lum::Matrix<float>::Rotate(axis, io_inputs.Angle()) * frame * scale *
                        frame.GetInverse();
    std::array<float, 4> const values = Quaternionf(matrix).GetCoefficients();
    Block block;
    for (std::size_t i = 0; i < 9; ++i) block[i] = ToExact(matrix.GetAsPtr()[i + i / 3]);
    Block const r = GetPolarFactor(block);
    // Four times the products of two coefficients. The row of the largest square gives all four.
    std::array<std::array<Exact, 4>, 4> products;
    for (std::size_t i = 0; i < 3; ++i) {
      std::size_t const j = (i + 1) % 3;
      std::size_t const k = (i + 2) % 3;
      products[i][i] = Exact(1) + r[4 * i] - r[4 * j] - r[4 * k];
      products[i][j] = products[j][i] = r[i + 3 * j] + r[j + 3 * i];
      products[3][i] = products[i][3] = r[k + 3 * j] - r[j + 3 * k];
    }
    products[3][3] = Exact(1) + r[0] + r[4] + r[8];
    std::size_t largest = 0;
    for (std::size_t i = 1; i < 4; ++i) {
      if (products[largest][largest] < products[i][i]) largest = i;
    }
    Exact const divisor = Exact(values[largest] < 0 ? -2 : 2) * Sqrt(products[largest][largest]);
    // A change of the block changes its polar factor by this much, relative to the change of the block.
    Exact const terms = GetNorm(block) * GetNorm(Invert(block).values);
    for (std::size_t i = 0; i < 4; ++i) {
      Compare("Quaternionf from matrix, each coefficient", io_inputs.GetName(), 8, values[i],
              products[largest][i] / divisor, terms);
    }
  }
}

void ComparePseudoInverse(char const* ip_kind, Eigen::Matrix3d const& i_matrix, double i_tolerance,
                          Block const& i_exact) {
  Block matrix;
  for (std::size_t i = 0; i < 9; ++i) matrix[i] = ToExact(i_matrix.data()[i]);
  Exact const norm = GetNorm(i_exact);
  Exact const terms = norm * norm * GetNorm(matrix);
  lum::PseudoInverseResult const result = lum::CalculatePseudoInverse(i_matrix, i_tolerance);
  for (std::size_t i = 0; i < 9; ++i) {
    Compare("double CalculatePseudoInverse, each entry", ip_kind, 12, result.pseudoInverse.data()[i],
            i_exact[i], terms);
  }
}

// Uniform matrices have full rank. Of the adversarial ones, a third is nearly singular; the others have rank
// 1 or 2 exactly, since they are products of small integers.
void MeasurePseudoInverses(Inputs<double> io_inputs, std::size_t i_inputs) {
  for (std::size_t done = 0; done < i_inputs;) {
    Eigen::Matrix3d matrix;
    Block exact;
    double tolerance = std::numeric_limits<double>::min();
    std::size_t const rank = io_inputs.IsAdversarial() ? 1 + io_inputs.GetRandom()() % 3 : 3;
    if (rank == 3) {
      for (int i = 0; i < 9; ++i)
        matrix.data()[i] = std::uniform_real_distribution<double>(-1, 1)(io_inputs.GetRandom());
      if (io_inputs.IsAdversarial()) matrix.col(2) = matrix.col(0) + matrix.col(1) + matrix.col(2) * 0x1p-10;
      Block values;
      for (std::size_t i = 0; i < 9; ++i) values[i] = ToExact(matrix.data()[i]);
      exact = Invert(values).values;
      // So nearly singular that the bound of the first order does not hold.
      if (!(GetNorm(values).ToDouble() * GetNorm(exact).ToDouble() < 1e6)) continue;
    } else {
      auto const take = [&](std::size_t i_count) {
        std::vector<Exact> factor(i_count);
        for (Exact& value : factor) value = Exact(static_cast<double>(io_inputs.GetRandom()() % 21) - 10);
        return factor;
      };
      std::vector<Exact> const tall = take(3 * rank);  // 3 rows
      std::vector<Exact> const wide = take(3 * rank);  // 3 columns
      auto const transpose = [&](std::vector<Exact> const& i_factor, std::size_t i_rows) {
        std::size_t const columns = i_factor.size() / i_rows;
        std::vector<Exact> transposed(i_factor.size());
        for (std::size_t row = 0; row < i_rows; ++row) {
          for (std::size_t column = 0; column < columns; ++column)
            transposed[column + columns * row] = i_factor[row + i_rows * column];
        }
        return transposed;
      };
      // The inverse of a 1x1 or 2x2 Gram matrix; empty if it is singular.
      auto const invert = [&](std::vector<Exact> const& i_gram) -> std::vector<Exact> {
        if (rank == 1)
          return i_gram[0].IsZero() ? std::vector<Exact>() : std::vector<Exact>{Exact(1) / i_gram[0]};
        Exact const determinant = i_gram[0] * i_gram[3] - i_gram[1] * i_gram[2];
        if (determinant.IsZero()) return {};
        return {i_gram[3] / determinant, -i_gram[1] / determinant, -i_gram[2] / determinant,
                i_gram[0] / determinant};
      };
      std::vector<Exact> const tall_gram = invert(Multiply(transpose(tall, 3), tall, rank, rank));
      std::vector<Exact> const wide_gram = invert(Multiply(wide, transpose(wide, rank), rank, rank));
      if (tall_gram.empty() || wide_gram.empty()) continue;
      std::vector<Exact> const product = Multiply(tall, wide, 3, 3);
      std::vector<Exact> const left = Multiply(transpose(wide, rank), wide_gram, 3, rank);
      std::vector<Exact> const right = Multiply(tall_gram, transpose(tall, 3), rank, 3);
      std::vector<Exact> const pseudo_inverse = Multiply(left, right, 3, 3);
      for (std::size_t i = 0; i < 9; ++i) {
        matrix.data()[i] = product[i].ToDouble();
        exact[i] = pseudo_inverse[i];
      }
      tolerance = 1e-9;
    }
    done += 9;
    ComparePseudoInverse(io_inputs.GetName(), matrix, tolerance, exact);
  }
}

}  // namespace

void MeasureDecompositions(Kind i_kind, std::size_t i_inputs) {
  MeasureQuaternionsOfMatrices(Inputs<float>(i_kind), i_inputs);
  MeasurePseudoInverses(Inputs<double>(i_kind), i_inputs);
}

}  // namespace accuracy
