#include <geometry/Matrix.h>

#include <cmath>
#include <cstdio>
#include <numbers>

namespace {

// The distance of a point from where it was, after it has been transformed and transformed back.
template <class T>
double GetError(lum::Matrix<T> const& i_pose) {
  lum::Point<T, 3> const point(1, 2, 3);
  return std::sqrt(static_cast<double>(GetSquaredLength(i_pose.GetInverse() * (i_pose * point) - point)));
}

template <class T>
void Follow(char const* ip_scalar) {
  auto const axis = lum::GetNormalized(lum::Vector<T, 3>(1, 2, 3));
  lum::Matrix<T> const step = lum::Matrix<T>::Rotate(axis, std::numbers::pi_v<T> / 1800) *
                              lum::Matrix<T>::Translate(T(0.01), T(0.02), T(0.03));

  lum::Matrix<T> never_rebuilt;
  lum::Matrix<T> pose;
  for (int steps = 1; steps <= 100000; ++steps) {
    never_rebuilt *= step;
    pose *= step;
    if (steps % 1000 != 0) continue;
    double const before = GetError(pose);
    pose.RebuildInverse();
    if (steps == 1000 || steps == 10000 || steps == 100000) {
      std::printf("%-6s  %6d        %.1e           %.1e   %.1e\n", ip_scalar, steps, GetError(never_rebuilt),
                  before, GetError(pose));
    }
  }
}

}  // namespace

int main() {
  std::puts("         steps  never rebuilt  before a rebuild  after it");
  Follow<float>("float");
  Follow<double>("double");
}
