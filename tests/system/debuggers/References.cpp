// No constructor of these values is compiled in this file. clang then leaves their types out of the debug
// information, as it assumes them in another file.

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
