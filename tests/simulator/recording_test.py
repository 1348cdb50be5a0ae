"""Recording: nothing of it is lost, and nothing is recorded that must not be."""

import unittest

import support
from support import tag
from transport_test import Desk

TRACKS = "<TrackSet><TrackType>video</TrackType></TrackSet>"
ARM = "<SonyEditMask>1023</SonyEditMask>"


class Recording(support.Case):
    def start(self, letter, name, length=0):
        """A channel that records a new clip."""
        desk = Desk(self, letter)
        desk.do("create_clip", "", before="<ClipID>%s</ClipID>%s<ClipLength>%d</ClipLength>" % (name, TRACKS, length))
        desk.do("insert_edit", ARM)
        desk.do("play")
        desk.wait_position(lambda position: position >= 10)
        return desk

    def info(self, client, name, what):
        return tag(client.answer("<get_clip_info><ClipID>%s</ClipID></get_clip_info>" % name), what)

    def modify(self, client, name, change):
        self.assertEqual(client.answer("<modify_clip_attributes><ClipID>%s</ClipID><ClipAttrChange>%s</ClipAttrChange>"
                                       "</modify_clip_attributes>" % (name, change)), "<ok />")

    def space(self, client):
        return int(tag(client.answer("<get_disk_usage />"), "AvailableDiskSpace"))

    def test_a_clip_may_be_edited_while_it_is_recorded(self):
        desk = self.start("A", "EDITED")
        before = desk.position()
        self.modify(desk.client, "EDITED", "<Title>new</Title>")
        self.assertGreaterEqual(desk.position(), before)
        self.assertGreater(int(self.info(desk.client, "EDITED", "ClipLength")), before)
        desk.wait_position(lambda position: position >= before + 10)
        desk.do("stop")
        self.assertEqual(int(self.info(desk.client, "EDITED", "ClipLength")), desk.position() + 1)
        self.assertEqual(self.info(desk.client, "EDITED", "Title"), "new")

    def test_a_clip_may_be_renamed_while_it_is_recorded(self):
        desk = self.start("A", "OLDNAME")
        self.assertEqual(desk.client.answer("<rename_clip><FromID>OLDNAME</FromID><ToID>NEWNAME</ToID></rename_clip>"),
                         "<ok />")
        place = desk.position()
        self.assertGreaterEqual(place, 10)
        desk.wait_position(lambda position: position >= place + 10)
        desk.do("stop")
        self.assertEqual(int(self.info(desk.client, "NEWNAME", "ClipLength")), desk.position() + 1)
        self.assertIn("does not exist", desk.client.answer("<get_clip_info><ClipID>OLDNAME</ClipID></get_clip_info>"))

    def test_a_clip_may_be_trimmed_while_it_is_recorded(self):
        desk = self.start("A", "TRIMMED")
        self.modify(desk.client, "TRIMMED", "<TrimEnd>5</TrimEnd>")
        place = desk.position()
        desk.wait_position(lambda position: position >= place + 10)
        desk.do("stop")
        length = desk.position() + 1
        self.assertEqual(int(self.info(desk.client, "TRIMMED", "ClipLength")), length)
        self.assertEqual(int(self.info(desk.client, "TRIMMED", "ClipLengthUntrimmed")), length + 5)

    def test_the_clip_and_the_space_follow_the_recording(self):
        client = self.client()
        client.answer("<report_register><ReportType>disk_space</ReportType></report_register>")
        client.settled_reports()
        before = self.space(client)
        desk = self.start("A", "GROWING")
        length = int(self.info(client, "GROWING", "ClipLength"))
        self.assertGreater(length, 10)
        self.assertLessEqual(self.space(client), before - length * 262144)
        report = client.wait_report(lambda text: int(tag(text, "AvailableDiskSpace")) < before)
        self.assertLess(int(tag(report, "AvailableDiskSpace")), before)
        self.assertEqual(desk.status(), "record")
        desk.do("stop")
        self.assertEqual(self.space(client), before - int(self.info(client, "GROWING", "ClipLength")) * 262144)

    def test_a_recording_runs_at_normal_speed(self):
        desk = Desk(self, "A")
        desk.do("create_clip", "", before="<ClipID>SPEEDY</ClipID>" + TRACKS + "<ClipLength>1000</ClipLength>")
        desk.do("insert_edit", ARM)
        for speed in ("4X", "-1X", "0X", "0.5X"):
            desk.refused("play", "<Speed>%s</Speed>" % speed, "A recording runs at normal speed only")
        desk.refused("go_at", "<GotoPosition>500</GotoPosition><Speed>2X</Speed>",
                     "A recording runs at normal speed only")
        desk.do("insert_edit", "<SonyEditMask>0</SonyEditMask>")
        desk.do("play", "<Speed>-4X</Speed>")
        desk.refused("insert_edit", ARM, "A recording runs at normal speed only")
        desk.do("stop")

    def test_loops_do_not_turn_a_recording_back(self):
        for loop in ("loop", "pingpong", "loopto", "pingpongto"):
            with self.subTest(loop=loop):
                desk = Desk(self, "A")
                desk.do("create_clip", "", before="<ClipID>ROUND%s</ClipID>%s<ClipLength>10</ClipLength>"
                        % (loop, TRACKS))
                desk.do("set_loop", "<Loop>%s</Loop>" % loop)
                desk.do("insert_edit", ARM)
                desk.do("play")
                desk.wait_position(lambda position: position >= 30)
                desk.do("stop")

    def test_a_recording_ends_at_the_out_point(self):
        desk = Desk(self, "A")
        desk.do("create_clip", "", before="<ClipID>INSERT</ClipID>" + TRACKS + "<ClipLength>100</ClipLength>")
        desk.do("set_out_point", "<ClipPosition>20</ClipPosition>")
        desk.do("insert_edit", "<SonyEditMask>16</SonyEditMask>")
        desk.do("play")
        desk.wait_status("stop")
        self.assertEqual(desk.position(), 20)
        self.assertEqual(self.info(desk.client, "INSERT", "ClipLength"), "100")

    def test_read_only_clips_are_not_recorded(self):
        desk = Desk(self, "A")
        desk.do("cue_clip", "<ClipID>BARS</ClipID>")
        desk.do("insert_edit", ARM)
        desk.do("cue_clip", "<ClipID>LOCKED</ClipID><Speed>1X</Speed>")
        desk.wait_status("play")
        desk.wait_position(lambda position: position >= 10)
        desk.do("cue_clip", "<ClipID>BARS</ClipID>")
        desk.do("insert_edit", ARM)
        desk.do("precue", "<ClipID>LOCKED</ClipID>")
        desk.do("play")
        desk.wait_status("record")
        desk.do("precue_activate")
        desk.wait_status("play")
        desk.do("unload")

    def test_two_channels_do_not_record_one_clip(self):
        first = self.start("A", "SHARED")
        second = Desk(self, "B")
        second.do("cue_clip", "<ClipID>SHARED</ClipID>")
        second.do("insert_edit", ARM)
        second.refused("play", "", "Clip &apos;SHARED&apos; is being recorded on channel A")
        second.do("insert_edit", "<SonyEditMask>0</SonyEditMask>")
        second.do("play")
        second.refused("insert_edit", ARM, "Clip &apos;SHARED&apos; is being recorded on channel A")
        first.do("stop")
        second.do("insert_edit", ARM)
        second.do("unload")
        first.do("unload")


class Directories(unittest.TestCase):
    def test_directories_with_read_only_clips_stay_where_they_are(self):
        simulator = support.Simulator("--clips", self.clip_file())
        client = support.Client(simulator.address)
        self.assertIn("Clip &apos;A/B/FIXED&apos; is read-only",
                      client.answer("<rename_dir><FromDir>A</FromDir><ToDir>Z</ToDir></rename_dir>"))
        rows = client.ask("<download_clipids />") + client.ask("<download_directory_names />")
        self.assertEqual([tag(row, "ClipID") for row in rows if "ClipID" in row], ["A/B/FIXED", "A/FREE", "C/FREE"])
        self.assertEqual([tag(row, "DirectoryName") for row in rows if "DirectoryName" in row], ["A", "A/B", "C"])
        self.assertEqual(client.answer("<rename_dir><FromDir>C</FromDir><ToDir>Y</ToDir></rename_dir>"), "<ok />")
        client.close()
        self.assertEqual(simulator.stop(), 0)

    def clip_file(self):
        return support.text_file(self, "directory A\ndirectory A/B\ndirectory C\nclip A/FREE length=10\n"
                                       "clip A/B/FIXED length=10 read_only_meta\nclip C/FREE length=10\n")


class Gone(support.Case):
    """Clips that are deleted or renamed while something else counts on them."""

    def setUp(self):
        self.c = self.client()
        self.desk = Desk(self, "A")
        self.name = "CLIP" + self.id().rpartition(".")[2][:20]
        self.do("create_clip", "<ClipID>%s</ClipID>%s<ClipLength>500</ClipLength>" % (self.name, TRACKS))

    def do(self, command, arguments):
        self.assertEqual(self.c.answer("<%s>%s</%s>" % (command, arguments, command)), "<ok />")

    def make_virtual_clip(self, name):
        self.do("vclip_create", "<VClipID>%s</VClipID><ClipLength>100</ClipLength>" % name)
        self.do("vclip_modification_start", "<VClipID>%s</VClipID>" % name)
        self.do("vclip_add_segment", "<VClipID>%s</VClipID><ClipID>%s</ClipID><ClipPosition>0</ClipPosition>%s"
                "<VClipPosition>0</VClipPosition><ClipLength>100</ClipLength>" % (name, self.name, TRACKS))
        self.do("vclip_modification_end", "<VClipID>%s</VClipID>" % name)

    def delete(self):
        return "<delete_clip><ClipID>%s</ClipID></delete_clip>" % self.name

    def test_a_precued_clip_is_not_deleted(self):
        self.desk.do("precue", "<ClipID>%s</ClipID>" % self.name)
        self.assertRefused(self.c, self.delete(), "&apos;%s&apos; is precued on channel A" % self.name)
        self.desk.do("precue_clear")
        self.assertEqual(self.c.answer(self.delete()), "<ok />")

    def test_a_precued_clip_that_is_renamed_and_trimmed(self):
        self.desk.do("precue", "<ClipID>%s</ClipID>" % self.name)
        self.do("rename_clip", "<FromID>%s</FromID><ToID>PRECUED</ToID>" % self.name)
        self.do("modify_clip_attributes", "<ClipID>PRECUED</ClipID><ClipAttrChange><TrimEnd>400</TrimEnd>"
                                          "</ClipAttrChange>")
        self.desk.do("precue_activate")
        info = self.desk.present("info")
        self.assertEqual((tag(info, "ClipID"), tag(info, "ClipLength")), ("PRECUED", "100"))
        self.desk.do("unload")

    def test_a_virtual_clip_needs_its_clips(self):
        self.make_virtual_clip("V1")
        cue = "<ClipID>V1</ClipID><ClipScope>vclip</ClipScope>"
        self.desk.do("cue_clip", cue)
        self.assertRefused(self.c, self.delete(),
                           "&apos;%s&apos; is shown by virtual clip &apos;V1&apos; on channel A" % self.name)
        self.desk.do("unload")
        self.assertEqual(self.c.answer(self.delete()), "<ok />")
        self.desk.refused("cue_clip", cue, "Clip &apos;%s&apos;, which virtual clip &apos;V1&apos; shows, does not exist"
                          % self.name, "clipnotfound")

    def test_a_virtual_clip_follows_a_renamed_clip(self):
        self.make_virtual_clip("V2")
        self.do("rename_clip", "<FromID>%s</FromID><ToID>SOURCE</ToID>" % self.name)
        self.desk.do("cue_clip", "<ClipID>V2</ClipID><ClipScope>vclip</ClipScope>")
        self.desk.do("unload")

    def test_a_client_that_goes_leaves_no_virtual_clip_open(self):
        self.do("vclip_create", "<VClipID>V3</VClipID><ClipLength>100</ClipLength>")
        other = self.client()
        other.answer("<vclip_modification_start><VClipID>V3</VClipID></vclip_modification_start>")
        self.assertIn("is being modified", self.c.answer("<vclip_modification_start><VClipID>V3</VClipID>"
                                                         "</vclip_modification_start>"))
        other.close()
        support.wait_until(lambda: self.c.answer("<vclip_modification_start><VClipID>V3</VClipID>"
                                                 "</vclip_modification_start>") == "<ok />")

    def test_an_owned_key_is_erased_by_its_owner_only(self):
        owner = self.client()
        owner.answer("<userdict_own><Key>mine</Key><Value>v</Value></userdict_own>")
        erase = "<userdict_erase><Key>mine</Key></userdict_erase>"
        self.assertRefused(self.c, erase, "Key &apos;mine&apos; belongs to another client")
        self.assertEqual(owner.answer(erase), "<ok />")
        self.assertEqual(self.c.answer("<userdict_set><Key>mine</Key><Value>w</Value></userdict_set>"), "<ok />")
        self.assertEqual(self.c.answer(erase), "<ok />")


class Cueing(support.Case):
    def test_what_is_said_while_a_clip_cues_counts(self):
        desk = Desk(self, "A")
        body = "".join("<cmd><xid>%s</xid><%s><Channel>A</Channel>%s</%s></cmd>" % (command, command, arguments, command)
                       for command, arguments in (("precue", "<ClipID>BARS</ClipID>"),
                                                  ("cue_clip", "<ClipID>COUNTDOWN</ClipID><Speed>2X</Speed>"),
                                                  ("precue_activate", "")))
        desk.client.send(body)
        for _ in range(3):
            self.assertIn("<ok />", desk.client.message())
        desk.wait_position(lambda position: position > 0)
        self.assertEqual(tag(desk.present("speed"), "Speed"), "2X")


class Bed(support.Case):
    def test_it_repeats_from_its_in_point_to_its_out_point(self):
        client, desk = self.client(), Desk(self, "A")
        item = "<ListElement><ContentID><ClipID>%s</ClipID></ContentID><GotoPosition>%d</GotoPosition>" \
               "<ClipPosition>%d</ClipPosition></ListElement>"
        client.answer("<list_save_start><ListID>L</ListID></list_save_start>")
        client.answer("<list_save_element>" + item % ("BARS", 0, 2) + "</list_save_element>")
        client.answer("<list_save_end />")
        desk.do("list_load", "<ListID>L</ListID>")
        desk.do("list_bed", item % ("COUNTDOWN", 100, 109))
        desk.do("list_play_now", "<ListIndex>0</ListIndex><Roll>roll</Roll>")
        support.wait_until(lambda: "<ClipID>COUNTDOWN" in desk.present("clipid"))
        desk.register("timecode")
        seen = set()
        while len(seen) < 10 or max(seen) > 109:
            report = desk.client.wait_report(lambda text: "channel_timecode" in text)
            seen.add(int(tag(report, "ClipPosition")))
            self.assertLessEqual(max(seen), 109)
        for _ in range(30):
            report = desk.client.wait_report(lambda text: "channel_timecode" in text)
            self.assertIn(int(tag(report, "ClipPosition")), range(100, 110))
