#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>
#include <span>
#include <type_traits>
#include <utility>
#include <vector>

#include "extras/Layout.h"
#include "tests/support/MovedFrom.h"
#include "tests/support/Values.h"

namespace lum {
namespace {

using test::AreSameBits;
using test::InverseValuesOf;
using test::MakeRandomValues;
using test::Values;
using test::ValuesOf;

template <class Source>
concept MakesAMatrix = requires(Source const& i_source) {
  FromRowMajor(i_source);
};
static_assert(MakesAMatrix<std::array<float, 16>>);
static_assert(MakesAMatrix<double[16]>);
static_assert(MakesAMatrix<float[4][4]>);
static_assert(!MakesAMatrix<std::array<float, 12>>);
static_assert(!MakesAMatrix<float[12]>);
static_assert(!MakesAMatrix<float[3][4]>);
static_assert(!MakesAMatrix<std::vector<float>>, "only arrays of 16 values");
static_assert(!MakesAMatrix<float const*>, "only arrays of 16 values");
static_assert(std::is_same_v<decltype(FromRowMajor(std::array<double, 16>())), Matrix<double>>);

template <class Source>
concept MakesAMatrixOfColumns = requires(Source const& i_source) {
  FromColumnMajor(i_source);
};
static_assert(MakesAMatrixOfColumns<std::array<float, 16>> && MakesAMatrixOfColumns<double[16]>);
static_assert(!MakesAMatrixOfColumns<std::array<float, 12>> && !MakesAMatrixOfColumns<float[9]> &&
              !MakesAMatrixOfColumns<double[17]> && !MakesAMatrixOfColumns<std::vector<float>> &&
              !MakesAMatrixOfColumns<float const*>);

template <class Source>
concept IsWLast = requires(Source const& i_source) {
  QuaternionFromWLast(i_source);
};
template <class Source>
concept IsWFirst = requires(Source const& i_source) {
  QuaternionFromWFirst(i_source);
};
static_assert(IsWLast<std::array<float, 4>> && IsWFirst<float[4]>);
static_assert(!IsWLast<std::array<float, 3>> && !IsWLast<float[5]> && !IsWLast<double[4]> &&
              !IsWLast<float const*>);
static_assert(!IsWFirst<std::array<float, 3>> && !IsWFirst<float[5]> && !IsWFirst<double[4]> &&
              !IsWFirst<float const*>);

Values<float> MakeTranslationByRows() {
  return {1, 0, 0, 5,  //
          0, 1, 0, 6,  //
          0, 0, 1, 7,  //
          0, 0, 0, 1};
}

TEST(Layout, RowsComeFirstInRowMajorOrder) {
  auto const matrix = FromRowMajor(MakeTranslationByRows());
  EXPECT_EQ(ValuesOf(matrix), ValuesOf(Matrix<float>::Translate(5, 6, 7)));
  EXPECT_EQ(InverseValuesOf(matrix), InverseValuesOf(Matrix<float>::Translate(5, 6, 7)));
  EXPECT_EQ(ToRowMajor(matrix), MakeTranslationByRows());
  EXPECT_EQ(ToRowMajor(Matrix<double>::Translate(5, 6, 7))[7], 6);
}

TEST(Layout, ColumnsComeFirstInColumnMajorOrder) {
  EXPECT_EQ(ToColumnMajor(Matrix<float>::Translate(5, 6, 7)),
            (Values<float>{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1}));
  Values<double> values;
  std::iota(values.begin(), values.end(), 1);
  auto const matrix = FromColumnMajor(values);
  EXPECT_EQ(matrix(0, 1), 5);
  EXPECT_EQ(matrix(3, 0), 4);
  EXPECT_EQ(FromRowMajor(values)(0, 1), 2);
  EXPECT_EQ(FromRowMajor(values)(3, 0), 13);
}

TEST(Layout, TakesRowsOfRows) {
  double const rows[4][4] = {{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}, {13, 14, 15, 16}};
  auto const matrix = FromRowMajor(rows);
  for (int row = 0; row < 4; ++row) {
    for (int column = 0; column < 4; ++column) EXPECT_EQ(matrix(row, column), rows[row][column]);
  }
}

TEST(Layout, TakesValuesOfASpan) {
  std::vector<float> numbers(20, 0.0F);
  auto const values = MakeTranslationByRows();
  std::copy(values.begin(), values.end(), numbers.begin() + 3);
  EXPECT_EQ(FromRowMajor(std::span<float const, 16>(numbers.data() + 3, 16)), FromRowMajor(values));
}

template <class T>
void ExpectRoundTripsToKeepTheBits() {
  constexpr unsigned seed = 32;
  std::mt19937 random(seed);
  for (int i = 0; i < 100; ++i) {
    auto values = MakeRandomValues<T>(random);
    values[random() % 16] = -T(0);
    values[random() % 16] = -std::numeric_limits<T>::quiet_NaN();
    EXPECT_TRUE(AreSameBits(ToRowMajor(FromRowMajor(values)), values)) << "seed " << seed;
    EXPECT_TRUE(AreSameBits(ToColumnMajor(FromColumnMajor(values)), values)) << "seed " << seed;
    EXPECT_TRUE(AreSameBits(ValuesOf(FromColumnMajor(values)), values)) << "seed " << seed;
  }
}

TEST(Layout, RoundTripsKeepTheBits) {
  ExpectRoundTripsToKeepTheBits<float>();
  ExpectRoundTripsToKeepTheBits<double>();
}

TEST(Layout, QuaternionsPassInEitherOrder) {
  using Numbers = std::array<float, 4>;
  Numbers const xyzw{1, 2, 3, 4};
  Numbers const wxyz{4, 1, 2, 3};
  EXPECT_EQ(QuaternionFromWFirst(wxyz).GetCoefficients(), xyzw);
  EXPECT_EQ(QuaternionFromWFirst(4, 1, 2, 3).GetCoefficients(), xyzw);
  EXPECT_EQ(QuaternionFromWLast(xyzw).GetCoefficients(), xyzw);
  EXPECT_EQ(QuaternionFromWLast(1, 2, 3, 4).GetCoefficients(), xyzw);
  EXPECT_EQ(ToWFirst(QuaternionFromWLast(xyzw)), wxyz);
  EXPECT_EQ(ToWLast(QuaternionFromWFirst(wxyz)), xyzw);
}

TEST(Layout, AQuaternionWithTheIdentitysCoefficientsIsNotKnown) {
  EXPECT_FALSE(QuaternionFromWFirst(1, 0, 0, 0).IsKnownIdentity());
  EXPECT_EQ(ToWFirst(Quaternionf()), (std::array<float, 4>{1, 0, 0, 0}));
}

TEST(Layout, AMatrixWithTheIdentitysValuesIsNotKnown) {
  auto const matrix = FromRowMajor(ToRowMajor(Matrix<float>()));
  EXPECT_EQ(matrix, Matrix<float>());
  EXPECT_FALSE(matrix.IsKnownIdentity());
}

TEST(Layout, AMatrixWithoutInverseComesBackWithOneThatIsNotFinite) {
  auto const flat = Matrix<double>::Scale(1, 1, 0);
  ASSERT_FALSE(flat.HasInverse());
  for (auto const& back : {FromRowMajor(ToRowMajor(flat)), FromColumnMajor(ToColumnMajor(flat))}) {
    EXPECT_EQ(back, flat);
    EXPECT_FALSE(std::isfinite(InverseValuesOf(back)[10]));
  }
}

#ifndef NDEBUG
TEST(LayoutDeathTest, AssertionsCatchAMovedFromValue) {
  auto const matrix = test::MovedFrom(Matrix<float>::Scale(2));
  auto const quaternion = test::MovedFrom(Quaternionf({0, 0, 1}, 1));
  EXPECT_DEATH(ToColumnMajor(matrix), "Assertion");
  EXPECT_DEATH(ToRowMajor(matrix), "Assertion");
  EXPECT_DEATH(ToWFirst(quaternion), "Assertion");
  EXPECT_DEATH(ToWLast(quaternion), "Assertion");
}
#endif

}  // namespace
}  // namespace lum
