# The library documents its order of operations: no product may be fused into a sum, and no sum reordered.

function(lum_keep_order_of_operations target)
  target_compile_options(
    ${target}
    PRIVATE -ffp-contract=off
            # g++ 12 forms vfmaddsub from separate operations when it vectorises straight-line code, even
            # with -ffp-contract=off.
            $<$<CXX_COMPILER_ID:GNU>:-fno-tree-slp-vectorize>)
endfunction()

# Refuses the flags that are known when configuring; geometry/internal/StrictArithmetic.h refuses the rest when compiling.
function(lum_refuse_fast_math)
  string(TOUPPER "${CMAKE_BUILD_TYPE}" config)
  get_directory_property(options COMPILE_OPTIONS)
  if("${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${config}} ${options}" MATCHES
     "-Ofast|-f(fast-math|unsafe-math-optimizations|associative-math|reciprocal-math|finite-math-only|no-signed-zeros)"
  )
    message(FATAL_ERROR "lum promises the order of its operations and cannot be built with ${CMAKE_MATCH_0}: "
                        "remove fast-math from the compiler flags.")
  endif()
endfunction()
