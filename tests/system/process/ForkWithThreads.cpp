// A forked child of a multi-threaded process may read, apply, copy, invert and destroy the values that it
// has. None of that takes a lock, which a thread that the child does not have might hold. Making objects
// takes a lock, so the child makes none.

#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <thread>
#include <vector>

#include "Check.h"

namespace {

void UseWithoutMaking(lum::Matrix<float> const& i_matrix, std::vector<lum::Matrix<float>>& io_own) {
  lum::Matrix<float> const copy = i_matrix;
  auto const [x, y, z] = copy * lum::Point<float, 3>(1, 1, 1);
  auto const [u, v, w] = copy.GetInverse() * lum::Point<float, 3>(x, y, z);
  lum::test::Check(x == 2, "the x of the point transformed by the child");
  lum::test::Check(y == 3, "the y of the point transformed by the child");
  lum::test::Check(z == 4, "the z of the point transformed by the child");
  lum::test::Check(u == 1, "the x of the point transformed back by the child");
  lum::test::Check(v == 1, "the y of the point transformed back by the child");
  lum::test::Check(w == 1, "the z of the point transformed back by the child");
  lum::test::Check(lum::Matrix<float>().IsKnownIdentity(),
                   "the child reads the identity that its parent made");
  io_own.clear();
}

}  // namespace

int main() {
  lum::test::CheckIdentities();
  lum::Matrix<float> const matrix = lum::Matrix<float>::Translate(1, 2, 3);
  std::vector<lum::Matrix<float>> own;
  for (int i = 0; i < 100; ++i) own.push_back(lum::Matrix<float>::Translate(1, 2, static_cast<float>(i)));

  std::atomic<bool> is_over{false};
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 3; ++thread) {
    threads.emplace_back([&is_over] {
      while (!is_over) lum::test::CheckIdentities();
    });
  }
  for (int round = 0; round < 100; ++round) {
    pid_t const child = fork();
    lum::test::Check(child >= 0, "fork");
    if (child == 0) {
      alarm(20);  // ends a child that waits for a lock, as a failure
      UseWithoutMaking(matrix, own);
      _exit(0);
    }
    int status = -1;
    lum::test::Check(waitpid(child, &status, 0) == child, "waitpid");
    lum::test::Check(status == 0, "the child succeeds");
  }
  is_over = true;
  for (std::thread& thread : threads) thread.join();
  lum::test::CheckIdentities();
  return 0;
}
