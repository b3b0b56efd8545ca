#pragma once

#include <compare>
#include <cstddef>
#include <iterator>

#include "geometry/internal/RequireCpp20.h"

namespace lum::internal {

/// The base of all iterators over computed elements: an index, and the arithmetic of a random access iterator
/// on it. The derived iterator adds its context and computes `operator*`.
///
/// Elements are values, not references. So the iterators are random access iterators in C++20, but input
/// iterators for algorithms from before C++20.
template <class Iterator, class Element>
class IndexIterator {
 public:
  using iterator_concept = std::random_access_iterator_tag;
  using iterator_category = std::input_iterator_tag;
  using value_type = Element;
  using difference_type = std::ptrdiff_t;
  using pointer = void;
  using reference = Element;

  constexpr Iterator& operator++() noexcept { return *this += 1; }
  constexpr Iterator& operator--() noexcept { return *this -= 1; }
  constexpr Iterator operator++(int) noexcept { return (*this += 1) - 1; }
  constexpr Iterator operator--(int) noexcept { return (*this -= 1) + 1; }
  constexpr Iterator& operator+=(difference_type i_offset) noexcept {
    m_index += static_cast<unsigned int>(i_offset);
    return static_cast<Iterator&>(*this);
  }
  constexpr Iterator& operator-=(difference_type i_offset) noexcept { return *this += -i_offset; }
  constexpr Element operator[](difference_type i_offset) const {
    return *(static_cast<Iterator const&>(*this) + i_offset);
  }

  friend constexpr Iterator operator+(Iterator i_iterator, difference_type i_offset) noexcept {
    return i_iterator += i_offset;
  }
  friend constexpr Iterator operator+(difference_type i_offset, Iterator i_iterator) noexcept {
    return i_iterator += i_offset;
  }
  friend constexpr Iterator operator-(Iterator i_iterator, difference_type i_offset) noexcept {
    return i_iterator -= i_offset;
  }
  friend constexpr difference_type operator-(Iterator const& i_a, Iterator const& i_b) noexcept {
    return static_cast<difference_type>(i_a.GetIndex()) - static_cast<difference_type>(i_b.GetIndex());
  }

  /// Compares the indices. The derived iterator compares its context too.
  friend constexpr auto operator<=>(IndexIterator const&, IndexIterator const&) noexcept = default;

 protected:
  constexpr IndexIterator() noexcept = default;
  explicit constexpr IndexIterator(unsigned int i_index) noexcept : m_index(i_index) {}

  constexpr unsigned int GetIndex() const noexcept { return m_index; }

 private:
  unsigned int m_index = 0;
};

}  // namespace lum::internal
