// Exports: metadata handles, and the pairs of clips.
#include "api/clip_metadata.h"
#include "api/export_call.h"
#include "api/list_handles.h"
#include "orva.h"

uint32_t orva_open_clip_metadata (uint32_t connection, const orva_char *clip, uint32_t *handle) {
  return on_connection (connection, OrvaConnObject::open_clip_metadata, connection, clip, handle);
}

uint32_t orva_close_clip_metadata (uint32_t handle) {
  return guarded ([=] {
    MetaDataHandles::instance ().close (handle);
    return result_ok ();
  });
}

uint32_t orva_clip_has_meta (uint32_t handle, const orva_char *key, uint32_t *has) {
  return clip_has_meta (handle, key, has);
}

uint32_t orva_clip_get_meta (uint32_t handle, const orva_char *key, OrvaStringBuffer value) {
  return clip_get_meta (handle, key, value);
}

uint32_t orva_clip_set_meta (uint32_t handle, const orva_char *key, const orva_char *value) {
  return clip_set_meta (handle, key, value);
}

uint32_t orva_clip_delete_meta (uint32_t handle, const orva_char *key) {
  return clip_delete_meta (handle, key);
}

uint32_t orva_clip_open_metakeys (uint32_t handle, uint32_t *list) {
  return clip_open_metakeys (handle, list);
}

uint32_t orva_get_metakey (uint32_t list, OrvaStringBuffer key) {
  return take_list_name (list, key);
}

uint32_t orva_close_metakeys (uint32_t list) {
  return guarded ([=] {
    ListHandles::instance ().close (list);
    return result_ok ();
  });
}
