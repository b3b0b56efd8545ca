# Reports a missing requirement in one line, which names the command that installs it.

# lum_get_setup(<result>): the command that installs what the options need. A command that installs more is tried first.
function(lum_get_setup result)
  if(LUM_BUILD_VERIFICATION AND CMAKE_CXX_COMPILER_ID STREQUAL Clang)
    set(what verify)
  elseif(LUM_BUILD_DOCS AND (LUM_BUILD_TESTS OR LUM_BUILD_EXAMPLES OR LUM_BUILD_BENCHMARKS OR LUM_BUILD_VERIFICATION))
    set(what verify) # the only set with what docs needs and more
  elseif(LUM_BUILD_TESTS OR LUM_BUILD_VERIFICATION)
    set(what test)
  elseif(LUM_BUILD_BENCHMARKS)
    set(what benchmark)
  elseif(LUM_BUILD_EXAMPLES)
    set(what demo)
  elseif(LUM_BUILD_DOCS)
    set(what docs)
  else()
    set(what build)
  endif()
  file(RELATIVE_PATH script "${CMAKE_SOURCE_DIR}" "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/../scripts/setup")
  set(${result} "${script} ${what}" PARENT_SCOPE)
endfunction()

# lum_require(<who> <what> <Debian package> <condition>...): stops if the condition is false. The message starts with a
# space because CMake does not wrap such lines.
macro(lum_require who what package)
  if(NOT (${ARGN}))
    lum_get_setup(lum_setup)
    message(FATAL_ERROR " ${who} needs ${what} (Debian: ${package}): run ${lum_setup}")
  endif()
endmacro()

# lum_require_package(<who> <name> <Debian package> <argument of find_package>...)
macro(lum_require_package who name package)
  find_package(${name} QUIET ${ARGN})
  lum_require(${who} ${name} ${package} ${name}_FOUND)
endmacro()

# lum_require_program(<who> <variable> <Debian package> <name>...)
macro(lum_require_program who variable package)
  find_program(${variable} NAMES ${ARGN})
  mark_as_advanced(${variable})
  lum_require(${who} ${ARGV3} ${package} ${variable})
endmacro()

# lum_require_library(<who> <variable> <Debian package> <name>)
macro(lum_require_library who variable package name)
  find_library(${variable} NAMES ${name})
  mark_as_advanced(${variable})
  lum_require(${who} ${name} ${package} ${variable})
endmacro()

# lum_require_tools(): requires make and a compiler before project() does, because CMake's own errors name no command.
macro(lum_require_tools)
  if(CMAKE_GENERATOR STREQUAL "Unix Makefiles")
    lum_require_program(lum CMAKE_MAKE_PROGRAM make make gmake)
  endif()
  if(NOT CMAKE_CXX_COMPILER AND NOT CMAKE_TOOLCHAIN_FILE AND NOT DEFINED ENV{CXX})
    find_program(lum_compiler NAMES c++ g++ clang++)
    mark_as_advanced(lum_compiler)
    lum_require(lum "a C++ compiler" g++ lum_compiler)
  endif()
endmacro()
