#include "commands.h"

#include "message_limits.h"

#include <fmt/format.h>

namespace sim {

namespace {

void report_list (World &world, const ListKind &kind, const char *what, const std::string &id) {
  const std::string body = std::string (kind.report) + what;
  world.report (kind.report_type, Writer ().open (body).text (kind.id, id).close (body).take ());
}

std::optional<ListDraft> &draft_of (Call &call, const ListKind &kind) {
  return call.client.list_drafts[static_cast<std::size_t> (kind.number)];
}

ListDraft &open_draft (Call &call, const ListKind &kind) {
  std::optional<ListDraft> &draft = draft_of (call, kind);
  if (!draft)
    throw Refusal (fmt::format ("No {} is being saved", &kind == &playlists ? "playlist" : "chase list"));
  return *draft;
}

constexpr int page_size = 100; // names or items

template <const ListKind &kind>
void download_names (Call &call) {
  const auto next = [&lists = call.world.lists, last = std::string ()] () mutable {
    std::vector<std::string> names = lists.names_after (kind, last, page_size);
    if (!names.empty ())
      last = names.back ();
    for (std::string &name : names)
      name = Writer ().open (kind.id_row).text (kind.id, name).close (kind.id_row).take ();
    return names;
  };
  call.rows (next);
}

template <const ListKind &kind>
std::string item_row (const Item &item) {
  Writer out;
  out.open (kind.item_row);
  write_item (out, item, kind);
  return out.close (kind.item_row).take ();
}

template <const ListKind &kind>
void download_items (Call &call) {
  const std::string &name = call.arguments.text (kind.id);
  const auto next = [&lists = call.world.lists, id = name, changes = call.world.lists.changes (kind, name),
                     place = std::int64_t{0}] () mutable {
    if (lists.changes (kind, id) != changes)
      throw Refusal (fmt::format ("{} '{}' has changed while it was being sent", kind.name, id));
    std::vector<std::string> rows;
    for (const Item &item : lists.items_from (kind, id, place, page_size))
      rows.push_back (item_row<kind> (item));
    place += page_size;
    return rows;
  };
  call.rows (next);
}

template <const ListKind &kind>
void remove_list (Call &call) {
  const std::string &id = call.arguments.text (kind.id);
  call.world.lists.remove (kind, id);
  report_list (call.world, kind, "deleted", id);
}

template <const ListKind &kind>
void rename_list (Call &call) {
  const std::string &from = call.arguments.text (kind.from), &to = call.arguments.text (kind.to);
  call.world.lists.rename (kind, from, to);
  report_list (call.world, kind, "deleted", from);
  report_list (call.world, kind, "created", to);
}

template <const ListKind &kind>
void save_start (Call &call) {
  const std::string &id = call.arguments.text (kind.id);
  if (id.empty ())
    throw Refusal ("A list needs a name");
  check_name_length (id);
  draft_of (call, kind) = ListDraft{id, {}};
}

template <const ListKind &kind>
void save_element (Call &call) {
  ListDraft &draft = open_draft (call, kind);
  check_count (draft.items.size () + 1);
  draft.items.push_back (item_of (call.arguments.record (kind.item), kind));
}

template <const ListKind &kind>
void save_end (Call &call) {
  const ListDraft draft = std::move (open_draft (call, kind));
  draft_of (call, kind).reset ();
  const bool known = call.world.lists.exists (kind, draft.id);
  call.world.lists.store (kind, draft.id, draft.items);
  report_list (call.world, kind, known ? "changed" : "created", draft.id);
}

} // namespace

void add_list_commands (Handlers &handlers) {
  handlers["download_listids"] = download_names<playlists>;
  handlers["download_chaseids"] = download_names<chases>;
  handlers["download_list"] = download_items<playlists>;
  handlers["download_chase"] = download_items<chases>;
  handlers["list_delete"] = remove_list<playlists>;
  handlers["chase_delete"] = remove_list<chases>;
  handlers["list_rename"] = rename_list<playlists>;
  handlers["chase_rename"] = rename_list<chases>;
  handlers["list_save_start"] = save_start<playlists>;
  handlers["chase_save_start"] = save_start<chases>;
  handlers["list_save_element"] = save_element<playlists>;
  handlers["chase_save_element"] = save_element<chases>;
  handlers["list_save_end"] = save_end<playlists>;
  handlers["chase_save_end"] = save_end<chases>;
}

} // namespace sim
