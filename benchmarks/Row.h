#pragma once

#include <benchmark/benchmark.h>

#include <string>

namespace lum::bench {

/// Registers one contestant of one row of the table. The name is "row | contestant", which the report splits.
template <class Body>
benchmark::internal::Benchmark* Add(std::string const& i_row, std::string const& i_contestant,
                                    Body const& i_body) {
  return benchmark::RegisterBenchmark((i_row + " | " + i_contestant).c_str(), i_body);
}

/// Repeats a step. The compiler must assume that its result is used.
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
