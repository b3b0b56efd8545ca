# Runs one case of tests/system/package/CMakeLists.txt.
file(REMOVE_RECURSE "${WORK_DIR}")
file(MAKE_DIRECTORY "${WORK_DIR}")
set(configure_lum
    "${CMAKE_COMMAND}" -S "${SOURCE_DIR}" -B "${WORK_DIR}/lum" -G "${GENERATOR}"
    "-DCMAKE_CXX_COMPILER=${COMPILER}" -DCMAKE_BUILD_TYPE=Release)
# Neither the system's prefixes nor PATH are searched, so no installed package is found.
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

# expect_refusal(<expression> <command>...): the command must fail, with output that matches the regular expression.
# Sets `output`.
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
  set(output "${output}" PARENT_SCOPE)
endfunction()

# expect_to_miss(<expression> <what> <command>...): the command must fail, with one line that says what is missing and
# names the command of scripts/setup that installs it. Removes the build directory afterwards.
function(expect_to_miss text what)
  execute_process(
    COMMAND ${ARGN}
    RESULT_VARIABLE result
    OUTPUT_VARIABLE output
    ERROR_VARIABLE output)
  if(result EQUAL 0 OR NOT output MATCHES "\n *${text}: run scripts/setup ${what}\n")
    message(FATAL_ERROR "Exit ${result}, expected the line \"${text}: run scripts/setup ${what}\":\n${output}")
  endif()
  file(REMOVE_RECURSE "${WORK_DIR}/lum")
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

# write_old_eigen(<folder>): as much of an Eigen 3.3.9 as shows its version.
function(write_old_eigen folder)
  file(WRITE "${folder}/Eigen/Core" "#include \"src/Core/util/Macros.h\"\n"
       "#define EIGEN_VERSION_AT_LEAST(x, y, z) (x < 3 || (x == 3 && (y < 3 || (y == 3 && z <= 9))))\n")
  foreach(header IN ITEMS Geometry LU SVD)
    file(WRITE "${folder}/Eigen/${header}" "#include \"Core\"\n")
  endforeach()
  file(WRITE "${folder}/Eigen/src/Core/util/Macros.h"
       "#define EIGEN_WORLD_VERSION 3\n#define EIGEN_MAJOR_VERSION 3\n#define EIGEN_MINOR_VERSION 9\n")
  file(WRITE "${folder}/eigen3.pc" "Name: Eigen3\nDescription: old\nVersion: 3.3.9\n")
endfunction()

# build_consumer(SHARED|STATIC <argument>...)
function(build_consumer kind)
  configure("${SOURCE_DIR}/tests/system/package/consumer" "${WORK_DIR}/consumer" "-DKIND=${kind}" ${ARGN})
  run("${CMAKE_COMMAND}" --build "${WORK_DIR}/consumer")
  expect_consumer_works("${WORK_DIR}/consumer/consumer")
endfunction()

# find_libdir(<result>): where the installed library lies, relative to the prefix.
function(find_libdir result)
  file(GLOB_RECURSE pc RELATIVE "${PREFIX}" "${PREFIX}/*/lum.pc")
  string(REGEX REPLACE "/pkgconfig/lum.pc$" "" libdir "${pc}")
  set(${result} "${libdir}" PARENT_SCOPE)
endfunction()

# install(<build directory>): installs into a prefix, and then moves the prefix.
function(install build)
  run("${CMAKE_COMMAND}" --install "${build}" --prefix "${WORK_DIR}/prefix")
  file(RENAME "${WORK_DIR}/prefix" "${WORK_DIR}/moved")
endfunction()

# check_manifest(<file>): the prefix must hold exactly the files that the manifest lists.
function(check_manifest manifest)
  find_libdir(libdir)
  file(GLOB_RECURSE paths LIST_DIRECTORIES FALSE RELATIVE "${PREFIX}" "${PREFIX}/*")
  set(installed)
  foreach(path IN LISTS paths)
    set(line "${path}")
    if(IS_SYMLINK "${PREFIX}/${path}")
      file(READ_SYMLINK "${PREFIX}/${path}" target)
      string(APPEND line " -> ${target}")
    endif()
    # Placeholders stand for what depends on the machine, the version and the build type. gdb looks for its script
    # below the whole path of the library.
    string(REGEX REPLACE "gdb/auto-load/.*/${libdir}/" "gdb/auto-load/@INSTALL_PREFIX@/@LIBDIR@/" line "${line}")
    string(REGEX REPLACE "(^|/)${libdir}/" "\\1@LIBDIR@/" line "${line}")
    string(REGEX REPLACE "so\\.[0-9]+\\.[0-9]+\\.[0-9]+" "so.@VERSION@" line "${line}")
    string(REGEX REPLACE "(lumTargets)-[a-z]+" "\\1-@BUILD_TYPE@" line "${line}")
    string(APPEND installed "${line}\n")
  endforeach()
  if(DEFINED ENV{LUM_UPDATE_MANIFEST})
    file(WRITE "${manifest}" "${installed}")
  endif()
  file(WRITE "${WORK_DIR}/installed.txt" "${installed}")
  execute_process(
    COMMAND diff -u "${manifest}" "${WORK_DIR}/installed.txt"
    RESULT_VARIABLE result
    OUTPUT_VARIABLE differences)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "Not installed (-), or not listed (+):\n${differences}\nIf this is meant, run "
                        "LUM_UPDATE_MANIFEST=1 ctest --test-dir ${BUILD_DIR} -R Package.Manifest")
  endif()
endfunction()

# build_with_pkg_config(<argument of pkg-config>...)
function(build_with_pkg_config)
  find_libdir(libdir)
  set(ENV{PKG_CONFIG_PATH} "${PREFIX}/${libdir}/pkgconfig")
  execute_process(
    COMMAND pkg-config ${ARGN} --cflags --libs lum
    OUTPUT_VARIABLE options
    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  separate_arguments(options UNIX_COMMAND "${options}")
  separate_arguments(flags UNIX_COMMAND "${FLAGS}")
  run("${COMPILER}" -std=c++20 ${flags} "${SOURCE_DIR}/tests/system/package/consumer/main.cpp" -o "${WORK_DIR}/consumer"
      ${options} "-Wl,-rpath,${PREFIX}/${libdir}")
  expect_consumer_works("${WORK_DIR}/consumer")
  set(options "${options}" PARENT_SCOPE)
endfunction()

if(CASE STREQUAL "InstallSHARED")
  configure("${SOURCE_DIR}" "${WORK_DIR}/lum")
  run("${CMAKE_COMMAND}" --build "${WORK_DIR}/lum")
  install("${WORK_DIR}/lum")

elseif(CASE STREQUAL "InstallSTATIC")
  configure("${SOURCE_DIR}" "${WORK_DIR}/lum" -DBUILD_SHARED_LIBS=OFF)
  run("${CMAKE_COMMAND}" --build "${WORK_DIR}/lum")
  install("${WORK_DIR}/lum")

elseif(CASE STREQUAL "ManifestSHARED")
  check_manifest("${SOURCE_DIR}/tests/system/package/manifest/shared.txt")

elseif(CASE STREQUAL "ManifestSTATIC")
  check_manifest("${SOURCE_DIR}/tests/system/package/manifest/static.txt")

elseif(CASE STREQUAL "HeadersCompileAlone")
  run("${CMAKE_COMMAND}" -S "${SOURCE_DIR}/tests/system/package/headers" -B "${WORK_DIR}/headers" -G "${GENERATOR}"
      "-DCMAKE_CXX_COMPILER=${COMPILER}" "-DINCLUDE_DIR=${PREFIX}/include/lum"
      "-DEIGEN_INCLUDE_DIR=${EIGEN_INCLUDE_DIR}")
  run("${CMAKE_COMMAND}" --build "${WORK_DIR}/headers")

elseif(CASE MATCHES "^FindPackage(SHARED|STATIC)$")
  build_consumer("${CMAKE_MATCH_1}" "-DCMAKE_PREFIX_PATH=${PREFIX}")

elseif(CASE STREQUAL "PkgConfigSHARED")
  build_with_pkg_config()

elseif(CASE STREQUAL "PkgConfigSTATIC")
  build_with_pkg_config(--static)
  if(NOT "${options}" MATCHES "-pthread")
    message(FATAL_ERROR "A static library needs -pthread: ${options}")
  endif()

elseif(CASE STREQUAL "SubprojectSHARED")
  build_consumer(SHARED "-DLUM_SOURCE_DIR=${SOURCE_DIR}")

elseif(CASE STREQUAL "SubprojectSTATIC")
  build_consumer(STATIC "-DLUM_SOURCE_DIR=${SOURCE_DIR}" -DBUILD_SHARED_LIBS=OFF)

elseif(CASE MATCHES "^FetchContent(SHARED|STATIC)$")
  set(kind "${CMAKE_MATCH_1}")
  string(COMPARE EQUAL "${kind}" SHARED shared)
  file(GLOB entries RELATIVE "${SOURCE_DIR}" "${SOURCE_DIR}/*")
  list(FILTER entries EXCLUDE REGEX "^(\\..*|build|out)$")
  execute_process(COMMAND "${CMAKE_COMMAND}" -E tar czf "${WORK_DIR}/lum.tar.gz" ${entries}
                  WORKING_DIRECTORY "${SOURCE_DIR}" COMMAND_ERROR_IS_FATAL ANY)
  build_consumer("${kind}" "-DLUM_ARCHIVE=${WORK_DIR}/lum.tar.gz" "-DBUILD_SHARED_LIBS=${shared}")

elseif(CASE STREQUAL "FindsNoOtherVersion")
  find_libdir(libdir)
  foreach(version IN ITEMS 0.1 0.2 1)
    file(WRITE "${WORK_DIR}/seeker/CMakeLists.txt" "cmake_minimum_required(VERSION 3.25)\n"
         "project(seeker LANGUAGES CXX)\nfind_package(lum ${version} REQUIRED)\n")
    set(configure_seeker "${CMAKE_COMMAND}" -S "${WORK_DIR}/seeker" -B "${WORK_DIR}/seeker/build" -G "${GENERATOR}"
                         "-DCMAKE_CXX_COMPILER=${COMPILER}" "-Dlum_DIR=${PREFIX}/${libdir}/cmake/lum")
    if(version STREQUAL "0.1")
      run(${configure_seeker})
    else()
      expect_refusal("requested version \"${version}\"" ${configure_seeker})
    endif()
  endforeach()

elseif(CASE STREQUAL "SubprojectWithAnEigenOfItsOwn")
  build_consumer(SHARED "-DLUM_SOURCE_DIR=${SOURCE_DIR}" "-DOWN_EIGEN=${EIGEN_INCLUDE_DIR}")

elseif(CASE STREQUAL "IsOptimisedWithoutABuildType")
  # expect_level(<name> <level of lum> <level of the rest> <source> <argument>...): configures, and compares the options
  # that set a level of optimisation in the commands for a source of lum and for the user's program.
  function(expect_level name of_lum of_rest source)
    set(build "${WORK_DIR}/${name}")
    execute_process(
      COMMAND "${CMAKE_COMMAND}" -E env --unset=CXXFLAGS --unset=CMAKE_BUILD_TYPE "${CMAKE_COMMAND}" -S "${source}" -B
              "${build}" "-DCMAKE_CXX_COMPILER=${COMPILER}" -DCMAKE_EXPORT_COMPILE_COMMANDS=ON ${ARGN}
      OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
    file(READ "${build}/compile_commands.json" commands)
    foreach(what IN ITEMS lum rest)
      set(file_lum "geometry/Matrix.cpp")
      set(file_rest "/main.cpp")
      string(REGEX MATCH "\"command\": \"[^\n]*${file_${what}}\"" command "${commands}")
      string(REGEX MATCHALL " -O[^ ]*" levels "${command}")
      if(NOT "${levels}" STREQUAL "${of_${what}}" OR (what STREQUAL lum AND NOT command))
        message(SEND_ERROR "${name}: ${what} is compiled by \"${levels}\", expected \"${of_${what}}\":\n${command}")
      endif()
    endforeach()
  endfunction()
  set(consumer "${SOURCE_DIR}/tests/system/package/consumer")
  set(subproject -G "${GENERATOR}" -DKIND=SHARED "-DLUM_SOURCE_DIR=${SOURCE_DIR}")
  set(fetched -G "${GENERATOR}" -DKIND=SHARED -DLUM_ARCHIVE=unused "-DFETCHCONTENT_SOURCE_DIR_LUM=${SOURCE_DIR}")
  expect_level(subproject " -O3" "" "${consumer}" ${subproject})
  expect_level(fetched " -O3" "" "${consumer}" ${fetched})
  expect_level(flags " -O3" "" "${consumer}" ${subproject} "-DCMAKE_CXX_FLAGS=-g -DNAME=-O")
  expect_level(debug "" "" "${consumer}" ${subproject} -DCMAKE_BUILD_TYPE=Debug)
  expect_level(small " -Os" " -Os" "${consumer}" ${subproject} -DCMAKE_BUILD_TYPE=MinSizeRel)
  expect_level(own_level " -O1" " -O1" "${consumer}" ${subproject} -DCMAKE_CXX_FLAGS=-O1)
  expect_level(top_level " -O3" "" "${SOURCE_DIR}" -G "${GENERATOR}")
  if(GENERATOR STREQUAL "Ninja")
    expect_level(multi "" "" "${consumer}" -G "Ninja Multi-Config" -DKIND=SHARED "-DLUM_SOURCE_DIR=${SOURCE_DIR}"
                 -DCMAKE_CONFIGURATION_TYPES=Debug)
  endif()
  file(WRITE "${WORK_DIR}/parent/CMakeLists.txt"
       "cmake_minimum_required(VERSION 3.25)\nproject(parent LANGUAGES CXX)\nadd_compile_options(-Og)\n"
       "add_subdirectory(\"${SOURCE_DIR}\" lum)\n")
  expect_level(parent_level " -Og" "" "${WORK_DIR}/parent" -G "${GENERATOR}")

elseif(CASE STREQUAL "IsNotFoundWithoutEigen")
  find_libdir(libdir)
  file(WRITE "${WORK_DIR}/seeker/CMakeLists.txt" "cmake_minimum_required(VERSION 3.25)\nproject(seeker LANGUAGES CXX)\n"
       "find_package(lum QUIET)\nif(lum_FOUND)\n  message(FATAL_ERROR \"found\")\nendif()\n")
  configure("${WORK_DIR}/seeker" "${WORK_DIR}/seeker/build" "-Dlum_DIR=${PREFIX}/${libdir}/cmake/lum" ${hide_packages}
            -DCMAKE_FIND_USE_CMAKE_PATH=OFF)

elseif(CASE STREQUAL "RefusesFastMathWhenConfiguring")
  foreach(flag IN ITEMS -DCMAKE_CXX_FLAGS=-ffast-math -DCMAKE_CXX_FLAGS_RELEASE=-Ofast
                        -DCMAKE_CXX_FLAGS=-fassociative-math)
    expect_refusal("promises the order of its operations.*remove fast-math" ${configure_lum} "${flag}")
    file(REMOVE_RECURSE "${WORK_DIR}/lum")
  endforeach()

elseif(CASE STREQUAL "RefusesEveryPartOfFastMathWhenConfiguring")
  # The function that configuring calls, with one flag at a time.
  set(script "${WORK_DIR}/refuse.cmake")
  file(WRITE "${script}" "include(\"${SOURCE_DIR}/cmake/LumStrictArithmetic.cmake\")\nlum_refuse_fast_math()\n")
  foreach(
    flag IN
    ITEMS -Ofast -ffast-math -funsafe-math-optimizations -fassociative-math -freciprocal-math -ffinite-math-only
          -fno-signed-zeros -fsingle-precision-constant -fno-honor-nans -fno-honor-infinities -fapprox-func
          -ffp-model=fast -mfpmath=387 -mfpmath=both -fdenormal-fp-math=positive-zero)
    foreach(variable IN ITEMS CMAKE_CXX_FLAGS CMAKE_CXX_FLAGS_RELEASE CMAKE_CXX_FLAGS_DEBUG)
      expect_refusal("promises the order of its operations and cannot be built with ${flag}" "${CMAKE_COMMAND}"
                     "-D${variable}=-O2 ${flag}" -DCMAKE_BUILD_TYPE=Release "-DCMAKE_CONFIGURATION_TYPES=Release\;Debug"
                     -P "${script}")
    endforeach()
  endforeach()
  # g++ links a file that switches on flush-to-zero for the process.
  foreach(variable IN ITEMS CMAKE_SHARED_LINKER_FLAGS CMAKE_SHARED_LINKER_FLAGS_RELEASE)
    expect_refusal("cannot be built with -ffast-math" "${CMAKE_COMMAND}" "-D${variable}=-ffast-math"
                   -DCMAKE_BUILD_TYPE=Release -P "${script}")
  endforeach()
  run("${CMAKE_COMMAND}" "-DCMAKE_CXX_FLAGS=-O3 -march=native -fno-math-errno -fno-trapping-math -fno-fast-math" -P
      "${script}")
  run("${CMAKE_COMMAND}" -DCMAKE_CXX_FLAGS_DEBUG=-ffast-math -DCMAKE_BUILD_TYPE=Release -P "${script}")

elseif(CASE STREQUAL "RefusesFastMathWhenCompiling")
  # What the macros of each compiler tell. clang has none for single parts of fast-math but -ffinite-math-only.
  execute_process(COMMAND "${COMPILER}" --version OUTPUT_VARIABLE version COMMAND_ERROR_IS_FATAL ANY)
  set(refused "-ffast-math>without -ffast-math and -Ofast" "-Ofast>without -ffast-math and -Ofast"
              "-ffinite-math-only>without -ffinite-math-only")
  if(version MATCHES "clang")
    list(APPEND refused "-ffp-model=fast>without -ffast-math and -Ofast")
  else()
    list(
      APPEND
      refused
      "-funsafe-math-optimizations>without -funsafe-math-optimizations"
      "-fassociative-math -fno-signed-zeros -fno-trapping-math>without -fassociative-math"
      "-freciprocal-math>without -freciprocal-math"
      "-fno-signed-zeros>without -fno-signed-zeros"
      "-fsingle-precision-constant>for IEEE 754 arithmetic")
    execute_process(COMMAND "${COMPILER}" -dumpmachine OUTPUT_VARIABLE machine COMMAND_ERROR_IS_FATAL ANY)
    if(machine MATCHES "^x86_64")
      list(APPEND refused "-mfpmath=387>without excess precision")
    endif()
  endif()
  foreach(source IN ITEMS Plane TrilinearInterpolation Vector)
    set(compile "${COMPILER}" -std=c++20 -fsyntax-only "-I${SOURCE_DIR}" "${SOURCE_DIR}/geometry/${source}.cpp")
    run(${compile})
    run(${compile} -O3 -fno-math-errno -fno-trapping-math)
    if(NOT source STREQUAL "Vector")
      # One flag shows that the source includes the check; the last source tries all.
      set(tried "-ffast-math>without -ffast-math and -Ofast")
    else()
      set(tried "${refused}")
    endif()
    foreach(flags_and_text IN LISTS tried)
      string(REPLACE ">" ";" flags_and_text "${flags_and_text}")
      list(GET flags_and_text 0 flags)
      list(GET flags_and_text 1 text)
      separate_arguments(flags UNIX_COMMAND "${flags}")
      expect_refusal("promises the order of its operations: build it ${text}" ${compile} ${flags})
      string(REGEX MATCHALL "error: " errors "${output}")
      list(LENGTH errors count)
      if(NOT count EQUAL 1)
        message(FATAL_ERROR "${count} errors:\n${output}")
      endif()
    endforeach()
  endforeach()

elseif(CASE STREQUAL "ConfiguresWithNothingButEigen")
  execute_process(
    COMMAND "${CMAKE_COMMAND}" -S "${SOURCE_DIR}" -B "${WORK_DIR}/lum" -G "${GENERATOR}"
            "-DCMAKE_CXX_COMPILER=${COMPILER}" ${hide_packages} "-DEIGEN3_INCLUDE_DIR=${EIGEN_INCLUDE_DIR}"
    OUTPUT_VARIABLE output
    ERROR_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
  if(output MATCHES "[Ww]arning")
    message(FATAL_ERROR "Configuring warns:\n${output}")
  endif()
  load_cache("${WORK_DIR}/lum" READ_WITH_PREFIX found_ Eigen3_DIR Eigen3_INCLUDE_DIR)
  if(found_Eigen3_DIR OR NOT found_Eigen3_INCLUDE_DIR STREQUAL EIGEN_INCLUDE_DIR)
    message(FATAL_ERROR "The package was not hidden: ${found_Eigen3_DIR}, ${found_Eigen3_INCLUDE_DIR}")
  endif()
  run("${CMAKE_COMMAND}" --build "${WORK_DIR}/lum")

elseif(CASE STREQUAL "ConfiguresTestsWithGoogleTestAlone")
  configure("${SOURCE_DIR}" "${WORK_DIR}/lum" ${hide_packages} "-DEIGEN3_INCLUDE_DIR=${EIGEN_INCLUDE_DIR}"
            "-DGTest_DIR=${GTEST_DIR}" -DLUM_BUILD_TESTS=ON)

elseif(CASE STREQUAL "SaysWhatIsMissing")
  set(has_eigen "-DEIGEN3_INCLUDE_DIR=${EIGEN_INCLUDE_DIR}")
  expect_to_miss("lum needs Eigen 3.4 \\(Debian: libeigen3-dev\\)" "build" ${configure_lum} ${hide_packages})
  expect_to_miss("LUM_BUILD_TESTS needs GoogleTest \\(Debian: libgtest-dev\\)" "test" ${configure_lum} ${hide_packages}
                 ${has_eigen} -DLUM_BUILD_TESTS=ON)
  expect_to_miss("LUM_BUILD_EXAMPLES needs [^\n]*" "demo" ${configure_lum} ${hide_packages} ${has_eigen}
                 -DLUM_BUILD_EXAMPLES=ON)
  expect_to_miss("LUM_BUILD_BENCHMARKS needs benchmark \\(Debian: libbenchmark-dev\\)" "benchmark" ${configure_lum}
                 ${hide_packages} ${has_eigen} -DLUM_BUILD_BENCHMARKS=ON)
  expect_to_miss("LUM_BUILD_DOCS needs Doxygen \\(Debian: doxygen\\)" "docs" ${configure_lum} ${hide_packages}
                 ${has_eigen} -DLUM_BUILD_DOCS=ON)
  expect_to_miss("LUM_BUILD_VERIFICATION needs [^\n]*" "(test|verify)" ${configure_lum} ${hide_packages} ${has_eigen}
                 -DLUM_BUILD_VERIFICATION=ON)
  # lum must report these before CMake does, whose errors name no command.
  set(configure_dev "${CMAKE_COMMAND}" -E env --unset=CXX PATH=/nonexistent "${CMAKE_COMMAND}" --preset dev -S
                    "${SOURCE_DIR}" -B "${WORK_DIR}/lum")
  expect_to_miss("lum needs make \\(Debian: make\\)" "test" ${configure_dev} -G "Unix Makefiles")
  expect_to_miss("lum needs a C\\+\\+ compiler \\(Debian: g\\+\\+\\)" "test" ${configure_dev} -G "${GENERATOR}"
                 "-DCMAKE_MAKE_PROGRAM=${MAKE_PROGRAM}")

elseif(CASE STREQUAL "RefusesAnOldEigen")
  write_old_eigen("${WORK_DIR}/old")
  expect_refusal("lum needs Eigen 3.4, found 3.3.9" ${configure_lum} ${hide_packages}
                 "-DEIGEN3_INCLUDE_DIR=${WORK_DIR}/old")
  expect_refusal("lum needs Eigen 3.4[^,]" "${COMPILER}" -std=c++20 -fsyntax-only "-I${SOURCE_DIR}" -isystem
                 "${WORK_DIR}/old" "${SOURCE_DIR}/geometry/Matrix.cpp")

elseif(CASE STREQUAL "InstalledRefusesAnOldEigen")
  find_libdir(libdir)
  write_old_eigen("${WORK_DIR}/old")
  file(WRITE "${WORK_DIR}/seeker/CMakeLists.txt" "cmake_minimum_required(VERSION 3.25)\n"
       "project(seeker LANGUAGES CXX)\nfind_package(lum REQUIRED)\n")
  expect_refusal(
    "lum needs Eigen 3.4, found 3.3.9" "${CMAKE_COMMAND}" -S "${WORK_DIR}/seeker" -B "${WORK_DIR}/seeker/build" -G
    "${GENERATOR}" "-DCMAKE_CXX_COMPILER=${COMPILER}" "-Dlum_DIR=${PREFIX}/${libdir}/cmake/lum" ${hide_packages}
    -DCMAKE_FIND_USE_CMAKE_PATH=OFF "-DEIGEN3_INCLUDE_DIR=${WORK_DIR}/old")
  expect_refusal("eigen3 >= 3.4" "${CMAKE_COMMAND}" -E env
                 "PKG_CONFIG_PATH=${WORK_DIR}/old:${PREFIX}/${libdir}/pkgconfig" pkg-config --cflags lum)

else()
  message(FATAL_ERROR "No such case: ${CASE}")
endif()
