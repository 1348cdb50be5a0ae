#pragma once

// What tests of key-value stores share.

#include "exports/session.h"

#include <gtest/gtest.h>

#include <map>
#include <mutex>
#include <string>
#include <vector>

inline std::string pair_of (const std::string &key, const std::string &value) {
  return "<Metadata><Key>" + key + "</Key><Value>" + value + "</Value></Metadata>";
}

inline std::string database_of (const support::Command &command) {
  return support::text_of (command.document, "MetadataDatabase");
}

/// What a server's thread uses to its end, and so lives longer than the server.
struct MetadataTable {
  std::mutex lock;
  std::map<std::string, std::string> pairs;
};

/// The server's side: one table for all folders. Only a download returns it; there are no reports.
class MetadataServer : private MetadataTable, public support::FakeServer {
public:
  explicit MetadataServer (Start start = Start::listening) : FakeServer (start) {
    answer ("watch_metadata_database", "<ok />");
    answer ("unwatch_metadata_database", "<ok />");
    on ("download_metadata", [this] (const support::Command &command) { return download (command); });
    on ("metadata_set", [this] (const support::Command &command) {
      const std::lock_guard hold (lock);
      pairs[support::text_of (command.document, "Key")] = support::text_of (command.document, "Value");
      return support::reply_to (command, "<ok />");
    });
    on ("metadata_erase", [this] (const support::Command &command) {
      const std::lock_guard hold (lock);
      pairs.erase (support::text_of (command.document, "Key"));
      return support::reply_to (command, "<ok />");
    });
  }

  void put (const std::string &key, const std::string &value) {
    const std::lock_guard hold (lock);
    pairs[key] = value;
  }
  void take_out (const std::string &key) {
    const std::lock_guard hold (lock);
    pairs.erase (key);
  }
  std::map<std::string, std::string> table () {
    const std::lock_guard hold (lock);
    return pairs;
  }

private:
  std::string download (const support::Command &command) {
    const std::lock_guard hold (lock);
    std::string text;
    for (const auto &[key, value] : pairs)
      text += support::reply_to (command, "<metadata><MetadataDatabase>" + database_of (command) +
                                              "</MetadataDatabase><MetadataPrefix /><MetadataList>" +
                                              pair_of (key, value) + "</MetadataList></metadata>");
    return text + support::reply_to (command, "<ok />");
  }
};

/// A connection whose thread has done what it does at the start of one. A store that is opened earlier may be
/// watched twice, by its opening and by that.
class SettledSession : public Session {
public:
  explicit SettledSession (support::FakeServer &server) : Session (server) {
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

inline constexpr uint32_t generous_milliseconds = 20000;

/// The next change as "key=value" or "key gone", empty when none comes.
inline std::string change (uint32_t store, uint32_t timeout = generous_milliseconds) {
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

/// What the server is to say to a command that it does not like.
inline constexpr const char *no =
    "<error><ErrorMessage>No</ErrorMessage><ErrorCode>general</ErrorCode></error>";

inline std::vector<std::string> names (const support::FakeServer &server) {
  std::vector<std::string> all;
  for (const support::Command &command : server.commands ())
    all.push_back (command.name);
  return all;
}
