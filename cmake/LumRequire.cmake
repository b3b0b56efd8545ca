# What is missing is said in one line that names the command that installs it.

# The command of scripts/setup that installs what the options ask for, in the order of what they include.
if(LUM_BUILD_TESTS OR LUM_BUILD_VERIFICATION)
  set(lum_setup test)
elseif(LUM_BUILD_BENCHMARKS)
  set(lum_setup benchmark)
elseif(LUM_BUILD_EXAMPLES)
  set(lum_setup demo)
elseif(LUM_BUILD_DOCS)
  set(lum_setup docs)
else()
  set(lum_setup build)
endif()

# lum_require(<who> <what> <Debian package> <found>): stops where found is false.
macro(lum_require who what package)
  if(NOT (${ARGN}))
    message(FATAL_ERROR "${who} needs ${what} (Debian: ${package}): run scripts/setup ${lum_setup}")
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
