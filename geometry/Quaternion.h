#pragma once

#include <array>
#include <cassert>
#include <span>

#include "Utility/Lazy.h"
#include "geometry/GlobalObjectPool.h"
#include "geometry/Matrix.h"
#include "geometry/Vector.h"
#include "geometry/internal/Export.h"

namespace lum {

/// A rotation quaternion in single precision: x, y, z (the vector part), then w (the scalar part).
///
/// A quaternion is one handle onto a pooled object, which is never written once it is filled. A copy shares
/// the object. A default-constructed quaternion shares the one identity object, which is recognised by its
/// address (a *known identity*). Quaternions are not normalised and arguments are not checked, so the length
/// may differ from 1.
///
/// A moved-from quaternion may be destroyed, copied and assigned to. Use of its values is caught by an
/// assertion in callers that are compiled without NDEBUG, however the library was built.
///
/// Thread safety: a quaternion must not be written while another thread uses it. Quaternions that share an
/// object may be used by different threads. A child that is forked from a process with several threads must
/// not take objects, and must not be the first to use the identity.
///
/// Errors: a member that takes a pooled object passes on what the pool throws (`std::bad_alloc`).
///
/// Cost: a copy increments 1 count. Arguments passed by value are copies, too. Each member states how many
/// objects it takes; a member that states nothing takes none. The identity object is created on first use.
class LUM_EXPORT LUM_STANDALONE_DEBUG Quaternionf {
 public:
  using Object = QuaternionPoolTypes::Object;              ///< Holds the four coefficients.
  using ObjectHandle = QuaternionPoolTypes::ObjectHandle;  ///< A shared owner of an `Object`.

  /// The known identity, (0, 0, 0, 1). Increments 1 count.
  Quaternionf();
  /// The rotation of the upper-left 3x3 block, without its scale and shear, by polar decomposition (Shoemake
  /// and Duff, Matrix Animation and Polar Decomposition, 1992), at the cost of a singular value
  /// decomposition. If the block mirrors, the direction of the smallest scale is reversed first. A non-finite
  /// value in the block gives NaNs. Never a known identity. Takes 1 object.
  [[gnu::always_inline]] explicit Quaternionf(Matrix<float> const& i_matrix)
      : m_handle(ExtractRotation(i_matrix.GetAsPtr())) {}
  /// The right-handed rotation about an axis by an angle in radians: axis sin(angle / 2), then cos(angle /
  /// 2). The axis is not normalised: length L makes the vector part L times too long. Takes 1 object.
  Quaternionf(Vector<float, 3> i_axis, float i_angle);
  /// Takes over a handle; nothing is checked.
  explicit Quaternionf(ObjectHandle i_handle) noexcept;

  /// The Hamilton product, which rotates by i_right first. Takes 1 object, even for known identities.
  [[gnu::always_inline]] Quaternionf operator*(Quaternionf const& i_right) const {
    return RequireValues().Multiply(i_right.RequireValues());
  }

  /// The rotation matrix of a quaternion of length 1, by the Euler-Rodrigues formula. Its inverse is computed
  /// from its values by cofactors. Takes 2 matrix objects; the known identity gives the known identity and
  /// increments 2 counts.
  [[gnu::always_inline]] Matrix<float> GetAsMatrix() const { return RequireValues().CreateMatrix(); }
  /// Whether this is the identity object itself. False for other objects with the same coefficients.
  [[gnu::always_inline]] bool IsKnownIdentity() const {
    return RequireValues().m_handle.Get() == mgh_identity.GetValue().Get();
  }
  /// x, y, z, w.
  [[gnu::always_inline]] std::array<float, 4> GetCoefficients() const {
    float const* const values = GetValues();
    return {values[0], values[1], values[2], values[3]};
  }

  /// Rotates a vector: v + w u + q x u with u = 2 (q x v), where q is the vector part. For length 1 this is
  /// the product of the quaternion, v and the conjugate, expanded.
  [[gnu::always_inline]] Vector<float, 3> Transform(Vector<float, 3> const& i_vector) const {
    return RequireValues().Rotate(i_vector);
  }
  /// Applies the inverse of `GetAsMatrix`, at the cost of `GetAsMatrix`. For length 1 this is the opposite
  /// rotation.
  [[gnu::always_inline]] Vector<float, 3> InverseTransform(Vector<float, 3> const& i_vector) const {
    return RequireValues().RotateBack(i_vector);
  }

  /// Whether |a - b|^2 <= tolerance^2 min(|a|^2, |b|^2) over the coefficients, like Eigen's `isApprox`.
  /// Although q and -q are the same rotation, they are not approximately equal.
  // NOLINTNEXTLINE(performance-unnecessary-value-param): by value is the signature
  [[gnu::always_inline]] bool IsApproximately(Quaternionf i_other, float i_tolerance) const {
    return RequireValues().IsNear(i_other.RequireValues(), i_tolerance);
  }
  /// Spherical linear interpolation along the shorter arc, from this quaternion at i_t = 0 to i_other at
  /// i_t = 1 (Shoemake, Animating Rotation with Quaternion Curves, 1985). Interpolates linearly if the
  /// magnitude of the dot product is at least 1 - 2^-23. The result is not normalised. Takes 1 object.
  // NOLINTNEXTLINE(performance-unnecessary-value-param): by value is the signature
  [[gnu::always_inline]] Quaternionf Slerp(float i_t, Quaternionf i_other) const {
    return RequireValues().Interpolate(i_t, i_other.RequireValues());
  }

  /// The handle onto the identity object, which is created on first use and never written. Valid from before
  /// `main` to the end of the process.
  static Lazy<ObjectHandle> const& mgh_identity;

 private:
  friend void TransformVectors(Quaternionf const& i_rotation, std::span<Vector<float, 3> const> i_vectors,
                               std::span<Vector<float, 3>> o_vectors);

  // What the public members of the same meaning call after their checks, which are inlined into every caller
  // as in `Matrix`.
  static ObjectHandle ExtractRotation(float const* ip_matrix);
  Quaternionf Multiply(Quaternionf const& i_right) const;
  Matrix<float> CreateMatrix() const;
  Vector<float, 3> Rotate(Vector<float, 3> const& i_vector) const;
  void Rotate(std::span<Vector<float, 3> const> i_vectors, std::span<Vector<float, 3>> o_vectors) const;
  Vector<float, 3> RotateBack(Vector<float, 3> const& i_vector) const;
  bool IsNear(Quaternionf const& i_other, float i_tolerance) const;
  Quaternionf Interpolate(float i_t, Quaternionf const& i_other) const;

  // Returns this quaternion.
  [[gnu::always_inline]] LUM_HIDDEN Quaternionf const& RequireValues() const noexcept {
    assert(m_handle && "a moved-from quaternion");
    return *this;
  }
  [[gnu::always_inline]] LUM_HIDDEN float const* GetValues() const noexcept {
    return RequireValues().m_handle->coeffs().data();
  }

  // Empty only in a moved-from quaternion.
  ObjectHandle m_handle;
};

/// Rotates every vector of an array. Each result has the same bits as `Quaternionf::Transform` of that
/// vector, except for the signs and payloads of NaNs.
///
/// The two arrays may be the same array, but must not overlap otherwise. Arrays of different sizes throw
/// `std::invalid_argument` before anything is written. Takes no object and changes no count.
///
/// Thread safety: no other thread may use o_vectors, or write to i_rotation or i_vectors, during the call.
[[gnu::always_inline]] inline void TransformVectors(Quaternionf const& i_rotation,
                                                    std::span<Vector<float, 3> const> i_vectors,
                                                    std::span<Vector<float, 3>> o_vectors) {
  i_rotation.RequireValues().Rotate(i_vectors, o_vectors);
}

}  // namespace lum
