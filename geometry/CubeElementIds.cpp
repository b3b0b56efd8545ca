#include "geometry/CubeElementIds.h"

#include <ostream>

namespace lum::CubeElementIds {

std::ostream& operator<<(std::ostream& io_stream, Vertex i_vertex) {
  return io_stream << "CubeElementIds::Vertex with value: " << static_cast<unsigned int>(i_vertex);
}

std::ostream& operator<<(std::ostream& io_stream, Edge i_edge) {
  return io_stream << "CubeElementIds::Edge with value: " << static_cast<unsigned int>(i_edge);
}

std::ostream& operator<<(std::ostream& io_stream, Face i_face) {
  return io_stream << "CubeElementIds::Face with value: " << static_cast<unsigned int>(i_face);
}

std::ostream& operator<<(std::ostream& io_stream, Cube i_cube) {
  return io_stream << "CubeElementIds::Cube with value: " << static_cast<unsigned int>(i_cube);
}

}  // namespace lum::CubeElementIds
