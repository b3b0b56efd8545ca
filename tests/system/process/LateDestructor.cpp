// Objects that were constructed before the library was ever used are destroyed after whatever it might
// destroy at exit. Their destructors, and functions registered with atexit, still find valid identities.

#include <cstdlib>

#include "Check.h"

namespace {

struct UsesLumAtItsEnd {
  ~UsesLumAtItsEnd() { lum::test::CheckIdentities(); }
};

UsesLumAtItsEnd const constructed_first;

// Keeps shared identities until after main: they are released late, into pools that are still there.
lum::Matrix<float>* held = nullptr;
struct ReleasesAtItsEnd {
  ~ReleasesAtItsEnd() { delete held; }
};
ReleasesAtItsEnd const releases;

}  // namespace

int main() {
  std::atexit([] { lum::test::CheckIdentities(); });
  lum::test::CheckIdentities();
  held = new lum::Matrix<float>();
  return 0;
}
