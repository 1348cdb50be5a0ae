#pragma once

#include "engine/callbacks.h"

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <unordered_map>

class KVStore;

/// The stores of one connection that want reports. The pointers own nothing: a store takes itself out before
/// it goes.
struct KVWatch {
  std::unordered_map<std::u16string, std::set<KVStore *>> byFolder; ///< the stores that look at each folder
  std::unordered_map<KVStore *, std::u16string> byStore;            ///< the folder of each store

  /// Takes a store out, wherever it stands. @return true when it was the last one of its folder.
  bool remove (KVStore *store, const std::u16string &folder) noexcept;
};

/// The downloads of one folder on one connection. Any thread. A download keeps the object alive until it has
/// been answered.
class KVScan : public std::enable_shared_from_this<KVScan> {
public:
  /// Before a download is asked for.
  void begin ();
  /// After its answer. With several downloads under way, the outcome of the last to end counts.
  void finish (bool outcome);
  /// The connection object is going: no callback comes any more.
  void let_go ();

  /// Waits until no download is under way and the last one has succeeded. @return false when the time is up,
  /// in particular after a download that failed.
  bool wait (uint32_t timeout_ms);

  QUILL3::callback::ok ok_callback ();
  QUILL3::callback::error error_callback ();

private:
  void cb_ok () { finish (true); }
  void cb_error (AString, uint32_t) { finish (false); }

  std::mutex lock_;
  std::condition_variable completed_;
  // Guarded by lock_.
  uint32_t scans_in_process_ = 0;     ///< downloads asked for and not yet answered
  bool scan_ok_ = false;              ///< outcome of the download that last brought the count to 0
  std::shared_ptr<KVScan> scan_self_; ///< set while a download is under way
};
