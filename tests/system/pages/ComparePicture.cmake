file(READ "${PICTURE}" expected)
execute_process(COMMAND "${PROGRAM}" OUTPUT_VARIABLE drawn COMMAND_ERROR_IS_FATAL ANY)

if(NOT drawn STREQUAL expected)
  message(FATAL_ERROR "${PROGRAM} does not draw ${PICTURE}")
endif()
