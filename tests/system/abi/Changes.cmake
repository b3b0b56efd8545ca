# scripts/abi against a tag, in a copy of the sources with a repository of its own: it passes what old programs survive
# and reports what breaks them.
file(REMOVE_RECURSE "${WORK_DIR}")
file(GLOB entries "${SOURCE_DIR}/*")
list(FILTER entries EXCLUDE REGEX "/(\\.git|build|out)$")
file(COPY ${entries} DESTINATION "${WORK_DIR}")

function(git)
  execute_process(COMMAND git -c user.name=lum -c user.email=lum@lum.invalid ${ARGN} WORKING_DIRECTORY "${WORK_DIR}"
                  COMMAND_ERROR_IS_FATAL ANY)
endfunction()
git(init -q)
git(add -A)
git(commit -q -m "Tagged")
git(tag v0.1.0)

# check(<status> <report> [<file> <text> <replacement>]): with the text replaced in the file, scripts/abi ends with this
# status and reports what it should.
function(check status report)
  if(ARGC GREATER 2)
    file(READ "${WORK_DIR}/${ARGV2}" original)
    string(REPLACE "${ARGV3}" "${ARGV4}" changed "${original}")
    if(changed STREQUAL original)
      message(FATAL_ERROR "${ARGV2} does not hold: ${ARGV3}")
    endif()
    file(WRITE "${WORK_DIR}/${ARGV2}" "${changed}")
  endif()
  execute_process(
    COMMAND "${WORK_DIR}/scripts/abi"
    RESULT_VARIABLE result
    OUTPUT_VARIABLE output
    ERROR_VARIABLE output)
  git(checkout -q -- .)
  if(NOT result EQUAL status OR NOT output MATCHES "${report}")
    message(FATAL_ERROR "Exit ${result} with ${ARGV4} in ${ARGV2}, expected ${status} and ${report}:\n${output}")
  endif()
endfunction()

check(0 "programs that were linked with v0.1.0 run with this tree")
check(1 "type size changed from 640 to 704.*a new major version is required" geometry/PseudoInverse.h "std::int32_t rank"
      "double smallest = 0;\n  std::int32_t rank")
check(1 "'typedef std::uint32_t'|unsigned int" geometry/PseudoInverse.h "std::int32_t rank" "std::uint32_t rank")
check(1 "Removed function.*lum::TrilinearInterpolation" geometry/TrilinearInterpolation.h "LUM_EXPORT double" "double")
check(0 "programs that were linked with v0.1.0 run with this tree" geometry/TrilinearInterpolation.cpp "namespace lum {"
      "namespace lum {\nLUM_EXPORT double Added();\ndouble Added() { return 1; }")
