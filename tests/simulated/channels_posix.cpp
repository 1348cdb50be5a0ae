// A server is killed again and again, while many callers move its channels and query them. In the end the
// library has the same state of each channel as a client that reads plain bytes.

#include "exports/session.h"
#include "support/simulator_process.h"
#include "support/soak.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cmath>
#include <map>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace {

using support::RawClient;
using support::SimulatorProcess;
using support::text_of;

constexpr unsigned callers = 8;
constexpr unsigned watchers = 4;
constexpr uint32_t channels = 8;
constexpr uint32_t channels_with_lists = 4;

/// What can be asked of a channel, as numbers of the exports, but for the position of one that moves.
struct State {
  std::string clip;
  uint32_t length = 0;
  uint32_t position = 0;
  uint32_t precued = 0;
  uint32_t status = 0;
  uint32_t repeat = 0;
  int32_t speed = 0; ///< in parts of 65536
  uint32_t angle = 0;
  uint32_t angle_count = 1;
  uint32_t ee_tracks = 0;
  uint32_t ee_mode = 0;

  bool operator== (const State &) const = default;
};

void PrintTo (const State &state, std::ostream *out) {
  *out << state.clip << ", length " << state.length << ", position " << state.position << ", precued "
       << state.precued << ", status " << state.status << ", repeat " << state.repeat << ", speed "
       << state.speed << ", angle " << state.angle << " of " << state.angle_count << ", ee "
       << state.ee_tracks << " mode " << state.ee_mode;
}

using States = std::vector<State>;

// --- What the library says

State state_in_library (uint32_t connection, uint32_t channel) {
  State state;
  double speed = 0;
  state.clip = filled ([&] (OrvaStringBuffer text) {
    EXPECT_EQ (orva_channel_clip (connection, channel, text), ORVA_OK) << last_error ();
  });
  EXPECT_EQ (orva_channel_clip_length (connection, channel, &state.length), ORVA_OK);
  EXPECT_EQ (orva_channel_position (connection, channel, &state.position), ORVA_OK);
  EXPECT_EQ (orva_channel_precue_count (connection, channel, &state.precued), ORVA_OK);
  EXPECT_EQ (orva_channel_status (connection, channel, &state.status), ORVA_OK);
  EXPECT_EQ (orva_channel_repeat (connection, channel, &state.repeat), ORVA_OK);
  EXPECT_EQ (orva_channel_speed (connection, channel, &speed), ORVA_OK);
  EXPECT_EQ (orva_channel_angle (connection, channel, &state.angle, &state.angle_count), ORVA_OK);
  EXPECT_EQ (orva_channel_ee (connection, channel, &state.ee_tracks, &state.ee_mode), ORVA_OK);
  state.speed = static_cast<int32_t> (std::lround (speed * 65536));
  return state;
}

States states_in_library (uint32_t connection) {
  States states;
  for (uint32_t channel = 0; channel != channels; ++channel)
    states.push_back (state_in_library (connection, channel));
  return states;
}

// --- What the server says

uint32_t number_in (const std::string &report, const std::string &tag, uint32_t otherwise) {
  const std::string text = text_of (report, tag);
  return text.empty () ? otherwise : static_cast<uint32_t> (std::stoul (text));
}

uint32_t status_number (const std::string &word) {
  static const std::map<std::string, uint32_t> numbers = {
      {"idle", 1}, {"stop", 1}, {"testpattern", 1}, {"cueing", 2}, {"play", 3}, {"record", 4}, {"insert", 4}};
  const auto found = numbers.find (word);
  return found == numbers.end () ? 0 : found->second;
}

uint32_t repeat_number (const std::string &word) {
  static const std::map<std::string, uint32_t> numbers = {
      {"loop", 1}, {"loopto", 2}, {"pingpong", 3}, {"pingpongto", 4}};
  const auto found = numbers.find (word);
  return found == numbers.end () ? 0 : found->second;
}

uint32_t track_bits (uint32_t mask) {
  return (mask & 0x10 ? 1u : 0u) | (mask & 0x20 ? 2u : 0u) | (mask & 0x3CF ? 4u : 0u);
}

void take_information (State &state, const std::string &report) {
  state.length = number_in (report, "ClipLength", 0);
  state.precued = number_in (report, "PrecueCount", 0);
  state.repeat = repeat_number (text_of (report, "Loop"));
  state.angle = number_in (report, "Angle", 0);
  state.angle_count = number_in (report, "AngleCount", 1);
  state.ee_tracks = track_bits (number_in (report, "SonyEditMask", 0));
  state.ee_mode = text_of (report, "AutoEE") == "false" ? 1 : 0;
}

void take_report (States &states, const std::string &report) {
  const std::string letter = text_of (report, "Channel");
  ASSERT_EQ (letter.size (), 1u) << report;
  State &state = states.at (static_cast<size_t> (letter.front () - 'A'));
  if (report.starts_with ("<channel_status>"))
    state.status = status_number (text_of (report, "ChannelStatus"));
  else if (report.starts_with ("<channel_clipid>"))
    state.clip = text_of (report, "ClipID");
  else if (report.starts_with ("<channel_speed>"))
    state.speed = static_cast<int32_t> (std::lround (std::stod (text_of (report, "Speed")) * 65536));
  else if (report.starts_with ("<channel_timecode>"))
    state.position = number_in (report, "ClipPosition", 0);
  else if (report.starts_with ("<channel_info>"))
    take_information (state, report);
  else
    ADD_FAILURE () << report;
}

/// Everything that the server reports to a new client.
States states_in_server (uint32_t address) {
  std::string questions;
  for (const char channel : {'A', 'B', 'C', 'D', 'E', 'F', 'G', 'H'})
    for (const char *kind : {"status", "clipid", "speed", "timecode", "info"})
      questions += std::string ("<cmd><xid>1</xid><channel_report_register><Channel>") + channel +
                   "</Channel><ChannelReportType>" + kind +
                   "</ChannelReportType></channel_report_register></cmd>";
  RawClient client (address);
  client.send (questions + "<cmd><xid>2</xid><sync /></cmd>");
  const std::string bytes = client.receive_through ("<xid>2</xid><ok />");
  States states (channels);
  constexpr std::string_view before = "<report>";
  for (size_t at = bytes.find (before); at != std::string::npos; at = bytes.find (before, at)) {
    at += before.size ();
    take_report (states, bytes.substr (at, bytes.find ("</report>", at) - at));
  }
  return states;
}

// --- What is on the server in each of its lives

std::string list_element (const std::string &clip, const std::string &first, const std::string &last) {
  return "<cmd><xid>1</xid><list_save_element><ListElement><ContentID><ClipID>" + clip +
         "</ClipID></ContentID><GotoPosition>" + first + "</GotoPosition><ClipPosition>" + last +
         "</ClipPosition></ListElement></list_save_element></cmd>";
}

void load_lists (uint32_t address) {
  std::string commands = "<cmd><xid>1</xid><list_save_start><ListID>L</ListID></list_save_start></cmd>" +
                         list_element ("BARS", "100", "120") + list_element ("COUNTDOWN", "0", "599") +
                         list_element ("NEWS/OPENER", "7", "9") + "<cmd><xid>1</xid><list_save_end /></cmd>";
  for (uint32_t channel = 0; channel != channels_with_lists; ++channel)
    commands += std::string ("<cmd><xid>1</xid><list_load><Channel>") + static_cast<char> ('A' + channel) +
                "</Channel><ListID>L</ListID></list_load></cmd>";
  RawClient client (address);
  client.send (commands + "<cmd><xid>2</xid><sync /></cmd>");
  const std::string bytes = client.receive_through ("<xid>2</xid><ok />");
  EXPECT_EQ (bytes.find ("<error>"), std::string::npos) << bytes;
}

// --- Callers

/// Numbers that look random and come again in every run.
class Dice {
public:
  explicit Dice (uint32_t seed) : engine_ (seed) {}
  /// One of 0 to @p end - 1.
  uint32_t operator() (uint32_t end) { return static_cast<uint32_t> (engine_ () % end); }
  template <class Value>
  Value one_of (std::initializer_list<Value> values) {
    return values.begin ()[(*this) (static_cast<uint32_t> (values.size ()))];
  }

  uint32_t channel () { return (*this) (40) == 0 ? 8 : (*this) (channels); }
  uint32_t mask () { return (*this) (256); }
  double speed () { return one_of ({0.0, 1.0, -1.0, 0.25, 37.5, -200.0, 200.0, 500.0}); }
  uint32_t position () { return one_of<uint32_t> ({0, 1, 2, (*this) (900), 0xFFFFFFFF}); }
  uint32_t length () { return one_of<uint32_t> ({0, 1, (*this) (500)}); }
  int32_t distance () {
    return one_of<int32_t> ({0, 1, -1, static_cast<int32_t> ((*this) (900)) - 450, INT32_MIN, INT32_MAX});
  }
  uint32_t flag () { return (*this) (3); }
  uint32_t few () { return (*this) (5); } ///< modes, conditions, angles, indices
  const orva_char *clip () {
    static const std::array<std::basic_string<orva_char>, 7> names = {
        wide ("BARS"),       wide ("COUNTDOWN"),  wide ("LOCKED"), wide ("NEWS/OPENER"),
        wide ("NEWS/STRAP"), wide ("SPORT/GOAL"), wide ("NOTHING")};
    return names[(*this) (7)].c_str ();
  }
  const orva_char *vclip () {
    static const std::array<std::basic_string<orva_char>, 3> names = {wide ("V0"), wide ("V1"), wide ("V2")};
    return names[(*this) (3)].c_str ();
  }

private:
  std::mt19937 engine_;
};

using Call = uint32_t (*) (uint32_t c, Dice &d);

constexpr Call commands[] = {
    [] (uint32_t c, Dice &d) { return orva_cmd_play1 (c, d.channel ()); },
    [] (uint32_t c, Dice &d) { return orva_cmd_play2 (c, d.channel (), d.speed ()); },
    [] (uint32_t c, Dice &d) { return orva_cmd_play3 (c, d.channel (), d.speed (), d.flag ()); },
    [] (uint32_t c, Dice &d) { return orva_cmd_gang_play1 (c, d.mask ()); },
    [] (uint32_t c, Dice &d) { return orva_cmd_gang_play3 (c, d.mask (), d.speed (), d.flag ()); },
    [] (uint32_t c, Dice &d) { return orva_cmd_stop1 (c, d.channel ()); },
    [] (uint32_t c, Dice &d) { return orva_cmd_stop2 (c, d.channel (), d.flag ()); },
    [] (uint32_t c, Dice &d) { return orva_cmd_gang_stop1 (c, d.mask ()); },
    [] (uint32_t c, Dice &d) { return orva_jog1 (c, d.channel (), d.distance ()); },
    [] (uint32_t c, Dice &d) { return orva_gang_jog2 (c, d.mask (), d.distance (), d.flag ()); },
    [] (uint32_t c, Dice &d) { return orva_goto1 (c, d.channel (), d.position ()); },
    [] (uint32_t c, Dice &d) { return orva_gang_goto1 (c, d.mask (), d.position ()); },
    [] (uint32_t c, Dice &d) { return orva_cmd_loadclip1 (c, d.channel (), d.clip ()); },
    [] (uint32_t c, Dice &d) { return orva_cmd_loadclip2 (c, d.channel (), d.clip (), d.few ()); },
    [] (uint32_t c, Dice &d) {
      return orva_cmd_loadclip4 (c, d.channel (), d.clip (), d.few (), d.position (), d.position (),
                                 d.position ());
    },
    [] (uint32_t c, Dice &d) {
      return orva_cmd_loadclip6 (c, d.channel (), d.clip (), d.few (), d.position ());
    },
    [] (uint32_t c, Dice &d) { return orva_precue1 (c, d.channel (), d.clip (), d.few ()); },
    [] (uint32_t c, Dice &d) {
      return orva_precue4 (c, d.channel (), d.clip (), d.few (), d.position (), d.position (), d.length ());
    },
    [] (uint32_t c, Dice &d) { return orva_precue_clear1 (c, d.channel ()); },
    [] (uint32_t c, Dice &d) { return orva_precue_activate1 (c, d.channel ()); },
    [] (uint32_t c, Dice &d) { return orva_gang_precue_activate1 (c, d.mask ()); },
    [] (uint32_t c, Dice &d) { return orva_take1 (c, d.channel (), d (2), d (20)); },
    [] (uint32_t c, Dice &d) { return orva_take2 (c, d.channel (), d (2), d (20), d (4)); },
    [] (uint32_t c, Dice &d) { return orva_go_live1 (c, d.channel ()); },
    [] (uint32_t c, Dice &d) { return orva_go_live4 (c, d.channel (), d.clip (), d.few ()); },
    [] (uint32_t c, Dice &d) { return orva_angle1 (c, d.channel (), d.few ()); },
    [] (uint32_t c, Dice &d) { return orva_set_out1 (c, d.channel (), d.position ()); },
    [] (uint32_t c, Dice &d) { return orva_clear_out (c, d.channel ()); },
    [] (uint32_t c, Dice &d) { return orva_set_repeat (c, d.channel (), d.few ()); },
    [] (uint32_t c, Dice &d) { return orva_unload_channel (c, d.channel ()); },
    [] (uint32_t c, Dice &d) { return orva_ee1 (c, d.channel (), d (8), d.flag ()); },
    [] (uint32_t c, Dice &d) { return orva_gang_ee1 (c, d.mask (), d (8), d.flag ()); },
    [] (uint32_t c, Dice &d) { return orva_vclip_create (c, d.vclip (), d.length ()); },
    [] (uint32_t c, Dice &d) { return orva_vclip_modification_start (c, d.vclip ()); },
    [] (uint32_t c, Dice &d) {
      return orva_vclip_add_segment2 (c, d.vclip (), d.clip (), d.length (), d (8), d.length (), d.length (),
                                      0.5);
    },
    [] (uint32_t c, Dice &d) { return orva_vclip_ripple (c, d.vclip (), d (8), d.length (), d.distance ()); },
    [] (uint32_t c, Dice &d) { return orva_vclip_modification_end (c, d.vclip ()); },
    [] (uint32_t c, Dice &d) { return orva_vclip_free (c, d.vclip ()); },
    [] (uint32_t c, Dice &d) {
      return orva_cmd_load_vclip3 (c, d.channel (), d.vclip (), d.few (), d.length ());
    },
    [] (uint32_t c, Dice &d) { return orva_cmd_playlist_play_now (c, d.channel (), d.few ()); },
    [] (uint32_t c, Dice &d) { return orva_cmd_playlist_cue_next (c, d.channel (), d.few ()); },
};

/// Asks for one value, by the kind of its notice, and looks whether it can be.
uint32_t ask (uint32_t connection, uint32_t channel, uint32_t kind) {
  uint32_t first = 0;
  uint32_t second = 0;
  double speed = 0;
  uint32_t code = ORVA_OK;
  switch (kind) {
  case ORVA_NOTICE_CLIP:
    filled ([&] (OrvaStringBuffer text) { code = orva_channel_clip (connection, channel, text); });
    return code;
  case ORVA_NOTICE_CLIP_LENGTH:
    return orva_channel_clip_length (connection, channel, &first);
  case ORVA_NOTICE_POSITION:
    return orva_channel_position (connection, channel, &first);
  case ORVA_NOTICE_PRECUE_COUNT:
    return orva_channel_precue_count (connection, channel, &first);
  case ORVA_NOTICE_STATUS:
    code = orva_channel_status (connection, channel, &first);
    EXPECT_LE (first, 4u);
    return code;
  case ORVA_NOTICE_REPEAT:
    code = orva_channel_repeat (connection, channel, &first);
    EXPECT_LE (first, 4u);
    return code;
  case ORVA_NOTICE_SPEED:
    code = orva_channel_speed (connection, channel, &speed);
    EXPECT_LE (std::fabs (speed), 200.0);
    return code;
  case ORVA_NOTICE_ANGLE:
    code = orva_channel_angle (connection, channel, &first, &second);
    EXPECT_TRUE (code != ORVA_OK || first < second) << first << " of " << second;
    return code;
  default:
    code = orva_channel_ee (connection, channel, &first, &second);
    EXPECT_LE (first, 7u);
    EXPECT_LE (second, 1u);
    return code;
  }
}

class ChannelsOfAServerThatDies : public testing::Test {
protected:
  ~ChannelsOfAServerThatDies () override {
    stop ();
    for (const std::atomic<uint32_t> &connection : connections_)
      orva_close (connection);
  }

  void start () {
    load_lists (server_.address ());
    for (std::atomic<uint32_t> &connection : connections_)
      connection = orva_connect (server_.address ());
    for (unsigned number = 0; number != callers; ++number)
      threads_.emplace_back ([this, number] { call (Dice (number)); });
    for (unsigned number = 0; number != watchers; ++number)
      threads_.emplace_back ([this, number] { watch (connections_[number % 2]); });
  }

  void stop () {
    stop_ = true;
    for (std::thread &thread : threads_)
      thread.join ();
    threads_.clear ();
  }

  void pause (uint32_t most) { std::this_thread::sleep_for (std::chrono::milliseconds (any_ (most))); }

  void wait_until_connected () {
    for (const std::atomic<uint32_t> &connection : connections_)
      orva_wait_until_connected (connection);
  }

  // Now and then a connection is a new one, which has to register everything while the server comes and goes.
  void one_round () {
    if (any_ (2) == 0) {
      std::atomic<uint32_t> &connection = connections_[any_ (2)];
      orva_close (connection.exchange (orva_connect (server_.address ())));
    }
    if (any_ (4) != 0)
      wait_until_connected ();
    pause (100);
    server_.kill ();
    pause (30);
    server_.start ();
    load_lists (server_.address ());
  }

  // What callers do: commands and queries, some without waiting for the answers. The connection may be closed
  // at any moment.
  void call (Dice dice) {
    while (!stop_) {
      const uint32_t connection = connections_[dice (2)];
      if (dice (50) == 0)
        orva_synchronous (connection, dice (2));
      const uint32_t code = dice (3) == 0 ? ask (connection, dice (channels), 1 + dice (9))
                                          : commands[dice (std::size (commands))](connection, dice);
      EXPECT_TRUE (code == ORVA_OK || code == ORVA_ERROR || code == ORVA_INVALID_HANDLE) << code;
      EXPECT_FALSE (last_error ().empty ());
      ++(code == ORVA_OK ? accepted_ : refused_);
    }
  }

  void watch (const std::atomic<uint32_t> &connection) {
    while (!stop_) {
      uint32_t kind = 77;
      uint32_t channel = 77;
      const uint32_t here = connection;
      if (orva_get_notification (here, 20, &kind, &channel) != ORVA_OK || kind == ORVA_NOTICE_NONE)
        continue;
      EXPECT_LE (kind, 9u);
      EXPECT_LT (channel, channels);
      ask (here, channel, kind);
      ++notices_;
    }
  }

  // The last server, too, gets its share.
  void settle () {
    wait_until_connected ();
    EXPECT_TRUE (support::wait_until ([this, enough = accepted_ + 1000] { return accepted_ > enough; }));
    stop ();
    for (const std::atomic<uint32_t> &connection : connections_) {
      orva_synchronous (connection, 0);
      orva_sync (connection);
      EXPECT_TRUE (support::wait_until ([&] { return orva_cmd_gang_stop1 (connection, 0xFF) == ORVA_OK; }));
    }
  }

  /// What the library and the server say, once they say the same or the limit has passed.
  std::pair<States, States> compared (uint32_t connection, bool with_positions) {
    std::pair<States, States> both;
    support::wait_until ([&] {
      both = {states_in_library (connection), states_in_server (server_.address ())};
      if (!with_positions)
        for (States *states : {&both.first, &both.second})
          for (State &state : *states)
            state.position = 0;
      return both.first == both.second;
    });
    return both;
  }

  void expect_same (bool with_positions) {
    for (const std::atomic<uint32_t> &connection : connections_) {
      const auto [library, server] = compared (connection, with_positions);
      EXPECT_EQ (library, server);
    }
  }

  SimulatorProcess server_{{"--quiet", "--standard", "1080_50i"}};
  std::atomic<uint32_t> connections_[2];
  std::atomic<bool> stop_{false};
  std::atomic<unsigned> accepted_{0};
  std::atomic<unsigned> refused_{0};
  std::atomic<unsigned> notices_{0};
  std::vector<std::thread> threads_;
  Dice any_{99};
};

TEST_F (ChannelsOfAServerThatDies, AreKnownAsTheServerTellsThem) {
  start ();
  for (int round = 0; round != support::rounds (5, 200) && !HasFailure (); ++round)
    one_round ();
  settle ();
  expect_same (true);

  const uint32_t connection = connections_[0];
  for (uint32_t channel = 0; channel != channels_with_lists; ++channel)
    EXPECT_EQ (orva_cmd_playlist_cue_now (connection, channel, channel % 3), ORVA_OK) << last_error ();
  expect_same (true);
  for (uint32_t channel = 0; channel != channels; ++channel) {
    EXPECT_EQ (orva_cmd_loadclip2 (connection, channel, wide ("BARS").c_str (), ORVA_REPEAT_LOOP), ORVA_OK);
    EXPECT_EQ (orva_cmd_play2 (connection, channel, 1.25 * (channel + 1)), ORVA_OK);
  }
  expect_same (false);
  EXPECT_GT (refused_, 50u);
  EXPECT_GT (notices_, 50u);
}

} // namespace
