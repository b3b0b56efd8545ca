#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace lum::test {

enum class Operation {
  kLoad,
  kStore,
  kExchange,
  kAdd,
  kSubtract,
  kOr,
  kCompareExchange,
  kLock,
  kTryLock,
  kUnlock
};

/// Runs actors, each on its own thread, one atomic or mutex operation at a time.
///
/// At most one actor runs, and only when the test steps it: every operation of the stepped types below stops
/// before it takes effect. So a test replays an exact interleaving, and the mutex of this class orders all
/// accesses to the words of stepped types. Threads that are not actors do not stop.
class Stepper {
 public:
  using Actor = std::size_t;

  Stepper() = default;
  Stepper(Stepper const&) = delete;
  Stepper& operator=(Stepper const&) = delete;
  /// Steps every actor to its end.
  ~Stepper() {
    for (std::size_t round = 0; round < kStepLimit; ++round) {
      for (auto const& state : m_actors) Step(*state);
    }
    for (auto const& state : m_actors) state->thread.join();
  }

  /// Starts an actor, which runs up to its first operation.
  Actor Add(std::function<void()> i_body) {
    m_actors.push_back(std::make_unique<State>());
    State& state = *m_actors.back();
    state.stepper = this;
    state.is_running = true;
    state.thread = std::thread([this, &state, body = std::move(i_body)] {
      Current() = &state;
      body();
      std::lock_guard<std::mutex> const lock(m_mutex);
      state.is_done = true;
      state.is_running = false;
      m_changed.notify_all();
    });
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait(lock, [&state] { return !state.is_running; });
    return m_actors.size() - 1;
  }

  /// Steps the actor until its next operation is this one. Returns false if it ends or blocks on a lock
  /// first.
  bool RunTo(Actor i_actor, Operation i_operation, void const* ip_address) {
    State& state = *m_actors[i_actor];
    for (std::size_t step = 0; step < kStepLimit; ++step) {
      if (!state.is_done && state.operation == i_operation && state.address == ip_address) return true;
      if (!Step(state)) return false;
    }
    return false;
  }

  /// Makes one step. Returns false if the actor has ended or is blocked.
  bool Step(Actor i_actor) { return Step(*m_actors[i_actor]); }

  /// Steps the actor to its end. Returns false if it blocks on a lock first.
  bool Finish(Actor i_actor) {
    State& state = *m_actors[i_actor];
    for (std::size_t step = 0; step < kStepLimit && Step(state); ++step) {
    }
    return state.is_done;
  }

  /// The stepped types call this before each operation. `ip_is_held` is the state of a mutex.
  static void Announce(Operation i_operation, void const* ip_address, bool const* ip_is_held = nullptr) {
    if (Current() != nullptr) Current()->stepper->Stop(*Current(), i_operation, ip_address, ip_is_held);
    if (Scheduler()) Scheduler()(i_operation, ip_is_held);
    if (Observer()) Observer()(ip_address);
  }

  /// Called before every operation, and returns when that may take effect: an alternative to the scheduling
  /// of this class.
  static std::function<void(Operation, bool const*)>& Scheduler() {
    static std::function<void(Operation, bool const*)> scheduler;
    return scheduler;
  }

  /// Called with the address of every operation, immediately before it takes effect.
  static std::function<void(void const*)>& Observer() {
    static std::function<void(void const*)> observer;
    return observer;
  }

 private:
  // More steps than any test needs, which bounds an actor that spins.
  static constexpr std::size_t kStepLimit = 5000;

  struct State {
    std::thread thread;
    Stepper* stepper = nullptr;
    Operation operation{};
    void const* address = nullptr;
    bool const* is_held = nullptr;  // the state of the mutex that the next operation is on
    bool is_running = false;
    bool is_done = false;
  };

  static State*& Current() {
    thread_local State* current = nullptr;
    return current;
  }

  bool Step(State& io_state) {
    std::unique_lock<std::mutex> lock(m_mutex);
    if (io_state.is_done || (io_state.operation == Operation::kLock && *io_state.is_held)) return false;
    io_state.is_running = true;
    m_changed.notify_all();
    m_changed.wait(lock, [&io_state] { return !io_state.is_running; });
    return true;
  }

  void Stop(State& io_state, Operation i_operation, void const* ip_address, bool const* ip_is_held) {
    std::unique_lock<std::mutex> lock(m_mutex);
    io_state.operation = i_operation;
    io_state.address = ip_address;
    io_state.is_held = ip_is_held;
    io_state.is_running = false;
    m_changed.notify_all();
    m_changed.wait(lock, [&io_state] { return io_state.is_running; });
  }

  // Guards the states of all actors.
  std::mutex m_mutex;
  std::condition_variable m_changed;
  std::vector<std::unique_ptr<State>> m_actors;
};

/// The replays model sequential consistency only, and abort on any weaker memory order. Acquire loads and
/// release stores are accepted: the comments at the declarations of the words argue for them.
inline void DemandOrder(std::memory_order i_order, std::memory_order i_weakest = std::memory_order_seq_cst) {
  if (i_order == std::memory_order_seq_cst || i_order == i_weakest) return;
  std::fputs("a stepped operation has a weaker memory order than the replays model\n", stderr);
  std::abort();
}

template <class Word>
class SteppedAtomicRef {
 public:
  explicit SteppedAtomicRef(Word& io_word) : m_word(io_word) {}

  Word load(std::memory_order i_order = std::memory_order_seq_cst) const {
    DemandOrder(i_order, std::memory_order_acquire);
    return At(Operation::kLoad);
  }
  void store(Word i_value, std::memory_order i_order = std::memory_order_seq_cst) const {
    DemandOrder(i_order, std::memory_order_release);
    At(Operation::kStore) = i_value;
  }
  Word exchange(Word i_value, std::memory_order i_order = std::memory_order_seq_cst) const {
    DemandOrder(i_order);
    return std::exchange(At(Operation::kExchange), i_value);
  }
  Word fetch_add(Word i_value, std::memory_order i_order = std::memory_order_seq_cst) const {
    DemandOrder(i_order);
    Word& word = At(Operation::kAdd);
    return std::exchange(word, word + i_value);
  }
  Word fetch_sub(Word i_value, std::memory_order i_order = std::memory_order_seq_cst) const {
    DemandOrder(i_order);
    Word& word = At(Operation::kSubtract);
    return std::exchange(word, word - i_value);
  }
  Word fetch_or(Word i_value, std::memory_order i_order = std::memory_order_seq_cst) const {
    DemandOrder(i_order);
    Word& word = At(Operation::kOr);
    return std::exchange(word, word | i_value);
  }
  bool compare_exchange_strong(Word& io_expected, Word i_value,
                               std::memory_order i_order = std::memory_order_seq_cst) const {
    DemandOrder(i_order);
    Word& word = At(Operation::kCompareExchange);
    if (word != io_expected) {
      io_expected = word;
      return false;
    }
    word = i_value;
    return true;
  }

 private:
  Word& At(Operation i_operation) const {
    Stepper::Announce(i_operation, &m_word);
    return m_word;
  }

  Word& m_word;
};

template <class Word>
class SteppedAtomic {
 public:
  using Order = std::memory_order;

  SteppedAtomic(Word i_value = 0) : m_word(i_value) {}

  Word load(Order i_order = Order::seq_cst) const { return Ref().load(i_order); }
  void store(Word i_value, Order i_order = Order::seq_cst) { Ref().store(i_value, i_order); }
  Word fetch_add(Word i_value, Order i_order = Order::seq_cst) { return Ref().fetch_add(i_value, i_order); }
  Word fetch_sub(Word i_value, Order i_order = Order::seq_cst) { return Ref().fetch_sub(i_value, i_order); }
  Word fetch_or(Word i_value, Order i_order = Order::seq_cst) { return Ref().fetch_or(i_value, i_order); }
  bool compare_exchange_strong(Word& io_expected, Word i_value, Order i_order = Order::seq_cst) {
    return Ref().compare_exchange_strong(io_expected, i_value, i_order);
  }

 private:
  SteppedAtomicRef<Word> Ref() const { return SteppedAtomicRef<Word>(m_word); }

  mutable Word m_word;
};

/// A mutex whose blocked actors the stepper sees, and which can fail on demand.
class SteppedMutex {
 public:
  void lock() {
    Stepper::Announce(Operation::kLock, this, &m_is_held);
    if (m_locks_before_failure == 0) throw std::runtime_error("the mutex cannot be locked");
    if (m_locks_before_failure > 0) --m_locks_before_failure;
    if (m_is_held) throw std::logic_error("deadlock");
    m_is_held = true;
  }
  bool try_lock() {
    Stepper::Announce(Operation::kTryLock, this, &m_is_held);
    return !std::exchange(m_is_held, true);
  }
  void unlock() {
    Stepper::Announce(Operation::kUnlock, this);
    m_is_held = false;
  }

  /// The next `i_locks` locks succeed and all later ones throw. With a negative number, no lock throws.
  void FailAfter(int i_locks) { m_locks_before_failure = i_locks; }

 private:
  bool m_is_held = false;
  int m_locks_before_failure = -1;
};

/// Makes the library's own pools run on stepped words and mutexes.
struct SteppedPolicy {
  template <class Word>
  using Atomic = SteppedAtomic<Word>;
  template <class Word>
  using AtomicRef = SteppedAtomicRef<Word>;
  using Mutex = SteppedMutex;
};

}  // namespace lum::test
