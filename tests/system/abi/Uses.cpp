// Calls the inline members of exported classes, and what they call in turn: whatever a caller compiles of
// them must find its symbols in the shared library.
#include <geometry/Matrix.h>
#include <geometry/Quaternion.h>

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
  return std::move(a).GetInverse().HasInverse() && b.IsAffine();
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
  return matrices && pools && (q * q).GetCoefficients()[3] == 1 ? 0 : 1;
}
