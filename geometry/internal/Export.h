#pragma once

#include "geometry/internal/RequireCpp20.h"

/// Marks what the shared library exports; everything else is hidden. A macro, because an attribute cannot be
/// named in another way. The attribute also keeps the symbol visible in callers that are compiled with hidden
/// visibility.
#define LUM_EXPORT __attribute__((visibility("default")))

/// Keeps a private member of an exported class inside the shared library. An inline function that callers
/// compile must not call it, unless it is always inlined there.
#define LUM_HIDDEN __attribute__((visibility("hidden")))

/// Makes clang describe the whole class in the debug information of every source that uses it, like g++. By
/// default clang describes a class only in the source that defines its constructors, which is in the library.
/// If the library is stripped, a debugger could then not show the class's values.
#if __has_attribute(standalone_debug)
#define LUM_STANDALONE_DEBUG __attribute__((standalone_debug))
#else
#define LUM_STANDALONE_DEBUG
#endif
