#include "exports/stores.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <map>
#include <string>
#include <vector>

namespace {

using support::Command;
using support::FakeServer;

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
  server.answer ("download_metadata", no);
  const SettledSession session (server);
  const Store refused (session, "CUES", "", ORVA_STORE_READ);
  ASSERT_TRUE (server.wait_for_commands (2));
  EXPECT_EQ (orva_cmd_stop1 (session, 0), ORVA_OK) << "its answer comes behind the refusal";
  const auto start = std::chrono::steady_clock::now ();
  EXPECT_EQ (orva_kvstore_wait_scan (refused, 50), ORVA_TIMEOUT);
  EXPECT_GE (std::chrono::steady_clock::now () - start, std::chrono::milliseconds (49));
  EXPECT_EQ (last_error (), "Timeout");
  server.silent (true);
  const Store open (session, "OTHER", "", ORVA_STORE_READ);
  EXPECT_EQ (orva_kvstore_wait_scan (open, 0), ORVA_TIMEOUT);
  const Store writer (session, "THIRD", "", ORVA_STORE_WRITE);
  EXPECT_EQ (orva_kvstore_wait_scan (writer, 0), ORVA_TIMEOUT);
}

TEST (Stores, AScanIsRememberedWhenAllStoresOfItsFolderHaveClosed) {
  MetadataServer server;
  const SettledSession session (server);
  Store reader (session, "CUES", "", ORVA_STORE_READ);
  EXPECT_EQ (orva_kvstore_wait_scan (reader, generous_milliseconds), ORVA_OK);
  reader.close ();
  const Store writer (session, "CUES", "", ORVA_STORE_WRITE);
  EXPECT_EQ (orva_kvstore_wait_scan (writer, 0), ORVA_OK);
}

// Nobody waits for the answer, and a server that refuses may still report.
TEST (Stores, AWatchThatIsRefusedIsNotNoticed) {
  MetadataServer server;
  server.answer ("watch_metadata_database", no);
  const SettledSession session (server);
  const Store store (session, "CUES", "", ORVA_STORE_READ);
  EXPECT_EQ (orva_kvstore_wait_scan (store, generous_milliseconds), ORVA_OK);
  server.report ("<metadata_change><MetadataDatabase>CUES</MetadataDatabase><MetadataPrefix />"
                 "<MetadataList>" +
                 pair_of ("k", "1") + "</MetadataList></metadata_change>");
  EXPECT_EQ (change (store), "k=1");
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
  server.report ("<metadata_change><MetadataDatabase>CUES</MetadataDatabase><MetadataPrefix />"
                 "<MetadataList>" +
                 pair_of ("b/y", "3") + "</MetadataList></metadata_change>");
  EXPECT_EQ (change (b), "y=3") << "the folder is still watched for the other";
  EXPECT_EQ (server.command_count (), 3u);
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

TEST (Stores, OnlyTheLastValueThatWaitsIsSent) {
  MetadataServer server;
  const SettledSession session (server);
  Store store (session, "CUES", "", ORVA_STORE_WRITE);
  server.silent (true);
  store.set ("first", "1");
  const Command in_hand = server.command (1);
  store.set ("k", "1");
  store.set ("k", "2");
  store.erase ("k");
  store.set ("k", "3");
  server.silent (false);
  server.send (support::reply_to (in_hand, "<ok />"));
  EXPECT_EQ (orva_kvstore_flush (store, generous_milliseconds), ORVA_OK);
  EXPECT_EQ (names (server), (std::vector<std::string>{"metadata_set", "metadata_set"}));
  EXPECT_EQ (support::text_of (server.command (2).document, "Value"), "3");
}

TEST (Stores, SettingsGoOutBeforeErasures) {
  MetadataServer server;
  server.put ("a", "1");
  const SettledSession session (server);
  Store store (session, "CUES", "", ORVA_STORE_WRITE);
  server.silent (true);
  store.set ("first", "1");
  const Command in_hand = server.command (1);
  store.erase ("a");
  store.set ("b", "1");
  store.erase ("c");
  store.set ("d", "1");
  server.silent (false);
  server.send (support::reply_to (in_hand, "<ok />"));
  EXPECT_EQ (orva_kvstore_flush (store, generous_milliseconds), ORVA_OK);
  EXPECT_EQ (names (server), (std::vector<std::string>{"metadata_set", "metadata_set", "metadata_set",
                                                       "metadata_erase", "metadata_erase"}));
}

TEST (Stores, TwoValuesInARowAreOneWriteOrTwo) {
  MetadataServer server;
  const SettledSession session (server);
  Store store (session, "CUES", "", ORVA_STORE_WRITE);
  store.set ("k", "1");
  store.set ("k", "2");
  EXPECT_EQ (orva_kvstore_flush (store, generous_milliseconds), ORVA_OK);
  std::string values;
  for (const Command &command : server.commands ())
    values += support::text_of (command.document, "Value");
  EXPECT_TRUE (values == "2" || values == "12") << values;
}

TEST (Stores, AKeyThatIsThePrefixIsSentButNeverTold) {
  MetadataServer server;
  const SettledSession session (server);
  Store store (session, "CUES", "p/", ORVA_STORE_READ_WRITE);
  EXPECT_EQ (orva_kvstore_wait_scan (store, generous_milliseconds), ORVA_OK);
  store.set ("", "1");
  EXPECT_EQ (orva_kvstore_flush (store, generous_milliseconds), ORVA_OK);
  EXPECT_EQ (server.table (), (std::map<std::string, std::string>{{"p/", "1"}}));
  server.put ("p/k", "2");
  const Store another (session, "CUES", "", ORVA_STORE_READ); // has the folder downloaded again
  EXPECT_EQ (change (store), "k=2");
  EXPECT_EQ (change (store, 0), "");
  EXPECT_EQ (change (another), "p/=1");
}

TEST (Stores, AWriterWaitsForTheScanOfAReader) {
  MetadataServer server;
  const SettledSession session (server);
  const Store writer (session, "CUES", "", ORVA_STORE_WRITE);
  EXPECT_EQ (orva_kvstore_wait_scan (writer, 0), ORVA_TIMEOUT);
  const Store elsewhere (session, "OTHER", "", ORVA_STORE_READ);
  EXPECT_EQ (orva_kvstore_wait_scan (elsewhere, generous_milliseconds), ORVA_OK);
  EXPECT_EQ (orva_kvstore_wait_scan (writer, 0), ORVA_TIMEOUT);
  const Store reader (session, "CUES", "p/", ORVA_STORE_READ);
  EXPECT_EQ (orva_kvstore_wait_scan (writer, generous_milliseconds), ORVA_OK);
}

TEST (Stores, TextsEndBeforeWhatIsNoText) {
  MetadataServer server;
  server.put ("pk", "1");
  const SettledSession session (server);
  const auto broken = [] (const char *good) { return wide (good) + orva_char (0xD800) + wide ("x"); };
  uint32_t store = 0;
  ASSERT_EQ (orva_open_kvstore (session, broken ("CUES").c_str (), broken ("p").c_str (),
                                ORVA_STORE_READ_WRITE, &store),
             ORVA_OK);
  EXPECT_EQ (database_of (server.command (1)), "CUES");
  EXPECT_EQ (change (store), "k=1");
  EXPECT_EQ (orva_kvstore_set (store, broken ("l").c_str (), broken ("v").c_str ()), ORVA_OK);
  EXPECT_EQ (orva_kvstore_flush (store, generous_milliseconds), ORVA_OK);
  EXPECT_EQ (server.table (), (std::map<std::string, std::string>{{"pk", "1"}, {"pl", "v"}}));
  EXPECT_EQ (orva_kvstore_erase (store, broken ("k").c_str ()), ORVA_OK);
  EXPECT_EQ (orva_kvstore_flush (store, generous_milliseconds), ORVA_OK);
  EXPECT_EQ (server.table (), (std::map<std::string, std::string>{{"pl", "v"}}));
  server.report ("<metadata_remove><MetadataDatabase>CUES</MetadataDatabase><MetadataPrefix />"
                 "<KeyList><Key>pk</Key></KeyList></metadata_remove>");
  EXPECT_EQ (change (store), "k gone");
  orva_close_key_value_store (store);
}

TEST (Stores, ChangesAreCutToFit) {
  MetadataServer server;
  server.put ("abcdef", "12\xF0\x9D\x84\x9E");
  const SettledSession session (server);
  const Store store (session, "CUES", "", ORVA_STORE_READ);
  EXPECT_EQ (orva_kvstore_wait_scan (store, generous_milliseconds), ORVA_OK);
  uint32_t type = 0;
  orva_char key[4];
  orva_char value[4];
  EXPECT_EQ (orva_kvstore_get_change (store, 0, &type, OrvaStringBuffer{key, 4}, OrvaStringBuffer{value, 4}),
             ORVA_OK);
  EXPECT_EQ (std::basic_string<orva_char> (key), wide ("abc"));
  EXPECT_EQ (std::basic_string<orva_char> (value), wide ("12"));
  const Store again (session, "CUES", "", ORVA_STORE_READ);
  const OrvaStringBuffer none{nullptr, 0};
  EXPECT_EQ (orva_kvstore_get_change (again, generous_milliseconds, &type, none, none), ORVA_OK);
}

} // namespace
