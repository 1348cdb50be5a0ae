// vclip and playlist: virtual clips, and the lists that a server holds.
#include "session.h"

namespace orvactl {

namespace {

orva::VirtualClipControl<orva::throwing> vclip_of (Session &session, const Arguments &arguments) {
  return session.ask ().virtual_clip (arguments.text ("VCLIP"));
}

orva::Position position_of (Session &session, const Arguments &arguments, const std::string &name) {
  return session.link ().position_if (arguments, name).value_or (0);
}

Exit finished (Session &session) {
  session.out ().done ();
  return Exit::done;
}

Exit create (Session &session, const Arguments &arguments) {
  vclip_of (session, arguments).create (position_of (session, arguments, "LENGTH"));
  return finished (session);
}

Exit free (Session &session, const Arguments &arguments) {
  vclip_of (session, arguments).free ();
  return finished (session);
}

Exit begin (Session &session, const Arguments &arguments) {
  vclip_of (session, arguments).begin_changes ();
  session.open_virtual_clips.insert (arguments.text ("VCLIP"));
  return finished (session);
}

Exit end (Session &session, const Arguments &arguments) {
  vclip_of (session, arguments).end_changes ();
  session.open_virtual_clips.erase (arguments.text ("VCLIP"));
  return finished (session);
}

/// Makes one change. The server takes changes from a connection that has opened the virtual clip. This does
/// it, unless a script has done it before.
template <class Change>
Exit changed (Session &session, const Arguments &arguments, Change change) {
  const auto vclip = vclip_of (session, arguments);
  if (session.open_virtual_clips.contains (arguments.text ("VCLIP"))) {
    change (vclip);
    return finished (session);
  }
  vclip.begin_changes ();
  try {
    change (vclip);
  } catch (...) {
    (void)vclip.nothrow ().end_changes ();
    throw;
  }
  vclip.end_changes ();
  return finished (session);
}

Exit add (Session &session, const Arguments &arguments) {
  orva::Segment piece;
  piece.clip = arguments.text ("CLIP");
  piece.clip_position = position_of (session, arguments, "--from");
  piece.position = position_of (session, arguments, "--at");
  piece.length = position_of (session, arguments, "LENGTH");
  piece.tracks = arguments.tracks_or_all ("--tracks");
  if (arguments.has ("--speed"))
    piece.speed = arguments.number ("--speed");
  return changed (session, arguments, [&] (const auto &vclip) { vclip.add (piece); });
}

Exit clear (Session &session, const Arguments &arguments) {
  const orva::Stretch stretch = {arguments.tracks_or_all ("--tracks"),
                                 position_of (session, arguments, "POSITION"),
                                 position_of (session, arguments, "LENGTH")};
  return changed (session, arguments, [&] (const auto &vclip) { vclip.clear (stretch); });
}

Exit ripple (Session &session, const Arguments &arguments) {
  const orva::Position from = position_of (session, arguments, "POSITION");
  const orva::Position distance = position_of (session, arguments, "DISTANCE");
  const orva::Tracks tracks = arguments.tracks_or_all ("--tracks");
  return changed (session, arguments, [&] (const auto &vclip) { vclip.ripple (from, distance, tracks); });
}

Exit enable (Session &session, const Arguments &arguments) {
  const orva::Tracks tracks = arguments.tracks_or_all ("TRACKS");
  return changed (session, arguments, [&] (const auto &vclip) { vclip.enable (tracks); });
}

Exit configure (Session &session, const Arguments &arguments) {
  const orva::Tracks tracks = arguments.tracks_or_all ("--tracks");
  return changed (session, arguments,
                  [&] (const auto &vclip) { vclip.configure_as (arguments.text ("CLIP"), tracks); });
}

orva::Index index_of (const Arguments &arguments) {
  return orva::Index (arguments.count ("INDEX"));
}

Exit play_element (Session &session, const Arguments &arguments) {
  const auto channel = session.ask ().channel (arguments.channel ("CHANNEL"));
  if (arguments.has ("--next"))
    channel.playlist_play_next (index_of (arguments));
  else
    channel.playlist_play_now (index_of (arguments));
  return finished (session);
}

Exit cue_element (Session &session, const Arguments &arguments) {
  if (arguments.has ("--next") && !arguments.has ("INDEX"))
    throw Problem (Exit::usage, "--next needs the number of an element.");
  const auto channel = session.ask ().channel (arguments.channel ("CHANNEL"));
  if (!arguments.has ("INDEX"))
    channel.playlist_cue ();
  else if (arguments.has ("--next"))
    channel.playlist_cue_next (index_of (arguments));
  else
    channel.playlist_cue_now (index_of (arguments));
  return finished (session);
}

} // namespace

Family virtual_clip_commands () {
  const Parameter vclip = {"VCLIP", Takes::text, "its name"};
  const Parameter length = {"LENGTH", Takes::position, "fields, frames or a timecode"};
  const Parameter position = {"POSITION", Takes::position, "where in the virtual clip"};
  const Parameter tracks = {"--tracks", Takes::tracks, "a list of video, key and audio; all by default"};
  return {{"vclip create",
           "make an empty virtual clip",
           {vclip, length},
           "orvactl vclip create CUT 00:01:00:00",
           create},
          {"vclip free", "free a virtual clip", {vclip}, "orvactl vclip free CUT", free},
          {"vclip begin",
           "open a virtual clip for several changes, in a script",
           {vclip},
           "orvactl vclip begin CUT",
           begin},
          {"vclip end", "end the changes of a script", {vclip}, "orvactl vclip end CUT", end},
          {"vclip add",
           "put a piece of a clip in",
           {vclip,
            {"CLIP", Takes::clip, "the clip"},
            length,
            {"--from", Takes::position, "where the piece starts in the clip; its start by default"},
            {"--at", Takes::position, "where it goes; the start by default"},
            tracks,
            {"--speed", Takes::number, "1 is normal"}},
           "orvactl vclip add CUT NEWS/OPENER 00:00:05:00 --at 00:00:10:00",
           add},
          {"vclip clear",
           "empty a stretch",
           {vclip, position, length, tracks},
           "orvactl vclip clear CUT 00:00:10:00 00:00:05:00",
           clear},
          {"vclip ripple",
           "move everything from a position on",
           {vclip, position, {"DISTANCE", Takes::distance, "backwards when it is negative"}, tracks},
           "orvactl vclip ripple CUT 00:00:10:00 -50",
           ripple},
          {"vclip enable",
           "choose the tracks that are seen and heard",
           {vclip, {"TRACKS", Takes::tracks, "a list of video, key and audio, or all, or none"}},
           "orvactl vclip enable CUT video,audio",
           enable},
          {"vclip configure",
           "give tracks the configuration that they have in a clip",
           {vclip, {"CLIP", Takes::clip, "the clip"}, tracks},
           "orvactl vclip configure CUT NEWS/OPENER",
           configure}};
}

Family playlist_commands () {
  const Parameter channel = {"CHANNEL", Takes::channel, "a letter from A to H or a number from 0 to 7"};
  return {{"playlist play",
           "play an element of the list",
           {channel,
            {"INDEX", Takes::count, "its number, from 0"},
            {"--next", Takes::nothing, "after the one that is on air"}},
           "orvactl playlist play A 3 --next",
           play_element},
          {"playlist cue",
           "cue the list, or one of its elements, without playing it",
           {channel,
            {"INDEX", Takes::count, "its number, from 0; the first by default", Need::optional},
            {"--next", Takes::nothing, "after the one that is on air"}},
           "orvactl playlist cue A",
           cue_element}};
}

} // namespace orvactl
