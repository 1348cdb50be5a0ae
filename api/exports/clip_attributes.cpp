// Exports: attributes of clips, read and changed through a metadata handle.
#include "api/basics/typehelp.h"
#include "api/exports/clip_snapshot.h"
#include "schema/members.h"

using namespace typehelp;
using QUILL3::ClipAttrChange;
using QUILL3::ClipInfo;
using QUILL3::Enumeration;

namespace {

constexpr uint32_t last_exported_track = member (Enumeration::TrackType, "audio");
constexpr uint32_t source_zero_based = member (Enumeration::TimecodeSource, "zerobased");
constexpr uint32_t source_striped = member (Enumeration::TimecodeSource, "striped");
constexpr uint32_t wire_non_drop = member (Enumeration::DropFrameFlag, "ndf");

// Standards without a rate count as drop frame, and are no assertion failure: a server may have them.
// C47: doc/compatibility.md
bool is_drop_frame (uint32_t standard) {
  return !standard_has_rate (standard) || standard_is_drop_frame (standard);
}

/// A timecode as callers see it.
struct ClipTimecode {
  uint32_t fields;
  uint32_t drop_frame; ///< an OrvaDropFrame
};

ClipTimecode start_of_timecode (const ClipInfo &clip) {
  return {0, is_drop_frame (clip.VideoStandard) ? ORVA_DROP_FRAME : ORVA_NON_DROP_FRAME};
}

/// Replaces what a timecode of the record says. A clip whose standard has no drop frame stays non-drop,
/// whatever its record holds.
template <class Timecode>
void take_timecode (const Timecode &from, ClipTimecode &to) {
  if (from.FieldNumber.present)
    to.fields = static_cast<uint32_t> (from.FieldNumber.value);
  if (from.DropFrameFlag.present && from.DropFrameFlag.value == wire_non_drop)
    to.drop_frame = ORVA_NON_DROP_FRAME;
}

/// The timecode that was recorded with the first frame, whatever the source in use.
ClipTimecode recorded_timecode (const ClipInfo &clip) {
  ClipTimecode timecode = start_of_timecode (clip);
  if (clip.Frame0Timecode.present)
    take_timecode (clip.Frame0Timecode.value, timecode);
  return timecode;
}

/// Where a clip's timecode starts, by its source: its stripe, its first frame, or zero.
ClipTimecode timecode_of_source (const ClipInfo &clip) {
  if (clip.TimecodeSource == source_zero_based)
    return start_of_timecode (clip);
  if (clip.TimecodeSource != source_striped)
    return recorded_timecode (clip);
  ClipTimecode timecode = start_of_timecode (clip);
  take_timecode (clip.StripeTimecode, timecode);
  return timecode;
}

/// The tracks that a clip has: bit 0 video, bit 1 key, bit 2 audio.
uint32_t tracks_of (const ClipInfo &clip) {
  uint32_t mask = 0;
  for (const QUILL3::TrackInfo &track : clip.TrackInfoVector)
    if (track.TrackType <= last_exported_track)
      mask |= 1u << track.TrackType;
  return mask;
}

// --- Reading

template <class T>
const T &present_or_zero (const T &field) {
  return field;
}
template <class T>
T present_or_zero (const AOption<T> &field) {
  return field.value_or (T ());
}

/// Stores a field of the snapshot as it is, 0 when it is absent.
template <class Field, class Number>
ResultCode read_number (uint32_t handle, Field ClipInfo::*field, Number *number) noexcept {
  return read_clip (handle, [&] (const ClipInfo &clip) { *number = present_or_zero (clip.*field); });
}

/// Stores what @p convert makes of a field of the snapshot.
ResultCode read_converted (uint32_t handle, uint32_t ClipInfo::*field, uint32_t (*convert) (uint32_t),
                           uint32_t *number) noexcept {
  return read_clip (handle, [&] (const ClipInfo &clip) { *number = convert (clip.*field); });
}

/// Fills the buffer with a text of the snapshot; with the empty text when the handle is unknown.
// C11: doc/compatibility.md
ResultCode read_text (uint32_t handle, AString ClipInfo::*field, OrvaStringBuffer text) noexcept {
  return guarded ([&] {
    AString value;
    const ResultCode code = read_clip (handle, [&] (const ClipInfo &clip) { value = clip.*field; });
    fill_string_buffer (value, text);
    return code;
  });
}

/// The same for a text that may be absent, which is read as the empty text. An unknown handle leaves the
/// buffer alone.
ResultCode read_text (uint32_t handle, AOption<AString> ClipInfo::*field, OrvaStringBuffer text) noexcept {
  return read_clip (handle,
                    [&] (const ClipInfo &clip) { fill_string_buffer (present_or_zero (clip.*field), text); });
}

/// Stores what @p read makes of the snapshot.
ResultCode read_timecode (uint32_t handle, ClipTimecode (*read) (const ClipInfo &), uint32_t *fields,
                          uint32_t *drop_frame) noexcept {
  return read_clip (handle, [&] (const ClipInfo &clip) {
    const ClipTimecode timecode = read (clip);
    *fields = timecode.fields;
    *drop_frame = timecode.drop_frame;
  });
}

// --- Changing

/// Changes one field, which has the same name in both records.
/// @param make returns the value for the server; the snapshot receives the same
template <class T, class Field, class Make>
ResultCode change_field (uint32_t handle, AOption<T> ClipAttrChange::*sent, Field ClipInfo::*kept,
                         Make make) noexcept {
  return change_clip (
      handle, [&] (ClipAttrChange &change) { change.*sent = make (); },
      [&] (ClipInfo &clip, const ClipAttrChange &change) { clip.*kept = (change.*sent).value; });
}

ResultCode change_text (uint32_t handle, AOption<AString> ClipAttrChange::*sent, AString ClipInfo::*kept,
                        const orva_char *text) noexcept {
  return change_field (handle, sent, kept, [=] { return text_argument (text); });
}

template <class Field>
ResultCode change_number (uint32_t handle, AOption<uint32_t> ClipAttrChange::*sent, Field ClipInfo::*kept,
                          uint32_t number) noexcept {
  return change_field (handle, sent, kept, [=] { return number; });
}

ResultCode change_converted (uint32_t handle, AOption<uint32_t> ClipAttrChange::*sent,
                             uint32_t ClipInfo::*kept, uint32_t (*convert) (uint32_t),
                             uint32_t number) noexcept {
  return change_field (handle, sent, kept, [=] { return convert (number); });
}

} // namespace

// --- Attributes, read

uint32_t orva_clip_video_standard (uint32_t handle, uint32_t *standard) {
  return read_converted (handle, &ClipInfo::VideoStandard, video_standard_from_wire, standard);
}

uint32_t orva_get_tracks (uint32_t handle, uint32_t *track_mask) {
  return read_clip (handle, [=] (const ClipInfo &clip) { *track_mask = tracks_of (clip); });
}

uint32_t orva_clip_creator (uint32_t handle, OrvaStringBuffer creator) {
  return read_text (handle, &ClipInfo::Creator, creator);
}

uint32_t orva_clip_project (uint32_t handle, OrvaStringBuffer project) {
  return read_text (handle, &ClipInfo::Project, project);
}

uint32_t orva_clip_title (uint32_t handle, OrvaStringBuffer title) {
  return read_text (handle, &ClipInfo::Title, title);
}

uint32_t orva_clip_playback (uint32_t handle, uint32_t *playback) {
  return read_converted (handle, &ClipInfo::Playback, playback_from_wire, playback);
}

uint32_t orva_clip_repeat (uint32_t handle, uint32_t *repeat) {
  return read_converted (handle, &ClipInfo::Loop, repeat_from_wire, repeat);
}

uint32_t orva_clip_loop_in_point (uint32_t handle, uint32_t *position) {
  return read_number (handle, &ClipInfo::LoopIn, position);
}

uint32_t orva_clip_loop_out_point (uint32_t handle, uint32_t *position) {
  return read_number (handle, &ClipInfo::LoopOut, position);
}

uint32_t orva_clip_length (uint32_t handle, uint32_t *length) {
  return read_number (handle, &ClipInfo::ClipLength, length);
}

uint32_t orva_clip_is_readonly (uint32_t handle, uint32_t *readonly) {
  return read_number (handle, &ClipInfo::ReadOnly, readonly);
}

uint32_t orva_clip_timecode_stripe (uint32_t handle, uint32_t *start, uint32_t *drop_frame) {
  return read_timecode (handle, timecode_of_source, start, drop_frame);
}

uint32_t orva_clip_recorded_timecode0 (uint32_t handle, uint32_t *start, uint32_t *drop_frame) {
  return read_timecode (handle, recorded_timecode, start, drop_frame);
}

uint32_t orva_clip_uuid (uint32_t handle, OrvaStringBuffer uuid) {
  return read_text (handle, &ClipInfo::ClipUUID, uuid);
}

uint32_t orva_clip_parent_uuid (uint32_t handle, OrvaStringBuffer uuid) {
  return read_text (handle, &ClipInfo::ParentUUID, uuid);
}

uint32_t orva_clip_trim_start (uint32_t handle, uint32_t *trim) {
  return read_number (handle, &ClipInfo::TrimStart, trim);
}

uint32_t orva_clip_trim_end (uint32_t handle, uint32_t *trim) {
  return read_number (handle, &ClipInfo::TrimEnd, trim);
}

uint32_t orva_clip_timecode_source (uint32_t handle, uint32_t *source) {
  return read_converted (handle, &ClipInfo::TimecodeSource, timecode_source_from_wire, source);
}

uint32_t orva_clip_last_loaded (uint32_t handle, uint64_t *stamp) {
  return read_number (handle, &ClipInfo::LoadedStamp, stamp);
}

uint32_t orva_clip_last_unloaded (uint32_t handle, uint64_t *stamp) {
  return read_number (handle, &ClipInfo::UnloadedStamp, stamp);
}

uint32_t orva_clip_last_played (uint32_t handle, uint64_t *stamp) {
  return read_number (handle, &ClipInfo::PlayedStamp, stamp);
}

uint32_t orva_clip_metadata_last_edited (uint32_t handle, uint64_t *stamp) {
  return read_number (handle, &ClipInfo::MetaEditStamp, stamp);
}

uint32_t orva_clip_content_last_edited (uint32_t handle, uint64_t *stamp) {
  return read_number (handle, &ClipInfo::ContentEditStamp, stamp);
}

// --- Attributes, changed

uint32_t orva_set_clip_creator (uint32_t handle, const orva_char *creator) {
  return change_text (handle, &ClipAttrChange::Creator, &ClipInfo::Creator, creator);
}

uint32_t orva_set_clip_project (uint32_t handle, const orva_char *project) {
  return change_text (handle, &ClipAttrChange::Project, &ClipInfo::Project, project);
}

uint32_t orva_set_clip_title (uint32_t handle, const orva_char *title) {
  return change_text (handle, &ClipAttrChange::Title, &ClipInfo::Title, title);
}

uint32_t orva_set_clip_playback (uint32_t handle, uint32_t playback) {
  return change_converted (handle, &ClipAttrChange::Playback, &ClipInfo::Playback, playback_to_wire,
                           playback);
}

uint32_t orva_set_clip_repeat (uint32_t handle, uint32_t repeat) {
  return change_converted (handle, &ClipAttrChange::Loop, &ClipInfo::Loop, repeat_to_wire, repeat);
}

uint32_t orva_set_clip_loop_in_point (uint32_t handle, uint32_t position) {
  return change_number (handle, &ClipAttrChange::LoopIn, &ClipInfo::LoopIn, position);
}

uint32_t orva_set_clip_loop_out_point (uint32_t handle, uint32_t position) {
  return change_number (handle, &ClipAttrChange::LoopOut, &ClipInfo::LoopOut, position);
}

// A trim point is always the first field of a frame.

// C44: doc/compatibility.md
uint32_t orva_set_clip_trim_start (uint32_t handle, uint32_t trim) {
  return change_number (handle, &ClipAttrChange::TrimStart, &ClipInfo::TrimStart, trim & ~1u);
}

uint32_t orva_set_clip_trim_end (uint32_t handle, uint32_t trim) {
  return change_number (handle, &ClipAttrChange::TrimEnd, &ClipInfo::TrimEnd, trim & ~1u);
}

// The stripe becomes the source of the timecode too.
uint32_t orva_set_clip_timecode_stripe (uint32_t handle, uint32_t start, uint32_t drop_frame) {
  return change_clip (
      handle,
      [=] (ClipAttrChange &change) {
        change.StripeTimecode = QUILL3::Timecode{.Valid = true,
                                                 .VideoStandard = {},
                                                 .FieldNumber = static_cast<int32_t> (start),
                                                 .DropFrameFlag = drop_frame_to_wire (drop_frame)};
        change.TimecodeSource = source_striped;
      },
      [] (ClipInfo &clip, const ClipAttrChange &change) {
        clip.StripeTimecode = change.StripeTimecode.value;
        clip.TimecodeSource = source_striped;
      });
}

uint32_t orva_set_clip_timecode_source (uint32_t handle, uint32_t source) {
  return change_converted (handle, &ClipAttrChange::TimecodeSource, &ClipInfo::TimecodeSource,
                           timecode_source_to_wire, source);
}
