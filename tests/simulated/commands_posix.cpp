// The engine and the simulator, which were written separately, exchange every command and its answers.

#include "engine/golden_arguments.h"
#include "simulated/simulated_connection.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <set>
#include <sstream>

using namespace QUILL3;
using namespace golden;
using testing::ElementsAre;
using testing::StartsWith;

namespace {

using Lines = std::vector<std::string>;
using Set = std::set<std::string>;

std::string first_word (const std::string &line) {
  return line.substr (0, line.find (' '));
}

/// Expects `ok`.
template <class Command>
void carry_out (SimulatedConnection &connection, const Command &command) {
  EXPECT_THAT (connection.ask (command), ElementsAre ("ok"));
}

struct Golden {
  const char *name;
  Lines (*send) (SimulatedConnection &connection);
};
#define GOLDEN(text, name, ...)                                                                              \
  {#name, [] (SimulatedConnection &connection) { return connection.ask (command::name{__VA_ARGS__}); }},
const Golden goldens[] = {
#include "engine/commands_golden.inc"
};

/// The answers beside `error` that each command can get.
std::map<std::string, Set> promised () {
  std::map<std::string, Set> answers;
  const auto add = [&] (const char *name, const std::string &list) {
    std::istringstream words (list.substr (1, list.size () - 2)); // without the parentheses
    for (std::string word; words >> word;)
      answers[name].insert (word.substr (0, word.find (',')));
  };
#define COMMAND(name, answers, ...) add (#name, #answers);
#include "engine/commands.inc"
  return answers;
}

/// Whether a line is an answer that the command can get.
bool is_promised (const std::string &name, const std::string &line) {
  static const std::map<std::string, Set> answers = promised ();
  return answers.at (name).contains (first_word (line));
}

/// Whether a line refuses a command because of what the server holds, and not because of how it is written.
bool is_about_the_state (const std::string &line) {
  static const char *const reasons[] = {" does not exist",
                                        " exists already",
                                        " is loaded on channel",
                                        "No playlist is loaded",
                                        "No chase list is loaded",
                                        "Nothing is loaded",
                                        "Nothing is precued",
                                        "No reordering has been started",
                                        " has no angle ",
                                        " is beyond the end of ",
                                        "There is no configuration item "};
  return first_word (line) == "error" && line.find ("error Tag ") == line.npos &&
         std::any_of (std::begin (reasons), std::end (reasons),
                      [&] (const char *reason) { return line.find (reason) != line.npos; });
}

TEST (Simulator, SaysWhatItCannotRead) {
  SimulatedConnection connection;
  EXPECT_THAT (connection.ask (command::stop{.Channel = 12}),
               ElementsAre ("error Tag Channel in stop holds the bad value '' 0"));
  EXPECT_THAT (connection.ask (command::list_play_now{.Channel = 0, .Roll = 7}),
               ElementsAre ("error Tag Roll in list_play_now holds the bad value '' 0"));
  EXPECT_FALSE (is_about_the_state ("error Tag Channel in stop holds the bad value '' 0"));
  EXPECT_TRUE (is_about_the_state ("error Channel L does not exist, this server has A to H 0"));
}

TEST (Simulator, UnderstandsEveryDocumentOfTheEngine) {
  SimulatedConnection connection;
  carry_out (connection, command::create_clip{
                             .ClipID = "NEWS0123", .TrackSet = tracks ({0, 1, 2, 3}), .ClipLength = 2000});
  carry_out (connection, command::cue_clip{.Channel = 2, .ClipID = "NEWS0123"});
  size_t carried_out = 0;
  for (const Golden &golden : goldens) {
    const Lines lines = golden.send (connection);
    ASSERT_FALSE (lines.empty ()) << golden.name;
    for (const std::string &line : lines)
      EXPECT_TRUE (is_promised (golden.name, line) || is_about_the_state (line))
          << golden.name << ": " << line;
    carried_out += is_promised (golden.name, lines.back ());
  }
  EXPECT_GT (carried_out, std::size (goldens) / 3);
}

ListElement element_of (const char *clip) {
  return {.ContentID = {.ClipID = AString (clip)},
          .GotoPosition = 10,
          .Transition = Transition{.TransitionType = 1}};
}
ChaseElement chase_element_of (const char *clip, uint32_t trigger) {
  return {.ContentID = {.ClipID = AString (clip)}, .ClipStartOffset = 0, .TcStartTrigger = trigger};
}

/// Everything that could be lost on the way: blanks, ends of lines, what has entities, one to four bytes.
const std::string title =
    " \t<a href='b'>\r\n&amp; \"c\"\n\r \x01\x7F \xC2\x80\xC3\xA9\xE2\x82\xAC\xEF\xBF\xBF\xF0\x9D\x84\x9E ";

void keep_clips (SimulatedConnection &connection) {
  carry_out (connection, command::create_directory{.DirectoryName = "TODAY"});
  carry_out (connection,
             command::create_clip{.ClipID = "TODAY/A", .TrackSet = tracks ({0, 2}), .ClipLength = 500});
  carry_out (connection, command::modify_clip_attributes{
                             .ClipID = "TODAY/A", .ClipAttrChange = {.Title = AString::from_utf8 (title)}});
  carry_out (connection, command::rename_clip{.FromID = "TODAY/A", .ToID = "B"});
  carry_out (connection, command::rename_dir{.FromDir = "TODAY", .ToDir = "LATER"});
  EXPECT_THAT (connection.ask (command::clip_exists{.ClipID = "B"}), ElementsAre ("clipexists B true"));
  EXPECT_THAT (connection.ask (command::get_clip_info{.ClipID = "B"}),
               ElementsAre (StartsWith ("clipinfo B/" + title + "/500/")));
}

void keep_lists (SimulatedConnection &connection) {
  carry_out (connection, command::list_save_start{.ListID = "L"});
  carry_out (connection, command::list_save_element{.ListElement = element_of ("B")});
  carry_out (connection, command::list_save_end{});
  carry_out (connection, command::list_save_start{.ListID = "L"});
  carry_out (connection, command::list_save_element{.ListElement = element_of ("B")});
  carry_out (connection, command::list_save_end{});
  EXPECT_THAT (connection.ask (command::download_listids{}), ElementsAre ("listid L", "ok"));
  EXPECT_THAT (connection.ask (command::download_list{.ListID = "L"}),
               ElementsAre ("list_element B/-", "ok"));
  carry_out (connection, command::chase_save_start{.ChaseID = "C"});
  carry_out (connection, command::chase_save_element{.ChaseElement = chase_element_of ("B", 5)});
  carry_out (connection, command::chase_save_end{});
  carry_out (connection, command::chase_save_start{.ChaseID = "C"});
  carry_out (connection, command::chase_save_element{.ChaseElement = chase_element_of ("B", 7)});
  carry_out (connection, command::chase_save_end{});
  EXPECT_THAT (connection.ask (command::download_chaseids{}), ElementsAre ("chaseid C", "ok"));
  EXPECT_THAT (connection.ask (command::download_chase{.ChaseID = "C"}),
               ElementsAre ("chase_element -/7", "ok"));
}

void play_lists (SimulatedConnection &connection) {
  carry_out (connection, command::list_load{.Channel = 1, .ListID = "L"});
  carry_out (connection, command::list_insert{.Channel = 1, .ListIndex = 1, .ListElement = element_of ("B")});
  carry_out (connection, command::list_set_loop{.Channel = 1, .Loop = 1});
  carry_out (connection, command::list_play_now{.Channel = 1, .ListIndex = 0, .Roll = 1});
  carry_out (connection, command::list_play_next{.Channel = 1, .ListIndex = 1, .Roll = 1});
  carry_out (connection, command::list_remove_item{.Channel = 1, .ListIndex = 1});
  carry_out (connection, command::list_play_clear_modified{.Channel = 1});
  carry_out (connection, command::list_unload{.Channel = 1});
  carry_out (connection, command::chase_load{.Channel = 2, .ChaseID = "C"});
  carry_out (connection, command::chase_insert{
                             .Channel = 2, .ChaseIndex = 1, .ChaseElement = chase_element_of ("B", 100)});
  carry_out (connection, command::sending_chase_ltcin{.Timecode = {.Valid = true, .FieldNumber = 8}});
  carry_out (connection, command::chase_remove_item{.Channel = 2, .ChaseIndex = 1});
  carry_out (connection, command::chase_unload{.Channel = 2});
  carry_out (connection, command::list_delete{.ListID = "L"});
  carry_out (connection, command::chase_delete{.ChaseID = "C"});
}

void ask_the_server (SimulatedConnection &connection) {
  EXPECT_THAT (connection.ask (command::get_computer_name{}), ElementsAre ("computername SIMULATOR"));
  EXPECT_THAT (connection.ask (command::get_video_standard{}), ElementsAre ("video_standard 18 1 2"));
  EXPECT_THAT (connection.ask (command::get_disk_usage{}), ElementsAre (StartsWith ("disk_usage ")));
  EXPECT_THAT (connection.ask (command::get_reference_source{}),
               ElementsAre (StartsWith ("reference_source ")));
  EXPECT_THAT (connection.ask (command::get_version_info{}), ElementsAre ("version_info 1 orva-simulator"));
  EXPECT_THAT (connection.ask (command::get_compression_info{}),
               ElementsAre (StartsWith ("compression_info ")));
  EXPECT_THAT (
      connection.ask (command::get_configuration{}),
      testing::AllOf (testing::Contains (StartsWith ("configuration_item ")), testing::Contains ("ok")));
  carry_out (connection, command::set_configuration{.ConfigurationItemName = "OperatorMessage",
                                                    .ConfigurationItemValue = "on air"});
  EXPECT_THAT (connection.ask (command::get_one_configuration{.ConfigurationItemName = "OperatorMessage"}),
               ElementsAre ("one_configuration_item OperatorMessage=on air"));
  EXPECT_THAT (connection.ask (command::steal_channel{.Channel = 7, .PlayOrRecord = 1}),
               ElementsAre ("steal_info false"));
  EXPECT_THAT (connection.ask (command::get_current_timecode{.Channel = 7}),
               ElementsAre (StartsWith ("channel_current_timecode 7 true/")));
  EXPECT_THAT (connection.ask (command::get_volatile_file_info{.ClipID = "B"}), testing::Contains ("ok"));
  carry_out (connection, command::export_initiate{.Channel = 3});
}

void change_tables (SimulatedConnection &connection) {
  carry_out (connection, command::watch_metadata_database{.MetadataDatabase = "db"});
  carry_out (connection, command::metadata_set{.MetadataDatabase = "db", .MetadataList = {{"k", "v & w"}}});
  EXPECT_THAT (connection.ask (command::download_metadata{.MetadataDatabase = "db"}),
               ElementsAre ("metadata db  [k=v & w]", "ok"));
  carry_out (connection, command::metadata_erase{.MetadataDatabase = "db", .KeyList = {"k"}});
  carry_out (connection, command::userdict_watch{.Key = "desk"});
  carry_out (connection, command::userdict_set{.Key = "desk", .Value = "4"});
}

void run_a_channel (SimulatedConnection &connection) {
  carry_out (connection, command::cue_clip{.Channel = 0, .ClipID = "B"});
  carry_out (connection, command::play{.Channel = 0, .Speed = Kelvane::fixed{-32768}});
  carry_out (connection, command::stop{.Channel = 0});
  carry_out (connection, command::unload{.Channel = 0});
}

TEST (Simulator, SaysNothingThatTheEngineCannotRead) {
  SimulatedConnection connection;
  carry_out (connection,
             command::reports_register{.ReportSet = reports ({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11})});
  carry_out (connection, command::channel_reports_register{.ChannelSet = channels ({0, 1, 2, 3, 4, 5, 6, 7}),
                                                           .ChannelReportSet =
                                                               channel_reports ({0, 1, 2, 3, 4, 5, 6, 7})});
  keep_clips (connection);
  run_a_channel (connection);
  keep_lists (connection);
  play_lists (connection);
  ask_the_server (connection);
  change_tables (connection);
  for (const uint32_t channel : {1u, 2u})
    carry_out (connection, command::unload{.Channel = channel});
  carry_out (connection, command::delete_clip{.ClipID = "B"});
  carry_out (connection, command::sync{});
  Set names;
  for (const std::string &line : connection.listener.reports.take_lines ())
    names.insert (first_word (line));
  Set all;
#define REPORT(name, ...) all.insert (#name);
#include "engine/bodies.inc"
  // The simulator has no alerts and no melts.
  for (const char *never : {"alert", "melt_available"})
    EXPECT_EQ (all.erase (never), 1u);
  EXPECT_EQ (names, all);
}

} // namespace
