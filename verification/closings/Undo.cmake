# Run by the scripts that lum_closing() writes; see there.
file(REMOVE_RECURSE "${WORK_DIR}")
file(COPY "${SOURCE_DIR}/geometry" "${SOURCE_DIR}/Utility" "${SOURCE_DIR}/tests" DESTINATION "${WORK_DIR}")

file(READ "${WORK_DIR}/${file}" content)
string(FIND "${content}" "${text}" position)
if(position EQUAL -1)
  message(FATAL_ERROR "${file} no longer contains what is to be undone:\n${text}")
endif()
string(REPLACE "${text}" "${replacement}" content "${content}")
file(WRITE "${WORK_DIR}/${file}" "${content}")

if(NOT filter)
  file(GLOB library "${WORK_DIR}/geometry/*.cpp" "${WORK_DIR}/geometry/internal/*.cpp")
  list(APPEND test -Itests/system/process ${library})
endif()
execute_process(
  COMMAND
    "${COMPILER}" -std=c++20 -O1 -I. -isystem "${EIGEN_INCLUDE_DIR}" ${test} -o test -lgtest_main
    -lgtest -pthread
  WORKING_DIRECTORY "${WORK_DIR}" COMMAND_ERROR_IS_FATAL ANY)

execute_process(
  COMMAND ./test "--gtest_filter=${filter}"
  WORKING_DIRECTORY "${WORK_DIR}"
  TIMEOUT 60
  OUTPUT_VARIABLE output
  ERROR_VARIABLE output
  RESULT_VARIABLE result)
if(filter AND NOT output MATCHES "Running 1 test ")
  message(FATAL_ERROR "The filter ${filter} does not name one test:\n${output}")
endif()
if(result EQUAL 0)
  message(FATAL_ERROR "With ${name} undone, the test still passes:\n${output}")
endif()
message(STATUS "With ${name} undone, the test fails, as it must:\n${output}")
