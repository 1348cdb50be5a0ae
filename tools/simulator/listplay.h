#pragma once

#include "player.h"

namespace sim {

// Lists that are loaded on channels. The functions that change a list throw a Refusal when no list is loaded,
// the item does not exist, or the item cannot be shown.

/// The loaded list of a channel. @throws Refusal when there is none.
LoadedList &loaded_list (World &world, int channel, const ListKind &kind);

void load_list (World &world, int channel, const ListKind &kind, LoadedList list);
void unload_list (World &world, int channel, const ListKind &kind);

void insert_item (World &world, int channel, const ListKind &kind, std::size_t index, const Item &item);
void remove_item (World &world, int channel, const ListKind &kind, std::size_t index);
void modify_item (World &world, int channel, const ListKind &kind, std::size_t index,
                  const Arguments &change);
/// Moves items, in the given order, to before the item at index `before`. When `before` is beyond the last
/// item, they become the last items.
void reorder_items (World &world, int channel, const ListKind &kind, const std::vector<std::size_t> &moved,
                    std::size_t before);

/// Loads an item.
/// @param roll whether it is played. @param distance fields from its first field to the field that is shown
void play_item (World &world, int channel, std::size_t index, bool roll, std::int32_t distance);
/// Sets the next item.
/// @param only_cued whether it is cued and not played when it is taken; otherwise its own settings decide
void choose_next (World &world, int channel, std::size_t index, bool only_cued);
/// Sets whether the first item follows the last one.
void set_list_loop (World &world, int channel, int loop);
/// Loads the next item. It is only cued when `choose_next` or its own settings ask for this; otherwise it is
/// played.
void take_next (World &world, int channel);
/// Is called when a channel has reached the end of what it plays. When this is an item of a playlist, does
/// what the item asks for at its end. @return whether this was an item of a playlist. Never throws a Refusal
bool end_item (World &world, int channel);

/// Moves every channel with a chase list to the place that belongs to this chase timecode.
/// @throws Refusal of the first channel that refuses, after all channels have been tried
void chase_timecode (World &world, std::int64_t field);

/// The bodies that report the whole loaded list, or that none is loaded.
std::vector<std::string> list_bodies (const World &world, int channel, const ListKind &kind);
/// The bodies that report what changes while a list plays: the items on air and next, the loop and the
/// modified flag. None when no list is loaded.
std::vector<std::string> air_bodies (const World &world, int channel, const ListKind &kind);

} // namespace sim
