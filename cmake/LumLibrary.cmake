# lum_add_library(<target> [STATIC|SHARED])
#
# Adds the library: its files, and how they are compiled. Tests build it again with other flags.
function(lum_add_library target)
  add_library(${target} ${ARGN})
  target_sources(
    ${target}
    PRIVATE "${PROJECT_SOURCE_DIR}/geometry/CubeElementIds.cpp"
            "${PROJECT_SOURCE_DIR}/geometry/CubeSpaceIds.cpp"
            "${PROJECT_SOURCE_DIR}/geometry/internal/EigenAlgorithms.cpp"
            "${PROJECT_SOURCE_DIR}/geometry/GlobalObjectPool.cpp"
            "${PROJECT_SOURCE_DIR}/geometry/Matrix.cpp"
            "${PROJECT_SOURCE_DIR}/geometry/Plane.cpp"
            "${PROJECT_SOURCE_DIR}/geometry/PseudoInverse.cpp"
            "${PROJECT_SOURCE_DIR}/geometry/Quaternion.cpp"
            "${PROJECT_SOURCE_DIR}/geometry/RootFinding.cpp"
            "${PROJECT_SOURCE_DIR}/geometry/TransformArrays.cpp"
            "${PROJECT_SOURCE_DIR}/geometry/TrilinearInterpolation.cpp"
            "${PROJECT_SOURCE_DIR}/geometry/Vector.cpp"
    PUBLIC FILE_SET
           HEADERS
           BASE_DIRS
           "${PROJECT_SOURCE_DIR}"
           FILES
           "${PROJECT_SOURCE_DIR}/Utility/Lazy.h"
           "${PROJECT_SOURCE_DIR}/Utility/optional.h"
           "${PROJECT_SOURCE_DIR}/extras/EigenMap.h"
           "${PROJECT_SOURCE_DIR}/extras/FmtFormat.h"
           "${PROJECT_SOURCE_DIR}/extras/Format.h"
           "${PROJECT_SOURCE_DIR}/extras/Hash.h"
           "${PROJECT_SOURCE_DIR}/extras/Layout.h"
           "${PROJECT_SOURCE_DIR}/extras/Stream.h"
           "${PROJECT_SOURCE_DIR}/extras/ValueFormatter.h"
           "${PROJECT_SOURCE_DIR}/extras/ValueText.h"
           "${PROJECT_SOURCE_DIR}/geometry/CanonicalCubeElement.h"
           "${PROJECT_SOURCE_DIR}/geometry/CubeEdgeIterator.h"
           "${PROJECT_SOURCE_DIR}/geometry/CubeElement.h"
           "${PROJECT_SOURCE_DIR}/geometry/CubeElementIds.h"
           "${PROJECT_SOURCE_DIR}/geometry/CubeFaceIterator.h"
           "${PROJECT_SOURCE_DIR}/geometry/CubeSpace.h"
           "${PROJECT_SOURCE_DIR}/geometry/CubeSpaceIds.h"
           "${PROJECT_SOURCE_DIR}/geometry/CubeVertexIterator.h"
           "${PROJECT_SOURCE_DIR}/geometry/GlobalObjectPool.h"
           "${PROJECT_SOURCE_DIR}/geometry/Handle.h"
           "${PROJECT_SOURCE_DIR}/geometry/LinearInterpolation.h"
           "${PROJECT_SOURCE_DIR}/geometry/Matrix.h"
           "${PROJECT_SOURCE_DIR}/geometry/ObjectPool.h"
           "${PROJECT_SOURCE_DIR}/geometry/ObjectPoolBlock.h"
           "${PROJECT_SOURCE_DIR}/geometry/ObjectPoolDeleter.h"
           "${PROJECT_SOURCE_DIR}/geometry/Plane.h"
           "${PROJECT_SOURCE_DIR}/geometry/Point.h"
           "${PROJECT_SOURCE_DIR}/geometry/PseudoInverse.h"
           "${PROJECT_SOURCE_DIR}/geometry/Quaternion.h"
           "${PROJECT_SOURCE_DIR}/geometry/Range.h"
           "${PROJECT_SOURCE_DIR}/geometry/RootFinding.h"
           "${PROJECT_SOURCE_DIR}/geometry/TransformArrays.h"
           "${PROJECT_SOURCE_DIR}/geometry/TrilinearInterpolation.h"
           "${PROJECT_SOURCE_DIR}/geometry/Vector.h"
           "${PROJECT_SOURCE_DIR}/geometry/internal/CubeArithmetic.h"
           "${PROJECT_SOURCE_DIR}/geometry/internal/Export.h"
           "${PROJECT_SOURCE_DIR}/geometry/internal/IndexIterator.h"
           "${PROJECT_SOURCE_DIR}/geometry/internal/ObjectPoolPolicy.h"
           "${PROJECT_SOURCE_DIR}/geometry/internal/RequireCpp20.h"
           "${PROJECT_SOURCE_DIR}/geometry/internal/SingleThread.h")
  target_compile_features(${target} PUBLIC cxx_std_20)
  target_link_libraries(${target} PUBLIC Eigen3::Eigen Threads::Threads)
  set_target_properties(
    ${target}
    PROPERTIES CXX_EXTENSIONS OFF
               CXX_VISIBILITY_PRESET hidden
               VISIBILITY_INLINES_HIDDEN ON
               POSITION_INDEPENDENT_CODE ON
               VERSION ${PROJECT_VERSION}
               SOVERSION ${PROJECT_VERSION_MAJOR})
  get_target_property(type ${target} TYPE)
  if(type STREQUAL SHARED_LIBRARY)
    # Values may outlive the plugin that loaded the library, and still need its pools and identities.
    target_link_options(${target} PRIVATE LINKER:-z,nodelete)
    # Calls within the library are direct and may be inlined: a program cannot replace single functions.
    target_compile_options(${target} PRIVATE -fno-semantic-interposition)
    target_link_options(${target} PRIVATE LINKER:-Bsymbolic-functions)
  endif()
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    # Eigen returns early for matrices that are not finite; g++ cannot see that no such matrix gets here.
    set_source_files_properties("${PROJECT_SOURCE_DIR}/geometry/internal/EigenAlgorithms.cpp"
                                PROPERTIES COMPILE_OPTIONS -Wno-maybe-uninitialized)
  endif()
  if(NOT target STREQUAL "lum")
    # The headers are the same as those of lum.
    set_target_properties(${target} PROPERTIES VERIFY_INTERFACE_HEADER_SETS OFF)
  endif()
  lum_keep_order_of_operations(${target})
  lum_warnings(${target})
endfunction()
