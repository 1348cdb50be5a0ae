#include "commands.h"

#include "listplay.h"

namespace sim {

namespace {

std::optional<ReorderDraft> &draft_of (Call &call, const ListKind &kind) {
  return call.client.reorder_drafts[static_cast<std::size_t> (kind.number)];
}

ReorderDraft &open_draft (Call &call, const ListKind &kind) {
  std::optional<ReorderDraft> &draft = draft_of (call, kind);
  if (!draft)
    throw Refusal ("No reordering has been started");
  return *draft;
}

template <const ListKind &kind>
void load_stored (Call &call) {
  LoadedList list;
  list.id = call.arguments.text (kind.id);
  list.items = call.world.lists.find (kind, list.id);
  list.mode = call.arguments.maybe_word ("ListPlayMode").value_or (list_single);
  if (call.arguments.has ("Transition"))
    list.transition = transition_of (call.arguments.record ("Transition"));
  load_list (call.world, channel_of (call.arguments), kind, std::move (list));
}

template <const ListKind &kind>
void unload_loaded (Call &call) {
  unload_list (call.world, channel_of (call.arguments), kind);
}

template <const ListKind &kind>
void insert (Call &call) {
  insert_item (call.world, channel_of (call.arguments), kind, call.arguments.number (kind.index),
               item_of (call.arguments.record (kind.item), kind));
}

template <const ListKind &kind>
void remove (Call &call) {
  remove_item (call.world, channel_of (call.arguments), kind, call.arguments.number (kind.index));
}

template <const ListKind &kind>
void modify (Call &call) {
  modify_item (call.world, channel_of (call.arguments), kind, call.arguments.number (kind.index),
               call.arguments.record (kind.change));
}

template <const ListKind &kind>
void reorder_start (Call &call) {
  const int channel = channel_of (call.arguments);
  loaded_list (call.world, channel, kind);
  draft_of (call, kind) = ReorderDraft{channel, {}};
}

template <const ListKind &kind>
void reorder_item (Call &call) {
  ReorderDraft &draft = open_draft (call, kind);
  check_count (draft.items.size () + 1);
  draft.items.push_back (call.arguments.number (kind.index));
}

template <const ListKind &kind>
void reorder_finish (Call &call) {
  const ReorderDraft draft = open_draft (call, kind);
  draft_of (call, kind).reset ();
  reorder_items (call.world, draft.channel, kind, draft.items, call.arguments.number (kind.index));
}

template <const ListKind &kind>
void clear_modified (Call &call) {
  loaded_list (call.world, channel_of (call.arguments), kind).modified = false;
}

void list_bed (Call &call) {
  loaded_list (call.world, channel_of (call.arguments), playlists).bed =
      item_of (call.arguments.record ("ListElement"), playlists);
}

void list_set_loop (Call &call) {
  set_list_loop (call.world, channel_of (call.arguments), call.arguments.word ("Loop"));
}

void list_play_now (Call &call) {
  const std::int32_t distance =
      call.arguments.has ("JogDistance") ? call.arguments.distance ("JogDistance") : 0;
  play_item (call.world, channel_of (call.arguments), call.arguments.number ("ListIndex"),
             call.arguments.word ("Roll") == roll_roll, distance);
}

void list_play_next (Call &call) {
  choose_next (call.world, channel_of (call.arguments), call.arguments.number ("ListIndex"),
               call.arguments.word ("Roll") == roll_cueonly);
}

void list_take (Call &call) {
  take_next (call.world, channel_of (call.arguments));
}

void sending_chase_ltcin (Call &call) {
  const Arguments timecode = call.arguments.record ("Timecode");
  if (!timecode.boolean ("Valid") || !timecode.has ("FieldNumber"))
    return;
  World &world = call.world;
  world.chase_field = timecode.distance ("FieldNumber");
  Writer out;
  out.open ("chase_ltc_timecode");
  write_timecode (out, "Timecode", world, world.chase_field, world.standard.drop_frame);
  world.report ("chase_ltc_timecode", out.close ("chase_ltc_timecode").take ());
  chase_timecode (world, world.chase_field);
}

} // namespace

void add_listplay_commands (Handlers &handlers) {
  handlers["list_load"] = load_stored<playlists>;
  handlers["chase_load"] = load_stored<chases>;
  handlers["list_unload"] = unload_loaded<playlists>;
  handlers["chase_unload"] = unload_loaded<chases>;
  handlers["list_insert"] = insert<playlists>;
  handlers["chase_insert"] = insert<chases>;
  handlers["list_remove_item"] = remove<playlists>;
  handlers["chase_remove_item"] = remove<chases>;
  handlers["list_play_modify_item"] = modify<playlists>;
  handlers["chase_play_modify_item"] = modify<chases>;
  handlers["list_play_reorder_start"] = reorder_start<playlists>;
  handlers["chase_play_reorder_start"] = reorder_start<chases>;
  handlers["list_play_reorder_item"] = reorder_item<playlists>;
  handlers["chase_play_reorder_item"] = reorder_item<chases>;
  handlers["list_play_reorder_finish"] = reorder_finish<playlists>;
  handlers["chase_play_reorder_finish"] = reorder_finish<chases>;
  handlers["list_play_clear_modified"] = clear_modified<playlists>;
  handlers["chase_play_clear_modified"] = clear_modified<chases>;
  handlers["list_bed"] = list_bed;
  handlers["list_set_loop"] = list_set_loop;
  handlers["list_play_now"] = list_play_now;
  handlers["list_play_next"] = list_play_next;
  handlers["list_take"] = list_take;
  handlers["sending_chase_ltcin"] = sending_chase_ltcin;
}

} // namespace sim
