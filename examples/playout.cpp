// Plays a clip out to its end and counts down.
//
//     playout [address [clip]]        127.0.0.1 and COUNTDOWN when none are given
#include <orva.hpp>

#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

using namespace std::chrono_literals;

int main (int argc, char **argv) try {
  orva::Server server (argc > 1 ? argv[1] : "127.0.0.1");
  const std::string clip = argc > 2 ? argv[2] : "COUNTDOWN";
  server.wait_until_connected ();

  const orva::Timebase base = server.video ().timebase ();
  if (!base.certain ())
    std::printf ("The library cannot tell this server's rate; times may be wrong.\n");

  const auto channel = server.channel (orva::A);
  channel.load (clip, {.repeat = orva::Repeat::off, .position = 0});
  channel.play (1.0);

  // The server answers play() before it reports that the channel plays. So wait for the report.
  orva::ChannelState state = channel.wait_for (orva::Status::playing);
  std::printf ("%s is on air.\n", state.clip.c_str ());

  for (long long shown = -1; state.status == orva::Status::playing && state.remaining > 1;
       state = channel.state ()) {
    const auto left = std::chrono::duration_cast<std::chrono::seconds> (state.remaining.time (base)).count ();
    if (left != shown)
      std::printf ("%s left\n", state.remaining.text (base).c_str ());
    shown = left;
    std::this_thread::sleep_for (10ms); // state() sends nothing
  }
  channel.stop ();
  std::printf ("%s has been played.\n", state.clip.c_str ());
  return 0;
} catch (const orva::error &failed) {
  std::printf ("%s\n", failed.what ());
  return 1;
}

// Output:
//
//     COUNTDOWN is on air.
//     00:00:11;29 left
//     00:00:10;29.5 left
//     ...
//     00:00:00;29.5 left
//     COUNTDOWN has been played.
