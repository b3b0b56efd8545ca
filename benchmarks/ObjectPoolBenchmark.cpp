#include <benchmark/benchmark.h>

#include <array>
#include <cstdlib>
#include <memory>

#include "geometry/ObjectPool.h"

namespace lum {
namespace {

using Object = std::array<unsigned long, 8>;
using Pool = ObjectPool<Object, 32, 16>;

Pool& GetPool() {
  static auto* const pool = new Pool;
  return *pool;
}

void TakeAndReturn(benchmark::State& io_state) {
  Pool& pool = GetPool();
  for ([[maybe_unused]] auto const iteration : io_state) {
    auto handle = pool.CreateObject();
    benchmark::DoNotOptimize(handle.Get());
  }
}
BENCHMARK(TakeAndReturn)->ThreadRange(1, 2)->UseRealTime();

void CopyAHandle(benchmark::State& io_state) {
  auto const handle = GetPool().CreateObject();
  for ([[maybe_unused]] auto const iteration : io_state) {
    auto copy = handle;  // NOLINT(performance-unnecessary-copy-initialization): what is measured
    benchmark::DoNotOptimize(copy.Get());
  }
}
BENCHMARK(CopyAHandle);

// What the pool is measured against.
void MakeAndDropASharedPointer(benchmark::State& io_state) {
  for ([[maybe_unused]] auto const iteration : io_state) {
    auto pointer = std::make_shared<Object>();
    benchmark::DoNotOptimize(pointer.get());
  }
}
BENCHMARK(MakeAndDropASharedPointer)->ThreadRange(1, 2)->UseRealTime();

}  // namespace
}  // namespace lum
