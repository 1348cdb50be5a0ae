// Waits on Windows. Calls that are queued for a thread run while it waits for a semaphore, and the wait then
// starts again. They do not run while it waits for a mutex.
#include "platform/kernel_objects.h"
#include "support/wait.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <atomic>
#include <chrono>
#include <thread>

using namespace platform;

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

void CALLBACK note (ULONG_PTR times) {
  ++*reinterpret_cast<std::atomic<int> *> (times);
}

/// A thread that calls can be queued for once it runs.
class Target {
public:
  template <class Body>
  explicit Target (Body body)
      : thread_ ([this, body] {
          number_ = GetCurrentThreadId ();
          body ();
        }) {
    EXPECT_TRUE (support::wait_until ([this] { return number_ != 0; }));
    handle_ = OpenThread (THREAD_SET_CONTEXT, FALSE, number_);
    EXPECT_NE (handle_, nullptr);
  }
  Target (const Target &) = delete;
  ~Target () {
    CloseHandle (handle_);
    thread_.join ();
  }

  void queue (std::atomic<int> &times) {
    EXPECT_NE (QueueUserAPC (note, handle_, reinterpret_cast<ULONG_PTR> (&times)), 0u);
  }

private:
  std::atomic<DWORD> number_{0};
  std::thread thread_;
  HANDLE handle_ = nullptr;
};

TEST (KernelObjectsOnWindows, ASemaphoresWaitRunsQueuedCallsAndBeginsAnew) {
  SemaphoreHandle semaphore = semaphore_create (0, 1);
  std::atomic<int> times{0};
  std::atomic<Clock::time_point> called{Clock::time_point::max ()};
  {
    Target waiting ([&] {
      EXPECT_EQ (semaphore_wait (semaphore, 2000), Wait::timed_out);
      EXPECT_EQ (times, 1);
      EXPECT_GE (Clock::now () - called.load (), 1950ms);
    });
    EXPECT_FALSE (support::wait_until ([&] { return times != 0; }, 100ms)); // so it waits by now
    called = Clock::now ();
    waiting.queue (times);
  }
  semaphore_close (semaphore);
}

TEST (KernelObjectsOnWindows, AMutexIsWaitedForWithoutRunningQueuedCalls) {
  MutexHandle mutex = mutex_create ();
  ASSERT_TRUE (mutex_lock (mutex));
  std::atomic<int> times{0};
  {
    Target waiting ([&] {
      EXPECT_TRUE (mutex_lock (mutex));
      EXPECT_EQ (times, 0);
      EXPECT_TRUE (mutex_unlock (mutex));
      SleepEx (0, TRUE);
      EXPECT_EQ (times, 1);
    });
    waiting.queue (times);
    EXPECT_FALSE (support::wait_until ([&] { return times != 0; }, 100ms));
    EXPECT_TRUE (mutex_unlock (mutex));
  }
  mutex_close (mutex);
}

TEST (KernelObjectsOnWindows, ForgettingClearsTheLastError) {
  SetLastError (ERROR_ACCESS_DENIED);
  forget_last_error ();
  EXPECT_EQ (GetLastError (), DWORD{ERROR_SUCCESS});
}

} // namespace
