#pragma once

#include <Eigen/Geometry>
#include <atomic>

#include "Utility/Lazy.h"
#include "geometry/Handle.h"
#include "geometry/ObjectPool.h"
#include "geometry/ObjectPoolBlock.h"
#include "geometry/ObjectPoolDeleter.h"
#include "geometry/internal/Export.h"

#if !EIGEN_VERSION_AT_LEAST(3, 4, 0)
#error "lum needs Eigen 3.4"
#endif

namespace lum {

/// Holds the one process-wide pool of a pool type. The pool is created on first use and never destroyed, so
/// that handles can return their objects while the process shuts down. The library has three such pools:
/// `MatrixPoolTypes<float>`, `MatrixPoolTypes<double>` and `QuaternionPoolTypes`.
///
/// Thread safety: any number of threads may use the pools, from before `main` to the end of the process.
template <class Pool, class Handle>
struct GlobalObjectPool {
  static Lazy<Pool*> const& m_pool;  ///< The pool.
};

/// The types of a process-wide pool of objects of type T.
template <class T>
struct PoolTypes {
  using Object = T;                                           ///< The pooled object.
  using ObjectPool = lum::ObjectPool<T, 32, 16>;              ///< The pool, with blocks of 32 objects.
  using ObjectHandle = typename ObjectPool::ObjectHandle;     ///< A shared owner of an object.
  using Global = GlobalObjectPool<ObjectPool, ObjectHandle>;  ///< Holds the process-wide pool.
};

/// The pool of `Matrix<T>`. An object holds all 16 values, column by column.
template <class T>
using MatrixPoolTypes = PoolTypes<Eigen::Transform<T, 3, Eigen::Projective>>;

/// The pool of `Quaternionf`. An object holds x, y, z, w.
using QuaternionPoolTypes = PoolTypes<Eigen::Quaternion<float>>;

/// Takes an object from the process-wide pool of its type; see `ObjectPool::CreateObject`.
template <class T>
typename PoolTypes<T>::ObjectHandle CreateGlobalObject() {
  return PoolTypes<T>::Global::m_pool.GetValue()->CreateObject();
}

/// Takes two objects from the process-wide pool of their type; see `ObjectPool::CreateTwoObjects`.
template <class T>
typename PoolTypes<T>::ObjectPool::TwoObjects CreateTwoGlobalObjects() {
  return PoolTypes<T>::Global::m_pool.GetValue()->CreateTwoObjects();
}

/// \cond
extern template class LUM_EXPORT ObjectPoolBlock<Eigen::Transform<float, 3, Eigen::Projective>, 32, 16>;
extern template class LUM_EXPORT ObjectPoolBlock<Eigen::Transform<double, 3, Eigen::Projective>, 32, 16>;
extern template class LUM_EXPORT ObjectPoolBlock<Eigen::Quaternion<float>, 32, 16>;

extern template class LUM_EXPORT ObjectPool<Eigen::Transform<float, 3, Eigen::Projective>, 32, 16>;
extern template class LUM_EXPORT ObjectPool<Eigen::Transform<double, 3, Eigen::Projective>, 32, 16>;
extern template class LUM_EXPORT ObjectPool<Eigen::Quaternion<float>, 32, 16>;

template <>
LUM_EXPORT Lazy<MatrixPoolTypes<float>::ObjectPool*> const& MatrixPoolTypes<float>::Global::m_pool;
template <>
LUM_EXPORT Lazy<MatrixPoolTypes<double>::ObjectPool*> const& MatrixPoolTypes<double>::Global::m_pool;
template <>
LUM_EXPORT Lazy<QuaternionPoolTypes::ObjectPool*> const& QuaternionPoolTypes::Global::m_pool;
/// \endcond

}  // namespace lum
