#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <random>
#include <span>
#include <stdexcept>
#include <vector>

#include "geometry/Matrix.h"
#include "geometry/internal/Lanes.h"
#include "tests/support/Precisions.h"
#include "tests/support/Throws.h"

namespace lum {
namespace {

constexpr char const* message = "arrays to transform from and to must be of the same size";

// Whether the bits are the same, and NaNs in the same places: the processor chooses the sign of a NaN.
template <class Value>
bool IsSame(Value const& i_actual, Value const& i_expected) {
  return std::equal(i_actual.begin(), i_actual.end(), i_expected.begin(), [](auto i_one, auto i_other) {
    return std::isnan(i_other) ? std::isnan(i_one)
                               : i_one == i_other && std::signbit(i_one) == std::signbit(i_other);
  });
}

template <class T>
class TransformArrays : public test::PrecisionTest<T> {
 protected:
  // Random numbers, among them zeros of both signs, infinities, the largest and the least positive number.
  template <class Value>
  std::vector<Value> Make(std::size_t i_count) {
    constexpr T huge = std::numeric_limits<T>::max();
    constexpr std::array<T, 6> special = {
        0, -T(0), test::PrecisionTest<T>::infinity, huge, std::numeric_limits<T>::denorm_min(), 1};
    std::uniform_real_distribution<T> uniform(-10, 10);
    auto const number = [&] {
      auto const choice = m_random() % 40;
      return choice < special.size() ? special[choice] : uniform(m_random);
    };
    std::vector<Value> values;
    while (values.size() < i_count) values.push_back(Value(number(), number(), number()));
    return values;
  }

  std::vector<Matrix<T>> MakeMatrices() {
    std::array<T, 16> values{};
    std::uniform_real_distribution<T> uniform(-2, 2);
    for (T& value : values) value = uniform(m_random);
    return {Matrix<T>(values.data()), Matrix<T>::Translate(1, -2, this->infinity),
            Matrix<T>::Scale(-T(0), 2, 3),
            Matrix<T>::Rotate(Vector<T, 3>(0, 0, 1), T(0.3)) * Matrix<T>::Translate(1, 2, 3), Matrix<T>()};
  }

  template <class Value>
  static void ExpectSame(Value const& i_actual, Value const& i_expected) {
    EXPECT_TRUE(IsSame(i_actual, i_expected))
        << "seed " << kSeed << ": " << i_actual[0] << ' ' << i_actual[1] << ' ' << i_actual[2] << " is not "
        << i_expected[0] << ' ' << i_expected[1] << ' ' << i_expected[2];
  }

  static constexpr unsigned kSeed = 20261123;
  std::mt19937 m_random{kSeed};
};
TYPED_TEST_SUITE(TransformArrays, test::Precisions);

TYPED_TEST(TransformArrays, GiveTheBitsOfTheSingleProduct) {
  using P = Point<TypeParam, 3>;
  using V = Vector<TypeParam, 3>;
  for (Matrix<TypeParam> const& matrix : this->MakeMatrices()) {
    for (std::size_t count = 0; count < 20; ++count) {
      auto const points = this->template Make<P>(count);
      std::vector<P> images(count);
      TransformPoints(matrix, points, images);
      for (std::size_t i = 0; i < count; ++i) this->ExpectSame(images[i], matrix * points[i]);
      auto const vectors = this->template Make<V>(count);
      std::vector<V> turned(count);
      TransformVectors(matrix, vectors, turned);
      for (std::size_t i = 0; i < count; ++i) this->ExpectSame(turned[i], matrix * vectors[i]);
    }
  }
}

TYPED_TEST(TransformArrays, MayBeTransformedInPlace) {
  using P = Point<TypeParam, 3>;
  using V = Vector<TypeParam, 3>;
  for (Matrix<TypeParam> const& matrix : this->MakeMatrices()) {
    auto points = this->template Make<P>(23);
    auto const before = points;
    TransformPoints(matrix, points, points);
    for (std::size_t i = 0; i < points.size(); ++i) this->ExpectSame(points[i], matrix * before[i]);
    auto vectors = this->template Make<V>(23);
    auto const first = vectors;
    TransformVectors(matrix, vectors, vectors);
    for (std::size_t i = 0; i < vectors.size(); ++i) this->ExpectSame(vectors[i], matrix * first[i]);
  }
}

TYPED_TEST(TransformArrays, WriteNothingBeyondTheirEnds) {
  using P = Point<TypeParam, 3>;
  auto const matrix = Matrix<TypeParam>::Scale(2);
  for (std::size_t count = 0; count < 10; ++count) {
    auto const points = this->template Make<P>(count);
    P const guard(7, 8, 9);
    std::vector<P> images(count + 2, guard);
    TransformPoints(matrix, points, std::span(images).subspan(1, count));
    EXPECT_EQ(images.front(), guard);
    EXPECT_EQ(images.back(), guard);
  }
}

// Arrays larger than the caches are written by non-temporal stores, from the first aligned element on.
TYPED_TEST(TransformArrays, GiveTheSameBitsWithNonTemporalStores) {
  using P = Point<TypeParam, 3>;
  constexpr std::size_t count = internal::kStreamedBytes / sizeof(P) + 1;
  auto const matrix = this->MakeMatrices().front();
  auto const pattern = this->template Make<P>(1000);
  std::vector<P> expected(pattern.size());
  TransformPoints(matrix, pattern, expected);
  std::vector<P> points;
  while (points.size() < count) points.push_back(pattern[points.size() % pattern.size()]);
  auto const count_differing = [&expected](std::span<P const> i_images) {
    std::size_t differing = 0;
    for (std::size_t i = 0; i < i_images.size(); ++i)
      differing += !IsSame(i_images[i], expected[i % expected.size()]);
    return differing;
  };
  for (std::size_t start = 0; start < 4; ++start) {
    P const guard(7, 8, 9);
    std::vector<P> images(count + 4, guard);
    auto const written = std::span(images).subspan(start, count);
    TransformPoints(matrix, points, written);
    EXPECT_EQ(count_differing(written), 0U) << "seed " << this->kSeed << ", from " << start;
    for (std::size_t i = 0; i < start; ++i) EXPECT_EQ(images[i], guard);
    for (std::size_t i = start + count; i < images.size(); ++i) EXPECT_EQ(images[i], guard);
  }
  TransformPoints(matrix, points, points);
  EXPECT_EQ(count_differing(points), 0U) << "seed " << this->kSeed << ", in place";
}

TYPED_TEST(TransformArrays, OfDifferentSizesAreRefusedAndNothingIsWritten) {
  using P = Point<TypeParam, 3>;
  using V = Vector<TypeParam, 3>;
  for (Matrix<TypeParam> const& matrix : {Matrix<TypeParam>(), Matrix<TypeParam>::Translate(1, 2, 3)}) {
    std::vector<P> const points(3, P(1, 1, 1));
    std::vector<V> const vectors(3, V(1, 1, 1));
    for (std::size_t const size : {0U, 2U, 4U}) {
      std::vector<P> images(size, P(5, 5, 5));
      EXPECT_TRUE(
          test::Throws<std::invalid_argument>([&] { TransformPoints(matrix, points, images); }, message));
      EXPECT_EQ(images, std::vector<P>(size, P(5, 5, 5)));
      std::vector<V> turned(size, V(5, 5, 5));
      EXPECT_TRUE(
          test::Throws<std::invalid_argument>([&] { TransformVectors(matrix, vectors, turned); }, message));
      EXPECT_EQ(turned, std::vector<V>(size, V(5, 5, 5)));
    }
  }
}

}  // namespace
}  // namespace lum
