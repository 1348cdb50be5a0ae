// The pause before a key is tried again. The first store of the process that retries decides about it, so
// this is a program of its own.

#include "exports/stores.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using support::Command;

/// Refuses the first try of the folder FIRST, and then does not answer it. Refuses all of the folder SECOND
/// while it is asked to, and records when they came.
class RefusingServer : public support::FakeServer {
public:
  RefusingServer () {
    answer_any ("<ok />");
    on ("metadata_set", [this] (const Command &command) {
      return database_of (command) == "FIRST" ? of_first (command) : of_second (command);
    });
  }

  void accept () { accepts_ = true; }
  Command in_hand () {
    const std::lock_guard hold (lock_);
    return in_hand_;
  }
  void forget_tries () {
    const std::lock_guard hold (lock_);
    tries_.clear ();
  }
  bool has_tries (size_t count) {
    const std::lock_guard hold (lock_);
    return tries_.size () >= count;
  }
  /// How long the latest tries took, from the first to the last of so many. Very long when there are fewer.
  milliseconds time_of_latest (size_t count) {
    const std::lock_guard hold (lock_);
    if (tries_.size () < count)
      return milliseconds::max ();
    return std::chrono::duration_cast<milliseconds> (tries_.back () - tries_[tries_.size () - count]);
  }

private:
  std::string of_first (const Command &command) {
    const std::lock_guard hold (lock_);
    if (!refused_first_) {
      refused_first_ = true;
      return support::reply_to (command, no);
    }
    in_hand_ = command;
    return "";
  }
  std::string of_second (const Command &command) {
    const std::lock_guard hold (lock_);
    tries_.push_back (Clock::now ());
    return support::reply_to (command, accepts_ ? "<ok />" : no);
  }

  std::atomic<bool> accepts_{false};
  std::mutex lock_;
  bool refused_first_ = false;
  Command in_hand_;
  std::vector<Clock::time_point> tries_;
};

// Five pauses of 200 ms, and something for a server that notes a try late.
constexpr size_t six = 6;
constexpr milliseconds five_pauses{850};
// Three tries with no pause between one and the next, on a busy machine.
constexpr size_t three = 3;
constexpr milliseconds less_than_two_pauses{350};

TEST (StoreRetries, ArePacedByTheFirstStoreThatRetries) {
  RefusingServer &server = *new RefusingServer; // its handlers need it to the end
  const SettledSession session (server);
  Store first (session, "FIRST", "", ORVA_STORE_WRITE);
  first.set ("k", "1");
  ASSERT_TRUE (support::wait_until ([&] { return !server.in_hand ().name.empty (); }));

  Store second (session, "SECOND", "", ORVA_STORE_WRITE);
  second.set ("k", "1");
  ASSERT_TRUE (support::wait_until ([&] { return server.has_tries (six); }));
  EXPECT_GE (server.time_of_latest (six), five_pauses);

  // The first store drains for two seconds, and then wants to stop while its key is in hand.
  std::thread closing ([&] { first.close (); });
  EXPECT_TRUE (support::wait_until ([&] { return server.time_of_latest (three) < less_than_two_pauses; }))
      << "its wish did not end the pauses of others";
  server.send (support::reply_to (server.in_hand (), "<ok />"));
  closing.join ();

  // It is gone. Nothing ends a pause now, not even something new to send.
  server.forget_tries ();
  ASSERT_TRUE (support::wait_until ([&] {
    second.set ("k", "2");
    second.set ("l", "1");
    return server.has_tries (six + 1); // the first may have been under way
  }));
  EXPECT_GE (server.time_of_latest (six), five_pauses);
  server.accept ();
  second.close ();
}

} // namespace
