// What a forked child of a process with several threads may do. If the identity of a type existed before the
// fork, the child may read, apply, copy, invert and destroy values of that type: none of that takes a lock,
// which a thread that the child does not have might hold. Other operations may wait for such a lock for ever.
//
// Every scenario runs in a process of its own, which starts without pools and identities. Its result does not
// depend on the schedule: a thread of the parent stops with a lock of the library before the fork, and the
// child reports a lock that it would wait for instead of waiting.

#include <dlfcn.h>
#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <functional>
#include <semaphore>
#include <thread>
#include <vector>

#include "Check.h"

namespace {

constexpr int waits = 2;  // the exit status of a child that would wait for ever

std::binary_semaphore is_stopped(0);
std::binary_semaphore may_go_on(0);
thread_local bool stops_with_next_lock = false;
bool is_child = false;  // written by the child, before it has a second thread, and never elsewhere

}  // namespace

// Takes the place of the C library's function for the whole program.
extern "C" int pthread_mutex_lock(pthread_mutex_t* io_mutex) noexcept {
  if (is_child) {
    if (pthread_mutex_trylock(io_mutex) != 0) _exit(waits);
    return 0;
  }
  static auto* const lock =
      reinterpret_cast<int (*)(pthread_mutex_t*)>(dlsym(RTLD_NEXT, "pthread_mutex_lock"));
  int const error = lock(io_mutex);
  if (stops_with_next_lock) {
    stops_with_next_lock = false;
    is_stopped.release();
    may_go_on.acquire();
  }
  return error;
}

namespace {

using lum::test::Check;
using Vector = lum::Vector<float, 3>;

int GetStatus(pid_t i_process) {
  Check(i_process >= 0, "fork");
  int status = -1;
  Check(waitpid(i_process, &status, 0) == i_process, "waitpid");
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// The exit status of a child that is forked while another thread has stopped in i_stopped, with the first
// lock that it took.
int ForkDuring(std::function<void()> const& i_stopped, std::function<void()> const& i_child) {
  std::thread thread([&i_stopped] {
    stops_with_next_lock = true;
    i_stopped();
    Check(!stops_with_next_lock, "the thread takes a lock");
  });
  is_stopped.acquire();
  pid_t const child = fork();
  if (child == 0) {
    is_child = true;
    i_child();
    _exit(0);
  }
  int const status = GetStatus(child);
  may_go_on.release();
  thread.join();
  return status;
}

template <class T>
void ApplyCopyInvertAndDestroy(lum::Matrix<T> const& i_matrix, std::vector<lum::Matrix<T>>& io_own) {
  Check(i_matrix * lum::Point<T, 3>(1, 1, 1) == lum::Point<T, 3>(2, 3, 4), "the child applies a matrix");
  lum::Matrix<T> const copy = i_matrix;
  Check(copy == i_matrix, "the child copies and compares");
  Check(copy(0, 3) == 1, "the child reads a value");
  Check(copy.GetInverse() * lum::Point<T, 3>(2, 3, 4) == lum::Point<T, 3>(1, 1, 1), "the child inverts");
  Check(copy * lum::Vector<T, 3>(1, 2, 3) == lum::Vector<T, 3>(1, 2, 3), "the child applies it to a vector");
  Check((copy * lum::Plane<T>(0, 0, 1, 4)).GetD() == 7, "the child applies it to a plane");
  std::vector<lum::Point<T, 3>> points(5);
  TransformPoints(copy, points, points);
  Check(points.back() == lum::Point<T, 3>(1, 2, 3), "the child applies it to an array");
  Check(lum::Matrix<T>().IsKnownIdentity(), "the child has the identity");
  io_own.clear();
}

void RotateCopyAndDestroy(lum::Quaternionf const& i_quaternion, std::vector<lum::Quaternionf>& io_own) {
  Check(i_quaternion.Transform({1, 2, 3})[2] == 3, "the child rotates a vector");
  lum::Quaternionf const copy = i_quaternion;
  Check(copy.GetCoefficients() == i_quaternion.GetCoefficients(), "the child copies and reads");
  Check(copy.IsApproximately(i_quaternion, 0), "the child compares");
  Check(lum::Quaternionf().IsKnownIdentity(), "the child has the identity");
  io_own.clear();
}

template <class T>
void MatricesWork() {
  lum::Matrix<T> const identity;
  auto const matrix = lum::Matrix<T>::Translate(1, 2, 3);
  std::vector<lum::Matrix<T>> own;  // of several blocks, which the child frees
  for (int i = 0; i < 100; ++i) own.push_back(lum::Matrix<T>::Scale(2));
  int const status = ForkDuring([] { lum::Matrix<T>::Scale(2); },
                                [&matrix, &own] { ApplyCopyInvertAndDestroy(matrix, own); });
  Check(status == 0, "a child uses matrices while a thread of its parent has the lock of their pool");
}

void QuaternionsWork() {
  lum::Quaternionf const identity;
  lum::Quaternionf const quaternion({0, 0, 1}, 3);
  std::vector<lum::Quaternionf> own;
  for (int i = 0; i < 100; ++i) own.emplace_back(Vector(0, 0, 1), 1.0F);
  int const status = ForkDuring(
      [] {
        lum::Quaternionf({0, 0, 1}, 2);
      },
      [&quaternion, &own] { RotateCopyAndDestroy(quaternion, own); });
  Check(status == 0, "a child uses quaternions while a thread of its parent has the lock of their pool");
}

void RotatingAsksForNoIdentity() {
  lum::Quaternionf const quaternion({0, 0, 1}, 3);
  int const status = ForkDuring([] { lum::Quaternionf(); },
                                [&quaternion] {
                                  Check(quaternion.Transform({0, 0, 3})[2] == 3, "the child rotates");
                                });
  Check(status == 0, "a child rotates a vector while a thread of its parent creates the identity");
}

// While threads make and destroy values of all types at full speed.
void MatricesWorkAmongBusyThreads() {
  lum::test::CheckIdentities();
  auto const matrix = lum::Matrix<float>::Translate(1, 2, 3);
  std::vector<lum::Matrix<float>> own;
  for (int i = 0; i < 100; ++i) own.push_back(lum::Matrix<float>::Scale(2));
  std::atomic<bool> is_over{false};
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 3; ++thread) {
    threads.emplace_back([&is_over] {
      while (!is_over) lum::test::CheckIdentities();
    });
  }
  for (int round = 0; round < 100; ++round) {
    pid_t const child = fork();
    if (child == 0) {
      is_child = true;
      ApplyCopyInvertAndDestroy(matrix, own);
      _exit(0);
    }
    Check(GetStatus(child) == 0, "a child uses matrices while threads of its parent make and destroy some");
  }
  is_over = true;
  for (std::thread& thread : threads) thread.join();
}

// The documented limits. When they are lifted, these become scenarios of what works.
template <class T>
void TheFirstApplicationWaits() {
  auto const matrix = lum::Matrix<T>::Translate(1, 2, 3);
  int const status = ForkDuring([] { lum::Matrix<T>(); }, [&matrix] { matrix* lum::Point<T, 3>(1, 1, 1); });
  Check(status == waits, "without the identity, the first application by a child waits for its creation");
}

template <class T>
void MakingAMatrixWaits() {
  lum::Matrix<T> const identity;
  auto const make = [] { lum::Matrix<T>::Scale(2); };
  Check(ForkDuring(make, make) == waits, "a child that makes a matrix waits for the lock of the pool");
}

void TheFirstQuestionForTheIdentityWaits() {
  lum::Quaternionf const quaternion({0, 0, 1}, 3);
  int const status = ForkDuring([] { lum::Quaternionf(); }, [&quaternion] { quaternion.IsKnownIdentity(); });
  Check(status == waits, "without the identity, the first question for it by a child waits for its creation");
}

void MakingAQuaternionWaits() {
  lum::Quaternionf const identity;
  auto const make = [] { lum::Quaternionf({0, 0, 1}, 2); };
  Check(ForkDuring(make, make) == waits, "a child that makes a quaternion waits for the lock of the pool");
}

}  // namespace

int main() {
  for (auto* const scenario :
       {MatricesWork<float>, MatricesWork<double>, QuaternionsWork, RotatingAsksForNoIdentity,
        MatricesWorkAmongBusyThreads, TheFirstApplicationWaits<float>, TheFirstApplicationWaits<double>,
        MakingAMatrixWaits<float>, MakingAMatrixWaits<double>, TheFirstQuestionForTheIdentityWaits,
        MakingAQuaternionWaits}) {
    pid_t const process = fork();
    if (process == 0) {
      scenario();
      _exit(0);
    }
    Check(GetStatus(process) == 0, "a scenario ends");
  }
  return 0;
}
