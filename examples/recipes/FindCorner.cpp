#include <geometry/PseudoInverse.h>

#include <cstdio>
#include <span>
#include <vector>

namespace {

struct Tangent {
  Eigen::Vector3d point;
  Eigen::Vector3d normal;  // of unit length
};

// The point nearest to all tangent planes by least squares. If there are several, the one nearest to the mean
// of the points.
void PrintFeature(char const* ip_name, std::span<Tangent const> i_tangents) {
  Eigen::Vector3d mean = Eigen::Vector3d::Zero();
  for (Tangent const& tangent : i_tangents) mean += tangent.point / static_cast<double>(i_tangents.size());

  Eigen::Matrix3d normals = Eigen::Matrix3d::Zero();
  Eigen::Vector3d distances = Eigen::Vector3d::Zero();
  for (auto const& [point, normal] : i_tangents) {
    normals += normal * normal.transpose();
    distances += normal * normal.dot(point - mean);
  }
  auto const [inverse, rank] = lum::CalculatePseudoInverse(normals, 0.1);
  Eigen::Vector3d const feature = mean + inverse * distances;
  std::printf("%s (%.3f, %.3f, %.3f), rank %d\n", ip_name, feature.x(), feature.y(), feature.z(), rank);
}

}  // namespace

int main() {
  std::vector<Tangent> tangents = {{{0.2, 0.3, 0.8}, {0, 0, 1}}, {{0.5, 0.4, 0.8}, {0, 0, 1}}};
  PrintFeature("flat  ", tangents);
  tangents.push_back({{0.7, 0.1, 0.4}, {1, 0, 0}});
  PrintFeature("edge  ", tangents);
  tangents.push_back({{0.3, 0.6, 0.2}, {0, 1, 0}});
  PrintFeature("corner", tangents);
}
