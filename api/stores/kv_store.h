#pragma once

#include "api/connection/command_flow.h"
#include "api/stores/store_changes.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <unordered_map>
#include <unordered_set>

/// A view of the keys with one prefix in a metadata database of the server, which is called a folder here.
/// What callers set and erase is pending until the server has accepted it. A thread of the store sends it,
/// one key at a time. Of the changes that the server reports, the last one of each key waits for a caller.
/// The server reports a store's own writes too.
///
/// Threads: any number may call any member but the constructor and `close`, which are called once, first and
/// last. Reports are received on the connection's thread, under the lock of the connection's watches. The two
/// locks of a store are never held together, and the pending lock not while a command is sent.
// C54, C55: doc/compatibility.md
class KVStore final : public FolderListener {
public:
  /// A readable store watches its folder, so reports may come before the constructor has ended. A writable
  /// store starts its thread. When there is no memory or the system cannot start a thread, the constructor
  /// throws, and the folder is not watched any more.
  /// @param prefix of the keys, part of no key that callers see; may be empty
  /// @param mode an OrvaStoreMode
  KVStore (Connection connection, std::u16string folder, std::u16string prefix, uint32_t mode);
  /// `close` must have been called.
  ~KVStore () = default;

  ResultCode set (const std::u16string &key, std::u16string value);
  ResultCode erase (const std::u16string &key);
  /// Waits until the server has accepted all that is pending, including what is added meanwhile. After
  /// `close` it returns OK at once, even if pending keys were lost.
  // C59: doc/compatibility.md
  ResultCode flush (uint32_t timeout_ms);
  /// Waits for a change and takes the one whose key changed first. @param type receives an OrvaStoreChange.
  /// When the time is up, @p key and @p value are empty. When memory runs out, no change is taken.
  // C60: doc/compatibility.md
  ResultCode get_change (uint32_t timeout_ms, uint32_t *type, std::u16string *key, std::u16string *value);
  /// Waits until the folder has been downloaded.
  ResultCode wait_scan (uint32_t timeout_ms);

  /// Ends the store. It receives no more reports. It waits two seconds until all that is pending has been
  /// sent, then ten seconds for the end of the thread, and then without limit. When this returns, the thread
  /// has ended for certain.
  ///
  /// Known limit: when the server has not answered the thread's command within twelve seconds, this waits for
  /// ever. The last wait holds the pending lock, and the thread needs that lock to end.
  void close ();

  /// Called when keys of the folder were set or removed. Ignores keys that do not begin with this store's
  /// prefix, and a key that equals the prefix.
  // C57: doc/compatibility.md
  void on_change (const AString &report_prefix, const QUILL3::MetadataList &items) override;
  void on_remove (const AString &report_prefix, const QUILL3::KeyList &keys) override;

private:
  friend struct BrokenWait; // of a test: no call takes a change when none waits

  struct Pending {
    Mutex lock;
    std::unique_ptr<std::thread>
        worker;             ///< null when the store is not writable; for the start and the end only
    Condition worker_wakes; ///< there is something to send, or the store is closing
    std::unordered_map<std::u16string, std::u16string> set KELVANE_GUARDED_BY (lock); ///< by full key
    std::unordered_set<std::u16string> erase KELVANE_GUARDED_BY (lock);               ///< full keys
    /// Written under the lock. Counted, because the retry waits of other stores may look at it. Null after
    /// the end.
    std::shared_ptr<std::atomic<bool>> stop_requested = std::make_shared<std::atomic<bool>> (false);
    Condition drained; ///< everything has been sent, or the worker has ended
    bool worker_finished KELVANE_GUARDED_BY (lock) = false;

    bool is_empty () const KELVANE_REQUIRES (lock) { return set.empty () && erase.empty (); }
  };

  bool is_readable () const;
  bool is_writable () const;
  void start_worker ();
  void worker ();
  bool send_next () noexcept KELVANE_REQUIRES (pending_.lock);
  bool send_a_setting () KELVANE_REQUIRES (pending_.lock);
  bool send_an_erasure () KELVANE_REQUIRES (pending_.lock);
  template <class Command>
  ResultCode send_unlocked (const Command &command) KELVANE_REQUIRES (pending_.lock);
  void wait_before_retry () KELVANE_REQUIRES (pending_.lock);
  bool wait_until_drained (uint32_t timeout_ms);

  ResultCode take_change (uint32_t *type, std::u16string *key, std::u16string *value)
      KELVANE_REQUIRES (changes_lock_);
  /// The key as callers know it; false when it is not of this store.
  bool short_key (const AString &report_prefix, const AString &key, std::u16string *result) const;
  struct Announcement;

  // Constant after construction.
  const Connection connection_;
  const std::u16string folder_;
  const std::u16string prefix_;
  const AString prefix_text_;
  const uint32_t mode_;

  Mutex changes_lock_;
  Condition change_noted_;
  StoreChanges changes_ KELVANE_GUARDED_BY (changes_lock_);

  Pending pending_;
};
