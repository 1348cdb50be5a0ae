// Stores whose server refuses, is silent, goes away and comes back.

#include "exports/stores.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace {

using support::Command;
using support::FakeServer;

std::chrono::milliseconds time_of_close (Store &store) {
  const auto start = std::chrono::steady_clock::now ();
  store.close ();
  return std::chrono::duration_cast<std::chrono::milliseconds> (std::chrono::steady_clock::now () - start);
}

// The server holds its answer back, so that the caller can act while a key is in hand.
TEST (Stores, AValueReplacedWhileItIsSentIsSentAgain) {
  MetadataServer server;
  const SettledSession session (server);
  Store store (session, "CUES", "", ORVA_STORE_WRITE);
  server.silent (true);
  store.set ("k", "1");
  const Command first = server.command (1);
  store.set ("k", "2");
  store.set ("l", "1");
  store.erase ("l");
  EXPECT_EQ (orva_kvstore_flush (store, 0), ORVA_TIMEOUT);
  server.silent (false);
  server.send (support::reply_to (first, "<ok />"));
  EXPECT_EQ (orva_kvstore_flush (store, generous_milliseconds), ORVA_OK);
  EXPECT_EQ (names (server), (std::vector<std::string>{"metadata_set", "metadata_set", "metadata_erase"}));
  EXPECT_EQ (server.table (), (std::map<std::string, std::string>{{"k", "2"}}));
}

TEST (Stores, ARefusedKeyIsTriedAgain) {
  MetadataServer server;
  const SettledSession session (server);
  Store store (session, "CUES", "", ORVA_STORE_WRITE);
  std::atomic<int> refusals = 0;
  server.on ("metadata_set", [&] (const Command &command) {
    return support::reply_to (command, ++refusals < 3 ? no : "<ok />");
  });
  store.set ("k", "1");
  EXPECT_EQ (orva_kvstore_flush (store, generous_milliseconds), ORVA_OK);
  EXPECT_EQ (refusals, 3);
}

TEST (Stores, WhatIsPendingGoesOutWhenTheServerIsBack) {
  MetadataServer server (FakeServer::Start::refusing);
  const Session session (server.address ());
  Store store (session, "CUES", "", ORVA_STORE_READ_WRITE);
  store.set ("k", "1");
  EXPECT_EQ (orva_kvstore_flush (store, 50), ORVA_TIMEOUT);
  server.listen ();
  EXPECT_EQ (orva_kvstore_flush (store, generous_milliseconds), ORVA_OK);
  EXPECT_EQ (server.table (), (std::map<std::string, std::string>{{"k", "1"}}));
}

// Each try draws a number for its command, whether it can be sent or not.
TEST (Stores, WhatCannotBeSentIsTriedAtThePaceOfRefusals) {
  MetadataServer server;
  const SettledSession session (server);
  EXPECT_EQ (orva_cmd_stop1 (session, 0), ORVA_OK);
  const auto start = std::chrono::steady_clock::now ();
  server.refuse ();
  server.drop_all ();
  ASSERT_TRUE (support::wait_until ([&] { return orva_connected (session) == 0; }));
  Store store (session, "CUES", "", ORVA_STORE_WRITE);
  store.set ("k", "1");
  EXPECT_EQ (orva_kvstore_flush (store, 1000), ORVA_TIMEOUT);
  server.listen ();
  EXPECT_EQ (orva_kvstore_flush (store, generous_milliseconds), ORVA_OK);
  const auto passed = std::chrono::steady_clock::now () - start;
  const auto tries = std::stoul (server.command (2).xid) - std::stoul (server.command (1).xid);
  EXPECT_GE (tries, 2u);
  EXPECT_LE (tries, 3u + static_cast<unsigned long> (passed / std::chrono::milliseconds (200)));
}

// The second setting comes while the first is on its way, and so while the flush waits.
TEST (Stores, AFlushWaitsForWhatComesMeanwhile) {
  MetadataServer server;
  const SettledSession session (server);
  Store store (session, "CUES", "", ORVA_STORE_WRITE);
  server.on ("metadata_set", [&] (const Command &command) {
    if (support::text_of (command.document, "Key") != "a")
      return std::string ();
    store.set ("b", "1");
    return support::reply_to (command, "<ok />");
  });
  store.set ("a", "1");
  EXPECT_EQ (orva_kvstore_flush (store, 500), ORVA_TIMEOUT);
  server.send (support::reply_to (server.command (2), "<ok />"));
  EXPECT_EQ (orva_kvstore_flush (store, generous_milliseconds), ORVA_OK);
}

TEST (Stores, ACloseLeavesTheLastTextAlone) {
  MetadataServer server;
  const SettledSession session (server);
  Store store (session, "CUES", "", ORVA_STORE_READ_WRITE);
  EXPECT_EQ (orva_cmd_stop1 (0, 0), ORVA_INVALID_HANDLE);
  store.close ();
  EXPECT_EQ (last_error (), "Invalid handle");
}

struct ServerOfTwoKeys : MetadataServer {
  ServerOfTwoKeys () {
    put ("a", "1");
    put ("b", "2");
  }
};

/// A store that has read both keys.
class ReadStore : public ::testing::Test {
protected:
  void SetUp () override {
    EXPECT_EQ (change (store), "a=1");
    EXPECT_EQ (change (store), "b=2");
  }

  ServerOfTwoKeys server;
  const SettledSession session{server};
  const Store store{session, "CUES", "", ORVA_STORE_READ};
};

TEST_F (ReadStore, ReportsEveryKeyAgainAfterAReconnection) {
  server.drop ();
  EXPECT_EQ (change (store), "a=1");
  EXPECT_EQ (change (store), "b=2");
  EXPECT_EQ (orva_kvstore_wait_scan (store, generous_milliseconds), ORVA_OK);
  const std::vector<std::string> all = names (server);
  EXPECT_EQ (std::vector<std::string> (all.begin () + 2, all.end ()),
             (std::vector<std::string>{"watch_metadata_database", "download_metadata"}));
}

TEST (Stores, CloseWithoutAServerTakesTheTimeOfDraining) {
  MetadataServer server (FakeServer::Start::refusing);
  const Session session (server.address ());
  Store store (session, "CUES", "", ORVA_STORE_WRITE);
  store.set ("k", "1");
  const std::chrono::milliseconds passed = time_of_close (store);
  EXPECT_GE (passed, std::chrono::milliseconds (1900));
  EXPECT_LT (passed, std::chrono::seconds (12));
}

TEST (Stores, ARefusedErasureIsTriedAgain) {
  MetadataServer server;
  const SettledSession session (server);
  Store store (session, "CUES", "", ORVA_STORE_WRITE);
  std::atomic<int> tries = 0;
  server.on ("metadata_erase", [&] (const Command &command) {
    return support::reply_to (command, ++tries < 3 ? no : "<ok />");
  });
  store.erase ("k");
  EXPECT_EQ (orva_kvstore_flush (store, generous_milliseconds), ORVA_OK);
  EXPECT_EQ (tries, 3);
}

TEST (Stores, AServerThatVanishesInTheMiddleOfASetGetsItAgain) {
  MetadataServer server;
  const SettledSession session (server);
  Store store (session, "CUES", "", ORVA_STORE_WRITE);
  for (const bool erasure : {false, true}) {
    server.forget ();
    server.silent (true);
    if (erasure)
      store.erase ("k");
    else
      store.set ("k", "1");
    const Command lost = server.command (1);
    server.silent (false);
    server.drop ();
    EXPECT_EQ (orva_kvstore_flush (store, generous_milliseconds), ORVA_OK);
    const std::vector<Command> all = server.commands ();
    EXPECT_GT (all.back ().connection, lost.connection);
    EXPECT_EQ (all.back ().element (), lost.element ());
    EXPECT_EQ (server.table ().size (), erasure ? 0u : 1u);
  }
}

TEST_F (ReadStore, DoesNotReportWhatWasErasedWhileTheLinkWasDown) {
  server.take_out ("a");
  server.drop ();
  EXPECT_EQ (change (store), "b=2");
  EXPECT_EQ (orva_kvstore_wait_scan (store, generous_milliseconds), ORVA_OK);
  EXPECT_EQ (change (store, 0), "");
}

TEST (Stores, ADownloadThatTheLinkInterruptsIsMadeAgain) {
  MetadataServer server;
  server.put ("a", "1");
  const SettledSession session (server);
  server.silent (true);
  const Store store (session, "CUES", "", ORVA_STORE_READ);
  ASSERT_TRUE (server.wait_for_commands (2));
  EXPECT_EQ (orva_kvstore_wait_scan (store, 0), ORVA_TIMEOUT);
  server.silent (false);
  server.drop ();
  EXPECT_EQ (orva_kvstore_wait_scan (store, generous_milliseconds), ORVA_OK);
  EXPECT_EQ (change (store, 0), "a=1");
}

TEST (Stores, AConnectionMayEndWithADownloadOpen) {
  FakeServer server;
  {
    const SettledSession session (server);
    server.silent (true);
    const Store store (session, "CUES", "", ORVA_STORE_READ);
    ASSERT_TRUE (server.wait_for_commands (2));
  }
  EXPECT_TRUE (server.wait_until_left ());
}

TEST (Stores, ADownloadAnsweredWithSomethingElseNeverCountsAsDone) {
  FakeServer server;
  server.answer ("download_metadata", "<computername><ComputerName>STUDIO1</ComputerName></computername>");
  const SettledSession session (server);
  const Store store (session, "CUES", "", ORVA_STORE_READ);
  ASSERT_TRUE (server.wait_for_commands (2));
  server.answer ("download_metadata", "<ok />");
  const Store second (session, "CUES", "", ORVA_STORE_READ);
  ASSERT_TRUE (server.wait_for_commands (3));
  EXPECT_EQ (orva_cmd_stop1 (session, 0), ORVA_OK); // by now the download has been answered
  EXPECT_EQ (orva_kvstore_wait_scan (second, 0), ORVA_TIMEOUT);
}

TEST (Stores, AClosedStoreStaysUntilItsCallersReturn) {
  MetadataServer server;
  uint32_t code = 77;
  std::thread waiting;
  {
    const SettledSession session (server);
    Store store (session, "CUES", "", ORVA_STORE_READ);
    waiting = std::thread ([&, handle = uint32_t{store}] {
      uint32_t type = 0;
      const OrvaStringBuffer none{nullptr, 0};
      code = orva_kvstore_get_change (handle, 1000, &type, none, none);
    });
    EXPECT_EQ (orva_kvstore_wait_scan (store, generous_milliseconds), ORVA_OK);
    store.close ();
  }
  waiting.join ();
  EXPECT_TRUE (code == ORVA_TIMEOUT || code == ORVA_INVALID_HANDLE) << "the latter when it came too late";
  EXPECT_TRUE (server.wait_until_left ());
}

TEST (Stores, AReaderClosesWithoutWaiting) {
  FakeServer server;
  const SettledSession session (server);
  server.silent (true);
  auto best = std::chrono::milliseconds::max ();
  for (int i = 0; i != 3; ++i) {
    Store silent (session, "CUES", "", ORVA_STORE_READ);
    best = std::min (best, time_of_close (silent));
  }
  EXPECT_LT (best, std::chrono::milliseconds (1900));
  EXPECT_EQ (server.command (3).name, "unwatch_metadata_database");
}

TEST (Stores, AnAnswerAfterTheDrainingLetsCloseReturn) {
  MetadataServer server;
  const SettledSession session (server);
  Store store (session, "CUES", "", ORVA_STORE_WRITE);
  server.silent (true);
  store.set ("k", "1");
  const Command in_hand = server.command (1);
  std::thread answering ([&] {
    EXPECT_TRUE (support::wait_until ([&] { return orva_kvstore_flush (store, 0) == ORVA_INVALID_HANDLE; }));
    std::this_thread::sleep_for (std::chrono::milliseconds (3000)); // longer than it drains
    server.send (support::reply_to (in_hand, "<ok />"));
  });
  const std::chrono::milliseconds passed = time_of_close (store);
  answering.join ();
  EXPECT_GE (passed, std::chrono::milliseconds (2000));
}

} // namespace
