#include "platform/kernel_objects.h"

#include <atomic>
#include <errno.h>
#include <limits.h>
#include <linux/futex.h>
#include <new>
#include <pthread.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

namespace {

constexpr uint32_t largest_maximum = 0x7FFFFFFF;

/// The state is the count, or `waited` when the count is 0 and a thread may be waiting.
struct Semaphore {
  static constexpr uint32_t waited = 0x80000000;
  static_assert (std::atomic<uint32_t>::is_always_lock_free);

  std::atomic<uint32_t> state;
  const uint32_t maximum;
};

Semaphore *of (platform::SemaphoreHandle handle) {
  return reinterpret_cast<Semaphore *> (handle);
}
pthread_mutex_t *of (platform::MutexHandle handle) {
  return reinterpret_cast<pthread_mutex_t *> (handle);
}

timespec steady_time_after (unsigned milliseconds) {
  timespec end;
  clock_gettime (CLOCK_MONOTONIC, &end);
  end.tv_sec += static_cast<time_t> (milliseconds / 1000);
  end.tv_nsec += static_cast<long> (milliseconds % 1000) * 1000000L;
  if (end.tv_nsec >= 1000000000L) {
    end.tv_nsec -= 1000000000L;
    ++end.tv_sec;
  }
  return end;
}

// Sleeps while the state is `waited`. @param end null for no limit
// @return 0 or an error
int sleep_while_waited (Semaphore &semaphore, const timespec *end) {
  const long slept = syscall (SYS_futex, &semaphore.state, FUTEX_WAIT_BITSET_PRIVATE, Semaphore::waited, end,
                              nullptr, FUTEX_BITSET_MATCH_ANY);
  return slept == 0 ? 0 : errno;
}

// Only the address is used, because a waiter may have closed the semaphore by now. At worst, somebody who
// waits at the same address looks at his state once more.
void wake_all (const void *address) {
  syscall (SYS_futex, address, FUTEX_WAKE_PRIVATE, INT_MAX);
}

} // namespace

platform::SemaphoreHandle platform::semaphore_create (unsigned initial, unsigned maximum) noexcept {
  if (maximum == 0 || maximum > largest_maximum || initial > maximum)
    return nullptr;
  return reinterpret_cast<SemaphoreHandle> (new (std::nothrow) Semaphore{initial, maximum});
}

void platform::semaphore_close (SemaphoreHandle handle) noexcept {
  delete of (handle);
}

platform::Wait platform::semaphore_wait (SemaphoreHandle handle, unsigned milliseconds) noexcept {
  if (handle == nullptr)
    return Wait::failed;
  Semaphore &semaphore = *of (handle);
  const timespec end = milliseconds == infinite ? timespec{} : steady_time_after (milliseconds);
  int error = milliseconds == 0 ? ETIMEDOUT : 0;
  uint32_t state = semaphore.state;
  for (;;) {
    const bool is_zero = state == 0 || state == Semaphore::waited;
    if (is_zero && error == ETIMEDOUT)
      return Wait::timed_out;
    if (!semaphore.state.compare_exchange_weak (state, is_zero ? Semaphore::waited : state - 1))
      continue;
    if (!is_zero)
      return Wait::signalled;
    error = sleep_while_waited (semaphore, milliseconds == infinite ? nullptr : &end);
    if (error != 0 && error != EAGAIN && error != EINTR && error != ETIMEDOUT)
      return Wait::failed;
    state = semaphore.state;
  }
}

// The semaphore is not touched after its state has changed. A waiter may close it as soon as it has its
// count.
platform::Post platform::semaphore_post (SemaphoreHandle handle, unsigned count) noexcept {
  if (handle == nullptr || count == 0)
    return Post::failed;
  Semaphore &semaphore = *of (handle);
  const uint32_t maximum = semaphore.maximum;
  uint32_t state = semaphore.state;
  uint32_t before = 0;
  do {
    before = state & ~Semaphore::waited;
    if (count > maximum - before)
      return Post::full;
  } while (!semaphore.state.compare_exchange_weak (state, before + count));
  if ((state & Semaphore::waited) != 0)
    wake_all (&semaphore.state);
  return Post::done;
}

void platform::forget_last_error () noexcept {}

platform::MutexHandle platform::mutex_create () noexcept {
  pthread_mutexattr_t attributes;
  if (pthread_mutexattr_init (&attributes) != 0)
    return nullptr;
  auto *mutex = new (std::nothrow) pthread_mutex_t;
  if (mutex != nullptr && (pthread_mutexattr_settype (&attributes, PTHREAD_MUTEX_RECURSIVE) != 0 ||
                           pthread_mutexattr_setrobust (&attributes, PTHREAD_MUTEX_ROBUST) != 0 ||
                           pthread_mutex_init (mutex, &attributes) != 0)) {
    delete mutex;
    mutex = nullptr;
  }
  pthread_mutexattr_destroy (&attributes);
  return reinterpret_cast<MutexHandle> (mutex);
}

void platform::mutex_close (MutexHandle handle) noexcept {
  if (handle == nullptr)
    return;
  pthread_mutex_destroy (of (handle));
  delete of (handle);
}

// A mutex whose owner has ended is repaired and unlocked. This call returns false, and the next one must not
// wait for it.
bool platform::mutex_lock (MutexHandle handle) noexcept {
  if (handle == nullptr)
    return false;
  int error = pthread_mutex_lock (of (handle));
  if (error == EOWNERDEAD) {
    pthread_mutex_consistent (of (handle));
    pthread_mutex_unlock (of (handle));
  }
  return error == 0;
}

bool platform::mutex_unlock (MutexHandle handle) noexcept {
  return handle != nullptr && pthread_mutex_unlock (of (handle)) == 0;
}
