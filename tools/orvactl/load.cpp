// Commands that say what is on a channel, what follows, and how it plays. Each acts on one channel.
#include "waiting.h"

namespace orvactl {

namespace {

orva::ChannelControl<orva::throwing> channel_of (Session &session, const Arguments &arguments) {
  return session.ask ().channel (arguments.channel ("CHANNEL"));
}

/// For commands that only send.
Exit sent (Session &session) {
  session.out ().done ();
  return Exit::done;
}

Exit wait_here (Session &session, const Arguments &arguments, const std::function<void ()> &send,
                const Reached &reached) {
  return send_and_wait (session, arguments, arguments.channel ("CHANNEL"), send, reached);
}

std::optional<orva::Angle> angle_if (const Arguments &arguments, const std::string &name) {
  return arguments.has (name) ? std::optional<orva::Angle> (arguments.count (name)) : std::nullopt;
}

Exit load (Session &session, const Arguments &arguments) {
  const std::string &clip = arguments.text ("CLIP");
  orva::Load how;
  how.repeat = arguments.word_if ("--repeat", repeat_words);
  how.position = session.link ().position_if (arguments, "--at");
  how.loop_in = session.link ().position_if (arguments, "--loop-in");
  how.clip_position = session.link ().position_if (arguments, "--out");
  how.angle = angle_if (arguments, "--angle");
  const auto send = [&] {
    if (arguments.has ("--virtual"))
      channel_of (session, arguments).load_virtual (clip, how);
    else
      channel_of (session, arguments).load (clip, how);
  };
  return wait_here (session, arguments, send, [&] (const auto &, const auto &now) {
    return now.clip == clip && now.status != orva::Status::cueing &&
           (!how.position || now.position == *how.position);
  });
}

Exit unload (Session &session, const Arguments &arguments) {
  const auto send = [&] { channel_of (session, arguments).unload (); };
  return wait_here (session, arguments, send,
                    [] (const auto &, const auto &now) { return now.clip.empty (); });
}

Exit precue (Session &session, const Arguments &arguments) {
  if (arguments.has ("--clear") == arguments.has ("CLIP"))
    throw Problem (Exit::usage, "precue takes either a clip or --clear.");
  orva::Precue how;
  how.when = arguments.word_if ("--when", when_words).value_or (how.when);
  how.position = session.link ().position_if (arguments, "--at");
  how.length = session.link ().position_if (arguments, "--length");
  how.loop_in = session.link ().position_if (arguments, "--loop-in");
  const auto send = [&] {
    if (arguments.has ("--clear"))
      channel_of (session, arguments).precue_clear ();
    else
      channel_of (session, arguments).precue (arguments.text ("CLIP"), how);
  };
  return wait_here (session, arguments, send, [&] (const auto &before, const auto &now) {
    return arguments.has ("--clear") ? now.precued == 0
                                     : now.precued > before.precued || now.clip == arguments.text ("CLIP");
  });
}

Exit take (Session &session, const Arguments &arguments) {
  orva::Take how;
  if (const auto duration = session.link ().position_if (arguments, "--dissolve")) {
    how.transition = orva::Transition::dissolve;
    how.duration = *duration;
  }
  how.follow = arguments.word_if ("--follow", follow_words);
  const auto send = [&] { channel_of (session, arguments).take (how); };
  return wait_here (session, arguments, send, [] (const auto &before, const auto &now) {
    return now.clip != before.clip || now.precued < before.precued;
  });
}

Exit live (Session &session, const Arguments &arguments) {
  channel_of (session, arguments).go_live ({arguments.text_if ("--clip"), angle_if (arguments, "--angle")});
  return sent (session);
}

Exit repeat (Session &session, const Arguments &arguments) {
  const orva::Repeat mode = *arguments.word_if ("MODE", repeat_words);
  const auto send = [&] { channel_of (session, arguments).set_repeat (mode); };
  return wait_here (session, arguments, send,
                    [&] (const auto &, const auto &now) { return now.repeat == mode; });
}

Exit out (Session &session, const Arguments &arguments) {
  if (arguments.has ("--clear") == arguments.has ("POSITION"))
    throw Problem (Exit::usage, "out takes either a position or --clear.");
  if (arguments.has ("--clear"))
    channel_of (session, arguments).clear_out ();
  else
    channel_of (session, arguments).set_out (*session.link ().position_if (arguments, "POSITION"));
  return sent (session);
}

Exit angle (Session &session, const Arguments &arguments) {
  const orva::Angle wanted (arguments.count ("ANGLE"));
  const auto send = [&] { channel_of (session, arguments).set_angle (wanted); };
  return wait_here (session, arguments, send,
                    [&] (const auto &, const auto &now) { return now.angle == wanted.number (); });
}

} // namespace

Family load_commands () {
  const Parameter channel = {"CHANNEL", Takes::channel, "a letter from A to H or a number from 0 to 7"};
  const Parameter at = {"--at", Takes::position, "where to go in the clip"};
  const Parameter loop_in = {"--loop-in", Takes::position, "where its loop starts"};
  const Parameter angle_option = {"--angle", Takes::count, "the camera angle, 0 to 255"};
  return {{"load",
           "load a clip and show it at a position, ready to play",
           {channel,
            {"CLIP", Takes::clip, "its name"},
            at,
            {"--repeat", Takes::word, "how it repeats", Need::optional, all_words (repeat_words)},
            loop_in,
            {"--out", Takes::position, "where it ends"},
            angle_option,
            {"--virtual", Takes::nothing, "the clip is a virtual one"},
            wait_option ()},
           "orvactl load A NEWS/OPENER --at 00:00:02:00 --wait",
           load},
          {"unload", "empty a channel", {channel, wait_option ()}, "orvactl unload A", unload},
          {"precue",
           "prepare a clip to follow the one that is on the channel",
           {channel,
            {"CLIP", Takes::clip, "its name", Need::optional},
            {"--when", Takes::word, "when it takes over", Need::optional, all_words (when_words)},
            at,
            {"--length", Takes::position, "only so much of the clip"},
            loop_in,
            {"--clear", Takes::nothing, "drop what is precued"},
            wait_option ()},
           "orvactl precue A NEWS/CLOSER --when end-of-clip",
           precue},
          {"take",
           "switch to the next clip",
           {channel,
            {"--dissolve", Takes::position, "dissolve so long instead of cutting"},
            {"--follow", Takes::word, "the speed afterwards", Need::optional, all_words (follow_words)},
            wait_option ()},
           "orvactl take A --dissolve 25f",
           take},
          {"live",
           "show the input, or a clip that is being recorded, with the least delay",
           {channel, {"--clip", Takes::clip, "the clip that is being recorded"}, angle_option},
           "orvactl live A",
           live},
          {"repeat",
           "say how the clip on a channel repeats",
           {channel, {"MODE", Takes::word, "", Need::required, all_words (repeat_words)}, wait_option ()},
           "orvactl repeat A loop",
           repeat},
          {"out",
           "set or remove the position where the clip on a channel ends",
           {channel,
            {"POSITION", Takes::position, "fields, frames or a timecode", Need::optional},
            {"--clear", Takes::nothing, "remove it"}},
           "orvactl out A 00:00:20:00",
           out},
          {"angle",
           "choose a camera angle",
           {channel, {"ANGLE", Takes::count, "0 to 255"}, wait_option ()},
           "orvactl angle A 2",
           angle}};
}

} // namespace orvactl
