# One case of tests/abi/CMakeLists.txt.

# expect_refusal(<file> <text> <replacement> <report>): with the text replaced in the file, the check fails and
# reports what it should.
function(expect_refusal file text replacement report)
  file(READ "${WORK_DIR}/${file}" original)
  string(REPLACE "${text}" "${replacement}" changed "${original}")
  if(changed STREQUAL original)
    message(FATAL_ERROR "${file} does not hold: ${text}")
  endif()
  file(WRITE "${WORK_DIR}/${file}" "${changed}")
  execute_process(
    COMMAND "${WORK_DIR}/scripts/abi" check
    RESULT_VARIABLE result
    OUTPUT_VARIABLE output
    ERROR_VARIABLE output)
  file(WRITE "${WORK_DIR}/${file}" "${original}")
  if(result EQUAL 0 OR NOT output MATCHES "${report}")
    message(FATAL_ERROR "Exit ${result} with ${replacement} in ${file}, expected a report of ${report}:\n${output}")
  endif()
endfunction()

if(CASE STREQUAL "IsAsRecorded")
  file(REMOVE_RECURSE "${WORK_DIR}")
  file(GLOB entries "${SOURCE_DIR}/*")
  list(FILTER entries EXCLUDE REGEX "/(\\.[^/]*|build|out)$")
  file(COPY ${entries} DESTINATION "${WORK_DIR}")
  execute_process(COMMAND "${WORK_DIR}/scripts/abi" check COMMAND_ERROR_IS_FATAL ANY)

elseif(CASE STREQUAL "ChangesAreSeen")
  set(pseudo_inverse "geometry/PseudoInverse.h")
  expect_refusal("${pseudo_inverse}" "std::int32_t rank;" "std::int32_t rank;\n  double smallest = 0;"
                 "type size changed from 640 to 704")
  expect_refusal("${pseudo_inverse}" "std::int32_t rank;" "std::uint32_t rank;" "'typedef std::uint32_t'|unsigned int")
  expect_refusal("geometry/TrilinearInterpolation.h" "LUM_EXPORT double" "double"
                 "Removed function.*lum::TrilinearInterpolation")
  expect_refusal(
    "geometry/TrilinearInterpolation.cpp" "namespace lum {"
    "namespace lum {\nLUM_EXPORT double Added();\ndouble Added() { return 1; }" "1 Added function.*lum::Added")

else()
  message(FATAL_ERROR "No such case: ${CASE}")
endif()
