// The library's denormal results: FlushToZero kept|flushed, or FlushToZero loads <shared object>. Linked with
// -ffast-math, a program or shared object contains a constructor that makes the processor flush them to zero.

#include <dlfcn.h>

#include <bit>
#include <cstdint>
#include <future>
#include <string_view>

#include "Check.h"
#include "geometry/Matrix.h"

namespace {

// Whether the library flushes 1e-40. The bits are looked at, since comparisons flush their operands too.
bool Flushes() {
  auto const small = lum::Matrix<float>::Scale(1e-20F);
  float const product = (small * small)(0, 0);
  auto const bits = std::bit_cast<std::uint32_t>(product);
  lum::test::Check(bits == 0 || bits == 71362, "1e-40 or zero");
  return bits == 0;
}

bool FlushesOnANewThread() { return std::async(std::launch::async, Flushes).get(); }

}  // namespace

int main(int argc, char** argv) {
  lum::test::Check(argc == 2 || argc == 3, "one or two arguments");
  std::string_view const expected = argv[1];
  if (expected == "loads") {
    lum::test::Check(!Flushes(), "denormal results are kept before the object is loaded");
    std::promise<void> loaded;
    auto older_thread = std::async(std::launch::async, [is_loaded = loaded.get_future()] {
      is_loaded.wait();
      return Flushes();
    });
    lum::test::Check(dlopen(argv[2], RTLD_NOW) != nullptr, "the object is loaded");
    loaded.set_value();
    lum::test::Check(Flushes(), "denormal results are flushed once the object is loaded");
    lum::test::Check(FlushesOnANewThread(), "later threads flush them too");
    lum::test::Check(!older_thread.get(), "older threads keep them");
  } else {
    lum::test::Check(Flushes() == (expected == "flushed"), argv[1]);
    lum::test::Check(FlushesOnANewThread() == (expected == "flushed"), "as on a new thread");
  }
  return 0;
}
