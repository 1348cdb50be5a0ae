// Exports: virtual clips. The server keeps all their state.
#include "api/basics/typehelp.h"
#include "api/exports/export_call.h"
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

uint32_t orva_vclip_create (uint32_t connection, const orva_char *vclip, uint32_t length) {
  return send_command (connection, [&] {
    return command::vclip_create{.VClipID = text_argument (vclip), .ClipLength = length};
  });
}

uint32_t orva_vclip_free (uint32_t connection, const orva_char *vclip) {
  return send_command (connection, [&] { return command::vclip_free{.VClipID = text_argument (vclip)}; });
}

uint32_t orva_vclip_modification_start (uint32_t connection, const orva_char *vclip) {
  return send_command (connection,
                       [&] { return command::vclip_modification_start{.VClipID = text_argument (vclip)}; });
}

uint32_t orva_vclip_modification_end (uint32_t connection, const orva_char *vclip) {
  return send_command (connection,
                       [&] { return command::vclip_modification_end{.VClipID = text_argument (vclip)}; });
}

uint32_t orva_vclip_add_segment1 (uint32_t connection, const orva_char *vclip, const orva_char *clip,
                                  uint32_t clip_position, uint32_t track_mask, uint32_t vclip_position,
                                  uint32_t length) {
  return send_command (connection, [&] {
    return command::vclip_add_segment{.VClipID = text_argument (vclip),
                                      .ClipID = text_argument (clip),
                                      .ClipPosition = clip_position,
                                      .TrackSet = tracks (track_mask),
                                      .VClipPosition = vclip_position,
                                      .ClipLength = length};
  });
}

uint32_t orva_vclip_add_segment2 (uint32_t connection, const orva_char *vclip, const orva_char *clip,
                                  uint32_t clip_position, uint32_t track_mask, uint32_t vclip_position,
                                  uint32_t length, double speed) {
  return send_command (connection, [&] {
    return command::vclip_add_segment{.VClipID = text_argument (vclip),
                                      .ClipID = text_argument (clip),
                                      .ClipPosition = clip_position,
                                      .TrackSet = tracks (track_mask),
                                      .VClipPosition = vclip_position,
                                      .ClipLength = length,
                                      .Speed = speed_to_wire (speed)};
  });
}

uint32_t orva_vclip_clear_segment (uint32_t connection, const orva_char *vclip, uint32_t track_mask,
                                   uint32_t vclip_position, uint32_t length) {
  return send_command (connection, [&] {
    return command::vclip_clear_segment{.VClipID = text_argument (vclip),
                                        .TrackSet = tracks (track_mask),
                                        .VClipPosition = vclip_position,
                                        .ClipLength = length};
  });
}

uint32_t orva_vclip_ripple (uint32_t connection, const orva_char *vclip, uint32_t track_mask,
                            uint32_t vclip_position, int32_t distance) {
  return send_command (connection, [&] {
    return command::vclip_ripple{.VClipID = text_argument (vclip),
                                 .TrackSet = tracks (track_mask),
                                 .VClipPosition = vclip_position,
                                 .VClipDistance = distance};
  });
}

uint32_t orva_vclip_track_enable (uint32_t connection, const orva_char *vclip, uint32_t track_mask) {
  return send_command (connection, [&] {
    return command::vclip_track_enable{.VClipID = text_argument (vclip), .TrackSet = tracks (track_mask)};
  });
}

uint32_t orva_vclip_cfg_tracks (uint32_t connection, const orva_char *vclip, const orva_char *clip,
                                uint32_t track_mask) {
  return send_command (connection, [&] {
    return command::vclip_cfg_tracks{
        .VClipID = text_argument (vclip), .ClipID = text_argument (clip), .TrackSet = tracks (track_mask)};
  });
}

uint32_t orva_cmd_load_vclip1 (uint32_t connection, uint32_t channel, const orva_char *vclip) {
  return send_command (connection, [&] {
    return command::cue_clip{
        .Channel = channel_argument (channel), .ClipID = text_argument (vclip), .ClipScope = scope_vclip};
  });
}

uint32_t orva_cmd_load_vclip2 (uint32_t connection, uint32_t channel, const orva_char *vclip,
                               uint32_t repeat) {
  return send_command (connection, [&] {
    return command::cue_clip{.Channel = channel_argument (channel),
                             .ClipID = text_argument (vclip),
                             .Loop = repeat_to_wire (repeat),
                             .ClipScope = scope_vclip};
  });
}

uint32_t orva_cmd_load_vclip3 (uint32_t connection, uint32_t channel, const orva_char *vclip, uint32_t repeat,
                               uint32_t position) {
  return send_command (connection, [&] {
    return command::cue_clip{.Channel = channel_argument (channel),
                             .ClipID = text_argument (vclip),
                             .Loop = repeat_to_wire (repeat),
                             .GotoPosition = position,
                             .ClipScope = scope_vclip};
  });
}
