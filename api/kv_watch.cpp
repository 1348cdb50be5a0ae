#include "api/kv_watch.h"

#include "base/amethod.h"
#include "base/kelvane_assert.h"

#include <chrono>
#include <utility>

bool KVWatch::remove (KVStore *store, const std::u16string &folder) noexcept {
  byStore.erase (store);
  const auto found = byFolder.find (folder);
  if (found == byFolder.end ())
    return false;
  found->second.erase (store);
  if (!found->second.empty ())
    return false;
  byFolder.erase (found);
  return true;
}

void KVScan::begin () {
  const std::lock_guard hold (lock_);
  ++scans_in_process_;
  if (scan_self_ == nullptr)
    scan_self_ = shared_from_this ();
}

void KVScan::finish (bool outcome) {
  std::shared_ptr<KVScan> self; // goes after the lock: it may be the last to hold this object
  const std::lock_guard hold (lock_);
  if (!KELVANE_ASSERT (scans_in_process_ > 0))
    return;
  if (--scans_in_process_ != 0)
    return;
  scan_ok_ = outcome;
  completed_.notify_all ();
  self.swap (scan_self_);
}

void KVScan::let_go () {
  std::shared_ptr<KVScan> self;
  const std::lock_guard hold (lock_);
  self.swap (scan_self_);
}

bool KVScan::wait (uint32_t timeout_ms) {
  std::unique_lock hold (lock_);
  return completed_.wait_for (hold, std::chrono::milliseconds (timeout_ms),
                              [this] { return scans_in_process_ == 0 && scan_ok_; });
}

QUILL3::callback::ok KVScan::ok_callback () {
  return AMethod::bind (this, &KVScan::cb_ok);
}

QUILL3::callback::error KVScan::error_callback () {
  return AMethod::bind (this, &KVScan::cb_error);
}
