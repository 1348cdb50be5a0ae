#pragma once

#include "api/basics/typehelp.h"
#include "api/exports/export_call.h"
#include "api/handles/list_handles.h"

/// What the readers of all lists do: takes a name off and fills the buffer with it, with the empty text after
/// "Invalid handle" too.
// C9, C11, C39: doc/compatibility.md
inline ResultCode take_list_name (uint32_t handle, OrvaStringBuffer name) noexcept {
  return guarded ([&] {
    AString taken;
    const ResultCode code = ListHandles::instance ().take_name (handle, taken);
    typehelp::fill_string_buffer (taken, name);
    return code;
  });
}
