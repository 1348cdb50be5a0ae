// The simulator as the tests of this folder use it: it listens, it can be killed, and it can be started
// again.

#include "support/simulator_process.h"

#include "support/fake_server.h"

#include <gtest/gtest.h>

namespace {

using support::RawClient;
using support::SimulatorProcess;

const std::string question = "<cmd>\r\n<xid>7</xid>\r\n<get_computer_name />\r\n</cmd>";

std::string answer_of (const SimulatorProcess &server) {
  RawClient client (server.address ());
  client.send (question);
  return client.receive_through ("</reply>");
}

TEST (SimulatorProcess, AnswersAsTheServerItWasToldToBe) {
  const SimulatorProcess server ({"--name", "STUDIO"});
  EXPECT_NE (answer_of (server).find ("STUDIO"), std::string::npos);
}

TEST (SimulatorProcess, IsGoneWhenItWasKilledAndBackWhenItWasStarted) {
  SimulatorProcess server;
  RawClient client (server.address ());
  server.kill ();
  EXPECT_TRUE (client.wait_for_end ());
  EXPECT_FALSE (RawClient (server.address ()).connected ());
  server.start ();
  EXPECT_NE (answer_of (server).find ("<reply>"), std::string::npos);
}

TEST (SimulatorProcess, EndsInOrderWhenAsked) {
  SimulatorProcess server;
  EXPECT_EQ (server.stop (), 0);
  EXPECT_NE (server.log ().find ("listening on "), std::string::npos);
}

} // namespace
