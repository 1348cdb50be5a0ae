// The list of clips that plays on a channel: a mirror filled by reports, and the commands that move it.
#include "api/channel_query.h"
#include "api/command_flow.h"
#include "api/typehelp.h"
#include "schema/members.h"

#include <utility>

using namespace typehelp;

namespace {

constexpr uint32_t cue_only = member (QUILL3::Enumeration::Roll, "cueonly");
constexpr uint32_t roll = member (QUILL3::Enumeration::Roll, "roll");

/// The low 16 bits are the place in the list.
uint16_t index_argument (uint32_t index) {
  return static_cast<uint16_t> (index);
}

template <class Command>
ResultCode play_item (const ARef<OrvaConnObject> &self, OkWrapper<Command> wrapper, uint32_t channel,
                      uint32_t index, uint32_t how) {
  return ordinary_command (
      self, wrapper,
      {.Channel = channel_argument (channel), .ListIndex = index_argument (index), .Roll = how});
}

} // namespace

ResultCode OrvaConnObject::cmd_playlist_play_now (ARef<OrvaConnObject> self, uint32_t channel,
                                                  uint32_t index) {
  return play_item (self, &API::list_play_now, channel, index, roll);
}

ResultCode OrvaConnObject::cmd_playlist_play_next (ARef<OrvaConnObject> self, uint32_t channel,
                                                   uint32_t index) {
  return play_item (self, &API::list_play_next, channel, index, roll);
}

ResultCode OrvaConnObject::cmd_playlist_cue_now (ARef<OrvaConnObject> self, uint32_t channel,
                                                 uint32_t index) {
  return play_item (self, &API::list_play_now, channel, index, cue_only);
}

ResultCode OrvaConnObject::cmd_playlist_cue_next (ARef<OrvaConnObject> self, uint32_t channel,
                                                  uint32_t index) {
  return play_item (self, &API::list_play_next, channel, index, cue_only);
}

ResultCode OrvaConnObject::cmd_playlist_cue_list (ARef<OrvaConnObject> self, uint32_t channel) {
  return play_item (self, &API::list_play_now, channel, 0, cue_only);
}

ResultCode OrvaConnObject::playlist_status (ARef<OrvaConnObject> self, uint32_t channel, uint32_t *loaded) {
  return query_channel (self, channel, &ChannelCache::listplay, [&] (const ListPlayState &state) {
    if (loaded != nullptr)
      *loaded = state.is_loaded () ? 1 : 0;
  });
}

ResultCode OrvaConnObject::playlist_count (ARef<OrvaConnObject> self, uint32_t channel, uint32_t *count) {
  return query_channel (self, channel, &ChannelCache::listplay, [&] (const ListPlayState &state) {
    if (count != nullptr)
      *count = state.count ();
  });
}

// What comes is noted as a first value of the information, not of the list. So the two queries above never
// see a first value and give their error after the whole wait, and a first query of the information may find
// the item valid before its own report has come. Applications know the two queries as ones that fail, and
// nothing here may start to answer them, or to renew their registration, behind their backs.
template <class Change>
void OrvaConnObject::change_listplay (uint32_t channel, Change change) {
  if (channel >= channel_count)
    return;
  ChannelCache &cache = channel_cache (channel);
  const AMutexScope hold (cache.listplay.lock);
  change (cache.listplay.value);
  cache.info.valid.store (1);
}

void OrvaConnObject::on_channel_listplay_list (uint32_t Channel, AString ListID, uint32_t ListPlayMode) {
  change_listplay (Channel, [&] (ListPlayState &state) { state.load (ListID, ListPlayMode); });
}

void OrvaConnObject::on_channel_listplay_unloaded (uint32_t Channel) {
  change_listplay (Channel, [] (ListPlayState &state) { state.unload (); });
}

void OrvaConnObject::on_channel_listplay_item_exists (uint32_t Channel, uint16_t ListIndex,
                                                      QUILL3::ListElement ListElement) {
  change_listplay (Channel, [&] (ListPlayState &state) { state.set_item (ListIndex, ListElement); });
}

void OrvaConnObject::on_channel_listplay_item_insert (uint32_t Channel, uint16_t ListIndex,
                                                      QUILL3::ListElement ListElement) {
  change_listplay (Channel, [&] (ListPlayState &state) { state.insert_item (ListIndex, ListElement); });
}

void OrvaConnObject::on_channel_listplay_item_remove (uint32_t Channel, uint16_t ListIndex) {
  change_listplay (Channel, [&] (ListPlayState &state) { state.remove_item (ListIndex); });
}

void OrvaConnObject::on_channel_listplay_clear_all (uint32_t Channel) {
  change_listplay (Channel, [] (ListPlayState &state) { state.clear_items (); });
}

void OrvaConnObject::on_channel_listplay_air_now (uint32_t Channel, QUILL3::ListPlaybackIndex position) {
  change_listplay (Channel, [&] (ListPlayState &state) { state.air_now = position.ListIndex; });
}

void OrvaConnObject::on_channel_listplay_air_next (uint32_t Channel, QUILL3::ListPlaybackIndex position) {
  change_listplay (Channel, [&] (ListPlayState &state) { state.air_next = position.ListIndex; });
}

void OrvaConnObject::on_channel_listplay_air_lock (uint32_t Channel, QUILL3::ListPlaybackIndex position) {
  change_listplay (Channel, [&] (ListPlayState &state) { state.air_lock = position.ListIndex; });
}

void OrvaConnObject::on_channel_listplay_loop (uint32_t Channel, uint32_t Loop) {
  change_listplay (Channel, [&] (ListPlayState &state) { state.loop = Loop; });
}
