// Exports: lists of clips and directories, and what has changed among them.
#include "api/basics/typehelp.h"
#include "api/exports/export_call.h"
#include "api/exports/list_names.h"

using namespace typehelp;

namespace {

/// Asks for names and opens a list of them.
/// @param handle receives the list handle; may be null, then the names are dropped
template <class Command>
ResultCode open_list (uint32_t connection, uint32_t *handle) noexcept {
  return on_connection (connection, [&] (const Connection &self) {
    NameList names;
    const auto add = [] (void *list, AString name) { static_cast<NameList *> (list)->append (name); };
    PendingCommand pending (self, true);
    self->send (Command{}, pending.on_ok (), AFunction<void (AString)>::with_pointer (add, &names),
                pending.on_error ());
    const ResultCode code = pending.outcome ();
    if (code == ORVA_OK && handle != nullptr)
      *handle = ListHandles::instance ().open (std::move (names));
    return code;
  });
}

ResultCode track (const Connection &self, TrackedNames &names) {
  return ensure_registered (self, names.registered, command::report_register{.ReportType = names.report_type},
                            [] { return ResultCode{ORVA_OK}; });
}

/// Has the server report changes of names.
ResultCode track_changes (uint32_t connection, TrackedNames OrvaConnObject::*names) noexcept {
  return on_connection (connection,
                        [=] (const Connection &self) { return track (self, self.get ()->*names); });
}

/// The same, and takes a changed name for the caller.
// C38: doc/compatibility.md
ResultCode take_change (uint32_t connection, TrackedNames OrvaConnObject::*names,
                        AString (NameChanges::*take) (), OrvaStringBuffer name) noexcept {
  return on_connection (connection, [=] (const Connection &self) {
    TrackedNames &tracked = self.get ()->*names;
    const ResultCode code = track (self, tracked);
    if (code != ORVA_OK)
      return code;
    fill_string_buffer ((tracked.changes.*take) (), name);
    return result_ok ();
  });
}

} // namespace

// --- Lists

uint32_t orva_open_clip_list (uint32_t connection, uint32_t *handle) {
  return open_list<command::download_clipids> (connection, handle);
}

uint32_t orva_get_clip_name (uint32_t handle, OrvaStringBuffer name) {
  return take_list_name (handle, name);
}

void orva_close_clip_list (uint32_t handle) {
  guarded_quietly ([=] { ListHandles::instance ().close (handle); });
}

uint32_t orva_open_directory_list (uint32_t connection, uint32_t *handle) {
  return open_list<command::download_directory_names> (connection, handle);
}

uint32_t orva_get_directory_name (uint32_t handle, OrvaStringBuffer name) {
  return take_list_name (handle, name);
}

void orva_close_directory_list (uint32_t handle) {
  guarded_quietly ([=] { ListHandles::instance ().close (handle); });
}

uint32_t orva_create_directory (uint32_t connection, const orva_char *directory) {
  return send_command (connection,
                       [&] { return command::create_directory{.DirectoryName = text_argument (directory)}; });
}

// --- Changes

uint32_t orva_track_clip_changes (uint32_t connection) {
  return track_changes (connection, &OrvaConnObject::clips);
}

uint32_t orva_track_change_added_clip (uint32_t connection, OrvaStringBuffer clip) {
  return take_change (connection, &OrvaConnObject::clips, &NameChanges::take_added, clip);
}

uint32_t orva_track_change_deleted_clip (uint32_t connection, OrvaStringBuffer clip) {
  return take_change (connection, &OrvaConnObject::clips, &NameChanges::take_deleted, clip);
}

uint32_t orva_track_change_changed_clip (uint32_t connection, OrvaStringBuffer clip) {
  return take_change (connection, &OrvaConnObject::clips, &NameChanges::take_changed, clip);
}

uint32_t orva_track_directory_changes (uint32_t connection) {
  return track_changes (connection, &OrvaConnObject::directories);
}

uint32_t orva_track_change_added_directory (uint32_t connection, OrvaStringBuffer directory) {
  return take_change (connection, &OrvaConnObject::directories, &NameChanges::take_added, directory);
}

uint32_t orva_track_change_deleted_directory (uint32_t connection, OrvaStringBuffer directory) {
  return take_change (connection, &OrvaConnObject::directories, &NameChanges::take_deleted, directory);
}
