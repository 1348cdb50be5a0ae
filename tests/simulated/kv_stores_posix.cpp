// Stores against a server that is killed again and again. In the end its table, read by a client of plain
// bytes, has the value of the last call for each key.

#include "exports/stores.h"
#include "support/simulator_process.h"
#include "support/soak.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

using support::RawClient;
using support::SimulatorProcess;

using Table = std::map<std::string, std::string>;

constexpr unsigned writers = 4;
constexpr unsigned operations_of_step = 10; ///< of each writer
constexpr unsigned steps_of_round = 25;     ///< a round sees the server die once

/// Numbers that look random and come again in every run.
class Dice {
public:
  explicit Dice (uint32_t seed) : engine_ (seed) {}
  /// One of 0 to @p end - 1.
  uint32_t operator() (uint32_t end) { return static_cast<uint32_t> (engine_ () % end); }

private:
  std::mt19937 engine_;
};

/// A folder that goes with its files.
class OwnFolder {
public:
  OwnFolder () : name_ (testing::TempDir () + "stores-XXXXXX") {
    if (mkdtemp (name_.data ()) == nullptr)
      ADD_FAILURE () << "no folder for the server's table";
  }
  ~OwnFolder () { std::filesystem::remove_all (name_); }
  OwnFolder (const OwnFolder &) = delete;
  OwnFolder &operator= (const OwnFolder &) = delete;

  std::string file () const { return name_ + "/table"; }

private:
  std::string name_;
};

/// What stands between the tags, behind @p from, which is moved on. Empty at the end.
std::string next_text (const std::string &bytes, const std::string &tag, size_t &from) {
  const std::string before = "<" + tag + ">";
  const size_t start = bytes.find (before, from);
  if (start == std::string::npos)
    return "";
  from = bytes.find ("</" + tag + ">", start);
  return bytes.substr (start + before.size (), from - start - before.size ());
}

Table table_of (const SimulatorProcess &server) {
  RawClient client (server.address ());
  client.send ("<cmd>\r\n<xid>1</xid>\r\n<download_metadata>\r\n<MetadataDatabase>CUES</MetadataDatabase>\r\n"
               "</download_metadata>\r\n</cmd>");
  const std::string bytes = client.receive_through ("<xid>1</xid><ok />");
  Table table;
  size_t at = 0;
  for (std::string key; !(key = next_text (bytes, "Key", at)).empty ();)
    table[key] = next_text (bytes, "Value", at);
  return table;
}

/// One thread's part: it sets and erases keys of its own in two stores, and knows what must come of it.
class Writer {
public:
  Writer (unsigned number, const Store &a, const Store &b)
      : name_ (std::to_string (number)), stores_{a, b}, any_ (number), thread_ ([this] { run (); }) {}
  ~Writer () {
    stop_ = true;
    thread_.join ();
  }
  Writer (const Writer &) = delete;
  Writer &operator= (const Writer &) = delete;

  void allow (unsigned operations) { allowed_ += operations; }
  /// Waits until all that was allowed has been done. @return the keys with their prefixes; stays as it is
  /// until more is allowed.
  const Table &settled () {
    EXPECT_TRUE (support::wait_until ([this] { return done_ == allowed_; }));
    return table_;
  }

private:
  void run () {
    while (!stop_) {
      for (; done_ != allowed_; ++done_) {
        act ();
        std::this_thread::yield ();
      }
      std::this_thread::sleep_for (std::chrono::milliseconds (1));
    }
  }

  void act () {
    const unsigned store = any_ (2);
    const std::string key = name_ + "-" + std::to_string (any_ (any_ (2) == 0 ? 3 : 40)); // some are hot
    const std::string full_key = (store == 0 ? "a/" : "b/") + key;
    const unsigned kind = any_ (100);
    if (kind == 0) {
      const uint32_t code = orva_kvstore_flush (stores_[store], any_ (20));
      EXPECT_TRUE (code == ORVA_OK || code == ORVA_TIMEOUT) << code;
    } else if (kind < 35) {
      EXPECT_EQ (orva_kvstore_erase (stores_[store], wide (key).c_str ()), ORVA_OK);
      table_.erase (full_key);
    } else {
      const std::string value = std::to_string (any_ (1000));
      EXPECT_EQ (orva_kvstore_set (stores_[store], wide (key).c_str (), wide (value).c_str ()), ORVA_OK);
      table_[full_key] = value;
    }
  }

  const std::string name_;
  const uint32_t stores_[2];
  Dice any_;
  Table table_; ///< the thread's, while there is something to do
  std::atomic<unsigned> allowed_{0};
  std::atomic<unsigned> done_{0};
  std::atomic<bool> stop_{false};
  std::thread thread_;
};

/// Follows a folder as an application does that keeps a copy of all changes.
class Follower {
public:
  explicit Follower (uint32_t store) : store_ (store), thread_ ([this] { run (); }) {}
  ~Follower () {
    stop_ = true;
    thread_.join ();
  }
  Follower (const Follower &) = delete;
  Follower &operator= (const Follower &) = delete;

  /// Whether it knows all of this. It may know more, because erasures while the server was away are not
  /// reported.
  bool knows (const Table &wanted) {
    const std::lock_guard hold (lock_);
    for (const auto &[key, value] : wanted)
      if (const auto found = table_.find (key); found == table_.end () || found->second != value)
        return false;
    return true;
  }

private:
  void run () {
    while (!stop_)
      if (const std::string told = change (store_, 50); !told.empty ())
        note (told);
  }
  void note (const std::string &told) {
    const std::lock_guard hold (lock_);
    if (const size_t equals = told.find ('='); equals != std::string::npos)
      table_[told.substr (0, equals)] = told.substr (equals + 1);
    else
      table_.erase (told.substr (0, told.find (' ')));
  }

  const uint32_t store_;
  std::mutex lock_;
  Table table_;
  std::atomic<bool> stop_{false};
  std::thread thread_;
};

TEST (StoresOfASimulatedServer, AreToldTheirOwnWritesAndThoseOfOthers) {
  const SimulatorProcess server ({"--quiet", "--strict"});
  const Session session (server.address ());
  const Session other_session (server.address ());
  Store one (session, "<&>", "p/", ORVA_STORE_READ_WRITE);
  Store other (other_session, "<&>", "", ORVA_STORE_READ_WRITE);
  for (const Store *store : {&one, &other})
    EXPECT_EQ (orva_kvstore_wait_scan (*store, generous_milliseconds), ORVA_OK);
  one.set ("<a> & \"b\"", "]]>");
  EXPECT_EQ (change (one), "<a> & \"b\"=]]>");
  EXPECT_EQ (change (other), "p/<a> & \"b\"=]]>");
  other.erase ("p/<a> & \"b\"");
  EXPECT_EQ (change (one), "<a> & \"b\" gone");
  EXPECT_EQ (change (other), "p/<a> & \"b\" gone");
  other.set ("p", "1"); // outside the prefix
  other.set ("p/", "2");
  other.set ("p/k", "");
  EXPECT_EQ (change (one), "k=");
}

TEST (StoresOfASimulatedServer, AreToldTheWholeFolderByItsScan) {
  const SimulatorProcess server ({"--quiet", "--strict"});
  const Session session (server.address ());
  Store writer (session, "CUES", "all/", ORVA_STORE_WRITE);
  Table expected;
  for (int number = 0; number != 600; ++number) {
    const std::string key = std::to_string (number);
    writer.set (key.c_str (), "v");
    expected[key] = "v";
  }
  EXPECT_EQ (orva_kvstore_flush (writer, generous_milliseconds), ORVA_OK);
  const Store reader (session, "CUES", "all/", ORVA_STORE_READ);
  EXPECT_EQ (orva_kvstore_wait_scan (reader, generous_milliseconds), ORVA_OK);
  Table told;
  for (std::string one; !(one = change (reader, 0)).empty ();)
    told[one.substr (0, one.find ('='))] = one.substr (one.find ('=') + 1);
  EXPECT_EQ (told, expected);
}

class StoresOfAServerThatDies : public testing::Test {
protected:
  void pause () { std::this_thread::sleep_for (std::chrono::milliseconds (any_ (12))); }

  // Writers begin before the server dies, and go on while it is away and when it is back.
  void one_round () {
    const unsigned death = any_ (steps_of_round / 2);
    const unsigned return_ = death + any_ (5);
    for (unsigned step = 0; step != steps_of_round; ++step) {
      for (const auto &writer : writers_)
        writer->allow (operations_of_step);
      pause ();
      if (step == death)
        server_.kill ();
      if (step == return_)
        server_.start ();
      if (step == steps_of_round / 2) {
        const Store visitor (session_, "CUES", "a/", ORVA_STORE_READ);
      }
    }
    EXPECT_TRUE (support::wait_until ([&] { return orva_connected (session_) != 0; }));
    pause ();
  }

  void check () {
    Table expected;
    for (const auto &writer : writers_)
      expected.insert (writer->settled ().begin (), writer->settled ().end ());
    EXPECT_EQ (orva_kvstore_flush (a_, generous_milliseconds), ORVA_OK);
    EXPECT_EQ (orva_kvstore_flush (b_, generous_milliseconds), ORVA_OK);
    EXPECT_GT (expected.size (), 50u);
    EXPECT_EQ (table_of (server_), expected);
    EXPECT_TRUE (support::wait_until ([&] { return follower_.knows (expected); }));
  }

  const OwnFolder folder_;
  SimulatorProcess server_{{"--quiet", "--strict", "--refuse-metadata", "41", "--database", folder_.file ()}};
  Session session_{server_.address ()};
  const Store a_{session_, "CUES", "a/", ORVA_STORE_READ_WRITE};
  const Store b_{session_, "CUES", "b/", ORVA_STORE_WRITE};
  const Store all_{session_, "CUES", "", ORVA_STORE_READ};
  Follower follower_{all_};
  std::vector<std::unique_ptr<Writer>> writers_;
  Dice any_{1};
};

TEST_F (StoresOfAServerThatDies, LeaveWhatWasSaidLastInItsTable) {
  for (unsigned number = 0; number != writers; ++number)
    writers_.push_back (std::make_unique<Writer> (number, a_, b_));
  for (int round = 1; round <= support::rounds (3, 100) && !HasFailure (); ++round) {
    one_round ();
    if (round % support::rounds (3, 5) == 0)
      check ();
  }
}

} // namespace
