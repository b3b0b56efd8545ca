# Adds warnings to builds of lum itself, where presets make them errors. As a subproject, lum adds none.
function(lum_warnings target)
  if(PROJECT_IS_TOP_LEVEL)
    target_compile_options(
      ${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast
                        -Wnon-virtual-dtor)
    if(CMAKE_CXX_COMPILER_ID STREQUAL Clang)
      target_compile_options(${target} PRIVATE -Wreserved-identifier -Wreserved-macro-identifier)
    endif()
    if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
      # g++ 12 reports the sum of a literal and a string as an overlapping copy (GCC bug 105651).
      target_compile_options(${target} PRIVATE -Wno-restrict)
    endif()
    # At -O3 and with sanitizers, g++ loses track of the flag that guards an optional value and reports the value as
    # uninitialised; the plain debug build keeps this warning.
    if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND (CMAKE_CXX_FLAGS MATCHES "-fsanitize" OR NOT CMAKE_BUILD_TYPE STREQUAL
                                                                                Debug))
      target_compile_options(${target} PRIVATE -Wno-maybe-uninitialized)
    endif()
  endif()
endfunction()
