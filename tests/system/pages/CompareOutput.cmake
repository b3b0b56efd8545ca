file(READ "${PAGE}" page)
execute_process(COMMAND "${PROGRAM}" OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)

string(FIND "${page}" "```text\n${output}```" position)
if(position EQUAL -1)
  message(FATAL_ERROR "${PAGE} does not show this:\n${output}")
endif()
