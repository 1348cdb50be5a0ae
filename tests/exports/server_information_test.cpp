#include "exports/session.h"

#include <gtest/gtest.h>

namespace {

using support::FakeServer;

const std::string refusal = refused ("No");

std::string standard_body (const std::string &standard, const std::string &rate,
                           const std::string &resolution) {
  return "<video_standard><VideoStandard>" + standard + "</VideoStandard><VideoRate>" + rate +
         "</VideoRate><VideoResolution>" + resolution + "</VideoResolution></video_standard>";
}

std::string disk_body (const std::string &total, const std::string &available,
                       const std::string &field_size) {
  return "<disk_usage><TotalDiskSpace>" + total + "</TotalDiskSpace><AvailableDiskSpace>" + available +
         "</AvailableDiskSpace><FieldSize>" + field_size + "</FieldSize></disk_usage>";
}

TEST (ServerName, IsAskedForAndCutToFit) {
  FakeServer server;
  server.answer ("get_computer_name", "<computername><ComputerName>STUDIO1</ComputerName></computername>");
  const Session session (server);
  uint32_t code = 77;
  const auto ask = [&] (OrvaStringBuffer name) { code = orva_server_name (session, name); };
  EXPECT_EQ (filled (ask), "STUDIO1");
  EXPECT_EQ (code, ORVA_OK);
  const support::Command command = server.command (1);
  EXPECT_EQ (command.document, document (command.xid, "<get_computer_name />"));
  EXPECT_EQ (filled (ask, 8), "STUDIO1");
  EXPECT_EQ (filled (ask, 7), "STUDIO");
  EXPECT_EQ (filled (ask, 1), "");
  EXPECT_EQ (code, ORVA_OK);
  EXPECT_EQ (orva_server_name (session, OrvaStringBuffer{nullptr, 0}), ORVA_OK);
  EXPECT_EQ (server.command_count (), 5u) << "nothing is cached";
}

TEST (ServerName, IsNotCutThroughACharacter) {
  FakeServer server;
  server.answer ("get_computer_name",
                 "<computername><ComputerName>a\xF0\x9D\x84\x9E</ComputerName></computername>");
  const Session session (server);
  orva_char units[4] = {'#', '#', '#', '#'};
  EXPECT_EQ (orva_server_name (session, OrvaStringBuffer{units, 3}), ORVA_OK);
  EXPECT_EQ (units[0], orva_char ('a'));
  EXPECT_EQ (units[1], orva_char (0));
  EXPECT_EQ (orva_server_name (session, OrvaStringBuffer{units, 4}), ORVA_OK);
  EXPECT_EQ (units[1], orva_char (0xD834));
  EXPECT_EQ (units[2], orva_char (0xDD1E));
  EXPECT_EQ (units[3], orva_char (0));
}

TEST (ServerInformation, LeavesOutValuesAloneOnFailure) {
  FakeServer server;
  server.answer_any (refusal);
  const Session session (server);
  orva_char unit = '#';
  EXPECT_EQ (orva_server_name (session, OrvaStringBuffer{&unit, 1}), ORVA_ERROR);
  EXPECT_EQ (unit, orva_char ('#'));
  uint32_t number = 77;
  EXPECT_EQ (orva_video_frequency (session, &number), ORVA_ERROR);
  EXPECT_EQ (orva_video_resolution (session, &number), ORVA_ERROR);
  EXPECT_EQ (orva_video_standard (session, &number), ORVA_ERROR);
  uint64_t total = 78;
  uint64_t available = 79;
  EXPECT_EQ (orva_disk_usage1 (session, &total, &available, &number), ORVA_ERROR);
  uint32_t fields = 80;
  EXPECT_EQ (orva_disk_usage2 (session, &fields, &number), ORVA_ERROR);
  EXPECT_EQ (number, 77u);
  EXPECT_EQ (total, 78u);
  EXPECT_EQ (available, 79u);
  EXPECT_EQ (fields, 80u);
  EXPECT_EQ (last_error (), "No");
}

TEST (VideoStandard, IsConverted) {
  struct Row {
    const char *standard, *rate, *resolution;
    uint32_t expected_standard, expected_rate, expected_resolution;
  };
  const Row rows[] = {
      {"1080_60i", "60", "1080i", 0, 0, 0},         {"1080_59_94i", "59_94", "720p", 1, 1, 1},
      {"1080_50i", "50", "625i", 2, 2, 2},          {"1080_48i", "48", "525i", 3, 3, 3},
      {"1080_47_95i", "47_95", "1080i", 4, 4, 0},   {"720_60p", "30", "4K", 5, 0, 0},
      {"720_59_94p", "29_97", "1080p", 6, 0, 0},    {"720_50p", "25", "720p", 7, 0, 1},
      {"625_50i", "24", "625i", 8, 0, 2},           {"525_59_94i", "23_98", "525i", 9, 0, 3},
      {"1080_60p", "60", "1080p", 0, 0, 0},         {"4K_60p", "60", "4K", 0, 0, 0},
      {"1080_23_98psf", "23_98", "1080p", 0, 0, 0},
  };
  FakeServer server;
  const Session session (server);
  for (const Row &row : rows) {
    SCOPED_TRACE (row.standard);
    server.answer ("get_video_standard", standard_body (row.standard, row.rate, row.resolution));
    uint32_t standard = 77;
    uint32_t rate = 77;
    uint32_t resolution = 77;
    EXPECT_EQ (orva_video_standard (session, &standard), ORVA_OK);
    EXPECT_EQ (orva_video_frequency (session, &rate), ORVA_OK);
    EXPECT_EQ (orva_video_resolution (session, &resolution), ORVA_OK);
    EXPECT_EQ (standard, row.expected_standard);
    EXPECT_EQ (rate, row.expected_rate);
    EXPECT_EQ (resolution, row.expected_resolution);
  }
  for (const support::Command &command : server.commands ())
    EXPECT_EQ (command.document, document (command.xid, "<get_video_standard />"));
}

TEST (DiskUsage, IsGivenAsItCame) {
  FakeServer server;
  server.answer ("get_disk_usage", disk_body ("18446744073709551615", "101", "4294967295"));
  const Session session (server);
  uint64_t total = 0;
  uint64_t available = 0;
  uint32_t field_size = 0;
  EXPECT_EQ (orva_disk_usage1 (session, &total, &available, &field_size), ORVA_OK);
  EXPECT_EQ (total, UINT64_MAX);
  EXPECT_EQ (available, 101u);
  EXPECT_EQ (field_size, UINT32_MAX);
  const support::Command command = server.command (1);
  EXPECT_EQ (command.document, document (command.xid, "<get_disk_usage />"));
}

TEST (DiskUsage, IsCountedInWholeFrames) {
  struct Row {
    const char *total, *available, *field_size;
    uint32_t expected_total, expected_available;
  };
  const Row rows[] = {
      {"1000", "101", "10", 100, 10},
      {"999", "19", "10", 98, 0},
      {"30", "29", "10", 2, 2},
      {"4294967294", "4294967295", "1", 4294967294, 4294967294},
      {"4294967296", "18446744073709551615", "1", 4294967295, 4294967295},
  };
  FakeServer server;
  const Session session (server);
  for (const Row &row : rows) {
    SCOPED_TRACE (row.total);
    server.answer ("get_disk_usage", disk_body (row.total, row.available, row.field_size));
    uint32_t total = 77;
    uint32_t available = 77;
    EXPECT_EQ (orva_disk_usage2 (session, &total, &available), ORVA_OK);
    EXPECT_EQ (total, row.expected_total);
    EXPECT_EQ (available, row.expected_available);
    EXPECT_EQ (last_error (), "OK");
  }
}

TEST (DiskUsage, NeedsAFieldSize) {
  FakeServer server;
  server.answer ("get_disk_usage", disk_body ("1000", "101", "0"));
  const Session session (server);
  uint32_t total = 77;
  uint32_t available = 78;
  EXPECT_EQ (orva_disk_usage2 (session, &total, &available), ORVA_ERROR);
  EXPECT_EQ (last_error (), "Internal software error");
  EXPECT_EQ (total, 77u);
  EXPECT_EQ (available, 78u);
}

TEST (DiskUsage, OfAnAnswerThatCannotBeReadIsWaitedForUntilTheConnectionIsLost) {
  FakeServer server;
  server.on ("get_disk_usage", [&server] (const support::Command &command) {
    server.send (support::reply_to (command, disk_body ("-1", "101", "1")));
    server.drop ();
    return std::string ();
  });
  const Session session (server);
  uint32_t total = 77;
  EXPECT_EQ (orva_disk_usage2 (session, &total, &total), ORVA_ERROR);
  EXPECT_EQ (last_error (), "Failing all outstanding commands");
}

} // namespace
