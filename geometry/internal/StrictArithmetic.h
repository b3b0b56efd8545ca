#pragma once

// Included by every source whose results are reproducible to the bit. Under these options a compiler may
// reorder sums, multiply by reciprocals, or assume that NaNs and infinities do not occur.
#if defined(__FAST_MATH__) || defined(__ASSOCIATIVE_MATH__) || defined(__RECIPROCAL_MATH__) || \
    defined(__NO_SIGNED_ZEROS__) || (defined(__FINITE_MATH_ONLY__) && __FINITE_MATH_ONLY__)
#error "lum promises the order of its operations: build it without -ffast-math, -Ofast and their parts"
#endif
