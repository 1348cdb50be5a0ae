#pragma once

#include "schema/records.h"
#include "support.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

/// Every record of the protocol with its members, for tests that do the same with each of them.
namespace samples {

enum Presence {
  required, ///< reading the record fails without it
  optional, ///< may be absent
  flag,     ///< an empty element, whose presence is its value
};

/// A member of a record, with what two elements contain that differ in it. A flag is empty, and only in the
/// first.
struct Member {
  Presence presence;
  const char *name;
  std::string text;
  std::string other_text = {};
};

/// What the tests do with a record of one type.
struct Functions {
  QUILL3::Rows rows;
  /// Reads an element and writes it again. @return its XML, or nothing and @p err when reading fails
  std::string (*read_and_write) (const XMLTree &tree, AString *err);
  /// Whether two elements are read into equal records.
  bool (*equal) (const XMLTree &a, const XMLTree &b);
  /// Whether @p tree is read into a record that held @p before as into a new one.
  bool (*equal_after) (const XMLTree &before, const XMLTree &tree);
};

template <class R>
R read (const XMLTree &tree) {
  R record;
  AString err;
  EXPECT_TRUE (read_record (tree, &record, &err)) << written (tree) << ": " << err.to_std_string ();
  return record;
}

template <class R>
std::string read_and_write (const XMLTree &tree, AString *err) {
  R record;
  return read_record (tree, &record, err) ? written (XMLTree (tree.name (), write_fields (record)))
                                          : std::string ();
}

template <class R>
bool equal (const XMLTree &a, const XMLTree &b) {
  return read<R> (a) == read<R> (b);
}

template <class R>
bool equal_after (const XMLTree &before, const XMLTree &tree) {
  R record = read<R> (before);
  return read_record (tree, &record, nullptr) && record == read<R> (tree);
}

template <class R>
inline constexpr Functions of{.rows = rows_of (static_cast<const R *> (nullptr)),
                              .read_and_write = read_and_write<R>,
                              .equal = equal<R>,
                              .equal_after = equal_after<R>};

struct Record {
  const char *name;
  Functions functions;
  std::vector<Member> members; ///< in the order of writing

  /// The members of these kinds, first those of the first kind.
  std::vector<Member> with (std::initializer_list<Presence> kinds) const {
    std::vector<Member> chosen;
    for (const Presence kind : kinds)
      for (const Member &member : members)
        if (member.presence == kind)
          chosen.push_back (member);
    return chosen;
  }

  /// The element with every member.
  std::string full () const {
    std::string inside;
    for (const Member &member : members)
      inside += element (member.name, member.text);
    return element (name, inside);
  }

  /// The element with every member but the flags, and all values different.
  std::string other () const {
    std::string inside;
    for (const Member &member : with ({required, optional}))
      inside += element (member.name, member.other_text);
    return element (name, inside);
  }
};

// What is inside the members that are records or lists themselves.
inline const std::string timecode =
    "<Valid>true</Valid><VideoStandard>525_59_94i</VideoStandard>"
    "<FieldNumber>-2147483648</FieldNumber><DropFrameFlag>ndf</DropFrameFlag>";
inline const std::string other_timecode = "<Valid>false</Valid><VideoStandard>4K_60p</VideoStandard>"
                                          "<FieldNumber>42</FieldNumber><DropFrameFlag>df</DropFrameFlag>";
inline const std::string small_timecode =
    "<FieldNumber>-2147483648</FieldNumber><DropFrameFlag>ndf</DropFrameFlag>";
inline const std::string other_small_timecode =
    "<FieldNumber>42</FieldNumber><DropFrameFlag>df</DropFrameFlag>";
inline const std::string metadata = "<Metadata><Key>a b</Key><Value>a b</Value></Metadata>"
                                    "<Metadata><Key>a b</Key><Value>a b</Value></Metadata>";
inline const std::string other_metadata = "<Metadata><Key>c</Key><Value>c</Value></Metadata>";
inline const std::string keys = "<Key>a b</Key><Key>a b</Key>";
inline const std::string other_keys = "<Key>c</Key>";
inline const std::string tracks =
    "<TrackInfo><TrackType>timecode</TrackType><TrimStart>4294967295</TrimStart></TrackInfo>"
    "<TrackInfo><TrackType>video</TrackType><TrimStart>40</TrimStart></TrackInfo>";
inline const std::string other_tracks =
    "<TrackInfo><TrackType>video</TrackType><TrimStart>40</TrimStart></TrackInfo>";
inline const std::string track_changes =
    "<TrackAttr><TrackType>timecode</TrackType><TrimStart>4294967295</TrimStart></TrackAttr>"
    "<TrackAttr><TrackType>video</TrackType><TrimStart>40</TrimStart></TrackAttr>";
inline const std::string other_track_changes =
    "<TrackAttr><TrackType>video</TrackType><TrimStart>40</TrimStart></TrackAttr>";
inline const std::string ee = "<SonyEditMask>65535</SonyEditMask><AutoEE>true</AutoEE>";
inline const std::string other_ee = "<SonyEditMask>12</SonyEditMask><AutoEE>false</AutoEE>";
inline const std::string allowed = "<ConfigurationItemValue>a b</ConfigurationItemValue>"
                                   "<ConfigurationItemValue>a b</ConfigurationItemValue>";
inline const std::string other_allowed = "<ConfigurationItemValue>c</ConfigurationItemValue>";
inline const std::string content = "<ClipID>a b</ClipID><VClipID>a b</VClipID>";
inline const std::string other_content = "<ClipID>c</ClipID><VClipID>c</VClipID>";
inline const std::string transition =
    "<TransitionType>dissolve</TransitionType><TransitionDuration>4294967295</TransitionDuration>";
inline const std::string other_transition =
    "<TransitionType>cut</TransitionType><TransitionDuration>40</TransitionDuration>";

inline const std::vector<Record> records{
    {"SmallTimecode",
     of<QUILL3::SmallTimecode>,
     {{optional, "FieldNumber", "-2147483648", "42"}, {optional, "DropFrameFlag", "ndf", "df"}}},
    {"Timecode",
     of<QUILL3::Timecode>,
     {{required, "Valid", "true", "false"},
      {optional, "VideoStandard", "525_59_94i", "4K_60p"},
      {optional, "FieldNumber", "-2147483648", "42"},
      {optional, "DropFrameFlag", "ndf", "df"}}},
    {"TrackInfo",
     of<QUILL3::TrackInfo>,
     {{required, "TrackType", "timecode", "video"}, {optional, "TrimStart", "4294967295", "40"}}},
    {"TrackAttr",
     of<QUILL3::TrackAttr>,
     {{optional, "TrackType", "timecode", "video"}, {optional, "TrimStart", "4294967295", "40"}}},
    {"Metadata", of<QUILL3::Metadata>, {{required, "Key", "a b", "c"}, {required, "Value", "a b", "c"}}},
    {"ClipInfo",
     of<QUILL3::ClipInfo>,
     {{required, "ClipID", "a b", "c"},
      {required, "VideoStandard", "525_59_94i", "4K_60p"},
      {required, "TrackInfoVector", tracks, other_tracks},
      {required, "Title", "a b", "c"},
      {required, "Creator", "a b", "c"},
      {required, "Project", "a b", "c"},
      {required, "Playback", "f12", "auto"},
      {required, "Interp", "off", "auto"},
      {required, "Loop", "record", "off"},
      {required, "LoopOut", "4294967295", "40"},
      {required, "LoopIn", "4294967295", "40"},
      {required, "ClipLength", "4294967295", "40"},
      {required, "TimecodeSource", "rec0_stripe", "zerobased"},
      {required, "StripeTimecode", timecode, other_timecode},
      {required, "ReadOnly", "true", "false"},
      {optional, "ID8", "a b", "c"},
      {optional, "ReadOnlyMeta", "true", "false"},
      {optional, "ReadOnlyContent", "true", "false"},
      {optional, "MetadataList", metadata, other_metadata},
      {optional, "SpecialClipType", "ssm3", "normal"},
      {optional, "ISOCount", "4294967295", "40"},
      {optional, "SSMSpeed", "4294967295", "40"},
      {optional, "CompressionBitrate", "4294967295", "40"},
      {optional, "Frame0Timecode", small_timecode, other_small_timecode},
      {optional, "TrimStart", "4294967295", "40"},
      {optional, "TrimEnd", "4294967295", "40"},
      {optional, "ClipLengthUntrimmed", "4294967295", "40"},
      {optional, "CompressionType", "xavc", "jpeg2000"},
      {optional, "ClipUUID", "a b", "c"},
      {optional, "ParentUUID", "a b", "c"},
      {optional, "Angle", "200", "7"},
      {optional, "LoadedStamp", "18446744073709551615", "41"},
      {optional, "UnloadedStamp", "18446744073709551615", "41"},
      {optional, "PlayedStamp", "18446744073709551615", "41"},
      {optional, "MetaEditStamp", "18446744073709551615", "41"},
      {optional, "ContentEditStamp", "18446744073709551615", "41"},
      {optional, "ClipFileType", "a b", "c"}}},
    {"ClipAttrChange",
     of<QUILL3::ClipAttrChange>,
     {{optional, "ID8", "a b", "c"},
      {optional, "Title", "a b", "c"},
      {optional, "Creator", "a b", "c"},
      {optional, "Project", "a b", "c"},
      {optional, "Playback", "f12", "auto"},
      {optional, "Interp", "off", "auto"},
      {optional, "Loop", "record", "off"},
      {optional, "LoopOut", "4294967295", "40"},
      {optional, "LoopIn", "4294967295", "40"},
      {optional, "TimecodeSource", "rec0_stripe", "zerobased"},
      {optional, "StripeTimecode", timecode, other_timecode},
      {optional, "MetadataList", metadata, other_metadata},
      {optional, "KeyList", keys, other_keys},
      {optional, "TrimStart", "4294967295", "40"},
      {optional, "TrimEnd", "4294967295", "40"},
      {optional, "TrackAttrVector", track_changes, other_track_changes},
      {optional, "Frame0Timecode", small_timecode, other_small_timecode}}},
    {"EEStatus",
     of<QUILL3::EEStatus>,
     {{required, "SonyEditMask", "65535", "12"}, {required, "AutoEE", "true", "false"}}},
    {"ChannelInformation",
     of<QUILL3::ChannelInformation>,
     {{required, "ClipID", "a b", "c"},
      {optional, "ClipLength", "4294967295", "40"},
      {optional, "Interp", "off", "auto"},
      {optional, "Loop", "record", "off"},
      {optional, "LoopIn", "4294967295", "40"},
      {optional, "LoopOut", "4294967295", "40"},
      {optional, "Playback", "f12", "auto"},
      {optional, "AngleCount", "200", "7"},
      {optional, "Angle", "200", "7"},
      {optional, "AudioTrackCount", "200", "7"},
      {optional, "EEStatus", ee, other_ee},
      {optional, "ProgramChannel", "L", "A"},
      {optional, "PreviewChannel", "L", "A"},
      {optional, "PrecueCount", "4294967295", "40"},
      {optional, "StealStatus", "export", "available"},
      {optional, "TransitionInProgress", "true", "false"},
      {optional, "NaturalSpeed", "-0.5X", "2X"}}},
    {"ConfigurationItem",
     of<QUILL3::ConfigurationItem>,
     {{required, "ConfigurationItemName", "a b", "c"},
      {required, "ConfigurationItemAccess", "eng", "user"},
      {required, "ConfigurationItemEffectiveValue", "a b", "c"},
      {required, "ConfigurationItemBootValue", "a b", "c"},
      {required, "ConfigurationItemSavedValue", "a b", "c"},
      {required, "ConfigurationItemAllowedValues", allowed, other_allowed},
      {flag, "ConfigurationItemRequiresReboot", ""}}},
    {"CompressionInfo",
     of<QUILL3::CompressionInfo>,
     {{required, "CompressionYSize", "4294967295", "40"},
      {required, "CompressionCSize", "4294967295", "40"},
      {required, "CompressionKSize", "4294967295", "40"},
      {required, "AudioTrackCount", "200", "7"},
      {required, "CompressionVSymbol", "a b", "c"},
      {required, "CompressionKSymbol", "a b", "c"},
      {required, "CompressionASymbol", "a b", "c"},
      {optional, "CompressionVFrameBased", "true", "false"},
      {optional, "CompressionKFrameBased", "true", "false"},
      {optional, "CompressionAFrameBased", "true", "false"}}},
    {"DiskSpaceChange",
     of<QUILL3::DiskSpaceChange>,
     {{required, "TotalDiskSpace", "18446744073709551615", "41"},
      {required, "AvailableDiskSpace", "18446744073709551615", "41"}}},
    {"MeltFlags",
     of<QUILL3::MeltFlags>,
     {{required, "MeltClientID", "4294967295", "40"},
      {flag, "MeltFlagInhibitPortNumbering", ""},
      {flag, "MeltFlagInhibitListNumbering", ""},
      {flag, "MeltFlagInhibitElementNumbering", ""},
      {flag, "MeltFlagInhibitUserInteraction", ""},
      {flag, "MeltFlagInhibitTimecodeNumbering", ""}}},
    {"MeltItem",
     of<QUILL3::MeltItem>,
     {{required, "MeltClientID", "4294967295", "40"},
      {required, "MeltListID", "4294967295", "40"},
      {required, "MeltElementID", "4294967295", "40"},
      {required, "ClipID", "a b", "c"},
      {required, "MeltInPoint", "4294967295", "40"},
      {required, "MeltOutPoint", "4294967295", "40"},
      {optional, "Angle", "200", "7"},
      {optional, "Speed", "-0.5X", "2X"},
      {optional, "MeltLabel", "a b", "c"}}},
    {"ChannelListID",
     of<QUILL3::ChannelListID>,
     {{required, "Channel", "L", "A"}, {required, "ListID", "a b", "c"}}},
    {"ListPlaybackIndex", of<QUILL3::ListPlaybackIndex>, {{optional, "ListIndex", "65535", "12"}}},
    {"ChasePlaybackIndex", of<QUILL3::ChasePlaybackIndex>, {{optional, "ChaseIndex", "65535", "12"}}},
    {"ContentID",
     of<QUILL3::ContentID>,
     {{optional, "ClipID", "a b", "c"}, {optional, "VClipID", "a b", "c"}}},
    {"Transition",
     of<QUILL3::Transition>,
     {{required, "TransitionType", "dissolve", "cut"}, {optional, "TransitionDuration", "4294967295", "40"}}},
    {"ListElement",
     of<QUILL3::ListElement>,
     {{required, "ContentID", content, other_content},
      {optional, "GotoPosition", "4294967295", "40"},
      {optional, "ClipPosition", "4294967295", "40"},
      {optional, "Speed", "-0.5X", "2X"},
      {optional, "Angle", "200", "7"},
      {optional, "ListElementAtStart", "pause", "play"},
      {optional, "ListElementAtEnd", "loop", "take"},
      {optional, "Transition", transition, other_transition}}},
    {"ChaseElement",
     of<QUILL3::ChaseElement>,
     {{required, "ContentID", content, other_content},
      {optional, "GotoPosition", "4294967295", "40"},
      {optional, "ClipPosition", "4294967295", "40"},
      {optional, "Speed", "-0.5X", "2X"},
      {optional, "Angle", "200", "7"},
      {optional, "ChaseElementAtEnd", "loop", "black"},
      {optional, "ClipStartOffset", "4294967295", "40"},
      {optional, "TcStartTrigger", "4294967295", "40"}}},
    {"ListElementChange",
     of<QUILL3::ListElementChange>,
     {{optional, "ListElementAtStart", "pause", "play"},
      {optional, "ListElementAtEnd", "loop", "take"},
      {optional, "Transition", transition, other_transition}}},
    {"ChaseElementChange",
     of<QUILL3::ChaseElementChange>,
     {{optional, "ChaseElementAtEnd", "loop", "black"},
      {optional, "TcStartTrigger", "4294967295", "40"},
      {optional, "ClipStartOffset", "4294967295", "40"}}},
    {"Alert",
     of<QUILL3::Alert>,
     {{required, "AlertingPriority", "malfunction", "harmful"},
      {required, "AlertingLevel", "error", "na"},
      {required, "AlertName", "a b", "c"},
      {required, "AlertNameDescription", "a b", "c"},
      {required, "AlertValueDescription", "a b", "c"}}},
};

} // namespace samples
