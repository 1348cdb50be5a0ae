// Commands that move channels. Several channels are one call of the library, and act on the same field.
#include "waiting.h"

namespace orvactl {

namespace {

/// Calls an operation that exists for one channel and for a set of them.
template <class Operation>
void on_channels (Session &session, orva::Channels channels, Operation operation) {
  const auto first = channels.begin ();
  if (channels == orva::Channels (*first))
    operation (session.ask ().channel (*first));
  else
    operation (session.ask ().channels (channels));
}

orva::Latency latency_of (const Arguments &arguments) {
  return arguments.has ("--quick") ? orva::Latency::least : orva::Latency::normal;
}

Exit play (Session &session, const Arguments &arguments) {
  const orva::Channels channels = arguments.channels ("CHANNELS");
  const bool speed = arguments.has ("--speed") || arguments.has ("--quick");
  const auto send = [&] {
    on_channels (session, channels, [&] (const auto &group) {
      if (speed)
        group.play (arguments.number_or ("--speed", 1), latency_of (arguments));
      else
        group.play ();
    });
  };
  return send_and_wait (session, arguments, channels, send, [] (const auto &, const auto &now) {
    return now.status == orva::Status::playing || now.status == orva::Status::recording;
  });
}

Exit stop (Session &session, const Arguments &arguments) {
  const orva::Channels channels = arguments.channels ("CHANNELS");
  const auto send = [&] {
    on_channels (session, channels, [&] (const auto &group) { group.stop (latency_of (arguments)); });
  };
  return send_and_wait (session, arguments, channels, send,
                        [] (const auto &, const auto &now) { return now.status == orva::Status::stopped; });
}

Exit jog (Session &session, const Arguments &arguments) {
  const orva::Channels channels = arguments.channels ("CHANNELS");
  const orva::Position distance = *session.link ().position_if (arguments, "DISTANCE");
  const auto send = [&] {
    on_channels (session, channels,
                 [&] (const auto &group) { group.jog (distance, latency_of (arguments)); });
  };
  return send_and_wait (session, arguments, channels, send, [&] (const auto &before, const auto &now) {
    const orva::Position last = std::max (orva::Position (0), now.length - 1);
    return is_at (now, std::clamp (before.position + distance, orva::Position (0), last));
  });
}

Exit go_to (Session &session, const Arguments &arguments) {
  const orva::Channels channels = arguments.channels ("CHANNELS");
  const orva::Position position = *session.link ().position_if (arguments, "POSITION");
  const auto send = [&] {
    on_channels (session, channels,
                 [&] (const auto &group) { group.go_to (position, latency_of (arguments)); });
  };
  return send_and_wait (session, arguments, channels, send,
                        [&] (const auto &, const auto &now) { return is_at (now, position); });
}

/// The tracks that "on" and "off" stand for.
orva::EditTracks tracks_of (const Arguments &arguments) {
  if (arguments.text ("STATE") == "off")
    return orva::EditTracks::none;
  return *set_of (edit_track_words, arguments.text_or ("--tracks", "all"));
}

Exit edit (Session &session, const Arguments &arguments) {
  on_channels (session, arguments.channels ("CHANNELS"),
               [&] (const auto &group) { group.edit (tracks_of (arguments)); });
  session.out ().done ();
  return Exit::done;
}

Exit show_input (Session &session, const Arguments &arguments) {
  const orva::Channels channels = arguments.channels ("CHANNELS");
  const orva::Input input = {tracks_of (arguments), arguments.has ("--manual") ? orva::InputMode::manual
                                                                               : orva::InputMode::automatic};
  const auto send = [&] {
    on_channels (session, channels, [&] (const auto &group) { group.show_input (input.tracks, input.mode); });
  };
  return send_and_wait (session, arguments, channels, send,
                        [&] (const auto &, const auto &now) { return now.input == input; });
}

Exit activate (Session &session, const Arguments &arguments) {
  on_channels (session, arguments.channels ("CHANNELS"),
               [] (const auto &group) { group.precue_activate (); });
  session.out ().done ();
  return Exit::done;
}

} // namespace

Family transport_commands () {
  const Parameter channels = {"CHANNELS", Takes::channels,
                              "such as A, A,C-E or all; several act on one field"};
  const Parameter quick = {"--quick", Takes::nothing, "at the earliest moment that the server can"};
  const Parameter state = {"STATE", Takes::word, "", Need::required, {"on", "off"}};
  const Parameter tracks = {"--tracks", Takes::edit_tracks,
                            "a list of bit4, bit5 and others; all by default"};
  return {{"play",
           "start channels",
           {channels, {"--speed", Takes::number, "1 is normal, below 0 is backwards"}, quick, wait_option ()},
           "orvactl play A,C-E --speed 1.5 --wait",
           play},
          {"stop", "stop channels", {channels, quick, wait_option ()}, "orvactl stop A --wait", stop},
          {"jog",
           "move channels by a distance",
           {channels,
            {"DISTANCE", Takes::distance, "fields (-250), frames (-125f) or a timecode"},
            quick,
            wait_option ()},
           "orvactl jog A -1f",
           jog},
          {"goto",
           "move channels to a position",
           {channels,
            {"POSITION", Takes::position, "fields (250), frames (125f) or a timecode"},
            quick,
            wait_option ()},
           "orvactl goto A 00:00:10:00 --wait",
           go_to},
          {"edit",
           "begin or end an insert edit: while it is on, playing records",
           {channels, state, tracks},
           "orvactl edit A on",
           edit},
          {"ee",
           "show the input of channels instead of their clips",
           {channels,
            state,
            tracks,
            {"--manual", Takes::nothing, "the caller alone decides, not the server"},
            wait_option ()},
           "orvactl ee A on",
           show_input},
          {"activate", "switch channels to what is precued", {channels}, "orvactl activate A,B", activate}};
}

} // namespace orvactl
