#pragma once

#include <array>
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
/// assertion in builds without NDEBUG.
///
/// Thread safety: a quaternion must not be written while another thread uses it. Quaternions that share an
/// object may be used by different threads.
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
  explicit Quaternionf(Matrix<float> const& i_matrix);
  /// The right-handed rotation about an axis by an angle in radians: axis sin(angle / 2), then cos(angle /
  /// 2). The axis is not normalised: length L makes the vector part L times too long. Takes 1 object.
  Quaternionf(Vector<float, 3> i_axis, float i_angle);
  /// Takes over a handle; nothing is checked.
  explicit Quaternionf(ObjectHandle i_handle) noexcept;

  /// The Hamilton product, which rotates by i_right first. Takes 1 object, even for known identities.
  Quaternionf operator*(Quaternionf const& i_right) const;

  /// The rotation matrix of a quaternion of length 1, by the Euler-Rodrigues formula. Its inverse is computed
  /// from its values by cofactors. Takes 2 matrix objects; the known identity gives the known identity and
  /// increments 2 counts.
  Matrix<float> GetAsMatrix() const;
  /// Whether this is the identity object itself. False for other objects with the same coefficients.
  bool IsKnownIdentity() const;
  /// x, y, z, w.
  std::array<float, 4> GetCoefficients() const;

  /// Rotates a vector: v + w u + q x u with u = 2 (q x v), where q is the vector part. For length 1 this is
  /// the product of the quaternion, v and the conjugate, expanded.
  Vector<float, 3> Transform(Vector<float, 3> const& i_vector) const;
  /// Rotates every vector of an array. Each result has the same bits as the rotation of that vector alone,
  /// except for the signs and payloads of NaNs.
  ///
  /// The two arrays may be the same array, but must not overlap otherwise. Arrays of different sizes throw
  /// `std::invalid_argument` before anything is written.
  void Transform(std::span<Vector<float, 3> const> i_vectors, std::span<Vector<float, 3>> o_vectors) const;
  /// Applies the inverse of `GetAsMatrix`, at the cost of `GetAsMatrix`. For length 1 this is the opposite
  /// rotation.
  Vector<float, 3> InverseTransform(Vector<float, 3> const& i_vector) const;

  /// Whether |a - b|^2 <= tolerance^2 min(|a|^2, |b|^2) over the coefficients, like Eigen's `isApprox`.
  /// Although q and -q are the same rotation, they are not approximately equal.
  bool IsApproximately(Quaternionf i_other, float i_tolerance) const;
  /// Spherical linear interpolation along the shorter arc, from this quaternion at i_t = 0 to i_other at
  /// i_t = 1 (Shoemake, Animating Rotation with Quaternion Curves, 1985). Interpolates linearly if the
  /// magnitude of the dot product is at least 1 - 2^-23. The result is not normalised. Takes 1 object.
  Quaternionf Slerp(float i_t, Quaternionf i_other) const;

  /// The handle onto the identity object, which is created on first use and never written. Valid from before
  /// `main` to the end of the process.
  static Lazy<ObjectHandle> const& mgh_identity;

 private:
  LUM_HIDDEN float const* GetValues() const noexcept;

  // Empty only in a moved-from quaternion.
  ObjectHandle m_handle;
};

}  // namespace lum
