#include "engine/golden_arguments.h"
#include "engine/quill3_client.h"
#include "support/fake_server.h"
#include "support/wait.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

using namespace QUILL3;
using namespace golden;

namespace {

/// A text with CR LF for each ~.
std::string lines (const std::string &text) {
  std::string result;
  for (const char c : text)
    result += c == '~' ? std::string ("\r\n") : std::string (1, c);
  return result;
}

template <class C>
std::string document (const char *xid, const char *name, const C &command) {
  const XMLTree tree = make_document (xid, name, rows_of (&command), &command);
  return tree.render_text (XMLLines, true).to_std_string ();
}

/// A connection that does nothing by itself.
class Sender : public Client {
public:
  explicit Sender (uint32_t address) : Client (address) { start_thread (0); }
  ~Sender () override { stop_and_join (); }
};

struct Sent {
  std::string name, xid, element;
};

// A function for each line, so that no compiler has to see one huge function with all of them.
using Send = Sent (*) (Sender &sender);
#define GOLDEN(text, name, ...)                                                                              \
  [] (Sender &sender) -> Sent { return {#name, sender.name ({__VA_ARGS__}).to_std_string (), text}; },
const Send golden[] = {
#include "commands_golden.inc"
};

TEST (Commands, AreCounted) {
  std::set<std::string> names, with_all, with_less;
#define COMMAND(name, ...) names.insert (#name);
#include "engine/commands.inc"
#define GOLDEN(text, name, ...)                                                                              \
  if (!with_all.insert (#name).second)                                                                       \
    with_less.insert (#name);
#include "commands_golden.inc"
  EXPECT_EQ (command_count, 127u);
  EXPECT_EQ (names.size (), 127u);
  EXPECT_EQ (with_all, names);
  EXPECT_EQ (with_less.size (), 28u);
  EXPECT_EQ (std::size (golden), 155u);

  std::set<std::string> with_options;
#define COMMAND(name, ...)                                                                                   \
  for (const Field &field : rows_of (static_cast<const command::name *> (nullptr)))                          \
    if (field.optional || field.tag == Tag::MinLatency || field.tag == Tag::LogError)                        \
      with_options.insert (#name);
#include "engine/commands.inc"
  EXPECT_EQ (with_less, with_options);
}

TEST (Commands, NameTheAnswersThatTheyCanGet) {
  const std::map<std::string, std::string> more_than_ok = {
      {"download_clipids", "(ok, clipid)"},
      {"download_directory_names", "(ok, directory_name)"},
      {"get_clip_info", "(clipinfo)"},
      {"clip_exists", "(clipexists)"},
      {"get_computer_name", "(computername)"},
      {"get_video_standard", "(video_standard)"},
      {"get_disk_usage", "(disk_usage)"},
      {"steal_channel", "(steal_info)"},
      {"download_metadata", "(ok, metadata)"},
      {"get_reference_source", "(reference_source)"},
      {"get_configuration", "(ok, configuration_item)"},
      {"get_one_configuration", "(one_configuration_item)"},
      {"get_version_info", "(version_info)"},
      {"get_compression_info", "(compression_info)"},
      {"download_melts", "(ok, melt_flags, melt_item)"},
      {"download_listids", "(ok, listid)"},
      {"download_chaseids", "(ok, chaseid)"},
      {"download_list", "(ok, list_element)"},
      {"download_chase", "(ok, chase_element)"},
      {"get_volatile_file_info", "(ok, volatile_file_info)"},
      {"get_current_timecode", "(channel_current_timecode)"},
  };
  size_t found = 0;
  const auto expect = [&] (const std::string &name, const std::string &answers) {
    const auto row = more_than_ok.find (name);
    found += row != more_than_ok.end ();
    EXPECT_EQ (answers, row != more_than_ok.end () ? row->second : "(ok)") << name;
  };
#define COMMAND(name, answers, ...) expect (#name, #answers);
#include "engine/commands.inc"
  EXPECT_EQ (found, more_than_ok.size ());
}

TEST (Commands, ReachTheSocketByteForByte) {
  support::FakeServer server;
  Sender sender (server.address ());
  ASSERT_TRUE (support::wait_until ([&] { return sender.is_connected (); }));
  std::vector<Sent> sent;
  for (const Send send : golden)
    sent.push_back (send (sender));
  ASSERT_TRUE (server.wait_for_commands (sent.size ()));
  const std::vector<support::Command> commands = server.commands ();
  std::string all;
  for (size_t i = 0; i < sent.size (); ++i) {
    const std::string expected =
        lines ("<cmd>~<xid>" + sent[i].xid + "</xid>~" + sent[i].element + "~</cmd>");
    EXPECT_EQ (commands[i].document, expected) << sent[i].name;
    EXPECT_EQ (sent[i].xid.substr (0, 4), "none");
    all += expected;
  }
  EXPECT_EQ (server.received (), all);
}

TEST (Commands, StandInTheirEnvelope) {
  EXPECT_EQ (document ("7", "stop", command::stop{.Channel = 0}),
             "<cmd>\r\n<xid>7</xid>\r\n<stop>\r\n<Channel>A</Channel>\r\n</stop>\r\n</cmd>");
  EXPECT_EQ (document ("8", "get_computer_name", command::get_computer_name{}),
             "<cmd>\r\n<xid>8</xid>\r\n<get_computer_name />\r\n</cmd>");
  EXPECT_EQ (
      document ("none9", "play", command::play{.Channel = 1, .MinLatency = true}),
      "<cmd>\r\n<xid>none9</xid>\r\n<play>\r\n<Channel>B</Channel>\r\n<MinLatency />\r\n</play>\r\n</cmd>");
}

TEST (Commands, WriteAnEmptyTextAsAnEmptyElement) {
  EXPECT_EQ (document ("1", "get_clip_info", command::get_clip_info{}),
             "<cmd>\r\n<xid>1</xid>\r\n<get_clip_info>\r\n<ClipID />\r\n</get_clip_info>\r\n</cmd>");
  EXPECT_EQ (document ("1", "download_clipids", command::download_clipids{}),
             "<cmd>\r\n<xid>1</xid>\r\n<download_clipids />\r\n</cmd>");
  EXPECT_EQ (
      document ("1", "download_clipids", command::download_clipids{.DirectoryName = AString ()}),
      "<cmd>\r\n<xid>1</xid>\r\n<download_clipids>\r\n<DirectoryName />\r\n</download_clipids>\r\n</cmd>");
}

TEST (Commands, LeaveOutWhatIsFalseOrAbsent) {
  EXPECT_EQ (document ("1", "stop", command::stop{.Channel = 0, .MinLatency = false}),
             document ("1", "stop", command::stop{.Channel = 0}));
  EXPECT_EQ (document ("1", "log", command::log{.LogError = true}),
             "<cmd>\r\n<xid>1</xid>\r\n<log>\r\n<LogFilename />\r\n<LogLine>0</LogLine>\r\n<LogClient />\r\n"
             "<LogText />\r\n<LogError />\r\n</log>\r\n</cmd>");
  command::go_live live{.ClipID = AString ("gone"), .Angle = 1};
  live.ClipID.clear ();
  live.Angle.clear ();
  EXPECT_EQ (document ("1", "go_live", live),
             "<cmd>\r\n<xid>1</xid>\r\n<go_live>\r\n<Channel>A</Channel>\r\n</go_live>\r\n</cmd>");
}

TEST (Commands, TakeValuesWithoutATest) {
  EXPECT_EQ (document ("1", "stop", command::stop{.Channel = 12}),
             "<cmd>\r\n<xid>1</xid>\r\n<stop>\r\n<Channel />\r\n</stop>\r\n</cmd>");
  EXPECT_EQ (document ("1", "gang_stop", command::gang_stop{}),
             "<cmd>\r\n<xid>1</xid>\r\n<gang_stop>\r\n<ChannelSet />\r\n</gang_stop>\r\n</cmd>");
}

TEST (Commands, FitASmallStack) {
#define COMMAND(name, ...) EXPECT_LE (sizeof (command::name), 4096u);
#include "engine/commands.inc"
}

} // namespace
