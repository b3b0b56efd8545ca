// Threads make, share, copy and drop values while main calls exit: until the process is gone every check
// holds, in the destructors that run meanwhile too.

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>

#include "Check.h"

namespace {

std::atomic<int> begun{0};
lum::Matrix<double> const shared = lum::Matrix<double>::Translate(1, 2, 3);

// Destroyed while the threads run: gives them time to go on.
struct WaitsAtItsEnd {
  ~WaitsAtItsEnd() {
    lum::test::CheckIdentities();
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
  }
};
WaitsAtItsEnd const waits;

}  // namespace

int main() {
  for (int thread = 0; thread < 4; ++thread) {
    std::thread([own = shared]() mutable {
      for (;;) {
        own = lum::Matrix<double>::Translate(1, 2, 3).GetInverse();
        lum::Matrix<double> const product = own * lum::Matrix<double>::Translate(1, 2, 3);
        lum::test::Check(product(0, 3) == 0 && product(1, 3) == 0 && product(2, 3) == 0, "the product");
        lum::test::CheckIdentities();
        ++begun;
      }
    }).detach();
  }
  while (begun < 4) std::this_thread::yield();
  std::exit(0);
}
