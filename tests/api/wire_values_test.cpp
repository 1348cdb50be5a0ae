// No value that a server may send fails an assertion when it is converted.
#include "exports/snapshots.h"
#include "schema/enumerations.h"
#include "support/assert_counter.h"
#include "support/fake_server.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace {

using QUILL3::Enumeration;

std::vector<std::string> spellings (Enumeration which) {
  std::vector<std::string> all;
  for (uint32_t n = 0; QUILL3::is_valid (which, n); ++n)
    all.push_back (QUILL3::enumeration (which).text_of (n).to_std_string ());
  return all;
}

/// Reads everything out of a clip with these fields that is converted on the way.
void read_all (support::FakeServer &server, uint32_t session,
               const std::map<std::string, std::string> &fields) {
  server.answer ("get_clip_info", clip_info (fields));
  const Snapshot snapshot (session);
  for (const auto get : {orva_clip_video_standard, orva_get_tracks, orva_clip_playback, orva_clip_repeat,
                         orva_clip_timecode_source}) {
    uint32_t value = 77;
    EXPECT_EQ (get (snapshot, &value), ORVA_OK);
    EXPECT_NE (value, 77u);
  }
  for (const auto get : {orva_clip_timecode_stripe, orva_clip_recorded_timecode0}) {
    uint32_t start = 0;
    uint32_t drop_frame = 77;
    EXPECT_EQ (get (snapshot, &start, &drop_frame), ORVA_OK);
    EXPECT_LE (drop_frame, 1u);
  }
}

TEST (WireValues, OfClipsReachNoReporter) {
  support::FakeServer server;
  const Session session (server);
  AssertCounter asserts;
  for (const std::string &standard : spellings (Enumeration::VideoStandard))
    for (const std::string &source : spellings (Enumeration::TimecodeSource))
      read_all (server, session, {{"VideoStandard", standard}, {"TimecodeSource", source}});
  for (const std::string &loop : spellings (Enumeration::Loop))
    read_all (server, session, {{"Loop", loop}});
  for (const std::string &playback : spellings (Enumeration::Playback))
    read_all (server, session, {{"Playback", playback}});
  for (const std::string &track : spellings (Enumeration::TrackType))
    read_all (server, session,
              {{"TrackInfoVector", "<TrackInfo><TrackType>" + track + "</TrackType></TrackInfo>"}});
  EXPECT_EQ (asserts.count (), 0u);
  EXPECT_EQ (server.command_count (), 27u * 4 + 7 + 3 + 4);
}

TEST (WireValues, OfTheServerReachNoReporter) {
  support::FakeServer server;
  const Session session (server);
  AssertCounter asserts;
  const auto ask = [&] (const std::string &standard, const std::string &rate, const std::string &resolution) {
    server.answer ("get_video_standard",
                   "<video_standard><VideoStandard>" + standard + "</VideoStandard><VideoRate>" + rate +
                       "</VideoRate><VideoResolution>" + resolution + "</VideoResolution></video_standard>");
    for (const auto get : {orva_video_standard, orva_video_frequency, orva_video_resolution}) {
      uint32_t value = 77;
      EXPECT_EQ (get (session, &value), ORVA_OK);
      EXPECT_LE (value, 9u);
    }
  };
  for (const std::string &standard : spellings (Enumeration::VideoStandard))
    ask (standard, "60", "4K");
  for (const std::string &rate : spellings (Enumeration::VideoRate))
    ask ("4K_60p", rate, "4K");
  for (const std::string &resolution : spellings (Enumeration::VideoResolution))
    ask ("4K_60p", "60", resolution);
  EXPECT_EQ (asserts.count (), 0u);
  EXPECT_EQ (server.command_count (), 3u * (27 + 10 + 6));
}

} // namespace
