#pragma once

/// Marks what the shared library exports; everything else is hidden. A macro, because an attribute can be
/// spelled in no other way. It also keeps the symbol visible to callers that build with hidden visibility.
#define LUM_EXPORT __attribute__((visibility("default")))
