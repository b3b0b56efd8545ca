# The shared library exports names of namespace lum only: none of Eigen, none of lum's internals, and no unique
# symbols (STB_GNU_UNIQUE), which would keep the library from being unloaded.
execute_process(
  COMMAND "${NM}" -DC --defined-only "${LIBRARY}"
  OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE ";" ":" symbols "${symbols}")
string(REPLACE "\n" ";" symbols "${symbols}")

# find_stray(<result> <symbol>...): those that must not be exported.
function(find_stray result)
  set(stray)
  foreach(symbol IN LISTS ARGN)
    if(symbol MATCHES "^[0-9a-f]+ u " OR (symbol MATCHES "^[0-9a-f]+ [A-Zv] " AND
                                          (NOT symbol MATCHES "^[0-9a-f]+ [A-Zv] lum::" OR symbol MATCHES
                                                                                          "^[0-9a-f]+ [A-Zv] ([^(<]* )?lum::internal::")))
      list(APPEND stray "${symbol}")
    endif()
  endforeach()
  set(${result} "${stray}" PARENT_SCOPE)
endfunction()

find_stray(planted "0 W Eigen::internal::f()" "0 V guard variable for Eigen::x" "0 T lum::internal::g()"
           "0 u lum::y" "0 T lum::Matrix<float>::Matrix()")
list(LENGTH planted count)
if(NOT count EQUAL 4)
  message(FATAL_ERROR "The search itself is broken: it found ${planted}")
endif()

find_stray(stray ${symbols})
if(stray)
  list(JOIN stray "\n" stray)
  message(FATAL_ERROR "Must not be exported:\n${stray}")
endif()
if(NOT symbols MATCHES "lum::Matrix<float>::GetInverse")
  message(FATAL_ERROR "Nothing is exported")
endif()
