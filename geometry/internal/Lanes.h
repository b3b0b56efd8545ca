#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace lum::internal {

/// As many numbers as 16 bytes hold, which every processor of ours computes with at once. Each is rounded as
/// the scalar operation rounds it, so results do not depend on how many go together.
///
/// For the library's own sources: a caller's compiler may contract what is inlined into it.
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

/// One number in every lane. An operand is spread by itself, and less 0 every number stays as it is, -0 too.
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

/// Writes numbers to where they belong.
struct StoreLanes {
  template <class L, class T>
  void operator()(L const& i_lanes, T* op_values) const noexcept {
    std::memcpy(op_values, &i_lanes, sizeof(i_lanes));
  }
};

/// Writes numbers past the caches, to an address that 16 divides: the processor need not read a line before
/// it writes all of it. Other threads may see such stores late, until `FinishStreaming`.
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

/// Orders what was streamed before every later store, as those of a caller who publishes the results are.
inline void FinishStreaming() noexcept {
#ifdef __SSE2__
  _mm_sfence();
#endif
}

/// The number of triples that are carried together.
template <class T>
constexpr std::size_t kLanes = sizeof(Lanes<T>) / sizeof(T);

/// x, y and z of as many triples.
template <class T>
struct LaneTriple {
  Lanes<T> x, y, z;
};

/// Reads triples that follow each other: x0 y0 z0 x1 y1 z1 ...
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

/// Writes them back in the same order.
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

/// Arrays of different sizes throw `std::invalid_argument`.
inline void RequireSameSize(std::size_t i_from, std::size_t i_to) {
  if (i_from != i_to) {
    throw std::invalid_argument("arrays to transform from and to must be of the same size");
  }
}

/// Carries fewer triples than go together, in the company of zeros.
template <class T, class Operation>
[[gnu::always_inline]] inline void CarryFewTriples(T const* ip_values, T* op_values, std::size_t i_count,
                                                   Operation const& i_carry) noexcept {
  if (i_count == 0) return;
  std::array<T, 3 * kLanes<T>> few{};
  std::memcpy(few.data(), ip_values, 3 * i_count * sizeof(T));
  i_carry(few.data(), few.data(), StoreLanes());
  std::memcpy(op_values, few.data(), 3 * i_count * sizeof(T));
}

/// Carries triples group by group, by this store, and then the few that are left.
template <class T, class Operation, class Store>
[[gnu::always_inline]] inline void CarryByGroups(T const* ip_values, T* op_values, std::size_t i_count,
                                                 Operation const& i_carry, Store const& i_store) noexcept {
  constexpr std::size_t step = 3 * kLanes<T>;
  for (; i_count >= kLanes<T>; i_count -= kLanes<T>, ip_values += step, op_values += step) {
    i_carry(ip_values, op_values, i_store);
  }
  CarryFewTriples(ip_values, op_values, i_count, i_carry);
}

/// Carries triples past the caches. Kept apart, so that small arrays do not pay for it.
template <class T, class Operation>
[[gnu::noinline]] void StreamTriples(T const* ip_values, T* op_values, std::size_t i_count,
                                     Operation i_carry) noexcept {
  // So many numbers after an address that 16 divides; three times as many triples lead to the next such
  // address, since 3 * 3 is 1 modulo 4 and modulo 2.
  std::size_t const beyond = reinterpret_cast<std::uintptr_t>(op_values) / sizeof(T) % kLanes<T>;
  std::size_t const ahead = 3 * (kLanes<T> - beyond) % kLanes<T>;
  CarryFewTriples(ip_values, op_values, ahead, i_carry);
  CarryByGroups(ip_values + 3 * ahead, op_values + 3 * ahead, i_count - ahead, i_carry, StreamLanes());
  FinishStreaming();
}

/// Results of this size and more leave the caches anyway: as much as the last level of common processors.
constexpr std::size_t kStreamedBytes = std::size_t{32} << 20U;

/// Carries every triple of an array by an operation that reads and writes `kLanes` of them, by the store that
/// it is handed. The arrays may be one and the same.
template <class T, class Operation>
void CarryTriples(T const* ip_values, T* op_values, std::size_t i_count, Operation const& i_carry) noexcept {
  // Where results replace the values, their lines have been read already.
  if (3 * i_count * sizeof(T) >= kStreamedBytes && ip_values != op_values) {
    StreamTriples(ip_values, op_values, i_count, i_carry);
  } else {
    CarryByGroups(ip_values, op_values, i_count, i_carry, StoreLanes());
  }
}

}  // namespace lum::internal
