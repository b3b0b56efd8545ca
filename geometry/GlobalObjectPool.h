#pragma once

#include <Eigen/Geometry>
#include <atomic>

#include "Utility/Lazy.h"
#include "geometry/Handle.h"
#include "geometry/ObjectPool.h"
#include "geometry/ObjectPoolBlock.h"
#include "geometry/ObjectPoolDeleter.h"
#include "geometry/internal/Export.h"

#if !EIGEN_VERSION_AT_LEAST(3, 2, 0)
#error "lum needs Eigen 3.2 or later"
#endif

namespace lum {

/// The one process-wide pool of a pool type, made on first use and never destroyed, so that handles released
/// while the process shuts down still find it. Pools exist for the three object types of the library.
///
/// Thread safety: everything, from any number of threads, from before `main` to the end of the process.
template <class Pool, class Handle>
struct GlobalObjectPool {
  static Lazy<Pool*> const& m_pool;  ///< The pool.
};

/// The types through which values of the library hold their numbers: blocks of 32 objects of type T.
template <class T>
struct PoolTypes {
  using Object = T;                                         ///< What holds the numbers.
  using ObjectPool = lum::ObjectPool<T, 32, 16>;            ///< What hands the objects out.
  using ObjectPoolBlock = lum::ObjectPoolBlock<T, 32, 16>;  ///< Where they lie.
  /// What owns an object.
  using ObjectHandle =
      Handle<T, std::atomic<unsigned long>, ObjectPoolDeleter<T, ObjectPool, ObjectPoolBlock>>;
};

/// The process-wide pool of objects of type T.
template <class T>
using GlobalPoolOf = GlobalObjectPool<typename PoolTypes<T>::ObjectPool, typename PoolTypes<T>::ObjectHandle>;

/// Takes an object from the process-wide pool of its type; see `ObjectPool::CreateObject`.
template <class T>
typename PoolTypes<T>::ObjectHandle CreateGlobalObject() {
  return GlobalPoolOf<T>::m_pool.GetValue()->CreateObject();
}

/// Takes two; see `ObjectPool::CreateTwoObjects`.
template <class T>
typename PoolTypes<T>::ObjectPool::TwoObjects CreateTwoGlobalObjects() {
  return GlobalPoolOf<T>::m_pool.GetValue()->CreateTwoObjects();
}

/// The object that holds the numbers of a `Matrix<T>`: all 16 values, column by column.
template <class T>
using MatrixObject = Eigen::Transform<T, 3, Eigen::Projective>;

/// The object that holds the numbers of a `Quaternionf`, in the order x, y, z, w.
using QuaternionObject = Eigen::Quaternion<float>;

/// \cond
extern template class LUM_EXPORT ObjectPoolBlock<MatrixObject<float>, 32, 16>;
extern template class LUM_EXPORT ObjectPoolBlock<MatrixObject<double>, 32, 16>;
extern template class LUM_EXPORT ObjectPoolBlock<QuaternionObject, 32, 16>;

extern template class LUM_EXPORT ObjectPool<MatrixObject<float>, 32, 16>;
extern template class LUM_EXPORT ObjectPool<MatrixObject<double>, 32, 16>;
extern template class LUM_EXPORT ObjectPool<QuaternionObject, 32, 16>;

template <>
LUM_EXPORT Lazy<PoolTypes<MatrixObject<float>>::ObjectPool*> const& GlobalPoolOf<MatrixObject<float>>::m_pool;
template <>
LUM_EXPORT Lazy<PoolTypes<MatrixObject<double>>::ObjectPool*> const&
    GlobalPoolOf<MatrixObject<double>>::m_pool;
template <>
LUM_EXPORT Lazy<PoolTypes<QuaternionObject>::ObjectPool*> const& GlobalPoolOf<QuaternionObject>::m_pool;
/// \endcond

}  // namespace lum
