#pragma once

#include "api/results.h"
#include "base/aref.h"
#include "base/astring.h"
#include "schema/records.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <unordered_map>
#include <unordered_set>

class OrvaConnObject;

/// A client's view of one part, told by a prefix, of a metadata database of the server, which is called a
/// folder here. What callers set and erase is kept as pending until the server has accepted it, one key at a
/// time, by a thread of the store's own; what the server reports is folded into one undelivered change for
/// each key.
///
/// A store's own writes come back when the server reports them, like those of anybody else.
///
/// Threads: any number may call any member but the constructor and `close`, which are called once, first and
/// last. The reports come on the connection's thread, under the lock of the connection's watches. The two
/// locks of a store are never held together, and the pending lock not while a command is sent.
class KVStore {
public:
  /// Subscribes a store that is readable, so that reports may come before the constructor has ended, and
  /// starts the thread of one that is writable. Throws when there is no memory or no thread to be had, and
  /// nothing is left behind then.
  /// @param prefix of the keys, part of no key that callers see; may be empty
  /// @param mode an OrvaStoreMode
  KVStore (ARef<OrvaConnObject> connection, std::u16string folder, std::u16string prefix, uint32_t mode);
  KVStore (const KVStore &) = delete;
  KVStore &operator= (const KVStore &) = delete;
  /// `close` has been called.
  ~KVStore () = default;

  ResultCode set (const std::u16string &key, std::u16string value);
  ResultCode erase (const std::u16string &key);
  /// Waits until the server has accepted all that is pending, what is added meanwhile included. After `close`
  /// it gives OK at once, whatever was lost.
  ResultCode flush (uint32_t timeout_ms);
  /// Waits for a change and takes the one whose key changed first. @param type receives an OrvaStoreChange.
  /// When the time is up, @p key and @p value are empty. Out of memory takes no change.
  ResultCode get_change (uint32_t timeout_ms, uint32_t *type, std::u16string *key, std::u16string *value);
  /// Waits until the folder has been downloaded.
  ResultCode wait_scan (uint32_t timeout_ms);

  /// Ends the store: no report reaches it from here on, and what is pending has two seconds to go out. Then
  /// the thread has ten more to leave, and is waited for without limit, the pending lock held. A thread that
  /// still waits for an answer then needs that lock to go on, so a server that stays silent for twelve
  /// seconds holds this call for ever. Where it returns, the thread has left for certain: callers rely on
  /// that order.
  void close ();

  /// What has been set in or taken out of the folder. Keys that do not begin with this store's prefix, or are
  /// nothing but the prefix, are not the store's.
  void on_metadata_change (const AString &report_prefix, const QUILL3::MetadataList &items);
  void on_metadata_remove (const AString &report_prefix, const QUILL3::KeyList &keys);

private:
  friend struct BrokenTables; // a test, because no call can break them
  using Hold = std::unique_lock<std::mutex>;

  struct Pending {
    std::mutex lock;
    std::unique_ptr<std::thread> worker; ///< null when the store is not writable
    std::condition_variable worker_cond; ///< there is something to send, or the end has come
    std::unordered_map<std::u16string, std::u16string> kv_set; ///< by full key
    std::unordered_set<std::u16string> kv_erase;               ///< full keys
    /// Written under the lock. Counted, because the retry waits of other stores may look at it. Null after
    /// the end.
    std::shared_ptr<std::atomic<bool>> stop_requested = std::make_shared<std::atomic<bool>> (false);
    std::condition_variable drained_cond; ///< everything has gone out, or the worker has
    bool worker_finished = false;

    bool is_empty () const { return kv_set.empty () && kv_erase.empty (); }
  };

  bool is_readable () const;
  bool is_writable () const;
  void start_worker ();
  void worker ();
  bool send_next (Hold &hold) noexcept;
  bool send_a_setting (Hold &hold);
  bool send_an_erasure (Hold &hold);
  void retry_wait (Hold &hold);
  bool wait_until_drained (uint32_t timeout_ms);

  /// The key as callers know it; false when it is not of this store.
  bool short_key (const AString &report_prefix, const AString &key, std::u16string *result) const;
  struct Announcement;
  void note_setting (std::u16string key, std::u16string value);
  void note_erasure (std::u16string key);

  // Constant after construction.
  const ARef<OrvaConnObject> connection_;
  const std::u16string folder_;
  const std::u16string prefix_;
  const AString prefix_text_;
  const uint32_t mode_;

  std::mutex changes_lock_;
  std::condition_variable changes_cond_;
  // Guarded by changes_lock_. Each key of the order is in exactly one of the other two.
  std::list<std::u16string> changes_order_; ///< oldest first
  std::unordered_map<std::u16string, std::u16string> changes_set_;
  std::unordered_set<std::u16string> changes_erase_;

  Pending pending_;
};
