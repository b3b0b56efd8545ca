#include <gtest/gtest.h>

#include <cstddef>

#include "surface/Contour.h"
#include "tests/support/AllocationPeak.h"

namespace surface {
namespace {

// A small ball in a large grid: its mesh is small, and so are some layers of cells, but not a table of all
// cells.
class Ball : public Field {
 public:
  explicit Ball(std::size_t i_layers) : Field({{cells + 1, cells + 1, i_layers + 1}, {}, 1e-9, 1e-3}) {}

  double Evaluate(Point const& i_grid_point) const override {
    return 5 - lum::GetLength(i_grid_point - Point(40, 50, 60));
  }

  static constexpr std::size_t cells = 100;
};

std::size_t GetPeak(std::size_t i_layers, std::size_t i_threads) {
  Ball const ball(i_layers);
  lum::test::AllocationPeak const peak;
  auto const ignore_progress = [](double) {};
  Mesh const mesh = Contour(ball, ignore_progress, i_threads);
  EXPECT_GT(mesh.triangles.size(), 100U);
  return peak.GetBytes();
}

TEST(SurfaceMemory, GrowsWithALayerNotWithTheVolume) {
  for (std::size_t const threads : {1U, 3U}) {
    std::size_t const peak = GetPeak(100, threads);
    EXPECT_LT(GetPeak(400, threads), peak + peak / 20);
    EXPECT_LT(peak, 100 * Ball::cells * Ball::cells * threads) << "100 bytes for each cell of a layer";
  }
}

}  // namespace
}  // namespace surface
