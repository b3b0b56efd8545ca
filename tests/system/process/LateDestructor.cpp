// Objects constructed before the first use of the library are destroyed after anything that it could destroy
// at exit. Their destructors, and functions registered with atexit, find valid identities.

#include <cstdlib>

#include "Check.h"

namespace {

struct UsesLumOnDestruction {
  ~UsesLumOnDestruction() { lum::test::CheckIdentities(); }
};

UsesLumOnDestruction const constructed_first;

// Releases a shared identity after main, when the pools still exist.
lum::Matrix<float>* held = nullptr;
struct ReleasesOnDestruction {
  ~ReleasesOnDestruction() { delete held; }
};
ReleasesOnDestruction const releases;

}  // namespace

int main() {
  std::atexit([] { lum::test::CheckIdentities(); });
  lum::test::CheckIdentities();
  held = new lum::Matrix<float>();
  return 0;
}
