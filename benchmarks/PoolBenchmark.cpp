// One object of 64 bytes with its handle, from each kind of storage: on one thread, between threads, and
// among many live objects.

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <memory_resource>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "Register.h"
#include "Row.h"
#include "geometry/GlobalObjectPool.h"
#include "geometry/Matrix.h"

#ifdef WITH_BOOST
#include <boost/pool/singleton_pool.hpp>
#include <boost/smart_ptr/intrusive_ptr.hpp>
#endif

namespace lum::bench {
namespace {

using Object = Matrix<float>::Object;

#ifdef WITH_BOOST
struct PoolTag {};
struct Counted {
  std::atomic<unsigned long> count{0};
  Object object;
};
using SingletonPool = boost::singleton_pool<PoolTag, sizeof(Counted)>;

void intrusive_ptr_add_ref(Counted* iop_counted) {
  iop_counted->count.fetch_add(1, std::memory_order_relaxed);
}
void intrusive_ptr_release(Counted* iop_counted) {
  if (iop_counted->count.fetch_sub(1, std::memory_order_acq_rel) == 1) SingletonPool::free(iop_counted);
}

boost::intrusive_ptr<Counted> MakeIntrusive() { return new (SingletonPool::malloc()) Counted; }
#endif

std::shared_ptr<Object> MakePooled() {
  static auto* const resource = new std::pmr::synchronized_pool_resource;
  return std::allocate_shared<Object>(std::pmr::polymorphic_allocator<Object>(resource));
}

auto MakeLum() { return CreateGlobalObject<Object>(); }
auto MakeShared() { return std::make_shared<Object>(); }

// Calls a function with the name and the factory of each contestant.
template <class Function>
void ForEach(Function const& i_function) {
  i_function("lum", MakeLum);
  i_function("make_shared", MakeShared);
  i_function("pmr", MakePooled);
#ifdef WITH_BOOST
  i_function("intrusive_ptr + singleton_pool", MakeIntrusive);
#endif
}

// One thread creates 256 objects, the other releases them. `turn` passes the mailbox between the threads:
// each store releases what its thread wrote, and the other thread's load acquires it.
template <class Make>
auto HandOver(Make const& i_make) {
  return [i_make](benchmark::State& io_state) {
    constexpr std::size_t batch = 256;
    using Value = decltype(i_make());
    std::vector<Value> mailbox;
    mailbox.reserve(batch);
    std::atomic<int> turn{0};
    std::jthread releaser([&](std::stop_token const& i_stop) {
      while (!i_stop.stop_requested()) {
        if (turn.load(std::memory_order_acquire) != 1) continue;
        mailbox.clear();
        turn.store(0, std::memory_order_release);
      }
    });
    for ([[maybe_unused]] auto const iteration : io_state) {
      for (std::size_t i = 0; i < batch; ++i) mailbox.push_back(i_make());
      turn.store(1, std::memory_order_release);
      while (turn.load(std::memory_order_acquire) != 0) {
      }
    }
    io_state.SetItemsProcessed(io_state.iterations() * static_cast<std::int64_t>(batch));
  };
}

// Long enough for the scheduler to place the two threads on different processors.
constexpr double kSecondsOnTwoThreads = 0.2;

// Replaces one live object in each iteration. The argument of the benchmark is their number.
template <class Make>
auto ReplaceOneOfMany(Make const& i_make) {
  return [i_make](benchmark::State& io_state) {
    auto const live = static_cast<std::size_t>(io_state.range(0));
    std::vector<decltype(i_make())> values;
    values.reserve(live);
    while (values.size() < live) values.push_back(i_make());
    // A prime stride visits every object and defeats the prefetcher.
    std::size_t next = 0;
    auto const replace_next = [&] {
      values[next] = i_make();
      next = (next + 7919) % values.size();
    };
    // Replaces each object once before the measurement, because the first replacements are not typical.
    for (std::size_t i = 0; i < live; ++i) replace_next();
    for ([[maybe_unused]] auto const iteration : io_state) replace_next();
  };
}

}  // namespace

void Register() {
  ForEach([](char const* ip_who, auto const& i_make) { Add("one object", ip_who, Repeat(i_make)); });
  ForEach([](char const* ip_who, auto const& i_make) {
    Add("one object, two threads", ip_who, Repeat(i_make))
        ->Threads(2)
        ->UseRealTime()
        ->MinTime(kSecondsOnTwoThreads);
  });
  ForEach([](char const* ip_who, auto const& i_make) {
    Add("256 created on one thread, released on another", ip_who, HandOver(i_make))
        ->UseRealTime()
        ->MinTime(kSecondsOnTwoThreads);
  });
  static auto const matrix = Matrix<float>::Translate(1, 2, 3);
  static auto const pair = std::pair(MakeShared(), MakeShared());
  Add("copies of one transform on two threads", "lum", Repeat([] { return matrix; }))
      ->Threads(2)
      ->UseRealTime()
      ->MinTime(kSecondsOnTwoThreads);
  Add("copies of one transform on two threads", "make_shared", Repeat([] { return pair; }))
      ->Threads(2)
      ->UseRealTime()
      ->MinTime(kSecondsOnTwoThreads);
  for (std::int64_t const live : {10, 1000, 100000, 10000000}) {
    constexpr std::int64_t iterations = 1000000;
    std::string const row = "one of " + std::to_string(live) + " live objects replaced";
    Add(row, "lum", ReplaceOneOfMany(MakeLum))->Arg(live)->Iterations(iterations);
    Add(row, "make_shared", ReplaceOneOfMany(MakeShared))->Arg(live)->Iterations(iterations);
  }
}

}  // namespace lum::bench
