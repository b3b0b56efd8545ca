#pragma once

#include <ucontext.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/Stepping.h"

namespace lum::test {

/// Runs small programs of a few actors under every interleaving of their atomic and mutex operations, or
/// under random interleavings.
///
/// The actors are coroutines on one thread. Before each operation of a stepped type the exploration decides
/// which actor continues, so an execution is the list of its decisions. A *preemption* is a switch away from
/// an actor that could have continued. Depth-first search repeats a program until every list of decisions
/// with a bounded number of preemptions has been run. An actor whose try_lock fails would spin; it waits
/// until another actor has made a step, which does not count as a preemption.
///
/// The executions are sequentially consistent, as are all operations whose results pools and handles act on.
class Exploration {
 public:
  /// `start` makes the actors of one execution; `finish` checks its end.
  struct Program {
    std::function<std::vector<std::function<void()>>()> start;
    std::function<void()> finish;
  };

  Exploration() {
    Stepper::Scheduler() = [this](Operation i_operation, bool const* ip_is_held) {
      if (mp_current != nullptr) Stop(i_operation, ip_is_held);
    };
  }
  Exploration(Exploration const&) = delete;
  Exploration& operator=(Exploration const&) = delete;
  ~Exploration() { Stepper::Scheduler() = nullptr; }

  /// Runs every interleaving with at most `i_preemptions`, until `i_is_failed` returns true. Returns the
  /// number of executions.
  std::size_t SearchAll(Program const& i_program, std::size_t i_preemptions,
                        std::function<bool()> const& i_is_failed) {
    m_decisions.clear();
    std::size_t executions = 0;
    do {
      m_decided = 0;
      m_preemptions_left = i_preemptions;
      Execute(i_program, [this](std::size_t i_choices) { return DecideNext(i_choices); });
      ++executions;
    } while (!m_is_stuck && !i_is_failed() && Backtrack());
    return executions;
  }

  /// Runs random interleavings, with any number of preemptions.
  std::size_t WalkRandomly(Program const& i_program, std::size_t i_executions, unsigned i_seed,
                           std::function<bool()> const& i_is_failed) {
    std::mt19937 random(i_seed);
    for (std::size_t execution = 0; execution < i_executions; ++execution) {
      m_preemptions_left = std::numeric_limits<std::size_t>::max();
      Execute(i_program, [&random](std::size_t i_choices) { return random() % i_choices; });
      if (m_is_stuck || i_is_failed()) return execution + 1;
    }
    return i_executions;
  }

  /// Whether an execution ended in a deadlock, or did not end.
  bool IsStuck() const { return m_is_stuck; }

  /// The actor of each step of the last execution, a letter each.
  std::string const& GetSchedule() const { return m_schedule; }

 private:
  // More steps than any program needs.
  static constexpr std::size_t kStepLimit = 5000;
  static constexpr std::size_t kStackSize = std::size_t{128} * 1024;

  struct Actor {
    ucontext_t context{};
    std::unique_ptr<std::array<char, kStackSize>> stack;
    std::function<void()> body;
    Operation operation{};
    bool const* is_held = nullptr;  // the state of the mutex that the next operation is on
    unsigned waits_for = 0;         // while it spins: bits of the actors that must step first
    bool is_done = false;
  };

  struct Decision {
    std::size_t chosen;
    std::size_t choices;
  };

  template <class Decide>
  void Execute(Program const& i_program, Decide const& i_decide) {
    m_schedule.clear();
    std::vector<std::function<void()>> bodies = i_program.start();
    while (m_actors.size() < bodies.size()) {
      m_actors.push_back(std::make_unique<Actor>());
      m_actors.back()->stack = std::make_unique<std::array<char, kStackSize>>();
    }
    m_running = bodies.size();
    for (std::size_t index = 0; index < m_running; ++index) Begin(*m_actors[index], std::move(bodies[index]));

    Actor* last = nullptr;
    for (std::size_t step = 0; step < kStepLimit; ++step) {
      std::vector<Actor*> const choices = GetChoices(last);
      if (choices.empty()) break;
      std::size_t const chosen = choices.size() == 1 ? 0 : i_decide(choices.size());
      if (last != nullptr && choices.front() == last && chosen > 0) --m_preemptions_left;
      last = choices[chosen];
      unsigned const bit = 1U << IndexOf(*last);
      for (std::size_t index = 0; index < m_running; ++index) m_actors[index]->waits_for &= ~bit;
      bool const will_spin = last->operation == Operation::kTryLock && *last->is_held;
      last->waits_for = will_spin ? ~bit : 0;
      m_schedule += static_cast<char>('a' + IndexOf(*last));
      Resume(*last);
    }
    m_is_stuck = std::any_of(m_actors.begin(), m_actors.begin() + static_cast<std::ptrdiff_t>(m_running),
                             [](auto const& i_actor) { return !i_actor->is_done; });
    if (!m_is_stuck) i_program.finish();
  }

  // The actors that can continue; the actor of the last step comes first.
  std::vector<Actor*> GetChoices(Actor* ip_last) const {
    unsigned ready = 0;
    for (std::size_t index = 0; index < m_running; ++index) {
      Actor const& actor = *m_actors[index];
      bool const is_blocked = actor.operation == Operation::kLock && *actor.is_held;
      if (!actor.is_done && !is_blocked) ready |= 1U << index;
    }
    std::vector<Actor*> choices;
    for (std::size_t index = 0; index < m_running; ++index) {
      Actor* const actor = m_actors[index].get();
      if ((ready >> index & 1U) == 0 || (actor->waits_for & ready) != 0) continue;
      choices.insert(actor == ip_last ? choices.begin() : choices.end(), actor);
    }
    if (m_preemptions_left == 0 && !choices.empty() && choices.front() == ip_last) choices.resize(1);
    return choices;
  }

  std::size_t DecideNext(std::size_t i_choices) {
    if (m_decided == m_decisions.size()) m_decisions.push_back({0, i_choices});
    return m_decisions[m_decided++].chosen;
  }

  // Sets the next list of decisions; returns false if there is none.
  bool Backtrack() {
    while (!m_decisions.empty() && m_decisions.back().chosen + 1 == m_decisions.back().choices) {
      m_decisions.pop_back();
    }
    if (m_decisions.empty()) return false;
    ++m_decisions.back().chosen;
    return true;
  }

  // Runs the actor up to its first operation.
  void Begin(Actor& io_actor, std::function<void()> i_body) {
    io_actor.body = std::move(i_body);
    io_actor.operation = {};
    io_actor.waits_for = 0;
    io_actor.is_done = false;
    getcontext(&io_actor.context);
    io_actor.context.uc_stack.ss_sp = io_actor.stack->data();
    io_actor.context.uc_stack.ss_size = io_actor.stack->size();
    io_actor.context.uc_link = &m_scheduler;
    Starting() = this;
    makecontext(&io_actor.context, &RunCurrent, 0);
    Resume(io_actor);
  }

  static void RunCurrent() {
    Actor& actor = *Starting()->mp_current;
    actor.body();
    actor.is_done = true;
  }

  void Resume(Actor& io_actor) {
    mp_current = &io_actor;
    swapcontext(&m_scheduler, &io_actor.context);
    mp_current = nullptr;
  }

  void Stop(Operation i_operation, bool const* ip_is_held) {
    Actor& actor = *mp_current;
    actor.operation = i_operation;
    actor.is_held = ip_is_held;
    swapcontext(&actor.context, &m_scheduler);
  }

  std::size_t IndexOf(Actor const& i_actor) const {
    std::size_t index = 0;
    while (m_actors[index].get() != &i_actor) ++index;
    return index;
  }

  // The exploration that starts an actor: makecontext passes no pointers.
  static Exploration*& Starting() {
    static Exploration* starting = nullptr;
    return starting;
  }

  ucontext_t m_scheduler{};
  std::vector<std::unique_ptr<Actor>> m_actors;
  std::size_t m_running = 0;
  Actor* mp_current = nullptr;
  std::vector<Decision> m_decisions;
  std::size_t m_decided = 0;
  std::size_t m_preemptions_left = 0;
  std::string m_schedule;
  bool m_is_stuck = false;
};

}  // namespace lum::test
