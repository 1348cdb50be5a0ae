// What the server reports enters the parts of the connection here, on the connection's thread.
#include "api/connection/conn_object.h"

#include "orva.h"

// --- Clips and directories

void OrvaConnObject::on_clip_created (AString ClipID) {
  clips.changes.added (ClipID);
}

void OrvaConnObject::on_clip_changed (AString ClipID) {
  clips.changes.changed (ClipID);
}

void OrvaConnObject::on_clip_deleted (AString ClipID) {
  clips.changes.deleted (ClipID);
}

void OrvaConnObject::on_directory_created (AString DirectoryName) {
  directories.changes.added (DirectoryName);
}

void OrvaConnObject::on_directory_deleted (AString DirectoryName) {
  directories.changes.deleted (DirectoryName);
}

// --- State of channels

void OrvaConnObject::on_channel_status (uint32_t Channel, uint32_t ChannelStatus, AOption<AString>) {
  channels.keep (Channel, &ChannelCache::status, ChannelStatus, {ORVA_NOTICE_STATUS});
}

void OrvaConnObject::on_channel_clipid (uint32_t Channel, AString ClipID) {
  channels.keep (Channel, &ChannelCache::clipid, std::move (ClipID), {ORVA_NOTICE_CLIP});
}

void OrvaConnObject::on_channel_speed (uint32_t Channel, Kelvane::fixed Speed) {
  channels.keep (Channel, &ChannelCache::speed, Speed, {ORVA_NOTICE_SPEED});
}

void OrvaConnObject::on_channel_timecode (uint32_t Channel, uint32_t ClipPosition, QUILL3::Timecode,
                                          QUILL3::Timecode) {
  channels.keep (Channel, &ChannelCache::position, ClipPosition, {ORVA_NOTICE_POSITION});
}

// C29: doc/compatibility.md
void OrvaConnObject::on_channel_info (uint32_t Channel, QUILL3::ChannelInformation ChannelInformation) {
  channels.keep (Channel, &ChannelCache::info, std::move (ChannelInformation),
                 {ORVA_NOTICE_CLIP_LENGTH, ORVA_NOTICE_PRECUE_COUNT, ORVA_NOTICE_REPEAT, ORVA_NOTICE_ANGLE,
                  ORVA_NOTICE_EE});
}

// --- Playlists

void OrvaConnObject::on_channel_listplay_list (uint32_t Channel, AString ListID, uint32_t ListPlayMode) {
  channels.change_list (Channel, [&] (ListPlayState &list) { list.load (ListID, ListPlayMode); });
}

void OrvaConnObject::on_channel_listplay_unloaded (uint32_t Channel) {
  channels.change_list (Channel, [] (ListPlayState &list) { list.unload (); });
}

void OrvaConnObject::on_channel_listplay_item_exists (uint32_t Channel, uint16_t ListIndex,
                                                      QUILL3::ListElement ListElement) {
  channels.change_list (Channel, [&] (ListPlayState &list) { list.set_item (ListIndex, ListElement); });
}

void OrvaConnObject::on_channel_listplay_item_insert (uint32_t Channel, uint16_t ListIndex,
                                                      QUILL3::ListElement ListElement) {
  channels.change_list (Channel, [&] (ListPlayState &list) { list.insert_item (ListIndex, ListElement); });
}

void OrvaConnObject::on_channel_listplay_item_remove (uint32_t Channel, uint16_t ListIndex) {
  channels.change_list (Channel, [&] (ListPlayState &list) { list.remove_item (ListIndex); });
}

void OrvaConnObject::on_channel_listplay_clear_all (uint32_t Channel) {
  channels.change_list (Channel, [] (ListPlayState &list) { list.clear_items (); });
}

void OrvaConnObject::on_channel_listplay_air_now (uint32_t Channel, QUILL3::ListPlaybackIndex position) {
  channels.change_list (Channel, [&] (ListPlayState &list) { list.air_now = position.ListIndex; });
}

void OrvaConnObject::on_channel_listplay_air_next (uint32_t Channel, QUILL3::ListPlaybackIndex position) {
  channels.change_list (Channel, [&] (ListPlayState &list) { list.air_next = position.ListIndex; });
}

void OrvaConnObject::on_channel_listplay_air_lock (uint32_t Channel, QUILL3::ListPlaybackIndex position) {
  channels.change_list (Channel, [&] (ListPlayState &list) { list.air_lock = position.ListIndex; });
}

void OrvaConnObject::on_channel_listplay_loop (uint32_t Channel, uint32_t Loop) {
  channels.change_list (Channel, [&] (ListPlayState &list) { list.loop = Loop; });
}

// --- Key-value stores

void OrvaConnObject::on_metadata_change (AString MetadataDatabase, AString MetadataPrefix,
                                         QUILL3::MetadataList MetadataList) {
  folders.on_change (MetadataDatabase, MetadataPrefix, MetadataList);
}

void OrvaConnObject::on_metadata_remove (AString MetadataDatabase, AString MetadataPrefix,
                                         QUILL3::KeyList KeyList) {
  folders.on_remove (MetadataDatabase, MetadataPrefix, KeyList);
}
