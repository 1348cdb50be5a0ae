#include "api/clip_attributes.h"

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

// Standards without a rate of their own count as drop frame here, and quietly: a server may have them.
bool is_drop_frame (uint32_t standard) {
  return !standard_has_rate (standard) || standard_is_drop_frame (standard);
}

ClipTimecode start_of_timecode (const ClipInfo &clip) {
  return {0, is_drop_frame (clip.VideoStandard) ? ORVA_DROP_FRAME : ORVA_NON_DROP_FRAME};
}

/// What a timecode of the record says replaces what is there, except that a clip whose standard has no drop
/// frame is non-drop whatever its record holds.
template <class Timecode>
void take_timecode (const Timecode &from, ClipTimecode &to) {
  if (from.FieldNumber.present)
    to.fields = static_cast<uint32_t> (from.FieldNumber.value);
  if (from.DropFrameFlag.present && from.DropFrameFlag.value == wire_non_drop)
    to.drop_frame = ORVA_NON_DROP_FRAME;
}

} // namespace

// --- Reading

ResultCode clip_converted (uint32_t handle, uint32_t ClipInfo::*field, uint32_t (*convert) (uint32_t),
                           uint32_t *number) noexcept {
  return read_clip (handle, [&] (const ClipInfo &clip) { *number = convert (clip.*field); });
}

ResultCode clip_text (uint32_t handle, AString ClipInfo::*field, OrvaStringBuffer text) noexcept {
  return guarded ([&] {
    AString value;
    const ResultCode code = read_clip (handle, [&] (const ClipInfo &clip) { value = clip.*field; });
    fill_string_buffer (value, text);
    return code;
  });
}

ResultCode clip_text (uint32_t handle, AOption<AString> ClipInfo::*field, OrvaStringBuffer text) noexcept {
  return read_clip (handle,
                    [&] (const ClipInfo &clip) { fill_string_buffer (present_or_zero (clip.*field), text); });
}

uint32_t clip_tracks (const ClipInfo &clip) {
  uint32_t mask = 0;
  for (const QUILL3::TrackInfo &track : clip.TrackInfoVector)
    if (track.TrackType <= last_exported_track)
      mask |= 1u << track.TrackType;
  return mask;
}

ClipTimecode clip_timecode_stripe (const ClipInfo &clip) {
  if (clip.TimecodeSource == source_zero_based)
    return start_of_timecode (clip);
  if (clip.TimecodeSource != source_striped)
    return clip_recorded_timecode0 (clip);
  ClipTimecode timecode = start_of_timecode (clip);
  take_timecode (clip.StripeTimecode, timecode);
  return timecode;
}

ClipTimecode clip_recorded_timecode0 (const ClipInfo &clip) {
  ClipTimecode timecode = start_of_timecode (clip);
  if (clip.Frame0Timecode.present)
    take_timecode (clip.Frame0Timecode.value, timecode);
  return timecode;
}

ResultCode clip_timecode (uint32_t handle, ClipTimecode (*read) (const ClipInfo &), uint32_t *fields,
                          uint32_t *drop_frame) noexcept {
  return read_clip (handle, [&] (const ClipInfo &clip) {
    const ClipTimecode timecode = read (clip);
    *fields = timecode.fields;
    *drop_frame = timecode.drop_frame;
  });
}

// --- Changing

ResultCode set_clip_text (uint32_t handle, AOption<AString> ClipAttrChange::*sent, AString ClipInfo::*kept,
                          const orva_char *text) noexcept {
  return set_clip_field (handle, sent, kept, [=] { return text_argument (text); });
}

ResultCode set_clip_converted (uint32_t handle, AOption<uint32_t> ClipAttrChange::*sent,
                               uint32_t ClipInfo::*kept, uint32_t (*convert) (uint32_t),
                               uint32_t number) noexcept {
  return set_clip_field (handle, sent, kept, [=] { return convert (number); });
}

ResultCode set_clip_timecode_stripe (uint32_t handle, uint32_t start, uint32_t drop_frame) noexcept {
  return set_clip_attribute (
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
