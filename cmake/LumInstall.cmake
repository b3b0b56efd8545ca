# Installs the library with its CMake package and its pkg-config file.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(lum_package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/lum")

install(
  TARGETS lum
  EXPORT lumTargets
  FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/lum")
install(
  EXPORT lumTargets
  NAMESPACE lum::
  DESTINATION "${lum_package_dir}")

configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/lumConfig.cmake.in"
                              "${PROJECT_BINARY_DIR}/lumConfig.cmake" INSTALL_DESTINATION "${lum_package_dir}")
# Until 1.0 a new minor version may break what used the one before.
write_basic_package_version_file("${PROJECT_BINARY_DIR}/lumConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(
  FILES "${PROJECT_BINARY_DIR}/lumConfig.cmake" "${PROJECT_BINARY_DIR}/lumConfigVersion.cmake"
        "${PROJECT_SOURCE_DIR}/cmake/FindEigen3.cmake"
  DESTINATION "${lum_package_dir}")

# Relative to the file itself, so that the installed tree can be moved.
file(RELATIVE_PATH lum_pc_libdir "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_FULL_LIBDIR}")
file(RELATIVE_PATH lum_pc_includedir "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig"
     "${CMAKE_INSTALL_FULL_INCLUDEDIR}/lum")
configure_file("${PROJECT_SOURCE_DIR}/cmake/lum.pc.in" "${PROJECT_BINARY_DIR}/lum.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/lum.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
