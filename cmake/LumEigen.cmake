# Eigen3::Eigen: an existing target, else whatever find_package finds. No version is asked for, because the
# version file of a newer Eigen refuses a request for 3; the least version is checked here, and once more by
# geometry/GlobalObjectPool.h for targets that do not tell theirs.
if(NOT TARGET Eigen3::Eigen)
  find_package(Eigen3 QUIET MODULE)
  lum_require(lum "Eigen 3.2 or later" libeigen3-dev Eigen3_FOUND)
  if(Eigen3_VERSION AND Eigen3_VERSION VERSION_LESS 3.2)
    message(FATAL_ERROR "lum needs Eigen 3.2 or later, found ${Eigen3_VERSION}")
  endif()
endif()
