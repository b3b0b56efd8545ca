# The library documents its order of operations: no product may be fused into a sum, and no sum reordered.

function(lum_keep_order_of_operations target)
  target_compile_options(
    ${target}
    PRIVATE -ffp-contract=off
            # g++ 12 forms vfmaddsub from separate operations when it vectorises straight-line code, even
            # with -ffp-contract=off.
            $<$<CXX_COMPILER_ID:GNU>:-fno-tree-slp-vectorize>)
endfunction()

# Refuses flags that are known when configuring, for compiling and for linking: with -ffast-math, g++ links a file that
# switches on flush-to-zero for the whole process. geometry/internal/StrictArithmetic.h refuses other ways of passing
# them when compiling, as far as the compilers' macros tell.
function(lum_refuse_fast_math)
  get_directory_property(flags COMPILE_OPTIONS)
  get_directory_property(link_options LINK_OPTIONS)
  list(APPEND flags ${link_options} "${CMAKE_CXX_FLAGS}" "${CMAKE_SHARED_LINKER_FLAGS}")
  foreach(config IN LISTS CMAKE_BUILD_TYPE CMAKE_CONFIGURATION_TYPES)
    string(TOUPPER "${config}" config)
    list(APPEND flags "${CMAKE_CXX_FLAGS_${config}}" "${CMAKE_SHARED_LINKER_FLAGS_${config}}")
  endforeach()
  set(parts "fast-math|unsafe-math-optimizations|associative-math|reciprocal-math|finite-math-only|no-signed-zeros")
  string(APPEND parts "|no-honor-(nans|infinities)|approx-func|single-precision-constant|fp-model=(fast|aggressive)")
  string(APPEND parts "|denormal-fp-math[a-z0-9-]*=(positive-zero|preserve-sign)")
  if("${flags}" MATCHES "-Ofast|-mfpmath=([^ ;]*387|both)|-f(${parts})")
    message(FATAL_ERROR "lum promises the order of its operations and cannot be built with ${CMAKE_MATCH_0}: "
                        "remove fast-math from the compiler flags.")
  endif()
endfunction()
