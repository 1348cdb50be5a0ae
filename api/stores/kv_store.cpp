#include "api/stores/kv_store.h"

#include "base/kelvane_assert.h"
#include "platform/threads.h"

#include <new>
#include <utility>

namespace {

constexpr uint32_t close_drain_milliseconds = 2000;
constexpr uint32_t close_worker_milliseconds = 10000;
constexpr uint32_t retry_milliseconds = 200;

AString text (const std::u16string &units) {
  return AString::from_utf16 (units);
}

} // namespace

KVStore::KVStore (Connection connection, std::u16string folder, std::u16string prefix, uint32_t mode)
    : connection_ (std::move (connection)), folder_ (std::move (folder)), prefix_ (std::move (prefix)),
      prefix_text_ (AString::from_utf16 (prefix_)), mode_ (mode) {
  if (is_readable ())
    connection_->folders.add (this, folder_);
  try {
    if (is_writable ())
      start_worker ();
  } catch (...) {
    if (is_readable ())
      connection_->folders.remove (this);
    throw;
  }
}

bool KVStore::is_readable () const {
  return mode_ == ORVA_STORE_READ || mode_ == ORVA_STORE_READ_WRITE;
}

bool KVStore::is_writable () const {
  return mode_ == ORVA_STORE_READ_WRITE || mode_ == ORVA_STORE_WRITE;
}

// --- From callers to the server

ResultCode KVStore::set (const std::u16string &key, std::u16string value) {
  if (!is_writable ())
    return result_read_only ();
  std::u16string full_key = prefix_ + key;
  {
    const AMutexScope hold (pending_.lock);
    pending_.set.insert_or_assign (full_key, std::move (value));
    pending_.erase.erase (full_key);
  }
  pending_.worker_wakes.notify_all ();
  return result_ok ();
}

ResultCode KVStore::erase (const std::u16string &key) {
  if (!is_writable ())
    return result_read_only ();
  std::u16string full_key = prefix_ + key;
  {
    const AMutexScope hold (pending_.lock);
    pending_.erase.insert (full_key);
    pending_.set.erase (full_key);
  }
  pending_.worker_wakes.notify_all ();
  return result_ok ();
}

ResultCode KVStore::flush (uint32_t timeout_ms) {
  if (!is_writable ())
    return result_read_only ();
  return wait_until_drained (timeout_ms) ? result_ok () : result_timeout ();
}

bool KVStore::wait_until_drained (uint32_t timeout_ms) {
  const AMutexScope hold (pending_.lock);
  return pending_.drained.wait_for (pending_.lock, timeout_ms, [this] () KELVANE_REQUIRES (pending_.lock) {
    return pending_.worker_finished || pending_.is_empty ();
  });
}

void KVStore::start_worker () {
  platform::call_with_signals_blocked (
      [] (void *store) {
        auto *self = static_cast<KVStore *> (store);
        self->pending_.worker = std::make_unique<std::thread> ([self] { self->worker (); });
      },
      this);
}

void KVStore::worker () {
  const AMutexScope hold (pending_.lock);
  const std::atomic<bool> &stop = *pending_.stop_requested;
  while (!stop) {
    pending_.worker_wakes.wait (
        pending_.lock, [&] () KELVANE_REQUIRES (pending_.lock) { return !pending_.is_empty () || stop; });
    if (stop)
      break;
    if (!send_next ())
      wait_before_retry ();
    if (pending_.is_empty ())
      pending_.drained.notify_all ();
  }
  pending_.worker_finished = true;
  pending_.drained.notify_all ();
}

/// Sends one key; all settings are sent before any erasure. @return false when it has to be tried again.
// C52: doc/compatibility.md
bool KVStore::send_next () noexcept {
  try {
    if (!pending_.set.empty ())
      return send_a_setting ();
    if (!pending_.erase.empty ())
      return send_an_erasure ();
    return KELVANE_ASSERT (0);
  } catch (...) { // out of memory, in a command or before it
    return false;
  }
}

// C56: doc/compatibility.md
template <class Command>
ResultCode KVStore::send_unlocked (const Command &command) {
  const MutexRelease release (pending_.lock);
  return ordinary_command (connection_, command);
}

// The key stays in its table until the server has accepted it, so `flush` waits for it. A value that has
// replaced this one meanwhile stays too, and is sent later.
bool KVStore::send_a_setting () {
  const auto [key, value] = *pending_.set.cbegin ();
  const ResultCode code = send_unlocked (QUILL3::command::metadata_set{
      .MetadataDatabase = text (folder_), .MetadataList = {{.Key = text (key), .Value = text (value)}}});
  if (code != ORVA_OK)
    return false;
  const auto sent = pending_.set.find (key);
  if (sent != pending_.set.end () && sent->second == value)
    pending_.set.erase (sent);
  return true;
}

bool KVStore::send_an_erasure () {
  const std::u16string key = *pending_.erase.cbegin ();
  const ResultCode code = send_unlocked (
      QUILL3::command::metadata_erase{.MetadataDatabase = text (folder_), .KeyList = {text (key)}});
  if (code != ORVA_OK)
    return false;
  pending_.erase.erase (key);
  return true;
}

// In all stores this wait ends early when the first store of the process that waited here is closed. After
// that nothing ends it early.
// C50: doc/compatibility.md
void KVStore::wait_before_retry () {
  using Stop = std::weak_ptr<const std::atomic<bool>>;
  alignas (Stop) static unsigned char storage[sizeof (Stop)]; // never destroyed, and made without memory
  static const Stop &first_stop = *new (storage) Stop (pending_.stop_requested);
  pending_.worker_wakes.wait_for (pending_.lock, retry_milliseconds, [] {
    const auto stop = first_stop.lock ();
    return stop != nullptr && *stop;
  });
}

// C51: doc/compatibility.md
void KVStore::close () {
  if (is_readable ())
    connection_->folders.remove (this);
  if (!is_writable ())
    return;
  wait_until_drained (close_drain_milliseconds);
  const AMutexScope hold (pending_.lock);
  *pending_.stop_requested = true;
  pending_.worker_wakes.notify_all ();
  pending_.drained.wait_for (pending_.lock, close_worker_milliseconds,
                             [this] () KELVANE_REQUIRES (pending_.lock) { return pending_.worker_finished; });
  pending_.worker->join ();
  pending_.stop_requested.reset (); // a closed store must not shorten the waits of others
}

// --- From the server to callers

ResultCode KVStore::get_change (uint32_t timeout_ms, uint32_t *type, std::u16string *key,
                                std::u16string *value) {
  if (!is_readable ())
    return result_write_only ();
  const AMutexScope hold (changes_lock_);
  if (change_noted_.wait_for (changes_lock_, timeout_ms,
                              [this] () KELVANE_REQUIRES (changes_lock_) { return !changes_.is_empty (); }))
    return take_change (type, key, value);
  key->clear ();
  value->clear ();
  return result_timeout ();
}

ResultCode KVStore::take_change (uint32_t *type, std::u16string *key, std::u16string *value) {
  if (!KELVANE_ASSERT (!changes_.is_empty ()))
    return result_internal_error ();
  const StoreChange &change = changes_.first ();
  key->assign (change.key ()); // what may throw is done before the change is removed
  value->assign (change.value ());
  const ResultCode ok = result_ok ();
  *type = change.type ();
  changes_.remove_first ();
  return ok;
}

ResultCode KVStore::wait_scan (uint32_t timeout_ms) {
  return connection_->folders.wait_for_download (folder_, timeout_ms) ? result_ok () : result_timeout ();
}

bool KVStore::short_key (const AString &report_prefix, const AString &key, std::u16string *result) const {
  bool begins = false;
  const AString rest = (report_prefix + key).strip_prefix (prefix_text_, &begins);
  if (!begins || rest.is_empty ())
    return false;
  result->clear ();
  rest.append_utf16_to (result);
  return true;
}

// Wakes the threads that wait for a change when keys have been added to the changes, also when memory has run
// out before the last key was added.
struct KVStore::Announcement {
  explicit Announcement (KVStore &of) KELVANE_REQUIRES (of.changes_lock_)
      : store (of), waiting (of.changes_.size ()) {}
  ~Announcement () KELVANE_NO_THREAD_SAFETY_ANALYSIS {
    if (store.changes_.size () != waiting)
      store.change_noted_.notify_all ();
  }
  KVStore &store;
  const size_t waiting;
};

void KVStore::on_change (const AString &report_prefix, const QUILL3::MetadataList &items) {
  const AMutexScope hold (changes_lock_);
  const Announcement announcement (*this);
  std::u16string key;
  std::u16string value;
  for (const QUILL3::Metadata &item : items)
    if (short_key (report_prefix, item.Key, &key)) {
      value.clear ();
      item.Value.append_utf16_to (&value);
      changes_.add (ORVA_STORE_CHANGE_SET, key, value);
    }
}

void KVStore::on_remove (const AString &report_prefix, const QUILL3::KeyList &keys) {
  const AMutexScope hold (changes_lock_);
  const Announcement announcement (*this);
  std::u16string key;
  for (const AString &reported : keys)
    if (short_key (report_prefix, reported, &key))
      changes_.add (ORVA_STORE_CHANGE_ERASE, key, {});
}
