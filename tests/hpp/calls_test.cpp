// How a call ends: by an error, by its limit, by another thread, or with its server object.

#include "hpp/scripted.h"

#include <future>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace orva;
using namespace std::chrono_literals;
using support::FakeServer;
using support::wait_until;

TEST (Errors, GiveTheServersText) {
  FakeServer fake;
  fake.answer_any (::refused ("Clip &apos;X&apos; is loaded \xE2\x82\xAC"));
  const Connected server (fake);
  const result<void> outcome = server.nothrow ().clip ("X").erase ();
  ASSERT_FALSE (outcome);
  EXPECT_EQ (outcome.failure ().kind, Kind::refused);
  EXPECT_EQ (outcome.failure ().text, "Clip 'X' is loaded \xE2\x82\xAC");
  try {
    server.clip ("X").erase ();
    FAIL ();
  } catch (const orva::refused &failed) {
    EXPECT_STREQ (failed.what (), "Clip 'X' is loaded \xE2\x82\xAC");
    EXPECT_FALSE (failed.outcome_unknown ());
  }
}

TEST (Errors, GiveALongTextWhole) {
  const std::string text (20000, 'x');
  FakeServer fake;
  fake.answer_any (::refused (text));
  const Connected server (fake);
  EXPECT_EQ (server.nothrow ().channel (A).play ().failure ().text, text);
}

TEST (Errors, TellNotConnectedFromLost) {
  FakeServer fake;
  Connected server (fake);
  auto lost = server.async ().channel (A).play ();
  fake.command (1);
  fake.refuse ();
  fake.drop ();
  EXPECT_EQ (lost.get ().failure ().kind, Kind::link_lost);
  ASSERT_TRUE (wait_until ([&] { return !server.connected (); }));
  EXPECT_EQ (thrown ([&] { server.channel (A).play (); }), Kind::not_connected);
  EXPECT_EQ (thrown ([&] { server.channel (A).state (); }), Kind::not_connected);
  EXPECT_EQ (thrown ([&] { server.clips (); }), Kind::not_connected);
}

TEST (Errors, OfWhatTheLibraryCannotDo) {
  FakeServer fake;
  const Connected server (fake);
  EXPECT_EQ (thrown ([&] { server.clip ("X").protect (); }), Kind::unsupported);
  EXPECT_EQ (thrown ([&] { server.clip ("X").unprotect (); }), Kind::unsupported);
  EXPECT_EQ (fake.command_count (), 0u);
}

TEST (Errors, OfAClosedServer) {
  FakeServer fake;
  Connected server (fake);
  const auto channel = server.channel (A);
  const auto all = server.nothrow ();
  server.close ();
  EXPECT_EQ (thrown ([&] { channel.play (); }), Kind::invalid);
  EXPECT_EQ (thrown ([&] { channel.state (); }), Kind::invalid);
  EXPECT_EQ (thrown ([&] { server.clips (); }), Kind::invalid);
  EXPECT_EQ (thrown ([&] { server.wait_until_connected (); }), Kind::invalid);
  EXPECT_EQ (thrown ([&] { (void)server.on_event ([] (const Event &) {}); }), Kind::invalid);
  EXPECT_EQ (all.wait_for_answers ().failure ().kind, Kind::invalid);
  EXPECT_FALSE (server.healthy ());
  EXPECT_FALSE (server.connected ());
}

TEST (Errors, OfOneStepEndAnOperationOfSeveral) {
  FakeServer fake;
  fake.answer_any ("<ok />");
  fake.answer ("insert_edit", ::refused ("Locked"));
  const Connected server (fake);
  EXPECT_EQ (server.nothrow ().channel (A).record ("X").failure ().text, "Locked");
  EXPECT_EQ (fake.command_count (), 2u);
}

TEST (Servers, CanBeMoved) {
  FakeServer fake;
  fake.answer_any ("<ok />");
  Server first (fake.address ());
  first.wait_until_connected ();
  Server second (std::move (first));
  second.channel (A).play ();
  EXPECT_EQ (thrown ([&] { first.channel (A).play (); }), Kind::invalid); // NOLINT: moved from on purpose
  first = std::move (second);
  first.channel (A).stop ();
  EXPECT_EQ (fake.command (2).name, "stop");
}

TEST (Groups, StayUsableWhenTheyAreMovedFrom) {
  FakeServer fake;
  fake.answer_any ("<ok />");
  const Connected server (fake);
  auto channel = server.channel (A);
  const auto other_channel = std::move (channel);
  other_channel.play ();
  channel.stop (); // NOLINT: moved from on purpose
  EXPECT_EQ (fake.command (2).name, "stop");
  auto store = server.store ("F", StoreMode::write);
  const auto other_store = std::move (store);
  other_store.set ("first", "1");
  store.set ("second", "2"); // NOLINT: moved from on purpose
  store.flush ();
}

TEST (Servers, OpenWithoutExceptions) {
  EXPECT_EQ (Server::open ("300.1.1.1").failure ().kind, Kind::invalid);
  FakeServer fake;
  const result<Server> server = Server::open (fake.address ());
  ASSERT_TRUE (server);
  EXPECT_TRUE (server->nothrow ().wait_until_connected ());
  EXPECT_EQ (server->address ().number (), fake.address ());
}

TEST (Servers, AreWaitedForTogether) {
  FakeServer there;
  FakeServer away (FakeServer::Start::refusing);
  const Server first (away.address ()), second (there.address ());
  EXPECT_EQ (wait_any ({&first, &second}, generous), &second);
  EXPECT_EQ (wait_any ({&first}, 1ms), nullptr);
  EXPECT_FALSE (wait_all ({&first, &second}, 1ms));
  away.listen ();
  EXPECT_TRUE (wait_all ({&first, &second}, generous));
}

TEST (Servers, ThatAreClosedAreNotWaitedFor) {
  FakeServer there;
  Server closed (there.address ());
  closed.close ();
  EXPECT_EQ (wait_any ({&closed}), nullptr);
  EXPECT_FALSE (wait_all ({&closed}));
}

TEST (Limits, LeaveTheCallerFree) {
  FakeServer fake;
  fake.silent (true);
  const Connected server (fake);
  const auto hasty = server.within (20ms).nothrow ();
  const result<void> played = hasty.channel (A).play ();
  ASSERT_FALSE (played);
  EXPECT_EQ (played.failure ().kind, Kind::timed_out);
  EXPECT_TRUE (played.failure ().outcome_unknown ());
  EXPECT_EQ (hasty.clips ().failure ().kind, Kind::timed_out);
  EXPECT_EQ (hasty.clip ("X").info ().failure ().kind, Kind::timed_out);
  EXPECT_EQ (hasty.channel (A).state ().failure ().kind, Kind::timed_out);
  EXPECT_EQ (hasty.wait_for_answers ().failure ().kind, Kind::timed_out);
  fake.drop ();
  EXPECT_TRUE (wait_until ([&] { return server.calls_under_way () == 0; }));
}

TEST (Limits, CostOneThreadForEachStuckCall) {
  FakeServer fake;
  fake.silent (true);
  const Connected server (fake);
  const Cancel cancel;
  std::vector<std::thread> callers;
  for (int i = 0; i != 5; ++i)
    callers.emplace_back ([&] {
      EXPECT_EQ (server.cancelled_by (cancel).nothrow ().channel (A).play ().failure ().kind,
                 Kind::cancelled);
    });
  fake.wait_for_commands (5);
  cancel.cancel ();
  for (std::thread &caller : callers)
    caller.join ();
  EXPECT_EQ (server.calls_under_way (), 5u);
  fake.drop ();
  EXPECT_TRUE (wait_until ([&] { return server.calls_under_way () == 0; }));
}

TEST (Limits, NeverRepeatACommand) {
  FakeServer fake;
  fake.silent (true);
  Connected server (fake);
  const Cancel cancel;
  auto played = server.cancelled_by (cancel).async ().channel (A).play ();
  fake.command (1);
  cancel.cancel ();
  EXPECT_TRUE (played.get ().failure ().outcome_unknown ());
  fake.silent (false);
  fake.answer_any ("<ok />");
  server.channel (A).stop ();
  EXPECT_EQ (fake.command (2).name, "stop");
  EXPECT_EQ (fake.command_count (), 2u);
}

TEST (Limits, OfTheServerHoldForEachOperation) {
  FakeServer fake;
  fake.silent (true);
  Connected server (fake, 20ms);
  EXPECT_EQ (thrown ([&] { server.channel (A).play (); }), Kind::timed_out);
  server.set_limit (10ms);
  EXPECT_EQ (thrown ([&] { server.name (); }), Kind::timed_out);
}

TEST (Limits, OfNothingUseNoThread) {
  FakeServer fake;
  std::optional<std::size_t> under_way;
  Connected server (fake, no_limit);
  fake.on ("play", [&] (const support::Command &command) {
    under_way = server.calls_under_way ();
    return support::reply_to (command, "<ok />");
  });
  server.channel (A).play ();
  EXPECT_EQ (under_way, 0u);
}

TEST (Limits, GiveWhatCameInTime) {
  FakeServer fake;
  fake.answer ("download_clipids", {"<clipid><ClipID>ONE</ClipID></clipid>", "<ok />"});
  const Connected server (fake);
  for (int i = 0; i != 200; ++i)
    ASSERT_EQ (server.clips (), std::vector<std::string>{"ONE"});
}

TEST (Waits, ForAServerThatIsAwayEnd) {
  FakeServer fake (FakeServer::Start::refusing);
  const Server server (fake.address ());
  EXPECT_EQ (thrown ([&] { server.within (5ms).wait_until_connected (); }), Kind::timed_out);
  fake.listen ();
  EXPECT_NO_THROW (server.within (generous).wait_until_connected ());
}

TEST (Cancelling, EndsWhatWaits) {
  FakeServer fake;
  fake.silent (true);
  const Connected server (fake, no_limit);
  const Cancel cancel;
  auto command = std::async (std::launch::async,
                             [&] { return server.cancelled_by (cancel).nothrow ().channel (A).play (); });
  auto store = server.store ("F", StoreMode::read);
  auto change = store.nothrow ().cancelled_by (cancel).async ().next_change ();
  fake.command (1);
  cancel.cancel ();
  EXPECT_EQ (command.get ().failure ().kind, Kind::cancelled);
  EXPECT_EQ (change.get ().failure ().kind, Kind::cancelled);
  EXPECT_TRUE (cancel.cancelled ());
  const size_t before = fake.command_count ();
  EXPECT_EQ (server.cancelled_by (cancel).nothrow ().channel (A).stop ().failure ().kind, Kind::cancelled);
  EXPECT_EQ (fake.command_count (), before);
  fake.drop ();
}

TEST (Cancelling, OfAnotherDoesNothing) {
  FakeServer fake;
  fake.answer_any ("<ok />");
  const Connected server (fake);
  const Cancel mine, other;
  other.cancel ();
  EXPECT_NO_THROW (server.cancelled_by (mine).channel (A).play ());
}

TEST (Cancelling, WorksWithAnObjectThatWasMovedFrom) {
  Cancel first;
  const Cancel second = std::move (first);
  first.cancel (); // NOLINT: moved from on purpose
  EXPECT_TRUE (second.cancelled ());
}

TEST (Futures, CarryValuesAndFailures) {
  FakeServer fake;
  fake.answer ("play", "<ok />");
  fake.answer ("stop", ::refused ("No"));
  fake.answer ("download_clipids", {"<clipid><ClipID>ONE</ClipID></clipid>", "<ok />"});
  const Connected server (fake);
  auto played = server.async ().channel (A).play ();
  auto stopped = server.channel (A).async ().stop ();
  auto clips = server.async ().clips ();
  auto bad = server.async ().channel (9).play ();
  EXPECT_TRUE (played.get ());
  EXPECT_EQ (stopped.get ().failure ().text, "No");
  EXPECT_EQ (*clips.get (), std::vector<std::string>{"ONE"});
  EXPECT_EQ (bad.get ().failure ().kind, Kind::invalid);
}

TEST (Futures, KeepTheLimit) {
  FakeServer fake;
  fake.silent (true);
  const Connected server (fake);
  auto played = server.within (20ms).async ().channel (A).play ();
  EXPECT_EQ (played.get ().failure ().kind, Kind::timed_out);
  fake.drop ();
}

TEST (Futures, MayBeDropped) {
  FakeServer fake;
  fake.silent (true);
  const Connected server (fake);
  (void)server.async ().channel (A).play ();
  fake.command (1);
  fake.drop ();
}

TEST (Answers, CanBeIgnored) {
  FakeServer fake;
  fake.silent (true);
  const Connected server (fake);
  server.ignore_answers (true);
  EXPECT_NO_THROW (server.channel (A).play ());
  fake.command (1);
  EXPECT_EQ (thrown ([&] { server.within (5ms).wait_for_answers (); }), Kind::timed_out);
  fake.silent (false);
  fake.send (support::reply_to (fake.command (1), "<ok />"));
  EXPECT_NO_THROW (server.wait_for_answers ());
  server.ignore_answers (false);
  fake.answer_any (::refused ("No"));
  EXPECT_EQ (thrown ([&] { server.channel (A).play (); }), Kind::refused);
}

TEST (Health, IsAnAnswer) {
  FakeServer fake;
  const Connected server (fake);
  fake.answer ("get_video_standard", ::refused ("Busy"));
  EXPECT_TRUE (server.healthy (generous));
  fake.silent (true);
  EXPECT_FALSE (server.healthy (5ms));
  EXPECT_FALSE (server.healthy (5ms));
  EXPECT_FALSE (*server.async ().healthy (5ms).get ());
  EXPECT_EQ (fake.command (2).name, "get_video_standard");
  EXPECT_EQ (fake.command_count (), 2u) << "one question at a time";
  fake.refuse ();
  fake.drop ();
  ASSERT_TRUE (wait_until ([&] { return !server.connected (); }));
  EXPECT_FALSE (server.healthy (generous));
  fake.silent (false);
  fake.listen ();
  server.wait_until_connected ();
  EXPECT_TRUE (server.healthy (generous));
}

TEST (Ends, DoNotWaitForStuckCalls) {
  FakeServer fake;
  fake.silent (true);
  std::future<result<void>> stuck;
  {
    const Connected server (fake, no_limit);
    stuck = server.async ().channel (A).play ();
    fake.command (1);
    EXPECT_EQ (thrown ([&] { server.within (5ms).clips (); }), Kind::timed_out);
  }
  fake.drop ();
  EXPECT_EQ (stuck.get ().failure ().kind, Kind::link_lost);
  EXPECT_TRUE (fake.wait_until_left ());
}

TEST (Ends, ComeInTheMiddleOfEverything) {
  FakeServer fake;
  fake.answer_any ("<ok />");
  fake.answer ("channel_report_register",
               ::refused ("Not now")); // without a report the library waits for 6 s
  for (int round = 0; round != 20; ++round) {
    std::optional<Server> server (fake.address ());
    server->within (generous).wait_until_connected ();
    const auto subscription = server->on_event ([] (const Event &) {});
    std::vector<std::thread> callers;
    for (int i = 0; i != 3; ++i)
      callers.emplace_back ([control = server->nothrow ()] {
        while (true) {
          const result<void> outcome = control.channel (A).play ();
          if (!outcome && outcome.failure ().kind == Kind::invalid)
            return;
        }
      });
    auto waiting = server->async ().within (no_limit).channel (B).wait_for (Status::recording);
    fake.wait_for_commands (static_cast<size_t> (round + 1) * 20);
    server.reset ();
    for (std::thread &caller : callers)
      caller.join ();
    EXPECT_FALSE (waiting.get ());
  }
  EXPECT_TRUE (fake.wait_until_left ());
}

TEST (Ends, OfTwentyServersThatComeAndGo) {
  std::vector<std::unique_ptr<FakeServer>> fakes;
  for (int i = 0; i != 20; ++i) {
    fakes.push_back (std::make_unique<FakeServer> ());
    fakes.back ()->answer_any ("<ok />");
    fakes.back ()->answer ("channel_report_register", ::refused ("Not now"));
  }
  for (int round = 0; round != 3; ++round) {
    EventQueue queue;
    std::vector<Server> servers;
    std::vector<const Server *> all;
    for (const auto &fake : fakes)
      servers.emplace_back (fake->address ());
    for (const Server &server : servers) {
      all.push_back (&server);
      queue.watch (server);
    }
    EXPECT_TRUE (wait_all (all, generous));
    for (const Server &server : servers)
      server.channel (C).play ();
    size_t up = 0;
    while (up != servers.size ()) {
      const std::optional<Event> event = queue.next (generous);
      ASSERT_TRUE (event);
      up += event->as<LinkUp> () != nullptr;
    }
  }
  for (const auto &fake : fakes)
    EXPECT_TRUE (fake->wait_until_left ());
}

} // namespace
