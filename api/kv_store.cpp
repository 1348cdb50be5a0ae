#include "api/kv_store.h"

#include "api/conn_object.h"
#include "base/kelvane_assert.h"
#include "platform/threads.h"

#include <chrono>
#include <new>
#include <utility>

namespace {

using std::chrono::milliseconds;

constexpr uint32_t close_drain_milliseconds = 2000;
constexpr milliseconds close_worker_limit{10000};
constexpr milliseconds retry_delay{200};

} // namespace

KVStore::KVStore (ARef<OrvaConnObject> connection, std::u16string folder, std::u16string prefix,
                  uint32_t mode)
    : connection_ (std::move (connection)), folder_ (std::move (folder)), prefix_ (std::move (prefix)),
      prefix_text_ (AString::from_utf16 (prefix_)), mode_ (mode) {
  if (is_readable ())
    connection_->kv_watch (this, folder_);
  try {
    if (is_writable ())
      start_worker ();
  } catch (...) {
    if (is_readable ())
      connection_->kv_unwatch (this);
    throw;
  }
}

bool KVStore::is_readable () const {
  return mode_ == ORVA_STORE_READ || mode_ == ORVA_STORE_READ_WRITE;
}

bool KVStore::is_writable () const {
  return mode_ == ORVA_STORE_READ_WRITE || mode_ == ORVA_STORE_WRITE;
}

// --- Outbound

ResultCode KVStore::set (const std::u16string &key, std::u16string value) {
  if (!is_writable ())
    return result_read_only ();
  std::u16string full_key = prefix_ + key;
  {
    const std::lock_guard hold (pending_.lock);
    pending_.kv_set.insert_or_assign (full_key, std::move (value));
    pending_.kv_erase.erase (full_key);
  }
  pending_.worker_cond.notify_all ();
  return result_ok ();
}

ResultCode KVStore::erase (const std::u16string &key) {
  if (!is_writable ())
    return result_read_only ();
  std::u16string full_key = prefix_ + key;
  {
    const std::lock_guard hold (pending_.lock);
    pending_.kv_erase.insert (full_key);
    pending_.kv_set.erase (full_key);
  }
  pending_.worker_cond.notify_all ();
  return result_ok ();
}

ResultCode KVStore::flush (uint32_t timeout_ms) {
  if (!is_writable ())
    return result_read_only ();
  return wait_until_drained (timeout_ms) ? result_ok () : result_timeout ();
}

bool KVStore::wait_until_drained (uint32_t timeout_ms) {
  Hold hold (pending_.lock);
  return pending_.drained_cond.wait_for (hold, milliseconds (timeout_ms),
                                         [this] { return pending_.worker_finished || pending_.is_empty (); });
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
  Hold hold (pending_.lock);
  const std::atomic<bool> &stop = *pending_.stop_requested;
  while (!stop) {
    pending_.worker_cond.wait (hold, [&] { return !pending_.is_empty () || stop; });
    if (stop)
      break;
    if (!send_next (hold))
      retry_wait (hold);
    if (pending_.is_empty ())
      pending_.drained_cond.notify_all ();
  }
  pending_.worker_finished = true;
  pending_.drained_cond.notify_all ();
}

/// Sends one key; all settings go before any erasure. @return false when it has to be tried again.
bool KVStore::send_next (Hold &hold) noexcept {
  try {
    if (!pending_.kv_set.empty ())
      return send_a_setting (hold);
    if (!pending_.kv_erase.empty ())
      return send_an_erasure (hold);
    return KELVANE_ASSERT (0);
  } catch (...) { // out of memory, in a command or before it
    if (!hold.owns_lock ())
      hold.lock ();
    return false;
  }
}

// The key stays in its table until the server has accepted it, and so is seen by whoever waits for that. A
// value that replaced the one in hand stays behind and goes out in its turn.
bool KVStore::send_a_setting (Hold &hold) {
  const auto it = pending_.kv_set.cbegin ();
  if (!KELVANE_ASSERT (it != pending_.kv_set.cend ()))
    return true;
  const auto [key, value] = *it;
  hold.unlock ();
  const ResultCode code = OrvaConnObject::kv_send_set (connection_, folder_, key, value);
  hold.lock ();
  if (code != ORVA_OK)
    return false;
  const auto sent = pending_.kv_set.find (key);
  if (sent != pending_.kv_set.end () && sent->second == value)
    pending_.kv_set.erase (sent);
  return true;
}

bool KVStore::send_an_erasure (Hold &hold) {
  const auto it = pending_.kv_erase.cbegin ();
  if (!KELVANE_ASSERT (it != pending_.kv_erase.cend ()))
    return true;
  const std::u16string key = *it;
  hold.unlock ();
  const ResultCode code = OrvaConnObject::kv_send_erase (connection_, folder_, key);
  hold.lock ();
  if (code != ORVA_OK)
    return false;
  pending_.kv_erase.erase (key);
  return true;
}

// What ends the wait early is bound once, to the first store of the process that comes here: while that store
// lives, its end counts for everyone, and afterwards nothing ends the wait. Applications pace their writes by
// it, so it stays as it is.
void KVStore::retry_wait (Hold &hold) {
  using Stop = std::weak_ptr<const std::atomic<bool>>;
  alignas (Stop) static unsigned char place[sizeof (Stop)]; // never destroyed, and had without memory
  static const Stop &first_stop = *new (place) Stop (pending_.stop_requested);
  pending_.worker_cond.wait_for (hold, retry_delay, [] {
    const auto stop = first_stop.lock ();
    return stop != nullptr && *stop;
  });
}

void KVStore::close () {
  if (is_readable ())
    connection_->kv_unwatch (this);
  if (!is_writable ())
    return;
  wait_until_drained (close_drain_milliseconds);
  Hold hold (pending_.lock);
  *pending_.stop_requested = true;
  pending_.worker_cond.notify_all ();
  pending_.drained_cond.wait_for (hold, close_worker_limit, [this] { return pending_.worker_finished; });
  pending_.worker->join ();
  pending_.stop_requested.reset (); // who still holds the store must not keep others from waiting
}

// --- Inbound

ResultCode KVStore::get_change (uint32_t timeout_ms, uint32_t *type, std::u16string *key,
                                std::u16string *value) {
  if (!is_readable ())
    return result_write_only ();
  Hold hold (changes_lock_);
  if (!changes_cond_.wait_for (hold, milliseconds (timeout_ms),
                               [this] { return !changes_order_.empty (); })) {
    key->clear ();
    value->clear ();
    return result_timeout ();
  }
  if (!KELVANE_ASSERT (!changes_order_.empty ()) ||
      !KELVANE_ASSERT (!(changes_set_.empty () && changes_erase_.empty ())))
    return result_internal_error ();
  const ResultCode ok = result_ok (); // may throw, and nothing must behind it: the change would be lost
  *key = std::move (changes_order_.front ());
  changes_order_.pop_front ();
  if (auto set = changes_set_.extract (*key)) {
    *type = ORVA_STORE_CHANGE_SET;
    *value = std::move (set.mapped ());
    return ok;
  }
  if (changes_erase_.erase (*key) != 0) {
    *type = ORVA_STORE_CHANGE_ERASE;
    value->clear ();
    return ok;
  }
  KELVANE_ASSERT (0);
  return result_internal_error ();
}

ResultCode KVStore::wait_scan (uint32_t timeout_ms) {
  return connection_->kv_wait_scan (folder_, timeout_ms);
}

bool KVStore::short_key (const AString &report_prefix, const AString &key, std::u16string *result) const {
  bool begins = false;
  const AString rest = (report_prefix + key).strip_prefix (prefix_text_, &begins);
  if (!begins || rest.is_empty ())
    return false;
  *result = rest.to_u16string ();
  return true;
}

// Wakes those who wait for a change when keys have been added to those that wait to be delivered, also when
// memory has run out before the last one was.
struct KVStore::Announcement {
  explicit Announcement (KVStore &of) : store (of), waiting (of.changes_order_.size ()) {}
  ~Announcement () {
    if (store.changes_order_.size () != waiting)
      store.changes_cond_.notify_all ();
  }
  KVStore &store;
  const size_t waiting;
};

void KVStore::on_metadata_change (const AString &report_prefix, const QUILL3::MetadataList &items) {
  const std::lock_guard hold (changes_lock_);
  const Announcement announcement (*this);
  std::u16string key;
  for (const QUILL3::Metadata &item : items)
    if (short_key (report_prefix, item.Key, &key))
      note_setting (std::move (key), item.Value.to_u16string ());
}

void KVStore::on_metadata_remove (const AString &report_prefix, const QUILL3::KeyList &keys) {
  const std::lock_guard hold (changes_lock_);
  const Announcement announcement (*this);
  std::u16string key;
  for (const AString &reported : keys)
    if (short_key (report_prefix, reported, &key))
      note_erasure (std::move (key));
}

// A key that waits to be delivered keeps its place, whatever becomes of it. What needs memory comes first, so
// that a failure leaves the tables as they were.

void KVStore::note_setting (std::u16string key, std::u16string value) {
  const auto set = changes_set_.find (key);
  if (set != changes_set_.end ()) {
    set->second = std::move (value);
    return;
  }
  const bool waits = changes_erase_.contains (key);
  std::list<std::u16string> place;
  if (!waits)
    place.push_back (key);
  changes_set_.emplace (key, std::move (value));
  changes_erase_.erase (key);
  changes_order_.splice (changes_order_.end (), place);
}

void KVStore::note_erasure (std::u16string key) {
  if (changes_erase_.contains (key))
    return;
  const bool waits = changes_set_.contains (key);
  std::list<std::u16string> place;
  if (!waits)
    place.push_back (key);
  changes_erase_.insert (key);
  changes_set_.erase (key);
  changes_order_.splice (changes_order_.end (), place);
}
