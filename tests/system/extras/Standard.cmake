# Builds lum and tests/system/extras/standard with libc++, and runs the programs.
file(REMOVE_RECURSE "${WORK_DIR}")
execute_process(
  COMMAND "${CMAKE_COMMAND}" -S "${SOURCE_DIR}/tests/system/extras/standard" -B "${WORK_DIR}" -G "${GENERATOR}"
          "-DCMAKE_MAKE_PROGRAM=${MAKE_PROGRAM}" "-DCMAKE_CXX_COMPILER=${COMPILER}" -DCMAKE_CXX_FLAGS=-stdlib=libc++
          -DCMAKE_BUILD_TYPE=Release "-DLUM_SOURCE_DIR=${SOURCE_DIR}" COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND "${CMAKE_COMMAND}" --build "${WORK_DIR}" COMMAND_ERROR_IS_FATAL ANY)
foreach(standard IN ITEMS 20 23)
  execute_process(COMMAND "${WORK_DIR}/format_${standard}" COMMAND_ERROR_IS_FATAL ANY)
endforeach()
