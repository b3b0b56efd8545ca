# In the machine code of the library, every function with non-temporal stores has a store fence after the last of them.
# Without the fence, a caller that publishes the results could publish them before they are stored.

# find_unfenced(<result> <line>...): the functions of a disassembly whose last non-temporal store no fence follows. Sets
# streaming_functions to the number of functions that have such stores.
function(find_unfenced result)
  set(unfenced)
  set(streaming 0)
  set(function)
  set(is_pending FALSE)
  foreach(line IN LISTS ARGN ITEMS "<end>:")
    if(line MATCHES "<(.*)>:$")
      if(is_pending)
        list(APPEND unfenced "${function}")
      endif()
      set(function "${CMAKE_MATCH_1}")
      set(is_pending FALSE)
      set(has_streamed FALSE)
    elseif(line MATCHES "[\t ]v?movnt")
      set(is_pending TRUE)
      if(NOT has_streamed)
        math(EXPR streaming "${streaming} + 1")
        set(has_streamed TRUE)
      endif()
    elseif(line MATCHES "[\t ]sfence")
      set(is_pending FALSE)
    endif()
  endforeach()
  set(${result} "${unfenced}" PARENT_SCOPE)
  set(streaming_functions "${streaming}" PARENT_SCOPE)
endfunction()

find_unfenced(planted "0 <f>:" " 1: movntps %xmm0,(%rdi)" " 2: sfence" " 3: ret" "4 <g>:" " 5: movntpd %xmm0,(%rdi)"
              " 6: ret" "7 <h>:" " 8: ret")
if(NOT planted STREQUAL "g" OR NOT streaming_functions EQUAL 2)
  message(FATAL_ERROR "The search itself is broken: it found ${planted} among ${streaming_functions}")
endif()

execute_process(
  COMMAND "${OBJDUMP}" -dC --no-show-raw-insn "${LIBRARY}"
  OUTPUT_VARIABLE code COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE "[][;]" ":" code "${code}")
string(REPLACE "\n" ";" code "${code}")
find_unfenced(unfenced ${code})
if(unfenced)
  message(FATAL_ERROR "Non-temporal stores without a fence after them: ${unfenced}")
endif()
if(streaming_functions EQUAL 0)
  message(FATAL_ERROR "There are no non-temporal stores")
endif()
