#pragma once

#include "api/connection/folder_scan.h"
#include "engine/quill3_api.h"

#include <cstdint>
#include <set>
#include <string>
#include <unordered_map>

/// Receives what the server reports of a folder, which is what a metadata database is called here. Called on
/// the connection's thread, under the lock of the watches.
class FolderListener {
public:
  virtual void on_change (const AString &prefix, const QUILL3::MetadataList &items) = 0;
  virtual void on_remove (const AString &prefix, const QUILL3::KeyList &keys) = 0;

protected:
  FolderListener () = default;
  FolderListener (const FolderListener &) = delete;
  FolderListener &operator= (const FolderListener &) = delete;
  ~FolderListener () = default;
};

/// Who wants the reports of which folder of one server, and the downloads of each folder. Any thread may call
/// any member.
///
/// Locks, outermost first: watches, scans, one scan; watches, what a listener locks. Commands are sent, but
/// not waited for, with the lock of the watches held, so that a listener which was removed is not called any
/// more.
class FolderWatches {
public:
  /// @param api sends the commands; it outlives this object
  explicit FolderWatches (QUILL3::API &api) : api_ (api) {}
  FolderWatches (const FolderWatches &) = delete;
  FolderWatches &operator= (const FolderWatches &) = delete;
  ~FolderWatches ();

  /// Adds a listener. Watches the folder if this is its first listener, and downloads it. The listener
  /// receives the download like reports. Throws when memory runs out; the listener is not added then.
  // C61: doc/compatibility.md
  void add (FolderListener *listener, const std::u16string &folder);
  /// Removes a listener; no report reaches it after this has returned.
  void remove (FolderListener *listener) noexcept;
  /// Waits until no download of the folder is under way and the last one has succeeded.
  bool wait_for_download (const std::u16string &folder, uint32_t milliseconds);

  /// To be called on each new link. Sends all watches and downloads again, without waiting.
  void watch_again ();
  void on_change (const AString &folder, const AString &prefix, const QUILL3::MetadataList &items);
  void on_remove (const AString &folder, const AString &prefix, const QUILL3::KeyList &keys);

private:
  using Listeners = std::set<FolderListener *>;

  /// @return true when it was the last one of its folder
  bool forget (FolderListener *listener, const std::u16string &folder) noexcept KELVANE_REQUIRES (lock_);
  void watch (const std::u16string &folder);
  void start_download (const std::u16string &folder);
  void receive_download (AString folder, AString prefix, QUILL3::MetadataList items);
  ARef<FolderScan> scan_of (const std::u16string &folder);
  template <class Call>
  void each_listener (const AString &folder, Call call);

  QUILL3::API &api_;

  Mutex lock_;
  std::unordered_map<std::u16string, Listeners> listeners_ KELVANE_GUARDED_BY (lock_); ///< by folder
  std::unordered_map<FolderListener *, std::u16string> folders_ KELVANE_GUARDED_BY (lock_);

  Mutex scans_lock_;
  /// By folder; an entry is made at first use and kept.
  std::unordered_map<std::u16string, ARef<FolderScan>> scans_ KELVANE_GUARDED_BY (scans_lock_);
};
