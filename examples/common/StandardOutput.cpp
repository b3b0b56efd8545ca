// Linked to every example, so that none needs a line for it: a program whose output is lost, because the disk
// is full or the output closed, prints one line on standard error and ends with status 1.

#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace {

void CheckStandardOutput() {
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return;
  std::fprintf(stderr, "%s: cannot write to standard output\n", program_invocation_short_name);
  std::_Exit(1);
}

// Registered before main begins, and therefore called after everything that main registers.
[[maybe_unused]] int const registered = std::atexit(&CheckStandardOutput);

}  // namespace
