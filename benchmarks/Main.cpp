#include <benchmark/benchmark.h>

#include <cstdlib>
#include <thread>

#include "Register.h"

// C libraries omit atomic operations until a process starts its first thread, and most programs have started
// one. With LUM_BENCHMARK_ALONE set, none is started; then only rows without threads may run.
int main(int i_count, char** ip_words) {
  // NOLINTNEXTLINE(concurrency-mt-unsafe): there is no other thread yet
  if (std::getenv("LUM_BENCHMARK_ALONE") == nullptr) std::thread([] {}).join();
  lum::bench::Register();
  benchmark::Initialize(&i_count, ip_words);
  if (benchmark::ReportUnrecognizedArguments(i_count, ip_words)) return 2;
  benchmark::RunSpecifiedBenchmarks();
}
