// A server that stays connected and answers nothing, while a store is closed. The call that never returns is
// left behind when the process ends.

#include "orva.h"
#include "support/fake_server.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

using std::chrono::milliseconds;

TEST (SilentServer, HoldsACloseForGoodAfterTwelveSeconds) {
  static std::atomic<bool> returned{false};
  static uint32_t store = 0;
  static support::FakeServer &server = *new support::FakeServer;
  server.silent (true);
  const uint32_t connection = orva_connect (server.address ());
  orva_wait_until_connected (connection);
  const orva_char text[] = {'k', 0};
  ASSERT_EQ (orva_open_kvstore (connection, text, text, ORVA_STORE_WRITE, &store), ORVA_OK);
  ASSERT_EQ (orva_kvstore_set (store, text, text), ORVA_OK);
  ASSERT_TRUE (server.wait_for_commands (1));
  std::thread ([] {
    orva_close_key_value_store (store);
    returned = true;
  }).detach ();
  EXPECT_FALSE (support::wait_until ([] { return returned.load (); }, milliseconds (15000)));

  server.answer_any ("<ok />");
  server.silent (false);
  server.drop (); // which fails what is in hand, but the thread that sent it is locked out
  EXPECT_TRUE (support::wait_until ([=] { return orva_cmd_stop1 (connection, 0) == ORVA_OK; }));
  EXPECT_FALSE (support::wait_until ([] { return returned.load (); }, milliseconds (500)));
  EXPECT_EQ (orva_kvstore_flush (store, 0), ORVA_INVALID_HANDLE);
}

} // namespace
