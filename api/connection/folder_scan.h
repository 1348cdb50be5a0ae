#pragma once

#include "api/basics/mutex.h"
#include "base/amethod.h"
#include "base/aref.h"
#include "engine/callbacks.h"

#include <cstdint>

/// The downloads of one folder on one connection. A download keeps the object alive until it has been
/// answered. Any thread may call any member.
class FolderScan {
public:
  /// A download is about to be asked for. @param self this object
  void begin (const ARef<FolderScan> &self);
  /// It was answered. With several downloads under way, the outcome of the last one to end counts.
  void finish (bool outcome);
  /// The connection is being destroyed: no callback is called any more.
  void abandon ();

  /// Waits until no download is under way and the last one has succeeded. @return false when the time is up,
  /// in particular after a download that failed.
  // C53: doc/compatibility.md
  bool wait (uint32_t milliseconds);

  QUILL3::callback::ok on_ok () { return AMethod::bind (this, &FolderScan::succeed); }
  QUILL3::callback::error on_error () { return AMethod::bind (this, &FolderScan::fail); }

private:
  void succeed () { finish (true); }
  void fail (AString, uint32_t) { finish (false); }

  Mutex lock_;
  Condition finished_;
  uint32_t under_way_ KELVANE_GUARDED_BY (lock_) = 0; ///< downloads asked for and not yet answered
  bool succeeded_ KELVANE_GUARDED_BY (lock_) = false; ///< outcome of the one that last brought the count to 0
  ARef<FolderScan> self_ KELVANE_GUARDED_BY (lock_);  ///< set while a download is under way
};
