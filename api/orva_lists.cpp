// Lists of names, and the names that the server's reports leave for callers to take.
#include "api/command_flow.h"
#include "api/list_handles.h"
#include "api/typehelp.h"

using namespace typehelp;

namespace {

/// Asks for names, and makes a handle of them.
/// @param handle receives it; may be null: the names are asked for and dropped
template <class Completion, class Command>
ResultCode open_list (const ARef<OrvaConnObject> &self,
                      AString (QUILL3::API::*wrapper) (const Command &, QUILL3::callback::ok,
                                                       AFunction<void (AString)>, QUILL3::callback::error),
                      uint32_t *handle) {
  const auto completion = OrvaConnObject::make_query<Completion> (self);
  const ResultCode code = run_command (self, completion, wrapper, {}, completion->ok_callback (),
                                       completion->item_callback (), completion->error_callback ());
  if (code == ORVA_OK && handle != nullptr)
    *handle = ListHandles::instance ().open (std::move (completion->names));
  return code;
}

/// Lets `take` put a name into an empty text and hands it to the caller, once the changes are tracked.
template <class Take>
ResultCode take_change (ResultCode tracked, OrvaStringBuffer name, Take take) {
  if (tracked != ORVA_OK)
    return tracked;
  AString taken;
  take (taken);
  fill_string_buffer (taken, name);
  return result_ok ();
}

} // namespace

// --- Lists

ResultCode OrvaConnObject::open_clip_list (ARef<OrvaConnObject> self, uint32_t *handle) {
  return open_list<CBClipIdsObject> (self, &API::download_clipids, handle);
}

ResultCode OrvaConnObject::open_directory_list (ARef<OrvaConnObject> self, uint32_t *handle) {
  return open_list<CBDirectoryNamesObject> (self, &API::download_directory_names, handle);
}

ResultCode OrvaConnObject::create_directory (ARef<OrvaConnObject> self, const orva_char *directory) {
  return ordinary_command (self, &API::create_directory, {.DirectoryName = text_argument (directory)});
}

// --- Changes

void OrvaConnObject::take_first (Names &names, AString &taken) {
  if (names.empty ())
    return;
  taken = *names.begin ();
  names.erase (names.begin ());
}

ResultCode OrvaConnObject::track_change_added_clip (ARef<OrvaConnObject> self, OrvaStringBuffer clip) {
  OrvaConnObject &c = *self;
  return take_change (track_clip_reports (self), clip, [&c] (AString &taken) {
    const AMutexScope hold (c.clip_changes_lock_);
    take_first (c.added_clips_, taken);
  });
}

ResultCode OrvaConnObject::track_change_deleted_clip (ARef<OrvaConnObject> self, OrvaStringBuffer clip) {
  OrvaConnObject &c = *self;
  return take_change (track_clip_reports (self), clip, [&c] (AString &taken) {
    const AMutexScope hold (c.clip_changes_lock_);
    take_first (c.deleted_clips_, taken);
  });
}

ResultCode OrvaConnObject::track_change_changed_clip (ARef<OrvaConnObject> self, OrvaStringBuffer clip) {
  OrvaConnObject &c = *self;
  return take_change (track_clip_reports (self), clip, [&c] (AString &taken) {
    const AMutexScope hold (c.clip_changes_lock_);
    take_first (c.changed_clips_, taken);
  });
}

ResultCode OrvaConnObject::track_change_added_directory (ARef<OrvaConnObject> self,
                                                         OrvaStringBuffer directory) {
  OrvaConnObject &c = *self;
  return take_change (track_directory_reports (self), directory, [&c] (AString &taken) {
    const AMutexScope hold (c.clip_changes_lock_);
    const AMutexScope hold_directories (c.directory_changes_lock_);
    take_first (c.added_directories_, taken);
  });
}

ResultCode OrvaConnObject::track_change_deleted_directory (ARef<OrvaConnObject> self,
                                                           OrvaStringBuffer directory) {
  OrvaConnObject &c = *self;
  return take_change (track_directory_reports (self), directory, [&c] (AString &taken) {
    const AMutexScope hold (c.clip_changes_lock_);
    const AMutexScope hold_directories (c.directory_changes_lock_);
    take_first (c.deleted_directories_, taken);
  });
}

// --- Reports. A name goes in before it comes out elsewhere: when memory runs out in between, it is not lost.

void OrvaConnObject::on_clip_created (AString ClipID) {
  if (ClipID.is_empty ())
    return;
  const AMutexScope hold (clip_changes_lock_);
  added_clips_.insert (ClipID);
  deleted_clips_.erase (ClipID);
  changed_clips_.erase (ClipID);
}

// A clip that was added and that nobody has looked at yet stays simply added.
void OrvaConnObject::on_clip_changed (AString ClipID) {
  if (ClipID.is_empty ())
    return;
  const AMutexScope hold (clip_changes_lock_);
  if (added_clips_.contains (ClipID))
    return;
  changed_clips_.insert (ClipID);
  deleted_clips_.erase (ClipID);
}

void OrvaConnObject::on_clip_deleted (AString ClipID) {
  if (ClipID.is_empty ())
    return;
  const AMutexScope hold (clip_changes_lock_);
  deleted_clips_.insert (ClipID);
  added_clips_.erase (ClipID);
  changed_clips_.erase (ClipID);
}

void OrvaConnObject::on_directory_created (AString DirectoryName) {
  if (DirectoryName.is_empty ())
    return;
  const AMutexScope hold (directory_changes_lock_);
  added_directories_.insert (DirectoryName);
  deleted_directories_.erase (DirectoryName);
}

void OrvaConnObject::on_directory_deleted (AString DirectoryName) {
  if (DirectoryName.is_empty ())
    return;
  const AMutexScope hold (directory_changes_lock_);
  deleted_directories_.insert (DirectoryName);
  added_directories_.erase (DirectoryName);
}
