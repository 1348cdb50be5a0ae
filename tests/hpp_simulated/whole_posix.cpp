// orva.hpp against the simulated server.

#include "orva.hpp"
#include "support/simulator_process.h"
#include "support/wait.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace orva;
using namespace std::chrono_literals;
using support::generous;
using support::SimulatorProcess;
using support::wait_until;

/// A server object that is connected to a simulator.
class Connected : public Server {
public:
  explicit Connected (const SimulatorProcess &simulator) : Server (simulator.address (), Options{generous}) {
    wait_until_connected ();
  }
};

TEST (Whole, AServerSaysWhatItIs) {
  const SimulatorProcess simulator ({"--standard", "1080_50i", "--name", "STUDIO \xC3\xA4"});
  const Connected server (simulator);
  EXPECT_EQ (server.name (), "STUDIO \xC3\xA4");
  EXPECT_EQ (server.video ().standard, Standard::i1080_50);
  EXPECT_TRUE (server.video ().timebase ().certain ());
  EXPECT_GT (server.disk ().total, 0u);
  EXPECT_LE (server.disk_time ().available, server.disk_time ().total);
  EXPECT_TRUE (server.healthy (generous));
}

TEST (Whole, AProgressiveServerCannotBeTold) {
  const SimulatorProcess simulator ({"--standard", "1080_25p"});
  EXPECT_FALSE (Connected (simulator).video ().timebase ().certain ());
}

TEST (Whole, AClipIsPlayed) {
  const SimulatorProcess simulator;
  const Connected server (simulator);
  const auto channel = server.channel (A);
  channel.cue ("NEWS/OPENER", {.position = 100});
  channel.wait_until (
      [] (const ChannelState &state) { return state.clip == "NEWS/OPENER" && state.position == 100; });
  channel.play (1.0);
  channel.wait_for (Status::playing);
  channel.wait_until ([] (const ChannelState &state) { return state.position > 110; });
  channel.jog (-50);
  channel.stop ();
  const ChannelState state = channel.wait_for (Status::stopped);
  EXPECT_EQ (state.clip, "NEWS/OPENER");
  EXPECT_EQ (state.remaining, state.length - state.position);
  EXPECT_EQ (server.nothrow ().channel (A).cue ("NOT THERE").failure ().kind, Kind::refused);
}

TEST (Whole, AClipIsRecordedEditedAndErased) {
  const SimulatorProcess simulator;
  const Connected server (simulator);
  server.channel (B).record ("TAPE \xC3\xA4");
  server.channel (B).wait_for (Status::recording);
  server.channel (B).wait_until ([] (const ChannelState &state) { return state.position > 20; });
  server.channel (B).end_recording ();
  server.channel (B).wait_for (Status::stopped);
  const auto clip = server.clip ("TAPE \xC3\xA4");
  EXPECT_TRUE (clip.exists ());
  EXPECT_GT (clip.info ().length, Position (20));
  clip.edit ({.title = "T", .creator = "C", .metadata = {{"desk", "4"}, {"\xF0\x9D\x84\x9E", ""}}});
  EXPECT_EQ (clip.info ().title, "T");
  EXPECT_EQ (clip.meta ("desk"), "4");
  EXPECT_EQ (clip.meta ("\xF0\x9D\x84\x9E"), "");
  clip.erase_meta ("desk");
  EXPECT_EQ (clip.meta ("desk"), std::nullopt);
  server.channel (B).unload ();
  clip.rename ("OTHER");
  server.clip ("OTHER").erase ();
  const std::vector<std::string> clips = server.clips ();
  EXPECT_EQ (std::count (clips.begin (), clips.end (), "OTHER"), 0);
}

TEST (Whole, AVirtualClipIsBuiltAndPlayed) {
  const SimulatorProcess simulator;
  const Connected server (simulator);
  const auto promo = server.virtual_clip ("PROMO");
  promo.create (200);
  promo.begin_changes ();
  promo.add ({.clip = "BARS", .tracks = Tracks::video, .length = 100});
  promo.add (
      {.clip = "COUNTDOWN", .clip_position = 50, .tracks = Tracks::video, .position = 100, .length = 100});
  promo.end_changes ();
  server.channel (C).load_virtual ("PROMO");
  server.channel (C).wait_until ([] (const ChannelState &state) { return state.clip == "PROMO"; });
  server.channel (C).unload ();
  promo.free ();
}

TEST (Whole, EventsTellWhatOthersDo) {
  const SimulatorProcess simulator;
  const Connected watcher (simulator), actor (simulator);
  EventQueue queue;
  queue.watch (watcher);
  const auto wait_for = [&] (const std::function<bool (const Event &)> &fits) {
    while (const std::optional<Event> event = queue.next (generous))
      if (fits (*event))
        return true;
    return false;
  };
  ASSERT_TRUE (wait_for ([] (const Event &event) { return event.as<Watching> () != nullptr; }));
  actor.clip ("NEW").create ();
  EXPECT_TRUE (wait_for (
      [] (const Event &event) { return event.as<ClipAdded> () && event.as<ClipAdded> ()->clip == "NEW"; }));
  actor.channel (D).load ("COUNTDOWN");
  EXPECT_TRUE (wait_for ([] (const Event &event) {
    const auto *const loaded = event.as<ClipLoaded> ();
    return loaded && loaded->channel == D && loaded->clip == "COUNTDOWN";
  }));
  actor.create_directory ("DRAWER");
  EXPECT_TRUE (wait_for ([] (const Event &event) { return event.as<DirectoryAdded> () != nullptr; }));
}

TEST (Whole, AStoreIsShared) {
  const SimulatorProcess simulator;
  const Connected one (simulator), two (simulator);
  const auto writer = one.store ("F", StoreMode::read_write, "p/");
  const auto reader = two.store ("F", StoreMode::read, "p/");
  reader.wait_loaded ();
  writer.set ("key", "value");
  writer.flush ();
  const std::optional<StoreChange> change = reader.next_change ();
  ASSERT_TRUE (change);
  EXPECT_EQ (change->key, "key");
  EXPECT_EQ (change->value, "value");
}

TEST (Frozen, AServerHoldsNobody) {
  SimulatorProcess simulator;
  std::optional<Connected> server (simulator);
  EventQueue queue;
  queue.watch (*server, {.positions = true});
  auto store = std::make_optional (server->store ("F", StoreMode::read));
  store->wait_loaded ();
  simulator.freeze ();
  EXPECT_FALSE (server->healthy (50ms));
  EXPECT_FALSE (server->healthy (50ms));
  EXPECT_TRUE (server->connected ());
  const auto hasty = server->within (50ms).nothrow ();
  EXPECT_EQ (hasty.channel (A).play ().failure ().kind, Kind::timed_out);
  EXPECT_EQ (hasty.clips ().failure ().kind, Kind::timed_out);
  EXPECT_EQ (hasty.clip ("BARS").edit ({.title = "T"}).failure ().kind, Kind::timed_out);
  const Cancel cancel;
  auto waiting = server->cancelled_by (cancel).async ().name ();
  cancel.cancel ();
  EXPECT_EQ (waiting.get ().failure ().kind, Kind::cancelled);
  auto stuck = server->within (no_limit).async ().channel (B).stop ();
  store.reset ();
  server.reset (); // does not wait for the server
  simulator.kill ();
  const Kind kind = stuck.get ().failure ().kind;
  EXPECT_TRUE (kind == Kind::link_lost || kind == Kind::invalid)
      << "lost, or not yet begun when the server went";
}

TEST (Frozen, AServerThatThawsGoesOn) {
  SimulatorProcess simulator;
  const Connected server (simulator);
  simulator.freeze ();
  EXPECT_EQ (server.within (50ms).nothrow ().channel (A).play ().failure ().kind, Kind::timed_out);
  simulator.thaw ();
  server.channel (A).wait_for (Status::playing); // the server carries out the command when it has thawed
  EXPECT_TRUE (wait_until ([&] { return server.calls_under_way () == 0; }));
  EXPECT_TRUE (server.healthy (generous));
}

TEST (Twenty, ServersComeAndGo) {
  std::vector<std::unique_ptr<SimulatorProcess>> simulators;
  std::vector<Server> servers;
  EventQueue queue;
  for (int i = 0; i != 20; ++i) {
    simulators.push_back (std::make_unique<SimulatorProcess> (std::vector<std::string>{"--quiet"}));
    servers.emplace_back (simulators.back ()->address (), Options{generous});
    queue.watch (servers.back (), {.channels = A, .directories = false});
  }
  const auto count = [&] (auto is_it) {
    for (size_t seen = 0; seen != servers.size ();) {
      const std::optional<Event> event = queue.next (generous);
      ASSERT_TRUE (event);
      seen += is_it (*event) ? 1 : 0;
    }
  };
  count ([] (const Event &event) { return event.as<Watching> () != nullptr; });
  for (const auto &simulator : simulators)
    simulator->kill ();
  count ([] (const Event &event) { return event.as<LinkDown> () != nullptr; });
  for (const auto &simulator : simulators)
    simulator->start ();
  count ([] (const Event &event) { return event.as<LinkUp> () != nullptr; });
  for (const Server &server : servers)
    server.channel (A).play ();
  count ([] (const Event &event) {
    const auto *const status = event.as<StatusChanged> ();
    return status != nullptr && status->status == Status::playing;
  });
  while (!servers.empty ())
    servers.pop_back ();
}

} // namespace
