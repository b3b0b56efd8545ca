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
    # Behind a sanitizer's checks g++ loses sight of the flag that guards an optional value, and takes the value
    # for uninitialised; the builds without sanitizers keep this warning.
    if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_FLAGS MATCHES "-fsanitize")
      target_compile_options(${target} PRIVATE -Wno-maybe-uninitialized)
    endif()
  endif()
endfunction()
