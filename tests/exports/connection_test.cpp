#include "exports/session.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>

namespace {

using support::Command;
using support::FakeServer;

// --- Connections

TEST (Connections, TwoToOneAddressAreIndependent) {
  FakeServer server;
  const Session first (server);
  const Session second (server);
  EXPECT_NE (uint32_t (first), 0u);
  EXPECT_NE (uint32_t (first), uint32_t (second));
  EXPECT_TRUE (server.wait_for_connections (2));
  orva_close (first);
  EXPECT_EQ (orva_connected (first), 0);
  EXPECT_EQ (orva_connected (second), 1);
}

TEST (Connections, ComeUpByThemselves) {
  FakeServer server (FakeServer::Start::refusing);
  const Session session (server.address ());
  EXPECT_EQ (orva_connected (session), 0);
  server.listen ();
  EXPECT_TRUE (support::wait_until ([&] { return orva_connected (session) == 1; }));
}

TEST (Connections, WaitUntilConnectedGivesTrue) {
  FakeServer server;
  const Session session (server.address ());
  EXPECT_EQ (orva_wait_until_connected (session), 1);
  EXPECT_EQ (orva_connected (session), 1);
}

TEST (Connections, OutliveAServerThatComesLate) {
  FakeServer server (FakeServer::Start::refusing);
  server.answer_any ("<ok />");
  const Session session (server.address ());
  EXPECT_EQ (orva_cmd_stop1 (session, 0), ORVA_ERROR);
  EXPECT_EQ (last_error (), "Failing all outstanding commands");
  server.listen ();
  orva_wait_until_connected (session);
  EXPECT_EQ (orva_cmd_stop1 (session, 0), ORVA_OK);
  EXPECT_EQ (server.command_count (), 1u) << "what failed is not repeated";
}

TEST (Connections, ComeBackAfterALoss) {
  FakeServer server;
  server.answer_any ("<ok />");
  const Session session (server);
  server.drop ();
  EXPECT_TRUE (server.wait_for_connections (2));
  orva_wait_until_connected (session);
  EXPECT_TRUE (support::wait_until ([&] { return orva_cmd_stop1 (session, 0) == ORVA_OK; }));
}

TEST (Connections, AreDownWhileTheServerIsAway) {
  FakeServer server;
  server.answer_any ("<ok />");
  const Session session (server);
  server.refuse ();
  server.drop ();
  EXPECT_TRUE (support::wait_until ([&] { return orva_connected (session) == 0; }));
  EXPECT_EQ (orva_cmd_stop1 (session, 0), ORVA_ERROR);
  EXPECT_EQ (last_error (), "Failing all outstanding commands");
  EXPECT_EQ (orva_connected (session), 0);
  server.listen ();
  EXPECT_EQ (orva_wait_until_connected (session), 1);
  EXPECT_EQ (server.command_count (), 0u);
}

TEST (Connections, AreUnknownOnceClosed) {
  FakeServer server;
  Session session (server);
  orva_close (session);
  EXPECT_TRUE (server.wait_until_left ());
  orva_close (session);
  EXPECT_EQ (orva_connected (session), 0);
  EXPECT_EQ (orva_cmd_stop1 (session, 0), ORVA_INVALID_HANDLE);
  EXPECT_EQ (last_error (), "Invalid handle");
  EXPECT_EQ (server.command_count (), 0u);
}

TEST (Connections, UnknownNumbersAreRefusedByEachFamily) {
  const auto name = wide ("x");
  const orva_char *const text = name.c_str ();
  uint32_t number = 77;
  uint64_t large = 77;
  orva_char untouched = '#';
  const uint32_t codes[] = {
      orva_cmd_play3 (0, 0, 1.0, 1),
      orva_cmd_gang_stop2 (0, 1, 1),
      orva_cmd_loadclip7 (0, 0, text, 0, 0, 0),
      orva_take2 (0, 0, 0, 0, 0),
      orva_edit_all_on (0, 0),
      orva_gang_ee_all_off (0, 0),
      orva_set_channel_repeat (0, 0, 0),
      orva_vclip_add_segment2 (0, text, text, 0, 0, 0, 0, 1.0),
      orva_cmd_load_vclip3 (0, 0, text, 0, 0),
      orva_video_standard (0, &number),
      orva_disk_usage1 (0, &large, &large, &number),
      orva_disk_usage2 (0, &number, &number),
      orva_server_name (0, {&untouched, 1}),
      orva_video_frequency (0, &number),
      orva_video_resolution (0, &number),
      orva_channel_clip_length (0, 0, &number),
      orva_channel_precue_count (0, 0, &number),
      orva_channel_status (0, 0, &number),
      orva_channel_repeat (0, 0, &number),
      orva_channel_angle (0, 0, &number, &number),
      orva_channel_ee (0, 0, &number, &number),
      orva_playlist_status (0, 0, &number),
      orva_playlist_count (0, 0, &number),
      orva_open_directory_list (0, &number),
      orva_create_clip2 (0, text, 0, 0),
      orva_create_clip3 (0, 0, text, 0, 0),
      orva_create_child_clip2 (0, text, text, 0),
      orva_vclip_free (0, text),
      orva_vclip_modification_start (0, text),
      orva_vclip_modification_end (0, text),
  };
  for (const uint32_t code : codes)
    EXPECT_EQ (code, ORVA_INVALID_HANDLE);
  EXPECT_EQ (last_error (), "Invalid handle");
  EXPECT_EQ (number, 77u);
  EXPECT_EQ (large, 77u);
  EXPECT_EQ (untouched, orva_char ('#'));
  EXPECT_EQ (orva_connected (0), 0);
  orva_close (0);
  orva_synchronous (0, 1);
  orva_sync (0);
  EXPECT_EQ (last_error (), "Invalid handle") << "exports without a code leave the text alone";
}

// --- Last error

TEST (LastError, IsNotChangedByAsking) {
  EXPECT_EQ (orva_cmd_stop1 (0, 0), ORVA_INVALID_HANDLE);
  EXPECT_EQ (last_error (), "Invalid handle");
  EXPECT_EQ (last_error (), "Invalid handle");
}

TEST (LastError, IsEachThreadsOwn) {
  EXPECT_EQ (orva_cmd_stop1 (0, 0), ORVA_INVALID_HANDLE);
  FakeServer server;
  server.answer_any ("<ok />");
  std::string of_another;
  std::thread ([&] {
    const Session session (server);
    orva_cmd_stop1 (session, 0);
    of_another = last_error ();
  }).join ();
  EXPECT_EQ (of_another, "OK");
  EXPECT_EQ (last_error (), "Invalid handle");
}

TEST (LastError, FollowsTheRuleOfBuffers) {
  EXPECT_EQ (orva_cmd_stop1 (0, 0), ORVA_INVALID_HANDLE);
  EXPECT_EQ (filled (orva_get_last_error, 8), "Invalid");
  EXPECT_EQ (filled (orva_get_last_error, 15), "Invalid handle");
  EXPECT_EQ (filled (orva_get_last_error, 14), "Invalid handl");
  EXPECT_EQ (filled (orva_get_last_error, 1), "");
  orva_char untouched = '#';
  orva_get_last_error (OrvaStringBuffer{&untouched, 0});
  EXPECT_EQ (untouched, orva_char ('#'));
  orva_get_last_error (OrvaStringBuffer{nullptr, 0});
}

TEST (LastError, IsLeftAloneByFunctionsWithoutACode) {
  FakeServer server;
  EXPECT_EQ (orva_cmd_stop1 (0, 0), ORVA_INVALID_HANDLE);
  const uint32_t connection = orva_connect (server.address ());
  orva_wait_until_connected (connection);
  orva_connected (connection);
  orva_synchronous (connection, 1);
  orva_sync (connection);
  orva_close_clip_list (0);
  orva_close_directory_list (0);
  EXPECT_EQ (orva_get_notification (connection, 0, nullptr, nullptr), ORVA_OK);
  orva_close (connection);
  EXPECT_EQ (last_error (), "Invalid handle");
}

// --- Commands that fail

TEST (Refusals, ArriveWithTheServersTextAsItCame) {
  FakeServer server;
  server.answer ("stop", "<error><ErrorMessage> Channel A &lt;is&gt; busy: \xC3\xA9\xE2\x82\xAC "
                         "</ErrorMessage><ErrorCode>clipnotfound</ErrorCode></error>");
  const Session session (server);
  EXPECT_EQ (orva_cmd_stop1 (session, 0), ORVA_ERROR);
  std::vector<orva_char> units (64, orva_char ('#'));
  orva_get_last_error (OrvaStringBuffer{units.data (), 64});
  const auto front = wide (" Channel A <is> busy: ");
  const auto expected = front + orva_char (0xE9) + orva_char (0x20AC) + orva_char (' ');
  EXPECT_TRUE (std::basic_string<orva_char> (units.data ()) == expected);
}

TEST (Refusals, AreForgottenWithTheNextSuccess) {
  FakeServer server;
  server.answer ("stop", refused ("No"));
  server.answer ("play", "<ok />");
  const Session session (server);
  EXPECT_EQ (orva_cmd_stop1 (session, 0), ORVA_ERROR);
  EXPECT_EQ (last_error (), "No");
  EXPECT_EQ (orva_cmd_play1 (session, 0), ORVA_OK);
  EXPECT_EQ (last_error (), "OK");
}

/// Runs a stop that the server will not answer, and ends it by `end` once the server has it.
template <typename End>
void expect_failed_by (FakeServer &server, const Session &session, End end) {
  server.silent (true);
  uint32_t code = 77;
  std::string text;
  std::thread waiter ([&] {
    code = orva_cmd_stop1 (session, 0);
    text = last_error ();
  });
  EXPECT_TRUE (server.wait_for_commands (1));
  end ();
  waiter.join ();
  EXPECT_EQ (code, ORVA_ERROR);
  EXPECT_EQ (text, "Failing all outstanding commands");
}

TEST (LostConnection, FailsTheWaiterWhenTheServerCloses) {
  FakeServer server;
  const Session session (server);
  expect_failed_by (server, session, [&] { server.drop (); });
}

TEST (LostConnection, FailsTheWaiterWhenTheServerAborts) {
  FakeServer server;
  const Session session (server);
  expect_failed_by (server, session, [&] { server.reset (); });
}

TEST (LostConnection, FailsTheWaiterWhenTheServerTalksNonsense) {
  FakeServer server;
  const Session session (server);
  expect_failed_by (server, session, [&] { server.send ("<reply><xid>1</wrong></reply>"); });
}

TEST (LostConnection, FailsTheWaiterWhenAMessageIsTooLong) {
  FakeServer server;
  const Session session (server);
  expect_failed_by (server, session, [&] { server.send ("<reply>" + std::string (40000, 'x')); });
}

TEST (LostConnection, AnswersOfOthersDoNotReachTheWaiter) {
  FakeServer server;
  const Session session (server);
  expect_failed_by (server, session, [&] {
    server.send ("<reply><xid>none1</xid><ok /></reply><reply><xid>4000000000</xid><ok /></reply>"
                 "<reply><ok /></reply><report><clip_created><ClipID>x</ClipID></clip_created></report>");
    server.drop ();
  });
}

TEST (ClosedConnection, LetsTheWaiterHaveItsAnswer) {
  FakeServer server;
  server.silent (true);
  Session session (server);
  uint32_t code = 77;
  std::thread waiter ([&] { code = orva_cmd_stop1 (session, 0); });
  const Command stop = server.command (1);
  orva_close (session);
  EXPECT_EQ (orva_connected (session), 0);
  EXPECT_EQ (server.open (), 1u) << "the call in progress keeps the connection";
  server.send (support::reply_to (stop, "<ok />"));
  waiter.join ();
  EXPECT_EQ (code, ORVA_OK);
  EXPECT_TRUE (server.wait_until_left ());
}

TEST (ClosedConnection, FailsTheWaiterWhenItIsLost) {
  FakeServer server;
  Session session (server);
  expect_failed_by (server, session, [&] {
    orva_close (session);
    server.drop ();
  });
  EXPECT_TRUE (server.wait_until_left ());
}

TEST (ClosedConnection, LetsAsynchronousCommandsHaveTheirAnswer) {
  FakeServer server;
  server.silent (true);
  Session session (server);
  orva_synchronous (session, 1);
  EXPECT_EQ (orva_cmd_stop1 (session, 0), ORVA_OK);
  const Command stop = server.command (1);
  orva_close (session);
  EXPECT_EQ (server.open (), 1u);
  // The answer drops the last reference on the connection's own thread.
  server.send (support::reply_to (stop, "<ok />"));
  EXPECT_TRUE (server.wait_until_left ());
}

TEST (ClosedConnection, MayBeClosedByTwoThreadsAtOnce) {
  FakeServer server;
  for (int round = 0; round < 5; ++round) {
    Session session (server);
    std::thread other ([&] { orva_close (session); });
    orva_close (session);
    other.join ();
    EXPECT_EQ (orva_connected (session), 0);
  }
  EXPECT_TRUE (server.wait_until_left ());
}

TEST (ClosedConnection, DoesNotWaitForAServerThatIsNotThere) {
  FakeServer server (FakeServer::Start::refusing);
  for (int round = 0; round < 3; ++round) {
    const auto start = std::chrono::steady_clock::now ();
    { const Session session (server.address ()); }
    EXPECT_LT (std::chrono::steady_clock::now () - start, std::chrono::seconds (5));
  }
}

TEST (ClosedConnection, DoesNotWaitForAnAttemptThatHangs) {
  FakeServer server (FakeServer::Start::refusing);
  server.stall ();
  const uint32_t connection = orva_connect (server.address ());
  EXPECT_FALSE (support::wait_until ([&] { return orva_connected (connection) != 0; },
                                     std::chrono::milliseconds (300)));
  const auto start = std::chrono::steady_clock::now ();
  orva_close (connection);
  EXPECT_LT (std::chrono::steady_clock::now () - start, std::chrono::seconds (15));
}

TEST (ClosedConnection, MayBeClosedWhileReportsPourIn) {
  FakeServer server;
  std::string reports;
  for (int i = 0; i < 200; ++i)
    reports += "<report><clip_created><ClipID>NEWS</ClipID></clip_created></report>";
  for (int round = 0; round < 5; ++round) {
    Session session (server);
    EXPECT_TRUE (server.wait_for_connections (size_t (round) + 1));
    for (int i = 0; i < 50; ++i)
      server.send (reports);
    orva_close (session);
    EXPECT_EQ (orva_connected (session), 0);
  }
  EXPECT_TRUE (server.wait_until_left ());
}

TEST (ClosedConnection, ManyAreClosedAtOnce) {
  constexpr int servers = 20;
  std::vector<std::unique_ptr<FakeServer>> listening;
  std::vector<std::unique_ptr<FakeServer>> refusing;
  std::vector<uint32_t> connections;
  for (int i = 0; i < servers; ++i) {
    listening.push_back (std::make_unique<FakeServer> ());
    refusing.push_back (std::make_unique<FakeServer> (FakeServer::Start::refusing));
    connections.push_back (orva_connect (listening.back ()->address ()));
    connections.push_back (orva_connect (refusing.back ()->address ()));
  }
  for (int i = 0; i < servers; ++i)
    orva_wait_until_connected (connections[size_t (i) * 2]);
  const auto start = std::chrono::steady_clock::now ();
  for (const uint32_t connection : connections)
    orva_close (connection);
  EXPECT_LT (std::chrono::steady_clock::now () - start, std::chrono::seconds (20));
  for (const auto &server : listening)
    EXPECT_TRUE (server->wait_until_left ());
}

// --- Waiting or not

TEST (Asynchronous, CommandsDoNotWait) {
  FakeServer server;
  server.silent (true);
  const Session session (server);
  orva_synchronous (session, 1);
  EXPECT_EQ (orva_cmd_play1 (session, 0), ORVA_OK);
  EXPECT_EQ (last_error (), "OK");
  EXPECT_EQ (orva_vclip_free (session, wide ("v").c_str ()), ORVA_OK);
  EXPECT_TRUE (server.wait_for_commands (2));
  server.drop ();
  orva_sync (session);
}

TEST (Asynchronous, CommandsOnADownedConnectionGiveOk) {
  FakeServer server (FakeServer::Start::refusing);
  const Session session (server.address ());
  orva_synchronous (session, 0xFFFFFFFF);
  EXPECT_EQ (orva_cmd_stop1 (session, 0), ORVA_OK);
  EXPECT_EQ (last_error (), "OK");
  orva_sync (session);
}

TEST (Asynchronous, RefusalsAreNeverSeen) {
  FakeServer server;
  server.answer_any (refused ("No"));
  const Session session (server);
  orva_synchronous (session, 1);
  EXPECT_EQ (orva_cmd_stop1 (session, 0), ORVA_OK);
  orva_sync (session);
  EXPECT_EQ (last_error (), "OK");
}

TEST (Asynchronous, QueriesWaitAllTheSame) {
  FakeServer server;
  server.answer ("get_computer_name", "<computername><ComputerName>STUDIO1</ComputerName></computername>");
  const Session session (server);
  orva_synchronous (session, 1);
  uint32_t code = 77;
  EXPECT_EQ (filled ([&] (OrvaStringBuffer name) { code = orva_server_name (session, name); }), "STUDIO1");
  EXPECT_EQ (code, ORVA_OK);
}

TEST (Asynchronous, KeepsTheMannerInWhichACommandStarted) {
  FakeServer server;
  server.silent (true);
  const Session session (server);
  orva_synchronous (session, 1);
  EXPECT_EQ (orva_cmd_stop1 (session, 0), ORVA_OK);
  orva_synchronous (session, 0);
  EXPECT_TRUE (server.wait_for_commands (1));
  // The earlier command is still unanswered; a new one waits for its own answer only.
  server.silent (false);
  server.answer ("play", "<ok />");
  EXPECT_EQ (orva_cmd_play1 (session, 0), ORVA_OK);
  server.answer_any (refused ("No"));
  EXPECT_EQ (orva_cmd_stop1 (session, 0), ORVA_ERROR) << "commands wait again";
}

TEST (Sync, ReturnsAtOnceWhenNothingIsOpen) {
  FakeServer server;
  server.answer_any ("<ok />");
  const Session session (server);
  orva_sync (session);
  orva_cmd_stop1 (session, 0);
  orva_sync (session);
  EXPECT_EQ (server.command_count (), 1u) << "it asks the server nothing";
}

TEST (Sync, ReturnsAtOnceWhileTheServerIsAway) {
  const support::OwnAddress nobody;
  const uint32_t connection = orva_connect (nobody.value ());
  orva_synchronous (connection, 1);
  orva_cmd_stop1 (connection, 0);
  orva_sync (connection);
  EXPECT_FALSE (orva_connected (connection));
  orva_close (connection);
}

TEST (Sync, WaitsForEveryAnswer) {
  FakeServer server;
  server.silent (true);
  const Session session (server);
  orva_synchronous (session, 1);
  EXPECT_EQ (orva_cmd_stop1 (session, 0), ORVA_OK);
  EXPECT_EQ (orva_cmd_stop1 (session, 1), ORVA_OK);
  EXPECT_TRUE (server.wait_for_commands (2));
  std::atomic<bool> synced{false};
  std::thread waiter ([&] {
    orva_sync (session);
    synced = true;
  });
  const std::vector<Command> open = server.commands ();
  server.send (support::reply_to (open[1], "<ok />"));
  server.send ("<report><clip_created><ClipID>x</ClipID></clip_created></report>");
  EXPECT_TRUE (server.wait_until_sent ());
  EXPECT_FALSE (support::wait_until ([&] { return synced.load (); }, std::chrono::milliseconds (50)))
      << "one command is unanswered";
  server.send (support::reply_to (open[0], "<ok />"));
  waiter.join ();
  EXPECT_TRUE (synced);
}

// --- Many threads

TEST (ManyThreads, EachGetsItsOwnAnswer) {
  FakeServer server;
  server.on ("jog", [] (const Command &jog) {
    const std::string distance = support::text_of (jog.document, "JogDistance");
    return support::reply_to (jog, "<error><ErrorMessage>" + distance +
                                       "</ErrorMessage><ErrorCode>general</ErrorCode></error>");
  });
  server.split_into (60);
  const Session session (server);
  constexpr int threads = 8;
  constexpr int rounds = 12;
  std::atomic<int> wrong{0};
  std::vector<std::thread> callers;
  for (int thread = 0; thread < threads; ++thread)
    callers.emplace_back ([&session, &wrong, thread] {
      for (int round = 0; round < rounds; ++round) {
        const int distance = thread * 1000 + round;
        if (orva_jog1 (session, 0, distance) != ORVA_ERROR || last_error () != std::to_string (distance))
          ++wrong;
      }
    });
  for (std::thread &caller : callers)
    caller.join ();
  EXPECT_EQ (wrong, 0);
  EXPECT_EQ (server.command_count (), size_t (threads * rounds));
}

} // namespace
