#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstring>
#include <functional>
#include <span>

#include "Utility/Lazy.h"
#include "Utility/optional.h"
#include "geometry/GlobalObjectPool.h"
#include "geometry/Handle.h"
#include "geometry/Matrix.h"
#include "geometry/Plane.h"
#include "geometry/Point.h"
#include "geometry/PseudoInverse.h"
#include "geometry/Quaternion.h"
#include "geometry/Range.h"
#include "geometry/RootFinding.h"
#include "geometry/Vector.h"
#include "tests/support/ObjectPoolTestAccess.h"

// The layouts that programs have compiled in: a change breaks every program that is not compiled again, and
// takes a new major version. The figures hold for x86-64 and libstdc++, whose mutex and std::function some
// types contain.
#if defined(__x86_64__) && defined(__GLIBCXX__)

namespace lum {
namespace {

template <class T, std::size_t Size, std::size_t Alignment>
constexpr bool kOccupies = sizeof(T) == Size && alignof(T) == Alignment;

using FloatTypes = MatrixPoolTypes<float>;
using DoubleTypes = MatrixPoolTypes<double>;
using QuaternionTypes = QuaternionPoolTypes;

static_assert(kOccupies<Vector<float, 2>, 8, 4>);
static_assert(kOccupies<Vector<float, 3>, 12, 4>);
static_assert(kOccupies<Vector<double, 2>, 16, 8>);
static_assert(kOccupies<Vector<double, 3>, 24, 8>);
static_assert(kOccupies<Point<float, 2>, 8, 4>);
static_assert(kOccupies<Point<float, 3>, 12, 4>);
static_assert(kOccupies<Point<double, 2>, 16, 8>);
static_assert(kOccupies<Point<double, 3>, 24, 8>);
static_assert(kOccupies<Plane<float>, 16, 4>);
static_assert(kOccupies<Plane<double>, 32, 8>);
static_assert(kOccupies<Range<float>, 8, 4>);
static_assert(kOccupies<Range<double>, 16, 8>);
static_assert(kOccupies<Matrix<float>, 64, 8>);
static_assert(kOccupies<Matrix<double>, 64, 8>);
static_assert(kOccupies<Quaternionf, 32, 8>);

static_assert(kOccupies<PseudoInverseResult, 80, 8>);
static_assert(offsetof(PseudoInverseResult, pseudoInverse) == 0);
static_assert(offsetof(PseudoInverseResult, rank) == 72);

static_assert(kOccupies<RootFinding::RegulaFalsiResult, 32, 8>);
static_assert(offsetof(RootFinding::RegulaFalsiResult, root) == 0);
static_assert(offsetof(RootFinding::RegulaFalsiResult, bracket) == 8);
static_assert(offsetof(RootFinding::RegulaFalsiResult, evaluations) == 24);
static_assert(offsetof(RootFinding::RegulaFalsiResult, converged) == 28);

static_assert(kOccupies<FloatTypes::ObjectHandle, 32, 8>);
static_assert(kOccupies<DoubleTypes::ObjectHandle, 32, 8>);
static_assert(kOccupies<QuaternionTypes::ObjectHandle, 32, 8>);
static_assert(kOccupies<FloatTypes::ObjectPool::TwoObjects, 64, 8>);
static_assert(offsetof(FloatTypes::ObjectPool::TwoObjects, first) == 0);
static_assert(offsetof(FloatTypes::ObjectPool::TwoObjects, second) == 32);

static_assert(kOccupies<optional<float>, 8, 4>);
static_assert(kOccupies<optional<std::size_t>, 16, 8>);
static_assert(kOccupies<optional<std::array<std::size_t, 2>>, 24, 8>);
static_assert(kOccupies<optional<std::function<int()>>, 40, 8>);
static_assert(kOccupies<Lazy<FloatTypes::ObjectPool*>, 112, 8>);
static_assert(kOccupies<Lazy<FloatTypes::ObjectHandle>, 136, 8>);

static_assert(kOccupies<FloatTypes::ObjectPool, 88, 8>);
static_assert(kOccupies<DoubleTypes::ObjectPool, 88, 8>);
static_assert(kOccupies<QuaternionTypes::ObjectPool, 88, 8>);
static_assert(kOccupies<FloatTypes::ObjectPool::Block, 2656, 8>);
static_assert(kOccupies<DoubleTypes::ObjectPool::Block, 4704, 8>);
static_assert(kOccupies<QuaternionTypes::ObjectPool::Block, 1120, 8>);

static_assert(std::bit_cast<std::array<float, 2>>(Range<float>(1, 2)) == std::array<float, 2>{1, 2});
static_assert(std::bit_cast<std::array<float, 3>>(Vector<float, 3>(1, 2, 3)) ==
              std::array<float, 3>{1, 2, 3});
static_assert(std::bit_cast<std::array<double, 2>>(Point<double, 2>(1, 2)) == std::array<double, 2>{1, 2});

std::ptrdiff_t GetOffset(void const* ip_whole, void const* ip_part) {
  return static_cast<char const*>(ip_part) - static_cast<char const*>(ip_whole);
}

// The bytes of a value that consists of pointers.
template <class T>
std::array<void const*, sizeof(T) / sizeof(void*)> GetPointers(T const& i_value) {
  std::array<void const*, sizeof(T) / sizeof(void*)> pointers;
  auto const bytes = std::as_bytes(std::span(&i_value, 1));
  std::memcpy(pointers.data(), bytes.data(), bytes.size());
  return pointers;
}

TEST(Abi, APlaneHoldsItsCoefficientsInOrder) {
  using Values = std::array<double, 4>;
  EXPECT_EQ(std::bit_cast<Values>(Plane<double>(0, 0, 1, 5)), (Values{0, 0, 1, 5}));
  EXPECT_EQ(std::bit_cast<Values>(Plane<double>(0, 1, 0, 5)), (Values{0, 1, 0, 5}));
}

TEST(Abi, AHandleHoldsObjectThenCountThenDeleter) {
  FloatTypes::ObjectPool pool;
  FloatTypes::ObjectPool::Block block;
  FloatTypes::ObjectPool::Block::ReferenceCount* const count = block.GetReferenceCount(*block.TakeSlot());
  FloatTypes::Object* const object = block.GetObject(0);
  FloatTypes::ObjectHandle const handle(object, count, {&pool, &block});
  EXPECT_EQ(GetPointers(handle), (std::array<void const*, 4>{object, count, &pool, &block}));
}

TEST(Abi, AMatrixHoldsItsTransformThenItsInverse) {
  auto const matrix = Matrix<double>::Translate(1, 2, 3);
  auto const pointers = GetPointers(matrix);
  EXPECT_EQ(pointers[0], matrix.GetMatrix().Get());
  EXPECT_EQ(pointers[4], matrix.GetMatrixInverse().Get());
}

TEST(Abi, AnOptionalHoldsItsValueFirst) {
  optional<double> const value(7.0);
  EXPECT_EQ(GetOffset(&value, &*value), 0);
}

TEST(Abi, ALazyValueHoldsItsValueAfterTheFlag) {
  Lazy<int*> const lazy([]() -> int* { return nullptr; });
  EXPECT_EQ(GetOffset(&lazy, &lazy.GetValue()), 8);
}

template <class Types>
void ExpectLayoutOfPoolAndBlock() {
  using Access = ObjectPoolTestAccess;
  typename Types::ObjectPool pool;
  EXPECT_EQ(GetOffset(&pool, &Access::CreationMutex(pool)), 8);
  EXPECT_EQ(GetOffset(&pool, &Access::CurrentBlockMutex(pool)), 48);

  typename Types::ObjectPool::Block block;
  EXPECT_EQ(GetOffset(&block, &Access::UseCount(block)), 0);
  EXPECT_EQ(GetOffset(&block, &Access::TakePosition(block)), 8);
  EXPECT_EQ(GetOffset(&block, &Access::Entry(block, 0)), 16);
  EXPECT_EQ(GetOffset(&block, &Access::ReturnPosition(block)), 272);
  EXPECT_EQ(GetOffset(&block, block.GetReferenceCount(0)), 280);
  EXPECT_GE(GetOffset(&block, block.GetObject(0)), 536);
}

TEST(Abi, PoolsAndBlocksHoldTheirMembersInOrder) {
  ExpectLayoutOfPoolAndBlock<FloatTypes>();
  ExpectLayoutOfPoolAndBlock<DoubleTypes>();
  ExpectLayoutOfPoolAndBlock<QuaternionTypes>();
}

}  // namespace
}  // namespace lum

#endif
