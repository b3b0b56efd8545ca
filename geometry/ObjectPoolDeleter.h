#pragma once

#include "geometry/internal/RequireCpp20.h"

namespace lum {

/// Returns an object to its block. Callable if both pointers are set.
///
/// Thread safety: any number of threads may return distinct objects at once. A return takes no lock.
template <class T, class Pool, class Block>
struct ObjectPoolDeleter {
  Pool* mp_pool = nullptr;    ///< the pool that handed the object out
  Block* mp_block = nullptr;  ///< the block that holds the object

  /// Whether both pointers are set.
  explicit operator bool() const noexcept { return mp_pool != nullptr && mp_block != nullptr; }

  /// Whether both deleters return objects to the same block.
  bool SharesBlock(ObjectPoolDeleter const& i_other) const noexcept { return mp_block == i_other.mp_block; }

  /// Returns the object's slot to the ring of its block. The last return to a superseded block frees the
  /// block.
  void operator()(T* ip_object) const noexcept {
    // The analyzer does not follow the counts that make this the last return.
    // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDelete)
    if (mp_block->ReturnSlot(ip_object)) delete mp_block;
  }
  /// Returns two objects of the block, in this order.
  void operator()(T* ip_first, T* ip_second) const noexcept {
    // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDelete): as above
    if (mp_block->ReturnTwoSlots(ip_first, ip_second)) delete mp_block;
  }
};

}  // namespace lum
