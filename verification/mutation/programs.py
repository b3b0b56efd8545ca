"""The test programs that check each file, and the sources that each program is built from."""

import glob
import os

SOURCE_DIR = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))

# The test programs of each file. The one that finds most mutants comes first.
POOL = ["ObjectPoolBlockTest", "ObjectPoolTest", "ObjectPoolInterleavingTest", "ObjectPoolExplorationTest"]
MATRIX = ["MatrixBuildTest", "MatrixInverseTest", "MatrixProductTest", "MatrixTest", "MatrixConversionTest",
          "AllocationFailureTest"]
TESTS = {
    "Utility/Lazy.h": ["LazyTest"],
    "Utility/optional.h": ["OptionalTest"],
    "geometry/CanonicalCubeElement.h": ["CanonicalCubeElementTest"],
    "geometry/internal/Column.h": ["MatrixProductTest"],
    "geometry/internal/CubeArithmetic.h": ["CubeSpaceTest", "CubeVertexIteratorTest", "CubeEdgeIteratorTest",
                                  "CubeFaceIteratorTest"],
    "geometry/CubeEdgeIterator.h": ["CubeEdgeIteratorTest"],
    "geometry/CubeElement.h": ["CubeElementTest"],
    "geometry/CubeElementIds.cpp": ["CubeElementIdsTest"],
    "geometry/CubeElementIds.h": ["CubeElementIdsTest"],
    "geometry/CubeFaceIterator.h": ["CubeFaceIteratorTest"],
    "geometry/CubeSpace.h": ["CubeSpaceTest"],
    "geometry/CubeSpaceIds.cpp": ["CubeSpaceIdsTest"],
    "geometry/CubeSpaceIds.h": ["CubeSpaceIdsTest"],
    "geometry/CubeVertexIterator.h": ["CubeVertexIteratorTest"],
    "geometry/internal/EigenAlgorithms.cpp": ["QuaternionTest", "PseudoInverseTest", "MatrixInverseTest"],
    "geometry/GlobalObjectPool.h": ["GlobalObjectPoolTest", "MatrixTest"],
    "geometry/Handle.h": ["HandleTest", "ObjectPoolTest", "ObjectPoolInterleavingTest", "ObjectPoolExplorationTest"],
    "geometry/internal/IndexIterator.h": ["CubeVertexIteratorTest", "CubeEdgeIteratorTest"],
    "geometry/internal/RequireSameSize.h": ["TransformArraysTest", "QuaternionTest"],
    "geometry/internal/Lanes.h": ["TransformArraysTest", "QuaternionTest", "MisalignedArraysTest"],
    "geometry/LinearInterpolation.h": ["LinearInterpolationTest"],
    "geometry/Matrix.cpp": MATRIX,
    "geometry/Matrix.h": ["MatrixInverseTest", "MatrixTest", "TransformArraysTest"],
    "geometry/ObjectPool.h": POOL[1:],
    "geometry/ObjectPoolBlock.h": POOL,
    "geometry/ObjectPoolDeleter.h": ["ObjectPoolDeleterTest", "ObjectPoolTest"],
    "geometry/Plane.cpp": ["PlaneTest"],
    "geometry/Plane.h": ["PlaneTest"],
    "geometry/Point.h": ["PointTest"],
    "geometry/PseudoInverse.cpp": ["PseudoInverseTest"],
    "geometry/Quaternion.cpp": ["QuaternionTest", "AllocationFailureTest"],
    "geometry/Range.h": ["RangeTest"],
    "geometry/RootFinding.cpp": ["RootFindingTest"],
    "geometry/internal/SingleThread.h": ["SingleThreadTest", "ObjectPoolInterleavingTest"],
    "geometry/TransformArrays.cpp": ["TransformArraysTest"],
    "geometry/TrilinearInterpolation.cpp": ["TrilinearInterpolationTest"],
    "geometry/Vector.cpp": ["VectorTest"],
    "geometry/Vector.h": ["VectorTest"],
}
# Headers with only declarations or checks of compiler flags: no test can run them.
NOTHING_TO_RUN = {"geometry/internal/EigenAlgorithms.h", "geometry/Quaternion.h", "geometry/internal/RequireCpp20.h",
                  "geometry/internal/StrictArithmetic.h", "geometry/TransformArrays.h",
                  "geometry/TrilinearInterpolation.h"}
# The part of a long test that suffices to find mutants: blocks of two slots.
FILTERS = {"ObjectPoolExplorationTest": "ObjectPoolExploration/0.*:*AtTheWrap*"}
# Tests of these files run under the thread sanitizer: on x86, nothing else detects a weaker memory order.
UNDER_THREAD_SANITIZER = {"Utility/Lazy.h"}
# Tests that need these sources only. They are built by the compiler alone, since a mutant of a header would rebuild the
# whole library.
STANDALONE = {
    "HandleTest": ["tests/unit/geometry/HandleTest.cpp", "geometry/GlobalObjectPool.cpp"],
    "ObjectPoolBlockTest": ["tests/unit/geometry/ObjectPoolBlockTest.cpp"],
    "ObjectPoolDeleterTest": ["tests/unit/geometry/ObjectPoolDeleterTest.cpp", "tests/support/BlockCensus.cpp"],
    "ObjectPoolExplorationTest": ["tests/unit/geometry/ObjectPoolExplorationTest.cpp", "tests/support/BlockCensus.cpp"],
    "ObjectPoolInterleavingTest": ["tests/unit/geometry/ObjectPoolInterleavingTest.cpp", "tests/support/BlockCensus.cpp"],
    "ObjectPoolTest": ["tests/unit/geometry/ObjectPoolTest.cpp", "tests/support/BlockCensus.cpp"],
    "OptionalTest": ["tests/unit/Utility/optionalTest.cpp"],
    "PlaneTest": ["tests/unit/geometry/PlaneTest.cpp", "geometry/Plane.cpp", "geometry/Vector.cpp"],
    "PointTest": ["tests/unit/geometry/PointTest.cpp", "geometry/Vector.cpp"],
    "SingleThreadTest": ["tests/unit/geometry/SingleThreadTest.cpp"],
    "VectorTest": ["tests/unit/geometry/VectorTest.cpp", "geometry/Vector.cpp"],
}
# Programs of tests/system/process, which need the whole library.
PROCESS = {
    "LateDestructor": ["tests/system/process/LateDestructor.cpp"],
    "NamespaceScope": ["tests/system/process/NamespaceScope.cpp", "tests/system/process/NamespaceScopeValues.cpp"],
}


def sources_of(program):
    """The files that a standalone program is compiled from, relative to the sources."""
    if program in STANDALONE:
        return STANDALONE[program]
    library = [file for folder in ("geometry", "geometry/internal")
               for file in sorted(glob.glob(folder + "/*.cpp", root_dir=SOURCE_DIR))]
    return PROCESS[program] + library
