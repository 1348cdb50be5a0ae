// Plays clips one after the other: first a chain of precued clips, then a list that is on the server.
//
//     playlist [address [list]]        127.0.0.1 when none is given
//
// Give any second argument when a list is loaded on channel E. Then the program plays from this list too.
#include <orva.hpp>

#include <cstdio>
#include <string>

namespace {

void wait_for_clip (const orva::Server &server, const std::string &clip) {
  server.channel (orva::E).wait_until ([&] (const orva::ChannelState &state) {
    return state.clip == clip && state.status == orva::Status::playing;
  });
  std::printf ("On air: %s\n", clip.c_str ());
}

// The program keeps the order: when a clip has started, it precues the next one.
void play_chain (const orva::Server &server) {
  const auto channel = server.channel (orva::E);
  const std::string clips[] = {"COUNTDOWN", "NEWS/STRAP", "SPORT/GOAL"};
  channel.load (clips[0]);
  channel.play (1.0);
  wait_for_clip (server, clips[0]);
  for (int i = 1; i != 3; ++i) {
    // When::now switches to the clip at once. With When::end_of_clip the clip before it would play to its
    // end. The length of 120 fields ends the clip after two seconds.
    channel.precue (clips[i], {.when = orva::When::now, .position = 0, .length = 120});
    wait_for_clip (server, clips[i]);
  }
  channel.stop ();
}

// Waits until another clip is on the channel, and returns its name.
std::string clip_after (const orva::Server &server, const std::string &clip) {
  const auto changed = [&] (const orva::ChannelState &state) { return state.clip != clip; };
  return server.channel (orva::E).wait_until (changed).clip;
}

// The server keeps the order. Make and load a list with the tools of the server; this library cannot.
void play_list (const orva::Server &server) {
  const auto channel = server.channel (orva::E);
  channel.playlist_cue ();
  const std::string first = clip_after (server, "SPORT/GOAL");
  std::printf ("The list is cued at %s.\n", first.c_str ());
  channel.playlist_play_now (0);
  channel.wait_for (orva::Status::playing);
  std::printf ("On air: %s\n", first.c_str ());
  channel.playlist_play_now (1);
  std::printf ("On air: %s\n", clip_after (server, first).c_str ());
  channel.stop ();
}

} // namespace

int main (int argc, char **argv) try {
  orva::Server server (argc > 1 ? argv[1] : "127.0.0.1");
  server.wait_until_connected ();
  play_chain (server);
  if (argc > 2)
    play_list (server);
  return 0;
} catch (const orva::error &failed) {
  std::printf ("%s\n", failed.what ());
  return 1;
}

// Output, with a list on channel E:
//
//     On air: COUNTDOWN
//     On air: NEWS/STRAP
//     On air: SPORT/GOAL
//     The list is cued at BARS.
//     On air: BARS
//     On air: COUNTDOWN
