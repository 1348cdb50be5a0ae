// Ends cleanly while threads are at work: cancels waits, ends subscriptions, and closes the server last.
//
//     clean_end [address]        127.0.0.1 when none is given
#include <orva.hpp>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <thread>

using namespace std::chrono_literals;

int main (int argc, char **argv) try {
  orva::Server server (argc > 1 ? argv[1] : "127.0.0.1");
  server.wait_until_connected ();

  // A handler runs, and a thread waits for something that never happens.
  std::atomic<int> events{0};
  orva::Subscription watching = server.on_event ([&] (const orva::Event &) { ++events; });
  orva::Cancel stop;
  std::thread worker ([control = server.cancelled_by (stop).nothrow ()] {
    const auto state = control.channel (orva::H).wait_for (orva::Status::recording, orva::no_limit);
    std::printf ("The worker has ended: %s.\n", state ? "recording" : state.failure ().text.c_str ());
  });
  std::this_thread::sleep_for (500ms);

  // The end. It does not wait for the server, so a frozen server does not delay it.
  watching.end (); // from here on the handler is not called
  std::printf ("The handler has ended.\n");
  stop.cancel (); // from here on every operation of the worker fails
  worker.join ();
  server.close (); // the destructor would do the same
  std::printf ("All is closed%s.\n", events > 0 ? "" : ", and nothing was told");
  return 0;
} catch (const orva::error &failed) {
  std::printf ("%s\n", failed.what ());
  return 1;
}

// Output:
//
//     The handler has ended.
//     The worker has ended: Cancelled.
//     All is closed.
