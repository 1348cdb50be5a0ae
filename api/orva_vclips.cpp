// Virtual clips: each operation is one command of the protocol, and the server keeps all state.
#include "api/command_flow.h"
#include "api/typehelp.h"
#include "schema/members.h"

using namespace typehelp;

namespace {

/// `ClipScope`: the name is that of a virtual clip.
constexpr uint32_t scope_vclip = member (QUILL3::Enumeration::ClipScope, "vclip");

/// The tracks of a virtual clip; its timecode is not a track of its own.
QUILL3::TrackSet tracks (uint32_t track_mask) {
  return track_set_from_mask (track_mask, false);
}

} // namespace

ResultCode OrvaConnObject::vclip_create (ARef<OrvaConnObject> self, const orva_char *vclip, uint32_t length) {
  return ordinary_command (self, &API::vclip_create,
                           {.VClipID = text_argument (vclip), .ClipLength = length});
}

ResultCode OrvaConnObject::vclip_free (ARef<OrvaConnObject> self, const orva_char *vclip) {
  return ordinary_command (self, &API::vclip_free, {.VClipID = text_argument (vclip)});
}

ResultCode OrvaConnObject::vclip_modification_start (ARef<OrvaConnObject> self, const orva_char *vclip) {
  return ordinary_command (self, &API::vclip_modification_start, {.VClipID = text_argument (vclip)});
}

ResultCode OrvaConnObject::vclip_modification_end (ARef<OrvaConnObject> self, const orva_char *vclip) {
  return ordinary_command (self, &API::vclip_modification_end, {.VClipID = text_argument (vclip)});
}

ResultCode OrvaConnObject::vclip_add_segment1 (ARef<OrvaConnObject> self, const orva_char *vclip,
                                               const orva_char *clip, uint32_t clip_position,
                                               uint32_t track_mask, uint32_t vclip_position,
                                               uint32_t length) {
  return ordinary_command (self, &API::vclip_add_segment,
                           {.VClipID = text_argument (vclip),
                            .ClipID = text_argument (clip),
                            .ClipPosition = clip_position,
                            .TrackSet = tracks (track_mask),
                            .VClipPosition = vclip_position,
                            .ClipLength = length});
}

ResultCode OrvaConnObject::vclip_add_segment2 (ARef<OrvaConnObject> self, const orva_char *vclip,
                                               const orva_char *clip, uint32_t clip_position,
                                               uint32_t track_mask, uint32_t vclip_position, uint32_t length,
                                               double speed) {
  return ordinary_command (self, &API::vclip_add_segment,
                           {.VClipID = text_argument (vclip),
                            .ClipID = text_argument (clip),
                            .ClipPosition = clip_position,
                            .TrackSet = tracks (track_mask),
                            .VClipPosition = vclip_position,
                            .ClipLength = length,
                            .Speed = speed_to_wire (speed)});
}

ResultCode OrvaConnObject::vclip_clear_segment (ARef<OrvaConnObject> self, const orva_char *vclip,
                                                uint32_t track_mask, uint32_t vclip_position,
                                                uint32_t length) {
  return ordinary_command (self, &API::vclip_clear_segment,
                           {.VClipID = text_argument (vclip),
                            .TrackSet = tracks (track_mask),
                            .VClipPosition = vclip_position,
                            .ClipLength = length});
}

ResultCode OrvaConnObject::vclip_ripple (ARef<OrvaConnObject> self, const orva_char *vclip,
                                         uint32_t track_mask, uint32_t vclip_position, int32_t distance) {
  return ordinary_command (self, &API::vclip_ripple,
                           {.VClipID = text_argument (vclip),
                            .TrackSet = tracks (track_mask),
                            .VClipPosition = vclip_position,
                            .VClipDistance = distance});
}

ResultCode OrvaConnObject::vclip_track_enable (ARef<OrvaConnObject> self, const orva_char *vclip,
                                               uint32_t track_mask) {
  return ordinary_command (self, &API::vclip_track_enable,
                           {.VClipID = text_argument (vclip), .TrackSet = tracks (track_mask)});
}

ResultCode OrvaConnObject::vclip_cfg_tracks (ARef<OrvaConnObject> self, const orva_char *vclip,
                                             const orva_char *clip, uint32_t track_mask) {
  return ordinary_command (
      self, &API::vclip_cfg_tracks,
      {.VClipID = text_argument (vclip), .ClipID = text_argument (clip), .TrackSet = tracks (track_mask)});
}

ResultCode OrvaConnObject::cmd_load_vclip1 (ARef<OrvaConnObject> self, uint32_t channel,
                                            const orva_char *vclip) {
  return ordinary_command (
      self, &API::cue_clip,
      {.Channel = channel_argument (channel), .ClipID = text_argument (vclip), .ClipScope = scope_vclip});
}

ResultCode OrvaConnObject::cmd_load_vclip2 (ARef<OrvaConnObject> self, uint32_t channel,
                                            const orva_char *vclip, uint32_t repeat) {
  return ordinary_command (self, &API::cue_clip,
                           {.Channel = channel_argument (channel),
                            .ClipID = text_argument (vclip),
                            .Loop = repeat_to_wire (repeat),
                            .ClipScope = scope_vclip});
}

ResultCode OrvaConnObject::cmd_load_vclip3 (ARef<OrvaConnObject> self, uint32_t channel,
                                            const orva_char *vclip, uint32_t repeat, uint32_t position) {
  return ordinary_command (self, &API::cue_clip,
                           {.Channel = channel_argument (channel),
                            .ClipID = text_argument (vclip),
                            .Loop = repeat_to_wire (repeat),
                            .GotoPosition = position,
                            .ClipScope = scope_vclip});
}
