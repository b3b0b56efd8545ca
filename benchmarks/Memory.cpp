// What a million live objects of 64 bytes take, beyond the handles onto them: Memory lum|make_shared

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "geometry/GlobalObjectPool.h"

namespace {

using Object = lum::Matrix<float>::Object;

// In bytes, of all pages that the process holds.
long GetResidentSize() {
  std::ifstream statistics("/proc/self/statm");
  long pages = 0;
  statistics >> pages >> pages;
  return pages * 4096;
}

// The handles are there before the first object is, so that they do not count.
template <class Make>
double GetBytesEach(Make const& i_make) {
  constexpr std::size_t count = 1000000;
  std::vector<decltype(i_make())> values(count);
  long const before = GetResidentSize();
  std::generate(values.begin(), values.end(), i_make);
  return static_cast<double>(GetResidentSize() - before) / static_cast<double>(count);
}

Object* Touch(Object* op_object) {
  op_object->matrix().setZero();
  return op_object;
}

}  // namespace

int main(int i_count, char** ip_words) {
  std::string const who = i_count == 2 ? ip_words[1] : "";
  double bytes = 0;
  if (who == "lum") {
    bytes = GetBytesEach([] {
      auto handle = lum::CreateGlobalObject<Object>();
      Touch(handle.Get());
      return handle;
    });
  } else if (who == "make_shared") {
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
