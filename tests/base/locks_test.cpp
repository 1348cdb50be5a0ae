#include "base/amutex.h"
#include "base/aprotect.h"
#include "base/bsem.h"
#include "base/csem.h"
#include "platform/clocks.h"
#include "platform/sanitizers.h"
#include "support/assert_counter.h"

#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr unsigned long_wait = 20000;

// clang's analysis takes every mutex for one that is not recursive; these are called behind its back.
bool lock (AMutex &mutex) KELVANE_NO_THREAD_SAFETY_ANALYSIS {
  return mutex.lock ();
}
bool unlock (AMutex &mutex) KELVANE_NO_THREAD_SAFETY_ANALYSIS {
  return mutex.unlock ();
}

// Locks and unlocks the mutex on a thread of its own, and shows when it has done so.
class Contender {
public:
  explicit Contender (AMutex &mutex)
      : thread_ ([this, &mutex] {
          AMutexLock lock (&mutex);
          got_.post ();
        }) {}
  ~Contender () { thread_.join (); }
  bool got_within (unsigned milliseconds) { return got_.wait (milliseconds); }

private:
  bsem got_{false};
  std::thread thread_;
};

} // namespace

TEST (Bsem, ASecondPostIsAbsorbed) {
  AssertCounter failures;
  bsem s (false);
  s.post ();
  s.post ();
  EXPECT_TRUE (s.wait (0));
  EXPECT_FALSE (s.wait (0));
  EXPECT_EQ (failures.count (), 0u);
}

TEST (Bsem, MayBeBornSet) {
  bsem s (true);
  EXPECT_TRUE (s.wait (0));
  EXPECT_FALSE (s.wait (0));
}

TEST (Bsem, WakesAWaiterOfAnotherThread) {
  bsem ask (false), answer (false);
  std::thread other ([&] {
    EXPECT_TRUE (ask.wait (csem::INFINITE_TIME));
    answer.post ();
  });
  EXPECT_FALSE (answer.wait (0));
  ask.post ();
  EXPECT_TRUE (answer.wait ());
  other.join ();
}

TEST (Bsem, MayGoAsSoonAsItsWaiterIsAwake) {
  for (int i = 0; i < 500; ++i) {
    auto s = std::make_unique<bsem> (false);
    std::thread poster ([&s = *s] { s.post (); });
    EXPECT_TRUE (s->wait ());
    s.reset ();
    poster.join ();
  }
}

TEST (Csem, CountsUpToItsMaximum) {
  csem s (2, 3);
  EXPECT_FALSE (s.post (2));
  EXPECT_TRUE (s.post (1));
  EXPECT_FALSE (s.post (1));
  EXPECT_EQ (s.wait_count (3), 3u);
  EXPECT_FALSE (s.wait (0));
  EXPECT_TRUE (s.post (3));
  EXPECT_TRUE (s.wait (0));
}

TEST (Csem, ATimedWaitLastsItsTime) {
  csem s (0, 1);
  int64_t start = platform::steady_milliseconds ();
  EXPECT_FALSE (s.wait (40));
  EXPECT_GE (platform::steady_milliseconds () - start, 39);
  start = platform::steady_milliseconds ();
  EXPECT_FALSE (s.wait (0));
  EXPECT_LT (platform::steady_milliseconds () - start, 10000);
}

TEST (Csem, EachCountWakesOneWaiter) {
  csem work (0, 100), done (0, 100);
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i)
    threads.emplace_back ([&] {
      work.wait ();
      done.post (1);
    });
  EXPECT_TRUE (work.post (3));
  EXPECT_EQ (done.wait_count (3), 3u);
  EXPECT_FALSE (done.wait (20));
  EXPECT_TRUE (work.post (1));
  EXPECT_TRUE (done.wait (long_wait));
  for (std::thread &t : threads)
    t.join ();
}

TEST (Csem, OneThatCouldNotBeMadeShowsItAtItsFirstWait) {
  AssertCounter failures;
  csem s (5, 1);
  EXPECT_EQ (failures.count (), 0u);
  EXPECT_FALSE (s.wait (0));
  EXPECT_EQ (failures.take (), 1u);
  EXPECT_FALSE (s.wait ());
  EXPECT_EQ (failures.take (), 1u);
  EXPECT_FALSE (s.post (1));
  EXPECT_EQ (failures.take (), 0u);
}

TEST (AMutex, IsRecursive) {
  AMutex mutex;
  EXPECT_TRUE (lock (mutex));
  EXPECT_TRUE (lock (mutex));
  EXPECT_TRUE (unlock (mutex));
  {
    Contender other (mutex);
    EXPECT_FALSE (other.got_within (30));
    EXPECT_TRUE (unlock (mutex));
    EXPECT_TRUE (other.got_within (long_wait));
  }
  if (!platform::under_thread_sanitizer) { // which reports it
    EXPECT_FALSE (unlock (mutex));
  }
}

TEST (AMutex, WithoutAMutexEverythingFails) {
  AMutex none (nullptr);
  EXPECT_FALSE (lock (none));
  EXPECT_FALSE (unlock (none));
  EXPECT_FALSE (AMutexLock (&none).is_locked ());
}

TEST (AMutex, AnAbandonedOneFailsOnceAndIsFree) {
  AMutex mutex;
  std::thread ([&] { EXPECT_TRUE (lock (mutex)); }).join ();
  EXPECT_FALSE (lock (mutex));
  std::thread ([&] {
    EXPECT_TRUE (lock (mutex));
    EXPECT_TRUE (unlock (mutex));
  }).join ();
}

TEST (AMutexLock, NullHoldsNothing) {
  EXPECT_FALSE (AMutexLock ().is_locked ());
  EXPECT_FALSE (AMutexLock (nullptr).is_locked ());
}

TEST (AMutexLock, IsHeldUntilTheLastCopyGoes) {
  AMutex mutex;
  auto first = std::make_unique<AMutexLock> (&mutex);
  EXPECT_TRUE (first->is_locked ());
  auto second = std::make_unique<AMutexLock> (*first);
  EXPECT_TRUE (second->is_locked ());
  Contender other (mutex);
  first.reset ();
  EXPECT_FALSE (other.got_within (30));
  second.reset ();
  EXPECT_TRUE (other.got_within (long_wait));
}

TEST (AMutexScope, IsHeldUntilItsEnd) {
  AMutex mutex;
  auto scope = std::make_unique<AMutexScope> (mutex);
  Contender other (mutex);
  EXPECT_FALSE (other.got_within (30));
  scope.reset ();
  EXPECT_TRUE (other.got_within (long_wait));
}

TEST (AMutexLock, KeepsThreadsApart) {
  AMutex mutex;
  unsigned plain = 0;
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back ([&] {
      for (int i = 0; i < 2000; ++i) {
        AMutexLock lock (&mutex);
        AMutexLock again (&mutex);
        ++plain;
      }
    });
  for (std::thread &t : threads)
    t.join ();
  EXPECT_EQ (plain, 8000u);
}

TEST (AProtect, ReachesTheValueUnderItsLock) {
  AProtect<std::map<int, std::string>> names;
  (*names.lock ())[1] = "A";
  EXPECT_EQ (names.lock ()->size (), 1u);
  auto held = names.lock ();
  auto again = names.lock ();
  again->clear ();
  EXPECT_TRUE (held->empty ());
}

TEST (AProtect, TheValueBeginsAsItsDefault) {
  EXPECT_EQ (*AProtect<int> ().lock (), 0);
}

TEST (AProtect, TheLockGoesWithTheLastAccessor) {
  AProtect<int> value;
  bsem got (false);
  std::thread other;
  {
    auto first = value.lock ();
    auto second = std::make_unique<AProtect<int>::Accessor> (first);
    other = std::thread ([&] {
      *value.lock () += 1;
      got.post ();
    });
    second.reset ();
    EXPECT_FALSE (got.wait (30));
    *first = 41;
  }
  EXPECT_TRUE (got.wait (long_wait));
  other.join ();
  EXPECT_EQ (*value.lock (), 42);
}

TEST (AProtect, AnAccessorKeepsTheValueAlive) {
  auto value = std::make_unique<AProtect<std::string>> ();
  auto held = value->lock ();
  value.reset ();
  *held = "still here";
  EXPECT_EQ (*held, "still here");
  AProtect<std::string> other;
  held = other.lock ();
  EXPECT_EQ (*held, "");
}
