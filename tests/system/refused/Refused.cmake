# Runs one case of tests/system/refused/CMakeLists.txt.
file(REMOVE_RECURSE "${WORK_DIR}")
file(MAKE_DIRECTORY "${WORK_DIR}")

# compile(<standard> <code>): sets `result` to the compiler's status, `output` to what it prints, and `errors` to the
# lines of errors.
function(compile standard code)
  set(source "${WORK_DIR}/refused.cpp")
  file(WRITE "${source}" "${code}")
  execute_process(
    COMMAND "${COMPILER}" "-std=${standard}" -fsyntax-only "-I${SOURCE_DIR}" -isystem "${EIGEN_INCLUDE_DIR}" "${source}"
    RESULT_VARIABLE result
    OUTPUT_VARIABLE output
    ERROR_VARIABLE output)
  string(REGEX MATCHALL "[^\n]*error: [^\n]*" errors "${output}")
  foreach(variable IN ITEMS result output errors)
    set(${variable} "${${variable}}" PARENT_SCOPE)
  endforeach()
endfunction()

function(expect_to_compile code)
  compile(c++20 "${code}")
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "As C++20, this must compile:\n${code}\n${output}")
  endif()
endfunction()

# expect_one_error(<standard> <text> <code>): one error, whose line contains the text.
function(expect_one_error standard text code)
  compile("${standard}" "${code}")
  list(LENGTH errors count)
  string(FIND "${errors}" "${text}" position)
  if(result EQUAL 0 OR NOT count EQUAL 1 OR position EQUAL -1)
    message(SEND_ERROR "Expected one error with \"${text}\" for\n${code}\nand got exit ${result}, ${count} errors:\n${output}")
  endif()
endfunction()

if(CASE STREQUAL "EveryHeaderAsCpp17")
  list(LENGTH HEADERS count)
  if(count LESS 30)
    message(FATAL_ERROR "Only ${count} headers: ${HEADERS}")
  endif()
  foreach(header IN LISTS HEADERS)
    expect_one_error(c++17 "lum needs C++20" "#include <${header}>\nlum::NoName x;\n")
  endforeach()
  expect_to_compile("#include <geometry/Matrix.h>\n")

elseif(CASE STREQUAL "OtherNumbers")
  set(number "T is float or double")
  foreach(type IN ITEMS int "long double" "float const")
    expect_one_error(c++20 "Vector<T, N> and Point<T, N>: ${number}" "#include <geometry/Vector.h>\nlum::Vector<${type}, 3> v;\n")
    expect_one_error(c++20 "Vector<T, N> and Point<T, N>: ${number}" "#include <geometry/Point.h>\nlum::Point<${type}, 3> p;\n")
    expect_one_error(c++20 "Plane<T>: ${number}" "#include <geometry/Plane.h>\nlum::Plane<${type}> p(0, 0, 1, 0);\n")
  endforeach()
  foreach(type IN ITEMS int "long double")
    expect_one_error(c++20 "Matrix<T>: ${number}" "#include <geometry/Matrix.h>\nlum::Matrix<${type}> m;\n")
  endforeach()
  foreach(size IN ITEMS 0 1 4)
    expect_one_error(c++20 "Vector<T, N> and Point<T, N>: N is 2 or 3" "#include <geometry/Vector.h>\nlum::Vector<float, ${size}> v;\n")
    expect_one_error(c++20 "Vector<T, N> and Point<T, N>: N is 2 or 3" "#include <geometry/Point.h>\nlum::Point<double, ${size}> p;\n")
  endforeach()
  string(CONCAT code "#include <geometry/Matrix.h>\nlum::Vector<float, 2> v;\nlum::Point<double, 3> p;\n"
                     "lum::Plane<float> q(1, 0, 0, 0);\nlum::Matrix<double> m;\n")
  expect_to_compile("${code}")

else()
  message(FATAL_ERROR "No such case: ${CASE}")
endif()
