#include "api/connection/folder_watches.h"

#include "base/kelvane_assert.h"

#include <utility>

namespace {

AString text (const std::u16string &units) {
  return AString::from_utf16 (units);
}

} // namespace

FolderWatches::~FolderWatches () {
  const AMutexScope hold (scans_lock_);
  for (const auto &[folder, scan] : scans_)
    scan->abandon ();
}

// Every new listener causes a download, even when the folder has other listeners. They receive all values
// again.
void FolderWatches::add (FolderListener *listener, const std::u16string &folder) {
  const AMutexScope hold (lock_);
  if (!KELVANE_ASSERT (!folders_.contains (listener)))
    return;
  try {
    folders_.emplace (listener, folder);
    Listeners &listeners = listeners_[folder];
    listeners.insert (listener);
    if (listeners.size () == 1)
      watch (folder);
    start_download (folder);
  } catch (...) {
    forget (listener, folder);
    throw;
  }
}

// Without memory the server is not told. It goes on reporting, and the reports are ignored.
void FolderWatches::remove (FolderListener *listener) noexcept {
  const AMutexScope hold (lock_);
  const auto found = folders_.find (listener);
  if (!KELVANE_ASSERT (found != folders_.cend ()))
    return;
  const std::u16string folder = std::move (found->second);
  if (!KELVANE_ASSERT (listeners_.contains (folder)) || !forget (listener, folder))
    return;
  try {
    api_.unwatch_metadata_database ({.MetadataDatabase = text (folder)});
  } catch (...) {
  }
}

bool FolderWatches::forget (FolderListener *listener, const std::u16string &folder) noexcept {
  folders_.erase (listener);
  const auto found = listeners_.find (folder);
  if (found == listeners_.end ())
    return false;
  found->second.erase (listener);
  if (!found->second.empty ())
    return false;
  listeners_.erase (found);
  return true;
}

bool FolderWatches::wait_for_download (const std::u16string &folder, uint32_t milliseconds) {
  return scan_of (folder)->wait (milliseconds);
}

void FolderWatches::watch_again () {
  const AMutexScope hold (lock_);
  for (const auto &[folder, listeners] : listeners_) {
    watch (folder);
    start_download (folder);
  }
}

// C58: doc/compatibility.md
void FolderWatches::watch (const std::u16string &folder) {
  api_.watch_metadata_database ({.MetadataDatabase = text (folder)});
}

void FolderWatches::start_download (const std::u16string &folder) {
  const ARef<FolderScan> scan = scan_of (folder);
  scan->begin (scan);
  try {
    api_.download_metadata ({.MetadataDatabase = text (folder)}, scan->on_ok (),
                            AMethod::bind (this, &FolderWatches::receive_download), scan->on_error ());
  } catch (...) { // no callback has run, and none will
    scan->finish (false);
    throw;
  }
}

void FolderWatches::receive_download (AString folder, AString prefix, QUILL3::MetadataList items) {
  on_change (folder, prefix, items);
}

ARef<FolderScan> FolderWatches::scan_of (const std::u16string &folder) {
  const AMutexScope hold (scans_lock_);
  ARef<FolderScan> &scan = scans_[folder];
  if (scan.is_null ())
    scan = ARef<FolderScan>::create ();
  return scan;
}

// The watches stay locked while listeners are called, so that one which has been removed gets no further
// call.
template <class Call>
void FolderWatches::each_listener (const AString &folder, Call call) {
  const AMutexScope hold (lock_);
  const auto found = listeners_.find (folder.to_u16string ());
  if (found == listeners_.end ())
    return;
  for (FolderListener *listener : found->second)
    call (*listener);
}

void FolderWatches::on_change (const AString &folder, const AString &prefix,
                               const QUILL3::MetadataList &items) {
  each_listener (folder, [&] (FolderListener &listener) { listener.on_change (prefix, items); });
}

void FolderWatches::on_remove (const AString &folder, const AString &prefix, const QUILL3::KeyList &keys) {
  each_listener (folder, [&] (FolderListener &listener) { listener.on_remove (prefix, keys); });
}
