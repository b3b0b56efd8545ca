#pragma once

// Included by every header that includes no other header of the library, so that it comes before the first
// line that an older standard cannot parse. An #error would not end the compilation, and hundreds of errors
// would follow; a file that is missing ends it with one.
#if __cplusplus < 202002L
#include <lum needs C++20>
#endif
