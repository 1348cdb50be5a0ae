#include "exports/session.h"
#include "support/process_counts.h"
#include "support/soak.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using support::FakeServer;

/// What a wait of a known length may take longer.
constexpr std::chrono::seconds busy_machine (4);

/// The channel's letter in a command.
std::string channel_of (const support::Command &command) {
  return "<Channel>" + support::text_of (command.document, "Channel") + "</Channel>";
}

std::string reports (std::initializer_list<std::string> bodies) {
  std::string text;
  for (const std::string &body : bodies)
    text += "<report>" + body + "</report>";
  return text;
}

/// The present value of each kind of report, as a server sends it right after the registration.
std::string present_value (const std::string &kind, const std::string &channel) {
  if (kind == "status")
    return "<channel_status>" + channel + "<ChannelStatus>play</ChannelStatus></channel_status>";
  if (kind == "clipid")
    return "<channel_clipid>" + channel + "<ClipID>NEWS0123</ClipID></channel_clipid>";
  if (kind == "speed")
    return "<channel_speed>" + channel + "<Speed>98304</Speed></channel_speed>";
  if (kind == "timecode")
    return "<channel_timecode>" + channel +
           "<ClipPosition>42</ClipPosition><DisplayTimecode><Valid>false</Valid></DisplayTimecode>"
           "<InputTimecode><Valid>false</Valid></InputTimecode></channel_timecode>";
  if (kind == "info")
    return "<channel_info>" + channel +
           "<ChannelInformation><ClipID>NEWS0123</ClipID><ClipLength>1000</ClipLength><Loop>pingpong</Loop>"
           "<AngleCount>4</AngleCount><Angle>2</Angle><EEStatus><SonyEditMask>1023</SonyEditMask>"
           "<AutoEE>false</AutoEE></EEStatus><PrecueCount>3</PrecueCount></ChannelInformation></"
           "channel_info>";
  return "<channel_listplay_list>" + channel +
         "<ListID>EVENING</ListID><ListPlayMode>pgm_pvw</ListPlayMode></channel_listplay_list>";
}

/// Answers registrations with `ok` and the present value.
std::string registration_reply (const support::Command &command) {
  const std::string kind = support::text_of (command.document, "ChannelReportType");
  return support::reply_to (command, "<ok />") + reports ({present_value (kind, channel_of (command))});
}

/// A server that reports what is asked for.
class ReportingServer : public FakeServer {
public:
  ReportingServer () { on ("channel_report_register", registration_reply); }
};

std::string registration (const std::string &channel, const std::string &kind) {
  return "<channel_report_register>|<Channel>" + channel + "</Channel>|<ChannelReportType>" + kind +
         "</ChannelReportType>|</channel_report_register>";
}

std::string clip_of (uint32_t connection, uint32_t channel) {
  return filled (
      [=] (OrvaStringBuffer text) { EXPECT_EQ (orva_channel_clip (connection, channel, text), ORVA_OK); });
}

template <class Value>
Value number (uint32_t (*query) (uint32_t, uint32_t, Value *), uint32_t connection, uint32_t channel) {
  Value value = 77;
  EXPECT_EQ (query (connection, channel, &value), ORVA_OK) << last_error ();
  return value;
}

using Pair = std::pair<uint32_t, uint32_t>;

Pair notice (uint32_t connection, uint32_t timeout = 20000) {
  Pair pair (77, 77);
  EXPECT_EQ (orva_get_notification (connection, timeout, &pair.first, &pair.second), ORVA_OK);
  return pair;
}

TEST (Channels, TheFirstQueryRegistersAndTheNextAreSilent) {
  ReportingServer server;
  const Session session (server);
  EXPECT_EQ (number (orva_channel_position, session, 3), 42u);
  EXPECT_EQ (last_error (), "OK");
  EXPECT_EQ (number (orva_channel_position, session, 3), 42u);
  const support::Command command = server.command (1);
  EXPECT_EQ (command.document, document (command.xid, registration ("D", "timecode")));
  EXPECT_EQ (server.command_count (), 1u);
}

TEST (Channels, EachQueryReadsItsItem) {
  ReportingServer server;
  const Session session (server);
  EXPECT_EQ (clip_of (session, 0), "NEWS0123");
  EXPECT_EQ (number (orva_channel_clip_length, session, 0), 1000u);
  EXPECT_EQ (number (orva_channel_position, session, 0), 42u);
  EXPECT_EQ (number (orva_channel_precue_count, session, 0), 3u);
  EXPECT_EQ (number (orva_channel_status, session, 0), uint32_t{ORVA_CHANNEL_PLAYING});
  EXPECT_EQ (number (orva_channel_repeat, session, 0), uint32_t{ORVA_REPEAT_PINGPONG});
  double speed = 0;
  EXPECT_EQ (orva_channel_speed (session, 0, &speed), ORVA_OK);
  EXPECT_EQ (speed, 1.5);
  uint32_t first = 77;
  uint32_t second = 77;
  EXPECT_EQ (orva_channel_angle (session, 0, &first, &second), ORVA_OK);
  EXPECT_EQ (first, 2u);
  EXPECT_EQ (second, 4u);
  EXPECT_EQ (orva_channel_ee (session, 0, &first, &second), ORVA_OK);
  EXPECT_EQ (first, 7u);
  EXPECT_EQ (second, 1u);
  std::vector<std::string> kinds;
  for (const support::Command &command : server.commands ())
    kinds.push_back (support::text_of (command.document, "ChannelReportType"));
  EXPECT_EQ (kinds, (std::vector<std::string>{"clipid", "info", "timecode", "status", "speed"}));
}

TEST (Channels, WhatTheServerDoesNotTellReadsAsItsFallBack) {
  FakeServer server;
  server.on ("channel_report_register", [] (const support::Command &command) {
    return support::reply_to (command, "<ok />") +
           reports ({"<channel_info>" + channel_of (command) +
                     "<ChannelInformation><ClipID /></ChannelInformation></channel_info>"});
  });
  const Session session (server);
  EXPECT_EQ (number (orva_channel_clip_length, session, 0), 0u);
  EXPECT_EQ (number (orva_channel_precue_count, session, 0), 0u);
  EXPECT_EQ (number (orva_channel_repeat, session, 0), 0u);
  uint32_t first = 77;
  uint32_t second = 77;
  EXPECT_EQ (orva_channel_angle (session, 0, &first, &second), ORVA_OK);
  EXPECT_EQ (first, 0u);
  EXPECT_EQ (second, 1u);
  EXPECT_EQ (orva_channel_ee (session, 0, &first, &second), ORVA_OK);
  EXPECT_EQ (first, 0u);
  EXPECT_EQ (second, 0u);
}

TEST (Channels, StatusesAreConverted) {
  const Pair rows[] = {{0, 0}, {1, 1}, {2, 2}, {3, 1}, {4, 3}, {5, 4}, {6, 4}, {7, 1}, {8, 0}};
  const char *const spellings[] = {"nochannel", "idle",   "cueing",      "stop",     "play",
                                   "record",    "insert", "testpattern", "timedelay"};
  ReportingServer server;
  const Session session (server);
  number (orva_channel_status, session, 0);
  EXPECT_EQ (notice (session), Pair (ORVA_NOTICE_STATUS, 0));
  for (const Pair &row : rows) {
    server.report (std::string ("<channel_status><Channel>A</Channel><ChannelStatus>") +
                   spellings[row.first] + "</ChannelStatus></channel_status>");
    EXPECT_EQ (notice (session), Pair (ORVA_NOTICE_STATUS, 0));
    EXPECT_EQ (number (orva_channel_status, session, 0), row.second) << spellings[row.first];
  }
}

TEST (Channels, RepeatModesThatCallersDoNotKnowReadAsOff) {
  ReportingServer server;
  const Session session (server);
  number (orva_channel_repeat, session, 0);
  const auto wait_for_the_last_notice = [&] {
    while (notice (session) != Pair (ORVA_NOTICE_EE, 0))
      continue;
  };
  wait_for_the_last_notice ();
  const Pair rows[] = {{0, 0}, {1, 1}, {2, 2}, {3, 3}, {4, 4}, {5, 0}, {6, 0}};
  const char *const spellings[] = {"off", "loop", "loopto", "pingpong", "pingpongto", "auto", "record"};
  for (const Pair &row : rows) {
    server.report (std::string ("<channel_info><Channel>A</Channel><ChannelInformation><ClipID /><Loop>") +
                   spellings[row.first] + "</Loop></ChannelInformation></channel_info>");
    wait_for_the_last_notice ();
    EXPECT_EQ (number (orva_channel_repeat, session, 0), row.second) << spellings[row.first];
  }
}

TEST (Channels, ChannelsBeyondTheEighthDoNotExist) {
  ReportingServer server;
  const Session session (server);
  EXPECT_EQ (number (orva_channel_position, session, 7), 42u);
  server.forget ();
  uint32_t value = 77;
  double speed = 77;
  EXPECT_EQ (orva_channel_position (session, 8, &value), ORVA_ERROR);
  EXPECT_EQ (last_error (), "Channel 8 does not exist");
  EXPECT_EQ (orva_channel_speed (session, 0xFFFFFFFF, &speed), ORVA_ERROR);
  EXPECT_EQ (last_error (), "Channel 4294967295 does not exist");
  EXPECT_EQ (orva_channel_clip (session, 8, OrvaStringBuffer{nullptr, 0}), ORVA_ERROR);
  EXPECT_EQ (orva_channel_clip_length (session, 8, &value), ORVA_ERROR);
  EXPECT_EQ (orva_channel_precue_count (session, 8, &value), ORVA_ERROR);
  EXPECT_EQ (orva_channel_status (session, 8, &value), ORVA_ERROR);
  EXPECT_EQ (orva_channel_repeat (session, 8, &value), ORVA_ERROR);
  EXPECT_EQ (orva_channel_angle (session, 8, &value, nullptr), ORVA_ERROR);
  EXPECT_EQ (orva_channel_ee (session, 8, &value, nullptr), ORVA_ERROR);
  EXPECT_EQ (orva_playlist_status (session, 8, &value), ORVA_ERROR);
  EXPECT_EQ (orva_playlist_count (session, 8, &value), ORVA_ERROR);
  EXPECT_EQ (last_error (), "Channel 8 does not exist");
  EXPECT_EQ (value, 77u);
  EXPECT_EQ (speed, 77);
  EXPECT_EQ (server.command_count (), 0u);
}

TEST (Channels, NullPointersStillRegister) {
  ReportingServer server;
  const Session session (server);
  EXPECT_EQ (orva_channel_angle (session, 0, nullptr, nullptr), ORVA_OK);
  EXPECT_EQ (orva_channel_ee (session, 1, nullptr, nullptr), ORVA_OK);
  const support::Command command = server.command (1);
  EXPECT_EQ (command.document, document (command.xid, registration ("A", "info")));
  EXPECT_EQ (server.command_count (), 2u);
}

TEST (Channels, ARefusedRegistrationIsTriedAgain) {
  FakeServer server;
  server.answer ("channel_report_register",
                 "<error><ErrorMessage>Not now</ErrorMessage><ErrorCode>general</ErrorCode></error>");
  const Session session (server);
  uint32_t value = 77;
  EXPECT_EQ (orva_channel_position (session, 0, &value), ORVA_ERROR);
  EXPECT_EQ (last_error (), "Not now");
  EXPECT_EQ (value, 77u);
  server.on ("channel_report_register", registration_reply);
  EXPECT_EQ (number (orva_channel_position, session, 0), 42u);
}

/// Answers registrations with `ok`, and reports nothing of channel E.
class SelectiveServer : public FakeServer {
public:
  SelectiveServer () {
    answer_any ("<ok />");
    on ("channel_report_register", [] (const support::Command &command) {
      return channel_of (command) == "<Channel>E</Channel>" ? support::reply_to (command, "<ok />")
                                                            : registration_reply (command);
    });
  }
};

// Both waits run side by side, so that the test takes the time of one.
TEST (Channels, AServerThatNeverReportsIsGivenFiveToSixSecondsAndHoldsNobodyElse) {
  SelectiveServer server;
  ReportingServer other_server;
  const Session session (server);
  const Session other_session (other_server);
  std::atomic<int> waiting = 2;
  const auto never_reported = [&] (uint32_t (*query) (uint32_t, uint32_t, uint32_t *)) {
    uint32_t value = 77;
    const auto start = std::chrono::system_clock::now (); // by which it waits
    const auto used_before = support::thread_processor_time ();
    EXPECT_EQ (query (session, 4, &value), ORVA_ERROR);
    const auto used = support::thread_processor_time () - used_before;
    const auto passed = std::chrono::system_clock::now () - start;
    --waiting;
    EXPECT_LT (used, std::chrono::seconds (1)) << "it sleeps; five seconds are what a loop would use";
    EXPECT_EQ (last_error (), "Register for channel item failed unexpectedly");
    EXPECT_GT (passed, std::chrono::milliseconds (4900));
    EXPECT_LT (passed, std::chrono::seconds (6) + busy_machine);
    EXPECT_EQ (value, 77u);
  };
  std::thread one (never_reported, orva_channel_position);
  std::thread another (never_reported, orva_channel_clip_length);
  EXPECT_TRUE (server.wait_for_commands (2));
  EXPECT_EQ (number (orva_channel_position, session, 0), 42u);
  EXPECT_EQ (notice (session), Pair (ORVA_NOTICE_POSITION, 0));
  EXPECT_EQ (orva_cmd_play1 (session, 4), ORVA_OK);
  EXPECT_EQ (clip_of (other_session, 4), "NEWS0123");
  EXPECT_EQ (waiting, 2) << "somebody has waited with them";
  one.join ();
  another.join ();
  EXPECT_EQ (server.command_count (), 4u);
  server.on ("channel_report_register", registration_reply);
  EXPECT_EQ (number (orva_channel_position, session, 4), 42u);
  EXPECT_EQ (server.command_count (), 5u) << "the item had not been taken for registered";
}

TEST (Channels, ListReportsLetTheFirstWaitForTheInformationEndEarly) {
  FakeServer server;
  server.on ("channel_report_register", [] (const support::Command &command) {
    return support::reply_to (command, "<ok />") +
           reports ({present_value ("listplay", channel_of (command))});
  });
  const Session session (server);
  EXPECT_EQ (number (orva_channel_clip_length, session, 0), 0u);
}

// The mirror of the list is kept, but its queries wait for a mark that nothing sets.
TEST (Playlists, QueriesFailAgainstAServerThatReports) {
  ReportingServer server;
  const Session session (server);
  uint32_t loaded = 77;
  uint32_t count = 77;
  std::thread other ([&] {
    EXPECT_EQ (orva_playlist_status (session, 0, &loaded), ORVA_ERROR);
    EXPECT_EQ (last_error (), "Register for channel item failed unexpectedly");
  });
  const auto start = std::chrono::system_clock::now (); // by which it waits
  EXPECT_EQ (orva_playlist_count (session, 0, &count), ORVA_ERROR);
  const auto waited = std::chrono::system_clock::now () - start;
  EXPECT_GT (waited, std::chrono::milliseconds (4900));
  EXPECT_LT (waited, std::chrono::seconds (6) + busy_machine);
  EXPECT_EQ (last_error (), "Register for channel item failed unexpectedly");
  other.join ();
  EXPECT_EQ (loaded, 77u);
  EXPECT_EQ (count, 77u);
  ASSERT_EQ (server.command_count (), 2u);
  for (const support::Command &command : server.commands ())
    EXPECT_EQ (command.document, document (command.xid, registration ("A", "listplay")));
  server.forget ();
  server.drop ();
  ASSERT_TRUE (server.wait_for_connections (2));
  orva_wait_until_connected (session);
  EXPECT_EQ (number (orva_channel_position, session, 1), 42u);
  EXPECT_EQ (server.command_count (), 1u) << "the list was not registered again";
}

TEST (Playlists, CommandsMoveTheList) {
  expect_wire ({
      SENDS (orva_cmd_playlist_play_now (c, 1, 5), "list_play_now Channel=B ListIndex=5 Roll=roll"),
      SENDS (orva_cmd_playlist_play_next (c, 1, 65535), "list_play_next Channel=B ListIndex=65535 Roll=roll"),
      // high bits of the index
      SENDS (orva_cmd_playlist_cue_now (c, 0, 65537), "list_play_now Channel=A ListIndex=1 Roll=cueonly"),
      // a channel that is not there
      SENDS (orva_cmd_playlist_cue_next (c, 8, 2), "list_play_next Channel=A ListIndex=2 Roll=cueonly"),
      SENDS (orva_cmd_playlist_cue_list (c, 7), "list_play_now Channel=H ListIndex=0 Roll=cueonly"),
  });
}

TEST (Channels, QueriesOfADownServerFailAtOnceUnlessRegistered) {
  ReportingServer server;
  const Session session (server);
  EXPECT_EQ (number (orva_channel_position, session, 0), 42u);
  server.refuse ();
  server.drop_all ();
  ASSERT_TRUE (support::wait_until ([&] { return orva_connected (session) == 0; }));
  EXPECT_EQ (number (orva_channel_position, session, 0), 42u);
  uint32_t value = 77;
  EXPECT_EQ (orva_channel_position (session, 1, &value), ORVA_ERROR);
  EXPECT_EQ (last_error (), "Failing all outstanding commands");
  EXPECT_EQ (value, 77u);
}

TEST (Channels, ARestartedServerIsAskedAgainInOrder) {
  ReportingServer server;
  const Session session (server);
  number (orva_channel_status, session, 7);
  number (orva_channel_clip_length, session, 0);
  number (orva_channel_position, session, 0);
  clip_of (session, 2);
  server.forget ();
  server.drop ();
  ASSERT_TRUE (server.wait_for_commands (4));
  const char *const channels[] = {"A", "A", "C", "H"};
  const char *const kinds[] = {"timecode", "info", "clipid", "status"};
  for (size_t i = 0; i != 4; ++i) {
    const support::Command command = server.command (i + 1);
    EXPECT_EQ (command.xid.substr (0, 4), "none");
    EXPECT_EQ (command.document, document (command.xid, registration (channels[i], kinds[i])));
  }
  server.report ("<channel_speed><Channel>A</Channel><Speed>1X</Speed></channel_speed>");
  server.report ("<channel_timecode><Channel>A</Channel><ClipPosition>50</ClipPosition>"
                 "<DisplayTimecode><Valid>false</Valid></DisplayTimecode>"
                 "<InputTimecode><Valid>false</Valid></InputTimecode></channel_timecode>");
  EXPECT_TRUE (support::wait_until ([&] { return number (orva_channel_position, session, 0) == 50; }));
}

/// Every byte that came, with '#' for the number in each identifier.
std::string transcript (const FakeServer &server, size_t connection) {
  std::string bytes = server.received (connection);
  for (size_t at = bytes.find ("<xid>"); at != std::string::npos; at = bytes.find ("<xid>", at + 1)) {
    const size_t first = bytes.find_first_of ("0123456789", at);
    bytes.replace (first, bytes.find ('<', first) - first, "#");
  }
  return bytes;
}

TEST (Channels, ANewConnectionRegistersClipsThenDirectoriesThenChannelsThenFolders) {
  ReportingServer server;
  server.answer_any ("<ok />");
  const Session session (server);
  uint32_t store = 0;
  EXPECT_EQ (orva_open_kvstore (session, wide ("CUES").c_str (), wide ("").c_str (), ORVA_STORE_READ, &store),
             ORVA_OK);
  number (orva_channel_status, session, 7);
  number (orva_channel_clip_length, session, 2);
  number (orva_channel_repeat, session, 0);
  number (orva_channel_position, session, 0);
  double speed = 0;
  EXPECT_EQ (orva_channel_speed (session, 0, &speed), ORVA_OK);
  clip_of (session, 0);
  number (orva_channel_status, session, 0);
  EXPECT_EQ (orva_track_directory_changes (session), ORVA_OK);
  EXPECT_EQ (orva_track_clip_changes (session), ORVA_OK);
  server.drop ();
  ASSERT_TRUE (server.wait_for_connections (2));
  EXPECT_TRUE (support::wait_until (
      [&] { return server.received (2).find ("</download_metadata>\r\n</cmd>") != std::string::npos; }));
  const char *const elements[] = {
      "<report_register>\r\n<ReportType>clip_change</ReportType>\r\n</report_register>",
      "<report_register>\r\n<ReportType>directory_change</ReportType>\r\n</report_register>",
      "<channel_report_register>\r\n<Channel>A</Channel>\r\n"
      "<ChannelReportType>status</ChannelReportType>\r\n</channel_report_register>",
      "<channel_report_register>\r\n<Channel>A</Channel>\r\n"
      "<ChannelReportType>clipid</ChannelReportType>\r\n</channel_report_register>",
      "<channel_report_register>\r\n<Channel>A</Channel>\r\n"
      "<ChannelReportType>speed</ChannelReportType>\r\n</channel_report_register>",
      "<channel_report_register>\r\n<Channel>A</Channel>\r\n"
      "<ChannelReportType>timecode</ChannelReportType>\r\n</channel_report_register>",
      "<channel_report_register>\r\n<Channel>A</Channel>\r\n"
      "<ChannelReportType>info</ChannelReportType>\r\n</channel_report_register>",
      "<channel_report_register>\r\n<Channel>C</Channel>\r\n"
      "<ChannelReportType>info</ChannelReportType>\r\n</channel_report_register>",
      "<channel_report_register>\r\n<Channel>H</Channel>\r\n"
      "<ChannelReportType>status</ChannelReportType>\r\n</channel_report_register>",
      "<watch_metadata_database>\r\n<MetadataDatabase>CUES</MetadataDatabase>\r\n"
      "</watch_metadata_database>",
  };
  std::string expected;
  for (const char *element : elements)
    expected += std::string ("<cmd>\r\n<xid>none#</xid>\r\n") + element + "\r\n</cmd>";
  expected += "<cmd>\r\n<xid>#</xid>\r\n<download_metadata>\r\n"
              "<MetadataDatabase>CUES</MetadataDatabase>\r\n</download_metadata>\r\n</cmd>";
  EXPECT_EQ (transcript (server, 2), expected);
  orva_close_key_value_store (store);
}

TEST (Channels, TwoThreadsMayRegisterOneItemAtATime) {
  FakeServer server;
  const Session session (server);
  std::thread one ([&] { EXPECT_EQ (number (orva_channel_position, session, 0), 42u); });
  std::thread other ([&] { EXPECT_EQ (number (orva_channel_position, session, 0), 42u); });
  for (size_t i = 1; i <= 2; ++i) {
    const support::Command command = server.command (i);
    EXPECT_EQ (command.document, document (command.xid, registration ("A", "timecode")));
  }
  for (const support::Command &command : server.commands ())
    server.send (registration_reply (command));
  one.join ();
  other.join ();
  EXPECT_EQ (server.command_count (), 2u);
}

TEST (Channels, TheFirstQueryWaitsOnAnAsynchronousConnectionToo) {
  ReportingServer server;
  const Session session (server);
  orva_synchronous (session, 1);
  EXPECT_EQ (number (orva_channel_position, session, 0), 42u);
  server.answer ("channel_report_register",
                 "<error><ErrorMessage>Not now</ErrorMessage><ErrorCode>general</ErrorCode></error>");
  uint32_t value = 77;
  EXPECT_EQ (orva_channel_position (session, 1, &value), ORVA_ERROR);
  EXPECT_EQ (last_error (), "Not now");
}

TEST (Channels, AClipsNameFollowsTheRuleOfBuffers) {
  ReportingServer server;
  const Session session (server);
  const auto cut = [&] (uint32_t capacity) {
    return filled ([&] (OrvaStringBuffer text) { EXPECT_EQ (orva_channel_clip (session, 0, text), ORVA_OK); },
                   capacity);
  };
  EXPECT_EQ (cut (9), "NEWS0123");
  EXPECT_EQ (cut (8), "NEWS012");
  EXPECT_EQ (cut (1), "");
  EXPECT_EQ (orva_channel_clip (session, 0, OrvaStringBuffer{nullptr, 0}), ORVA_OK);
}

// The value that the query waits for comes on a link that nobody has registered anything on.
TEST (Channels, ALinkThatComesDuringTheFirstWaitIsAskedToo) {
  FakeServer server;
  const Session session (server);
  std::thread waiter ([&] { EXPECT_EQ (number (orva_channel_position, session, 3), 42u); });
  server.send (support::reply_to (server.command (1), "<ok />"));
  server.end_sending ();
  EXPECT_TRUE (server.wait_for_connections (2));
  server.report (present_value ("timecode", "<Channel>D</Channel>"));
  waiter.join ();
  const support::Command again = server.command (2);
  EXPECT_EQ (again.connection, 2u);
  EXPECT_EQ (again.xid.substr (0, 4), "none");
  EXPECT_EQ (again.document, document (again.xid, registration ("D", "timecode")));
  EXPECT_EQ (number (orva_channel_position, session, 3), 42u);
  EXPECT_EQ (server.command_count (), 2u);
}

TEST (Notices, TellWhatHasChanged) {
  ReportingServer server;
  const Session session (server);
  number (orva_channel_clip_length, session, 3);
  const Pair expected[] = {{2, 3}, {4, 3}, {6, 3}, {8, 3}, {9, 3}};
  for (const Pair &pair : expected)
    EXPECT_EQ (notice (session), pair);
  EXPECT_EQ (notice (session, 0), Pair (0, 0));
  EXPECT_EQ (notice (session, 20), Pair (0, 0));
}

TEST (Notices, AreWaitedForAndRecordNoText) {
  ReportingServer server;
  const Session session (server);
  number (orva_channel_speed, session, 1);
  EXPECT_EQ (notice (session), Pair (ORVA_NOTICE_SPEED, 1));
  orva_channel_speed (session, 8, nullptr);
  server.report ("<channel_speed><Channel>C</Channel><Speed>1X</Speed></channel_speed>");
  EXPECT_EQ (notice (session), Pair (ORVA_NOTICE_SPEED, 2));
  EXPECT_EQ (last_error (), "Channel 8 does not exist");
  EXPECT_EQ (orva_get_notification (session, 0, nullptr, nullptr), ORVA_OK);
}

// The notices of a caller who does not look are few, however many the reports are, and nothing waits for it.
TEST (Notices, OfACallerWhoDoesNotLookHoldNobody) {
  const int bursts = support::rounds (100, 2000);
  SelectiveServer server;
  const Session session (server);
  std::string burst;
  for (const char channel : {'A', 'B', 'C', 'D', 'E', 'F', 'G', 'H'})
    for (const char *kind : {"status", "clipid", "speed", "timecode", "info"})
      burst += reports ({present_value (kind, std::string ("<Channel>") + channel + "</Channel>")});
  for (int i = 0; i != bursts; ++i)
    server.send (burst);
  EXPECT_EQ (orva_cmd_play1 (session, 0), ORVA_OK) << "answered behind all reports";
  std::set<Pair> seen;
  for (Pair pair = notice (session, 0); pair.first != 0; pair = notice (session, 0))
    EXPECT_TRUE (seen.insert (pair).second) << pair.first << " of " << pair.second << " came twice";
  EXPECT_EQ (seen.size (), 72u);
}

TEST (Notices, OfAWrongNumberGiveNothing) {
  uint32_t kind = 77;
  uint32_t channel = 77;
  const auto start = std::chrono::steady_clock::now ();
  EXPECT_EQ (orva_get_notification (0, 60000, &kind, &channel), ORVA_INVALID_HANDLE);
  EXPECT_LT (std::chrono::steady_clock::now () - start, std::chrono::seconds (30));
  EXPECT_EQ (last_error (), "Invalid handle");
  EXPECT_EQ (kind, 77u);
  EXPECT_EQ (channel, 77u);
}

TEST (Notices, SurviveALostConnection) {
  ReportingServer server;
  const Session session (server);
  number (orva_channel_speed, session, 1);
  server.refuse ();
  server.drop_all ();
  ASSERT_TRUE (support::wait_until ([&] { return orva_connected (session) == 0; }));
  EXPECT_EQ (notice (session, 0), Pair (ORVA_NOTICE_SPEED, 1));
}

TEST (Channels, OfAWrongNumberGiveInvalidHandle) {
  uint32_t value = 77;
  double speed = 77;
  EXPECT_EQ (orva_channel_clip (0, 0, OrvaStringBuffer{nullptr, 0}), ORVA_INVALID_HANDLE);
  EXPECT_EQ (orva_channel_position (0, 0, &value), ORVA_INVALID_HANDLE);
  EXPECT_EQ (orva_channel_speed (0, 0, &speed), ORVA_INVALID_HANDLE);
  EXPECT_EQ (orva_cmd_playlist_cue_list (0, 0), ORVA_INVALID_HANDLE);
  EXPECT_EQ (value, 77u);
}

} // namespace
