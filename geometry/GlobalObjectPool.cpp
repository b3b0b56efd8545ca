#include "geometry/GlobalObjectPool.h"

#include "geometry/internal/NeverDestroyed.h"

namespace lum {
namespace {

template <class Types>
typename Types::ObjectPool* CreatePool() {
  return new typename Types::ObjectPool;
}

// Constant-initialised, so that the pools work before `main` in any link order. Never destroyed, so that they
// work until the process ends.
template <class Types>
constinit internal::NeverDestroyed<Lazy<typename Types::ObjectPool*>> pool(CreatePool<Types>);

}  // namespace

template <>
constinit Lazy<MatrixPoolTypes<float>::ObjectPool*> const& MatrixPoolTypes<float>::Global::m_pool =
    pool<MatrixPoolTypes<float>>.m_value;
template <>
constinit Lazy<MatrixPoolTypes<double>::ObjectPool*> const& MatrixPoolTypes<double>::Global::m_pool =
    pool<MatrixPoolTypes<double>>.m_value;
template <>
constinit Lazy<QuaternionPoolTypes::ObjectPool*> const& QuaternionPoolTypes::Global::m_pool =
    pool<QuaternionPoolTypes>.m_value;

template class ObjectPoolBlock<Eigen::Transform<float, 3, Eigen::Projective>, 32, 16>;
template class ObjectPoolBlock<Eigen::Transform<double, 3, Eigen::Projective>, 32, 16>;
template class ObjectPoolBlock<Eigen::Quaternion<float>, 32, 16>;

template class ObjectPool<Eigen::Transform<float, 3, Eigen::Projective>, 32, 16>;
template class ObjectPool<Eigen::Transform<double, 3, Eigen::Projective>, 32, 16>;
template class ObjectPool<Eigen::Quaternion<float>, 32, 16>;

}  // namespace lum
