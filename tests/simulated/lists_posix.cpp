// A connection mirrors the lists on channels while another client changes them. The mirror is also kept when
// the server is killed.

#include "api/connection/conn_object.h"
#include "engine/notes.h"
#include "support/fake_server.h"
#include "support/simulator_process.h"
#include "support/soak.h"
#include "support/wait.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

using support::RawClient;
using support::SimulatorProcess;
using support::text_of;
using Lines = std::vector<std::string>;

constexpr uint32_t channels = 4;
constexpr const char *clips[] = {"BARS", "COUNTDOWN", "LOCKED", "NEWS/OPENER", "SPORT/GOAL"};

/// A list as anybody may tell it: its name, the clips, the items now, next and lock.
struct Told {
  std::string id;
  Lines items;
  std::string now = "-";
  std::string next = "-";
  std::string lock = "-";

  std::string text () const {
    std::string line = id + ":";
    for (const std::string &item : items)
      line += " " + item;
    return line + " | " + now + " " + next + " " + lock;
  }
};

// --- What the library says

std::string text_of_position (const ListPlayState::Position &position) {
  return position.present ? std::to_string (position.value) : "-";
}

std::string list_in_library (OrvaConnObject &connection, uint32_t channel) {
  ChannelCache &cache = connection.channels[channel];
  const ShortScope hold (cache.listplay.lock);
  const ListPlayState &state = cache.listplay.value;
  Told told;
  if (state.is_loaded ())
    told.id = state.list_id.value.to_std_string ();
  for (const AOption<QUILL3::ListElement> &item : state.items)
    told.items.push_back (item.present ? item.value.ContentID.ClipID.value.to_std_string () : "-");
  told.now = text_of_position (state.air_now);
  told.next = text_of_position (state.air_next);
  told.lock = text_of_position (state.air_lock);
  return told.text ();
}

Lines lists_in_library (OrvaConnObject &connection) {
  Lines lists;
  for (uint32_t channel = 0; channel != channels; ++channel)
    lists.push_back (list_in_library (connection, channel));
  return lists;
}

// --- What the server says

std::string command (const std::string &body) {
  return "<cmd><xid>1</xid>" + body + "</cmd>";
}

std::string channel_tag (uint32_t channel) {
  return "<Channel>" + std::string (1, static_cast<char> ('A' + channel)) + "</Channel>";
}

/// Sends commands over a connection of their own. @return all that comes up to the last answer
std::string carried_out (uint32_t address, const std::string &commands) {
  RawClient client (address);
  client.send (commands + "<cmd><xid>2</xid><sync /></cmd>");
  return client.receive_through ("<xid>2</xid><ok />");
}

void take_report (std::vector<Told> &lists, const std::string &report) {
  Told &told = lists.at (static_cast<size_t> (text_of (report, "Channel").at (0) - 'A'));
  const std::string index = text_of (report, "ListIndex");
  const std::string position = index.empty () ? "-" : index;
  if (report.starts_with ("<channel_listplay_list>"))
    told.id = text_of (report, "ListID");
  else if (report.starts_with ("<channel_listplay_item_exists>"))
    told.items.push_back (text_of (report, "ClipID"));
  else if (report.starts_with ("<channel_listplay_air_now>"))
    told.now = position;
  else if (report.starts_with ("<channel_listplay_air_next>"))
    told.next = position;
  else if (report.starts_with ("<channel_listplay_air_lock>"))
    told.lock = position;
}

/// Everything that the server reports to a new client.
Lines lists_in_server (uint32_t address) {
  std::string questions;
  for (uint32_t channel = 0; channel != channels; ++channel)
    questions += command ("<channel_report_register>" + channel_tag (channel) +
                          "<ChannelReportType>listplay</ChannelReportType></channel_report_register>");
  const std::string bytes = carried_out (address, questions);
  std::vector<Told> lists (channels);
  constexpr std::string_view before = "<report>";
  for (size_t at = bytes.find (before); at != std::string::npos; at = bytes.find (before, at)) {
    at += before.size ();
    take_report (lists, bytes.substr (at, bytes.find ("</report>", at) - at));
  }
  Lines texts;
  for (const Told &told : lists)
    texts.push_back (told.text ());
  return texts;
}

// --- Who changes lists

/// Numbers that look random and come again in every run.
class Dice {
public:
  /// One of 0 to @p end - 1.
  uint32_t operator() (uint32_t end) { return static_cast<uint32_t> (engine_ () % end); }
  std::string item () {
    return std::string ("<ListElement><ContentID><ClipID>") + clips[(*this) (std::size (clips))] +
           "</ClipID></ContentID></ListElement>";
  }
  std::string index () { return "<ListIndex>" + std::to_string ((*this) (5)) + "</ListIndex>"; }
  std::string list () { return "<ListID>" + std::string ((*this) (3) + 1, 'L') + "</ListID>"; }
  std::string roll () { return (*this) (2) == 0 ? "<Roll>roll</Roll>" : "<Roll>cueonly</Roll>"; }

private:
  std::mt19937 engine_{7};
};

struct Edit {
  const char *name;
  std::string (*arguments) (Dice &d);
};
constexpr Edit edits[] = {
    {"list_load", [] (Dice &d) { return d.list (); }},
    {"list_insert", [] (Dice &d) { return d.index () + d.item (); }},
    {"list_insert", [] (Dice &d) { return d.index () + d.item (); }},
    {"list_insert", [] (Dice &d) { return d.index () + d.item (); }},
    {"list_remove_item", [] (Dice &d) { return d.index (); }},
    {"list_play_now", [] (Dice &d) { return d.index () + d.roll (); }},
    {"list_play_next", [] (Dice &d) { return d.index () + d.roll (); }},
    {"list_take", [] (Dice &) { return std::string (); }},
    {"stop", [] (Dice &) { return std::string (); }},
};

class ListsOfAServer : public testing::Test {
protected:
  /// Lists of three lengths, of which each channel gets one.
  void fill_server () {
    std::string commands;
    for (size_t size = 1; size <= 3; ++size) {
      commands +=
          command ("<list_save_start><ListID>" + std::string (size, 'L') + "</ListID></list_save_start>");
      for (size_t number = 0; number != 2 * size; ++number)
        commands += command ("<list_save_element>" + dice_.item () + "</list_save_element>");
      commands += command ("<list_save_end />");
    }
    for (uint32_t channel = 0; channel != channels; ++channel)
      commands += command ("<list_load>" + channel_tag (channel) + dice_.list () + "</list_load>");
    const std::string answers = carried_out (server_.address (), commands);
    EXPECT_EQ (answers.find ("<error>"), std::string::npos) << answers;
  }

  void edit_lists () {
    std::string commands;
    for (int number = 0; number != 200; ++number) {
      const uint32_t channel = dice_ (channels);
      const Edit &edit = edits[dice_ (std::size (edits))];
      const std::string name = edit.name;
      commands +=
          command ("<" + name + ">" + channel_tag (channel) + edit.arguments (dice_) + "</" + name + ">");
    }
    for (uint32_t channel = 0; channel != channels; ++channel)
      commands += command ("<stop>" + channel_tag (channel) + "</stop>");
    const std::string answers = carried_out (server_.address (), commands);
    EXPECT_NE (answers.find ("<error>"), std::string::npos);
    EXPECT_NE (answers.find ("<ok />"), std::string::npos);
  }

  void register_lists () {
    ASSERT_TRUE (support::wait_until ([this] { return connection_->is_connected (); }));
    for (uint32_t channel = 0; channel != channels; ++channel)
      connection_->channel_report_register (
          {.Channel = channel, .ChannelReportType = channel_report_type ("listplay")}, answers_.ok (),
          answers_.error ());
    ASSERT_TRUE (support::wait_until ([this] { return answers_.count () == channels; }));
    EXPECT_EQ (answers_.take_lines (), Lines (channels, "ok"));
  }

  void expect_same () {
    Lines library;
    Lines server;
    support::wait_until ([&] {
      library = lists_in_library (*connection_);
      server = lists_in_server (server_.address ());
      return library == server;
    });
    EXPECT_EQ (library, server);
  }

  void restart_server () {
    server_.kill ();
    ASSERT_TRUE (support::wait_until ([this] { return !connection_->is_connected (); }));
    server_.start ();
  }

  SimulatorProcess server_{{"--quiet", "--standard", "1080_50i"}};
  Notes answers_;
  ARef<OrvaConnObject> connection_ = ARef<OrvaConnObject>::create ();
  Dice dice_;
};

TEST_F (ListsOfAServer, AreMirroredThroughChangesAndDeaths) {
  connection_->start (server_.address ());
  for (int round = 0; round != support::rounds (4, 100) && !HasFailure (); ++round) {
    fill_server ();
    register_lists ();
    expect_same ();
    edit_lists ();
    expect_same ();
    edit_lists ();
    expect_same ();
    restart_server ();
  }
  register_lists ();
  const Lines nothing (channels, ": | - - -");
  EXPECT_TRUE (support::wait_until ([&] { return lists_in_library (*connection_) == nothing; }));
}

} // namespace
