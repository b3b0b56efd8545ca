#pragma once

#include <locale>
#include <string>

namespace lum::test {

/// Writes 1234.5 as 1.234,5.
class CommaPunctuation : public std::numpunct<char> {
 protected:
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

inline std::locale MakeCommaLocale() { return {std::locale::classic(), new CommaPunctuation}; }

}  // namespace lum::test
