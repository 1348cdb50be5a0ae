#pragma once

#include "api/exports/export_call.h"
#include "api/handles/list_handles.h"

/// Takes the first name off a list and copies it into the buffer, for the readers of all kinds of lists. With
/// "Invalid handle" the buffer receives the empty text.
// C9, C11, C39: doc/compatibility.md
inline ResultCode take_list_name (uint32_t handle, OrvaStringBuffer name) noexcept {
  return guarded ([&] { return ListHandles::instance ().take_name (handle, name); });
}
