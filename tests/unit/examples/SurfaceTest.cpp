#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <limits>
#include <map>
#include <numbers>
#include <random>
#include <regex>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "common/Picture.h"
#include "common/Volume.h"
#include "surface/Contour.h"
#include "surface/Draw.h"
#include "surface/Inside.h"
#include "surface/Mesh.h"
#include "surface/Solid.h"
#include "surface/VolumeField.h"
#include "tests/support/Throws.h"
#include "tests/unit/examples/ProgramTest.h"
#include "tests/unit/examples/ReadPng.h"

namespace surface {
namespace {

namespace fs = std::filesystem;
using test::ReadPng;

void IgnoreProgress(double) {}

Mesh ContourSolid(std::string const& i_name, std::size_t i_cells) {
  return Contour(*MakeSolid(i_name, i_cells), &IgnoreProgress);
}

// Contoured once for all tests that use it.
Mesh const& GetDie() {
  static Mesh const die = ContourSolid("die", 128);
  return die;
}

constexpr double cell = 2.0 / 128;

// The radius of the circles where bites meet a face.
double const rim_radius =
    std::sqrt(Die::bite_radius * Die::bite_radius - Die::bite_height * Die::bite_height);

double GetExactVolume(std::string const& i_name) {
  using std::numbers::pi;
  if (i_name == "sphere") return 4 * pi / 3 * std::pow(Sphere::radius, 3);
  double const depth = Die::bite_radius - Die::bite_height;
  double const bite = pi * depth * depth * (3 * Die::bite_radius - depth) / 3;
  return std::pow(2 * Die::half_edge, 3) - 21 * bite;
}

double GetRelativeError(std::string const& i_name, std::size_t i_cells) {
  return ContourSolid(i_name, i_cells).GetVolume() / GetExactVolume(i_name) - 1;
}

// Expects that every edge is used equally often in both directions.
void ExpectClosed(Mesh const& i_mesh) {
  std::map<std::pair<std::uint32_t, std::uint32_t>, std::array<int, 2>> uses;
  for (auto const& triangle : i_mesh.triangles) {
    for (std::size_t corner = 0; corner < 3; ++corner) {
      std::uint32_t const from = triangle[corner];
      std::uint32_t const to = triangle[(corner + 1) % 3];
      ASSERT_NE(from, to);
      ++uses[std::minmax(from, to)][from < to ? 0 : 1];
    }
  }
  EXPECT_FALSE(uses.empty());
  std::size_t unbalanced = 0;
  for (auto const& [edge, ways] : uses) unbalanced += ways[0] != ways[1] ? 1U : 0U;
  EXPECT_EQ(unbalanced, 0U);
}

void ExpectUnitNormals(Mesh const& i_mesh) {
  for (Mesh::Vertex const& vertex : i_mesh.vertices) {
    ASSERT_NEAR(lum::GetLength(vertex.normal), 1, 1e-9);
    for (double const coordinate : vertex.position) ASSERT_TRUE(std::isfinite(coordinate));
  }
}

// A volume of values at voxels, with an affine.
template <class Value>
common::Volume MakeVolume(std::array<std::size_t, 3> const& i_size, lum::Matrix<double> const& i_affine,
                          Value const& i_value) {
  common::Volume volume{i_size, i_affine, {}};
  for (std::size_t k = 0; k < i_size[2]; ++k) {
    for (std::size_t j = 0; j < i_size[1]; ++j) {
      for (std::size_t i = 0; i < i_size[0]; ++i) volume.values.push_back(i_value(i, j, k));
    }
  }
  return volume;
}

// The distance from the centre of a world of 20 x 20 x 20, sampled at voxels placed by an affine.
common::Volume MakeBall(std::array<std::size_t, 3> const& i_size, lum::Matrix<double> const& i_affine) {
  return MakeVolume(i_size, i_affine, [&](std::size_t i_i, std::size_t i_j, std::size_t i_k) {
    Point const voxel(static_cast<double>(i_i), static_cast<double>(i_j), static_cast<double>(i_k));
    return 10 - lum::GetLength(i_affine * voxel - Point(10, 10, 10));
  });
}

Mesh ContourVolume(common::Volume const& i_volume, double i_level) {
  return Contour(VolumeField(i_volume, i_level), &IgnoreProgress);
}

double DistanceToEdge(Point const& i_in_die) {
  static Die const die;
  double distance = std::numeric_limits<double>::infinity();
  for (std::size_t axis = 0; axis < 3; ++axis) {
    distance = std::min(distance, std::hypot(std::abs(i_in_die[(axis + 1) % 3]) - Die::half_edge,
                                             std::abs(i_in_die[(axis + 2) % 3]) - Die::half_edge));
    for (Point const& bite : die.GetBites()) {
      if (std::abs(bite[axis]) < Die::half_edge) continue;
      Point middle = bite;
      middle[axis] = std::copysign(Die::half_edge, bite[axis]);
      Vector in_plane = i_in_die - middle;
      double const height = std::exchange(in_plane[axis], 0);
      distance = std::min(distance, std::hypot(lum::GetLength(in_plane) - rim_radius, height));
    }
  }
  return distance;
}

TEST(Contour, SolidsAreClosed) {
  for (std::string const name : {"die", "sphere"}) {
    Mesh const mesh = ContourSolid(name, 40);
    ExpectClosed(mesh);
    ExpectUnitNormals(mesh);
  }
}

// Noise has every kind of cell, including the ambiguous ones.
TEST(Contour, NoiseIsClosed) {
  constexpr unsigned seed = 20261121;
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  common::Volume const volume =
      MakeVolume({17, 19, 23}, {}, [&](auto...) { return static_cast<double>(random() % 5); });
  for (double const level : {0.0, 1.0, 1.5, 3.9}) {
    Mesh const mesh = ContourVolume(volume, level);
    ExpectClosed(mesh);
    ExpectUnitNormals(mesh);
    EXPECT_GT(mesh.GetVolume(), 0);
  }
}

TEST(Contour, VolumesAgreeWithTheSolids) {
  EXPECT_LT(std::abs(GetRelativeError("sphere", 128)), 0.002);
  EXPECT_LT(std::abs(GetDie().GetVolume() / GetExactVolume("die") - 1), 0.002);
}

TEST(Contour, VolumesConvergeAtSecondOrder) {
  double const at_32 = GetRelativeError("sphere", 32);
  double const at_64 = GetRelativeError("sphere", 64);
  double const at_128 = GetRelativeError("sphere", 128);
  EXPECT_NEAR(at_32 / at_64, 4, 0.5);
  EXPECT_NEAR(at_64 / at_128, 4, 0.5);
  // Coarse cells contain two edges at once, which makes the error at 32 cells larger.
  EXPECT_GT(GetRelativeError("die", 32) / (GetDie().GetVolume() / GetExactVolume("die") - 1), 16);
}

TEST(Contour, TheDiesCornersAreFound) {
  lum::Matrix<double> const world_to_die = Die().GetDieToWorld().GetInverse();
  std::array<int, 8> found{};
  for (Mesh::Vertex const& vertex : GetDie().vertices) {
    if (vertex.rank != 3) continue;
    ASSERT_FALSE(vertex.is_off);
    Point const point = world_to_die * vertex.position;
    Point corner;
    std::size_t number = 0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      corner[axis] = std::copysign(Die::half_edge, point[axis]);
      if (point[axis] > 0) number |= std::size_t{1} << axis;
    }
    EXPECT_LT(lum::GetLength(point - corner), 0.02 * cell);
    ++found[number];
  }
  EXPECT_EQ(found, (std::array<int, 8>{1, 1, 1, 1, 1, 1, 1, 1}));
}

TEST(Contour, TheDiesEdgesAreFound) {
  lum::Matrix<double> const world_to_die = Die().GetDieToWorld().GetInverse();
  int on = 0;
  int off = 0;
  for (Mesh::Vertex const& vertex : GetDie().vertices) {
    if (vertex.rank != 2) continue;
    double const distance = DistanceToEdge(world_to_die * vertex.position);
    (vertex.is_off ? off : on) += 1;
    // Where an edge of the die passes just outside a cell that the surface crosses, the vertex stays in the
    // cell.
    ASSERT_LT(distance, (vertex.is_off ? 0.5 : 0.02) * cell);
  }
  double const length = 12 * 2 * Die::half_edge + 21 * 2 * std::numbers::pi * rim_radius;
  EXPECT_GT(on, length / cell) << "more than one vertex per cell of length";
  EXPECT_LT(off, on / 10);
}

TEST(Contour, TheSphereIsSmoothWithNormalsToADegree) {
  for (Mesh::Vertex const& vertex : ContourSolid("sphere", 128).vertices) {
    Vector const radius = vertex.position - lum::Origin;
    EXPECT_EQ(vertex.rank, 1);
    ASSERT_GT(lum::Dot(vertex.normal, radius) / lum::GetLength(radius), std::cos(std::numbers::pi / 180));
    ASSERT_NEAR(lum::GetLength(radius), Sphere::radius, 0.01 * cell);
  }
}

TEST(Contour, TheVolumeOfTheHeadIsThatOfItsVoxels) {
  common::Volume const head = common::ReadVolume(HEAD_VOLUME);
  constexpr double level = 40;
  Mesh const mesh = ContourVolume(head, level);
  auto const voxels =
      std::count_if(head.values.begin(), head.values.end(), [](double i_value) { return i_value > level; });
  double const expected = static_cast<double>(voxels) * std::abs(head.voxel_to_world.GetDeterminant());
  EXPECT_NEAR(mesh.GetVolume() / expected, 1, 0.02);
  ExpectClosed(mesh);
  ExpectUnitNormals(mesh);
}

TEST(Contour, MirroredAndUnevenAffinesKeepTheOrientation) {
  double const exact = 4 * std::numbers::pi / 3 * std::pow(7, 3);
  for (auto const& [size, affine] : {
           std::pair{std::array<std::size_t, 3>{21, 21, 21}, lum::Matrix<double>()},
           std::pair{std::array<std::size_t, 3>{21, 21, 21},
                     lum::Matrix<double>::Translate(20, 0, 0) * lum::Matrix<double>::Scale(-1, 1, 1)},
           std::pair{std::array<std::size_t, 3>{41, 11, 21}, lum::Matrix<double>::Scale(0.5, 2, 1)},
       }) {
    Mesh const mesh = ContourVolume(MakeBall(size, affine), 3);
    ExpectClosed(mesh);
    EXPECT_NEAR(mesh.GetVolume() / exact, 1, 0.04);
    for (auto const& triangle : mesh.triangles) {
      for (std::uint32_t const vertex : triangle) {
        ASSERT_GT(lum::Dot(mesh.GetDoubledArea(triangle), mesh.vertices[vertex].normal), 0);
      }
    }
    for (Mesh::Vertex const& vertex : mesh.vertices) {
      Vector const radius = vertex.position - Point(10, 10, 10);
      ASSERT_GT(lum::Dot(vertex.normal, radius) / lum::GetLength(radius), 0.99);
    }
  }
}

TEST(Contour, ASurfaceIsClosedAtTheBorder) {
  common::Volume const volume = MakeVolume(
      {4, 5, 6}, {},
      [](std::size_t i_i, std::size_t i_j, std::size_t i_k) { return i_i + i_j + i_k == 0 ? 0.0 : 1.0; });
  Mesh const mesh = ContourVolume(volume, 0.5);
  ExpectClosed(mesh);
  EXPECT_NEAR(mesh.GetVolume(), 4 * 5 * 6, 10);
}

TEST(Contour, VoxelsThatAreNotFiniteAreOutside) {
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  constexpr double infinity = std::numeric_limits<double>::infinity();
  auto const make = [](double i_middle) {
    return MakeVolume({3, 3, 3}, {}, [=](std::size_t i_i, std::size_t i_j, std::size_t i_k) {
      return i_i == 1 && i_j == 1 && i_k == 1 ? i_middle : i_i == 0 ? 0.0 : 1.0;
    });
  };
  double const expected = ContourVolume(make(0), 0.5).GetVolume();
  for (double const value : {nan, infinity, -infinity}) {
    Mesh const mesh = ContourVolume(make(value), 0.5);
    ExpectClosed(mesh);
    EXPECT_EQ(mesh.GetVolume(), expected);
  }
}

TEST(Contour, RefusesALevelThatIsNeverCrossed) {
  common::Volume const volume =
      MakeVolume({3, 3, 3}, {}, [](std::size_t i_i, auto...) { return static_cast<double>(i_i) - 0.5; });
  auto const expect_refusal = [&](double i_level, std::string const& i_text) {
    EXPECT_TRUE(lum::test::Throws<std::invalid_argument>([&] { VolumeField(volume, i_level); }, i_text));
  };
  expect_refusal(1.5, "the volume never crosses the level 1.5: its values range from -0.5 to 1.5");
  expect_refusal(-0.75, "the volume never crosses the level -0.75: its values range from -0.5 to 1.5");
  ExpectClosed(ContourVolume(volume, -0.5));
  ExpectClosed(ContourVolume(volume, 1.499));

  common::Volume const nothing =
      MakeVolume({2, 2, 2}, {}, [](auto...) { return std::numeric_limits<double>::quiet_NaN(); });
  EXPECT_TRUE(lum::test::Throws<std::invalid_argument>([&] { VolumeField(nothing, 1); },
                                                       "none of the volume's values is finite"));
}

TEST(Contour, ReportsTheRangeInAllItsDigits) {
  common::Volume const volume = MakeVolume(
      {3, 3, 3}, {}, [](std::size_t i_i, auto...) { return 123456789.0 + static_cast<double>(i_i); });
  EXPECT_TRUE(lum::test::Throws<std::invalid_argument>(
      [&] { VolumeField(volume, 123456791.5); },
      "the volume never crosses the level 123456791.5: its values range from 123456789 to 123456791"));
}

TEST(Contour, RefusesARangeThatOverflows) {
  common::Volume const volume =
      MakeVolume({3, 3, 3}, {}, [](std::size_t i_i, auto...) { return i_i == 1 ? 1.7e308 : -1.7e308; });
  EXPECT_TRUE(lum::test::Throws<std::invalid_argument>(
      [&] { VolumeField(volume, 0); },
      "the range of the volume's values overflows: from -1.7e+308 to 1.7e+308"));
}

TEST(Contour, TheLeastRangeIsContoured) {
  common::Volume const volume =
      MakeVolume({3, 3, 3}, {}, [](std::size_t i_i, auto...) { return i_i == 1 ? 1e-320 : 0; });
  ExpectClosed(ContourVolume(volume, 5e-321));
}

TEST(Inside, ShowsTheGreysOfTheVolumeAtTheirPlaces) {
  // Values increase along the second voxel axis, which is the first axis of the world.
  lum::Matrix<double> const affine =
      lum::Matrix<double>::Translate(5, 0, 0) *
      lum::Matrix<double>(Point(), Vector(0, 1, 0), Vector(2, 0, 0), Vector(0, 0, 1));
  common::Volume const volume = MakeVolume(
      {4, 101, 4}, affine, [](std::size_t, std::size_t i_j, auto...) { return static_cast<double>(i_j); });
  Inside const inside(volume);
  EXPECT_EQ(inside({5, 1, 1}), (Colour{0, 0, 0}));
  EXPECT_EQ(inside({5 + 200, 1, 1}), (Colour{255, 255, 255}));
  EXPECT_NEAR(inside({5 + 100, 1, 1})[0], 128, 4);
  EXPECT_EQ(inside({4, 30, 1}), (Colour{0, 0, 0})) << "outside";
}

// The reciprocal of the range is infinite.
TEST(Inside, ShowsTheLeastRange) {
  common::Volume const volume =
      MakeVolume({3, 3, 3}, {}, [](std::size_t i_i, auto...) { return i_i == 1 ? 1e-320 : 0; });
  Inside const inside(volume);
  EXPECT_EQ(inside({0, 1, 1}), (Colour{0, 0, 0}));
  EXPECT_GT(inside({1, 1, 1})[0], 200);
}

TEST(Mesh, NormalsHaveUnitLengthOrAreTheFallback) {
  Vector const fallback(0, 0, 1);
  auto const expect = [&](Vector const& i_vector, Vector const& i_expected) {
    EXPECT_LT(lum::GetLength(NormalizedOr(fallback, i_vector) - i_expected), 1e-15) << i_vector[0];
  };
  for (double const scale : {1.0, 1e200, 1e-200, 1e-308}) {
    expect(Vector(3, 0, -4) * scale, Vector(0.6, 0, -0.8));
  }
  expect({std::numeric_limits<double>::denorm_min(), 0, 0}, {1, 0, 0});
  expect({std::numeric_limits<double>::max(), 0, 0}, {1, 0, 0});
  expect({}, fallback);
  expect({std::numeric_limits<double>::infinity(), 0, 0}, fallback);
  expect({0, std::numeric_limits<double>::quiet_NaN(), 0}, fallback);
}

TEST(Mesh, ATransformThatFlattensKeepsNormalsFinite) {
  Mesh mesh = ContourSolid("sphere", 8);
  mesh.Transform(lum::Matrix<double>::Scale(1e-200, 1, 1e200));
  ExpectUnitNormals(mesh);
}

TEST(Contour, IsTheSameWithAnyNumberOfThreads) {
  auto const solid = MakeSolid("die", 32);
  Mesh const expected = Contour(*solid, &IgnoreProgress, 1);
  ExpectClosed(expected);
  for (std::size_t const threads : {0U, 2U, 3U, 4U, 100U}) {
    Mesh const mesh = Contour(*solid, &IgnoreProgress, threads);
    EXPECT_EQ(mesh.triangles, expected.triangles);
    ASSERT_EQ(mesh.vertices.size(), expected.vertices.size());
    for (std::size_t i = 0; i < mesh.vertices.size(); ++i) {
      EXPECT_EQ(mesh.vertices[i].position, expected.vertices[i].position);
      EXPECT_EQ(mesh.vertices[i].normal, expected.vertices[i].normal);
      EXPECT_EQ(mesh.vertices[i].rank, expected.vertices[i].rank);
    }
  }
}

TEST(Contour, AnExceptionOfTheProgressFunctionEndsTheWork) {
  for (std::size_t const threads : {1U, 3U}) {
    auto const stop = [](double i_part) {
      if (i_part > 0.2) throw std::runtime_error("enough");
    };
    auto const contour = [&] { Contour(*MakeSolid("sphere", 32), stop, threads); };
    EXPECT_TRUE(lum::test::Throws<std::runtime_error>(contour, "enough"));
  }
}

// A field that throws in the upper half of the grid.
class HalfAField : public Field {
 public:
  HalfAField() : Field({{33, 33, 33}, {}, 1e-9, 1e-3}) {}

  double Evaluate(Point const& i_grid_point) const override {
    if (i_grid_point[2] > 16) throw std::out_of_range("there is no upper half");
    return 5 - lum::GetLength(i_grid_point - Point(16, 16, 16));
  }
};

TEST(Contour, AnExceptionOfAFieldOnAnyThreadEndsTheWork) {
  for (std::size_t const threads : {1U, 2U, 4U}) {
    EXPECT_TRUE(lum::test::Throws<std::out_of_range>([&] { Contour(HalfAField(), &IgnoreProgress, threads); },
                                                     "there is no upper half"));
  }
}

double GetMeanDifference(common::Picture const& i_a, common::Picture const& i_b) {
  double sum = 0;
  for (std::size_t i = 0; i < i_a.pixels.size(); ++i) sum += std::abs(i_a.pixels[i] - i_b.pixels[i]);
  return sum / static_cast<double>(i_a.pixels.size());
}

View MakeView() {
  View view;
  view.rotation = LookAt(0.8 * std::numbers::pi);
  view.inside = [](Point const&) { return Colour{10, 20, 30}; };
  view.palette = by_rank;
  view.size = 120;
  return view;
}

TEST(Draw, TheDieLooksAsItDid) {
  common::Picture const expected = ReadPng(DIE_PICTURE);
  common::Picture const drawn = Draw(GetDie(), MakeView(), &IgnoreProgress);
  ASSERT_EQ(expected.width, 120U);
  ASSERT_EQ(expected.pixels.size(), drawn.pixels.size());
  EXPECT_LT(GetMeanDifference(drawn, expected), 1);

  common::Picture black = drawn;
  std::fill(black.pixels.begin(), black.pixels.end(), std::uint8_t{0});
  EXPECT_GT(GetMeanDifference(black, expected), 100);
  View mirrored = MakeView();
  mirrored.rotation = LookAt(1.8 * std::numbers::pi);
  EXPECT_GT(GetMeanDifference(Draw(GetDie(), mirrored, &IgnoreProgress), expected), 5)
      << "another side of the die";
}

TEST(Draw, RefusesASurfaceWithoutAFiniteBox) {
  auto const expect_refusal = [](double i_scale, double i_offset) {
    Mesh mesh = ContourSolid("sphere", 8);
    for (Mesh::Vertex& vertex : mesh.vertices) {
      vertex.position = Point(i_offset, 0, 0) + (vertex.position - lum::Origin) * i_scale;
    }
    EXPECT_TRUE(lum::test::Throws<std::runtime_error>(
        [&] { Draw(mesh, MakeView(), &IgnoreProgress); },
        "the surface is too large, too small, too flat or too far away to be drawn"));
  };
  expect_refusal(1.5e308, 0);
  expect_refusal(1e-310, 0);
  expect_refusal(1, 1e300);
  expect_refusal(1, std::numeric_limits<double>::quiet_NaN());
}

TEST(Draw, AFarSurfaceLooksLikeOneAtTheOrigin) {
  Mesh mesh = ContourSolid("sphere", 32);
  common::Picture const expected = Draw(mesh, MakeView(), &IgnoreProgress);
  mesh.Transform(lum::Matrix<double>::Translate(3e8, -1e8, 2e8));
  EXPECT_LT(GetMeanDifference(Draw(mesh, MakeView(), &IgnoreProgress), expected), 0.5);
}

TEST(Draw, AClipPlaneShowsTheInside) {
  Mesh const mesh = ContourSolid("sphere", 32);
  View view = MakeView();
  view.rotation = {};
  std::size_t const middle = 3 * (60 * view.size + 60);
  EXPECT_NE(Draw(mesh, view, &IgnoreProgress).pixels[middle], 10);
  view.clip.emplace(0, 0, 1, 0.2);
  common::Picture const cut = Draw(mesh, view, &IgnoreProgress);
  EXPECT_EQ((std::array{cut.pixels[middle], cut.pixels[middle + 1], cut.pixels[middle + 2]}),
            (std::array<std::uint8_t, 3>{10, 20, 30}));
  // The disc of the cut is smaller than that of the sphere, which fills the picture up to a margin.
  auto const is_inside = [&](std::size_t i_x) { return cut.pixels[3 * (60 * view.size + i_x)] == 10; };
  std::size_t width = 0;
  for (std::size_t x = 0; x < view.size; ++x) width += is_inside(x) ? 1U : 0U;
  double const expected = 2 * std::sqrt(0.8 * 0.8 - 0.2 * 0.2) / (1.08 * 1.6) * 120;
  EXPECT_NEAR(static_cast<double>(width), expected, 3);
}

TEST(Draw, AsksForTheInsideOnTheClipPlane) {
  Mesh const mesh = ContourSolid("die", 32);
  View view = MakeView();
  view.clip.emplace(-0.6, 0.5, 0.7, 0.1);
  std::size_t asked = 0;
  view.inside = [&](Point const& i_world) {
    ++asked;
    EXPECT_NEAR(lum::Dot(view.clip->GetNormal(), i_world - lum::Origin), view.clip->GetD(), 1e-5);
    return Colour{};
  };
  Draw(mesh, view, &IgnoreProgress);
  EXPECT_GT(asked, 1000U);
}

TEST(Draw, AnExceptionOfTheProgressFunctionEndsTheWork) {
  EXPECT_TRUE(lum::test::Throws<std::runtime_error>(
      [] { Draw(GetDie(), MakeView(), [](double) { throw std::runtime_error("enough"); }); }, "enough"));
}

TEST(Draw, StepsOfATurnAddUpToAFullTurn) {
  for (std::size_t const steps : {1U, 2U, 5U, 12U}) {
    for (std::size_t step = 0; step < steps; ++step) {
      double const angle =
          0.3 + 2 * std::numbers::pi * static_cast<double>(step) / static_cast<double>(steps);
      lum::Matrix<float> const turned = Turn(0.3, step, steps).GetAsMatrix();
      lum::Matrix<float> const expected = LookAt(angle).GetAsMatrix();
      for (int i = 0; i < 16; ++i) EXPECT_NEAR(turned.GetAsPtr()[i], expected.GetAsPtr()[i], 2e-6);
    }
  }
}

TEST(Draw, FromTheFrontZIsUp) {
  lum::Matrix<float> const look = LookAt(0).GetAsMatrix();
  EXPECT_GT((look * lum::Vector<float, 3>(0, 0, 1)).GetY(), 0.9F);
  EXPECT_GT((look * lum::Vector<float, 3>(0, -1, 0)).GetZ(), 0.9F);
  EXPECT_GT((look * lum::Vector<float, 3>(1, 0, 0)).GetX(), 0.9F);
  EXPECT_GT((look * lum::Vector<float, 3>(0, 0, 1)).GetZ(), 0) << "seen from a little above";
}

class Surface : public test::ProgramTest {
 protected:
  Surface() : ProgramTest("surface", SURFACE_PROGRAM) {}

  void ExpectRefusal(std::string const& i_arguments, std::string const& i_text) const {
    ProgramTest::ExpectRefusal(i_arguments, i_text, {In("refused.ply"), In("refused.png")});
  }

  std::string Outputs() const { return " --mesh " + In("refused.ply") + " --picture " + In("refused.png"); }
};

TEST_F(Surface, WritesAMeshThatCanBeRead) {
  ASSERT_EQ(Run("--solid die --mesh " + In("die.ply")), 0);
  std::string const file = ReadText(In("die.ply"));
  Mesh const& die = GetDie();
  std::string const header =
      "ply\nformat binary_little_endian 1.0\nelement vertex " + std::to_string(die.vertices.size()) +
      "\nproperty float x\nproperty float y\nproperty float z\n"
      "property float nx\nproperty float ny\nproperty float nz\n"
      "property uchar red\nproperty uchar green\nproperty uchar blue\nelement face " +
      std::to_string(die.triangles.size()) + "\nproperty list uchar int vertex_indices\nend_header\n";
  ASSERT_EQ(file.substr(0, header.size()), header);
  constexpr std::size_t vertex_size = 6 * sizeof(float) + 3;
  constexpr std::size_t face_size = 1 + 3 * sizeof(std::int32_t);
  ASSERT_EQ(file.size(),
            header.size() + die.vertices.size() * vertex_size + die.triangles.size() * face_size);

  char const* place = file.data() + header.size();
  for (Mesh::Vertex const& vertex : die.vertices) {
    std::array<float, 6> numbers{};
    std::memcpy(numbers.data(), place, sizeof(numbers));
    for (std::size_t axis = 0; axis < 3; ++axis) {
      ASSERT_EQ(numbers[axis], static_cast<float>(vertex.position[axis]));
      ASSERT_EQ(numbers[axis + 3], static_cast<float>(vertex.normal[axis]));
    }
    Colour colour{};
    std::memcpy(colour.data(), place + sizeof(numbers), colour.size());
    ASSERT_EQ(colour, by_rank[static_cast<std::size_t>(vertex.rank) - 1]);
    place += vertex_size;
  }
  for (auto const& triangle : die.triangles) {
    ASSERT_EQ(*place, 3);
    std::array<std::uint32_t, 3> read{};
    std::memcpy(read.data(), place + 1, sizeof(read));
    ASSERT_EQ(read, triangle);
    place += face_size;
  }
}

TEST_F(Surface, ReportsItsOutputsAndTimes) {
  ASSERT_EQ(Run("--solid sphere --mesh " + In("a.ply") + " --picture " + In("a.png")), 0);
  std::string const out = ReadText(In("out"));
  EXPECT_TRUE(out.starts_with(In("a.ply") + ": ")) << out;
  for (char const* const text :
       {" vertices, ", " triangles\nreading ", " s, contouring ", " s, writing ", " s, drawing ", " s\n"}) {
    EXPECT_NE(out.find(text), std::string::npos) << text << " in " << out;
  }
  EXPECT_EQ(ReadText(In("err")), "") << "progress is shown on terminals only";
  common::Picture const picture = ReadPng(In("a.png"));
  EXPECT_EQ(picture.width, 900U);
  EXPECT_EQ(picture.height, 900U);
  EXPECT_FALSE(HasTemporaryFile());
}

TEST_F(Surface, QuietPrintsNothing) {
  ASSERT_EQ(Run("--solid sphere --quiet --mesh " + In("a.ply")), 0);
  EXPECT_EQ(ReadText(In("out")), "");
  EXPECT_EQ(ReadText(In("err")), "");
}

TEST_F(Surface, ShowsProgressOnATerminal) {
  auto const run_on_terminal = [&](std::string const& i_options) {
    std::string const contour = m_program + " --solid sphere --mesh " + In("a.ply") + i_options;
    std::string const command =
        "script -qec " + Quote(contour) + " " + In("typescript") + " >/dev/null </dev/null";
    EXPECT_EQ(std::system(command.c_str()), 0);  // NOLINT(concurrency-mt-unsafe): one thread
    return ReadText(In("typescript"));
  };
  std::string const shown = run_on_terminal("");
  // The percentages that it shows depend on the load of the machine.
  EXPECT_TRUE(std::regex_search(shown, std::regex("\rcontouring  [1-9][0-9] %"))) << shown;
  EXPECT_NE(shown.find("a.ply: "), std::string::npos);
  EXPECT_EQ(run_on_terminal(" --quiet").find("contouring"), std::string::npos);
}

TEST_F(Surface, TurnsTheTable) {
  ASSERT_EQ(Run("--solid die --quiet --mesh " + In("a.ply") + " --turntable 3 " + In("new/frames")), 0);
  common::Picture const first = ReadPng(In("new/frames/frame-0000.png"));
  common::Picture const second = ReadPng(In("new/frames/frame-0001.png"));
  common::Picture const third = ReadPng(In("new/frames/frame-0002.png"));
  EXPECT_EQ(first.width, 480U);
  EXPECT_GT(GetMeanDifference(first, second), 3);
  EXPECT_GT(GetMeanDifference(second, third), 3);
  EXPECT_GT(GetMeanDifference(third, first), 3);
  EXPECT_EQ(std::distance(fs::directory_iterator(In("new/frames")), {}), 3);
}

TEST_F(Surface, ReadsVolumes) {
  std::vector<float> values(512);
  for (std::size_t k = 2; k < 6; ++k) {
    for (std::size_t j = 2; j < 6; ++j) {
      for (std::size_t i = 2; i < 6; ++i) values[i + 8 * (j + 8 * k)] = 1;
    }
  }
  std::string const input = WriteVolume("a.nii", DT_FLOAT32, {8, 8, 8}, values, m_straight);
  ASSERT_EQ(
      Run(input + " --level 0.5 --mesh " + In("a.ply") + " --picture " + In("a.png") + " --clip 0,0,1,8"), 0)
      << ReadText(In("err"));
  EXPECT_GT(fs::file_size(In("a.ply")), 1000U);
  EXPECT_TRUE(fs::exists(In("a.png")));
}

// While the turntable is drawn, the mesh is written but not yet renamed.
TEST_F(Surface, CtrlCLeavesNoHalfWrittenFile) {
  for (std::string const signal : {"INT", "TERM"}) {
    std::string const command =
        m_program + " --solid sphere --mesh " + In("a.ply") + " --turntable 5000 " + In("frames") + " >" +
        In("out") + " 2>" + In("err") + " & while kill -0 $! && ! ls " + In("frames") +
        "/.lum-* >/dev/null 2>&1; do sleep 0.05; done; kill -" + signal + " $!; wait $!";
    int const status = std::system(command.c_str());  // NOLINT(concurrency-mt-unsafe): one thread
    EXPECT_EQ(WEXITSTATUS(status), 130);
    EXPECT_EQ(ReadText(In("err")), "surface: interrupted\n");
    EXPECT_EQ(ReadText(In("out")), "");
    EXPECT_FALSE(fs::exists(In("a.ply")));
    EXPECT_FALSE(HasTemporaryFile());
    EXPECT_FALSE(fs::exists(In("frames")));
  }
}

TEST_F(Surface, RefusesWhatIsNotAVolume) {
  std::string const rest = " --level 1" + Outputs();
  ExpectRefusal(In("missing.nii") + rest, "cannot open");
  ExpectRefusal(WriteBytes("text.nii", std::vector<char>(1000, 'x')) + rest, "not a NIfTI file");
  std::vector<char> bytes = ReadBytes(WriteVolume<float>("a.nii", DT_FLOAT32, m_straight));
  bytes.pop_back();
  ExpectRefusal(WriteBytes("short.nii", bytes) + rest, "truncated or damaged");
  bytes.push_back(0);
  bytes[40] = 4;  // dimensions
  bytes[46] = 2;  // slices along the third
  bytes[48] = 2;  // and the fourth
  ExpectRefusal(WriteBytes("4d.nii", bytes) + rest, "more than three dimensions");
  bytes = ReadBytes(WriteVolume<double>("b.nii", DT_FLOAT64, m_straight));
  bytes[70] = 32;  // two floats: complex
  ExpectRefusal(WriteBytes("complex.nii", bytes) + rest, "COMPLEX64");
}

TEST_F(Surface, RefusesALevelThatIsNeverCrossed) {
  std::string const input = WriteVolume<float>("a.nii", DT_FLOAT32, m_straight);
  ExpectRefusal(input + " --level 500" + Outputs(),
                "the volume never crosses the level 500: its values range from -100 to 313");
}

TEST_F(Surface, RefusesAnUnknownSolid) {
  ExpectRefusal("--solid cone" + Outputs(), "unknown solid \"cone\"; the solids are die, sphere");
}

TEST_F(Surface, RefusesBadOptions) {
  std::string const input = WriteVolume<float>("a.nii", DT_FLOAT32, m_straight);
  std::string const mesh = " --mesh " + In("refused.ply");
  ExpectRefusal("", "usage: surface (INPUT.nii[.gz] --level V | --solid NAME) --mesh OUT.ply");
  ExpectRefusal(input + mesh, "a volume needs --level V");
  ExpectRefusal("--solid die", "--mesh OUT.ply is missing");
  ExpectRefusal("--solid die --level 3" + mesh, "--level has no effect on --solid");
  ExpectRefusal(input + " --level 3 --solid die" + mesh, "not both");
  ExpectRefusal(input + " " + input + " --level 3" + mesh, "usage");
  ExpectRefusal(input + " --level high" + mesh, "--level takes a number, not \"high\"");
  ExpectRefusal("--solid die --mesh", "--mesh takes a value");
  ExpectRefusal("--solid die --turntable 0 " + In("frames") + mesh, "from 1 to 9999");
  ExpectRefusal("--solid die --turntable 5", "--turntable takes a value");
  ExpectRefusal("--solid die --clip 1,2,3" + mesh, "--clip takes numbers A,B,C,D");
  ExpectRefusal("--solid die --clip 0,0,0,1" + mesh, "--clip takes a plane A,B,C,D whose normal is not zero");
  ExpectRefusal("--solid die --spin" + mesh, "unknown option --spin");
}

TEST_F(Surface, RefusesOutputsThatCannotBeWrittenAndKeepsOlderOnes) {
  fs::create_directory(In("folder"));
  WriteBytes("file", {'x'});
  std::string const no_folder = In("no/such/folder");
  ExpectRefusal("--solid sphere --mesh " + no_folder, "cannot write " + no_folder);
  ExpectRefusal("--solid sphere --mesh " + In("folder"), "cannot write " + In("folder"));
  ExpectRefusal("--solid sphere --mesh " + In("refused.ply") + " --picture " + no_folder,
                "cannot write " + no_folder);
  ExpectRefusal("--solid sphere --mesh " + In("refused.ply") + " --turntable 2 " + In("file"),
                "cannot write " + In("file"));
  WriteBytes("old.ply", {'o', 'l', 'd'});
  EXPECT_EQ(Run("--solid sphere --mesh " + In("old.ply") + " --picture " + no_folder), 1);
  EXPECT_EQ(ReadText(In("old.ply")), "old");
}

}  // namespace
}  // namespace surface
