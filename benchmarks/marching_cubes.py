#!/usr/bin/python3
"""Does the same as examples/surface with scikit-image: reads a volume of bytes, contours it and writes the mesh.

    benchmarks/marching_cubes.py <volume.nii.gz> <level> <mesh.ply>
"""

import gzip
import struct
import sys

import numpy
from skimage.measure import marching_cubes


def read(path):
    """The voxels of a single-file NIfTI volume of unsigned bytes, the first index varying fastest."""
    with gzip.open(path) as stream:
        data = stream.read()
    size = struct.unpack_from("<3h", data, 42)
    assert struct.unpack_from("<h", data, 70) == (2,), "expected a volume of unsigned bytes"
    offset = int(struct.unpack_from("<f", data, 108)[0])
    return numpy.frombuffer(data, numpy.uint8, size[0] * size[1] * size[2], offset).reshape(size, order="F")


def write(path, vertices, normals, faces):
    """A binary PLY with normals; examples/surface writes a colour for each vertex too."""
    header = ["ply", "format binary_little_endian 1.0", f"element vertex {len(vertices)}"]
    header += [f"property float {name}" for name in ("x", "y", "z", "nx", "ny", "nz")]
    header += [f"element face {len(faces)}", "property list uchar int vertex_indices", "end_header"]
    records = numpy.empty(len(faces), [("count", "u1"), ("indices", "<i4", 3)])
    records["count"] = 3
    records["indices"] = faces
    with open(path, "wb") as stream:
        stream.write(("\n".join(header) + "\n").encode())
        stream.write(numpy.hstack([vertices, normals]).astype("<f4").tobytes())
        stream.write(records.tobytes())


volume, level, mesh = sys.argv[1:]
vertices, faces, normals, _ = marching_cubes(read(volume), float(level))
write(mesh, vertices, normals, faces)
print(f"{mesh}: {len(vertices)} vertices, {len(faces)} triangles")
