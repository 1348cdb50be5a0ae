#pragma once

#include "api/channel_cache.h"
#include "api/kv_watch.h"
#include "api/notify.h"
#include "api/results.h"
#include "api/typehelp.h"
#include "base/amutex.h"
#include "base/aprotect.h"
#include "base/aref.h"
#include "base/atomic_unsigned.h"
#include "base/bsem.h"
#include "engine/quill3_client.h"
#include "orva.h"

#include <array>
#include <atomic>
#include <initializer_list>
#include <memory>
#include <set>

/// The library's view of one server: the protocol's client, with one operation for each exported function,
/// and the completion objects that turn the protocol's callbacks into blocking calls.
///
/// An operation is a static function that takes the connection by value as its first argument, so that it
/// lives for the length of the call whatever other threads close; its other arguments and its result are
/// those of the export. Each family stands in a source file of its own.
///
/// Counted: the registry holds one reference, each running export another, and each completion object a
/// third. Threads: operations run on any thread; report handlers and `on_connected` on the connection's own;
/// completions there too or, when the link is down, on any thread that finds it so.
class OrvaConnObject : public QUILL3::Client {
public:
  // --- Lifecycle (orva_lifecycle.cpp)

  /// Number of channels that callers know.
  static constexpr uint32_t channel_count = typehelp::exported_channels;

  /// Not started, with 127.0.0.1 as its server.
  OrvaConnObject ();

  /// Stops the connection's thread and waits for it before any member goes. Not on that thread: a last
  /// reference that falls there is kept until the thread has left its loop.
  ~OrvaConnObject () override;

  /// Sets the server's address (IPv4, host byte order) and starts the thread, a little below normal priority.
  void start (uint32_t address);

  /// Registers the reports of changes to clips, or to directories, unless that has been done; then the
  /// registration is repeated on each new connection, for the life of the object. Waits in any case.
  static ResultCode track_clip_reports (ARef<OrvaConnObject> self);
  static ResultCode track_directory_reports (ARef<OrvaConnObject> self);

  // --- Completion objects (completions.h, completions.cpp)

  class CBBaseObject;
  class CBOkObject;
  class CBClipExistsObject;
  class CBNamesObject;
  class CBClipIdsObject;
  class CBDirectoryNamesObject;
  class CBClipInfoObject;
  class CBServerNameObject;
  class CBVideoStandardObject;
  class CBDiskSpaceObject;
  template <class T>
  class CBRef;

  /// For ordinary commands: with a semaphore unless the connection is asynchronous.
  static CBRef<CBOkObject> make_completion (const ARef<OrvaConnObject> &self);

  /// For registrations, which the library must see finish: always with a semaphore.
  static CBRef<CBOkObject> make_forced_completion (const ARef<OrvaConnObject> &self);

  /// For commands that return data: always with a semaphore. @tparam T the completion class.
  /// @param arguments what its constructor takes behind the connection
  template <class T, class... Arguments>
  static CBRef<T> make_query (const ARef<OrvaConnObject> &self, Arguments... arguments);

  // --- Waiting or not (orva_lifecycle.cpp)

  static void synchronous (ARef<OrvaConnObject> self, uint32_t flag);
  static void sync (ARef<OrvaConnObject> self);

  // --- Transport and gangs (orva_transport.cpp)

  static ResultCode cmd_play1 (ARef<OrvaConnObject> self, uint32_t channel);
  static ResultCode cmd_play2 (ARef<OrvaConnObject> self, uint32_t channel, double speed);
  static ResultCode cmd_play3 (ARef<OrvaConnObject> self, uint32_t channel, double speed,
                               uint32_t min_latency);
  static ResultCode cmd_gang_play1 (ARef<OrvaConnObject> self, uint32_t mask);
  static ResultCode cmd_gang_play2 (ARef<OrvaConnObject> self, uint32_t mask, double speed);
  static ResultCode cmd_gang_play3 (ARef<OrvaConnObject> self, uint32_t mask, double speed,
                                    uint32_t min_latency);
  static ResultCode cmd_stop1 (ARef<OrvaConnObject> self, uint32_t channel);
  static ResultCode cmd_stop2 (ARef<OrvaConnObject> self, uint32_t channel, uint32_t min_latency);
  static ResultCode cmd_gang_stop1 (ARef<OrvaConnObject> self, uint32_t mask);
  static ResultCode cmd_gang_stop2 (ARef<OrvaConnObject> self, uint32_t mask, uint32_t min_latency);
  static ResultCode jog1 (ARef<OrvaConnObject> self, uint32_t channel, int32_t distance);
  static ResultCode jog2 (ARef<OrvaConnObject> self, uint32_t channel, int32_t distance,
                          uint32_t min_latency);
  static ResultCode gang_jog1 (ARef<OrvaConnObject> self, uint32_t mask, int32_t distance);
  static ResultCode gang_jog2 (ARef<OrvaConnObject> self, uint32_t mask, int32_t distance,
                               uint32_t min_latency);
  static ResultCode goto1 (ARef<OrvaConnObject> self, uint32_t channel, uint32_t position);
  static ResultCode goto2 (ARef<OrvaConnObject> self, uint32_t channel, uint32_t position,
                           uint32_t min_latency);
  static ResultCode gang_goto1 (ARef<OrvaConnObject> self, uint32_t mask, uint32_t position);
  static ResultCode gang_goto2 (ARef<OrvaConnObject> self, uint32_t mask, uint32_t position,
                                uint32_t min_latency);

  static ResultCode cmd_loadclip1 (ARef<OrvaConnObject> self, uint32_t channel, const orva_char *clip);
  static ResultCode cmd_loadclip2 (ARef<OrvaConnObject> self, uint32_t channel, const orva_char *clip,
                                   uint32_t repeat);
  static ResultCode cmd_loadclip3 (ARef<OrvaConnObject> self, uint32_t channel, const orva_char *clip,
                                   uint32_t repeat, uint32_t position);
  static ResultCode cmd_loadclip4 (ARef<OrvaConnObject> self, uint32_t channel, const orva_char *clip,
                                   uint32_t repeat, uint32_t position, uint32_t loop_in,
                                   uint32_t clip_position);
  static ResultCode cmd_loadclip5 (ARef<OrvaConnObject> self, uint32_t channel, const orva_char *clip,
                                   uint32_t angle);
  static ResultCode cmd_loadclip6 (ARef<OrvaConnObject> self, uint32_t channel, const orva_char *clip,
                                   uint32_t angle, uint32_t position);
  static ResultCode cmd_loadclip7 (ARef<OrvaConnObject> self, uint32_t channel, const orva_char *clip,
                                   uint32_t angle, uint32_t position, uint32_t clip_position);
  static ResultCode precue1 (ARef<OrvaConnObject> self, uint32_t channel, const orva_char *clip,
                             uint32_t condition);
  static ResultCode precue2 (ARef<OrvaConnObject> self, uint32_t channel, const orva_char *clip,
                             uint32_t condition, uint32_t position);
  static ResultCode precue3 (ARef<OrvaConnObject> self, uint32_t channel, const orva_char *clip,
                             uint32_t condition, uint32_t position, uint32_t length);
  static ResultCode precue4 (ARef<OrvaConnObject> self, uint32_t channel, const orva_char *clip,
                             uint32_t condition, uint32_t position, uint32_t loop_in, uint32_t length);
  static ResultCode precue_clear1 (ARef<OrvaConnObject> self, uint32_t channel);
  static ResultCode precue_activate1 (ARef<OrvaConnObject> self, uint32_t channel);
  static ResultCode gang_precue_activate1 (ARef<OrvaConnObject> self, uint32_t mask);

  static ResultCode take1 (ARef<OrvaConnObject> self, uint32_t channel, uint32_t type, uint32_t duration);
  static ResultCode take2 (ARef<OrvaConnObject> self, uint32_t channel, uint32_t type, uint32_t duration,
                           uint32_t follow);
  static ResultCode go_live1 (ARef<OrvaConnObject> self, uint32_t channel);
  static ResultCode go_live2 (ARef<OrvaConnObject> self, uint32_t channel, uint32_t angle);
  static ResultCode go_live3 (ARef<OrvaConnObject> self, uint32_t channel, const orva_char *clip);
  static ResultCode go_live4 (ARef<OrvaConnObject> self, uint32_t channel, const orva_char *clip,
                              uint32_t angle);
  static ResultCode angle1 (ARef<OrvaConnObject> self, uint32_t channel, uint32_t angle);
  static ResultCode set_out1 (ARef<OrvaConnObject> self, uint32_t channel, uint32_t position);
  static ResultCode clear_out (ARef<OrvaConnObject> self, uint32_t channel);
  static ResultCode set_repeat (ARef<OrvaConnObject> self, uint32_t channel, uint32_t repeat);
  static ResultCode unload_channel (ARef<OrvaConnObject> self, uint32_t channel);

  static ResultCode edit1 (ARef<OrvaConnObject> self, uint32_t channel, uint32_t edit_bits);
  static ResultCode gang_edit1 (ARef<OrvaConnObject> self, uint32_t mask, uint32_t edit_bits);
  static ResultCode ee1 (ARef<OrvaConnObject> self, uint32_t channel, uint32_t edit_bits, uint32_t mode);
  static ResultCode gang_ee1 (ARef<OrvaConnObject> self, uint32_t mask, uint32_t edit_bits, uint32_t mode);

  // --- Clips (orva_clips.cpp)

  static ResultCode clip_exists (ARef<OrvaConnObject> self, const orva_char *clip, uint32_t *exists);
  static ResultCode rename_clip (ARef<OrvaConnObject> self, const orva_char *from, const orva_char *to);
  static ResultCode delete_clip (ARef<OrvaConnObject> self, const orva_char *clip);
  static ResultCode create_clip1 (ARef<OrvaConnObject> self, const orva_char *clip, uint32_t track_mask);
  static ResultCode create_clip2 (ARef<OrvaConnObject> self, const orva_char *clip, uint32_t track_mask,
                                  uint32_t length);
  static ResultCode create_clip3 (ARef<OrvaConnObject> self, uint32_t channel, const orva_char *clip,
                                  uint32_t track_mask, uint32_t length);
  static ResultCode create_child_clip1 (ARef<OrvaConnObject> self, const orva_char *clip,
                                        const orva_char *parent);
  static ResultCode create_child_clip2 (ARef<OrvaConnObject> self, const orva_char *clip,
                                        const orva_char *parent, uint32_t angle);
  /// Both: "Not implemented", and nothing is sent.
  static ResultCode set_readonly (ARef<OrvaConnObject> self, const orva_char *clip);
  static ResultCode unset_readonly (ARef<OrvaConnObject> self, const orva_char *clip);
  /// Sends what all setters of a clip's attributes have in common.
  static ResultCode modify_clip (ARef<OrvaConnObject> self, const AString &clip,
                                 const QUILL3::ClipAttrChange &change);
  /// @param connection the number that callers know this connection by, for the setters
  static ResultCode open_clip_metadata (ARef<OrvaConnObject> self, uint32_t connection, const orva_char *clip,
                                        uint32_t *handle);

  // --- Lists, changes of clips and directories (orva_lists.cpp)

  static ResultCode open_clip_list (ARef<OrvaConnObject> self, uint32_t *handle);
  static ResultCode open_directory_list (ARef<OrvaConnObject> self, uint32_t *handle);
  static ResultCode create_directory (ARef<OrvaConnObject> self, const orva_char *directory);
  static ResultCode track_change_added_clip (ARef<OrvaConnObject> self, OrvaStringBuffer clip);
  static ResultCode track_change_deleted_clip (ARef<OrvaConnObject> self, OrvaStringBuffer clip);
  static ResultCode track_change_changed_clip (ARef<OrvaConnObject> self, OrvaStringBuffer clip);
  static ResultCode track_change_added_directory (ARef<OrvaConnObject> self, OrvaStringBuffer directory);
  static ResultCode track_change_deleted_directory (ARef<OrvaConnObject> self, OrvaStringBuffer directory);

  // --- Virtual clips (orva_vclips.cpp)

  static ResultCode vclip_create (ARef<OrvaConnObject> self, const orva_char *vclip, uint32_t length);
  static ResultCode vclip_free (ARef<OrvaConnObject> self, const orva_char *vclip);
  static ResultCode vclip_modification_start (ARef<OrvaConnObject> self, const orva_char *vclip);
  static ResultCode vclip_modification_end (ARef<OrvaConnObject> self, const orva_char *vclip);
  static ResultCode vclip_add_segment1 (ARef<OrvaConnObject> self, const orva_char *vclip,
                                        const orva_char *clip, uint32_t clip_position, uint32_t track_mask,
                                        uint32_t vclip_position, uint32_t length);
  static ResultCode vclip_add_segment2 (ARef<OrvaConnObject> self, const orva_char *vclip,
                                        const orva_char *clip, uint32_t clip_position, uint32_t track_mask,
                                        uint32_t vclip_position, uint32_t length, double speed);
  static ResultCode vclip_clear_segment (ARef<OrvaConnObject> self, const orva_char *vclip,
                                         uint32_t track_mask, uint32_t vclip_position, uint32_t length);
  static ResultCode vclip_ripple (ARef<OrvaConnObject> self, const orva_char *vclip, uint32_t track_mask,
                                  uint32_t vclip_position, int32_t distance);
  static ResultCode vclip_track_enable (ARef<OrvaConnObject> self, const orva_char *vclip,
                                        uint32_t track_mask);
  static ResultCode vclip_cfg_tracks (ARef<OrvaConnObject> self, const orva_char *vclip,
                                      const orva_char *clip, uint32_t track_mask);
  static ResultCode cmd_load_vclip1 (ARef<OrvaConnObject> self, uint32_t channel, const orva_char *vclip);
  static ResultCode cmd_load_vclip2 (ARef<OrvaConnObject> self, uint32_t channel, const orva_char *vclip,
                                     uint32_t repeat);
  static ResultCode cmd_load_vclip3 (ARef<OrvaConnObject> self, uint32_t channel, const orva_char *vclip,
                                     uint32_t repeat, uint32_t position);

  // --- Server information (orva_server.cpp)

  static ResultCode server_name (ARef<OrvaConnObject> self, OrvaStringBuffer name);
  static ResultCode video_frequency (ARef<OrvaConnObject> self, uint32_t *frequency);
  static ResultCode video_resolution (ARef<OrvaConnObject> self, uint32_t *resolution);
  static ResultCode video_standard (ARef<OrvaConnObject> self, uint32_t *standard);
  static ResultCode disk_usage1 (ARef<OrvaConnObject> self, uint64_t *total, uint64_t *available,
                                 uint32_t *field_size);

  // --- State of channels, notices (orva_channels.cpp)

  static ResultCode channel_clip (ARef<OrvaConnObject> self, uint32_t channel, OrvaStringBuffer clip);
  static ResultCode channel_clip_length (ARef<OrvaConnObject> self, uint32_t channel, uint32_t *length);
  static ResultCode channel_position (ARef<OrvaConnObject> self, uint32_t channel, uint32_t *position);
  static ResultCode channel_precue_count (ARef<OrvaConnObject> self, uint32_t channel, uint32_t *count);
  static ResultCode channel_status (ARef<OrvaConnObject> self, uint32_t channel, uint32_t *status);
  static ResultCode channel_repeat (ARef<OrvaConnObject> self, uint32_t channel, uint32_t *repeat);
  static ResultCode channel_speed (ARef<OrvaConnObject> self, uint32_t channel, double *speed);
  static ResultCode channel_angle (ARef<OrvaConnObject> self, uint32_t channel, uint32_t *angle,
                                   uint32_t *angle_count);
  static ResultCode channel_ee (ARef<OrvaConnObject> self, uint32_t channel, uint32_t *edit_bits,
                                uint32_t *mode);
  static void get_notification (ARef<OrvaConnObject> self, uint32_t timeout, uint32_t *kind,
                                uint32_t *channel);

  // --- Playlists (orva_playlists.cpp)

  static ResultCode cmd_playlist_play_now (ARef<OrvaConnObject> self, uint32_t channel, uint32_t index);
  static ResultCode cmd_playlist_play_next (ARef<OrvaConnObject> self, uint32_t channel, uint32_t index);
  static ResultCode cmd_playlist_cue_now (ARef<OrvaConnObject> self, uint32_t channel, uint32_t index);
  static ResultCode cmd_playlist_cue_next (ARef<OrvaConnObject> self, uint32_t channel, uint32_t index);
  static ResultCode cmd_playlist_cue_list (ARef<OrvaConnObject> self, uint32_t channel);
  static ResultCode playlist_status (ARef<OrvaConnObject> self, uint32_t channel, uint32_t *loaded);
  static ResultCode playlist_count (ARef<OrvaConnObject> self, uint32_t channel, uint32_t *count);

  // --- Key-value stores (orva_kvstores.cpp)

  /// Enters a store: subscribes its folder, if it is the first one there, and has the folder downloaded.
  /// Throws when memory runs out; the store is not entered then.
  void kv_watch (KVStore *store, const std::u16string &folder);
  /// Takes a store out; when this returns no report reaches it any more.
  void kv_unwatch (KVStore *store) noexcept;
  /// Waits until no download of the folder is under way and the last one has succeeded.
  ResultCode kv_wait_scan (const std::u16string &folder, uint32_t timeout_ms);
  /// Ordinary commands: they wait unless the connection is asynchronous.
  static ResultCode kv_send_set (ARef<OrvaConnObject> self, const std::u16string &folder,
                                 const std::u16string &key, const std::u16string &value);
  static ResultCode kv_send_erase (ARef<OrvaConnObject> self, const std::u16string &folder,
                                   const std::u16string &key);

protected:
  // --- Lifecycle

  /// Registers again, without waiting, what callers have asked for so far: the server forgets with the
  /// connection, the library does not. On the connection's thread, at the start of each connection.
  void on_connected () override;

  // --- Clips and directories: what the server reports. An empty name is ignored.

  void on_clip_created (AString ClipID) override;
  void on_clip_changed (AString ClipID) override;
  void on_clip_deleted (AString ClipID) override;
  void on_directory_created (AString DirectoryName) override;
  void on_directory_deleted (AString DirectoryName) override;

  // --- State of channels, playlists: what the server reports

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

  // --- Key-value stores: what the server reports

  void on_metadata_change (AString MetadataDatabase, AString MetadataPrefix,
                           QUILL3::MetadataList MetadataList) override;
  void on_metadata_remove (AString MetadataDatabase, AString MetadataPrefix,
                           QUILL3::KeyList KeyList) override;

  /// @param channel below channel_count
  ChannelCache &channel_cache (uint32_t channel) { return *channels_[channel]; }
  Notifier &notifier () { return notifier_; }

private:
  // --- Waiting or not

  std::atomic<uint32_t> asynchronous_{0}; ///< not 0: ordinary commands do not wait; read when one starts
  atomic_unsigned pending_commands_;      ///< completion objects made and not yet finished

  // --- Lifecycle

  static ResultCode ensure_report (const ARef<OrvaConnObject> &self, atomic_unsigned &registered,
                                   uint32_t report_type);
  /// Marks a report as registered, so that each new connection asks for it again.
  /// @param link the one on which the server has accepted the registration
  /// @param register_report is called when there is a newer one, which may not have asked. When it throws,
  ///   the report counts as not registered.
  template <class RegisterReport>
  void keep_registered (atomic_unsigned &registered, unsigned link, RegisterReport register_report);

  atomic_unsigned links_; ///< how many there have been; counted before anything is registered on one
  // Not 0: the server has accepted these registrations, and is asked again on each new connection.
  atomic_unsigned clip_reports_registered_;
  atomic_unsigned directory_reports_registered_;

  // --- Changes of clips and directories (orva_lists.cpp). A name is in one set of its kind at most, and
  // waits there until a caller takes it. The reports of directories take their own lock only; callers take
  // both, so that no two threads touch a set at once.

  using Names = std::set<AString>;

  static void take_first (Names &names, AString &taken);

  AMutex clip_changes_lock_;
  Names added_clips_ KELVANE_GUARDED_BY (clip_changes_lock_);
  Names deleted_clips_ KELVANE_GUARDED_BY (clip_changes_lock_);
  Names changed_clips_ KELVANE_GUARDED_BY (clip_changes_lock_);
  AMutex directory_changes_lock_; ///< taken inside clip_changes_lock_
  Names added_directories_ KELVANE_GUARDED_BY (directory_changes_lock_);
  Names deleted_directories_ KELVANE_GUARDED_BY (directory_changes_lock_);

  // --- State of channels (channel_query.h, orva_channels.cpp)

  template <class Item, class Read>
  static ResultCode query_channel (const ARef<OrvaConnObject> &self, uint32_t channel,
                                   Item ChannelCache::*item, Read read);
  template <class Item>
  static ResultCode channel_item_accessor (const ARef<OrvaConnObject> &self, uint32_t channel,
                                           Item ChannelCache::*item);
  static ResultCode no_such_channel (uint32_t channel);
  /// Registers the report of an item, unless that has been done, and waits for its first value.
  static ResultCode ensure_channel_item (const ARef<OrvaConnObject> &self, uint32_t channel,
                                         uint32_t report_type, atomic_unsigned &registered,
                                         const atomic_unsigned &valid);
  void register_channel_reports ();
  template <class Item>
  void keep_channel_value (uint32_t channel, Item ChannelCache::*item, typename Item::Value value,
                           std::initializer_list<uint32_t> notices);

  const std::array<std::unique_ptr<ChannelCache>, channel_count> channels_;
  Notifier notifier_;

  // --- Playlists (orva_playlists.cpp)

  template <class Change>
  void change_listplay (uint32_t channel, Change change);

  // --- Key-value stores (orva_kvstores.cpp). Locks, outermost first: watches, scans, one scan; watches, the
  // changes of one store. Commands are sent, but not waited for, under the lock of the watches.

  void kv_unwatch_locked (KVWatch &l, KVStore *store) noexcept;
  std::shared_ptr<KVScan> kv_scan (const std::u16string &folder);
  void kv_start_scan (const std::u16string &folder);
  void kv_restart ();
  void kv_let_go_of_scans () noexcept;

  AProtect<KVWatch> kv_watch_;
  /// By folder; an entry is made at first use and stays.
  AProtect<std::unordered_map<std::u16string, std::shared_ptr<KVScan>>> kv_scans_;
  const QUILL3::callback::metadata metadata_callback_; ///< what a download finds comes like a report

  bsem spare_semaphore_{false}; ///< lives and dies with the object; nothing waits on it
};
