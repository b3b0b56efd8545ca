// A detached thread goes on using values while main returns and the statics are destroyed. It may be cut off
// at any point by the end of the process; until then every check holds. Main waits until it has begun, so the
// two overlap; the thread's rounds are bounded.

#include <atomic>
#include <chrono>
#include <thread>

#include "Check.h"

namespace {

std::atomic<bool> has_begun{false};

// Destroyed while the thread runs, after the library's statics would be: gives it time to go on.
struct WaitsAtItsEnd {
  ~WaitsAtItsEnd() { std::this_thread::sleep_for(std::chrono::milliseconds(100)); }
};
WaitsAtItsEnd const waits;

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
