// A detached thread uses values while main returns and statics are destroyed. Every check holds until the
// process ends. Main returns only after the thread's first round, so the two overlap.

#include <atomic>
#include <chrono>
#include <thread>

#include "Check.h"

namespace {

std::atomic<bool> has_begun{false};

// Destroyed after the library's statics would be: the thread runs on meanwhile.
struct WaitsOnDestruction {
  ~WaitsOnDestruction() { std::this_thread::sleep_for(std::chrono::milliseconds(100)); }
};
WaitsOnDestruction const waits;

}  // namespace

int main() {
  std::thread([] {
    for (int round = 0; round < 100000; ++round) {
      lum::test::CheckIdentities();
      has_begun = true;
    }
  }).detach();
  while (!has_begun) std::this_thread::yield();
  return 0;
}
