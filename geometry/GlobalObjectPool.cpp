#include "geometry/GlobalObjectPool.h"

#include "geometry/internal/NeverDestroyed.h"

namespace lum {
namespace {

template <class Object>
using PoolOf = typename PoolTypes<Object>::ObjectPool;

template <class Object>
PoolOf<Object>* CreatePool() {
  return new PoolOf<Object>;
}

constexpr auto& create_pool_matrix_float = CreatePool<MatrixObject<float>>;
constexpr auto& create_pool_matrix_double = CreatePool<MatrixObject<double>>;
constexpr auto& create_pool_quaternion_float = CreatePool<QuaternionObject>;

// Constant-initialised, so that they work before main in any link order; never destroyed, so that they work
// until the process is gone.
constinit internal::NeverDestroyed<Lazy<PoolOf<MatrixObject<float>>*>> pool_matrix_float(
    create_pool_matrix_float);
constinit internal::NeverDestroyed<Lazy<PoolOf<MatrixObject<double>>*>> pool_matrix_double(
    create_pool_matrix_double);
constinit internal::NeverDestroyed<Lazy<PoolOf<QuaternionObject>*>> pool_quaternion_float(
    create_pool_quaternion_float);

}  // namespace

template <>
constinit Lazy<PoolOf<MatrixObject<float>>*> const& GlobalPoolOf<MatrixObject<float>>::m_pool =
    pool_matrix_float.m_value;
template <>
constinit Lazy<PoolOf<MatrixObject<double>>*> const& GlobalPoolOf<MatrixObject<double>>::m_pool =
    pool_matrix_double.m_value;
template <>
constinit Lazy<PoolOf<QuaternionObject>*> const& GlobalPoolOf<QuaternionObject>::m_pool =
    pool_quaternion_float.m_value;

template class ObjectPoolBlock<MatrixObject<float>, 32, 16>;
template class ObjectPoolBlock<MatrixObject<double>, 32, 16>;
template class ObjectPoolBlock<QuaternionObject, 32, 16>;

template class ObjectPool<MatrixObject<float>, 32, 16>;
template class ObjectPool<MatrixObject<double>, 32, 16>;
template class ObjectPool<QuaternionObject, 32, 16>;

}  // namespace lum
