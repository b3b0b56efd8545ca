#pragma once

#include <utility>

namespace lum::test {

/// A moved-from value.
template <class Value>
Value MovedFrom(Value i_value) {
  Value const taken(std::move(i_value));
  return i_value;  // NOLINT(bugprone-use-after-move): that is its purpose
}

}  // namespace lum::test
