#include "api/list_handles.h"

#include "api/export_call.h"
#include "api/typehelp.h"

ListHandles &ListHandles::instance () {
  static ListHandles &handles = *new ListHandles;
  return handles;
}

ResultCode ListHandles::take_name (uint32_t handle, AString &name) {
  name = AString ();
  const bool known = lists_.visit (handle, [&] (AStringList &names) { name = names.take_first (); });
  return known ? result_ok () : result_invalid_handle ();
}

ResultCode take_list_name (uint32_t handle, OrvaStringBuffer name) noexcept {
  return guarded ([&] {
    AString taken;
    const ResultCode code = ListHandles::instance ().take_name (handle, taken);
    typehelp::fill_string_buffer (taken, name);
    return code;
  });
}
