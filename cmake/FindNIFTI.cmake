# Finds the headers of libnifti with the layouts of NIfTI-1 and NIfTI-2.
# Defines the target NIFTI::NIFTI.
find_path(NIFTI_INCLUDE_DIR NAMES nifti2.h PATH_SUFFIXES nifti)
mark_as_advanced(NIFTI_INCLUDE_DIR)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(NIFTI REQUIRED_VARS NIFTI_INCLUDE_DIR)

if(NIFTI_FOUND AND NOT TARGET NIFTI::NIFTI)
  add_library(NIFTI::NIFTI INTERFACE IMPORTED)
  target_include_directories(NIFTI::NIFTI INTERFACE "${NIFTI_INCLUDE_DIR}")
endif()
