// An allocation fails while a value takes an object from its pool: the operands do not change, no slot is
// lost, and the same call succeeds afterwards.

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <functional>
#include <new>
#include <vector>

#include "geometry/Matrix.h"
#include "geometry/Quaternion.h"
#include "tests/support/FailingAllocation.h"
#include "tests/support/ObjectPoolTestAccess.h"
#include "tests/support/Precisions.h"
#include "tests/support/Values.h"

namespace lum {
namespace {

using test::FailingAllocation;

template <class Object>
class FullPool {
 public:
  /// Takes objects until the current block has this many left.
  explicit FullPool(unsigned long i_left) {
    m_handles.reserve(64);
    m_handles.push_back(CreateGlobalObject<Object>());
    while (GetUseCount() != 32 - i_left) m_handles.push_back(CreateGlobalObject<Object>());
  }

  static unsigned long GetUseCount() {
    auto* const pool = PoolTypes<Object>::Global::m_pool.GetValue();
    return ObjectPoolTestAccess::UseCount(*ObjectPoolTestAccess::CurrentBlock(*pool)).load();
  }

 private:
  std::vector<typename PoolTypes<Object>::ObjectHandle> m_handles;
};

// Runs the call with 0, 1, ... objects left in the block and no memory for another block, until it succeeds.
// Returns how often it failed, which is the number of objects that it takes.
template <class Object>
unsigned long CountFailures(std::function<void()> const& i_call) {
  for (unsigned long left = 0;; ++left) {
    FullPool<Object> const full(left);
    unsigned long const before = FullPool<Object>::GetUseCount();
    try {
      FailingAllocation const no_memory(0);
      i_call();
      return left;
    } catch (std::bad_alloc const&) {
      EXPECT_EQ(FullPool<Object>::GetUseCount(), before) << "a slot is lost";
    }
  }
}

// The first allocation is that of the pool, the second that of its block. Each fails once, and the third
// attempt succeeds. This test comes first in the file, as the pool must not exist before.
TEST(AllocationFailure, AnIdentityWhoseFactoryThrewIsMadeLater) {
  for (int allocations = 0; allocations < 2; ++allocations) {
    FailingAllocation const no_memory(allocations);
    EXPECT_THROW(Matrix<double>{}, std::bad_alloc);
  }
  EXPECT_TRUE(Matrix<double>().IsKnownIdentity());
}

template <class T>
class AllocationFailure : public test::PrecisionTest<T> {};
TYPED_TEST_SUITE(AllocationFailure, test::Precisions);

TYPED_TEST(AllocationFailure, LosesNoSlotWhereMatricesAreMade) {
  using M = Matrix<TypeParam>;
  using Object = typename MatrixPoolTypes<TypeParam>::Object;
  M const identity;  // made now, while there is memory
  M const a = M::Translate(1, 2, 3);
  M const b = M::Scale(2);
  M const singular(b.GetMatrix(), {});
  test::Values<TypeParam> const values = test::ValuesOf(a);
  test::Values<TypeParam> const inverse_values = test::InverseValuesOf(a);
  EXPECT_EQ(CountFailures<Object>([] { M::Scale(1, 2, 3); }), 2U);
  EXPECT_EQ(CountFailures<Object>([] { M::Scale(0); }), 1U);
  EXPECT_EQ(CountFailures<Object>([] { M::Translate(1, 2, 3); }), 2U);
  EXPECT_EQ(CountFailures<Object>([] { M::Rotate({0, 0, 1}, 1); }), 2U);
  EXPECT_EQ(CountFailures<Object>([] { M::Rotate({0, 0, 1}, 0); }), 0U);
  EXPECT_EQ(CountFailures<Object>([] { M::Normalize(1, 2, 3); }), 2U);
  EXPECT_EQ(CountFailures<Object>([&] { M{values.data()}; }), 2U);
  EXPECT_EQ(CountFailures<Object>([] { M(Origin, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}); }), 2U);
  EXPECT_EQ(CountFailures<Object>([&] { a* b; }), 2U);
  EXPECT_EQ(CountFailures<Object>([&] { a* singular; }), 1U);
  EXPECT_EQ(CountFailures<Object>([&] { a* identity; }), 0U);
  EXPECT_EQ(CountFailures<Object>([&] { a.GetTranspose(); }), 2U);
  EXPECT_EQ(CountFailures<Object>([&] { a.GetNormalTransform(); }), 2U);
  EXPECT_EQ(CountFailures<Object>([&] { a.GetInverse(); }), 0U);
  EXPECT_EQ(CountFailures<Object>([&] { M(a).Invert(); }), 0U);
  EXPECT_EQ(CountFailures<Object>([&] { M(a).RebuildInverse(); }), 1U) << "the copy shares the inverse";
  M other = M::Scale(3);
  EXPECT_EQ(CountFailures<Object>([] { M{}; }), 0U);
  EXPECT_EQ(CountFailures<Object>([&] { M{a}; }), 0U);
  EXPECT_EQ(CountFailures<Object>([&] { M(M(a)) = b; }), 0U);
  EXPECT_EQ(CountFailures<Object>([&] { other.GetMutableInternal(); }), 0U) << "it is not shared";
  EXPECT_EQ(CountFailures<Object>([&] { other.GetMutableInverseInternal(); }), 0U);
  EXPECT_EQ(CountFailures<Object>([&] { other.RebuildInverse(); }), 0U);
  EXPECT_EQ(CountFailures<Object>([&] { (void)(a * Vector<TypeParam, 3>(1, 2, 3)); }), 0U);
  EXPECT_EQ(CountFailures<Object>([&] { (void)(a * Point<TypeParam, 3>(1, 2, 3)); }), 0U);
  EXPECT_EQ(CountFailures<Object>([&] { (void)(a * Plane<TypeParam>(1, 2, 3, 4)); }), 0U);
  EXPECT_TRUE(test::AreSameBits(test::ValuesOf(a), values));
  EXPECT_TRUE(test::AreSameBits(test::InverseValuesOf(a), inverse_values));
  EXPECT_TRUE(test::AreSameBits(test::ValuesOf(b), test::Diagonal<TypeParam>(2, 2, 2)));
  EXPECT_EQ(a.GetMatrix().GetReferenceCount(), 1U);
  EXPECT_EQ(a.GetMatrixInverse().GetReferenceCount(), 1U);
}

TYPED_TEST(AllocationFailure, DoesNotChangeTheLeftFactorOfAProductInPlace) {
  using M = Matrix<TypeParam>;
  M a = M::Translate(1, 2, 3);
  M const copy = a;
  M const b = M::Scale(2);
  for (unsigned long const left : {0UL, 1UL}) {
    FullPool<typename MatrixPoolTypes<TypeParam>::Object> const full(left);
    FailingAllocation const no_memory(0);
    EXPECT_THROW(a *= b, std::bad_alloc);
  }
  EXPECT_EQ(a.GetMatrix().Get(), copy.GetMatrix().Get());
  EXPECT_EQ(a.GetMatrixInverse().Get(), copy.GetMatrixInverse().Get());
  a *= b;
  EXPECT_TRUE(a == copy * b);
}

TYPED_TEST(AllocationFailure, KeepsASharedMatrixShared) {
  using M = Matrix<TypeParam>;
  M const original = M::Translate(1, 2, 3);
  M copy = original;
  {
    FullPool<typename MatrixPoolTypes<TypeParam>::Object> const full(0);
    FailingAllocation const no_memory(0);
    EXPECT_THROW(copy.GetMutableInternal(), std::bad_alloc);
    EXPECT_THROW(copy.GetMutableInverseInternal(), std::bad_alloc);
    EXPECT_THROW(copy.RebuildInverse(), std::bad_alloc);
  }
  EXPECT_EQ(copy.GetMatrix().Get(), original.GetMatrix().Get());
  EXPECT_EQ(copy.GetMatrixInverse().Get(), original.GetMatrixInverse().Get());
  EXPECT_EQ(original.GetMatrix().GetReferenceCount(), 2U);
  EXPECT_NE(copy.GetMutableInternal(), original.GetMatrix().Get());
}

template <class T, class U>
void ExpectConversionStepByStep() {
  Matrix<U> const source = Matrix<U>::Translate(1, 2, 3);
  Matrix<T> target = Matrix<T>::Scale(2);
  Matrix<T> const old = target;
  {
    FullPool<typename MatrixPoolTypes<T>::Object> const full(0);
    FailingAllocation const no_memory(0);
    EXPECT_THROW(target = source, std::bad_alloc);
    EXPECT_EQ(target.GetMatrix().Get(), old.GetMatrix().Get()) << "the first step changed something";
  }
  {
    FullPool<typename MatrixPoolTypes<T>::Object> const full(1);
    FailingAllocation const no_memory(0);
    EXPECT_THROW(target = source, std::bad_alloc);
  }
  EXPECT_TRUE(target == Matrix<T>::Translate(1, 2, 3));
  EXPECT_EQ(target.GetMatrixInverse().Get(), old.GetMatrixInverse().Get());
  EXPECT_EQ((CountFailures<typename MatrixPoolTypes<T>::Object>([&] { Matrix<T>{source}; })), 2U);
}

TEST(AllocationFailure, AConversionKeepsItsCompletedSteps) {
  ExpectConversionStepByStep<float, double>();
  ExpectConversionStepByStep<double, float>();
}

TEST(AllocationFailure, LosesNoSlotWhereQuaternionsAreMade) {
  Matrix<float> const identity;  // made now, while there is memory
  Quaternionf const q({0, 0, 1}, 1);
  std::array<float, 4> const coefficients = q.GetCoefficients();
  Matrix<float> const matrix = Matrix<float>::Rotate({0, 0, 1}, 1);
  EXPECT_EQ(CountFailures<Quaternionf::Object>([] { Quaternionf({0, 0, 1}, 1); }), 1U);
  EXPECT_EQ(CountFailures<Quaternionf::Object>([&] { Quaternionf{matrix}; }), 1U);
  EXPECT_EQ(CountFailures<Quaternionf::Object>([&] { q* q; }), 1U);
  EXPECT_EQ(CountFailures<Quaternionf::Object>([&] { q.Slerp(0.5F, q); }), 1U);
  EXPECT_EQ(CountFailures<Quaternionf::Object>([&] { q.Transform({1, 2, 3}); }), 0U);
  EXPECT_EQ(CountFailures<Quaternionf::Object>([&] { (void)q.IsApproximately(q, 1); }), 0U);
  EXPECT_EQ(CountFailures<MatrixPoolTypes<float>::Object>([&] { q.InverseTransform({1, 2, 3}); }), 2U);
  EXPECT_EQ(q.GetCoefficients(), coefficients);
  EXPECT_EQ(CountFailures<MatrixPoolTypes<float>::Object>([&] { q.GetAsMatrix(); }), 2U);
}

}  // namespace
}  // namespace lum
