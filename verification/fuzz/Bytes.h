#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace lum::test {

/// Ends the process with one line unless the condition holds; the fuzzer reports that as a finding.
inline void Require(bool i_holds, char const* ip_what) {
  if (i_holds) return;
  std::fprintf(stderr, "failed: %s\n", ip_what);
  std::abort();
}

/// Values read from the fuzzer's input; zeros past its end.
class Bytes {
 public:
  Bytes(std::uint8_t const* ip_data, std::size_t i_size) : mp_data(ip_data), m_left(i_size) {}

  bool IsAtEnd() const { return m_left == 0; }

  template <class T>
  T Take() {
    T value{};
    std::size_t const size = sizeof(T) < m_left ? sizeof(T) : m_left;
    if (size > 0) std::memcpy(&value, mp_data, size);
    mp_data += size;
    m_left -= size;
    return value;
  }

  bool TakeFlag() { return Take<std::uint8_t>() % 2 == 1; }
  std::size_t TakeIndex(std::size_t i_count) { return Take<std::uint8_t>() % i_count; }

 private:
  std::uint8_t const* mp_data;
  std::size_t m_left;
};

}  // namespace lum::test
