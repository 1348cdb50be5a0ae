#include "base/amethod.h"
#include "base/aref.h"
#include "engine/test_client.h"
#include "platform/threads.h"
#include "support/assert_counter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <semaphore>
#include <thread>

namespace {

using namespace QUILL3;
using namespace std::chrono_literals;
using support::FakeServer;
using support::wait_until;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string failing = "Failing all outstanding commands";
const std::string failed = "error " + failing + " 0";

std::string created (const std::string &clip) {
  return "<clip_created><ClipID>" + clip + "</ClipID></clip_created>";
}

template <class Action>
std::chrono::milliseconds time_of (Action action) {
  auto start = std::chrono::steady_clock::now ();
  action ();
  return std::chrono::duration_cast<std::chrono::milliseconds> (std::chrono::steady_clock::now () - start);
}

class Connection : public ::testing::Test {
protected:
  FakeServer server;
  Notes notes;
  TestClient client{notes, server.address ()};

  void start () {
    client.start_thread (-1);
    ASSERT_TRUE (client.wait_noted ("connected"));
    ASSERT_TRUE (server.wait_for_connections (1));
  }
  // Ends the wait of the connection's thread for something to read, by something that no handler is called
  // for.
  void wake () { server.send ("<report />\r\n<report></report>"); }
  AString stop (const std::string &name = "") {
    return client.stop ({.Channel = 0}, notes.ok (name + "ok"), notes.error (name + "error"));
  }
  // Waits until this connection has gone and the next has come.
  void wait_for_link (size_t number) {
    ASSERT_TRUE (client.wait_noted ("connected", number));
    ASSERT_TRUE (server.wait_for_connections (number));
  }
};

// ---- The link

TEST_F (Connection, HasOnePortAndOneDefaultAddress) {
  EXPECT_EQ (Client::server_port, 8913);
  EXPECT_EQ (Client::default_server_address, 0x7F000001u);
}

TEST_F (Connection, ComesUpByItselfAfterAPause) {
  EXPECT_FALSE (client.is_connected ());
  auto took = time_of ([&] {
    client.start_thread (-1);
    EXPECT_FALSE (client.is_connected ());
    ASSERT_TRUE (client.wait_connected ());
  });
  EXPECT_GE (took, 95ms);
  EXPECT_TRUE (server.wait_for_connections (1));
}

TEST_F (Connection, HasOneThreadHoweverOftenItIsStarted) {
  client.start_thread (-1);
  start ();
  server.report (created ("C1"));
  ASSERT_TRUE (client.wait_noted ("created C1"));
  EXPECT_EQ (server.accepted (), 1u);
}

TEST_F (Connection, IsTriedAgainUntilAServerIsThere) {
  server.refuse ();
  client.start_thread (-1);
  ASSERT_FALSE (wait_until ([&] { return client.is_connected (); }, 350ms));
  server.listen ();
  ASSERT_TRUE (client.wait_connected ());
}

TEST_F (Connection, ComesBackAfterALoss) {
  start ();
  server.drop ();
  wait_for_link (2);
  server.reset ();
  wait_for_link (3);
  EXPECT_TRUE (client.wait_connected ());
  EXPECT_THAT (notes.lines (),
               ElementsAre ("connected", "disconnected", "connected", "disconnected", "connected"));
}

TEST_F (Connection, TakesANewAddressAfterTheLossOfTheOldOne) {
  FakeServer other;
  start ();
  client.set_server_address (other.address ());
  AString xid = stop ();
  EXPECT_EQ (server.command (1).xid, xid.to_std_string ());
  EXPECT_EQ (other.accepted (), 0u);
  server.drop ();
  ASSERT_TRUE (other.wait_for_connections (1));
  EXPECT_EQ (server.accepted (), 1u);
}

TEST_F (Connection, SendsNothingByItself) {
  start ();
  server.report (created ("C1"));
  ASSERT_TRUE (client.wait_noted ("created C1"));
  EXPECT_EQ (server.received (), "");
}

TEST_F (Connection, OfEachClientIsItsOwn) {
  Notes other_notes;
  TestClient other (other_notes, server.address ());
  start ();
  other.start_thread (-1);
  ASSERT_TRUE (other.wait_noted ("connected"));
  ASSERT_TRUE (server.wait_for_connections (2));
  server.drop (1);
  ASSERT_TRUE (client.wait_noted ("disconnected"));
  EXPECT_TRUE (other.is_connected ());
}

// ---- What is received

TEST_F (Connection, BringsMessagesHoweverTheyAreCut) {
  start ();
  server.split_into (1);
  server.report (created ("C1"));
  ASSERT_TRUE (client.wait_noted ("created C1"));
  server.split_into (0);
  for (size_t at = 1; at != 40; ++at) {
    server.split_at (at);
    server.report (created ("S" + std::to_string (at)));
  }
  ASSERT_TRUE (client.wait_noted ("created S39"));
  EXPECT_EQ (notes.count (), 41u);
}

TEST_F (Connection, EndsAtWhatIsNoXMLBehindTheMessagesBefore) {
  start ();
  stop ();
  ASSERT_TRUE (server.wait_for_commands (1));
  notes.take ();
  server.send ("<report>" + created ("C1") + "</report><report>" + created ("C2") +
               "</report><report><a</report><report>" + created ("C3") + "</report>");
  ASSERT_TRUE (client.wait_noted ("disconnected"));
  wait_for_link (1);
  server.report (created ("C4"));
  ASSERT_TRUE (client.wait_noted ("created C4"));
  EXPECT_THAT (notes.lines (),
               ElementsAre ("created C1", "created C2", failed, "disconnected", "connected", "created C4"));
}

TEST_F (Connection, EndsAtAMessageThatIsTooLong) {
  start ();
  server.report (created (std::string (32768, 'x')));
  ASSERT_TRUE (client.wait_noted ("disconnected"));
  wait_for_link (2);
  server.report (created ("C1"));
  ASSERT_TRUE (client.wait_noted ("created C1"));
}

TEST_F (Connection, StartsCleanAfterHalfAMessage) {
  start ();
  server.send ("<report><clip_created><ClipID>half");
  server.drop ();
  wait_for_link (2);
  server.send (" of it</ClipID></clip_created></report><report>" + created ("C1") + "</report>");
  ASSERT_TRUE (client.wait_noted ("created C1"));
  EXPECT_EQ (notes.count (), 4u);
}

TEST_F (Connection, StandsMessagesThatCannotBeUsed) {
  start ();
  server.send (
      "HELLO\r\n<report></report><reply></reply><reply><xid>1</xid><ok /></reply>"
      "<report><brand_new /></report><report><channel_speed><Channel>Z</Channel></channel_speed></report>");
  server.report (created ("C1"));
  ASSERT_TRUE (client.wait_noted ("created C1"));
  EXPECT_EQ (server.accepted (), 1u);
  EXPECT_THAT (notes.lines (), ElementsAre ("connected", "created C1"));
}

// As deep as the largest message allows, on the thread's own small stack: parsed, shown to a hook that copies
// it, looked at and destroyed.
TEST_F (Connection, StandsTheDeepestNesting) {
  XMLTree copy;
  struct Copies {
    XMLTree &to;
    void take (const XMLTree &message) {
      if (message.has_child ("clip_created"))
        to = message;
    }
  } copies{copy};
  client.set_receive_hook (AMethod::bind (&copies, &Copies::take));
  start ();
  std::string deep;
  constexpr int levels = 4660;
  for (int i = 0; i != levels; ++i)
    deep += "<a>";
  for (int i = 0; i != levels; ++i)
    deep += "</a>";
  server.send ("<report><clip_created>" + deep + "</clip_created></report>"); // known body, read in vain
  server.send ("<report><brand_new>" + deep + "</brand_new></report>");
  std::string unclosed = "<report>";
  while (unclosed.size () < 32700)
    unclosed += "<a>";
  server.report (created ("C1"));
  ASSERT_TRUE (client.wait_noted ("created C1"));
  EXPECT_EQ (server.accepted (), 1u);
  server.send (unclosed + "</report>");
  ASSERT_TRUE (client.wait_noted ("disconnected"));
  wait_for_link (2);
}

// ---- Commands

TEST_F (Connection, CarriesACommandAndItsReply) {
  server.answer ("stop", "<ok />");
  start ();
  AString xid = stop ();
  ASSERT_TRUE (client.wait_noted ("ok"));
  EXPECT_EQ (server.received (), "<cmd>\r\n<xid>" + xid.to_std_string () +
                                     "</xid>\r\n<stop>\r\n<Channel>A</Channel>\r\n</stop>\r\n</cmd>");
  EXPECT_EQ (client.outstanding_count (), 0u);
}

TEST_F (Connection, FailsACommandAtOnceWhileThereIsNone) {
  stop ("before ");
  EXPECT_THAT (notes.take (), ElementsAre ("before " + failed));
  server.refuse ();
  client.start_thread (-1);
  stop ("while ");
  EXPECT_THAT (notes.take (), ElementsAre ("while " + failed));
  server.listen ();
  ASSERT_TRUE (client.wait_connected ());
  AString xid = stop ();
  EXPECT_EQ (server.command (1).xid, xid.to_std_string ());
  EXPECT_EQ (server.command_count (), 1u);
}

TEST_F (Connection, FailsEachOpenCommandOnceBeforeItIsGone) {
  start ();
  stop ("a ");
  stop ("b ");
  client.get_computer_name ({}, {}, notes.error ("c error"));
  client.play ({.Channel = 1});
  ASSERT_TRUE (server.wait_for_commands (4));
  notes.take ();
  server.drop ();
  ASSERT_TRUE (client.wait_noted ("disconnected"));
  std::vector<std::string> lines = notes.lines ();
  lines.resize (4);
  EXPECT_EQ (lines.back (), "disconnected");
  EXPECT_EQ (notes.count ("a " + failed), 1u);
  EXPECT_EQ (notes.count ("b " + failed), 1u);
  EXPECT_EQ (notes.count ("c " + failed), 1u);
  EXPECT_EQ (client.outstanding_count (), 0u);
}

TEST_F (Connection, StandsRepliesThatComeTwiceAndOutOfOrder) {
  start ();
  stop ("a ");
  stop ("b ");
  ASSERT_TRUE (server.wait_for_commands (2));
  auto commands = server.commands ();
  for (int i = 0; i != 2; ++i) {
    server.send (support::reply_to (commands[1], "<ok />"));
    server.send (support::reply_to (commands[0], "<ok />"));
  }
  server.report (created ("C1"));
  ASSERT_TRUE (client.wait_noted ("created C1"));
  EXPECT_THAT (notes.lines (), ElementsAre ("connected", "b ok", "a ok", "created C1"));
}

// 64 texts by value through every floor, on the thread's small stack.
TEST_F (Connection, CarriesTheLargestReply) {
  std::string values;
  for (int i = 0; i != 64; ++i)
    values += "<ConfigurationItemValue>v" + std::to_string (i) + "</ConfigurationItemValue>";
  server.answer ("get_configuration",
                 {"<configuration_item><ConfigurationItem><ConfigurationItemName>fan</ConfigurationItemName>"
                  "<ConfigurationItemAccess>user</ConfigurationItemAccess>"
                  "<ConfigurationItemEffectiveValue>on</ConfigurationItemEffectiveValue>"
                  "<ConfigurationItemBootValue /><ConfigurationItemSavedValue />"
                  "<ConfigurationItemAllowedValues>" +
                      values + "</ConfigurationItemAllowedValues></ConfigurationItem></configuration_item>",
                  "<ok />"});
  start ();
  client.get_configuration ({}, notes.ok (), notes.make<callback::configuration_item> ("item"),
                            notes.error ());
  ASSERT_TRUE (client.wait_noted ("ok"));
  EXPECT_THAT (notes.lines (), ElementsAre ("connected", "item fan=on", "ok"));
}

TEST_F (Connection, CarriesCommandsFromItsOwnThread) {
  server.answer_any ("<ok />");
  client.when_connected = [&] { stop ("first "); };
  client.when_clip = [&] (const std::string &) { stop ("again "); };
  start ();
  ASSERT_TRUE (client.wait_noted ("first ok"));
  server.report (created ("C1"));
  ASSERT_TRUE (client.wait_noted ("again ok"));
  server.drop ();
  ASSERT_TRUE (client.wait_noted ("first ok", 2));
}

TEST_F (Connection, TakesDocumentsOfManyThreadsWhole) {
  constexpr size_t senders = 4, rounds = 50;
  server.answer_any ("<ok />");
  start ();
  std::vector<std::thread> threads;
  for (size_t i = 0; i != senders; ++i)
    threads.emplace_back ([&, i] {
      for (size_t round = 0; round != rounds; ++round)
        client.delete_clip ({.ClipID = AString::from_latin1 (std::string (1 + i * 900, 'x'))}, notes.ok (),
                            notes.error ());
    });
  for (std::thread &thread : threads)
    thread.join ();
  ASSERT_TRUE (client.wait_noted ("ok", senders * rounds));
  EXPECT_EQ (server.command_count (), senders * rounds);
  EXPECT_EQ (notes.count (), senders * rounds + 1);
}

// ---- Sends that fail or fall short

TEST_F (Connection, IsNotTouchedByNoBytes) {
  start ();
  stop ();
  ASSERT_TRUE (server.wait_for_commands (1));
  client.instead_of_transmit = [] (const void *, uint64_t) -> int64_t { return -1; };
  client.send_bytes ("", 0);
  EXPECT_EQ (client.outstanding_count (), 1u);
  EXPECT_TRUE (client.is_connected ());
}

TEST_F (Connection, FailsTheRestOfADocumentOnTheSendersThread) {
  start ();
  stop ("earlier ");
  ASSERT_TRUE (server.wait_for_commands (1));
  notes.take ();
  int pieces = 0;
  client.instead_of_transmit = [&] (const void *, uint64_t) -> int64_t { return ++pieces == 2 ? -1 : 0; };
  client.delete_clip ({.ClipID = AString::from_latin1 (std::string (6000, 'x'))}, notes.ok (),
                      notes.error ());
  // The third piece found what the second had left; both commands have failed before the wrapper returned.
  EXPECT_EQ (pieces, 2);
  EXPECT_THAT (notes.take (), ElementsAre ("earlier " + failed, failed));
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
  EXPECT_THAT (notes.lines (), ElementsAre ("connected", failed, "disconnected"));
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
  EXPECT_THAT (notes.lines (), ElementsAre ("connected", failed, "disconnected"));
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

// A sender that is still busy with a link which has gone: what it finds out about it is nobody else's affair,
// and what it had left to send does not appear on the next link.
TEST_F (Connection, IsNotHarmedByALateFailureOnTheOneBefore) {
  std::binary_semaphore in_send{0}, go_on{0};
  std::atomic<bool> held{false};
  server.answer_any ("<ok />");
  client.instead_of_transmit = [&] (const void *, uint64_t) -> int64_t {
    if (held.exchange (true))
      return 0;
    in_send.release ();
    go_on.acquire ();
    return -1;
  };
  start ();
  std::thread sender ([&] {
    client.delete_clip ({.ClipID = AString::from_latin1 (std::string (6000, 'x'))}, notes.ok ("old ok"),
                        notes.error ("old error"));
  });
  in_send.acquire ();
  server.drop (1);
  wait_for_link (2);
  EXPECT_EQ (notes.count ("old " + failed), 1u); // the thread did not wait for the sender
  go_on.release ();
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
  std::binary_semaphore in_send{0}, go_on{0};
  std::atomic<bool> held{false};
  server.answer_any ("<ok />");
  client.instead_of_transmit = [&] (const void *, uint64_t) -> int64_t {
    if (held.exchange (true))
      return 0;
    in_send.release ();
    go_on.acquire ();
    return -1;
  };
  start ();
  std::thread first ([&] { stop ("first "); });
  in_send.acquire ();
  std::thread second (
      [&] { client.unload ({.Channel = 3}, notes.ok ("second ok"), notes.error ("second error")); });
  ASSERT_TRUE (wait_until ([&] { return client.outstanding_count () == 2; }));
  server.drop (1);
  wait_for_link (2);
  EXPECT_EQ (notes.count ("second " + failed), 1u);
  go_on.release ();
  first.join ();
  second.join ();
  stop ();
  ASSERT_TRUE (client.wait_noted ("ok"));
  EXPECT_EQ (server.command_count (), 1u);
  EXPECT_EQ (server.command (1).name, "stop");
  EXPECT_EQ (notes.count ("second ok"), 0u);
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

// Waits until no more commands go out.
void wait_until_blocked (TestClient &client) {
  uint32_t open = 0;
  ASSERT_TRUE (wait_until ([&] { return client.outstanding_count () > 1; }));
  do {
    open = client.outstanding_count ();
    std::this_thread::sleep_for (100ms);
  } while (open != client.outstanding_count ());
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
  EXPECT_EQ (client.outstanding_count (), 0u);
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
    EXPECT_EQ (own.count ("full " + failing + " 0"), 0u); // an end is no failure
  }
  EXPECT_FALSE (blocked);
}

// ---- The end

TEST_F (Connection, ThatWasNeverStartedEndsAtOnce) {
  Notes own;
  EXPECT_LT (time_of ([&] { TestClient never (own, server.address ()); }), 500ms);
}

// Ends of a few, and the quickest of them: noticed at once, not when some wait runs out.
template <class Prepare>
std::chrono::milliseconds quickest_end (uint32_t address, Prepare prepare) {
  std::chrono::milliseconds best = 1h;
  for (int i = 0; i != 5; ++i) {
    Notes own;
    TestClient mortal (own, address);
    mortal.start_thread (-1);
    prepare (mortal);
    best = std::min (best, time_of ([&] { mortal.stop_and_join (); }));
  }
  return best;
}

TEST_F (Connection, EndsAtOnceOnASilentLink) {
  EXPECT_LT (quickest_end (server.address (), [] (TestClient &c) { ASSERT_TRUE (c.wait_connected ()); }),
             200ms);
  EXPECT_TRUE (server.wait_until_left ());
}

TEST_F (Connection, EndsAtOnceInThePauseBeforeAnAttempt) {
  EXPECT_LT (quickest_end (server.address (), [] (TestClient &) {}), 50ms);
}

TEST_F (Connection, EndsAtOnceWhileAnAttemptHangs) {
  server.stall ();
  EXPECT_LT (quickest_end (server.address (),
                           [] (TestClient &c) {
                             std::this_thread::sleep_for (200ms);
                             EXPECT_FALSE (c.is_connected ());
                           }),
             200ms);
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

// The stream fails in the very feed during which the end begins.
TEST_F (Connection, EndsWithoutAWordThoughTheLinkFailsMeanwhile) {
  std::binary_semaphore in_handler{0}, go_on{0};
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

// The last reference falls on the connection's own thread: it must not wait for itself, nothing more is
// handed to the object, and it is destroyed all the same.
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

TEST_F (Connection, EndsOnAnotherThread) {
  std::atomic<uint32_t> destroyer{0};
  ARef<TestClient> reference = ARef<TestClient>::create (notes, server.address ());
  reference->when_destroyed = [&] { destroyer = platform::thread_number (); };
  reference->start_thread (-1);
  ASSERT_TRUE (reference->wait_connected ());
  reference = nullptr;
  EXPECT_EQ (destroyer, platform::thread_number ());
}

// Two hundred connections, half of them to servers that refuse: their ends do not add up to waits.
TEST (Connections, EndAtOnceInGreatNumbers) {
  std::vector<std::unique_ptr<FakeServer>> servers;
  std::list<Notes> notes;
  std::vector<std::unique_ptr<TestClient>> clients;
  for (int i = 0; i != 20; ++i)
    servers.push_back (std::make_unique<FakeServer> (i % 2 == 0 ? FakeServer::Start::listening
                                                                : FakeServer::Start::refusing));
  for (size_t i = 0; i != 200; ++i)
    clients.push_back (
        std::make_unique<TestClient> (notes.emplace_back (), servers[i % servers.size ()]->address ()));
  for (auto &client : clients)
    client->start_thread (-1);
  for (size_t i = 0; i != clients.size (); i += 2)
    ASSERT_TRUE (clients[i]->wait_connected ());
  EXPECT_LT (time_of ([&] { clients.clear (); }), 5s); // some seconds for each hundred, if they waited
  for (auto &server : servers)
    EXPECT_TRUE (server->wait_until_left ());
}

// ---- The idle call

class Idle : public Connection {
protected:
  std::atomic<int> calls{0};

  void call () { ++calls; }
  void arm (uint32_t seconds) { client.set_idle_function (seconds, AMethod::bind (this, &Idle::call)); }
  // Has the thread look at the clock now and not at the end of its wait.
  void nudge (const std::string &name) {
    server.report (created (name));
    ASSERT_TRUE (client.wait_noted ("created " + name));
    server.report (created (name + "2"));
    ASSERT_TRUE (client.wait_noted ("created " + name + "2"));
  }
};

TEST_F (Idle, ComesAfterTheIntervalAndNotBefore) {
  client.clock = 1000;
  arm (5);
  start ();
  nudge ("a");
  EXPECT_EQ (calls, 0);
  client.clock = 1004;
  nudge ("b");
  EXPECT_EQ (calls, 0);
  client.clock = 1005;
  nudge ("c");
  EXPECT_EQ (calls, 1);
  client.clock = 1009;
  nudge ("d");
  EXPECT_EQ (calls, 1);
  client.clock = 1010;
  nudge ("e");
  EXPECT_EQ (calls, 2);
}

TEST_F (Idle, ComesByItselfAboutOnceASecond) {
  arm (0);
  start ();
  ASSERT_TRUE (wait_until ([&] { return calls >= 2; }));
}

TEST_F (Idle, CountsFromTheLatestConnection) {
  client.clock = 1000;
  arm (5);
  start ();
  client.clock = 1004;
  server.drop ();
  wait_for_link (2);
  client.clock = 1008;
  nudge ("a");
  EXPECT_EQ (calls, 0);
  client.clock = 1009;
  nudge ("b");
  EXPECT_EQ (calls, 1);
}

TEST_F (Idle, DoesNotComeWithFourOpenCommands) {
  client.clock = 1000;
  start ();
  for (int i = 0; i != 4; ++i)
    stop ();
  ASSERT_TRUE (server.wait_for_commands (4));
  arm (1);
  client.clock = 2000;
  nudge ("a");
  EXPECT_EQ (calls, 0);
  server.send (support::reply_to (server.command (1), "<ok />"));
  ASSERT_TRUE (client.wait_noted ("ok"));
  nudge ("b");
  EXPECT_EQ (calls, 1);
}

// The difference is looked at as an unsigned number of 32 bits.
TEST_F (Idle, ComesWhenTheClockGoesBack) {
  client.clock = 1000;
  arm (5);
  start ();
  client.clock = 999;
  nudge ("a");
  EXPECT_EQ (calls, 1);
}

TEST_F (Idle, CanBeSwitchedOff) {
  client.clock = 1000;
  arm (5);
  start ();
  client.set_idle_function (5, {});
  client.clock = 3000;
  nudge ("a");
  EXPECT_EQ (calls, 0);
}

// ---- Everything at once

// Commands from many threads while the server drops the link again and again: each ends once, and what is
// answered is answered to the command that asked.
TEST_F (Connection, EndsEachCommandOnceWhateverHappensToTheLink) {
  constexpr int senders = 6, rounds = 150;
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
    std::binary_semaphore done{0};
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
  EXPECT_EQ (client.outstanding_count (), 0u);
}

} // namespace
