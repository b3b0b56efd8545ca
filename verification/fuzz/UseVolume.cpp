#include "UseVolume.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "Bytes.h"
#include "common/Picture.h"
#include "geometry/Range.h"
#include "surface/Contour.h"
#include "surface/Draw.h"
#include "surface/Inside.h"
#include "surface/VolumeField.h"

namespace lum::test {
namespace {

constexpr std::size_t most_voxels = 27;
constexpr std::size_t most_pixels = 256;
constexpr std::size_t picture_size = 6;

void IgnoreProgress(double) {}

void Slice(common::Volume const& i_volume, reslice::Placement const& i_placement) {
  reslice::Slice const slice = reslice::PlaceSlice(i_volume, i_placement);
  Require(slice.width > 0 && slice.width <= reslice::largest_size, "the width of a slice");
  Require(slice.height > 0 && slice.height <= reslice::largest_size, "the height of a slice");
  if (slice.width * slice.height > most_pixels) return;
  reslice::Samples const samples = reslice::Resample(i_volume, slice);
  Require(samples.size() == slice.width * slice.height, "the number of samples");

  auto const [low, high] = std::ranges::minmax(i_volume.values);
  // Rounding may leave the range, and overflow at its ends. Comparisons with a NaN are false.
  double const rounding = 1e-12 * std::max(std::abs(low), std::abs(high));
  bool const is_plain = rounding < 1e280 && std::ranges::all_of(i_volume.values, [](double i_value) {
                          return std::isfinite(i_value);
                        });
  for (double const sample : samples) {
    Require(!is_plain || !(sample < low - rounding || sample > high + rounding), "the range of a slice");
  }
  common::Picture const picture = common::StretchContrast(slice.width, slice.height, samples);
  Require(picture.pixels.size() == samples.size(), "the number of pixels of a slice");
}

void ContourAndDraw(common::Volume const& i_volume, SurfaceRequest const& i_request) {
  lum::Range<double> const range = surface::GetRange(i_volume);
  double const level = range.GetLower() + i_request.level_part * (range.GetUpper() - range.GetLower());
  surface::VolumeField const field(i_volume, level);
  surface::Mesh const mesh = surface::Contour(field, &IgnoreProgress, 1);
  for (auto const& triangle : mesh.triangles) {
    for (std::size_t const vertex : triangle)
      Require(vertex < mesh.vertices.size(), "a vertex of a triangle");
  }
  surface::View view;
  view.rotation = surface::LookAt(1);
  view.size = picture_size;
  if (i_request.is_clipped) {
    view.clip = i_request.clip;
    view.inside = surface::Inside(i_volume);
  }
  view.is_turning = i_request.is_turning;
  common::Picture const picture = surface::Draw(mesh, view, &IgnoreProgress);
  Require(picture.pixels.size() == 3 * picture_size * picture_size, "the number of pixels of a picture");
}

}  // namespace

void RunOrRefuse(std::function<void()> const& i_step) {
  auto const require_line = [](std::exception const& i_exception) {
    std::string_view const text = i_exception.what();
    Require(!text.empty() && text.find('\n') == std::string_view::npos, "an error of one line");
  };
  try {
    i_step();
  } catch (std::invalid_argument const& exception) {
    require_line(exception);
  } catch (std::runtime_error const& exception) {
    require_line(exception);
  }
}

std::optional<common::Volume> ReadFile(std::span<std::uint8_t const> i_bytes) {
  static int const file = memfd_create("volume", 0);
  static std::string const path = "/proc/self/fd/" + std::to_string(file);
  auto const size = static_cast<ssize_t>(i_bytes.size());
  Require(ftruncate(file, 0) == 0 && pwrite(file, i_bytes.data(), i_bytes.size(), 0) == size, "a file");
  std::optional<common::Volume> volume;
  RunOrRefuse([&] { volume = common::ReadVolume(path); });
  if (!volume) return {};
  auto const [x, y, z] = volume->size;
  Require(volume->values.size() == x * y * z, "the number of voxels");
  if (volume->values.size() > most_voxels) return {};
  return volume;
}

void UseSlice(common::Volume const& i_volume, reslice::Placement const& i_placement) {
  RunOrRefuse([&] { Slice(i_volume, i_placement); });
}

void UseSurface(common::Volume const& i_volume, SurfaceRequest const& i_request) {
  RunOrRefuse([&] { ContourAndDraw(i_volume, i_request); });
}

}  // namespace lum::test
