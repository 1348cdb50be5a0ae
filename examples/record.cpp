// Records for two seconds, and lists all clips with their lengths.
//
//     record [address [clip]]        127.0.0.1 and TAPE when none are given
#include <orva.hpp>

#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

using namespace std::chrono_literals;

int main (int argc, char **argv) try {
  orva::Server server (argc > 1 ? argv[1] : "127.0.0.1");
  const std::string name = argc > 2 ? argv[2] : "TAPE";
  server.wait_until_connected ();
  if (server.clip (name).exists ()) {
    std::printf ("There is a clip %s already.\n", name.c_str ());
    return 1;
  }
  std::printf ("%s can be recorded.\n",
               server.disk_time ().available.text (server.video ().timebase ()).c_str ());

  // Creates the clip for the channel, starts an insert edit and plays.
  const auto channel = server.channel (orva::B);
  channel.record (name);
  channel.wait_for (orva::Status::recording);
  std::printf ("Channel B records %s.\n", name.c_str ());
  std::this_thread::sleep_for (2s);
  channel.end_recording ();
  channel.wait_for (orva::Status::stopped);

  for (const std::string &clip : server.clips ()) {
    const orva::Position length = server.clip (clip).info ().length;
    std::printf ("%s%s  %lld fields\n", clip.c_str (), clip == name ? " (new)" : "",
                 static_cast<long long> (length.fields ()));
  }
  return 0;
} catch (const orva::error &failed) {
  std::printf ("%s\n", failed.what ());
  return 1;
}

// Output:
//
//     27:46:34;16 can be recorded.
//     Channel B records TAPE.
//     BARS  21600 fields
//     ...
//     TAPE (new)  121 fields
