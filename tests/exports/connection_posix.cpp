// What a connection costs its host on Linux, and callers whose threads are interrupted by signals all the
// time, as those of a host with profiling timers are.
#include "exports/session.h"
#include "support/soak.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <dirent.h>
#include <fstream>
#include <list>
#include <pthread.h>
#include <set>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>

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

// The numbers of this process's threads, in order.
std::set<pid_t> threads () {
  std::set<pid_t> all;
  DIR *const tasks = opendir ("/proc/self/task");
  while (const dirent *task = readdir (tasks))
    if (task->d_name[0] != '.')
      all.insert (static_cast<pid_t> (std::stol (task->d_name)));
  closedir (tasks);
  return all;
}

// The mask of blocked signals as the system reports it, bit n - 1 for signal n.
unsigned long blocked_signals (pid_t thread) {
  std::ifstream status ("/proc/self/task/" + std::to_string (thread) + "/status");
  for (std::string line; std::getline (status, line);)
    if (line.rfind ("SigBlk:", 0) == 0)
      return std::stoul (line.substr (7), nullptr, 16);
  return 0;
}

TEST (AConnection, CostsOneThreadJustBelowNormalThatNoSignalReaches) {
  FakeServer server;
  const std::set<pid_t> before = threads ();
  const Session session (server);
  std::set<pid_t> added;
  for (const pid_t thread : threads ())
    if (before.count (thread) == 0)
      added.insert (thread);
  ASSERT_EQ (added.size (), 1u);
  const pid_t thread = *added.begin ();
  const int own = getpriority (PRIO_PROCESS, static_cast<id_t> (gettid ()));
  EXPECT_EQ (getpriority (PRIO_PROCESS, static_cast<id_t> (thread)), std::min (own + 1, 19));
  for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGUSR1, SIGUSR2, SIGPIPE, SIGALRM, SIGTERM, SIGCHLD,
                           SIGPROF, SIGVTALRM, SIGRTMIN + 3})
    EXPECT_NE (blocked_signals (thread) >> (number - 1) & 1, 0u) << number;
}

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
    return ended == 8 && interruptions > 100;
  }));
  leave = true;
  for (std::thread &caller : callers)
    caller.join ();
  EXPECT_EQ (wrong, 0);
  EXPECT_EQ (server.accepted (), 1u);
}

} // namespace
