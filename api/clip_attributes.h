#pragma once

#include "api/export_call.h"
#include "api/metadata_handles.h"
#include "api/typehelp.h"

#include <type_traits>

/// Reads and changes of a clip's attributes through a metadata handle. A read copies the whole snapshot and
/// works on the copy, without any traffic; a change goes to the server first and then to the snapshot. Any
/// thread.

// --- Reading

/// Calls @p take with a copy of the snapshot. @return "OK" or "Invalid handle", without a call.
template <class Take>
ResultCode read_clip (uint32_t handle, Take take) noexcept {
  return guarded ([&] {
    MetaDataHandles::Item item;
    const ResultCode code = MetaDataHandles::instance ().find (handle, item);
    if (code == ORVA_OK)
      take (item.record);
    return code;
  });
}

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
ResultCode clip_number (uint32_t handle, Field QUILL3::ClipInfo::*field, Number *number) noexcept {
  return read_clip (handle, [&] (const QUILL3::ClipInfo &clip) { *number = present_or_zero (clip.*field); });
}

/// Stores what @p convert makes of a field of the snapshot.
ResultCode clip_converted (uint32_t handle, uint32_t QUILL3::ClipInfo::*field, uint32_t (*convert) (uint32_t),
                           uint32_t *number) noexcept;

/// Fills the buffer with a text of the snapshot; with the empty text when the handle is unknown.
ResultCode clip_text (uint32_t handle, AString QUILL3::ClipInfo::*field, OrvaStringBuffer text) noexcept;

/// The same for a text that may be absent, which gives the empty text. An unknown handle leaves the buffer
/// alone.
ResultCode clip_text (uint32_t handle, AOption<AString> QUILL3::ClipInfo::*field,
                      OrvaStringBuffer text) noexcept;

/// The tracks that a clip has: bit 0 video, bit 1 key, bit 2 audio.
uint32_t clip_tracks (const QUILL3::ClipInfo &clip);

/// A timecode as callers see it.
struct ClipTimecode {
  uint32_t fields;
  uint32_t drop_frame; ///< an OrvaDropFrame
};

/// Where a clip's timecode starts, by its source: its stripe, its first frame, or zero.
ClipTimecode clip_timecode_stripe (const QUILL3::ClipInfo &clip);

/// The timecode that was recorded with the first frame, whatever the source in use.
ClipTimecode clip_recorded_timecode0 (const QUILL3::ClipInfo &clip);

/// Stores what @p read makes of the snapshot.
ResultCode clip_timecode (uint32_t handle, ClipTimecode (*read) (const QUILL3::ClipInfo &), uint32_t *fields,
                          uint32_t *drop_frame) noexcept;

// --- Changing

/// The road of all setters. The snapshot stays as it is when the server refuses; on an asynchronous
/// connection it changes in any case. No lock is held while the server is asked.
/// @param fill `fill (ClipAttrChange &)` says what the server is to change
/// @param apply `apply (ClipInfo &, ClipAttrChange &)` makes the same change in the snapshot
/// @return "Invalid handle" also for a handle whose connection is closed, and for one that was closed while
///   the server was asked
template <class Fill, class Apply>
ResultCode set_clip_attribute (uint32_t handle, Fill fill, Apply apply) noexcept {
  return guarded ([&] {
    MetaDataHandles &handles = MetaDataHandles::instance ();
    MetaDataHandles::Item item;
    ResultCode code = handles.find (handle, item);
    if (code != ORVA_OK)
      return code;
    QUILL3::ClipAttrChange change;
    fill (change);
    code = on_connection (item.connection, OrvaConnObject::modify_clip, item.record.ClipID, change);
    if (code != ORVA_OK)
      return code;
    return handles.change (handle, [&] (QUILL3::ClipInfo &clip) { apply (clip, change); });
  });
}

/// Changes one field, which bears the same name in both records.
/// @param make gives the value for the server; the snapshot receives the same
template <class T, class Field, class Make>
ResultCode set_clip_field (uint32_t handle, AOption<T> QUILL3::ClipAttrChange::*sent,
                           Field QUILL3::ClipInfo::*kept, Make make) noexcept {
  return set_clip_attribute (
      handle, [&] (QUILL3::ClipAttrChange &change) { change.*sent = make (); },
      [&] (QUILL3::ClipInfo &clip, const QUILL3::ClipAttrChange &change) {
        clip.*kept = (change.*sent).value;
      });
}

ResultCode set_clip_text (uint32_t handle, AOption<AString> QUILL3::ClipAttrChange::*sent,
                          AString QUILL3::ClipInfo::*kept, const orva_char *text) noexcept;

template <class Field>
ResultCode set_clip_number (uint32_t handle, AOption<uint32_t> QUILL3::ClipAttrChange::*sent,
                            Field QUILL3::ClipInfo::*kept, uint32_t number) noexcept {
  return set_clip_field (handle, sent, kept, [=] { return number; });
}

ResultCode set_clip_converted (uint32_t handle, AOption<uint32_t> QUILL3::ClipAttrChange::*sent,
                               uint32_t QUILL3::ClipInfo::*kept, uint32_t (*convert) (uint32_t),
                               uint32_t number) noexcept;

/// Stripes a clip anew, and makes the stripe its timecode source.
ResultCode set_clip_timecode_stripe (uint32_t handle, uint32_t start, uint32_t drop_frame) noexcept;
