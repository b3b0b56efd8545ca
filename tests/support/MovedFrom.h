#pragma once

#include <utility>

namespace lum::test {

/// What is left of a value that was moved from.
template <class Value>
Value MovedFrom(Value i_value) {
  Value const taken(std::move(i_value));
  return i_value;  // NOLINT(bugprone-use-after-move): what is left is asked for
}

}  // namespace lum::test
