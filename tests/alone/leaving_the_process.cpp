// A process ends while its connections and stores are open and its threads wait in calls. What the test
// leaves behind is still there when the process exits, which must neither crash nor hang.
#include "orva.h"
#include "support/fake_server.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
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

uint32_t open_store (uint32_t connection, uint32_t mode) {
  const orva_char folder[] = {'C', 'U', 'E', 'S', 0};
  const orva_char no_prefix[] = {0};
  uint32_t store = 0;
  EXPECT_EQ (orva_open_kvstore (connection, folder, no_prefix, mode, &store), ORVA_OK);
  return store;
}

TEST (LeavingTheProcess, WithOpenStoresAndBlockedCallers) {
  const orva_char text[] = {'k', 0};
  static support::FakeServer &server = *new support::FakeServer;
  server.silent (true);
  const uint32_t connection = orva_connect (server.address ());
  orva_wait_until_connected (connection);
  static const uint32_t reader = open_store (connection, ORVA_STORE_READ);
  static const uint32_t writer = open_store (connection, ORVA_STORE_READ_WRITE);
  EXPECT_EQ (orva_kvstore_set (writer, text, text), ORVA_OK); // sent, and never answered
  std::thread ([] {
    uint32_t type = 0;
    orva_kvstore_get_change (reader, 0xFFFFFFFF, &type, OrvaStringBuffer{nullptr, 0},
                             OrvaStringBuffer{nullptr, 0});
  }).detach ();
  std::thread ([] { orva_kvstore_wait_scan (reader, 0xFFFFFFFF); }).detach ();
  std::thread ([] { orva_kvstore_flush (writer, 0xFFFFFFFF); }).detach ();
  EXPECT_TRUE (support::wait_until ([&] {
    const auto all = server.commands ();
    return std::any_of (all.begin (), all.end (),
                        [] (const auto &one) { return one.name == "metadata_set"; });
  }));

  static support::FakeServer &absent = *new support::FakeServer (support::FakeServer::Start::refusing);
  const uint32_t retrying = open_store (orva_connect (absent.address ()), ORVA_STORE_WRITE);
  EXPECT_EQ (orva_kvstore_set (retrying, text, text), ORVA_OK);
  EXPECT_EQ (orva_kvstore_flush (retrying, 0), ORVA_TIMEOUT);
}

TEST (LeavingTheProcess, WithCallersWhoWaitForConnectionsThatNeverCome) {
  static std::atomic<int> returned{0};
  support::FakeServer server;
  static const uint32_t closed = orva_connect (server.address ());
  orva_wait_until_connected (closed);
  orva_close (closed);
  std::thread ([] { returned += orva_wait_until_connected (closed); }).detach ();
  std::thread ([] { returned += orva_wait_until_connected (0); }).detach ();
  EXPECT_FALSE (support::wait_until ([] { return returned.load () != 0; }, std::chrono::milliseconds (300)));
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
