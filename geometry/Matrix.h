#pragma once

#include <cassert>
#include <concepts>
#include <stdexcept>
#include <utility>

#include "Utility/Lazy.h"
#include "geometry/GlobalObjectPool.h"
#include "geometry/Plane.h"
#include "geometry/Point.h"
#include "geometry/TransformArrays.h"
#include "geometry/Vector.h"
#include "geometry/internal/Export.h"

namespace lum {

namespace internal {
template <class T>
struct MatrixFactory;

/// The message of every function that needs an inverse and finds none.
inline constexpr char const* no_inverse_message = "attempt to get inverse of non-invertible matrix";

/// Out of line, so that the test before it costs little. Not a member, because every caller compiles its own
/// copy and the library does not export it.
[[noreturn, gnu::cold, gnu::noinline]] inline void ThrowNoInverse() {
  throw std::domain_error(no_inverse_message);
}
}  // namespace internal

/// A 4x4 transform that stores its own inverse.
///
/// Vectors are columns: (A * B) * p applies B to p first. Values are numbered column by column: value r + 4 c
/// stands at row r, column c. Angles are in radians. Rotations are right-handed.
///
/// A matrix is two handles onto pooled objects. The first holds the transform. The second holds the inverse,
/// or is empty. A copy shares both objects. A shared object is never written: every operation fills fresh
/// objects. It computes the inverse together with the transform, so inverting only swaps the two handles. A
/// stored inverse is never recomputed and never checked.
///
/// A default-constructed matrix shares the one identity object, which is recognised by its address (a *known
/// identity*). Operations with a known identity share objects instead of computing.
///
/// A moved-from matrix may be destroyed, copied and assigned to. Its two handles are empty. Use of its values
/// is caught by an assertion in builds without NDEBUG.
///
/// Thread safety: a matrix must not be written while another thread uses it. Matrices that share objects may
/// be used by different threads.
///
/// Errors: a member that takes a pooled object passes on what the pool throws (`std::bad_alloc`). Its
/// operands are then unchanged, except by the converting assignment.
///
/// Cost: each member states how many objects it takes and how many counts it increments. A member that states
/// neither takes no object and increments no count. Destruction decrements the same counts. The identity
/// object is created on first use.
///
/// Units: translations, origins and planes share one unit of length, which the caller chooses.
///
/// \tparam T  `float` or `double`, which is also the precision of all arithmetic
template <class T>
class LUM_EXPORT LUM_STANDALONE_DEBUG Matrix {
 public:
  using Object = typename MatrixPoolTypes<T>::Object;              ///< Holds the 16 values.
  using ObjectHandle = typename MatrixPoolTypes<T>::ObjectHandle;  ///< A shared owner of an `Object`.

  Matrix();                         ///< The known identity. Increments 2 counts.
  Matrix(Matrix const&) = default;  ///< Shares both objects. Increments 2 counts, or 1 without an inverse.
  Matrix(Matrix&&) noexcept = default;  ///< Takes over both handles.
  /// Takes over two handles, the second of which may be empty. Nothing is checked.
  Matrix(ObjectHandle i_transform, ObjectHandle i_inverse) noexcept;
  /// Releases the inverse, then the transform.
  ~Matrix() {
    // Skips a moved-from matrix, which the compiler often recognises.
    if (m_objects.first) ObjectHandle::ReleaseTogether(m_objects.second, m_objects.first);
  }
  /// Copies 16 values, column by column, and inverts them by their cofactors. The inverse of a singular or
  /// nearly singular matrix is infinities, NaNs or meaningless large numbers. Takes 2 objects.
  explicit Matrix(T const* ip_values);
  /// The frame that maps (0, 0, 0) to i_origin and the unit axes to the three vectors, which need not be
  /// orthogonal or of unit length. The inverse is computed as for the matrix from values. Takes 2 objects.
  Matrix(Point<T, 3> const& i_origin, Vector<T, 3> const& i_x, Vector<T, 3> const& i_y,
         Vector<T, 3> const& i_z);
  /// Converts transform and inverse value by value: rounded to the nearest float, or widened exactly. Has an
  /// inverse if the other matrix has one. Never a known identity, since nothing is shared. Takes 2 objects,
  /// or 1 without an inverse.
  template <class U>
  requires(!std::same_as<T, U>) Matrix(Matrix<U> const& i_other);

  /// Shares the objects of the other matrix, then releases the previous transform and inverse. Increments 2
  /// counts, or 1 without an inverse.
  // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): a counted copy is taken first
  Matrix& operator=(Matrix const& i_other) noexcept { return *this = Matrix(i_other); }
  /// Takes over both handles, then releases the previous transform and inverse.
  Matrix& operator=(Matrix&& io_other) noexcept;
  /// Converts like the constructor and returns a reference to const. If taking the second object throws, this
  /// matrix has its new transform and its old inverse.
  template <class U>
  requires(!std::same_as<T, U>) Matrix const& operator=(Matrix<U> const& i_other);

  ///@{
  /// Scales along the axes, by one factor each or by the same factor. Has no inverse if a reciprocal is
  /// infinite or NaN. Takes 2 objects, or 1 without an inverse.
  static Matrix Scale(T i_x, T i_y, T i_z);
  static Matrix Scale(T i_factor);
  ///@}
  ///@{
  /// Moves points by an offset. Takes 2 objects.
  static Matrix Translate(T i_x, T i_y, T i_z);
  static Matrix Translate(Vector<T, 3> const& i_offset);
  ///@}
  /// Rotates about an axis through the origin, by Rodrigues' rotation formula. The inverse rotates by the
  /// negated angle. The axis is not normalised; the result is a rotation only if its length is 1. An angle of
  /// zero gives the known identity and increments 2 counts; any other angle takes 2 objects.
  static Matrix Rotate(Vector<T, 3> const& i_axis, T i_angle);
  /// Maps a box of these extents, centred on the origin, onto the cube from -1 to 1.
  ///
  /// An extent that is zero or negative throws `std::invalid_argument`, which names the first such extent. A
  /// NaN does not throw, and gives a result without an inverse. Takes as many objects as `Scale`.
  static Matrix Normalize(T i_width, T i_height, T i_depth);

  ///@{
  /// The handle onto the transform, and the handle onto the inverse, which is empty if there is none.
  ObjectHandle const& GetMatrix() const noexcept { return m_objects.first; }
  ObjectHandle const& GetMatrixInverse() const noexcept { return m_objects.second; }
  ///@}
  /// The 16 values of the transform, column by column. Valid while a handle owns the object.
  T const* GetAsPtr() const noexcept;
  /// The value at a row and a column; an index outside 0 to 3 throws `std::invalid_argument`.
  T operator()(int i_row, int i_column) const;
  /// Compares the bytes of the transforms: 0 and -0 differ, identical NaNs are equal. Ignores the inverses.
  bool operator==(Matrix const& i_other) const noexcept;
  /// Whether the transform is the identity object itself. False for other objects with the same values.
  bool IsKnownIdentity() const;

  /// Whether there is an inverse.
  bool HasInverse() const noexcept { return static_cast<bool>(m_objects.second); }
  /// Always true: row 3 is assumed to be (0, 0, 0, 1) and is not read.
  bool IsAffine() const noexcept { return true; }
  ///@{
  /// The inverse: the same two objects, swapped. Increments 2 counts, or none for a temporary, whose handles
  /// are taken over. Throws `std::domain_error` if there is no inverse.
  Matrix GetInverse() const&;
  Matrix GetInverse() &&;
  ///@}
  /// The transpose of the upper-left 3x3 block, with row 3 moved into column 3 and row 3 set to (0, 0, 0, 1).
  /// The translation is lost. Has an inverse if this matrix has one. Takes 2 objects, or 1 without an
  /// inverse; a known identity gives a copy of itself.
  Matrix GetTranspose() const;
  /// The determinant of all 4x4 values, by Laplace's expansion into complementary 2x2 minors; exactly 1 for
  /// the known identity.
  T GetDeterminant() const;
  /// The matrix that transforms normals: the transpose of the inverse (Turkowski, Graphics Gems, 1990).
  /// Throws `std::domain_error` if there is no inverse. Takes 2 objects; a known identity gives a copy of
  /// itself.
  Matrix GetNormalTransform() const;

  /// The 4x4 product. Its inverse is the product of the inverses in the opposite order, if both factors have
  /// one. Takes 2 objects, or 1 without an inverse. A product with a known identity copies the other factor.
  Matrix operator*(Matrix const& i_right) const;
  /// Assigns the product. Costs the same as the product.
  Matrix& operator*=(Matrix const& i_right);
  /// Component i is ((M(i,0) x + M(i,1) y) + M(i,2) z) + M(i,3) 0. A non-finite translation yields NaN.
  Vector<T, 3> operator*(Vector<T, 3> const& i_vector) const;
  /// Component i is ((M(i,0) x + M(i,1) y) + M(i,2) z) + M(i,3). Row 3 is not used, so nothing is divided by
  /// w.
  Point<T, 3> operator*(Point<T, 3> const& i_point) const;
  /// The plane through the images of the plane's points, normalised: the row r = (a, b, c, -d) times the
  /// inverse, since (r M^-1) (M p) = r p. A known identity returns the plane unchanged.
  ///
  /// Throws `std::domain_error` if there is no inverse. Throws `std::invalid_argument`, like the constructor
  /// of `Plane`, if the squared length of the image's normal is below the smallest normal number.
  Plane<T> operator*(Plane<T> const& i_plane) const;

  /// The transform for writing. A shared object is first replaced by a copy, which takes 1 object. Call this
  /// again after copying the matrix, since the copy shares the object. The inverse does not change: the
  /// caller keeps transform and inverse consistent.
  Object* GetMutableInternal();
  /// The inverse for writing, like `GetMutableInternal`. An assertion requires that there is one.
  Object* GetMutableInverseInternal();

  /// The handle onto the identity object, which is created on first use and never written. Valid from before
  /// `main` to the end of the process.
  static Lazy<ObjectHandle> const& mgh_identity;

 private:
  friend struct internal::MatrixFactory<T>;

  struct FreshObjects {};
  // Two fresh objects, whose values the caller writes before they are read.
  LUM_HIDDEN explicit Matrix(FreshObjects) : m_objects(CreateTwoGlobalObjects<Object>()) {}

  // Always inlined, because inline members call it and the library does not export it.
  [[gnu::always_inline]] LUM_HIDDEN void RequireInverse() const;

  // The transform, which only a moved-from matrix lacks, and the inverse. They are one member so that the
  // pool constructs both handles in place.
  typename MatrixPoolTypes<T>::ObjectPool::TwoObjects m_objects;
};

template <class T>
inline Matrix<T>::Matrix(ObjectHandle i_transform, ObjectHandle i_inverse) noexcept
    : m_objects{std::move(i_transform), std::move(i_inverse)} {}

// If both objects differ, which is the usual case, the old ones are released together, the transform first. A
// handle that already owns the same object is kept.
template <class T>
inline Matrix<T>& Matrix<T>::operator=(Matrix&& io_other) noexcept {
  Matrix taken(std::move(io_other));
  if (m_objects.first.Get() == taken.m_objects.first.Get() ||
      m_objects.second.Get() == taken.m_objects.second.Get()) {
    m_objects.first = std::move(taken.m_objects.first);
    m_objects.second = std::move(taken.m_objects.second);
  } else {
    m_objects.first.Swap(taken.m_objects.first);
    m_objects.second.Swap(taken.m_objects.second);
    ObjectHandle::ReleaseTogether(taken.m_objects.first, taken.m_objects.second);
  }
  return *this;
}

template <class T>
inline Matrix<T> Matrix<T>::GetInverse() const& {
  RequireInverse();
  return Matrix(GetMatrixInverse(), GetMatrix());
}

template <class T>
inline Matrix<T> Matrix<T>::GetInverse() && {
  RequireInverse();
  return Matrix(std::move(m_objects.second), std::move(m_objects.first));
}

template <class T>
inline void Matrix<T>::RequireInverse() const {
  assert(GetMatrix());
  if (!HasInverse()) internal::ThrowNoInverse();
}

/// \cond
template <>
LUM_EXPORT Lazy<MatrixPoolTypes<float>::ObjectHandle> const& Matrix<float>::mgh_identity;
template <>
LUM_EXPORT Lazy<MatrixPoolTypes<double>::ObjectHandle> const& Matrix<double>::mgh_identity;

extern template class Matrix<float>;
extern template class Matrix<double>;

extern template LUM_EXPORT Matrix<float>::Matrix(Matrix<double> const&);
extern template LUM_EXPORT Matrix<double>::Matrix(Matrix<float> const&);
extern template LUM_EXPORT Matrix<float> const& Matrix<float>::operator=(Matrix<double> const&);
extern template LUM_EXPORT Matrix<double> const& Matrix<double>::operator=(Matrix<float> const&);
/// \endcond

}  // namespace lum
