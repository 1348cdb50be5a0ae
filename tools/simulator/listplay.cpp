#include "listplay.h"

#include "vocabulary.h"
#include "world.h"

#include <algorithm>
#include <fmt/format.h>
#include <set>

namespace sim {

namespace {

using Index = std::optional<std::size_t>;

void check_index (const LoadedList &list, std::size_t index) {
  if (index >= list.items.size ())
    throw Refusal (fmt::format ("The list has {} items, none at {}", list.items.size (), index));
}

// The item that follows an item: the next one, the first one when the list loops, or none.
Index following (const LoadedList &list, std::size_t index) {
  if (index + 1 < list.items.size () && !list.items[index + 1].empty ())
    return index + 1;
  return list.loop != loop_off && !list.items.empty () ? Index (0) : std::nullopt;
}

Index first_item (const LoadedList &list) {
  return list.items.empty () || list.items.front ().empty () ? std::nullopt : Index (0);
}

Cue item_cue (World &world, const Item &item) {
  if (item.empty ())
    throw Refusal ("The item of the list names no clip");
  Cue cue = whole_cue (item.clip ? clip_content (world, *item.clip) : vclip_content (world, *item.vclip));
  cue.loop = loop_off;
  cue.in = item.in.value_or (0);
  if (item.out && *item.out != 0)
    cue.out = item.out;
  cue.angle = item.angle.value_or (0);
  return cue;
}

std::string index_body (const ListKind &kind, const char *name, int channel, Index index) {
  const std::string body = std::string (kind.channel_report) + name;
  const char *tag = &kind == &playlists ? "ListPlaybackIndex" : "ChasePlaybackIndex";
  Writer out;
  out.open (body).word ("Channel", channel).open (tag);
  if (index)
    out.number (kind.index, *index);
  return out.close (tag).close (body).take ();
}

std::string item_body (const ListKind &kind, const char *name, int channel, std::size_t index,
                       const Item *item) {
  const std::string body = std::string (kind.channel_report) + name;
  Writer out;
  out.open (body).word ("Channel", channel).number (kind.index, index);
  if (item)
    write_item (out, *item, kind);
  return out.close (body).take ();
}

std::string channel_body (const ListKind &kind, const char *name, int channel) {
  const std::string body = std::string (kind.channel_report) + name;
  return Writer ().open (body).word ("Channel", channel).close (body).take ();
}

std::string word_body (const ListKind &kind, const char *name, int channel, const char *tag, int word) {
  const std::string body = std::string (kind.channel_report) + name;
  return Writer ().open (body).word ("Channel", channel).word (tag, word).close (body).take ();
}

void report_items (World &world, int channel, const ListKind &kind, std::vector<std::string> bodies) {
  for (std::string &body : bodies)
    world.report_channel (channel, kind.channel_report_type, std::move (body));
}

// The preview channel shows the next item.
void show_preview (World &world, int channel) {
  const Player &player = world.player (channel);
  if (!player.list || !player.preview || !player.list->next)
    return;
  try {
    load (world, *player.preview, item_cue (world, player.list->items[*player.list->next]));
  } catch (const Refusal &refusal) {
    world.log (fmt::format ("channel {} has no preview: {}", word_at ("Channel", channel), refusal.what ()));
  }
}

void preview_next (World &world, int channel, const ListKind &kind) {
  if (&kind == &playlists)
    show_preview (world, channel);
}

// Is called after the items have changed. Clients that mirror the list have adjusted the indexes of the items
// on air themselves, so these are reported again.
void after_edit (World &world, int channel, const ListKind &kind, std::vector<std::string> bodies) {
  LoadedList &list = loaded_list (world, channel, kind);
  list.modified = true;
  if (!list.next) {
    list.next = list.now ? following (list, *list.now) : first_item (list);
    preview_next (world, channel, kind);
  }
  report_items (world, channel, kind, std::move (bodies));
  report_items (world, channel, kind, air_bodies (world, channel, kind));
}

void start_item (World &world, int channel, const Item &item, bool roll) {
  Player &player = world.player_to_change (channel);
  if (roll)
    play (world, channel, item.speed.value_or (fixed_one));
  const Transition transition = item.transition.value_or (player.list->transition.value_or (Transition{}));
  if (transition.type == transition_dissolve)
    player.start_transition (transition.duration.value_or (0));
}

// Is called when the list has ended. Plays the bed, if there is one; otherwise the last picture stays.
void finish (World &world, int channel) {
  Player &player = world.player_to_change (channel);
  player.stop ();
  if (!player.list->bed)
    return;
  Cue cue = item_cue (world, *player.list->bed);
  cue.loop = loop_loop;
  cue.loop_in = cue.in;
  cue.loop_out = cue.out;
  load (world, channel, cue);
  player.skip_cueing ();
  player.list->now.reset ();
  start_item (world, channel, *player.list->bed, true);
}

void repeat_item (World &world, int channel) {
  Player &player = world.player_to_change (channel);
  const Fixed speed = player.speed_when_cued ();
  player.go_to (speed < 0 ? player.cue.out.value_or (player.last_field ()) : player.cue.in);
  player.play (speed);
}

// The old indexes of all items in the new order.
std::vector<std::size_t> new_order (std::size_t size, const std::vector<std::size_t> &moved,
                                    std::size_t before) {
  const std::set<std::size_t> taken (moved.begin (), moved.end ());
  if (taken.size () != moved.size ())
    throw Refusal ("An item is to be moved twice");
  std::vector<std::size_t> order;
  for (std::size_t index = 0; index <= size; ++index) {
    if (index == std::min (before, size))
      order.insert (order.end (), moved.begin (), moved.end ());
    if (index < size && !taken.contains (index))
      order.push_back (index);
  }
  return order;
}

} // namespace

LoadedList &loaded_list (World &world, int channel, const ListKind &kind) {
  std::optional<LoadedList> &list = world.player_to_change (channel).loaded_list (kind);
  if (!list)
    throw Refusal (fmt::format ("No {} is loaded on channel {}",
                                &kind == &playlists ? "playlist" : "chase list",
                                word_at ("Channel", channel)));
  return *list;
}

void load_list (World &world, int channel, const ListKind &kind, LoadedList list) {
  Player &player = world.player_to_change (channel);
  if (list.mode == list_pgm_pvw && channel + 1 >= channel_count)
    throw Refusal (
        fmt::format ("Channel {} has no channel beside it for the preview", word_at ("Channel", channel)));
  if (&kind == &playlists)
    player.preview = list.mode == list_pgm_pvw ? std::optional (channel + 1) : std::nullopt;
  list.next = first_item (list);
  player.loaded_list (kind) = std::move (list);
  report_items (world, channel, kind, list_bodies (world, channel, kind));
  preview_next (world, channel, kind);
}

void unload_list (World &world, int channel, const ListKind &kind) {
  loaded_list (world, channel, kind);
  Player &player = world.player_to_change (channel);
  player.loaded_list (kind).reset ();
  if (&kind == &playlists)
    player.preview.reset ();
  report_items (world, channel, kind, list_bodies (world, channel, kind));
}

void insert_item (World &world, int channel, const ListKind &kind, std::size_t index, const Item &item) {
  LoadedList &list = loaded_list (world, channel, kind);
  check_count (list.items.size () + 1);
  if (index > list.items.size ())
    throw Refusal (
        fmt::format ("The list has {} items, none can be inserted at {}", list.items.size (), index));
  list.items.insert (list.items.begin () + static_cast<std::ptrdiff_t> (index), item);
  for (Index *air : {&list.now, &list.next})
    if (*air && **air >= index)
      ++**air;
  after_edit (world, channel, kind, {item_body (kind, "item_insert", channel, index, &item)});
}

void remove_item (World &world, int channel, const ListKind &kind, std::size_t index) {
  LoadedList &list = loaded_list (world, channel, kind);
  check_index (list, index);
  list.items.erase (list.items.begin () + static_cast<std::ptrdiff_t> (index));
  for (Index *air : {&list.now, &list.next}) {
    if (*air && **air == index)
      air->reset ();
    else if (*air && **air > index)
      --**air;
  }
  after_edit (world, channel, kind, {item_body (kind, "item_remove", channel, index, nullptr)});
}

void modify_item (World &world, int channel, const ListKind &kind, std::size_t index,
                  const Arguments &change) {
  LoadedList &list = loaded_list (world, channel, kind);
  check_index (list, index);
  change_item (list.items[index], change, kind);
  after_edit (world, channel, kind, {item_body (kind, "item_exists", channel, index, &list.items[index])});
}

void reorder_items (World &world, int channel, const ListKind &kind, const std::vector<std::size_t> &moved,
                    std::size_t before) {
  LoadedList &list = loaded_list (world, channel, kind);
  for (const std::size_t index : moved)
    check_index (list, index);
  const std::vector<std::size_t> order = new_order (list.items.size (), moved, before);
  std::vector<Item> items;
  std::vector<std::string> bodies;
  for (std::size_t index = 0; index < order.size (); ++index) {
    items.push_back (list.items[order[index]]);
    bodies.push_back (item_body (kind, "item_exists", channel, index, &items.back ()));
  }
  for (Index *air : {&list.now, &list.next})
    if (*air)
      *air = static_cast<std::size_t> (std::find (order.begin (), order.end (), **air) - order.begin ());
  list.items = std::move (items);
  after_edit (world, channel, kind, std::move (bodies));
}

void play_item (World &world, int channel, std::size_t index, bool roll, std::int32_t distance) {
  LoadedList &list = loaded_list (world, channel, playlists);
  check_index (list, index);
  const Item item = list.items[index];
  load (world, channel, item_cue (world, item));
  Player &player = world.player_to_change (channel);
  if (distance != 0)
    player.jog (distance);
  list.now = index;
  list.next = following (list, index);
  list.next_only_cued = false;
  start_item (world, channel, item, roll);
  show_preview (world, channel);
}

void choose_next (World &world, int channel, std::size_t index, bool only_cued) {
  LoadedList &list = loaded_list (world, channel, playlists);
  check_index (list, index);
  list.next = index;
  list.next_only_cued = only_cued;
  show_preview (world, channel);
}

void set_list_loop (World &world, int channel, int loop) {
  LoadedList &list = loaded_list (world, channel, playlists);
  list.loop = loop;
  if (!list.now || *list.now + 1 < list.items.size ())
    return;
  list.next = loop == loop_off ? std::nullopt : Index (0);
  show_preview (world, channel);
}

void take_next (World &world, int channel) {
  const LoadedList &list = loaded_list (world, channel, playlists);
  if (!list.next)
    throw Refusal (fmt::format ("No item is next on channel {}", word_at ("Channel", channel)));
  const Item &item = list.items[*list.next];
  const bool only_cued = list.next_only_cued || item.at_start == start_pause;
  play_item (world, channel, *list.next, !only_cued, 0);
  world.player_to_change (channel).skip_cueing ();
}

bool end_item (World &world, int channel) {
  Player &player = world.player_to_change (channel);
  if (!player.list || !player.list->now)
    return false;
  const int rule = player.list->items[*player.list->now].at_end.value_or (end_take);
  try {
    if (rule == end_loop)
      repeat_item (world, channel);
    else if (rule == end_pause)
      player.stop ();
    else if (player.list->next)
      take_next (world, channel);
    else
      finish (world, channel);
  } catch (const Refusal &refusal) {
    player.stop ();
    world.log (
        fmt::format ("channel {} stops in its list: {}", word_at ("Channel", channel), refusal.what ()));
  }
  return true;
}

namespace {

// The item with the latest trigger that is not after this field.
Index chased_item (const LoadedList &list, std::int64_t field) {
  Index best;
  for (std::size_t index = 0; index < list.items.size (); ++index) {
    const Item &item = list.items[index];
    if (item.trigger && *item.trigger <= field && (!best || *item.trigger >= *list.items[*best].trigger))
      best = index;
  }
  return best;
}

void follow_item (World &world, int channel, const Item &item, std::int64_t distance) {
  Player &player = world.player_to_change (channel);
  const std::int64_t first = player.cue.in, last = player.cue.out.value_or (player.last_field ());
  std::int64_t place = first + item.offset.value_or (0) + distance;
  const int rule = item.at_end.value_or (chase_pause);
  if (place > last && rule == chase_black)
    return unload (world, channel);
  if (place > last && rule == chase_loop)
    place = first + (place - first) % std::max<std::int64_t> (last - first + 1, 1);
  player.go_to (static_cast<std::uint32_t> (std::min (place, last)));
  player.skip_cueing ();
  if (place <= last)
    check_recording (world, channel, item.speed.value_or (fixed_one));
  if (place <= last)
    player.play (item.speed.value_or (fixed_one));
}

void chase_channel (World &world, int channel, std::int64_t field) {
  LoadedList &list = *world.player_to_change (channel).chase;
  const Index index = chased_item (list, field);
  if (!index)
    return;
  const Item &item = list.items[*index];
  if (list.now != index)
    load (world, channel, item_cue (world, item));
  list.now = index;
  if (world.player (channel).loaded ())
    follow_item (world, channel, item, field - *item.trigger);
}

} // namespace

void chase_timecode (World &world, std::int64_t field) {
  std::optional<Refusal> first_refusal;
  for (int channel = 0; channel < channel_count; ++channel)
    try {
      if (world.player (channel).chase)
        chase_channel (world, channel, field);
    } catch (const Refusal &refusal) {
      first_refusal = first_refusal.value_or (refusal);
    }
  if (first_refusal)
    throw Refusal (*first_refusal);
}

std::vector<std::string> list_bodies (const World &world, int channel, const ListKind &kind) {
  const Player &player = world.player (channel);
  const std::optional<LoadedList> &list = &kind == &playlists ? player.list : player.chase;
  if (!list)
    return {channel_body (kind, "unloaded", channel)};
  const std::string body = std::string (kind.channel_report) + kind.list_body;
  Writer out;
  out.open (body).word ("Channel", channel).text (kind.id, list->id);
  if (&kind == &playlists)
    out.word ("ListPlayMode", list->mode);
  // A client that mirrored another list still has its items. The name of the new list does not remove them,
  // so `clear_all` does.
  std::vector<std::string> bodies = {out.close (body).take (), channel_body (kind, "clear_all", channel)};
  for (std::size_t index = 0; index < list->items.size (); ++index)
    bodies.push_back (item_body (kind, "item_exists", channel, index, &list->items[index]));
  for (std::string &air : air_bodies (world, channel, kind))
    bodies.push_back (std::move (air));
  return bodies;
}

std::vector<std::string> air_bodies (const World &world, int channel, const ListKind &kind) {
  const Player &player = world.player (channel);
  const std::optional<LoadedList> &list = &kind == &playlists ? player.list : player.chase;
  if (!list)
    return {};
  const std::string now = index_body (kind, "air_now", channel, list->now);
  const std::string modified = word_body (kind, "modified", channel, "ModifiedFlag", list->modified ? 1 : 0);
  if (&kind == &chases)
    return {now, modified};
  return {now, index_body (kind, "air_lock", channel, player.playing () ? list->now : std::nullopt),
          index_body (kind, "air_next", channel, list->next),
          word_body (kind, "loop", channel, "Loop", list->loop), modified};
}

} // namespace sim
