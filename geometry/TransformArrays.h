#pragma once

#include <concepts>
#include <span>
#include <type_traits>

#include "geometry/Point.h"
#include "geometry/Vector.h"
#include "geometry/internal/Export.h"

namespace lum {

// clang exports the members only if the first declaration has the attribute.
template <class T>
class LUM_EXPORT Matrix;

///@{
/// Transforms every point or vector of an array. Each result has the same bits as the product with that value
/// alone, except for the signs and payloads of NaNs. A known identity copies the values. A finite translation
/// does not change vectors.
///
/// The two arrays may be the same array, but must not overlap otherwise. Arrays of different sizes throw
/// `std::invalid_argument` before anything is written. Arrays of the other precision do not compile: convert
/// the matrix.
///
/// Cost: no count changes. If the process has no identity object yet, the call creates it, which takes 1
/// object and passes on what the pool throws.
///
/// Thread safety: no other thread may use the second array, or write to the matrix or to the first array,
/// during the call.
template <class T>
void TransformPoints(Matrix<T> const& i_matrix, std::type_identity_t<std::span<Point<T, 3> const>> i_points,
                     std::type_identity_t<std::span<Point<T, 3>>> o_points);
template <class T>
void TransformVectors(Matrix<T> const& i_matrix,
                      std::type_identity_t<std::span<Vector<T, 3> const>> i_vectors,
                      std::type_identity_t<std::span<Vector<T, 3>>> o_vectors);
///@}

namespace internal {

/// Calls the private members that transform arrays. Inlined into every caller, so that the caller's NDEBUG
/// decides whether the matrix is checked.
struct MatrixArrays {
  template <class T, class Values, class Images>
  [[gnu::always_inline]] static void Apply(Matrix<T> const& i_matrix, Values i_values, Images o_images) {
    i_matrix.RequireValues().Apply(i_values, o_images);
  }
};

template <class T>
using OtherPrecision = std::conditional_t<std::same_as<T, float>, double, float>;

}  // namespace internal

template <class T>
[[gnu::always_inline]] inline void TransformPoints(
    Matrix<T> const& i_matrix, std::type_identity_t<std::span<Point<T, 3> const>> i_points,
    std::type_identity_t<std::span<Point<T, 3>>> o_points) {
  internal::MatrixArrays::Apply(i_matrix, i_points, o_points);
}

template <class T>
[[gnu::always_inline]] inline void TransformVectors(
    Matrix<T> const& i_matrix, std::type_identity_t<std::span<Vector<T, 3> const>> i_vectors,
    std::type_identity_t<std::span<Vector<T, 3>>> o_vectors) {
  internal::MatrixArrays::Apply(i_matrix, i_vectors, o_vectors);
}

/// \cond
// Arrays of the other precision.
template <class T, class Values, std::convertible_to<std::span<Point<internal::OtherPrecision<T>, 3>>> Images>
void TransformPoints(Matrix<T> const&, Values&&, Images&&) = delete;  // convert the matrix first
template <class T, class Values,
          std::convertible_to<std::span<Vector<internal::OtherPrecision<T>, 3>>> Images>
void TransformVectors(Matrix<T> const&, Values&&, Images&&) = delete;  // convert the matrix first
/// \endcond

}  // namespace lum
