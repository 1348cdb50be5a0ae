#include "schema/records.h"
#include "support.h"

#include <gtest/gtest.h>

#include <iterator>
#include <sstream>
#include <string>
#include <vector>

using namespace QUILL3;

namespace {

/// A record: what its members are, two elements that differ in each of them, and what tries it out.
struct Row {
  const char *name;
  uint32_t members;
  const char *required, *optional, *flags;
  const char *full, *other;
  Rows rows;
  std::string (*again) (const XMLTree &tree, AString *err);
  bool (*equal) (const XMLTree &a, const XMLTree &b);
  bool (*equal_after) (const XMLTree &before, const XMLTree &tree);
};

template <class S>
S read (const XMLTree &tree) {
  S value;
  AString err;
  EXPECT_TRUE (read_record (tree, &value, &err)) << written (tree) << ": " << err.to_std_string ();
  return value;
}
template <class S>
std::string again (const XMLTree &tree, AString *err) {
  S value;
  return read_record (tree, &value, err) ? written (XMLTree (tree.name (), write_fields (value)))
                                         : std::string ();
}
template <class S>
bool equal (const XMLTree &a, const XMLTree &b) {
  return read<S> (a) == read<S> (b);
}
// Reads into a value that held something else before.
template <class S>
bool equal_after (const XMLTree &before, const XMLTree &tree) {
  S value = read<S> (before);
  return read_record (tree, &value, nullptr) && value == read<S> (tree);
}

#define ROW(name, members, required, optional, flags, full, other)                                           \
  {                                                                                                          \
#name, members, required, optional, flags, full, other,                                                  \
        rows_of(static_cast <const QUILL3::name *> (nullptr)), again < QUILL3::name>, equal < QUILL3::name>, \
        equal_after < QUILL3::name>                                                                          \
  }

const Row records[] = {
    ROW (SmallTimecode, 2, "", "FieldNumber DropFrameFlag", "",
         "<SmallTimecode><FieldNumber>-2147483648</FieldNumber><DropFrameFlag>ndf</DropFrameFlag>"
         "</SmallTimecode>",
         "<SmallTimecode><FieldNumber>42</FieldNumber><DropFrameFlag>df</DropFrameFlag></SmallTimecode>"),
    ROW (Timecode, 4, "Valid", "VideoStandard FieldNumber DropFrameFlag", "",
         "<Timecode><Valid>true</Valid><VideoStandard>525_59_94i</VideoStandard>"
         "<FieldNumber>-2147483648</FieldNumber><DropFrameFlag>ndf</DropFrameFlag></Timecode>",
         "<Timecode><Valid>false</Valid><VideoStandard>4K_60p</VideoStandard><FieldNumber>42</FieldNumber>"
         "<DropFrameFlag>df</DropFrameFlag></Timecode>"),
    ROW (TrackInfo, 2, "TrackType", "TrimStart", "",
         "<TrackInfo><TrackType>timecode</TrackType><TrimStart>4294967295</TrimStart></TrackInfo>",
         "<TrackInfo><TrackType>video</TrackType><TrimStart>40</TrimStart></TrackInfo>"),
    ROW (TrackAttr, 2, "", "TrackType TrimStart", "",
         "<TrackAttr><TrackType>timecode</TrackType><TrimStart>4294967295</TrimStart></TrackAttr>",
         "<TrackAttr><TrackType>video</TrackType><TrimStart>40</TrimStart></TrackAttr>"),
    ROW (Metadata, 2, "Key Value", "", "", "<Metadata><Key>a b</Key><Value>a b</Value></Metadata>",
         "<Metadata><Key>c</Key><Value>c</Value></Metadata>"),
    ROW (ClipInfo, 37,
         "ClipID VideoStandard TrackInfoVector Title Creator Project Playback Interp Loop LoopOut LoopIn "
         "ClipLength TimecodeSource StripeTimecode ReadOnly",
         "ID8 ReadOnlyMeta ReadOnlyContent MetadataList SpecialClipType ISOCount SSMSpeed CompressionBitrate "
         "Frame0Timecode TrimStart TrimEnd ClipLengthUntrimmed CompressionType ClipUUID ParentUUID Angle "
         "LoadedStamp UnloadedStamp PlayedStamp MetaEditStamp ContentEditStamp ClipFileType",
         "",
         "<ClipInfo><ClipID>a b</ClipID><VideoStandard>525_59_94i</VideoStandard><TrackInfoVector><TrackInfo>"
         "<TrackType>timecode</TrackType><TrimStart>4294967295</TrimStart></TrackInfo><TrackInfo>"
         "<TrackType>video</TrackType><TrimStart>40</TrimStart></TrackInfo></TrackInfoVector><Title>a "
         "b</Title>"
         "<Creator>a b</Creator><Project>a b</Project><Playback>f12</Playback><Interp>off</Interp>"
         "<Loop>record</Loop><LoopOut>4294967295</LoopOut><LoopIn>4294967295</LoopIn>"
         "<ClipLength>4294967295</ClipLength><TimecodeSource>rec0_stripe</TimecodeSource><StripeTimecode>"
         "<Valid>true</Valid><VideoStandard>525_59_94i</VideoStandard><FieldNumber>-2147483648</FieldNumber>"
         "<DropFrameFlag>ndf</DropFrameFlag></StripeTimecode><ReadOnly>true</ReadOnly><ID8>a b</ID8>"
         "<ReadOnlyMeta>true</ReadOnlyMeta><ReadOnlyContent>true</ReadOnlyContent><MetadataList><Metadata>"
         "<Key>a b</Key><Value>a b</Value></Metadata><Metadata><Key>a b</Key><Value>a b</Value></Metadata>"
         "</MetadataList><SpecialClipType>ssm3</SpecialClipType><ISOCount>4294967295</ISOCount>"
         "<SSMSpeed>4294967295</SSMSpeed><CompressionBitrate>4294967295</CompressionBitrate><Frame0Timecode>"
         "<FieldNumber>-2147483648</FieldNumber><DropFrameFlag>ndf</DropFrameFlag></Frame0Timecode>"
         "<TrimStart>4294967295</TrimStart><TrimEnd>4294967295</TrimEnd>"
         "<ClipLengthUntrimmed>4294967295</ClipLengthUntrimmed><CompressionType>xavc</CompressionType>"
         "<ClipUUID>a b</ClipUUID><ParentUUID>a b</ParentUUID><Angle>200</Angle>"
         "<LoadedStamp>18446744073709551615</LoadedStamp><UnloadedStamp>18446744073709551615</UnloadedStamp>"
         "<PlayedStamp>18446744073709551615</PlayedStamp><MetaEditStamp>18446744073709551615</MetaEditStamp>"
         "<ContentEditStamp>18446744073709551615</ContentEditStamp><ClipFileType>a "
         "b</ClipFileType></ClipInfo>",
         "<ClipInfo><ClipID>c</ClipID><VideoStandard>4K_60p</VideoStandard><TrackInfoVector><TrackInfo>"
         "<TrackType>video</TrackType><TrimStart>40</TrimStart></TrackInfo></TrackInfoVector><Title>c</Title>"
         "<Creator>c</Creator><Project>c</Project><Playback>auto</Playback><Interp>auto</Interp>"
         "<Loop>off</Loop><LoopOut>40</LoopOut><LoopIn>40</LoopIn><ClipLength>40</ClipLength>"
         "<TimecodeSource>zerobased</TimecodeSource><StripeTimecode><Valid>false</Valid>"
         "<VideoStandard>4K_60p</VideoStandard><FieldNumber>42</FieldNumber><DropFrameFlag>df</DropFrameFlag>"
         "</StripeTimecode><ReadOnly>false</ReadOnly><ID8>c</ID8><ReadOnlyMeta>false</ReadOnlyMeta>"
         "<ReadOnlyContent>false</ReadOnlyContent><MetadataList><Metadata><Key>c</Key><Value>c</Value>"
         "</Metadata></MetadataList><SpecialClipType>normal</SpecialClipType><ISOCount>40</ISOCount>"
         "<SSMSpeed>40</SSMSpeed><CompressionBitrate>40</CompressionBitrate><Frame0Timecode>"
         "<FieldNumber>42</FieldNumber><DropFrameFlag>df</DropFrameFlag></Frame0Timecode>"
         "<TrimStart>40</TrimStart><TrimEnd>40</TrimEnd><ClipLengthUntrimmed>40</ClipLengthUntrimmed>"
         "<CompressionType>jpeg2000</CompressionType><ClipUUID>c</ClipUUID><ParentUUID>c</ParentUUID>"
         "<Angle>7</Angle><LoadedStamp>41</LoadedStamp><UnloadedStamp>41</UnloadedStamp>"
         "<PlayedStamp>41</PlayedStamp><MetaEditStamp>41</MetaEditStamp><ContentEditStamp>41</"
         "ContentEditStamp>"
         "<ClipFileType>c</ClipFileType></ClipInfo>"),
    ROW (ClipAttrChange, 17, "",
         "ID8 Title Creator Project Playback Interp Loop LoopOut LoopIn TimecodeSource StripeTimecode "
         "MetadataList KeyList TrimStart TrimEnd TrackAttrVector Frame0Timecode",
         "",
         "<ClipAttrChange><ID8>a b</ID8><Title>a b</Title><Creator>a b</Creator><Project>a b</Project>"
         "<Playback>f12</Playback><Interp>off</Interp><Loop>record</Loop><LoopOut>4294967295</LoopOut>"
         "<LoopIn>4294967295</LoopIn><TimecodeSource>rec0_stripe</TimecodeSource><StripeTimecode>"
         "<Valid>true</Valid><VideoStandard>525_59_94i</VideoStandard><FieldNumber>-2147483648</FieldNumber>"
         "<DropFrameFlag>ndf</DropFrameFlag></StripeTimecode><MetadataList><Metadata><Key>a b</Key>"
         "<Value>a b</Value></Metadata><Metadata><Key>a b</Key><Value>a b</Value></Metadata></MetadataList>"
         "<KeyList><Key>a b</Key><Key>a b</Key></KeyList><TrimStart>4294967295</TrimStart>"
         "<TrimEnd>4294967295</TrimEnd><TrackAttrVector><TrackAttr><TrackType>timecode</TrackType>"
         "<TrimStart>4294967295</TrimStart></TrackAttr><TrackAttr><TrackType>video</TrackType>"
         "<TrimStart>40</TrimStart></TrackAttr></TrackAttrVector><Frame0Timecode>"
         "<FieldNumber>-2147483648</FieldNumber><DropFrameFlag>ndf</DropFrameFlag></Frame0Timecode>"
         "</ClipAttrChange>",
         "<ClipAttrChange><ID8>c</ID8><Title>c</Title><Creator>c</Creator><Project>c</Project>"
         "<Playback>auto</Playback><Interp>auto</Interp><Loop>off</Loop><LoopOut>40</LoopOut>"
         "<LoopIn>40</LoopIn><TimecodeSource>zerobased</TimecodeSource><StripeTimecode><Valid>false</Valid>"
         "<VideoStandard>4K_60p</VideoStandard><FieldNumber>42</FieldNumber><DropFrameFlag>df</DropFrameFlag>"
         "</StripeTimecode><MetadataList><Metadata><Key>c</Key><Value>c</Value></Metadata></MetadataList>"
         "<KeyList><Key>c</Key></KeyList><TrimStart>40</TrimStart><TrimEnd>40</TrimEnd><TrackAttrVector>"
         "<TrackAttr><TrackType>video</TrackType><TrimStart>40</TrimStart></TrackAttr></TrackAttrVector>"
         "<Frame0Timecode><FieldNumber>42</FieldNumber><DropFrameFlag>df</DropFrameFlag></Frame0Timecode>"
         "</ClipAttrChange>"),
    ROW (EEStatus, 2, "SonyEditMask AutoEE", "", "",
         "<EEStatus><SonyEditMask>65535</SonyEditMask><AutoEE>true</AutoEE></EEStatus>",
         "<EEStatus><SonyEditMask>12</SonyEditMask><AutoEE>false</AutoEE></EEStatus>"),
    ROW (
        ChannelInformation, 17, "ClipID",
        "ClipLength Interp Loop LoopIn LoopOut Playback AngleCount Angle AudioTrackCount EEStatus "
        "ProgramChannel PreviewChannel PrecueCount StealStatus TransitionInProgress NaturalSpeed",
        "",
        "<ChannelInformation><ClipID>a b</ClipID><ClipLength>4294967295</ClipLength><Interp>off</Interp>"
        "<Loop>record</Loop><LoopIn>4294967295</LoopIn><LoopOut>4294967295</LoopOut><Playback>f12</Playback>"
        "<AngleCount>200</AngleCount><Angle>200</Angle><AudioTrackCount>200</AudioTrackCount><EEStatus>"
        "<SonyEditMask>65535</SonyEditMask><AutoEE>true</AutoEE></EEStatus><ProgramChannel>L</ProgramChannel>"
        "<PreviewChannel>L</PreviewChannel><PrecueCount>4294967295</PrecueCount>"
        "<StealStatus>export</StealStatus><TransitionInProgress>true</TransitionInProgress>"
        "<NaturalSpeed>-0.5X</NaturalSpeed></ChannelInformation>",
        "<ChannelInformation><ClipID>c</ClipID><ClipLength>40</ClipLength><Interp>auto</Interp>"
        "<Loop>off</Loop><LoopIn>40</LoopIn><LoopOut>40</LoopOut><Playback>auto</Playback>"
        "<AngleCount>7</AngleCount><Angle>7</Angle><AudioTrackCount>7</AudioTrackCount><EEStatus>"
        "<SonyEditMask>12</SonyEditMask><AutoEE>false</AutoEE></EEStatus><ProgramChannel>A</ProgramChannel>"
        "<PreviewChannel>A</PreviewChannel><PrecueCount>40</PrecueCount><StealStatus>available</StealStatus>"
        "<TransitionInProgress>false</TransitionInProgress><NaturalSpeed>2X</NaturalSpeed>"
        "</ChannelInformation>"),
    ROW (ConfigurationItem, 7,
         "ConfigurationItemName ConfigurationItemAccess ConfigurationItemEffectiveValue "
         "ConfigurationItemBootValue ConfigurationItemSavedValue ConfigurationItemAllowedValues",
         "", "ConfigurationItemRequiresReboot",
         "<ConfigurationItem><ConfigurationItemName>a b</ConfigurationItemName>"
         "<ConfigurationItemAccess>eng</ConfigurationItemAccess>"
         "<ConfigurationItemEffectiveValue>a b</ConfigurationItemEffectiveValue>"
         "<ConfigurationItemBootValue>a b</ConfigurationItemBootValue>"
         "<ConfigurationItemSavedValue>a b</ConfigurationItemSavedValue><ConfigurationItemAllowedValues>"
         "<ConfigurationItemValue>a b</ConfigurationItemValue>"
         "<ConfigurationItemValue>a b</ConfigurationItemValue></ConfigurationItemAllowedValues>"
         "<ConfigurationItemRequiresReboot /></ConfigurationItem>",
         "<ConfigurationItem><ConfigurationItemName>c</ConfigurationItemName>"
         "<ConfigurationItemAccess>user</ConfigurationItemAccess>"
         "<ConfigurationItemEffectiveValue>c</ConfigurationItemEffectiveValue>"
         "<ConfigurationItemBootValue>c</ConfigurationItemBootValue>"
         "<ConfigurationItemSavedValue>c</ConfigurationItemSavedValue><ConfigurationItemAllowedValues>"
         "<ConfigurationItemValue>c</ConfigurationItemValue></ConfigurationItemAllowedValues>"
         "</ConfigurationItem>"),
    ROW (CompressionInfo, 10,
         "CompressionYSize CompressionCSize CompressionKSize AudioTrackCount CompressionVSymbol "
         "CompressionKSymbol CompressionASymbol",
         "CompressionVFrameBased CompressionKFrameBased CompressionAFrameBased", "",
         "<CompressionInfo><CompressionYSize>4294967295</CompressionYSize>"
         "<CompressionCSize>4294967295</CompressionCSize><CompressionKSize>4294967295</CompressionKSize>"
         "<AudioTrackCount>200</AudioTrackCount><CompressionVSymbol>a b</CompressionVSymbol>"
         "<CompressionKSymbol>a b</CompressionKSymbol><CompressionASymbol>a b</CompressionASymbol>"
         "<CompressionVFrameBased>true</CompressionVFrameBased>"
         "<CompressionKFrameBased>true</CompressionKFrameBased>"
         "<CompressionAFrameBased>true</CompressionAFrameBased></CompressionInfo>",
         "<CompressionInfo><CompressionYSize>40</CompressionYSize><CompressionCSize>40</CompressionCSize>"
         "<CompressionKSize>40</CompressionKSize><AudioTrackCount>7</AudioTrackCount>"
         "<CompressionVSymbol>c</CompressionVSymbol><CompressionKSymbol>c</CompressionKSymbol>"
         "<CompressionASymbol>c</CompressionASymbol><CompressionVFrameBased>false</CompressionVFrameBased>"
         "<CompressionKFrameBased>false</CompressionKFrameBased>"
         "<CompressionAFrameBased>false</CompressionAFrameBased></CompressionInfo>"),
    ROW (DiskSpaceChange, 2, "TotalDiskSpace AvailableDiskSpace", "", "",
         "<DiskSpaceChange><TotalDiskSpace>18446744073709551615</TotalDiskSpace>"
         "<AvailableDiskSpace>18446744073709551615</AvailableDiskSpace></DiskSpaceChange>",
         "<DiskSpaceChange><TotalDiskSpace>41</TotalDiskSpace><AvailableDiskSpace>41</AvailableDiskSpace>"
         "</DiskSpaceChange>"),
    ROW (MeltFlags, 6, "MeltClientID", "",
         "MeltFlagInhibitPortNumbering MeltFlagInhibitListNumbering MeltFlagInhibitElementNumbering "
         "MeltFlagInhibitUserInteraction MeltFlagInhibitTimecodeNumbering",
         "<MeltFlags><MeltClientID>4294967295</MeltClientID><MeltFlagInhibitPortNumbering />"
         "<MeltFlagInhibitListNumbering /><MeltFlagInhibitElementNumbering /><MeltFlagInhibitUserInteraction "
         "/>"
         "<MeltFlagInhibitTimecodeNumbering /></MeltFlags>",
         "<MeltFlags><MeltClientID>40</MeltClientID></MeltFlags>"),
    ROW (MeltItem, 9, "MeltClientID MeltListID MeltElementID ClipID MeltInPoint MeltOutPoint",
         "Angle Speed MeltLabel", "",
         "<MeltItem><MeltClientID>4294967295</MeltClientID><MeltListID>4294967295</MeltListID>"
         "<MeltElementID>4294967295</MeltElementID><ClipID>a b</ClipID><MeltInPoint>4294967295</MeltInPoint>"
         "<MeltOutPoint>4294967295</MeltOutPoint><Angle>200</Angle><Speed>-0.5X</Speed>"
         "<MeltLabel>a b</MeltLabel></MeltItem>",
         "<MeltItem><MeltClientID>40</MeltClientID><MeltListID>40</MeltListID><MeltElementID>40</"
         "MeltElementID>"
         "<ClipID>c</ClipID><MeltInPoint>40</MeltInPoint><MeltOutPoint>40</MeltOutPoint><Angle>7</Angle>"
         "<Speed>2X</Speed><MeltLabel>c</MeltLabel></MeltItem>"),
    ROW (ChannelListID, 2, "Channel ListID", "", "",
         "<ChannelListID><Channel>L</Channel><ListID>a b</ListID></ChannelListID>",
         "<ChannelListID><Channel>A</Channel><ListID>c</ListID></ChannelListID>"),
    ROW (ListPlaybackIndex, 1, "", "ListIndex", "",
         "<ListPlaybackIndex><ListIndex>65535</ListIndex></ListPlaybackIndex>",
         "<ListPlaybackIndex><ListIndex>12</ListIndex></ListPlaybackIndex>"),
    ROW (ChasePlaybackIndex, 1, "", "ChaseIndex", "",
         "<ChasePlaybackIndex><ChaseIndex>65535</ChaseIndex></ChasePlaybackIndex>",
         "<ChasePlaybackIndex><ChaseIndex>12</ChaseIndex></ChasePlaybackIndex>"),
    ROW (ContentID, 2, "", "ClipID VClipID", "",
         "<ContentID><ClipID>a b</ClipID><VClipID>a b</VClipID></ContentID>",
         "<ContentID><ClipID>c</ClipID><VClipID>c</VClipID></ContentID>"),
    ROW (Transition, 2, "TransitionType", "TransitionDuration", "",
         "<Transition><TransitionType>dissolve</TransitionType>"
         "<TransitionDuration>4294967295</TransitionDuration></Transition>",
         "<Transition><TransitionType>cut</TransitionType><TransitionDuration>40</TransitionDuration>"
         "</Transition>"),
    ROW (ListElement, 8, "ContentID",
         "GotoPosition ClipPosition Speed Angle ListElementAtStart ListElementAtEnd Transition", "",
         "<ListElement><ContentID><ClipID>a b</ClipID><VClipID>a b</VClipID></ContentID>"
         "<GotoPosition>4294967295</GotoPosition><ClipPosition>4294967295</ClipPosition><Speed>-0.5X</Speed>"
         "<Angle>200</Angle><ListElementAtStart>pause</ListElementAtStart>"
         "<ListElementAtEnd>loop</ListElementAtEnd><Transition><TransitionType>dissolve</TransitionType>"
         "<TransitionDuration>4294967295</TransitionDuration></Transition></ListElement>",
         "<ListElement><ContentID><ClipID>c</ClipID><VClipID>c</VClipID></ContentID>"
         "<GotoPosition>40</GotoPosition><ClipPosition>40</ClipPosition><Speed>2X</Speed><Angle>7</Angle>"
         "<ListElementAtStart>play</ListElementAtStart><ListElementAtEnd>take</ListElementAtEnd><Transition>"
         "<TransitionType>cut</TransitionType><TransitionDuration>40</TransitionDuration></Transition>"
         "</ListElement>"),
    ROW (ChaseElement, 8, "ContentID",
         "GotoPosition ClipPosition Speed Angle ChaseElementAtEnd ClipStartOffset TcStartTrigger", "",
         "<ChaseElement><ContentID><ClipID>a b</ClipID><VClipID>a b</VClipID></ContentID>"
         "<GotoPosition>4294967295</GotoPosition><ClipPosition>4294967295</ClipPosition><Speed>-0.5X</Speed>"
         "<Angle>200</Angle><ChaseElementAtEnd>loop</ChaseElementAtEnd>"
         "<ClipStartOffset>4294967295</ClipStartOffset><TcStartTrigger>4294967295</TcStartTrigger>"
         "</ChaseElement>",
         "<ChaseElement><ContentID><ClipID>c</ClipID><VClipID>c</VClipID></ContentID>"
         "<GotoPosition>40</GotoPosition><ClipPosition>40</ClipPosition><Speed>2X</Speed><Angle>7</Angle>"
         "<ChaseElementAtEnd>black</ChaseElementAtEnd><ClipStartOffset>40</ClipStartOffset>"
         "<TcStartTrigger>40</TcStartTrigger></ChaseElement>"),
    ROW (ListElementChange, 3, "", "ListElementAtStart ListElementAtEnd Transition", "",
         "<ListElementChange><ListElementAtStart>pause</ListElementAtStart>"
         "<ListElementAtEnd>loop</ListElementAtEnd><Transition><TransitionType>dissolve</TransitionType>"
         "<TransitionDuration>4294967295</TransitionDuration></Transition></ListElementChange>",
         "<ListElementChange><ListElementAtStart>play</ListElementAtStart>"
         "<ListElementAtEnd>take</ListElementAtEnd><Transition><TransitionType>cut</TransitionType>"
         "<TransitionDuration>40</TransitionDuration></Transition></ListElementChange>"),
    ROW (ChaseElementChange, 3, "", "ChaseElementAtEnd TcStartTrigger ClipStartOffset", "",
         "<ChaseElementChange><ChaseElementAtEnd>loop</ChaseElementAtEnd>"
         "<TcStartTrigger>4294967295</TcStartTrigger><ClipStartOffset>4294967295</ClipStartOffset>"
         "</ChaseElementChange>",
         "<ChaseElementChange><ChaseElementAtEnd>black</ChaseElementAtEnd><TcStartTrigger>40</TcStartTrigger>"
         "<ClipStartOffset>40</ClipStartOffset></ChaseElementChange>"),
    ROW (Alert, 5, "AlertingPriority AlertingLevel AlertName AlertNameDescription AlertValueDescription", "",
         "",
         "<Alert><AlertingPriority>malfunction</AlertingPriority><AlertingLevel>error</AlertingLevel>"
         "<AlertName>a b</AlertName><AlertNameDescription>a b</AlertNameDescription>"
         "<AlertValueDescription>a b</AlertValueDescription></Alert>",
         "<Alert><AlertingPriority>harmful</AlertingPriority><AlertingLevel>na</AlertingLevel>"
         "<AlertName>c</AlertName><AlertNameDescription>c</AlertNameDescription>"
         "<AlertValueDescription>c</AlertValueDescription></Alert>"),
};
#undef ROW

std::vector<std::string> words (const char *text) {
  std::istringstream in (text);
  return {std::istream_iterator<std::string> (in), {}};
}
XMLTree without (const char *text, const std::string &child) {
  XMLTree tree = parsed (text);
  EXPECT_EQ (tree.remove_children (child.c_str ()), 1u) << child;
  return tree;
}
XMLTree with_doubled (const char *text, const std::string &child) {
  XMLTree tree = parsed (text);
  tree.add_child (XMLTree (tree.child (child.c_str ())));
  return tree;
}
XMLTree minimal (const Row &row) {
  XMLTree tree = parsed (row.full);
  for (const char *list : {row.optional, row.flags})
    for (const std::string &child : words (list))
      EXPECT_EQ (tree.remove_children (child.c_str ()), 1u) << child;
  return tree;
}
std::string failure_of (const Row &row, const XMLTree &tree) {
  AString err;
  EXPECT_EQ (row.again (tree, &err), "") << row.name;
  EXPECT_EQ (row.again (tree, nullptr), "") << row.name;
  return err.to_std_string ();
}

TEST (Records, AreCounted) {
  uint32_t fields = 0;
  for (const Row &row : records) {
    EXPECT_EQ (row.rows.count, row.members) << row.name;
    EXPECT_EQ (words (row.required).size () + words (row.optional).size () + words (row.flags).size (),
               row.members)
        << row.name;
    fields += row.rows.count;
  }
  EXPECT_EQ (std::size (records), 24u);
  EXPECT_EQ (fields, 154u);
}

TEST (Records, AreReadAndWrittenInFull) {
  for (const Row &row : records) {
    AString err ("untouched");
    EXPECT_EQ (row.again (parsed (row.full), &err), row.full);
    EXPECT_EQ (row.again (parsed (row.other), &err), row.other);
    EXPECT_EQ (err.to_std_string (), "untouched");
  }
}

TEST (Records, AreReadAndWrittenWithWhatIsRequired) {
  for (const Row &row : records)
    EXPECT_EQ (row.again (minimal (row), nullptr), written (minimal (row)));
}

TEST (Records, MayComeInAnyOrderWithUnknownChildren) {
  for (const Row &row : records) {
    XMLTree tree (row.name);
    const XMLTree full = parsed (row.full);
    for (const std::string &list :
         {std::string (row.flags), std::string (row.optional), std::string (row.required)})
      for (const std::string &child : words (list.c_str ())) {
        tree.add_child (XMLTree ("Unknown", "x"));
        tree.add_child (XMLTree (full.child (child.c_str ())));
      }
    EXPECT_EQ (row.again (tree, nullptr), row.full);
  }
}

TEST (Records, FailWithoutARequiredMember) {
  for (const Row &row : records)
    for (const std::string &child : words (row.required))
      EXPECT_EQ (failure_of (row, without (row.full, child)),
                 "Tag '" + child + "' not found within '" + row.name + "'");
}

TEST (Records, FailForADoubledMember) {
  for (const Row &row : records)
    for (const char *list : {row.required, row.optional})
      for (const std::string &child : words (list))
        EXPECT_EQ (failure_of (row, with_doubled (row.full, child)),
                   "More than one tag '" + child + "' found within '" + row.name + "'");
}

TEST (Records, DoNotFailForADoubledFlag) {
  for (const Row &row : records)
    for (const std::string &child : words (row.flags))
      EXPECT_EQ (row.again (with_doubled (row.full, child), nullptr), row.full);
}

TEST (Records, AreReadWithoutAnOptionalMember) {
  for (const Row &row : records)
    for (const char *list : {row.optional, row.flags})
      for (const std::string &child : words (list))
        EXPECT_EQ (row.again (without (row.full, child), nullptr), written (without (row.full, child)));
}

TEST (Records, AreEqualWhenAllMembersAre) {
  for (const Row &row : records) {
    EXPECT_TRUE (row.equal (parsed (row.full), parsed (row.full))) << row.name;
    EXPECT_TRUE (row.equal (minimal (row), minimal (row))) << row.name;
  }
}

TEST (Records, DifferWhenOneMemberDoes) {
  for (const Row &row : records) {
    const XMLTree other = parsed (row.other);
    for (const char *list : {row.required, row.optional})
      for (const std::string &child : words (list)) {
        XMLTree changed = parsed (row.full);
        changed.set_child (other.child (child.c_str ()));
        EXPECT_FALSE (row.equal (parsed (row.full), changed)) << row.name << " " << child;
      }
  }
}

TEST (Records, DifferWhenOneMemberIsAbsent) {
  for (const Row &row : records)
    for (const char *list : {row.optional, row.flags})
      for (const std::string &child : words (list)) {
        EXPECT_FALSE (row.equal (parsed (row.full), without (row.full, child))) << row.name << " " << child;
        EXPECT_FALSE (row.equal (without (row.full, child), parsed (row.full))) << row.name << " " << child;
      }
}

TEST (Records, AreEqualWhateverAbsentMembersHold) {
  for (const Row &row : records) {
    EXPECT_TRUE (row.equal_after (parsed (row.full), minimal (row))) << row.name;
    EXPECT_TRUE (row.equal_after (parsed (row.full), parsed (row.other))) << row.name;
    EXPECT_TRUE (row.equal_after (parsed (row.other), parsed (row.full))) << row.name;
  }
}

TEST (Records, FitASmallStack) {
  for (const Row &row : records)
    EXPECT_LE (row.rows.size, 4096u) << row.name;
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
  const Row &clip = records[5];
  ASSERT_STREQ (clip.name, "ClipInfo");
  EXPECT_EQ (failure_of (clip, without (clip.full, "ReadOnly")),
             "Tag 'ReadOnly' not found within 'ClipInfo'");
  EXPECT_FALSE (read<ClipInfo> (without (clip.full, "ClipUUID")).ClipUUID.present);
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
