# Both callers print the same bits, unless this processor cannot run the second.
execute_process(COMMAND "${PLAIN}" OUTPUT_VARIABLE plain COMMAND_ERROR_IS_FATAL ANY)
execute_process(
  COMMAND "${CALLER}"
  OUTPUT_VARIABLE caller
  RESULT_VARIABLE result)
if(result EQUAL 77)
  message(FATAL_ERROR "this processor has no such vectors")
endif()
if(NOT result EQUAL 0 OR NOT plain STREQUAL caller OR NOT plain MATCHES "rotation")
  message(FATAL_ERROR "exit ${result}\nplain:\n${plain}\nthis caller:\n${caller}")
endif()
