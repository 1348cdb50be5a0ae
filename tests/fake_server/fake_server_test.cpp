#include "support/fake_server.h"

#include "support/socket.h"

#include <atomic>
#include <gtest/gtest.h>
#include <set>
#include <thread>

namespace {

using namespace std::chrono_literals;
using support::address_text;
using support::Command;
using support::FakeServer;
using support::RawClient;

const std::string stop_command =
    "<cmd>\r\n<xid>7</xid>\r\n<stop>\r\n<Channel>A</Channel>\r\n</stop>\r\n</cmd>";
const std::string name_command = "<cmd>\r\n<xid>none8</xid>\r\n<get_computer_name />\r\n</cmd>";

TEST (FakeServer, has_an_address_of_its_own) {
  std::vector<std::unique_ptr<FakeServer>> servers;
  std::set<uint32_t> addresses;
  for (int i = 0; i < 20; ++i) {
    servers.push_back (std::make_unique<FakeServer> ());
    addresses.insert (servers.back ()->address ());
    EXPECT_EQ (servers.back ()->address () >> 24U, 127U);
  }
  EXPECT_EQ (addresses.size (), 20U);
}

TEST (FakeServer, guards_its_address_even_while_nobody_listens) {
  const FakeServer server (FakeServer::Start::refusing);
  EXPECT_EQ (support::net::listen_on (server.address (), support::guard_port, 1), support::net::no_handle);
}

TEST (FakeServer, gives_its_address_back) {
  uint32_t address = 0;
  {
    const FakeServer server;
    address = server.address ();
  }
  const support::net::Handle guard = support::net::listen_on (address, support::guard_port, 1);
  EXPECT_NE (guard, support::net::no_handle);
  support::net::close_handle (guard);
}

TEST (FakeServer, writes_addresses_as_people_do) {
  EXPECT_EQ (address_text (0x7F030201), "127.3.2.1");
  EXPECT_EQ (address_text (0xFF00FF00), "255.0.255.0");
}

TEST (FakeServer, finds_texts_and_elements) {
  EXPECT_EQ (support::text_of (stop_command, "Channel"), "A");
  EXPECT_EQ (support::text_of (stop_command, "Speed"), "");
  EXPECT_EQ (support::text_of ("<A>x", "A"), "");
  EXPECT_EQ ((Command{1, "7", "stop", stop_command}.element ()),
             "\r\n<stop>\r\n<Channel>A</Channel>\r\n</stop>\r\n");
}

TEST (FakeServer, collects_commands_and_raw_bytes) {
  FakeServer server;
  RawClient client (server.address ());
  ASSERT_TRUE (client.connected ());
  ASSERT_TRUE (client.send (stop_command + name_command + "<cmd>"));
  EXPECT_EQ (server.command (2).name, "get_computer_name");
  const std::vector<Command> commands = server.commands ();
  EXPECT_EQ (commands[0].name, "stop");
  EXPECT_EQ (commands[0].xid, "7");
  EXPECT_EQ (commands[0].document, stop_command);
  EXPECT_EQ (commands[0].connection, 1U);
  EXPECT_EQ (commands[1].xid, "none8");
  EXPECT_EQ (commands[1].document, name_command);
  EXPECT_TRUE (
      support::wait_until ([&] { return server.received () == stop_command + name_command + "<cmd>"; }));
  EXPECT_EQ (server.command_count (), 2U);
}

TEST (FakeServer, cuts_commands_that_come_in_pieces) {
  FakeServer server;
  RawClient client (server.address ());
  for (const char byte : stop_command)
    ASSERT_TRUE (client.send (std::string (1, byte)));
  EXPECT_EQ (server.command (1).document, stop_command);
}

TEST (FakeServer, forgets_on_demand) {
  FakeServer server;
  RawClient client (server.address ());
  client.send (stop_command);
  server.wait_for_commands (1);
  server.forget ();
  EXPECT_EQ (server.command_count (), 0U);
  EXPECT_EQ (server.received (), "");
  client.send (name_command);
  EXPECT_EQ (server.command (1).xid, "none8");
}

TEST (FakeServer, answers_by_script) {
  FakeServer server;
  server.answer ("stop", "<ok />");
  server.answer ("get_computer_name", {"<a />", "<b />"});
  server.on ("play", [] (const Command &command) { return "played " + command.xid + "\n"; });
  server.answer_any ("<error />");
  RawClient client (server.address ());
  client.send (stop_command);
  EXPECT_EQ (client.receive_through ("</reply>"), "<reply><xid>7</xid><ok /></reply>");
  client.send (name_command);
  EXPECT_EQ (client.receive_through ("<b /></reply>"),
             "<reply><xid>none8</xid><a /></reply><reply><xid>none8</xid><b /></reply>");
  client.send ("<cmd><xid>9</xid><play/></cmd>");
  EXPECT_EQ (client.receive_through ("\n"), "played 9\n");
  client.send ("<cmd><xid>10</xid><jog></jog></cmd>");
  EXPECT_EQ (client.receive_through ("</reply>"), "<reply><xid>10</xid><error /></reply>");
}

TEST (FakeServer, keeps_silent_and_speaks_again) {
  FakeServer server;
  server.answer_any ("<ok />");
  server.silent (true);
  RawClient client (server.address ());
  client.send (stop_command);
  server.wait_for_commands (1);
  server.silent (false);
  client.send (name_command);
  EXPECT_EQ (client.receive_through ("</reply>"), "<reply><xid>none8</xid><ok /></reply>");
}

TEST (FakeServer, a_handler_may_use_the_server) {
  FakeServer server;
  server.on ("stop", [&server] (const Command &command) {
    server.report ("<before />", command.connection);
    server.on ("stop", nullptr);
    return support::reply_to (command, "<ok />");
  });
  RawClient client (server.address ());
  client.send (stop_command);
  EXPECT_EQ (client.receive_through ("</reply>"),
             "<report><before /></report><reply><xid>7</xid><ok /></reply>");
}

TEST (FakeServer, speaks_to_the_connection_that_is_meant) {
  FakeServer server;
  RawClient first (server.address ());
  server.wait_for_connections (1);
  RawClient second (server.address ());
  server.wait_for_connections (2);
  server.send ("to both\n", 1);
  server.send ("to both\n");
  server.send ("to nobody\n", 3);
  server.send ("to the first\n", 1);
  EXPECT_EQ (first.receive_through ("first\n"), "to both\nto the first\n");
  EXPECT_EQ (second.receive_through ("\n"), "to both\n");
  EXPECT_EQ (server.accepted (), 2U);
  EXPECT_EQ (server.open (), 2U);
}

TEST (FakeServer, splits_what_it_sends) {
  FakeServer server;
  RawClient client (server.address ());
  server.wait_for_connections (1);
  server.split_at (3);
  server.send ("abcdefgh\n");
  EXPECT_EQ (client.receive_through ("\n"), "abcdefgh\n");
  server.split_into (1);
  server.send ("abcdefgh\n");
  EXPECT_EQ (client.receive_through ("\n"), "abcdefgh\n");
  server.split_into (0);
  server.send ("ab\n");
  EXPECT_EQ (client.receive_through ("\n"), "ab\n");
}

TEST (FakeServer, drops_behind_what_it_has_sent) {
  FakeServer server;
  RawClient client (server.address ());
  server.wait_for_connections (1);
  server.split_into (2);
  server.send ("half a mess");
  server.drop ();
  EXPECT_EQ (client.receive_through ("age"), "half a mess");
  EXPECT_TRUE (client.wait_for_end ());
  EXPECT_FALSE (client.was_reset ());
  server.wait_until_left ();
}

TEST (FakeServer, resets) {
  FakeServer server;
  RawClient client (server.address ());
  server.wait_for_connections (1);
  server.reset ();
  EXPECT_TRUE (client.wait_for_end ());
  EXPECT_TRUE (client.was_reset () || !support::net::reset_comes_alone ());
}

TEST (FakeServer, ends_one_direction_and_goes_on_reading) {
  FakeServer server;
  RawClient client (server.address ());
  server.wait_for_connections (1);
  server.end_sending ();
  EXPECT_TRUE (client.wait_for_end ());
  EXPECT_FALSE (client.was_reset ());
  client.send (stop_command);
  EXPECT_EQ (server.command (1).xid, "7");
}

TEST (FakeServer, drops_all_and_takes_clients_again) {
  FakeServer server;
  RawClient first (server.address ()), second (server.address ());
  server.wait_for_connections (2);
  server.drop_all ();
  EXPECT_TRUE (first.wait_for_end ());
  EXPECT_TRUE (second.wait_for_end ());
  const RawClient third (server.address ());
  EXPECT_TRUE (third.connected ());
  server.wait_for_connections (3);
  EXPECT_EQ (server.open (), 1U);
}

TEST (FakeServer, sees_clients_leave) {
  FakeServer server;
  {
    RawClient client (server.address ());
    server.wait_for_connections (1);
  }
  EXPECT_TRUE (server.wait_until_left ());
  RawClient client (server.address ());
  server.wait_for_connections (2);
  client.close (true);
  EXPECT_TRUE (server.wait_until_left ());
}

TEST (FakeServer, refuses_and_listens_again_and_again) {
  FakeServer server (FakeServer::Start::refusing);
  EXPECT_FALSE (RawClient (server.address ()).connected ());
  for (int round = 0; round < 3; ++round) {
    server.listen ();
    EXPECT_TRUE (RawClient (server.address ()).connected ());
    server.refuse ();
    EXPECT_FALSE (RawClient (server.address ()).connected ());
  }
}

TEST (FakeServer, a_standing_connection_outlives_the_listener) {
  FakeServer server;
  server.answer_any ("<ok />");
  RawClient client (server.address ());
  server.wait_for_connections (1);
  server.refuse ();
  client.send (stop_command);
  EXPECT_EQ (client.receive_through ("</reply>"), "<reply><xid>7</xid><ok /></reply>");
}

TEST (FakeServer, listens_anew_after_it_ended_a_connection_itself) {
  FakeServer server;
  RawClient client (server.address ());
  server.wait_for_connections (1);
  server.refuse ();
  server.drop ();
  EXPECT_TRUE (client.wait_for_end ());
  client.close ();
  server.listen ();
  EXPECT_TRUE (RawClient (server.address ()).connected ());
}

TEST (FakeServer, leaves_attempts_hanging) {
  FakeServer server;
  server.stall ();
  std::atomic<bool> done{false};
  std::thread attempt ([&] {
    const RawClient client (server.address ());
    done = true;
  });
  EXPECT_FALSE (support::wait_until ([&] { return done.load (); }, 300ms));
  server.listen ();
  attempt.join ();
  EXPECT_TRUE (done);
}

TEST (FakeServer, reads_slowly) {
  FakeServer server;
  server.read_slowly (3, 5ms);
  RawClient client (server.address ());
  client.send ("abcdefghi");
  EXPECT_TRUE (support::wait_until ([&] { return server.received () == "abcdefghi"; }));
  server.read_slowly (0, 5ms);
  client.send ("jkl");
  EXPECT_FALSE (support::wait_until ([&] { return server.received () != "abcdefghi"; }, 50ms));
  server.read_slowly (0, 0ms);
  EXPECT_TRUE (support::wait_until ([&] { return server.received () == "abcdefghijkl"; }));
}

TEST (FakeServer, does_not_wait_for_a_client_that_takes_nothing) {
  FakeServer server;
  RawClient client (server.address ());
  server.wait_for_connections (1);
  server.send (std::string (20000000, 'x') + "\n");
  EXPECT_FALSE (server.idle ());
  EXPECT_EQ (client.receive_through ("\n").size (), 20000001U);
  EXPECT_TRUE (server.wait_until_sent ());
}

TEST (FakeServer, serves_many_at_once) {
  FakeServer server;
  server.answer_any ("<ok />");
  std::vector<std::thread> threads;
  std::atomic<int> right{0};
  for (int i = 0; i < 8; ++i)
    threads.emplace_back ([&server, &right, i] {
      RawClient client (server.address ());
      for (int round = 0; round < 50; ++round) {
        const std::string xid = std::to_string (i * 1000 + round);
        client.send ("<cmd><xid>" + xid + "</xid><stop /></cmd>");
        if (client.receive_through ("</reply>") == "<reply><xid>" + xid + "</xid><ok /></reply>")
          ++right;
      }
    });
  for (std::thread &thread : threads)
    thread.join ();
  EXPECT_EQ (right, 400);
  EXPECT_EQ (server.command_count (), 400U);
  EXPECT_EQ (server.accepted (), 8U);
}

} // namespace
