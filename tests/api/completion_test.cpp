#include "api/exports/export_call.h"

#include "exports/session.h"
#include "support/wait.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

uint32_t references (const Connection &connection) {
  return connection.holder ()->refcount.load ();
}

constexpr std::chrono::milliseconds a_moment{50};

/// A call of `sync` on a thread of its own.
class Syncing {
public:
  explicit Syncing (const Connection &connection)
      : thread_ ([this, connection] {
          connection->wait_for_pending_commands ();
          returned_ = true;
        }) {}
  ~Syncing () { thread_.join (); }

  bool returns (std::chrono::milliseconds limit = support::generous) {
    return support::wait_until ([this] { return returned_.load (); }, limit);
  }

private:
  std::atomic<bool> returned_{false};
  std::thread thread_;
};

TEST (Completion, HandsSuccessToItsWaiter) {
  const auto connection = Connection::create ();
  PendingCommand pending (connection, true);
  result_error ("before");
  pending.on_ok ().run ();
  EXPECT_EQ (pending.outcome (), 0u);
  EXPECT_EQ (last_error_text (), "OK");
}

TEST (Completion, HandsFailureToItsWaiter) {
  const auto connection = Connection::create ();
  PendingCommand pending (connection, true);
  pending.on_error ().run ("Disk full", 3);
  EXPECT_EQ (pending.outcome (), 2u);
  EXPECT_EQ (last_error_text (), "Disk full");
}

TEST (Completion, RecordsTheTextOnTheWaitersThread) {
  const auto connection = Connection::create ();
  PendingCommand pending (connection, true);
  result_ok ();
  std::thread waiter ([&] {
    EXPECT_EQ (pending.outcome (), 2u);
    EXPECT_EQ (last_error_text (), "Refused");
  });
  pending.completion ().fail ("Refused", 0);
  waiter.join ();
  EXPECT_EQ (last_error_text (), "OK");
}

TEST (Completion, IsOutstandingUntilItFinishes) {
  const auto connection = Connection::create ();
  connection->wait_for_pending_commands ();
  PendingCommand first (connection, true);
  PendingCommand second (connection, false);
  Syncing syncing (connection);
  first.completion ().succeed ();
  EXPECT_EQ (first.outcome (), 0u);
  EXPECT_FALSE (syncing.returns (a_moment));
  second.completion ().succeed ();
  EXPECT_EQ (second.outcome (), 0u);
  EXPECT_TRUE (syncing.returns ());
}

TEST (Completion, KeepsItsConnectionAliveUntilItHasFinished) {
  const auto connection = Connection::create ();
  QUILL3::callback::ok ok;
  {
    PendingCommand pending (connection, false);
    ok = pending.on_ok ();
    EXPECT_EQ (pending.outcome (), 0u);
    EXPECT_EQ (references (connection), 2u);
  }
  EXPECT_EQ (references (connection), 2u) << "the outstanding command holds a reference of its own";
  ok.run ();
  EXPECT_EQ (references (connection), 1u);
}

TEST (Completion, IsOverWhenItsCommandCouldNotBeSent) {
  const auto connection = Connection::create ();
  {
    const PendingCommand never_sent (connection, true);
    EXPECT_EQ (references (connection), 2u);
  }
  EXPECT_EQ (references (connection), 1u);
  connection->wait_for_pending_commands ();
}

TEST (Completion, OutlivesTheCommandWhileItsWaiterHoldsIt) {
  const auto connection = Connection::create ();
  PendingCommand pending (connection, true);
  pending.completion ().fail ("late reader", 0);
  EXPECT_EQ (references (connection), 2u);
  EXPECT_EQ (pending.outcome (), 2u);
  EXPECT_EQ (last_error_text (), "late reader");
}

TEST (Completion, WithoutAWaiterHasNoOutcome) {
  const auto connection = Connection::create ();
  PendingCommand pending (connection, false);
  EXPECT_EQ (pending.outcome (), 0u) << "at once, before the command has ended";
  pending.completion ().fail ("never seen", 0);
  EXPECT_EQ (pending.outcome (), 0u);
  EXPECT_EQ (last_error_text (), "OK");
}

TEST (Completion, OfAQueryKeepsTheValues) {
  const auto connection = Connection::create ();
  {
    AString name;
    PendingCommand pending (connection, true);
    AnswerReceiver receiver (pending.completion (), name);
    receiver.callback ().run ("STUDIO1");
    EXPECT_EQ (pending.outcome (), 0u);
    EXPECT_EQ (name, "STUDIO1");
  }
  uint64_t total = 0;
  uint32_t size = 0;
  PendingCommand pending (connection, true);
  AnswerReceiver receiver (pending.completion (), total, size);
  receiver.callback ().run (UINT64_MAX, 7);
  EXPECT_EQ (pending.outcome (), 0u);
  EXPECT_EQ (total, UINT64_MAX);
  EXPECT_EQ (size, 7u);
  connection->wait_for_pending_commands ();
}

TEST (Completion, IsFinishedOnceByManyThreads) {
  const auto connection = Connection::create ();
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i)
    threads.emplace_back ([&connection] {
      for (int round = 0; round < 500; ++round) {
        PendingCommand pending (connection, true);
        std::thread ([error = pending.on_error ()] { error.run ("from there", 0); }).join ();
        EXPECT_EQ (pending.outcome (), 2u);
      }
    });
  for (std::thread &thread : threads)
    thread.join ();
  connection->wait_for_pending_commands ();
  EXPECT_EQ (references (connection), 1u);
}

// --- The flow of a command

TEST (CommandFlow, WithoutALinkFailsAtOnceOnTheCallersThread) {
  const auto connection = Connection::create ();
  const auto no_link = "Failing all outstanding commands";
  EXPECT_EQ (ordinary_command (connection, QUILL3::command::stop{.Channel = 0}), 2u);
  EXPECT_EQ (last_error_text (), no_link);
  EXPECT_EQ (connection->outstanding_count (), 0u);
  EXPECT_EQ (references (connection), 1u);
  connection->wait_for_pending_commands ();
  connection->set_asynchronous (2);
  EXPECT_EQ (ordinary_command (connection, QUILL3::command::stop{.Channel = 0}), 0u);
  EXPECT_EQ (last_error_text (), "OK");
}

TEST (CommandFlow, OfRegistrationsAndQueriesWaitsInAnyCase) {
  const auto connection = Connection::create ();
  connection->set_asynchronous (1);
  std::atomic<bool> registered{false};
  const auto accepted = [] () -> ResultCode {
    ADD_FAILURE ();
    return ORVA_OK;
  };
  EXPECT_EQ (
      ensure_registered (connection, registered, QUILL3::command::report_register{.ReportType = 0}, accepted),
      2u);
  EXPECT_FALSE (registered);
  result_ok ();
  AString name;
  EXPECT_EQ (ask (connection, QUILL3::command::get_computer_name{}, name), 2u);
  EXPECT_EQ (last_error_text (), "Failing all outstanding commands");
}

std::string register_document (const std::string &xid, const std::string &type) {
  return "<cmd>\r\n<xid>" + xid + "</xid>\r\n<report_register>\r\n<ReportType>" + type +
         "</ReportType>\r\n</report_register>\r\n</cmd>";
}

TEST (Reports, AreRegisteredOnceAndAgainOnEachConnection) {
  support::FakeServer server;
  server.answer_any ("<ok />");
  const Session session (server);
  orva_synchronous (session, 1);
  EXPECT_EQ (orva_track_directory_changes (session), 0u);
  EXPECT_EQ (orva_track_clip_changes (session), 0u);
  EXPECT_EQ (orva_track_clip_changes (session), 0u);
  EXPECT_EQ (orva_track_directory_changes (session), 0u);
  ASSERT_EQ (server.command_count (), 2u);
  EXPECT_EQ (server.command (1).document, register_document (server.command (1).xid, "directory_change"));
  EXPECT_EQ (server.command (2).document, register_document (server.command (2).xid, "clip_change"));

  server.drop ();
  ASSERT_TRUE (server.wait_for_commands (4));
  for (const size_t n : {3u, 4u}) {
    EXPECT_EQ (server.command (n).xid.substr (0, 4), "none") << "nobody waits for these";
    EXPECT_EQ (server.command (n).connection, 2u);
  }
  EXPECT_EQ (server.command (3).document, register_document (server.command (3).xid, "clip_change"));
  EXPECT_EQ (server.command (4).document, register_document (server.command (4).xid, "directory_change"));
}

TEST (Reports, OfARefusedRegistrationAreAskedForAnew) {
  support::FakeServer server;
  server.answer_any ("<error><ErrorMessage>No</ErrorMessage><ErrorCode>general</ErrorCode></error>");
  const Session session (server);
  EXPECT_EQ (orva_track_clip_changes (session), 2u);
  EXPECT_EQ (last_error_text (), "No");
  server.drop ();
  EXPECT_TRUE (server.wait_for_connections (2));
  server.answer_any ("<ok />");
  EXPECT_TRUE (support::wait_until ([&] { return orva_track_clip_changes (session) == 0; }));
  EXPECT_EQ (server.command_count (), 2u) << "the new connection repeats nothing that was refused";
}

TEST (Lifecycle, NothingIsRegisteredWithoutNeed) {
  support::FakeServer server;
  server.answer_any ("<ok />");
  const Session session (server);
  EXPECT_EQ (orva_cmd_stop1 (session, 0), 0u);
  EXPECT_EQ (server.command_count (), 1u);
}

TEST (Lifecycle, ALastReferenceThatFallsOnTheConnectionsThreadEndsIt) {
  support::FakeServer server;
  server.silent (true);
  {
    const Session session (server);
    orva_synchronous (session, 1);
    EXPECT_EQ (orva_cmd_stop1 (session, 0), 0u);
    EXPECT_TRUE (server.wait_for_commands (1));
  }
  EXPECT_EQ (server.open (), 1u);
  server.send (support::reply_to (server.command (1), "<ok />"));
  EXPECT_TRUE (server.wait_until_left ());
}

TEST (Lifecycle, AnObjectThatWasNeverStartedGoesAtOnce) {
  Connection::create ();
  const auto connection = Connection::create ();
  EXPECT_FALSE (connection->is_connected ());
}

} // namespace
