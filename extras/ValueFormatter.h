#pragma once

#include <algorithm>
#include <string_view>

#include "Utility/optional.h"
#include "extras/ValueText.h"

/// \file
/// What the formatters of Format.h and FmtFormat.h share. ValueText.h shows the texts.
///
/// The format options are those of a number and are applied to each: `{:8.3f}` of a vector gives every
/// component 8 characters and 3 digits. The numbers are separated by ", ", and by "; " where L asks for the
/// form of a locale, which may write a comma within numbers.
///
/// Options that a number of the value's type does not take are refused as they are of such a number: by the
/// exception of the formatting library, with its text. Nothing is taken from the pools or counted. Safe from
/// any thread, on values that no other thread writes.
namespace lum::internal {

/// \tparam NumberFormatter  the formatter of one number, which parses the options and writes
template <class NumberFormatter>
class ValueFormatter {
 public:
  template <class ParseContext>
  constexpr auto parse(ParseContext& io_context) {
    auto const begin = io_context.begin();
    auto const end = m_number.parse(io_context);
    m_uses_locale = AsksForLocale(std::string_view(begin, end));
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

  // L stands last, or just before the letter of the type. An L that fills stands before its alignment.
  static constexpr bool AsksForLocale(std::string_view i_options) {
    if (i_options.empty()) return false;
    char const last = i_options.back();
    bool const is_type = ('a' <= last && last <= 'z') || ('A' <= last && last <= 'Z');
    if (last != 'L' && is_type) i_options.remove_suffix(1);
    return i_options.ends_with('L');
  }

  NumberFormatter m_number;
  bool m_uses_locale = false;
};

/// The formatter of the value, or the text "nullopt", which no option changes.
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
