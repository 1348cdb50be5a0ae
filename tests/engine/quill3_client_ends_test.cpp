#include "engine/connection.h"

#include "base/aref.h"
#include "platform/threads.h"
#include "support/own_address.h"
#include "support/semaphore.h"
#include "support/soak.h"

#include <list>
#include <memory>
#include <thread>

namespace {

using namespace connection;

// ---- The end

// Whether an end comes at once and not when some wait runs out, which would make every one slow. A busy
// machine slows only some.
template <class End>
bool comes_within (std::chrono::milliseconds limit, End time_of_end) {
  for (int attempt = 0; attempt != 10; ++attempt)
    if (time_of_end () < limit)
      return true;
  return false;
}

TEST_F (Connection, ThatWasNeverStartedEndsAtOnce) {
  EXPECT_TRUE (comes_within (50ms, [this] {
    Notes own;
    return time_of ([&] { TestClient never (own, server.address ()); });
  }));
}

template <class Prepare>
std::chrono::milliseconds time_of_end (uint32_t address, Prepare prepare) {
  Notes own;
  TestClient mortal (own, address);
  mortal.start_thread (-1);
  prepare (mortal);
  return time_of ([&] { mortal.stop_and_join (); });
}

TEST_F (Connection, EndsAtOnceOnASilentLink) {
  EXPECT_TRUE (comes_within (200ms, [this] {
    return time_of_end (server.address (), [] (TestClient &c) { ASSERT_TRUE (c.wait_connected ()); });
  }));
  EXPECT_TRUE (server.wait_until_left ());
}

TEST_F (Connection, EndsAtOnceInThePauseBeforeAnAttempt) {
  EXPECT_TRUE (comes_within (50ms, [this] { return time_of_end (server.address (), [] (TestClient &) {}); }));
}

TEST_F (Connection, EndsAtOnceWhileAnAttemptHangs) {
  server.stall ();
  EXPECT_TRUE (comes_within (200ms, [this] {
    return time_of_end (server.address (), [] (TestClient &c) {
      EXPECT_FALSE (wait_until ([&] { return c.is_connected (); }, 200ms));
    });
  }));
}

TEST_F (Connection, EndsWithoutAWordToOpenCommands) {
  {
    Notes own;
    TestClient mortal (own, server.address ());
    mortal.start_thread (-1);
    ASSERT_TRUE (mortal.wait_connected ());
    mortal.stop ({.Channel = 0}, notes.ok (), notes.error ());
    ASSERT_TRUE (server.wait_for_commands (1));
  }
  EXPECT_TRUE (server.wait_until_left ());
  EXPECT_THAT (notes.lines (), IsEmpty ());
}

// Nobody would fail it later: whoever sent it must not wait for ever.
TEST_F (Connection, FailsWhatIsSentBehindItsEndAndNothingElse) {
  start ();
  stop ("before ");
  ASSERT_TRUE (server.wait_for_commands (1));
  client.stop_and_join ();
  stop ("after ");
  client.stop ({.Channel = 0});
  EXPECT_THAT (notes.take_lines (), ElementsAre ("connected", "after " + failed));
  EXPECT_EQ (client.outstanding_count (), 1u);
  EXPECT_EQ (server.command_count (), 1u);
}

// The stream fails in the very feed during which the end begins.
TEST_F (Connection, EndsWithoutAWordThoughTheLinkFailsMeanwhile) {
  support::Semaphore in_handler{0}, go_on{0};
  client.when_clip = [&] (const std::string &) {
    in_handler.release ();
    go_on.acquire ();
  };
  start ();
  stop ();
  ASSERT_TRUE (server.wait_for_commands (1));
  server.send ("<report>" + created ("C1") + "</report><report></x></report>");
  in_handler.acquire ();
  std::thread ending ([&] { client.stop_and_join (); });
  EXPECT_TRUE (wait_until ([&] { return client.stop_requested (); }));
  go_on.release ();
  ending.join ();
  EXPECT_THAT (notes.lines (), ElementsAre ("connected", "created C1"));
  EXPECT_EQ (client.outstanding_count (), 1u);
}

TEST_F (Connection, EndsWhileReportsPourIn) {
  std::atomic<bool> ended{false};
  std::thread pouring ([&] {
    while (!ended) {
      for (int i = 0; i != 20; ++i)
        server.report (created ("C"));
      server.wait_until_sent ();
    }
  });
  for (int i = 0; i != 5; ++i) {
    Notes own;
    TestClient mortal (own, server.address ());
    mortal.start_thread (-1);
    ASSERT_TRUE (mortal.wait_noted ("created C"));
  }
  ended = true;
  pouring.join ();
}

// The last reference is dropped on the connection's own thread. The thread must not wait for itself, no more
// handlers run, and the object is destroyed all the same.
TEST_F (Connection, EndsOnItsOwnThread) {
  std::atomic<uint32_t> destroyer{0}, last_user{0};
  std::atomic<int> handled{0};
  ARef<TestClient> reference = ARef<TestClient>::create (notes, server.address ());
  TestClient *mortal = reference.get ();
  mortal->when_destroyed = [&] { destroyer = platform::thread_number (); };
  mortal->when_clip = [&] (const std::string &) {
    ++handled;
    last_user = platform::thread_number ();
    reference = nullptr;
  };
  mortal->start_thread (-1);
  ASSERT_TRUE (mortal->wait_connected ());
  ASSERT_TRUE (server.wait_for_connections (1));
  std::string report = "<report>" + created ("C1") + "</report>";
  server.send (report + report + report);
  ASSERT_TRUE (wait_until ([&] { return destroyer != 0; }));
  EXPECT_EQ (destroyer, last_user);
  EXPECT_NE (destroyer, platform::thread_number ());
  EXPECT_EQ (handled, 1);
  EXPECT_TRUE (server.wait_until_left ());
  EXPECT_EQ (notes.count ("disconnected"), 0u);
}

TEST_F (Connection, EndsOnItsOwnThreadInAFailure) {
  std::atomic<bool> destroyed{false};
  ARef<TestClient> reference = ARef<TestClient>::create (notes, server.address ());
  struct Drops {
    ARef<TestClient> &reference;
    void failed (AString, uint32_t) { reference = nullptr; }
  } drops{reference};
  reference->when_destroyed = [&] { destroyed = true; };
  reference->start_thread (-1);
  ASSERT_TRUE (reference->wait_connected ());
  reference->stop ({.Channel = 0}, {}, AMethod::bind (&drops, &Drops::failed));
  ASSERT_TRUE (server.wait_for_commands (1));
  server.drop ();
  ASSERT_TRUE (wait_until ([&] { return destroyed.load (); }));
  EXPECT_EQ (notes.count ("disconnected"), 0u);
}

// A send on the connection's own thread finds that the link is down, and the failure that follows drops the
// last reference: the send returns into an object that is still there.
TEST_F (Connection, EndsOnItsOwnThreadInASend) {
  std::atomic<bool> destroyed{false}, sent{false};
  ARef<TestClient> reference = ARef<TestClient>::create (notes, server.address ());
  struct Drops {
    ARef<TestClient> &reference;
    void failed (AString, uint32_t) { reference = nullptr; }
  } drops{reference};
  TestClient *mortal = reference.get ();
  mortal->when_destroyed = [&] { destroyed = true; };
  mortal->instead_of_transmit = [] (const void *, uint64_t) -> int64_t { return -1; };
  mortal->when_connected = [&, mortal] {
    mortal->stop ({.Channel = 0}, {}, AMethod::bind (&drops, &Drops::failed));
    mortal->stop ({.Channel = 1}, notes.ok (), notes.error ()); // finds the link down and fails both
    EXPECT_TRUE (mortal->stop_requested ());
    EXPECT_FALSE (destroyed);
    mortal->stop ({.Channel = 2}, notes.ok (), notes.error ());
    EXPECT_EQ (mortal->outstanding_count (), 0u);
    sent = true;
  };
  mortal->start_thread (-1);
  ASSERT_TRUE (wait_until ([&] { return destroyed.load (); }));
  EXPECT_TRUE (sent);
  EXPECT_THAT (notes.lines (), ElementsAre ("connected", failed, failed));
}

TEST_F (Connection, OutlivesWhatItsHandlersThrow) {
  int ups = 0, downs = 0;
  client.when_disconnected = [&] {
    if (++downs == 1)
      throw std::bad_alloc ();
  };
  client.when_connected = [&] {
    if (++ups == 3)
      throw std::bad_alloc ();
  };
  client.when_clip = [&] (const std::string &clip) {
    if (clip == "BAD")
      throw std::bad_alloc ();
  };
  start ();
  server.drop ();
  wait_for_link (2);
  server.drop ();
  wait_for_link (4); // the third was given up
  server.report (created ("BAD"));
  wait_for_link (5);
  server.report (created ("C2"));
  EXPECT_TRUE (client.wait_noted ("created C2"));
}

TEST_F (Connection, EndsOnAnotherThread) {
  std::atomic<uint32_t> destroyer{0};
  ARef<TestClient> reference = ARef<TestClient>::create (notes, server.address ());
  reference->when_destroyed = [&] { destroyer = platform::thread_number (); };
  reference->start_thread (-1);
  ASSERT_TRUE (reference->wait_connected ());
  reference = nullptr;
  EXPECT_EQ (destroyer, platform::thread_number ());
}

/// Somewhere to connect to, or to be refused: the system takes the connections, and nobody serves them.
struct Place {
  support::OwnAddress address;
  support::net::Handle listener = support::net::no_handle;

  explicit Place (bool listens) {
    if (listens)
      listener = support::net::listen_on (address.value (), Client::server_port, 4);
  }
  ~Place () {
    if (listener != support::net::no_handle)
      support::net::close_handle (listener);
  }
};

// Two hundred connections to two hundred addresses, half of which refuse: their ends do not add up to waits.
// Such waits would make twenty seconds of what takes a fifth of one, and some on a busy machine.
TEST (Connections, EndAllTogether) {
  std::list<Place> places;
  for (int i = 0; i != 200; ++i)
    places.emplace_back (i % 2 == 0);
  EXPECT_TRUE (comes_within (5s, [&] {
    std::list<Notes> notes;
    std::vector<std::unique_ptr<TestClient>> clients;
    for (const Place &place : places)
      clients.push_back (std::make_unique<TestClient> (notes.emplace_back (), place.address.value ()));
    for (auto &client : clients)
      client->start_thread (-1);
    for (size_t i = 0; i != clients.size (); i += 2)
      EXPECT_TRUE (clients[i]->wait_connected ());
    return time_of ([&] { clients.clear (); });
  }));
}

// ---- Everything at once

// Commands from many threads while the server drops the link again and again: each ends once, and what is
// answered is answered to the command that asked.
TEST_F (Connection, EndsEachCommandOnceWhateverHappensToTheLink) {
  constexpr int senders = 6;
  const int rounds = support::rounds (100, 4000);
  std::atomic<int> served{0};
  server.on_any ([&] (const support::Command &command) {
    std::string reply =
        support::reply_to (command, "<clipexists><ClipID>" + support::text_of (command.document, "ClipID") +
                                        "</ClipID><Exists>true</Exists></clipexists>");
    if (++served % 97 == 0)
      server.drop (command.connection);
    else if (served % 61 == 0)
      server.reset (command.connection);
    return reply;
  });
  start ();
  struct Waiter {
    std::string clip;
    support::Semaphore done{0};
    std::atomic<int> answers{0}, failures{0}, wrong{0};
    void answered (AString ClipID, bool) {
      wrong += ClipID.to_std_string () == clip ? 0 : 1;
      ++answers;
      done.release ();
    }
    void failed (AString, uint32_t) {
      ++failures;
      done.release ();
    }
  };
  std::atomic<int> answers{0}, failures{0}, bad{0};
  std::vector<std::thread> threads;
  for (int i = 0; i != senders; ++i)
    threads.emplace_back ([&, i] {
      std::list<Waiter> waiters; // kept to the end, to see what comes late
      for (int round = 0; round != rounds; ++round) {
        Waiter &w = waiters.emplace_back ();
        w.clip = std::to_string (i) + "." + std::to_string (round);
        client.clip_exists ({.ClipID = AString::from_latin1 (w.clip)}, AMethod::bind (&w, &Waiter::answered),
                            AMethod::bind (&w, &Waiter::failed));
        w.done.acquire ();
        if (w.failures != 0)
          std::this_thread::yield ();
        while (!client.is_connected () && round % 2 == 0)
          std::this_thread::sleep_for (1ms);
      }
      for (Waiter &w : waiters) {
        answers += w.answers;
        failures += w.failures;
        bad += w.wrong != 0 || w.answers + w.failures != 1 ? 1 : 0;
      }
    });
  for (std::thread &thread : threads)
    thread.join ();
  EXPECT_EQ (bad, 0);
  EXPECT_EQ (answers + failures, senders * rounds);
  EXPECT_GT (answers, 0);
  EXPECT_GT (failures, 0);
  // A command leaves the table behind its callback.
  EXPECT_TRUE (wait_until ([&] { return client.outstanding_count () == 0; }));
}

} // namespace
