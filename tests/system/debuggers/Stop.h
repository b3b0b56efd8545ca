#pragma once

/// Where the debuggers break. Not inlined, and not without effect: a breakpoint finds it in any build.
__attribute__((noinline)) inline void Stop() { asm volatile(""); }

/// Keeps values in memory, where a debugger finds them, and stops two frames below its caller's.
template <class... Values>
__attribute__((noinline)) void StopWith(Values const&... i_values) {
  (static_cast<void>(i_values), ...);
  Stop();
}
