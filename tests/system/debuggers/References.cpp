// Values that the library made, so that no constructor of theirs is compiled here: where clang leaves out of
// the debug information what it takes for described elsewhere.

#include "geometry/Matrix.h"
#include "geometry/Plane.h"
#include "geometry/Quaternion.h"
#include "tests/system/debuggers/Stop.h"

namespace {

void Show(lum::Matrix<double> const& i_matrix, lum::Quaternionf const& i_quaternion,
          lum::Plane<double> const& i_plane) {
  StopWith(i_matrix, i_quaternion, i_plane);
}

}  // namespace

int main() {
  Show({}, {}, {0, 0, 2, 10});
  return 0;
}
