// The simulator does on purpose what orva.h says that a server must not do. The tests show what happens to a
// caller.

#include "exports/stores.h"
#include "simulated/simulated_connection.h"
#include "support/simulator_process.h"
#include "support/wait.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <future>
#include <string>
#include <unistd.h>

using namespace QUILL3;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

/// A file with one line of faults, which goes at the end.
class FaultsFile {
public:
  explicit FaultsFile (const std::string &rules) : name_ (testing::TempDir () + "faults-XXXXXX") {
    const int file = mkstemp (name_.data ());
    EXPECT_GE (file, 0);
    close (file);
    std::ofstream (name_) << rules;
  }
  ~FaultsFile () { std::remove (name_.c_str ()); }
  FaultsFile (const FaultsFile &) = delete;
  FaultsFile &operator= (const FaultsFile &) = delete;

  const std::string &name () const { return name_; }

private:
  std::string name_;
};

/// A simulator with faults, and a connection to it.
class Faulty {
public:
  explicit Faulty (const std::string &rules) : file_ (rules), simulator ({"--faults", file_.name ()}) {
    number_ = orva_connect (simulator.address ());
    EXPECT_TRUE (orva_wait_until_connected (number_));
  }
  ~Faulty () { orva_close (number_); }
  Faulty (const Faulty &) = delete;
  Faulty &operator= (const Faulty &) = delete;

  operator uint32_t () const { return number_; }

  /// Waits until the server has been asked for it.
  void wait_for_command (const std::string &name) {
    EXPECT_TRUE (support::wait_until ([&] {
      return simulator.log ().find (' ' + name + ' ') != std::string::npos;
    })) << name;
  }

private:
  const FaultsFile file_;

public:
  support::SimulatorProcess simulator;

private:
  uint32_t number_ = 0;
};

bool is_ready (const std::future<uint32_t> &result) {
  return result.wait_for (std::chrono::seconds (0)) == std::future_status::ready;
}

/// The connection is lost under the command, made again, and works.
void expect_new_connection (Faulty &server) {
  EXPECT_EQ (orva_cmd_play1 (server, 0), ORVA_ERROR);
  EXPECT_EQ (last_error (), "Failing all outstanding commands");
  EXPECT_TRUE (orva_wait_until_connected (server));
  EXPECT_EQ (orva_cmd_play1 (server, 0), ORVA_OK);
}

/// A command that the server never ends is open until the connection is lost.
void expect_open_until_lost (Faulty &server, std::function<uint32_t ()> ask, const std::string &command) {
  std::future<uint32_t> result = std::async (std::launch::async, std::move (ask));
  server.wait_for_command (command);
  EXPECT_EQ (orva_cmd_stop1 (server, 0), ORVA_OK) << "what was sent before has been read by now";
  EXPECT_FALSE (is_ready (result));
  server.simulator.kill ();
  EXPECT_EQ (result.get (), ORVA_ERROR);
}

TEST (ServerFaults, AMessageThatIsTooLongEndsTheConnection) {
  Faulty server (R"([{"fault": "oversized", "command": "play", "times": 1, "bytes": 32769}])");
  expect_new_connection (server);
}

TEST (ServerFaults, AMessageThatIsNotWellFormedEndsTheConnection) {
  Faulty server (R"([{"fault": "malformed", "command": "play", "times": 1}])");
  expect_new_connection (server);
}

TEST (ServerFaults, AnAnswerThatCannotBeReadLeavesTheCommandOpen) {
  Faulty server (R"([{"fault": "wrong_kind", "command": "get_disk_usage", "body": "<disk_usage />"}])");
  uint64_t total = 0, available = 0;
  uint32_t field = 0;
  expect_open_until_lost (
      server, [&] { return orva_disk_usage1 (server, &total, &available, &field); }, "get_disk_usage");
}

TEST (ServerFaults, NoAnswerLeavesTheCommandOpen) {
  Faulty server (R"([{"fault": "no_answer", "command": "play"}])");
  expect_open_until_lost (
      server, [&] { return orva_cmd_play1 (server, 0); }, "play");
}

TEST (ServerFaults, AnAnswerOfAnotherKindEndsTheCommandWithoutAResult) {
  const FaultsFile faults (R"([{"fault": "wrong_kind", "command": "play"}])");
  SimulatedConnection connection ({"--faults", faults.name ()});
  EXPECT_THAT (connection.ask (command::play{}), IsEmpty ());
  EXPECT_THAT (connection.ask (command::stop{}), testing::ElementsAre ("ok"));
}

TEST (ServerFaults, ADownloadOfAnotherKindDoesNotEnd) {
  Faulty server (R"([{"fault": "wrong_kind", "command": "download_metadata", "times": 1}])");
  const Store broken (server, "CUES", "", ORVA_STORE_READ_WRITE);
  const Store whole (server, "OTHER", "", ORVA_STORE_READ_WRITE);
  EXPECT_EQ (orva_kvstore_wait_scan (whole, generous_milliseconds), ORVA_OK);
  EXPECT_EQ (orva_kvstore_wait_scan (broken, 500), ORVA_TIMEOUT);
}

TEST (ServerFaults, AKeyThatIsAlwaysRefusedStaysPending) {
  Faulty server (R"([{"fault": "refuse", "command": "metadata_set"}])");
  Store store (server, "CUES", "", ORVA_STORE_READ_WRITE);
  store.set ("a", "1");
  EXPECT_EQ (orva_kvstore_flush (store, 500), ORVA_TIMEOUT);
}

TEST (ServerFaults, AFieldSizeOfNothingIsAnError) {
  Faulty server (
      R"([{"fault": "wrong_kind", "command": "get_disk_usage", "body": "<disk_usage><TotalDiskSpace>10)"
      R"(</TotalDiskSpace><AvailableDiskSpace>5</AvailableDiskSpace><FieldSize>0</FieldSize></disk_usage>"}])");
  uint32_t total = 0, available = 0;
  EXPECT_EQ (orva_disk_usage2 (server, &total, &available), ORVA_ERROR);
  EXPECT_EQ (last_error (), "Internal software error");
}

TEST (ServerFaults, AServerThatRefusesConnectionsIsTriedUntilItListens) {
  const FaultsFile faults (R"([{"fault": "refuse_connections", "for_ms": 300}])");
  const support::SimulatorProcess server ({"--faults", faults.name ()});
  const uint32_t connection = orva_connect (server.address ());
  EXPECT_TRUE (orva_wait_until_connected (connection));
  orva_close (connection);
}

} // namespace
