// Values at namespace scope in two files, constructed before main in either link order. They are checked in
// main and before they are destroyed.

#include "NamespaceScope.h"

#include "Check.h"

namespace {

lum::Matrix<float> const own = lum::Matrix<float>::Rotate({0, 0, 1}, 1);
lum::Quaternionf const own_rotation = lum::Quaternionf(own) * lum::Quaternionf();

void CheckAll() {
  lum::test::Check(own.HasInverse(), "own has an inverse");
  lum::test::Check(!own_rotation.IsKnownIdentity(), "own_rotation is not the known identity");
  lum::test::CheckIdentities();
}

struct ChecksOnDestruction {
  ~ChecksOnDestruction() { CheckAll(); }
};
ChecksOnDestruction const checks;

}  // namespace

int main() {
  CheckAll();
  lum::test::Check(translation(2, 3) == 3, "translation holds its z");
  lum::test::Check(product(0, 3) == -1, "product holds its translation");
  lum::test::Check(product(0, 0) == 2, "product holds its scale");
  lum::test::Check(product.HasInverse(), "product has an inverse");
  lum::test::Check(rotation.GetCoefficients()[3] > 0.8F, "rotation holds its coefficients");
  lum::test::Check(default_matrix.IsKnownIdentity(), "default_matrix is the known identity");
  return 0;
}
