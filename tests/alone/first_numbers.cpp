// What the first connections and commands of a process are numbered.
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
  EXPECT_EQ (orva_connect (server.address ()), 3u) << "numbers are not used again";
  orva_close (second);
  orva_close (3);
}

} // namespace
