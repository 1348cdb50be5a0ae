"""Virtual clips: segments of others, track by track."""

import re

import support
from support import tag

VIDEO = "<TrackSet><TrackType>video</TrackType></TrackSet>"
BOTH = "<TrackSet><TrackType>video</TrackType><TrackType>audio</TrackType></TrackSet>"


class VirtualClips(support.Case):
    def open_clip(self, name, length=100):
        self.name = "<VClipID>%s</VClipID>" % name
        self.c = self.client()
        self.do("vclip_create", "<ClipLength>%d</ClipLength>" % length)
        self.do("vclip_modification_start")

    def do(self, command, arguments=""):
        self.assertEqual(self.c.answer("<%s>%s%s</%s>" % (command, self.name, arguments, command)), "<ok />")

    def refused(self, command, arguments, text, code="general"):
        self.assertRefused(self.c, "<%s>%s%s</%s>" % (command, self.name, arguments, command), text, code)

    def add(self, clip, start, tracks, at, length, speed="1X"):
        self.do("vclip_add_segment", "<ClipID>%s</ClipID><ClipPosition>%d</ClipPosition>%s<VClipPosition>%d"
                "</VClipPosition><ClipLength>%d</ClipLength><Speed>%s</Speed>" % (clip, start, tracks, at, length, speed))

    def lines(self):
        name = re.search(">(.*)<", self.name).group(1)
        return re.findall("<Key>(.*?)</Key>", self.c.ask("<get_volatile_file_info><ClipID>%s</ClipID>"
                                                         "</get_volatile_file_info>" % name)[0])

    def test_segments_replace_what_lies_below(self):
        self.open_clip("V1")
        self.add("BARS", 1000, BOTH, 0, 60)
        self.add("COUNTDOWN", 10, VIDEO, 20, 10, "2X")
        self.assertEqual(self.lines(), ["video 0 20 BARS 1000 1X", "video 20 10 COUNTDOWN 10 2X",
                                        "video 30 30 BARS 1030 1X", "audio 0 60 BARS 1000 1X"])
        self.do("vclip_clear_segment", VIDEO + "<VClipPosition>25</VClipPosition><ClipLength>10</ClipLength>")
        self.assertEqual(self.lines(), ["video 0 20 BARS 1000 1X", "video 20 5 COUNTDOWN 10 2X",
                                        "video 35 25 BARS 1035 1X", "audio 0 60 BARS 1000 1X"])

    def test_ripple_moves_what_comes_behind(self):
        self.open_clip("V2")
        self.add("BARS", 0, VIDEO, 0, 50)
        ripple = VIDEO + "<VClipPosition>%d</VClipPosition><VClipDistance>%d</VClipDistance>"
        self.do("vclip_ripple", ripple % (20, 15))
        self.assertEqual(self.lines(), ["video 0 20 BARS 0 1X", "video 35 30 BARS 20 1X"])
        self.do("vclip_ripple", ripple % (40, -10))
        self.assertEqual(self.lines(), ["video 0 20 BARS 0 1X", "video 30 25 BARS 25 1X"])
        self.do("vclip_ripple", ripple % (30, 60))
        self.assertEqual(self.lines(), ["video 0 20 BARS 0 1X", "video 90 10 BARS 25 1X"])
        self.do("vclip_ripple", ripple % (10, -2147483648))
        self.assertEqual(self.lines(), ["video 0 10 BARS 10 1X", "video 80 10 BARS 25 1X"])
        self.do("vclip_ripple", ripple % (0, 2147483647))
        self.assertEqual(self.lines(), [])

    def test_tracks(self):
        self.open_clip("V3")
        self.add("NEWS/OPENER", 0, BOTH, 0, 10)
        self.do("vclip_track_enable", VIDEO)
        self.assertEqual(self.lines(), ["video 0 10 NEWS/OPENER 0 1X", "audio (off) 0 10 NEWS/OPENER 0 1X"])
        self.do("vclip_cfg_tracks", "<ClipID>NEWS/OPENER</ClipID>" + VIDEO)
        self.assertEqual(self.lines(), ["audio (off) 0 10 NEWS/OPENER 0 1X"])
        self.refused("vclip_cfg_tracks", "<ClipID>BARS</ClipID><TrackSet><TrackType>key</TrackType></TrackSet>",
                     "Clip &apos;BARS&apos; lacks one of the tracks")
        self.refused("vclip_track_enable", "<TrackSet><TrackType>timecode</TrackType></TrackSet>",
                     "A virtual clip has no timecode track")

    def test_refusals(self):
        self.open_clip("V4")
        add = "<ClipID>%s</ClipID><ClipPosition>%d</ClipPosition>" + VIDEO + \
            "<VClipPosition>%d</VClipPosition><ClipLength>%d</ClipLength>"
        self.refused("vclip_add_segment", add % ("NO", 0, 0, 1), "Clip &apos;NO&apos; does not exist", "clipnotfound")
        self.refused("vclip_add_segment", add % ("BARS", 0, 90, 11),
                     "Fields 90 to 101 are not in the virtual clip, which has 100")
        self.refused("vclip_add_segment", add % ("COUNTDOWN", 595, 0, 10),
                     "Fields 595 to 604 are not in clip &apos;COUNTDOWN&apos;, which has 600")
        self.refused("vclip_create", "<ClipLength>1</ClipLength>", "Virtual clip &apos;V4&apos; exists already")
        self.refused("vclip_modification_start", "", "Virtual clip &apos;V4&apos; is being modified")
        self.do("vclip_modification_end")
        self.refused("vclip_add_segment", add % ("BARS", 0, 0, 1), "Virtual clip &apos;V4&apos; is not being modified")
        self.do("vclip_free")
        self.refused("vclip_free", "", "Virtual clip &apos;V4&apos; does not exist", "clipnotfound")

    def test_it_plays(self):
        self.open_clip("V5", 40)
        self.add("BARS", 0, VIDEO, 0, 40)
        cue = "<cue_clip><Channel>A</Channel><ClipID>V5</ClipID>%s</cue_clip>"
        self.assertRefused(self.c, cue % "", "Clip &apos;V5&apos; does not exist", "clipnotfound")
        self.assertRefused(self.c, cue % "<ClipScope>vclip</ClipScope>", "Virtual clip &apos;V5&apos; is being modified")
        self.do("vclip_modification_end")
        self.assertEqual(self.c.answer(cue % "<GotoPosition>10</GotoPosition><ClipScope>vclip</ClipScope>"), "<ok />")
        self.refused("vclip_free", "", "&apos;V5&apos; is loaded on channel A")
        self.assertRefused(self.c, "<insert_edit><Channel>A</Channel><SonyEditMask>1</SonyEditMask></insert_edit>",
                           "Virtual clip &apos;V5&apos; cannot be recorded into")
        self.c.answer("<channel_report_register><Channel>A</Channel><ChannelReportType>timecode</ChannelReportType>"
                      "</channel_report_register>")
        self.c.answer("<play><Channel>A</Channel></play>")
        self.c.wait_report(lambda report: tag(report, "ClipPosition") == "39")
        self.c.answer("<unload><Channel>A</Channel></unload>")
        self.do("vclip_free")
