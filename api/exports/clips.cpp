// Exports: clips as a whole.
#include "api/basics/typehelp.h"
#include "api/exports/export_call.h"

using namespace typehelp;

namespace {

/// The tracks of a new clip. A clip with video has a timecode track too.
QUILL3::TrackSet tracks (uint32_t track_mask) {
  return track_set_from_mask (track_mask, true);
}

} // namespace

// C11: doc/compatibility.md
uint32_t orva_clip_exists (uint32_t connection, const orva_char *clip, uint32_t *exists) {
  return on_connection (connection, [&] (const Connection &self) {
    AString named;
    bool known = false;
    const ResultCode code = ask (self, command::clip_exists{.ClipID = text_argument (clip)}, named, known);
    if (exists != nullptr)
      *exists = code == ORVA_OK && known ? 1 : 0;
    return code;
  });
}

uint32_t orva_rename_clip (uint32_t connection, const orva_char *from, const orva_char *to) {
  return send_command (connection, [&] {
    return command::rename_clip{.FromID = text_argument (from), .ToID = text_argument (to)};
  });
}

uint32_t orva_delete_clip (uint32_t connection, const orva_char *clip) {
  return send_command (connection, [&] { return command::delete_clip{.ClipID = text_argument (clip)}; });
}

uint32_t orva_create_clip1 (uint32_t connection, const orva_char *clip, uint32_t track_mask) {
  return send_command (connection, [&] {
    return command::create_clip{.ClipID = text_argument (clip), .TrackSet = tracks (track_mask)};
  });
}

uint32_t orva_create_clip2 (uint32_t connection, const orva_char *clip, uint32_t track_mask,
                            uint32_t length) {
  return send_command (connection, [&] {
    return command::create_clip{
        .ClipID = text_argument (clip), .TrackSet = tracks (track_mask), .ClipLength = length};
  });
}

// C41: doc/compatibility.md
uint32_t orva_create_clip3 (uint32_t connection, uint32_t channel, const orva_char *clip, uint32_t track_mask,
                            uint32_t length) {
  return send_command (connection, [&] {
    return command::create_clip{.ClipID = text_argument (clip),
                                .TrackSet = tracks (track_mask),
                                .ClipLength = length,
                                .Channel = channel_argument (channel)};
  });
}

uint32_t orva_create_child_clip1 (uint32_t connection, const orva_char *clip, const orva_char *parent) {
  return send_command (connection, [&] {
    return command::create_child_clip{.ClipID = text_argument (clip), .ParentClipID = text_argument (parent)};
  });
}

uint32_t orva_create_child_clip2 (uint32_t connection, const orva_char *clip, const orva_char *parent,
                                  uint32_t angle) {
  return send_command (connection, [&] {
    return command::create_child_clip{.ClipID = text_argument (clip),
                                      .ParentClipID = text_argument (parent),
                                      .Angle = angle_argument (angle)};
  });
}

// C13: doc/compatibility.md
uint32_t orva_set_readonly (uint32_t connection, const orva_char *) {
  return on_connection (connection, [] (const Connection &) { return result_error ("Not implemented"); });
}

uint32_t orva_unset_readonly (uint32_t connection, const orva_char *clip) {
  return orva_set_readonly (connection, clip);
}
