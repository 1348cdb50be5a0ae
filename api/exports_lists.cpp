// Exports: lists of clips and directories, and what has changed among them.
#include "api/export_call.h"
#include "api/list_handles.h"
#include "orva.h"

uint32_t orva_open_clip_list (uint32_t connection, uint32_t *handle) {
  return on_connection (connection, OrvaConnObject::open_clip_list, handle);
}

uint32_t orva_get_clip_name (uint32_t handle, OrvaStringBuffer name) {
  return take_list_name (handle, name);
}

void orva_close_clip_list (uint32_t handle) {
  guarded_quietly ([=] { ListHandles::instance ().close (handle); });
}

uint32_t orva_open_directory_list (uint32_t connection, uint32_t *handle) {
  return on_connection (connection, OrvaConnObject::open_directory_list, handle);
}

uint32_t orva_get_directory_name (uint32_t handle, OrvaStringBuffer name) {
  return take_list_name (handle, name);
}

void orva_close_directory_list (uint32_t handle) {
  guarded_quietly ([=] { ListHandles::instance ().close (handle); });
}

uint32_t orva_create_directory (uint32_t connection, const orva_char *directory) {
  return on_connection (connection, OrvaConnObject::create_directory, directory);
}

uint32_t orva_track_clip_changes (uint32_t connection) {
  return on_connection (connection, OrvaConnObject::track_clip_reports);
}

uint32_t orva_track_change_added_clip (uint32_t connection, OrvaStringBuffer clip) {
  return on_connection (connection, OrvaConnObject::track_change_added_clip, clip);
}

uint32_t orva_track_change_deleted_clip (uint32_t connection, OrvaStringBuffer clip) {
  return on_connection (connection, OrvaConnObject::track_change_deleted_clip, clip);
}

uint32_t orva_track_change_changed_clip (uint32_t connection, OrvaStringBuffer clip) {
  return on_connection (connection, OrvaConnObject::track_change_changed_clip, clip);
}

uint32_t orva_track_directory_changes (uint32_t connection) {
  return on_connection (connection, OrvaConnObject::track_directory_reports);
}

uint32_t orva_track_change_added_directory (uint32_t connection, OrvaStringBuffer directory) {
  return on_connection (connection, OrvaConnObject::track_change_added_directory, directory);
}

uint32_t orva_track_change_deleted_directory (uint32_t connection, OrvaStringBuffer directory) {
  return on_connection (connection, OrvaConnObject::track_change_deleted_directory, directory);
}
