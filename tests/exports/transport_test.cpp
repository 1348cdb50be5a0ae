#include "exports/session.h"

#include <gtest/gtest.h>

void expect_wire (const std::vector<WireRow> &rows) {
  support::FakeServer server;
  server.answer_any ("<ok />");
  Session session (server);
  size_t sent = 0;
  for (const WireRow &row : rows) {
    SCOPED_TRACE (row.what);
    EXPECT_EQ (row.call (session), ORVA_OK);
    EXPECT_EQ (last_error (), "OK");
    const support::Command command = server.command (++sent);
    EXPECT_EQ (command.document, document_of (command.xid, row.command));
  }
  EXPECT_EQ (server.command_count (), rows.size ());
}

namespace {

const std::basic_string<orva_char> clip_text = wide ("NEWS0123");
const orva_char *const clip = clip_text.c_str ();

TEST (Transport, PlaysAndStops) {
  expect_wire ({
      SENDS (orva_cmd_play1 (c, 1), "play Channel=B"),
      SENDS (orva_cmd_play1 (c, 7), "play Channel=H"),          // the last channel
      SENDS (orva_cmd_play1 (c, 9), "play Channel=A"),          // a channel that is not there
      SENDS (orva_cmd_play1 (c, 0xFFFFFFFF), "play Channel=A"), // the highest number
      SENDS (orva_cmd_play2 (c, 0, 1.0), "play Channel=A Speed=1X"),
      SENDS (orva_cmd_play2 (c, 0, 0.0), "play Channel=A Speed=0X"),     // a still
      SENDS (orva_cmd_play2 (c, 2, -0.5), "play Channel=C Speed=-0.5X"), // backwards
      // one step of the fraction
      SENDS (orva_cmd_play2 (c, 0, 65537.9 / 65536.0), "play Channel=A Speed=1.000015258789063X"),
      SENDS (orva_cmd_play2 (c, 0, 500.0), "play Channel=A Speed=200X"),   // too fast
      SENDS (orva_cmd_play2 (c, 0, -500.0), "play Channel=A Speed=-200X"), // too fast backwards
      SENDS (orva_cmd_play3 (c, 0, 1.5, 1), "play Channel=A Speed=1.5X MinLatency"),
      SENDS (orva_cmd_play3 (c, 0, 1.5, 0), "play Channel=A Speed=1.5X"), // latency 0
      SENDS (orva_cmd_play3 (c, 0, 1.5, 2), "play Channel=A Speed=1.5X"), // latency 2
      SENDS (orva_cmd_gang_play1 (c, 0x85), "gang_play ChannelSet{Channel=A Channel=C Channel=H}"),
      // bits beyond the channels
      SENDS (orva_cmd_gang_play1 (c, 0xFFFFFF02), "gang_play ChannelSet{Channel=B}"),
      SENDS (orva_cmd_gang_play2 (c, 1, 2.0), "gang_play ChannelSet{Channel=A} Speed=2X"),
      SENDS (orva_cmd_gang_play3 (c, 1, 2.0, 1), "gang_play ChannelSet{Channel=A} Speed=2X MinLatency"),
      SENDS (orva_cmd_stop1 (c, 0), "stop Channel=A"),
      SENDS (orva_cmd_stop2 (c, 3, 1), "stop Channel=D MinLatency"),
      SENDS (orva_cmd_stop2 (c, 8, 3), "stop Channel=A"),         // latency 3
      SENDS (orva_cmd_gang_stop1 (c, 0), "gang_stop ChannelSet"), // nobody
      SENDS (orva_cmd_gang_stop2 (c, 2, 1), "gang_stop ChannelSet{Channel=B} MinLatency"),
      SENDS (orva_cmd_gang_stop2 (c, 0x100, 0), "gang_stop ChannelSet"), // latency 0
  });
}

TEST (Transport, JogsAndGoes) {
  expect_wire ({
      SENDS (orva_jog1 (c, 4, -25), "jog Channel=E JogDistance=-25"),
      SENDS (orva_jog1 (c, 0, INT32_MIN), "jog Channel=A JogDistance=-2147483648"), // the farthest back
      SENDS (orva_jog2 (c, 0, 1, 1), "jog Channel=A JogDistance=1 MinLatency"),
      SENDS (orva_jog2 (c, 0, 0, 0), "jog Channel=A JogDistance=0"), // latency 0
      SENDS (orva_gang_jog1 (c, 0x20, 50), "gang_jog ChannelSet{Channel=F} JogDistance=50"),
      SENDS (orva_gang_jog2 (c, 0x40, -50, 1), "gang_jog ChannelSet{Channel=G} JogDistance=-50 MinLatency"),
      SENDS (orva_goto1 (c, 0, 100), "gotocmd Channel=A GotoPosition=100"),
      SENDS (orva_goto1 (c, 8, 0xFFFFFFFF), "gotocmd Channel=A GotoPosition=4294967295"), // the farthest
      SENDS (orva_goto2 (c, 1, 0, 1), "gotocmd Channel=B GotoPosition=0 MinLatency"),
      SENDS (orva_gang_goto1 (c, 1, 7), "gang_gotocmd ChannelSet{Channel=A} GotoPosition=7"),
      SENDS (orva_gang_goto2 (c, 1, 7, 1), "gang_gotocmd ChannelSet{Channel=A} GotoPosition=7 MinLatency"),
  });
}

TEST (Transport, LoadsClips) {
  expect_wire ({
      SENDS (orva_cmd_loadclip1 (c, 0, clip), "cue_clip Channel=A ClipID=NEWS0123"),
      SENDS (orva_cmd_loadclip1 (c, 0, wide ("").c_str ()), "cue_clip Channel=A ClipID"), // an empty name
      SENDS (orva_cmd_loadclip1 (c, 0, wide ("a<b & c").c_str ()),
             "cue_clip Channel=A ClipID='a&lt;b &amp; c'"),
      {"loadclip1, a name beyond ASCII",
       [] (uint32_t c) {
         const orva_char units[] = {0xE9, 0x20AC, 0xD834, 0xDD1E, 0};
         return orva_cmd_loadclip1 (c, 0, units);
       },
       "cue_clip Channel=A ClipID=\xC3\xA9\xE2\x82\xAC\xF0\x9D\x84\x9E"},
      {"loadclip1, half of a pair ends the name",
       [] (uint32_t c) {
         const orva_char units[] = {'a', 0xDD1E, 'b', 0};
         return orva_cmd_loadclip1 (c, 0, units);
       },
       "cue_clip Channel=A ClipID=a"},
      SENDS (orva_cmd_loadclip2 (c, 0, clip, ORVA_REPEAT_PINGPONG_TO),
             "cue_clip Channel=A ClipID=NEWS0123 Loop=pingpongto"),
      // an unknown repeat
      SENDS (orva_cmd_loadclip2 (c, 0, clip, 5), "cue_clip Channel=A ClipID=NEWS0123 Loop=off"),
      SENDS (orva_cmd_loadclip3 (c, 0, clip, ORVA_REPEAT_LOOP, 10),
             "cue_clip Channel=A ClipID=NEWS0123 Loop=loop GotoPosition=10"),
      SENDS (orva_cmd_loadclip4 (c, 0, clip, ORVA_REPEAT_LOOP_TO, 10, 20, 30),
             "cue_clip Channel=A ClipID=NEWS0123 Loop=loopto GotoPosition=10 ClipPosition=30 LoopIn=20"),
      SENDS (orva_cmd_loadclip4 (c, 0, clip, 0, 0, 0, 0), // zeros are sent
             "cue_clip Channel=A ClipID=NEWS0123 Loop=off GotoPosition=0 ClipPosition=0 LoopIn=0"),
      SENDS (orva_cmd_loadclip5 (c, 0, clip, 2), "cue_clip Channel=A ClipID=NEWS0123 Angle=2"),
      // the low bits of an angle
      SENDS (orva_cmd_loadclip5 (c, 0, clip, 0x1FF), "cue_clip Channel=A ClipID=NEWS0123 Angle=255"),
      SENDS (orva_cmd_loadclip6 (c, 0, clip, 2, 10),
             "cue_clip Channel=A ClipID=NEWS0123 GotoPosition=10 Angle=2"),
      SENDS (orva_cmd_loadclip7 (c, 0, clip, 2, 10, 20),
             "cue_clip Channel=A ClipID=NEWS0123 GotoPosition=10 ClipPosition=20 Angle=2"),
  });
}

TEST (Transport, Precues) {
  expect_wire ({
      SENDS (orva_precue1 (c, 0, clip, ORVA_PRECUE_END_OF_CLIP),
             "precue Channel=A ClipID=NEWS0123 PrecueCondition=end_of_clip"),
      SENDS (orva_precue1 (c, 0, clip, 4), // an unknown condition
             "precue Channel=A ClipID=NEWS0123 PrecueCondition=explicit_switch"),
      SENDS (orva_precue2 (c, 0, clip, ORVA_PRECUE_PREVIOUS_STOPS, 5),
             "precue Channel=A ClipID=NEWS0123 PrecueCondition=previous_stops GotoPosition=5"),
      SENDS (orva_precue3 (c, 0, clip, ORVA_PRECUE_IMMEDIATE, 5, 50),
             "precue Channel=A ClipID=NEWS0123 PrecueCondition=immediate GotoPosition=5 ClipLength=50"),
      SENDS (orva_precue4 (c, 0, clip, 0, 5, 6, 50),
             "precue Channel=A ClipID=NEWS0123 PrecueCondition=explicit_switch GotoPosition=5 ClipLength=50 "
             "LoopIn=6 Loop=off"),
      SENDS (orva_precue_clear1 (c, 1), "precue_clear Channel=B"),
      SENDS (orva_precue_activate1 (c, 1), "precue_activate Channel=B"),
      SENDS (orva_gang_precue_activate1 (c, 3), "gang_precue_activate ChannelSet{Channel=A Channel=B}"),
  });
}

TEST (Transport, TakesAndGoesLive) {
  expect_wire ({
      SENDS (orva_take1 (c, 0, ORVA_TRANSITION_DISSOLVE, 25),
             "take Channel=A TransitionType=dissolve TransitionDuration=25"),
      SENDS (orva_take2 (c, 0, ORVA_TRANSITION_CUT, 0, ORVA_FOLLOW_FOLLOW),
             "take Channel=A TransitionType=cut TransitionDuration=0 FollowSpeed=follow"),
      SENDS (orva_take2 (c, 0, 0, 1, ORVA_FOLLOW_ONE_X), // one times
             "take Channel=A TransitionType=cut TransitionDuration=1 FollowSpeed=oneX"),
      SENDS (orva_go_live1 (c, 0), "go_live Channel=A MinLatency"),
      SENDS (orva_go_live2 (c, 0, 3), "go_live Channel=A Angle=3 MinLatency"),
      SENDS (orva_go_live3 (c, 0, clip), "go_live Channel=A ClipID=NEWS0123 MinLatency"),
      SENDS (orva_go_live4 (c, 0, clip, 0x103), "go_live Channel=A ClipID=NEWS0123 Angle=3 MinLatency"),
      SENDS (orva_angle1 (c, 0, 0x100), "iso_angle Channel=A Angle=0"),
      SENDS (orva_set_out1 (c, 0, 99), "set_out_point Channel=A ClipPosition=99"),
      SENDS (orva_clear_out (c, 0), "clear_out_point Channel=A"),
      SENDS (orva_set_repeat (c, 0, ORVA_REPEAT_PINGPONG), "set_loop Channel=A Loop=pingpong"),
      SENDS (orva_set_channel_repeat (c, 0, 6), "set_loop Channel=A Loop=off"),
      SENDS (orva_unload_channel (c, 0), "unload Channel=A"),
  });
}

TEST (Transport, EditsAndMonitors) {
  expect_wire ({
      SENDS (orva_edit1 (c, 0, 1), "insert_edit Channel=A SonyEditMask=16"),
      // the second bit and one that is not there
      SENDS (orva_edit1 (c, 0, 10), "insert_edit Channel=A SonyEditMask=32"),
      SENDS (orva_gang_edit1 (c, 1, 4), "gang_insert_edit ChannelSet{Channel=A} SonyEditMask=975"),
      SENDS (orva_ee1 (c, 0, 7, 0), "ee Channel=A SonyEditMask=1023 AutoEE=true"),  // mode 0
      SENDS (orva_ee1 (c, 0, 7, 1), "ee Channel=A SonyEditMask=1023 AutoEE=false"), // mode 1
      // mode 2
      SENDS (orva_gang_ee1 (c, 1, 0, 2), "gang_ee ChannelSet{Channel=A} SonyEditMask=0 AutoEE=true"),
      SENDS (orva_edit_all_on (c, 1), "insert_edit Channel=B SonyEditMask=1023"),
      SENDS (orva_edit_all_off (c, 1), "insert_edit Channel=B SonyEditMask=0"),
      SENDS (orva_gang_edit_all_on (c, 2), "gang_insert_edit ChannelSet{Channel=B} SonyEditMask=1023"),
      SENDS (orva_gang_edit_all_off (c, 2), "gang_insert_edit ChannelSet{Channel=B} SonyEditMask=0"),
      SENDS (orva_ee_all_on (c, 1), "ee Channel=B SonyEditMask=1023 AutoEE=true"),
      SENDS (orva_ee_all_off (c, 1), "ee Channel=B SonyEditMask=0 AutoEE=true"),
      SENDS (orva_gang_ee_all_on (c, 2), "gang_ee ChannelSet{Channel=B} SonyEditMask=1023 AutoEE=true"),
      SENDS (orva_gang_ee_all_off (c, 2), "gang_ee ChannelSet{Channel=B} SonyEditMask=0 AutoEE=true"),
  });
}

} // namespace
