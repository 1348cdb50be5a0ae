#include "c/plain_c.h"
#include "exports/snapshots.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;

/// Answers everything that the caller asks, and reports changes in between.
void prepare (support::FakeServer &server) {
  server.answer_any ("<ok />");
  server.answer ("get_computer_name", "<computername><ComputerName>STUDIO1</ComputerName></computername>");
  server.answer ("stop", refused ("Not now"));
  server.answer ("get_disk_usage", "<disk_usage><TotalDiskSpace>1000</TotalDiskSpace><AvailableDiskSpace>101"
                                   "</AvailableDiskSpace><FieldSize>10</FieldSize></disk_usage>");
  server.answer ("clip_exists", "<clipexists><ClipID>NEWS</ClipID><Exists>true</Exists></clipexists>");
  server.answer ("download_clipids", {"<clipid><ClipID>BARS</ClipID></clipid>", "<ok />"});
  server.answer ("get_clip_info", clip_info ());
  server.on ("report_register", [] (const support::Command &command) {
    const bool clips = support::text_of (command.document, "ReportType") == "clip_change";
    return support::reply_to (command, "<ok />") +
           (clips ? support::report_of ("<clip_created><ClipID>LATE</ClipID></clip_created>") : "");
  });
  server.on ("channel_report_register", [] (const support::Command &command) {
    return support::reply_to (command, "<ok />") +
           support::report_of ("<channel_speed><Channel>B</Channel><Speed>-0.5X</Speed></channel_speed>");
  });
  server.answer ("download_metadata",
                 {"<metadata><MetadataDatabase>rundown</MetadataDatabase><MetadataPrefix /><MetadataList>"
                  "<Metadata><Key>now</Key><Value>BARS</Value></Metadata></MetadataList></metadata>",
                  "<ok />"});
}

std::vector<std::string> refused_steps (const CallResults &results) {
  std::vector<std::string> steps;
  std::for_each (results.steps, results.steps + results.step_count, [&] (const Step &step) {
    if (step.code != ORVA_OK)
      steps.push_back (step.call + (" " + std::to_string (step.code)));
  });
  return steps;
}

/// Compares the one command of that name with what it should be; '|' stands for CR LF.
void expect_sent (const support::FakeServer &server, const std::string &name, const std::string &pattern) {
  size_t found = 0;
  for (const support::Command &command : server.commands ())
    if (command.name == name) {
      EXPECT_EQ (command.document, document (command.xid, pattern));
      ++found;
    }
  EXPECT_EQ (found, 1u) << name;
}

TEST (PlainC, UsesEveryFamilyOfFunctions) {
  support::FakeServer server;
  prepare (server);
  CallResults results = {};
  call_every_family (server.address (), &results);
  EXPECT_NE (results.connection, 0u);
  EXPECT_EQ (results.connected, 1);
  EXPECT_EQ (results.connected_after_close, 0);
  EXPECT_EQ (results.step_count, 33u);
  EXPECT_THAT (refused_steps (results),
               ElementsAre ("orva_cmd_stop1 2", "orva_get_clip_name 3", "orva_cmd_stop1 3"));
  EXPECT_TRUE (results.error_text == wide ("Not now"));
  EXPECT_TRUE (results.server_name == wide ("STUDIO1"));
  EXPECT_EQ (results.disk_total, 100u);
  EXPECT_EQ (results.disk_available, 10u);
  EXPECT_EQ (results.clip_exists, 1u);
  EXPECT_TRUE (results.listed[0] == wide ("BARS"));
  EXPECT_TRUE (results.listed[1] == wide (""));
  EXPECT_TRUE (results.added == wide ("LATE"));
  EXPECT_TRUE (results.title == wide ("The opener"));
  EXPECT_TRUE (results.metadata == wide ("4"));
  EXPECT_EQ (results.clip_length, 1800u);
  EXPECT_EQ (results.speed, -0.5);
  EXPECT_EQ (results.notice_kind, uint32_t{ORVA_NOTICE_SPEED});
  EXPECT_EQ (results.notice_channel, 1u);
  EXPECT_EQ (results.change_type, uint32_t{ORVA_STORE_CHANGE_SET});
  EXPECT_TRUE (results.change_key == wide ("now"));
  EXPECT_TRUE (results.change_value == wide ("BARS"));
}

TEST (PlainC, SendsWhatItSays) {
  support::FakeServer server;
  prepare (server);
  CallResults results = {};
  call_every_family (server.address (), &results);
  expect_sent (server, "cue_clip",
               "<cue_clip>|<Channel>B</Channel>|<ClipID>NEWS\xC3\xA9</ClipID>|<Loop>loop</Loop>|</cue_clip>");
  expect_sent (server, "play", "<play>|<Channel>B</Channel>|<Speed>1.5X</Speed>|</play>");
  expect_sent (server, "vclip_add_segment",
               "<vclip_add_segment>|<VClipID>CUT</VClipID>|<ClipID>NEWS</ClipID>|<ClipPosition>10"
               "</ClipPosition>|<TrackSet>|<TrackType>video</TrackType>|</TrackSet>|<VClipPosition>20"
               "</VClipPosition>|<ClipLength>30</ClipLength>|</vclip_add_segment>");
  expect_sent (server, "list_play_now",
               "<list_play_now>|<Channel>C</Channel>|<ListIndex>0</ListIndex>|<Roll>cueonly</Roll>|"
               "</list_play_now>");
  expect_sent (server, "metadata_set",
               "<metadata_set>|<MetadataDatabase>rundown</MetadataDatabase>|<MetadataList>|<Metadata>|"
               "<Key>next</Key>|<Value>OPENER</Value>|</Metadata>|</MetadataList>|</metadata_set>");
  expect_sent (server, "jog", "<jog>|<Channel>A</Channel>|<JogDistance>-2</JogDistance>|</jog>");
}

} // namespace
