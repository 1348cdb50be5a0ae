#pragma once

#include "api/exports/export_call.h"
#include "api/handles/metadata_handles.h"

// Helpers for the exports that work on a metadata handle. A read copies the whole snapshot and sends nothing.
// A change is sent to the server first and then made in the snapshot.

/// Calls `take (const ClipInfo &)` with a copy of the record. @return "OK" or "Invalid handle", without a
/// call.
template <class Take>
ResultCode read_clip (uint32_t handle, Take take) noexcept {
  return guarded ([&] {
    ClipSnapshot snapshot;
    const ResultCode code = MetaDataHandles::instance ().copy (handle, snapshot);
    if (code == ORVA_OK)
      take (std::as_const (snapshot.record));
    return code;
  });
}

/// Changes a clip. The snapshot stays as it is when the server refuses; on an asynchronous connection it
/// changes in any case. No lock is held while the server is asked.
/// @param fill `fill (ClipAttrChange &)` says what the server is to change
/// @param apply `apply (ClipInfo &, ClipAttrChange &)` makes the same change in the snapshot
/// @return "Invalid handle" also for a handle whose connection is closed, and for one that was closed while
///   the server was asked
// C43: doc/compatibility.md
template <class Fill, class Apply>
ResultCode change_clip (uint32_t handle, Fill fill, Apply apply) noexcept {
  return guarded ([&] {
    MetaDataHandles &handles = MetaDataHandles::instance ();
    ClipSnapshot snapshot;
    ResultCode code = handles.copy (handle, snapshot);
    if (code != ORVA_OK)
      return code;
    QUILL3::ClipAttrChange change;
    fill (change);
    code = send_command (snapshot.connection, [&] {
      return command::modify_clip_attributes{.ClipID = snapshot.record.ClipID, .ClipAttrChange = change};
    });
    if (code != ORVA_OK)
      return code;
    return handles.change (handle, [&] (QUILL3::ClipInfo &clip) { apply (clip, change); });
  });
}
