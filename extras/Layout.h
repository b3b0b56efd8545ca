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
/// Matrices and quaternions to and from numbers in other orders than the library's own, by names that say
/// which. Values pass unchanged, bit by bit.
///
/// Matrices are made as `Matrix(T const*)` makes them: inverted by cofactors, in 2 objects. Quaternions take
/// 1 object. What takes objects passes on what the pool throws (`std::bad_alloc`); the rest throws nothing.
/// All may be called from any thread, on values that no other thread writes. Where there is only a pointer,
/// `std::span<float const, 16>(pointer, 16)` says how many values it stands for.
namespace lum {

///@{
/// From the library's own order: value r + 4 c stands at row r, column c.
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

/// From column-major to row-major, and back.
template <class T>
std::array<T, 16> Transpose(std::span<T const, 16> i_values) {
  std::array<T, 16> values;
  for (std::size_t i = 0; i < 16; ++i) values[i] = i_values[i / 4 + i % 4 * 4];
  return values;
}

}  // namespace internal

///@{
/// From rows: value 4 r + c stands at row r, column c.
inline Matrix<float> FromRowMajor(std::span<float const, 16> i_values) {
  return FromColumnMajor(internal::Transpose(i_values));
}
inline Matrix<double> FromRowMajor(std::span<double const, 16> i_values) {
  return FromColumnMajor(internal::Transpose(i_values));
}
///@}
/// From four rows of four.
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
/// From x, y, z, w, the library's own order; `Quaternionf::GetCoefficients` gives it back. Never a known
/// identity, and not normalised.
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
/// From w, x, y, z.
inline Quaternionf QuaternionFromWFirst(float i_w, float i_x, float i_y, float i_z) {
  return QuaternionFromWLast(i_x, i_y, i_z, i_w);
}
inline Quaternionf QuaternionFromWFirst(std::span<float const, 4> i_wxyz) {
  return QuaternionFromWFirst(i_wxyz[0], i_wxyz[1], i_wxyz[2], i_wxyz[3]);
}
///@}

/// x, y, z, w.
inline std::array<float, 4> ToWLast(Quaternionf const& i_quaternion) {
  return i_quaternion.GetCoefficients();
}

/// w, x, y, z.
inline std::array<float, 4> ToWFirst(Quaternionf const& i_quaternion) {
  auto const [x, y, z, w] = i_quaternion.GetCoefficients();
  return {w, x, y, z};
}

}  // namespace lum
