// Arguments whose numbers are a fault of the caller: the reporter hears of it, and where it lets the process
// live the command goes out with 0.
#include "exports/snapshots.h"
#include "support/assert_counter.h"
#include "support/fake_server.h"

#include <gtest/gtest.h>

namespace {

TEST (CheckedArguments, OfATakeAreReportedAndSentAsZero) {
  support::FakeServer server;
  server.answer_any ("<ok />");
  const Session session (server);
  AssertCounter asserts;
  EXPECT_EQ (orva_take1 (session, 0, 2, 5), 0u);
  EXPECT_EQ (asserts.take (), 1u);
  EXPECT_EQ (orva_take2 (session, 0, 1, 5, 4), 0u);
  EXPECT_EQ (asserts.take (), 1u);
  EXPECT_EQ (orva_take2 (session, 0, 0xFFFFFFFF, 5, 0xFFFFFFFF), 0u);
  EXPECT_EQ (asserts.take (), 2u);

  EXPECT_EQ (server.command (1).element (),
             "\r\n<take>\r\n<Channel>A</Channel>\r\n<TransitionType>cut</TransitionType>\r\n"
             "<TransitionDuration>5</TransitionDuration>\r\n</take>\r\n");
  EXPECT_EQ (server.command (2).element (),
             "\r\n<take>\r\n<Channel>A</Channel>\r\n<TransitionType>dissolve</TransitionType>\r\n"
             "<TransitionDuration>5</TransitionDuration>\r\n<FollowSpeed>none</FollowSpeed>\r\n</take>\r\n");
  EXPECT_EQ (server.command (3).element (),
             "\r\n<take>\r\n<Channel>A</Channel>\r\n<TransitionType>cut</TransitionType>\r\n"
             "<TransitionDuration>5</TransitionDuration>\r\n<FollowSpeed>none</FollowSpeed>\r\n</take>\r\n");
}

TEST (CheckedArguments, OfATimecodeSourceAreReportedAndSentAsZero) {
  support::FakeServer server;
  server.answer ("get_clip_info", clip_info ({{"TimecodeSource", "striped"}}));
  server.answer ("modify_clip_attributes", "<ok />");
  const Session session (server);
  const Snapshot snapshot (session);
  AssertCounter asserts;
  EXPECT_EQ (orva_set_clip_timecode_source (snapshot, 4), 0u);
  EXPECT_GE (asserts.take (), 1u);
  EXPECT_EQ (server.command (2).element (),
             "\r\n<modify_clip_attributes>\r\n<ClipID>NEWS0123</ClipID>\r\n<ClipAttrChange>\r\n"
             "<TimecodeSource>zerobased</TimecodeSource>\r\n</ClipAttrChange>\r\n"
             "</modify_clip_attributes>\r\n");
  EXPECT_EQ (number_of (orva_clip_timecode_source, snapshot), 0u);
  EXPECT_EQ (asserts.take (), 0u);
}

TEST (CheckedArguments, ANullTextIsReportedAndSentEmpty) {
  support::FakeServer server;
  server.answer_any ("<ok />");
  const Session session (server);
  AssertCounter asserts;
  EXPECT_EQ (orva_cmd_loadclip1 (session, 0, nullptr), 0u);
  EXPECT_EQ (asserts.count (), 1u);
  EXPECT_EQ (server.command (1).element (),
             "\r\n<cue_clip>\r\n<Channel>A</Channel>\r\n<ClipID />\r\n</cue_clip>\r\n");
}

} // namespace
