# Warnings are for our own build; presets make them errors. A user's build gets neither.
function(lum_warnings target)
  if(PROJECT_IS_TOP_LEVEL)
    target_compile_options(
      ${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast
                        -Wnon-virtual-dtor)
  endif()
endfunction()
