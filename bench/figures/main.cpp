// Prints the table of doc/performance.md: what the library costs, compared with the least that it could cost.
#include "anchors.h"
#include "measure.h"
#include "orva.hpp"
#include "server.h"
#include "sockets.h"
#include "thin.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>

namespace {

using namespace figures;

constexpr unsigned runs = 5;
constexpr unsigned round_trips = 5000;
constexpr unsigned commands = 100000;
constexpr unsigned clients = 8;
constexpr uint32_t many_names = 1000000;
constexpr uint32_t forever = 60000; ///< milliseconds

uint32_t near_server = 0; ///< on the processor that this process runs on, for round trips
uint32_t far_server = 0;  ///< on another, for streams

void must (uint32_t code, const char *what) {
  if (code != ORVA_OK)
    give_up (what);
}

/// A connection of the library.
class Library {
public:
  explicit Library (uint32_t address) : connection_ (orva_connect (address)) {
    orva_wait_until_connected (connection_);
  }
  ~Library () { orva_close (connection_); }
  Library (const Library &) = delete;
  Library &operator= (const Library &) = delete;
  operator uint32_t () const { return connection_; }

  void order (Order order, uint32_t number) const {
    must (orva_goto1 (connection_, order, number), "orva_goto1");
  }

private:
  uint32_t connection_;
};

/// A buffer for texts of the library and of the thin client.
struct Text {
  static constexpr uint32_t capacity = 64;
  orva_char units[capacity];
  OrvaStringBuffer buffer () { return {units, capacity}; }
};

void time_each (std::vector<double> &seconds, unsigned count, const std::function<void ()> &call) {
  for (unsigned i = 0; i != count; ++i)
    seconds.push_back (seconds_of (call));
}

// --- Round trips

void measure_round_trips () {
  Handoff handoff (near_server);
  Library library (near_server);
  unsigned number = 0;
  const auto raw_stop = [&] { handoff.call (stop_document (++number)); };
  const auto raw_clip = [&] { handoff.call (clip_document (++number)); };
  const auto stop = [&] { must (orva_cmd_stop1 (library, 0), "orva_cmd_stop1"); };
  const orva_char clip[] = u"NEWS0123";
  const auto open_clip = [&] {
    uint32_t handle = 0;
    must (orva_open_clip_metadata (library, clip, &handle), "orva_open_clip_metadata");
    orva_close_clip_metadata (handle);
  };
  std::vector<double> raw_stops, raw_clips, stops, clips;
  std::vector<double> warm_up;
  time_each (warm_up, 500, stop);
  time_each (warm_up, 500, raw_stop);
  time_each (warm_up, 200, open_clip);
  for (unsigned turn = 0; turn != 10; ++turn) { // in turns, so that a disturbance affects all of them
    time_each (raw_stops, round_trips / 10, raw_stop);
    time_each (stops, round_trips / 10, stop);
    time_each (raw_clips, round_trips / 40, raw_clip);
    time_each (clips, round_trips / 40, open_clip);
  }
  const double handoff_median = at_part (raw_stops, 0.5);
  note ("handoff, microseconds", handoff_median * 1e6);
  note ("`orva_cmd_stop1`, median / handoff", at_part (stops, 0.5) / handoff_median);
  note ("`orva_cmd_stop1`, 99th percentile / handoff", at_part (stops, 0.99) / at_part (raw_stops, 0.99));
  note ("`orva_open_clip_metadata` / handoff of the same bytes",
        at_part (clips, 0.5) / at_part (raw_clips, 0.5));
}

void measure_cpp_header () {
  Library library (near_server);
  const orva::Server server (orva::Address (near_server), orva::Options{orva::no_limit});
  server.wait_until_connected ();
  const auto without = server.channel (orva::A);
  const auto with = without.within (std::chrono::seconds (5));
  const auto c = [&] { must (orva_cmd_stop1 (library, 0), "orva_cmd_stop1"); };
  std::vector<double> c_stops, stops, limited_stops;
  for (unsigned turn = 0; turn != 10; ++turn) {
    time_each (c_stops, round_trips / 10, c);
    time_each (stops, round_trips / 10, [&] { without.stop (); });
    time_each (limited_stops, round_trips / 10, [&] { with.stop (); });
  }
  const double c_median = at_part (c_stops, 0.5);
  note ("`orva.hpp`, `stop ()` without a limit / `orva_cmd_stop1`", at_part (stops, 0.5) / c_median);
  note ("`orva.hpp`, `stop ()` with a limit / `orva_cmd_stop1`", at_part (limited_stops, 0.5) / c_median);
}

// --- Many commands

void measure_asynchronous () {
  Handoff handoff (far_server);
  const double raw = seconds_of ([&] { handoff.send_many (commands); });
  Library library (far_server);
  orva_synchronous (library, 1);
  const auto all = [&] {
    for (unsigned i = 0; i != commands; ++i)
      orva_cmd_play1 (library, 0);
    orva_sync (library);
  };
  note ("raw sends a second", commands / raw);
  note ("asynchronous `orva_cmd_play1` and `orva_sync` / raw sends", raw / seconds_of (all));
}

template <class Call>
double seconds_of_threads (unsigned calls, Call call) {
  std::vector<std::thread> threads;
  const Clock::time_point begin = Clock::now ();
  for (unsigned i = 0; i != clients; ++i)
    threads.emplace_back ([&] {
      for (unsigned n = 0; n != calls; ++n)
        call (n);
    });
  for (std::thread &thread : threads)
    thread.join ();
  return seconds_since (begin);
}

void measure_threads () {
  constexpr unsigned calls = 4000;
  Handoff handoff (near_server);
  Library library (near_server);
  const double raw = seconds_of_threads (calls, [&] (unsigned n) { handoff.call (stop_document (n)); });
  const double own = seconds_of_threads (calls, [&] (unsigned) { orva_cmd_stop1 (library, 0); });
  note ("8 threads on one connection / raw", raw / own);
}

// --- Streams

struct StreamName {
  Stream stream;
  const char *name;
};
constexpr StreamName stream_names[] = {
    {stream_channel_speed, "`channel_speed` a second / thin"},
    {stream_channel_status, "`channel_status` a second / thin"},
    {stream_clip_changed, "`clip_changed` a second / thin"},
    {stream_channel_timecode, "`channel_timecode` a second / thin"},
    {stream_channel_info, "`channel_info` a second / thin"},
    {stream_metadata_change, "`metadata_change` of five pairs a second / thin"},
    {stream_clipinfo, "full `clipinfo` a second / thin"}};

uint32_t open_store (uint32_t connection) {
  uint32_t store = 0;
  must (orva_open_kvstore (connection, u"folder", u"", ORVA_STORE_READ, &store), "orva_open_kvstore");
  must (orva_kvstore_wait_scan (store, forever), "orva_kvstore_wait_scan");
  return store;
}

void read_out (uint32_t store) {
  Text key, value;
  uint32_t type = 0;
  while (orva_kvstore_get_change (store, 0, &type, key.buffer (), value.buffer ()) == ORVA_OK) {
  }
}

void measure_streams () {
  Library library (far_server);
  Thin thin (far_server);
  const uint32_t store = open_store (library); // or reports of metadata would not be looked at
  read_out (store);
  for (const auto &[stream, name] : stream_names) {
    const auto of_library = [&] { library.order (order_stream, stream); };
    const auto of_thin = [&] { thin.order (order_stream, stream); };
    of_library ();
    of_thin ();
    std::vector<double> own, other;
    for (unsigned turn = 0; turn != 3; ++turn) {
      own.push_back (seconds_of (of_library));
      other.push_back (seconds_of (of_thin));
    }
    note (name, at_part (other, 0.5) / at_part (own, 0.5));
    note ((std::string ("messages a second, thin, ") + name).c_str (),
          stream_messages / at_part (other, 0.5));
  }
  orva_close_key_value_store (store);
}

// The library only drops the names here; the thin client keeps them.
void measure_clipids () {
  Library library (far_server);
  Thin thin (far_server);
  library.order (order_list, 20000);
  thin.order (order_list, 20000);
  std::vector<double> own, other;
  for (unsigned turn = 0; turn != 4; ++turn) {
    own.push_back (seconds_of ([&] { orva_open_clip_list (library, nullptr); }));
    other.push_back (seconds_of ([&] { thin.close_list (thin.open_list ()); }));
  }
  note ("`clipid` a second / thin", at_part (other, 0.5) / at_part (own, 0.5));
}

// --- Lists

void measure_list (uint32_t names, const char *rate_name) {
  Library library (far_server);
  Thin thin (far_server);
  library.order (order_list, names);
  thin.order (order_list, names);
  uint32_t handle = 0;
  const double before = resident_bytes ();
  const double own =
      seconds_of ([&] { must (orva_open_clip_list (library, &handle), "orva_open_clip_list"); });
  const double after = resident_bytes ();
  uint32_t thin_list = 0;
  const double other = seconds_of ([&] { thin_list = thin.open_list (); });
  note (rate_name, other / own);
  if (names != many_names)
    return;
  note ("the same: resident bytes a name", (after - before) / names);
  Text name;
  std::array<double, 10> tenths{};
  double own_reading = 0;
  for (double &tenth : tenths)
    own_reading += tenth = seconds_of ([&] {
      for (uint32_t i = 0; i != names / 10; ++i)
        orva_get_clip_name (handle, name.buffer ());
    });
  const double other_reading = seconds_of ([&] {
    while (thin.take_name (thin_list, name.units, Text::capacity)) {
    }
  });
  note ("the same: reading one / thin", own_reading / other_reading);
  note ("the same: reading the last tenth / the first", tenths.back () / tenths.front ());
}

void measure_scan (uint32_t pairs_a_message, const char *name) {
  Library library (far_server);
  Thin thin (far_server);
  library.order (order_pairs, pairs_a_message);
  thin.order (order_pairs, pairs_a_message);
  std::vector<double> own, other;
  for (unsigned turn = 0; turn != 3; ++turn) {
    own.push_back (seconds_of ([&] {
      const uint32_t store = open_store (library);
      read_out (store);
      orva_close_key_value_store (store);
    }));
    other.push_back (seconds_of ([&] {
      thin.scan ("folder");
      Text key, value;
      while (thin.take_change (key.units, value.units, Text::capacity)) {
      }
    }));
  }
  note (name, at_part (other, 0.5) / at_part (own, 0.5));
}

// --- Values that are there already

/// As large as what the library keeps of a position.
struct Place {
  std::mutex lock;
  std::array<uint32_t, 18> values{};

  uint32_t read () {
    const std::lock_guard hold (lock);
    const std::array<uint32_t, 18> copy = values;
    asm volatile("" ::"m"(copy));
    return copy[0];
  }
};

void measure_cached () {
  constexpr unsigned calls = 200000;
  Library library (near_server);
  uint32_t position = 0;
  must (orva_channel_position (library, 0, &position), "orva_channel_position");
  Place place;
  const auto copy = [&place] { place.read (); };
  const auto query = [&library] {
    uint32_t value = 0;
    orva_channel_position (library, 0, &value);
  };
  const auto repeat = [] (unsigned count, auto call) {
    return seconds_of ([&] {
      for (unsigned i = 0; i != count; ++i)
        call ();
    });
  };
  std::vector<double> own, other;
  for (unsigned turn = 0; turn != 5; ++turn) {
    other.push_back (repeat (calls, copy));
    own.push_back (repeat (calls, query));
  }
  note ("`orva_channel_position` / lock, copy, unlock, one thread",
        at_part (own, 0.5) / at_part (other, 0.5));
  bind_to_processor (-1);
  own.clear ();
  other.clear ();
  for (unsigned turn = 0; turn != 3; ++turn) {
    other.push_back (seconds_of_threads (calls / 2, [&] (unsigned) { copy (); }));
    own.push_back (seconds_of_threads (calls / 2, [&] (unsigned) { query (); }));
  }
  note ("the same, 8 threads on one channel", at_part (own, 0.5) / at_part (other, 0.5));
}

void measure_idle () {
  constexpr unsigned count = 500;
  std::vector<uint32_t> connections;
  const Library first (near_server);
  const double before = resident_bytes ();
  for (unsigned i = 0; i != count; ++i)
    connections.push_back (orva_connect (near_server));
  for (const uint32_t connection : connections)
    orva_wait_until_connected (connection);
  note ("idle connection, resident KB", (resident_bytes () - before) / count / 1024);
  for (const uint32_t connection : connections)
    orva_close (connection);
}

// --- Costs that must not grow

void measure_open_commands () {
  constexpr unsigned some = 5000;
  Library library (far_server);
  library.order (order_hold, 1);
  orva_synchronous (library, 1);
  const auto play = [&] (unsigned count) {
    for (unsigned i = 0; i != count; ++i)
      orva_cmd_play1 (library, 0);
  };
  play (some);
  const double few = seconds_of ([&] { play (some); });
  play (100000);
  const double many = seconds_of ([&] { play (some); });
  orva_synchronous (library, 0);
  library.order (order_hold, 0);
  orva_sync (library);
  note ("a command with 100,000 open / with few", many / few);
}

void measure_long_stream () {
  constexpr double gigabyte = 1u << 30;
  Library library (far_server);
  const double bytes = static_cast<double> (stream_messages * stream_message (stream_clipinfo, 0).size ());
  const auto part = [&] { return seconds_of ([&] { library.order (order_stream, stream_clipinfo); }); };
  part ();
  const double first = part ();
  double done = 2 * bytes, last = 0;
  for (; done < gigabyte; done += bytes)
    last = part ();
  note ("a message behind 1 GB of stream / at its beginning", last / first);
}

std::vector<Figure> figures_wanted () {
  return {
      {"`orva_cmd_stop1`, median / handoff", 1.10, 1.05, false},
      {"`orva_cmd_stop1`, 99th percentile / handoff", 1.15, 1.10, false},
      {"`orva_open_clip_metadata` / handoff of the same bytes", 1.5, 1.2, false},
      {"`orva.hpp`, `stop ()` without a limit / `orva_cmd_stop1`", 1.05, 1.02, false},
      {"`orva.hpp`, `stop ()` with a limit / `orva_cmd_stop1`", 2, 1.5, false},
      {"asynchronous `orva_cmd_play1` and `orva_sync` / raw sends", 0.45, 0.7, true},
      {"8 threads on one connection / raw", 0.80, 0.9, true},
      {"`channel_speed` a second / thin", 1.0, 2, true},
      {"`channel_status` a second / thin", 1.0, 2, true},
      {"`clip_changed` a second / thin", 1.0, 2, true},
      {"`clipid` a second / thin", 1.0, 2, true},
      {"`channel_timecode` a second / thin", 1.0, 1.5, true},
      {"`channel_info` a second / thin", 1.0, 1.5, true},
      {"`metadata_change` of five pairs a second / thin", 1.0, 1.5, true},
      {"full `clipinfo` a second / thin", 0.7, 1.2, true},
      {"opening a list of 10,000 names / thin", 0.8, 1.2, true},
      {"opening a list of 1,000,000 names / thin", 0.8, 1.2, true},
      {"the same: resident bytes a name", 80, 48, false},
      {"the same: reading one / thin", 2, 1.2, false},
      {"the same: reading the last tenth / the first", 1.2, 1, false},
      {"store scan of 100,000 pairs by 100, read out / thin", 1.0, 1.5, true},
      {"store scan of 100,000 pairs by 400, read out / thin", 1.0, 1.5, true},
      {"`orva_channel_position` / lock, copy, unlock, one thread", 2.0, 1.3, false},
      {"the same, 8 threads on one channel", 1.5, 1.0, false},
      {"idle connection, resident KB", 36, 24, false},
      {"a command with 100,000 open / with few", 1.5, 1, false},
      {"a message behind 1 GB of stream / at its beginning", 1.2, 1, false},
  };
}

struct Group {
  const char *name;
  void (*measure) ();
  bool once = false; ///< because it takes a minute
};
constexpr Group groups[] = {
    {"round_trips", measure_round_trips},
    {"cpp_header", measure_cpp_header},
    {"asynchronous", measure_asynchronous},
    {"threads", measure_threads},
    {"streams", measure_streams},
    {"clipids", measure_clipids},
    {"list", [] { measure_list (10000, "opening a list of 10,000 names / thin"); }},
    {"list", [] { measure_list (many_names, "opening a list of 1,000,000 names / thin"); }},
    {"scan", [] { measure_scan (100, "store scan of 100,000 pairs by 100, read out / thin"); }},
    {"scan", [] { measure_scan (400, "store scan of 100,000 pairs by 400, read out / thin"); }},
    {"cached", measure_cached},
    {"idle", measure_idle},
    {"open", measure_open_commands},
    {"long", measure_long_stream, true},
};

} // namespace

/// @param arguments the names of groups; all of them when there are none
int main (int count, char **arguments) {
  bind_to_processor (0);
  near_server = start_server (0);
  far_server = start_server (1);
  std::vector<Figure> table = figures_wanted ();
  for (unsigned run = 0; run != runs; ++run)
    for (const Group &group : groups) {
      bool wanted = count < 2 && !(group.once && run != 0);
      for (int i = 1; i < count; ++i)
        wanted |= std::strcmp (arguments[i], group.name) == 0;
      if (wanted)
        run_apart (table, group.measure);
    }
  print (table);
  return 0;
}
