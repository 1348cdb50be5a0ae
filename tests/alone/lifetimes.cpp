// Connections are opened and closed one after the other, while eight threads call and the server closes the
// link in the middle of messages. Each command ends once, with its own answer or with the failure of all. At
// the end the process has exactly the threads, descriptors and memory that it had before. A program of its
// own, because it counts for the process.
#include "base/astring_pool.h"
#include "exports/session.h"
#include "support/counted_memory.h"
#include "support/process_counts.h"
#include "support/soak.h"

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <iostream>
#include <memory>
#include <mutex>
#include <random>
#include <thread>
#include <vector>

namespace {

using support::Command;
using support::FakeServer;
using support::wait_until;

constexpr int callers = 8;
constexpr int calls = 6; // of each caller in a round

/// Lets a number of threads go on together, again and again.
class Meeting {
public:
  explicit Meeting (int size) : size_ (size) {}

  void meet () {
    std::unique_lock hold (lock_);
    const unsigned meeting = held_;
    if (++present_ == size_) {
      present_ = 0;
      ++held_;
      all_here_.notify_all ();
    }
    all_here_.wait (hold, [&] { return held_ != meeting; });
  }

private:
  std::mutex lock_;
  std::condition_variable all_here_;
  const int size_;
  int present_ = 0;
  unsigned held_ = 0;
};

struct Totals {
  std::atomic<unsigned> answered{0}; ///< with the command's own answer
  std::atomic<unsigned> failed{0};   ///< with the link
  std::atomic<unsigned> unwaited{0};
  std::atomic<unsigned> refused{0}; ///< behind the close
  std::atomic<unsigned> wrong{0};
};

enum class Ending : unsigned {
  lost_and_found, ///< the link is lost in the middle and comes back; closed when all is done
  lost_and_left,  ///< closed while the callers are woken because of the loss
  not_waited_for, ///< asynchronous commands are open when the link is lost, and others at the close
  left            ///< closed while commands are answered
};
constexpr unsigned endings = 4;

/// One server, one connection after the other, and the threads that call on it. The threads live as long as
/// the object, because the library keeps a text for each that has ever called.
class Lane {
public:
  explicit Lane (Totals &totals) : totals_ (totals) {
    for (int i = 0; i != callers; ++i)
      threads_.emplace_back ([this] { caller (); });
  }
  ~Lane () {
    over_ = true;
    meeting_.meet ();
    for (std::thread &thread : threads_)
      thread.join ();
  }

  void run (int rounds, unsigned seed) {
    std::mt19937 random (seed);
    FakeServer server;
    for (int round = 0; round != rounds; ++round) {
      script (server, random);
      live (server, Ending{static_cast<unsigned> (round) % endings});
      server.forget ();
    }
    EXPECT_TRUE (server.wait_until_left ());
  }

private:
  // The fatal command of a round is answered with the front part of a report and its reply.
  void script (FakeServer &server, std::mt19937 &random) {
    served_ = 0;
    lost_ = false;
    server.on_any ([this, &server, fatal = 1 + random () % (callers * calls * 3 / 4), cut = random (),
                    reset = random () % 2 != 0] (const Command &jog) {
      std::string text =
          support::report_of ("<clip_created><ClipID>NEWS</ClipID></clip_created>") +
          support::reply_to (jog, "<error><ErrorMessage>" + support::text_of (jog.document, "JogDistance") +
                                      "</ErrorMessage><ErrorCode>general</ErrorCode></error>");
      if (++served_ != fatal || ending_ == Ending::left)
        return text;
      text.resize (cut % (text.size () + 1));
      server.send (text, jog.connection);
      if (reset)
        server.reset (jog.connection);
      else
        server.drop (jog.connection);
      lost_ = true;
      return std::string ();
    });
  }

  void live (const FakeServer &server, Ending ending) {
    ending_ = ending;
    closing_ = false;
    connection_ = orva_connect (server.address ());
    orva_synchronous (connection_, ending == Ending::not_waited_for ? 1 : 0);
    if (ending != Ending::left)
      orva_wait_until_connected (connection_);
    meeting_.meet ();
    const auto under_way = [this] { return ending_ == Ending::left ? served_ >= callers : lost_.load (); };
    EXPECT_TRUE (wait_until (under_way));
    if (ending == Ending::lost_and_found)
      meeting_.meet ();
    closing_ = true;
    orva_close (connection_);
    if (ending != Ending::lost_and_found)
      meeting_.meet ();
  }

  void caller () {
    for (;;) {
      meeting_.meet ();
      if (over_)
        return;
      for (int call = 0; call != calls; ++call)
        jog ();
      orva_cmd_stop1 (0, 0); // leaves the same text for this thread after each round
      meeting_.meet ();
    }
  }

  void jog () {
    const int32_t distance = ++distance_;
    const uint32_t code = orva_jog1 (connection_, 0, distance);
    const std::string text = last_error ();
    if (code == ORVA_ERROR && text == std::to_string (distance))
      ++totals_.answered;
    else if (code == ORVA_ERROR && text == "Failing all outstanding commands")
      ++totals_.failed;
    else if (code == ORVA_INVALID_HANDLE && closing_)
      ++totals_.refused;
    else if (code == ORVA_OK && ending_ == Ending::not_waited_for)
      ++totals_.unwaited;
    else
      ++totals_.wrong;
    EXPECT_TRUE (wait_until ([this] { return orva_connected (connection_) != 0 || closing_; }));
  }

  Totals &totals_;
  Meeting meeting_{callers + 1};
  std::atomic<uint32_t> connection_{0};
  std::atomic<Ending> ending_{Ending::left};
  std::atomic<unsigned> served_{0};
  std::atomic<bool> lost_{false};
  std::atomic<bool> closing_{false};
  std::atomic<bool> over_{false};
  std::atomic<int32_t> distance_{0};
  std::vector<std::thread> threads_;
};

struct Counts {
  int64_t blocks = support::living_blocks;
  int64_t bytes = support::living_bytes;
  size_t descriptors = support::open_descriptors ();
  size_t threads = support::running_threads ();

  bool operator== (const Counts &) const = default;
};

std::ostream &operator<< (std::ostream &out, const Counts &counts) {
  return out << counts.blocks << " blocks, " << counts.bytes << " bytes, " << counts.descriptors
             << " descriptors, " << counts.threads << " threads";
}

// What there is once nothing changes any more and no thread is left but those given: a connection whose last
// reference fell on its own thread goes a little later.
Counts counts_at_rest (size_t threads) {
  Counts counts;
  const int enough = threads != 0 ? 100 : 1000; // where threads are not counted, only time tells
  int looks = 0;
  EXPECT_TRUE (wait_until ([&] {
    astring_pool::free_all ();
    const Counts now;
    looks = now == counts && now.threads == threads ? looks + 1 : 0;
    counts = now;
    return looks == enough;
  })) << counts
      << ", " << threads << " threads before";
  return counts;
}

void run_all (const std::vector<std::unique_ptr<Lane>> &lanes, int rounds, unsigned seed) {
  std::vector<std::thread> drivers;
  for (const auto &lane : lanes)
    drivers.emplace_back ([&lane, rounds, s = ++seed] { lane->run (rounds, s); });
  for (std::thread &driver : drivers)
    driver.join ();
}

TEST (Lifetimes, LeaveNothingBehind) {
  const int width = support::rounds (2, 16);
  const int rounds = support::rounds (8, 10000 / 16);
  Totals totals;
  std::vector<std::unique_ptr<Lane>> lanes;
  for (int i = 0; i != width; ++i)
    lanes.push_back (std::make_unique<Lane> (totals));
  const size_t threads = support::running_threads ();
  run_all (lanes, endings, 1); // what is made on first use is there now
  const Counts before = counts_at_rest (threads);
  run_all (lanes, rounds, static_cast<unsigned> (testing::UnitTest::GetInstance ()->random_seed ()));
  const Counts after = counts_at_rest (threads);
  EXPECT_EQ (after, before);
  EXPECT_EQ (totals.wrong, 0u);
  EXPECT_GT (totals.answered, 0u);
  EXPECT_GT (totals.failed, 0u);
  EXPECT_GT (totals.unwaited, 0u);
  std::cout << width * rounds << " connections of " << callers << " callers: " << totals.answered
            << " commands answered, " << totals.failed << " failed, " << totals.unwaited
            << " not waited for, " << totals.refused << " refused; " << after << '\n';
}

} // namespace
