#include "base/bsem.h"
#include "base/csem.h"
#include "platform/clocks.h"
#include "platform/threads.h"

#include <atomic>
#include <ctime>
#include <gtest/gtest.h>

namespace {

constexpr unsigned long_wait = 20000;

struct Report {
  bsem done{false};
  bsem go_on{false};
  uint32_t number = 0;
  bool stack_was_good = false;
};

// Touches most of a small stack.
bool fill_stack () {
  volatile unsigned char bytes[40000];
  for (unsigned i = 0; i < sizeof bytes; i += 512)
    bytes[i] = static_cast<unsigned char> (i >> 9);
  for (unsigned i = 0; i < sizeof bytes; i += 512)
    if (bytes[i] != static_cast<unsigned char> (i >> 9))
      return false;
  return true;
}

void tell (void *given) {
  auto &report = *static_cast<Report *> (given);
  platform::thread_set_priority (-1);
  report.number = platform::thread_number ();
  report.stack_was_good = fill_stack ();
  report.done.post ();
  report.go_on.wait ();
  report.done.post ();
}

} // namespace

TEST (Threads, StartWithAStackAndANumberOfTheirOwn) {
  Report one, two;
  ASSERT_TRUE (platform::thread_start (tell, &one));
  ASSERT_TRUE (platform::thread_start (tell, &two, 1 << 20));
  EXPECT_TRUE (one.done.wait (long_wait));
  EXPECT_TRUE (two.done.wait (long_wait));
  EXPECT_TRUE (one.stack_was_good);
  EXPECT_TRUE (two.stack_was_good);
  EXPECT_NE (one.number, two.number);
  EXPECT_NE (one.number, platform::thread_number ());
  for (Report *report : {&one, &two}) {
    report->go_on.post ();
    EXPECT_TRUE (report->done.wait (long_wait));
  }
}

TEST (Threads, KeepTheirNumber) {
  EXPECT_EQ (platform::thread_number (), platform::thread_number ());
}

TEST (Threads, ManyComeAndGo) {
  csem ended (0, 1000);
  for (int i = 0; i < 300; ++i)
    ASSERT_TRUE (platform::thread_start ([] (void *all) { static_cast<csem *> (all)->post (1); }, &ended));
  for (int i = 0; i < 300; ++i)
    EXPECT_TRUE (ended.wait (long_wait));
}

TEST (Threads, ATinyStackIsEnlarged) {
  bsem done (false);
  ASSERT_TRUE (platform::thread_start ([] (void *b) { static_cast<bsem *> (b)->post (); }, &done, 1024));
  EXPECT_TRUE (done.wait (long_wait));
}

TEST (Threads, SleepLastsItsTime) {
  int64_t start = platform::steady_milliseconds ();
  platform::sleep_milliseconds (30);
  EXPECT_GE (platform::steady_milliseconds () - start, 29);
  platform::sleep_milliseconds (0);
  platform::thread_yield ();
}

TEST (Clocks, TellTheSystemsSeconds) {
  int64_t before = static_cast<int64_t> (std::time (nullptr));
  int64_t told = platform::seconds_since_1970 ();
  int64_t after = static_cast<int64_t> (std::time (nullptr));
  EXPECT_LE (before, told);
  EXPECT_LE (told, after);
}

TEST (Clocks, SteadyMillisecondsNeverGoBack) {
  int64_t last = platform::steady_milliseconds ();
  int64_t start = last;
  while (last < start + 5) {
    int64_t now = platform::steady_milliseconds ();
    ASSERT_GE (now, last);
    last = now;
  }
}
