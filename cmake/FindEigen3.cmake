# Finds Eigen by its own CMake package, or by its headers if they were copied without the package.
#
# Defines the target Eigen3::Eigen and the variable Eigen3_VERSION.
find_package(Eigen3 CONFIG QUIET)
if(TARGET Eigen3::Eigen)
  set(Eigen3_FOUND TRUE)
  return()
endif()

find_path(
  Eigen3_INCLUDE_DIR
  NAMES Eigen/Geometry
  HINTS ${EIGEN3_INCLUDE_DIR}
  PATH_SUFFIXES eigen3 eigen)
mark_as_advanced(Eigen3_INCLUDE_DIR)

if(Eigen3_INCLUDE_DIR)
  set(version_header "${Eigen3_INCLUDE_DIR}/Eigen/src/Core/util/Macros.h")
  if(EXISTS "${version_header}")
    file(STRINGS "${version_header}" version_lines REGEX "#define EIGEN_(WORLD|MAJOR|MINOR)_VERSION +[0-9]+")
    string(REGEX REPLACE "[^0-9;]" "" version_lines "${version_lines}")
    list(JOIN version_lines "." Eigen3_VERSION)
  endif()
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(
  Eigen3
  REQUIRED_VARS Eigen3_INCLUDE_DIR
  VERSION_VAR Eigen3_VERSION)

if(Eigen3_FOUND)
  add_library(Eigen3::Eigen INTERFACE IMPORTED)
  set_target_properties(Eigen3::Eigen PROPERTIES INTERFACE_INCLUDE_DIRECTORIES "${Eigen3_INCLUDE_DIR}")
endif()
