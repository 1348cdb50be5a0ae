// What is sent for arguments inside and outside their ranges, by every function that takes such an argument.
#include "exports/session.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace {

const std::basic_string<orva_char> clip_text = wide ("NEWS0123");
const orva_char *const clip = clip_text.c_str ();

/// A value of an argument and how it is written.
template <class Value>
struct Given {
  Value value;
  const char *written; ///< in the command
};

/// A call with an argument `v` that varies, and the command that it sends.
template <class Value>
struct Call {
  const char *what;
  uint32_t (*call) (uint32_t connection, Value value);
  const char *command; ///< in the short form of `document_of`; '$' stands for how `v` is written
};

#define CALL(call, command)                                                                                  \
  {                                                                                                          \
#call, [](uint32_t c, auto v) { return call; }, command                                                  \
  }

/// What all of these functions have in common: with a connection number that is not known they return
/// ORVA_INVALID_HANDLE, a refusal of the server is an error with its text, and asynchronous calls do not
/// wait.
template <class Value>
void expect_common_results (const std::vector<Call<Value>> &calls, Value value) {
  support::FakeServer server;
  server.answer_any (refused ("Not now"));
  const Session session (server);
  for (const Call<Value> &row : calls) {
    SCOPED_TRACE (row.what);
    EXPECT_EQ (row.call (0, value), ORVA_INVALID_HANDLE);
    EXPECT_EQ (last_error (), "Invalid handle");
    EXPECT_EQ (row.call (session, value), ORVA_ERROR);
    EXPECT_EQ (last_error (), "Not now");
  }
  server.silent (true);
  orva_synchronous (session, 1);
  for (const Call<Value> &row : calls)
    EXPECT_EQ (row.call (session, value), ORVA_OK) << row.what;
  EXPECT_TRUE (server.wait_for_commands (2 * calls.size ()));
  EXPECT_EQ (server.command_count (), 2 * calls.size ());
  server.drop ();
  orva_sync (session);
}

/// Makes each call with each value and compares what arrives, byte by byte.
template <class Value>
void expect_sent (const std::vector<Given<Value>> &values, const std::vector<Call<Value>> &calls) {
  support::FakeServer server;
  server.answer_any ("<ok />");
  const Session session (server);
  size_t sent = 0;
  for (const Call<Value> &row : calls)
    for (const Given<Value> &given : values) {
      SCOPED_TRACE (std::string (row.what) + ", " + std::to_string (given.value));
      EXPECT_EQ (row.call (session, given.value), ORVA_OK);
      std::string expected = row.command;
      if (const size_t mark = expected.find ('$'); mark != std::string::npos)
        expected.replace (mark, 1, given.written);
      const support::Command command = server.command (++sent);
      EXPECT_EQ (command.document, document_of (command.xid, expected));
    }
  EXPECT_EQ (server.command_count (), values.size () * calls.size ());
  expect_common_results (calls, values.front ().value);
}

constexpr uint32_t highest = 0xFFFFFFFF;

TEST (OutOfRange, ChannelsThatDoNotExistAreTheFirst) {
  expect_sent<uint32_t> (
      {{7, "H"}, {8, "A"}, {0x101, "A"}, {highest, "A"}},
      {
          CALL (orva_cmd_play1 (c, v), "play Channel=$"),
          CALL (orva_cmd_play2 (c, v, 1.0), "play Channel=$ Speed=1X"),
          CALL (orva_cmd_play3 (c, v, 1.0, 1), "play Channel=$ Speed=1X MinLatency"),
          CALL (orva_cmd_stop1 (c, v), "stop Channel=$"),
          CALL (orva_cmd_stop2 (c, v, 1), "stop Channel=$ MinLatency"),
          CALL (orva_jog1 (c, v, -5), "jog Channel=$ JogDistance=-5"),
          CALL (orva_jog2 (c, v, 5, 1), "jog Channel=$ JogDistance=5 MinLatency"),
          CALL (orva_goto1 (c, v, 5), "gotocmd Channel=$ GotoPosition=5"),
          CALL (orva_goto2 (c, v, 5, 1), "gotocmd Channel=$ GotoPosition=5 MinLatency"),
          CALL (orva_cmd_loadclip1 (c, v, clip), "cue_clip Channel=$ ClipID=NEWS0123"),
          CALL (orva_cmd_loadclip2 (c, v, clip, 1), "cue_clip Channel=$ ClipID=NEWS0123 Loop=loop"),
          CALL (orva_cmd_loadclip3 (c, v, clip, 1, 5),
                "cue_clip Channel=$ ClipID=NEWS0123 Loop=loop GotoPosition=5"),
          CALL (orva_cmd_loadclip4 (c, v, clip, 1, 5, 6, 7),
                "cue_clip Channel=$ ClipID=NEWS0123 Loop=loop GotoPosition=5 ClipPosition=7 LoopIn=6"),
          CALL (orva_cmd_loadclip5 (c, v, clip, 2), "cue_clip Channel=$ ClipID=NEWS0123 Angle=2"),
          CALL (orva_cmd_loadclip6 (c, v, clip, 2, 5),
                "cue_clip Channel=$ ClipID=NEWS0123 GotoPosition=5 Angle=2"),
          CALL (orva_cmd_loadclip7 (c, v, clip, 2, 5, 7),
                "cue_clip Channel=$ ClipID=NEWS0123 GotoPosition=5 ClipPosition=7 Angle=2"),
          CALL (orva_cmd_load_vclip1 (c, v, clip), "cue_clip Channel=$ ClipID=NEWS0123 ClipScope=vclip"),
          CALL (orva_cmd_load_vclip2 (c, v, clip, 1),
                "cue_clip Channel=$ ClipID=NEWS0123 Loop=loop ClipScope=vclip"),
          CALL (orva_cmd_load_vclip3 (c, v, clip, 1, 5),
                "cue_clip Channel=$ ClipID=NEWS0123 Loop=loop GotoPosition=5 ClipScope=vclip"),
          CALL (orva_precue1 (c, v, clip, 1),
                "precue Channel=$ ClipID=NEWS0123 PrecueCondition=previous_stops"),
          CALL (orva_precue2 (c, v, clip, 1, 5),
                "precue Channel=$ ClipID=NEWS0123 PrecueCondition=previous_stops GotoPosition=5"),
          CALL (
              orva_precue3 (c, v, clip, 1, 5, 9),
              "precue Channel=$ ClipID=NEWS0123 PrecueCondition=previous_stops GotoPosition=5 ClipLength=9"),
          CALL (orva_precue4 (c, v, clip, 1, 5, 6, 9),
                "precue Channel=$ ClipID=NEWS0123 PrecueCondition=previous_stops GotoPosition=5 ClipLength=9 "
                "LoopIn=6 Loop=off"),
          CALL (orva_precue_clear1 (c, v), "precue_clear Channel=$"),
          CALL (orva_precue_activate1 (c, v), "precue_activate Channel=$"),
          CALL (orva_take1 (c, v, 1, 9), "take Channel=$ TransitionType=dissolve TransitionDuration=9"),
          CALL (orva_take2 (c, v, 1, 9, 1),
                "take Channel=$ TransitionType=dissolve TransitionDuration=9 FollowSpeed=smart"),
          CALL (orva_go_live1 (c, v), "go_live Channel=$ MinLatency"),
          CALL (orva_go_live2 (c, v, 2), "go_live Channel=$ Angle=2 MinLatency"),
          CALL (orva_go_live3 (c, v, clip), "go_live Channel=$ ClipID=NEWS0123 MinLatency"),
          CALL (orva_go_live4 (c, v, clip, 2), "go_live Channel=$ ClipID=NEWS0123 Angle=2 MinLatency"),
          CALL (orva_angle1 (c, v, 2), "iso_angle Channel=$ Angle=2"),
          CALL (orva_set_out1 (c, v, 5), "set_out_point Channel=$ ClipPosition=5"),
          CALL (orva_clear_out (c, v), "clear_out_point Channel=$"),
          CALL (orva_set_repeat (c, v, 1), "set_loop Channel=$ Loop=loop"),
          CALL (orva_set_channel_repeat (c, v, 1), "set_loop Channel=$ Loop=loop"),
          CALL (orva_unload_channel (c, v), "unload Channel=$"),
          CALL (orva_edit1 (c, v, 1), "insert_edit Channel=$ SonyEditMask=16"),
          CALL (orva_ee1 (c, v, 1, 1), "ee Channel=$ SonyEditMask=16 AutoEE=false"),
          CALL (orva_edit_all_on (c, v), "insert_edit Channel=$ SonyEditMask=1023"),
          CALL (orva_edit_all_off (c, v), "insert_edit Channel=$ SonyEditMask=0"),
          CALL (orva_ee_all_on (c, v), "ee Channel=$ SonyEditMask=1023 AutoEE=true"),
          CALL (orva_ee_all_off (c, v), "ee Channel=$ SonyEditMask=0 AutoEE=true"),
          CALL (orva_cmd_playlist_play_now (c, v, 3), "list_play_now Channel=$ ListIndex=3 Roll=roll"),
          CALL (orva_cmd_playlist_play_next (c, v, 3), "list_play_next Channel=$ ListIndex=3 Roll=roll"),
          CALL (orva_cmd_playlist_cue_now (c, v, 3), "list_play_now Channel=$ ListIndex=3 Roll=cueonly"),
          CALL (orva_cmd_playlist_cue_next (c, v, 3), "list_play_next Channel=$ ListIndex=3 Roll=cueonly"),
          CALL (orva_cmd_playlist_cue_list (c, v), "list_play_now Channel=$ ListIndex=0 Roll=cueonly"),
      });
}

TEST (OutOfRange, BitsOfAGangBeyondTheEighthAreIgnored) {
  expect_sent<uint32_t> (
      {{0, "ChannelSet"},
       {0xFFFFFF00, "ChannelSet"},
       {0x181, "ChannelSet{Channel=A Channel=H}"},
       {highest,
        "ChannelSet{Channel=A Channel=B Channel=C Channel=D Channel=E Channel=F Channel=G Channel=H}"}},
      {
          CALL (orva_cmd_gang_play1 (c, v), "gang_play $"),
          CALL (orva_cmd_gang_play2 (c, v, 1.0), "gang_play $ Speed=1X"),
          CALL (orva_cmd_gang_play3 (c, v, 1.0, 1), "gang_play $ Speed=1X MinLatency"),
          CALL (orva_cmd_gang_stop1 (c, v), "gang_stop $"),
          CALL (orva_cmd_gang_stop2 (c, v, 1), "gang_stop $ MinLatency"),
          CALL (orva_gang_jog1 (c, v, -5), "gang_jog $ JogDistance=-5"),
          CALL (orva_gang_jog2 (c, v, 5, 1), "gang_jog $ JogDistance=5 MinLatency"),
          CALL (orva_gang_goto1 (c, v, 5), "gang_gotocmd $ GotoPosition=5"),
          CALL (orva_gang_goto2 (c, v, 5, 1), "gang_gotocmd $ GotoPosition=5 MinLatency"),
          CALL (orva_gang_precue_activate1 (c, v), "gang_precue_activate $"),
          CALL (orva_gang_edit1 (c, v, 1), "gang_insert_edit $ SonyEditMask=16"),
          CALL (orva_gang_ee1 (c, v, 1, 1), "gang_ee $ SonyEditMask=16 AutoEE=false"),
          CALL (orva_gang_edit_all_on (c, v), "gang_insert_edit $ SonyEditMask=1023"),
          CALL (orva_gang_edit_all_off (c, v), "gang_insert_edit $ SonyEditMask=0"),
          CALL (orva_gang_ee_all_on (c, v), "gang_ee $ SonyEditMask=1023 AutoEE=true"),
          CALL (orva_gang_ee_all_off (c, v), "gang_ee $ SonyEditMask=0 AutoEE=true"),
      });
}

TEST (OutOfRange, OnlyALatencyOfOneIsSent) {
  expect_sent<uint32_t> (
      {{0, ""}, {1, "MinLatency"}, {2, ""}, {0x101, ""}, {highest, ""}},
      {
          CALL (orva_cmd_play3 (c, 1, 1.0, v), "play Channel=B Speed=1X $"),
          CALL (orva_cmd_gang_play3 (c, 2, 1.0, v), "gang_play ChannelSet{Channel=B} Speed=1X $"),
          CALL (orva_cmd_stop2 (c, 1, v), "stop Channel=B $"),
          CALL (orva_cmd_gang_stop2 (c, 2, v), "gang_stop ChannelSet{Channel=B} $"),
          CALL (orva_jog2 (c, 1, 5, v), "jog Channel=B JogDistance=5 $"),
          CALL (orva_gang_jog2 (c, 2, 5, v), "gang_jog ChannelSet{Channel=B} JogDistance=5 $"),
          CALL (orva_goto2 (c, 1, 5, v), "gotocmd Channel=B GotoPosition=5 $"),
          CALL (orva_gang_goto2 (c, 2, 5, v), "gang_gotocmd ChannelSet{Channel=B} GotoPosition=5 $"),
      });
}

TEST (OutOfRange, UnknownRepeatModesAreOff) {
  expect_sent<uint32_t> (
      {{0, "off"},
       {1, "loop"},
       {2, "loopto"},
       {3, "pingpong"},
       {4, "pingpongto"},
       {5, "off"},
       {6, "off"},
       {0x101, "off"},
       {highest, "off"}},
      {
          CALL (orva_cmd_loadclip2 (c, 1, clip, v), "cue_clip Channel=B ClipID=NEWS0123 Loop=$"),
          CALL (orva_cmd_loadclip3 (c, 1, clip, v, 5),
                "cue_clip Channel=B ClipID=NEWS0123 Loop=$ GotoPosition=5"),
          CALL (orva_cmd_loadclip4 (c, 1, clip, v, 5, 6, 7),
                "cue_clip Channel=B ClipID=NEWS0123 Loop=$ GotoPosition=5 ClipPosition=7 LoopIn=6"),
          CALL (orva_cmd_load_vclip2 (c, 1, clip, v),
                "cue_clip Channel=B ClipID=NEWS0123 Loop=$ ClipScope=vclip"),
          CALL (orva_cmd_load_vclip3 (c, 1, clip, v, 5),
                "cue_clip Channel=B ClipID=NEWS0123 Loop=$ GotoPosition=5 ClipScope=vclip"),
          CALL (orva_set_repeat (c, 1, v), "set_loop Channel=B Loop=$"),
          CALL (orva_set_channel_repeat (c, 1, v), "set_loop Channel=B Loop=$"),
      });
}

TEST (OutOfRange, UnknownConditionsWaitForTheSwitch) {
  expect_sent<uint32_t> (
      {{0, "explicit_switch"},
       {1, "previous_stops"},
       {2, "immediate"},
       {3, "end_of_clip"},
       {4, "explicit_switch"},
       {0x101, "explicit_switch"},
       {highest, "explicit_switch"}},
      {
          CALL (orva_precue1 (c, 1, clip, v), "precue Channel=B ClipID=NEWS0123 PrecueCondition=$"),
          CALL (orva_precue2 (c, 1, clip, v, 5),
                "precue Channel=B ClipID=NEWS0123 PrecueCondition=$ GotoPosition=5"),
          CALL (orva_precue3 (c, 1, clip, v, 5, 9),
                "precue Channel=B ClipID=NEWS0123 PrecueCondition=$ GotoPosition=5 ClipLength=9"),
          CALL (orva_precue4 (c, 1, clip, v, 5, 6, 9), "precue Channel=B ClipID=NEWS0123 PrecueCondition=$ "
                                                       "GotoPosition=5 ClipLength=9 LoopIn=6 Loop=off"),
      });
}

TEST (OutOfRange, TheLowByteOfAnAngleCounts) {
  expect_sent<uint32_t> (
      {{0, "0"}, {255, "255"}, {0x103, "3"}, {0xFFFFFF00, "0"}, {highest, "255"}},
      {
          CALL (orva_cmd_loadclip5 (c, 1, clip, v), "cue_clip Channel=B ClipID=NEWS0123 Angle=$"),
          CALL (orva_cmd_loadclip6 (c, 1, clip, v, 5),
                "cue_clip Channel=B ClipID=NEWS0123 GotoPosition=5 Angle=$"),
          CALL (orva_cmd_loadclip7 (c, 1, clip, v, 5, 7),
                "cue_clip Channel=B ClipID=NEWS0123 GotoPosition=5 ClipPosition=7 Angle=$"),
          CALL (orva_go_live2 (c, 1, v), "go_live Channel=B Angle=$ MinLatency"),
          CALL (orva_go_live4 (c, 1, clip, v), "go_live Channel=B ClipID=NEWS0123 Angle=$ MinLatency"),
          CALL (orva_angle1 (c, 1, v), "iso_angle Channel=B Angle=$"),
      });
}

TEST (OutOfRange, SpeedsAreHeldWithinTwoHundred) {
  expect_sent<double> ({{200.0, "200X"},
                        {200.001, "200X"},
                        {1e300, "200X"},
                        {std::numeric_limits<double>::infinity (), "200X"},
                        {-200.0, "-200X"},
                        {-200.001, "-200X"},
                        {-std::numeric_limits<double>::infinity (), "-200X"},
                        {-0.00001, "0X"},
                        {0.00002, "0.000015258789063X"}},
                       {
                           CALL (orva_cmd_play2 (c, 1, v), "play Channel=B Speed=$"),
                           CALL (orva_cmd_play3 (c, 1, v, 1), "play Channel=B Speed=$ MinLatency"),
                           CALL (orva_cmd_gang_play2 (c, 2, v), "gang_play ChannelSet{Channel=B} Speed=$"),
                           CALL (orva_cmd_gang_play3 (c, 2, v, 0), "gang_play ChannelSet{Channel=B} Speed=$"),
                           CALL (orva_vclip_add_segment2 (c, clip, clip, 1, 1, 2, 3, v),
                                 "vclip_add_segment VClipID=NEWS0123 ClipID=NEWS0123 ClipPosition=1 "
                                 "TrackSet{TrackType=video} VClipPosition=2 ClipLength=3 Speed=$"),
                       });
}

TEST (OutOfRange, ThreeEditBitsCount) {
  expect_sent<uint32_t> (
      {{0, "0"}, {1, "16"}, {2, "32"}, {4, "975"}, {7, "1023"}, {0xFFFFFFF8, "0"}, {highest, "1023"}},
      {
          CALL (orva_edit1 (c, 1, v), "insert_edit Channel=B SonyEditMask=$"),
          CALL (orva_gang_edit1 (c, 2, v), "gang_insert_edit ChannelSet{Channel=B} SonyEditMask=$"),
          CALL (orva_ee1 (c, 1, v, 0), "ee Channel=B SonyEditMask=$ AutoEE=true"),
          CALL (orva_gang_ee1 (c, 2, v, 0), "gang_ee ChannelSet{Channel=B} SonyEditMask=$ AutoEE=true"),
      });
}

TEST (OutOfRange, OnlyAModeOfOneIsManual) {
  expect_sent<uint32_t> (
      {{0, "true"}, {1, "false"}, {2, "true"}, {0x101, "true"}, {highest, "true"}},
      {
          CALL (orva_ee1 (c, 1, 1, v), "ee Channel=B SonyEditMask=16 AutoEE=$"),
          CALL (orva_gang_ee1 (c, 2, 1, v), "gang_ee ChannelSet{Channel=B} SonyEditMask=16 AutoEE=$"),
      });
}

TEST (OutOfRange, ThreeTracksCountAndNoneIsATimecode) {
  expect_sent<uint32_t> (
      {{0xFFFFFFF8, "TrackSet"},
       {1, "TrackSet{TrackType=video}"},
       {0xA, "TrackSet{TrackType=key}"},
       {highest, "TrackSet{TrackType=video TrackType=key TrackType=audio}"}},
      {
          CALL (orva_vclip_add_segment1 (c, clip, clip, 1, v, 2, 3),
                "vclip_add_segment VClipID=NEWS0123 ClipID=NEWS0123 ClipPosition=1 $ VClipPosition=2 "
                "ClipLength=3"),
          CALL (orva_vclip_add_segment2 (c, clip, clip, 1, v, 2, 3, 0.5),
                "vclip_add_segment VClipID=NEWS0123 ClipID=NEWS0123 ClipPosition=1 $ VClipPosition=2 "
                "ClipLength=3 Speed=0.5X"),
          CALL (orva_vclip_clear_segment (c, clip, v, 2, 3),
                "vclip_clear_segment VClipID=NEWS0123 $ VClipPosition=2 ClipLength=3"),
          CALL (orva_vclip_ripple (c, clip, v, 2, -3),
                "vclip_ripple VClipID=NEWS0123 $ VClipPosition=2 VClipDistance=-3"),
          CALL (orva_vclip_track_enable (c, clip, v), "vclip_track_enable VClipID=NEWS0123 $"),
          CALL (orva_vclip_cfg_tracks (c, clip, clip, v),
                "vclip_cfg_tracks VClipID=NEWS0123 ClipID=NEWS0123 $"),
      });
}

TEST (OutOfRange, TheLowHalfOfAnIndexCounts) {
  expect_sent<uint32_t> (
      {{0, "0"}, {65535, "65535"}, {65536, "0"}, {0x10005, "5"}, {highest, "65535"}},
      {
          CALL (orva_cmd_playlist_play_now (c, 1, v), "list_play_now Channel=B ListIndex=$ Roll=roll"),
          CALL (orva_cmd_playlist_play_next (c, 1, v), "list_play_next Channel=B ListIndex=$ Roll=roll"),
          CALL (orva_cmd_playlist_cue_now (c, 1, v), "list_play_now Channel=B ListIndex=$ Roll=cueonly"),
          CALL (orva_cmd_playlist_cue_next (c, 1, v), "list_play_next Channel=B ListIndex=$ Roll=cueonly"),
      });
}

TEST (OutOfRange, PositionsAndLengthsGoAsTheyAre) {
  expect_sent<uint32_t> (
      {{0, "0"}, {0x80000000, "2147483648"}, {highest, "4294967295"}},
      {
          CALL (orva_goto1 (c, 1, v), "gotocmd Channel=B GotoPosition=$"),
          CALL (orva_goto2 (c, 1, v, 0), "gotocmd Channel=B GotoPosition=$"),
          CALL (orva_gang_goto1 (c, 2, v), "gang_gotocmd ChannelSet{Channel=B} GotoPosition=$"),
          CALL (orva_gang_goto2 (c, 2, v, 0), "gang_gotocmd ChannelSet{Channel=B} GotoPosition=$"),
          CALL (orva_cmd_loadclip3 (c, 1, clip, 0, v),
                "cue_clip Channel=B ClipID=NEWS0123 Loop=off GotoPosition=$"),
          CALL (orva_cmd_loadclip4 (c, 1, clip, 0, v, 6, 7),
                "cue_clip Channel=B ClipID=NEWS0123 Loop=off GotoPosition=$ ClipPosition=7 LoopIn=6"),
          CALL (orva_cmd_loadclip4 (c, 1, clip, 0, 5, v, 7),
                "cue_clip Channel=B ClipID=NEWS0123 Loop=off GotoPosition=5 ClipPosition=7 LoopIn=$"),
          CALL (orva_cmd_loadclip4 (c, 1, clip, 0, 5, 6, v),
                "cue_clip Channel=B ClipID=NEWS0123 Loop=off GotoPosition=5 ClipPosition=$ LoopIn=6"),
          CALL (orva_cmd_loadclip6 (c, 1, clip, 2, v),
                "cue_clip Channel=B ClipID=NEWS0123 GotoPosition=$ Angle=2"),
          CALL (orva_cmd_loadclip7 (c, 1, clip, 2, v, 7),
                "cue_clip Channel=B ClipID=NEWS0123 GotoPosition=$ ClipPosition=7 Angle=2"),
          CALL (orva_cmd_loadclip7 (c, 1, clip, 2, 5, v),
                "cue_clip Channel=B ClipID=NEWS0123 GotoPosition=5 ClipPosition=$ Angle=2"),
          CALL (orva_cmd_load_vclip3 (c, 1, clip, 0, v),
                "cue_clip Channel=B ClipID=NEWS0123 Loop=off GotoPosition=$ ClipScope=vclip"),
          CALL (orva_precue2 (c, 1, clip, 0, v),
                "precue Channel=B ClipID=NEWS0123 PrecueCondition=explicit_switch GotoPosition=$"),
          CALL (
              orva_precue3 (c, 1, clip, 0, 5, v),
              "precue Channel=B ClipID=NEWS0123 PrecueCondition=explicit_switch GotoPosition=5 ClipLength=$"),
          CALL (orva_precue4 (c, 1, clip, 0, v, 6, 9),
                "precue Channel=B ClipID=NEWS0123 PrecueCondition=explicit_switch GotoPosition=$ "
                "ClipLength=9 LoopIn=6 Loop=off"),
          CALL (orva_precue4 (c, 1, clip, 0, 5, v, 9),
                "precue Channel=B ClipID=NEWS0123 PrecueCondition=explicit_switch GotoPosition=5 "
                "ClipLength=9 LoopIn=$ Loop=off"),
          CALL (orva_take1 (c, 1, 0, v), "take Channel=B TransitionType=cut TransitionDuration=$"),
          CALL (orva_take2 (c, 1, 0, v, 3),
                "take Channel=B TransitionType=cut TransitionDuration=$ FollowSpeed=follow"),
          CALL (orva_set_out1 (c, 1, v), "set_out_point Channel=B ClipPosition=$"),
          CALL (orva_vclip_create (c, clip, v), "vclip_create VClipID=NEWS0123 ClipLength=$"),
          CALL (orva_vclip_add_segment1 (c, clip, clip, v, 1, 2, 3),
                "vclip_add_segment VClipID=NEWS0123 ClipID=NEWS0123 ClipPosition=$ TrackSet{TrackType=video} "
                "VClipPosition=2 ClipLength=3"),
          CALL (
              orva_vclip_clear_segment (c, clip, 1, v, 3),
              "vclip_clear_segment VClipID=NEWS0123 TrackSet{TrackType=video} VClipPosition=$ ClipLength=3"),
          CALL (orva_vclip_ripple (c, clip, 1, v, 3),
                "vclip_ripple VClipID=NEWS0123 TrackSet{TrackType=video} VClipPosition=$ VClipDistance=3"),
      });
}

TEST (OutOfRange, DistancesGoAsTheyAre) {
  expect_sent<int32_t> (
      {{0, "0"}, {-1, "-1"}, {INT32_MIN, "-2147483648"}, {INT32_MAX, "2147483647"}},
      {
          CALL (orva_jog1 (c, 1, v), "jog Channel=B JogDistance=$"),
          CALL (orva_jog2 (c, 1, v, 0), "jog Channel=B JogDistance=$"),
          CALL (orva_gang_jog1 (c, 2, v), "gang_jog ChannelSet{Channel=B} JogDistance=$"),
          CALL (orva_gang_jog2 (c, 2, v, 0), "gang_jog ChannelSet{Channel=B} JogDistance=$"),
          CALL (orva_vclip_ripple (c, clip, 1, 2, v),
                "vclip_ripple VClipID=NEWS0123 TrackSet{TrackType=video} VClipPosition=2 VClipDistance=$"),
      });
}

} // namespace
