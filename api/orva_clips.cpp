// Clips as a whole: each operation is one command of the protocol.
#include "api/command_flow.h"
#include "api/metadata_handles.h"
#include "api/typehelp.h"

using namespace typehelp;

namespace {

/// The tracks of a new clip; video brings timecode along.
QUILL3::TrackSet tracks (uint32_t track_mask) {
  return track_set_from_mask (track_mask, true);
}

} // namespace

ResultCode OrvaConnObject::clip_exists (ARef<OrvaConnObject> self, const orva_char *clip, uint32_t *exists) {
  const AString id = text_argument (clip);
  const auto completion = make_query<CBClipExistsObject> (self);
  const ResultCode code = run_command (self, completion, &API::clip_exists, {.ClipID = id},
                                       completion->exists_callback (), completion->error_callback ());
  if (exists != nullptr)
    *exists = code == ORVA_OK && completion->exists ? 1 : 0;
  return code;
}

ResultCode OrvaConnObject::rename_clip (ARef<OrvaConnObject> self, const orva_char *from,
                                        const orva_char *to) {
  return ordinary_command (self, &API::rename_clip,
                           {.FromID = text_argument (from), .ToID = text_argument (to)});
}

ResultCode OrvaConnObject::delete_clip (ARef<OrvaConnObject> self, const orva_char *clip) {
  return ordinary_command (self, &API::delete_clip, {.ClipID = text_argument (clip)});
}

ResultCode OrvaConnObject::create_clip1 (ARef<OrvaConnObject> self, const orva_char *clip,
                                         uint32_t track_mask) {
  return ordinary_command (self, &API::create_clip,
                           {.ClipID = text_argument (clip), .TrackSet = tracks (track_mask)});
}

ResultCode OrvaConnObject::create_clip2 (ARef<OrvaConnObject> self, const orva_char *clip,
                                         uint32_t track_mask, uint32_t length) {
  return ordinary_command (
      self, &API::create_clip,
      {.ClipID = text_argument (clip), .TrackSet = tracks (track_mask), .ClipLength = length});
}

ResultCode OrvaConnObject::create_clip3 (ARef<OrvaConnObject> self, uint32_t channel, const orva_char *clip,
                                         uint32_t track_mask, uint32_t length) {
  return ordinary_command (self, &API::create_clip,
                           {.ClipID = text_argument (clip),
                            .TrackSet = tracks (track_mask),
                            .ClipLength = length,
                            .Channel = channel_argument (channel)});
}

ResultCode OrvaConnObject::create_child_clip1 (ARef<OrvaConnObject> self, const orva_char *clip,
                                               const orva_char *parent) {
  return ordinary_command (self, &API::create_child_clip,
                           {.ClipID = text_argument (clip), .ParentClipID = text_argument (parent)});
}

ResultCode OrvaConnObject::create_child_clip2 (ARef<OrvaConnObject> self, const orva_char *clip,
                                               const orva_char *parent, uint32_t angle) {
  return ordinary_command (self, &API::create_child_clip,
                           {.ClipID = text_argument (clip),
                            .ParentClipID = text_argument (parent),
                            .Angle = static_cast<uint8_t> (angle)});
}

ResultCode OrvaConnObject::set_readonly (ARef<OrvaConnObject>, const orva_char *) {
  return result_error ("Not implemented");
}

ResultCode OrvaConnObject::unset_readonly (ARef<OrvaConnObject> self, const orva_char *clip) {
  return set_readonly (std::move (self), clip);
}

ResultCode OrvaConnObject::modify_clip (ARef<OrvaConnObject> self, const AString &clip,
                                        const QUILL3::ClipAttrChange &change) {
  return ordinary_command (self, &API::modify_clip_attributes, {.ClipID = clip, .ClipAttrChange = change});
}

ResultCode OrvaConnObject::open_clip_metadata (ARef<OrvaConnObject> self, uint32_t connection,
                                               const orva_char *clip, uint32_t *handle) {
  const AString id = text_argument (clip);
  const auto completion = make_query<CBClipInfoObject> (self, connection);
  const ResultCode code = run_command (self, completion, &API::get_clip_info, {.ClipID = id},
                                       completion->info_callback (), completion->error_callback ());
  if (code == ORVA_OK && handle != nullptr)
    *handle =
        MetaDataHandles::instance ().open ({completion->connection_number, std::move (completion->record)});
  return code;
}
