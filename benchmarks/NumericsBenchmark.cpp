// Numerical routines compared with the bare recipe, written inline, and with other libraries.

#include <Eigen/Dense>
#include <array>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>

#include "Register.h"
#include "Row.h"
#include "geometry/PseudoInverse.h"
#include "geometry/RootFinding.h"
#include "geometry/TrilinearInterpolation.h"

#ifdef WITH_BOOST
#include <boost/math/tools/roots.hpp>
#endif
#ifdef WITH_GSL
#include <gsl/gsl_roots.h>
#endif

namespace lum::bench {
namespace {

Eigen::Matrix3d MakeMatrix() {
  Eigen::Matrix3d matrix;
  matrix << 2, 1, 0, 1, 3, 1, 0, 1, 4;
  return matrix;
}

void AddPseudoInverse() {
  Add("pseudo-inverse", "lum", Repeat([matrix = MakeMatrix()]() mutable {
        benchmark::DoNotOptimize(matrix);
        return CalculatePseudoInverse(matrix, 1e-6);
      }));
  Add("pseudo-inverse", "bare recipe", Repeat([matrix = MakeMatrix()]() mutable {
        benchmark::DoNotOptimize(matrix);
        Eigen::JacobiSVD<Eigen::Matrix3d> svd(matrix, Eigen::ComputeFullU | Eigen::ComputeFullV);
        Eigen::Vector3d inverted = svd.singularValues();
        for (double& value : inverted) value = value >= 1e-6 ? 1 / value : 0;
        svd.setThreshold(1e-6);
        return PseudoInverseResult{svd.matrixV() * inverted.asDiagonal() * svd.matrixU().transpose(),
                                   static_cast<std::int32_t>(svd.rank())};
      }));
}

double Cubic(double i_x) { return (i_x * i_x - 2) * i_x - 5; }

constexpr double kTolerance = 1e-10;

// The same steps as lum's regula falsi, which evaluates each end twice.
template <class Function>
double FindRoot(Function const& i_function, double a, double b) {
  if (i_function(a) * i_function(b) > 0) return std::numeric_limits<double>::quiet_NaN();
  double fa = i_function(a);
  double fb = i_function(b);
  for (;;) {
    double const t = -fa / (fb - fa);
    double const x = b * t + (1 - t) * a;
    double const fx = i_function(x);
    if (fa * fx <= 0) {
      b = x;
      fb = fx;
    } else {
      a = x;
      fa = fx;
    }
    if (!(std::abs(fx) > kTolerance)) return x;
  }
}

void AddRoots() {
  Add("root of a cubic", "lum", Repeat([upper = 3.0]() mutable {
        benchmark::DoNotOptimize(upper);
        return RootFinding::RegulaFalsi(Cubic, Range<double>(2, upper), kTolerance);
      }));
  Add("root of a cubic", "bare recipe", Repeat([upper = 3.0]() mutable {
        benchmark::DoNotOptimize(upper);
        return FindRoot(std::function<double(double)>(Cubic), 2, upper);
      }));
  Add("root of a cubic", "bare recipe, function inlined", Repeat([upper = 3.0]() mutable {
        benchmark::DoNotOptimize(upper);
        return FindRoot([](double i_x) { return Cubic(i_x); }, 2, upper);
      }));
#ifdef WITH_BOOST
  Add("root of a cubic", "Boost toms748", Repeat([upper = 3.0]() mutable {
        benchmark::DoNotOptimize(upper);
        std::uintmax_t rounds = 100;
        return boost::math::tools::toms748_solve(Cubic, 2.0, upper,
                                                 boost::math::tools::eps_tolerance<double>(34), rounds);
      }));
#endif
#ifdef WITH_GSL
  Add("root of a cubic", "GSL falsepos", Repeat([upper = 3.0]() mutable {
        benchmark::DoNotOptimize(upper);
        gsl_function function{[](double i_x, void*) { return Cubic(i_x); }, nullptr};
        gsl_root_fsolver* const solver = gsl_root_fsolver_alloc(gsl_root_fsolver_falsepos);
        gsl_root_fsolver_set(solver, &function, 2, upper);
        double root = 0;
        do {
          gsl_root_fsolver_iterate(solver);
          root = gsl_root_fsolver_root(solver);
        } while (std::abs(Cubic(root)) > kTolerance);
        gsl_root_fsolver_free(solver);
        return root;
      }));
#endif
}

void AddInterpolation() {
  std::array<double, 8> const corners = {1, 2, 3, 4, 5, 6, 7, 9};
  Point<double, 3> const at(0.25, 0.5, 0.75);
  Add("trilinear", "lum", Repeat([corners, at]() mutable {
        benchmark::DoNotOptimize(corners);
        benchmark::DoNotOptimize(at);
        return TrilinearInterpolation(corners, at);
      }));
  Add("trilinear", "bare recipe", Repeat([corners, at]() mutable {
        benchmark::DoNotOptimize(corners);
        benchmark::DoNotOptimize(at);
        auto const [x, y, z] = at;
        double const u = 1 - x;
        double const v = 1 - y;
        double const w = 1 - z;
        auto const& c = corners;
        return c[0] * u * v * w + c[1] * x * v * w + c[2] * u * y * w + c[3] * x * y * w + c[4] * u * v * z +
               c[5] * x * v * z + c[6] * u * y * z + c[7] * x * y * z;
      }));
}

}  // namespace

void Register() {
  AddPseudoInverse();
  AddRoots();
  AddInterpolation();
}

}  // namespace lum::bench
