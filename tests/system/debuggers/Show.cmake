# Runs a debugger on a program and compares its output with the expected output, except for addresses.
#
# DEBUGGER is gdb or lldb, at EXECUTABLE. Its commands are in the file SHOWN, the expected output in SHOWN.txt. SCRIPT is
# loaded explicitly. If it is empty, BUILD_DIR is installed, and the debugger loads the installed scripts by itself.
set(ENV{HOME} "${WORK_DIR}")
set(ENV{PYTHONDONTWRITEBYTECODE} 1) # the scripts are in the source tree
file(REMOVE_RECURSE "${WORK_DIR}")
file(MAKE_DIRECTORY "${WORK_DIR}")

if(NOT SCRIPT)
  set(prefix "${WORK_DIR}/prefix")
  execute_process(COMMAND "${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${prefix}" --strip OUTPUT_QUIET
                          COMMAND_ERROR_IS_FATAL ANY)
  set(ENV{LD_LIBRARY_PATH} "${prefix}/${LIBDIR}")
endif()

if(DEBUGGER STREQUAL "gdb")
  if(SCRIPT)
    set(load -ex "source ${SCRIPT}")
  else()
    # gdb does this without options for /usr/share/gdb/auto-load.
    set(auto_load "${prefix}/${DATADIR}/gdb/auto-load")
    set(load -iex "add-auto-load-scripts-directory ${auto_load}" -iex "add-auto-load-safe-path ${auto_load}")
  endif()
  set(command "${EXECUTABLE}" -nx -batch ${load} -x "${SHOWN}" "${PROGRAM}")
  set(chatter "Breakpoint 1 |\\[Thread |Using host |\\[Inferior ")
else()
  # lldb 14 of Debian looks for its Python module in a folder that no package provides.
  execute_process(COMMAND "${EXECUTABLE}" -P OUTPUT_VARIABLE python_dir ERROR_QUIET OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT IS_DIRECTORY "${python_dir}/lldb")
    file(REAL_PATH "${EXECUTABLE}" real_executable)
    get_filename_component(bin_dir "${real_executable}" DIRECTORY)
    file(GLOB python_dir "${bin_dir}/../lib/python3.*/dist-packages")
  endif()
  set(ENV{PYTHONPATH} "${python_dir}")
  if(SCRIPT)
    set(load --no-lldbinit -o "command script import \"${SCRIPT}\"")
  else()
    file(WRITE "${WORK_DIR}/.lldbinit" "command script import \"${prefix}/${DATADIR}/lum/lum_lldb.py\"\n")
  endif()
  set(command "${EXECUTABLE}" --batch ${load} -s "${SHOWN}" "${PROGRAM}")
  set(chatter "\\(lldb\\) (target|settings|breakpoint|run|command| frame)|Current executable |Executing commands ")
  string(APPEND chatter "|Breakpoint 1:|Process |\\* thread | *frame")
endif()

execute_process(
  COMMAND ${command}
  OUTPUT_VARIABLE shown
  ERROR_VARIABLE shown)
string(REGEX REPLACE "(^|\n)((${chatter})[^\n]*\n)+" "\\1" shown "${shown}")
# Compilers spell types differently, and lldb writes a type before each name.
string(REGEX REPLACE "([0-9])ul>" "\\1>" shown "${shown}")
string(REGEX REPLACE "\n\\([^\n]*\\) ([$a-z0-9_*.]+) =" "\n\\1 =" shown "${shown}")
set(digits "[0-9a-f][0-9a-f][0-9a-f]")
string(REGEX REPLACE "0x${digits}${digits}${digits}[0-9a-f]*" "(address)" shown "${shown}")

file(READ "${SHOWN}.txt" expected)
if(NOT shown STREQUAL expected)
  file(WRITE "${WORK_DIR}/shown.txt" "${shown}")
  execute_process(COMMAND diff "${SHOWN}.txt" "${WORK_DIR}/shown.txt" OUTPUT_VARIABLE differences)
  message(FATAL_ERROR "${DEBUGGER} does not show what is expected:\n${differences}")
endif()
