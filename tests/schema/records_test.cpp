#include "record_samples.h"
#include "schema/records.h"
#include "support.h"

#include <gtest/gtest.h>

#include <string>

using namespace QUILL3;

namespace {

using samples::Member, samples::Record, samples::read, samples::records;
using samples::required, samples::optional, samples::flag;

XMLTree without (const Record &record, const Member &member) {
  XMLTree tree = parsed (record.full ());
  EXPECT_EQ (tree.remove_children (member.name), 1u) << member.name;
  return tree;
}

XMLTree with_doubled (const Record &record, const Member &member) {
  XMLTree tree = parsed (record.full ());
  tree.add_child (XMLTree (tree.child (member.name)));
  return tree;
}

/// The element with the required members alone.
XMLTree minimal (const Record &record) {
  XMLTree tree = parsed (record.full ());
  for (const Member &member : record.with ({optional, flag}))
    EXPECT_EQ (tree.remove_children (member.name), 1u) << member.name;
  return tree;
}

/// The text of the error when the element cannot be read.
std::string failure_of (const Record &record, const XMLTree &tree) {
  AString err;
  EXPECT_EQ (record.functions.read_and_write (tree, &err), "") << record.name;
  EXPECT_EQ (record.functions.read_and_write (tree, nullptr), "") << record.name;
  return err.to_std_string ();
}

TEST (Records, AreCounted) {
  size_t members = 0;
  for (const Record &record : records) {
    EXPECT_EQ (record.functions.rows.count, record.members.size ()) << record.name;
    members += record.members.size ();
  }
  EXPECT_EQ (records.size (), 24u);
  EXPECT_EQ (members, 154u);
}

TEST (Records, AreReadAndWrittenInFull) {
  for (const Record &record : records) {
    AString err ("untouched");
    EXPECT_EQ (record.functions.read_and_write (parsed (record.full ()), &err), record.full ());
    EXPECT_EQ (record.functions.read_and_write (parsed (record.other ()), &err), record.other ());
    EXPECT_EQ (err.to_std_string (), "untouched");
  }
}

TEST (Records, AreReadAndWrittenWithWhatIsRequired) {
  for (const Record &record : records)
    EXPECT_EQ (record.functions.read_and_write (minimal (record), nullptr), written (minimal (record)));
}

TEST (Records, MayComeInAnyOrderWithUnknownChildren) {
  for (const Record &record : records) {
    XMLTree tree (record.name);
    const XMLTree full = parsed (record.full ());
    for (const Member &member : record.with ({flag, optional, required})) {
      tree.add_child (XMLTree ("Unknown", "x"));
      tree.add_child (XMLTree (full.child (member.name)));
    }
    EXPECT_EQ (record.functions.read_and_write (tree, nullptr), record.full ());
  }
}

TEST (Records, FailWithoutARequiredMember) {
  for (const Record &record : records)
    for (const Member &member : record.with ({required}))
      EXPECT_EQ (failure_of (record, without (record, member)),
                 std::string ("Tag '") + member.name + "' not found within '" + record.name + "'");
}

TEST (Records, FailForADoubledMember) {
  for (const Record &record : records)
    for (const Member &member : record.with ({required, optional}))
      EXPECT_EQ (failure_of (record, with_doubled (record, member)),
                 std::string ("More than one tag '") + member.name + "' found within '" + record.name + "'");
}

TEST (Records, DoNotFailForADoubledFlag) {
  for (const Record &record : records)
    for (const Member &member : record.with ({flag}))
      EXPECT_EQ (record.functions.read_and_write (with_doubled (record, member), nullptr), record.full ());
}

TEST (Records, AreReadWithoutAnOptionalMember) {
  for (const Record &record : records)
    for (const Member &member : record.with ({optional, flag})) {
      const XMLTree tree = without (record, member);
      EXPECT_EQ (record.functions.read_and_write (tree, nullptr), written (tree));
    }
}

TEST (Records, AreEqualWhenAllMembersAre) {
  for (const Record &record : records) {
    EXPECT_TRUE (record.functions.equal (parsed (record.full ()), parsed (record.full ()))) << record.name;
    EXPECT_TRUE (record.functions.equal (minimal (record), minimal (record))) << record.name;
  }
}

TEST (Records, DifferWhenOneMemberDoes) {
  for (const Record &record : records) {
    const XMLTree full = parsed (record.full ()), other = parsed (record.other ());
    for (const Member &member : record.with ({required, optional})) {
      XMLTree changed = parsed (record.full ());
      changed.set_child (other.child (member.name));
      EXPECT_FALSE (record.functions.equal (full, changed)) << record.name << " " << member.name;
    }
  }
}

TEST (Records, DifferWhenOneMemberIsAbsent) {
  for (const Record &record : records)
    for (const Member &member : record.with ({optional, flag})) {
      const XMLTree full = parsed (record.full ()), less = without (record, member);
      EXPECT_FALSE (record.functions.equal (full, less)) << record.name << " " << member.name;
      EXPECT_FALSE (record.functions.equal (less, full)) << record.name << " " << member.name;
    }
}

TEST (Records, AreEqualWhateverAbsentMembersHold) {
  for (const Record &record : records) {
    const XMLTree full = parsed (record.full ()), other = parsed (record.other ());
    EXPECT_TRUE (record.functions.equal_after (full, minimal (record))) << record.name;
    EXPECT_TRUE (record.functions.equal_after (full, other)) << record.name;
    EXPECT_TRUE (record.functions.equal_after (other, full)) << record.name;
  }
}

TEST (Records, FitASmallStack) {
  for (const Record &record : records)
    EXPECT_LE (record.functions.rows.size, 4096u) << record.name;
}

TEST (Records, SayTheFirstFailureInTheOrderOfReading) {
  // Required members come first, wherever they stand in the record, then the optional ones in its order.
  MeltItem item;
  AString err;
  const std::string required = "<MeltClientID>1</MeltClientID><MeltListID>2</MeltListID>"
                               "<MeltElementID>3</MeltElementID><ClipID>c</ClipID>";
  const std::string bad_options = "<Speed>s</Speed><Angle>a</Angle>";
  EXPECT_FALSE (read_record (parsed ("<MeltItem>" + bad_options + required + "</MeltItem>"), &item, &err));
  EXPECT_EQ (err.to_std_string (), "Tag 'MeltInPoint' not found within 'MeltItem'");
  const std::string points = "<MeltInPoint>4</MeltInPoint><MeltOutPoint>5</MeltOutPoint>";
  EXPECT_FALSE (
      read_record (parsed ("<MeltItem>" + bad_options + required + points + "</MeltItem>"), &item, &err));
  EXPECT_EQ (err.to_std_string (), "Tag Angle contains invalid value 'a'");
}

TEST (Records, StartWithNothing) {
  const ClipInfo clip;
  EXPECT_TRUE (clip.ClipID.is_empty ());
  EXPECT_EQ (clip.LoopOut, 0u);
  EXPECT_EQ (clip.TrackInfoVector.count, 0u);
  EXPECT_FALSE (clip.StripeTimecode.Valid);
  EXPECT_FALSE (clip.StripeTimecode.FieldNumber.present);
  EXPECT_FALSE (clip.ReadOnly);
  EXPECT_FALSE (clip.Angle.present);
  EXPECT_EQ (clip.Angle.value, 0);
  EXPECT_FALSE (clip.MetadataList.present);
  EXPECT_TRUE (clip.MetadataList.value.empty ());
  EXPECT_FALSE (ConfigurationItem ().ConfigurationItemRequiresReboot);
  EXPECT_EQ (ConfigurationItem ().ConfigurationItemAllowedValues.count, 0u);
  EXPECT_EQ (written (make_ClipAttrChange ({})), "<ClipAttrChange />");
  EXPECT_EQ (written (make_EEStatus ({})),
             "<EEStatus><SonyEditMask>0</SonyEditMask><AutoEE>false</AutoEE></EEStatus>");
}

TEST (Records, PutEachValueIntoItsMember) {
  const ClipInfo clip = read<ClipInfo> (parsed (
      "<ClipInfo><ClipID>id</ClipID><VideoStandard>525_59_94i</VideoStandard><TrackInfoVector><TrackInfo>"
      "<TrackType>audio</TrackType></TrackInfo></TrackInfoVector><Title>t</Title><Creator>c</Creator>"
      "<Project>p</Project><Playback>f12</Playback><Interp>on</Interp><Loop>auto</Loop><LoopOut>1</LoopOut>"
      "<LoopIn>2</LoopIn><ClipLength>3</ClipLength><TimecodeSource>rectc</TimecodeSource><StripeTimecode>"
      "<Valid>true</Valid><FieldNumber>-4</FieldNumber></StripeTimecode><ReadOnly>true</ReadOnly>"
      "<ISOCount>5</ISOCount><SSMSpeed>6</SSMSpeed><CompressionBitrate>7</CompressionBitrate>"
      "<Frame0Timecode><FieldNumber>8</FieldNumber></Frame0Timecode><TrimStart>9</TrimStart>"
      "<TrimEnd>10</TrimEnd><ClipLengthUntrimmed>11</ClipLengthUntrimmed><Angle>12</Angle>"
      "<LoadedStamp>13</LoadedStamp><UnloadedStamp>14</UnloadedStamp><PlayedStamp>15</PlayedStamp>"
      "<MetaEditStamp>16</MetaEditStamp><ContentEditStamp>17</ContentEditStamp></ClipInfo>"));
  EXPECT_EQ (clip.ClipID.to_std_string () + clip.Title.to_std_string () + clip.Creator.to_std_string () +
                 clip.Project.to_std_string (),
             "idtcp");
  EXPECT_EQ (clip.VideoStandard, 26u);
  EXPECT_EQ (clip.TrackInfoVector.count, 1u);
  EXPECT_EQ (clip.TrackInfoVector.vec[0].TrackType, 2u);
  EXPECT_EQ (clip.Playback, 2u);
  EXPECT_EQ (clip.Interp, 1u);
  EXPECT_EQ (clip.Loop, 5u);
  EXPECT_EQ (clip.LoopOut, 1u);
  EXPECT_EQ (clip.LoopIn, 2u);
  EXPECT_EQ (clip.ClipLength, 3u);
  EXPECT_EQ (clip.TimecodeSource, 2u);
  EXPECT_TRUE (clip.StripeTimecode.Valid);
  EXPECT_EQ (clip.StripeTimecode.FieldNumber.value_or (0), -4);
  EXPECT_TRUE (clip.ReadOnly);
  EXPECT_FALSE (clip.ReadOnlyMeta.present);
  EXPECT_EQ (clip.ISOCount, AOption<uint32_t> (5));
  EXPECT_EQ (clip.SSMSpeed, AOption<uint32_t> (6));
  EXPECT_EQ (clip.CompressionBitrate, AOption<uint32_t> (7));
  EXPECT_EQ (clip.Frame0Timecode.value.FieldNumber, AOption<int32_t> (8));
  EXPECT_EQ (clip.TrimStart, AOption<uint32_t> (9));
  EXPECT_EQ (clip.TrimEnd, AOption<uint32_t> (10));
  EXPECT_EQ (clip.ClipLengthUntrimmed, AOption<uint32_t> (11));
  EXPECT_EQ (clip.Angle, AOption<uint8_t> (12));
  EXPECT_EQ (clip.LoadedStamp, AOption<uint64_t> (13));
  EXPECT_EQ (clip.UnloadedStamp, AOption<uint64_t> (14));
  EXPECT_EQ (clip.PlayedStamp, AOption<uint64_t> (15));
  EXPECT_EQ (clip.MetaEditStamp, AOption<uint64_t> (16));
  EXPECT_EQ (clip.ContentEditStamp, AOption<uint64_t> (17));
}

TEST (Records, AClipNeedsReadOnlyAndNoUUID) {
  std::string members;
  for (const char *name : {"ClipID", "Title", "Creator", "Project"})
    members += element (name, "x");
  members += "<VideoStandard>525_59_94i</VideoStandard><TrackInfoVector /><Playback>f12</Playback>"
             "<Interp>off</Interp><Loop>off</Loop><LoopOut>1</LoopOut><LoopIn>2</LoopIn>"
             "<ClipLength>3</ClipLength><TimecodeSource>rectc</TimecodeSource>"
             "<StripeTimecode><Valid>true</Valid></StripeTimecode>";
  ClipInfo clip;
  AString err;
  EXPECT_FALSE (read_record (parsed (element ("ClipInfo", members)), &clip, &err));
  EXPECT_EQ (err.to_std_string (), "Tag 'ReadOnly' not found within 'ClipInfo'");
  members += "<ReadOnly>true</ReadOnly>";
  EXPECT_FALSE (read<ClipInfo> (parsed (element ("ClipInfo", members))).ClipUUID.present);
}

TEST (Records, StaleTextsInUnsetMembersDoNotMatter) {
  ClipAttrChange a, b;
  a.Title = AString ("one");
  b.Title = AString ("two");
  EXPECT_NE (a, b);
  a.Title.clear ();
  b.Title.clear ();
  EXPECT_EQ (a, b);
  b.Title = AString ("two");
  EXPECT_NE (a, b);
}

TEST (Records, AContentMayBeEmpty) {
  EXPECT_EQ (read<ContentID> (parsed ("<ContentID />")), ContentID ());
  EXPECT_EQ (read<ContentID> (parsed ("<ContentID><VClipID>v</VClipID></ContentID>")),
             ContentID{.VClipID = AString ("v")});
}

TEST (Records, PresenceIsPartOfTheValue) {
  ChannelInformation absent, zero;
  zero.Angle = 0;
  EXPECT_NE (absent, zero);
  absent.Angle = 0;
  EXPECT_EQ (absent, zero);
}

TEST (Records, AFlagComparesAsABool) {
  ConfigurationItem a, b;
  a.ConfigurationItemRequiresReboot = true;
  EXPECT_NE (a, b);
  b.ConfigurationItemRequiresReboot = true;
  EXPECT_EQ (a, b);
}

TEST (Records, ABadMemberOfAMemberFails) {
  ListElement element;
  AString err;
  EXPECT_FALSE (read_record (parsed ("<ListElement><ContentID /><Transition><TransitionDuration>5"
                                     "</TransitionDuration></Transition></ListElement>"),
                             &element, &err));
  EXPECT_EQ (err.to_std_string (), "Tag 'TransitionType' not found within 'Transition'");
}

TEST (Options, ArePresentOnceAssigned) {
  AOption<AString> option;
  EXPECT_FALSE (option.present);
  EXPECT_EQ (option.value_or ("none").to_std_string (), "none");
  option = AString ("a");
  EXPECT_TRUE (option.present);
  EXPECT_EQ (option.value_or ("none").to_std_string (), "a");
  option.clear ();
  EXPECT_EQ (option, AOption<AString> ());
  EXPECT_EQ (option.value_or ("none").to_std_string (), "none");
}

} // namespace

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

#define MESSAGE(name, ...)                                                                                   \
  namespace message {                                                                                        \
  struct name {                                                                                              \
    EACH (MEMBER, __VA_ARGS__)                                                                               \
  };                                                                                                         \
  }                                                                                                          \
  namespace QUILL3 {                                                                                         \
  ROWS (message::name, __VA_ARGS__)                                                                          \
  }
MESSAGE (state, FIELD (Channel), OPTION (ClipID), OPTION (Angle), FIELD (LoopIn), OPTION (MetadataList),
         FIELD (MinLatency))
MESSAGE (nothing)

#pragma GCC diagnostic pop

namespace {

TEST (Bodies, AreReadWhole) {
  message::state state;
  AString err ("untouched");
  EXPECT_TRUE (read_body (parsed ("<state><MinLatency /><MetadataList /><LoopIn>4</LoopIn><Angle>3</Angle>"
                                  "<ClipID>c</ClipID><Channel>B</Channel><Unknown /></state>"),
                          &state, &err));
  EXPECT_EQ (err.to_std_string (), "untouched");
  EXPECT_EQ (state.Channel, 1u);
  EXPECT_EQ (state.ClipID, AOption<AString> ("c"));
  EXPECT_EQ (state.Angle, AOption<uint8_t> (3));
  EXPECT_EQ (state.LoopIn, 4u);
  EXPECT_TRUE (state.MetadataList.present);
  EXPECT_TRUE (state.MinLatency);
}

TEST (Bodies, AnOptionalTagThatIsMissingDoubledOrBadIsAbsent) {
  const std::string required = "<Channel>B</Channel><LoopIn>4</LoopIn>";
  for (const char *more : {"", "<Angle>256</Angle>", "<Angle>1</Angle><Angle>1</Angle>", "<Angle />",
                           "<ClipID>a</ClipID><ClipID>b</ClipID>",
                           "<MetadataList><Metadata><Key>a</Key></Metadata></MetadataList>"}) {
    message::state state{.ClipID = AString ("old"), .Angle = 9, .MetadataList = MetadataList{{"k", "v"}}};
    AString err ("untouched");
    EXPECT_TRUE (read_body (parsed ("<state>" + required + more + "</state>"), &state, &err)) << more;
    EXPECT_EQ (err.to_std_string (), "untouched");
    EXPECT_FALSE (state.ClipID.present) << more;
    EXPECT_FALSE (state.Angle.present) << more;
    EXPECT_FALSE (state.MetadataList.present) << more;
    EXPECT_FALSE (state.MinLatency);
    EXPECT_EQ (state.LoopIn, 4u);
  }
}

TEST (Bodies, ARequiredTagThatIsMissingDoubledOrBadFails) {
  const struct {
    const char *text, *failure;
  } rows[] = {
      {"<state><LoopIn>4</LoopIn></state>", "Tag 'Channel' not found within 'state'"},
      {"<state><Channel>B</Channel></state>", "Tag 'LoopIn' not found within 'state'"},
      {"<state><Channel>B</Channel><Channel>B</Channel><LoopIn>4</LoopIn></state>",
       "More than one tag 'Channel' found within 'state'"},
      {"<state><Channel>M</Channel><LoopIn>4</LoopIn></state>", "Tag state contains invalid value 'Channel'"},
      {"<state><Channel>B</Channel><LoopIn>-4</LoopIn></state>", "Tag LoopIn contains invalid value '-4'"},
      {"<state><Channel>M</Channel><LoopIn>-4</LoopIn></state>",
       "Tag state contains invalid value 'Channel'"},
  };
  for (const auto &row : rows) {
    message::state state;
    AString err;
    EXPECT_FALSE (read_body (parsed (row.text), &state, &err)) << row.text;
    EXPECT_EQ (err.to_std_string (), row.failure);
    EXPECT_FALSE (read_body (parsed (row.text), &state, nullptr)) << row.text;
  }
}

TEST (Bodies, AreNoRecords) {
  const XMLTree tree = parsed ("<state><Channel>B</Channel><LoopIn>4</LoopIn><Angle>256</Angle></state>");
  message::state state;
  AString err;
  EXPECT_TRUE (read_body (tree, &state, &err));
  EXPECT_FALSE (read_record (tree, &state, &err));
  EXPECT_EQ (err.to_std_string (), "Tag Angle contains invalid value '256'");
}

TEST (Bodies, WithoutTagsAreNotLookedAt) {
  message::nothing nothing;
  EXPECT_TRUE (read_body (parsed ("<ok>text</ok>"), &nothing, nullptr));
  EXPECT_TRUE (read_body (parsed ("<ok><ok /><ok /></ok>"), &nothing, nullptr));
  EXPECT_EQ (written (XMLTree ("ok", write_fields (nothing))), "<ok />");
}

} // namespace
