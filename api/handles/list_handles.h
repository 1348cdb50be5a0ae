#pragma once

#include "api/basics/results.h"
#include "api/handles/handle_table.h"
#include "api/handles/name_list.h"

/// The lists of names that callers are reading: of clips, of directories and of keys, which share their
/// functions. They belong to the process, not to a connection, and live until they are closed. Each name of a
/// list is given to one caller. Any thread may call any member.
class ListHandles : public HandleTable<NameList> {
public:
  /// The lists of the process, made at first use and never destroyed.
  static ListHandles &instance ();

  /// Takes the first name off a list and copies it into a buffer, in constant time; the empty text when none
  /// is left, as no name is empty.
  /// @param name receives it, the empty text for an unknown handle
  /// @return "OK" or "Invalid handle"
  ResultCode take_name (uint32_t handle, OrvaStringBuffer name);
};
