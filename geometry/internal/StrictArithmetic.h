#pragma once

// Included by every source whose results are reproducible to the bit. Under these options a compiler may
// reorder sums, multiply by reciprocals, assume that NaNs and infinities do not occur, or round otherwise.
// g++ has a macro for each. clang has one for -ffinite-math-only and one for fast-math as a whole.
#if defined(__FAST_MATH__)
#error "lum promises the order of its operations: build it without -ffast-math and -Ofast"
#elif defined(__ASSOCIATIVE_MATH__) && defined(__RECIPROCAL_MATH__) && defined(__NO_SIGNED_ZEROS__)
#error "lum promises the order of its operations: build it without -funsafe-math-optimizations"
#elif defined(__ASSOCIATIVE_MATH__)
#error "lum promises the order of its operations: build it without -fassociative-math"
#elif defined(__RECIPROCAL_MATH__)
#error "lum promises the order of its operations: build it without -freciprocal-math"
#elif defined(__NO_SIGNED_ZEROS__)
#error "lum promises the order of its operations: build it without -fno-signed-zeros"
#elif defined(__FINITE_MATH_ONLY__) && __FINITE_MATH_ONLY__ != 0
#error "lum promises the order of its operations: build it without -ffinite-math-only"
#elif defined(__FLT_EVAL_METHOD__) && __FLT_EVAL_METHOD__ != 0 && __FLT_EVAL_METHOD__ != 16
// 16 concerns half precision only. Later versions of clang say -1 for some parts of fast-math.
#error "lum promises the order of its operations: build it without excess precision, as of -mfpmath=387"
#elif defined(__GCC_IEC_559) && __GCC_IEC_559 == 0
#error "lum promises the order of its operations: build it for IEEE 754 arithmetic"
#endif
