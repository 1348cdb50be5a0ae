#include "api/metadata_handles.h"

MetaDataHandles &MetaDataHandles::instance () {
  static MetaDataHandles &handles = *new MetaDataHandles;
  return handles;
}

ResultCode MetaDataHandles::find (uint32_t handle, Item &found) {
  const bool known = items_.visit (handle, [&] (const Item &item) { found = item; });
  return known ? result_ok () : result_invalid_handle ();
}
