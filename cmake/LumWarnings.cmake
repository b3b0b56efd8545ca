# Warnings are for our own build; presets make them errors. A user's build gets neither.
function(lum_warnings target)
  if(PROJECT_IS_TOP_LEVEL)
    target_compile_options(
      ${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast
                        -Wnon-virtual-dtor)
    # Behind a sanitizer's checks g++ loses sight of the flag that guards an optional value, and takes the value
    # for uninitialised; the builds without sanitizers keep this warning.
    if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_FLAGS MATCHES "-fsanitize")
      target_compile_options(${target} PRIVATE -Wno-maybe-uninitialized)
    endif()
  endif()
endfunction()
