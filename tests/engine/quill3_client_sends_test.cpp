#include "engine/connection.h"

#include "support/semaphore.h"

#include <thread>

namespace {

using namespace connection;

// ---- Sends that fail or fall short

TEST_F (Connection, IsNotTouchedByNoBytes) {
  start ();
  stop ();
  ASSERT_TRUE (server.wait_for_commands (1));
  int pieces = 0;
  client.instead_of_transmit = [&] (const void *, uint64_t) -> int64_t { return ++pieces, -1; };
  client.send_bytes ("", 0);
  EXPECT_EQ (pieces, 0);
  server.report (created ("C1"));
  ASSERT_TRUE (client.wait_noted ("created C1"));
  EXPECT_EQ (client.outstanding_count (), 1u);
  EXPECT_TRUE (client.is_connected ());
  EXPECT_THAT (notes.lines (), ElementsAre ("connected", "created C1"));
}

TEST_F (Connection, FailsTheRestOfADocumentOnTheSendersThread) {
  start ();
  stop ("earlier ");
  ASSERT_TRUE (server.wait_for_commands (1));
  notes.take_lines ();
  int pieces = 0;
  client.instead_of_transmit = [&] (const void *, uint64_t) -> int64_t { return ++pieces == 2 ? -1 : 0; };
  client.delete_clip ({.ClipID = AString::from_latin1 (std::string (6000, 'x'))}, notes.ok (),
                      notes.error ());
  // The third piece found what the second had left; both commands have failed before the wrapper returned.
  EXPECT_EQ (pieces, 2);
  EXPECT_THAT (notes.take_lines (), UnorderedElementsAre ("earlier " + failed, failed));
  EXPECT_EQ (client.outstanding_count (), 0u);
  wake ();
  ASSERT_TRUE (client.wait_noted ("disconnected"));
  EXPECT_EQ (notes.count (failed), 0u);
  ASSERT_TRUE (client.wait_noted ("connected"));
  AString xid = stop ();
  ASSERT_TRUE (server.wait_for_commands (2));
  EXPECT_EQ (server.command (2).xid, xid.to_std_string ());
}

TEST_F (Connection, IsGivenUpByItsThreadAfterAFailedSend) {
  start ();
  client.instead_of_transmit = [] (const void *, uint64_t) -> int64_t { return -1; };
  stop ();
  ASSERT_TRUE (client.wait_noted ("disconnected")); // when its wait for something to read has run out
  EXPECT_THAT (first_lines (3), ElementsAre ("connected", failed, "disconnected"));
}

// What was sent is subtracted from what remains, and the place moves by what then remains.
TEST_F (Connection, MovesOnByWhatRemainsAfterAShortSend) {
  start ();
  std::vector<std::string> asked;
  client.instead_of_transmit = [&] (const void *data, uint64_t length) -> int64_t {
    asked.emplace_back (static_cast<const char *> (data), length);
    return asked.size () == 1 ? 6 : static_cast<int64_t> (length);
  };
  client.send_bytes ("0123456789", 10);
  EXPECT_THAT (asked, ElementsAre ("0123456789", "4567"));
  asked.clear ();
  client.instead_of_transmit = [&] (const void *data, uint64_t length) -> int64_t {
    asked.emplace_back (static_cast<const char *> (data), length);
    return 1 + (asked.size () == 1 ? 7 : 0);
  };
  client.send_bytes ("0123456789", 10);
  EXPECT_THAT (asked, ElementsAre ("0123456789", "23", "3"));
  EXPECT_TRUE (client.is_connected ());
}

TEST_F (Connection, DoesNotReadBeyondTheBytesAfterAShortSend) {
  start ();
  stop ();
  ASSERT_TRUE (server.wait_for_commands (1));
  std::vector<std::string> asked;
  client.instead_of_transmit = [&] (const void *data, uint64_t length) -> int64_t {
    asked.emplace_back (static_cast<const char *> (data), length);
    return 4;
  };
  client.send_bytes ("0123456789", 10); // six remain, and six from place 6 on would reach beyond the tenth
  EXPECT_THAT (asked, ElementsAre ("0123456789"));
  EXPECT_THAT (notes.lines (), ElementsAre ("connected"));
  client.send_bytes ("x", 1);
  EXPECT_THAT (asked, ElementsAre ("0123456789"));
  wake ();
  ASSERT_TRUE (client.wait_noted ("disconnected"));
  EXPECT_THAT (first_lines (3), ElementsAre ("connected", failed, "disconnected"));
}

TEST_F (Connection, GivesTheSystemNoMoreThanTwoGigabytesAtOnce) {
  start ();
  std::vector<uint64_t> asked;
  const char bytes[16] = {};
  const void *last = nullptr;
  client.instead_of_transmit = [&] (const void *data, uint64_t length) -> int64_t {
    asked.push_back (length);
    last = data;
    return static_cast<int64_t> (length);
  };
  client.send_bytes (bytes, 0x80000006);
  EXPECT_THAT (asked, ElementsAre (0x7FFFFFFFu, 7u));
  EXPECT_EQ (last, bytes + 7);
}

// Keeps the first send until it is let go, and has it fail; the others are made.
struct FirstSendHeld {
  support::Semaphore begun{0}, go_on{0};
  std::atomic<bool> taken{false};

  int64_t transmit () {
    if (taken.exchange (true))
      return 0;
    begun.release ();
    go_on.acquire ();
    return -1;
  }
};

// A sender that is still busy with a lost link. Its failure affects no other link, and what it had left to
// send does not appear on the next link.
TEST_F (Connection, IsNotHarmedByALateFailureOnTheOneBefore) {
  FirstSendHeld held;
  server.answer_any ("<ok />");
  client.instead_of_transmit = [&] (const void *, uint64_t) { return held.transmit (); };
  start ();
  std::thread sender ([&] {
    client.delete_clip ({.ClipID = AString::from_latin1 (std::string (6000, 'x'))}, notes.ok ("old ok"),
                        notes.error ("old error"));
  });
  held.begun.acquire ();
  server.drop (1);
  wait_for_link (2);
  EXPECT_EQ (notes.count ("old " + failed), 1u); // the thread did not wait for the sender
  held.go_on.release ();
  sender.join ();
  stop ();
  ASSERT_TRUE (client.wait_noted ("ok"));
  EXPECT_EQ (server.received (2).find ('x'), server.received (2).find ("xid"));
  EXPECT_EQ (server.command_count (), 1u);
  EXPECT_EQ (notes.count ("disconnected"), 1u);
  EXPECT_EQ (notes.count ("old " + failed), 1u);
  EXPECT_EQ (notes.count ("old ok"), 0u);
}

// A command that has failed while it waited for its turn to be sent is not sent any more.
TEST_F (Connection, IsNotGivenCommandsThatHaveFailedOnTheOneBefore) {
  FirstSendHeld held;
  server.answer_any ("<ok />");
  client.instead_of_transmit = [&] (const void *, uint64_t) { return held.transmit (); };
  start ();
  std::thread first ([&] { stop ("first "); });
  held.begun.acquire ();
  std::thread second (
      [&] { client.unload ({.Channel = 3}, notes.ok ("second ok"), notes.error ("second error")); });
  ASSERT_TRUE (wait_until ([&] { return client.outstanding_count () == 2; }));
  server.drop (1);
  wait_for_link (2);
  EXPECT_EQ (notes.count ("second " + failed), 1u);
  held.go_on.release ();
  first.join ();
  second.join ();
  stop ();
  ASSERT_TRUE (client.wait_noted ("ok"));
  EXPECT_EQ (server.command_count (), 1u);
  EXPECT_EQ (server.command (1).name, "stop");
  EXPECT_EQ (notes.count ("second ok"), 0u);
}

// The link goes, and the next one comes, between the moment at which a sender finds its command still open
// and the first byte: the command fails with the link that it was meant for, and the next one never sees it.
TEST_F (Connection, IsNotGivenACommandOfTheOneBeforeAtTheLastMoment) {
  server.answer_any ("<ok />");
  start ();
  bool asked = false;
  client.when_asked = [&] (bool is_over) {
    EXPECT_FALSE (is_over);
    if (!std::exchange (asked, true)) {
      server.drop (1);
      wait_for_link (2);
    }
    return is_over;
  };
  stop ("old ");
  EXPECT_EQ (notes.count ("old " + failed), 1u);
  stop ();
  ASSERT_TRUE (client.wait_noted ("ok"));
  EXPECT_EQ (server.command_count (), 1u);
  EXPECT_EQ (notes.count ("old ok"), 0u);
}

// Sends until a command fails: more than the system's buffers take, where the server reads nothing. The
// result is the number of commands.
size_t send_without_end (TestClient &client, Notes &notes) {
  size_t sent = 0;
  for (; notes.count ("full " + failing + " 0") == 0 && !client.stop_requested (); ++sent)
    client.delete_clip ({.ClipID = AString::from_latin1 (std::string (100000, 'x'))}, {},
                        notes.error ("full"));
  return sent;
}

// Whether somebody is sending and the system takes nothing.
bool is_blocked (TestClient &client) {
  if (!client.in_transmit)
    return false;
  std::vector<support::net::Watch> watch (1);
  watch[0].handle = client.last_socket;
  watch[0].want_write = true;
  support::net::wait_ready (watch, 0);
  return !watch[0].can_write && client.in_transmit;
}

// Waits until no more bytes go out: it has been so for many looks in a row.
void wait_until_blocked (TestClient &client) {
  int looks = 0;
  ASSERT_TRUE (wait_until ([&] { return (looks = is_blocked (client) ? looks + 1 : 0) == 20; }));
}

// The server neither reads nor closes; it is this side that gives the link up.
TEST_F (Connection, FreesASenderThatIsBlockedWhenItGoes) {
  server.read_slowly (0, 1h);
  start ();
  size_t sent = 0;
  std::thread sender ([&] { sent = send_without_end (client, notes); });
  wait_until_blocked (client);
  server.send ("<report></reply></report>");
  sender.join ();
  ASSERT_TRUE (client.wait_noted ("disconnected"));
  EXPECT_TRUE (wait_until ([&] { return notes.count ("full " + failing + " 0") == sent; }));
  EXPECT_TRUE (wait_until ([&] { return client.outstanding_count () == 0; }));
}

TEST_F (Connection, LetsItsThreadStopWhileItIsBlockedInASend) {
  server.read_slowly (0, 1h);
  std::atomic<bool> blocked{true};
  {
    Notes own;
    TestClient stuck (own, server.address ());
    stuck.when_connected = [&] {
      send_without_end (stuck, own);
      blocked = false;
    };
    stuck.start_thread (-1);
    wait_until_blocked (stuck);
    EXPECT_TRUE (blocked);
    stuck.stop_and_join ();
    EXPECT_EQ (own.count ("full " + failing + " 0"), 1u)
        << "the one in hand; to the others an end is no failure";
  }
  EXPECT_FALSE (blocked);
}

} // namespace
