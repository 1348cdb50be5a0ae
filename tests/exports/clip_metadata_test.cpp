#include "exports/snapshots.h"

#include <thread>
#include <vector>

namespace {

using support::FakeServer;

const std::basic_string<orva_char> clip_text = wide ("NEWS0123");
const orva_char *const clip = clip_text.c_str ();

using GetNumber = uint32_t (*) (uint32_t, uint32_t *);
using GetStamp = uint32_t (*) (uint32_t, uint64_t *);
using GetText = uint32_t (*) (uint32_t, OrvaStringBuffer);
using GetTimecode = uint32_t (*) (uint32_t, uint32_t *, uint32_t *);

const GetNumber numbers[] = {orva_clip_video_standard, orva_get_tracks,          orva_clip_playback,
                             orva_clip_repeat,         orva_clip_loop_in_point,  orva_clip_loop_out_point,
                             orva_clip_length,         orva_clip_is_readonly,    orva_clip_trim_start,
                             orva_clip_trim_end,       orva_clip_timecode_source};
const GetStamp stamps[] = {orva_clip_last_loaded, orva_clip_last_unloaded, orva_clip_last_played,
                           orva_clip_metadata_last_edited, orva_clip_content_last_edited};
const GetText certain_texts[] = {orva_clip_creator, orva_clip_project, orva_clip_title};
const GetText optional_texts[] = {orva_clip_uuid, orva_clip_parent_uuid};

/// Start and drop frame.
std::pair<uint32_t, uint32_t> timecode (GetTimecode get, uint32_t handle) {
  std::pair<uint32_t, uint32_t> value (77, 77);
  EXPECT_EQ (get (handle, &value.first, &value.second), ORVA_OK);
  return value;
}

TEST (ClipMetadata, IsFetchedOnce) {
  FakeServer server;
  server.answer ("get_clip_info", clip_info ());
  const Session session (server);
  orva_synchronous (session, 1);
  const Snapshot snapshot (session);
  const support::Command command = server.command (1);
  EXPECT_EQ (command.document,
             document (command.xid, "<get_clip_info>|<ClipID>NEWS0123</ClipID>|</get_clip_info>"));
  EXPECT_EQ (number_of (orva_clip_length, snapshot), 1800u);
  EXPECT_EQ (text_of_clip (orva_clip_title, snapshot), "The opener");
  EXPECT_EQ (server.command_count (), 1u);
}

TEST (ClipMetadata, TellsEverything) {
  FakeServer server;
  server.answer (
      "get_clip_info",
      clip_info (
          {{"VideoStandard", "625_50i"},
           {"TrackInfoVector", "<TrackInfo><TrackType>audio</TrackType></TrackInfo>"
                               "<TrackInfo><TrackType>timecode</TrackType></TrackInfo>"
                               "<TrackInfo><TrackType>video</TrackType></TrackInfo>"
                               "<TrackInfo><TrackType>audio</TrackType></TrackInfo>"},
           {"Playback", "f12"},
           {"Loop", "pingpongto"},
           {"TimecodeSource", "rectc"},
           {"ReadOnly", "true"}},
          "<TrimStart>4</TrimStart><TrimEnd>4294967295</TrimEnd><ClipUUID>uuid-1</ClipUUID>"
          "<ParentUUID>uuid-2</ParentUUID><LoadedStamp>18446744073709551615</LoadedStamp>"
          "<UnloadedStamp>2</UnloadedStamp><PlayedStamp>3</PlayedStamp><MetaEditStamp>4</MetaEditStamp>"
          "<ContentEditStamp>5</ContentEditStamp>"));
  const Session session (server);
  const Snapshot snapshot (session);
  const uint32_t expected[] = {
      ORVA_STANDARD_625_50I, 5, ORVA_PLAYBACK_F12, ORVA_REPEAT_PINGPONG_TO, 10, 90, 1800, 1, 4, 0xFFFFFFFF,
      ORVA_TIMECODE_RECORDED};
  for (size_t i = 0; i != std::size (numbers); ++i)
    EXPECT_EQ (number_of (numbers[i], snapshot), expected[i]) << i;
  const uint64_t expected_stamps[] = {UINT64_MAX, 2, 3, 4, 5};
  for (size_t i = 0; i != std::size (stamps); ++i)
    EXPECT_EQ (number_of (stamps[i], snapshot), expected_stamps[i]) << i;
  EXPECT_EQ (text_of_clip (orva_clip_creator, snapshot), "Desk 4");
  EXPECT_EQ (text_of_clip (orva_clip_project, snapshot), "Evening");
  EXPECT_EQ (text_of_clip (orva_clip_title, snapshot), "The opener");
  EXPECT_EQ (text_of_clip (orva_clip_title, snapshot, 4), "The");
  EXPECT_EQ (text_of_clip (orva_clip_uuid, snapshot), "uuid-1");
  EXPECT_EQ (text_of_clip (orva_clip_parent_uuid, snapshot), "uuid-2");
}

TEST (ClipMetadata, ReadsWhatTheServerLeftOutAsNothing) {
  FakeServer server;
  server.answer ("get_clip_info", clip_info ({{"TrackInfoVector", ""}, {"Title", ""}}));
  const Session session (server);
  const Snapshot snapshot (session);
  for (const GetNumber get : {orva_get_tracks, orva_clip_playback, orva_clip_repeat, orva_clip_is_readonly,
                              orva_clip_trim_start, orva_clip_trim_end, orva_clip_timecode_source})
    EXPECT_EQ (number_of (get, snapshot), 0u);
  for (const GetStamp get : stamps)
    EXPECT_EQ (number_of (get, snapshot), 0u);
  for (const GetText get : {orva_clip_title, orva_clip_uuid, orva_clip_parent_uuid})
    EXPECT_EQ (text_of_clip (get, snapshot), "");
}

TEST (ClipMetadata, ConvertsTracksStandardPlaybackAndRepeat) {
  struct Row {
    const char *tag, *contents;
    GetNumber get;
    uint32_t expected;
  };
  const Row rows[] = {
      {"TrackInfoVector", "<TrackInfo><TrackType>video</TrackType></TrackInfo>", orva_get_tracks, 1},
      {"TrackInfoVector", "<TrackInfo><TrackType>key</TrackType></TrackInfo>", orva_get_tracks, 2},
      {"TrackInfoVector", "<TrackInfo><TrackType>audio</TrackType></TrackInfo>", orva_get_tracks, 4},
      {"TrackInfoVector", "<TrackInfo><TrackType>timecode</TrackType></TrackInfo>", orva_get_tracks, 0},
      {"VideoStandard", "1080_60i", orva_clip_video_standard, 0},
      {"VideoStandard", "525_59_94i", orva_clip_video_standard, 9},
      {"VideoStandard", "4K_50p", orva_clip_video_standard, 0},
      {"Playback", "auto", orva_clip_playback, 0},
      {"Playback", "field", orva_clip_playback, 0},
      {"Playback", "f12", orva_clip_playback, 1},
      {"Loop", "loop", orva_clip_repeat, 1},
      {"Loop", "loopto", orva_clip_repeat, 2},
      {"Loop", "pingpong", orva_clip_repeat, 3},
      {"Loop", "pingpongto", orva_clip_repeat, 4},
      {"Loop", "auto", orva_clip_repeat, 0},
      {"Loop", "record", orva_clip_repeat, 0},
      {"TimecodeSource", "zerobased", orva_clip_timecode_source, 0},
      {"TimecodeSource", "striped", orva_clip_timecode_source, 1},
      {"TimecodeSource", "rectc", orva_clip_timecode_source, 2},
      {"TimecodeSource", "rec0_stripe", orva_clip_timecode_source, 3},
  };
  FakeServer server;
  const Session session (server);
  for (const Row &row : rows) {
    SCOPED_TRACE (row.contents);
    server.answer ("get_clip_info", clip_info ({{row.tag, row.contents}}));
    const Snapshot snapshot (session);
    EXPECT_EQ (number_of (row.get, snapshot), row.expected);
  }
}

TEST (ClipTimecode, ComesFromItsSource) {
  using Pair = std::pair<uint32_t, uint32_t>;
  struct Row {
    const char *standard, *source, *stripe, *frame0;
    Pair stripe_expected, frame0_expected;
  };
  const char *const none = "<Valid>false</Valid>";
  const char *const stripe_ndf =
      "<Valid>true</Valid><FieldNumber>100</FieldNumber><DropFrameFlag>ndf</DropFrameFlag>";
  const char *const stripe_df =
      "<Valid>true</Valid><FieldNumber>100</FieldNumber><DropFrameFlag>df</DropFrameFlag>";
  const char *const frame0_ndf = "<Frame0Timecode><FieldNumber>-6</FieldNumber>"
                                 "<DropFrameFlag>ndf</DropFrameFlag></Frame0Timecode>";
  const char *const frame0_bare = "<Frame0Timecode><FieldNumber>50</FieldNumber></Frame0Timecode>";
  const char *const frame0_flag = "<Frame0Timecode><DropFrameFlag>ndf</DropFrameFlag></Frame0Timecode>";
  const Row rows[] = {
      // Based on zero, a stripe counts for nothing, and the first frame for itself alone.
      {"1080_59_94i", "zerobased", stripe_ndf, frame0_ndf, {0, 0}, {4294967290, 1}},
      {"1080_50i", "zerobased", stripe_df, frame0_bare, {0, 1}, {50, 1}},
      {"1080_59_94i", "striped", stripe_ndf, "", {100, 1}, {0, 0}},
      {"1080_59_94i", "striped", stripe_df, frame0_ndf, {100, 0}, {4294967290, 1}},
      {"1080_59_94i", "striped", none, frame0_bare, {0, 0}, {50, 0}},
      {"1080_59_94i", "rectc", stripe_ndf, "", {0, 0}, {0, 0}},
      {"1080_59_94i", "rectc", stripe_ndf, frame0_bare, {50, 0}, {50, 0}},
      {"1080_59_94i", "rec0_stripe", stripe_df, frame0_flag, {0, 1}, {0, 1}},
      // A standard without drop frame, whatever the record holds.
      {"1080_60i", "striped", stripe_df, "", {100, 1}, {0, 1}},
      {"1080_48i", "striped", stripe_df, "", {100, 1}, {0, 1}},
      {"1080_47_95i", "striped", stripe_df, "", {100, 1}, {0, 1}},
      {"625_50i", "rectc", none, frame0_bare, {50, 1}, {50, 1}},
      // The whole family of 59.94.
      {"4K_59_94p", "striped", stripe_df, "", {100, 0}, {0, 0}},
      {"1080_59_94p", "striped", stripe_df, "", {100, 0}, {0, 0}},
      {"720_59_94p", "striped", stripe_df, "", {100, 0}, {0, 0}},
      {"525_59_94i", "striped", stripe_df, "", {100, 0}, {0, 0}},
      // Standards of no known rate pass for drop frame, and nothing is reported.
      {"1080_30p", "striped", stripe_df, "", {100, 0}, {0, 0}},
      {"1080_23_98psf", "zerobased", none, frame0_ndf, {0, 0}, {4294967290, 1}},
      {"4K_24p", "rectc", none, "", {0, 0}, {0, 0}},
  };
  FakeServer server;
  const Session session (server);
  for (const Row &row : rows) {
    SCOPED_TRACE (std::string (row.standard) + " " + row.source);
    server.answer ("get_clip_info", clip_info ({{"VideoStandard", row.standard},
                                                {"TimecodeSource", row.source},
                                                {"StripeTimecode", row.stripe}},
                                               row.frame0));
    const Snapshot snapshot (session);
    EXPECT_EQ (timecode (orva_clip_timecode_stripe, snapshot), row.stripe_expected);
    EXPECT_EQ (timecode (orva_clip_recorded_timecode0, snapshot), row.frame0_expected);
  }
}

TEST (ClipMetadata, OfAClipThatVanishedSinceItWasListedIsRefused) {
  FakeServer server;
  server.answer ("download_clipids", {"<clipid><ClipID>NEWS0123</ClipID></clipid>", "<ok />"});
  server.answer ("get_clip_info", "<error><ErrorMessage>No such clip</ErrorMessage>"
                                  "<ErrorCode>clipnotfound</ErrorCode></error>");
  server.answer ("clip_exists", "<clipexists><ClipID>NEWS0123</ClipID><Exists>false</Exists></clipexists>");
  const Session session (server);
  uint32_t list = 0;
  ASSERT_EQ (orva_open_clip_list (session, &list), ORVA_OK);
  EXPECT_EQ (filled ([&] (OrvaStringBuffer name) { orva_get_clip_name (list, name); }), "NEWS0123");
  uint32_t handle = 77;
  EXPECT_EQ (orva_open_clip_metadata (session, wide ("NEWS0123").c_str (), &handle), ORVA_ERROR);
  EXPECT_EQ (last_error (), "No such clip");
  EXPECT_EQ (handle, 77u);
  uint32_t exists = 77;
  EXPECT_EQ (orva_clip_exists (session, wide ("NEWS0123").c_str (), &exists), ORVA_OK);
  EXPECT_EQ (exists, 0u);
  orva_close_clip_list (list);
}

TEST (ClipMetadata, OfAClipThatDoesNotExistIsRefused) {
  FakeServer server;
  server.answer ("get_clip_info", "<error><ErrorMessage>No such clip</ErrorMessage>"
                                  "<ErrorCode>clipnotfound</ErrorCode></error>");
  const Session session (server);
  uint32_t handle = 77;
  EXPECT_EQ (orva_open_clip_metadata (session, clip, &handle), ORVA_ERROR);
  EXPECT_EQ (last_error (), "No such clip");
  EXPECT_EQ (orva_open_clip_metadata (session, clip, nullptr), ORVA_ERROR);
  EXPECT_EQ (orva_open_clip_metadata (0, clip, &handle), ORVA_INVALID_HANDLE);
  EXPECT_EQ (handle, 77u);
}

TEST (ClipMetadata, NeedsNoPlaceForTheHandle) {
  FakeServer server;
  server.answer ("get_clip_info", clip_info ());
  const Session session (server);
  EXPECT_EQ (orva_open_clip_metadata (session, clip, nullptr), ORVA_OK);
  EXPECT_EQ (server.command_count (), 1u);
  const Snapshot next (session);
  EXPECT_EQ (uint32_t{next}, session + 1) << "no number was used for the snapshot that nobody wanted";
}

TEST (ClipMetadata, SharesItsNumbersWithConnectionsAndLists) {
  FakeServer server;
  server.answer ("get_clip_info", clip_info ());
  server.answer ("download_clipids", "<ok />");
  const Session session (server);
  uint32_t list = 0;
  EXPECT_EQ (orva_open_clip_list (session, &list), ORVA_OK);
  const Snapshot snapshot (session);
  EXPECT_EQ (list, session + 1);
  EXPECT_EQ (snapshot, list + 1);
  EXPECT_EQ (orva_get_clip_name (snapshot, {nullptr, 0}), ORVA_INVALID_HANDLE);
  orva_close_clip_list (snapshot);
  EXPECT_EQ (number_of (orva_clip_length, snapshot), 1800u) << "a list of that number was closed, if any";
  orva_close_clip_list (list);
}

TEST (ClipMetadata, ThatIsNotOpenGivesInvalidHandle) {
  uint32_t number = 77;
  uint64_t stamp = 77;
  for (const GetNumber get : numbers)
    EXPECT_EQ (get (0, &number), ORVA_INVALID_HANDLE);
  for (const GetStamp get : stamps)
    EXPECT_EQ (get (0, &stamp), ORVA_INVALID_HANDLE);
  for (const GetTimecode get : {orva_clip_timecode_stripe, orva_clip_recorded_timecode0})
    EXPECT_EQ (get (0, &number, &number), ORVA_INVALID_HANDLE);
  EXPECT_EQ (number, 77u);
  EXPECT_EQ (stamp, 77u);
  for (const GetText get : certain_texts) {
    orva_char unit = '#';
    EXPECT_EQ (get (0, {&unit, 1}), ORVA_INVALID_HANDLE);
    EXPECT_EQ (unit, orva_char (0)) << "written in any case";
  }
  for (const GetText get : optional_texts) {
    orva_char unit = '#';
    EXPECT_EQ (get (0, {&unit, 1}), ORVA_INVALID_HANDLE);
    EXPECT_EQ (unit, orva_char ('#')) << "left alone";
  }
  EXPECT_EQ (last_error (), "Invalid handle");
}

TEST (ClipMetadata, IsUnknownOnceClosed) {
  FakeServer server;
  server.answer ("get_clip_info", clip_info ());
  const Session session (server);
  const Snapshot snapshot (session);
  EXPECT_EQ (orva_close_clip_metadata (snapshot), ORVA_OK);
  uint32_t number = 77;
  std::thread ([&] { EXPECT_EQ (orva_clip_length (snapshot, &number), ORVA_INVALID_HANDLE); }).join ();
  EXPECT_EQ (number, 77u);
  orva_clip_length (snapshot, &number);
  EXPECT_EQ (orva_close_clip_metadata (snapshot), ORVA_OK);
  EXPECT_EQ (last_error (), "OK");
  EXPECT_EQ (orva_close_metakeys (snapshot), ORVA_OK);
  EXPECT_EQ (orva_close_clip_metadata (0), ORVA_OK);
}

TEST (ClipMetadata, OutlivesItsConnection) {
  FakeServer server;
  server.answer ("get_clip_info", clip_info ({}, metadata_list ({{"desk", "foreign"}})));
  server.answer_any ("<ok />");
  const uint32_t connection = orva_connect (server.address ());
  orva_wait_until_connected (connection);
  const Snapshot snapshot (connection);
  orva_close (connection);
  EXPECT_EQ (number_of (orva_clip_length, snapshot), 1800u);
  EXPECT_EQ (meta (snapshot, "desk"), "foreign");
  EXPECT_EQ (keys (snapshot), "desk ");
  EXPECT_EQ (orva_set_clip_title (snapshot, clip), ORVA_INVALID_HANDLE);
  EXPECT_EQ (orva_clip_set_meta (snapshot, clip, clip), ORVA_INVALID_HANDLE);
  EXPECT_EQ (orva_clip_delete_meta (snapshot, wide ("desk").c_str ()), ORVA_INVALID_HANDLE);
  EXPECT_EQ (last_error (), "Invalid handle");
  EXPECT_EQ (text_of_clip (orva_clip_title, snapshot), "The opener");
  EXPECT_EQ (keys (snapshot), "desk ");
}

TEST (ClipMetadata, OverTheLimitOfAMessageEndsTheConnectionWhichRecovers) {
  FakeServer server;
  server.answer ("get_clip_info", clip_info ({{"Title", std::string (40000, 'x')}}));
  const Session session (server);
  uint32_t handle = 77;
  EXPECT_EQ (orva_open_clip_metadata (session, clip, &handle), ORVA_ERROR);
  EXPECT_EQ (last_error (), "Failing all outstanding commands");
  EXPECT_EQ (handle, 77u);
  server.answer ("get_clip_info", clip_info ({{"Title", std::string (30000, 'x')}}));
  ASSERT_TRUE (server.wait_for_connections (2));
  orva_wait_until_connected (session);
  const Snapshot snapshot (session);
  EXPECT_EQ (text_of_clip (orva_clip_title, snapshot, 32000).size (), 30000u);
}

// --- Pairs

TEST (ClipPairs, AreFoundByTheirWholeKey) {
  FakeServer server;
  server.answer ("get_clip_info",
                 clip_info ({}, metadata_list ({{"desk", "foreign"}, {"Desk", ""}, {"desk", "sport"}})));
  const Session session (server);
  const Snapshot snapshot (session);
  struct Row {
    const char *key;
    uint32_t has;
    const char *value;
  };
  const Row rows[] = {{"desk", 1, "foreign"}, {"Desk", 1, ""}, {"des", 0, ""}, {"desk ", 0, ""}, {"", 0, ""}};
  for (const Row &row : rows) {
    SCOPED_TRACE (row.key);
    uint32_t has = 77;
    EXPECT_EQ (orva_clip_has_meta (snapshot, wide (row.key).c_str (), &has), ORVA_OK);
    EXPECT_EQ (has, row.has);
    EXPECT_EQ (meta (snapshot, row.key), row.value);
    EXPECT_EQ (last_error (), "OK");
  }
  EXPECT_EQ (orva_clip_has_meta (snapshot, clip, nullptr), ORVA_OK);
  EXPECT_EQ (keys (snapshot), "desk Desk desk ");
  EXPECT_EQ (server.command_count (), 1u);
}

TEST (ClipPairs, OfAClipWithoutAnyAreNone) {
  FakeServer server;
  server.answer ("get_clip_info", clip_info ());
  const Session session (server);
  const Snapshot snapshot (session);
  uint32_t has = 77;
  EXPECT_EQ (orva_clip_has_meta (snapshot, clip, &has), ORVA_OK);
  EXPECT_EQ (has, 0u);
  EXPECT_EQ (meta (snapshot, "desk"), "");
  EXPECT_EQ (keys (snapshot), "");
  EXPECT_EQ (orva_clip_open_metakeys (snapshot, nullptr), ORVA_OK);
}

TEST (ClipPairs, OfAnUnknownHandleAreNone) {
  uint32_t number = 77;
  EXPECT_EQ (orva_clip_has_meta (0, clip, &number), ORVA_INVALID_HANDLE);
  EXPECT_EQ (number, 0u) << "written in any case";
  EXPECT_EQ (last_error (), "Invalid handle");
  EXPECT_EQ (orva_clip_has_meta (0, clip, nullptr), ORVA_INVALID_HANDLE);
  orva_char unit = '#';
  EXPECT_EQ (orva_clip_get_meta (0, clip, {&unit, 1}), ORVA_INVALID_HANDLE);
  EXPECT_EQ (unit, orva_char (0));
  number = 77;
  EXPECT_EQ (orva_clip_open_metakeys (0, &number), ORVA_INVALID_HANDLE);
  EXPECT_EQ (orva_clip_open_metakeys (0, nullptr), ORVA_INVALID_HANDLE);
  EXPECT_EQ (number, 77u);
  EXPECT_EQ (orva_clip_set_meta (0, clip, clip), ORVA_INVALID_HANDLE);
  EXPECT_EQ (orva_clip_delete_meta (0, clip), ORVA_INVALID_HANDLE);
}

TEST (ClipPairs, KeysAreASnapshotOfTheirOwn) {
  FakeServer server;
  server.answer_any ("<ok />");
  server.answer ("get_clip_info", clip_info ({}, metadata_list ({{"desk", "foreign"}, {"late", "no"}})));
  const Session session (server);
  const Snapshot snapshot (session);
  uint32_t list = 0;
  EXPECT_EQ (orva_clip_open_metakeys (snapshot, &list), ORVA_OK);
  EXPECT_EQ (orva_clip_set_meta (snapshot, clip, clip), ORVA_OK);
  EXPECT_EQ (orva_clip_delete_meta (snapshot, wide ("desk").c_str ()), ORVA_OK);
  EXPECT_EQ (keys (snapshot), "late NEWS0123 ");
  for (const char *key : {"desk", "late", "", ""})
    EXPECT_EQ (text_of_clip (orva_get_metakey, list), key);
  EXPECT_EQ (orva_close_metakeys (list), ORVA_OK);
  EXPECT_EQ (last_error (), "OK");
  EXPECT_EQ (orva_get_metakey (list, {nullptr, 0}), ORVA_INVALID_HANDLE);
  EXPECT_EQ (orva_close_metakeys (list), ORVA_OK);
}

TEST (ClipPairs, AreNotCutThroughACharacter) {
  FakeServer server;
  server.answer ("get_clip_info", clip_info ({}, metadata_list ({{"clef", "\xF0\x9D\x84\x9E"}})));
  const Session session (server);
  const Snapshot snapshot (session);
  orva_char units[3] = {'#', '#', '#'};
  EXPECT_EQ (orva_clip_get_meta (snapshot, wide ("clef").c_str (), {units, 2}), ORVA_OK);
  EXPECT_EQ (units[0], orva_char (0));
  EXPECT_EQ (orva_clip_get_meta (snapshot, wide ("clef").c_str (), {units, 3}), ORVA_OK);
  EXPECT_EQ (units[0], orva_char (0xD834));
  EXPECT_EQ (units[1], orva_char (0xDD1E));
  EXPECT_EQ (units[2], orva_char (0));
}

// --- Threads

// Whatever the order, a snapshot is known or it is not, and each record is of one moment.
TEST (ClipMetadata, MayBeReadChangedAndClosedByManyThreads) {
  FakeServer server;
  server.answer_any ("<ok />");
  server.answer ("get_clip_info", clip_info ({}, metadata_list ({{"desk", "foreign"}})));
  const Session session (server);
  const Snapshot shared (session);
  std::vector<std::thread> threads;
  for (uint32_t i = 0; i != 8; ++i)
    threads.emplace_back ([&, i] {
      for (uint32_t round = 0; round != 15; ++round) {
        const Snapshot own (session);
        EXPECT_EQ (orva_set_clip_timecode_stripe (shared, i, i % 2), ORVA_OK);
        const auto [start, drop_frame] = timecode (orva_clip_timecode_stripe, shared);
        EXPECT_EQ (drop_frame, start % 2);
        EXPECT_EQ (orva_clip_set_meta (shared, wide (std::string (1, char ('a' + i))).c_str (), clip),
                   ORVA_OK);
        EXPECT_EQ (meta (own, "desk"), "foreign");
        EXPECT_EQ (orva_close_clip_metadata (own), ORVA_OK);
        EXPECT_EQ (keys (shared).substr (0, 5), "desk ");
      }
    });
  for (std::thread &thread : threads)
    thread.join ();
  EXPECT_EQ (keys (shared).size (), 5u + 16);
}

} // namespace
