#include "platform/kernel_objects.h"
#include "platform/sanitizers.h"

#include <gtest/gtest.h>

using namespace platform;

TEST (KernelObjects, SemaphoresAreMadeWithinTheirRange) {
  for (auto [initial, maximum] : {std::pair (0u, 0u), {1u, 0u}, {2u, 1u}, {0u, 0x80000000u}})
    EXPECT_EQ (semaphore_create (initial, maximum), nullptr) << initial << " of " << maximum;
  for (auto [initial, maximum] : {std::pair (0u, 1u), {1u, 1u}, {0x7FFFFFFFu, 0x7FFFFFFFu}}) {
    SemaphoreHandle semaphore = semaphore_create (initial, maximum);
    EXPECT_NE (semaphore, nullptr) << initial << " of " << maximum;
    semaphore_close (semaphore);
  }
}

TEST (KernelObjects, PostsTellWhatHappened) {
  SemaphoreHandle semaphore = semaphore_create (1, 3);
  EXPECT_EQ (semaphore_post (semaphore, 0), Post::failed);
  EXPECT_EQ (semaphore_post (semaphore, 3), Post::full);
  EXPECT_EQ (semaphore_post (semaphore, 2), Post::done);
  EXPECT_EQ (semaphore_post (semaphore, 1), Post::full);
  for (int i = 0; i < 3; ++i)
    EXPECT_EQ (semaphore_wait (semaphore, infinite), Wait::signalled);
  EXPECT_EQ (semaphore_wait (semaphore, 0), Wait::timed_out);
  semaphore_close (semaphore);
}

TEST (KernelObjects, NullHandlesFail) {
  EXPECT_EQ (semaphore_post (nullptr, 1), Post::failed);
  EXPECT_EQ (semaphore_wait (nullptr, infinite), Wait::failed);
  EXPECT_FALSE (mutex_lock (nullptr));
  EXPECT_FALSE (mutex_unlock (nullptr));
  semaphore_close (nullptr);
  mutex_close (nullptr);
}

TEST (KernelObjects, OnlyTheOwnerUnlocks) {
  MutexHandle mutex = mutex_create ();
  if (!under_thread_sanitizer) { // which reports it
    EXPECT_FALSE (mutex_unlock (mutex));
  }
  EXPECT_TRUE (mutex_lock (mutex));
  EXPECT_TRUE (mutex_lock (mutex));
  EXPECT_TRUE (mutex_unlock (mutex));
  EXPECT_TRUE (mutex_unlock (mutex));
  if (!under_thread_sanitizer) {
    EXPECT_FALSE (mutex_unlock (mutex));
  }
  mutex_close (mutex);
}
