#pragma once

#include "schema/rows.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

/// The 24 records of the protocol. Each bears the name of its tag and each member that of the tag that
/// carries it. An absent member is an AOption without a value; everything is zero or empty until it is set.
/// Values of enumerations are the numbers of enumerations.inc.
namespace QUILL3 {

/// A position as a number of fields; the reader knows the standard.
struct SmallTimecode {
  AOption<int32_t> FieldNumber{};    ///< in fields
  AOption<uint32_t> DropFrameFlag{}; ///< enumeration DropFrameFlag: 0 is drop frame
  bool operator== (const SmallTimecode &) const = default;
};
inline constexpr Field small_timecode_rows[] = {FIELD (SmallTimecode, FieldNumber),
                                                FIELD (SmallTimecode, DropFrameFlag)};
RECORD (SmallTimecode, small_timecode_rows);

/// A position as a number of fields, with what is needed to show it. Also the value of StripeTimecode,
/// DisplayTimecode and InputTimecode.
struct Timecode {
  bool Valid{};
  AOption<uint32_t> VideoStandard{}; ///< enumeration VideoStandard
  AOption<int32_t> FieldNumber{};    ///< in fields
  AOption<uint32_t> DropFrameFlag{}; ///< enumeration DropFrameFlag: 0 is drop frame
  bool operator== (const Timecode &) const = default;
};
inline constexpr Field timecode_rows[] = {FIELD (Timecode, Valid), FIELD (Timecode, VideoStandard),
                                          FIELD (Timecode, FieldNumber), FIELD (Timecode, DropFrameFlag)};
RECORD (Timecode, timecode_rows);

/// One track of a clip.
struct TrackInfo {
  uint32_t TrackType{};          ///< enumeration TrackType
  AOption<uint32_t> TrimStart{}; ///< in fields
  bool operator== (const TrackInfo &) const = default;
};
inline constexpr Field track_info_rows[] = {FIELD (TrackInfo, TrackType), FIELD (TrackInfo, TrimStart)};
RECORD (TrackInfo, track_info_rows);

/// A change to one track of a clip.
struct TrackAttr {
  AOption<uint32_t> TrackType{}; ///< enumeration TrackType
  AOption<uint32_t> TrimStart{}; ///< in fields
  bool operator== (const TrackAttr &) const = default;
};
inline constexpr Field track_attr_rows[] = {FIELD (TrackAttr, TrackType), FIELD (TrackAttr, TrimStart)};
RECORD (TrackAttr, track_attr_rows);

/// A free-form pair.
struct Metadata {
  AString Key{};
  AString Value{};
  bool operator== (const Metadata &) const = default;
};
inline constexpr Field metadata_rows[] = {FIELD (Metadata, Key), FIELD (Metadata, Value)};
RECORD (Metadata, metadata_rows);

/// Everything a server tells about a clip.
struct ClipInfo {
  AString ClipID{};
  uint32_t VideoStandard{}; ///< enumeration VideoStandard
  QUILL3::TrackInfoVector TrackInfoVector{};
  AString Title{};
  AString Creator{};
  AString Project{};
  uint32_t Playback{};       ///< enumeration Playback
  uint32_t Interp{};         ///< enumeration Interp
  uint32_t Loop{};           ///< enumeration Loop
  uint32_t LoopOut{};        ///< in fields
  uint32_t LoopIn{};         ///< in fields
  uint32_t ClipLength{};     ///< in fields
  uint32_t TimecodeSource{}; ///< enumeration TimecodeSource
  Timecode StripeTimecode{};
  bool ReadOnly{};
  AOption<AString> ID8{}; ///< opaque
  AOption<bool> ReadOnlyMeta{};
  AOption<bool> ReadOnlyContent{};
  AOption<QUILL3::MetadataList> MetadataList{};
  AOption<uint32_t> SpecialClipType{}; ///< enumeration SpecialClipType
  AOption<uint32_t> ISOCount{};        ///< opaque
  AOption<uint32_t> SSMSpeed{};        ///< opaque
  AOption<uint32_t> CompressionBitrate{};
  AOption<SmallTimecode> Frame0Timecode{}; ///< of the first frame
  AOption<uint32_t> TrimStart{};           ///< in fields
  AOption<uint32_t> TrimEnd{};             ///< in fields
  AOption<uint32_t> ClipLengthUntrimmed{}; ///< in fields
  AOption<uint32_t> CompressionType{};     ///< enumeration CompressionType
  AOption<AString> ClipUUID{};
  AOption<AString> ParentUUID{};
  AOption<uint8_t> Angle{};
  AOption<uint64_t> LoadedStamp{}; ///< opaque, as all stamps
  AOption<uint64_t> UnloadedStamp{};
  AOption<uint64_t> PlayedStamp{};
  AOption<uint64_t> MetaEditStamp{};
  AOption<uint64_t> ContentEditStamp{};
  AOption<AString> ClipFileType{};
  bool operator== (const ClipInfo &) const = default;
};
inline constexpr Field clip_info_rows[] = {FIELD (ClipInfo, ClipID),
                                           FIELD (ClipInfo, VideoStandard),
                                           FIELD (ClipInfo, TrackInfoVector),
                                           FIELD (ClipInfo, Title),
                                           FIELD (ClipInfo, Creator),
                                           FIELD (ClipInfo, Project),
                                           FIELD (ClipInfo, Playback),
                                           FIELD (ClipInfo, Interp),
                                           FIELD (ClipInfo, Loop),
                                           FIELD (ClipInfo, LoopOut),
                                           FIELD (ClipInfo, LoopIn),
                                           FIELD (ClipInfo, ClipLength),
                                           FIELD (ClipInfo, TimecodeSource),
                                           FIELD (ClipInfo, StripeTimecode),
                                           FIELD (ClipInfo, ReadOnly),
                                           FIELD (ClipInfo, ID8),
                                           FIELD (ClipInfo, ReadOnlyMeta),
                                           FIELD (ClipInfo, ReadOnlyContent),
                                           FIELD (ClipInfo, MetadataList),
                                           FIELD (ClipInfo, SpecialClipType),
                                           FIELD (ClipInfo, ISOCount),
                                           FIELD (ClipInfo, SSMSpeed),
                                           FIELD (ClipInfo, CompressionBitrate),
                                           FIELD (ClipInfo, Frame0Timecode),
                                           FIELD (ClipInfo, TrimStart),
                                           FIELD (ClipInfo, TrimEnd),
                                           FIELD (ClipInfo, ClipLengthUntrimmed),
                                           FIELD (ClipInfo, CompressionType),
                                           FIELD (ClipInfo, ClipUUID),
                                           FIELD (ClipInfo, ParentUUID),
                                           FIELD (ClipInfo, Angle),
                                           FIELD (ClipInfo, LoadedStamp),
                                           FIELD (ClipInfo, UnloadedStamp),
                                           FIELD (ClipInfo, PlayedStamp),
                                           FIELD (ClipInfo, MetaEditStamp),
                                           FIELD (ClipInfo, ContentEditStamp),
                                           FIELD (ClipInfo, ClipFileType)};
RECORD (ClipInfo, clip_info_rows);

/// A partial change of a clip: what is present is changed.
struct ClipAttrChange {
  AOption<AString> ID8{}; ///< opaque
  AOption<AString> Title{};
  AOption<AString> Creator{};
  AOption<AString> Project{};
  AOption<uint32_t> Playback{};       ///< enumeration Playback
  AOption<uint32_t> Interp{};         ///< enumeration Interp
  AOption<uint32_t> Loop{};           ///< enumeration Loop
  AOption<uint32_t> LoopOut{};        ///< in fields
  AOption<uint32_t> LoopIn{};         ///< in fields
  AOption<uint32_t> TimecodeSource{}; ///< enumeration TimecodeSource
  AOption<Timecode> StripeTimecode{};
  AOption<QUILL3::MetadataList> MetadataList{};
  AOption<QUILL3::KeyList> KeyList{};
  AOption<uint32_t> TrimStart{}; ///< in fields
  AOption<uint32_t> TrimEnd{};   ///< in fields
  AOption<QUILL3::TrackAttrVector> TrackAttrVector{};
  AOption<SmallTimecode> Frame0Timecode{}; ///< of the first frame
  bool operator== (const ClipAttrChange &) const = default;
};
inline constexpr Field clip_attr_change_rows[] = {FIELD (ClipAttrChange, ID8),
                                                  FIELD (ClipAttrChange, Title),
                                                  FIELD (ClipAttrChange, Creator),
                                                  FIELD (ClipAttrChange, Project),
                                                  FIELD (ClipAttrChange, Playback),
                                                  FIELD (ClipAttrChange, Interp),
                                                  FIELD (ClipAttrChange, Loop),
                                                  FIELD (ClipAttrChange, LoopOut),
                                                  FIELD (ClipAttrChange, LoopIn),
                                                  FIELD (ClipAttrChange, TimecodeSource),
                                                  FIELD (ClipAttrChange, StripeTimecode),
                                                  FIELD (ClipAttrChange, MetadataList),
                                                  FIELD (ClipAttrChange, KeyList),
                                                  FIELD (ClipAttrChange, TrimStart),
                                                  FIELD (ClipAttrChange, TrimEnd),
                                                  FIELD (ClipAttrChange, TrackAttrVector),
                                                  FIELD (ClipAttrChange, Frame0Timecode)};
RECORD (ClipAttrChange, clip_attr_change_rows);

/// Which tracks of a channel pass its input through.
struct EEStatus {
  uint16_t SonyEditMask{}; ///< a bit for each track
  bool AutoEE{};
  bool operator== (const EEStatus &) const = default;
};
inline constexpr Field ee_status_rows[] = {FIELD (EEStatus, SonyEditMask), FIELD (EEStatus, AutoEE)};
RECORD (EEStatus, ee_status_rows);

/// What is loaded on a channel and how it is set.
struct ChannelInformation {
  AString ClipID{};
  AOption<uint32_t> ClipLength{}; ///< in fields
  AOption<uint32_t> Interp{};     ///< enumeration Interp
  AOption<uint32_t> Loop{};       ///< enumeration Loop
  AOption<uint32_t> LoopIn{};     ///< in fields
  AOption<uint32_t> LoopOut{};    ///< in fields
  AOption<uint32_t> Playback{};   ///< enumeration Playback
  AOption<uint8_t> AngleCount{};
  AOption<uint8_t> Angle{};
  AOption<uint8_t> AudioTrackCount{};
  AOption<QUILL3::EEStatus> EEStatus{};
  AOption<uint32_t> ProgramChannel{}; ///< enumeration Channel
  AOption<uint32_t> PreviewChannel{}; ///< enumeration Channel
  AOption<uint32_t> PrecueCount{};
  AOption<uint32_t> StealStatus{}; ///< enumeration StealStatus
  AOption<bool> TransitionInProgress{};
  AOption<Kelvane::fixed> NaturalSpeed{}; ///< 1 is normal forward play
  bool operator== (const ChannelInformation &) const = default;
};
inline constexpr Field channel_information_rows[] = {
    FIELD (ChannelInformation, ClipID),         FIELD (ChannelInformation, ClipLength),
    FIELD (ChannelInformation, Interp),         FIELD (ChannelInformation, Loop),
    FIELD (ChannelInformation, LoopIn),         FIELD (ChannelInformation, LoopOut),
    FIELD (ChannelInformation, Playback),       FIELD (ChannelInformation, AngleCount),
    FIELD (ChannelInformation, Angle),          FIELD (ChannelInformation, AudioTrackCount),
    FIELD (ChannelInformation, EEStatus),       FIELD (ChannelInformation, ProgramChannel),
    FIELD (ChannelInformation, PreviewChannel), FIELD (ChannelInformation, PrecueCount),
    FIELD (ChannelInformation, StealStatus),    FIELD (ChannelInformation, TransitionInProgress),
    FIELD (ChannelInformation, NaturalSpeed)};
RECORD (ChannelInformation, channel_information_rows);

/// One setting of the server. About 2 KB.
struct ConfigurationItem {
  AString ConfigurationItemName{};
  uint32_t ConfigurationItemAccess{}; ///< enumeration ConfigurationItemAccess
  AString ConfigurationItemEffectiveValue{};
  AString ConfigurationItemBootValue{};
  AString ConfigurationItemSavedValue{};
  QUILL3::ConfigurationItemAllowedValues ConfigurationItemAllowedValues{};
  bool ConfigurationItemRequiresReboot{}; ///< a flag
  bool operator== (const ConfigurationItem &) const = default;
};
inline constexpr Field configuration_item_rows[] = {
    FIELD (ConfigurationItem, ConfigurationItemName),
    FIELD (ConfigurationItem, ConfigurationItemAccess),
    FIELD (ConfigurationItem, ConfigurationItemEffectiveValue),
    FIELD (ConfigurationItem, ConfigurationItemBootValue),
    FIELD (ConfigurationItem, ConfigurationItemSavedValue),
    FIELD (ConfigurationItem, ConfigurationItemAllowedValues),
    FIELD (ConfigurationItem, ConfigurationItemRequiresReboot)};
RECORD (ConfigurationItem, configuration_item_rows);

/// The server's compression of picture, key and sound.
struct CompressionInfo {
  uint32_t CompressionYSize{};
  uint32_t CompressionCSize{};
  uint32_t CompressionKSize{};
  uint8_t AudioTrackCount{};
  AString CompressionVSymbol{};
  AString CompressionKSymbol{};
  AString CompressionASymbol{};
  AOption<bool> CompressionVFrameBased{};
  AOption<bool> CompressionKFrameBased{};
  AOption<bool> CompressionAFrameBased{};
  bool operator== (const CompressionInfo &) const = default;
};
inline constexpr Field compression_info_rows[] = {
    FIELD (CompressionInfo, CompressionYSize),       FIELD (CompressionInfo, CompressionCSize),
    FIELD (CompressionInfo, CompressionKSize),       FIELD (CompressionInfo, AudioTrackCount),
    FIELD (CompressionInfo, CompressionVSymbol),     FIELD (CompressionInfo, CompressionKSymbol),
    FIELD (CompressionInfo, CompressionASymbol),     FIELD (CompressionInfo, CompressionVFrameBased),
    FIELD (CompressionInfo, CompressionKFrameBased), FIELD (CompressionInfo, CompressionAFrameBased)};
RECORD (CompressionInfo, compression_info_rows);

/// The state of the storage, in bytes.
struct DiskSpaceChange {
  uint64_t TotalDiskSpace{};
  uint64_t AvailableDiskSpace{};
  bool operator== (const DiskSpaceChange &) const = default;
};
inline constexpr Field disk_space_change_rows[] = {FIELD (DiskSpaceChange, TotalDiskSpace),
                                                   FIELD (DiskSpaceChange, AvailableDiskSpace)};
RECORD (DiskSpaceChange, disk_space_change_rows);

/// What a client of the melt facility has switched off.
struct MeltFlags {
  uint32_t MeltClientID{};
  bool MeltFlagInhibitPortNumbering{};     ///< a flag
  bool MeltFlagInhibitListNumbering{};     ///< a flag
  bool MeltFlagInhibitElementNumbering{};  ///< a flag
  bool MeltFlagInhibitUserInteraction{};   ///< a flag
  bool MeltFlagInhibitTimecodeNumbering{}; ///< a flag
  bool operator== (const MeltFlags &) const = default;
};
inline constexpr Field melt_flags_rows[] = {FIELD (MeltFlags, MeltClientID),
                                            FIELD (MeltFlags, MeltFlagInhibitPortNumbering),
                                            FIELD (MeltFlags, MeltFlagInhibitListNumbering),
                                            FIELD (MeltFlags, MeltFlagInhibitElementNumbering),
                                            FIELD (MeltFlags, MeltFlagInhibitUserInteraction),
                                            FIELD (MeltFlags, MeltFlagInhibitTimecodeNumbering)};
RECORD (MeltFlags, melt_flags_rows);

/// One element of a melt list.
struct MeltItem {
  uint32_t MeltClientID{};
  uint32_t MeltListID{};
  uint32_t MeltElementID{};
  AString ClipID{};
  uint32_t MeltInPoint{};  ///< in fields
  uint32_t MeltOutPoint{}; ///< in fields
  AOption<uint8_t> Angle{};
  AOption<Kelvane::fixed> Speed{}; ///< 1 is normal forward play
  AOption<AString> MeltLabel{};
  bool operator== (const MeltItem &) const = default;
};
inline constexpr Field melt_item_rows[] = {
    FIELD (MeltItem, MeltClientID), FIELD (MeltItem, MeltListID),  FIELD (MeltItem, MeltElementID),
    FIELD (MeltItem, ClipID),       FIELD (MeltItem, MeltInPoint), FIELD (MeltItem, MeltOutPoint),
    FIELD (MeltItem, Angle),        FIELD (MeltItem, Speed),       FIELD (MeltItem, MeltLabel)};
RECORD (MeltItem, melt_item_rows);

/// The list that is loaded on a channel.
struct ChannelListID {
  uint32_t Channel{}; ///< enumeration Channel
  AString ListID{};
  bool operator== (const ChannelListID &) const = default;
};
inline constexpr Field channel_list_id_rows[] = {FIELD (ChannelListID, Channel),
                                                 FIELD (ChannelListID, ListID)};
RECORD (ChannelListID, channel_list_id_rows);

/// A place in a list, or none.
struct ListPlaybackIndex {
  AOption<uint16_t> ListIndex{};
  bool operator== (const ListPlaybackIndex &) const = default;
};
inline constexpr Field list_playback_index_rows[] = {FIELD (ListPlaybackIndex, ListIndex)};
RECORD (ListPlaybackIndex, list_playback_index_rows);

/// A place in a chase list, or none.
struct ChasePlaybackIndex {
  AOption<uint16_t> ChaseIndex{};
  bool operator== (const ChasePlaybackIndex &) const = default;
};
inline constexpr Field chase_playback_index_rows[] = {FIELD (ChasePlaybackIndex, ChaseIndex)};
RECORD (ChasePlaybackIndex, chase_playback_index_rows);

/// What a list element plays: a clip, a virtual clip, both or none.
struct ContentID {
  AOption<AString> ClipID{};
  AOption<AString> VClipID{};
  bool operator== (const ContentID &) const = default;
};
inline constexpr Field content_id_rows[] = {FIELD (ContentID, ClipID), FIELD (ContentID, VClipID)};
RECORD (ContentID, content_id_rows);

/// A change of picture between two list elements.
struct Transition {
  uint32_t TransitionType{};              ///< enumeration TransitionType
  AOption<uint32_t> TransitionDuration{}; ///< in fields
  bool operator== (const Transition &) const = default;
};
inline constexpr Field transition_rows[] = {FIELD (Transition, TransitionType),
                                            FIELD (Transition, TransitionDuration)};
RECORD (Transition, transition_rows);

/// One element of a play list.
struct ListElement {
  QUILL3::ContentID ContentID{};
  AOption<uint32_t> GotoPosition{}; ///< in fields
  AOption<uint32_t> ClipPosition{}; ///< in fields
  AOption<Kelvane::fixed> Speed{};  ///< 1 is normal forward play
  AOption<uint8_t> Angle{};
  AOption<uint32_t> ListElementAtStart{}; ///< enumeration ListElementAtStart
  AOption<uint32_t> ListElementAtEnd{};   ///< enumeration ListElementAtEnd
  AOption<QUILL3::Transition> Transition{};
  bool operator== (const ListElement &) const = default;
};
inline constexpr Field list_element_rows[] = {FIELD (ListElement, ContentID),
                                              FIELD (ListElement, GotoPosition),
                                              FIELD (ListElement, ClipPosition),
                                              FIELD (ListElement, Speed),
                                              FIELD (ListElement, Angle),
                                              FIELD (ListElement, ListElementAtStart),
                                              FIELD (ListElement, ListElementAtEnd),
                                              FIELD (ListElement, Transition)};
RECORD (ListElement, list_element_rows);

/// One element of a chase list.
struct ChaseElement {
  QUILL3::ContentID ContentID{};
  AOption<uint32_t> GotoPosition{}; ///< in fields
  AOption<uint32_t> ClipPosition{}; ///< in fields
  AOption<Kelvane::fixed> Speed{};  ///< 1 is normal forward play
  AOption<uint8_t> Angle{};
  AOption<uint32_t> ChaseElementAtEnd{}; ///< enumeration ChaseElementAtEnd
  AOption<uint32_t> ClipStartOffset{};   ///< in fields
  AOption<uint32_t> TcStartTrigger{};    ///< in fields
  bool operator== (const ChaseElement &) const = default;
};
inline constexpr Field chase_element_rows[] = {
    FIELD (ChaseElement, ContentID),       FIELD (ChaseElement, GotoPosition),
    FIELD (ChaseElement, ClipPosition),    FIELD (ChaseElement, Speed),
    FIELD (ChaseElement, Angle),           FIELD (ChaseElement, ChaseElementAtEnd),
    FIELD (ChaseElement, ClipStartOffset), FIELD (ChaseElement, TcStartTrigger)};
RECORD (ChaseElement, chase_element_rows);

/// A partial change of a list element.
struct ListElementChange {
  AOption<uint32_t> ListElementAtStart{}; ///< enumeration ListElementAtStart
  AOption<uint32_t> ListElementAtEnd{};   ///< enumeration ListElementAtEnd
  AOption<QUILL3::Transition> Transition{};
  bool operator== (const ListElementChange &) const = default;
};
inline constexpr Field list_element_change_rows[] = {FIELD (ListElementChange, ListElementAtStart),
                                                     FIELD (ListElementChange, ListElementAtEnd),
                                                     FIELD (ListElementChange, Transition)};
RECORD (ListElementChange, list_element_change_rows);

/// A partial change of a chase list element. The last two are written in the reverse of ChaseElement's order.
struct ChaseElementChange {
  AOption<uint32_t> ChaseElementAtEnd{}; ///< enumeration ChaseElementAtEnd
  AOption<uint32_t> TcStartTrigger{};    ///< in fields
  AOption<uint32_t> ClipStartOffset{};   ///< in fields
  bool operator== (const ChaseElementChange &) const = default;
};
inline constexpr Field chase_element_change_rows[] = {FIELD (ChaseElementChange, ChaseElementAtEnd),
                                                      FIELD (ChaseElementChange, TcStartTrigger),
                                                      FIELD (ChaseElementChange, ClipStartOffset)};
RECORD (ChaseElementChange, chase_element_change_rows);

/// The state of one thing that the server watches.
struct Alert {
  uint32_t AlertingPriority{}; ///< enumeration AlertingPriority
  uint32_t AlertingLevel{};    ///< enumeration AlertingLevel
  AString AlertName{};
  AString AlertNameDescription{};
  AString AlertValueDescription{};
  bool operator== (const Alert &) const = default;
};
inline constexpr Field alert_rows[] = {FIELD (Alert, AlertingPriority), FIELD (Alert, AlertingLevel),
                                       FIELD (Alert, AlertName), FIELD (Alert, AlertNameDescription),
                                       FIELD (Alert, AlertValueDescription)};
RECORD (Alert, alert_rows);

} // namespace QUILL3

#pragma GCC diagnostic pop
