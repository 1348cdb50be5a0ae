// The state of channels.

#include "hpp/reporting.h"

#include <future>
#include <stdexcept>
#include <string>

namespace {

using namespace orva;
using namespace std::chrono_literals;
using support::wait_until;

TEST (States, HoldAllThatIsReported) {
  ReportingServer fake;
  const Connected server (fake);
  const ChannelState state = server.channel (B).state ();
  EXPECT_EQ (state.clip, "NEWS0123");
  EXPECT_EQ (state.status, Status::playing);
  EXPECT_EQ (state.position, Position (42));
  EXPECT_EQ (state.length, Position (1000));
  EXPECT_EQ (state.remaining, Position (958));
  EXPECT_EQ (state.speed, 1.5);
  EXPECT_EQ (state.repeat, Repeat::pingpong);
  EXPECT_EQ (state.angle, 2u);
  EXPECT_EQ (state.angle_count, 4u);
  EXPECT_EQ (state.input, (Input{EditTracks::all, InputMode::manual}));
  EXPECT_EQ (state.precued, 3u);
  EXPECT_EQ (state.age, 0ns);
  EXPECT_EQ (fake.command_count (), 5u);
  server.channel (B).state ();
  EXPECT_EQ (fake.command_count (), 5u) << "the second time costs nothing";
}

TEST (States, GrowOldWhileTheServerIsAway) {
  ReportingServer fake;
  const Connected server (fake);
  server.channel (A).state ();
  fake.refuse ();
  fake.drop ();
  ASSERT_TRUE (wait_until ([&] { return !server.connected (); }));
  const ChannelState first = server.channel (A).state ();
  EXPECT_EQ (first.clip, "NEWS0123");
  EXPECT_GT (first.age, 0ns);
  EXPECT_TRUE (wait_until ([&] { return server.channel (A).state ().age > first.age; }));
  fake.listen ();
  server.wait_until_connected ();
  EXPECT_TRUE (wait_until ([&] { return server.channel (A).state ().age == 0ns; }));
}

TEST (States, OfAServerThatRefuses) {
  ReportingServer fake;
  fake.answer ("channel_report_register", ::refused ("No"));
  const Connected server (fake);
  EXPECT_EQ (server.nothrow ().channel (A).state ().failure ().text, "No");
  EXPECT_EQ (server.nothrow ().channel (A).wait_for (Status::playing).failure ().text, "No");
}

TEST (States, OfAServerThatReportsNothing) {
  support::FakeServer fake;
  fake.answer_any ("<ok />");
  const Connected server (fake);
  auto limited = server.within (20ms).async ().channel (A).state ();
  const result<ChannelState> state = server.nothrow ().channel (B).state ();
  EXPECT_EQ (state.failure ().kind, Kind::timed_out);
  EXPECT_EQ (limited.get ().failure ().kind, Kind::timed_out);
}

TEST (States, AreWaitedFor) {
  ReportingServer fake;
  const Connected server (fake);
  server.channel (A).state ();
  auto stopped = server.async ().channel (A).wait_for (Status::stopped);
  auto far =
      server.async ().channel (A).wait_until ([] (const ChannelState &state) { return state.position > 99; });
  fake.status ("A", "stop");
  fake.position ("A", 100);
  EXPECT_EQ (stopped.get ()->status, Status::stopped);
  EXPECT_EQ (far.get ()->position, Position (100));
}

TEST (States, AreWaitedForByConditionsThatMayThrow) {
  ReportingServer fake;
  const Connected server (fake);
  const auto throwing_condition = [] (const ChannelState &) -> bool { throw std::out_of_range ("its own"); };
  EXPECT_THROW (server.channel (A).wait_until (throwing_condition), std::out_of_range);
  auto waited = server.async ().channel (A).wait_until (throwing_condition);
  EXPECT_EQ (waited.get ().failure ().kind, Kind::internal);
}

TEST (States, ThatNeverComeEndTheWait) {
  ReportingServer fake;
  const Connected server (fake);
  EXPECT_EQ (thrown ([&] { server.channel (A).wait_for (Status::recording, 20ms); }), Kind::timed_out);
  const Cancel cancel;
  auto cancelled = server.cancelled_by (cancel).async ().channel (A).wait_for (Status::recording, no_limit);
  auto lost = server.async ().channel (A).wait_for (Status::recording, no_limit);
  cancel.cancel ();
  EXPECT_EQ (cancelled.get ().failure ().kind, Kind::cancelled);
  fake.refuse ();
  fake.drop ();
  EXPECT_EQ (lost.get ().failure ().kind, Kind::link_lost);
}

TEST (Playlists, CannotBeAskedFor) {
  support::FakeServer fake;
  fake.answer_any ("<ok />");
  const Connected server (fake);
  auto count = server.async ().channel (A).playlist_count ();
  EXPECT_EQ (thrown ([&] { server.channel (B).playlist_loaded (); }), Kind::timed_out);
  EXPECT_EQ (count.get ().failure ().kind, Kind::timed_out);
}

} // namespace
