// The changes that a store makes of reports. A connection without a server gets them as parsed messages.

#include "api/stores/kv_store.h"

#include "support/assert_counter.h"
#include "support/wait.h"
#include "xml/xml_parse.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <map>
#include <string>
#include <thread>
#include <vector>

/// Takes a change although none waits.
struct BrokenWait {
  static ResultCode take (KVStore &store, uint32_t *type, std::u16string *key, std::u16string *value) {
    const AMutexScope hold (store.changes_lock_);
    return store.take_change (type, key, value);
  }
};

namespace {

std::string ascii (const std::u16string &units) {
  return std::string (units.begin (), units.end ());
}

/// The next change as "key=value" or "key gone", empty when there is none.
std::string taken (KVStore &store) {
  uint32_t type = 77;
  std::u16string key = u"before";
  std::u16string value = u"before";
  if (store.get_change (0, &type, &key, &value) != ORVA_OK) {
    EXPECT_EQ (last_error_text ().to_std_string (), "Timeout");
    EXPECT_TRUE (key.empty () && value.empty ());
    EXPECT_EQ (type, 77u);
    return "";
  }
  if (type == ORVA_STORE_CHANGE_SET)
    return ascii (key) + "=" + ascii (value);
  EXPECT_EQ (type, uint32_t{ORVA_STORE_CHANGE_ERASE});
  EXPECT_TRUE (value.empty ());
  return ascii (key) + " gone";
}

class KVStoreTest : public testing::Test {
protected:
  KVStore &open (std::u16string prefix, uint32_t mode = ORVA_STORE_READ) {
    stores_.push_back (std::make_unique<KVStore> (connection_, u"CUES", std::move (prefix), mode));
    return *stores_.back ();
  }
  ~KVStoreTest () override {
    for (const auto &store : stores_)
      store->close ();
  }

  void change (const std::string &prefix, const std::string &key, const std::string &value,
               const std::string &folder = "CUES") {
    report ("<metadata_change><MetadataDatabase>" + folder + "</MetadataDatabase><MetadataPrefix>" + prefix +
            "</MetadataPrefix><MetadataList><Metadata><Key>" + key + "</Key><Value>" + value +
            "</Value></Metadata></MetadataList></metadata_change>");
  }
  void remove (const std::string &prefix, const std::string &key) {
    report ("<metadata_remove><MetadataDatabase>CUES</MetadataDatabase><MetadataPrefix>" + prefix +
            "</MetadataPrefix><KeyList><Key>" + key + "</Key></KeyList></metadata_remove>");
  }
  void report (const std::string &body) {
    const XMLTree message = parse_xml_text (AString::from_utf8 ("<report>" + body + "</report>"));
    ASSERT_FALSE (message.is_null ()) << body;
    connection_->dispatch_message (message);
  }

  ARef<OrvaConnObject> connection_ = ARef<OrvaConnObject>::create ();

private:
  std::vector<std::unique_ptr<KVStore>> stores_;
};

TEST_F (KVStoreTest, ModesDecideWhatMayBeDone) {
  uint32_t type = 0;
  std::u16string key;
  std::u16string value;
  KVStore &reader = open (u"", ORVA_STORE_READ);
  EXPECT_EQ (reader.set (u"k", u"v"), 4u);
  EXPECT_EQ (last_error_text ().to_std_string (), "Read only");
  EXPECT_EQ (reader.erase (u"k"), 4u);
  EXPECT_EQ (reader.flush (0), 4u);
  KVStore &writer = open (u"", ORVA_STORE_WRITE);
  EXPECT_EQ (writer.get_change (0, &type, &key, &value), 7u);
  EXPECT_EQ (last_error_text ().to_std_string (), "Write only");
  EXPECT_EQ (writer.flush (0), 0u);
}

TEST_F (KVStoreTest, AStoreThatWritesOnlyIsToldNothing) {
  KVStore &reader = open (u"");
  KVStore &writer = open (u"", ORVA_STORE_WRITE);
  change ("", "k", "1");
  uint32_t type = 0;
  std::u16string key;
  std::u16string value;
  EXPECT_EQ (writer.get_change (0, &type, &key, &value), 7u);
  EXPECT_EQ (taken (reader), "k=1");
}

TEST_F (KVStoreTest, KeysOutsideThePrefixAreNotTheStores) {
  KVStore &a = open (u"a/");
  KVStore &b = open (u"b/");
  KVStore &all = open (u"");
  change ("", "a/x", "1");
  change ("a/", "y", "2"); // the same as an empty prefix and the key a/y
  change ("", "a/", "3");  // nothing but the prefix
  change ("", "A/x", "4");
  change ("", "", "5");
  EXPECT_EQ (taken (a), "x=1");
  EXPECT_EQ (taken (a), "y=2");
  EXPECT_EQ (taken (a), "");
  EXPECT_EQ (taken (b), "");
  EXPECT_EQ (taken (all), "a/x=1");
  EXPECT_EQ (taken (all), "a/y=2");
  EXPECT_EQ (taken (all), "a/=3");
  EXPECT_EQ (taken (all), "A/x=4");
  EXPECT_EQ (taken (all), "");
}

TEST_F (KVStoreTest, OtherFoldersAreIgnored) {
  KVStore &store = open (u"");
  change ("", "k", "1", "OTHER");
  EXPECT_EQ (taken (store), "");
  change ("", "k", "1");
  report ("<metadata_remove><MetadataDatabase>OTHER</MetadataDatabase><MetadataPrefix />"
          "<KeyList><Key>k</Key></KeyList></metadata_remove>");
  EXPECT_EQ (taken (store), "k=1");
  EXPECT_EQ (taken (store), "");
}

TEST_F (KVStoreTest, TakingAChangeWhenThereIsNoneIsAFault) {
  KVStore &store = open (u"");
  AssertCounter failures;
  uint32_t type = 77;
  std::u16string key;
  std::u16string value;
  EXPECT_EQ (BrokenWait::take (store, &type, &key, &value), 2u);
  EXPECT_EQ (last_error_text ().to_std_string (), "Internal software error");
  EXPECT_EQ (failures.take (), 1u);
  EXPECT_EQ (type, 77u);
  change ("", "k", "1");
  EXPECT_EQ (taken (store), "k=1");
}

TEST_F (KVStoreTest, TheLongestWaitEndsWithAChange) {
  KVStore &store = open (u"");
  std::atomic<bool> returned{false};
  std::thread waiting ([&] {
    uint32_t type = 77;
    std::u16string key;
    std::u16string value;
    EXPECT_EQ (store.get_change (0xFFFFFFFF, &type, &key, &value), 0u);
    EXPECT_EQ (ascii (key), "k");
    returned = true;
  });
  EXPECT_FALSE (support::wait_until ([&] { return returned.load (); }, std::chrono::milliseconds (50)));
  change ("", "k", "1");
  waiting.join ();
}

TEST_F (KVStoreTest, AKeyKeepsThePlaceOfItsFirstChange) {
  KVStore &store = open (u"");
  change ("", "k", "1");
  change ("", "l", "1");
  remove ("", "k");
  EXPECT_EQ (taken (store), "k gone");
  EXPECT_EQ (taken (store), "l=1");
  remove ("", "k");
  change ("", "l", "2");
  change ("", "k", "3");
  EXPECT_EQ (taken (store), "k=3");
  EXPECT_EQ (taken (store), "l=2");
  EXPECT_EQ (taken (store), "");
}

TEST_F (KVStoreTest, TheSameSettingTwiceIsOneChange) {
  KVStore &store = open (u"");
  change ("", "k", "1");
  change ("", "k", "1");
  EXPECT_EQ (taken (store), "k=1");
  EXPECT_EQ (taken (store), "");
  change ("", "k", "1"); // what was delivered is not remembered
  EXPECT_EQ (taken (store), "k=1");
}

TEST_F (KVStoreTest, AClosedStoreIsToldNothingMore) {
  KVStore store (connection_, u"CUES", u"", ORVA_STORE_READ);
  change ("", "k", "1");
  store.close ();
  change ("", "l", "1");
  EXPECT_EQ (taken (store), "k=1");
  EXPECT_EQ (taken (store), "");
}

/// What a store should deliver: each key once, with its last state, in the order of first changes.
class Model {
public:
  void set (const std::string &key, const std::string &value) { note (key, key + "=" + value); }
  void erase (const std::string &key) { note (key, key + " gone"); }
  std::string take () {
    if (order_.empty ())
      return "";
    const std::string key = order_.front ();
    order_.erase (order_.begin ());
    const std::string state = states_[key];
    states_.erase (key);
    return state;
  }

private:
  void note (const std::string &key, const std::string &state) {
    if (!states_.contains (key))
      order_.push_back (key);
    states_[key] = state;
  }

  std::vector<std::string> order_;
  std::map<std::string, std::string> states_;
};

/// Does one of seven things to a store and to its model: settings of two keys to two values, erasures of
/// them, and a taking, whose outcome must be the same.
void do_to_both (unsigned event, KVStore &store, Model &model) {
  const std::string key = event % 2 == 0 ? "k" : "l";
  const std::string value = event < 2 ? "1" : "2";
  const AString key_text = AString::from_latin1 (key);
  if (event == 6) {
    ASSERT_EQ (taken (store), model.take ());
  } else if (event >= 4) {
    store.on_remove ("", {key_text});
    model.erase (key);
  } else {
    store.on_change ("", {{.Key = key_text, .Value = AString::from_latin1 (value)}});
    model.set (key, value);
  }
}

TEST_F (KVStoreTest, FoldsAllSequencesOfFiveEvents) {
  constexpr unsigned events = 7;
  KVStore &store = open (u"");
  for (unsigned sequence = 0; sequence != events * events * events * events * events; ++sequence) {
    Model model;
    for (unsigned step = 0, rest = sequence; step != 5; ++step, rest /= events)
      ASSERT_NO_FATAL_FAILURE (do_to_both (rest % events, store, model)) << sequence;
    for (std::string left = "some"; !left.empty ();) {
      left = model.take ();
      ASSERT_EQ (taken (store), left) << sequence;
    }
  }
}

// There is no server, so all stays pending.
TEST_F (KVStoreTest, WhatIsPendingIsWaitedForUntilTheStoreHasEnded) {
  KVStore store (connection_, u"CUES", u"p/", ORVA_STORE_WRITE);
  EXPECT_EQ (store.flush (0), 0u);
  EXPECT_EQ (store.set (u"k", u"1"), 0u);
  EXPECT_EQ (store.flush (0), 5u);
  EXPECT_EQ (last_error_text ().to_std_string (), "Timeout");
  EXPECT_EQ (store.erase (u"k"), 0u);
  EXPECT_EQ (store.flush (0), 5u);
  ResultCode flushed = 77;
  std::thread waiting ([&] { flushed = store.flush (60000); });
  store.close ();
  waiting.join ();
  EXPECT_EQ (flushed, 0u) << "nothing will become of it any more";
}

TEST_F (KVStoreTest, TheSameStoreTwiceIsAFault) {
  KVStore &store = open (u"");
  AssertCounter failures;
  connection_->folders.add (&store, u"CUES");
  EXPECT_EQ (failures.take (), 1u);
  KVStore stranger (connection_, u"CUES", u"", ORVA_STORE_WRITE);
  connection_->folders.remove (&stranger);
  EXPECT_EQ (failures.take (), 1u);
  stranger.close ();
}

TEST (FolderScan, TheOutcomeOfTheLastToEndCounts) {
  const auto scan = ARef<FolderScan>::create ();
  EXPECT_FALSE (scan->wait (0));
  scan->begin (scan);
  scan->begin (scan);
  scan->finish (false);
  EXPECT_FALSE (scan->wait (0));
  scan->finish (true);
  EXPECT_TRUE (scan->wait (0));
  scan->begin (scan);
  EXPECT_FALSE (scan->wait (0));
  scan->finish (false);
  EXPECT_FALSE (scan->wait (0));
}

TEST (FolderScan, LivesWhileADownloadIsUnderWay) {
  const auto scan = ARef<FolderScan>::create ();
  scan->begin (scan);
  EXPECT_EQ (scan.holder ()->refcount.load (), 2u);
  scan->finish (true);
  EXPECT_EQ (scan.holder ()->refcount.load (), 1u);
  scan->begin (scan);
  EXPECT_EQ (scan.holder ()->refcount.load (), 2u);
  scan->abandon ();
  EXPECT_EQ (scan.holder ()->refcount.load (), 1u);
}

TEST (FolderScan, MayBeDestroyedByTheEndOfItsDownload) {
  auto scan = ARef<FolderScan>::create ();
  scan->begin (scan);
  FolderScan *const raw = scan.get ();
  scan = nullptr;
  raw->finish (true); // looks at its own members to the end
}

TEST (FolderScan, AnAnswerTooManyIsAFault) {
  AssertCounter failures;
  ARef<FolderScan>::create ()->finish (true);
  EXPECT_EQ (failures.count (), 1u);
}

} // namespace
