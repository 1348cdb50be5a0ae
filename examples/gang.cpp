// Plays two channels on one field: a gang.
//
//     gang [address]        127.0.0.1 when none is given
#include <orva.hpp>

#include <chrono>
#include <cstdio>
#include <thread>

using namespace std::chrono_literals;

int main (int argc, char **argv) try {
  orva::Server server (argc > 1 ? argv[1] : "127.0.0.1");
  server.wait_until_connected ();

  server.channel (orva::C).load ("BARS");
  server.channel (orva::D).load ("NEWS/OPENER");

  // One command goes to both channels, so they start and stop on the same field. When one of them cannot
  // start, neither does, and the server refuses the command. A channel that is still being cued would start a
  // field later, so wait until both are cued.
  const auto both = server.channels (orva::C | orva::D);
  both.go_to (50);
  for (const orva::Channel channel : {orva::C, orva::D})
    server.channel (channel).wait_until ([] (const orva::ChannelState &state) {
      return state.position == 50 && state.status == orva::Status::stopped;
    });

  both.play (1.0);
  server.channel (orva::C).wait_for (orva::Status::playing);
  server.channel (orva::D).wait_for (orva::Status::playing);
  std::this_thread::sleep_for (500ms);
  both.stop ();

  // They have started and stopped on the same field, so they are at the same position.
  const auto c = server.channel (orva::C).wait_for (orva::Status::stopped);
  const auto d = server.channel (orva::D).wait_for (orva::Status::stopped);
  std::this_thread::sleep_for (100ms); // the last position is reported after the status
  const auto distance = server.channel (orva::C).state ().position.fields () -
                        server.channel (orva::D).state ().position.fields ();
  std::printf ("%s and %s have stopped %lld fields apart.\n", c.clip.c_str (), d.clip.c_str (),
               static_cast<long long> (distance));
  return 0;
} catch (const orva::error &failed) {
  std::printf ("%s\n", failed.what ());
  return 1;
}

// Output:
//
//     BARS and NEWS/OPENER have stopped 0 fields apart.
