#pragma once

#include <gtest/gtest.h>

#include <utility>

namespace lum::test {

/// Succeeds when all comparisons say that the first value comes before the second, and that each equals
/// itself; otherwise names the first comparison that does not.
template <class T>
testing::AssertionResult IsOrdered(T const& i_first, T const& i_second) {
  for (auto const& [name, value] : {std::pair{"first", &i_first}, std::pair{"second", &i_second}}) {
    T const copy = *value;
    for (auto const& [comparison, holds] :
         {std::pair{"<", !(*value < copy)}, std::pair{">", !(*value > copy)},
          std::pair{"!=", !(*value != copy)}, std::pair{"==", *value == copy},
          std::pair{"<=", *value <= copy}, std::pair{">=", *value >= copy}}) {
      if (!holds) return testing::AssertionFailure() << "wrong: " << name << ' ' << comparison << " itself";
    }
  }
  for (auto const& [comparison, holds] :
       {std::pair{"first < second", i_first < i_second}, std::pair{"first <= second", i_first <= i_second},
        std::pair{"first != second", i_first != i_second}, std::pair{"first > second", !(i_first > i_second)},
        std::pair{"first >= second", !(i_first >= i_second)},
        std::pair{"first == second", !(i_first == i_second)}, std::pair{"second > first", i_second > i_first},
        std::pair{"second >= first", i_second >= i_first}, std::pair{"second < first", !(i_second < i_first)},
        std::pair{"second <= first", !(i_second <= i_first)}}) {
    if (!holds) return testing::AssertionFailure() << "wrong: " << comparison;
  }
  return testing::AssertionSuccess();
}

}  // namespace lum::test
