// What arguments outside their ranges become on the wire, in every command that takes such an argument. A
// mark of
// '$' in an expected element stands for what the argument is written as.
#include "exports/session.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace {

const std::basic_string<orva_char> clip_text = wide ("NEWS0123");
const orva_char *const clip = clip_text.c_str ();

template <class Value>
struct Given {
  Value value;
  const char *written; ///< in place of the mark
};

template <class Value>
struct Taker {
  const char *what;
  uint32_t (*call) (uint32_t connection, Value value);
  const char *element; ///< '|' stands for CR LF
};

/// What all of them have in common: a wrong number of a connection gives code 3, the server's refusal arrives
/// with its text, and nobody waits who does not want to.
template <class Value>
void expect_manners (const std::vector<Taker<Value>> &commands, Value value) {
  support::FakeServer server;
  server.answer_any ("<error><ErrorMessage>Not now</ErrorMessage><ErrorCode>general</ErrorCode></error>");
  const Session session (server);
  for (const Taker<Value> &taker : commands) {
    SCOPED_TRACE (taker.what);
    EXPECT_EQ (taker.call (0, value), ORVA_INVALID_HANDLE);
    EXPECT_EQ (last_error (), "Invalid handle");
    EXPECT_EQ (taker.call (session, value), ORVA_ERROR);
    EXPECT_EQ (last_error (), "Not now");
  }
  server.silent (true);
  orva_synchronous (session, 1);
  for (const Taker<Value> &taker : commands)
    EXPECT_EQ (taker.call (session, value), ORVA_OK) << taker.what;
  EXPECT_TRUE (server.wait_for_commands (2 * commands.size ()));
  EXPECT_EQ (server.command_count (), 2 * commands.size ());
  server.drop ();
  orva_sync (session);
}

/// Gives each command each value and compares what arrives, byte by byte.
template <class Value>
void expect_written (const std::vector<Given<Value>> &values, const std::vector<Taker<Value>> &commands) {
  support::FakeServer server;
  server.answer_any ("<ok />");
  const Session session (server);
  size_t sent = 0;
  for (const Taker<Value> &taker : commands)
    for (const Given<Value> &given : values) {
      SCOPED_TRACE (std::string (taker.what) + ", " + std::to_string (given.value));
      EXPECT_EQ (taker.call (session, given.value), ORVA_OK);
      std::string element = taker.element;
      if (const size_t mark = element.find ('$'); mark != std::string::npos)
        element.replace (mark, 1, given.written);
      const support::Command command = server.command (++sent);
      EXPECT_EQ (command.document, document (command.xid, element));
    }
  EXPECT_EQ (server.command_count (), values.size () * commands.size ());
  expect_manners (commands, values.front ().value);
}

constexpr uint32_t highest = 0xFFFFFFFF;

TEST (OutOfRange, ChannelsThatDoNotExistAreTheFirst) {
  expect_written<uint32_t> (
      {{7, "H"}, {8, "A"}, {0x101, "A"}, {highest, "A"}},
      {
          {"play1", [] (uint32_t c, uint32_t v) { return orva_cmd_play1 (c, v); },
           "<play>|<Channel>$</Channel>|</play>"},
          {"play2", [] (uint32_t c, uint32_t v) { return orva_cmd_play2 (c, v, 1.0); },
           "<play>|<Channel>$</Channel>|<Speed>1X</Speed>|</play>"},
          {"play3", [] (uint32_t c, uint32_t v) { return orva_cmd_play3 (c, v, 1.0, 1); },
           "<play>|<Channel>$</Channel>|<Speed>1X</Speed>|<MinLatency />|</play>"},
          {"stop1", [] (uint32_t c, uint32_t v) { return orva_cmd_stop1 (c, v); },
           "<stop>|<Channel>$</Channel>|</stop>"},
          {"stop2", [] (uint32_t c, uint32_t v) { return orva_cmd_stop2 (c, v, 1); },
           "<stop>|<Channel>$</Channel>|<MinLatency />|</stop>"},
          {"jog1", [] (uint32_t c, uint32_t v) { return orva_jog1 (c, v, -5); },
           "<jog>|<Channel>$</Channel>|<JogDistance>-5</JogDistance>|</jog>"},
          {"jog2", [] (uint32_t c, uint32_t v) { return orva_jog2 (c, v, 5, 1); },
           "<jog>|<Channel>$</Channel>|<JogDistance>5</JogDistance>|<MinLatency />|</jog>"},
          {"goto1", [] (uint32_t c, uint32_t v) { return orva_goto1 (c, v, 5); },
           "<gotocmd>|<Channel>$</Channel>|<GotoPosition>5</GotoPosition>|</gotocmd>"},
          {"goto2", [] (uint32_t c, uint32_t v) { return orva_goto2 (c, v, 5, 1); },
           "<gotocmd>|<Channel>$</Channel>|<GotoPosition>5</GotoPosition>|<MinLatency />|</gotocmd>"},
          {"loadclip1", [] (uint32_t c, uint32_t v) { return orva_cmd_loadclip1 (c, v, clip); },
           "<cue_clip>|<Channel>$</Channel>|<ClipID>NEWS0123</ClipID>|</cue_clip>"},
          {"loadclip2", [] (uint32_t c, uint32_t v) { return orva_cmd_loadclip2 (c, v, clip, 1); },
           "<cue_clip>|<Channel>$</Channel>|<ClipID>NEWS0123</ClipID>|<Loop>loop</Loop>|</cue_clip>"},
          {"loadclip3", [] (uint32_t c, uint32_t v) { return orva_cmd_loadclip3 (c, v, clip, 1, 5); },
           "<cue_clip>|<Channel>$</Channel>|<ClipID>NEWS0123</ClipID>|<Loop>loop</Loop>|<GotoPosition>5</"
           "GotoPosition>|</cue_clip>"},
          {"loadclip4", [] (uint32_t c, uint32_t v) { return orva_cmd_loadclip4 (c, v, clip, 1, 5, 6, 7); },
           "<cue_clip>|<Channel>$</Channel>|<ClipID>NEWS0123</ClipID>|<Loop>loop</Loop>|<GotoPosition>5</"
           "GotoPosition>|<ClipPosition>7</ClipPosition>|<LoopIn>6</LoopIn>|</cue_clip>"},
          {"loadclip5", [] (uint32_t c, uint32_t v) { return orva_cmd_loadclip5 (c, v, clip, 2); },
           "<cue_clip>|<Channel>$</Channel>|<ClipID>NEWS0123</ClipID>|<Angle>2</Angle>|</cue_clip>"},
          {"loadclip6", [] (uint32_t c, uint32_t v) { return orva_cmd_loadclip6 (c, v, clip, 2, 5); },
           "<cue_clip>|<Channel>$</Channel>|<ClipID>NEWS0123</ClipID>|<GotoPosition>5</"
           "GotoPosition>|<Angle>2</Angle>|</cue_clip>"},
          {"loadclip7", [] (uint32_t c, uint32_t v) { return orva_cmd_loadclip7 (c, v, clip, 2, 5, 7); },
           "<cue_clip>|<Channel>$</Channel>|<ClipID>NEWS0123</ClipID>|<GotoPosition>5</"
           "GotoPosition>|<ClipPosition>7</ClipPosition>|<Angle>2</Angle>|</cue_clip>"},
          {"load_vclip1", [] (uint32_t c, uint32_t v) { return orva_cmd_load_vclip1 (c, v, clip); },
           "<cue_clip>|<Channel>$</Channel>|<ClipID>NEWS0123</ClipID>|<ClipScope>vclip</ClipScope>|</"
           "cue_clip>"},
          {"load_vclip2", [] (uint32_t c, uint32_t v) { return orva_cmd_load_vclip2 (c, v, clip, 1); },
           "<cue_clip>|<Channel>$</Channel>|<ClipID>NEWS0123</ClipID>|<Loop>loop</Loop>|<ClipScope>vclip</"
           "ClipScope>|</cue_clip>"},
          {"load_vclip3", [] (uint32_t c, uint32_t v) { return orva_cmd_load_vclip3 (c, v, clip, 1, 5); },
           "<cue_clip>|<Channel>$</Channel>|<ClipID>NEWS0123</ClipID>|<Loop>loop</Loop>|<GotoPosition>5</"
           "GotoPosition>|<ClipScope>vclip</ClipScope>|</cue_clip>"},
          {"precue1", [] (uint32_t c, uint32_t v) { return orva_precue1 (c, v, clip, 1); },
           "<precue>|<Channel>$</Channel>|<ClipID>NEWS0123</ClipID>|<PrecueCondition>previous_stops</"
           "PrecueCondition>|</precue>"},
          {"precue2", [] (uint32_t c, uint32_t v) { return orva_precue2 (c, v, clip, 1, 5); },
           "<precue>|<Channel>$</Channel>|<ClipID>NEWS0123</ClipID>|<PrecueCondition>previous_stops</"
           "PrecueCondition>|<GotoPosition>5</GotoPosition>|</precue>"},
          {"precue3", [] (uint32_t c, uint32_t v) { return orva_precue3 (c, v, clip, 1, 5, 9); },
           "<precue>|<Channel>$</Channel>|<ClipID>NEWS0123</ClipID>|<PrecueCondition>previous_stops</"
           "PrecueCondition>|<GotoPosition>5</GotoPosition>|<ClipLength>9</ClipLength>|</precue>"},
          {"precue4", [] (uint32_t c, uint32_t v) { return orva_precue4 (c, v, clip, 1, 5, 6, 9); },
           "<precue>|<Channel>$</Channel>|<ClipID>NEWS0123</ClipID>|<PrecueCondition>previous_stops</"
           "PrecueCondition>|<GotoPosition>5</GotoPosition>|<ClipLength>9</ClipLength>|<LoopIn>6</"
           "LoopIn>|<Loop>off</Loop>|</precue>"},
          {"precue_clear1", [] (uint32_t c, uint32_t v) { return orva_precue_clear1 (c, v); },
           "<precue_clear>|<Channel>$</Channel>|</precue_clear>"},
          {"precue_activate1", [] (uint32_t c, uint32_t v) { return orva_precue_activate1 (c, v); },
           "<precue_activate>|<Channel>$</Channel>|</precue_activate>"},
          {"take1", [] (uint32_t c, uint32_t v) { return orva_take1 (c, v, 1, 9); },
           "<take>|<Channel>$</Channel>|<TransitionType>dissolve</TransitionType>|<TransitionDuration>9</"
           "TransitionDuration>|</take>"},
          {"take2", [] (uint32_t c, uint32_t v) { return orva_take2 (c, v, 1, 9, 1); },
           "<take>|<Channel>$</Channel>|<TransitionType>dissolve</TransitionType>|<TransitionDuration>9</"
           "TransitionDuration>|<FollowSpeed>smart</FollowSpeed>|</take>"},
          {"go_live1", [] (uint32_t c, uint32_t v) { return orva_go_live1 (c, v); },
           "<go_live>|<Channel>$</Channel>|<MinLatency />|</go_live>"},
          {"go_live2", [] (uint32_t c, uint32_t v) { return orva_go_live2 (c, v, 2); },
           "<go_live>|<Channel>$</Channel>|<Angle>2</Angle>|<MinLatency />|</go_live>"},
          {"go_live3", [] (uint32_t c, uint32_t v) { return orva_go_live3 (c, v, clip); },
           "<go_live>|<Channel>$</Channel>|<ClipID>NEWS0123</ClipID>|<MinLatency />|</go_live>"},
          {"go_live4", [] (uint32_t c, uint32_t v) { return orva_go_live4 (c, v, clip, 2); },
           "<go_live>|<Channel>$</Channel>|<ClipID>NEWS0123</ClipID>|<Angle>2</Angle>|<MinLatency "
           "/>|</go_live>"},
          {"angle1", [] (uint32_t c, uint32_t v) { return orva_angle1 (c, v, 2); },
           "<iso_angle>|<Channel>$</Channel>|<Angle>2</Angle>|</iso_angle>"},
          {"set_out1", [] (uint32_t c, uint32_t v) { return orva_set_out1 (c, v, 5); },
           "<set_out_point>|<Channel>$</Channel>|<ClipPosition>5</ClipPosition>|</set_out_point>"},
          {"clear_out", [] (uint32_t c, uint32_t v) { return orva_clear_out (c, v); },
           "<clear_out_point>|<Channel>$</Channel>|</clear_out_point>"},
          {"set_repeat", [] (uint32_t c, uint32_t v) { return orva_set_repeat (c, v, 1); },
           "<set_loop>|<Channel>$</Channel>|<Loop>loop</Loop>|</set_loop>"},
          {"set_channel_repeat", [] (uint32_t c, uint32_t v) { return orva_set_channel_repeat (c, v, 1); },
           "<set_loop>|<Channel>$</Channel>|<Loop>loop</Loop>|</set_loop>"},
          {"unload_channel", [] (uint32_t c, uint32_t v) { return orva_unload_channel (c, v); },
           "<unload>|<Channel>$</Channel>|</unload>"},
          {"edit1", [] (uint32_t c, uint32_t v) { return orva_edit1 (c, v, 1); },
           "<insert_edit>|<Channel>$</Channel>|<SonyEditMask>16</SonyEditMask>|</insert_edit>"},
          {"ee1", [] (uint32_t c, uint32_t v) { return orva_ee1 (c, v, 1, 1); },
           "<ee>|<Channel>$</Channel>|<SonyEditMask>16</SonyEditMask>|<AutoEE>false</AutoEE>|</ee>"},
          {"edit_all_on", [] (uint32_t c, uint32_t v) { return orva_edit_all_on (c, v); },
           "<insert_edit>|<Channel>$</Channel>|<SonyEditMask>1023</SonyEditMask>|</insert_edit>"},
          {"edit_all_off", [] (uint32_t c, uint32_t v) { return orva_edit_all_off (c, v); },
           "<insert_edit>|<Channel>$</Channel>|<SonyEditMask>0</SonyEditMask>|</insert_edit>"},
          {"ee_all_on", [] (uint32_t c, uint32_t v) { return orva_ee_all_on (c, v); },
           "<ee>|<Channel>$</Channel>|<SonyEditMask>1023</SonyEditMask>|<AutoEE>true</AutoEE>|</ee>"},
          {"ee_all_off", [] (uint32_t c, uint32_t v) { return orva_ee_all_off (c, v); },
           "<ee>|<Channel>$</Channel>|<SonyEditMask>0</SonyEditMask>|<AutoEE>true</AutoEE>|</ee>"},
          {"playlist_play_now", [] (uint32_t c, uint32_t v) { return orva_cmd_playlist_play_now (c, v, 3); },
           "<list_play_now>|<Channel>$</Channel>|<ListIndex>3</ListIndex>|<Roll>roll</Roll>|</"
           "list_play_now>"},
          {"playlist_play_next",
           [] (uint32_t c, uint32_t v) { return orva_cmd_playlist_play_next (c, v, 3); },
           "<list_play_next>|<Channel>$</Channel>|<ListIndex>3</ListIndex>|<Roll>roll</Roll>|</"
           "list_play_next>"},
          {"playlist_cue_now", [] (uint32_t c, uint32_t v) { return orva_cmd_playlist_cue_now (c, v, 3); },
           "<list_play_now>|<Channel>$</Channel>|<ListIndex>3</ListIndex>|<Roll>cueonly</Roll>|</"
           "list_play_now>"},
          {"playlist_cue_next", [] (uint32_t c, uint32_t v) { return orva_cmd_playlist_cue_next (c, v, 3); },
           "<list_play_next>|<Channel>$</Channel>|<ListIndex>3</ListIndex>|<Roll>cueonly</Roll>|</"
           "list_play_next>"},
          {"playlist_cue_list", [] (uint32_t c, uint32_t v) { return orva_cmd_playlist_cue_list (c, v); },
           "<list_play_now>|<Channel>$</Channel>|<ListIndex>0</ListIndex>|<Roll>cueonly</Roll>|</"
           "list_play_now>"},
      });
}

TEST (OutOfRange, BitsOfAGangBeyondTheEighthAreIgnored) {
  expect_written<uint32_t> (
      {{0, "<ChannelSet />|"},
       {0xFFFFFF00, "<ChannelSet />|"},
       {0x181, "<ChannelSet>|<Channel>A</Channel>|<Channel>H</Channel>|</ChannelSet>|"},
       {highest, "<ChannelSet>|<Channel>A</Channel>|<Channel>B</Channel>|<Channel>C</Channel>|<Channel>D</"
                 "Channel>|<Channel>E</Channel>|<Channel>F</Channel>|<Channel>G</Channel>|<Channel>H</"
                 "Channel>|</ChannelSet>|"}},
      {
          {"gang_play1", [] (uint32_t c, uint32_t v) { return orva_cmd_gang_play1 (c, v); },
           "<gang_play>|$</gang_play>"},
          {"gang_play2", [] (uint32_t c, uint32_t v) { return orva_cmd_gang_play2 (c, v, 1.0); },
           "<gang_play>|$<Speed>1X</Speed>|</gang_play>"},
          {"gang_play3", [] (uint32_t c, uint32_t v) { return orva_cmd_gang_play3 (c, v, 1.0, 1); },
           "<gang_play>|$<Speed>1X</Speed>|<MinLatency />|</gang_play>"},
          {"gang_stop1", [] (uint32_t c, uint32_t v) { return orva_cmd_gang_stop1 (c, v); },
           "<gang_stop>|$</gang_stop>"},
          {"gang_stop2", [] (uint32_t c, uint32_t v) { return orva_cmd_gang_stop2 (c, v, 1); },
           "<gang_stop>|$<MinLatency />|</gang_stop>"},
          {"gang_jog1", [] (uint32_t c, uint32_t v) { return orva_gang_jog1 (c, v, -5); },
           "<gang_jog>|$<JogDistance>-5</JogDistance>|</gang_jog>"},
          {"gang_jog2", [] (uint32_t c, uint32_t v) { return orva_gang_jog2 (c, v, 5, 1); },
           "<gang_jog>|$<JogDistance>5</JogDistance>|<MinLatency />|</gang_jog>"},
          {"gang_goto1", [] (uint32_t c, uint32_t v) { return orva_gang_goto1 (c, v, 5); },
           "<gang_gotocmd>|$<GotoPosition>5</GotoPosition>|</gang_gotocmd>"},
          {"gang_goto2", [] (uint32_t c, uint32_t v) { return orva_gang_goto2 (c, v, 5, 1); },
           "<gang_gotocmd>|$<GotoPosition>5</GotoPosition>|<MinLatency />|</gang_gotocmd>"},
          {"gang_precue_activate1", [] (uint32_t c, uint32_t v) { return orva_gang_precue_activate1 (c, v); },
           "<gang_precue_activate>|$</gang_precue_activate>"},
          {"gang_edit1", [] (uint32_t c, uint32_t v) { return orva_gang_edit1 (c, v, 1); },
           "<gang_insert_edit>|$<SonyEditMask>16</SonyEditMask>|</gang_insert_edit>"},
          {"gang_ee1", [] (uint32_t c, uint32_t v) { return orva_gang_ee1 (c, v, 1, 1); },
           "<gang_ee>|$<SonyEditMask>16</SonyEditMask>|<AutoEE>false</AutoEE>|</gang_ee>"},
          {"gang_edit_all_on", [] (uint32_t c, uint32_t v) { return orva_gang_edit_all_on (c, v); },
           "<gang_insert_edit>|$<SonyEditMask>1023</SonyEditMask>|</gang_insert_edit>"},
          {"gang_edit_all_off", [] (uint32_t c, uint32_t v) { return orva_gang_edit_all_off (c, v); },
           "<gang_insert_edit>|$<SonyEditMask>0</SonyEditMask>|</gang_insert_edit>"},
          {"gang_ee_all_on", [] (uint32_t c, uint32_t v) { return orva_gang_ee_all_on (c, v); },
           "<gang_ee>|$<SonyEditMask>1023</SonyEditMask>|<AutoEE>true</AutoEE>|</gang_ee>"},
          {"gang_ee_all_off", [] (uint32_t c, uint32_t v) { return orva_gang_ee_all_off (c, v); },
           "<gang_ee>|$<SonyEditMask>0</SonyEditMask>|<AutoEE>true</AutoEE>|</gang_ee>"},
      });
}

TEST (OutOfRange, OnlyALatencyOfOneIsSent) {
  expect_written<uint32_t> (
      {{0, ""}, {1, "<MinLatency />|"}, {2, ""}, {0x101, ""}, {highest, ""}},
      {
          {"play3", [] (uint32_t c, uint32_t v) { return orva_cmd_play3 (c, 1, 1.0, v); },
           "<play>|<Channel>B</Channel>|<Speed>1X</Speed>|$</play>"},
          {"gang_play3", [] (uint32_t c, uint32_t v) { return orva_cmd_gang_play3 (c, 2, 1.0, v); },
           "<gang_play>|<ChannelSet>|<Channel>B</Channel>|</ChannelSet>|<Speed>1X</Speed>|$</gang_play>"},
          {"stop2", [] (uint32_t c, uint32_t v) { return orva_cmd_stop2 (c, 1, v); },
           "<stop>|<Channel>B</Channel>|$</stop>"},
          {"gang_stop2", [] (uint32_t c, uint32_t v) { return orva_cmd_gang_stop2 (c, 2, v); },
           "<gang_stop>|<ChannelSet>|<Channel>B</Channel>|</ChannelSet>|$</gang_stop>"},
          {"jog2", [] (uint32_t c, uint32_t v) { return orva_jog2 (c, 1, 5, v); },
           "<jog>|<Channel>B</Channel>|<JogDistance>5</JogDistance>|$</jog>"},
          {"gang_jog2", [] (uint32_t c, uint32_t v) { return orva_gang_jog2 (c, 2, 5, v); },
           "<gang_jog>|<ChannelSet>|<Channel>B</Channel>|</ChannelSet>|<JogDistance>5</JogDistance>|$</"
           "gang_jog>"},
          {"goto2", [] (uint32_t c, uint32_t v) { return orva_goto2 (c, 1, 5, v); },
           "<gotocmd>|<Channel>B</Channel>|<GotoPosition>5</GotoPosition>|$</gotocmd>"},
          {"gang_goto2", [] (uint32_t c, uint32_t v) { return orva_gang_goto2 (c, 2, 5, v); },
           "<gang_gotocmd>|<ChannelSet>|<Channel>B</Channel>|</ChannelSet>|<GotoPosition>5</GotoPosition>|$</"
           "gang_gotocmd>"},
      });
}

TEST (OutOfRange, UnknownRepeatModesAreOff) {
  expect_written<uint32_t> (
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
          {"loadclip2", [] (uint32_t c, uint32_t v) { return orva_cmd_loadclip2 (c, 1, clip, v); },
           "<cue_clip>|<Channel>B</Channel>|<ClipID>NEWS0123</ClipID>|<Loop>$</Loop>|</cue_clip>"},
          {"loadclip3", [] (uint32_t c, uint32_t v) { return orva_cmd_loadclip3 (c, 1, clip, v, 5); },
           "<cue_clip>|<Channel>B</Channel>|<ClipID>NEWS0123</ClipID>|<Loop>$</Loop>|<GotoPosition>5</"
           "GotoPosition>|</cue_clip>"},
          {"loadclip4", [] (uint32_t c, uint32_t v) { return orva_cmd_loadclip4 (c, 1, clip, v, 5, 6, 7); },
           "<cue_clip>|<Channel>B</Channel>|<ClipID>NEWS0123</ClipID>|<Loop>$</Loop>|<GotoPosition>5</"
           "GotoPosition>|<ClipPosition>7</ClipPosition>|<LoopIn>6</LoopIn>|</cue_clip>"},
          {"load_vclip2", [] (uint32_t c, uint32_t v) { return orva_cmd_load_vclip2 (c, 1, clip, v); },
           "<cue_clip>|<Channel>B</Channel>|<ClipID>NEWS0123</ClipID>|<Loop>$</Loop>|<ClipScope>vclip</"
           "ClipScope>|</cue_clip>"},
          {"load_vclip3", [] (uint32_t c, uint32_t v) { return orva_cmd_load_vclip3 (c, 1, clip, v, 5); },
           "<cue_clip>|<Channel>B</Channel>|<ClipID>NEWS0123</ClipID>|<Loop>$</Loop>|<GotoPosition>5</"
           "GotoPosition>|<ClipScope>vclip</ClipScope>|</cue_clip>"},
          {"set_repeat", [] (uint32_t c, uint32_t v) { return orva_set_repeat (c, 1, v); },
           "<set_loop>|<Channel>B</Channel>|<Loop>$</Loop>|</set_loop>"},
          {"set_channel_repeat", [] (uint32_t c, uint32_t v) { return orva_set_channel_repeat (c, 1, v); },
           "<set_loop>|<Channel>B</Channel>|<Loop>$</Loop>|</set_loop>"},
      });
}

TEST (OutOfRange, UnknownConditionsWaitForTheSwitch) {
  expect_written<uint32_t> (
      {{0, "explicit_switch"},
       {1, "previous_stops"},
       {2, "immediate"},
       {3, "end_of_clip"},
       {4, "explicit_switch"},
       {0x101, "explicit_switch"},
       {highest, "explicit_switch"}},
      {
          {"precue1", [] (uint32_t c, uint32_t v) { return orva_precue1 (c, 1, clip, v); },
           "<precue>|<Channel>B</Channel>|<ClipID>NEWS0123</ClipID>|<PrecueCondition>$</PrecueCondition>|</"
           "precue>"},
          {"precue2", [] (uint32_t c, uint32_t v) { return orva_precue2 (c, 1, clip, v, 5); },
           "<precue>|<Channel>B</Channel>|<ClipID>NEWS0123</ClipID>|<PrecueCondition>$</"
           "PrecueCondition>|<GotoPosition>5</GotoPosition>|</precue>"},
          {"precue3", [] (uint32_t c, uint32_t v) { return orva_precue3 (c, 1, clip, v, 5, 9); },
           "<precue>|<Channel>B</Channel>|<ClipID>NEWS0123</ClipID>|<PrecueCondition>$</"
           "PrecueCondition>|<GotoPosition>5</GotoPosition>|<ClipLength>9</ClipLength>|</precue>"},
          {"precue4", [] (uint32_t c, uint32_t v) { return orva_precue4 (c, 1, clip, v, 5, 6, 9); },
           "<precue>|<Channel>B</Channel>|<ClipID>NEWS0123</ClipID>|<PrecueCondition>$</"
           "PrecueCondition>|<GotoPosition>5</GotoPosition>|<ClipLength>9</ClipLength>|<LoopIn>6</"
           "LoopIn>|<Loop>off</Loop>|</precue>"},
      });
}

TEST (OutOfRange, TheLowByteOfAnAngleCounts) {
  expect_written<uint32_t> (
      {{0, "0"}, {255, "255"}, {0x103, "3"}, {0xFFFFFF00, "0"}, {highest, "255"}},
      {
          {"loadclip5", [] (uint32_t c, uint32_t v) { return orva_cmd_loadclip5 (c, 1, clip, v); },
           "<cue_clip>|<Channel>B</Channel>|<ClipID>NEWS0123</ClipID>|<Angle>$</Angle>|</cue_clip>"},
          {"loadclip6", [] (uint32_t c, uint32_t v) { return orva_cmd_loadclip6 (c, 1, clip, v, 5); },
           "<cue_clip>|<Channel>B</Channel>|<ClipID>NEWS0123</ClipID>|<GotoPosition>5</"
           "GotoPosition>|<Angle>$</Angle>|</cue_clip>"},
          {"loadclip7", [] (uint32_t c, uint32_t v) { return orva_cmd_loadclip7 (c, 1, clip, v, 5, 7); },
           "<cue_clip>|<Channel>B</Channel>|<ClipID>NEWS0123</ClipID>|<GotoPosition>5</"
           "GotoPosition>|<ClipPosition>7</ClipPosition>|<Angle>$</Angle>|</cue_clip>"},
          {"go_live2", [] (uint32_t c, uint32_t v) { return orva_go_live2 (c, 1, v); },
           "<go_live>|<Channel>B</Channel>|<Angle>$</Angle>|<MinLatency />|</go_live>"},
          {"go_live4", [] (uint32_t c, uint32_t v) { return orva_go_live4 (c, 1, clip, v); },
           "<go_live>|<Channel>B</Channel>|<ClipID>NEWS0123</ClipID>|<Angle>$</Angle>|<MinLatency "
           "/>|</go_live>"},
          {"angle1", [] (uint32_t c, uint32_t v) { return orva_angle1 (c, 1, v); },
           "<iso_angle>|<Channel>B</Channel>|<Angle>$</Angle>|</iso_angle>"},
      });
}

TEST (OutOfRange, SpeedsAreHeldWithinTwoHundred) {
  expect_written<double> (
      {{200.0, "200X"},
       {200.001, "200X"},
       {1e300, "200X"},
       {std::numeric_limits<double>::infinity (), "200X"},
       {-200.0, "-200X"},
       {-200.001, "-200X"},
       {-std::numeric_limits<double>::infinity (), "-200X"},
       {-0.00001, "0X"},
       {0.00002, "0.000015258789063X"}},
      {
          {"play2", [] (uint32_t c, double v) { return orva_cmd_play2 (c, 1, v); },
           "<play>|<Channel>B</Channel>|<Speed>$</Speed>|</play>"},
          {"play3", [] (uint32_t c, double v) { return orva_cmd_play3 (c, 1, v, 1); },
           "<play>|<Channel>B</Channel>|<Speed>$</Speed>|<MinLatency />|</play>"},
          {"gang_play2", [] (uint32_t c, double v) { return orva_cmd_gang_play2 (c, 2, v); },
           "<gang_play>|<ChannelSet>|<Channel>B</Channel>|</ChannelSet>|<Speed>$</Speed>|</gang_play>"},
          {"gang_play3", [] (uint32_t c, double v) { return orva_cmd_gang_play3 (c, 2, v, 0); },
           "<gang_play>|<ChannelSet>|<Channel>B</Channel>|</ChannelSet>|<Speed>$</Speed>|</gang_play>"},
          {"vclip_add_segment2",
           [] (uint32_t c, double v) { return orva_vclip_add_segment2 (c, clip, clip, 1, 1, 2, 3, v); },
           "<vclip_add_segment>|<VClipID>NEWS0123</VClipID>|<ClipID>NEWS0123</ClipID>|<ClipPosition>1</"
           "ClipPosition>|<TrackSet>|<TrackType>video</TrackType>|</TrackSet>|<VClipPosition>2</"
           "VClipPosition>|<ClipLength>3</ClipLength>|<Speed>$</Speed>|</vclip_add_segment>"},
      });
}

TEST (OutOfRange, ThreeEditBitsCount) {
  expect_written<uint32_t> (
      {{0, "0"}, {1, "16"}, {2, "32"}, {4, "975"}, {7, "1023"}, {0xFFFFFFF8, "0"}, {highest, "1023"}},
      {
          {"edit1", [] (uint32_t c, uint32_t v) { return orva_edit1 (c, 1, v); },
           "<insert_edit>|<Channel>B</Channel>|<SonyEditMask>$</SonyEditMask>|</insert_edit>"},
          {"gang_edit1", [] (uint32_t c, uint32_t v) { return orva_gang_edit1 (c, 2, v); },
           "<gang_insert_edit>|<ChannelSet>|<Channel>B</Channel>|</ChannelSet>|<SonyEditMask>$</"
           "SonyEditMask>|</gang_insert_edit>"},
          {"ee1", [] (uint32_t c, uint32_t v) { return orva_ee1 (c, 1, v, 0); },
           "<ee>|<Channel>B</Channel>|<SonyEditMask>$</SonyEditMask>|<AutoEE>true</AutoEE>|</ee>"},
          {"gang_ee1", [] (uint32_t c, uint32_t v) { return orva_gang_ee1 (c, 2, v, 0); },
           "<gang_ee>|<ChannelSet>|<Channel>B</Channel>|</ChannelSet>|<SonyEditMask>$</"
           "SonyEditMask>|<AutoEE>true</AutoEE>|</gang_ee>"},
      });
}

TEST (OutOfRange, OnlyAModeOfOneIsManual) {
  expect_written<uint32_t> (
      {{0, "true"}, {1, "false"}, {2, "true"}, {0x101, "true"}, {highest, "true"}},
      {
          {"ee1", [] (uint32_t c, uint32_t v) { return orva_ee1 (c, 1, 1, v); },
           "<ee>|<Channel>B</Channel>|<SonyEditMask>16</SonyEditMask>|<AutoEE>$</AutoEE>|</ee>"},
          {"gang_ee1", [] (uint32_t c, uint32_t v) { return orva_gang_ee1 (c, 2, 1, v); },
           "<gang_ee>|<ChannelSet>|<Channel>B</Channel>|</ChannelSet>|<SonyEditMask>16</"
           "SonyEditMask>|<AutoEE>$</AutoEE>|</gang_ee>"},
      });
}

TEST (OutOfRange, ThreeTracksCountAndNoneIsATimecode) {
  expect_written<uint32_t> (
      {{0xFFFFFFF8, "<TrackSet />|"},
       {1, "<TrackSet>|<TrackType>video</TrackType>|</TrackSet>|"},
       {0xA, "<TrackSet>|<TrackType>key</TrackType>|</TrackSet>|"},
       {highest, "<TrackSet>|<TrackType>video</TrackType>|<TrackType>key</TrackType>|<TrackType>audio</"
                 "TrackType>|</TrackSet>|"}},
      {
          {"vclip_add_segment1",
           [] (uint32_t c, uint32_t v) { return orva_vclip_add_segment1 (c, clip, clip, 1, v, 2, 3); },
           "<vclip_add_segment>|<VClipID>NEWS0123</VClipID>|<ClipID>NEWS0123</ClipID>|<ClipPosition>1</"
           "ClipPosition>|$<VClipPosition>2</VClipPosition>|<ClipLength>3</ClipLength>|</vclip_add_segment>"},
          {"vclip_add_segment2",
           [] (uint32_t c, uint32_t v) { return orva_vclip_add_segment2 (c, clip, clip, 1, v, 2, 3, 0.5); },
           "<vclip_add_segment>|<VClipID>NEWS0123</VClipID>|<ClipID>NEWS0123</ClipID>|<ClipPosition>1</"
           "ClipPosition>|$<VClipPosition>2</VClipPosition>|<ClipLength>3</ClipLength>|<Speed>0.5X</Speed>|</"
           "vclip_add_segment>"},
          {"vclip_clear_segment",
           [] (uint32_t c, uint32_t v) { return orva_vclip_clear_segment (c, clip, v, 2, 3); },
           "<vclip_clear_segment>|<VClipID>NEWS0123</VClipID>|$<VClipPosition>2</"
           "VClipPosition>|<ClipLength>3</ClipLength>|</vclip_clear_segment>"},
          {"vclip_ripple", [] (uint32_t c, uint32_t v) { return orva_vclip_ripple (c, clip, v, 2, -3); },
           "<vclip_ripple>|<VClipID>NEWS0123</VClipID>|$<VClipPosition>2</VClipPosition>|<VClipDistance>-3</"
           "VClipDistance>|</vclip_ripple>"},
          {"vclip_track_enable", [] (uint32_t c, uint32_t v) { return orva_vclip_track_enable (c, clip, v); },
           "<vclip_track_enable>|<VClipID>NEWS0123</VClipID>|$</vclip_track_enable>"},
          {"vclip_cfg_tracks",
           [] (uint32_t c, uint32_t v) { return orva_vclip_cfg_tracks (c, clip, clip, v); },
           "<vclip_cfg_tracks>|<VClipID>NEWS0123</VClipID>|<ClipID>NEWS0123</ClipID>|$</vclip_cfg_tracks>"},
      });
}

TEST (OutOfRange, TheLowHalfOfAnIndexCounts) {
  expect_written<uint32_t> (
      {{0, "0"}, {65535, "65535"}, {65536, "0"}, {0x10005, "5"}, {highest, "65535"}},
      {
          {"playlist_play_now", [] (uint32_t c, uint32_t v) { return orva_cmd_playlist_play_now (c, 1, v); },
           "<list_play_now>|<Channel>B</Channel>|<ListIndex>$</ListIndex>|<Roll>roll</Roll>|</"
           "list_play_now>"},
          {"playlist_play_next",
           [] (uint32_t c, uint32_t v) { return orva_cmd_playlist_play_next (c, 1, v); },
           "<list_play_next>|<Channel>B</Channel>|<ListIndex>$</ListIndex>|<Roll>roll</Roll>|</"
           "list_play_next>"},
          {"playlist_cue_now", [] (uint32_t c, uint32_t v) { return orva_cmd_playlist_cue_now (c, 1, v); },
           "<list_play_now>|<Channel>B</Channel>|<ListIndex>$</ListIndex>|<Roll>cueonly</Roll>|</"
           "list_play_now>"},
          {"playlist_cue_next", [] (uint32_t c, uint32_t v) { return orva_cmd_playlist_cue_next (c, 1, v); },
           "<list_play_next>|<Channel>B</Channel>|<ListIndex>$</ListIndex>|<Roll>cueonly</Roll>|</"
           "list_play_next>"},
      });
}

TEST (OutOfRange, PositionsAndLengthsGoAsTheyAre) {
  expect_written<uint32_t> (
      {{0, "0"}, {0x80000000, "2147483648"}, {highest, "4294967295"}},
      {
          {"goto1", [] (uint32_t c, uint32_t v) { return orva_goto1 (c, 1, v); },
           "<gotocmd>|<Channel>B</Channel>|<GotoPosition>$</GotoPosition>|</gotocmd>"},
          {"goto2", [] (uint32_t c, uint32_t v) { return orva_goto2 (c, 1, v, 0); },
           "<gotocmd>|<Channel>B</Channel>|<GotoPosition>$</GotoPosition>|</gotocmd>"},
          {"gang_goto1", [] (uint32_t c, uint32_t v) { return orva_gang_goto1 (c, 2, v); },
           "<gang_gotocmd>|<ChannelSet>|<Channel>B</Channel>|</ChannelSet>|<GotoPosition>$</GotoPosition>|</"
           "gang_gotocmd>"},
          {"gang_goto2", [] (uint32_t c, uint32_t v) { return orva_gang_goto2 (c, 2, v, 0); },
           "<gang_gotocmd>|<ChannelSet>|<Channel>B</Channel>|</ChannelSet>|<GotoPosition>$</GotoPosition>|</"
           "gang_gotocmd>"},
          {"loadclip3", [] (uint32_t c, uint32_t v) { return orva_cmd_loadclip3 (c, 1, clip, 0, v); },
           "<cue_clip>|<Channel>B</Channel>|<ClipID>NEWS0123</ClipID>|<Loop>off</Loop>|<GotoPosition>$</"
           "GotoPosition>|</cue_clip>"},
          {"loadclip4, goto",
           [] (uint32_t c, uint32_t v) { return orva_cmd_loadclip4 (c, 1, clip, 0, v, 6, 7); },
           "<cue_clip>|<Channel>B</Channel>|<ClipID>NEWS0123</ClipID>|<Loop>off</Loop>|<GotoPosition>$</"
           "GotoPosition>|<ClipPosition>7</ClipPosition>|<LoopIn>6</LoopIn>|</cue_clip>"},
          {"loadclip4, loop in",
           [] (uint32_t c, uint32_t v) { return orva_cmd_loadclip4 (c, 1, clip, 0, 5, v, 7); },
           "<cue_clip>|<Channel>B</Channel>|<ClipID>NEWS0123</ClipID>|<Loop>off</Loop>|<GotoPosition>5</"
           "GotoPosition>|<ClipPosition>7</ClipPosition>|<LoopIn>$</LoopIn>|</cue_clip>"},
          {"loadclip4, clip position",
           [] (uint32_t c, uint32_t v) { return orva_cmd_loadclip4 (c, 1, clip, 0, 5, 6, v); },
           "<cue_clip>|<Channel>B</Channel>|<ClipID>NEWS0123</ClipID>|<Loop>off</Loop>|<GotoPosition>5</"
           "GotoPosition>|<ClipPosition>$</ClipPosition>|<LoopIn>6</LoopIn>|</cue_clip>"},
          {"loadclip6", [] (uint32_t c, uint32_t v) { return orva_cmd_loadclip6 (c, 1, clip, 2, v); },
           "<cue_clip>|<Channel>B</Channel>|<ClipID>NEWS0123</ClipID>|<GotoPosition>$</"
           "GotoPosition>|<Angle>2</Angle>|</cue_clip>"},
          {"loadclip7, goto",
           [] (uint32_t c, uint32_t v) { return orva_cmd_loadclip7 (c, 1, clip, 2, v, 7); },
           "<cue_clip>|<Channel>B</Channel>|<ClipID>NEWS0123</ClipID>|<GotoPosition>$</"
           "GotoPosition>|<ClipPosition>7</ClipPosition>|<Angle>2</Angle>|</cue_clip>"},
          {"loadclip7, clip position",
           [] (uint32_t c, uint32_t v) { return orva_cmd_loadclip7 (c, 1, clip, 2, 5, v); },
           "<cue_clip>|<Channel>B</Channel>|<ClipID>NEWS0123</ClipID>|<GotoPosition>5</"
           "GotoPosition>|<ClipPosition>$</ClipPosition>|<Angle>2</Angle>|</cue_clip>"},
          {"load_vclip3", [] (uint32_t c, uint32_t v) { return orva_cmd_load_vclip3 (c, 1, clip, 0, v); },
           "<cue_clip>|<Channel>B</Channel>|<ClipID>NEWS0123</ClipID>|<Loop>off</Loop>|<GotoPosition>$</"
           "GotoPosition>|<ClipScope>vclip</ClipScope>|</cue_clip>"},
          {"precue2", [] (uint32_t c, uint32_t v) { return orva_precue2 (c, 1, clip, 0, v); },
           "<precue>|<Channel>B</Channel>|<ClipID>NEWS0123</ClipID>|<PrecueCondition>explicit_switch</"
           "PrecueCondition>|<GotoPosition>$</GotoPosition>|</precue>"},
          {"precue3, length", [] (uint32_t c, uint32_t v) { return orva_precue3 (c, 1, clip, 0, 5, v); },
           "<precue>|<Channel>B</Channel>|<ClipID>NEWS0123</ClipID>|<PrecueCondition>explicit_switch</"
           "PrecueCondition>|<GotoPosition>5</GotoPosition>|<ClipLength>$</ClipLength>|</precue>"},
          {"precue4, goto", [] (uint32_t c, uint32_t v) { return orva_precue4 (c, 1, clip, 0, v, 6, 9); },
           "<precue>|<Channel>B</Channel>|<ClipID>NEWS0123</ClipID>|<PrecueCondition>explicit_switch</"
           "PrecueCondition>|<GotoPosition>$</GotoPosition>|<ClipLength>9</ClipLength>|<LoopIn>6</"
           "LoopIn>|<Loop>off</Loop>|</precue>"},
          {"precue4, loop in", [] (uint32_t c, uint32_t v) { return orva_precue4 (c, 1, clip, 0, 5, v, 9); },
           "<precue>|<Channel>B</Channel>|<ClipID>NEWS0123</ClipID>|<PrecueCondition>explicit_switch</"
           "PrecueCondition>|<GotoPosition>5</GotoPosition>|<ClipLength>9</ClipLength>|<LoopIn>$</"
           "LoopIn>|<Loop>off</Loop>|</precue>"},
          {"take1", [] (uint32_t c, uint32_t v) { return orva_take1 (c, 1, 0, v); },
           "<take>|<Channel>B</Channel>|<TransitionType>cut</TransitionType>|<TransitionDuration>$</"
           "TransitionDuration>|</take>"},
          {"take2", [] (uint32_t c, uint32_t v) { return orva_take2 (c, 1, 0, v, 3); },
           "<take>|<Channel>B</Channel>|<TransitionType>cut</TransitionType>|<TransitionDuration>$</"
           "TransitionDuration>|<FollowSpeed>follow</FollowSpeed>|</take>"},
          {"set_out1", [] (uint32_t c, uint32_t v) { return orva_set_out1 (c, 1, v); },
           "<set_out_point>|<Channel>B</Channel>|<ClipPosition>$</ClipPosition>|</set_out_point>"},
          {"vclip_create", [] (uint32_t c, uint32_t v) { return orva_vclip_create (c, clip, v); },
           "<vclip_create>|<VClipID>NEWS0123</VClipID>|<ClipLength>$</ClipLength>|</vclip_create>"},
          {"vclip_add_segment1, clip position",
           [] (uint32_t c, uint32_t v) { return orva_vclip_add_segment1 (c, clip, clip, v, 1, 2, 3); },
           "<vclip_add_segment>|<VClipID>NEWS0123</VClipID>|<ClipID>NEWS0123</ClipID>|<ClipPosition>$</"
           "ClipPosition>|<TrackSet>|<TrackType>video</TrackType>|</TrackSet>|<VClipPosition>2</"
           "VClipPosition>|<ClipLength>3</ClipLength>|</vclip_add_segment>"},
          {"vclip_clear_segment, position",
           [] (uint32_t c, uint32_t v) { return orva_vclip_clear_segment (c, clip, 1, v, 3); },
           "<vclip_clear_segment>|<VClipID>NEWS0123</VClipID>|<TrackSet>|<TrackType>video</TrackType>|</"
           "TrackSet>|<VClipPosition>$</VClipPosition>|<ClipLength>3</ClipLength>|</vclip_clear_segment>"},
          {"vclip_ripple, position",
           [] (uint32_t c, uint32_t v) { return orva_vclip_ripple (c, clip, 1, v, 3); },
           "<vclip_ripple>|<VClipID>NEWS0123</VClipID>|<TrackSet>|<TrackType>video</TrackType>|</"
           "TrackSet>|<VClipPosition>$</VClipPosition>|<VClipDistance>3</VClipDistance>|</vclip_ripple>"},
      });
}

TEST (OutOfRange, DistancesGoAsTheyAre) {
  expect_written<int32_t> (
      {{0, "0"}, {-1, "-1"}, {INT32_MIN, "-2147483648"}, {INT32_MAX, "2147483647"}},
      {
          {"jog1", [] (uint32_t c, int32_t v) { return orva_jog1 (c, 1, v); },
           "<jog>|<Channel>B</Channel>|<JogDistance>$</JogDistance>|</jog>"},
          {"jog2", [] (uint32_t c, int32_t v) { return orva_jog2 (c, 1, v, 0); },
           "<jog>|<Channel>B</Channel>|<JogDistance>$</JogDistance>|</jog>"},
          {"gang_jog1", [] (uint32_t c, int32_t v) { return orva_gang_jog1 (c, 2, v); },
           "<gang_jog>|<ChannelSet>|<Channel>B</Channel>|</ChannelSet>|<JogDistance>$</JogDistance>|</"
           "gang_jog>"},
          {"gang_jog2", [] (uint32_t c, int32_t v) { return orva_gang_jog2 (c, 2, v, 0); },
           "<gang_jog>|<ChannelSet>|<Channel>B</Channel>|</ChannelSet>|<JogDistance>$</JogDistance>|</"
           "gang_jog>"},
          {"vclip_ripple", [] (uint32_t c, int32_t v) { return orva_vclip_ripple (c, clip, 1, 2, v); },
           "<vclip_ripple>|<VClipID>NEWS0123</VClipID>|<TrackSet>|<TrackType>video</TrackType>|</"
           "TrackSet>|<VClipPosition>2</VClipPosition>|<VClipDistance>$</VClipDistance>|</vclip_ripple>"},
      });
}

} // namespace
