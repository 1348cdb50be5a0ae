// Arguments that are mistakes of the caller: the failed assertion is reported, and if the process goes on,
// the command is sent with 0.
#include "exports/snapshots.h"
#include "support/assert_counter.h"
#include "support/fake_server.h"

#include <gtest/gtest.h>

namespace {

class CheckedArguments : public ::testing::Test {
protected:
  CheckedArguments () { server.answer_any ("<ok />"); }

  /// @param number of the command, from 1; @param expected in the short form of `document_of`
  void expect_command (size_t number, const char *expected) {
    const support::Command command = server.command (number);
    EXPECT_EQ (command.document, document_of (command.xid, expected));
  }

  support::FakeServer server;
  const Session session{server};
  AssertCounter asserts;
};

TEST_F (CheckedArguments, OfATakeAreReportedAndSentAsZero) {
  EXPECT_EQ (orva_take1 (session, 0, 2, 5), 0u);
  EXPECT_EQ (asserts.take (), 1u);
  EXPECT_EQ (orva_take2 (session, 0, 1, 5, 4), 0u);
  EXPECT_EQ (asserts.take (), 1u);
  EXPECT_EQ (orva_take2 (session, 0, 0xFFFFFFFF, 5, 0xFFFFFFFF), 0u);
  EXPECT_EQ (asserts.take (), 2u);

  expect_command (1, "take Channel=A TransitionType=cut TransitionDuration=5");
  expect_command (2, "take Channel=A TransitionType=dissolve TransitionDuration=5 FollowSpeed=none");
  expect_command (3, "take Channel=A TransitionType=cut TransitionDuration=5 FollowSpeed=none");
}

TEST_F (CheckedArguments, OfATimecodeSourceAreReportedAndSentAsZero) {
  server.answer ("get_clip_info", clip_info ({{"TimecodeSource", "striped"}}));
  const Snapshot snapshot (session);
  EXPECT_EQ (orva_set_clip_timecode_source (snapshot, 4), 0u);
  EXPECT_GE (asserts.take (), 1u);
  expect_command (2, "modify_clip_attributes ClipID=NEWS0123 ClipAttrChange{TimecodeSource=zerobased}");
  EXPECT_EQ (number_of (orva_clip_timecode_source, snapshot), 0u);
  EXPECT_EQ (asserts.take (), 0u);
}

TEST_F (CheckedArguments, ANullTextIsReportedAndSentEmpty) {
  EXPECT_EQ (orva_cmd_loadclip1 (session, 0, nullptr), 0u);
  EXPECT_EQ (asserts.count (), 1u);
  expect_command (1, "cue_clip Channel=A ClipID");
}

} // namespace
