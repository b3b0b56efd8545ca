// quick_exit runs the functions registered for it and no destructors, while other threads use values.

#include <atomic>
#include <cstdlib>
#include <thread>

#include "Check.h"

namespace {

std::atomic<int> begun{0};

struct FailsOnDestruction {
  ~FailsOnDestruction() { lum::test::Check(false, "quick_exit runs no destructor"); }
};
FailsOnDestruction const fails;

}  // namespace

int main() {
  lum::test::Check(std::at_quick_exit([] { lum::test::CheckIdentities(); }) == 0, "at_quick_exit");
  for (int thread = 0; thread < 2; ++thread) {
    std::thread([] {
      for (;;) {
        lum::test::CheckIdentities();
        ++begun;
      }
    }).detach();
  }
  while (begun < 2) std::this_thread::yield();
  std::quick_exit(0);
}
