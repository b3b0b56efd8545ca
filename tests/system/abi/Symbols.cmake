# Compares what the shared library exports with debian/liblum0.symbols, by demangled names. With UPDATE, records it
# there instead; names that are known keep the version that introduced them.
cmake_minimum_required(VERSION 3.25)
find_program(CXXFILT c++filt REQUIRED)

execute_process(
  COMMAND "${NM}" -D --defined-only --format=posix "${LIBRARY}"
  COMMAND cut -d " " -f 1
  OUTPUT_VARIABLE mangled COMMAND_ERROR_IS_FATAL ANY)
file(WRITE "${WORK_DIR}/mangled.txt" "${mangled}")
execute_process(
  COMMAND "${CXXFILT}"
  COMMAND "${CMAKE_COMMAND}" -E env LC_ALL=C sort -u
  INPUT_FILE "${WORK_DIR}/mangled.txt"
  OUTPUT_VARIABLE names COMMAND_ERROR_IS_FATAL ANY)

# One demangled name stands for both forms of a constructor or destructor: a complete object's and a base's.
string(STRIP "${mangled}" symbols)
string(REPLACE "\n" ";" symbols "${symbols}")
foreach(symbol IN LISTS symbols)
  string(REGEX REPLACE "([CD])1E" "\\12E" base "${symbol}")
  if(NOT base IN_LIST symbols)
    message(FATAL_ERROR "${symbol} is exported without ${base}")
  endif()
endforeach()

file(READ "${RECORD}" recorded)
string(REGEX MATCH "^[^\n]*\n[^\n]*\n" exported "${recorded}")
file(REAL_PATH "${LIBRARY}" library)
string(REGEX MATCH "[0-9]+\\.[0-9]+\\.[0-9]+$" current "${library}")
string(STRIP "${names}" names)
string(REPLACE "\n" ";" names "${names}")
foreach(name IN LISTS names)
  set(line " (c++)\"${name}@Base\" ")
  set(version "${current}")
  string(FIND "${recorded}" "${line}" start)
  if(NOT start EQUAL -1)
    string(SUBSTRING "${recorded}" ${start} -1 rest)
    string(REGEX REPLACE "^[^\n]*\" ([^\n]*)\n.*" "\\1" version "${rest}")
  endif()
  string(APPEND exported "${line}${version}\n")
endforeach()

if(UPDATE)
  file(WRITE "${RECORD}" "${exported}")
  return()
endif()
file(WRITE "${WORK_DIR}/exported.txt" "${exported}")
execute_process(
  COMMAND diff "${RECORD}" "${WORK_DIR}/exported.txt"
  RESULT_VARIABLE result
  OUTPUT_VARIABLE differences)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "No longer exported (<), or not recorded (>):\n${differences}\nA private member stays inside the "
                      "library: mark it LUM_HIDDEN. If the change is meant, run scripts/abi symbols")
endif()
