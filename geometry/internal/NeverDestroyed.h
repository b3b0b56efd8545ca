#pragma once

#include <utility>

namespace lum::internal {

/// A value of static storage duration that is constant-initialised and never destroyed. It is valid before
/// the first dynamic initialisation and after the last destructor of the process.
template <class T>
union NeverDestroyed {
  template <class... Arguments>
  constexpr explicit NeverDestroyed(Arguments&&... i_arguments)
      : m_value(std::forward<Arguments>(i_arguments)...) {}
  NeverDestroyed(NeverDestroyed const&) = delete;
  NeverDestroyed& operator=(NeverDestroyed const&) = delete;
  constexpr ~NeverDestroyed() {}  // not defaulted: a defaulted one would be deleted

  T m_value;
};

}  // namespace lum::internal
