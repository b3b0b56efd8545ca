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
/// A value is one handle onto a pooled object that is never written once filled; copying shares it. The
/// default value shares the one identity object, which is recognised by its address (the *known identity*).
/// Unit length is not an invariant: nothing is ever normalised, and no argument is checked.
///
/// A moved-from quaternion may be destroyed, assigned to and copied, which gives another like it; use of its
/// values is caught by an assertion in builds without NDEBUG.
///
/// Thread safety: one value must not be written while another thread uses it. Values that share an object may
/// be used on different threads freely.
///
/// Errors: whatever takes a pooled object passes on what the pool throws (`std::bad_alloc`).
///
/// Cost: copying raises 1 count, also into an argument that is taken by value. Members say how many objects
/// they take; where nothing is said, none. What needs the known identity makes it on first use in a process.
class LUM_EXPORT LUM_STANDALONE_DEBUG Quaternionf {
 public:
  using Object = PoolTypes<QuaternionObject>::Object;              ///< What holds the four coefficients.
  using ObjectHandle = PoolTypes<QuaternionObject>::ObjectHandle;  ///< What owns such an object.

  /// The known identity, (0, 0, 0, 1). Raises 1 count.
  Quaternionf();
  /// The rotation of the upper-left 3x3 block, freed of scale and shear by its polar decomposition, which
  /// costs a singular value decomposition. Of a block that mirrors, the direction of the smallest scale is
  /// turned back. A block with a value that is not finite gives NaNs. Never a known identity. Takes 1 object.
  /// (Shoemake and Duff, Matrix Animation and Polar Decomposition, 1992.)
  explicit Quaternionf(Matrix<float> const& i_matrix);
  /// The rotation about an axis through an angle in radians, right-handed: axis sin(angle / 2), then
  /// cos(angle / 2). The axis is taken as it is: one of length L gives a vector part L times too long. Takes
  /// 1 object.
  Quaternionf(Vector<float, 3> i_axis, float i_angle);
  /// Takes over a handle; nothing is checked.
  explicit Quaternionf(ObjectHandle i_handle) noexcept;

  /// The Hamilton product: rotates by i_right first, then by this. Always takes 1 object.
  Quaternionf operator*(Quaternionf const& i_right) const;

  /// The rotation matrix, by the Euler-Rodrigues formula for unit length, with the inverse of its values by
  /// cofactors; for the known identity, the known identity. Takes 2 objects of matrices, or raises 2 counts.
  Matrix<float> GetAsMatrix() const;
  /// Whether this is the identity object itself. Others with its coefficients are not.
  bool IsKnownIdentity() const;
  /// x, y, z, w.
  std::array<float, 4> GetCoefficients() const;

  /// v + w u + q x u with u = 2 (q x v), where q is the vector part: for unit length, the vector part of the
  /// product of the quaternion, v and the conjugate, multiplied out.
  Vector<float, 3> Transform(Vector<float, 3> const& i_vector) const;
  /// Rotates every vector of an array as the above does one, to the same bits but for signs and payloads of
  /// NaNs.
  ///
  /// The arrays may be one and the same, but must not overlap otherwise. Arrays of different sizes throw
  /// `std::invalid_argument`, and nothing is written then.
  void Transform(std::span<Vector<float, 3> const> i_vectors, std::span<Vector<float, 3>> o_vectors) const;
  /// Applies the inverse of `GetAsMatrix`, and takes what that takes: for unit length, the opposite rotation.
  Vector<float, 3> InverseTransform(Vector<float, 3> const& i_vector) const;

  /// Whether |a - b|^2 <= tolerance^2 min(|a|^2, |b|^2) over the coefficients. So q and -q, the same
  /// rotation, are not approximately equal. (The test of Eigen's `isApprox`.)
  bool IsApproximately(Quaternionf i_other, float i_tolerance) const;
  /// Spherical interpolation along the shorter arc, from this at i_t = 0 to i_other at i_t = 1; the linear
  /// blend where the two are too close for an angle. Not renormalised. Takes 1 object. (Shoemake, Animating
  /// Rotation with Quaternion Curves, 1985.)
  Quaternionf Slerp(float i_t, Quaternionf i_other) const;

  /// The handle onto the identity object, which is made on first use and never written. Valid from before
  /// `main` to the end of the process.
  static Lazy<ObjectHandle> const& mgh_identity;

 private:
  float const* GetValues() const noexcept;

  // Never empty, except in a moved-from value.
  ObjectHandle m_handle;
};

}  // namespace lum
