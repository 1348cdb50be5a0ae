"""Playlists and chase lists: stored, loaded, changed, played."""

import support
from support import tag
from transport_test import Desk


def item(clip, rest="", first=None, last=None):
    places = "" if first is None else "<GotoPosition>%d</GotoPosition><ClipPosition>%d</ClipPosition>" % (first, last)
    return "<ListElement><ContentID><ClipID>%s</ClipID></ContentID>%s%s</ListElement>" % (clip, places, rest)


def report(name, channel, rest):
    return "<channel_listplay_%s><Channel>%s</Channel>%s</channel_listplay_%s>" % (name, channel, rest, name)


def index(number):
    inside = "" if number is None else "<ListIndex>%d</ListIndex>" % number
    return "<ListPlaybackIndex>%s</ListPlaybackIndex>" % inside


class Lists(support.Case):
    arguments = ("--standard", "1080_50i")

    def save(self, client, name, items):
        client.answer("<list_save_start><ListID>%s</ListID></list_save_start>" % name)
        for one in items:
            self.assertEqual(client.answer("<list_save_element>%s</list_save_element>" % one), "<ok />")
        self.assertEqual(client.answer("<list_save_end />"), "<ok />")

    def desk(self, letter, name, items, load=""):
        desk = Desk(self, letter)
        self.save(desk.client, name, items)
        desk.do("list_load", "<ListID>%s</ListID>%s" % (name, load))
        return desk

    def test_stored_lists(self):
        client, watcher = self.client(), self.client()
        watcher.answer("<report_register><ReportType>playlist_change</ReportType></report_register>")
        items = [item("BARS"), item("X", "<ListElementAtStart>pause</ListElementAtStart>"
                                         "<ListElementAtEnd>loop</ListElementAtEnd>", 1, 2)]
        self.save(client, "STORED", items)
        self.save(client, "STORED", items[:1])
        self.assertEqual(client.ask("<download_list><ListID>STORED</ListID></download_list>"),
                         ["<list_element>" + items[0] + "</list_element>", "<ok />"])
        client.answer("<list_rename><ListFromID>STORED</ListFromID><ListToID>OTHER</ListToID></list_rename>")
        client.answer("<list_delete><ListID>OTHER</ListID></list_delete>")
        body = "<playlist_%s><ListID>%s</ListID></playlist_%s>"
        self.assertEqual(watcher.settled_reports(), [
            body % ("created", "STORED", "created"), body % ("changed", "STORED", "changed"),
            body % ("deleted", "STORED", "deleted"), body % ("created", "OTHER", "created"),
            body % ("deleted", "OTHER", "deleted")])
        self.assertRefused(client, "<download_list><ListID>OTHER</ListID></download_list>",
                           "Playlist &apos;OTHER&apos; does not exist")
        self.assertRefused(client, "<list_save_end />", "No playlist is being saved")
        self.assertRefused(client, "<chase_save_element><ChaseElement><ContentID /></ChaseElement>"
                           "</chase_save_element>", "No chase list is being saved")

    def test_what_is_told_of_a_loaded_list(self):
        desk = self.desk("A", "TOLD", [item("BARS"), item("COUNTDOWN")])
        whole = [report("list", "A", "<ListID>TOLD</ListID><ListPlayMode>single_channel</ListPlayMode>"),
                 report("clear_all", "A", ""),
                 report("item_exists", "A", "<ListIndex>0</ListIndex>" + item("BARS")),
                 report("item_exists", "A", "<ListIndex>1</ListIndex>" + item("COUNTDOWN")),
                 report("air_now", "A", index(None)), report("air_lock", "A", index(None)),
                 report("air_next", "A", index(0)), report("loop", "A", "<Loop>off</Loop>"),
                 report("modified", "A", "<ModifiedFlag>unmodified</ModifiedFlag>")]
        desk.register("listplay")
        self.assertEqual(desk.client.settled_reports(), whole)
        desk.do("list_play_now", "<ListIndex>0</ListIndex><Roll>cueonly</Roll>")
        self.assertEqual(desk.client.settled_reports(), [report("air_now", "A", index(0)),
                                                         report("air_next", "A", index(1))])
        desk.do("list_insert", "<ListIndex>1</ListIndex>" + item("LOCKED"))
        self.assertEqual(desk.client.settled_reports()[:4], [
            report("item_insert", "A", "<ListIndex>1</ListIndex>" + item("LOCKED")),
            report("air_now", "A", index(0)), report("air_lock", "A", index(None)), report("air_next", "A", index(2))])
        desk.do("list_remove_item", "<ListIndex>2</ListIndex>")
        self.assertEqual(desk.client.settled_reports()[:4], [
            report("item_remove", "A", "<ListIndex>2</ListIndex>"),
            report("air_now", "A", index(0)), report("air_lock", "A", index(None)), report("air_next", "A", index(1))])
        desk.do("list_play_modify_item", "<ListIndex>1</ListIndex><ListElementChange><ListElementAtEnd>pause"
                "</ListElementAtEnd></ListElementChange>")
        self.assertEqual(desk.client.settled_reports()[0], report(
            "item_exists", "A", "<ListIndex>1</ListIndex>" +
            item("LOCKED", "<ListElementAtEnd>pause</ListElementAtEnd>")))
        desk.do("list_play_clear_modified")
        desk.do("list_set_loop", "<Loop>loop</Loop>")
        self.assertEqual(desk.client.settled_reports(), [
            report("modified", "A", "<ModifiedFlag>unmodified</ModifiedFlag>"),
            report("loop", "A", "<Loop>loop</Loop>")])
        desk.do("list_unload")
        self.assertEqual(desk.client.settled_reports(), [report("unloaded", "A", "")])
        desk.refused("list_take", "", "No playlist is loaded on channel A")

    def test_a_shorter_list_leaves_nothing_of_a_longer_one(self):
        desk = self.desk("A", "LONG", [item("BARS"), item("COUNTDOWN"), item("LOCKED")])
        self.save(desk.client, "SHORT", [item("LOCKED")])
        desk.register("listplay")
        desk.client.settled_reports()
        desk.do("list_load", "<ListID>SHORT</ListID>")
        self.assertEqual(desk.client.settled_reports()[:4], [
            report("list", "A", "<ListID>SHORT</ListID><ListPlayMode>single_channel</ListPlayMode>"),
            report("clear_all", "A", ""), report("item_exists", "A", "<ListIndex>0</ListIndex>" + item("LOCKED")),
            report("air_now", "A", index(None))])
        desk.do("list_unload")

    def test_reordering(self):
        desk = self.desk("B", "ORDER", [item(name) for name in ("BARS", "COUNTDOWN", "LOCKED", "NEWS/OPENER")])
        desk.do("list_play_now", "<ListIndex>2</ListIndex><Roll>cueonly</Roll>")
        desk.do("list_play_reorder_start")
        for number in (3, 0):
            desk.client.answer("<list_play_reorder_item><ListIndex>%d</ListIndex></list_play_reorder_item>" % number)
        desk.client.answer("<list_play_reorder_finish><ListIndex>2</ListIndex></list_play_reorder_finish>")
        other = self.client()
        other.answer("<channel_report_register><Channel>B</Channel><ChannelReportType>listplay</ChannelReportType>"
                     "</channel_report_register>")
        reports = other.settled_reports()
        self.assertEqual([tag(body, "ClipID") for body in reports if "ClipID" in body],
                         ["COUNTDOWN", "NEWS/OPENER", "BARS", "LOCKED"])
        self.assertIn(report("air_now", "B", index(3)), reports)
        self.assertRefused(desk.client, "<list_play_reorder_finish><ListIndex>2</ListIndex></list_play_reorder_finish>",
                           "No reordering has been started")

    def test_it_advances_by_its_rules(self):
        desk = self.desk("C", "RULES", [
            item("BARS", "<ListElementAtEnd>take</ListElementAtEnd>", 100, 104),
            item("COUNTDOWN", "<ListElementAtStart>pause</ListElementAtStart>", 10, 14),
            item("NEWS/OPENER", "<Speed>2X</Speed><ListElementAtEnd>pause</ListElementAtEnd>", 20, 40),
        ])
        desk.register("clipid")
        desk.do("list_play_now", "<ListIndex>0</ListIndex><Roll>roll</Roll>")
        desk.client.wait_report(lambda body: "COUNTDOWN" in body)
        desk.wait_status("stop")
        self.assertEqual(desk.position(), 10)
        desk.do("play")
        desk.client.wait_report(lambda body: "NEWS/OPENER" in body)
        desk.wait_status("stop")
        self.assertEqual(desk.position(), 40)
        desk.refused("list_take", "", "No item is next on channel C")
        desk.do("list_play_next", "<ListIndex>0</ListIndex><Roll>cueonly</Roll>")
        desk.do("list_take")
        self.assertEqual(desk.status(), "stop")
        self.assertEqual(desk.position(), 100)
        desk.refused("list_play_now", "<ListIndex>3</ListIndex><Roll>roll</Roll>",
                     "The list has 3 items, none at 3")

    def test_loops_and_beds(self):
        desk = self.desk("D", "ROUND", [item("BARS", "", 0, 3), item("COUNTDOWN", "", 0, 3)])
        desk.register("clipid")
        desk.do("list_set_loop", "<Loop>loop</Loop>")
        desk.do("list_play_now", "<ListIndex>0</ListIndex><Roll>roll</Roll>")
        for name in ("COUNTDOWN", "BARS", "COUNTDOWN"):
            desk.client.wait_report(lambda body: name in body)
        desk.do("list_bed", item("LOCKED", "", 5, 9))
        desk.do("list_set_loop", "<Loop>off</Loop>")
        desk.client.wait_report(lambda body: "LOCKED" in body)
        self.assertEqual(desk.status(), "play")

    def test_an_item_may_repeat(self):
        desk = self.desk("E", "AGAIN", [item("BARS", "<ListElementAtEnd>loop</ListElementAtEnd>", 10, 14)])
        desk.register("timecode")
        desk.do("list_play_now", "<ListIndex>0</ListIndex><Roll>roll</Roll><JogDistance>2</JogDistance>")
        for _ in range(2):
            desk.client.wait_report(lambda body: tag(body, "ClipPosition") == "14")
            desk.client.wait_report(lambda body: tag(body, "ClipPosition") in ("10", "11"))

    def test_a_take_uses_the_list_and_dissolves(self):
        desk = self.desk("F", "TAKES", [item("BARS"), item("COUNTDOWN", "<Transition><TransitionType>dissolve"
                                        "</TransitionType><TransitionDuration>500</TransitionDuration></Transition>")])
        desk.do("list_take")
        self.assertEqual(tag(desk.present("info"), "TransitionInProgress"), "false")
        desk.do("list_take")
        self.assertEqual(tag(desk.present("info"), "TransitionInProgress"), "true")
        self.assertEqual(tag(desk.present("clipid"), "ClipID"), "COUNTDOWN")

    def test_program_and_preview(self):
        desk = self.desk("G", "PAIR", [item("BARS"), item("COUNTDOWN", "", 7, 90)],
                         "<ListPlayMode>pgm_pvw</ListPlayMode>")
        beside = Desk(self, "H")
        desk.do("list_take")
        info = desk.present("info")
        self.assertIn("<ProgramChannel>G</ProgramChannel><PreviewChannel>H</PreviewChannel>", info)
        self.assertEqual(tag(beside.present("clipid"), "ClipID"), "COUNTDOWN")
        self.assertEqual(beside.position(), 7)
        beside.refused("list_load", "<ListID>PAIR</ListID><ListPlayMode>pgm_pvw</ListPlayMode>",
                       "Channel H has no channel beside it for the preview")

    def test_the_preview_follows_what_is_next(self):
        desk = self.desk("G", "AHEAD", [item("BARS", "", 0, 90), item("COUNTDOWN", "", 7, 90), item("LOCKED", "", 3, 9)],
                         "<ListPlayMode>pgm_pvw</ListPlayMode>")
        beside = Desk(self, "H")

        def preview():
            return tag(beside.present("clipid"), "ClipID"), beside.position()

        self.assertEqual(preview(), ("BARS", 0))
        desk.do("list_play_next", "<ListIndex>2</ListIndex><Roll>cueonly</Roll>")
        self.assertEqual(preview(), ("LOCKED", 3))
        desk.refused("list_play_next", "<ListIndex>3</ListIndex><Roll>roll</Roll>",
                     "The list has 3 items, none at 3")
        self.assertEqual(preview(), ("LOCKED", 3))
        desk.do("list_remove_item", "<ListIndex>2</ListIndex>")
        self.assertEqual(preview(), ("BARS", 0))
        desk.do("list_play_now", "<ListIndex>1</ListIndex><Roll>cueonly</Roll>")
        desk.do("list_insert", "<ListIndex>2</ListIndex>" + item("SPORT/GOAL", "", 40, 50))
        self.assertEqual(preview(), ("SPORT/GOAL", 40))
        desk.do("list_play_now", "<ListIndex>2</ListIndex><Roll>cueonly</Roll>")
        desk.do("list_set_loop", "<Loop>loop</Loop>")
        self.assertEqual(preview(), ("BARS", 0))

    def test_a_chase_list_leaves_the_preview_alone(self):
        desk = self.desk("E", "WITH", [item("BARS"), item("COUNTDOWN", "", 7, 90)],
                         "<ListPlayMode>pgm_pvw</ListPlayMode>")
        desk.do("list_take")
        desk.client.answer("<chase_save_start><ChaseID>BESIDE</ChaseID></chase_save_start>")
        desk.client.answer("<chase_save_end />")
        beside = Desk(self, "F")
        beside.do("gotocmd", "<GotoPosition>20</GotoPosition>")
        desk.do("chase_load", "<ChaseID>BESIDE</ChaseID>")
        self.assertIn("<PreviewChannel>F</PreviewChannel>", desk.present("info"))
        self.assertEqual(beside.position(), 20)
        desk.do("list_unload")
        desk.do("chase_unload")

    def test_what_is_missing_stops_the_list(self):
        desk = self.desk("B", "GAP", [item("BARS", "", 0, 2), item("GONE")])
        desk.do("list_play_now", "<ListIndex>0</ListIndex><Roll>roll</Roll>")
        desk.wait_status("stop")
        self.assertEqual(tag(desk.present("clipid"), "ClipID"), "BARS")
        desk.refused("list_take", "", "Clip &apos;GONE&apos; does not exist", "clipnotfound")

    def test_a_chase(self):
        desk = Desk(self, "A")
        client = desk.client
        client.answer("<chase_save_start><ChaseID>FOLLOW</ChaseID></chase_save_start>")
        for clip, trigger, rest in (("BARS", 1000, "<ClipStartOffset>5</ClipStartOffset>"), ("COUNTDOWN", 2000, "")):
            client.answer("<chase_save_element><ChaseElement><ContentID><ClipID>%s</ClipID></ContentID>"
                          "<ChaseElementAtEnd>black</ChaseElementAtEnd>%s<TcStartTrigger>%d</TcStartTrigger>"
                          "</ChaseElement></chase_save_element>" % (clip, rest, trigger))
        client.answer("<chase_save_end />")
        desk.do("chase_load", "<ChaseID>FOLLOW</ChaseID>")
        other = self.client()
        other.answer("<channel_report_register><Channel>A</Channel><ChannelReportType>chaseplay</ChannelReportType>"
                     "</channel_report_register>")
        self.assertEqual(other.settled_reports()[:2], [
            "<channel_chaseplay_chase><Channel>A</Channel><ChaseID>FOLLOW</ChaseID></channel_chaseplay_chase>",
            "<channel_chaseplay_clear_all><Channel>A</Channel></channel_chaseplay_clear_all>"])
        watcher = self.client()
        watcher.answer("<report_register><ReportType>chase_ltc_timecode</ReportType></report_register>")

        def send(field):
            self.assertEqual(client.answer("<sending_chase_ltcin><Timecode><Valid>true</Valid><FieldNumber>%d"
                                           "</FieldNumber></Timecode></sending_chase_ltcin>" % field), "<ok />")

        send(1010)
        self.assertEqual(watcher.settled_reports()[-1],
                         "<chase_ltc_timecode><Timecode><Valid>true</Valid><VideoStandard>1080_50i</VideoStandard>"
                         "<FieldNumber>1010</FieldNumber><DropFrameFlag>ndf</DropFrameFlag></Timecode>"
                         "</chase_ltc_timecode>")
        self.assertEqual(tag(desk.present("clipid"), "ClipID"), "BARS")
        self.assertGreaterEqual(desk.position(), 15)
        self.assertLess(desk.position(), 2000)
        send(2100)
        self.assertEqual(tag(desk.present("clipid"), "ClipID"), "COUNTDOWN")
        self.assertGreaterEqual(desk.position(), 100)
        send(2600)
        self.assertEqual(desk.status(), "idle")
        desk.do("chase_unload")
