// Thread-local values use the library when their thread ends: a second thread first, the main one at exit.

#include <thread>

#include "Check.h"

namespace {

struct UsesLumAtItsEnd {
  lum::Matrix<double> matrix = lum::Matrix<double>::Translate(1, 2, 3);
  ~UsesLumAtItsEnd() {
    lum::test::CheckIdentities();
    lum::test::Check(matrix(0, 3) == 1, "a thread-local matrix keeps its values");
  }
};

thread_local UsesLumAtItsEnd value;

void Use() { lum::test::Check(value.matrix.HasInverse(), "a thread-local matrix holds its inverse"); }

}  // namespace

int main() {
  std::thread(Use).join();
  Use();
  return 0;
}
