#pragma once

/// Where the debuggers break. Neither inlined nor optimised away, so that a breakpoint finds it in any build.
__attribute__((noinline)) inline void Stop() { asm volatile(""); }

/// Keeps values in memory for the debugger, and stops two frames below the caller.
template <class... Values>
__attribute__((noinline)) void StopWith(Values const&... i_values) {
  (static_cast<void>(i_values), ...);
  Stop();
}
