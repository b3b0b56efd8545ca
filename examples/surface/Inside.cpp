#include "surface/Inside.h"

#include <geometry/Range.h>

#include <array>
#include <cmath>
#include <cstddef>

#include "common/Conversion.h"
#include "surface/VolumeField.h"

namespace surface {

Inside::Inside(common::Volume const& i_volume)
    : mp_volume(&i_volume), m_world_to_voxel(i_volume.voxel_to_world.GetInverse()) {
  lum::Range<double> const range = GetRange(i_volume);
  m_dark = range.GetLower();
  // A histogram approximates the quantile precisely enough for greys, without sorting a copy of the volume.
  std::array<std::size_t, 1024> counts{};
  constexpr double last = counts.size() - 1;
  // Divided by it, never multiplied by its reciprocal, which may be infinite.
  double const width = range.GetUpper() - range.GetLower();
  std::size_t total = 0;
  for (double const value : i_volume.values) {
    if (!std::isfinite(value)) continue;
    ++counts[common::ToInteger<std::size_t>((value - m_dark) / width * last)];
    ++total;
  }
  std::size_t bright = counts.size();
  for (std::size_t above = 0; bright > 1 && above <= total / 50;) above += counts[--bright];
  m_bright = m_dark + static_cast<double>(bright + 1) / last * width;
}

Colour Inside::operator()(lum::Point<double, 3> const& i_world) const {
  double const value = mp_volume->Sample(m_world_to_voxel * i_world);
  double const grey = m_bright > m_dark && std::isfinite(value) ? (value - m_dark) / (m_bright - m_dark) : 0;
  auto const level = common::ToByte(255 * grey);
  return {level, level, level};
}

}  // namespace surface
