// Memory runs out at each allocation of a call in turn, and at each one of the connection's thread. Calls
// fail with a code, no handle leaks, and the connection goes on with all its registrations. A program of its
// own, because it replaces operator new.
#include "base/astring_pool.h"
#include "exports/snapshots.h"
#include "support/counted_memory.h"
#include "support/soak.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace {

using support::Command;
using support::fail_each_allocation;
using support::FakeServer;
using support::wait_until;

const std::string long_name (60, 'n'); // longer than what a string holds by itself

std::string clip_id (const std::string &clip) {
  return "<clipid><ClipID>" + clip + "</ClipID></clipid>";
}

class MemoryRunsOut : public testing::Test {
protected:
  MemoryRunsOut () {
    server_.answer_any ("<ok />");
    server_.answer ("clip_exists", "<clipexists><ClipID>NEWS0123</ClipID><Exists>true</Exists></clipexists>");
    server_.answer ("download_clipids", {clip_id ("A"), clip_id (long_name), clip_id ("C"), "<ok />"});
    server_.answer ("get_clip_info", clip_info ());
    server_.on ("channel_report_register", [] (const Command &command) {
      return support::reply_to (command, "<ok />") +
             support::report_of ("<channel_status><Channel>" +
                                 support::text_of (command.document, "Channel") +
                                 "</Channel><ChannelStatus>play</ChannelStatus></channel_status>");
    });
    connection_ = orva_connect (server_.address ());
    orva_wait_until_connected (connection_);
    EXPECT_EQ (orva_cmd_stop1 (connection_, 0), ORVA_OK);
  }
  ~MemoryRunsOut () override {
    orva_close (connection_);
    EXPECT_TRUE (server_.wait_until_left ()) << "no reference to the connection was lost";
  }

  // The call fails with the fault's code and text wherever its memory runs out, or does not need it.
  template <class Call>
  void expect_faults (const char *what, unsigned at_least, Call call) {
    SCOPED_TRACE (what);
    const unsigned count = fail_each_allocation (call, [this] (uint32_t code) {
      if (code != ORVA_OK) {
        EXPECT_EQ (code, ORVA_ERROR);
        EXPECT_EQ (last_error (), "Internal software error");
      }
      EXPECT_EQ (orva_cmd_stop1 (connection_, 0), ORVA_OK);
    });
    EXPECT_GE (count, at_least);
  }

  FakeServer server_;
  uint32_t connection_ = 0;
  const std::basic_string<orva_char> clip_ = wide ("NEWS0123");
};

TEST_F (MemoryRunsOut, InQueriesOfClips) {
  uint32_t exists = 77;
  expect_faults ("clip_exists", 3, [&] { return orva_clip_exists (connection_, clip_.c_str (), &exists); });
  EXPECT_EQ (exists, 1u);
  expect_faults ("delete_clip", 3, [&] { return orva_delete_clip (connection_, clip_.c_str ()); });
}

TEST_F (MemoryRunsOut, InLists) {
  uint32_t list = 0;
  expect_faults ("open", 3, [&] { return orva_open_clip_list (connection_, &list); });
  const auto next = [&] {
    return filled ([&] (OrvaStringBuffer name) {
      expect_faults ("next", 0, [&] { return orva_get_clip_name (list, name); });
    });
  };
  // A name that could not be given out is not lost.
  for (const std::string &name : {std::string ("A"), long_name, std::string ("C"), std::string ()})
    EXPECT_EQ (next (), name);
  orva_close_clip_list (list);
}

TEST_F (MemoryRunsOut, InMetadataHandlesAndSetters) {
  uint32_t handle = 0;
  expect_faults ("open", 3, [&] { return orva_open_clip_metadata (connection_, clip_.c_str (), &handle); });
  const std::basic_string<orva_char> key = wide ("Key"), value = wide (long_name);
  expect_faults ("set", 3, [&] { return orva_set_clip_title (handle, value.c_str ()); });
  EXPECT_EQ (text_of_clip (orva_clip_title, handle), long_name);
  expect_faults ("set meta", 3, [&] { return orva_clip_set_meta (handle, key.c_str (), value.c_str ()); });
  EXPECT_EQ (meta (handle, "Key"), long_name);
  std::vector<orva_char> units (100);
  expect_faults ("get meta", 1, [&] {
    return orva_clip_get_meta (handle, key.c_str (), OrvaStringBuffer{units.data (), 100});
  });
  uint32_t keys = 0;
  expect_faults ("keys", 1, [&] { return orva_clip_open_metakeys (handle, &keys); });
  EXPECT_EQ (orva_close_metakeys (keys), ORVA_OK);
  expect_faults ("delete meta", 3, [&] { return orva_clip_delete_meta (handle, key.c_str ()); });
  EXPECT_EQ (orva_close_clip_metadata (handle), ORVA_OK);
}

TEST_F (MemoryRunsOut, InTheFirstQueryOfAChannelAndOfChanges) {
  uint32_t status = 77;
  expect_faults ("channel", 3, [&] { return orva_channel_status (connection_, 3, &status); });
  EXPECT_EQ (status, uint32_t{ORVA_CHANNEL_PLAYING});
  expect_faults ("clips", 3, [&] { return orva_track_clip_changes (connection_); });
  expect_faults ("directories", 3, [&] { return orva_track_directory_changes (connection_); });
}

TEST_F (MemoryRunsOut, InOpeningAStore) {
  const std::basic_string<orva_char> folder = wide (long_name), prefix = wide ("");
  for (const uint32_t mode : {uint32_t{ORVA_STORE_READ}, uint32_t{ORVA_STORE_WRITE}}) {
    uint32_t store = 77;
    expect_faults ("open", 5, [&] {
      EXPECT_EQ (store, 77u) << "no store is given out with a failure";
      return orva_open_kvstore (connection_, folder.c_str (), prefix.c_str (), mode, &store);
    });
    EXPECT_NE (store, 77u);
    orva_close_key_value_store (store);
  }
}

// --- On the connection's thread. The first allocation that fails there costs the link.

class MemoryOfTheThreadRunsOut : public MemoryRunsOut {
protected:
  MemoryOfTheThreadRunsOut () {
    support::spared = true;
    // All handlers run on the server's one thread.
    server_.on ("unload", [] (const Command &command) {
      support::spared = true;
      return support::reply_to (command, "<ok />");
    });
    EXPECT_EQ (orva_unload_channel (connection_, 0), ORVA_OK);
  }

  // Does something again and again, with each allocation of the connection's thread failing in turn, until it
  // does not come to the one that is to fail. @return how many there were
  template <class Action>
  long fail_each (long stride, Action action) {
    for (long n = 0;; n += stride) {
      SCOPED_TRACE (n);
      astring_pool::free_all (); // so that texts need memory
      support::until_failure_of_others = n;
      action ();
      const bool failed = support::until_failure_of_others < 0;
      support::until_failure_of_others = -1;
      EXPECT_TRUE (wait_until ([this] { return orva_cmd_stop1 (connection_, 0) == ORVA_OK; }));
      if (!failed || HasFailure ())
        return n;
    }
  }
};

TEST_F (MemoryOfTheThreadRunsOut, InAReply) {
  const long count = fail_each (1, [this] {
    uint32_t exists = 77;
    const uint32_t code = orva_clip_exists (connection_, clip_.c_str (), &exists);
    if (code == ORVA_OK)
      EXPECT_EQ (exists, 1u);
    else
      EXPECT_EQ (last_error (), "Failing all outstanding commands");
  });
  EXPECT_GE (count, 1);
}

TEST_F (MemoryOfTheThreadRunsOut, InAStreamOfReplies) {
  const long count = fail_each (1, [this] {
    uint32_t list = 0;
    const uint32_t code = orva_open_clip_list (connection_, &list);
    if (code == ORVA_OK) {
      EXPECT_EQ (filled ([&] (OrvaStringBuffer name) { orva_get_clip_name (list, name); }), "A");
      EXPECT_EQ (filled ([&] (OrvaStringBuffer name) { orva_get_clip_name (list, name); }), long_name);
      EXPECT_EQ (filled ([&] (OrvaStringBuffer name) { orva_get_clip_name (list, name); }), "C");
      orva_close_clip_list (list);
    } else {
      EXPECT_EQ (last_error (), "Failing all outstanding commands");
      EXPECT_EQ (list, 0u);
    }
  });
  EXPECT_GT (count, 3);
}

TEST_F (MemoryOfTheThreadRunsOut, InReports) {
  EXPECT_EQ (orva_track_clip_changes (connection_), ORVA_OK);
  int number = 0;
  const long count = fail_each (support::rounds (4, 1), [&] {
    const std::string clip = long_name + std::to_string (number++);
    server_.report ("<clip_created><ClipID>" + clip + "</ClipID></clip_created>");
    server_.report ("<clip_deleted><ClipID>" + clip + "</ClipID></clip_deleted>");
    orva_cmd_stop1 (connection_, 0);
  });
  EXPECT_GT (count, 3);
}

// The link is lost, and what the next one needs cannot be had at once: it comes with a later one, complete.
TEST_F (MemoryOfTheThreadRunsOut, WhileALinkIsMadeAgain) {
  uint32_t status = 77;
  uint32_t store = 0;
  EXPECT_EQ (orva_channel_status (connection_, 0, &status), ORVA_OK);
  EXPECT_EQ (orva_channel_status (connection_, 7, &status), ORVA_OK);
  EXPECT_EQ (orva_track_clip_changes (connection_), ORVA_OK);
  EXPECT_EQ (orva_track_directory_changes (connection_), ORVA_OK);
  EXPECT_EQ (
      orva_open_kvstore (connection_, wide ("CUES").c_str (), wide ("").c_str (), ORVA_STORE_READ, &store),
      ORVA_OK);
  EXPECT_EQ (orva_kvstore_wait_scan (store, 20000), ORVA_OK);
  const long count = fail_each (support::rounds (23, 1), [&] {
    const size_t links = server_.accepted ();
    server_.drop ();
    const auto complete = [&] {
      std::multiset<std::string> names;
      for (const Command &command : server_.commands ())
        if (command.connection > links && command.connection == server_.accepted ())
          names.insert (command.name);
      return names.count ("report_register") == 2 && names.count ("channel_report_register") == 2 &&
             names.count ("download_metadata") == 1;
    };
    EXPECT_TRUE (wait_until (complete));
  });
  EXPECT_GT (count, 10);
  EXPECT_EQ (orva_kvstore_wait_scan (store, 20000), ORVA_OK);
  orva_close_key_value_store (store);
}

} // namespace
