// The numbers of the first connections, commands and stores of a process.
#include "orva.h"
#include "support/fake_server.h"

#include <gtest/gtest.h>

namespace {

TEST (FirstNumbers, ConnectionsAndCommandsAreCountedFromOne) {
  support::FakeServer server;
  server.answer_any ("<ok />");
  const uint32_t first = orva_connect (server.address ());
  const uint32_t second = orva_connect (server.address ());
  EXPECT_EQ (first, 1u);
  EXPECT_EQ (second, 2u);
  orva_wait_until_connected (first);
  orva_wait_until_connected (second);
  EXPECT_EQ (orva_cmd_stop1 (first, 0), ORVA_OK);
  EXPECT_EQ (orva_cmd_stop1 (second, 0), ORVA_OK);
  EXPECT_EQ (server.command (1).document,
             "<cmd>\r\n<xid>1</xid>\r\n<stop>\r\n<Channel>A</Channel>\r\n</stop>\r\n</cmd>");
  EXPECT_EQ (server.command (2).document,
             "<cmd>\r\n<xid>2</xid>\r\n<stop>\r\n<Channel>A</Channel>\r\n</stop>\r\n</cmd>");
  EXPECT_NE (server.command (1).connection, server.command (2).connection);
  orva_close (first);
  const orva_char text[] = {'k', 0};
  for (uint32_t expected = 1; expected != 3; ++expected) {
    uint32_t store = 0;
    EXPECT_EQ (orva_open_kvstore (second, text, text, ORVA_STORE_READ, &store), ORVA_OK);
    EXPECT_EQ (store, expected) << "stores have numbers of their own";
    orva_close_key_value_store (store);
  }
  EXPECT_EQ (orva_connect (server.address ()), 3u) << "numbers are not used again";
  orva_close (second);
  orva_close (3);
}

} // namespace
