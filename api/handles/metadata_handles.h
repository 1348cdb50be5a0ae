#pragma once

#include "api/basics/results.h"
#include "api/handles/handle_table.h"
#include "schema/records.h"

/// What the server said about a clip when a caller opened its metadata.
struct ClipSnapshot {
  uint32_t connection = 0; ///< number of the connection that the record was read from
  QUILL3::ClipInfo record;
};

/// The snapshots of clips that callers have open. They belong to the process and live until they are closed,
/// also beyond the end of their connection. Nothing refreshes a snapshot. Only changes that are made through
/// it change it. Any thread may call any member.
class MetaDataHandles : public HandleTable<ClipSnapshot> {
public:
  /// The snapshots of the process, made at first use and never destroyed.
  static MetaDataHandles &instance ();

  /// Copies a snapshot, so that all values that are read belong together.
  /// @return "OK", or "Invalid handle", and @p snapshot keeps its value
  ResultCode copy (uint32_t handle, ClipSnapshot &snapshot) {
    return result_of (visit (handle, [&] (const ClipSnapshot &kept) { snapshot = kept; }));
  }

  /// Calls @p apply with the record, to change it, under the lock. @return "OK" or "Invalid handle".
  template <class Apply>
  ResultCode change (uint32_t handle, Apply apply) {
    return result_of (visit (handle, [&] (ClipSnapshot &kept) { apply (kept.record); }));
  }

private:
  static ResultCode result_of (bool known) { return known ? result_ok () : result_invalid_handle (); }
};
