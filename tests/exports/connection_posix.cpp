// Callers on Linux whose threads are interrupted by signals all the time, as a host with profiling timers
// does.
#include "exports/session.h"
#include "support/soak.h"

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <list>
#include <pthread.h>
#include <thread>

namespace {

using support::Command;
using support::FakeServer;

std::atomic<unsigned> interruptions{0};

/// A handler that does not have the system's calls begun anew.
class Handler {
public:
  Handler () {
    struct sigaction action {};
    action.sa_handler = [] (int) { ++interruptions; };
    sigaction (SIGUSR2, &action, &before_);
  }
  ~Handler () { sigaction (SIGUSR2, &before_, nullptr); }
  Handler (const Handler &) = delete;
  Handler &operator= (const Handler &) = delete;

private:
  struct sigaction before_ {};
};

TEST (InterruptedCallers, GetTheirOwnAnswersAndFullWaits) {
  const Handler handler;
  FakeServer server;
  server.on ("jog", [] (const Command &jog) {
    return support::reply_to (jog, "<error><ErrorMessage>" + support::text_of (jog.document, "JogDistance") +
                                       "</ErrorMessage><ErrorCode>general</ErrorCode></error>");
  });
  server.split_into (100); // answers take their time, so that callers are interrupted in their waits
  const Session session (server);
  const int rounds = support::rounds (10, 500);
  std::atomic<int> wrong{0}, ended{0};
  std::atomic<bool> leave{false};
  std::list<std::thread> callers;
  for (int caller = 0; caller != 8; ++caller)
    callers.emplace_back ([&, caller] {
      for (int round = 0; round != rounds; ++round) {
        const int distance = caller * 1000 + round;
        if (orva_jog1 (session, 0, distance) != ORVA_ERROR || last_error () != std::to_string (distance))
          ++wrong;
      }
      const auto start = std::chrono::steady_clock::now ();
      uint32_t kind = 77, channel = 77;
      orva_get_notification (session, 100, &kind, &channel); // there is none to come
      if (std::chrono::steady_clock::now () - start < std::chrono::milliseconds (95))
        ++wrong;
      ++ended;
      while (!leave) // stays, so that it can be interrupted
        std::this_thread::yield ();
    });
  EXPECT_TRUE (support::wait_until ([&] {
    for (std::thread &caller : callers)
      pthread_kill (caller.native_handle (), SIGUSR2);
    return ended == 8;
  }));
  leave = true;
  for (std::thread &caller : callers)
    caller.join ();
  EXPECT_EQ (wrong, 0);
  EXPECT_GT (interruptions, 100u);
  EXPECT_EQ (server.accepted (), 1u);
}

} // namespace
