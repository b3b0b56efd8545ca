#include <gtest/gtest.h>

#include <Eigen/Geometry>
#include <Eigen/LU>
#include <Eigen/SVD>
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

#include "geometry/PseudoInverse.h"

namespace lum {
namespace {

using Eigen::Matrix3d;
using Extended = Eigen::Matrix<long double, 3, 3>;

constexpr double infinity = std::numeric_limits<double>::infinity();

Matrix3d Diagonal(double i_x, double i_y, double i_z) { return Eigen::Vector3d(i_x, i_y, i_z).asDiagonal(); }

bool IsNaN(Matrix3d const& i_matrix) {
  return std::all_of(i_matrix.data(), i_matrix.data() + 9,
                     [](double i_value) { return std::isnan(i_value); });
}

class Random {
 public:
  explicit Random(unsigned i_seed) : m_random(i_seed) {}

  double Number(double i_lower, double i_upper) {
    return std::uniform_real_distribution<double>(i_lower, i_upper)(m_random);
  }
  Matrix3d Rotation() {
    Eigen::Quaterniond const quaternion(Number(-1, 1), Number(-1, 1), Number(-1, 1), Number(-1, 1));
    return quaternion.normalized().toRotationMatrix();
  }
  // `i_rank` singular values are between 1/2 and 2, the others 0 up to rounding.
  Matrix3d OfRank(int i_rank) {
    Eigen::Vector3d values(0, 0, 0);
    for (int i = 0; i < i_rank; ++i) values[i] = Number(0.5, 2);
    return Rotation() * values.asDiagonal() * Rotation();
  }

 private:
  std::mt19937 m_random;
};

// The same decomposition with a mantissa of 64 bits.
Matrix3d PseudoInverseInExtendedPrecision(Matrix3d const& i_matrix, double i_tolerance) {
  Eigen::JacobiSVD<Extended> const svd(i_matrix.cast<long double>(),
                                       Eigen::ComputeFullU | Eigen::ComputeFullV);
  Extended sum = Extended::Zero();
  for (int i = 0; i < 3; ++i) {
    long double const value = svd.singularValues()[i];
    if (value >= static_cast<long double>(i_tolerance)) {
      sum += svd.matrixV().col(i) * svd.matrixU().col(i).transpose() / value;
    }
  }
  return sum.cast<double>();
}

TEST(PseudoInverse, OfTheIdentityIsTheIdentity) {
  auto const [inverse, rank] = CalculatePseudoInverse(Matrix3d::Identity(), 1e-9);
  EXPECT_EQ(inverse, Matrix3d::Identity());
  EXPECT_EQ(rank, 3);
}

TEST(PseudoInverse, OfAMatrixWithAZeroRow) {
  Matrix3d matrix;
  matrix << 2, 0, 0, 0, 0, 0, 0, 0, -4;
  Matrix3d expected;
  expected << 0.5, 0, 0, 0, 0, 0, 0, 0, -0.25;
  auto const [inverse, rank] = CalculatePseudoInverse(matrix, 1e-9);
  EXPECT_EQ(inverse, expected);
  EXPECT_EQ(rank, 2);

  matrix << 1, 2, 3, 0, 0, 0, 4, 5, 6;
  PseudoInverseResult const full_rows = CalculatePseudoInverse(matrix, 1e-9);
  EXPECT_EQ(full_rows.rank, 2);
  Matrix3d const projection = Diagonal(1, 0, 1);
  EXPECT_LT((matrix * full_rows.pseudoInverse - projection).norm(), 1e-14)
      << "a right inverse on the rows that are not zero";
}

TEST(PseudoInverse, InversionAndRankUseDifferentThresholds) {
  auto const [inverse, rank] = CalculatePseudoInverse(Diagonal(100, 0.5, 0.001), 0.01);
  EXPECT_EQ(inverse, Diagonal(1 / 100.0, 2, 0)) << "100 and 0.5 are at least 0.01";
  EXPECT_EQ(rank, 1) << "0.5 and 0.001 are less than 100 times 0.01";
}

TEST(PseudoInverse, AValueOfExactlyTheToleranceIsInvertedAndCounts) {
  auto const [inverse, rank] = CalculatePseudoInverse(Diagonal(1, 0.25, 0.125), 0.25);
  EXPECT_EQ(inverse, Diagonal(1, 4, 0));
  EXPECT_EQ(rank, 2);
}

TEST(PseudoInverse, OfZeroIsZero) {
  for (double const tolerance : {1e-300, 1e-9, 1.0, infinity}) {
    auto const [inverse, rank] = CalculatePseudoInverse(Matrix3d::Zero(), tolerance);
    EXPECT_EQ(inverse, Matrix3d::Zero());
    EXPECT_EQ(rank, 0);
  }
}

TEST(PseudoInverse, WithoutAPositiveToleranceZeroIsInvertedToo) {
  for (double const tolerance : {0.0, -1.0}) {
    auto const [inverse, rank] = CalculatePseudoInverse(Diagonal(2, 1, 0), tolerance);
    EXPECT_FALSE(inverse.allFinite());
    EXPECT_EQ(rank, 2) << "a value of exactly 0 never counts";
    EXPECT_EQ(CalculatePseudoInverse(Matrix3d::Zero(), tolerance).rank, 0);
  }
}

// The threshold of the rank has no lower bound; newer versions of Eigen use the smallest normal number.
TEST(PseudoInverse, SmallMatricesKeepTheirRank) {
  double const least = std::numeric_limits<double>::min();
  EXPECT_EQ(CalculatePseudoInverse(Diagonal(least / 2, least / 4, least / 8), 1e-9).rank, 3);
  EXPECT_EQ(CalculatePseudoInverse(Diagonal(1, 1e-310, 0), 0).rank, 2);
  EXPECT_EQ(CalculatePseudoInverse(Diagonal(1e-200, 1e-205, 0), 1e-6).rank, 2);
  EXPECT_EQ(CalculatePseudoInverse(Diagonal(1e-200, 1e-207, 0), 1e-6).rank, 1);
}

TEST(PseudoInverse, ANaNToleranceInvertsNothingAndCountsWhatIsNotZero) {
  auto const [inverse, rank] = CalculatePseudoInverse(Diagonal(3, 2, 0), std::nan(""));
  EXPECT_EQ(inverse, Matrix3d::Zero());
  EXPECT_EQ(rank, 2);
}

TEST(PseudoInverse, AMatrixThatIsNotFiniteGivesNaNsAndRankZero) {
  for (double const value : {std::nan(""), infinity, -infinity}) {
    for (int place = 0; place < 9; ++place) {
      Matrix3d matrix = Matrix3d::Identity();
      matrix.data()[place] = value;
      auto const [inverse, rank] = CalculatePseudoInverse(matrix, 1e-9);
      EXPECT_TRUE(IsNaN(inverse)) << value << " at " << place;
      EXPECT_EQ(rank, 0);
    }
  }
}

TEST(PseudoInverse, HugeAndTinyMatricesAreInverted) {
  for (double const scale : {1e300, 1e-300}) {
    auto const [inverse, rank] = CalculatePseudoInverse(Diagonal(2 * scale, scale, -scale), scale / 10);
    EXPECT_EQ(rank, scale > 1 ? 0 : 3)
        << "the tolerance is relative to the largest singular value for the rank";
    EXPECT_LT((inverse * scale - Diagonal(0.5, 1, -1)).norm(), 1e-14);
  }
}

// A P A = A, P A P = P, and A P and P A are symmetric: these four define the pseudo-inverse.
TEST(PseudoInverse, MeetsThePenroseConditionsAtEveryRank) {
  constexpr unsigned seed = 20261121;
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  Random random(seed);
  for (int rank = 0; rank <= 3; ++rank) {
    for (int round = 0; round < 500; ++round) {
      Matrix3d const a = random.OfRank(rank);
      auto const [p, found] = CalculatePseudoInverse(a, 1e-9);
      ASSERT_EQ(found, rank);
      ASSERT_LT((a * p * a - a).norm(), 1e-14);
      ASSERT_LT((p * a * p - p).norm(), 1e-14);
      ASSERT_LT((a * p - (a * p).transpose()).norm(), 1e-14);
      ASSERT_LT((p * a - (p * a).transpose()).norm(), 1e-14);
    }
  }
}

TEST(PseudoInverse, AgreesWithExtendedPrecision) {
  constexpr unsigned seed = 4711;
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  Random random(seed);
  for (int rank = 0; rank <= 3; ++rank) {
    for (int round = 0; round < 500; ++round) {
      Matrix3d const a = random.OfRank(rank);
      Matrix3d const expected = PseudoInverseInExtendedPrecision(a, 1e-9);
      ASSERT_LT((CalculatePseudoInverse(a, 1e-9).pseudoInverse - expected).cwiseAbs().maxCoeff(), 1e-14);
    }
  }
}

// The matrices are badly conditioned. By perturbation theory the error grows with the square of the largest
// inverted singular value.
TEST(PseudoInverse, AgreesWithExtendedPrecisionWhereSingularValuesSpread) {
  constexpr unsigned seed = 815;
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  Random random(seed);
  for (int round = 0; round < 1000; ++round) {
    double const middle = std::pow(10, random.Number(-3, 0));
    double const least = middle * std::pow(10, random.Number(-3, 0));
    Matrix3d const a = random.Rotation() * Diagonal(1, middle, least) * random.Rotation();
    PseudoInverseResult const result = CalculatePseudoInverse(a, 1e-12);
    ASSERT_EQ(result.rank, 3);
    Matrix3d const expected = PseudoInverseInExtendedPrecision(a, 1e-12);
    ASSERT_LT((result.pseudoInverse - expected).norm(), 1e-14 / (least * least));
    ASSERT_LT((result.pseudoInverse - a.inverse()).norm(), 1e-13 / (least * least));
  }
}

}  // namespace
}  // namespace lum
