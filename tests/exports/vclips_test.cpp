#include "exports/session.h"

#include <gtest/gtest.h>

namespace {

const std::basic_string<orva_char> vclip_text = wide ("PROMO");
const std::basic_string<orva_char> clip_text = wide ("NEWS0123");
const orva_char *const vclip = vclip_text.c_str ();
const orva_char *const clip = clip_text.c_str ();

TEST (VirtualClips, AreMadeChangedAndFreed) {
  expect_wire ({
      SENDS (orva_vclip_create (c, vclip, 500), "vclip_create VClipID=PROMO ClipLength=500"),
      SENDS (orva_vclip_free (c, vclip), "vclip_free VClipID=PROMO"),
      SENDS (orva_vclip_modification_start (c, vclip), "vclip_modification_start VClipID=PROMO"),
      SENDS (orva_vclip_modification_end (c, vclip), "vclip_modification_end VClipID=PROMO"),
      SENDS (orva_vclip_add_segment1 (c, vclip, clip, 10, 1, 20, 30), // video only
             "vclip_add_segment VClipID=PROMO ClipID=NEWS0123 ClipPosition=10 TrackSet{TrackType=video} "
             "VClipPosition=20 ClipLength=30"),
      SENDS (orva_vclip_add_segment1 (c, vclip, clip, 0, 8, 0, 0xFFFFFFFF), // no track
             "vclip_add_segment VClipID=PROMO ClipID=NEWS0123 ClipPosition=0 TrackSet VClipPosition=0 "
             "ClipLength=4294967295"),
      SENDS (orva_vclip_add_segment2 (c, vclip, clip, 10, 7, 20, 30, 300.0), // too fast
             "vclip_add_segment VClipID=PROMO ClipID=NEWS0123 ClipPosition=10 TrackSet{TrackType=video "
             "TrackType=key TrackType=audio} VClipPosition=20 ClipLength=30 Speed=200X"),
      SENDS (orva_vclip_clear_segment (c, vclip, 2, 20, 30),
             "vclip_clear_segment VClipID=PROMO TrackSet{TrackType=key} VClipPosition=20 ClipLength=30"),
      SENDS (orva_vclip_ripple (c, vclip, 4, 20, -30),
             "vclip_ripple VClipID=PROMO TrackSet{TrackType=audio} VClipPosition=20 VClipDistance=-30"),
      SENDS (orva_vclip_track_enable (c, vclip, 5),
             "vclip_track_enable VClipID=PROMO TrackSet{TrackType=video TrackType=audio}"),
      SENDS (orva_vclip_cfg_tracks (c, vclip, clip, 0),
             "vclip_cfg_tracks VClipID=PROMO ClipID=NEWS0123 TrackSet"),
  });
}

TEST (VirtualClips, AreLoaded) {
  expect_wire ({
      SENDS (orva_cmd_load_vclip1 (c, 1, vclip), "cue_clip Channel=B ClipID=PROMO ClipScope=vclip"),
      SENDS (orva_cmd_load_vclip2 (c, 8, vclip, ORVA_REPEAT_LOOP),
             "cue_clip Channel=A ClipID=PROMO Loop=loop ClipScope=vclip"),
      SENDS (orva_cmd_load_vclip3 (c, 1, vclip, 9, 40),
             "cue_clip Channel=B ClipID=PROMO Loop=off GotoPosition=40 ClipScope=vclip"),
  });
}

} // namespace
