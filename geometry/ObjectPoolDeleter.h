#pragma once

namespace lum {

/// Returns an object to the block that holds it. Callable when both pointers are set.
///
/// Thread safety: any number of deleters may be called at once for distinct objects. They take no lock.
template <class T, class Pool, class Block>
struct ObjectPoolDeleter {
  Pool* mp_pool = nullptr;    ///< the pool that handed the object out
  Block* mp_block = nullptr;  ///< the block that holds the object

  /// Whether both pointers are set.
  explicit operator bool() const noexcept { return mp_pool != nullptr && mp_block != nullptr; }

  /// Whether objects of the two go back to the same block.
  bool SharesBlock(ObjectPoolDeleter const& i_other) const noexcept { return mp_block == i_other.mp_block; }

  /// Puts the object's slot back on its block's ring, and frees the block if that was the last return to a
  /// block that is no longer current.
  void operator()(T* ip_object) const noexcept {
    // The analyzer does not follow the counts that make this the last return.
    // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDelete)
    if (mp_block->ReturnSlot(ip_object)) delete mp_block;
  }
  /// The same for two objects of the block, in this order.
  void operator()(T* ip_first, T* ip_second) const noexcept {
    // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDelete): as above
    if (mp_block->ReturnTwoSlots(ip_first, ip_second)) delete mp_block;
  }
};

}  // namespace lum
