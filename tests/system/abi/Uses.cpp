// Calls the inline members of exported classes, and what they call in turn: whatever a caller compiles of
// them must find its symbols in the shared library.
#include <geometry/Matrix.h>
#include <geometry/Quaternion.h>

#include <array>
#include <type_traits>
#include <utility>

namespace {

template <class T>
bool UseMatrix() {
  using lum::Matrix;
  Matrix<T> a = Matrix<T>::Translate(1, 2, 3);
  Matrix<T> b = a.GetInverse();
  a = b;
  b = std::move(a);
  a = Matrix<T>(b.GetMatrix(), b.GetMatrixInverse());
  a.Invert().RebuildInverse();
  a *= b.GetTranspose() * b.GetNormalTransform();
  std::array<lum::Point<T, 3>, 2> points{a * lum::Point<T, 3>(1, 2, 3)};
  TransformPoints(a, points, points);
  std::array<lum::Vector<T, 3>, 2> vectors{a * lum::Vector<T, 3>(1, 2, 3)};
  TransformVectors(a, vectors, vectors);
  lum::Matrix<std::conditional_t<std::is_same_v<T, float>, double, float>> const converted(a);
  return a.HasInverse() && b.IsAffine() && a(3, 3) == 1 && !(a == b) && a.GetDeterminant() > 0 &&
         (a * lum::Plane<T>(1, 2, 3, 4)).GetA() < 1 && *a.GetMutableInternal()->data() == *a.GetAsPtr() &&
         a.GetMutableInverseInternal() != nullptr && converted.HasInverse();
}

template <class Object>
bool UsePool() {
  typename lum::PoolTypes<Object>::ObjectPool pool;
  auto const one = pool.CreateObject();
  auto const two = pool.CreateTwoObjects();
  auto const shared = two.first;
  typename lum::PoolTypes<Object>::ObjectPool::Block block;
  auto const slot = block.TakeSlot();
  auto const slots = block.TakeTwoSlots();
  return slot && slots && !block.ReturnSlot(block.GetObject(*slot)) &&
         !block.ReturnTwoSlots(block.GetObject((*slots)[0]), block.GetObject((*slots)[1])) &&
         block.Supersede() && block.GetReferenceCount(0)->load() == 0 && shared.GetReferenceCount() == 2;
}

}  // namespace

int main() {
  bool const matrices = UseMatrix<float>() && UseMatrix<double>();
  bool const pools = UsePool<lum::Matrix<float>::Object>() && UsePool<lum::Matrix<double>::Object>() &&
                     UsePool<lum::Quaternionf::Object>();
  lum::Quaternionf const q;
  std::array<lum::Vector<float, 3>, 2> vectors{q.Transform({1, 2, 3}), q.InverseTransform({1, 2, 3})};
  TransformVectors(q, vectors, vectors);
  bool const rotations = (q * q).GetCoefficients()[3] == 1 && q.IsApproximately(q.Slerp(0.5F, q), 1e-3F) &&
                         lum::Quaternionf(q.GetAsMatrix()).IsApproximately(q, 1e-3F) && q.IsKnownIdentity() &&
                         vectors[0] == vectors[1];
  return matrices && pools && rotations ? 0 : 1;
}
