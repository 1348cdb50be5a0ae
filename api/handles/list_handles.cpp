#include "api/handles/list_handles.h"

ListHandles &ListHandles::instance () {
  static ListHandles &handles = *new ListHandles;
  return handles;
}

ResultCode ListHandles::take_name (uint32_t handle, AString &name) {
  name = AString ();
  const bool known = visit (handle, [&] (AStringList &names) { name = names.take_first (); });
  return known ? result_ok () : result_invalid_handle ();
}
