// A child of a process of one thread has values of its own: it makes, changes and drops them, and the
// parent's stay as they were.

#include <sys/wait.h>
#include <unistd.h>

#include "Check.h"

int main() {
  lum::Matrix<float> const before = lum::Matrix<float>::Translate(1, 2, 3);
  lum::Matrix<float> shared = before;
  for (int round = 0; round < 20; ++round) {
    pid_t const child = fork();
    lum::test::Check(child >= 0, "fork");
    if (child == 0) {
      shared.GetMutableInternal()->translation().x() = 7;
      lum::test::Check(shared(0, 3) == 7 && before(0, 3) == 1, "the child writes a copy of its own");
      lum::test::CheckIdentities();
      _exit(0);
    }
    int status = -1;
    lum::test::Check(waitpid(child, &status, 0) == child && status == 0, "the child ended well");
    lum::test::Check(shared(0, 3) == 1, "the parent's values stay");
    lum::test::CheckIdentities();
  }
  return 0;
}
