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

# expect_deleted(<reason> <code> <line>...): after the code, each line chooses a deleted function. The compiler quotes its
# declaration, where a comment gives the reason.
function(expect_deleted reason code)
  list(JOIN ARGN "\n" lines)
  compile(c++20 "${code}${lines}\n")
  list(LENGTH ARGN expected)
  list(FILTER errors INCLUDE REGEX "deleted")
  list(LENGTH errors count)
  string(REGEX MATCHALL "= delete; *// ${reason}" reasons "${output}")
  list(LENGTH reasons reason_count)
  if(result EQUAL 0 OR NOT count EQUAL expected OR reason_count LESS expected)
    message(SEND_ERROR "Expected ${expected} deleted functions with \"${reason}\" for\n${code}${lines}\nand got:\n${output}")
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

elseif(CASE STREQUAL "OtherArrays")
  set(arrays "#include <geometry/Matrix.h>\ndouble few[9];\ndouble values[16];\nfloat const many[17] = {};\n")
  expect_deleted("a matrix has 16 values" "${arrays}" "lum::Matrix<double> a(few)\;" "lum::Matrix<float> b(many)\;")
  expect_to_compile("${arrays}lum::Matrix<double> a(values);\n")

elseif(CASE STREQUAL "OtherPrecision")
  string(CONCAT values "#include <geometry/Matrix.h>\n#include <vector>\nusing namespace lum;\n"
                       "Matrix<float> a;\nMatrix<double> b;\nstd::vector<Point<float, 3>> f;\n"
                       "std::vector<Vector<double, 3>> d;\n")
  expect_deleted("convert one first" "${values}" "auto p = a * b\;" "auto q = b * a\;" "auto r = a == b\;" "auto s = b != a\;")
  expect_deleted("convert it first" "${values}" "auto& p = a *= b\;")
  expect_deleted("convert the matrix first" "${values}" "void F() { TransformPoints(b, f, f)\; }"
                 "void G() { TransformVectors(a, d, d)\; }")
  string(CONCAT converted "auto p = a * Matrix<float>(b);\nauto const& q = a = b;\nMatrix<double> r = a;\n"
                          "void F() { TransformPoints(Matrix<float>(b), f, f); }\n")
  expect_to_compile("${values}${converted}")

else()
  message(FATAL_ERROR "No such case: ${CASE}")
endif()
