# Finds libnifti2, whose CMake package needs programs of another Debian package.
# Defines the target NIFTI::NIFTI.
find_path(NIFTI_INCLUDE_DIR NAMES nifti2_io.h PATH_SUFFIXES nifti)
find_library(NIFTI2_LIBRARY NAMES nifti2)
mark_as_advanced(NIFTI_INCLUDE_DIR NIFTI2_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(NIFTI REQUIRED_VARS NIFTI2_LIBRARY NIFTI_INCLUDE_DIR)

if(NIFTI_FOUND AND NOT TARGET NIFTI::NIFTI)
  add_library(NIFTI::NIFTI INTERFACE IMPORTED)
  target_include_directories(NIFTI::NIFTI INTERFACE "${NIFTI_INCLUDE_DIR}")
  target_link_libraries(NIFTI::NIFTI INTERFACE "${NIFTI2_LIBRARY}")
endif()
