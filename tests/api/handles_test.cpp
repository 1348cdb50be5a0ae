// Lists and snapshots, which callers know by their numbers.

#include "api/handles/list_handles.h"
#include "api/handles/metadata_handles.h"

#include "support/text_points.h"
#include "support/wait.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr unsigned thread_count = 8;

NameList list_of (std::initializer_list<const char *> names) {
  NameList list;
  for (const char *name : names)
    list.append (name);
  return list;
}

/// Takes a name. @param name receives it
ResultCode take (ListHandles &lists, uint32_t handle, std::string &name) {
  orva_char units[16] = {'b', 'e', 'f', 'o', 'r', 'e', 0};
  const ResultCode code = lists.take_name (handle, {units, 16});
  const std::basic_string_view<orva_char> taken = units;
  name.assign (taken.begin (), taken.end ());
  return code;
}

/// The next name of a list whose handle is known.
std::string next (ListHandles &lists, uint32_t handle) {
  std::string name;
  EXPECT_EQ (take (lists, handle, name), 0u);
  return name;
}

template <class Body>
void on_eight_threads (Body body) {
  std::vector<std::thread> threads;
  for (unsigned i = 0; i != thread_count; ++i)
    threads.emplace_back (body, i);
  for (std::thread &thread : threads)
    thread.join ();
}

TEST (HandleTable, PassesOverNumbersInUse) {
  static uint32_t drawn;
  drawn = 0;
  const auto in_pairs = [] () noexcept { return ++drawn / 2 + 7; };
  HandleTable<int> table (in_pairs);
  EXPECT_EQ (table.open (1), 7u);
  EXPECT_EQ (table.open (2), 8u);
  EXPECT_EQ (table.open (3), 9u) << "the second 8 is in use";
  table.close (9);
  EXPECT_EQ (table.open (4), 9u) << "and the second 9 is not";
  int seen = 0;
  EXPECT_TRUE (table.visit (9, [&] (int value) { seen = value; }));
  EXPECT_EQ (seen, 4);
  EXPECT_FALSE (table.visit (10, [&] (int) { ADD_FAILURE (); }));
}

/// Calls a function when it is destroyed.
struct Parting {
  explicit Parting (std::function<void ()> last) : last_words (std::move (last)) {}
  ~Parting () { last_words (); }
  std::function<void ()> last_words;
};

TEST (HandleTable, DestroysAValueUnderTheLockOnlyWhereThatIsWanted) {
  using Table = HandleTable<std::unique_ptr<Parting>>;
  Table table;
  const auto others_wait = [&] (void (Table::*close) (uint32_t), std::chrono::milliseconds limit) {
    std::atomic<bool> looked{false};
    bool waited = false;
    std::thread other;
    uint32_t handle = 0;
    handle = table.open (std::make_unique<Parting> ([&] {
      other = std::thread ([&] {
        table.visit (handle, [] (auto &) {});
        looked = true;
      });
      waited = !support::wait_until ([&] { return looked.load (); }, limit);
    }));
    (table.*close) (handle);
    other.join ();
    return waited;
  };
  EXPECT_FALSE (others_wait (&Table::close, support::generous));
  EXPECT_TRUE (others_wait (&Table::close_and_hold, std::chrono::milliseconds (50)));
}

TEST (HandleTable, HandsOutWhatIsTaken) {
  HandleTable<std::unique_ptr<int>> table;
  const uint32_t handle = table.open (std::make_unique<int> (7));
  const std::unique_ptr<int> taken = table.take (handle);
  ASSERT_NE (taken, nullptr);
  EXPECT_EQ (*taken, 7);
  EXPECT_EQ (table.take (handle), nullptr);
}

/// The names of a list from the first on.
std::vector<std::u16string> all_names (NameList &list) {
  std::vector<std::u16string> names;
  for (std::u16string_view name = list.take_first (); !name.empty (); name = list.take_first ())
    names.emplace_back (name);
  return names;
}

TEST (NameList, GivesWhatWasAddedInOrder) {
  NameList list;
  EXPECT_EQ (list.take_first (), u"");
  list.append ("B");
  list.append (AString::from_utf8 ("\xC3\x84\xF0\x9D\x84\x9E!"));
  EXPECT_EQ (list.take_first (), u"B");
  list.append ("A");
  EXPECT_EQ (all_names (list), (std::vector<std::u16string>{u"\u00C4\U0001D11E!", u"A"}));
  EXPECT_EQ (list.take_first (), u"");
  list.append ("after the end");
  EXPECT_EQ (list.take_first (), u"after the end");
}

TEST (NameList, KeepsLongNamesAndManyNames) {
  const std::u16string longest (200000, u'x'); // more than 16 bits count
  NameList list;
  std::vector<std::u16string> expected;
  for (unsigned i = 0; i != 20000; ++i) {
    expected.push_back (i % 5000 == 7 ? longest : AString::from_uint32 (i).to_u16string ());
    list.append (AString::from_utf16 (expected.back ()));
  }
  EXPECT_TRUE (all_names (list) == expected);
}

TEST (NameList, EndsANameAtTheFirstCodePointWithoutUtf16) {
  NameList list;
  list.append (AString::from_utf32 (U"ab\xD800 cd"));
  list.append ("next");
  EXPECT_EQ (all_names (list), (std::vector<std::u16string>{u"ab", u"next"}));
}

TEST (ListHandles, CutANameAtTheEndOfTheBuffer) {
  ListHandles lists;
  NameList list;
  list.append (AString::from_utf8 ("abc\xF0\x9D\x84\x9E"));
  list.append ("next");
  const uint32_t handle = lists.open (std::move (list));
  orva_char units[6] = {'#', '#', '#', '#', '#', '#'};
  EXPECT_EQ (lists.take_name (handle, {units, 5}), 0u);
  EXPECT_EQ (std::u16string (units, units + 6), std::u16string (u"abc\0##", 6));
  EXPECT_EQ (lists.take_name (handle, {nullptr, 0}), 0u) << "a buffer without room loses the name";
  EXPECT_EQ (next (lists, handle), "");
}

TEST (ListHandles, GiveNamesInOrderAndThenNothing) {
  ListHandles lists;
  const uint32_t handle = lists.open (list_of ({"B", "A", "B"}));
  const uint32_t other = lists.open (NameList ());
  EXPECT_NE (handle, 0u);
  EXPECT_NE (handle, other);
  EXPECT_EQ (next (lists, handle), "B");
  EXPECT_EQ (next (lists, other), "");
  EXPECT_EQ (next (lists, handle), "A");
  EXPECT_EQ (next (lists, handle), "B");
  EXPECT_EQ (next (lists, handle), "");
  EXPECT_EQ (next (lists, handle), "");
}

TEST (ListHandles, AreUnknownOnceClosed) {
  ListHandles lists;
  const uint32_t handle = lists.open (list_of ({"A"}));
  lists.close (handle);
  lists.close (handle);
  std::string name;
  EXPECT_EQ (take (lists, handle, name), 3u);
  EXPECT_EQ (last_error_text (), "Invalid handle");
  EXPECT_EQ (name, "");
}

TEST (ListHandles, TakeNamesOffAMillionInLinearTime) {
  constexpr uint32_t count = 1000000, wanted = 100000;
  std::vector<AString> names;
  for (uint32_t i = 0; i != 1000; ++i)
    names.push_back (AString::from_uint32 (i));
  const auto start = std::chrono::steady_clock::now ();
  ListHandles lists;
  NameList list;
  for (uint32_t i = 0; i != count; ++i)
    list.append (names[i % 1000]);
  const uint32_t handle = lists.open (std::move (list));
  uint32_t right = 0;
  for (uint32_t i = 0; i != wanted; ++i)
    right += next (lists, handle) == std::to_string (i % 1000) ? 1 : 0;
  EXPECT_EQ (right, wanted);
  lists.close (handle);
  // Walking the list for each name would take minutes, copying it an hour.
  EXPECT_LT (std::chrono::steady_clock::now () - start, std::chrono::seconds (120));
}

TEST (ListHandles, CloseManyNamesAtOnce) {
  ListHandles lists;
  NameList list;
  const AString name = "NEWS0123";
  for (int i = 0; i != 100000; ++i)
    list.append (name);
  const uint32_t handle = lists.open (std::move (list));
  lists.close (handle);
  std::string taken;
  EXPECT_EQ (take (lists, handle, taken), 3u);
}

TEST (ListHandles, GiveEachNameToOneOfManyThreads) {
  constexpr uint32_t count = 4000;
  ListHandles lists;
  NameList list;
  for (uint32_t i = 0; i != count; ++i)
    list.append (AString::from_uint32 (i));
  const uint32_t handle = lists.open (std::move (list));
  std::array<std::vector<std::string>, thread_count> taken;
  on_eight_threads ([&] (unsigned i) {
    for (std::string name = next (lists, handle); !name.empty (); name = next (lists, handle))
      taken[i].push_back (name);
  });
  std::set<std::string> all;
  size_t sum = 0;
  for (const auto &of_thread : taken) {
    all.insert (of_thread.begin (), of_thread.end ());
    sum += of_thread.size ();
  }
  EXPECT_EQ (sum, count);
  EXPECT_EQ (all.size (), count);
}

// Whichever thread gets there first, a handle is known or it is not.
TEST (ListHandles, MayBeClosedWhileOthersRead) {
  ListHandles lists;
  std::array<std::atomic<uint32_t>, 4> handles{};
  on_eight_threads ([&] (unsigned i) {
    for (int round = 0; round != 300; ++round) {
      std::atomic<uint32_t> &place = handles[(i + round) % handles.size ()];
      const uint32_t mine = lists.open (list_of ({"A", "B"}));
      lists.close (place.exchange (mine));
      std::string name;
      const ResultCode code = take (lists, place.load (), name);
      if (code == 0)
        EXPECT_TRUE (name == "A" || name == "B" || name.empty ());
      else
        EXPECT_TRUE (code == 3 && name.empty ());
    }
  });
}

TEST (MetaDataHandles, KeepWhatTheyWereGivenUntilClosed) {
  MetaDataHandles handles;
  QUILL3::ClipInfo clip;
  clip.Title = "The opener";
  const uint32_t handle = handles.open ({7, clip});
  const uint32_t other = handles.open ({8, {}});
  EXPECT_NE (handle, other);
  ClipSnapshot item;
  EXPECT_EQ (handles.copy (handle, item), 0u);
  EXPECT_EQ (last_error_text (), "OK");
  EXPECT_EQ (item.connection, 7u);
  EXPECT_TRUE (item.record == clip);
  item.record.Title = "A copy";
  EXPECT_EQ (handles.change (handle, [] (QUILL3::ClipInfo &kept) { kept.ClipLength = 50; }), 0u);
  EXPECT_EQ (handles.copy (handle, item), 0u);
  EXPECT_EQ (item.record.Title, "The opener");
  EXPECT_EQ (item.record.ClipLength, 50u);
  handles.close (handle);
  handles.close (handle);
  item.connection = 77;
  EXPECT_EQ (handles.copy (handle, item), 3u);
  EXPECT_EQ (last_error_text (), "Invalid handle");
  EXPECT_EQ (item.connection, 77u);
  EXPECT_EQ (handles.change (handle, [] (QUILL3::ClipInfo &) { ADD_FAILURE (); }), 3u);
  EXPECT_EQ (handles.copy (other, item), 0u);
}

TEST (MetaDataHandles, GiveRecordsOfOneMoment) {
  MetaDataHandles handles;
  const uint32_t handle = handles.open ({1, {}});
  on_eight_threads ([&] (unsigned i) {
    for (uint32_t round = 0; round != 300; ++round) {
      const uint32_t number = i * 1000 + round;
      handles.change (handle, [=] (QUILL3::ClipInfo &clip) {
        clip.LoopIn = number;
        clip.Title = AString::from_uint32 (number);
        clip.LoopOut = number;
        clip.MetadataList = QUILL3::MetadataList{{clip.Title, clip.Title}};
      });
      ClipSnapshot item;
      EXPECT_EQ (handles.copy (handle, item), 0u);
      EXPECT_EQ (item.record.LoopIn, item.record.LoopOut);
      EXPECT_EQ (item.record.Title, AString::from_uint32 (item.record.LoopIn));
      EXPECT_EQ (item.record.MetadataList.value.front ().Value, item.record.Title);
    }
  });
}

TEST (Handles, AreTheSameForTheWholeProcess) {
  EXPECT_EQ (&ListHandles::instance (), &ListHandles::instance ());
  EXPECT_EQ (&MetaDataHandles::instance (), &MetaDataHandles::instance ());
  const uint32_t list = ListHandles::instance ().open (NameList ());
  const uint32_t snapshot = MetaDataHandles::instance ().open ({});
  EXPECT_EQ (snapshot, list + 1) << "they share their numbers";
  ListHandles::instance ().close (list);
  MetaDataHandles::instance ().close (snapshot);
}

} // namespace
