// A forked child of a single-threaded process makes, changes and destroys values of its own. The parent's
// values do not change.

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
      lum::test::Check(shared(0, 3) == 7, "the child reads what it wrote");
      lum::test::Check(before(0, 3) == 1, "the child writes a copy");
      lum::test::CheckIdentities();
      _exit(0);
    }
    int status = -1;
    lum::test::Check(waitpid(child, &status, 0) == child, "waitpid");
    lum::test::Check(status == 0, "the child succeeds");
    lum::test::Check(shared(0, 3) == 1, "the parent's values do not change");
    lum::test::CheckIdentities();
  }
  return 0;
}
