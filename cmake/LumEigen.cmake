# Eigen3::Eigen: an existing target, else what find_package finds. find_package gets no version, because the version
# file of a newer Eigen refuses a request for 3. The minimum version is checked here, and again by
# geometry/GlobalObjectPool.h for targets that do not state theirs.
if(NOT TARGET Eigen3::Eigen)
  find_package(Eigen3 QUIET MODULE)
  lum_require(lum "Eigen 3.4" libeigen3-dev Eigen3_FOUND)
  if(Eigen3_VERSION AND Eigen3_VERSION VERSION_LESS 3.4)
    message(FATAL_ERROR "lum needs Eigen 3.4, found ${Eigen3_VERSION}")
  endif()
endif()
