// A server that reads far more slowly than callers send.
#include "base/amethod.h"
#include "engine/test_client.h"
#include "engine/waiter.h"
#include "support/soak.h"

#include <gtest/gtest.h>

#include <list>
#include <thread>
#include <vector>

namespace {

using namespace QUILL3;
using namespace std::chrono_literals;
using support::FakeServer;

// A byte at a time, far below what eight callers have to say: none of them is forgotten.
TEST (ConnectionToASlowServer, AnswersEachCommandInTheEnd) {
  FakeServer server;
  server.answer_any ("<ok />");
  server.read_slowly (1, std::chrono::milliseconds (support::rounds (1, 100)));
  Notes notes;
  TestClient client (notes, server.address ());
  client.start_thread (-1);
  ASSERT_TRUE (client.wait_connected ());
  std::list<Waiter> waiters;
  std::vector<std::thread> threads;
  for (int i = 0; i != 8; ++i)
    threads.emplace_back ([&, w = &waiters.emplace_back ()] {
      client.stop ({.Channel = 0}, AMethod::bind (w, &Waiter::ok), AMethod::bind (w, &Waiter::failed));
      w->done.acquire ();
    });
  for (std::thread &thread : threads)
    thread.join ();
  for (Waiter &waiter : waiters) {
    EXPECT_EQ (waiter.answers, 1);
    EXPECT_EQ (waiter.failures, 0);
  }
  EXPECT_EQ (server.accepted (), 1u);
}

TEST (ConnectionToASlowServer, EndsEachCommandOnceWhenItGoes) {
  FakeServer server;
  server.read_slowly (1, 1s);
  Notes notes;
  TestClient client (notes, server.address ());
  client.start_thread (-1);
  ASSERT_TRUE (client.wait_connected ());
  const AString large = AString::from_latin1 (std::string (1000000, 'x'));
  std::list<Waiter> waiters;
  std::vector<std::thread> threads;
  for (int i = 0; i != 8; ++i)
    threads.emplace_back ([&, w = &waiters.emplace_back ()] {
      for (int round = 0; round != 3 && w->failures == 0; ++round)
        client.delete_clip ({.ClipID = large}, AMethod::bind (w, &Waiter::ok),
                            AMethod::bind (w, &Waiter::failed));
    });
  ASSERT_TRUE (support::wait_until ([&] { return client.outstanding_count () >= 8; }));
  // The client ends the link: an end from a server that reads so slowly would come too late.
  server.send ("<report></x></report>");
  for (std::thread &thread : threads)
    thread.join ();
  ASSERT_TRUE (client.wait_noted ("disconnected")); // behind the last of the failures
  for (Waiter &waiter : waiters) {
    EXPECT_GE (waiter.failures, 1);
    EXPECT_EQ (waiter.answers, 0);
  }
}

} // namespace
