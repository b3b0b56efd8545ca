// Values at namespace scope in two files, built before main in either link order, and checked again when they
// are about to go.

#include "NamespaceScope.h"

#include "Check.h"

namespace {

lum::Matrix<float> const own = lum::Matrix<float>::Rotate({0, 0, 1}, 1);
lum::Quaternionf const own_rotation = lum::Quaternionf(own) * lum::Quaternionf();

void CheckAll() {
  lum::test::Check(own.HasInverse(), "own");
  lum::test::Check(!own_rotation.IsKnownIdentity(), "own_rotation");
  lum::test::CheckIdentities();
}

struct ChecksAtItsEnd {
  ~ChecksAtItsEnd() { CheckAll(); }
};
ChecksAtItsEnd const checks;

}  // namespace

int main() {
  CheckAll();
  lum::test::Check(translation(2, 3) == 3, "translation");
  lum::test::Check(product(0, 3) == -1 && product(0, 0) == 2 && product.HasInverse(), "product");
  lum::test::Check(rotation.GetCoefficients()[3] > 0.8F, "rotation");
  lum::test::Check(default_matrix.IsKnownIdentity(), "default_matrix");
  return 0;
}
