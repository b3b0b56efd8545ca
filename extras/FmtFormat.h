#pragma once

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <type_traits>

#include "extras/ValueFormatter.h"

/// \file
/// Formatters of the values and identifiers for the library {fmt}, which only users of this header need.
/// ValueText.h shows the texts, ValueFormatter.h what format options do.
/// \cond
template <lum::internal::HasText Value>
struct fmt::formatter<Value, char>
    : lum::internal::ValueFormatter<fmt::formatter<typename lum::internal::TextOf<Value>::Number, char>> {};

template <class T>
requires std::is_default_constructible_v<fmt::formatter<T, char>>
struct fmt::formatter<lum::optional<T>, char> : lum::internal::OptionalFormatter<fmt::formatter<T, char>> {
};

/// Vectors and points are ranges too; as such they would have a second formatter.
template <lum::internal::HasText Value>
struct fmt::is_range<Value, char> : std::false_type {};
/// \endcond
