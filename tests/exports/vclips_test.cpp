#include "exports/session.h"

#include <gtest/gtest.h>

namespace {

const std::basic_string<orva_char> vclip_text = wide ("PROMO");
const std::basic_string<orva_char> clip_text = wide ("NEWS0123");
const orva_char *const vclip = vclip_text.c_str ();
const orva_char *const clip = clip_text.c_str ();

TEST (VirtualClips, AreMadeChangedAndFreed) {
  expect_wire ({
      {"create", [] (uint32_t c) { return orva_vclip_create (c, vclip, 500); },
       "<vclip_create>|<VClipID>PROMO</VClipID>|<ClipLength>500</ClipLength>|</vclip_create>"},
      {"free", [] (uint32_t c) { return orva_vclip_free (c, vclip); },
       "<vclip_free>|<VClipID>PROMO</VClipID>|</vclip_free>"},
      {"modification_start", [] (uint32_t c) { return orva_vclip_modification_start (c, vclip); },
       "<vclip_modification_start>|<VClipID>PROMO</VClipID>|</vclip_modification_start>"},
      {"modification_end", [] (uint32_t c) { return orva_vclip_modification_end (c, vclip); },
       "<vclip_modification_end>|<VClipID>PROMO</VClipID>|</vclip_modification_end>"},
      {"add_segment1, video only",
       [] (uint32_t c) { return orva_vclip_add_segment1 (c, vclip, clip, 10, 1, 20, 30); },
       "<vclip_add_segment>|<VClipID>PROMO</VClipID>|<ClipID>NEWS0123</ClipID>|"
       "<ClipPosition>10</ClipPosition>|<TrackSet>|<TrackType>video</TrackType>|</TrackSet>|"
       "<VClipPosition>20</VClipPosition>|<ClipLength>30</ClipLength>|</vclip_add_segment>"},
      {"add_segment1, no track",
       [] (uint32_t c) { return orva_vclip_add_segment1 (c, vclip, clip, 0, 8, 0, 0xFFFFFFFF); },
       "<vclip_add_segment>|<VClipID>PROMO</VClipID>|<ClipID>NEWS0123</ClipID>|"
       "<ClipPosition>0</ClipPosition>|<TrackSet />|<VClipPosition>0</VClipPosition>|"
       "<ClipLength>4294967295</ClipLength>|</vclip_add_segment>"},
      {"add_segment2, too fast",
       [] (uint32_t c) { return orva_vclip_add_segment2 (c, vclip, clip, 10, 7, 20, 30, 300.0); },
       "<vclip_add_segment>|<VClipID>PROMO</VClipID>|<ClipID>NEWS0123</ClipID>|"
       "<ClipPosition>10</ClipPosition>|<TrackSet>|<TrackType>video</TrackType>|<TrackType>key</TrackType>|"
       "<TrackType>audio</TrackType>|</TrackSet>|<VClipPosition>20</VClipPosition>|"
       "<ClipLength>30</ClipLength>|<Speed>200X</Speed>|</vclip_add_segment>"},
      {"clear_segment", [] (uint32_t c) { return orva_vclip_clear_segment (c, vclip, 2, 20, 30); },
       "<vclip_clear_segment>|<VClipID>PROMO</VClipID>|<TrackSet>|<TrackType>key</TrackType>|</TrackSet>|"
       "<VClipPosition>20</VClipPosition>|<ClipLength>30</ClipLength>|</vclip_clear_segment>"},
      {"ripple", [] (uint32_t c) { return orva_vclip_ripple (c, vclip, 4, 20, -30); },
       "<vclip_ripple>|<VClipID>PROMO</VClipID>|<TrackSet>|<TrackType>audio</TrackType>|</TrackSet>|"
       "<VClipPosition>20</VClipPosition>|<VClipDistance>-30</VClipDistance>|</vclip_ripple>"},
      {"track_enable", [] (uint32_t c) { return orva_vclip_track_enable (c, vclip, 5); },
       "<vclip_track_enable>|<VClipID>PROMO</VClipID>|<TrackSet>|<TrackType>video</TrackType>|"
       "<TrackType>audio</TrackType>|</TrackSet>|</vclip_track_enable>"},
      {"cfg_tracks", [] (uint32_t c) { return orva_vclip_cfg_tracks (c, vclip, clip, 0); },
       "<vclip_cfg_tracks>|<VClipID>PROMO</VClipID>|<ClipID>NEWS0123</ClipID>|<TrackSet />|"
       "</vclip_cfg_tracks>"},
  });
}

TEST (VirtualClips, AreLoaded) {
  expect_wire ({
      {"load_vclip1", [] (uint32_t c) { return orva_cmd_load_vclip1 (c, 1, vclip); },
       "<cue_clip>|<Channel>B</Channel>|<ClipID>PROMO</ClipID>|<ClipScope>vclip</ClipScope>|</cue_clip>"},
      {"load_vclip2", [] (uint32_t c) { return orva_cmd_load_vclip2 (c, 8, vclip, ORVA_REPEAT_LOOP); },
       "<cue_clip>|<Channel>A</Channel>|<ClipID>PROMO</ClipID>|<Loop>loop</Loop>|"
       "<ClipScope>vclip</ClipScope>|</cue_clip>"},
      {"load_vclip3", [] (uint32_t c) { return orva_cmd_load_vclip3 (c, 1, vclip, 9, 40); },
       "<cue_clip>|<Channel>B</Channel>|<ClipID>PROMO</ClipID>|<Loop>off</Loop>|"
       "<GotoPosition>40</GotoPosition>|<ClipScope>vclip</ClipScope>|</cue_clip>"},
  });
}

} // namespace
