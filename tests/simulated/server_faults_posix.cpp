// The simulator does on purpose what orva.h says that a server must not do. The tests show what happens to a
// caller.

#include "exports/stores.h"
#include "simulated/faulty_server.h"
#include "simulated/simulated_connection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <future>
#include <iterator>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <unistd.h>
#include <utility>
#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

using namespace QUILL3;
using support::wait_until;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

/// A call on a thread of its own. The thread stays when the call never returns, until the process ends.
class Call {
public:
  explicit Call (std::function<void ()> call) {
    std::thread ([call = std::move (call), returned = returned_] {
      call ();
      *returned = true;
    }).detach ();
  }

  bool has_returned () const { return *returned_; }
  bool returns () const {
    return wait_until ([this] { return has_returned (); });
  }
  bool returns_within (std::chrono::milliseconds limit) const {
    return wait_until ([this] { return has_returned (); }, limit);
  }

private:
  const std::shared_ptr<std::atomic<bool>> returned_ = std::make_shared<std::atomic<bool>> (false);
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

TEST (ServerFaults, AnAnswerOfAnotherKindHoldsTheCallerForEver) {
  Faulty server (R"([{"fault": "wrong_kind", "command": "play"}])");
  const Call call ([connection = uint32_t{server}] { orva_cmd_play1 (connection, 0); });
  server.wait_for_command ("play");
  EXPECT_EQ (orva_cmd_stop1 (server, 0), ORVA_OK) << "what was sent before has been read by now";
  EXPECT_FALSE (call.has_returned ());
  server.restart ();
  EXPECT_EQ (orva_cmd_stop1 (server, 0), ORVA_OK) << "what was open at the loss has ended by now";
  EXPECT_FALSE (call.has_returned ());
}

/// Sends `play` without waiting for the end and closes the connection when the server has answered.
void play_and_close (uint32_t connection) {
  orva_synchronous (connection, 1);
  EXPECT_EQ (orva_cmd_play1 (connection, 0), ORVA_OK);
  EXPECT_EQ (filled ([&] (OrvaStringBuffer name) { orva_server_name (connection, name); }), "SIMULATOR");
  orva_close (connection);
}

// The numbers of this process's threads.
std::set<std::string> threads () {
  std::set<std::string> numbers;
  for (const auto &entry : std::filesystem::directory_iterator ("/proc/self/task"))
    numbers.insert (entry.path ().filename ());
  return numbers;
}

#ifdef __SANITIZE_ADDRESS__
using MayLeak = __lsan::ScopedDisabler;
#else
struct MayLeak {
  MayLeak () {}
};
#endif

TEST (ServerFaults, AnAnswerOfAnotherKindKeepsAThreadAndASocketAfterTheClose) {
  const std::set<std::string> before = threads ();
  Faulty server (R"([{"fault": "wrong_kind", "command": "play", "times": 1}])");
  const std::set<std::string> with_first = threads ();
  {
    const MayLeak what_the_command_holds;
    play_and_close (server);
  }
  const uint32_t other = orva_connect (server.simulator.address ());
  EXPECT_TRUE (orva_wait_until_connected (other));
  const std::set<std::string> with_both = threads ();
  play_and_close (other);
  server.wait_for_log ("#2 disconnected");
  EXPECT_THAT (server.simulator.log (), Not (HasSubstr ("#1 disconnected")));
  EXPECT_EQ (orva_connected (server), 0) << "the number is not known any more";
  const auto stays = [before] (const std::set<std::string> &those) {
    const std::set<std::string> now = threads ();
    return std::any_of (those.begin (), those.end (), [&] (const std::string &one) {
      return !before.contains (one) && now.contains (one);
    });
  };
  EXPECT_TRUE (stays (with_first));
  std::set<std::string> of_other;
  std::set_difference (with_both.begin (), with_both.end (), with_first.begin (), with_first.end (),
                       std::inserter (of_other, of_other.end ()));
  EXPECT_TRUE (wait_until ([&] { return !stays (of_other); }));
}

TEST (ServerFaults, ADownloadOfAnotherKindDoesNotEnd) {
  Faulty server (R"([{"fault": "wrong_kind", "command": "download_metadata", "times": 1},)"
                 R"( {"fault": "reset", "command": "play", "times": 1}])");
  const Store broken (server, "CUES", "", ORVA_STORE_READ_WRITE);
  const Store whole (server, "OTHER", "", ORVA_STORE_READ_WRITE);
  EXPECT_EQ (orva_kvstore_wait_scan (whole, generous_milliseconds), ORVA_OK);
  EXPECT_EQ (orva_kvstore_wait_scan (broken, 500), ORVA_TIMEOUT);
  EXPECT_EQ (orva_cmd_play1 (server, 0), ORVA_ERROR) << "the connection is reset";
  EXPECT_TRUE (orva_wait_until_connected (server));
  EXPECT_EQ (orva_cmd_play1 (server, 0), ORVA_OK);
  EXPECT_EQ (orva_kvstore_wait_scan (broken, 500), ORVA_TIMEOUT) << "a new link does not help";
}

TEST (ServerFaults, ADownloadThatIsRefusedDoesNotEnd) {
  Faulty server (R"([{"fault": "refuse", "command": "download_metadata", "times": 1}])");
  const Store refused (server, "CUES", "", ORVA_STORE_READ_WRITE);
  const Store whole (server, "OTHER", "", ORVA_STORE_READ_WRITE);
  EXPECT_EQ (orva_kvstore_wait_scan (whole, generous_milliseconds), ORVA_OK);
  EXPECT_EQ (orva_kvstore_wait_scan (refused, 500), ORVA_TIMEOUT);
}

TEST (ServerFaults, AKeyThatIsAlwaysRefusedStaysPendingAndHoldsUpOthers) {
  Faulty server (R"([{"fault": "refuse", "command": "metadata_set"}])");
  Store store (server, "CUES", "", ORVA_STORE_READ_WRITE);
  store.set ("a", "1");
  store.erase ("b");
  EXPECT_EQ (orva_kvstore_flush (store, 500), ORVA_TIMEOUT);
  server.wait_for_command ("metadata_set");
  EXPECT_THAT (server.simulator.log (), Not (HasSubstr (" metadata_erase ")));
}

// Whether the thread waits in a call of the system. One that only gets no processor time does not.
bool sleeps (pid_t thread) {
  std::ifstream file ("/proc/self/task/" + std::to_string (thread) + "/stat");
  std::string text;
  std::getline (file, text);
  const size_t end = text.rfind (") ");
  return end != text.npos && text[end + 2] == 'S';
}

TEST (ServerFaults, AServerThatStopsReadingHoldsEveryCallThatSends) {
  Faulty server (R"([{"fault": "stop_reading", "command": "play", "times": 1}])");
  const uint32_t connection = server;
  auto reader = std::make_shared<Store> (connection, "CUES", "", ORVA_STORE_READ);
  EXPECT_EQ (orva_kvstore_wait_scan (*reader, generous_milliseconds), ORVA_OK);
  EXPECT_EQ (orva_cmd_play1 (server, 0), ORVA_OK);
  orva_synchronous (connection, 1);
  const auto sent = std::make_shared<std::atomic<unsigned>> (0);
  const auto leave = std::make_shared<std::atomic<bool>> (false);
  const auto thread = std::make_shared<std::atomic<pid_t>> (0);
  const Call sending ([=] { // until the buffers of both sides are full
    *thread = gettid ();
    for (; !*leave; ++*sent)
      orva_cmd_stop1 (connection, 0);
  });
  EXPECT_TRUE (wait_until ([&, last = 0u] () mutable {
    std::this_thread::sleep_for (std::chrono::milliseconds (100));
    return sleeps (*thread) && std::exchange (last, sent->load ()) == *sent && last != 0;
  }));
  const Call opening ([=] { const Store store (connection, "OTHER", "", ORVA_STORE_READ); });
  const Call closing ([=] { reader->close (); });
  EXPECT_FALSE (opening.returns_within (std::chrono::milliseconds (500)));
  EXPECT_FALSE (closing.has_returned ());
  *leave = true;
  server.simulator.kill ();
  EXPECT_TRUE (sending.returns () && opening.returns () && closing.returns ());
}

TEST (ServerFaults, AStoreWhoseServerNeverAnswersNeverCloses) {
  Faulty server (R"([{"fault": "no_answer", "command": "metadata_set"}])");
  const auto store = std::make_shared<Store> (server, "CUES", "", ORVA_STORE_WRITE);
  store->set ("a", "1");
  server.wait_for_command ("metadata_set");
  // Nothing shows from outside when the last of the two waits of the close is over.
  const Call closing ([store] { store->close (); });
  EXPECT_FALSE (closing.returns_within (std::chrono::milliseconds (15000)));
  server.restart ();
  EXPECT_EQ (orva_cmd_stop1 (server, 0), ORVA_OK);
  EXPECT_FALSE (closing.returns_within (std::chrono::milliseconds (500)));
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
