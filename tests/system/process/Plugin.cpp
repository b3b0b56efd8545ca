#include "Plugin.h"

#include "geometry/Matrix.h"

namespace {

using Matrix = lum::Matrix<double>;

Matrix const& At(void const* ip_matrix) { return *static_cast<Matrix const*>(ip_matrix); }

}  // namespace

// Each plugin has a name of its own, so that a program may link two.
extern "C" __attribute__((visibility("default"))) Plugin const PLUGIN_NAME;
Plugin const PLUGIN_NAME = {
    [](double i_x) -> void* { return new Matrix(Matrix::Translate(i_x, 0, 0)); },
    []() -> void* { return new Matrix; },
    [](void const* ip_matrix) { return At(ip_matrix)(0, 3); },
    [](void const* ip_matrix) { return At(ip_matrix).IsKnownIdentity(); },
    [](void const* ip_left, void const* ip_right) -> void* { return new Matrix(At(ip_left) * At(ip_right)); },
    [](void* ip_matrix) { delete static_cast<Matrix*>(ip_matrix); },
};
