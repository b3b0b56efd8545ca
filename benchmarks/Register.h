#pragma once

namespace lum::bench {

/// Registers the benchmarks of a program. Each program defines this function.
void Register();

}  // namespace lum::bench
