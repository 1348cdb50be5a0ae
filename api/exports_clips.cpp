// Exports: clips and their attributes.
#include "api/clip_attributes.h"
#include "orva.h"

using namespace typehelp;
using QUILL3::ClipAttrChange;
using QUILL3::ClipInfo;

// --- On a connection

uint32_t orva_clip_exists (uint32_t connection, const orva_char *clip, uint32_t *exists) {
  return on_connection (connection, OrvaConnObject::clip_exists, clip, exists);
}

uint32_t orva_rename_clip (uint32_t connection, const orva_char *from, const orva_char *to) {
  return on_connection (connection, OrvaConnObject::rename_clip, from, to);
}

uint32_t orva_delete_clip (uint32_t connection, const orva_char *clip) {
  return on_connection (connection, OrvaConnObject::delete_clip, clip);
}

uint32_t orva_create_clip1 (uint32_t connection, const orva_char *clip, uint32_t track_mask) {
  return on_connection (connection, OrvaConnObject::create_clip1, clip, track_mask);
}

uint32_t orva_create_clip2 (uint32_t connection, const orva_char *clip, uint32_t track_mask,
                            uint32_t length) {
  return on_connection (connection, OrvaConnObject::create_clip2, clip, track_mask, length);
}

uint32_t orva_create_clip3 (uint32_t connection, uint32_t channel, const orva_char *clip, uint32_t track_mask,
                            uint32_t length) {
  return on_connection (connection, OrvaConnObject::create_clip3, channel, clip, track_mask, length);
}

uint32_t orva_create_child_clip1 (uint32_t connection, const orva_char *clip, const orva_char *parent) {
  return on_connection (connection, OrvaConnObject::create_child_clip1, clip, parent);
}

uint32_t orva_create_child_clip2 (uint32_t connection, const orva_char *clip, const orva_char *parent,
                                  uint32_t angle) {
  return on_connection (connection, OrvaConnObject::create_child_clip2, clip, parent, angle);
}

uint32_t orva_set_readonly (uint32_t connection, const orva_char *clip) {
  return on_connection (connection, OrvaConnObject::set_readonly, clip);
}

uint32_t orva_unset_readonly (uint32_t connection, const orva_char *clip) {
  return on_connection (connection, OrvaConnObject::unset_readonly, clip);
}

// --- Attributes, read

uint32_t orva_clip_video_standard (uint32_t handle, uint32_t *standard) {
  return clip_converted (handle, &ClipInfo::VideoStandard, video_standard_from_wire, standard);
}

uint32_t orva_get_tracks (uint32_t handle, uint32_t *track_mask) {
  return read_clip (handle, [=] (const ClipInfo &clip) { *track_mask = clip_tracks (clip); });
}

uint32_t orva_clip_creator (uint32_t handle, OrvaStringBuffer creator) {
  return clip_text (handle, &ClipInfo::Creator, creator);
}

uint32_t orva_clip_project (uint32_t handle, OrvaStringBuffer project) {
  return clip_text (handle, &ClipInfo::Project, project);
}

uint32_t orva_clip_title (uint32_t handle, OrvaStringBuffer title) {
  return clip_text (handle, &ClipInfo::Title, title);
}

uint32_t orva_clip_playback (uint32_t handle, uint32_t *playback) {
  return clip_converted (handle, &ClipInfo::Playback, playback_from_wire, playback);
}

uint32_t orva_clip_repeat (uint32_t handle, uint32_t *repeat) {
  return clip_converted (handle, &ClipInfo::Loop, repeat_from_wire, repeat);
}

uint32_t orva_clip_loop_in_point (uint32_t handle, uint32_t *position) {
  return clip_number (handle, &ClipInfo::LoopIn, position);
}

uint32_t orva_clip_loop_out_point (uint32_t handle, uint32_t *position) {
  return clip_number (handle, &ClipInfo::LoopOut, position);
}

uint32_t orva_clip_length (uint32_t handle, uint32_t *length) {
  return clip_number (handle, &ClipInfo::ClipLength, length);
}

uint32_t orva_clip_is_readonly (uint32_t handle, uint32_t *readonly) {
  return clip_number (handle, &ClipInfo::ReadOnly, readonly);
}

uint32_t orva_clip_timecode_stripe (uint32_t handle, uint32_t *start, uint32_t *drop_frame) {
  return clip_timecode (handle, clip_timecode_stripe, start, drop_frame);
}

uint32_t orva_clip_recorded_timecode0 (uint32_t handle, uint32_t *start, uint32_t *drop_frame) {
  return clip_timecode (handle, clip_recorded_timecode0, start, drop_frame);
}

uint32_t orva_clip_uuid (uint32_t handle, OrvaStringBuffer uuid) {
  return clip_text (handle, &ClipInfo::ClipUUID, uuid);
}

uint32_t orva_clip_parent_uuid (uint32_t handle, OrvaStringBuffer uuid) {
  return clip_text (handle, &ClipInfo::ParentUUID, uuid);
}

uint32_t orva_clip_trim_start (uint32_t handle, uint32_t *trim) {
  return clip_number (handle, &ClipInfo::TrimStart, trim);
}

uint32_t orva_clip_trim_end (uint32_t handle, uint32_t *trim) {
  return clip_number (handle, &ClipInfo::TrimEnd, trim);
}

uint32_t orva_clip_timecode_source (uint32_t handle, uint32_t *source) {
  return clip_converted (handle, &ClipInfo::TimecodeSource, timecode_source_from_wire, source);
}

uint32_t orva_clip_last_loaded (uint32_t handle, uint64_t *stamp) {
  return clip_number (handle, &ClipInfo::LoadedStamp, stamp);
}

uint32_t orva_clip_last_unloaded (uint32_t handle, uint64_t *stamp) {
  return clip_number (handle, &ClipInfo::UnloadedStamp, stamp);
}

uint32_t orva_clip_last_played (uint32_t handle, uint64_t *stamp) {
  return clip_number (handle, &ClipInfo::PlayedStamp, stamp);
}

uint32_t orva_clip_metadata_last_edited (uint32_t handle, uint64_t *stamp) {
  return clip_number (handle, &ClipInfo::MetaEditStamp, stamp);
}

uint32_t orva_clip_content_last_edited (uint32_t handle, uint64_t *stamp) {
  return clip_number (handle, &ClipInfo::ContentEditStamp, stamp);
}

// --- Attributes, changed

uint32_t orva_set_clip_creator (uint32_t handle, const orva_char *creator) {
  return set_clip_text (handle, &ClipAttrChange::Creator, &ClipInfo::Creator, creator);
}

uint32_t orva_set_clip_project (uint32_t handle, const orva_char *project) {
  return set_clip_text (handle, &ClipAttrChange::Project, &ClipInfo::Project, project);
}

uint32_t orva_set_clip_title (uint32_t handle, const orva_char *title) {
  return set_clip_text (handle, &ClipAttrChange::Title, &ClipInfo::Title, title);
}

uint32_t orva_set_clip_playback (uint32_t handle, uint32_t playback) {
  return set_clip_converted (handle, &ClipAttrChange::Playback, &ClipInfo::Playback, playback_to_wire,
                             playback);
}

uint32_t orva_set_clip_repeat (uint32_t handle, uint32_t repeat) {
  return set_clip_converted (handle, &ClipAttrChange::Loop, &ClipInfo::Loop, repeat_to_wire, repeat);
}

uint32_t orva_set_clip_loop_in_point (uint32_t handle, uint32_t position) {
  return set_clip_number (handle, &ClipAttrChange::LoopIn, &ClipInfo::LoopIn, position);
}

uint32_t orva_set_clip_loop_out_point (uint32_t handle, uint32_t position) {
  return set_clip_number (handle, &ClipAttrChange::LoopOut, &ClipInfo::LoopOut, position);
}

// A trim point always falls on the first field of a frame.

uint32_t orva_set_clip_trim_start (uint32_t handle, uint32_t trim) {
  return set_clip_number (handle, &ClipAttrChange::TrimStart, &ClipInfo::TrimStart, trim & ~1u);
}

uint32_t orva_set_clip_trim_end (uint32_t handle, uint32_t trim) {
  return set_clip_number (handle, &ClipAttrChange::TrimEnd, &ClipInfo::TrimEnd, trim & ~1u);
}

uint32_t orva_set_clip_timecode_stripe (uint32_t handle, uint32_t start, uint32_t drop_frame) {
  return set_clip_timecode_stripe (handle, start, drop_frame);
}

uint32_t orva_set_clip_timecode_source (uint32_t handle, uint32_t source) {
  return set_clip_converted (handle, &ClipAttrChange::TimecodeSource, &ClipInfo::TimecodeSource,
                             timecode_source_to_wire, source);
}
