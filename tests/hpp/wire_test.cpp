// The bytes that each operation with a command sends.

#include "hpp/scripted.h"

#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace {

using namespace orva;
using support::FakeServer;

struct Row {
  const char *what;
  std::function<void (const Server &)> operation;
  std::vector<const char *> elements; ///< '|' is CR LF
};

/// Makes each operation on a server that accepts everything, first on the calling thread and then on a helper
/// thread. Compares each byte that arrives.
void expect_wire (const std::vector<Row> &rows) {
  for (const Limit limit : {no_limit, Limit (generous)}) {
    FakeServer fake;
    fake.answer_any ("<ok />");
    const Connected server (fake, limit);
    size_t sent = 0;
    for (const Row &row : rows) {
      SCOPED_TRACE (row.what);
      EXPECT_NO_THROW (row.operation (server));
      for (const char *const element : row.elements) {
        const support::Command command = fake.command (++sent);
        EXPECT_EQ (command.document, document (command.xid, element));
      }
    }
    EXPECT_EQ (fake.command_count (), sent);
  }
}

constexpr const char *clip = "NEWS0123";

TEST (OnTheWire, ChannelsPlayAndStop) {
  expect_wire ({
      {"play", [] (const Server &s) { s.channel (B).play (); }, {"<play>|<Channel>B</Channel>|</play>"}},
      {"play, by letter",
       [] (const Server &s) { s.channel ('h').play (); },
       {"<play>|<Channel>H</Channel>|</play>"}},
      {"play, by number",
       [] (const Server &s) { s.channel (2u).play (-0.5); },
       {"<play>|<Channel>C</Channel>|<Speed>-0.5X</Speed>|</play>"}},
      {"play, soon",
       [] (const Server &s) { s.channel (A).play (1.5, Latency::least); },
       {"<play>|<Channel>A</Channel>|<Speed>1.5X</Speed>|<MinLatency />|</play>"}},
      {"gang play",
       [] (const Server &s) { s.channels (A | C | H).play (); },
       {"<gang_play>|<ChannelSet>|<Channel>A</Channel>|<Channel>C</Channel>|<Channel>H</Channel>|</"
        "ChannelSet>|</gang_play>"}},
      {"gang play, with a speed",
       [] (const Server &s) { s.channels (A).play (2); },
       {"<gang_play>|<ChannelSet>|<Channel>A</Channel>|</ChannelSet>|<Speed>2X</Speed>|</gang_play>"}},
      {"gang play, soon",
       [] (const Server &s) { s.channels ({A}).play (2, Latency::least); },
       {"<gang_play>|<ChannelSet>|<Channel>A</Channel>|</ChannelSet>|<Speed>2X</Speed>|<MinLatency "
        "/>|</gang_play>"}},
      {"stop", [] (const Server &s) { s.channel (A).stop (); }, {"<stop>|<Channel>A</Channel>|</stop>"}},
      {"stop, soon",
       [] (const Server &s) { s.channel (D).stop (Latency::least); },
       {"<stop>|<Channel>D</Channel>|<MinLatency />|</stop>"}},
      {"gang stop",
       [] (const Server &s) { s.channels (B).stop (); },
       {"<gang_stop>|<ChannelSet>|<Channel>B</Channel>|</ChannelSet>|</gang_stop>"}},
      {"gang stop, soon",
       [] (const Server &s) { s.channels (B).stop (Latency::least); },
       {"<gang_stop>|<ChannelSet>|<Channel>B</Channel>|</ChannelSet>|<MinLatency />|</gang_stop>"}},
  });
}

TEST (OnTheWire, ChannelsMove) {
  expect_wire ({
      {"jog",
       [] (const Server &s) { s.channel (E).jog (-25); },
       {"<jog>|<Channel>E</Channel>|<JogDistance>-25</JogDistance>|</jog>"}},
      {"jog, soon and far",
       [] (const Server &s) { s.channel (A).jog (std::numeric_limits<int32_t>::min (), Latency::least); },
       {"<jog>|<Channel>A</Channel>|<JogDistance>-2147483648</JogDistance>|<MinLatency />|</jog>"}},
      {"gang jog",
       [] (const Server &s) { s.channels (F).jog (Position::from_frames (25)); },
       {"<gang_jog>|<ChannelSet>|<Channel>F</Channel>|</ChannelSet>|<JogDistance>50</JogDistance>|</"
        "gang_jog>"}},
      {"gang jog, soon",
       [] (const Server &s) { s.channels (G).jog (-50, Latency::least); },
       {"<gang_jog>|<ChannelSet>|<Channel>G</Channel>|</ChannelSet>|<JogDistance>-50</"
        "JogDistance>|<MinLatency />|</gang_jog>"}},
      {"go to",
       [] (const Server &s) { s.channel (A).go_to (4294967295u); },
       {"<gotocmd>|<Channel>A</Channel>|<GotoPosition>4294967295</GotoPosition>|</gotocmd>"}},
      {"go to, soon",
       [] (const Server &s) { s.channel (B).go_to (0, Latency::least); },
       {"<gotocmd>|<Channel>B</Channel>|<GotoPosition>0</GotoPosition>|<MinLatency />|</gotocmd>"}},
      {"gang go to",
       [] (const Server &s) { s.channels (A).go_to (7); },
       {"<gang_gotocmd>|<ChannelSet>|<Channel>A</Channel>|</ChannelSet>|<GotoPosition>7</GotoPosition>|</"
        "gang_gotocmd>"}},
      {"gang go to, soon",
       [] (const Server &s) { s.channels (A).go_to (7, Latency::least); },
       {"<gang_gotocmd>|<ChannelSet>|<Channel>A</Channel>|</ChannelSet>|<GotoPosition>7</"
        "GotoPosition>|<MinLatency />|</gang_gotocmd>"}},
  });
}

TEST (OnTheWire, ClipsAreLoaded) {
  expect_wire ({
      {"name only",
       [] (const Server &s) { s.channel (A).load (clip); },
       {"<cue_clip>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|</cue_clip>"}},
      {"characters of all lengths",
       [] (const Server &s) { s.channel (A).cue ("\xC3\xA9\xE2\x82\xAC\xF0\x9D\x84\x9E"); },
       {"<cue_clip>|<Channel>A</Channel>|<ClipID>\xC3\xA9\xE2\x82\xAC\xF0\x9D\x84\x9E</ClipID>|</cue_clip>"}},
      {"repeat",
       [] (const Server &s) {
         s.channel (A).load (clip, {Repeat::pingpong_to, {}, {}, {}, {}});
       },
       {"<cue_clip>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|<Loop>pingpongto</Loop>|</cue_clip>"}},
      {"position",
       [] (const Server &s) {
         s.channel (A).load (clip, {{}, 10, {}, {}, {}});
       },
       {"<cue_clip>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|<Loop>off</Loop>|<GotoPosition>10</"
        "GotoPosition>|</cue_clip>"}},
      {"loop",
       [] (const Server &s) {
         s.channel (A).load (clip, {Repeat::loop_to, 10, 20, 30, {}});
       },
       {"<cue_clip>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|<Loop>loopto</Loop>|<GotoPosition>10</"
        "GotoPosition>|"
        "<ClipPosition>30</ClipPosition>|<LoopIn>20</LoopIn>|</cue_clip>"}},
      {"loop-in point only",
       [] (const Server &s) {
         s.channel (A).load (clip, {{}, {}, 20, {}, {}});
       },
       {"<cue_clip>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|<Loop>off</Loop>|<GotoPosition>0</"
        "GotoPosition>|"
        "<ClipPosition>0</ClipPosition>|<LoopIn>20</LoopIn>|</cue_clip>"}},
      {"angle",
       [] (const Server &s) {
         s.channel (A).load (clip, {{}, {}, {}, {}, 2});
       },
       {"<cue_clip>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|<Angle>2</Angle>|</cue_clip>"}},
      {"angle and position",
       [] (const Server &s) {
         s.channel (A).load (clip, {{}, 10, {}, {}, 2});
       },
       {"<cue_clip>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|<GotoPosition>10</GotoPosition>|<Angle>2</"
        "Angle>|</cue_clip>"}},
      {"angle and both positions",
       [] (const Server &s) {
         s.channel (A).load (clip, {{}, 10, {}, 20, 2});
       },
       {"<cue_clip>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|<GotoPosition>10</GotoPosition>|"
        "<ClipPosition>20</ClipPosition>|<Angle>2</Angle>|</cue_clip>"}},
      {"unload",
       [] (const Server &s) { s.channel (A).unload (); },
       {"<unload>|<Channel>A</Channel>|</unload>"}},
      {"virtual",
       [] (const Server &s) { s.channel (B).load_virtual ("PROMO"); },
       {"<cue_clip>|<Channel>B</Channel>|<ClipID>PROMO</ClipID>|<ClipScope>vclip</ClipScope>|</cue_clip>"}},
      {"virtual, repeat",
       [] (const Server &s) {
         s.channel (A).load_virtual ("PROMO", {Repeat::loop, {}, {}, {}, {}});
       },
       {"<cue_clip>|<Channel>A</Channel>|<ClipID>PROMO</ClipID>|<Loop>loop</Loop>|<ClipScope>vclip</"
        "ClipScope>|</cue_clip>"}},
      {"virtual, position",
       [] (const Server &s) {
         s.channel (B).load_virtual ("PROMO", {{}, 40, {}, {}, {}});
       },
       {"<cue_clip>|<Channel>B</Channel>|<ClipID>PROMO</ClipID>|<Loop>off</Loop>|<GotoPosition>40</"
        "GotoPosition>|"
        "<ClipScope>vclip</ClipScope>|</cue_clip>"}},
  });
}

TEST (OnTheWire, ClipsFollow) {
  expect_wire ({
      {"precue",
       [] (const Server &s) { s.channel (A).precue (clip); },
       {"<precue>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|<PrecueCondition>explicit_switch</"
        "PrecueCondition>|</precue>"}},
      {"position",
       [] (const Server &s) {
         s.channel (A).precue (clip, {When::previous_stops, 5, {}, {}});
       },
       {"<precue>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|<PrecueCondition>previous_stops</"
        "PrecueCondition>|"
        "<GotoPosition>5</GotoPosition>|</precue>"}},
      {"length",
       [] (const Server &s) {
         s.channel (A).precue (clip, {When::now, 5, 50, {}});
       },
       {"<precue>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|<PrecueCondition>immediate</"
        "PrecueCondition>|"
        "<GotoPosition>5</GotoPosition>|<ClipLength>50</ClipLength>|</precue>"}},
      {"loop-in point",
       [] (const Server &s) {
         s.channel (A).precue (clip, {When::activated, 5, 50, 6});
       },
       {"<precue>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|<PrecueCondition>explicit_switch</"
        "PrecueCondition>|"
        "<GotoPosition>5</GotoPosition>|<ClipLength>50</ClipLength>|<LoopIn>6</LoopIn>|<Loop>off</Loop>|</"
        "precue>"}},
      {"clear",
       [] (const Server &s) { s.channel (B).precue_clear (); },
       {"<precue_clear>|<Channel>B</Channel>|</precue_clear>"}},
      {"activate",
       [] (const Server &s) { s.channel (B).precue_activate (); },
       {"<precue_activate>|<Channel>B</Channel>|</precue_activate>"}},
      {"gang activate",
       [] (const Server &s) { s.channels (A | B).precue_activate (); },
       {"<gang_precue_activate>|<ChannelSet>|<Channel>A</Channel>|<Channel>B</Channel>|</ChannelSet>|</"
        "gang_precue_activate>"}},
      {"take",
       [] (const Server &s) {
         s.channel (A).take ({Transition::dissolve, 25, {}});
       },
       {"<take>|<Channel>A</Channel>|<TransitionType>dissolve</TransitionType>|<TransitionDuration>25</"
        "TransitionDuration>|</take>"}},
      {"take, with a speed",
       [] (const Server &s) {
         s.channel (A).take ({Transition::cut, 0, FollowSpeed::follow});
       },
       {"<take>|<Channel>A</Channel>|<TransitionType>cut</TransitionType>|<TransitionDuration>0</"
        "TransitionDuration>|"
        "<FollowSpeed>follow</FollowSpeed>|</take>"}},
      {"live",
       [] (const Server &s) { s.channel (A).go_live (); },
       {"<go_live>|<Channel>A</Channel>|<MinLatency />|</go_live>"}},
      {"live, angle",
       [] (const Server &s) {
         s.channel (A).go_live ({{}, 3});
       },
       {"<go_live>|<Channel>A</Channel>|<Angle>3</Angle>|<MinLatency />|</go_live>"}},
      {"live, clip",
       [] (const Server &s) {
         s.channel (A).go_live ({clip, {}});
       },
       {"<go_live>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|<MinLatency />|</go_live>"}},
      {"live, clip and angle",
       [] (const Server &s) {
         s.channel (A).go_live ({clip, 3});
       },
       {"<go_live>|<Channel>A</Channel>|<ClipID>NEWS0123</ClipID>|<Angle>3</Angle>|<MinLatency "
        "/>|</go_live>"}},
  });
}

TEST (OnTheWire, ChannelsAreSet) {
  expect_wire ({
      {"angle",
       [] (const Server &s) { s.channel (A).set_angle (0); },
       {"<iso_angle>|<Channel>A</Channel>|<Angle>0</Angle>|</iso_angle>"}},
      {"out",
       [] (const Server &s) { s.channel (A).set_out (99); },
       {"<set_out_point>|<Channel>A</Channel>|<ClipPosition>99</ClipPosition>|</set_out_point>"}},
      {"no out",
       [] (const Server &s) { s.channel (A).clear_out (); },
       {"<clear_out_point>|<Channel>A</Channel>|</clear_out_point>"}},
      {"repeat",
       [] (const Server &s) { s.channel (A).set_repeat (Repeat::pingpong); },
       {"<set_loop>|<Channel>A</Channel>|<Loop>pingpong</Loop>|</set_loop>"}},
      {"edit",
       [] (const Server &s) { s.channel (A).edit (EditTracks::bit_4); },
       {"<insert_edit>|<Channel>A</Channel>|<SonyEditMask>16</SonyEditMask>|</insert_edit>"}},
      {"gang edit",
       [] (const Server &s) { s.channels (A).edit (EditTracks::others); },
       {"<gang_insert_edit>|<ChannelSet>|<Channel>A</Channel>|</ChannelSet>|<SonyEditMask>975</"
        "SonyEditMask>|</gang_insert_edit>"}},
      {"edit all",
       [] (const Server &s) { s.channel (B).edit (); },
       {"<insert_edit>|<Channel>B</Channel>|<SonyEditMask>1023</SonyEditMask>|</insert_edit>"}},
      {"edit none",
       [] (const Server &s) { s.channel (B).edit (EditTracks::none); },
       {"<insert_edit>|<Channel>B</Channel>|<SonyEditMask>0</SonyEditMask>|</insert_edit>"}},
      {"gang edit all",
       [] (const Server &s) { s.channels (B).edit (); },
       {"<gang_insert_edit>|<ChannelSet>|<Channel>B</Channel>|</ChannelSet>|<SonyEditMask>1023</"
        "SonyEditMask>|</gang_insert_edit>"}},
      {"gang edit none",
       [] (const Server &s) { s.channels (B).edit (EditTracks::none); },
       {"<gang_insert_edit>|<ChannelSet>|<Channel>B</Channel>|</ChannelSet>|<SonyEditMask>0</SonyEditMask>|</"
        "gang_insert_edit>"}},
      {"input, manual",
       [] (const Server &s) { s.channel (A).show_input (EditTracks::all, InputMode::manual); },
       {"<ee>|<Channel>A</Channel>|<SonyEditMask>1023</SonyEditMask>|<AutoEE>false</AutoEE>|</ee>"}},
      {"gang input, some",
       [] (const Server &s) { s.channels (A).show_input (EditTracks::bit_5); },
       {"<gang_ee>|<ChannelSet>|<Channel>A</Channel>|</ChannelSet>|<SonyEditMask>32</"
        "SonyEditMask>|<AutoEE>true</AutoEE>|</gang_ee>"}},
      {"input",
       [] (const Server &s) { s.channel (B).show_input (); },
       {"<ee>|<Channel>B</Channel>|<SonyEditMask>1023</SonyEditMask>|<AutoEE>true</AutoEE>|</ee>"}},
      {"no input",
       [] (const Server &s) { s.channel (B).show_input (EditTracks::none); },
       {"<ee>|<Channel>B</Channel>|<SonyEditMask>0</SonyEditMask>|<AutoEE>true</AutoEE>|</ee>"}},
      {"gang input",
       [] (const Server &s) { s.channels (B).show_input (); },
       {"<gang_ee>|<ChannelSet>|<Channel>B</Channel>|</ChannelSet>|<SonyEditMask>1023</"
        "SonyEditMask>|<AutoEE>true</AutoEE>|</gang_ee>"}},
      {"gang no input",
       [] (const Server &s) { s.channels (B).show_input (EditTracks::none); },
       {"<gang_ee>|<ChannelSet>|<Channel>B</Channel>|</ChannelSet>|<SonyEditMask>0</"
        "SonyEditMask>|<AutoEE>true</AutoEE>|</gang_ee>"}},
      {"record",
       [] (const Server &s) {
         s.channel (B).record (clip, {Tracks::audio, 0});
       },
       {"<create_clip>|<ClipID>NEWS0123</ClipID>|<TrackSet>|<TrackType>audio</TrackType>|</TrackSet>|"
        "<ClipLength>0</ClipLength>|<Channel>B</Channel>|</create_clip>",
        "<insert_edit>|<Channel>B</Channel>|<SonyEditMask>1023</SonyEditMask>|</insert_edit>",
        "<play>|<Channel>B</Channel>|<Speed>1X</Speed>|</play>"}},
      {"end of recording",
       [] (const Server &s) { s.channel (B).end_recording (); },
       {"<stop>|<Channel>B</Channel>|</stop>",
        "<insert_edit>|<Channel>B</Channel>|<SonyEditMask>0</SonyEditMask>|</insert_edit>"}},
  });
}

TEST (OnTheWire, PlaylistsPlay) {
  expect_wire ({
      {"play now",
       [] (const Server &s) { s.channel (A).playlist_play_now (3); },
       {"<list_play_now>|<Channel>A</Channel>|<ListIndex>3</ListIndex>|<Roll>roll</Roll>|</list_play_now>"}},
      {"play next",
       [] (const Server &s) { s.channel (B).playlist_play_next (65535); },
       {"<list_play_next>|<Channel>B</Channel>|<ListIndex>65535</ListIndex>|<Roll>roll</Roll>|</"
        "list_play_next>"}},
      {"cue now",
       [] (const Server &s) { s.channel (A).playlist_cue_now (1); },
       {"<list_play_now>|<Channel>A</Channel>|<ListIndex>1</ListIndex>|<Roll>cueonly</Roll>|</"
        "list_play_now>"}},
      {"cue next",
       [] (const Server &s) { s.channel (A).playlist_cue_next (2); },
       {"<list_play_next>|<Channel>A</Channel>|<ListIndex>2</ListIndex>|<Roll>cueonly</Roll>|</"
        "list_play_next>"}},
      {"cue",
       [] (const Server &s) { s.channel (H).playlist_cue (); },
       {"<list_play_now>|<Channel>H</Channel>|<ListIndex>0</ListIndex>|<Roll>cueonly</Roll>|</"
        "list_play_now>"}},
  });
}

TEST (OnTheWire, ClipsAreManaged) {
  expect_wire ({
      {"rename",
       [] (const Server &s) { s.clip (clip).rename ("NEWS/LATE"); },
       {"<rename_clip>|<FromID>NEWS0123</FromID>|<ToID>NEWS/LATE</ToID>|</rename_clip>"}},
      {"erase",
       [] (const Server &s) { s.clip (clip).erase (); },
       {"<delete_clip>|<ClipID>NEWS0123</ClipID>|</delete_clip>"}},
      {"create",
       [] (const Server &s) { s.clip (clip).create (); },
       {"<create_clip>|<ClipID>NEWS0123</ClipID>|<TrackSet>|<TrackType>video</"
        "TrackType>|<TrackType>timecode</TrackType>|"
        "<TrackType>key</TrackType>|<TrackType>audio</TrackType>|</TrackSet>|</create_clip>"}},
      {"create, with a length",
       [] (const Server &s) {
         s.clip (clip).create ({Tracks::audio, 4294967295u, {}});
       },
       {"<create_clip>|<ClipID>NEWS0123</ClipID>|<TrackSet>|<TrackType>audio</TrackType>|</TrackSet>|"
        "<ClipLength>4294967295</ClipLength>|</create_clip>"}},
      {"create, for a channel",
       [] (const Server &s) {
         s.clip (clip).create ({Tracks::key, 50, A});
       },
       {"<create_clip>|<ClipID>NEWS0123</ClipID>|<TrackSet>|<TrackType>key</TrackType>|</TrackSet>|"
        "<ClipLength>50</ClipLength>|<Channel>A</Channel>|</create_clip>"}},
      {"child",
       [] (const Server &s) { s.clip ("NEWS/LATE").create_child_of (clip); },
       {"<create_child_clip>|<ClipID>NEWS/LATE</ClipID>|<ParentClipID>NEWS0123</ParentClipID>|</"
        "create_child_clip>"}},
      {"child, with an angle",
       [] (const Server &s) { s.clip ("NEWS/LATE").create_child_of (clip, 254); },
       {"<create_child_clip>|<ClipID>NEWS/LATE</ClipID>|<ParentClipID>NEWS0123</ParentClipID>|<Angle>254</"
        "Angle>|</create_child_clip>"}},
      {"directory",
       [] (const Server &s) { s.create_directory ("NEWS/LATE"); },
       {"<create_directory>|<DirectoryName>NEWS/LATE</DirectoryName>|</create_directory>"}},
      {"an edit of nothing", [] (const Server &s) { s.clip (clip).edit ({}); }, {}},
  });
}

TEST (OnTheWire, VirtualClipsAreBuilt) {
  expect_wire ({
      {"create",
       [] (const Server &s) { s.virtual_clip ("PROMO").create (500); },
       {"<vclip_create>|<VClipID>PROMO</VClipID>|<ClipLength>500</ClipLength>|</vclip_create>"}},
      {"free",
       [] (const Server &s) { s.virtual_clip ("PROMO").free (); },
       {"<vclip_free>|<VClipID>PROMO</VClipID>|</vclip_free>"}},
      {"begin",
       [] (const Server &s) { s.virtual_clip ("PROMO").begin_changes (); },
       {"<vclip_modification_start>|<VClipID>PROMO</VClipID>|</vclip_modification_start>"}},
      {"end",
       [] (const Server &s) { s.virtual_clip ("PROMO").end_changes (); },
       {"<vclip_modification_end>|<VClipID>PROMO</VClipID>|</vclip_modification_end>"}},
      {"add",
       [] (const Server &s) {
         s.virtual_clip ("PROMO").add ({clip, 10, Tracks::video, 20, 30, {}});
       },
       {"<vclip_add_segment>|<VClipID>PROMO</VClipID>|<ClipID>NEWS0123</ClipID>|<ClipPosition>10</"
        "ClipPosition>|<TrackSet>|"
        "<TrackType>video</TrackType>|</TrackSet>|<VClipPosition>20</VClipPosition>|<ClipLength>30</"
        "ClipLength>|</vclip_add_segment>"}},
      {"add, with a speed",
       [] (const Server &s) {
         s.virtual_clip ("PROMO").add ({clip, 10, Tracks::all, 20, 30, 200.0});
       },
       {"<vclip_add_segment>|<VClipID>PROMO</VClipID>|<ClipID>NEWS0123</ClipID>|<ClipPosition>10</"
        "ClipPosition>|<TrackSet>|"
        "<TrackType>video</TrackType>|<TrackType>key</TrackType>|<TrackType>audio</TrackType>|</TrackSet>|"
        "<VClipPosition>20</VClipPosition>|<ClipLength>30</ClipLength>|<Speed>200X</Speed>|</"
        "vclip_add_segment>"}},
      {"clear",
       [] (const Server &s) {
         s.virtual_clip ("PROMO").clear ({Tracks::key, 20, 30});
       },
       {"<vclip_clear_segment>|<VClipID>PROMO</VClipID>|<TrackSet>|<TrackType>key</TrackType>|</TrackSet>|"
        "<VClipPosition>20</VClipPosition>|<ClipLength>30</ClipLength>|</vclip_clear_segment>"}},
      {"ripple",
       [] (const Server &s) { s.virtual_clip ("PROMO").ripple (20, -30, Tracks::audio); },
       {"<vclip_ripple>|<VClipID>PROMO</VClipID>|<TrackSet>|<TrackType>audio</TrackType>|</TrackSet>|"
        "<VClipPosition>20</VClipPosition>|<VClipDistance>-30</VClipDistance>|</vclip_ripple>"}},
      {"enable",
       [] (const Server &s) { s.virtual_clip ("PROMO").enable (Tracks::video | Tracks::audio); },
       {"<vclip_track_enable>|<VClipID>PROMO</VClipID>|<TrackSet>|<TrackType>video</"
        "TrackType>|<TrackType>audio</TrackType>|"
        "</TrackSet>|</vclip_track_enable>"}},
      {"configure",
       [] (const Server &s) { s.virtual_clip ("PROMO").configure_as (clip, Tracks::none); },
       {"<vclip_cfg_tracks>|<VClipID>PROMO</VClipID>|<ClipID>NEWS0123</ClipID>|<TrackSet "
        "/>|</vclip_cfg_tracks>"}},
  });
}

TEST (OnTheWire, NothingAppearsForBadArguments) {
  const double not_a_number = std::numeric_limits<double>::quiet_NaN ();
  const std::vector<Row> rows = {
      {"channel 8", [] (const Server &s) { s.channel (8).play (); }, {}},
      {"channel -1", [] (const Server &s) { s.channel (-1).state (); }, {}},
      {"channel 2^32", [] (const Server &s) { s.channel (0x100000000u).unload (); }, {}},
      {"channel I", [] (const Server &s) { s.channel ('I').wait_for (Status::playing); }, {}},
      {"a set with a bad one",
       [] (const Server &s) {
         s.channels ({A, Channel (9)}).play ();
       },
       {}},
      {"an empty set", [] (const Server &s) { s.channels ({}).stop (); }, {}},
      {"a negative position", [] (const Server &s) { s.channel (A).go_to (-1); }, {}},
      {"a great position", [] (const Server &s) { s.channel (A).go_to (0x100000000u); }, {}},
      {"a great distance", [] (const Server &s) { s.channel (A).jog (0x80000000u); }, {}},
      {"not a number", [=] (const Server &s) { s.channel (A).play (not_a_number); }, {}},
      {"angle 256", [] (const Server &s) { s.channel (A).set_angle (256); }, {}},
      {"angle -1", [] (const Server &s) { s.channel (A).set_angle (-1); }, {}},
      {"index 65536", [] (const Server &s) { s.channel (A).playlist_play_now (65536); }, {}},
      {"a repeat mode that is none",
       [] (const Server &s) { s.channel (A).set_repeat (static_cast<Repeat> (5)); },
       {}},
      {"a transition that is none",
       [] (const Server &s) {
         s.channel (A).take ({static_cast<Transition> (2), 0, {}});
       },
       {}},
      {"tracks that are none",
       [] (const Server &s) {
         s.clip (clip).create ({static_cast<Tracks> (8), {}, {}});
       },
       {}},
      {"angle and repeat",
       [] (const Server &s) {
         s.channel (A).load (clip, {Repeat::loop, {}, {}, {}, 1});
       },
       {}},
      {"a virtual clip with an angle",
       [] (const Server &s) {
         s.channel (A).load_virtual (clip, {{}, {}, {}, {}, 1});
       },
       {}},
      {"half a character", [] (const Server &s) { s.clip ("A\xC3").erase (); }, {}},
      {"a surrogate", [] (const Server &s) { s.clip ("A\xED\xA0\x80").erase (); }, {}},
      {"a NUL", [] (const Server &s) { s.clip (std::string ("A\0B", 3)).rename ("C"); }, {}},
      {"a NUL in a second text", [] (const Server &s) { s.clip ("A").rename (std::string ("A\0B", 3)); }, {}},
      {"a bad key", [] (const Server &s) { s.clip ("A").set_meta ("\xFF", "x"); }, {}},
      {"a bad title",
       [] (const Server &s) {
         s.clip ("A").edit ({"\xFF", {}, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}});
       },
       {}},
      {"a store for nothing", [] (const Server &s) { s.store ("F", static_cast<StoreMode> (0)); }, {}},
      {"a store with a bad folder", [] (const Server &s) { s.store ("\x80", StoreMode::read); }, {}},
  };
  FakeServer fake;
  fake.answer_any ("<ok />");
  const Connected server (fake);
  for (const Row &row : rows) {
    SCOPED_TRACE (row.what);
    EXPECT_EQ (thrown ([&] { row.operation (server); }), Kind::invalid);
  }
  EXPECT_EQ (thrown ([&] { Server ("10.0.0.256"); }), Kind::invalid);
  EXPECT_EQ (fake.command_count (), 0u);
}

} // namespace
