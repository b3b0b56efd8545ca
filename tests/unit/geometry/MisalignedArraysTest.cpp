#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

#include "geometry/Matrix.h"
#include "geometry/Quaternion.h"
#include "geometry/TransformArrays.h"
#include "geometry/internal/Lanes.h"
#include "tests/support/Precisions.h"

// Arrays at addresses that their numbers do not divide, such as those within a packed file. The language does
// not define them, so the undefined-behaviour sanitizer, which reports them, does not run this test.

namespace lum {
namespace {

/// Memory for values, of which the first starts some bytes after a multiple of 64.
template <class Value>
class Shifted {
 public:
  Shifted(std::size_t i_count, std::size_t i_shift)
      : m_count(i_count), m_bytes(i_count * sizeof(Value) + i_shift + 64 + kGuard) {
    auto const address = reinterpret_cast<std::uintptr_t>(m_bytes.data());
    m_start = (64 - address % 64) % 64 + i_shift;
  }

  std::span<Value> GetSpan() { return {reinterpret_cast<Value*>(m_bytes.data() + m_start), m_count}; }
  void Write(std::vector<Value> const& i_values) {
    for (std::size_t i = 0; i < m_count; ++i) {
      std::memcpy(At(i), &i_values[i % i_values.size()], sizeof(Value));
    }
  }
  /// The number of values that differ from the expected ones, which repeat, and of bytes written beyond them.
  std::size_t CountDiffering(std::vector<Value> const& i_expected) {
    std::size_t differing = 0;
    for (std::size_t i = 0; i < m_count; ++i) {
      // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison): bit for bit on purpose
      differing += std::memcmp(At(i), &i_expected[i % i_expected.size()], sizeof(Value)) != 0;
    }
    for (std::size_t i = 0; i < m_start; ++i) differing += m_bytes[i] != 0;
    for (std::size_t i = m_start + m_count * sizeof(Value); i < m_bytes.size(); ++i)
      differing += m_bytes[i] != 0;
    return differing;
  }

 private:
  static constexpr std::size_t kGuard = 64;
  unsigned char* At(std::size_t i_index) { return m_bytes.data() + m_start + i_index * sizeof(Value); }

  std::size_t m_count;
  std::vector<unsigned char> m_bytes;
  std::size_t m_start = 0;
};

/// Transforms arrays that are shifted by every number of bytes below the size of a number, and compares them
/// with arrays that are not shifted.
template <class Value, class Transform>
void ExpectTheSameBits(std::size_t i_count, std::vector<std::size_t> const& i_shifts,
                       Transform const& i_transform) {
  std::vector<Value> values;
  for (int i = 0; i < 1001; ++i) values.push_back(Value(1.1F * static_cast<float>(i), 0.3F, -2.7F));
  std::vector<Value> expected(values.size());
  i_transform(std::span<Value const>(values), std::span<Value>(expected));
  for (std::size_t const shift : i_shifts) {
    Shifted<Value> aligned(i_count, 0);
    aligned.Write(values);
    Shifted<Value> from(i_count, shift);
    from.Write(values);
    Shifted<Value> to(i_count, shift);
    i_transform(aligned.GetSpan(), to.GetSpan());
    EXPECT_EQ(to.CountDiffering(expected), 0U) << i_count << " to values shifted by " << shift;
    i_transform(from.GetSpan(), aligned.GetSpan());
    EXPECT_EQ(aligned.CountDiffering(expected), 0U) << i_count << " from values shifted by " << shift;
    i_transform(from.GetSpan(), from.GetSpan());
    EXPECT_EQ(from.CountDiffering(expected), 0U) << i_count << " in place, shifted by " << shift;
  }
}

template <class T>
class MisalignedArrays : public test::PrecisionTest<T> {
 protected:
  using P = Point<T, 3>;
  using V = Vector<T, 3>;

  static void ExpectTheSameBitsOf(Matrix<T> const& i_matrix, std::size_t i_count,
                                  std::vector<std::size_t> const& i_shifts) {
    ExpectTheSameBits<P>(i_count, i_shifts, [&](std::span<P const> i_from, std::span<P> o_to) {
      TransformPoints(i_matrix, i_from, o_to);
    });
    ExpectTheSameBits<V>(i_count, i_shifts, [&](std::span<V const> i_from, std::span<V> o_to) {
      TransformVectors(i_matrix, i_from, o_to);
    });
  }
};
TYPED_TEST_SUITE(MisalignedArrays, test::Precisions);

TYPED_TEST(MisalignedArrays, GiveTheBitsOfAlignedOnes) {
  auto const general =
      Matrix<TypeParam>::Rotate({0, 0, 1}, TypeParam(0.3)) * Matrix<TypeParam>::Translate(1, 2, 3);
  std::vector<std::size_t> shifts;
  for (std::size_t shift = 1; shift < sizeof(TypeParam); ++shift) shifts.push_back(shift);
  for (Matrix<TypeParam> const& matrix : {Matrix<TypeParam>(), general}) {
    for (std::size_t const count : {1U, 2U, 3U, 4U, 5U, 7U, 8U, 1000U}) {
      this->ExpectTheSameBitsOf(matrix, count, shifts);
    }
  }
}

TYPED_TEST(MisalignedArrays, LargerThanTheCachesGiveTheBitsOfAlignedOnes) {
  constexpr std::size_t count = internal::kStreamedBytes / sizeof(Point<TypeParam, 3>) + 1;
  this->ExpectTheSameBitsOf(Matrix<TypeParam>::Scale(3), count,
                            {1, sizeof(TypeParam) / 2, sizeof(TypeParam) - 1});
}

TEST(MisalignedArraysOfVectors, AreRotatedToTheBitsOfAlignedOnes) {
  using V = Vector<float, 3>;
  Quaternionf const rotation(V(1, 2, 3), 5);
  auto const rotate = [&](std::span<V const> i_from, std::span<V> o_to) {
    TransformVectors(rotation, i_from, o_to);
  };
  for (std::size_t const count : {1U, 2U, 3U, 4U, 5U, 1000U}) ExpectTheSameBits<V>(count, {1, 2, 3}, rotate);
  ExpectTheSameBits<V>(internal::kStreamedBytes / sizeof(V) + 1, {1, 2}, rotate);
}

}  // namespace
}  // namespace lum
