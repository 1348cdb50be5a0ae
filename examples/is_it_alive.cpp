// Is the server alive? Prints once a second whether it is away, frozen or alive.
//
//     is_it_alive [address [seconds]]        127.0.0.1 and one second when none are given
#include <orva.hpp>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

using namespace std::chrono_literals;

int main (int argc, char **argv) try {
  orva::Server server (argc > 1 ? argv[1] : "127.0.0.1");
  const int looks = argc > 2 ? std::atoi (argv[2]) : 1;
  setvbuf (stdout, nullptr, _IONBF, 0);
  (void)server.nothrow ().within (3s).wait_until_connected ();

  bool well = false;
  for (int look = 0; look != looks; ++look) {
    if (look != 0)
      std::this_thread::sleep_for (1s);
    // The link alone proves nothing: the connection to a frozen server stays up.
    well = server.healthy (500ms);
    std::printf ("%s\n", !server.connected () ? "away"
                         : well               ? "alive"
                                              : "connected, but it does not answer");
  }
  return well ? 0 : 1;
} catch (const orva::error &failed) {
  std::printf ("%s\n", failed.what ());
  return 1;
}

// Output of "is_it_alive 127.0.0.1 3", while somebody freezes the server and then ends it:
//
//     alive
//     connected, but it does not answer
//     away
