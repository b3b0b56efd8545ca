#pragma once

#include <geometry/Range.h>

#include <array>
#include <cstddef>

#include "common/Volume.h"
#include "surface/Field.h"

namespace surface {

/// From the lowest to the highest finite value; empty when there is none.
lum::Range<double> GetRange(common::Volume const& i_volume);

/// A volume less a level, blended between voxels.
///
/// A layer of its lowest value is laid around it, so that what reaches its border is closed there: the grid
/// point (i, j, k) is the voxel (i - 1, j - 1, k - 1). A voxel that is not finite counts as the lowest.
class VolumeField : public Field {
 public:
  /// Keeps a reference to the volume. A level that it does not cross throws `std::invalid_argument` with the
  /// range that it has; so does one whose range is not finite.
  VolumeField(common::Volume const& i_volume, double i_level);

  double Evaluate(Point const& i_grid_point) const override;

 private:
  // By points of whole coordinates.
  std::array<double, 8> AtCorners(Point const& i_low) const;
  double AtCorner(Point const& i_corner) const;
  bool IsVoxel(Point const& i_corner) const;
  std::size_t GetVoxel(Point const& i_corner) const;

  common::Volume const& m_volume;
  double m_level;
  double m_lowest;
  bool m_is_finite;
};

}  // namespace surface
