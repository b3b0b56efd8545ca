#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace lum::internal {

/// A SIMD vector of 16 bytes, the width that every supported processor has. Each lane is rounded as the
/// scalar operation rounds it, so results do not depend on the number of lanes.
///
/// Only the library's own sources may include this header: the compiler flags of a caller could contract the
/// operations that are inlined into it.
using FloatLanes = float __attribute__((vector_size(16)));
using DoubleLanes = double __attribute__((vector_size(16)));

template <class T>
struct LanesOf;
template <>
struct LanesOf<float> {
  using Type = FloatLanes;
};
template <>
struct LanesOf<double> {
  using Type = DoubleLanes;
};
template <class T>
using Lanes = typename LanesOf<T>::Type;

/// The value in every lane. Scalar operands broadcast implicitly; subtracting +0 preserves every value,
/// including -0.
template <class T>
Lanes<T> Broadcast(T i_value) noexcept {
  return i_value - Lanes<T>{};
}

template <class T>
Lanes<T> LoadLanes(T const* ip_values) noexcept {
  Lanes<T> lanes;
  std::memcpy(&lanes, ip_values, sizeof(lanes));
  return lanes;
}

/// Stores lanes to memory of any alignment.
struct StoreLanes {
  template <class L, class T>
  void operator()(L const& i_lanes, T* op_values) const noexcept {
    std::memcpy(op_values, &i_lanes, sizeof(i_lanes));
  }
};

/// Stores lanes past the caches, to an address that is a multiple of 16. The processor then does not read a
/// cache line that is overwritten as a whole. Other threads may see such stores late, until
/// `FinishStreaming`.
struct StreamLanes {
#ifdef __SSE2__
  void operator()(FloatLanes const& i_lanes, float* op_values) const noexcept {
    _mm_stream_ps(op_values, i_lanes);
  }
  void operator()(DoubleLanes const& i_lanes, double* op_values) const noexcept {
    _mm_stream_pd(op_values, i_lanes);
  }
#else
  template <class L, class T>
  void operator()(L const& i_lanes, T* op_values) const noexcept {
    StoreLanes()(i_lanes, op_values);
  }
#endif
};

/// Orders streamed stores before every later store, such as the one by which a caller publishes the results.
inline void FinishStreaming() noexcept {
#ifdef __SSE2__
  _mm_sfence();
#endif
}

/// The number of lanes, which is the number of triples in a group.
template <class T>
constexpr std::size_t kLanes = sizeof(Lanes<T>) / sizeof(T);

/// The x, y and z of a group of triples.
template <class T>
struct LaneTriple {
  Lanes<T> x, y, z;
};

/// Reads a group of consecutive triples: x0 y0 z0 x1 y1 z1 ...
inline LaneTriple<float> LoadTriples(float const* ip_values) noexcept {
  FloatLanes const xyzx = LoadLanes(ip_values);      // x0 y0 z0 x1
  FloatLanes const yzxy = LoadLanes(ip_values + 4);  // y1 z1 x2 y2
  FloatLanes const zxyz = LoadLanes(ip_values + 8);  // z2 x3 y3 z3
  FloatLanes const xy23 = __builtin_shufflevector(yzxy, zxyz, 2, 3, 5, 6);
  FloatLanes const yz01 = __builtin_shufflevector(xyzx, yzxy, 1, 2, 4, 5);
  return {__builtin_shufflevector(xyzx, xy23, 0, 3, 4, 6), __builtin_shufflevector(yz01, xy23, 0, 2, 5, 7),
          __builtin_shufflevector(yz01, zxyz, 1, 3, 4, 7)};
}

inline LaneTriple<double> LoadTriples(double const* ip_values) noexcept {
  DoubleLanes const xy = LoadLanes(ip_values);
  DoubleLanes const zx = LoadLanes(ip_values + 2);
  DoubleLanes const yz = LoadLanes(ip_values + 4);
  return {__builtin_shufflevector(xy, zx, 0, 3), __builtin_shufflevector(xy, yz, 1, 2),
          __builtin_shufflevector(zx, yz, 0, 3)};
}

/// Writes a group of triples in the same order.
template <class Store>
void StoreTriples(LaneTriple<float> const& i_lanes, float* op_values, Store const& i_store) noexcept {
  auto const& [x, y, z] = i_lanes;
  FloatLanes const xy02 = __builtin_shufflevector(x, y, 0, 2, 4, 6);
  FloatLanes const yz13 = __builtin_shufflevector(y, z, 1, 3, 5, 7);
  FloatLanes const zx = __builtin_shufflevector(z, x, 0, 2, 5, 7);  // z0 z2 x1 x3
  i_store(__builtin_shufflevector(xy02, zx, 0, 2, 4, 6), op_values);
  i_store(__builtin_shufflevector(yz13, xy02, 0, 2, 5, 7), op_values + 4);
  i_store(__builtin_shufflevector(zx, yz13, 1, 3, 5, 7), op_values + 8);
}

template <class Store>
void StoreTriples(LaneTriple<double> const& i_lanes, double* op_values, Store const& i_store) noexcept {
  auto const& [x, y, z] = i_lanes;
  i_store(__builtin_shufflevector(x, y, 0, 2), op_values);
  i_store(__builtin_shufflevector(z, x, 0, 3), op_values + 2);
  i_store(__builtin_shufflevector(y, z, 1, 3), op_values + 4);
}

/// Transforms a partial group, padded with zeros: the last one, or the first before streaming stores.
template <class T, class Operation>
[[gnu::always_inline]] inline void TransformRemainder(T const* ip_values, T* op_values, std::size_t i_count,
                                                      Operation const& i_transform) noexcept {
  if (i_count == 0) return;
  std::array<T, 3 * kLanes<T>> group{};
  std::memcpy(group.data(), ip_values, 3 * i_count * sizeof(T));
  i_transform(group.data(), group.data(), StoreLanes());
  std::memcpy(op_values, group.data(), 3 * i_count * sizeof(T));
}

/// Transforms every full group and stores it by `i_store`, then the remainder.
template <class T, class Operation, class Store>
[[gnu::always_inline]] inline void ForEachGroup(T const* ip_values, T* op_values, std::size_t i_count,
                                                Operation const& i_transform, Store const& i_store) noexcept {
  constexpr std::size_t step = 3 * kLanes<T>;
  for (; i_count >= kLanes<T>; i_count -= kLanes<T>, ip_values += step, op_values += step) {
    i_transform(ip_values, op_values, i_store);
  }
  TransformRemainder(ip_values, op_values, i_count, i_transform);
}

/// Transforms an array with streaming stores. The size of a number must divide the address of the results.
/// Not inlined, because inlining slows down small arrays.
template <class T, class Operation>
[[gnu::noinline]] void StreamTriples(T const* ip_values, T* op_values, std::size_t i_count,
                                     Operation i_transform) noexcept {
  // Elements past the previous 16-byte boundary. Skipping three times the remainder in triples realigns,
  // since 3 * 3 = 1 (mod 4 and mod 2).
  std::size_t const past_boundary = reinterpret_cast<std::uintptr_t>(op_values) / sizeof(T) % kLanes<T>;
  std::size_t const skipped = 3 * (kLanes<T> - past_boundary) % kLanes<T>;
  TransformRemainder(ip_values, op_values, skipped, i_transform);
  ForEachGroup(ip_values + 3 * skipped, op_values + 3 * skipped, i_count - skipped, i_transform,
               StreamLanes());
  FinishStreaming();
}

/// Results of at least this size are streamed, because they do not stay in the caches: common processors have
/// last-level caches of this size.
constexpr std::size_t kStreamedBytes = std::size_t{32} << 20U;

/// Transforms every triple of an array. `i_transform` reads a group at its first argument and stores the
/// result at its second by calling its third. The two arrays may be the same array.
template <class T, class Operation>
void TransformTriples(T const* ip_values, T* op_values, std::size_t i_count,
                      Operation const& i_transform) noexcept {
  // In place, the cache lines of the results have been read already, so streaming saves nothing. Where the
  // size of a number does not divide the address, no number starts at a multiple of 16.
  bool const can_stream = reinterpret_cast<std::uintptr_t>(op_values) % sizeof(T) == 0;
  if (3 * i_count * sizeof(T) >= kStreamedBytes && ip_values != op_values && can_stream) {
    StreamTriples(ip_values, op_values, i_count, i_transform);
  } else {
    ForEachGroup(ip_values, op_values, i_count, i_transform, StoreLanes());
  }
}

}  // namespace lum::internal
