// Exports: the list of clips that plays on a channel.
#include "api/basics/typehelp.h"
#include "api/exports/channel_query.h"
#include "schema/members.h"

using namespace typehelp;

namespace {

constexpr uint32_t cue_only = member (QUILL3::Enumeration::Roll, "cueonly");
constexpr uint32_t roll = member (QUILL3::Enumeration::Roll, "roll");

/// @param index the low 16 bits are the position in the list
// C23: doc/compatibility.md
template <class Command>
ResultCode play_item (uint32_t connection, uint32_t channel, uint32_t index, uint32_t how) noexcept {
  return send_command (connection, [&] {
    return Command{
        .Channel = channel_argument (channel), .ListIndex = static_cast<uint16_t> (index), .Roll = how};
  });
}

} // namespace

uint32_t orva_cmd_playlist_play_now (uint32_t connection, uint32_t channel, uint32_t index) {
  return play_item<command::list_play_now> (connection, channel, index, roll);
}

uint32_t orva_cmd_playlist_play_next (uint32_t connection, uint32_t channel, uint32_t index) {
  return play_item<command::list_play_next> (connection, channel, index, roll);
}

uint32_t orva_cmd_playlist_cue_now (uint32_t connection, uint32_t channel, uint32_t index) {
  return play_item<command::list_play_now> (connection, channel, index, cue_only);
}

uint32_t orva_cmd_playlist_cue_next (uint32_t connection, uint32_t channel, uint32_t index) {
  return play_item<command::list_play_next> (connection, channel, index, cue_only);
}

uint32_t orva_cmd_playlist_cue_list (uint32_t connection, uint32_t channel) {
  return orva_cmd_playlist_cue_now (connection, channel, 0);
}

// C28: doc/compatibility.md
uint32_t orva_playlist_status (uint32_t connection, uint32_t channel, uint32_t *loaded) {
  return query_channel (connection, channel, &ChannelCache::listplay, [&] (const ListPlayState &list) {
    if (loaded != nullptr)
      *loaded = list.is_loaded () ? 1 : 0;
  });
}

uint32_t orva_playlist_count (uint32_t connection, uint32_t channel, uint32_t *count) {
  return query_channel (connection, channel, &ChannelCache::listplay, [&] (const ListPlayState &list) {
    if (count != nullptr)
      *count = list.count ();
  });
}
