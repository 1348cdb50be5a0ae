#include "commands.h"

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

template <const ListKind &kind>
void download_names (Call &call) {
  for (const std::string &id : call.world.lists.names (kind))
    call.row (Writer ().open (kind.id_row).text (kind.id, id).close (kind.id_row).take ());
}

template <const ListKind &kind>
void download_items (Call &call) {
  for (const Item &item : call.world.lists.find (kind, call.arguments.text (kind.id))) {
    Writer out;
    out.open (kind.item_row);
    write_item (out, item, kind);
    call.row (out.close (kind.item_row).take ());
  }
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
  draft_of (call, kind) = ListDraft{id, {}};
}

template <const ListKind &kind>
void save_element (Call &call) {
  open_draft (call, kind).items.push_back (item_of (call.arguments.record (kind.item), kind));
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
