#pragma once

#include <ios>
#include <locale>
#include <ostream>
#include <string_view>

#include "Utility/optional.h"
#include "extras/ValueText.h"

/// \file
/// Stream output of the values and identifiers that have none in the library; ValueText.h shows the texts.
///
/// Every number is written by the stream's own insertion, so precision, notation, base, sign, case, fill,
/// adjustment and locale are the stream's. Its width goes to each number, so that values line up in columns,
/// and is 0 afterwards, as after any insertion. All else is left as it was. The identifiers that the library
/// streams by itself give the width to the text before the number.
///
/// Where the stream's locale writes a comma within numbers, a semicolon separates them: (1,5; 2; 3).
///
/// Nothing is taken from the pools or counted. What the stream throws passes out, behind what it has written.
/// As safe on threads as the stream is, of values that no other thread writes.
namespace lum {

namespace internal {

class StreamWriter {
 public:
  explicit StreamWriter(std::ostream& io_stream)
      : m_stream(io_stream), m_width(io_stream.width(0)), m_separator(SeparatorFor(io_stream.getloc())) {}

  void Text(std::string_view i_text) { m_stream << i_text; }
  void Separate() { m_stream << m_separator; }
  template <class T>
  void Number(T const& i_number) {
    m_stream.width(m_width);
    m_stream << i_number;
  }

 private:
  static char const* SeparatorFor(std::locale const& i_locale) {
    auto const& punctuation = std::use_facet<std::numpunct<char>>(i_locale);
    bool const has_comma = punctuation.decimal_point() == ',' ||
                           (punctuation.thousands_sep() == ',' && !punctuation.grouping().empty());
    return has_comma ? "; " : ", ";
  }

  std::ostream& m_stream;
  std::streamsize m_width;
  char const* m_separator;
};

}  // namespace internal

/// The value's text, with its numbers as the stream writes numbers.
template <internal::HasText Value>
std::ostream& operator<<(std::ostream& io_stream, Value const& i_value) {
  internal::StreamWriter writer(io_stream);
  internal::TextOf<Value>::Write(writer, i_value);
  return io_stream;
}

/// The value as it streams itself, or "nullopt".
template <class T>
requires requires(std::ostream& io_stream, T const& i_value) { io_stream << i_value; }
std::ostream& operator<<(std::ostream& io_stream, optional<T> const& i_optional) {
  if (i_optional) return io_stream << *i_optional;
  return io_stream << "nullopt";
}

namespace CanonicalCubeElementIds {
using lum::operator<<;  // where the enumerations of this namespace look for it
}

}  // namespace lum
