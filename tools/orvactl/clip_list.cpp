// clips, dirs and mkdir: the names on a server.
#include "glob.h"
#include "views.h"

#include <cstring>
#include <deque>

namespace orvactl {

namespace {

bool wanted (const Arguments &arguments, const std::string &name) {
  return !arguments.has ("GLOB") || fits (arguments.text ("GLOB"), name);
}

std::vector<std::string> chosen (const Arguments &arguments, std::vector<std::string> names) {
  std::erase_if (names, [&] (const std::string &name) { return !wanted (arguments, name); });
  return names;
}

/// What the server knows of clips, in their order. Of many names, some questions are under way at a time. A
/// clip that is deleted meanwhile is left out.
template <class Take>
void for_each_info (Session &session, const std::vector<std::string> &names, Take take) {
  using Answer = std::future<orva::result<orva::ClipInfo>>;
  const std::size_t at_once = names.size () > 100 ? 8 : 1; // a few are not worth the threads
  std::deque<Answer> answers;
  Progress progress ("clips", names.size ());
  std::size_t asked = 0;
  for (const std::string &name : names) {
    session.clock ().restart ();
    for (; asked != names.size () && answers.size () != at_once; ++asked)
      answers.push_back (session.ask ().async ().clip (names[asked]).info ());
    const orva::result<orva::ClipInfo> info = answers.front ().get ();
    answers.pop_front ();
    progress.step ();
    if (info || info.failure ().kind != orva::Kind::refused)
      take (name, info.value ());
  }
}

std::string stamp_text (std::uint64_t milliseconds) {
  return milliseconds == 0 ? "-" : std::to_string (milliseconds);
}

void list_long (Session &session, const std::vector<std::string> &names) {
  Output &out = session.out ();
  const orva::Timebase base = session.link ().base ();
  std::vector<std::vector<Cell>> rows;
  List list (out);
  for_each_info (session, names, [&] (const std::string &name, const orva::ClipInfo &info) {
    if (out.json ())
      list.add (json_of (info, name, base), "");
    else
      rows.push_back ({{name_text (name)},
                       {info.length.text (base), "", true},
                       {std::to_string (info.length.frames ()), "", true},
                       {word_for (standard_words, info.standard)},
                       {set_text (track_words, info.tracks)},
                       {info.read_only ? "yes" : "no"},
                       {stamp_text (info.content_last_edited), "", true},
                       {name_text (info.title)}});
  });
  if (out.json ())
    list.end ();
  else
    out.table ({"CLIP", "LENGTH", "FRAMES", "STANDARD", "TRACKS", "LOCKED", "EDITED", "TITLE"}, rows);
}

Exit watch (Session &session, const Arguments &arguments);

Exit clips (Session &session, const Arguments &arguments) {
  if (arguments.has ("--watch"))
    return watch (session, arguments);
  const std::vector<std::string> names = chosen (arguments, session.ask ().clips ());
  if (arguments.has ("--long")) {
    list_long (session, names);
    return Exit::done;
  }
  List list (session.out ());
  for (const std::string &name : names)
    list.add (name, shown (name));
  list.end ();
  return Exit::done;
}

struct Change {
  const char *word;
  std::string clip;
};

std::optional<Change> change_of (const orva::Event &event) {
  if (const auto *const added = event.as<orva::ClipAdded> ())
    return Change{"added", added->clip};
  if (const auto *const deleted = event.as<orva::ClipDeleted> ())
    return Change{"deleted", deleted->clip};
  if (const auto *const edited = event.as<orva::ClipEdited> ())
    return Change{"edited", edited->clip};
  return {};
}

void tell (Session &session, const char *word, const std::string &name, std::optional<orva::ClipInfo> info) {
  Json json = {{"event", word}, {"clip", name}};
  std::string text = std::string (word) + std::string (9 - std::strlen (word), ' ') + shown (name);
  if (info) {
    const orva::Timebase base = session.link ().base ();
    json["info"] = json_of (*info, name, base);
    text += "  " + info->length.text (base) + "  " + name_text (info->title);
  }
  session.out ().event (json, text);
}

/// The names first, then each change until the link is lost or the program is ended.
Exit watch (Session &session, const Arguments &arguments) {
  const auto info_of = [&] (const std::string &name) -> std::optional<orva::ClipInfo> {
    session.clock ().restart ();
    if (!arguments.has ("--long"))
      return {};
    const auto info = session.ask ().nothrow ().clip (name).info ();
    return info ? std::optional (*info) : std::nullopt;
  };
  session.link ().connect ();
  orva::EventQueue queue;
  queue.watch (session.link ().server (),
               {.channels = {}, .positions = false, .clips = true, .directories = false});
  // The names are asked for when changes are reported, so that none is missed.
  while (const auto event = queue.next (session.clock ().left ()))
    if (event->as<orva::Watching> () != nullptr)
      break;
  for (const std::string &name : chosen (arguments, session.ask ().clips ()))
    tell (session, "present", name, info_of (name));
  while (const auto event = queue.next ()) {
    if (event->as<orva::LinkDown> () != nullptr)
      throw Problem (Exit::no_connection, "The connection to " + session.link ().label () + " was lost.");
    const auto change = change_of (*event);
    if (change && wanted (arguments, change->clip))
      tell (session, change->word, change->clip,
            std::strcmp (change->word, "deleted") == 0 ? std::nullopt : info_of (change->clip));
  }
  return Exit::done;
}

Exit directories (Session &session, const Arguments &arguments) {
  List list (session.out ());
  for (const std::string &name : chosen (arguments, session.ask ().directories ()))
    list.add (name, shown (name));
  list.end ();
  return Exit::done;
}

Exit make_directory (Session &session, const Arguments &arguments) {
  session.ask ().create_directory (arguments.text ("DIRECTORY"));
  session.out ().done ();
  return Exit::done;
}

} // namespace

Family clip_list_commands () {
  const Parameter glob = {"GLOB", Takes::text, "only names such as 'NEWS/*'", Need::optional};
  return {{"clips",
           "list the clips",
           {glob,
            {"--long", Takes::nothing, "with length, standard, tracks and title"},
            {"--watch", Takes::nothing, "go on with a line for each change"}},
           "orvactl clips 'NEWS/*' --long",
           clips},
          {"dirs", "list the directories", {glob}, "orvactl dirs", directories},
          {"mkdir",
           "make a directory",
           {{"DIRECTORY", Takes::text, "its name"}},
           "orvactl mkdir NEWS",
           make_directory}};
}

} // namespace orvactl
