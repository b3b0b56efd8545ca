#include "surface/Inside.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <vector>

namespace surface {

Inside::Inside(common::Volume const& i_volume)
    : mp_volume(&i_volume), m_world_to_voxel(i_volume.voxel_to_world.GetInverse()) {
  std::vector<double> values;
  std::copy_if(i_volume.values.begin(), i_volume.values.end(), std::back_inserter(values),
               [](double i_value) { return std::isfinite(i_value); });
  auto const bright = values.begin() + static_cast<std::ptrdiff_t>(values.size() - 1 - values.size() / 50);
  std::nth_element(values.begin(), bright, values.end());
  m_bright = *bright;
  m_dark = *std::min_element(values.begin(), bright + 1);
}

Colour Inside::operator()(lum::Point<double, 3> const& i_world) const {
  double const value = mp_volume->Sample(m_world_to_voxel * i_world);
  double const grey = m_bright > m_dark && std::isfinite(value) ? (value - m_dark) / (m_bright - m_dark) : 0;
  auto const level = static_cast<std::uint8_t>(std::lround(255 * std::clamp(grey, 0.0, 1.0)));
  return {level, level, level};
}

}  // namespace surface
