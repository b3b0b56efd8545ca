#pragma once

#include <concepts>
#include <cstddef>
#include <functional>
#include <span>
#include <string_view>

#include "Utility/optional.h"
#include "geometry/CanonicalCubeElement.h"
#include "geometry/CubeElement.h"
#include "geometry/CubeSpace.h"
#include "geometry/Matrix.h"
#include "geometry/Plane.h"
#include "geometry/Point.h"
#include "geometry/Quaternion.h"
#include "geometry/Range.h"
#include "geometry/Vector.h"

/// \file
/// `std::hash` for values and identifiers, so that they can be keys of unordered containers. Equal values
/// have equal hashes: 0 and -0 hash alike, except in a `Matrix`, which compares bytes.
///
/// Hashes differ between standard libraries, so they must not be stored or sent to another program.
/// Identifiers that are enumerations do not need this header, because the standard library hashes every
/// enumeration.
///
/// Hashing acquires no object and changes no reference count. It throws only if the hash of the contents of a
/// `Range` or `optional` throws. It is thread-safe for values that no other thread writes. A matrix or
/// quaternion must not be moved-from.
namespace lum {

/// The equality to use with `std::hash<Quaternionf>`, because quaternions have no `==`. Compares the
/// coefficients as numbers, so a NaN equals nothing, and q and -q differ although they are the same rotation.
///
///     std::unordered_set<Quaternionf, std::hash<Quaternionf>, EqualCoefficients> rotations;
struct EqualCoefficients {
  /// Whether all four coefficients are equal.
  bool operator()(Quaternionf const& i_a, Quaternionf const& i_b) const {
    return i_a.GetCoefficients() == i_b.GetCoefficients();
  }
};

namespace internal {

template <class T>
concept Hashable = requires(T const& i_value) {
  { std::hash<T>()(i_value) } -> std::convertible_to<std::size_t>;
};

/// Combines two hashes in order. A change of one input bit can change every output bit.
constexpr std::size_t CombineHashes(std::size_t i_first, std::size_t i_second) noexcept {
  static_assert(sizeof(std::size_t) == 8, "the multipliers are odd numbers of 64 bits");
  std::size_t hash = i_first * 0x9e3779b97f4a7c15U + i_second;
  hash = (hash ^ (hash >> 30)) * 0xbf58476d1ce4e5b9U;
  hash = (hash ^ (hash >> 27)) * 0x94d049bb133111ebU;
  return hash ^ (hash >> 31);
}

/// Hashes the values in order. `std::hash` of a number is the same for 0 and -0.
template <class T>
std::size_t HashInOrder(std::span<T const> i_values) {
  std::size_t hash = i_values.size();
  for (T const& value : i_values) hash = CombineHashes(hash, std::hash<T>()(value));
  return hash;
}

}  // namespace internal
}  // namespace lum

/// \cond
template <class T, std::size_t N>
struct std::hash<lum::Vector<T, N>> {
  std::size_t operator()(lum::Vector<T, N> const& i_vector) const noexcept {
    return lum::internal::HashInOrder(std::span<T const>(i_vector));
  }
};

template <class T, std::size_t N>
struct std::hash<lum::Point<T, N>> {
  std::size_t operator()(lum::Point<T, N> const& i_point) const noexcept {
    return lum::internal::HashInOrder(std::span<T const>(i_point));
  }
};

template <class T>
struct std::hash<lum::Plane<T>> {
  std::size_t operator()(lum::Plane<T> const& i_plane) const noexcept {
    return lum::internal::CombineHashes(std::hash<lum::Vector<T, 3>>()(i_plane.GetNormal()),
                                        std::hash<T>()(i_plane.GetD()));
  }
};

template <lum::internal::Hashable T>
struct std::hash<lum::Range<T>> {
  std::size_t operator()(lum::Range<T> const& i_range) const {
    return lum::internal::CombineHashes(std::hash<T>()(i_range.GetLower()),
                                        std::hash<T>()(i_range.GetUpper()));
  }
};

/// The hash of the value, because an optional compares equal to its value.
template <lum::internal::Hashable T>
struct std::hash<lum::optional<T>> {
  std::size_t operator()(lum::optional<T> const& i_optional) const {
    constexpr std::size_t nothing = 0x6e756c6c6f707421U;
    return i_optional ? std::hash<T>()(*i_optional) : nothing;
  }
};

/// The hash of the transform's bytes, without the inverse, as in the comparison.
template <class T>
struct std::hash<lum::Matrix<T>> {
  std::size_t operator()(lum::Matrix<T> const& i_matrix) const noexcept {
    return std::hash<std::string_view>()(
        {reinterpret_cast<char const*>(i_matrix.GetAsPtr()), 16 * sizeof(T)});
  }
};

template <>
struct std::hash<lum::Quaternionf> {
  std::size_t operator()(lum::Quaternionf const& i_quaternion) const {
    auto const coefficients = i_quaternion.GetCoefficients();
    return lum::internal::HashInOrder(std::span<float const>(coefficients));
  }
};

template <>
struct std::hash<lum::CubeElement> {
  std::size_t operator()(lum::CubeElement i_element) const noexcept {
    return std::hash<unsigned int>()(i_element.GetIndex());
  }
};

template <>
struct std::hash<lum::CubeSpace> {
  std::size_t operator()(lum::CubeSpace i_space) const noexcept {
    return std::hash<unsigned int>()(i_space.GetIndex());
  }
};

template <>
struct std::hash<lum::CanonicalCubeElement> {
  std::size_t operator()(lum::CanonicalCubeElement i_element) const noexcept {
    return std::hash<unsigned int>()(i_element.GetIndex());
  }
};
/// \endcond
