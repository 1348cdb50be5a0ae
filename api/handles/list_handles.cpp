#include "api/handles/list_handles.h"

#include "api/basics/typehelp.h"

ListHandles &ListHandles::instance () {
  static ListHandles &handles = *new ListHandles;
  return handles;
}

ResultCode ListHandles::take_name (uint32_t handle, OrvaStringBuffer name) {
  if (visit (handle, [&] (NameList &names) { typehelp::fill_string_buffer (names.take_first (), name); }))
    return result_ok ();
  typehelp::fill_string_buffer (std::u16string_view (), name);
  return result_invalid_handle ();
}
