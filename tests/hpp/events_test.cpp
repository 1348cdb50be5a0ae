// Events of servers, and how handlers and queues get them.

#include "hpp/reporting.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace orva;
using namespace std::chrono_literals;
using support::wait_until;

/// Takes events until one is of the kind and satisfies the condition. Fails the test when none comes.
template <class T>
T next (
    EventQueue &queue, const std::function<bool (const T &)> &fits = [] (const T &) { return true; }) {
  while (const std::optional<Event> event = queue.next (generous))
    if (const T *const what = event->as<T> ())
      if (fits (*what))
        return *what;
  throw std::runtime_error ("no such event");
}

Interest only (Channels channels, bool positions = false) {
  Interest interest;
  interest.channels = channels;
  interest.positions = positions;
  return interest;
}

TEST (Events, BeginWithThePresent) {
  ReportingServer fake;
  const Connected server (fake);
  EventQueue queue;
  queue.watch (server, only (C, true));
  next<LinkUp> (queue);
  const auto clip = next<ClipLoaded> (queue);
  EXPECT_EQ (clip.channel, C);
  EXPECT_EQ (clip.clip, "NEWS0123");
  EXPECT_EQ (next<StatusChanged> (queue).status, Status::playing);
  EXPECT_EQ (next<SpeedChanged> (queue).speed, 1.5);
  EXPECT_EQ (next<PositionChanged> (queue).position, Position (42));
  EXPECT_EQ (next<LengthChanged> (queue).length, Position (1000));
  EXPECT_EQ (next<PrecuedChanged> (queue).count, 3u);
  EXPECT_EQ (next<RepeatChanged> (queue).repeat, Repeat::pingpong);
  EXPECT_EQ (next<AngleChanged> (queue).angle, 2u);
  EXPECT_EQ (next<InputChanged> (queue).input.mode, InputMode::manual);
  next<Watching> (queue);

  EventQueue late; // a later queue gets the known values too, without traffic
  const size_t before = fake.command_count ();
  late.watch (server, only (C));
  EXPECT_EQ (next<ClipLoaded> (late).clip, "NEWS0123");
  EXPECT_EQ (next<InputChanged> (late).input.tracks, EditTracks::all);
  EXPECT_EQ (fake.command_count (), before);
}

TEST (Events, TellChanges) {
  ReportingServer fake;
  const Connected server (fake);
  EventQueue queue;
  queue.watch (server, only (A, true));
  next<Watching> (queue);
  fake.status ("A", "stop");
  EXPECT_EQ (next<StatusChanged> (queue).status, Status::stopped);
  fake.clip ("A", "\xC3\xA4");
  EXPECT_EQ (next<ClipLoaded> (queue).clip, "\xC3\xA4");
  fake.speed ("A", -65536);
  EXPECT_EQ (next<SpeedChanged> (queue).speed, -1.0);
  fake.position ("A", 77);
  EXPECT_EQ (next<PositionChanged> (queue).position, Position (77));
  fake.information ("A", 1000, "off", 2, 1023, 3); // only the repeat mode differs
  EXPECT_EQ (next<RepeatChanged> (queue).repeat, Repeat::off);
  fake.information ("A", 1001, "off", 2, 1023, 3);
  std::optional<Event> event = queue.next (generous);
  ASSERT_TRUE (event && event->as<LengthChanged> ()) << "and nothing else";
}

// Each value is read with a call of its own, so the report may arrive between two of the reads.
TEST (Events, TellEveryChangeOfOneReportInAnyOrder) {
  ReportingServer fake;
  const Connected server (fake);
  EventQueue queue;
  queue.watch (server, only (A));
  next<Watching> (queue);
  fake.information ("A", 1000, "pingpong", 1, 0, 4);
  std::optional<PrecuedChanged> precued;
  std::optional<AngleChanged> angle;
  std::optional<InputChanged> input;
  while (!precued || !angle || !input) {
    const std::optional<Event> event = queue.next (generous);
    ASSERT_TRUE (event);
    if (const auto *const is_precued = event->as<PrecuedChanged> ())
      precued = *is_precued;
    if (const auto *const is_angle = event->as<AngleChanged> ())
      angle = *is_angle;
    if (const auto *const is_input = event->as<InputChanged> ())
      input = *is_input;
  }
  EXPECT_EQ (precued->count, 4u);
  EXPECT_EQ (angle->angle, 1u);
  EXPECT_EQ (input->input.tracks, EditTracks::none);
}

TEST (Events, TellOfTheLink) {
  ReportingServer fake;
  const Connected server (fake);
  EventQueue queue;
  queue.watch (server);
  next<LinkUp> (queue);
  fake.refuse ();
  fake.drop ();
  next<LinkDown> (queue);
  fake.listen ();
  next<LinkUp> (queue);
}

TEST (Events, BeginWithLinkDownWhenTheServerIsAway) {
  ReportingServer fake;
  fake.refuse ();
  const Server server (fake.address ());
  EventQueue queue;
  queue.watch (server, only (A));
  const std::optional<Event> first = queue.next (generous);
  ASSERT_TRUE (first && first->as<LinkDown> ());
  EXPECT_EQ (first->server.number (), fake.address ());
  fake.listen ();
  next<LinkUp> (queue);
  EXPECT_EQ (next<StatusChanged> (queue).status, Status::playing);
}

TEST (Events, TellOfClipsAndDirectories) {
  ReportingServer fake;
  const Connected server (fake);
  EventQueue queue;
  queue.watch (server);
  next<Watching> (queue);
  fake.report ("<clip_created><ClipID>NEW</ClipID></clip_created>");
  EXPECT_EQ (next<ClipAdded> (queue).clip, "NEW");
  fake.report ("<clip_changed><ClipID>NEW</ClipID></clip_changed>");
  EXPECT_EQ (next<ClipEdited> (queue).clip, "NEW");
  fake.report ("<clip_deleted><ClipID>NEW</ClipID></clip_deleted>");
  EXPECT_EQ (next<ClipDeleted> (queue).clip, "NEW");
  fake.report ("<directory_created><DirectoryName>D</DirectoryName></directory_created>");
  EXPECT_EQ (next<DirectoryAdded> (queue).directory, "D");
  fake.report ("<directory_deleted><DirectoryName>D</DirectoryName></directory_deleted>");
  EXPECT_EQ (next<DirectoryDeleted> (queue).directory, "D");
}

TEST (Events, AreOnlyWhatIsOfInterest) {
  ReportingServer fake;
  const Connected server (fake);
  EventQueue some, all;
  Interest interest = only (A);
  interest.clips = false;
  some.watch (server, interest);
  next<Watching> (some);
  all.watch (server, only (A | B, true));
  next<Watching> (all);
  fake.status ("B", "stop");
  fake.position ("A", 1);
  fake.report ("<clip_created><ClipID>NEW</ClipID></clip_created>");
  next<ClipAdded> (all);
  fake.status ("A", "stop");
  next<StatusChanged> (all, [] (const StatusChanged &status) {
    return status.channel == A && status.status == Status::stopped;
  });
  const std::optional<Event> event = some.next (generous);
  ASSERT_TRUE (event && event->as<StatusChanged> ());
  EXPECT_EQ (event->as<StatusChanged> ()->channel, A);
  EXPECT_FALSE (some.next (0ms));
}

TEST (Events, TellWhatIsNotReported) {
  ReportingServer fake;
  fake.answer ("channel_report_register", ::refused ("Not now"));
  const Connected server (fake);
  EventQueue queue;
  queue.watch (server, only (A));
  const auto failed = next<WatchFailed> (queue);
  EXPECT_EQ (failed.what, "channel A");
  EXPECT_EQ (failed.failure.kind, Kind::refused);
  EXPECT_EQ (failed.failure.text, "Not now");
  next<WatchFailed> (queue,
                     [seen = 0] (const WatchFailed &) mutable { return ++seen == 5; }); // it is asked again
}

TEST (Handlers, OfOneKind) {
  ReportingServer fake;
  const Connected server (fake);
  std::atomic<int> stopped{0};
  const auto subscription = server.on<StatusChanged> (
      [&] (const StatusChanged &event) { stopped += event.status == Status::stopped && event.channel == A; });
  server.channel (A).state ();
  ASSERT_TRUE (wait_until ([&] {
    fake.status ("A", "stop");
    return stopped == 1;
  }));
}

TEST (Handlers, AreNotCalledAfterTheirSubscription) {
  ReportingServer fake;
  const Connected server (fake);
  std::mutex lock;
  for (int round = 0; round != 50; ++round) {
    auto alive = std::make_unique<int> (round);
    std::atomic<int> calls{0};
    Subscription subscription =
        server.on_event ([&, raw = alive.get ()] (const Event &) { calls += *raw == round; });
    wait_until ([&] { return calls > 0; });
    subscription = Subscription ();
    alive.reset (); // a handler that still runs reads freed memory
  }
}

TEST (Handlers, MayEndTheirOwnSubscription) {
  ReportingServer fake;
  const Connected server (fake);
  std::optional<Subscription> subscription;
  std::mutex lock;
  std::atomic<int> calls{0};
  {
    const std::lock_guard<std::mutex> hold (lock);
    subscription = server.on_event ([&] (const Event &) {
      const std::lock_guard<std::mutex> inner (lock);
      subscription.reset ();
      ++calls;
    });
  }
  ASSERT_TRUE (wait_until ([&] { return calls == 1; }));
  EventQueue queue; // gets its events after the handler would have got them
  queue.watch (server, only (A));
  next<Watching> (queue);
  EXPECT_EQ (calls, 1);
}

TEST (Handlers, MayUseTheServerAndThrow) {
  ReportingServer fake;
  const Connected server (fake);
  std::atomic<int> played{0};
  const auto bad =
      server.on<LinkUp> ([] (const LinkUp &) { throw std::runtime_error ("a handler's own fault"); });
  const auto good = server.on<LinkUp> ([&] (const LinkUp &) {
    server.channel (A).play ();
    ++played;
  });
  EXPECT_TRUE (wait_until ([&] { return played == 1; }));
}

TEST (Handlers, MayDestroyTheServer) {
  ReportingServer fake;
  std::atomic<bool> gone{false};
  std::mutex lock;
  std::optional<Server> server;
  Subscription subscription;
  {
    const std::lock_guard<std::mutex> hold (lock);
    server.emplace (fake.address ());
    subscription = server->on<LinkUp> ([&] (const LinkUp &) {
      const std::lock_guard<std::mutex> inner (lock);
      server.reset ();
      gone = true;
    });
  }
  EXPECT_TRUE (wait_until ([&] { return gone.load (); }));
  EXPECT_TRUE (fake.wait_until_left ());
}

TEST (Queues, OutliveTheirServers) {
  ReportingServer fake;
  EventQueue queue;
  {
    const Connected server (fake);
    queue.watch (server, only (A));
    next<Watching> (queue);
  }
  EXPECT_FALSE (queue.next (0ms));
}

TEST (Queues, EndTheirLoops) {
  ReportingServer fake;
  const Connected server (fake);
  EventQueue queue;
  queue.watch (server, only (A));
  std::thread closer;
  size_t events = 0;
  for (const Event &event : queue) {
    EXPECT_EQ (event.server, server.address ());
    if (++events == 3)
      closer = std::thread ([&] { queue.close (); });
  }
  closer.join ();
  EXPECT_GE (events, 3u);
}

TEST (Queues, KeepTheLastPositionOnly) {
  ReportingServer fake;
  const Connected server (fake);
  EventQueue queue, other;
  queue.watch (server, only (A, true));
  other.watch (server, only (A, true));
  next<Watching> (queue);
  for (int position = 100; position != 120; ++position) {
    fake.position ("A", position);
    next<PositionChanged> (
        other, [&] (const PositionChanged &event) { return event.position == Position (position); });
  }
  fake.status ("A", "stop");
  next<StatusChanged> (other, [] (const StatusChanged &event) { return event.status == Status::stopped; });
  size_t positions = 0;
  for (bool stopped = false; !stopped;) {
    const std::optional<Event> event = queue.next (generous);
    ASSERT_TRUE (event);
    if (const auto *const moved = event->as<PositionChanged> ()) {
      ++positions;
      EXPECT_EQ (moved->position, Position (119));
    }
    stopped = event->as<StatusChanged> () != nullptr;
  }
  EXPECT_EQ (positions, 1u);
}

TEST (Queues, TakeManyServers) {
  std::vector<std::unique_ptr<ReportingServer>> fakes;
  std::vector<Server> servers;
  EventQueue queue;
  for (int i = 0; i != 20; ++i) {
    fakes.push_back (std::make_unique<ReportingServer> ());
    servers.emplace_back (fakes.back ()->address ());
    queue.watch (servers.back (), only (A));
  }
  std::vector<Address> stopped;
  for (size_t ready = 0; ready != servers.size (); ++ready)
    next<Watching> (queue);
  for (const auto &fake : fakes)
    fake->status ("A", "stop");
  while (stopped.size () != servers.size ()) {
    const std::optional<Event> event = queue.next (generous);
    ASSERT_TRUE (event);
    if (event->as<StatusChanged> ())
      stopped.push_back (event->server);
  }
}

} // namespace
