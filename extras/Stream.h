#pragma once

#include <ios>
#include <locale>
#include <ostream>
#include <string_view>

#include "Utility/optional.h"
#include "extras/ValueText.h"

/// \file
/// Stream output of values and identifiers that the library itself does not stream, with the texts of
/// ValueText.h.
///
/// The stream's own insertion writes every number, so the stream's precision, notation, base, sign, case,
/// fill, adjustment and locale apply. The stream's width applies to each number, so that values align in
/// columns, and is 0 afterwards, as after any insertion. The other settings are unchanged. For identifiers
/// that the library itself streams, the width applies to the text before the number.
///
/// If the stream's locale writes commas within numbers, semicolons separate the numbers: (1,5; 2; 3).
///
/// Streaming acquires no object and changes no reference count. An exception of the stream is passed on; the
/// part already written remains. Streaming is as thread-safe as the stream, for values that no other thread
/// writes. A matrix or quaternion must not be moved-from.
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

/// Writes the value's text, with the stream's settings for each number.
template <internal::HasText Value>
std::ostream& operator<<(std::ostream& io_stream, Value const& i_value) {
  internal::StreamWriter writer(io_stream);
  internal::TextOf<Value>::Write(writer, i_value);
  return io_stream;
}

/// Writes the value by its own `operator<<`, or "nullopt".
template <class T>
requires requires(std::ostream& io_stream, T const& i_value) { io_stream << i_value; }
std::ostream& operator<<(std::ostream& io_stream, optional<T> const& i_optional) {
  if (i_optional) return io_stream << *i_optional;
  return io_stream << "nullopt";
}

namespace CanonicalCubeElementIds {
using lum::operator<<;  // for argument-dependent lookup of this namespace's enumerations
}

}  // namespace lum
