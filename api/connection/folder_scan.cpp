#include "api/connection/folder_scan.h"

#include "base/kelvane_assert.h"

#include <utility>

void FolderScan::begin (const ARef<FolderScan> &self) {
  const AMutexScope hold (lock_);
  ++under_way_;
  self_ = self;
}

void FolderScan::finish (bool outcome) {
  ARef<FolderScan> self; // destroyed after the lock is released: it may be the last reference
  const AMutexScope hold (lock_);
  if (!KELVANE_ASSERT (under_way_ > 0))
    return;
  if (--under_way_ != 0)
    return;
  succeeded_ = outcome;
  finished_.notify_all ();
  std::swap (self, self_);
}

void FolderScan::abandon () {
  ARef<FolderScan> self;
  const AMutexScope hold (lock_);
  std::swap (self, self_);
}

bool FolderScan::wait (uint32_t milliseconds) {
  const AMutexScope hold (lock_);
  return finished_.wait_for (lock_, milliseconds,
                             [this] () KELVANE_REQUIRES (lock_) { return under_way_ == 0 && succeeded_; });
}
