#include "items.h"

#include "message_limits.h"
#include "words.h"

#include <fmt/format.h>

namespace sim {

const ListKind playlists = {0,
                            "Playlist",
                            "ListID",
                            "ListFromID",
                            "ListToID",
                            "ListIndex",
                            "ListElement",
                            "ListElementChange",
                            "ListElementAtEnd",
                            "listid",
                            "list_element",
                            "playlist_change",
                            "playlist_",
                            "channel_listplay_",
                            "list",
                            report_listplay};

const ListKind chases = {1,
                         "Chase list",
                         "ChaseID",
                         "ChaseFromID",
                         "ChaseToID",
                         "ChaseIndex",
                         "ChaseElement",
                         "ChaseElementChange",
                         "ChaseElementAtEnd",
                         "chaseid",
                         "chase_element",
                         "chaselist_change",
                         "chaselist_",
                         "channel_chaseplay_",
                         "chase",
                         report_chaseplay};

Transition transition_of (const Arguments &record) {
  return {record.word ("TransitionType"), record.maybe_number ("TransitionDuration")};
}

namespace {

// A later change may make the item longer. This leaves room for it.
void check_item_size (const Item &item, const ListKind &kind) {
  constexpr std::size_t room_for_changes = 500;
  Writer out;
  write_item (out, item, kind);
  check_size ("The item", out.result ().size () + room_for_changes);
}

} // namespace

Item item_of (const Arguments &record, const ListKind &kind) {
  const Arguments content = record.record ("ContentID");
  Item item;
  item.clip = content.maybe_text ("ClipID");
  item.vclip = content.maybe_text ("VClipID");
  item.in = record.maybe_number ("GotoPosition");
  item.out = record.maybe_number ("ClipPosition");
  item.speed = record.maybe_fixed ("Speed");
  if (record.has ("Angle"))
    item.angle = static_cast<int> (record.number ("Angle"));
  change_item (item, record, kind);
  check_item_size (item, kind);
  return item;
}

void check_count (std::size_t items) {
  constexpr std::size_t most_items = 0x10000;
  if (items > most_items)
    throw Refusal (fmt::format ("A list has {} items at most", most_items));
}

void change_item (Item &item, const Arguments &change, const ListKind &kind) {
  if (change.has (kind.at_end))
    item.at_end = change.word (kind.at_end);
  if (change.has ("ListElementAtStart"))
    item.at_start = change.word ("ListElementAtStart");
  if (change.has ("Transition"))
    item.transition = transition_of (change.record ("Transition"));
  if (change.has ("ClipStartOffset"))
    item.offset = change.number ("ClipStartOffset");
  if (change.has ("TcStartTrigger"))
    item.trigger = change.number ("TcStartTrigger");
}

namespace {

void write_content (Writer &out, const Item &item) {
  out.open ("ContentID");
  if (item.clip)
    out.text ("ClipID", *item.clip);
  if (item.vclip)
    out.text ("VClipID", *item.vclip);
  out.close ("ContentID");
}

void write_number (Writer &out, std::string_view tag, std::optional<std::uint32_t> value) {
  if (value)
    out.number (tag, *value);
}

void write_word (Writer &out, std::string_view tag, std::optional<int> value) {
  if (value)
    out.word (tag, *value);
}

void write_transition (Writer &out, const std::optional<Transition> &transition) {
  if (!transition)
    return;
  out.open ("Transition").word ("TransitionType", transition->type);
  write_number (out, "TransitionDuration", transition->duration);
  out.close ("Transition");
}

} // namespace

void write_item (Writer &out, const Item &item, const ListKind &kind) {
  out.open (kind.item);
  write_content (out, item);
  write_number (out, "GotoPosition", item.in);
  write_number (out, "ClipPosition", item.out);
  if (item.speed)
    out.fixed ("Speed", *item.speed);
  if (item.angle)
    out.number ("Angle", static_cast<std::uint64_t> (*item.angle));
  write_word (out, "ListElementAtStart", item.at_start);
  write_word (out, kind.at_end, item.at_end);
  write_transition (out, item.transition);
  write_number (out, "ClipStartOffset", item.offset);
  write_number (out, "TcStartTrigger", item.trigger);
  out.close (kind.item);
}

} // namespace sim
