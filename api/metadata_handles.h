#pragma once

#include "api/handle_table.h"
#include "api/results.h"
#include "schema/records.h"

/// The snapshots of clips that callers have open. They belong to the process and live until they are closed,
/// also beyond the end of the connection that they came from. Nothing refreshes one; only the library's own
/// changes to the clip through it are repeated in it. There is one object, made at first use and never
/// destroyed. Any thread may call any member.
class MetaDataHandles {
public:
  struct Item {
    uint32_t connection = 0; ///< number of the connection that the record came from
    QUILL3::ClipInfo record;
  };

  static MetaDataHandles &instance ();

  MetaDataHandles () = default;

  /// Enters a snapshot. @return its handle.
  uint32_t open (Item item) { return items_.open (std::move (item)); }

  /// Forgets a snapshot; an unknown handle does nothing.
  void close (uint32_t handle) { items_.close (handle); }

  /// Copies a snapshot out, so that what is read is of one moment.
  /// @return "OK" or "Invalid handle", which leaves @p found alone
  ResultCode find (uint32_t handle, Item &found);

  /// Calls @p apply with the record, to change it, under the lock. @return "OK" or "Invalid handle".
  template <class Apply>
  ResultCode change (uint32_t handle, Apply apply) {
    const bool known = items_.visit (handle, [&] (Item &item) { apply (item.record); });
    return known ? result_ok () : result_invalid_handle ();
  }

private:
  HandleTable<Item> items_;
};
