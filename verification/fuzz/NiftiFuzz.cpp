// Arbitrary bytes as a NIfTI file: it is refused by an error of one line, or its volume can be sliced.

#include "UseVolume.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* ip_data, std::size_t i_size) {
  std::optional<common::Volume> const volume = lum::test::ReadFile({ip_data, i_size});
  if (volume) lum::test::UseSlice(*volume, {.size = 4});
  return 0;
}
