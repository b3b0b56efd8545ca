#include <gtest/gtest.h>

#include <barrier>
#include <cstddef>
#include <cstdint>
#include <thread>
#include <type_traits>
#include <vector>

#include "geometry/GlobalObjectPool.h"
#include "geometry/Matrix.h"
#include "geometry/Quaternion.h"
#include "tests/support/BlockCensus.h"
#include "tests/support/ObjectPoolTestAccess.h"

namespace lum {
namespace {

using test::BlockCensus;

static_assert(
    std::is_same_v<MatrixPoolTypes<float>::ObjectHandle,
                   Handle<MatrixPoolTypes<float>::Object, std::atomic<unsigned long>,
                          ObjectPoolDeleter<MatrixPoolTypes<float>::Object,
                                            ObjectPool<MatrixPoolTypes<float>::Object, 32, 16>,
                                            ObjectPoolBlock<MatrixPoolTypes<float>::Object, 32, 16>>>>);
static_assert(
    std::is_same_v<MatrixPoolTypes<float>::ObjectPool::ObjectHandle, MatrixPoolTypes<float>::ObjectHandle>);

// ctest runs each test in a process of its own, so nothing has used the library before.
TEST(GlobalObjectPool, TheFirstDefaultMatrixMakesThePoolItsBlockAndTheIdentity) {
  using Types = MatrixPoolTypes<float>;
  BlockCensus const census(sizeof(Types::ObjectPool::Block));
  Matrix<float> const first;
  EXPECT_EQ(BlockCensus::GetMade(), 1U);
  auto* const block = ObjectPoolTestAccess::CurrentBlock(*Types::Global::m_pool.GetValue());
  EXPECT_EQ(first.GetMatrix().Get(), block->GetObject(0));
  EXPECT_EQ(ObjectPoolTestAccess::UseCount(*block).load(), 1U);
  EXPECT_EQ(Matrix<float>::Scale(2).GetMatrix().Get(), block->GetObject(1));
}

TEST(GlobalObjectPool, MakesNoPoolThatIsNotUsed) {
  BlockCensus const census(sizeof(QuaternionPoolTypes::ObjectPool::Block));
  Matrix<float> const matrix = Matrix<float>::Scale(2) * Matrix<float>();
  EXPECT_EQ(BlockCensus::GetMade(), 0U);
  Quaternionf const rotation({0, 0, 1}, 1);
  EXPECT_EQ(BlockCensus::GetMade(), 1U);
}

// All threads pass the barrier before the pool or the identity exists. One thread makes both, in the factory
// of the identity, while the others wait for its lock. So all get the same object, and only one block is
// made.
TEST(GlobalObjectPool, ThreadsGetTheSameIdentity) {
  constexpr std::size_t threads = 8;
  BlockCensus const census(sizeof(MatrixPoolTypes<double>::ObjectPool::Block));
  std::barrier start(threads);
  std::vector<Matrix<double>::Object const*> objects(threads);
  {
    std::vector<std::jthread> workers;
    workers.reserve(threads);
    for (auto& object : objects) {
      workers.emplace_back([&start, &object] {
        start.arrive_and_wait();
        object = Matrix<double>().GetMatrix().Get();
      });
    }
  }
  for (auto const* const object : objects) EXPECT_EQ(object, objects[0]);
  EXPECT_EQ(BlockCensus::GetMade(), 1U);
  EXPECT_EQ(Matrix<double>::mgh_identity.GetValue().GetReferenceCount(), 1U) << "all values are destroyed";
}

TEST(GlobalObjectPool, ReturnsTheSamePoolEveryTime) {
  EXPECT_EQ(QuaternionPoolTypes::Global::m_pool.GetValue(), QuaternionPoolTypes::Global::m_pool.GetValue());
}

TEST(GlobalObjectPool, EachPrecisionHasAnIdentityOfItsOwn) {
  EXPECT_NE(static_cast<void const*>(Matrix<float>().GetAsPtr()),
            static_cast<void const*>(Matrix<double>().GetAsPtr()));
  EXPECT_EQ(Matrix<float>::mgh_identity.GetValue()->matrix(), Eigen::Matrix4f::Identity());
  EXPECT_EQ(Matrix<double>::mgh_identity.GetValue()->matrix(), Eigen::Matrix4d::Identity());
  EXPECT_EQ(Quaternionf::mgh_identity.GetValue()->coeffs(), Eigen::Vector4f(0, 0, 0, 1));
}

template <class Object>
void ExpectPlacement(std::size_t i_alignment) {
  std::vector<typename PoolTypes<Object>::ObjectHandle> handles;
  for (int i = 0; i < 100; ++i) {
    handles.push_back(CreateGlobalObject<Object>());
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(handles.back().Get()) % i_alignment, 0U);
  }
}

TEST(GlobalObjectPool, PlacesMatricesOnTheirOwnCacheLines) {
  ExpectPlacement<MatrixPoolTypes<float>::Object>(64);
  ExpectPlacement<MatrixPoolTypes<double>::Object>(64);
  ExpectPlacement<QuaternionPoolTypes::Object>(16);
}

// Threads may share values by copying them. Each thread copies the same matrix, multiplies, inverts and
// destroys copies, and gets the same bits. No thread writes a shared object, and all changes of counts are
// atomic, so the counts are 1 again at the end.
TEST(GlobalObjectPool, ValuesMayBeSharedBetweenThreads) {
  Matrix<double> const shared = Matrix<double>::Translate(1, 2, 3) * Matrix<double>::Rotate({0, 0, 1}, 1);
  Matrix<double> const expected = shared * shared.GetInverse() * shared;
  {
    std::vector<std::jthread> workers;
    for (int thread = 0; thread < 4; ++thread) {
      workers.emplace_back([&shared, &expected] {
        for (int i = 0; i < 5000; ++i) {
          Matrix<double> copy = shared;
          copy *= shared.GetInverse();
          copy *= Matrix<double>();
          copy = copy * shared;
          if (copy != expected) ADD_FAILURE();
          Matrix<double> written = shared;
          (*written.GetMutableInternal())(0, 0) = i;
        }
      });
    }
  }
  EXPECT_EQ(shared.GetMatrix().GetReferenceCount(), 1U);
  EXPECT_EQ(shared.GetMatrixInverse().GetReferenceCount(), 1U);
}

}  // namespace
}  // namespace lum
