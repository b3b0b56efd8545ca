#pragma once

#include <geometry/Matrix.h>
#include <geometry/Point.h>

#include "common/Volume.h"
#include "surface/Colour.h"

namespace surface {

/// The greys of a volume at points of the world: black at its lowest value, white for the brightest 2 % of
/// the voxels. The volume must have at least two different finite values.
class Inside {
 public:
  /// Keeps a reference to the volume.
  explicit Inside(common::Volume const& i_volume);

  Colour operator()(lum::Point<double, 3> const& i_world) const;

 private:
  common::Volume const* mp_volume;
  lum::Matrix<double> m_world_to_voxel;
  double m_dark;
  double m_bright;
};

}  // namespace surface
