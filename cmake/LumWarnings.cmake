# Warnings are for our own build; presets make them errors. A user's build gets neither.
function(lum_warnings target)
  if(PROJECT_IS_TOP_LEVEL)
    target_compile_options(
      ${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast
                        -Wnon-virtual-dtor)
    if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
      # g++ 12 takes the sum of a literal and a string for a copy that overlaps (GCC bug 105651).
      target_compile_options(${target} PRIVATE -Wno-restrict)
    endif()
    # At -O3, and behind a sanitizer's checks, g++ loses sight of the flag that guards an optional value and takes
    # the value for uninitialised; the plain debug build keeps this warning.
    if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND (CMAKE_CXX_FLAGS MATCHES "-fsanitize" OR NOT CMAKE_BUILD_TYPE STREQUAL
                                                                                Debug))
      target_compile_options(${target} PRIVATE -Wno-maybe-uninitialized)
    endif()
  endif()
endfunction()
