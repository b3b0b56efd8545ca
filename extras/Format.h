#pragma once

#include <type_traits>
#include <version>

#include "extras/ValueFormatter.h"

/// \file
/// Formatters of the values and identifiers for `std::format`, where the standard library has it. ValueText.h
/// shows the texts, ValueFormatter.h what format options do.

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
