// What key-value stores need of their connection: watches, downloads, and the commands that change a folder.
#include "api/command_flow.h"
#include "api/kv_store.h"
#include "base/kelvane_assert.h"
#include "platform/threads.h"

#include <utility>

namespace {

constexpr unsigned out_of_memory_milliseconds = 1;

AString text (const std::u16string &units) {
  return AString::from_utf16 (units);
}

} // namespace

// Every new store has the folder downloaded, the second one on it too: the older stores see present values
// again, and fold what is the same.
void OrvaConnObject::kv_watch (KVStore *store, const std::u16string &folder) {
  auto l = kv_watch_.lock ();
  if (!KELVANE_ASSERT (l->byStore.find (store) == l->byStore.cend ()))
    return;
  try {
    l->byStore.emplace (store, folder);
    std::set<KVStore *> &stores = l->byFolder[folder];
    const bool first = stores.empty ();
    stores.insert (store);
    if (first)
      watch_metadata_database ({.MetadataDatabase = text (folder)});
    kv_start_scan (folder);
  } catch (...) {
    l->remove (store, folder);
    throw;
  }
}

// A store that stays behind would be told of changes when it is long gone, so this waits for the memory that
// the lock needs. The server is told if there is memory for that too; reports of a folder nobody looks at are
// ignored.
void OrvaConnObject::kv_unwatch (KVStore *store) noexcept {
  for (;;) {
    try {
      return kv_unwatch_locked (*kv_watch_.lock (), store);
    } catch (...) {
      platform::sleep_milliseconds (out_of_memory_milliseconds);
    }
  }
}

void OrvaConnObject::kv_unwatch_locked (KVWatch &l, KVStore *store) noexcept {
  const auto it = l.byStore.find (store);
  if (!KELVANE_ASSERT (it != l.byStore.cend ()))
    return;
  const std::u16string folder = std::move (it->second);
  l.byStore.erase (it);
  if (!KELVANE_ASSERT (l.byFolder.find (folder) != l.byFolder.cend ()) || !l.remove (store, folder))
    return;
  try {
    unwatch_metadata_database ({.MetadataDatabase = text (folder)});
  } catch (...) {
  }
}

std::shared_ptr<KVScan> OrvaConnObject::kv_scan (const std::u16string &folder) {
  auto l = kv_scans_.lock ();
  std::shared_ptr<KVScan> &scan = (*l)[folder];
  if (scan == nullptr)
    scan = std::make_shared<KVScan> ();
  return scan;
}

void OrvaConnObject::kv_start_scan (const std::u16string &folder) {
  const std::shared_ptr<KVScan> scan = kv_scan (folder);
  scan->begin ();
  try {
    download_metadata ({.MetadataDatabase = text (folder)}, scan->ok_callback (), metadata_callback_,
                       scan->error_callback ());
  } catch (...) { // no callback has run, and none will
    scan->finish (false);
    throw;
  }
}

ResultCode OrvaConnObject::kv_wait_scan (const std::u16string &folder, uint32_t timeout_ms) {
  return kv_scan (folder)->wait (timeout_ms) ? result_ok () : result_timeout ();
}

void OrvaConnObject::kv_restart () {
  auto l = kv_watch_.lock ();
  for (const auto &[folder, stores] : l->byFolder) {
    watch_metadata_database ({.MetadataDatabase = text (folder)});
    kv_start_scan (folder);
  }
}

void OrvaConnObject::kv_let_go_of_scans () noexcept {
  try {
    for (const auto &[folder, scan] : *kv_scans_.lock ())
      scan->let_go ();
  } catch (...) { // no memory for the lock: what is left behind is a few words for each folder
  }
}

ResultCode OrvaConnObject::kv_send_set (ARef<OrvaConnObject> self, const std::u16string &folder,
                                        const std::u16string &key, const std::u16string &value) {
  return ordinary_command (
      self, &API::metadata_set,
      {.MetadataDatabase = text (folder), .MetadataList = {{.Key = text (key), .Value = text (value)}}});
}

ResultCode OrvaConnObject::kv_send_erase (ARef<OrvaConnObject> self, const std::u16string &folder,
                                          const std::u16string &key) {
  return ordinary_command (self, &API::metadata_erase,
                           {.MetadataDatabase = text (folder), .KeyList = {text (key)}});
}

// The watches stay locked while stores are served, so that a store which has been taken out gets no further
// call.

void OrvaConnObject::on_metadata_change (AString MetadataDatabase, AString MetadataPrefix,
                                         QUILL3::MetadataList MetadataList) {
  auto l = kv_watch_.lock ();
  const auto found = l->byFolder.find (MetadataDatabase.to_u16string ());
  if (found == l->byFolder.end ())
    return;
  for (KVStore *store : found->second)
    store->on_metadata_change (MetadataPrefix, MetadataList);
}

void OrvaConnObject::on_metadata_remove (AString MetadataDatabase, AString MetadataPrefix,
                                         QUILL3::KeyList KeyList) {
  auto l = kv_watch_.lock ();
  const auto found = l->byFolder.find (MetadataDatabase.to_u16string ());
  if (found == l->byFolder.end ())
    return;
  for (KVStore *store : found->second)
    store->on_metadata_remove (MetadataPrefix, KeyList);
}
