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
write_basic_package_version_file("${PROJECT_BINARY_DIR}/lumConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
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

# For debuggers. gdb looks for a script below its data folder, at the path of the library's file plus -gdb.py.
install(FILES "${PROJECT_SOURCE_DIR}/debuggers/lum_gdb.py" "${PROJECT_SOURCE_DIR}/debuggers/lum_lldb.py"
              "${PROJECT_SOURCE_DIR}/debuggers/lum_values.py" DESTINATION "${CMAKE_INSTALL_DATADIR}/lum")
if(BUILD_SHARED_LIBS)
  set(lum_library_dir "${CMAKE_INSTALL_LIBDIR}")
  if(NOT IS_ABSOLUTE "${lum_library_dir}")
    # Expanded during installation, because cmake --install may be given another prefix.
    string(PREPEND lum_library_dir "\${CMAKE_INSTALL_PREFIX}/")
  endif()
  install(
    FILES "${PROJECT_SOURCE_DIR}/debuggers/liblum-gdb.py"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/gdb/auto-load${lum_library_dir}"
    RENAME "$<TARGET_FILE_NAME:lum>-gdb.py")
endif()
