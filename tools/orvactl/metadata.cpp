// meta: the free-form pairs of a clip.
#include "files.h"
#include "views.h"

namespace orvactl {

namespace {

orva::ClipControl<orva::throwing> clip_of (Session &session, const Arguments &arguments) {
  return session.ask ().clip (arguments.text ("CLIP"));
}

Exit get (Session &session, const Arguments &arguments) {
  const auto value = clip_of (session, arguments).meta (arguments.text ("KEY"));
  if (!value)
    throw Problem (Exit::not_found, "The clip has no key \"" + arguments.text ("KEY") + "\".");
  session.out ().one (*value, shown (*value));
  return Exit::done;
}

Exit set (Session &session, const Arguments &arguments) {
  clip_of (session, arguments).set_meta (arguments.text ("KEY"), arguments.text ("VALUE"));
  session.out ().done ();
  return Exit::done;
}

Exit erase (Session &session, const Arguments &arguments) {
  const std::string &key = arguments.text ("KEY");
  if (!clip_of (session, arguments).meta (key))
    throw Problem (Exit::not_found, "The clip has no key \"" + key + "\".");
  clip_of (session, arguments).erase_meta (key);
  session.out ().done ();
  return Exit::done;
}

Exit keys (Session &session, const Arguments &arguments) {
  List list (session.out ());
  for (const auto &[key, value] : clip_of (session, arguments).info ().metadata)
    list.add (key, shown (key));
  list.end ();
  return Exit::done;
}

Exit export_pairs (Session &session, const Arguments &arguments) {
  const Json pairs = json_of (clip_of (session, arguments).info ().metadata);
  const std::string text = pairs.dump (2, ' ', true) + "\n";
  if (arguments.text_or ("FILE", "-") != "-") {
    write_file (arguments.text ("FILE"), text);
    session.out ().done ();
  } else if (session.out ().json ()) {
    session.out ().object (pairs);
  } else {
    session.out ().raw (text);
  }
  return Exit::done;
}

using Changes = std::vector<std::pair<std::string, std::optional<std::string>>>;

Changes changes_of (const orva::Metadata &present, const std::map<std::string, std::string> &wanted,
                    bool replace) {
  std::map<std::string, std::string> old (present.begin (), present.end ());
  Changes changes;
  for (const auto &[key, value] : wanted)
    if (!old.contains (key) || old[key] != value)
      changes.emplace_back (key, value);
  for (const auto &[key, value] : present)
    if (replace && !wanted.contains (key))
      changes.emplace_back (key, std::nullopt);
  return changes;
}

Exit import_pairs (Session &session, const Arguments &arguments) {
  const auto wanted = read_pairs (arguments.text ("FILE"));
  const Changes changes =
      changes_of (clip_of (session, arguments).info ().metadata, wanted, arguments.has ("--replace"));
  Progress progress ("pairs", changes.size ());
  constexpr std::size_t at_once = 16; // changes of one snapshot of the clip
  for (std::size_t i = 0; i < changes.size (); i += at_once) {
    session.clock ().restart ();
    orva::ClipEdit edit;
    for (std::size_t j = i; j < std::min (i + at_once, changes.size ()); ++j, progress.step ())
      edit.metadata.push_back (changes[j]);
    clip_of (session, arguments).edit (edit);
  }
  if (session.out ().json ())
    session.out ().object ({{"changed", changes.size ()}});
  return Exit::done;
}

} // namespace

Family metadata_commands () {
  const Parameter clip = {"CLIP", Takes::clip, "its name"};
  const Parameter key = {"KEY", Takes::text, "the key"};
  return {{"meta get", "print the value of a key", {clip, key}, "orvactl meta get NEWS/OPENER Place", get},
          {"meta set",
           "set the value of a key",
           {clip, key, {"VALUE", Takes::text, "its value"}},
           "orvactl meta set NEWS/OPENER Place Oslo",
           set},
          {"meta delete", "delete a pair", {clip, key}, "orvactl meta delete NEWS/OPENER Place", erase},
          {"meta keys", "list the keys", {clip}, "orvactl meta keys NEWS/OPENER", keys},
          {"meta export",
           "write all pairs as a JSON object",
           {clip, {"FILE", Takes::file, "where to; the standard output by default", Need::optional}},
           "orvactl meta export NEWS/OPENER opener.json",
           export_pairs},
          {"meta import",
           "set the pairs of a JSON object that differ",
           {clip,
            {"FILE", Takes::file, "the JSON file; - is the standard input"},
            {"--replace", Takes::nothing, "delete all pairs that are not in the file"}},
           "orvactl meta import NEWS/OPENER opener.json",
           import_pairs}};
}

} // namespace orvactl
