#pragma once

#include "player.h"

namespace sim {

// Lists on channels. All throw a Refusal when there is no list, no item, or nothing to show.

/// The loaded list of a channel. @throws Refusal when there is none.
LoadedList &loaded_list (World &world, int channel, const ListKind &kind);

void load_list (World &world, int channel, const ListKind &kind, LoadedList list);
void unload_list (World &world, int channel, const ListKind &kind);

void insert_item (World &world, int channel, const ListKind &kind, std::size_t index, const Item &item);
void remove_item (World &world, int channel, const ListKind &kind, std::size_t index);
void modify_item (World &world, int channel, const ListKind &kind, std::size_t index,
                  const Arguments &change);
/// Moves items, in the given order, in front of the one at a place. A place behind the last item means the
/// end.
void reorder_items (World &world, int channel, const ListKind &kind, const std::vector<std::size_t> &moved,
                    std::size_t before);

/// Loads an item, at a number of fields behind its first one, and starts it or not.
void play_item (World &world, int channel, std::size_t index, bool roll, std::int32_t distance);
/// Sets the next item. It starts as its own settings say, or is only cued.
void choose_next (World &world, int channel, std::size_t index, bool only_cued);
/// Sets whether the first item follows the last one.
void set_list_loop (World &world, int channel, int loop);
/// Loads the next item. It starts as its own settings say.
void take_next (World &world, int channel);
/// The item on the air has come to its end. @return whether a list decided what follows
bool end_item (World &world, int channel);

/// Follows a chase timecode with everything that is loaded for it.
void chase_timecode (World &world, std::int64_t field);

/// The bodies that report everything about the loaded list.
std::vector<std::string> list_bodies (const World &world, int channel, const ListKind &kind);
/// The bodies of what changes while a list plays: air positions, loop, modified flag.
std::vector<std::string> air_bodies (const World &world, int channel, const ListKind &kind);

} // namespace sim
