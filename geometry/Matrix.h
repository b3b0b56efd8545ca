#pragma once

#include <cassert>
#include <concepts>
#include <span>
#include <utility>

#include "Utility/Lazy.h"
#include "geometry/GlobalObjectPool.h"
#include "geometry/Plane.h"
#include "geometry/Point.h"
#include "geometry/Vector.h"
#include "geometry/internal/Export.h"

namespace lum {

namespace internal {
/// Tag of the constructor that leaves the values to be written.
struct FreshObjects {};
}  // namespace internal

/// The types behind `Matrix<T>`: `Object`, `ObjectPool` and `ObjectHandle`.
template <class T>
using MatrixPoolTypes = PoolTypes<MatrixObject<T>>;

/// A 4x4 transform that carries its own inverse.
///
/// Column vectors: in (A * B) * p, B is applied to p first. Values are numbered column by column: value
/// r + 4 c stands at row r, column c. Angles are in radians, rotations right-handed.
///
/// A matrix is two handles onto pooled objects: the transform, and its inverse or nothing. Copying shares
/// both. A shared object is never written: every operation builds fresh objects, and its inverse in closed
/// form beside it, so that inverting swaps two handles. An inverse is kept as it was built; it is never
/// recomputed and never checked.
///
/// A default-constructed matrix shares the one identity object. That object is recognised by its address (a
/// *known identity*); operations with it share instead of computing.
///
/// A moved-from matrix may be destroyed and assigned to. Its handles are empty, which `GetMatrix`,
/// `GetMatrixInverse`, `HasInverse` and its copies show; use of its values is caught by an assertion in
/// builds without NDEBUG.
///
/// Thread safety: one matrix must not be written while another thread uses it. Matrices that merely share
/// objects may be used on different threads freely.
///
/// Errors: whatever takes a pooled object passes on what the pool throws (`std::bad_alloc`) and leaves its
/// operands as they were.
///
/// Cost: members say how many objects they take and how many counts they raise; where nothing is said, none.
/// Letting go lowers as many counts. What needs the known identity makes it on first use in a process.
///
/// Translations, origins and planes are in one unit of length, which the caller chooses; the rest has none.
///
/// \tparam T  `float` or `double`, which is also the precision of all arithmetic
template <class T>
class LUM_EXPORT LUM_STANDALONE_DEBUG Matrix {
 public:
  using Object = typename MatrixPoolTypes<T>::Object;              ///< What holds the 16 values.
  using ObjectHandle = typename MatrixPoolTypes<T>::ObjectHandle;  ///< What owns such an object.

  Matrix();                             ///< The known identity. Raises 2 counts.
  Matrix(Matrix const&) = default;      ///< Shares both objects. Raises 2 counts, or 1 without an inverse.
  Matrix(Matrix&&) noexcept = default;  ///< Takes over both handles.
  /// \cond
  // Two fresh objects, whose values the library writes before anyone reads them.
  explicit Matrix(internal::FreshObjects) : m_objects(CreateTwoGlobalObjects<Object>()) {}
  /// \endcond
  /// Shares the objects of two handles, the second of which may be empty. Nothing is checked.
  Matrix(ObjectHandle i_transform, ObjectHandle i_inverse) noexcept;
  /// Lets go of the inverse, then of the transform.
  ~Matrix() {
    // A matrix that was moved from holds neither, and the compiler mostly knows.
    if (m_objects.first) ObjectHandle::ReleaseTogether(m_objects.second, m_objects.first);
  }
  /// Copies 16 values, column by column, and inverts them by their cofactors. Of a singular matrix, or nearly
  /// so, the inverse is infinities, NaNs or large numbers without meaning. Takes 2 objects.
  explicit Matrix(T const* ip_values);
  /// The frame that maps the unit axes onto the three vectors, taken as they are, and (0, 0, 0) onto the
  /// origin; inverted like the matrix from values. Takes 2 objects.
  Matrix(Point<T, 3> const& i_origin, Vector<T, 3> const& i_x, Vector<T, 3> const& i_y,
         Vector<T, 3> const& i_z);
  /// Converts transform and inverse value by value: rounded to the nearest float, or widened exactly. Shares
  /// nothing, so the result is never a known identity. Without an inverse there, there is none here. Takes 2
  /// objects, or 1 without an inverse.
  template <class U>
  requires(!std::same_as<T, U>) Matrix(Matrix<U> const& i_other);

  /// Shares the objects of the other, then lets go of the transform and the inverse that it had. Raises 2
  /// counts, or 1 without an inverse.
  // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): a counted copy is taken first
  Matrix& operator=(Matrix const& i_other) noexcept { return *this = Matrix(i_other); }
  Matrix& operator=(Matrix&& io_other) noexcept;  ///< Moves, then lets go of what it had.
  /// Converts as the constructor does. If taking the second object fails, this matrix has its new transform
  /// and its old inverse. Returns a reference to const.
  template <class U>
  requires(!std::same_as<T, U>) Matrix const& operator=(Matrix<U> const& i_other);

  ///@{
  /// Scales along the axes, each by its own factor or all by one. Without an inverse when a reciprocal is
  /// infinite or NaN. Takes 2 objects, or 1 without an inverse.
  static Matrix Scale(T i_x, T i_y, T i_z);
  static Matrix Scale(T i_factor);
  ///@}
  ///@{
  /// Moves points by an offset, and back by its inverse. Takes 2 objects.
  static Matrix Translate(T i_x, T i_y, T i_z);
  static Matrix Translate(Vector<T, 3> const& i_offset);
  ///@}
  /// Rotates about an axis through the origin, by Rodrigues' rotation formula. The axis is taken as it is:
  /// one that is not of unit length does not give a rigid motion. The inverse turns through the negated
  /// angle. An angle of zero gives the known identity, raising 2 counts; any other takes 2 objects.
  static Matrix Rotate(Vector<T, 3> const& i_axis, T i_angle);
  /// Maps a box of these extents, centred on the origin, onto the cube from -1 to 1.
  ///
  /// The first extent that is not strictly positive throws `std::invalid_argument`. A NaN is let through and
  /// gives a matrix without inverse. Takes what `Scale` takes.
  static Matrix Normalize(T i_width, T i_height, T i_depth);

  ///@{
  /// The handle onto the transform, or onto the inverse, which is empty when there is none.
  ObjectHandle const& GetMatrix() const noexcept { return m_objects.first; }
  ObjectHandle const& GetMatrixInverse() const noexcept { return m_objects.second; }
  ///@}
  /// The 16 values of the transform, column by column; valid as long as something holds the object.
  T const* GetAsPtr() const noexcept;
  /// The value at a row and a column; an index outside 0 to 3 throws `std::invalid_argument`.
  T operator()(int i_row, int i_column) const;
  /// Compares the transforms byte for byte: zeros of opposite sign differ, equal NaNs do not. The inverses
  /// are not compared.
  bool operator==(Matrix const& i_other) const noexcept;
  /// Whether the transform is the identity object itself. Other matrices with its values are not.
  bool IsKnownIdentity() const;

  /// Whether an inverse is held.
  bool HasInverse() const noexcept { return static_cast<bool>(m_objects.second); }
  /// Always true: every matrix is taken to be affine; row 3 is not looked at.
  bool IsAffine() const noexcept { return true; }
  ///@{
  /// Swaps the two handles: raises 2 counts, or none of a temporary, whose handles it takes. Without an
  /// inverse throws `std::domain_error`.
  Matrix GetInverse() const&;
  Matrix GetInverse() &&;
  ///@}
  /// The transpose of the upper-left 3x3 block, with row 3 moved into column 3 and row 3 set to (0, 0, 0, 1):
  /// the translation is dropped. Has an inverse when this matrix has one. Takes 2 objects, or 1 without an
  /// inverse; a known identity gives a copy of itself.
  Matrix GetTranspose() const;
  /// The determinant of all 4x4 values, by Laplace's expansion into complementary 2x2 minors; exactly 1 for
  /// the known identity.
  T GetDeterminant() const;
  /// The matrix that carries normals along: the transpose of the inverse (Turkowski, Graphics Gems, 1990).
  /// Without an inverse throws `std::domain_error`. Takes 2 objects; a known identity gives a copy of itself.
  Matrix GetNormalTransform() const;

  /// The full 4x4 product, with the product of the inverses, the other way round, when both factors have one.
  /// Takes 2 objects, or 1 without an inverse. A known identity as a factor gives a copy of the other factor.
  Matrix operator*(Matrix const& i_right) const;
  /// Becomes the product, and takes or raises what that does.
  Matrix& operator*=(Matrix const& i_right);
  /// Component i is ((M(i,0) x + M(i,1) y) + M(i,2) z) + M(i,3) 0: a translation that is not finite shows.
  Vector<T, 3> operator*(Vector<T, 3> const& i_vector) const;
  /// Component i is ((M(i,0) x + M(i,1) y) + M(i,2) z) + M(i,3). Row 3 is not used; nothing is divided.
  Point<T, 3> operator*(Point<T, 3> const& i_point) const;
  /// The plane through the images of the plane's points: its row r = (a, b, c, -d) times the inverse, since
  /// (r M^-1) (M p) = r p, normalised; of a known identity the plane as it is.
  ///
  /// Without an inverse throws `std::domain_error`; an image normal whose squared length is below the
  /// smallest normal value throws `std::invalid_argument`, like the constructor of `Plane`.
  Plane<T> operator*(Plane<T> const& i_plane) const;

  /// The transform for writing: this matrix's own object, or, taking 1, a fresh copy if it was shared. Ask
  /// again once this matrix has been copied: the copy shares the object. The inverse is left alone: whoever
  /// writes one of the two keeps the other in step.
  Object* GetMutableInternal();
  /// The same for the inverse, which must exist: an assertion holds the caller to it.
  Object* GetMutableInverseInternal();

  /// The handle onto the identity object, which is made on first use and never written. Valid from before
  /// `main` to the end of the process.
  static Lazy<ObjectHandle> const& mgh_identity;

 private:
  void RequireInverse() const;
  [[noreturn]] static void ThrowNoInverse();

  // The transform, never empty except in a moved-from matrix, and the inverse. Together, so that the pool
  // makes both handles where they are to stay.
  typename PoolTypes<Object>::ObjectPool::TwoObjects m_objects;
};

template <class T>
inline Matrix<T>::Matrix(ObjectHandle i_transform, ObjectHandle i_inverse) noexcept
    : m_objects{std::move(i_transform), std::move(i_inverse)} {}

// Where both objects are replaced, as they mostly are, the old ones are let go together, the transform first.
// A handle onto the same object stays.
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
  if (!HasInverse()) ThrowNoInverse();
}

///@{
/// Carries every point of an array as the product with one point does, to the same bits but for
/// signs and payloads of NaNs; a known identity copies.
///
/// The arrays may be one and the same, but must not overlap otherwise. Arrays of different sizes throw
/// `std::invalid_argument`, and nothing is written then. Takes nothing from the pools but the identity, on
/// its first use in a process; counts are not touched. Safe from any thread that has o_points to itself.
LUM_EXPORT void TransformPoints(Matrix<float> const& i_matrix, std::span<Point<float, 3> const> i_points,
                                std::span<Point<float, 3>> o_points);
LUM_EXPORT void TransformPoints(Matrix<double> const& i_matrix, std::span<Point<double, 3> const> i_points,
                                std::span<Point<double, 3>> o_points);
///@}
///@{
/// The same for vectors, which ignore a finite translation.
LUM_EXPORT void TransformVectors(Matrix<float> const& i_matrix, std::span<Vector<float, 3> const> i_vectors,
                                 std::span<Vector<float, 3>> o_vectors);
LUM_EXPORT void TransformVectors(Matrix<double> const& i_matrix, std::span<Vector<double, 3> const> i_vectors,
                                 std::span<Vector<double, 3>> o_vectors);
///@}

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
