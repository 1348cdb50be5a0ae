"""Odd orders and odd values: nothing ends the server, and no state is left that cannot be."""

import unittest

import support
from support import tag
from transport_test import Desk

VIDEO = "<TrackSet><TrackType>video</TrackType></TrackSet>"
CHASE = ("<ChaseElement><ContentID><ClipID>%s</ClipID></ContentID><GotoPosition>%d</GotoPosition>"
         "<ClipPosition>%d</ClipPosition><ChaseElementAtEnd>%s</ChaseElementAtEnd><TcStartTrigger>%d</TcStartTrigger>"
         "</ChaseElement>")


class Strange(support.Case):
    def setUp(self):
        self.c = self.client()

    def ok(self, body):
        self.assertEqual(self.c.answer(body), "<ok />", body)

    def load_chase(self, letter, name, *items):
        self.ok("<chase_save_start><ChaseID>%s</ChaseID></chase_save_start>" % name)
        for item in items:
            self.ok("<chase_save_element>%s</chase_save_element>" % (CHASE % item))
        self.ok("<chase_save_end />")
        self.ok("<chase_load><Channel>%s</Channel><ChaseID>%s</ChaseID></chase_load>" % (letter, name))

    def timecode(self, field):
        return self.c.answer("<sending_chase_ltcin><Timecode><Valid>true</Valid><FieldNumber>%d</FieldNumber></Timecode>"
                             "</sending_chase_ltcin>" % field)

    def test_a_chased_item_that_ends_before_it_begins(self):
        self.load_chase("A", "BACKWARDS", ("BARS", 100, 99, "loop", 10), ("BARS", 100, 50, "loop", 200))
        for field in (10, 11, 50, 200, 260, 1000):
            self.assertEqual(self.timecode(field), "<ok />")
        self.ok("<chase_unload><Channel>A</Channel></chase_unload>")

    def test_a_channel_that_cannot_follow_does_not_stop_the_others(self):
        self.load_chase("B", "MISSING", ("NOSUCH", 0, 10, "pause", 5))
        self.load_chase("C", "THERE", ("COUNTDOWN", 0, 500, "pause", 5))
        self.assertIn("Clip &apos;NOSUCH&apos; does not exist", self.timecode(10))
        desk = Desk(self, "C")
        self.assertEqual(tag(desk.present("clipid"), "ClipID"), "COUNTDOWN")
        self.assertGreaterEqual(desk.position(), 5)
        for letter in "BC":
            self.ok("<chase_unload><Channel>%s</Channel></chase_unload>" % letter)

    def test_no_position_is_behind_the_end(self):
        desk = Desk(self, "D")
        self.ok("<create_clip><ClipID>SHRINKS</ClipID>%s<ClipLength>500</ClipLength></create_clip>" % VIDEO)
        self.ok("<list_save_start><ListID>ONE</ListID></list_save_start>")
        self.ok("<list_save_element><ListElement><ContentID><ClipID>SHRINKS</ClipID></ContentID><GotoPosition>490"
                "</GotoPosition><ListElementAtEnd>loop</ListElementAtEnd></ListElement></list_save_element>")
        self.ok("<list_save_end />")
        desk.do("list_load", "<ListID>ONE</ListID>")
        desk.do("list_play_now", "<ListIndex>0</ListIndex><Roll>roll</Roll>")
        self.ok("<modify_clip_attributes><ClipID>SHRINKS</ClipID><ClipAttrChange><TrimEnd>450</TrimEnd>"
                "</ClipAttrChange></modify_clip_attributes>")
        desk.register("timecode")
        for _ in range(30):
            desk.client.answer("<sync />")
            for report in desk.client.reports:
                if "timecode" in report:
                    self.assertLess(int(tag(report, "ClipPosition")), 50)
            desk.client.reports.clear()
            self.assertLess(desk.position(), 50)
        desk.do("list_unload")

    def test_a_full_disk_ends_a_recording(self):
        field_size = 262144
        free = int(tag(self.c.answer("<get_disk_usage />"), "AvailableDiskSpace")) // field_size
        self.ok("<create_clip><ClipID>FILLER</ClipID>%s<ClipLength>%d</ClipLength></create_clip>" % (VIDEO, free - 20))
        self.assertRefused(self.c, "<create_clip><ClipID>MORE</ClipID>%s<ClipLength>21</ClipLength></create_clip>"
                           % VIDEO, "The disk is full")
        desk = Desk(self, "E")
        desk.do("create_clip", "", before="<ClipID>LAST</ClipID>" + VIDEO)
        desk.do("insert_edit", "<SonyEditMask>1023</SonyEditMask>")
        desk.do("play")
        desk.wait_status("stop")
        info = self.c.answer("<get_clip_info><ClipID>LAST</ClipID></get_clip_info>")
        self.assertEqual(tag(info, "ClipLength"), "20")
        desk.refused("play", "", "The disk is full")
        desk.do("unload")
        for name in ("FILLER", "LAST"):
            self.ok("<delete_clip><ClipID>%s</ClipID></delete_clip>" % name)


class LogLines(unittest.TestCase):
    def test_a_text_with_line_ends_is_one_line_of_the_log(self):
        simulator = support.Simulator()
        client = support.Client(simulator.address)
        client.answer("<get_clip_info><ClipID>a\n00:00:00.000 #1 faked</ClipID></get_clip_info>")
        client.close()
        self.assertEqual(simulator.stop(), 0)
        lines = [line for line in simulator.log if "faked" in line]
        self.assertEqual(len(lines), 1, lines)
        self.assertRegex(lines[0], r"^\d\d:\d\d:\d\d\.\d{3} #1 1 get_clip_info ClipID=.*faked.*: error, ")
