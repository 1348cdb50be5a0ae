// Lists the clips of a server and follows their changes.
//
//     follow_clips [address]        127.0.0.1 when none is given; ends when the link is lost
#include <orva.hpp>

#include <cstdio>
#include <string>

int main (int argc, char **argv) try {
  orva::Server server (argc > 1 ? argv[1] : "127.0.0.1");
  server.wait_until_connected ();
  setvbuf (stdout, nullptr, _IONBF, 0);

  // First wait until changes are reported, then ask for the list. So no change is missed. A change that is
  // already in the list may be reported too.
  orva::EventQueue queue;
  queue.watch (server, {.channels = {}});
  while (queue.next ()->as<orva::Watching> () == nullptr)
    ;

  for (const std::string &clip : server.clips ())
    std::printf ("there is %s\n", clip.c_str ());

  for (const orva::Event &event : queue) {
    if (const auto *const added = event.as<orva::ClipAdded> ())
      std::printf ("added: %s\n", added->clip.c_str ());
    if (const auto *const edited = event.as<orva::ClipEdited> ())
      std::printf ("edited: %s\n", edited->clip.c_str ());
    if (const auto *const deleted = event.as<orva::ClipDeleted> ())
      std::printf ("deleted: %s\n", deleted->clip.c_str ());
    if (event.as<orva::LinkDown> () != nullptr)
      break; // changes are missed while the link is down: list the clips again after LinkUp
  }
  std::printf ("the server is away\n");
  return 0;
} catch (const orva::error &failed) {
  std::printf ("%s\n", failed.what ());
  return 1;
}

// Output, while somebody creates a clip, gives it a title and deletes it:
//
//     there is BARS
//     ...
//     added: A CLIP
//     edited: A CLIP
//     deleted: A CLIP
//     the server is away
