#pragma once

#include <cassert>
#include <concepts>
#include <cstddef>
#include <cstring>
#include <span>
#include <stdexcept>
#include <type_traits>
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
struct MatrixArrays;

/// The message of every function that needs an inverse and finds none.
inline constexpr char const* no_inverse_message = "attempt to get inverse of non-invertible matrix";

/// Out of line, so that the test before it costs little. Not a member, because every caller compiles its own
/// copy and the library does not export it.
[[noreturn, gnu::cold, gnu::noinline]] inline void ThrowNoInverse() {
  throw std::domain_error(no_inverse_message);
}

/// The same for an index of a value.
[[noreturn, gnu::cold, gnu::noinline]] inline void ThrowNoElement() {
  throw std::invalid_argument("matrix element index out of bounds");
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
/// stored inverse is never checked, and only `RebuildInverse` computes it again.
///
/// A default-constructed matrix shares the one identity object, which is recognised by its address (a *known
/// identity*). Operations with a known identity share objects instead of computing.
///
/// A moved-from matrix may be destroyed, copied and assigned to. Its two handles are empty. Use of its values
/// is caught by an assertion in callers that are compiled without NDEBUG, however the library was built.
///
/// Matrices of the two precisions do not mix: products, comparisons and arrays of the other precision do not
/// compile. Convert one of them first.
///
/// Thread safety: a matrix must not be written while another thread uses it. Matrices that share objects may
/// be used by different threads. A child that is forked from a process with several threads must not take
/// objects, and must not be the first to use the identity, which the first application creates.
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
  static_assert(std::same_as<T, float> || std::same_as<T, double>, "Matrix<T>: T is float or double");

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
  ///@{
  /// Copies 16 values, column by column, and inverts them by their cofactors. The inverse of a singular or
  /// nearly singular matrix is infinities, NaNs or meaningless large numbers. Takes 2 objects.
  ///
  /// An array of another size does not compile. A pointer (`T*` or `T const*`) must address 16 values.
  explicit Matrix(std::span<T const, 16> i_values);
  template <class Pointer>
  requires(std::is_pointer_v<Pointer>&& std::convertible_to<Pointer, T const*>) explicit Matrix(
      Pointer const& ip_values)
      : Matrix(std::span<T const, 16>(static_cast<T const*>(ip_values), 16)) {}
  template <std::size_t N>
  requires(N != 16) explicit Matrix(T const (&)[N]) = delete;  // a matrix has 16 values
  ///@}
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
  // Defined here, because Doxygen does not match a definition below the class with it.
  template <class U>
  requires(!std::same_as<T, U>) [[gnu::always_inline]] Matrix const& operator=(Matrix<U> const& i_other) {
    i_other.RequireValues();
    return Convert(i_other);
  }

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
  [[gnu::always_inline]] T const* GetAsPtr() const noexcept { return RequireValues().GetMatrix()->data(); }
  /// The value at a row and a column; an index outside 0 to 3 throws `std::invalid_argument`.
  T operator()(int i_row, int i_column) const;
  /// Compares the bytes of the transforms: 0 and -0 differ, identical NaNs are equal. Ignores the inverses.
  bool operator==(Matrix const& i_other) const noexcept;
  /// Whether the transform is the identity object itself. False for other objects with the same values.
  [[gnu::always_inline]] bool IsKnownIdentity() const {
    return RequireValues().GetMatrix().Get() == mgh_identity.GetValue().Get();
  }

  /// Whether there is an inverse.
  bool HasInverse() const noexcept { return static_cast<bool>(m_objects.second); }
  /// Always true: row 3 is assumed to be (0, 0, 0, 1) and is not read.
  bool IsAffine() const noexcept { return true; }
  /// The inverse: the same two objects, swapped. Increments 2 counts. Throws `std::domain_error` if there is
  /// no inverse.
  [[gnu::always_inline]] Matrix GetInverse() const {
    return Matrix(RequireInverse().GetMatrixInverse(), GetMatrix());
  }
  /// Exchanges transform and inverse in place and returns this matrix. Throws `std::domain_error` if there is
  /// no inverse, and leaves the matrix as it is.
  Matrix& Invert();
  /// Replaces the inverse by one that is computed from the values of the transform, by cofactors as by the
  /// constructor from values, and returns this matrix. A matrix without inverse gets one.
  ///
  /// The inverse of a product is the product of the inverses, so the rounding errors of transform and inverse
  /// drift apart in a long chain of products, and again after each call. Call this before the inverse is
  /// used.
  ///
  /// Takes 1 object, or none if only this matrix uses its inverse. Other matrices that share the inverse keep
  /// it. For a known identity, the inverse becomes the identity object and increments 1 count.
  Matrix& RebuildInverse();
  /// The transpose of the upper-left 3x3 block, with row 3 moved into column 3 and row 3 set to (0, 0, 0, 1).
  /// The translation is lost. Has an inverse if this matrix has one. Takes 2 objects, or 1 without an
  /// inverse; a known identity gives a copy of itself.
  [[gnu::always_inline]] Matrix GetTranspose() const { return RequireValues().Transpose(); }
  /// The determinant of all 4x4 values, by Laplace's expansion into complementary 2x2 minors; exactly 1 for
  /// the known identity.
  [[gnu::always_inline]] T GetDeterminant() const { return RequireValues().CalculateDeterminant(); }
  /// The matrix that transforms normals: the transpose of the inverse (Turkowski, Graphics Gems, 1990).
  /// Throws `std::domain_error` if there is no inverse. Takes 2 objects; a known identity gives a copy of
  /// itself.
  [[gnu::always_inline]] Matrix GetNormalTransform() const { return RequireValues().CreateNormalTransform(); }

  /// The 4x4 product. Its inverse is the product of the inverses in the opposite order, if both factors have
  /// one. Takes 2 objects, or 1 without an inverse. A product with a known identity copies the other factor.
  [[gnu::always_inline]] Matrix operator*(Matrix const& i_right) const {
    return RequireValues().Multiply(i_right.RequireValues());
  }
  /// Assigns the product. Costs the same as the product.
  [[gnu::always_inline]] Matrix& operator*=(Matrix const& i_right) { return *this = *this * i_right; }
  /// Component i is ((M(i,0) x + M(i,1) y) + M(i,2) z) + M(i,3) 0. A non-finite translation yields NaN.
  [[gnu::always_inline]] Vector<T, 3> operator*(Vector<T, 3> const& i_vector) const {
    return RequireValues().Apply(i_vector);
  }
  /// Component i is ((M(i,0) x + M(i,1) y) + M(i,2) z) + M(i,3). Row 3 is not used, so nothing is divided by
  /// w.
  [[gnu::always_inline]] Point<T, 3> operator*(Point<T, 3> const& i_point) const {
    return RequireValues().Apply(i_point);
  }
  /// The plane through the images of the plane's points, normalised: the row r = (a, b, c, -d) times the
  /// inverse, since (r M^-1) (M p) = r p. A known identity returns the plane unchanged.
  ///
  /// Throws `std::domain_error` if there is no inverse. Throws `std::invalid_argument`, like the constructor
  /// of `Plane`, if the squared length of the image's normal is below the smallest normal number.
  [[gnu::always_inline]] Plane<T> operator*(Plane<T> const& i_plane) const {
    return RequireValues().Apply(i_plane);
  }

  ///@{
  /// Matrices of different precisions: convert one first, as in `a * Matrix<float>(b)`.
  template <class U>
  requires(!std::same_as<T, U>) Matrix operator*(Matrix<U> const&) const = delete;  // convert one first
  template <class U>
  requires(!std::same_as<T, U>) Matrix& operator*=(Matrix<U> const&) = delete;  // convert it first
  template <class U>
  requires(!std::same_as<T, U>) bool operator==(Matrix<U> const&) const = delete;  // convert one first
  ///@}

  /// The transform for writing. A shared object is first replaced by a copy, which takes 1 object. Call this
  /// again after copying the matrix, since the copy shares the object. The inverse does not change: the
  /// caller keeps transform and inverse consistent.
  Object* GetMutableInternal();
  /// The inverse for writing, like `GetMutableInternal`. An assertion of the caller requires that there is
  /// one.
  Object* GetMutableInverseInternal();

  /// The handle onto the identity object, which is created on first use and never written. Valid from before
  /// `main` to the end of the process.
  static Lazy<ObjectHandle> const& mgh_identity;

 private:
  friend struct internal::MatrixFactory<T>;
  template <class U>
  friend class Matrix;
  friend struct internal::MatrixArrays;

  struct FreshObjects {};
  // Two fresh objects, whose values the caller writes before they are read.
  LUM_HIDDEN explicit Matrix(FreshObjects) : m_objects(CreateTwoGlobalObjects<Object>()) {}

  // What the public members of the same meaning call after their checks. The public ones are inlined into
  // every caller, also into unoptimised ones, so that the caller's NDEBUG decides whether they check. They
  // would otherwise call the library's copy, which has no checks.
  template <class U>
  Matrix const& Convert(Matrix<U> const& i_other);
  Matrix& Rebuild();
  Matrix Transpose() const;
  T CalculateDeterminant() const;
  Matrix CreateNormalTransform() const;
  Matrix Multiply(Matrix const& i_right) const;
  Vector<T, 3> Apply(Vector<T, 3> const& i_vector) const;
  Point<T, 3> Apply(Point<T, 3> const& i_point) const;
  Plane<T> Apply(Plane<T> const& i_plane) const;
  void Apply(std::span<Vector<T, 3> const> i_vectors, std::span<Vector<T, 3>> o_images) const;
  void Apply(std::span<Point<T, 3> const> i_points, std::span<Point<T, 3>> o_images) const;
  static Object* MakeMutable(ObjectHandle& io_handle);

  // Return this matrix.
  [[gnu::always_inline]] LUM_HIDDEN Matrix const& RequireValues() const noexcept;
  [[gnu::always_inline]] LUM_HIDDEN Matrix const& RequireInverse() const;

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
inline Matrix<T> const& Matrix<T>::RequireValues() const noexcept {
  assert(GetMatrix() && "a moved-from matrix");
  return *this;
}

template <class T>
inline Matrix<T> const& Matrix<T>::RequireInverse() const {
  RequireValues();
  if (!HasInverse()) internal::ThrowNoInverse();
  return *this;
}

template <class T>
template <class U>
requires(!std::same_as<T, U>) [[gnu::always_inline]] inline Matrix<T>::Matrix(Matrix<U> const& i_other) {
  *this = i_other;
}

template <class T>
[[gnu::always_inline]] inline T Matrix<T>::operator()(int i_row, int i_column) const {
  if ((static_cast<unsigned int>(i_row) | static_cast<unsigned int>(i_column)) > 3)
    internal::ThrowNoElement();
  return GetAsPtr()[i_row + 4 * i_column];
}

template <class T>
[[gnu::always_inline]] inline bool Matrix<T>::operator==(Matrix const& i_other) const noexcept {
  // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison): byte for byte on purpose
  return std::memcmp(GetAsPtr(), i_other.GetAsPtr(), 16 * sizeof(T)) == 0;
}

template <class T>
[[gnu::always_inline]] inline Matrix<T>& Matrix<T>::Invert() {
  RequireInverse();
  m_objects.first.Swap(m_objects.second);
  return *this;
}

template <class T>
[[gnu::always_inline]] inline Matrix<T>& Matrix<T>::RebuildInverse() {
  RequireValues();
  return Rebuild();
}

template <class T>
[[gnu::always_inline]] inline typename Matrix<T>::Object* Matrix<T>::GetMutableInternal() {
  RequireValues();
  return MakeMutable(m_objects.first);
}

template <class T>
[[gnu::always_inline]] inline typename Matrix<T>::Object* Matrix<T>::GetMutableInverseInternal() {
  assert(HasInverse() && "the inverse of a matrix without one");
  return MakeMutable(m_objects.second);
}

/// \cond
template <>
LUM_EXPORT Lazy<MatrixPoolTypes<float>::ObjectHandle> const& Matrix<float>::mgh_identity;
template <>
LUM_EXPORT Lazy<MatrixPoolTypes<double>::ObjectHandle> const& Matrix<double>::mgh_identity;

extern template class Matrix<float>;
extern template class Matrix<double>;

extern template LUM_EXPORT Matrix<float> const& Matrix<float>::Convert(Matrix<double> const&);
extern template LUM_EXPORT Matrix<double> const& Matrix<double>::Convert(Matrix<float> const&);
/// \endcond

}  // namespace lum
