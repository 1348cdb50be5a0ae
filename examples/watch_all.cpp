// Watches all channels of several servers on one thread.
//
//     watch_all [address...]        127.0.0.1 when none is given; ends when the last link is lost
#include <orva.hpp>

#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

namespace {

void print (const orva::Event &event) {
  const std::string server = event.server.text ();
  if (event.as<orva::LinkUp> () != nullptr)
    std::printf ("%s  is there\n", server.c_str ());
  if (event.as<orva::LinkDown> () != nullptr)
    std::printf ("%s  is away\n", server.c_str ());
  if (const auto *const clip = event.as<orva::ClipLoaded> ())
    std::printf ("%s  %c has %s\n", server.c_str (), clip->channel.letter (),
                 clip->clip.empty () ? "no clip" : clip->clip.c_str ());
  if (const auto *const status = event.as<orva::StatusChanged> ())
    std::printf ("%s  %c is %s\n", server.c_str (), status->channel.letter (),
                 orva::name_of (status->status));
}

} // namespace

int main (int argc, char **argv) try {
  std::vector<std::string> addresses (argv + 1, argv + argc);
  if (addresses.empty ())
    addresses.push_back ("127.0.0.1");
  setvbuf (stdout, nullptr, _IONBF, 0);

  std::vector<orva::Server> servers;
  orva::EventQueue queue;
  for (const std::string &address : addresses) {
    servers.emplace_back (address);
    queue.watch (servers.back ()); // the first events are the present state
  }

  std::size_t up = 0;
  for (const orva::Event &event : queue) {
    print (event);
    const bool went = event.as<orva::LinkDown> () != nullptr && up != 0;
    up += event.as<orva::LinkUp> () != nullptr ? 1 : 0;
    up -= went ? 1 : 0;
    if (went && up == 0)
      break;
  }
  return 0;
} catch (const orva::error &failed) {
  std::printf ("%s\n", failed.what ());
  return 1;
}

// Output, while somebody plays channel A and then ends the server:
//
//     127.0.0.1  is away
//     127.0.0.1  is there
//     127.0.0.1  A has BARS
//     127.0.0.1  A is stopped
//     ...
//     127.0.0.1  A is playing
//     127.0.0.1  is away
