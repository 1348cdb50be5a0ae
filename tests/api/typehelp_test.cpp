#include "api/basics/typehelp.h"

#include "support/assert_counter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string_view>
#include <vector>

using namespace typehelp;

namespace {

template <class Set>
std::vector<uint32_t> members (const Set &set) {
  return {set.begin (), set.end ()};
}

using Numbers = std::vector<uint32_t>;

TEST (TypeHelp, TablesGiveTheirFirstValueOutsideTheirRange) {
  struct Row {
    const char *name;
    uint32_t (*convert) (uint32_t);
    uint32_t first, count; ///< the numbers first to first + count - 1 give 0 to count - 1
  };
  const Row rows[] = {
      {"channel_argument", channel_argument, 0, 8},
      {"repeat_to_wire", repeat_to_wire, 0, 5},
      {"precue_condition_to_wire", precue_condition_to_wire, 0, 4},
      {"drop_frame_to_wire", drop_frame_to_wire, 0, 2},
      {"repeat_from_wire", repeat_from_wire, 0, 5},
      {"playback_from_wire", playback_from_wire, 1, 2},
      {"video_frequency_from_wire", video_frequency_from_wire, 0, 5},
      {"video_resolution_from_wire", video_resolution_from_wire, 2, 4},
      {"video_standard_from_wire", video_standard_from_wire, 17, 10},
  };
  AssertCounter asserts;
  for (const Row &row : rows) {
    SCOPED_TRACE (row.name);
    for (uint32_t i = 0; i < row.count; ++i)
      EXPECT_EQ (row.convert (row.first + i), i);
    for (uint32_t below = 0; below < row.first; ++below)
      EXPECT_EQ (row.convert (below), 0u);
    EXPECT_EQ (row.convert (row.first + row.count), 0u);
    EXPECT_EQ (row.convert (0x80000001), 0u);
    EXPECT_EQ (row.convert (0xFFFFFFFF), 0u);
  }
  EXPECT_EQ (asserts.count (), 0u);
}

TEST (TypeHelp, StatusesThatAreNoneAreUnknown) {
  EXPECT_EQ (channel_status_from_wire (7), 1u);
  for (const uint32_t status : {0u, 8u, 9u, 0xFFFFFFFFu})
    EXPECT_EQ (channel_status_from_wire (status), 0u);
}

TEST (TypeHelp, PlaybackIsNeverSentAsAuto) {
  EXPECT_EQ (playback_to_wire (0), 1u);
  EXPECT_EQ (playback_to_wire (1), 2u);
  EXPECT_EQ (playback_to_wire (2), 1u);
  EXPECT_EQ (playback_to_wire (0xFFFFFFFF), 1u);
}

TEST (TypeHelp, CheckedConversionsFailAnAssertionOutsideTheirRange) {
  struct Row {
    const char *name;
    uint32_t (*convert) (uint32_t);
    uint32_t count;
  };
  const Row rows[] = {
      {"transition_type_to_wire", transition_type_to_wire, 2},
      {"follow_speed_to_wire", follow_speed_to_wire, 4},
      {"timecode_source_to_wire", timecode_source_to_wire, 4},
      {"timecode_source_from_wire", timecode_source_from_wire, 4},
  };
  AssertCounter asserts;
  for (const Row &row : rows) {
    SCOPED_TRACE (row.name);
    for (uint32_t i = 0; i < row.count; ++i)
      EXPECT_EQ (row.convert (i), i);
    EXPECT_EQ (asserts.take (), 0u);
    EXPECT_EQ (row.convert (row.count), 0u);
    EXPECT_EQ (asserts.take (), 1u);
    EXPECT_EQ (row.convert (0xFFFFFFFF), 0u);
    EXPECT_EQ (asserts.take (), 1u);
  }
}

TEST (TypeHelp, ChannelSets) {
  EXPECT_EQ (members (channel_set_from_mask (0)), Numbers ());
  EXPECT_EQ (members (channel_set_from_mask (0x100)), Numbers ());
  EXPECT_EQ (members (channel_set_from_mask (0x81)), (Numbers{0, 7}));
  EXPECT_EQ (members (channel_set_from_mask (0xFFFFFFFF)), (Numbers{0, 1, 2, 3, 4, 5, 6, 7}));
}

TEST (TypeHelp, TrackSets) {
  EXPECT_EQ (members (track_set_from_mask (7, true)), (Numbers{0, 3, 1, 2}));
  EXPECT_EQ (members (track_set_from_mask (7, false)), (Numbers{0, 1, 2}));
  EXPECT_EQ (members (track_set_from_mask (6, true)), (Numbers{1, 2}));
  EXPECT_EQ (members (track_set_from_mask (1, false)), (Numbers{0}));
  EXPECT_EQ (members (track_set_from_mask (0xFFFFFFF8, true)), Numbers ());
}

TEST (TypeHelp, Flags) {
  EXPECT_FALSE (min_latency_wanted (0));
  EXPECT_TRUE (min_latency_wanted (1));
  EXPECT_FALSE (min_latency_wanted (2));
  EXPECT_FALSE (min_latency_wanted (0xFFFFFFFF));
  EXPECT_TRUE (auto_ee_to_wire (0));
  EXPECT_FALSE (auto_ee_to_wire (1));
  EXPECT_TRUE (auto_ee_to_wire (2));
  EXPECT_EQ (auto_ee_from_wire (false), 1u);
  EXPECT_EQ (auto_ee_from_wire (true), 0u);
}

TEST (TypeHelp, EditMasks) {
  EXPECT_EQ (edit_mask_to_wire (0), 0);
  EXPECT_EQ (edit_mask_to_wire (1), 0x10);
  EXPECT_EQ (edit_mask_to_wire (2), 0x20);
  EXPECT_EQ (edit_mask_to_wire (4), 0x3CF);
  EXPECT_EQ (edit_mask_to_wire (7), 0x3FF);
  EXPECT_EQ (edit_mask_to_wire (0xFFFFFFF8), 0);
  EXPECT_EQ (edit_mask_from_wire (0), 0u);
  EXPECT_EQ (edit_mask_from_wire (0x3FF), 7u);
  EXPECT_EQ (edit_mask_from_wire (0x40), 4u);
  EXPECT_EQ (edit_mask_from_wire (0x30), 3u);
  EXPECT_EQ (edit_mask_from_wire (0xFC00), 0u);
  for (uint16_t bit = 1; bit < 0x400; bit = uint16_t (bit << 1))
    EXPECT_EQ (edit_mask_from_wire (bit), bit == 0x10 ? 1u : bit == 0x20 ? 2u : 4u);
}

TEST (TypeHelp, Speeds) {
  EXPECT_EQ (speed_to_wire (1.0).raw, 65536);
  EXPECT_EQ (speed_to_wire (1000.0).raw, 200 * 65536);
  EXPECT_EQ (speed_to_wire (-1000.0).raw, -200 * 65536);
  EXPECT_EQ (speed_to_wire (200.0).raw, 200 * 65536);
  EXPECT_EQ (speed_to_wire (-0.00001).raw, 0);
  EXPECT_EQ (speed_to_wire (0.00001).raw, 0);
  EXPECT_EQ (speed_to_wire (-1.00001).raw, -65536);
  EXPECT_EQ (speed_to_wire (std::numeric_limits<double>::infinity ()).raw, 200 * 65536);
  EXPECT_EQ (speed_to_wire (-std::numeric_limits<double>::infinity ()).raw, -200 * 65536);
  EXPECT_EQ (speed_to_wire (std::numeric_limits<double>::quiet_NaN ()).raw, INT32_MIN);
  EXPECT_EQ (speed_from_wire (Kelvane::fixed{0x18000}), 1.5);
  EXPECT_EQ (speed_from_wire (Kelvane::fixed{-32768}), -0.5);
  EXPECT_EQ (speed_from_wire (Kelvane::fixed{INT32_MIN}), -32768.0);
}

TEST (TypeHelp, DropFrameOfStandards) {
  // By the standard's number: its rate class, -1 for none.
  const int classes[] = {0,  1,  2,  -1, -1, -1, -1, -1, 0, 1, 2, -1, -1, -1,
                         -1, -1, -1, 0,  1,  2,  3,  4,  0, 1, 2, 2,  1};
  AssertCounter asserts;
  for (uint32_t standard = 0; standard < std::size (classes); ++standard) {
    SCOPED_TRACE (standard);
    const bool listed = classes[standard] >= 0;
    EXPECT_EQ (standard_rate (standard), listed ? uint32_t (classes[standard]) : 1u);
    EXPECT_EQ (asserts.take (), listed ? 0u : 1u);
    EXPECT_EQ (standard_is_drop_frame (standard), !listed || classes[standard] == 1);
    EXPECT_EQ (asserts.take (), listed ? 0u : 1u);
  }
  EXPECT_TRUE (standard_is_drop_frame (27));
  EXPECT_TRUE (standard_is_drop_frame (0xFFFFFFFF));
  EXPECT_EQ (asserts.take (), 2u);
}

TEST (TypeHelp, DropFrameOfRateClasses) {
  AssertCounter asserts;
  EXPECT_TRUE (rate_is_drop_frame (1));
  for (const uint32_t other : {0u, 2u, 3u, 4u})
    EXPECT_FALSE (rate_is_drop_frame (other));
  EXPECT_EQ (asserts.count (), 0u);
  EXPECT_FALSE (rate_is_drop_frame (5));
  EXPECT_FALSE (rate_is_drop_frame (0xFFFFFFFF));
  EXPECT_EQ (asserts.count (), 2u);
}

TEST (TypeHelp, TextArguments) {
  const orva_char pair[] = {'a', 0xE9, 0xD834, 0xDD1E, 'b', 0};
  EXPECT_EQ (text_argument (pair).to_std_string (), "a\xC3\xA9\xF0\x9D\x84\x9E"
                                                    "b");
  const orva_char broken[] = {'a', 0xD834, 'b', 0};
  EXPECT_EQ (text_argument (broken).to_std_string (), "a");
  const orva_char empty[] = {0};
  EXPECT_TRUE (text_argument (empty).is_empty ());
  AssertCounter asserts;
  EXPECT_TRUE (text_argument (nullptr).is_empty ());
  EXPECT_EQ (asserts.count (), 1u);
}

TEST (TypeHelp, StringBuffers) {
  struct Row {
    const char *utf8;
    uint32_t capacity;
    std::u16string expected; ///< all units of the buffer, '#' where nothing was written
  };
  const Row rows[] = {
      {"abc", 0, u"#####"},
      {"abc", 1, std::u16string (u"\0####", 5)},
      {"abc", 3, std::u16string (u"ab\0##", 5)},
      {"abc", 4, std::u16string (u"abc\0#", 5)},
      {"abc", 5, std::u16string (u"abc\0#", 5)},
      {"", 5, std::u16string (u"\0####", 5)},
      {"a\xF0\x9D\x84\x9E", 3, std::u16string (u"a\0###", 5)},
      {"a\xF0\x9D\x84\x9E", 4, std::u16string (u"a\xD834\xDD1E\0#", 5)},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE (row.capacity);
    orva_char units[5] = {'#', '#', '#', '#', '#'};
    const AString text = AString::from_utf8 (row.utf8);
    fill_string_buffer (text, OrvaStringBuffer{units, row.capacity});
    for (size_t i = 0; i < 5; ++i)
      EXPECT_EQ (uint16_t (units[i]), uint16_t (row.expected[i])) << i;
    std::fill_n (units, 5, orva_char ('#'));
    fill_string_buffer (text.to_u16string (), OrvaStringBuffer{units, row.capacity});
    for (size_t i = 0; i < 5; ++i)
      EXPECT_EQ (uint16_t (units[i]), uint16_t (row.expected[i])) << "from units, " << i;
  }
}

TEST (TypeHelp, UnitsEndBeforeWhatIsNoText) {
  const orva_char good[] = {'a', 0xD834, 0xDD1E, 'b', 0};
  EXPECT_EQ (units_argument (good), u"a\xD834\xDD1E"
                                    u"b");
  const orva_char high[] = {'a', 0xD834, 'b', 0};
  EXPECT_EQ (units_argument (high), u"a");
  const orva_char low[] = {'a', 0xDD1E, 'b', 0};
  EXPECT_EQ (units_argument (low), u"a");
  const orva_char empty[] = {0};
  EXPECT_EQ (units_argument (empty), u"");
}

TEST (TypeHelp, NullTextsAreFaultsAndCountAsEmpty) {
  AssertCounter failures;
  EXPECT_EQ (units_argument (nullptr), u"");
  EXPECT_EQ (failures.take (), 1u);
  EXPECT_TRUE (text_argument (nullptr).is_empty ());
  EXPECT_EQ (failures.take (), 1u);
  fill_string_buffer (std::u16string_view (u"abc"), OrvaStringBuffer{nullptr, 3});
  EXPECT_EQ (failures.take (), 1u);
  fill_string_buffer (std::u16string_view (u"abc"), OrvaStringBuffer{nullptr, 0});
  EXPECT_EQ (failures.take (), 0u);
}

} // namespace
