# One case of tests/package/CMakeLists.txt.
file(REMOVE_RECURSE "${WORK_DIR}")
file(MAKE_DIRECTORY "${WORK_DIR}")
set(prefix "${WORK_DIR}/prefix")
set(alone -DLUM_BUILD_TESTS=OFF -DLUM_BUILD_BENCHMARKS=OFF -DLUM_BUILD_EXAMPLES=OFF)
set(configure_lum
    "${CMAKE_COMMAND}" -S "${SOURCE_DIR}" -B "${WORK_DIR}/lum" -G "${GENERATOR}"
    "-DCMAKE_CXX_COMPILER=${COMPILER}" -DCMAKE_BUILD_TYPE=Release ${alone})
# Nothing below the system's prefixes or PATH is searched: no package of Eigen is found.
set(hide_packages "-DCMAKE_MAKE_PROGRAM=${MAKE_PROGRAM}" -DCMAKE_FIND_USE_CMAKE_SYSTEM_PATH=OFF
                  -DCMAKE_FIND_USE_SYSTEM_ENVIRONMENT_PATH=OFF -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF)

function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# configure(<source> <build> <argument>...)
function(configure source build)
  run("${CMAKE_COMMAND}" -S "${source}" -B "${build}" -G "${GENERATOR}" "-DCMAKE_CXX_COMPILER=${COMPILER}"
      "-DCMAKE_CXX_FLAGS=${FLAGS}" -DCMAKE_BUILD_TYPE=Release ${ARGN})
endfunction()

# expect_refusal(<text> <command>...): the command fails and says the text.
function(expect_refusal text)
  execute_process(
    COMMAND ${ARGN}
    RESULT_VARIABLE result
    OUTPUT_VARIABLE output
    ERROR_VARIABLE output)
  string(REGEX REPLACE "[ \n]+" " " output "${output}")
  if(result EQUAL 0 OR NOT output MATCHES "${text}")
    message(FATAL_ERROR "Exit ${result}, expected a refusal with \"${text}\":\n${output}")
  endif()
endfunction()

function(expect_consumer_works program)
  execute_process(
    COMMAND "${program}"
    OUTPUT_VARIABLE output
    COMMAND_ERROR_IS_FATAL ANY)
  if(NOT output STREQUAL "3 4 5 1 1 1 3 2\nCubeElementIds::Vertex with value: 5, 6, 3, 1\n")
    message(FATAL_ERROR "The consumer printed: ${output}")
  endif()
endfunction()

function(build_consumer)
  configure("${SOURCE_DIR}/tests/package/consumer" "${WORK_DIR}/consumer" ${ARGN})
  run("${CMAKE_COMMAND}" --build "${WORK_DIR}/consumer")
  expect_consumer_works("${WORK_DIR}/consumer/consumer")
endfunction()

if(CASE STREQUAL "InstalledShared")
  run("${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${prefix}")
  build_consumer("-DCMAKE_PREFIX_PATH=${prefix}")
  file(GLOB_RECURSE private "${prefix}/*EigenAlgorithms.h" "${prefix}/*StrictArithmetic.h" "${prefix}/*.cpp")
  if(private)
    message(FATAL_ERROR "Installed, but private: ${private}")
  endif()

elseif(CASE STREQUAL "InstalledStatic")
  configure("${SOURCE_DIR}" "${WORK_DIR}/lum" -DBUILD_SHARED_LIBS=OFF ${alone})
  run("${CMAKE_COMMAND}" --build "${WORK_DIR}/lum")
  run("${CMAKE_COMMAND}" --install "${WORK_DIR}/lum" --prefix "${prefix}")
  build_consumer("-DCMAKE_PREFIX_PATH=${prefix}")
  file(GLOB_RECURSE shared "${prefix}/*.so*")
  if(shared)
    message(FATAL_ERROR "A static build installed ${shared}")
  endif()

elseif(CASE STREQUAL "PkgConfig")
  run("${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${prefix}")
  file(RENAME "${prefix}" "${prefix}-moved")
  file(GLOB_RECURSE pc "${prefix}-moved/*/lum.pc")
  get_filename_component(pc_dir "${pc}" DIRECTORY)
  set(ENV{PKG_CONFIG_PATH} "${pc_dir}")
  execute_process(
    COMMAND pkg-config --cflags --libs lum
    OUTPUT_VARIABLE options
    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  separate_arguments(options UNIX_COMMAND "${options}")
  separate_arguments(flags UNIX_COMMAND "${FLAGS}")
  run("${COMPILER}" -std=c++20 ${flags} "${SOURCE_DIR}/tests/package/consumer/main.cpp" -o "${WORK_DIR}/consumer"
      ${options} "-Wl,-rpath,${pc_dir}/..")
  expect_consumer_works("${WORK_DIR}/consumer")

elseif(CASE STREQUAL "Subproject")
  build_consumer("-DLUM_SOURCE_DIR=${SOURCE_DIR}")

elseif(CASE STREQUAL "SubprojectWithAnEigenOfItsOwn")
  build_consumer("-DLUM_SOURCE_DIR=${SOURCE_DIR}" "-DOWN_EIGEN=${EIGEN_INCLUDE_DIR}")

elseif(CASE STREQUAL "IsNotFoundWithoutEigen")
  run("${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${prefix}")
  file(WRITE "${WORK_DIR}/seeker/CMakeLists.txt" "cmake_minimum_required(VERSION 3.25)\nproject(seeker LANGUAGES CXX)\n"
       "find_package(lum QUIET)\nif(lum_FOUND)\n  message(FATAL_ERROR \"found\")\nendif()\n")
  configure("${WORK_DIR}/seeker" "${WORK_DIR}/seeker/build" "-Dlum_DIR=${prefix}/lib/cmake/lum" ${hide_packages}
            -DCMAKE_FIND_USE_CMAKE_PATH=OFF)

elseif(CASE STREQUAL "RefusesFastMathWhenConfiguring")
  foreach(flag IN ITEMS -DCMAKE_CXX_FLAGS=-ffast-math -DCMAKE_CXX_FLAGS_RELEASE=-Ofast
                        -DCMAKE_CXX_FLAGS=-fassociative-math)
    expect_refusal("promises the order of its operations.*remove fast-math" ${configure_lum} "${flag}")
    file(REMOVE_RECURSE "${WORK_DIR}/lum")
  endforeach()

elseif(CASE STREQUAL "RefusesFastMathWhenCompiling")
  foreach(source IN ITEMS Vector Plane TrilinearInterpolation)
    run("${COMPILER}" -std=c++20 -fsyntax-only "-I${SOURCE_DIR}" "${SOURCE_DIR}/geometry/${source}.cpp")
    foreach(flag IN ITEMS -ffast-math -ffinite-math-only)
      expect_refusal("promises the order of its operations" "${COMPILER}" -std=c++20 -fsyntax-only "${flag}"
                     "-I${SOURCE_DIR}" "${SOURCE_DIR}/geometry/${source}.cpp")
    endforeach()
  endforeach()

elseif(CASE STREQUAL "FindsEigenWithoutAPackage")
  configure("${SOURCE_DIR}" "${WORK_DIR}/lum" ${alone} ${hide_packages} "-DEIGEN3_INCLUDE_DIR=${EIGEN_INCLUDE_DIR}")
  load_cache("${WORK_DIR}/lum" READ_WITH_PREFIX found_ Eigen3_DIR Eigen3_INCLUDE_DIR)
  if(found_Eigen3_DIR OR NOT found_Eigen3_INCLUDE_DIR STREQUAL EIGEN_INCLUDE_DIR)
    message(FATAL_ERROR "The package was not hidden: ${found_Eigen3_DIR}, ${found_Eigen3_INCLUDE_DIR}")
  endif()
  run("${CMAKE_COMMAND}" --build "${WORK_DIR}/lum")

elseif(CASE STREQUAL "RefusesAnOldEigen")
  set(old "${WORK_DIR}/old")
  file(WRITE "${old}/Eigen/Geometry" "")
  file(WRITE "${old}/Eigen/src/Core/util/Macros.h"
       "#define EIGEN_WORLD_VERSION 3\n#define EIGEN_MAJOR_VERSION 1\n#define EIGEN_MINOR_VERSION 4\n")
  expect_refusal("lum needs Eigen 3.2 or later, found 3.1.4" ${configure_lum} ${hide_packages}
                 "-DEIGEN3_INCLUDE_DIR=${old}")

else()
  message(FATAL_ERROR "No such case: ${CASE}")
endif()
