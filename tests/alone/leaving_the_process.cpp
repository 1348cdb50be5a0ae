// A process ends while its connections are open and its threads wait in calls. What the test leaves behind
// is still there when the process exits, which must neither crash nor hang.
#include "orva.h"
#include "support/fake_server.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

TEST (LeavingTheProcess, WithOpenConnectionsAndBlockedCallers) {
  static support::FakeServer &server = *new support::FakeServer;
  server.silent (true);
  static const uint32_t connection = orva_connect (server.address ());
  orva_wait_until_connected (connection);
  std::thread ([] { orva_cmd_stop1 (connection, 0); }).detach ();
  EXPECT_TRUE (server.wait_for_commands (1));
  orva_synchronous (connection, 1);
  EXPECT_EQ (orva_cmd_stop1 (connection, 1), ORVA_OK);
  std::thread ([] { orva_sync (connection); }).detach ();

  static support::FakeServer &absent = *new support::FakeServer (support::FakeServer::Start::refusing);
  const uint32_t to_nobody = orva_connect (absent.address ());
  EXPECT_EQ (orva_connected (to_nobody), 0);
}

TEST (LeavingTheProcess, AThreadMayEndBeforeItsConnection) {
  support::FakeServer server;
  server.answer_any ("<ok />");
  uint32_t connection = 0;
  std::thread ([&] {
    connection = orva_connect (server.address ());
    orva_wait_until_connected (connection);
    EXPECT_EQ (orva_cmd_stop1 (connection, 0), ORVA_OK);
  }).join ();
  EXPECT_EQ (orva_cmd_stop1 (connection, 0), ORVA_OK);
  orva_close (connection);
  EXPECT_TRUE (server.wait_until_left ());
}

} // namespace
