#pragma once

#include <type_traits>
#include <version>

#include "extras/ValueFormatter.h"

/// \file
/// Formatters of values and identifiers for `std::format`; empty if the standard library lacks it.
/// ValueText.h lists the texts; ValueFormatter.h describes the format options.

#ifdef __cpp_lib_format
#include <format>

/// \cond
template <lum::internal::HasText Value>
struct std::formatter<Value, char>
    : lum::internal::ValueFormatter<std::formatter<typename lum::internal::TextOf<Value>::Number, char>> {};

template <class T>
requires std::is_default_constructible_v<std::formatter<T, char>>
struct std::formatter<lum::optional<T>, char> : lum::internal::OptionalFormatter<std::formatter<T, char>> {
};
/// \endcond
#endif
