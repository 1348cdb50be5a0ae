#pragma once

#include "schema/records.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

/// The 71 bodies that a message from the server can hold, in the order of their numbering: what is read out
/// of each, in the order of reading, which decides which error is told of when two tags are bad. A member
/// that is an AOption may be missing, doubled or bad on the wire and is absent then; all others are required.
namespace QUILL3::body {

// -- Answers to commands, numbers 0 to 23

/// The command was carried out. Its tags are not looked at.
struct ok {};
RECORD (ok, no_fields);

/// The command was refused.
struct error {
  AString ErrorMessage{};
  uint32_t ErrorCode{}; ///< enumeration ErrorCode
};
inline constexpr Field error_rows[] = {FIELD (error, ErrorMessage), FIELD (error, ErrorCode)};
RECORD (error, error_rows);

/// Whether a clip is there.
struct clipexists {
  AString ClipID{};
  bool Exists{};
};
inline constexpr Field clipexists_rows[] = {FIELD (clipexists, ClipID), FIELD (clipexists, Exists)};
RECORD (clipexists, clipexists_rows);

/// One clip of a listing.
struct clipid {
  AString ClipID{};
};
inline constexpr Field clipid_rows[] = {FIELD (clipid, ClipID)};
RECORD (clipid, clipid_rows);

/// One directory of a listing.
struct directory_name {
  AString DirectoryName{};
};
inline constexpr Field directory_name_rows[] = {FIELD (directory_name, DirectoryName)};
RECORD (directory_name, directory_name_rows);

/// One item of the configuration.
struct configuration_item {
  QUILL3::ConfigurationItem ConfigurationItem{};
};
inline constexpr Field configuration_item_rows[] = {FIELD (configuration_item, ConfigurationItem)};
RECORD (configuration_item, configuration_item_rows);

/// The one item that was asked for.
struct one_configuration_item {
  QUILL3::ConfigurationItem ConfigurationItem{};
};
inline constexpr Field one_configuration_item_rows[] = {FIELD (one_configuration_item, ConfigurationItem)};
RECORD (one_configuration_item, one_configuration_item_rows);

/// What there is to know about a clip.
struct clipinfo {
  QUILL3::ClipInfo ClipInfo{};
};
inline constexpr Field clipinfo_rows[] = {FIELD (clipinfo, ClipInfo)};
RECORD (clipinfo, clipinfo_rows);

/// The name of the server.
struct computername {
  AString ComputerName{};
};
inline constexpr Field computername_rows[] = {FIELD (computername, ComputerName)};
RECORD (computername, computername_rows);

/// What the server is locked to.
struct reference_source {
  uint32_t ReferenceSource{}; ///< enumeration ReferenceSource
};
inline constexpr Field reference_source_rows[] = {FIELD (reference_source, ReferenceSource)};
RECORD (reference_source, reference_source_rows);

/// What the server is set to.
struct video_standard {
  uint32_t VideoStandard{};   ///< enumeration VideoStandard
  uint32_t VideoRate{};       ///< enumeration VideoRate
  uint32_t VideoResolution{}; ///< enumeration VideoResolution
};
inline constexpr Field video_standard_rows[] = {FIELD (video_standard, VideoStandard),
                                                FIELD (video_standard, VideoRate),
                                                FIELD (video_standard, VideoResolution)};
RECORD (video_standard, video_standard_rows);

/// The state of the storage.
struct disk_usage {
  uint64_t TotalDiskSpace{};
  uint64_t AvailableDiskSpace{};
  uint32_t FieldSize{}; ///< what one field takes of the two above
};
inline constexpr Field disk_usage_rows[] = {FIELD (disk_usage, TotalDiskSpace),
                                            FIELD (disk_usage, AvailableDiskSpace),
                                            FIELD (disk_usage, FieldSize)};
RECORD (disk_usage, disk_usage_rows);

/// What the server runs.
struct version_info {
  AString SVNVersion{};
  AString SVNPath{};
};
inline constexpr Field version_info_rows[] = {FIELD (version_info, SVNVersion),
                                              FIELD (version_info, SVNPath)};
RECORD (version_info, version_info_rows);

/// How the server stores pictures and sound.
struct compression_info {
  QUILL3::CompressionInfo CompressionInfo{};
};
inline constexpr Field compression_info_rows[] = {FIELD (compression_info, CompressionInfo)};
RECORD (compression_info, compression_info_rows);

/// One element of a melt list.
struct melt_item {
  QUILL3::MeltItem MeltItem{};
};
inline constexpr Field melt_item_rows[] = {FIELD (melt_item, MeltItem)};
RECORD (melt_item, melt_item_rows);

/// What a melt client has switched off.
struct melt_flags {
  QUILL3::MeltFlags MeltFlags{};
};
inline constexpr Field melt_flags_rows[] = {FIELD (melt_flags, MeltFlags)};
RECORD (melt_flags, melt_flags_rows);

/// How taking over a channel went.
struct steal_info {
  bool StealSwapped{};
};
inline constexpr Field steal_info_rows[] = {FIELD (steal_info, StealSwapped)};
RECORD (steal_info, steal_info_rows);

/// One play list of a listing.
struct listid {
  AString ListID{};
};
inline constexpr Field listid_rows[] = {FIELD (listid, ListID)};
RECORD (listid, listid_rows);

/// One chase list of a listing.
struct chaseid {
  AString ChaseID{};
};
inline constexpr Field chaseid_rows[] = {FIELD (chaseid, ChaseID)};
RECORD (chaseid, chaseid_rows);

/// One element of a play list.
struct list_element {
  QUILL3::ListElement ListElement{};
};
inline constexpr Field list_element_rows[] = {FIELD (list_element, ListElement)};
RECORD (list_element, list_element_rows);

/// One element of a chase list.
struct chase_element {
  QUILL3::ChaseElement ChaseElement{};
};
inline constexpr Field chase_element_rows[] = {FIELD (chase_element, ChaseElement)};
RECORD (chase_element, chase_element_rows);

/// A part of a metadata database.
struct metadata {
  AString MetadataDatabase{};
  AString MetadataPrefix{};
  QUILL3::MetadataList MetadataList{};
};
inline constexpr Field metadata_rows[] = {FIELD (metadata, MetadataDatabase),
                                          FIELD (metadata, MetadataPrefix), FIELD (metadata, MetadataList)};
RECORD (metadata, metadata_rows);

/// What is kept about a file for the time being.
struct volatile_file_info {
  QUILL3::KeyList KeyList{};
};
inline constexpr Field volatile_file_info_rows[] = {FIELD (volatile_file_info, KeyList)};
RECORD (volatile_file_info, volatile_file_info_rows);

/// Where a channel stands.
struct channel_current_timecode {
  uint32_t Channel{}; ///< enumeration Channel
  Timecode DisplayTimecode{};
  uint32_t ClipLength{};   ///< in fields
  uint32_t ClipPosition{}; ///< in fields
};
inline constexpr Field channel_current_timecode_rows[] = {
    FIELD (channel_current_timecode, Channel), FIELD (channel_current_timecode, DisplayTimecode),
    FIELD (channel_current_timecode, ClipLength), FIELD (channel_current_timecode, ClipPosition)};
RECORD (channel_current_timecode, channel_current_timecode_rows);

// -- Reports, numbers 24 to 70

/// A clip has come.
struct clip_created {
  AString ClipID{};
};
inline constexpr Field clip_created_rows[] = {FIELD (clip_created, ClipID)};
RECORD (clip_created, clip_created_rows);

/// A clip has other attributes now.
struct clip_changed {
  AString ClipID{};
};
inline constexpr Field clip_changed_rows[] = {FIELD (clip_changed, ClipID)};
RECORD (clip_changed, clip_changed_rows);

/// A clip has gone.
struct clip_deleted {
  AString ClipID{};
};
inline constexpr Field clip_deleted_rows[] = {FIELD (clip_deleted, ClipID)};
RECORD (clip_deleted, clip_deleted_rows);

/// A directory has come.
struct directory_created {
  AString DirectoryName{};
};
inline constexpr Field directory_created_rows[] = {FIELD (directory_created, DirectoryName)};
RECORD (directory_created, directory_created_rows);

/// A directory has gone.
struct directory_deleted {
  AString DirectoryName{};
};
inline constexpr Field directory_deleted_rows[] = {FIELD (directory_deleted, DirectoryName)};
RECORD (directory_deleted, directory_deleted_rows);

/// A play list has come.
struct playlist_created {
  AString ListID{};
};
inline constexpr Field playlist_created_rows[] = {FIELD (playlist_created, ListID)};
RECORD (playlist_created, playlist_created_rows);

/// A play list has changed.
struct playlist_changed {
  AString ListID{};
};
inline constexpr Field playlist_changed_rows[] = {FIELD (playlist_changed, ListID)};
RECORD (playlist_changed, playlist_changed_rows);

/// A play list has gone.
struct playlist_deleted {
  AString ListID{};
};
inline constexpr Field playlist_deleted_rows[] = {FIELD (playlist_deleted, ListID)};
RECORD (playlist_deleted, playlist_deleted_rows);

/// A chase list has come.
struct chaselist_created {
  AString ChaseID{};
};
inline constexpr Field chaselist_created_rows[] = {FIELD (chaselist_created, ChaseID)};
RECORD (chaselist_created, chaselist_created_rows);

/// A chase list has changed.
struct chaselist_changed {
  AString ChaseID{};
};
inline constexpr Field chaselist_changed_rows[] = {FIELD (chaselist_changed, ChaseID)};
RECORD (chaselist_changed, chaselist_changed_rows);

/// A chase list has gone.
struct chaselist_deleted {
  AString ChaseID{};
};
inline constexpr Field chaselist_deleted_rows[] = {FIELD (chaselist_deleted, ChaseID)};
RECORD (chaselist_deleted, chaselist_deleted_rows);

/// The configuration has changed.
struct config_changed {
  AOption<QUILL3::ConfigurationChange> ConfigurationChange{};
};
inline constexpr Field config_changed_rows[] = {FIELD (config_changed, ConfigurationChange)};
RECORD (config_changed, config_changed_rows);

/// The storage has filled or emptied.
struct disk_space_changed {
  QUILL3::DiskSpaceChange DiskSpaceChange{};
};
inline constexpr Field disk_space_changed_rows[] = {FIELD (disk_space_changed, DiskSpaceChange)};
RECORD (disk_space_changed, disk_space_changed_rows);

/// How warm the server is.
struct temperature {
  uint32_t Temperature10{};
};
inline constexpr Field temperature_rows[] = {FIELD (temperature, Temperature10)};
RECORD (temperature, temperature_rows);

/// The timecode that a chase follows.
struct chase_ltc_timecode {
  QUILL3::Timecode Timecode{};
};
inline constexpr Field chase_ltc_timecode_rows[] = {FIELD (chase_ltc_timecode, Timecode)};
RECORD (chase_ltc_timecode, chase_ltc_timecode_rows);

/// What a channel is doing.
struct channel_status {
  uint32_t Channel{};        ///< enumeration Channel
  uint32_t ChannelStatus{};  ///< enumeration ChannelStatus
  AOption<AString> ClipID{}; ///< absent: nothing is loaded, or the server did not say
};
inline constexpr Field channel_status_rows[] = {
    FIELD (channel_status, Channel), FIELD (channel_status, ChannelStatus), FIELD (channel_status, ClipID)};
RECORD (channel_status, channel_status_rows);

/// What a channel has loaded.
struct channel_clipid {
  uint32_t Channel{}; ///< enumeration Channel
  AString ClipID{};
};
inline constexpr Field channel_clipid_rows[] = {FIELD (channel_clipid, Channel),
                                                FIELD (channel_clipid, ClipID)};
RECORD (channel_clipid, channel_clipid_rows);

/// How fast a channel runs.
struct channel_speed {
  uint32_t Channel{};     ///< enumeration Channel
  Kelvane::fixed Speed{}; ///< 1 is normal forward play
};
inline constexpr Field channel_speed_rows[] = {FIELD (channel_speed, Channel), FIELD (channel_speed, Speed)};
RECORD (channel_speed, channel_speed_rows);

/// Where a channel stands.
struct channel_timecode {
  uint32_t Channel{};      ///< enumeration Channel
  uint32_t ClipPosition{}; ///< in fields
  Timecode DisplayTimecode{};
  Timecode InputTimecode{};
};
inline constexpr Field channel_timecode_rows[] = {
    FIELD (channel_timecode, Channel), FIELD (channel_timecode, ClipPosition),
    FIELD (channel_timecode, DisplayTimecode), FIELD (channel_timecode, InputTimecode)};
RECORD (channel_timecode, channel_timecode_rows);

/// Where the additional sound of a channel stands.
struct channel_aux_audio_timecode {
  uint32_t Channel{};      ///< enumeration Channel
  uint32_t ClipPosition{}; ///< in fields
};
inline constexpr Field channel_aux_audio_timecode_rows[] = {FIELD (channel_aux_audio_timecode, Channel),
                                                            FIELD (channel_aux_audio_timecode, ClipPosition)};
RECORD (channel_aux_audio_timecode, channel_aux_audio_timecode_rows);

/// The state of a channel.
struct channel_info {
  uint32_t Channel{}; ///< enumeration Channel
  QUILL3::ChannelInformation ChannelInformation{};
};
inline constexpr Field channel_info_rows[] = {FIELD (channel_info, Channel),
                                              FIELD (channel_info, ChannelInformation)};
RECORD (channel_info, channel_info_rows);

/// A melt client has something to fetch.
struct melt_available {
  uint32_t MeltClientID{};
};
inline constexpr Field melt_available_rows[] = {FIELD (melt_available, MeltClientID)};
RECORD (melt_available, melt_available_rows);

/// A list was loaded.
struct channel_listplay_list {
  uint32_t Channel{}; ///< enumeration Channel
  AString ListID{};
  uint32_t ListPlayMode{}; ///< enumeration ListPlayMode
};
inline constexpr Field channel_listplay_list_rows[] = {FIELD (channel_listplay_list, Channel),
                                                       FIELD (channel_listplay_list, ListID),
                                                       FIELD (channel_listplay_list, ListPlayMode)};
RECORD (channel_listplay_list, channel_listplay_list_rows);

/// The list was unloaded.
struct channel_listplay_unloaded {
  uint32_t Channel{}; ///< enumeration Channel
};
inline constexpr Field channel_listplay_unloaded_rows[] = {FIELD (channel_listplay_unloaded, Channel)};
RECORD (channel_listplay_unloaded, channel_listplay_unloaded_rows);

/// The list has this element.
struct channel_listplay_item_exists {
  uint32_t Channel{}; ///< enumeration Channel
  uint16_t ListIndex{};
  QUILL3::ListElement ListElement{};
};
inline constexpr Field channel_listplay_item_exists_rows[] = {
    FIELD (channel_listplay_item_exists, Channel), FIELD (channel_listplay_item_exists, ListIndex),
    FIELD (channel_listplay_item_exists, ListElement)};
RECORD (channel_listplay_item_exists, channel_listplay_item_exists_rows);

/// An element came into the list.
struct channel_listplay_item_insert {
  uint32_t Channel{}; ///< enumeration Channel
  uint16_t ListIndex{};
  QUILL3::ListElement ListElement{};
};
inline constexpr Field channel_listplay_item_insert_rows[] = {
    FIELD (channel_listplay_item_insert, Channel), FIELD (channel_listplay_item_insert, ListIndex),
    FIELD (channel_listplay_item_insert, ListElement)};
RECORD (channel_listplay_item_insert, channel_listplay_item_insert_rows);

/// An element went out of the list.
struct channel_listplay_item_remove {
  uint32_t Channel{}; ///< enumeration Channel
  uint16_t ListIndex{};
};
inline constexpr Field channel_listplay_item_remove_rows[] = {
    FIELD (channel_listplay_item_remove, Channel), FIELD (channel_listplay_item_remove, ListIndex)};
RECORD (channel_listplay_item_remove, channel_listplay_item_remove_rows);

/// The list was emptied.
struct channel_listplay_clear_all {
  uint32_t Channel{}; ///< enumeration Channel
};
inline constexpr Field channel_listplay_clear_all_rows[] = {FIELD (channel_listplay_clear_all, Channel)};
RECORD (channel_listplay_clear_all, channel_listplay_clear_all_rows);

/// The element on air.
struct channel_listplay_air_now {
  uint32_t Channel{}; ///< enumeration Channel
  QUILL3::ListPlaybackIndex ListPlaybackIndex{};
};
inline constexpr Field channel_listplay_air_now_rows[] = {
    FIELD (channel_listplay_air_now, Channel), FIELD (channel_listplay_air_now, ListPlaybackIndex)};
RECORD (channel_listplay_air_now, channel_listplay_air_now_rows);

/// The element that can no longer be changed.
struct channel_listplay_air_lock {
  uint32_t Channel{}; ///< enumeration Channel
  QUILL3::ListPlaybackIndex ListPlaybackIndex{};
};
inline constexpr Field channel_listplay_air_lock_rows[] = {
    FIELD (channel_listplay_air_lock, Channel), FIELD (channel_listplay_air_lock, ListPlaybackIndex)};
RECORD (channel_listplay_air_lock, channel_listplay_air_lock_rows);

/// The element that comes next.
struct channel_listplay_air_next {
  uint32_t Channel{}; ///< enumeration Channel
  QUILL3::ListPlaybackIndex ListPlaybackIndex{};
};
inline constexpr Field channel_listplay_air_next_rows[] = {
    FIELD (channel_listplay_air_next, Channel), FIELD (channel_listplay_air_next, ListPlaybackIndex)};
RECORD (channel_listplay_air_next, channel_listplay_air_next_rows);

/// How the list repeats.
struct channel_listplay_loop {
  uint32_t Channel{}; ///< enumeration Channel
  uint32_t Loop{};    ///< enumeration Loop
};
inline constexpr Field channel_listplay_loop_rows[] = {FIELD (channel_listplay_loop, Channel),
                                                       FIELD (channel_listplay_loop, Loop)};
RECORD (channel_listplay_loop, channel_listplay_loop_rows);

/// Whether the list differs from the stored one.
struct channel_listplay_modified {
  uint32_t Channel{};      ///< enumeration Channel
  uint32_t ModifiedFlag{}; ///< enumeration ModifiedFlag
};
inline constexpr Field channel_listplay_modified_rows[] = {FIELD (channel_listplay_modified, Channel),
                                                           FIELD (channel_listplay_modified, ModifiedFlag)};
RECORD (channel_listplay_modified, channel_listplay_modified_rows);

/// A chase list was loaded.
struct channel_chaseplay_chase {
  uint32_t Channel{}; ///< enumeration Channel
  AString ChaseID{};
};
inline constexpr Field channel_chaseplay_chase_rows[] = {FIELD (channel_chaseplay_chase, Channel),
                                                         FIELD (channel_chaseplay_chase, ChaseID)};
RECORD (channel_chaseplay_chase, channel_chaseplay_chase_rows);

/// The chase list was unloaded.
struct channel_chaseplay_unloaded {
  uint32_t Channel{}; ///< enumeration Channel
};
inline constexpr Field channel_chaseplay_unloaded_rows[] = {FIELD (channel_chaseplay_unloaded, Channel)};
RECORD (channel_chaseplay_unloaded, channel_chaseplay_unloaded_rows);

/// The chase list has this element.
struct channel_chaseplay_item_exists {
  uint32_t Channel{}; ///< enumeration Channel
  uint16_t ChaseIndex{};
  QUILL3::ChaseElement ChaseElement{};
};
inline constexpr Field channel_chaseplay_item_exists_rows[] = {
    FIELD (channel_chaseplay_item_exists, Channel), FIELD (channel_chaseplay_item_exists, ChaseIndex),
    FIELD (channel_chaseplay_item_exists, ChaseElement)};
RECORD (channel_chaseplay_item_exists, channel_chaseplay_item_exists_rows);

/// An element came into the chase list.
struct channel_chaseplay_item_insert {
  uint32_t Channel{}; ///< enumeration Channel
  uint16_t ChaseIndex{};
  QUILL3::ChaseElement ChaseElement{};
};
inline constexpr Field channel_chaseplay_item_insert_rows[] = {
    FIELD (channel_chaseplay_item_insert, Channel), FIELD (channel_chaseplay_item_insert, ChaseIndex),
    FIELD (channel_chaseplay_item_insert, ChaseElement)};
RECORD (channel_chaseplay_item_insert, channel_chaseplay_item_insert_rows);

/// An element went out of the chase list.
struct channel_chaseplay_item_remove {
  uint32_t Channel{}; ///< enumeration Channel
  uint16_t ChaseIndex{};
};
inline constexpr Field channel_chaseplay_item_remove_rows[] = {
    FIELD (channel_chaseplay_item_remove, Channel), FIELD (channel_chaseplay_item_remove, ChaseIndex)};
RECORD (channel_chaseplay_item_remove, channel_chaseplay_item_remove_rows);

/// The chase list was emptied.
struct channel_chaseplay_clear_all {
  uint32_t Channel{}; ///< enumeration Channel
};
inline constexpr Field channel_chaseplay_clear_all_rows[] = {FIELD (channel_chaseplay_clear_all, Channel)};
RECORD (channel_chaseplay_clear_all, channel_chaseplay_clear_all_rows);

/// The element on air.
struct channel_chaseplay_air_now {
  uint32_t Channel{}; ///< enumeration Channel
  QUILL3::ChasePlaybackIndex ChasePlaybackIndex{};
};
inline constexpr Field channel_chaseplay_air_now_rows[] = {
    FIELD (channel_chaseplay_air_now, Channel), FIELD (channel_chaseplay_air_now, ChasePlaybackIndex)};
RECORD (channel_chaseplay_air_now, channel_chaseplay_air_now_rows);

/// Whether the chase list differs from the stored one.
struct channel_chaseplay_modified {
  uint32_t Channel{};      ///< enumeration Channel
  uint32_t ModifiedFlag{}; ///< enumeration ModifiedFlag
};
inline constexpr Field channel_chaseplay_modified_rows[] = {FIELD (channel_chaseplay_modified, Channel),
                                                            FIELD (channel_chaseplay_modified, ModifiedFlag)};
RECORD (channel_chaseplay_modified, channel_chaseplay_modified_rows);

/// Entries of a watched database have come or changed.
struct metadata_change {
  AString MetadataDatabase{};
  AString MetadataPrefix{};
  QUILL3::MetadataList MetadataList{};
};
inline constexpr Field metadata_change_rows[] = {FIELD (metadata_change, MetadataDatabase),
                                                 FIELD (metadata_change, MetadataPrefix),
                                                 FIELD (metadata_change, MetadataList)};
RECORD (metadata_change, metadata_change_rows);

/// Entries of a watched database have gone.
struct metadata_remove {
  AString MetadataDatabase{};
  AString MetadataPrefix{};
  QUILL3::KeyList KeyList{};
};
inline constexpr Field metadata_remove_rows[] = {FIELD (metadata_remove, MetadataDatabase),
                                                 FIELD (metadata_remove, MetadataPrefix),
                                                 FIELD (metadata_remove, KeyList)};
RECORD (metadata_remove, metadata_remove_rows);

/// A channel has asked for an export.
struct export_requested {
  uint32_t Channel{}; ///< enumeration Channel
};
inline constexpr Field export_requested_rows[] = {FIELD (export_requested, Channel)};
RECORD (export_requested, export_requested_rows);

/// An entry of the user dictionary has changed.
struct userdict_change {
  AString Key{};
  AString Value{};
};
inline constexpr Field userdict_change_rows[] = {FIELD (userdict_change, Key),
                                                 FIELD (userdict_change, Value)};
RECORD (userdict_change, userdict_change_rows);

/// Something that the server watches has changed its state.
struct alert {
  QUILL3::Alert Alert{};
};
inline constexpr Field alert_rows[] = {FIELD (alert, Alert)};
RECORD (alert, alert_rows);

/// The timecode at the input.
struct ltc_timecode {
  QUILL3::Timecode Timecode{};
};
inline constexpr Field ltc_timecode_rows[] = {FIELD (ltc_timecode, Timecode)};
RECORD (ltc_timecode, ltc_timecode_rows);

} // namespace QUILL3::body

#pragma GCC diagnostic pop
