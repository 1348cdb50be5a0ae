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
    EXPECT_EQ (command.document, document (command.xid, row.element));
  }
  EXPECT_EQ (server.command_count (), rows.size ());
}

namespace {

const std::basic_string<orva_char> clip_text = wide ("NEWS0123");
const orva_char *const clip = clip_text.c_str ();

TEST (Transport, PlaysAndStops) {
  expect_wire ({
      {"play1", [] (uint32_t c) { return orva_cmd_play1 (c, 1); }, "<play>|<Channel>B</Channel>|</play>"},
      {"play1, the last channel", [] (uint32_t c) { return orva_cmd_play1 (c, 7); },
       "<play>|<Channel>H</Channel>|</play>"},
      {"play1, a channel that is not there", [] (uint32_t c) { return orva_cmd_play1 (c, 9); },
       "<play>|<Channel>A</Channel>|</play>"},
      {"play1, the highest number", [] (uint32_t c) { return orva_cmd_play1 (c, 0xFFFFFFFF); },
       "<play>|<Channel>A</Channel>|</play>"},
      {"play2", [] (uint32_t c) { return orva_cmd_play2 (c, 0, 1.0); },
       "<play>|<Channel>A</Channel>|<Speed>1X</Speed>|</play>"},
      {"play2, a still", [] (uint32_t c) { return orva_cmd_play2 (c, 0, 0.0); },
       "<play>|<Channel>A</Channel>|<Speed>0X</Speed>|</play>"},
      {"play2, backwards", [] (uint32_t c) { return orva_cmd_play2 (c, 2, -0.5); },
       "<play>|<Channel>C</Channel>|<Speed>-0.5X</Speed>|</play>"},
      {"play2, one step of the fraction",
       [] (uint32_t c) { return orva_cmd_play2 (c, 0, 65537.9 / 65536.0); },
       "<play>|<Channel>A</Channel>|<Speed>1.000015258789063X</Speed>|</play>"},
      {"play2, too fast", [] (uint32_t c) { return orva_cmd_play2 (c, 0, 500.0); },
       "<play>|<Channel>A</Channel>|<Speed>200X</Speed>|</play>"},
      {"play2, too fast backwards", [] (uint32_t c) { return orva_cmd_play2 (c, 0, -500.0); },
       "<play>|<Channel>A</Channel>|<Speed>-200X</Speed>|</play>"},
      {"play3", [] (uint32_t c) { return orva_cmd_play3 (c, 0, 1.5, 1); },
       "<play>|<Channel>A</Channel>|<Speed>1.5X</Speed>|<MinLatency />|</play>"},
      {"play3, latency 0", [] (uint32_t c) { return orva_cmd_play3 (c, 0, 1.5, 0); },
       "<play>|<Channel>A</Channel>|<Speed>1.5X</Speed>|</play>"},
      {"play3, latency 2", [] (uint32_t c) { return orva_cmd_play3 (c, 0, 1.5, 2); },
       "<play>|<Channel>A</Channel>|<Speed>1.5X</Speed>|</play>"},
      {"gang_play1", [] (uint32_t c) { return orva_cmd_gang_play1 (c, 0x85); },
       "<gang_play>|<ChannelSet>|<Channel>A</Channel>|<Channel>C</Channel>|<Channel>H</Channel>|</"
       "ChannelSet>|"
       "</gang_play>"},
      {"gang_play1, bits beyond the channels",
       [] (uint32_t c) { return orva_cmd_gang_play1 (c, 0xFFFFFF02); },
       "<gang_play>|<ChannelSet>|<Channel>B</Channel>|</ChannelSet>|</gang_play>"},
      {"gang_play2", [] (uint32_t c) { return orva_cmd_gang_play2 (c, 1, 2.0); },
       "<gang_play>|<ChannelSet>|<Channel>A</Channel>|</ChannelSet>|<Speed>2X</Speed>|</gang_play>"},
      {"gang_play3", [] (uint32_t c) { return orva_cmd_gang_play3 (c, 1, 2.0, 1); },
       "<gang_play>|<ChannelSet>|<Channel>A</Channel>|</ChannelSet>|<Speed>2X</Speed>|<MinLatency />|"
       "</gang_play>"},
      {"stop1", [] (uint32_t c) { return orva_cmd_stop1 (c, 0); }, "<stop>|<Channel>A</Channel>|</stop>"},
      {"stop2", [] (uint32_t c) { return orva_cmd_stop2 (c, 3, 1); },
       "<stop>|<Channel>D</Channel>|<MinLatency />|</stop>"},
      {"stop2, latency 3", [] (uint32_t c) { return orva_cmd_stop2 (c, 8, 3); },
       "<stop>|<Channel>A</Channel>|</stop>"},
      {"gang_stop1, nobody", [] (uint32_t c) { return orva_cmd_gang_stop1 (c, 0); },
       "<gang_stop>|<ChannelSet />|</gang_stop>"},
      {"gang_stop2", [] (uint32_t c) { return orva_cmd_gang_stop2 (c, 2, 1); },
       "<gang_stop>|<ChannelSet>|<Channel>B</Channel>|</ChannelSet>|<MinLatency />|</gang_stop>"},
      {"gang_stop2, latency 0", [] (uint32_t c) { return orva_cmd_gang_stop2 (c, 0x100, 0); },
       "<gang_stop>|<ChannelSet />|</gang_stop>"},
  });
}

TEST (Transport, JogsAndGoes) {
  expect_wire ({
      {"jog1", [] (uint32_t c) { return orva_jog1 (c, 4, -25); },
       "<jog>|<Channel>E</Channel>|<JogDistance>-25</JogDistance>|</jog>"},
      {"jog1, the farthest back", [] (uint32_t c) { return orva_jog1 (c, 0, INT32_MIN); },
       "<jog>|<Channel>A</Channel>|<JogDistance>-2147483648</JogDistance>|</jog>"},
      {"jog2", [] (uint32_t c) { return orva_jog2 (c, 0, 1, 1); },
       "<jog>|<Channel>A</Channel>|<JogDistance>1</JogDistance>|<MinLatency />|</jog>"},
      {"jog2, latency 0", [] (uint32_t c) { return orva_jog2 (c, 0, 0, 0); },
       "<jog>|<Channel>A</Channel>|<JogDistance>0</JogDistance>|</jog>"},
      {"gang_jog1", [] (uint32_t c) { return orva_gang_jog1 (c, 0x20, 50); },
       "<gang_jog>|<ChannelSet>|<Channel>F</Channel>|</ChannelSet>|<JogDistance>50</JogDistance>|</"
       "gang_jog>"},
      {"gang_jog2", [] (uint32_t c) { return orva_gang_jog2 (c, 0x40, -50, 1); },
       "<gang_jog>|<ChannelSet>|<Channel>G</Channel>|</ChannelSet>|<JogDistance>-50</JogDistance>|"
       "<MinLatency />|</gang_jog>"},
      {"goto1", [] (uint32_t c) { return orva_goto1 (c, 0, 100); },
       "<gotocmd>|<Channel>A</Channel>|<GotoPosition>100</GotoPosition>|</gotocmd>"},
      {"goto1, the farthest", [] (uint32_t c) { return orva_goto1 (c, 8, 0xFFFFFFFF); },
       "<gotocmd>|<Channel>A</Channel>|<GotoPosition>4294967295</GotoPosition>|</gotocmd>"},
      {"goto2", [] (uint32_t c) { return orva_goto2 (c, 1, 0, 1); },
       "<gotocmd>|<Channel>B</Channel>|<GotoPosition>0</GotoPosition>|<MinLatency />|</gotocmd>"},
      {"gang_goto1", [] (uint32_t c) { return orva_gang_goto1 (c, 1, 7); },
       "<gang_gotocmd>|<ChannelSet>|<Channel>A</Channel>|</ChannelSet>|<GotoPosition>7</GotoPosition>|"
       "</gang_gotocmd>"},
      {"gang_goto2", [] (uint32_t c) { return orva_gang_goto2 (c, 1, 7, 1); },
       "<gang_gotocmd>|<ChannelSet>|<Channel>A</Channel>|</ChannelSet>|<GotoPosition>7</GotoPosition>|"
       "<MinLatency />|</gang_gotocmd>"},
  });
}

TEST (Transport, LoadsClips) {
  expect_wire ({
      {"loadclip1", [] (uint32_t c) { return orva_cmd_loadclip1 (c, 0, clip); },
       "<cue_clip>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|</cue_clip>"},
      {"loadclip1, an empty name", [] (uint32_t c) { return orva_cmd_loadclip1 (c, 0, wide ("").c_str ()); },
       "<cue_clip>|<Channel>A</Channel>|<ClipID />|</cue_clip>"},
      {"loadclip1, a name to be escaped",
       [] (uint32_t c) { return orva_cmd_loadclip1 (c, 0, wide ("a<b & c").c_str ()); },
       "<cue_clip>|<Channel>A</Channel>|<ClipID>a&lt;b &amp; c</ClipID>|</cue_clip>"},
      {"loadclip1, a name beyond ASCII",
       [] (uint32_t c) {
         const orva_char units[] = {0xE9, 0x20AC, 0xD834, 0xDD1E, 0};
         return orva_cmd_loadclip1 (c, 0, units);
       },
       "<cue_clip>|<Channel>A</Channel>|<ClipID>\xC3\xA9\xE2\x82\xAC\xF0\x9D\x84\x9E</ClipID>|</cue_clip>"},
      {"loadclip1, half of a pair ends the name",
       [] (uint32_t c) {
         const orva_char units[] = {'a', 0xDD1E, 'b', 0};
         return orva_cmd_loadclip1 (c, 0, units);
       },
       "<cue_clip>|<Channel>A</Channel>|<ClipID>a</ClipID>|</cue_clip>"},
      {"loadclip2", [] (uint32_t c) { return orva_cmd_loadclip2 (c, 0, clip, ORVA_REPEAT_PINGPONG_TO); },
       "<cue_clip>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|<Loop>pingpongto</Loop>|</cue_clip>"},
      {"loadclip2, an unknown repeat", [] (uint32_t c) { return orva_cmd_loadclip2 (c, 0, clip, 5); },
       "<cue_clip>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|<Loop>off</Loop>|</cue_clip>"},
      {"loadclip3", [] (uint32_t c) { return orva_cmd_loadclip3 (c, 0, clip, ORVA_REPEAT_LOOP, 10); },
       "<cue_clip>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|<Loop>loop</Loop>|"
       "<GotoPosition>10</GotoPosition>|</cue_clip>"},
      {"loadclip4",
       [] (uint32_t c) { return orva_cmd_loadclip4 (c, 0, clip, ORVA_REPEAT_LOOP_TO, 10, 20, 30); },
       "<cue_clip>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|<Loop>loopto</Loop>|"
       "<GotoPosition>10</GotoPosition>|<ClipPosition>30</ClipPosition>|<LoopIn>20</LoopIn>|</cue_clip>"},
      {"loadclip4, zeros are sent", [] (uint32_t c) { return orva_cmd_loadclip4 (c, 0, clip, 0, 0, 0, 0); },
       "<cue_clip>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|<Loop>off</Loop>|"
       "<GotoPosition>0</GotoPosition>|<ClipPosition>0</ClipPosition>|<LoopIn>0</LoopIn>|</cue_clip>"},
      {"loadclip5", [] (uint32_t c) { return orva_cmd_loadclip5 (c, 0, clip, 2); },
       "<cue_clip>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|<Angle>2</Angle>|</cue_clip>"},
      {"loadclip5, the low bits of an angle",
       [] (uint32_t c) { return orva_cmd_loadclip5 (c, 0, clip, 0x1FF); },
       "<cue_clip>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|<Angle>255</Angle>|</cue_clip>"},
      {"loadclip6", [] (uint32_t c) { return orva_cmd_loadclip6 (c, 0, clip, 2, 10); },
       "<cue_clip>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|<GotoPosition>10</GotoPosition>|"
       "<Angle>2</Angle>|</cue_clip>"},
      {"loadclip7", [] (uint32_t c) { return orva_cmd_loadclip7 (c, 0, clip, 2, 10, 20); },
       "<cue_clip>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|<GotoPosition>10</GotoPosition>|"
       "<ClipPosition>20</ClipPosition>|<Angle>2</Angle>|</cue_clip>"},
  });
}

TEST (Transport, Precues) {
  expect_wire ({
      {"precue1", [] (uint32_t c) { return orva_precue1 (c, 0, clip, ORVA_PRECUE_END_OF_CLIP); },
       "<precue>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|"
       "<PrecueCondition>end_of_clip</PrecueCondition>|</precue>"},
      {"precue1, an unknown condition", [] (uint32_t c) { return orva_precue1 (c, 0, clip, 4); },
       "<precue>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|"
       "<PrecueCondition>explicit_switch</PrecueCondition>|</precue>"},
      {"precue2", [] (uint32_t c) { return orva_precue2 (c, 0, clip, ORVA_PRECUE_PREVIOUS_STOPS, 5); },
       "<precue>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|"
       "<PrecueCondition>previous_stops</PrecueCondition>|<GotoPosition>5</GotoPosition>|</precue>"},
      {"precue3", [] (uint32_t c) { return orva_precue3 (c, 0, clip, ORVA_PRECUE_IMMEDIATE, 5, 50); },
       "<precue>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|"
       "<PrecueCondition>immediate</PrecueCondition>|<GotoPosition>5</GotoPosition>|"
       "<ClipLength>50</ClipLength>|</precue>"},
      {"precue4", [] (uint32_t c) { return orva_precue4 (c, 0, clip, 0, 5, 6, 50); },
       "<precue>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|"
       "<PrecueCondition>explicit_switch</PrecueCondition>|<GotoPosition>5</GotoPosition>|"
       "<ClipLength>50</ClipLength>|<LoopIn>6</LoopIn>|<Loop>off</Loop>|</precue>"},
      {"precue_clear1", [] (uint32_t c) { return orva_precue_clear1 (c, 1); },
       "<precue_clear>|<Channel>B</Channel>|</precue_clear>"},
      {"precue_activate1", [] (uint32_t c) { return orva_precue_activate1 (c, 1); },
       "<precue_activate>|<Channel>B</Channel>|</precue_activate>"},
      {"gang_precue_activate1", [] (uint32_t c) { return orva_gang_precue_activate1 (c, 3); },
       "<gang_precue_activate>|<ChannelSet>|<Channel>A</Channel>|<Channel>B</Channel>|</ChannelSet>|"
       "</gang_precue_activate>"},
  });
}

TEST (Transport, TakesAndGoesLive) {
  expect_wire ({
      {"take1", [] (uint32_t c) { return orva_take1 (c, 0, ORVA_TRANSITION_DISSOLVE, 25); },
       "<take>|<Channel>A</Channel>|<TransitionType>dissolve</TransitionType>|"
       "<TransitionDuration>25</TransitionDuration>|</take>"},
      {"take2", [] (uint32_t c) { return orva_take2 (c, 0, ORVA_TRANSITION_CUT, 0, ORVA_FOLLOW_FOLLOW); },
       "<take>|<Channel>A</Channel>|<TransitionType>cut</TransitionType>|"
       "<TransitionDuration>0</TransitionDuration>|<FollowSpeed>follow</FollowSpeed>|</take>"},
      {"take2, one times", [] (uint32_t c) { return orva_take2 (c, 0, 0, 1, ORVA_FOLLOW_ONE_X); },
       "<take>|<Channel>A</Channel>|<TransitionType>cut</TransitionType>|"
       "<TransitionDuration>1</TransitionDuration>|<FollowSpeed>oneX</FollowSpeed>|</take>"},
      {"go_live1", [] (uint32_t c) { return orva_go_live1 (c, 0); },
       "<go_live>|<Channel>A</Channel>|<MinLatency />|</go_live>"},
      {"go_live2", [] (uint32_t c) { return orva_go_live2 (c, 0, 3); },
       "<go_live>|<Channel>A</Channel>|<Angle>3</Angle>|<MinLatency />|</go_live>"},
      {"go_live3", [] (uint32_t c) { return orva_go_live3 (c, 0, clip); },
       "<go_live>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|<MinLatency />|</go_live>"},
      {"go_live4", [] (uint32_t c) { return orva_go_live4 (c, 0, clip, 0x103); },
       "<go_live>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|<Angle>3</Angle>|<MinLatency />|</go_live>"},
      {"angle1", [] (uint32_t c) { return orva_angle1 (c, 0, 0x100); },
       "<iso_angle>|<Channel>A</Channel>|<Angle>0</Angle>|</iso_angle>"},
      {"set_out1", [] (uint32_t c) { return orva_set_out1 (c, 0, 99); },
       "<set_out_point>|<Channel>A</Channel>|<ClipPosition>99</ClipPosition>|</set_out_point>"},
      {"clear_out", [] (uint32_t c) { return orva_clear_out (c, 0); },
       "<clear_out_point>|<Channel>A</Channel>|</clear_out_point>"},
      {"set_repeat", [] (uint32_t c) { return orva_set_repeat (c, 0, ORVA_REPEAT_PINGPONG); },
       "<set_loop>|<Channel>A</Channel>|<Loop>pingpong</Loop>|</set_loop>"},
      {"set_channel_repeat", [] (uint32_t c) { return orva_set_channel_repeat (c, 0, 6); },
       "<set_loop>|<Channel>A</Channel>|<Loop>off</Loop>|</set_loop>"},
      {"unload_channel", [] (uint32_t c) { return orva_unload_channel (c, 0); },
       "<unload>|<Channel>A</Channel>|</unload>"},
  });
}

TEST (Transport, EditsAndMonitors) {
  expect_wire ({
      {"edit1", [] (uint32_t c) { return orva_edit1 (c, 0, 1); },
       "<insert_edit>|<Channel>A</Channel>|<SonyEditMask>16</SonyEditMask>|</insert_edit>"},
      {"edit1, the second bit and one that is not there", [] (uint32_t c) { return orva_edit1 (c, 0, 10); },
       "<insert_edit>|<Channel>A</Channel>|<SonyEditMask>32</SonyEditMask>|</insert_edit>"},
      {"gang_edit1", [] (uint32_t c) { return orva_gang_edit1 (c, 1, 4); },
       "<gang_insert_edit>|<ChannelSet>|<Channel>A</Channel>|</ChannelSet>|<SonyEditMask>975</SonyEditMask>|"
       "</gang_insert_edit>"},
      {"ee1, mode 0", [] (uint32_t c) { return orva_ee1 (c, 0, 7, 0); },
       "<ee>|<Channel>A</Channel>|<SonyEditMask>1023</SonyEditMask>|<AutoEE>true</AutoEE>|</ee>"},
      {"ee1, mode 1", [] (uint32_t c) { return orva_ee1 (c, 0, 7, 1); },
       "<ee>|<Channel>A</Channel>|<SonyEditMask>1023</SonyEditMask>|<AutoEE>false</AutoEE>|</ee>"},
      {"gang_ee1, mode 2", [] (uint32_t c) { return orva_gang_ee1 (c, 1, 0, 2); },
       "<gang_ee>|<ChannelSet>|<Channel>A</Channel>|</ChannelSet>|<SonyEditMask>0</SonyEditMask>|"
       "<AutoEE>true</AutoEE>|</gang_ee>"},
      {"edit_all_on", [] (uint32_t c) { return orva_edit_all_on (c, 1); },
       "<insert_edit>|<Channel>B</Channel>|<SonyEditMask>1023</SonyEditMask>|</insert_edit>"},
      {"edit_all_off", [] (uint32_t c) { return orva_edit_all_off (c, 1); },
       "<insert_edit>|<Channel>B</Channel>|<SonyEditMask>0</SonyEditMask>|</insert_edit>"},
      {"gang_edit_all_on", [] (uint32_t c) { return orva_gang_edit_all_on (c, 2); },
       "<gang_insert_edit>|<ChannelSet>|<Channel>B</Channel>|</ChannelSet>|<SonyEditMask>1023</SonyEditMask>|"
       "</gang_insert_edit>"},
      {"gang_edit_all_off", [] (uint32_t c) { return orva_gang_edit_all_off (c, 2); },
       "<gang_insert_edit>|<ChannelSet>|<Channel>B</Channel>|</ChannelSet>|<SonyEditMask>0</SonyEditMask>|"
       "</gang_insert_edit>"},
      {"ee_all_on", [] (uint32_t c) { return orva_ee_all_on (c, 1); },
       "<ee>|<Channel>B</Channel>|<SonyEditMask>1023</SonyEditMask>|<AutoEE>true</AutoEE>|</ee>"},
      {"ee_all_off", [] (uint32_t c) { return orva_ee_all_off (c, 1); },
       "<ee>|<Channel>B</Channel>|<SonyEditMask>0</SonyEditMask>|<AutoEE>true</AutoEE>|</ee>"},
      {"gang_ee_all_on", [] (uint32_t c) { return orva_gang_ee_all_on (c, 2); },
       "<gang_ee>|<ChannelSet>|<Channel>B</Channel>|</ChannelSet>|<SonyEditMask>1023</SonyEditMask>|"
       "<AutoEE>true</AutoEE>|</gang_ee>"},
      {"gang_ee_all_off", [] (uint32_t c) { return orva_gang_ee_all_off (c, 2); },
       "<gang_ee>|<ChannelSet>|<Channel>B</Channel>|</ChannelSet>|<SonyEditMask>0</SonyEditMask>|"
       "<AutoEE>true</AutoEE>|</gang_ee>"},
  });
}

} // namespace
