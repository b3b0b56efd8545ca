#pragma once

namespace lum::test {

/// Whether all comparisons say that the first value comes before the second, and that each equals itself.
template <class T>
constexpr bool IsOrdered(T const& i_first, T const& i_second) {
  for (T const& value : {i_first, i_second}) {
    T const same = value;
    if (value < same || value > same || !(value <= same) || !(value >= same) || value != same) return false;
  }
  return i_first < i_second && i_first <= i_second && !(i_first > i_second) && !(i_first >= i_second) &&
         i_first != i_second && i_second > i_first && i_second >= i_first && !(i_second < i_first) &&
         !(i_second <= i_first);
}

}  // namespace lum::test
