file(READ "${PAGE}" page)
file(READ "${SOURCE}" source)
execute_process(COMMAND "${PROGRAM}" OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)

# Source and output are searched as one text, so that a page cannot show the output of another program.
set(shown "```cpp\n${source}```\n\nprints\n\n```text\n${output}```\n")
string(FIND "${page}" "${shown}" position)
if(position EQUAL -1)
  message(FATAL_ERROR "${PAGE} does not show this:\n${shown}")
endif()
