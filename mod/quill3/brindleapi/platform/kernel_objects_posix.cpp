#include "platform/kernel_objects.h"

#include <errno.h>
#include <new>
#include <pthread.h>
#include <time.h>

namespace {

struct Semaphore {
  pthread_mutex_t lock;
  pthread_cond_t raised;
  unsigned count;
  unsigned maximum;
};

constexpr unsigned largest_maximum = 0x7FFFFFFFu;

Semaphore *of (platform::SemaphoreHandle handle) {
  return reinterpret_cast<Semaphore *> (handle);
}
pthread_mutex_t *of (platform::MutexHandle handle) {
  return reinterpret_cast<pthread_mutex_t *> (handle);
}

bool init_steady_condition (pthread_cond_t *condition) {
  pthread_condattr_t attributes;
  if (pthread_condattr_init (&attributes) != 0)
    return false;
  bool ok = pthread_condattr_setclock (&attributes, CLOCK_MONOTONIC) == 0 &&
            pthread_cond_init (condition, &attributes) == 0;
  pthread_condattr_destroy (&attributes);
  return ok;
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

// The caller holds the lock. Any error of the condition but a time-out ends the wait as failed.
platform::Wait wait_for_count (Semaphore &semaphore, unsigned milliseconds) {
  timespec end = milliseconds == platform::infinite ? timespec{} : steady_time_after (milliseconds);
  while (semaphore.count == 0) {
    int error = 0;
    if (milliseconds == 0)
      error = ETIMEDOUT;
    else if (milliseconds == platform::infinite)
      error = pthread_cond_wait (&semaphore.raised, &semaphore.lock);
    else
      error = pthread_cond_timedwait (&semaphore.raised, &semaphore.lock, &end);
    if (error == ETIMEDOUT && semaphore.count == 0)
      return platform::Wait::timed_out;
    if (error != 0 && error != ETIMEDOUT)
      return platform::Wait::failed;
  }
  --semaphore.count;
  return platform::Wait::signalled;
}

} // namespace

platform::SemaphoreHandle platform::semaphore_create (unsigned initial, unsigned maximum) noexcept {
  if (maximum == 0 || maximum > largest_maximum || initial > maximum)
    return nullptr;
  auto *semaphore = new (std::nothrow) Semaphore{};
  if (semaphore == nullptr)
    return nullptr;
  semaphore->count = initial;
  semaphore->maximum = maximum;
  if (pthread_mutex_init (&semaphore->lock, nullptr) == 0) {
    if (init_steady_condition (&semaphore->raised))
      return reinterpret_cast<SemaphoreHandle> (semaphore);
    pthread_mutex_destroy (&semaphore->lock);
  }
  delete semaphore;
  return nullptr;
}

void platform::semaphore_close (SemaphoreHandle handle) noexcept {
  if (handle == nullptr)
    return;
  pthread_cond_destroy (&of (handle)->raised);
  pthread_mutex_destroy (&of (handle)->lock);
  delete of (handle);
}

platform::Wait platform::semaphore_wait (SemaphoreHandle handle, unsigned milliseconds) noexcept {
  if (handle == nullptr || pthread_mutex_lock (&of (handle)->lock) != 0)
    return Wait::failed;
  Wait result = wait_for_count (*of (handle), milliseconds);
  pthread_mutex_unlock (&of (handle)->lock);
  return result;
}

// The condition is signalled with the lock held. A waiter may close the semaphore as soon as it has its
// count, and no poster may then still use it.
platform::Post platform::semaphore_post (SemaphoreHandle handle, unsigned count) noexcept {
  if (handle == nullptr || count == 0 || pthread_mutex_lock (&of (handle)->lock) != 0)
    return Post::failed;
  Semaphore &semaphore = *of (handle);
  Post result = Post::full;
  if (count <= semaphore.maximum - semaphore.count) {
    semaphore.count += count;
    if (count == 1)
      pthread_cond_signal (&semaphore.raised);
    else
      pthread_cond_broadcast (&semaphore.raised);
    result = Post::done;
  }
  pthread_mutex_unlock (&semaphore.lock);
  return result;
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
