#pragma once

namespace lum::bench {

/// Registers the rows of a program; each program defines its own.
void Register();

}  // namespace lum::bench
