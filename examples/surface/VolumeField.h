#pragma once

#include <geometry/Range.h>

#include <array>
#include <cstddef>

#include "common/Volume.h"
#include "surface/Field.h"

namespace surface {

/// The range of the finite values; empty if there are none.
lum::Range<double> GetRange(common::Volume const& i_volume);

/// A volume minus a level, interpolated between voxels.
///
/// A layer of the volume's lowest value surrounds it and closes surfaces at the border, so grid point (i, j,
/// k) is voxel (i - 1, j - 1, k - 1). Voxels that are not finite have the lowest value too.
class VolumeField : public Field {
 public:
  /// Keeps a reference to the volume. Throws `std::invalid_argument` if no value is finite, if the width of
  /// the range is not finite, or if the level lies outside the range; the message states the range.
  VolumeField(common::Volume const& i_volume, double i_level);

  double Evaluate(Point const& i_grid_point) const override;

 private:
  // All four expect integer coordinates.
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
