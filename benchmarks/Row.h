#pragma once

#include <benchmark/benchmark.h>

#include <string>

namespace lum::bench {

/// Registers what one contestant does in one row of the table. The name is "row | contestant", which is what
/// the report takes apart.
template <class Body>
benchmark::internal::Benchmark* Add(std::string const& i_row, std::string const& i_who, Body const& i_body) {
  return benchmark::RegisterBenchmark((i_row + " | " + i_who).c_str(), i_body);
}

/// Repeats a step, and keeps the compiler from leaving out what it makes.
template <class Step>
auto Repeat(Step i_step) {
  return [i_step](benchmark::State& io_state) {
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): a step may change what it has captured
    auto step = i_step;
    for ([[maybe_unused]] auto const iteration : io_state) {
      auto result = step();
      benchmark::DoNotOptimize(result);
    }
  };
}

/// "float" or "double".
template <class T>
std::string GetName();
template <>
inline std::string GetName<float>() {
  return "float";
}
template <>
inline std::string GetName<double>() {
  return "double";
}

}  // namespace lum::bench
