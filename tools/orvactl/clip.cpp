// clip: one clip, its attributes, and what can be done with it.
#include "views.h"

namespace orvactl {

namespace {

orva::ClipControl<orva::throwing> clip_of (Session &session, const Arguments &arguments) {
  return session.ask ().clip (arguments.text ("CLIP"));
}

Exit finished (Session &session) {
  session.out ().done ();
  return Exit::done;
}

std::string text_of (const Json &value) {
  if (value.is_object () && value.contains ("timecode"))
    return value["timecode"].get<std::string> () + " (" +
           std::to_string (value["fields"].get<std::int64_t> ()) + " fields)";
  return value.is_string () ? name_text (value.get<std::string> ()) : shown (value.dump ());
}

Exit show (Session &session, const Arguments &arguments) {
  const orva::ClipInfo info = clip_of (session, arguments).info ();
  const Json json = json_of (info, arguments.text ("CLIP"), session.link ().base ());
  if (session.out ().json ()) {
    session.out ().object (json);
    return Exit::done;
  }
  for (const auto &[name, value] : json.items ())
    if (name != "metadata")
      session.out ().line (name + std::string (22 - name.size (), ' ') + text_of (value));
  for (const auto &[key, value] : info.metadata)
    session.out ().line ("meta." + shown (key) + " = " + shown (value));
  return Exit::done;
}

Exit create (Session &session, const Arguments &arguments) {
  orva::Create how;
  how.tracks = arguments.tracks_or_all ("--tracks");
  how.length = session.link ().position_if (arguments, "--length");
  if (arguments.has ("--channel"))
    how.channel = arguments.channel ("--channel");
  clip_of (session, arguments).create (how);
  return finished (session);
}

Exit create_child (Session &session, const Arguments &arguments) {
  std::optional<orva::Angle> angle;
  if (arguments.has ("--angle"))
    angle = orva::Angle (arguments.count ("--angle"));
  clip_of (session, arguments).create_child_of (arguments.text ("PARENT"), angle);
  return finished (session);
}

Exit rename (Session &session, const Arguments &arguments) {
  clip_of (session, arguments).rename (arguments.text ("NAME"));
  return finished (session);
}

Exit erase (Session &session, const Arguments &arguments) {
  clip_of (session, arguments).erase ();
  return finished (session);
}

Exit set (Session &session, const Arguments &arguments) {
  Link &link = session.link ();
  orva::ClipEdit edit;
  edit.title = arguments.text_if ("--title");
  edit.creator = arguments.text_if ("--creator");
  edit.project = arguments.text_if ("--project");
  edit.playback = arguments.word_if ("--playback", playback_words);
  edit.repeat = arguments.word_if ("--repeat", repeat_words);
  edit.loop_in = link.position_if (arguments, "--loop-in");
  edit.loop_out = link.position_if (arguments, "--loop-out");
  edit.trim_start = link.position_if (arguments, "--trim-start");
  edit.trim_end = link.position_if (arguments, "--trim-end");
  edit.timecode_source = arguments.word_if ("--timecode", source_words);
  if (const auto stripe = arguments.written_if ("--stripe")) {
    const auto counting =
        arguments.word_if ("--counting", counting_words).value_or (orva::Counting::drop_frame);
    const orva::Timebase base (link.base ().rate (), counting == orva::Counting::drop_frame);
    edit.stripe = orva::TimecodeStart{stripe->at (base), counting};
  }
  clip_of (session, arguments).edit (edit);
  return finished (session);
}

} // namespace

Family clip_commands () {
  const Parameter clip = {"CLIP", Takes::clip, "its name"};
  const Parameter new_clip = {"CLIP", Takes::new_clip, "its name"};
  return {
      {"clip show",
       "print all that the server knows of a clip",
       {clip},
       "orvactl clip show NEWS/OPENER",
       show},
      {"clip create",
       "make an empty clip",
       {new_clip,
        {"--tracks", Takes::tracks, "a list of video, key and audio; all by default"},
        {"--length", Takes::position, "its length"},
        {"--channel", Takes::channel, "for recording on this channel"}},
       "orvactl clip create NEWS/TAKE1 --length 00:01:00:00",
       create},
      {"clip child",
       "make a clip that shares the content of another",
       {new_clip,
        {"PARENT", Takes::clip, "the other one"},
        {"--angle", Takes::count, "seen from this camera angle, 0 to 255"}},
       "orvactl clip child GOAL2 SPORT/GOAL --angle 2",
       create_child},
      {"clip rename",
       "give a clip another name",
       {clip, {"NAME", Takes::new_clip, "its new name"}},
       "orvactl clip rename NEWS/TAKE1 NEWS/FINAL",
       rename},
      {"clip delete", "delete a clip", {clip}, "orvactl clip delete NEWS/TAKE1", erase},
      {"clip set",
       "change attributes of a clip; when one fails, those before it stay changed",
       {clip,
        {"--title", Takes::text, "its title"},
        {"--creator", Takes::text, "who has made it"},
        {"--project", Takes::text, "what it belongs to"},
        {"--playback", Takes::word, "how its fields are shown", Need::optional, all_words (playback_words)},
        {"--repeat", Takes::word, "how it repeats", Need::optional, all_words (repeat_words)},
        {"--loop-in", Takes::position, "where its loop starts"},
        {"--loop-out", Takes::position, "where its loop ends"},
        {"--trim-start", Takes::position, "where it starts"},
        {"--trim-end", Takes::position, "where it ends"},
        {"--stripe", Takes::position, "the timecode of its first frame"},
        {"--counting", Takes::word, "how the stripe counts", Need::optional, all_words (counting_words)},
        {"--timecode", Takes::word, "where its timecode is from", Need::optional, all_words (source_words)}},
       "orvactl clip set NEWS/FINAL --title 'The opener' --stripe 10:00:00:00",
       set}};
}

} // namespace orvactl
