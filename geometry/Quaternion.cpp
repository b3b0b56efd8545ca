#include "geometry/Quaternion.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "geometry/internal/Column.h"
#include "geometry/internal/EigenAlgorithms.h"
#include "geometry/internal/Lanes.h"
#include "geometry/internal/NeverDestroyed.h"
#include "geometry/internal/RequireSameSize.h"
#include "geometry/internal/StrictArithmetic.h"

namespace lum {
namespace {

using Coefficients = std::array<float, 4>;

Quaternionf::ObjectHandle CreateHandle(Coefficients const& i_coefficients) {
  auto handle = CreateGlobalObject<Quaternionf::Object>();
  std::copy(i_coefficients.begin(), i_coefficients.end(), handle->coeffs().data());
  return handle;
}

Quaternionf::ObjectHandle CreateIdentity() { return CreateHandle({0, 0, 0, 1}); }

// Constant-initialised and never destroyed: valid from before main until the process ends.
constinit internal::NeverDestroyed<Lazy<Quaternionf::ObjectHandle>> identity(CreateIdentity);

Coefficients MakeRotation(Vector<float, 3> const& i_axis, float i_angle) {
  float const half = i_angle * 0.5F;
  float const cosine = std::cos(half);
  float const sine = std::sin(half);
  return {i_axis[0] * sine, i_axis[1] * sine, i_axis[2] * sine, cosine};
}

// Dot products of coefficients are summed in pairs.
float DotInPairs(float const* a, float const* b) {
  return (a[0] * b[0] + a[1] * b[1]) + (a[2] * b[2] + a[3] * b[3]);
}

}  // namespace

constinit Lazy<Quaternionf::ObjectHandle> const& Quaternionf::mgh_identity = identity.m_value;

Quaternionf::Quaternionf() : m_handle(mgh_identity.GetValue()) {}

Quaternionf::Quaternionf(Vector<float, 3> i_axis, float i_angle)
    : m_handle(CreateHandle(MakeRotation(i_axis, i_angle))) {}

Quaternionf::Quaternionf(ObjectHandle i_handle) noexcept : m_handle(std::move(i_handle)) {}

Quaternionf::ObjectHandle Quaternionf::ExtractRotation(float const* ip_matrix) {
  return CreateHandle(internal::ExtractRotation(ip_matrix));
}

Quaternionf Quaternionf::Multiply(Quaternionf const& i_right) const {
  auto const [x1, y1, z1, w1] = GetCoefficients();
  auto const [x2, y2, z2, w2] = i_right.GetCoefficients();
  return Quaternionf(CreateHandle({w1 * x2 + x1 * w2 + y1 * z2 - z1 * y2,  //
                                   w1 * y2 + y1 * w2 + z1 * x2 - x1 * z2,  //
                                   w1 * z2 + z1 * w2 + x1 * y2 - y1 * x2,  //
                                   w1 * w2 - x1 * x2 - y1 * y2 - z1 * z2}));
}

Matrix<float> Quaternionf::CreateMatrix() const {
  if (IsKnownIdentity()) return {};
  auto const [x, y, z, w] = GetCoefficients();
  float const X = 2 * x;
  float const Y = 2 * y;
  float const Z = 2 * z;
  // clang-format off
  std::array<float, 16> const values = {
      1 - (Y * y + Z * z), x * Y + w * Z,       x * Z - Y * w,       0,
      x * Y - w * Z,       1 - (Z * z + x * X), y * Z + X * w,       0,
      x * Z + Y * w,       y * Z - X * w,       1 - (Y * y + x * X), 0,
      0,                   0,                   0,                   1};
  // clang-format on
  return Matrix<float>(values.data());
}

Vector<float, 3> Quaternionf::Rotate(Vector<float, 3> const& i_vector) const {
  auto const [x, y, z, w] = GetCoefficients();
  auto const [a, b, c] = i_vector;
  float const ux = 2 * (y * c - z * b);
  float const uy = 2 * (z * a - x * c);
  float const uz = 2 * (x * b - y * a);
  Vector<float, 3> image;
  internal::Column<float>((a + w * ux) + (y * uz - z * uy),  //
                          (b + w * uy) + (z * ux - x * uz),  //
                          (c + w * uz) + (x * uy - y * ux), 0)
      .StoreThree(image.data());
  return image;
}

void Quaternionf::Rotate(std::span<Vector<float, 3> const> i_vectors,
                         std::span<Vector<float, 3>> o_images) const {
  internal::RequireSameSize(i_vectors.size(), o_images.size());
  if (i_vectors.empty()) return;
  auto const rotate_group = [q = GetCoefficients()](float const* ip_group, float* op_group,
                                                    auto const& i_store) {
    auto const& [x, y, z, w] = q;
    auto const [a, b, c] = internal::LoadTriples(ip_group);
    internal::FloatLanes const ux = 2 * (y * c - z * b);
    internal::FloatLanes const uy = 2 * (z * a - x * c);
    internal::FloatLanes const uz = 2 * (x * b - y * a);
    internal::StoreTriples({(a + w * ux) + (y * uz - z * uy),  //
                            (b + w * uy) + (z * ux - x * uz),  //
                            (c + w * uz) + (x * uy - y * ux)},
                           op_group, i_store);
  };
  internal::TransformTriples(i_vectors.data()->data(), o_images.data()->data(), i_vectors.size(),
                             rotate_group);
}

Vector<float, 3> Quaternionf::RotateBack(Vector<float, 3> const& i_vector) const {
  return GetAsMatrix().GetInverse() * i_vector;
}

bool Quaternionf::IsNear(Quaternionf const& i_other, float i_tolerance) const {
  float const* const a = GetValues();
  float const* const b = i_other.GetValues();
  Coefficients const difference = {a[0] - b[0], a[1] - b[1], a[2] - b[2], a[3] - b[3]};
  return DotInPairs(difference.data(), difference.data()) <=
         i_tolerance * i_tolerance * std::min(DotInPairs(a, a), DotInPairs(b, b));
}

Quaternionf Quaternionf::Interpolate(float i_t, Quaternionf const& i_other) const {
  constexpr float one = 1 - std::numeric_limits<float>::epsilon();
  float const* const a = GetValues();
  float const* const b = i_other.GetValues();
  float const dot = DotInPairs(a, b);
  float const cosine = std::abs(dot);
  float s0 = 1 - i_t;
  float s1 = i_t;
  if (!(cosine >= one)) {
    float const theta = std::acos(cosine);
    float const sine = std::sin(theta);
    s0 = std::sin((1 - i_t) * theta) / sine;
    s1 = std::sin(i_t * theta) / sine;
  }
  if (dot < 0) s1 = -s1;
  return Quaternionf(CreateHandle({s0 * a[0] + s1 * b[0],  //
                                   s0 * a[1] + s1 * b[1],  //
                                   s0 * a[2] + s1 * b[2],  //
                                   s0 * a[3] + s1 * b[3]}));
}

}  // namespace lum
