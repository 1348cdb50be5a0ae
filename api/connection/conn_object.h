#pragma once

#include "api/connection/channel_states.h"
#include "api/connection/folder_watches.h"
#include "api/connection/name_changes.h"
#include "base/aref.h"
#include "engine/quill3_client.h"

#include <atomic>
#include <cstdint>

/// What the library knows of one server: the protocol's client, and the parts that its reports fill. What
/// callers do with a connection is written in `api/exports`, one file for each family of functions.
///
/// Counted: the registry holds one reference, each running export another, and each outstanding command a
/// third. Threads: any thread may call the public members; report handlers and `on_connected` run on the
/// connection's own thread.
class OrvaConnObject : public QUILL3::Client {
public:
  /// Not started, with 127.0.0.1 as its server. Throws std::bad_alloc when the system cannot make locks.
  OrvaConnObject () = default;

  /// Stops the connection's thread and waits for it before any member is destroyed. Never runs on that
  /// thread: a last reference that is dropped there is kept until the thread has left its loop.
  ~OrvaConnObject () override;

  /// Sets the server's address (IPv4, host byte order) and starts the thread, a little below normal priority.
  void start (uint32_t address);

  // --- Waiting or not

  /// Sets whether ordinary commands that start from now on wait for their answers. @param flag 0: they wait
  void set_asynchronous (uint32_t flag) { asynchronous_ = flag; }
  bool is_asynchronous () const { return asynchronous_ != 0; }

  /// Count the commands that are not answered yet. Only `Completion` calls them.
  void command_started () { ++pending_commands_; }
  void command_finished () { --pending_commands_; }

  /// Waits, without a limit, until no command is pending.
  void wait_for_pending_commands () const;

  /// How many links there have been. A link is counted before anything is registered on it.
  uint32_t links () const { return links_; }

  // --- What the reports fill

  TrackedNames clips{report_type ("clip_change")};
  TrackedNames directories{report_type ("directory_change")};
  ChannelStates channels;
  FolderWatches folders{*this};

protected:
  /// Registers again, without waiting, all that callers have asked for so far. The server has forgotten it
  /// with the old link.
  void on_connected () override;

  // --- Reports of the server (reports.cpp)

  void on_clip_created (AString ClipID) override;
  void on_clip_changed (AString ClipID) override;
  void on_clip_deleted (AString ClipID) override;
  void on_directory_created (AString DirectoryName) override;
  void on_directory_deleted (AString DirectoryName) override;

  void on_channel_status (uint32_t Channel, uint32_t ChannelStatus, AOption<AString> ClipID) override;
  void on_channel_clipid (uint32_t Channel, AString ClipID) override;
  void on_channel_speed (uint32_t Channel, Kelvane::fixed Speed) override;
  void on_channel_timecode (uint32_t Channel, uint32_t ClipPosition, QUILL3::Timecode DisplayTimecode,
                            QUILL3::Timecode InputTimecode) override;
  void on_channel_info (uint32_t Channel, QUILL3::ChannelInformation ChannelInformation) override;

  void on_channel_listplay_list (uint32_t Channel, AString ListID, uint32_t ListPlayMode) override;
  void on_channel_listplay_unloaded (uint32_t Channel) override;
  void on_channel_listplay_item_exists (uint32_t Channel, uint16_t ListIndex,
                                        QUILL3::ListElement ListElement) override;
  void on_channel_listplay_item_insert (uint32_t Channel, uint16_t ListIndex,
                                        QUILL3::ListElement ListElement) override;
  void on_channel_listplay_item_remove (uint32_t Channel, uint16_t ListIndex) override;
  void on_channel_listplay_clear_all (uint32_t Channel) override;
  void on_channel_listplay_air_now (uint32_t Channel, QUILL3::ListPlaybackIndex position) override;
  void on_channel_listplay_air_lock (uint32_t Channel, QUILL3::ListPlaybackIndex position) override;
  void on_channel_listplay_air_next (uint32_t Channel, QUILL3::ListPlaybackIndex position) override;
  void on_channel_listplay_loop (uint32_t Channel, uint32_t Loop) override;

  void on_metadata_change (AString MetadataDatabase, AString MetadataPrefix,
                           QUILL3::MetadataList MetadataList) override;
  void on_metadata_remove (AString MetadataDatabase, AString MetadataPrefix,
                           QUILL3::KeyList KeyList) override;

private:
  std::atomic<uint32_t> asynchronous_{0};
  std::atomic<uint32_t> pending_commands_{0};
  std::atomic<uint32_t> links_{0};
};

/// A reference to a connection, which keeps it alive.
using Connection = ARef<OrvaConnObject>;
