// Prints the bytes that each of a million live objects of 64 bytes takes besides its handle:
// Memory lum|make_shared

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "geometry/GlobalObjectPool.h"

namespace {

using Object = lum::MatrixPoolTypes<float>::Object;

// The resident pages of the process, in bytes.
long GetResidentSize() {
  std::ifstream statistics("/proc/self/statm");
  long pages = 0;
  statistics >> pages >> pages;
  return pages * 4096;
}

// The vector's handles exist before the first measurement, so they are not counted.
template <class Make>
double GetBytesEach(Make const& i_make) {
  constexpr std::size_t count = 1000000;
  std::vector<decltype(i_make())> values(count);
  long const before = GetResidentSize();
  std::generate(values.begin(), values.end(), i_make);
  return static_cast<double>(GetResidentSize() - before) / static_cast<double>(count);
}

// Writes the object, so that its pages become resident.
void Touch(Object* op_object) { op_object->matrix().setZero(); }

}  // namespace

int main(int i_count, char** ip_words) {
  std::string const contestant = i_count == 2 ? ip_words[1] : "";
  double bytes = 0;
  if (contestant == "lum") {
    bytes = GetBytesEach([] {
      auto handle = lum::CreateGlobalObject<Object>();
      Touch(handle.Get());
      return handle;
    });
  } else if (contestant == "make_shared") {
    bytes = GetBytesEach([] {
      auto pointer = std::make_shared<Object>();
      Touch(pointer.get());
      return pointer;
    });
  } else {
    std::cerr << "usage: Memory lum|make_shared\n";
    return 2;
  }
  std::cout << bytes << '\n';
}
