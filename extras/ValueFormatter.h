#pragma once

#include <algorithm>
#include <string_view>

#include "Utility/optional.h"
#include "extras/ValueText.h"

/// \file
/// The common part of the formatters of Format.h and FmtFormat.h. ValueText.h lists the texts.
///
/// The format options are those of a number and apply to each number: `{:8.3f}` writes every component of a
/// vector with 8 characters and 3 digits. The separator is ", ", or "; " with the option L, whose locale may
/// write commas within numbers.
///
/// Options that a number of the value's type does not support throw the same exception as for that number,
/// with the formatting library's message. Formatting acquires no object and changes no reference count. It is
/// thread-safe for values that no other thread writes. A matrix or quaternion must not be moved-from.
namespace lum::internal {

/// \tparam NumberFormatter  the formatter of one number, which parses the options and writes each number
template <class NumberFormatter>
class ValueFormatter {
 public:
  template <class ParseContext>
  constexpr auto parse(ParseContext& io_context) {
    auto const begin = io_context.begin();
    auto const end = m_number.parse(io_context);
    m_uses_locale = UsesLocale(std::string_view(begin, end));
    return end;
  }

  template <class Value, class FormatContext>
  auto format(Value const& i_value, FormatContext& io_context) const {
    Writer<FormatContext> writer{m_number, io_context, m_uses_locale ? "; " : ", "};
    TextOf<Value>::Write(writer, i_value);
    return io_context.out();
  }

 private:
  template <class FormatContext>
  struct Writer {
    void Text(std::string_view i_text) {
      context.advance_to(std::copy(i_text.begin(), i_text.end(), context.out()));
    }
    void Separate() { Text(separator); }
    template <class T>
    void Number(T const& i_number) {
      context.advance_to(number.format(i_number, context));
    }

    NumberFormatter const& number;
    FormatContext& context;
    std::string_view separator;
  };

  // The option L is last, or just before the type's letter. As a fill character, L precedes the alignment.
  static constexpr bool UsesLocale(std::string_view i_options) {
    if (i_options.empty()) return false;
    char const last = i_options.back();
    bool const is_type = ('a' <= last && last <= 'z') || ('A' <= last && last <= 'Z');
    if (last != 'L' && is_type) i_options.remove_suffix(1);
    return i_options.ends_with('L');
  }

  NumberFormatter m_number;
  bool m_uses_locale = false;
};

/// Formats the value, or writes "nullopt", which no option changes.
template <class ContainedFormatter>
class OptionalFormatter {
 public:
  template <class ParseContext>
  constexpr auto parse(ParseContext& io_context) {
    return m_contained.parse(io_context);
  }

  template <class T, class FormatContext>
  auto format(optional<T> const& i_optional, FormatContext& io_context) const {
    if (i_optional) return m_contained.format(*i_optional, io_context);
    constexpr std::string_view nothing = "nullopt";
    return std::copy(nothing.begin(), nothing.end(), io_context.out());
  }

 private:
  ContainedFormatter m_contained;
};

}  // namespace lum::internal
