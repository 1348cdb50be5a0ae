#pragma once

#include "api/handle_table.h"
#include "api/results.h"
#include "base/astringlist.h"

/// The lists of names that callers are reading: of clips, of directories and of keys, which share their
/// functions. They belong to the process, not to a connection, and live until they are closed. There is one
/// object, made at first use and never destroyed. Any thread may call any member; each name of a list goes to
/// one caller.
class ListHandles {
public:
  static ListHandles &instance ();

  ListHandles () = default;

  /// Enters a list. It is moved: a caller who keeps no copy makes none here. @return its handle.
  uint32_t open (AStringList names) { return lists_.open (std::move (names)); }

  /// Forgets a list; an unknown handle does nothing.
  void close (uint32_t handle) { lists_.close (handle); }

  /// Takes the first name off a list, in constant time; the empty text when none is left, as no name is
  /// empty.
  /// @param name receives it, the empty text for an unknown handle
  /// @return "OK" or "Invalid handle"
  ResultCode take_name (uint32_t handle, AString &name);

private:
  HandleTable<AStringList> lists_;
};

/// What the readers of all lists do: takes a name off and fills the buffer with it, also with the empty text
/// after "Invalid handle". Never throws.
ResultCode take_list_name (uint32_t handle, OrvaStringBuffer name) noexcept;
