#include <benchmark/benchmark.h>

#include <cstdlib>
#include <thread>

#include "Register.h"

// A process that has started a thread once is the normal case: C libraries make do without atomics before
// that. With LUM_BENCHMARK_ALONE set, none is started, and only rows without threads are to be run.
int main(int i_count, char** ip_words) {
  // NOLINTNEXTLINE(concurrency-mt-unsafe): no other thread is there yet
  if (std::getenv("LUM_BENCHMARK_ALONE") == nullptr) std::thread([] {}).join();
  lum::bench::Register();
  benchmark::Initialize(&i_count, ip_words);
  if (benchmark::ReportUnrecognizedArguments(i_count, ip_words)) return 2;
  benchmark::RunSpecifiedBenchmarks();
}
