#include "c/story.h"
#include "exports/session.h"

#include <gtest/gtest.h>

namespace {

TEST (PlainC, CallsTheLibrary) {
  support::FakeServer server;
  server.answer_any ("<ok />");
  server.answer ("get_computer_name", "<computername><ComputerName>STUDIO1</ComputerName></computername>");
  server.answer ("stop", "<error><ErrorMessage>Not now</ErrorMessage><ErrorCode>general</ErrorCode></error>");
  server.answer ("get_disk_usage", "<disk_usage><TotalDiskSpace>1000</TotalDiskSpace><AvailableDiskSpace>101"
                                   "</AvailableDiskSpace><FieldSize>10</FieldSize></disk_usage>");
  const Story story = tell_story (server.address ());
  EXPECT_NE (story.connection, 0u);
  EXPECT_EQ (story.connected, 1);
  EXPECT_EQ (story.name_code, ORVA_OK);
  EXPECT_TRUE (story.name == wide ("STUDIO1"));
  EXPECT_EQ (story.load_code, ORVA_OK);
  EXPECT_EQ (story.play_code, ORVA_OK);
  EXPECT_EQ (story.stop_code, ORVA_ERROR);
  EXPECT_TRUE (story.stop_text == wide ("Not now"));
  EXPECT_EQ (story.disk_code, ORVA_OK);
  EXPECT_EQ (story.disk_total, 100u);
  EXPECT_EQ (story.disk_available, 10u);
  EXPECT_EQ (story.closed_code, ORVA_INVALID_HANDLE);

  ASSERT_EQ (server.command_count (), 5u);
  const support::Command load = server.command (2);
  EXPECT_EQ (load.document,
             document (load.xid, "<cue_clip>|<Channel>B</Channel>|<ClipID>NEWS\xC3\xA9</ClipID>|"
                                 "<Loop>loop</Loop>|</cue_clip>"));
  const support::Command play = server.command (3);
  EXPECT_EQ (play.document, document (play.xid, "<play>|<Channel>B</Channel>|<Speed>1.5X</Speed>|</play>"));
}

TEST (PlainC, SeesFunctionsOfEachFamily) {
  for (size_t i = 0; i < functions_from_c_count; ++i)
    EXPECT_NE (functions_from_c[i], nullptr);
}

} // namespace
