#pragma once

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <type_traits>

#include "extras/ValueFormatter.h"

/// \file
/// Formatters of values and identifiers for the library {fmt}. No other header of lum needs {fmt}.
/// ValueText.h lists the texts; ValueFormatter.h describes the format options.
/// \cond
template <lum::internal::HasText Value>
struct fmt::formatter<Value, char>
    : lum::internal::ValueFormatter<fmt::formatter<typename lum::internal::TextOf<Value>::Number, char>> {};

template <class T>
requires std::is_default_constructible_v<fmt::formatter<T, char>>
struct fmt::formatter<lum::optional<T>, char> : lum::internal::OptionalFormatter<fmt::formatter<T, char>> {
};

/// Vectors and points are also ranges, for which {fmt} has a formatter of its own.
template <lum::internal::HasText Value>
struct fmt::is_range<Value, char> : std::false_type {};
/// \endcond
