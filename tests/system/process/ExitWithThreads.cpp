// Threads make, share, copy and destroy values while main calls exit. Every check holds until the process
// ends, also in the destructors that exit runs. Main calls exit after each thread's first round, so they
// overlap.

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>

#include "Check.h"

namespace {

std::atomic<int> begun{0};
lum::Matrix<double> const shared = lum::Matrix<double>::Translate(1, 2, 3);

// Destroyed while the threads run.
struct WaitsOnDestruction {
  ~WaitsOnDestruction() {
    lum::test::CheckIdentities();
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
  }
};
WaitsOnDestruction const waits;

}  // namespace

int main() {
  for (int thread = 0; thread < 4; ++thread) {
    std::thread([own = shared]() mutable {
      for (;;) {
        own = lum::Matrix<double>::Translate(1, 2, 3).GetInverse();
        lum::Matrix<double> const product = own * lum::Matrix<double>::Translate(1, 2, 3);
        for (int row = 0; row < 3; ++row) {
          lum::test::Check(product(row, 3) == 0, "a transform times its inverse translates by 0");
        }
        lum::test::CheckIdentities();
        ++begun;
      }
    }).detach();
  }
  while (begun < 4) std::this_thread::yield();
  std::exit(0);
}
