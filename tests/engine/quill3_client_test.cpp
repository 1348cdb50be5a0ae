#include "engine/connection.h"

#include <thread>

namespace {

using namespace connection;

// ---- The link

TEST_F (Connection, HasOnePortAndOneDefaultAddress) {
  EXPECT_EQ (Client::server_port, 8913);
  EXPECT_EQ (Client::default_server_address, 0x7F000001u);
}

TEST_F (Connection, ComesUpByItselfAfterAPause) {
  EXPECT_FALSE (client.is_connected ());
  auto took = time_of ([&] {
    client.start_thread (-1);
    ASSERT_TRUE (client.wait_connected ());
  });
  EXPECT_GE (took, 95ms);
  EXPECT_TRUE (server.wait_for_connections (1));
}

TEST_F (Connection, IsUpWhenItSaysSoAndDownWhenItsCommandsFail) {
  struct Look {
    TestClient &client;
    std::atomic<int> when_failed{-1};
    void failed (AString, uint32_t) { when_failed = client.is_connected (); }
  } look{client};
  std::atomic<int> when_connected{-1};
  client.when_connected = [&] { when_connected = client.is_connected (); };
  start ();
  ASSERT_TRUE (wait_until ([&] { return when_connected != -1; }));
  EXPECT_EQ (when_connected, 1);
  client.stop ({.Channel = 0}, notes.ok (), AMethod::bind (&look, &Look::failed));
  ASSERT_TRUE (server.wait_for_commands (1));
  server.drop ();
  ASSERT_TRUE (client.wait_noted ("disconnected"));
  EXPECT_EQ (look.when_failed, 0);
  client.stop_and_join (); // before it comes up again and looks for what is gone by then
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
  notes.take_lines (); // the first link's notes, so that the next is the first that is noted again
  server.send ("<report>" + created ("C1") + "</report><report>" + created ("C2") +
               "</report><report><a</report><report>" + created ("C3") + "</report>");
  ASSERT_TRUE (client.wait_noted ("disconnected"));
  wait_for_link (1);
  ASSERT_TRUE (server.wait_for_connections (2));
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
  EXPECT_TRUE (wait_until ([&] { return client.outstanding_count () == 0; }))
      << "it ends behind its callback";
}

TEST_F (Connection, FailsACommandAtOnceWhileThereIsNone) {
  stop ("before ");
  EXPECT_THAT (notes.take_lines (), ElementsAre ("before " + failed));
  server.refuse ();
  client.start_thread (-1);
  stop ("while ");
  EXPECT_THAT (notes.take_lines (), ElementsAre ("while " + failed));
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
  notes.take_lines ();
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

} // namespace
