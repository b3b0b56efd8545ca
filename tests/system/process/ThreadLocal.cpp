// Thread-local values use the library when their thread ends: first a second thread, then the main one at
// exit.

#include <thread>

#include "Check.h"

namespace {

struct UsesLumOnDestruction {
  lum::Matrix<double> matrix = lum::Matrix<double>::Translate(1, 2, 3);
  ~UsesLumOnDestruction() {
    lum::test::CheckIdentities();
    lum::test::Check(matrix(0, 3) == 1, "a thread-local matrix keeps its values");
  }
};

thread_local UsesLumOnDestruction value;

void Use() { lum::test::Check(value.matrix.HasInverse(), "a thread-local matrix holds its inverse"); }

}  // namespace

int main() {
  std::thread(Use).join();
  Use();
  return 0;
}
