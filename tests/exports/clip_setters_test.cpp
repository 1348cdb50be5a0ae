#include "exports/snapshots.h"

#include <functional>
#include <vector>

namespace {

using support::FakeServer;

const std::basic_string<orva_char> new_text = wide ("a < b & c");
const orva_char *const text = new_text.c_str ();

/// A server that accepts every change of a clip with these pairs.
void accept (FakeServer &server, const std::string &pairs = "") {
  server.answer_any ("<ok />");
  server.answer ("get_clip_info", clip_info ({}, pairs));
}

struct Row {
  const char *what;
  uint32_t (*set) (uint32_t handle);
  const char *change; ///< what stands between the tags of the change; '|' stands for CR LF
  std::function<void (uint32_t handle)> check;
};

/// A check that a getter gives a number afterwards.
auto gives (uint32_t (*get) (uint32_t, uint32_t *), uint32_t expected) {
  return [=] (uint32_t handle) { EXPECT_EQ (number_of (get, handle), expected); };
}

auto gives (uint32_t (*get) (uint32_t, OrvaStringBuffer), std::string expected) {
  return [=] (uint32_t handle) { EXPECT_EQ (text_of_clip (get, handle), expected); };
}

/// A check of timecode source, start and drop frame.
auto gives_stripe (uint32_t expected_start, uint32_t expected_drop) {
  return [=] (uint32_t handle) {
    uint32_t start = 77;
    uint32_t drop_frame = 77;
    EXPECT_EQ (orva_clip_timecode_stripe (handle, &start, &drop_frame), ORVA_OK);
    EXPECT_EQ (start, expected_start);
    EXPECT_EQ (drop_frame, expected_drop);
    EXPECT_EQ (number_of (orva_clip_timecode_source, handle), uint32_t{ORVA_TIMECODE_STRIPED});
  };
}

/// Calls each setter on a fresh snapshot, compares what arrives, byte by byte, and checks the snapshot.
void expect_changes (const std::vector<Row> &rows, const std::string &pairs = "") {
  FakeServer server;
  accept (server, pairs);
  const Session session (server);
  for (const Row &row : rows) {
    SCOPED_TRACE (row.what);
    server.forget ();
    const Snapshot snapshot (session);
    EXPECT_EQ (row.set (snapshot), ORVA_OK);
    EXPECT_EQ (last_error (), "OK");
    const support::Command command = server.command (2);
    EXPECT_EQ (command.document,
               document (command.xid, "<modify_clip_attributes>|<ClipID>NEWS0123</ClipID>|<ClipAttrChange>|" +
                                          std::string (row.change) +
                                          "|</ClipAttrChange>|</modify_clip_attributes>"));
    row.check (snapshot);
    EXPECT_EQ (server.command_count (), 2u) << "reading needs no traffic";
  }
}

TEST (ClipSetters, SetTexts) {
  expect_changes ({
      {"creator", [] (uint32_t h) { return orva_set_clip_creator (h, text); },
       "<Creator>a &lt; b &amp; c</Creator>", gives (orva_clip_creator, "a < b & c")},
      {"project", [] (uint32_t h) { return orva_set_clip_project (h, text); },
       "<Project>a &lt; b &amp; c</Project>", gives (orva_clip_project, "a < b & c")},
      {"title", [] (uint32_t h) { return orva_set_clip_title (h, text); }, "<Title>a &lt; b &amp; c</Title>",
       gives (orva_clip_title, "a < b & c")},
      {"title, none", [] (uint32_t h) { return orva_set_clip_title (h, wide ("").c_str ()); }, "<Title />",
       gives (orva_clip_title, "")},
      {"title, beyond the basic plane",
       [] (uint32_t h) {
         const orva_char clef[] = {0xD834, 0xDD1E, 0};
         return orva_set_clip_title (h, clef);
       },
       "<Title>\xF0\x9D\x84\x9E</Title>",
       [] (uint32_t handle) {
         orva_char units[3] = {'#', '#', '#'};
         EXPECT_EQ (orva_clip_title (handle, {units, 2}), ORVA_OK);
         EXPECT_EQ (units[0], orva_char (0));
         EXPECT_EQ (orva_clip_title (handle, {units, 3}), ORVA_OK);
         EXPECT_EQ (units[1], orva_char (0xDD1E));
       }},
  });
}

TEST (ClipSetters, SetNumbers) {
  expect_changes ({
      {"playback 0", [] (uint32_t h) { return orva_set_clip_playback (h, ORVA_PLAYBACK_FIELD); },
       "<Playback>field</Playback>", gives (orva_clip_playback, 0)},
      {"playback 1", [] (uint32_t h) { return orva_set_clip_playback (h, ORVA_PLAYBACK_F12); },
       "<Playback>f12</Playback>", gives (orva_clip_playback, 1)},
      {"playback 2", [] (uint32_t h) { return orva_set_clip_playback (h, 2); }, "<Playback>field</Playback>",
       gives (orva_clip_playback, 0)},
      {"repeat", [] (uint32_t h) { return orva_set_clip_repeat (h, ORVA_REPEAT_PINGPONG); },
       "<Loop>pingpong</Loop>", gives (orva_clip_repeat, 3)},
      {"repeat, unknown", [] (uint32_t h) { return orva_set_clip_repeat (h, 5); }, "<Loop>off</Loop>",
       gives (orva_clip_repeat, 0)},
      {"loop in", [] (uint32_t h) { return orva_set_clip_loop_in_point (h, 0xFFFFFFFF); },
       "<LoopIn>4294967295</LoopIn>", gives (orva_clip_loop_in_point, 0xFFFFFFFF)},
      {"loop out", [] (uint32_t h) { return orva_set_clip_loop_out_point (h, 0); }, "<LoopOut>0</LoopOut>",
       gives (orva_clip_loop_out_point, 0)},
      {"trim start", [] (uint32_t h) { return orva_set_clip_trim_start (h, 101); },
       "<TrimStart>100</TrimStart>", gives (orva_clip_trim_start, 100)},
      {"trim start, even", [] (uint32_t h) { return orva_set_clip_trim_start (h, 102); },
       "<TrimStart>102</TrimStart>", gives (orva_clip_trim_start, 102)},
      {"trim end", [] (uint32_t h) { return orva_set_clip_trim_end (h, 0xFFFFFFFF); },
       "<TrimEnd>4294967294</TrimEnd>", gives (orva_clip_trim_end, 0xFFFFFFFE)},
  });
}

TEST (ClipSetters, SetTimecodes) {
  expect_changes ({
      {"source 0", [] (uint32_t h) { return orva_set_clip_timecode_source (h, ORVA_TIMECODE_ZERO_BASED); },
       "<TimecodeSource>zerobased</TimecodeSource>", gives (orva_clip_timecode_source, 0)},
      {"source 1", [] (uint32_t h) { return orva_set_clip_timecode_source (h, ORVA_TIMECODE_STRIPED); },
       "<TimecodeSource>striped</TimecodeSource>", gives (orva_clip_timecode_source, 1)},
      {"source 2", [] (uint32_t h) { return orva_set_clip_timecode_source (h, ORVA_TIMECODE_RECORDED); },
       "<TimecodeSource>rectc</TimecodeSource>", gives (orva_clip_timecode_source, 2)},
      {"source 3",
       [] (uint32_t h) { return orva_set_clip_timecode_source (h, ORVA_TIMECODE_RECORDED_0_STRIPE); },
       "<TimecodeSource>rec0_stripe</TimecodeSource>", gives (orva_clip_timecode_source, 3)},
      {"stripe, drop frame",
       [] (uint32_t h) { return orva_set_clip_timecode_stripe (h, 216000, ORVA_DROP_FRAME); },
       "<TimecodeSource>striped</TimecodeSource>|<StripeTimecode>|<Valid>true</Valid>|"
       "<FieldNumber>216000</FieldNumber>|<DropFrameFlag>df</DropFrameFlag>|</StripeTimecode>",
       gives_stripe (216000, 0)},
      {"stripe, non-drop",
       [] (uint32_t h) { return orva_set_clip_timecode_stripe (h, 0xFFFFFFFF, ORVA_NON_DROP_FRAME); },
       "<TimecodeSource>striped</TimecodeSource>|<StripeTimecode>|<Valid>true</Valid>|"
       "<FieldNumber>-1</FieldNumber>|<DropFrameFlag>ndf</DropFrameFlag>|</StripeTimecode>",
       gives_stripe (0xFFFFFFFF, 1)},
      {"stripe, an unknown flag", [] (uint32_t h) { return orva_set_clip_timecode_stripe (h, 0, 2); },
       "<TimecodeSource>striped</TimecodeSource>|<StripeTimecode>|<Valid>true</Valid>|"
       "<FieldNumber>0</FieldNumber>|<DropFrameFlag>df</DropFrameFlag>|</StripeTimecode>",
       gives_stripe (0, 0)},
  });
}

TEST (ClipSetters, SetPairs) {
  const std::string pairs = metadata_list ({{"desk", "foreign"}, {"late", "no"}, {"desk", "sport"}});
  expect_changes (
      {
          {"a key that stands there twice",
           [] (uint32_t h) { return orva_clip_set_meta (h, wide ("desk").c_str (), text); },
           "<MetadataList>|<Metadata>|<Key>desk</Key>|<Value>a &lt; b &amp; c</Value>|</Metadata>|"
           "</MetadataList>",
           [] (uint32_t handle) {
             EXPECT_EQ (meta (handle, "desk"), "a < b & c");
             EXPECT_EQ (keys (handle), "desk late desk ");
           }},
          {"a new key", [] (uint32_t h) { return orva_clip_set_meta (h, wide ("new").c_str (), text); },
           "<MetadataList>|<Metadata>|<Key>new</Key>|<Value>a &lt; b &amp; c</Value>|</Metadata>|"
           "</MetadataList>",
           [] (uint32_t handle) {
             EXPECT_EQ (meta (handle, "new"), "a < b & c");
             EXPECT_EQ (meta (handle, "desk"), "foreign");
             EXPECT_EQ (keys (handle), "desk late desk new ");
           }},
          {"a key away", [] (uint32_t h) { return orva_clip_delete_meta (h, wide ("desk").c_str ()); },
           "<KeyList>|<Key>desk</Key>|</KeyList>",
           [] (uint32_t handle) {
             EXPECT_EQ (meta (handle, "desk"), "sport") << "the second comes to light";
             EXPECT_EQ (keys (handle), "late desk ");
           }},
          {"a key away that is not there", [] (uint32_t h) { return orva_clip_delete_meta (h, text); },
           "<KeyList>|<Key>a &lt; b &amp; c</Key>|</KeyList>",
           [] (uint32_t handle) { EXPECT_EQ (keys (handle), "desk late desk "); }},
      },
      pairs);
}

TEST (ClipSetters, LeaveTheSecondPairOfAKeyAsItIs) {
  FakeServer server;
  accept (server, metadata_list ({{"desk", "foreign"}, {"late", "no"}, {"desk", "sport"}}));
  const Session session (server);
  const Snapshot snapshot (session);
  EXPECT_EQ (orva_clip_set_meta (snapshot, wide ("desk").c_str (), text), ORVA_OK);
  EXPECT_EQ (orva_clip_delete_meta (snapshot, wide ("desk").c_str ()), ORVA_OK);
  EXPECT_EQ (meta (snapshot, "desk"), "sport");
}

TEST (ClipSetters, SetTheFirstPairOfAClip) {
  expect_changes ({
      {"a key away that is not there", [] (uint32_t h) { return orva_clip_delete_meta (h, text); },
       "<KeyList>|<Key>a &lt; b &amp; c</Key>|</KeyList>",
       [] (uint32_t handle) { EXPECT_EQ (keys (handle), ""); }},
      {"the first key", [] (uint32_t h) { return orva_clip_set_meta (h, wide ("desk").c_str (), text); },
       "<MetadataList>|<Metadata>|<Key>desk</Key>|<Value>a &lt; b &amp; c</Value>|</Metadata>|"
       "</MetadataList>",
       [] (uint32_t handle) {
         EXPECT_EQ (meta (handle, "desk"), "a < b & c");
         EXPECT_EQ (keys (handle), "desk ");
       }},
  });
}

/// Every setter, with values that differ from those of the clip.
const std::vector<uint32_t (*) (uint32_t)> setters = {
    [] (uint32_t h) { return orva_set_clip_creator (h, text); },
    [] (uint32_t h) { return orva_set_clip_project (h, text); },
    [] (uint32_t h) { return orva_set_clip_title (h, text); },
    [] (uint32_t h) { return orva_set_clip_playback (h, 1); },
    [] (uint32_t h) { return orva_set_clip_repeat (h, 1); },
    [] (uint32_t h) { return orva_set_clip_loop_in_point (h, 2); },
    [] (uint32_t h) { return orva_set_clip_loop_out_point (h, 2); },
    [] (uint32_t h) { return orva_set_clip_trim_start (h, 2); },
    [] (uint32_t h) { return orva_set_clip_trim_end (h, 2); },
    [] (uint32_t h) { return orva_set_clip_timecode_stripe (h, 2, 1); },
    [] (uint32_t h) { return orva_set_clip_timecode_source (h, 2); },
    [] (uint32_t h) { return orva_clip_set_meta (h, wide ("desk").c_str (), text); },
    [] (uint32_t h) { return orva_clip_delete_meta (h, wide ("late").c_str ()); },
};

/// What the getters tell of the values that the setters above set.
std::string state_of (uint32_t handle) {
  std::string state;
  for (const auto get : {orva_clip_creator, orva_clip_project, orva_clip_title})
    state += text_of_clip (get, handle) + ", ";
  for (const auto get :
       {orva_clip_playback, orva_clip_repeat, orva_clip_loop_in_point, orva_clip_loop_out_point,
        orva_clip_trim_start, orva_clip_trim_end, orva_clip_timecode_source})
    state += std::to_string (number_of (get, handle)) + " ";
  return state + meta (handle, "desk") + ", " + keys (handle);
}

const std::string state_before = "Desk 4, Evening, The opener, 0 0 10 90 0 0 0 foreign, desk late ";
const std::string state_after = "a < b & c, a < b & c, a < b & c, 1 1 2 2 2 2 2 a < b & c, desk ";
const std::string two_pairs = metadata_list ({{"desk", "foreign"}, {"late", "no"}});

TEST (ClipSetters, LeaveTheSnapshotAloneWhenTheServerRefuses) {
  FakeServer server;
  accept (server, two_pairs);
  server.answer ("modify_clip_attributes", refused ("Clip is locked"));
  const Session session (server);
  const Snapshot snapshot (session);
  EXPECT_EQ (state_of (snapshot), state_before);
  for (const auto set : setters) {
    EXPECT_EQ (set (snapshot), ORVA_ERROR);
    EXPECT_EQ (last_error (), "Clip is locked");
    EXPECT_EQ (state_of (snapshot), state_before);
  }
  server.answer ("modify_clip_attributes", "<ok />");
  for (const auto set : setters)
    EXPECT_EQ (set (snapshot), ORVA_OK);
  EXPECT_EQ (state_of (snapshot), state_after);
}

TEST (ClipSetters, ChangeTheSnapshotInAnyCaseOnAnAsynchronousConnection) {
  FakeServer server;
  accept (server, two_pairs);
  server.answer ("modify_clip_attributes", refused ("Clip is locked"));
  const Session session (server);
  const Snapshot snapshot (session);
  orva_synchronous (session, 1);
  for (const auto set : setters)
    EXPECT_EQ (set (snapshot), ORVA_OK);
  EXPECT_EQ (state_of (snapshot), state_after);
  orva_sync (session);
  EXPECT_EQ (server.command_count (), 1 + setters.size ());
  EXPECT_EQ (state_of (snapshot), state_after);
}

TEST (ClipSetters, LeaveTheSnapshotAloneWhenTheConnectionIsLost) {
  FakeServer server;
  accept (server);
  server.on ("modify_clip_attributes", [&server] (const support::Command &) {
    server.drop ();
    return std::string ();
  });
  const Session session (server);
  const Snapshot snapshot (session);
  EXPECT_EQ (orva_set_clip_title (snapshot, text), ORVA_ERROR);
  EXPECT_EQ (last_error (), "Failing all outstanding commands");
  EXPECT_EQ (text_of_clip (orva_clip_title, snapshot), "The opener");
  server.answer ("modify_clip_attributes", "<ok />");
  orva_wait_until_connected (session);
  EXPECT_EQ (orva_set_clip_title (snapshot, text), ORVA_OK);
}

TEST (ClipSetters, TellWhenTheHandleIsClosedMeanwhile) {
  FakeServer server;
  accept (server);
  const Session session (server);
  for (const auto set : setters) {
    const Snapshot snapshot (session);
    server.on ("modify_clip_attributes", [&snapshot] (const support::Command &command) {
      EXPECT_EQ (orva_close_clip_metadata (snapshot), ORVA_OK);
      return support::reply_to (command, "<ok />");
    });
    EXPECT_EQ (set (snapshot), ORVA_INVALID_HANDLE);
    EXPECT_EQ (last_error (), "Invalid handle");
  }
}

TEST (ClipSetters, OfAnUnknownHandleSendNothing) {
  for (const auto set : setters) {
    EXPECT_EQ (set (0), ORVA_INVALID_HANDLE);
    EXPECT_EQ (last_error (), "Invalid handle");
  }
}

TEST (ClipSetters, SendToTheClipThatTheServerNamed) {
  FakeServer server;
  accept (server);
  server.answer ("get_clip_info", clip_info ({{"ClipID", "NEWS/0123"}}));
  const Session session (server);
  const Snapshot snapshot (session);
  EXPECT_EQ (orva_set_clip_trim_start (snapshot, 0), ORVA_OK);
  EXPECT_EQ (support::text_of (server.command (2).document, "ClipID"), "NEWS/0123");
}

TEST (ClipSetters, TakeLongTexts) {
  FakeServer server;
  accept (server);
  const Session session (server);
  const Snapshot snapshot (session);
  const std::string title (4000, 'x');
  EXPECT_EQ (orva_set_clip_title (snapshot, wide (title).c_str ()), ORVA_OK);
  EXPECT_EQ (support::text_of (server.command (2).document, "Title"), title);
  EXPECT_EQ (text_of_clip (orva_clip_title, snapshot, 4001), title);
}

} // namespace
