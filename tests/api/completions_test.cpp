#include "api/command_flow.h"

#include "support/fake_server.h"
#include "support/wait.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

using Connection = ARef<OrvaConnObject>;
using CBOkObject = OrvaConnObject::CBOkObject;

uint32_t references (const Connection &connection) {
  return connection.holder ()->refcount.load ();
}

constexpr std::chrono::milliseconds a_moment{50};

/// A call of `sync` on a thread of its own.
class Syncing {
public:
  explicit Syncing (const Connection &connection)
      : thread_ ([this, connection] {
          OrvaConnObject::sync (connection);
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
  const auto completion = OrvaConnObject::make_completion (connection);
  result_error ("before");
  completion->ok_callback ().run ();
  EXPECT_EQ (completion->wait_result (), 0u);
  EXPECT_EQ (last_error_text (), "OK");
}

TEST (Completion, HandsFailureToItsWaiter) {
  const auto connection = Connection::create ();
  const auto completion = OrvaConnObject::make_completion (connection);
  completion->error_callback ().run ("Disk full", 3);
  EXPECT_EQ (completion->wait_result (), 2u);
  EXPECT_EQ (last_error_text (), "Disk full");
}

TEST (Completion, RecordsTheTextOnTheWaitersThread) {
  const auto connection = Connection::create ();
  const auto completion = OrvaConnObject::make_completion (connection);
  result_ok ();
  std::thread waiter ([&] {
    EXPECT_EQ (completion->wait_result (), 2u);
    EXPECT_EQ (last_error_text (), "Refused");
  });
  completion->cb_error ("Refused", 0);
  waiter.join ();
  EXPECT_EQ (last_error_text (), "OK");
}

TEST (Completion, IsOutstandingUntilItFinishes) {
  const auto connection = Connection::create ();
  OrvaConnObject::sync (connection);
  const auto first = OrvaConnObject::make_completion (connection);
  const auto second = OrvaConnObject::make_completion (connection);
  Syncing syncing (connection);
  first->finish ();
  EXPECT_FALSE (syncing.returns (a_moment));
  second->finish ();
  EXPECT_TRUE (syncing.returns ());
}

TEST (Completion, KeepsItsConnectionAliveUntilItHasFinished) {
  const auto connection = Connection::create ();
  CBOkObject *command = nullptr;
  {
    const auto completion = OrvaConnObject::make_completion (connection);
    const auto copy = completion;
    command = copy.get ();
    EXPECT_EQ (references (connection), 2u);
  }
  EXPECT_EQ (references (connection), 2u) << "the outstanding command holds a reference of its own";
  command->finish ();
  EXPECT_EQ (references (connection), 1u);
}

TEST (Completion, OutlivesTheCommandWhileItsWaiterHoldsIt) {
  const auto connection = Connection::create ();
  const auto completion = OrvaConnObject::make_completion (connection);
  completion->cb_error ("late reader", 0);
  EXPECT_EQ (references (connection), 2u);
  EXPECT_EQ (completion->wait_result (), 2u);
  EXPECT_EQ (last_error_text (), "late reader");
}

TEST (Completion, HasNoWaiterOnAnAsynchronousConnection) {
  const auto connection = Connection::create ();
  OrvaConnObject::synchronous (connection, 2);
  const auto completion = OrvaConnObject::make_completion (connection);
  EXPECT_EQ (completion->wait_result (), 0u) << "at once, before the command has ended";
  completion->cb_error ("never seen", 0);
  EXPECT_EQ (completion->wait_result (), 0u);
  EXPECT_EQ (last_error_text (), "OK");
}

TEST (Completion, DecidesWhenItIsMadeWhetherItWaits) {
  const auto connection = Connection::create ();
  OrvaConnObject::synchronous (connection, 1);
  const auto asynchronous = OrvaConnObject::make_completion (connection);
  OrvaConnObject::synchronous (connection, 0);
  const auto waiting = OrvaConnObject::make_completion (connection);
  EXPECT_EQ (asynchronous->wait_result (), 0u);
  asynchronous->finish ();
  waiting->cb_error ("seen", 0);
  EXPECT_EQ (waiting->wait_result (), 2u);
}

TEST (Completion, OfARegistrationOrAQueryWaitsInAnyCase) {
  const auto connection = Connection::create ();
  OrvaConnObject::synchronous (connection, 1);
  const auto forced = OrvaConnObject::make_forced_completion (connection);
  forced->cb_error ("seen", 0);
  EXPECT_EQ (forced->wait_result (), 2u);
  const auto query = OrvaConnObject::make_query<OrvaConnObject::CBServerNameObject> (connection);
  query->cb_error ("seen too", 0);
  EXPECT_EQ (query->wait_result (), 2u);
  EXPECT_EQ (last_error_text (), "seen too");
}

TEST (Completion, OfAQueryKeepsTheValues) {
  const auto connection = Connection::create ();
  const auto name = OrvaConnObject::make_query<OrvaConnObject::CBServerNameObject> (connection);
  name->name_callback ().run ("STUDIO1");
  EXPECT_EQ (name->wait_result (), 0u);
  EXPECT_EQ (name->name, "STUDIO1");

  const auto standard = OrvaConnObject::make_query<OrvaConnObject::CBVideoStandardObject> (connection);
  standard->standard_callback ().run (17, 2, 3);
  EXPECT_EQ (standard->wait_result (), 0u);
  EXPECT_EQ (standard->standard, 17u);
  EXPECT_EQ (standard->rate, 2u);
  EXPECT_EQ (standard->resolution, 3u);

  const auto disk = OrvaConnObject::make_query<OrvaConnObject::CBDiskSpaceObject> (connection);
  disk->disk_callback ().run (UINT64_MAX, 5, 7);
  EXPECT_EQ (disk->wait_result (), 0u);
  EXPECT_EQ (disk->total, UINT64_MAX);
  EXPECT_EQ (disk->available, 5u);
  EXPECT_EQ (disk->field_size, 7u);
  OrvaConnObject::sync (connection);
}

TEST (Completion, IsFinishedOnceByManyThreads) {
  const auto connection = Connection::create ();
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i)
    threads.emplace_back ([&connection] {
      for (int round = 0; round < 500; ++round) {
        const auto completion = OrvaConnObject::make_completion (connection);
        std::thread ([command = completion.get ()] { command->cb_error ("from there", 0); }).join ();
        EXPECT_EQ (completion->wait_result (), 2u);
      }
    });
  for (std::thread &thread : threads)
    thread.join ();
  OrvaConnObject::sync (connection);
  EXPECT_EQ (references (connection), 1u);
}

// --- The flow of a command

TEST (CommandFlow, WithoutALinkFailsAtOnceOnTheCallersThread) {
  const auto connection = Connection::create ();
  EXPECT_EQ (ordinary_command (connection, &QUILL3::API::stop, {.Channel = 0}), 2u);
  EXPECT_EQ (last_error_text (), "Failing all outstanding commands");
  EXPECT_EQ (forced_command (connection, &QUILL3::API::report_register, {.ReportType = 0}), 2u);
  EXPECT_EQ (connection->outstanding_count (), 0u);
  EXPECT_EQ (references (connection), 1u);
  OrvaConnObject::sync (connection);
  OrvaConnObject::synchronous (connection, 1);
  EXPECT_EQ (ordinary_command (connection, &QUILL3::API::stop, {.Channel = 0}), 0u);
  EXPECT_EQ (forced_command (connection, &QUILL3::API::report_register, {.ReportType = 0}), 2u);
}

/// A started connection that is up.
Connection connected_to (const support::FakeServer &server) {
  auto connection = Connection::create ();
  connection->start (server.address ());
  EXPECT_TRUE (support::wait_until ([&] { return connection->is_connected (); }));
  return connection;
}

std::string register_document (const std::string &xid, const std::string &type) {
  return "<cmd>\r\n<xid>" + xid + "</xid>\r\n<report_register>\r\n<ReportType>" + type +
         "</ReportType>\r\n</report_register>\r\n</cmd>";
}

TEST (Reports, AreRegisteredOnceAndAgainOnEachConnection) {
  support::FakeServer server;
  server.answer_any ("<ok />");
  const auto connection = connected_to (server);
  OrvaConnObject::synchronous (connection, 1);
  EXPECT_EQ (OrvaConnObject::track_directory_reports (connection), 0u);
  EXPECT_EQ (OrvaConnObject::track_clip_reports (connection), 0u);
  EXPECT_EQ (OrvaConnObject::track_clip_reports (connection), 0u);
  EXPECT_EQ (OrvaConnObject::track_directory_reports (connection), 0u);
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
  const auto connection = connected_to (server);
  EXPECT_EQ (OrvaConnObject::track_clip_reports (connection), 2u);
  EXPECT_EQ (last_error_text (), "No");
  server.drop ();
  EXPECT_TRUE (server.wait_for_connections (2));
  server.answer_any ("<ok />");
  EXPECT_TRUE (support::wait_until ([&] { return OrvaConnObject::track_clip_reports (connection) == 0; }));
  EXPECT_EQ (server.command_count (), 2u) << "the new connection repeats nothing that was refused";
}

TEST (Lifecycle, NothingIsRegisteredWithoutNeed) {
  support::FakeServer server;
  server.answer_any ("<ok />");
  const auto connection = connected_to (server);
  EXPECT_EQ (OrvaConnObject::cmd_stop1 (connection, 0), 0u);
  EXPECT_EQ (server.command_count (), 1u);
}

TEST (Lifecycle, ALastReferenceThatFallsOnTheConnectionsThreadEndsIt) {
  support::FakeServer server;
  server.silent (true);
  {
    const auto connection = connected_to (server);
    OrvaConnObject::synchronous (connection, 1);
    EXPECT_EQ (OrvaConnObject::cmd_stop1 (connection, 0), 0u);
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
