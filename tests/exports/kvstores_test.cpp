#include "exports/session.h"

#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace {

using support::Command;
using support::FakeServer;

std::string pair_of (const std::string &key, const std::string &value) {
  return "<Metadata><Key>" + key + "</Key><Value>" + value + "</Value></Metadata>";
}

std::string database (const Command &command) {
  return support::text_of (command.document, "MetadataDatabase");
}

/// The server's side: one table for each folder, told to nobody but who downloads it.
class MetadataServer : public FakeServer {
public:
  explicit MetadataServer (Start start = Start::listening) : FakeServer (start) {
    answer ("watch_metadata_database", "<ok />");
    answer ("unwatch_metadata_database", "<ok />");
    on ("download_metadata", [this] (const Command &command) { return download (command); });
    on ("metadata_set", [this] (const Command &command) {
      const std::lock_guard hold (lock_);
      table_[support::text_of (command.document, "Key")] = support::text_of (command.document, "Value");
      return support::reply_to (command, "<ok />");
    });
    on ("metadata_erase", [this] (const Command &command) {
      const std::lock_guard hold (lock_);
      table_.erase (support::text_of (command.document, "Key"));
      return support::reply_to (command, "<ok />");
    });
  }

  void put (const std::string &key, const std::string &value) {
    const std::lock_guard hold (lock_);
    table_[key] = value;
  }
  std::map<std::string, std::string> table () {
    const std::lock_guard hold (lock_);
    return table_;
  }

private:
  std::string download (const Command &command) {
    const std::lock_guard hold (lock_);
    std::string text;
    for (const auto &[key, value] : table_)
      text += support::reply_to (command, "<metadata><MetadataDatabase>" + database (command) +
                                              "</MetadataDatabase><MetadataPrefix /><MetadataList>" +
                                              pair_of (key, value) + "</MetadataList></metadata>");
    return text + support::reply_to (command, "<ok />");
  }

  std::mutex lock_;
  std::map<std::string, std::string> table_;
};

/// A connection whose thread has done what it does at the start of one. A store that is opened earlier may be
/// watched twice, by its opening and by that.
class SettledSession : public Session {
public:
  explicit SettledSession (FakeServer &server) : Session (server) {
    server.answer ("stop", "<ok />");
    EXPECT_EQ (orva_cmd_stop1 (*this, 0), ORVA_OK);
    server.forget ();
  }
};

/// A store that closes itself.
class Store {
public:
  Store (uint32_t connection, const char *folder, const char *prefix, uint32_t mode) {
    EXPECT_EQ (orva_open_kvstore (connection, wide (folder).c_str (), wide (prefix).c_str (), mode, &handle_),
               ORVA_OK);
  }
  ~Store () { close (); }
  Store (const Store &) = delete;
  Store &operator= (const Store &) = delete;

  operator uint32_t () const { return handle_; }
  void close () { orva_close_key_value_store (handle_); }
  void set (const char *key, const char *value) {
    EXPECT_EQ (orva_kvstore_set (handle_, wide (key).c_str (), wide (value).c_str ()), ORVA_OK);
  }
  void erase (const char *key) { EXPECT_EQ (orva_kvstore_erase (handle_, wide (key).c_str ()), ORVA_OK); }

private:
  uint32_t handle_ = 0;
};

constexpr uint32_t generous_milliseconds = 20000;

/// The next change as "key=value" or "key gone", empty when none comes.
std::string change (uint32_t store, uint32_t timeout = generous_milliseconds) {
  uint32_t type = 77;
  orva_char key[64] = {'#'};
  orva_char value[64] = {'#'};
  const uint32_t code =
      orva_kvstore_get_change (store, timeout, &type, OrvaStringBuffer{key, 64}, OrvaStringBuffer{value, 64});
  if (code != ORVA_OK) {
    EXPECT_EQ (code, ORVA_TIMEOUT);
    EXPECT_EQ (type, 77u);
    EXPECT_EQ (key[0], orva_char ('#'));
    EXPECT_EQ (value[0], orva_char ('#'));
    return "";
  }
  std::string text;
  for (const orva_char *c = key; *c != 0; ++c)
    text += static_cast<char> (*c);
  text += type == ORVA_STORE_CHANGE_SET ? "=" : " gone";
  for (const orva_char *c = value; *c != 0; ++c)
    text += static_cast<char> (*c);
  return text;
}

std::vector<std::string> names (const FakeServer &server) {
  std::vector<std::string> all;
  for (const Command &command : server.commands ())
    all.push_back (command.name);
  return all;
}

TEST (Stores, BadArgumentsGiveTheirCodes) {
  FakeServer server;
  const SettledSession session (server);
  uint32_t handle = 77;
  const auto open = [&] (uint32_t connection, uint32_t mode) {
    return orva_open_kvstore (connection, wide ("CUES").c_str (), wide ("").c_str (), mode, &handle);
  };
  EXPECT_EQ (open (session, 0), ORVA_INVALID_ARGUMENT);
  EXPECT_EQ (last_error (), "Invalid argument");
  EXPECT_EQ (open (session, 4), ORVA_INVALID_ARGUMENT);
  EXPECT_EQ (open (0, 1), ORVA_INVALID_HANDLE);
  EXPECT_EQ (open (0, 9), ORVA_INVALID_HANDLE) << "the connection is looked at first";
  EXPECT_EQ (handle, 77u);
  EXPECT_EQ (server.command_count (), 0u);
  uint32_t type = 77;
  const OrvaStringBuffer none{nullptr, 0};
  EXPECT_EQ (orva_kvstore_set (4000000000, wide ("k").c_str (), wide ("v").c_str ()), ORVA_INVALID_HANDLE);
  EXPECT_EQ (orva_kvstore_erase (4000000000, wide ("k").c_str ()), ORVA_INVALID_HANDLE);
  EXPECT_EQ (orva_kvstore_flush (4000000000, 0), ORVA_INVALID_HANDLE);
  EXPECT_EQ (orva_kvstore_wait_scan (4000000000, 0), ORVA_INVALID_HANDLE);
  EXPECT_EQ (orva_kvstore_get_change (4000000000, 0, &type, none, none), ORVA_INVALID_HANDLE);
  EXPECT_EQ (last_error (), "Invalid handle");
  orva_close_key_value_store (4000000000);
}

TEST (Stores, OpeningWatchesAndDownloads) {
  MetadataServer server;
  server.put ("a", "1");
  server.put ("b", "2");
  const SettledSession session (server);
  const Store store (session, "CUES", "", ORVA_STORE_READ);
  EXPECT_EQ (orva_kvstore_wait_scan (store, generous_milliseconds), ORVA_OK);
  EXPECT_EQ (change (store, 0), "a=1");
  EXPECT_EQ (change (store, 0), "b=2");
  EXPECT_EQ (change (store, 0), "");
  const Command watch = server.command (1);
  EXPECT_EQ (watch.xid.substr (0, 4), "none");
  EXPECT_EQ (watch.document,
             document (watch.xid, "<watch_metadata_database>|<MetadataDatabase>CUES</MetadataDatabase>|"
                                  "</watch_metadata_database>"));
  const Command download = server.command (2);
  EXPECT_EQ (download.document,
             document (download.xid, "<download_metadata>|<MetadataDatabase>CUES</MetadataDatabase>|"
                                     "</download_metadata>"));
}

TEST (Stores, AnEmptyFolderIsScannedAndTellsNothing) {
  MetadataServer server;
  const SettledSession session (server);
  const Store store (session, "CUES", "", ORVA_STORE_READ);
  EXPECT_EQ (orva_kvstore_wait_scan (store, generous_milliseconds), ORVA_OK);
  EXPECT_EQ (change (store, 0), "");
}

TEST (Stores, AScanThatIsRefusedOrOpenTimesOut) {
  FakeServer server;
  server.answer ("download_metadata",
                 "<error><ErrorMessage>No</ErrorMessage><ErrorCode>general</ErrorCode></error>");
  const SettledSession session (server);
  const Store refused (session, "CUES", "", ORVA_STORE_READ);
  server.wait_for_commands (2);
  EXPECT_EQ (orva_kvstore_wait_scan (refused, 50), ORVA_TIMEOUT);
  EXPECT_EQ (last_error (), "Timeout");
  server.silent (true);
  const Store open (session, "OTHER", "", ORVA_STORE_READ);
  EXPECT_EQ (orva_kvstore_wait_scan (open, 0), ORVA_TIMEOUT);
  const Store writer (session, "THIRD", "", ORVA_STORE_WRITE);
  EXPECT_EQ (orva_kvstore_wait_scan (writer, 0), ORVA_TIMEOUT);
}

TEST (Stores, TwoOnOneFolderShareTheWatch) {
  MetadataServer server;
  const SettledSession session (server);
  Store a (session, "CUES", "a/", ORVA_STORE_READ);
  Store b (session, "CUES", "b/", ORVA_STORE_READ);
  ASSERT_TRUE (server.wait_for_commands (3));
  EXPECT_EQ (names (server),
             (std::vector<std::string>{"watch_metadata_database", "download_metadata", "download_metadata"}));
  server.report ("<metadata_change><MetadataDatabase>CUES</MetadataDatabase><MetadataPrefix />"
                 "<MetadataList>" +
                 pair_of ("a/x", "1") + pair_of ("b/y", "2") + "</MetadataList></metadata_change>");
  EXPECT_EQ (change (a), "x=1");
  EXPECT_EQ (change (b), "y=2");
  EXPECT_EQ (change (a, 0), "");
  server.report ("<metadata_remove><MetadataDatabase>CUES</MetadataDatabase><MetadataPrefix>a/"
                 "</MetadataPrefix><KeyList><Key>x</Key></KeyList></metadata_remove>");
  EXPECT_EQ (change (a), "x gone");
  a.close ();
  b.close ();
  const Command unwatch = server.command (4);
  EXPECT_EQ (unwatch.xid.substr (0, 4), "none");
  EXPECT_EQ (unwatch.document,
             document (unwatch.xid, "<unwatch_metadata_database>|<MetadataDatabase>CUES</MetadataDatabase>|"
                                    "</unwatch_metadata_database>"));
  EXPECT_EQ (server.command_count (), 4u);
  EXPECT_EQ (orva_kvstore_wait_scan (a, 0), ORVA_INVALID_HANDLE);
}

TEST (Stores, HandlesAreNotUsedAgain) {
  FakeServer server;
  const SettledSession session (server);
  Store first (session, "CUES", "", ORVA_STORE_READ);
  const uint32_t handle = first;
  first.close ();
  const Store second (session, "CUES", "", ORVA_STORE_READ);
  EXPECT_EQ (uint32_t{second}, handle + 1);
}

TEST (Stores, SetsAndErasesReachTheServer) {
  MetadataServer server;
  server.put ("p/old", "1");
  const SettledSession session (server);
  Store store (session, "CUES", "p/", ORVA_STORE_WRITE);
  store.set ("k", "v");
  EXPECT_EQ (orva_kvstore_flush (store, generous_milliseconds), ORVA_OK);
  store.erase ("old");
  EXPECT_EQ (orva_kvstore_flush (store, generous_milliseconds), ORVA_OK);
  EXPECT_EQ (server.table (), (std::map<std::string, std::string>{{"p/k", "v"}}));
  const Command set = server.command (1);
  EXPECT_EQ (set.document,
             document (set.xid, "<metadata_set>|<MetadataDatabase>CUES</MetadataDatabase>|<MetadataList>|"
                                "<Metadata>|<Key>p/k</Key>|<Value>v</Value>|</Metadata>|</MetadataList>|"
                                "</metadata_set>"));
  const Command erase = server.command (2);
  EXPECT_EQ (erase.document,
             document (erase.xid, "<metadata_erase>|<MetadataDatabase>CUES</MetadataDatabase>|<KeyList>|"
                                  "<Key>p/old</Key>|</KeyList>|</metadata_erase>"));
  store.close ();
  EXPECT_EQ (server.command_count (), 2u) << "a store that only writes has nothing to unwatch";
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
    return support::reply_to (command, ++refusals < 3 ? "<error><ErrorMessage>No</ErrorMessage><ErrorCode>"
                                                        "general</ErrorCode></error>"
                                                      : "<ok />");
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

TEST (Stores, AReconnectionTellsEveryKeyAgain) {
  MetadataServer server;
  server.put ("a", "1");
  server.put ("b", "2");
  const SettledSession session (server);
  const Store store (session, "CUES", "", ORVA_STORE_READ);
  EXPECT_EQ (change (store), "a=1");
  EXPECT_EQ (change (store), "b=2");
  server.drop ();
  EXPECT_EQ (change (store), "a=1");
  EXPECT_EQ (change (store), "b=2");
  EXPECT_EQ (orva_kvstore_wait_scan (store, generous_milliseconds), ORVA_OK);
  const std::vector<std::string> all = names (server);
  EXPECT_EQ (std::vector<std::string> (all.begin () + 2, all.end ()),
             (std::vector<std::string>{"watch_metadata_database", "download_metadata"}));
}

TEST (Stores, OutliveTheirConnectionsNumber) {
  MetadataServer server;
  const uint32_t connection = orva_connect (server.address ());
  orva_wait_until_connected (connection);
  Store store (connection, "CUES", "", ORVA_STORE_READ_WRITE);
  orva_close (connection);
  store.set ("k", "1");
  EXPECT_EQ (orva_kvstore_flush (store, generous_milliseconds), ORVA_OK);
  store.close ();
  EXPECT_TRUE (server.wait_until_left ());
}

TEST (Stores, CloseWithoutAServerTakesTheTimeOfDraining) {
  MetadataServer server (FakeServer::Start::refusing);
  const Session session (server.address ());
  Store store (session, "CUES", "", ORVA_STORE_WRITE);
  store.set ("k", "1");
  const auto start = std::chrono::steady_clock::now ();
  store.close ();
  const auto passed = std::chrono::steady_clock::now () - start;
  EXPECT_GE (passed, std::chrono::milliseconds (1900));
  EXPECT_LT (passed, std::chrono::seconds (12));
}

TEST (Stores, AnAsynchronousConnectionTakesASendForAnAnswer) {
  MetadataServer server;
  const SettledSession session (server);
  orva_synchronous (session, 1);
  Store store (session, "CUES", "", ORVA_STORE_WRITE);
  server.silent (true);
  store.set ("k", "1");
  EXPECT_EQ (orva_kvstore_flush (store, generous_milliseconds), ORVA_OK);
  EXPECT_TRUE (server.wait_for_commands (1));
}

TEST (Stores, ChangesAreCutToFit) {
  MetadataServer server;
  server.put ("abcdef", "123456");
  const SettledSession session (server);
  const Store store (session, "CUES", "", ORVA_STORE_READ);
  EXPECT_EQ (orva_kvstore_wait_scan (store, generous_milliseconds), ORVA_OK);
  uint32_t type = 0;
  orva_char key[4];
  EXPECT_EQ (
      orva_kvstore_get_change (store, 0, &type, OrvaStringBuffer{key, 4}, OrvaStringBuffer{nullptr, 0}),
      ORVA_OK);
  EXPECT_EQ (std::basic_string<orva_char> (key), wide ("abc"));
}

} // namespace
