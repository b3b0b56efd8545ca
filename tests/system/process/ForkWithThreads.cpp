// A child of a process of several threads may use the values that it has: read, apply, copy, invert and drop
// them. None of that takes a lock, which a thread that is not there any more might hold. What makes objects
// does take one, and is left alone here.

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
  lum::test::Check(x == 2 && y == 3 && z == 4 && u == 1 && v == 1 && w == 1, "the child's values hold");
  lum::test::Check(lum::Matrix<float>().IsKnownIdentity(), "the identity was made before");
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
      alarm(20);  // a child that waits for a lock is ended, and counts as failed
      UseWithoutMaking(matrix, own);
      _exit(0);
    }
    int status = -1;
    lum::test::Check(waitpid(child, &status, 0) == child && status == 0, "the child ended well");
  }
  is_over = true;
  for (std::thread& thread : threads) thread.join();
  lum::test::CheckIdentities();
  return 0;
}
