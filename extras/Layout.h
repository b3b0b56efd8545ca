#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <utility>

#include "geometry/GlobalObjectPool.h"
#include "geometry/Matrix.h"
#include "geometry/Quaternion.h"

/// \file
/// Conversions of matrices and quaternions to and from arrays. The name of each function states the order of
/// the array. Values keep their bits.
///
/// Matrices are created as by the constructor of `Matrix` from 16 values, with an inverse computed by
/// cofactors, and acquire 2 objects; quaternions acquire 1. Functions that acquire objects pass on the pool's
/// exceptions
/// (`std::bad_alloc`); the others throw nothing. All are thread-safe for values that no other thread writes.
/// A matrix or quaternion must not be moved-from.
///
/// To convert from a pointer, use `std::span<float const, 16>(pointer, 16)`.
namespace lum {

///@{
/// A matrix from values in the library's own order: value r + 4 c is at row r, column c.
inline Matrix<float> FromColumnMajor(std::span<float const, 16> i_values) {
  return Matrix<float>(i_values.data());
}
inline Matrix<double> FromColumnMajor(std::span<double const, 16> i_values) {
  return Matrix<double>(i_values.data());
}
///@}

/// The values of the transform, column by column, without the inverse.
template <class T>
std::array<T, 16> ToColumnMajor(Matrix<T> const& i_matrix) {
  std::array<T, 16> values;
  std::copy_n(i_matrix.GetAsPtr(), 16, values.begin());
  return values;
}

namespace internal {

/// Converts between column-major and row-major order.
template <class T>
std::array<T, 16> Transpose(std::span<T const, 16> i_values) {
  std::array<T, 16> values;
  for (std::size_t i = 0; i < 16; ++i) values[i] = i_values[i / 4 + i % 4 * 4];
  return values;
}

}  // namespace internal

///@{
/// A matrix from rows: value 4 r + c is at row r, column c.
inline Matrix<float> FromRowMajor(std::span<float const, 16> i_values) {
  return FromColumnMajor(internal::Transpose(i_values));
}
inline Matrix<double> FromRowMajor(std::span<double const, 16> i_values) {
  return FromColumnMajor(internal::Transpose(i_values));
}
///@}
/// A matrix from four rows of four values.
template <class T>
Matrix<T> FromRowMajor(T const (&i_rows)[4][4]) {
  std::array<T, 16> values;
  for (std::size_t i = 0; i < 16; ++i) values[i] = i_rows[i % 4][i / 4];
  return FromColumnMajor(values);
}

/// The values of the transform, row by row, without the inverse.
template <class T>
std::array<T, 16> ToRowMajor(Matrix<T> const& i_matrix) {
  return internal::Transpose(std::span<T const, 16>(i_matrix.GetAsPtr(), 16));
}

///@{
/// A quaternion from x, y, z, w, the order of `Quaternionf::GetCoefficients`. Does not normalise them. The
/// result is never a known identity.
inline Quaternionf QuaternionFromWLast(std::span<float const, 4> i_xyzw) {
  auto handle = CreateGlobalObject<Quaternionf::Object>();
  std::copy(i_xyzw.begin(), i_xyzw.end(), handle->coeffs().data());
  return Quaternionf(std::move(handle));
}
inline Quaternionf QuaternionFromWLast(float i_x, float i_y, float i_z, float i_w) {
  return QuaternionFromWLast(std::array{i_x, i_y, i_z, i_w});
}
///@}

///@{
/// A quaternion from w, x, y, z. Otherwise like `QuaternionFromWLast`.
inline Quaternionf QuaternionFromWFirst(float i_w, float i_x, float i_y, float i_z) {
  return QuaternionFromWLast(i_x, i_y, i_z, i_w);
}
inline Quaternionf QuaternionFromWFirst(std::span<float const, 4> i_wxyz) {
  return QuaternionFromWFirst(i_wxyz[0], i_wxyz[1], i_wxyz[2], i_wxyz[3]);
}
///@}

/// The coefficients x, y, z, w.
inline std::array<float, 4> ToWLast(Quaternionf const& i_quaternion) {
  return i_quaternion.GetCoefficients();
}

/// The coefficients w, x, y, z.
inline std::array<float, 4> ToWFirst(Quaternionf const& i_quaternion) {
  auto const [x, y, z, w] = i_quaternion.GetCoefficients();
  return {w, x, y, z};
}

}  // namespace lum
