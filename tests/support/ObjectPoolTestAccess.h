#pragma once

#include <cstddef>

namespace lum {

/// Gives tests access to private members of pools and blocks.
struct ObjectPoolTestAccess {
  template <class Pool>
  static auto* CurrentBlock(Pool& io_pool) {
    return io_pool.m_current_block;
  }
  template <class Pool>
  static auto& CreationMutex(Pool& io_pool) {
    return io_pool.m_creation_mutex;
  }
  template <class Pool>
  static auto& CurrentBlockMutex(Pool& io_pool) {
    return io_pool.m_current_block_mutex;
  }
  template <class Block>
  static auto& UseCount(Block& io_block) {
    return io_block.m_use_count;
  }
  template <class Block>
  static auto& TakePosition(Block& io_block) {
    return io_block.m_take_position;
  }
  template <class Block>
  static auto& ReturnPosition(Block& io_block) {
    return io_block.m_return_position;
  }
  template <class Block>
  static unsigned long& Entry(Block& io_block, std::size_t i_position) {
    return io_block.m_free_slots[i_position];
  }
};

}  // namespace lum
