#pragma once

/// Marks what the shared library exports; everything else is hidden. A macro, because an attribute can be
/// spelled in no other way. It also keeps the symbol visible to callers that build with hidden visibility.
#define LUM_EXPORT __attribute__((visibility("default")))

/// Has clang put all of a class into the debug information of every source that uses it, as g++ does. By
/// itself clang leaves that to the source with the constructors, which is the library's, and a debugger has
/// nothing to show where the library was stripped.
#if __has_attribute(standalone_debug)
#define LUM_STANDALONE_DEBUG __attribute__((standalone_debug))
#else
#define LUM_STANDALONE_DEBUG
#endif
