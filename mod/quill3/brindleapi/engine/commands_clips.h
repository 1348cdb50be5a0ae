#pragma once

#include "schema/records.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

/// Commands on clips, directories, metadata and virtual clips. See commands.h.
namespace QUILL3::command {

/// Asks for the names of all clips, or of those in one directory.
struct download_clipids {
  AOption<AString> DirectoryName{};
};
inline constexpr Field download_clipids_rows[] = {FIELD (download_clipids, DirectoryName)};
RECORD (download_clipids, download_clipids_rows);

/// Asks for the names of all directories, or of those in one directory.
struct download_directory_names {
  AOption<AString> DirectoryName{};
};
inline constexpr Field download_directory_names_rows[] = {FIELD (download_directory_names, DirectoryName)};
RECORD (download_directory_names, download_directory_names_rows);

/// Asks for everything about a clip.
struct get_clip_info {
  AString ClipID{};
};
inline constexpr Field get_clip_info_rows[] = {FIELD (get_clip_info, ClipID)};
RECORD (get_clip_info, get_clip_info_rows);

/// Asks whether there is such a clip.
struct clip_exists {
  AString ClipID{};
};
inline constexpr Field clip_exists_rows[] = {FIELD (clip_exists, ClipID)};
RECORD (clip_exists, clip_exists_rows);

/// Changes what is present in the change.
struct modify_clip_attributes {
  AString ClipID{};
  QUILL3::ClipAttrChange ClipAttrChange{};
};
inline constexpr Field modify_clip_attributes_rows[] = {FIELD (modify_clip_attributes, ClipID),
                                                        FIELD (modify_clip_attributes, ClipAttrChange)};
RECORD (modify_clip_attributes, modify_clip_attributes_rows);

/// Deletes a clip.
struct delete_clip {
  AString ClipID{};
};
inline constexpr Field delete_clip_rows[] = {FIELD (delete_clip, ClipID)};
RECORD (delete_clip, delete_clip_rows);

/// Gives a clip another name.
struct rename_clip {
  AString FromID{};
  AString ToID{};
};
inline constexpr Field rename_clip_rows[] = {FIELD (rename_clip, FromID), FIELD (rename_clip, ToID)};
RECORD (rename_clip, rename_clip_rows);

/// Makes an empty clip with the given tracks.
struct create_clip {
  AString ClipID{};
  QUILL3::TrackSet TrackSet{};
  AOption<uint32_t> ClipLength{}; ///< in fields
  AOption<uint32_t> Channel{};    ///< enumeration Channel
};
inline constexpr Field create_clip_rows[] = {FIELD (create_clip, ClipID), FIELD (create_clip, TrackSet),
                                             FIELD (create_clip, ClipLength), FIELD (create_clip, Channel)};
RECORD (create_clip, create_clip_rows);

/// Makes a clip that shares its content with another.
struct create_child_clip {
  AString ClipID{};
  AString ParentClipID{};
  AOption<uint8_t> Angle{};
};
inline constexpr Field create_child_clip_rows[] = {FIELD (create_child_clip, ClipID),
                                                   FIELD (create_child_clip, ParentClipID),
                                                   FIELD (create_child_clip, Angle)};
RECORD (create_child_clip, create_child_clip_rows);

/// Makes a directory.
struct create_directory {
  AString DirectoryName{};
};
inline constexpr Field create_directory_rows[] = {FIELD (create_directory, DirectoryName)};
RECORD (create_directory, create_directory_rows);

/// Gives a directory another name.
struct rename_dir {
  AString FromDir{};
  AString ToDir{};
};
inline constexpr Field rename_dir_rows[] = {FIELD (rename_dir, FromDir), FIELD (rename_dir, ToDir)};
RECORD (rename_dir, rename_dir_rows);

/// Asks for what is known of a clip's files while they change.
struct get_volatile_file_info {
  AString ClipID{};
};
inline constexpr Field get_volatile_file_info_rows[] = {FIELD (get_volatile_file_info, ClipID)};
RECORD (get_volatile_file_info, get_volatile_file_info_rows);

/// Asks for the pairs of a database whose keys have the prefix.
struct download_metadata {
  AString MetadataDatabase{};
  AOption<AString> MetadataPrefix{};
};
inline constexpr Field download_metadata_rows[] = {FIELD (download_metadata, MetadataDatabase),
                                                   FIELD (download_metadata, MetadataPrefix)};
RECORD (download_metadata, download_metadata_rows);

/// Sets pairs of a database.
struct metadata_set {
  AString MetadataDatabase{};
  QUILL3::MetadataList MetadataList{};
  AOption<AString> MetadataPrefix{};
};
inline constexpr Field metadata_set_rows[] = {FIELD (metadata_set, MetadataDatabase),
                                              FIELD (metadata_set, MetadataList),
                                              FIELD (metadata_set, MetadataPrefix)};
RECORD (metadata_set, metadata_set_rows);

/// Takes keys out of a database.
struct metadata_erase {
  AString MetadataDatabase{};
  QUILL3::KeyList KeyList{};
  AOption<AString> MetadataPrefix{};
};
inline constexpr Field metadata_erase_rows[] = {FIELD (metadata_erase, MetadataDatabase),
                                                FIELD (metadata_erase, KeyList),
                                                FIELD (metadata_erase, MetadataPrefix)};
RECORD (metadata_erase, metadata_erase_rows);

/// Asks for reports of changes to a database.
struct watch_metadata_database {
  AString MetadataDatabase{};
  AOption<AString> MetadataPrefix{};
};
inline constexpr Field watch_metadata_database_rows[] = {FIELD (watch_metadata_database, MetadataDatabase),
                                                         FIELD (watch_metadata_database, MetadataPrefix)};
RECORD (watch_metadata_database, watch_metadata_database_rows);

/// No more reports of changes to a database.
struct unwatch_metadata_database {
  AString MetadataDatabase{};
};
inline constexpr Field unwatch_metadata_database_rows[] = {
    FIELD (unwatch_metadata_database, MetadataDatabase)};
RECORD (unwatch_metadata_database, unwatch_metadata_database_rows);

/// Makes an empty virtual clip.
struct vclip_create {
  AString VClipID{};
  uint32_t ClipLength{}; ///< in fields
};
inline constexpr Field vclip_create_rows[] = {FIELD (vclip_create, VClipID),
                                              FIELD (vclip_create, ClipLength)};
RECORD (vclip_create, vclip_create_rows);

/// Lets go of a virtual clip.
struct vclip_free {
  AString VClipID{};
};
inline constexpr Field vclip_free_rows[] = {FIELD (vclip_free, VClipID)};
RECORD (vclip_free, vclip_free_rows);

/// Opens a virtual clip for the changes that follow.
struct vclip_modification_start {
  AString VClipID{};
};
inline constexpr Field vclip_modification_start_rows[] = {FIELD (vclip_modification_start, VClipID)};
RECORD (vclip_modification_start, vclip_modification_start_rows);

/// Closes what vclip_modification_start opened.
struct vclip_modification_end {
  AString VClipID{};
};
inline constexpr Field vclip_modification_end_rows[] = {FIELD (vclip_modification_end, VClipID)};
RECORD (vclip_modification_end, vclip_modification_end_rows);

/// Puts a part of a clip into the given tracks.
struct vclip_add_segment {
  AString VClipID{};
  AString ClipID{};
  uint32_t ClipPosition{}; ///< in fields
  QUILL3::TrackSet TrackSet{};
  uint32_t VClipPosition{};        ///< in fields
  uint32_t ClipLength{};           ///< in fields
  AOption<Kelvane::fixed> Speed{}; ///< 1 is normal forward play
};
inline constexpr Field vclip_add_segment_rows[] = {
    FIELD (vclip_add_segment, VClipID),       FIELD (vclip_add_segment, ClipID),
    FIELD (vclip_add_segment, ClipPosition),  FIELD (vclip_add_segment, TrackSet),
    FIELD (vclip_add_segment, VClipPosition), FIELD (vclip_add_segment, ClipLength),
    FIELD (vclip_add_segment, Speed)};
RECORD (vclip_add_segment, vclip_add_segment_rows);

/// Empties a part of the given tracks.
struct vclip_clear_segment {
  AString VClipID{};
  QUILL3::TrackSet TrackSet{};
  uint32_t VClipPosition{}; ///< in fields
  uint32_t ClipLength{};    ///< in fields
};
inline constexpr Field vclip_clear_segment_rows[] = {
    FIELD (vclip_clear_segment, VClipID), FIELD (vclip_clear_segment, TrackSet),
    FIELD (vclip_clear_segment, VClipPosition), FIELD (vclip_clear_segment, ClipLength)};
RECORD (vclip_clear_segment, vclip_clear_segment_rows);

/// Moves what lies behind a position.
struct vclip_ripple {
  AString VClipID{};
  QUILL3::TrackSet TrackSet{};
  uint32_t VClipPosition{}; ///< in fields
  int32_t VClipDistance{};  ///< fields, signed
};
inline constexpr Field vclip_ripple_rows[] = {FIELD (vclip_ripple, VClipID), FIELD (vclip_ripple, TrackSet),
                                              FIELD (vclip_ripple, VClipPosition),
                                              FIELD (vclip_ripple, VClipDistance)};
RECORD (vclip_ripple, vclip_ripple_rows);

/// Says which tracks count.
struct vclip_track_enable {
  AString VClipID{};
  QUILL3::TrackSet TrackSet{};
};
inline constexpr Field vclip_track_enable_rows[] = {FIELD (vclip_track_enable, VClipID),
                                                    FIELD (vclip_track_enable, TrackSet)};
RECORD (vclip_track_enable, vclip_track_enable_rows);

/// Takes the make-up of tracks from a clip.
struct vclip_cfg_tracks {
  AString VClipID{};
  AString ClipID{};
  QUILL3::TrackSet TrackSet{};
};
inline constexpr Field vclip_cfg_tracks_rows[] = {
    FIELD (vclip_cfg_tracks, VClipID), FIELD (vclip_cfg_tracks, ClipID), FIELD (vclip_cfg_tracks, TrackSet)};
RECORD (vclip_cfg_tracks, vclip_cfg_tracks_rows);

} // namespace QUILL3::command

#pragma GCC diagnostic pop
