#include "geometry/Matrix.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <utility>

#include "geometry/internal/Column.h"
#include "geometry/internal/EigenAlgorithms.h"
#include "geometry/internal/NeverDestroyed.h"
#include "geometry/internal/StrictArithmetic.h"

namespace lum {

// The only user of the constructor that does not write the values.
template <class T>
struct internal::MatrixFactory {
  static Matrix<T> Create() { return Matrix<T>(typename Matrix<T>::FreshObjects()); }
};

namespace {

// The values of a transform in registers of 16 bytes. Storing two transforms value by value would fill the
// store buffer.
template <class T>
struct Columns {
  using Column = internal::Column<T>;

  static Columns Load(T const* ip_values) noexcept {
    return {Column::Load(ip_values), Column::Load(ip_values + 4), Column::Load(ip_values + 8),
            Column::Load(ip_values + 12)};
  }

  void Store(T* op_values) const noexcept {
    x.Store(op_values);
    y.Store(op_values + 4);
    z.Store(op_values + 8);
    translation.Store(op_values + 12);
  }

  Column CombineWith(T i_x, T i_y, T i_z, Column const& i_last) const noexcept {
    return ((x * i_x + y * i_y) + z * i_z) + i_last;
  }

  Column x, y, z, translation;
};

template <class T>
typename MatrixPoolTypes<T>::ObjectHandle CreateHandle(Columns<T> const& i_columns) {
  auto handle = CreateGlobalObject<typename MatrixPoolTypes<T>::Object>();
  i_columns.Store(handle->data());
  return handle;
}

// A transform and its inverse, whose objects are taken together.
template <class T>
inline Matrix<T> CreateMatrix(Columns<T> const& i_transform, Columns<T> const& i_inverse) {
  auto matrix = internal::MatrixFactory<T>::Create();
  i_transform.Store(matrix.GetMatrix()->data());
  i_inverse.Store(matrix.GetMatrixInverse()->data());
  return matrix;
}

template <class T>
Matrix<T> CreateMatrixWithoutInverse(Columns<T> const& i_transform) {
  return Matrix<T>(CreateHandle(i_transform), {});
}

template <class T>
typename MatrixPoolTypes<T>::ObjectHandle CreateIdentity() {
  return CreateHandle<T>({{1, 0, 0, 0},  //
                          {0, 1, 0, 0},  //
                          {0, 0, 1, 0},  //
                          {0, 0, 0, 1}});
}

// Constant-initialised and never destroyed: valid from before main until the process ends.
template <class T>
constinit internal::NeverDestroyed<Lazy<typename MatrixPoolTypes<T>::ObjectHandle>> identity(
    CreateIdentity<T>);

template <class T>
Columns<T> MakeScale(T i_x, T i_y, T i_z) {
  return {{i_x, 0, 0, 0},  //
          {0, i_y, 0, 0},  //
          {0, 0, i_z, 0},  //
          {0, 0, 0, 1}};
}

template <class T>
Columns<T> MakeTranslation(T i_x, T i_y, T i_z) {
  return {{1, 0, 0, 0},  //
          {0, 1, 0, 0},  //
          {0, 0, 1, 0},  //
          {i_x, i_y, i_z, 1}};
}

template <class T>
Columns<T> MakeRotation(Vector<T, 3> const& i_axis, T i_sine, T i_cosine) {
  auto const [x, y, z] = i_axis;
  T const s = i_sine;
  T const c = i_cosine;
  T const t = 1 - c;
  // clang-format off
  return {{x * (x * t) + c,     z * s + y * (x * t), z * (x * t) - y * s, 0},
          {y * (x * t) - z * s, y * (y * t) + c,     x * s + z * (y * t), 0},
          {y * s + z * (x * t), z * (y * t) - x * s, (t * z) * z + c,     0},
          {0,                   0,                   0,                   1}};
  // clang-format on
}

// The transpose of a transform without its translation. Row 3 becomes column 3.
template <class T>
Columns<T> MakeTranspose(T const* s) {
  return {{s[0], s[4], s[8], 0},   //
          {s[1], s[5], s[9], 0},   //
          {s[2], s[6], s[10], 0},  //
          {s[3], s[7], s[11], 1}};
}

// The first application in a process creates the identity. Out of line, so that later applications need not
// save registers for that call.
template <class T, class Argument>
[[gnu::noinline]] Argument ApplyFirst(Matrix<T> const& i_matrix, Argument const& i_argument) {
  Matrix<T>::mgh_identity.GetValue();
  return i_matrix * i_argument;
}

template <class T>
Columns<T> MakeProduct(T const* ip_left, T const* b) {
  auto const left = Columns<T>::Load(ip_left);
  return {left.CombineWith(b[0], b[1], b[2], left.translation * b[3]),
          left.CombineWith(b[4], b[5], b[6], left.translation * b[7]),
          left.CombineWith(b[8], b[9], b[10], left.translation * b[11]),
          left.CombineWith(b[12], b[13], b[14], left.translation * b[15])};
}

template <class T>
bool IsFinite(T i_value) {
  constexpr T infinity = std::numeric_limits<T>::infinity();
  return -infinity < i_value && i_value < infinity;
}

// The values of the inverse. Throws if there is none.
template <class T>
T const* GetInverseValues(typename MatrixPoolTypes<T>::ObjectHandle const& i_inverse, char const* i_message) {
  if (!i_inverse) throw std::domain_error(i_message);
  return i_inverse->data();
}

template <class T, class U>
typename MatrixPoolTypes<T>::ObjectHandle ConvertObject(
    typename MatrixPoolTypes<U>::ObjectHandle const& i_handle) {
  auto handle = CreateGlobalObject<typename MatrixPoolTypes<T>::Object>();
  std::transform(i_handle->data(), i_handle->data() + 16, handle->data(),
                 [](U i_value) { return static_cast<T>(i_value); });
  return handle;
}

}  // namespace

template <>
constinit Lazy<MatrixPoolTypes<float>::ObjectHandle> const& Matrix<float>::mgh_identity =
    identity<float>.m_value;
template <>
constinit Lazy<MatrixPoolTypes<double>::ObjectHandle> const& Matrix<double>::mgh_identity =
    identity<double>.m_value;

template <class T>
Matrix<T>::Matrix() : m_objects{mgh_identity.GetValue(), mgh_identity.GetValue()} {}

template <class T>
Matrix<T>::Matrix(std::span<T const, 16> i_values) : Matrix(FreshObjects()) {
  std::copy(i_values.begin(), i_values.end(), GetMatrix()->data());
  internal::InvertMatrix(i_values.data(), GetMatrixInverse()->data());
}

template <class T>
Matrix<T>::Matrix(Point<T, 3> const& i_origin, Vector<T, 3> const& i_x, Vector<T, 3> const& i_y,
                  Vector<T, 3> const& i_z)
    : Matrix(std::array<T, 16>{i_x[0], i_x[1], i_x[2], 0,  //
                               i_y[0], i_y[1], i_y[2], 0,  //
                               i_z[0], i_z[1], i_z[2], 0,  //
                               i_origin[0], i_origin[1], i_origin[2], 1}) {}

template <class T>
template <class U>
Matrix<T> const& Matrix<T>::Convert(Matrix<U> const& i_other) {
  m_objects.first = ConvertObject<T, U>(i_other.GetMatrix());
  m_objects.second = i_other.HasInverse() ? ConvertObject<T, U>(i_other.GetMatrixInverse()) : ObjectHandle();
  return *this;
}

template <class T>
Matrix<T> Matrix<T>::Scale(T i_x, T i_y, T i_z) {
  T const x = 1 / i_x;
  T const y = 1 / i_y;
  T const z = 1 / i_z;
  auto const transform = MakeScale(i_x, i_y, i_z);
  if (!IsFinite(x) || !IsFinite(y) || !IsFinite(z)) return CreateMatrixWithoutInverse(transform);
  return CreateMatrix(transform, MakeScale(x, y, z));
}

template <class T>
Matrix<T> Matrix<T>::Scale(T i_factor) {
  return Scale(i_factor, i_factor, i_factor);
}

template <class T>
Matrix<T> Matrix<T>::Translate(T i_x, T i_y, T i_z) {
  return CreateMatrix(MakeTranslation(i_x, i_y, i_z), MakeTranslation(-i_x, -i_y, -i_z));
}

template <class T>
Matrix<T> Matrix<T>::Translate(Vector<T, 3> const& i_offset) {
  return Translate(i_offset[0], i_offset[1], i_offset[2]);
}

template <class T>
Matrix<T> Matrix<T>::Rotate(Vector<T, 3> const& i_axis, T i_angle) {
  if (i_angle == 0) return Matrix();
  T const cosine = std::cos(i_angle);
  return CreateMatrix(MakeRotation(i_axis, std::sin(i_angle), cosine),
                      MakeRotation(i_axis, std::sin(-i_angle), cosine));
}

template <class T>
Matrix<T> Matrix<T>::Normalize(T i_width, T i_height, T i_depth) {
  if (0 >= i_width) throw std::invalid_argument("i_width must be strictly positive");
  if (0 >= i_height) throw std::invalid_argument("i_height must be strictly positive");
  if (0 >= i_depth) throw std::invalid_argument("i_depth must be strictly positive");
  return Scale(2 / i_width, 2 / i_height, 2 / i_depth);
}

template <class T>
Matrix<T>& Matrix<T>::Rebuild() {
  if (IsKnownIdentity()) {
    m_objects.second = m_objects.first;
    return *this;
  }
  if (m_objects.second.GetReferenceCount() != 1) {
    m_objects.second = CreateGlobalObject<Object>();
  }
  internal::InvertMatrix(GetAsPtr(), m_objects.second->data());
  return *this;
}

template <class T>
Matrix<T> Matrix<T>::Transpose() const {
  if (IsKnownIdentity()) return *this;
  auto const transform = MakeTranspose(GetAsPtr());
  if (!HasInverse()) return CreateMatrixWithoutInverse(transform);
  return CreateMatrix(transform, MakeTranspose<T>(GetMatrixInverse()->data()));
}

// Products of complementary 2x2 minors, of columns 0 and 1 and of columns 2 and 3.
template <class T>
T Matrix<T>::CalculateDeterminant() const {
  if (IsKnownIdentity()) return 1;
  T const* const m = GetAsPtr();
  T const a = (m[13] * m[8] - m[9] * m[12]) * (m[2] * m[7] - m[6] * m[3]);
  T const b = (m[15] * m[8] - m[11] * m[12]) * (m[1] * m[6] - m[5] * m[2]);
  T const c = (m[14] * m[9] - m[10] * m[13]) * (m[0] * m[7] - m[4] * m[3]);
  T const d = (m[10] * m[15] - m[11] * m[14]) * (m[0] * m[5] - m[1] * m[4]);
  T const e = (m[15] * m[9] - m[11] * m[13]) * (m[0] * m[6] - m[4] * m[2]);
  T const f = (m[14] * m[8] - m[10] * m[12]) * (m[1] * m[7] - m[5] * m[3]);
  return a + ((b + c + (d - e)) - f);
}

template <class T>
Matrix<T> Matrix<T>::CreateNormalTransform() const {
  if (IsKnownIdentity()) return *this;
  T const* const inverse =
      GetInverseValues<T>(GetMatrixInverse(), "GetNormalTransform assumes an invertible matrix");
  return CreateMatrix(MakeTranspose(inverse), MakeTranspose(GetAsPtr()));
}

template <class T>
Matrix<T> Matrix<T>::Multiply(Matrix const& i_right) const {
  if (IsKnownIdentity()) return i_right;
  if (i_right.IsKnownIdentity()) return *this;
  auto const transform = MakeProduct(GetAsPtr(), i_right.GetAsPtr());
  if (!HasInverse() || !i_right.HasInverse()) return CreateMatrixWithoutInverse(transform);
  return CreateMatrix(transform,
                      MakeProduct<T>(i_right.GetMatrixInverse()->data(), GetMatrixInverse()->data()));
}

template <class T>
Vector<T, 3> Matrix<T>::Apply(Vector<T, 3> const& i_vector) const {
  auto const* const identity = mgh_identity.GetValueIfCreated();
  if (identity == nullptr) return ApplyFirst(*this, i_vector);
  if (GetMatrix().Get() == identity->Get()) return i_vector;
  auto const columns = Columns<T>::Load(GetAsPtr());
  Vector<T, 3> image;
  columns.CombineWith(i_vector[0], i_vector[1], i_vector[2], columns.translation * 0)
      .StoreThree(image.data());
  return image;
}

template <class T>
Point<T, 3> Matrix<T>::Apply(Point<T, 3> const& i_point) const {
  auto const* const identity = mgh_identity.GetValueIfCreated();
  if (identity == nullptr) return ApplyFirst(*this, i_point);
  if (GetMatrix().Get() == identity->Get()) return i_point;
  auto const columns = Columns<T>::Load(GetAsPtr());
  Point<T, 3> image;
  columns.CombineWith(i_point[0], i_point[1], i_point[2], columns.translation).StoreThree(image.data());
  return image;
}

// The transpose of the inverse times the plane's homogeneous coefficients (a, b, c, -d).
template <class T>
Plane<T> Matrix<T>::Apply(Plane<T> const& i_plane) const {
  if (IsKnownIdentity()) return i_plane;
  T const* const m = GetInverseValues<T>(GetMatrixInverse(), internal::no_inverse_message);
  T const a = i_plane.GetA();
  T const b = i_plane.GetB();
  T const c = i_plane.GetC();
  T const d = -i_plane.GetD();
  return Plane<T>(((m[0] * a + m[1] * b) + m[2] * c) + m[3] * d,    //
                  ((m[4] * a + m[5] * b) + m[6] * c) + m[7] * d,    //
                  ((m[8] * a + m[9] * b) + m[10] * c) + m[11] * d,  //
                  -(((m[12] * a + m[13] * b) + m[14] * c) + m[15] * d));
}

template <class T>
typename Matrix<T>::Object* Matrix<T>::MakeMutable(ObjectHandle& io_handle) {
  if (io_handle.GetReferenceCount() != 1) {
    auto copy = CreateGlobalObject<Object>();
    std::copy_n(io_handle->data(), 16, copy->data());
    io_handle = std::move(copy);
  }
  return io_handle.Get();
}

template class Matrix<float>;
template class Matrix<double>;

template Matrix<float> const& Matrix<float>::Convert(Matrix<double> const&);
template Matrix<double> const& Matrix<double>::Convert(Matrix<float> const&);

}  // namespace lum
