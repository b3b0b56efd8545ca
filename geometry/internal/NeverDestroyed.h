#pragma once

#include <utility>

namespace lum::internal {

/// Holds a value of static storage duration that is constant-initialised and whose destructor never runs, so
/// that it is valid before the first dynamic initialisation and after the last exit-time destructor.
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
