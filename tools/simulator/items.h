#pragma once

#include "values.h"
#include "writer.h"

#include <optional>
#include <string>

namespace sim {

/// What differs between the two kinds of lists: playlists, and chase lists that follow a timecode.
struct ListKind {
  std::int64_t number;
  const char *name; ///< for people
  const char *id, *from, *to, *index, *item, *change, *at_end;
  const char *id_row, *item_row;
  const char *report_type, *report;       ///< `report` is followed by `_created` and others
  const char *channel_report, *list_body; ///< `channel_report` is followed by `item_insert` and others
  int channel_report_type;
};
extern const ListKind playlists;
extern const ListKind chases;

struct Transition {
  int type = 0;
  std::optional<std::uint32_t> duration; ///< fields
};

/// One element of either kind of list. Members that only the other kind has are absent.
struct Item {
  std::optional<std::string> clip, vclip;
  std::optional<std::uint32_t> in, out; ///< the first and the last field to show
  std::optional<Fixed> speed;
  std::optional<int> angle, at_start, at_end;
  std::optional<Transition> transition;
  std::optional<std::uint32_t> offset, trigger;

  /// Whether the item names no clip. Such an item ends a list.
  bool empty () const { return !clip && !vclip; }
};

Transition transition_of (const Arguments &record);
/// @throws Refusal when the item would not fit into a message.
Item item_of (const Arguments &record, const ListKind &kind);
/// @throws Refusal when a list cannot have so many items, because the last index would be too large
void check_count (std::size_t items);
void write_item (Writer &out, const Item &item, const ListKind &kind);

/// Applies a `ListElementChange` or `ChaseElementChange` to the item.
void change_item (Item &item, const Arguments &change, const ListKind &kind);

} // namespace sim
