#pragma once

#include <Eigen/Geometry>
#include <array>
#include <concepts>
#include <cstddef>
#include <span>
#include <type_traits>
#include <utility>

#include "extras/Layout.h"
#include "geometry/GlobalObjectPool.h"
#include "geometry/Matrix.h"
#include "geometry/Point.h"
#include "geometry/Quaternion.h"
#include "geometry/Vector.h"

/// \file
/// Eigen maps of lum's values, without a copy, and conversions from Eigen's types.
///
/// Maps are unaligned: vectors are not aligned beyond their components, and the alignment that Eigen assumes
/// for pooled objects depends on the caller's compiler flags. An unaligned map has the same type in every
/// translation unit.
///
/// A map acquires no object and changes no reference count. `FromEigen` acquires 2 objects for a transform
/// and 1 for a quaternion, and passes on the pool's exceptions (`std::bad_alloc`). All functions are
/// thread-safe for values that no other thread writes. A matrix or quaternion must not be moved-from.
namespace lum {

namespace internal {

template <class>
struct Components;
template <class T, std::size_t N>
struct Components<Vector<T, N>> {
  using Column = Eigen::Matrix<T, static_cast<int>(N), 1>;
  using Columns = Eigen::Matrix<T, static_cast<int>(N), Eigen::Dynamic>;
};
template <class T, std::size_t N>
struct Components<Point<T, N>> : Components<Vector<T, N>> {};

template <class Value>
concept HasComponents = requires {
  typename Components<std::remove_const_t<Value>>::Column;
};

/// A map of Plain that is const if the value is.
template <class Plain, class Value>
using MapLike = Eigen::Map<std::conditional_t<std::is_const_v<Value>, Plain const, Plain>>;

template <class T>
concept IsScalar = std::same_as<T, float> || std::same_as<T, double>;

template <class Derived>
concept IsSmallVector = IsScalar<typename Derived::Scalar> &&
                        static_cast<bool>(Derived::IsVectorAtCompileTime) &&
                        (static_cast<int>(Derived::SizeAtCompileTime) == 2 ||
                         static_cast<int>(Derived::SizeAtCompileTime) == 3);

/// The components of a column or row expression as a `Vector` or `Point`.
template <template <class, std::size_t> class Value, class Derived>
auto ToComponents(Eigen::MatrixBase<Derived> const& i_expression) {
  Value<typename Derived::Scalar, static_cast<std::size_t>(Derived::SizeAtCompileTime)> components;
  Eigen::Map<typename Derived::PlainObject>(components.data()) = i_expression;
  return components;
}

template <class Derived>
concept IsTransformExpression = IsScalar<typename Derived::Scalar> &&
                                    static_cast<int>(Derived::RowsAtCompileTime) == 4 &&
                                static_cast<int>(Derived::ColsAtCompileTime) == 4;

/// Writes all 16 values column by column, for any storage order of the source. The last row is (0, 0, 0, 1)
/// if the source has none.
template <class Derived>
requires IsTransformExpression<Derived>
void CopyValues(Eigen::MatrixBase<Derived> const& i_values, typename Derived::Scalar* op_values) {
  Eigen::Map<Eigen::Matrix<typename Derived::Scalar, 4, 4>> values(op_values);
  values = i_values;
}
template <IsScalar T, int Mode, int Options>
void CopyValues(Eigen::Transform<T, 3, Mode, Options> const& i_transform, T* op_values) {
  constexpr int rows = Eigen::Transform<T, 3, Mode, Options>::MatrixType::RowsAtCompileTime;
  Eigen::Map<Eigen::Matrix<T, 4, 4>> values(op_values);
  values.setIdentity();
  values.template topRows<rows>() = i_transform.matrix();
}

template <class Source>
concept IsTransform = requires(Source const& i_source, typename Source::Scalar* op_values) {
  internal::CopyValues(i_source, op_values);
};

}  // namespace internal

/// Maps the components of a vector or point as an Eigen column. The map is writable unless the value is
/// const, and valid as long as the value. Temporaries do not compile.
template <internal::HasComponents Value>
auto AsEigen(Value& io_value) noexcept {
  using Column = typename internal::Components<std::remove_const_t<Value>>::Column;
  return internal::MapLike<Column, Value>(io_value.data());
}
template <internal::HasComponents Value>
void AsEigen(Value const&&) = delete;

/// Maps an array of vectors or points as the columns of one Eigen matrix. Valid as long as the array.
///
///     AsEigen(std::span(points)).rowwise().mean()
template <internal::HasComponents Value, std::size_t Extent>
auto AsEigen(std::span<Value, Extent> i_values) noexcept {
  using Columns = typename internal::Components<std::remove_const_t<Value>>::Columns;
  static_assert(sizeof(Value) == Value::size() * sizeof(typename Value::value_type), "no gaps");
  return internal::MapLike<Columns, Value>(i_values.empty() ? nullptr : i_values.front().data(),
                                           Columns::RowsAtCompileTime,
                                           static_cast<std::ptrdiff_t>(i_values.size()));
}

/// Maps the 16 values of a transform. Read-only, because matrices may share them.
///
/// Valid as long as any matrix or handle holds the object that this matrix holds now; afterwards the pool may
/// reuse it. Assigning to the matrix, or writing to it while others share its object, gives the matrix
/// another object, and the map still shows the old one. Temporaries do not compile. For the inverse of a
/// matrix that has one, use `matrix.GetMatrixInverse()->matrix()`.
template <class T>
Eigen::Map<Eigen::Matrix<T, 4, 4> const> AsEigen(Matrix<T> const& i_matrix) noexcept {
  return Eigen::Map<Eigen::Matrix<T, 4, 4> const>(i_matrix.GetAsPtr());
}
template <class T>
void AsEigen(Matrix<T> const&&) = delete;

///@{
/// Converts a column or row expression of two or three components.
template <class Derived>
requires internal::IsSmallVector<Derived>
auto ToVector(Eigen::MatrixBase<Derived> const& i_expression) {
  return internal::ToComponents<Vector>(i_expression);
}
template <class Derived>
requires internal::IsSmallVector<Derived>
auto ToPoint(Eigen::MatrixBase<Derived> const& i_expression) {
  return internal::ToComponents<Point>(i_expression);
}
///@}

/// Converts a 4x4 expression or a three-dimensional `Eigen::Transform` of any mode. The inverse is computed
/// from the values as by the constructor of `Matrix` from 16 values.
template <internal::IsTransform Source>
auto FromEigen(Source const& i_transform) {
  std::array<typename Source::Scalar, 16> values;
  internal::CopyValues(i_transform, values.data());
  return FromColumnMajor(values);
}

/// Converts in the same way, and stores an inverse that the caller knows. The inverse is not checked.
template <internal::IsTransform Source, internal::IsTransform Inverse>
requires std::same_as<typename Source::Scalar, typename Inverse::Scalar>
auto FromEigen(Source const& i_transform, Inverse const& i_inverse) {
  using T = typename Source::Scalar;
  auto [transform, inverse] = CreateTwoGlobalObjects<typename Matrix<T>::Object>();
  internal::CopyValues(i_transform, transform->data());
  internal::CopyValues(i_inverse, inverse->data());
  return Matrix<T>(std::move(transform), std::move(inverse));
}

/// Copies the coefficients without normalising them. The result is never a known identity.
template <class Derived>
requires std::same_as<typename Derived::Scalar, float> Quaternionf
FromEigen(Eigen::QuaternionBase<Derived> const& i_quaternion) {
  return QuaternionFromWLast(i_quaternion.x(), i_quaternion.y(), i_quaternion.z(), i_quaternion.w());
}

/// Copies the coefficients, because `Quaternionf` does not expose their address.
inline Eigen::Quaternion<float> ToEigen(Quaternionf const& i_quaternion) {
  auto const [x, y, z, w] = i_quaternion.GetCoefficients();
  return {w, x, y, z};
}

}  // namespace lum
