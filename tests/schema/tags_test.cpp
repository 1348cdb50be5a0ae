#include "schema/quill3_tree.h"
#include "schema/records.h"
#include "support.h"
#include "support/assert_counter.h"

#include <gtest/gtest.h>

#include <set>

using namespace QUILL3;

namespace {

/// An element of each tag, and functions that try it.
struct Sample {
  const char *name;
  std::string text; ///< the whole element
  XMLTree (*read_and_write) (const XMLTree &tree, AString *err);
  bool (*has) (const XMLTree &tree);
};

template <class T, auto get, auto make>
XMLTree read_and_write (const XMLTree &tree, AString *err) {
  T value{};
  return get (tree, &value, err) ? make (value) : XMLTree ();
}

// What is inside a ConfigurationItem.
const std::string one_value = "<ConfigurationItemValue>a b</ConfigurationItemValue>";
const std::string two_values = one_value + one_value;
std::string configuration_item (const std::string &access, const std::string &allowed_values) {
  return "<ConfigurationItemName>a b</ConfigurationItemName>" + element ("ConfigurationItemAccess", access) +
         "<ConfigurationItemEffectiveValue>a b</ConfigurationItemEffectiveValue>"
         "<ConfigurationItemBootValue>a b</ConfigurationItemBootValue>"
         "<ConfigurationItemSavedValue>a b</ConfigurationItemSavedValue>" +
         element ("ConfigurationItemAllowedValues", allowed_values);
}

// A tag and what is inside its element.
#define SAMPLE(name, inside)                                                                                 \
  { #name, element(#name, inside), read_and_write < tag_type::name, get_##name, make_##name>, has_##name }

const Sample samples[] = {
    SAMPLE (AlertName, "a b"),
    SAMPLE (AlertNameDescription, "a b"),
    SAMPLE (AlertValueDescription, "a b"),
    SAMPLE (ChaseFromID, "a b"),
    SAMPLE (ChaseID, "a b"),
    SAMPLE (ChaseToID, "a b"),
    SAMPLE (ClipFileType, "a b"),
    SAMPLE (ClipID, "a b"),
    SAMPLE (ClipUUID, "a b"),
    SAMPLE (CompressionASymbol, "a b"),
    SAMPLE (CompressionKSymbol, "a b"),
    SAMPLE (CompressionVSymbol, "a b"),
    SAMPLE (ComputerName, "a b"),
    SAMPLE (ConfigurationItemBootValue, "a b"),
    SAMPLE (ConfigurationItemEffectiveValue, "a b"),
    SAMPLE (ConfigurationItemName, "a b"),
    SAMPLE (ConfigurationItemSavedValue, "a b"),
    SAMPLE (ConfigurationItemValue, "a b"),
    SAMPLE (Creator, "a b"),
    SAMPLE (DebugString, "a b"),
    SAMPLE (DirectoryName, "a b"),
    SAMPLE (ErrorMessage, "a b"),
    SAMPLE (Filename, "a b"),
    SAMPLE (FromDir, "a b"),
    SAMPLE (FromID, "a b"),
    SAMPLE (ID8, "a b"),
    SAMPLE (Key, "a b"),
    SAMPLE (ListFromID, "a b"),
    SAMPLE (ListID, "a b"),
    SAMPLE (ListToID, "a b"),
    SAMPLE (LogClient, "a b"),
    SAMPLE (LogFilename, "a b"),
    SAMPLE (LogText, "a b"),
    SAMPLE (MeltLabel, "a b"),
    SAMPLE (MetadataDatabase, "a b"),
    SAMPLE (MetadataPrefix, "a b"),
    SAMPLE (ParentClipID, "a b"),
    SAMPLE (ParentUUID, "a b"),
    SAMPLE (Project, "a b"),
    SAMPLE (SVNPath, "a b"),
    SAMPLE (SVNVersion, "a b"),
    SAMPLE (StealClient, "a b"),
    SAMPLE (Title, "a b"),
    SAMPLE (ToDir, "a b"),
    SAMPLE (ToID, "a b"),
    SAMPLE (VClipID, "a b"),
    SAMPLE (Value, "a b"),
    SAMPLE (VolatileFileInfo, "a b"),
    SAMPLE (xid, "a b"),
    SAMPLE (Angle, "200"),
    SAMPLE (AngleCount, "200"),
    SAMPLE (AudioTrackCount, "200"),
    SAMPLE (ChaseIndex, "65535"),
    SAMPLE (ListIndex, "65535"),
    SAMPLE (SonyEditMask, "65535"),
    SAMPLE (ClipLength, "4294967295"),
    SAMPLE (ClipLengthUntrimmed, "4294967295"),
    SAMPLE (ClipPosition, "4294967295"),
    SAMPLE (ClipStartOffset, "4294967295"),
    SAMPLE (CompressionBitrate, "4294967295"),
    SAMPLE (CompressionCSize, "4294967295"),
    SAMPLE (CompressionKSize, "4294967295"),
    SAMPLE (CompressionYSize, "4294967295"),
    SAMPLE (FieldSize, "4294967295"),
    SAMPLE (GotoPosition, "4294967295"),
    SAMPLE (ISOCount, "4294967295"),
    SAMPLE (LogLine, "4294967295"),
    SAMPLE (LoopIn, "4294967295"),
    SAMPLE (LoopOut, "4294967295"),
    SAMPLE (MeltClientID, "4294967295"),
    SAMPLE (MeltElementID, "4294967295"),
    SAMPLE (MeltInPoint, "4294967295"),
    SAMPLE (MeltListID, "4294967295"),
    SAMPLE (MeltOutPoint, "4294967295"),
    SAMPLE (PrecueCount, "4294967295"),
    SAMPLE (SSMSpeed, "4294967295"),
    SAMPLE (TcStartTrigger, "4294967295"),
    SAMPLE (Temperature10, "4294967295"),
    SAMPLE (TimeDelay, "4294967295"),
    SAMPLE (TransitionDuration, "4294967295"),
    SAMPLE (TrimEnd, "4294967295"),
    SAMPLE (TrimStart, "4294967295"),
    SAMPLE (VClipPosition, "4294967295"),
    SAMPLE (AvailableDiskSpace, "18446744073709551615"),
    SAMPLE (ContentEditStamp, "18446744073709551615"),
    SAMPLE (LoadedStamp, "18446744073709551615"),
    SAMPLE (MetaEditStamp, "18446744073709551615"),
    SAMPLE (PlayedStamp, "18446744073709551615"),
    SAMPLE (TotalDiskSpace, "18446744073709551615"),
    SAMPLE (UnloadedStamp, "18446744073709551615"),
    SAMPLE (FieldNumber, "-2147483648"),
    SAMPLE (JogDistance, "-2147483648"),
    SAMPLE (VClipDistance, "-2147483648"),
    SAMPLE (NaturalSpeed, "-0.5X"),
    SAMPLE (Speed, "-0.5X"),
    SAMPLE (AutoEE, "true"),
    SAMPLE (CompressionAFrameBased, "true"),
    SAMPLE (CompressionKFrameBased, "true"),
    SAMPLE (CompressionVFrameBased, "true"),
    SAMPLE (Exists, "true"),
    SAMPLE (ReadOnly, "true"),
    SAMPLE (ReadOnlyContent, "true"),
    SAMPLE (ReadOnlyMeta, "true"),
    SAMPLE (StealSwapped, "true"),
    SAMPLE (TransitionInProgress, "true"),
    SAMPLE (Valid, "true"),
    SAMPLE (AlertingLevel, "error"),
    SAMPLE (AlertingPriority, "malfunction"),
    SAMPLE (Channel, "L"),
    SAMPLE (ChannelReportType, "aux_audio_timecode"),
    SAMPLE (ChannelStatus, "timedelay"),
    SAMPLE (ChaseElementAtEnd, "loop"),
    SAMPLE (ClipScope, "vclip"),
    SAMPLE (CompressionType, "xavc"),
    SAMPLE (ConfigurationItemAccess, "eng"),
    SAMPLE (DropFrameFlag, "ndf"),
    SAMPLE (ErrorCode, "configvalue_invalid"),
    SAMPLE (FollowSpeed, "follow"),
    SAMPLE (Interp, "off"),
    SAMPLE (Layer, "bed"),
    SAMPLE (ListElementAtEnd, "loop"),
    SAMPLE (ListElementAtStart, "pause"),
    SAMPLE (ListPlayMode, "pgm_pvw"),
    SAMPLE (Loop, "record"),
    SAMPLE (ModifiedFlag, "modified"),
    SAMPLE (PlayOrRecord, "record"),
    SAMPLE (Playback, "f12"),
    SAMPLE (PrecueCondition, "end_of_clip2"),
    SAMPLE (ReferenceSource, "freerun"),
    SAMPLE (ReportType, "ltc_input"),
    SAMPLE (Roll, "roll"),
    SAMPLE (SpecialClipType, "ssm3"),
    SAMPLE (StealStatus, "export"),
    SAMPLE (TimecodeSource, "rec0_stripe"),
    SAMPLE (TrackType, "timecode"),
    SAMPLE (TransitionType, "dissolve"),
    SAMPLE (VideoRate, "23_98"),
    SAMPLE (VideoResolution, "525i"),
    SAMPLE (VideoStandard, "525_59_94i"),
    SAMPLE (ProgramChannel, "L"),
    SAMPLE (PreviewChannel, "L"),
    SAMPLE (Alert, "<AlertingPriority>malfunction</AlertingPriority><AlertingLevel>error</AlertingLevel>"
                   "<AlertName>a b</AlertName><AlertNameDescription>a b</AlertNameDescription>"
                   "<AlertValueDescription>a b</AlertValueDescription>"),
    SAMPLE (ChannelInformation, "<ClipID>a b</ClipID>"),
    SAMPLE (ChannelListID, "<Channel>L</Channel><ListID>a b</ListID>"),
    SAMPLE (ChaseElement, "<ContentID />"),
    SAMPLE (ChaseElementChange, ""),
    SAMPLE (ChasePlaybackIndex, ""),
    SAMPLE (ClipAttrChange, ""),
    SAMPLE (ClipInfo,
            "<ClipID>a b</ClipID><VideoStandard>525_59_94i</VideoStandard><TrackInfoVector>"
            "<TrackInfo><TrackType>timecode</TrackType></TrackInfo><TrackInfo>"
            "<TrackType>video</TrackType></TrackInfo></TrackInfoVector><Title>a b</Title>"
            "<Creator>a b</Creator><Project>a b</Project><Playback>f12</Playback><Interp>off</Interp>"
            "<Loop>record</Loop><LoopOut>4294967295</LoopOut><LoopIn>4294967295</LoopIn>"
            "<ClipLength>4294967295</ClipLength><TimecodeSource>rec0_stripe</TimecodeSource>"
            "<StripeTimecode><Valid>true</Valid></StripeTimecode><ReadOnly>true</ReadOnly>"),
    SAMPLE (CompressionInfo,
            "<CompressionYSize>4294967295</CompressionYSize>"
            "<CompressionCSize>4294967295</CompressionCSize>"
            "<CompressionKSize>4294967295</CompressionKSize><AudioTrackCount>200</AudioTrackCount>"
            "<CompressionVSymbol>a b</CompressionVSymbol><CompressionKSymbol>a b</CompressionKSymbol>"
            "<CompressionASymbol>a b</CompressionASymbol>"),
    SAMPLE (ConfigurationItem, configuration_item ("eng", two_values)),
    SAMPLE (ContentID, ""),
    SAMPLE (DiskSpaceChange, "<TotalDiskSpace>18446744073709551615</TotalDiskSpace>"
                             "<AvailableDiskSpace>18446744073709551615</AvailableDiskSpace>"),
    SAMPLE (EEStatus, "<SonyEditMask>65535</SonyEditMask><AutoEE>true</AutoEE>"),
    SAMPLE (ListElement, "<ContentID />"),
    SAMPLE (ListElementChange, ""),
    SAMPLE (ListPlaybackIndex, ""),
    SAMPLE (MeltFlags, "<MeltClientID>4294967295</MeltClientID>"),
    SAMPLE (MeltItem, "<MeltClientID>4294967295</MeltClientID><MeltListID>4294967295</MeltListID>"
                      "<MeltElementID>4294967295</MeltElementID><ClipID>a b</ClipID>"
                      "<MeltInPoint>4294967295</MeltInPoint><MeltOutPoint>4294967295</MeltOutPoint>"),
    SAMPLE (Metadata, "<Key>a b</Key><Value>a b</Value>"),
    SAMPLE (SmallTimecode, ""),
    SAMPLE (Timecode, "<Valid>true</Valid>"),
    SAMPLE (TrackAttr, ""),
    SAMPLE (TrackInfo, "<TrackType>timecode</TrackType>"),
    SAMPLE (Transition, "<TransitionType>dissolve</TransitionType>"),
    SAMPLE (DisplayTimecode, "<Valid>true</Valid>"),
    SAMPLE (InputTimecode, "<Valid>true</Valid>"),
    SAMPLE (StripeTimecode, "<Valid>true</Valid>"),
    SAMPLE (Frame0Timecode, ""),
    SAMPLE (ChannelReportSet, "<ChannelReportType>aux_audio_timecode</ChannelReportType>"
                              "<ChannelReportType>status</ChannelReportType>"),
    SAMPLE (ChannelSet, "<Channel>L</Channel><Channel>A</Channel>"),
    SAMPLE (ConfigurationChange, element ("ConfigurationItem", configuration_item ("eng", two_values)) +
                                     element ("ConfigurationItem", configuration_item ("user", one_value))),
    SAMPLE (ConfigurationItemAllowedValues, two_values),
    SAMPLE (KeyList, "<Key>a b</Key><Key>a b</Key>"),
    SAMPLE (MetadataList, "<Metadata><Key>a b</Key><Value>a b</Value></Metadata><Metadata><Key>a b</Key>"
                          "<Value>a b</Value></Metadata>"),
    SAMPLE (ReportSet, "<ReportType>ltc_input</ReportType><ReportType>clip_change</ReportType>"),
    SAMPLE (TrackAttrVector, "<TrackAttr /><TrackAttr />"),
    SAMPLE (TrackInfoVector, "<TrackInfo><TrackType>timecode</TrackType></TrackInfo><TrackInfo>"
                             "<TrackType>video</TrackType></TrackInfo>"),
    SAMPLE (TrackSet, "<TrackType>timecode</TrackType><TrackType>video</TrackType>"),
};
#undef SAMPLE

struct FlagSample {
  const char *name;
  XMLTree (*make) ();
  bool (*get) (const XMLTree &tree, bool *value, AString *err);
  bool (*has) (const XMLTree &tree);
};

#define SAMPLE(name)                                                                                         \
  { #name, make_##name, get_##name, has_##name }
const FlagSample flags[] = {
    SAMPLE (BlackOnCue),
    SAMPLE (ConfigurationItemRequiresReboot),
    SAMPLE (LogError),
    SAMPLE (MeltFlagInhibitElementNumbering),
    SAMPLE (MeltFlagInhibitListNumbering),
    SAMPLE (MeltFlagInhibitPortNumbering),
    SAMPLE (MeltFlagInhibitTimecodeNumbering),
    SAMPLE (MeltFlagInhibitUserInteraction),
    SAMPLE (MinLatency),
};
#undef SAMPLE

/// What a failed read says; "-" when it does not fail.
template <class T>
std::string failure_of (bool (*get) (const XMLTree &, T *, AString *), const std::string &text) {
  T value{};
  AString err;
  return get (parsed (text), &value, &err) ? "-" : err.to_std_string ();
}

template <class T>
T value_of (bool (*get) (const XMLTree &, T *, AString *), const std::string &text) {
  T value{};
  AString err ("untouched");
  EXPECT_TRUE (get (parsed (text), &value, &err)) << text << ": " << err.to_std_string ();
  EXPECT_EQ (err.to_std_string (), "untouched");
  return value;
}

TEST (Tags, AreCounted) {
  EXPECT_EQ (tag_count, 188u);
  EXPECT_EQ (std::size (samples) + std::size (flags), 188u);
  EXPECT_EQ (word_boolean ().to_std_string (), "boolean");
  EXPECT_EQ (word_true ().to_std_string (), "true");
  EXPECT_EQ (word_false ().to_std_string (), "false");
}

TEST (Tags, NamesAreConstantsAndDiffer) {
  std::set<std::string> names;
  for (uint32_t i = 0; i < tag_count; ++i)
    names.insert (tag_names ()[i].to_std_string ());
  EXPECT_EQ (names.size (), 188u);
  for (const Sample &sample : samples)
    EXPECT_TRUE (names.contains (sample.name)) << sample.name;
  for (const FlagSample &flag : flags)
    EXPECT_TRUE (names.contains (flag.name)) << flag.name;
  EXPECT_EQ (tag_name (Tag::ClipID).to_std_string (), "ClipID");
  EXPECT_EQ (&tag_name (Tag::ClipID), &tag_name (Tag::ClipID));
  EXPECT_TRUE (make_ClipID ("x").name ().shares_store_with (tag_name (Tag::ClipID)));
}

// Other files' initialisers may run before those of the tables.
const std::string used_at_load = tag_name (Tag::ClipID).to_std_string () + word_true ().to_std_string () +
                                 Loop_to_string (3).to_std_string ();

TEST (Tags, AreThereForInitialisersOfOtherFiles) {
  EXPECT_EQ (used_at_load, "ClipIDtruepingpong");
}

TEST (Tags, EachIsReadAndWrittenAgain) {
  for (const Sample &sample : samples) {
    AString err ("untouched");
    EXPECT_EQ (written (sample.read_and_write (parsed (sample.text), &err)), sample.text);
    const std::string within = std::string ("<parent><x>1</x>") + sample.text + "</parent>";
    EXPECT_EQ (written (sample.read_and_write (parsed (within), &err)), sample.text);
    EXPECT_EQ (err.to_std_string (), "untouched");
    EXPECT_TRUE (sample.has (parsed (within))) << sample.name;
  }
}

TEST (Tags, EachIsMissedAndFoundDoubled) {
  for (const Sample &sample : samples) {
    const std::string name (sample.name), text (sample.text);
    AString err;
    EXPECT_TRUE (sample.read_and_write (parsed ("<parent />"), &err).is_null ()) << name;
    EXPECT_EQ (err.to_std_string (), "Tag '" + name + "' not found within 'parent'");
    EXPECT_TRUE (
        sample.read_and_write (parsed ("<parent>" + text + "<x />" + text + "</parent>"), &err).is_null ());
    EXPECT_EQ (err.to_std_string (), "More than one tag '" + name + "' found within 'parent'");
    EXPECT_TRUE (sample.read_and_write (parsed ("<parent />"), nullptr).is_null ()) << name;
    EXPECT_FALSE (sample.has (parsed ("<parent><x>" + text + "</x></parent>"))) << name;
    EXPECT_FALSE (sample.has (parsed (text))) << name;
  }
}

TEST (Tags, TheNullTreeHoldsNone) {
  AString err, value;
  EXPECT_FALSE (get_ClipID (XMLTree (), &value, &err));
  EXPECT_EQ (err.to_std_string (), "Tag 'ClipID' not found within ''");
  EXPECT_FALSE (has_ClipID (XMLTree ()));
}

TEST (Tags, FlagsCountByPresenceAlone) {
  for (const FlagSample &flag : flags) {
    const std::string name (flag.name);
    EXPECT_EQ (written (flag.make ()), "<" + name + " />");
    bool value = false;
    AString err ("untouched");
    EXPECT_TRUE (flag.get (parsed ("<parent><" + name + ">false</" + name + "></parent>"), &value, &err));
    EXPECT_TRUE (value) << name;
    EXPECT_TRUE (flag.get (parsed ("<parent><" + name + " /><" + name + " /></parent>"), &value, &err));
    EXPECT_TRUE (value) << name;
    EXPECT_TRUE (flag.get (parsed ("<parent />"), &value, &err));
    EXPECT_FALSE (value) << name;
    EXPECT_EQ (err.to_std_string (), "untouched");
    EXPECT_TRUE (flag.has (parsed ("<parent><" + name + " /></parent>"))) << name;
  }
}

TEST (Tags, ATreeOfTheNameIsTheTag) {
  EXPECT_EQ (value_of (get_ClipID, "<ClipID>A</ClipID>").to_std_string (), "A");
  EXPECT_EQ (value_of (get_ClipID, "<ClipID><ClipID>inner</ClipID></ClipID>").to_std_string (), "");
  EXPECT_EQ (failure_of (get_ClipID, "<clipid>A</clipid>"), "Tag 'ClipID' not found within 'clipid'");
}

TEST (Tags, ADoubledTagFails) {
  EXPECT_EQ (failure_of (get_ErrorMessage,
                         "<error><ErrorMessage>a</ErrorMessage><ErrorMessage>b</ErrorMessage></error>"),
             "More than one tag 'ErrorMessage' found within 'error'");
}

TEST (FindOne, GivesTheElement) {
  const XMLTree tree = parsed ("<a><b>1</b><c /></a>");
  XMLTree out;
  AString err ("untouched");
  EXPECT_TRUE (find_one (tree, "b", &out, &err));
  EXPECT_EQ (written (out), "<b>1</b>");
  EXPECT_TRUE (find_one (tree, "a", &out, nullptr));
  EXPECT_EQ (written (out), "<a><b>1</b><c /></a>");
  EXPECT_TRUE (find_one (tree, "c", static_cast<XMLTree *> (nullptr), &err));
  EXPECT_EQ (err.to_std_string (), "untouched");
}

TEST (FindOne, LeavesTheElementAloneOnFailure) {
  XMLTree out = parsed ("<kept />");
  AString err;
  EXPECT_FALSE (find_one (parsed ("<a><b /><b /></a>"), "b", &out, &err));
  EXPECT_EQ (err.to_std_string (), "More than one tag 'b' found within 'a'");
  EXPECT_EQ (written (out), "<kept />");
}

TEST (Texts, AreFilledInOneGo) {
  AString err;
  EXPECT_FALSE (invalid_value (parsed ("<a />"), "%1 %2", &err));
  EXPECT_EQ (err.to_std_string (), "Tag a contains invalid value '%1 %2'");
  EXPECT_FALSE (invalid_typed_value (parsed ("<a />"), "thing", "%3", &err));
  EXPECT_EQ (err.to_std_string (), "Tag a contains invalid thing value '%3'");
  EXPECT_FALSE (find_one (XMLTree ("%1"), "%2", static_cast<XMLTree *> (nullptr), &err));
  EXPECT_EQ (err.to_std_string (), "Tag '%2' not found within '%1'");
  EXPECT_FALSE (invalid_value (parsed ("<a />"), "x", nullptr));
  EXPECT_FALSE (invalid_typed_value (parsed ("<a />"), "x", "y", nullptr));
}

TEST (Strings, AreNotStripped) {
  EXPECT_EQ (value_of (get_ClipID, "<ClipID> a </ClipID>").to_std_string (), " a ");
  EXPECT_EQ (value_of (get_xid, "<reply><xid> 7 </xid></reply>").to_std_string (), " 7 ");
  EXPECT_EQ (written (make_ClipID (" a ")), "<ClipID> a </ClipID>");
  EXPECT_EQ (written (make_ClipID ("")), "<ClipID />");
  EXPECT_EQ (value_of (get_ClipID, "<ClipID />").to_std_string (), "");
  EXPECT_EQ (stripped_text (parsed ("<a> \t b c\r\n</a>")).to_std_string (), "b c");
}

TEST (Numbers, AreStripped) {
  EXPECT_EQ (value_of (get_ListIndex, "<ListIndex> 12 </ListIndex>"), 12);
  EXPECT_EQ (value_of (get_Angle, "<Angle>\r\n255\t</Angle>"), 255);
  EXPECT_EQ (failure_of (get_ListIndex, "<ListIndex> a </ListIndex>"),
             "Tag ListIndex contains invalid value 'a'");
}

TEST (Numbers, AreRefusedOutOfRange) {
  EXPECT_EQ (failure_of (get_Angle, "<Angle>256</Angle>"), "Tag Angle contains invalid value '256'");
  EXPECT_EQ (failure_of (get_Angle, "<Angle>-1</Angle>"), "Tag Angle contains invalid value '-1'");
  EXPECT_EQ (failure_of (get_ListIndex, "<ListIndex>65536</ListIndex>"),
             "Tag ListIndex contains invalid value '65536'");
  EXPECT_EQ (failure_of (get_LoopIn, "<LoopIn>-1</LoopIn>"), "Tag LoopIn contains invalid value '-1'");
  EXPECT_EQ (failure_of (get_LoopIn, "<LoopIn>4294967296</LoopIn>"),
             "Tag LoopIn contains invalid value '4294967296'");
  EXPECT_EQ (failure_of (get_PlayedStamp, "<PlayedStamp>18446744073709551616</PlayedStamp>"),
             "Tag PlayedStamp contains invalid value '18446744073709551616'");
  EXPECT_EQ (failure_of (get_FieldNumber, "<FieldNumber>2147483648</FieldNumber>"),
             "Tag FieldNumber contains invalid value '2147483648'");
}

TEST (Numbers, AreReadAsTextIs) {
  EXPECT_EQ (value_of (get_FieldNumber, "<FieldNumber>-1</FieldNumber>"), -1);
  EXPECT_EQ (value_of (get_FieldNumber, "<FieldNumber>+5</FieldNumber>"), 5);
  EXPECT_EQ (value_of (get_LoopIn, "<LoopIn>0x1A</LoopIn>"), 20u);
  EXPECT_EQ (value_of (get_LoopIn, "<LoopIn>007</LoopIn>"), 7u);
  EXPECT_EQ (failure_of (get_LoopIn, "<LoopIn />"), "Tag LoopIn contains invalid value ''");
  EXPECT_EQ (failure_of (get_LoopIn, "<LoopIn>  </LoopIn>"), "Tag LoopIn contains invalid value ''");
  EXPECT_EQ (failure_of (get_LoopIn, "<LoopIn>+5</LoopIn>"), "Tag LoopIn contains invalid value '+5'");
  EXPECT_EQ (failure_of (get_LoopIn, "<LoopIn>12a</LoopIn>"), "Tag LoopIn contains invalid value '12a'");
}

TEST (Numbers, AreWrittenWithoutPadding) {
  EXPECT_EQ (written (make_Angle (0)), "<Angle>0</Angle>");
  EXPECT_EQ (written (make_Angle (255)), "<Angle>255</Angle>");
  EXPECT_EQ (written (make_SonyEditMask (1023)), "<SonyEditMask>1023</SonyEditMask>");
  EXPECT_EQ (written (make_LoopIn (4294967295u)), "<LoopIn>4294967295</LoopIn>");
  EXPECT_EQ (written (make_PlayedStamp (UINT64_MAX)), "<PlayedStamp>18446744073709551615</PlayedStamp>");
  EXPECT_EQ (written (make_JogDistance (-1)), "<JogDistance>-1</JogDistance>");
  EXPECT_EQ (written (make_JogDistance (INT32_MIN)), "<JogDistance>-2147483648</JogDistance>");
}

TEST (Fixed, IsRead) {
  const struct {
    const char *text;
    int32_t raw;
  } rows[] = {{"1.5X", 0x18000}, {"98304", 0x18000},     {"-1X", -65536},
              {".5X", 32768},    {"65536", 65536},       {" 1X ", 65536},
              {"+1X", 65536},    {"-32768X", INT32_MIN}, {"2.X", 131072},
              {"X", 0},          {"4294967295", -1},     {"-98304", -98304},
              {"-.5X", -32768},  {"32767X", 0x7fff0000}, {"0.0000152587890625X", 1},
              {"0.00001525X", 0}};
  for (const auto &row : rows)
    EXPECT_EQ (value_of (get_Speed, std::string ("<Speed>") + row.text + "</Speed>").raw, row.raw)
        << row.text;
}

TEST (Fixed, IsRefusedWithoutAnAssertion) {
  AssertCounter failures;
  for (const char *text : {"fast", "32768X", "-32769X", "0x1.0X", "1.0x0X", "1.aX", "1.2.3X", "1.-5X", "",
                           "1.5", "--1X", "4294967296", "1,5X", "1.5x", "1. 5X"})
    EXPECT_EQ (failure_of (get_Speed, std::string ("<Speed>") + text + "</Speed>"),
               std::string ("Tag Speed contains invalid value '") + text + "'");
  EXPECT_EQ (failures.count (), 0u);
}

TEST (Fixed, IsWritten) {
  const struct {
    int32_t raw;
    const char *text;
  } rows[] = {{65536, "1X"},
              {98304, "1.5X"},
              {-32768, "-0.5X"},
              {65537, "1.000015258789063X"},
              {0, "0X"},
              {-65536, "-1X"},
              {INT32_MIN, "-32768X"},
              {1, "0.000015258789063X"},
              {0x7fffffff, "32767.999984741210938X"}};
  for (const auto &row : rows)
    EXPECT_EQ (written (make_Speed (Kelvane::fixed{row.raw})),
               std::string ("<Speed>") + row.text + "</Speed>");
}

TEST (Bool, IsRead) {
  EXPECT_TRUE (value_of (get_Exists, "<Exists>true</Exists>"));
  EXPECT_FALSE (value_of (get_Exists, "<Exists>false</Exists>"));
  EXPECT_TRUE (value_of (get_Exists, "<Exists> true </Exists>"));
  EXPECT_TRUE (value_of (get_Exists, "<Exists>2</Exists>"));
  EXPECT_TRUE (value_of (get_Exists, "<Exists>-1</Exists>"));
  EXPECT_FALSE (value_of (get_Exists, "<Exists>0</Exists>"));
}

TEST (Bool, IsRefused) {
  EXPECT_EQ (failure_of (get_Exists, "<Exists>TRUE</Exists>"),
             "Tag Exists contains invalid boolean value 'TRUE'");
  EXPECT_EQ (failure_of (get_AutoEE, "<AutoEE> maybe </AutoEE>"),
             "Tag AutoEE contains invalid boolean value 'maybe'");
  EXPECT_EQ (failure_of (get_AutoEE, "<AutoEE />"), "Tag AutoEE contains invalid boolean value ''");
  EXPECT_EQ (failure_of (get_AutoEE, "<AutoEE>4294967296</AutoEE>"),
             "Tag AutoEE contains invalid boolean value '4294967296'");
}

TEST (Bool, IsWritten) {
  EXPECT_EQ (written (make_AutoEE (true)), "<AutoEE>true</AutoEE>");
  EXPECT_EQ (written (make_AutoEE (false)), "<AutoEE>false</AutoEE>");
}

TEST (Enumerated, IsStrippedAndLookedUpInItsOwnTable) {
  EXPECT_EQ (value_of (get_Loop, "<set_loop><Loop> pingpong </Loop></set_loop>"), 3u);
  EXPECT_EQ (value_of (get_Loop, "<Loop>off</Loop>"), 0u);
  EXPECT_EQ (value_of (get_Interp, "<Interp>off</Interp>"), 2u);
  EXPECT_EQ (value_of (get_PreviewChannel, "<PreviewChannel>L</PreviewChannel>"), 11u);
  EXPECT_EQ (value_of (get_DropFrameFlag, "<DropFrameFlag>ndf</DropFrameFlag>"), 1u);
}

TEST (Enumerated, ABadSpellingIsReportedAsTheTagWithinTheEnclosingElement) {
  EXPECT_EQ (failure_of (get_TrackType, "<TrackInfo><TrackType>smell</TrackType></TrackInfo>"),
             "Tag TrackInfo contains invalid value 'TrackType'");
  EXPECT_EQ (failure_of (get_TrackInfo, "<x><TrackInfo><TrackType>smell</TrackType></TrackInfo></x>"),
             "Tag TrackInfo contains invalid value 'TrackType'");
  EXPECT_EQ (failure_of (get_ProgramChannel, "<a><ProgramChannel>Z</ProgramChannel></a>"),
             "Tag a contains invalid value 'Channel'");
  EXPECT_EQ (failure_of (get_PreviewChannel, "<a><PreviewChannel>Z</PreviewChannel></a>"),
             "Tag a contains invalid value 'Channel'");
  EXPECT_EQ (failure_of (get_PreviewChannel, "<a />"), "Tag 'PreviewChannel' not found within 'a'");
  EXPECT_EQ (failure_of (get_Loop, "<Loop>Auto</Loop>"), "Tag Loop contains invalid value 'Loop'");
  EXPECT_EQ (
      failure_of (get_ChannelSet, "<a><ChannelSet><Channel>A</Channel><Channel>Z</Channel></ChannelSet></a>"),
      "Tag Channel contains invalid value 'Channel'");
  EXPECT_EQ (failure_of (get_VideoRate, "<VideoRate />"), "Tag VideoRate contains invalid value 'VideoRate'");
}

TEST (Enumerated, AnUnknownValueIsWrittenAsAnEmptyElement) {
  EXPECT_EQ (written (make_Loop (7)), "<Loop />");
  EXPECT_EQ (written (make_ProgramChannel (UINT32_MAX)), "<ProgramChannel />");
  EXPECT_EQ (written (make_ProgramChannel (2)), "<ProgramChannel>C</ProgramChannel>");
}

std::string channels (unsigned count) {
  std::string text = "<ChannelSet><x /><Channel>B</Channel>";
  for (unsigned i = 1; i < count; ++i)
    text += "<Channel>A</Channel>";
  return text + "</ChannelSet>";
}

TEST (Vectors, AreReadWithDuplicatesUpToTheirCapacity) {
  const ChannelSet set = value_of (get_ChannelSet, channels (12));
  EXPECT_EQ (set.count, 12u);
  EXPECT_EQ (set.vec[0], 1u);
  EXPECT_EQ (set.vec[11], 0u);
  EXPECT_EQ (value_of (get_ChannelSet, "<ChannelSet />").count, 0u);
}

/// An element that holds so many empty ones.
std::string repeated (const std::string &outer, const std::string &inner, unsigned count) {
  std::string text = "<" + outer + ">";
  for (unsigned i = 0; i < count; ++i)
    text += "<" + inner + " />";
  return text + "</" + outer + ">";
}

TEST (Vectors, AreRefusedBeyondItBeforeAnyIsRead) {
  ChannelSet set (5);
  AString err;
  EXPECT_FALSE (get_ChannelSet (parsed (channels (13)), &set, &err));
  EXPECT_EQ (err.to_std_string (), "Tag ChannelSet contains %u subelements. The maximum is 12.");
  EXPECT_EQ (set.count, 0u);
  EXPECT_FALSE (get_ChannelSet (parsed (channels (13)), &set, nullptr));

  const struct {
    std::string failure, expected;
  } rows[] = {
      {failure_of (get_TrackSet, repeated ("TrackSet", "TrackType", 5)),
       "Tag TrackSet contains %u subelements. The maximum is 4."},
      {failure_of (get_ChannelReportSet, repeated ("ChannelReportSet", "ChannelReportType", 9)),
       "Tag ChannelReportSet contains %u subelements. The maximum is 8."},
      {failure_of (get_ReportSet, repeated ("ReportSet", "ReportType", 13)),
       "Tag ReportSet contains %u subelements. The maximum is 12."},
      {failure_of (get_TrackInfoVector, repeated ("TrackInfoVector", "TrackInfo", 18)),
       "Tag TrackInfoVector contains %u subelements. The maximum is 17."},
      {failure_of (get_TrackAttrVector, "<a>" + repeated ("TrackAttrVector", "TrackAttr", 13) + "</a>"),
       "Tag TrackAttrVector contains %u subelements. The maximum is 12."}};
  for (const auto &row : rows)
    EXPECT_EQ (row.failure, row.expected);
}

TEST (Vectors, HaveTheirCapacities) {
  EXPECT_EQ (TrackInfoVector::capacity, 17u);
  EXPECT_EQ (TrackAttrVector::capacity, 12u);
  EXPECT_EQ (ConfigurationItemAllowedValues::capacity, 64u);
  EXPECT_EQ (ChannelSet::capacity, 12u);
  EXPECT_EQ (ReportSet::capacity, 12u);
  EXPECT_EQ (ChannelReportSet::capacity, 8u);
  EXPECT_EQ (TrackSet::capacity, 4u);
  std::string values;
  for (int i = 0; i < 64; ++i)
    values += "<ConfigurationItemValue>v</ConfigurationItemValue>";
  const auto read = [] (const std::string &inner) {
    return failure_of (get_ConfigurationItemAllowedValues,
                       "<ConfigurationItemAllowedValues>" + inner + "</ConfigurationItemAllowedValues>");
  };
  EXPECT_EQ (read (values), "-");
  EXPECT_EQ (read (values + "<ConfigurationItemValue />"),
             "Tag ConfigurationItemAllowedValues contains %u subelements. The maximum is 64.");
}

TEST (Vectors, KeepWhatWasReadBeforeAFailure) {
  TrackInfoVector vector;
  AString err;
  EXPECT_FALSE (get_TrackInfoVector (
      parsed ("<TrackInfoVector><TrackInfo><TrackType>key</TrackType></TrackInfo><TrackInfo />"
              "<TrackInfo><TrackType>key</TrackType></TrackInfo></TrackInfoVector>"),
      &vector, &err));
  EXPECT_EQ (err.to_std_string (), "Tag 'TrackType' not found within 'TrackInfo'");
  EXPECT_EQ (vector.count, 1u);
  EXPECT_EQ (vector.vec[0].TrackType, 1u);
}

TEST (Vectors, AreWrittenUpToTheirCapacity) {
  AssertCounter failures;
  TrackSet set (2);
  set.count = 6;
  EXPECT_EQ (written (make_TrackSet (set)),
             "<TrackSet><TrackType>audio</TrackType><TrackType>video</TrackType><TrackType>video</TrackType>"
             "<TrackType>video</TrackType></TrackSet>");
  EXPECT_EQ (failures.count (), 1u);
  EXPECT_EQ (written (make_TrackSet (TrackSet ())), "<TrackSet />");
}

TEST (Lists, HaveNoLimitAndAreEmptiedFirst) {
  std::string text = "<KeyList>";
  for (int i = 0; i < 1000; ++i)
    text += "<Key>k</Key>";
  KeyList keys{"old"};
  EXPECT_TRUE (get_KeyList (parsed (text + "</KeyList>"), &keys, nullptr));
  EXPECT_EQ (keys.size (), 1000u);
  EXPECT_EQ (keys.front ().to_std_string (), "k");
  EXPECT_TRUE (get_KeyList (parsed ("<KeyList><x /></KeyList>"), &keys, nullptr));
  EXPECT_TRUE (keys.empty ());
  EXPECT_EQ (written (make_KeyList (keys)), "<KeyList />");
}

TEST (Lists, KeepWhatWasReadBeforeAFailure) {
  MetadataList list;
  AString err;
  EXPECT_FALSE (get_MetadataList (parsed ("<MetadataList><Metadata><Key>a</Key><Value>1</Value></Metadata>"
                                          "<Metadata><Key>b</Key></Metadata></MetadataList>"),
                                  &list, &err));
  EXPECT_EQ (err.to_std_string (), "Tag 'Value' not found within 'Metadata'");
  EXPECT_EQ (list, (MetadataList{{"a", "1"}}));
}

TEST (Compounds, AreNamedAsAskedFor) {
  const Timecode timecode{.Valid = true, .FieldNumber = 7};
  EXPECT_EQ (written (make_StripeTimecode (timecode)),
             "<StripeTimecode><Valid>true</Valid><FieldNumber>7</FieldNumber></StripeTimecode>");
  EXPECT_EQ (written (make_Timecode (timecode)),
             "<Timecode><Valid>true</Valid><FieldNumber>7</FieldNumber></Timecode>");
  EXPECT_EQ (value_of (get_InputTimecode,
                       "<InputTimecode><FieldNumber>7</FieldNumber><Valid>1</Valid></InputTimecode>"),
             timecode);
  EXPECT_EQ (failure_of (get_DisplayTimecode, "<DisplayTimecode />"),
             "Tag 'Valid' not found within 'DisplayTimecode'");
}

} // namespace
