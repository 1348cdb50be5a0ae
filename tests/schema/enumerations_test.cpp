#include "schema/members.h"
#include "schema/tags.h"
#include "support/assert_counter.h"

#include <gtest/gtest.h>

#include <vector>

using namespace QUILL3;

namespace {

struct Table {
  const char *name;
  AString (*to_string) (uint32_t value);
  bool (*from_string) (const AString &text, uint32_t *value);
  bool (*is_valid) (uint32_t value);
  std::vector<const char *> spellings;
};

#define TABLE(name, ...)                                                                                     \
  {                                                                                                          \
#name, name##_to_string, name##_from_string, name##_is_valid, {                                          \
      __VA_ARGS__                                                                                            \
    }                                                                                                        \
  }
const std::vector<Table> &tables () {
  static const std::vector<Table> all{
      TABLE (Channel, "A", "B", "C", "D", "E", "F", "G", "H", "I", "J", "K", "L"),
      TABLE (ChannelStatus, "nochannel", "idle", "cueing", "stop", "play", "record", "insert", "testpattern",
             "timedelay"),
      TABLE (Loop, "off", "loop", "loopto", "pingpong", "pingpongto", "auto", "record"),
      TABLE (Playback, "auto", "field", "f12"),
      TABLE (Interp, "auto", "on", "off"),
      TABLE (ReportType, "clip_change", "config_change", "disk_space", "temperature", "melt",
             "directory_change", "playlist_change", "chaselist_change", "export", "alerts",
             "chase_ltc_timecode", "ltc_input"),
      TABLE (ChannelReportType, "status", "clipid", "speed", "timecode", "info", "listplay", "chaseplay",
             "aux_audio_timecode"),
      TABLE (TrackType, "video", "key", "audio", "timecode"),
      TABLE (SpecialClipType, "normal", "iso2", "iso3", "iso4", "iso5", "iso6", "iso7", "iso8", "ssm2",
             "ssm3"),
      TABLE (ErrorCode, "general", "clipnotfound", "configname_invalid", "configvalue_invalid"),
      TABLE (TimecodeSource, "zerobased", "striped", "rectc", "rec0_stripe"),
      TABLE (CompressionType, "jpeg2000", "dv", "avci", "xavc"),
      TABLE (StealStatus, "available", "import", "export"),
      TABLE (ReferenceSource, "input1", "input2", "refin", "refsdhd", "freerun"),
      TABLE (VideoStandard, "4K_60p", "4K_59_94p", "4K_50p", "4K_30p", "4K_29_97p", "4K_25p", "4K_24p",
             "4K_23_98p", "1080_60p", "1080_59_94p", "1080_50p", "1080_30p", "1080_29_97p", "1080_25p",
             "1080_24p", "1080_23_98p", "1080_23_98psf", "1080_60i", "1080_59_94i", "1080_50i", "1080_48i",
             "1080_47_95i", "720_60p", "720_59_94p", "720_50p", "625_50i", "525_59_94i"),
      TABLE (VideoRate, "60", "59_94", "50", "48", "47_95", "30", "29_97", "25", "24", "23_98"),
      TABLE (VideoResolution, "4K", "1080p", "1080i", "720p", "625i", "525i"),
      TABLE (PlayOrRecord, "play", "record"),
      TABLE (DropFrameFlag, "df", "ndf"),
      TABLE (PrecueCondition, "explicit_switch", "previous_stops", "immediate", "end_of_clip",
             "end_of_clip2"),
      TABLE (ConfigurationItemAccess, "user", "eng"),
      TABLE (ListElementAtStart, "play", "pause"),
      TABLE (ListElementAtEnd, "take", "pause", "loop"),
      TABLE (Layer, "normal", "bed"),
      TABLE (ChaseElementAtEnd, "black", "pause", "loop"),
      TABLE (Roll, "cueonly", "roll"),
      TABLE (ListPlayMode, "single_channel", "pgm_pvw"),
      TABLE (TransitionType, "cut", "dissolve"),
      TABLE (FollowSpeed, "none", "smart", "oneX", "follow"),
      TABLE (ClipScope, "clip", "vclip"),
      TABLE (AlertingPriority, "harmful", "malfunction"),
      TABLE (AlertingLevel, "na", "ok", "warning", "error"),
      TABLE (ModifiedFlag, "unmodified", "modified"),
      TABLE (booleans, "false", "true"),
  };
  return all;
}
#undef TABLE

TEST (Enumerations, AreCounted) {
  size_t spellings = 0;
  for (const Table &table : tables ())
    spellings += table.spellings.size ();
  EXPECT_EQ (enumeration_count, 34u);
  EXPECT_EQ (tables ().size (), 34u);
  EXPECT_EQ (spellings, 174u);
}

TEST (Enumerations, GiveBothSides) {
  for (const Table &table : tables ())
    for (uint32_t i = 0; i < table.spellings.size (); ++i) {
      uint32_t value = UINT32_MAX;
      EXPECT_EQ (table.to_string (i).to_std_string (), table.spellings[i]) << table.name;
      EXPECT_TRUE (table.from_string (table.spellings[i], &value)) << table.name;
      EXPECT_EQ (value, i) << table.name;
      EXPECT_TRUE (table.from_string (table.spellings[i], nullptr)) << table.name;
      EXPECT_TRUE (table.is_valid (i)) << table.name;
    }
}

TEST (Enumerations, EndBehindTheLastSpelling) {
  for (const Table &table : tables ())
    for (const uint32_t value : {static_cast<uint32_t> (table.spellings.size ()), UINT32_MAX}) {
      EXPECT_TRUE (table.to_string (value).is_empty ()) << table.name;
      EXPECT_FALSE (table.is_valid (value)) << table.name;
    }
}

TEST (Enumerations, LeaveTheValueAloneForWhatIsNoSpelling) {
  for (const Table &table : tables ())
    for (const char *text : {"", "nonsense", " ", "0"}) {
      uint32_t value = 77;
      EXPECT_FALSE (table.from_string (text, &value)) << table.name;
      EXPECT_FALSE (table.from_string (text, nullptr)) << table.name;
      EXPECT_EQ (value, 77u) << table.name;
    }
}

TEST (Enumerations, HaveNoDefaults) {
  for (uint32_t i = 0; i < enumeration_count; ++i) {
    const EnumString &table = enumeration (static_cast<Enumeration> (i));
    EXPECT_EQ (table.value_of ("nonsense"), 4294967295u);
    EXPECT_TRUE (table.text_of (1000).is_empty ());
  }
}

TEST (Enumerations, AreLookedUpEachByItself) {
  uint32_t loop = 9, interp = 9, status = 9, record = 9, start = 9;
  EXPECT_TRUE (Loop_from_string ("off", &loop));
  EXPECT_TRUE (Interp_from_string ("off", &interp));
  EXPECT_EQ (loop, 0u);
  EXPECT_EQ (interp, 2u);
  EXPECT_TRUE (Loop_from_string ("auto", &loop));
  EXPECT_TRUE (Interp_from_string ("auto", &interp));
  EXPECT_EQ (loop, 5u);
  EXPECT_EQ (interp, 0u);
  EXPECT_TRUE (ChannelStatus_from_string ("play", &status));
  EXPECT_TRUE (PlayOrRecord_from_string ("play", &record));
  EXPECT_TRUE (ListElementAtStart_from_string ("play", &start));
  EXPECT_EQ (status, 4u);
  EXPECT_EQ (record, 0u);
  EXPECT_EQ (start, 0u);
}

TEST (Enumerations, GiveTheirMembersToTheCompiler) {
  static_assert (member (Enumeration::Channel, "A") == 0);
  static_assert (member (Enumeration::Interp, "off") == 2);
  static_assert (member (Enumeration::VideoStandard, "1080_60i") == 17);
  static_assert (member (Enumeration::booleans, "true") == 1);
  constexpr uint32_t last = member (Enumeration::ReportType, "ltc_input");
  EXPECT_EQ (last, 11u);
}

TEST (Enumerations, MindTheCase) {
  EXPECT_FALSE (Loop_from_string ("Auto", nullptr));
  EXPECT_FALSE (Channel_from_string ("a", nullptr));
  EXPECT_TRUE (FollowSpeed_from_string ("oneX", nullptr));
  EXPECT_FALSE (FollowSpeed_from_string ("onex", nullptr));
}

TEST (Sets, StartEmptyOrWithTheirValues) {
  EXPECT_EQ (ChannelSet ().count, 0u);
  const ChannelSet one (7);
  EXPECT_EQ (one.count, 1u);
  EXPECT_EQ (one.vec[0], 7u);
  const uint32_t values[] = {3, 1, 3, 2};
  const ChannelSet several (values, 4);
  EXPECT_EQ (several.count, 3u);
  EXPECT_EQ (several.vec[0], 3u);
  EXPECT_EQ (several.vec[1], 1u);
  EXPECT_EQ (several.vec[2], 2u);
  EXPECT_EQ (ChannelSet (values, 0).count, 0u);
}

TEST (Sets, StayEmptyForATableBeyondTheirCapacity) {
  AssertCounter failures;
  const uint32_t values[] = {0, 1, 2, 3, 3};
  EXPECT_EQ (TrackSet (values, 5).count, 0u);
  EXPECT_EQ (failures.take (), 1u);
  EXPECT_EQ (TrackSet (values, 4).count, 4u);
  EXPECT_EQ (failures.count (), 0u);
}

TEST (Sets, TakeAMemberOnce) {
  ChannelSet set;
  set.add (0);
  set.add (0);
  EXPECT_EQ (set.count, 1u);
  EXPECT_TRUE (set.contains (0));
  EXPECT_FALSE (set.contains (1));
}

TEST (Sets, RefuseAMemberTooMany) {
  AssertCounter failures;
  TrackSet set;
  for (uint32_t value = 0; value < 4; ++value)
    set.add (value);
  set.add (3);
  EXPECT_EQ (failures.count (), 0u);
  set.add (4);
  EXPECT_EQ (failures.count (), 1u);
  EXPECT_EQ (set.count, 4u);
  EXPECT_FALSE (set.contains (4));
}

TEST (Sets, RemoveEveryOccurrence) {
  ChannelSet set;
  ASSERT_TRUE (get_ChannelSet (XMLTree ("ChannelSet", make_child_list (make_Channel (0), make_Channel (0))),
                               &set, nullptr));
  EXPECT_EQ (set.count, 2u);
  set.remove (0);
  EXPECT_EQ (set.count, 0u);

  const uint32_t values[] = {4, 0, 3, 2};
  ChannelSet others (values, 4);
  others.vec[3] = 0;
  others.remove (0);
  const uint32_t left[] = {4, 3};
  EXPECT_EQ (others, ChannelSet (left, 2));
  others.remove (9);
  EXPECT_EQ (others.count, 2u);
}

TEST (Sets, AreValidWithinCapacityAndSpellings) {
  EXPECT_TRUE (TrackSet ().is_valid ());
  EXPECT_TRUE (TrackSet (3).is_valid ());
  EXPECT_FALSE (TrackSet (4).is_valid ());
  EXPECT_TRUE (ChannelSet (4).is_valid ());
  EXPECT_TRUE (ReportSet (11).is_valid ());
  EXPECT_FALSE (ReportSet (12).is_valid ());
  EXPECT_TRUE (ChannelReportSet (7).is_valid ());
  EXPECT_FALSE (ChannelReportSet (8).is_valid ());
  TrackSet set (0);
  set.count = 5;
  EXPECT_FALSE (set.is_valid ());
}

TEST (Sets, AreEqualPositionByPosition) {
  const uint32_t there[] = {1, 2, 3}, back[] = {3, 2, 1}, shorter[] = {1, 2};
  EXPECT_EQ (ChannelReportSet (there, 3), ChannelReportSet (there, 3));
  EXPECT_NE (ChannelReportSet (there, 3), ChannelReportSet (back, 3));
  EXPECT_NE (ChannelReportSet (there, 3), ChannelReportSet (shorter, 2));
  EXPECT_EQ (ChannelReportSet (), ChannelReportSet ());
  ChannelReportSet trailing (there, 3);
  trailing.count = 2;
  EXPECT_EQ (trailing, ChannelReportSet (shorter, 2));
}

TEST (Sets, InvalidOnesAreEqualToEachOtherAlone) {
  TrackSet overfull (0);
  overfull.count = 1000;
  EXPECT_EQ (TrackSet (4), TrackSet (5));
  EXPECT_EQ (TrackSet (4), overfull);
  EXPECT_EQ (overfull, overfull);
  EXPECT_NE (TrackSet (3), TrackSet (4));
  EXPECT_NE (TrackSet (4), TrackSet (3));
}

TEST (Sets, SurviveACountBeyondTheirCapacity) {
  AssertCounter failures;
  TrackSet set (2);
  set.count = 1000;
  set.add (3);
  EXPECT_EQ (failures.count (), 1u);
  EXPECT_FALSE (set.contains (3));
  EXPECT_EQ (set.count, 1000u);
  set.remove (0);
  EXPECT_EQ (set.count, 1u);
}

TEST (FixedVectors, TakeElementsUpToTheirCapacity) {
  AssertCounter failures;
  FixedVector<AString, 2> vector;
  vector.add ("a");
  vector.add ("b");
  EXPECT_EQ (failures.count (), 0u);
  vector.add ("c");
  EXPECT_EQ (failures.count (), 1u);
  EXPECT_EQ (vector.count, 2u);
  EXPECT_EQ (vector.vec[1].to_std_string (), "b");
}

TEST (FixedVectors, AreEqualUpToTheirCount) {
  FixedVector<AString, 2> a, b;
  EXPECT_EQ (a, b);
  a.add ("x");
  EXPECT_NE (a, b);
  b.add ("x");
  b.vec[1] = "stale";
  EXPECT_EQ (a, b);
  b.vec[0] = "y";
  EXPECT_NE (a, b);
  a.count = b.count = 1000;
  EXPECT_NE (a, b);
}

} // namespace
