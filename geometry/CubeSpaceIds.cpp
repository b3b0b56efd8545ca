#include "geometry/CubeSpaceIds.h"

#include <ostream>

namespace lum::CubeSpaceIds {

std::ostream& operator<<(std::ostream& io_stream, Orientation i_orientation) {
  return io_stream << "CubeSpaceIds::Orientation with value: " << static_cast<unsigned int>(i_orientation);
}

std::ostream& operator<<(std::ostream& io_stream, Plane i_plane) {
  return io_stream << "CubeSpaceIds::Plane with value: " << static_cast<unsigned int>(i_plane);
}

std::ostream& operator<<(std::ostream& io_stream, Volume i_volume) {
  return io_stream << "CubeSpaceIds::Volume with value: " << static_cast<unsigned int>(i_volume);
}

}  // namespace lum::CubeSpaceIds
