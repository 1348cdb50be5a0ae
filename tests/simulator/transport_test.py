"""Channels: what is loaded, how it moves, what follows, and what is reported of it."""

import re
import time

import support
from support import tag

KINDS = ("status", "clipid", "speed", "timecode", "info", "listplay")


def gang(letters):
    return "<ChannelSet>" + "".join("<Channel>%s</Channel>" % letter for letter in letters) + "</ChannelSet>"


class Desk:
    """One channel as an operator sees it."""

    def __init__(self, case, letter):
        self.client = case.client()
        self.case = case
        self.letter = letter

    def do(self, command, arguments="", before=""):
        answer = self.client.answer("<%s>%s<Channel>%s</Channel>%s</%s>" %
                                    (command, before, self.letter, arguments, command))
        self.case.assertEqual(answer, "<ok />", command)

    def refused(self, command, arguments, text, code="general"):
        self.case.assertRefused(self.client, "<%s><Channel>%s</Channel>%s</%s>" %
                                (command, self.letter, arguments, command), text, code)

    def register(self, *kinds):
        for kind in kinds:
            self.do("channel_report_register", "<ChannelReportType>%s</ChannelReportType>" % kind)

    def position(self):
        answer = self.client.answer("<get_current_timecode><Channel>%s</Channel></get_current_timecode>" % self.letter)
        return int(tag(answer, "ClipPosition"))

    def wait_position(self, good):
        for _ in range(4000):
            if good(self.position()):
                return
            time.sleep(0.005)
        self.case.fail("the position does not come")

    def present(self, kind):
        """What the server reports right after a registration."""
        other = self.case.client()
        other.answer("<channel_report_register><Channel>%s</Channel><ChannelReportType>%s</ChannelReportType>"
                     "</channel_report_register>" % (self.letter, kind))
        reports = other.settled_reports()
        other.close()
        return reports[0]

    def status(self):
        return tag(self.present("status"), "ChannelStatus")

    def wait_status(self, wanted):
        for _ in range(4000):
            if self.status() == wanted:
                return
            time.sleep(0.005)
        self.case.fail("the status does not become " + wanted)


class Transport(support.Case):
    arguments = ("--standard", "1080_50i")

    def desk(self, letter, clip=None, arguments=""):
        desk = Desk(self, letter)
        if clip:
            desk.do("cue_clip", "<ClipID>%s</ClipID>" % clip + arguments)
            desk.wait_status("stop")
        return desk

    def test_present_values(self):
        desk = self.desk("A")
        self.assertEqual(desk.present("status"), "<channel_status><Channel>A</Channel><ChannelStatus>stop"
                         "</ChannelStatus><ClipID>BARS</ClipID></channel_status>")
        self.assertEqual(desk.present("clipid"), "<channel_clipid><Channel>A</Channel><ClipID>BARS</ClipID>"
                         "</channel_clipid>")
        self.assertEqual(desk.present("speed"), "<channel_speed><Channel>A</Channel><Speed>0X</Speed></channel_speed>")
        self.assertEqual(desk.present("timecode"),
                         "<channel_timecode><Channel>A</Channel><ClipPosition>0</ClipPosition><DisplayTimecode>"
                         "<Valid>true</Valid><VideoStandard>1080_50i</VideoStandard><FieldNumber>0</FieldNumber>"
                         "<DropFrameFlag>ndf</DropFrameFlag></DisplayTimecode><InputTimecode><Valid>false</Valid>"
                         "</InputTimecode></channel_timecode>")
        self.assertEqual(desk.present("info"),
                         "<channel_info><Channel>A</Channel><ChannelInformation><ClipID>BARS</ClipID><ClipLength>18000"
                         "</ClipLength><Interp>auto</Interp><Loop>off</Loop><LoopIn>0</LoopIn><LoopOut>17999</LoopOut>"
                         "<Playback>auto</Playback><AngleCount>1</AngleCount><Angle>0</Angle><AudioTrackCount>1"
                         "</AudioTrackCount><EEStatus><SonyEditMask>0</SonyEditMask><AutoEE>true</AutoEE></EEStatus>"
                         "<PrecueCount>0</PrecueCount><StealStatus>available</StealStatus><TransitionInProgress>false"
                         "</TransitionInProgress><NaturalSpeed>1X</NaturalSpeed></ChannelInformation></channel_info>")
        self.assertEqual(desk.present("listplay"), "<channel_listplay_unloaded><Channel>A</Channel>"
                         "</channel_listplay_unloaded>")
        self.assertEqual(desk.present("chaseplay"), "<channel_chaseplay_unloaded><Channel>A</Channel>"
                         "</channel_chaseplay_unloaded>")
        self.assertEqual(desk.present("aux_audio_timecode"), "<channel_aux_audio_timecode><Channel>A</Channel>"
                         "<ClipPosition>0</ClipPosition></channel_aux_audio_timecode>")

    def test_a_playing_channel_advances_at_the_field_rate(self):
        desk = self.desk("B", "BARS")
        desk.register("timecode")
        start = time.monotonic()
        desk.do("play")
        desk.client.wait_report(lambda report: int(tag(report, "ClipPosition")) >= 25)
        self.assertGreater(time.monotonic() - start, 0.45)
        desk.do("stop")
        self.assertEqual(desk.status(), "stop")

    def test_reports_tell_of_play_and_stop_once(self):
        desk = self.desk("C", "BARS")
        desk.register("status", "speed")
        desk.client.settled_reports()
        desk.do("play", "<Speed>1.5X</Speed>")
        desk.do("play", "<Speed>1.5X</Speed>")
        desk.do("stop")
        self.assertEqual(desk.client.settled_reports(), [
            "<channel_status><Channel>C</Channel><ChannelStatus>play</ChannelStatus><ClipID>BARS</ClipID>"
            "</channel_status>",
            "<channel_speed><Channel>C</Channel><Speed>1.5X</Speed></channel_speed>",
            "<channel_status><Channel>C</Channel><ChannelStatus>stop</ChannelStatus><ClipID>BARS</ClipID>"
            "</channel_status>",
            "<channel_speed><Channel>C</Channel><Speed>0X</Speed></channel_speed>"])
        desk.do("channel_report_unregister", "<ChannelReportType>status</ChannelReportType>")
        desk.do("channel_report_unregister", "<ChannelReportType>speed</ChannelReportType>")
        desk.do("play")
        self.assertEqual(desk.client.settled_reports(), [])

    def test_cueing_comes_before_stop(self):
        desk = self.desk("D")
        desk.register("status")
        desk.do("cue_clip", "<ClipID>COUNTDOWN</ClipID>")
        desk.client.wait_report(lambda report: "cueing" in report)
        desk.client.wait_report(lambda report: ">stop<" in report)

    def test_jog_and_goto(self):
        desk = self.desk("E", "COUNTDOWN", "<GotoPosition>100</GotoPosition>")
        self.assertEqual(desk.position(), 100)
        desk.do("jog", "<JogDistance>-30</JogDistance>")
        self.assertEqual(desk.position(), 70)
        desk.do("jog", "<JogDistance>-2147483648</JogDistance>")
        self.assertEqual(desk.position(), 0)
        desk.do("jog", "<JogDistance>2147483647</JogDistance>")
        self.assertEqual(desk.position(), 599)
        desk.do("gotocmd", "<GotoPosition>599</GotoPosition>")
        desk.refused("gotocmd", "<GotoPosition>600</GotoPosition>",
                     "Position 600 is beyond the end of &apos;COUNTDOWN&apos;, which has 600 fields")
        desk.do("play", "<Speed>-1X</Speed>")
        desk.wait_position(lambda position: position < 590)
        desk.do("jog", "<JogDistance>0</JogDistance>")
        self.assertEqual(desk.status(), "stop")
        desk.do("go_at", "<GotoPosition>300</GotoPosition>")
        desk.wait_position(lambda position: position > 305)
        desk.do("unload")

    def test_it_stops_at_both_ends(self):
        desk = self.desk("F", "COUNTDOWN", "<GotoPosition>550</GotoPosition>")
        desk.do("play", "<Speed>20X</Speed>")
        desk.wait_status("stop")
        self.assertEqual(desk.position(), 599)
        desk.do("play", "<Speed>-200X</Speed>")
        desk.wait_status("stop")
        self.assertEqual(desk.position(), 0)

    def test_out_point(self):
        desk = self.desk("G", "COUNTDOWN")
        desk.do("set_out_point", "<ClipPosition>40</ClipPosition>")
        desk.do("play", "<Speed>7X</Speed>")
        desk.wait_status("stop")
        self.assertEqual(desk.position(), 40)
        desk.do("gotocmd", "<GotoPosition>0</GotoPosition>")
        desk.do("set_loop", "<Loop>loop</Loop>")
        desk.do("play", "<Speed>7X</Speed>")
        desk.wait_position(lambda position: position > 300)
        desk.do("gotocmd", "<GotoPosition>0</GotoPosition>")
        desk.do("set_loop", "<Loop>off</Loop>")
        desk.do("play", "<Speed>7X</Speed>")
        desk.wait_status("stop")
        self.assertEqual(desk.position(), 40)
        desk.do("clear_out_point")
        desk.do("play", "<Speed>100X</Speed>")
        desk.wait_status("stop")
        self.assertEqual(desk.position(), 599)
        desk.refused("set_out_point", "<ClipPosition>600</ClipPosition>",
                     "Position 600 is beyond the end of &apos;COUNTDOWN&apos;, which has 600 fields")

    def test_loop_stays_between_its_points(self):
        desk = self.desk("H", "COUNTDOWN", "<Loop>loop</Loop><LoopIn>100</LoopIn><LoopOut>119</LoopOut>")
        desk.register("timecode")
        desk.do("play", "<Speed>3X</Speed>")
        seen = set()
        for _ in range(30):
            seen.add(int(tag(desk.client.wait_report(lambda report: True), "ClipPosition")))
        seen.discard(0)
        self.assertGreaterEqual(min(seen), 100)
        self.assertLessEqual(max(seen), 119)
        self.assertGreater(len(seen), 5)
        desk.do("set_loop", "<Loop>off</Loop>")
        desk.do("play", "<Speed>100X</Speed>")
        desk.wait_status("stop")

    def test_each_kind_of_loop(self):
        kinds = (("B", "loop", "1.5X", 0, True), ("C", "loop", "-1.5X", 599, True), ("D", "loopto", "1.5X", 0, False),
                 ("E", "pingpong", "-2X", 0, True), ("F", "pingpongto", "-1X", 599, False))
        desks = []
        for letter, loop, speed, start, _ in kinds:
            desks.append(self.desk(letter, "COUNTDOWN", "<Loop>%s</Loop><GotoPosition>%d</GotoPosition>"
                                   "<LoopIn>400</LoopIn><LoopOut>411</LoopOut>" % (loop, start)))
            desks[-1].register("timecode", "speed")
            desks[-1].client.settled_reports()
            desks[-1].do("play", "<Speed>%s</Speed>" % speed)
        for desk, (_, loop, _, start, inside_at_once) in zip(desks, kinds):
            seen, speeds = [], set()
            while len([position for position in seen if 400 <= position <= 411]) < 40:
                report = desk.client.wait_report(lambda report: True)
                if "channel_speed" in report:
                    speeds.add(tag(report, "Speed"))
                elif tag(report, "ClipPosition") != str(start):
                    seen.append(int(tag(report, "ClipPosition")))
            with self.subTest(loop=loop, start=start, seen=seen):
                self.assertEqual(400 <= seen[0] <= 411, inside_at_once)
                self.assertTrue(all(400 <= position <= 411 for position in seen[-40:]))
                self.assertGreater(len(set(seen[-40:])), 3)
                self.assertEqual(len(speeds), 2 if "pingpong" in loop else 1, speeds)
            desk.do("unload")

    def test_ping_pong_turns_round(self):
        desk = self.desk("B", "COUNTDOWN", "<Loop>pingpongto</Loop><LoopIn>200</LoopIn><LoopOut>240</LoopOut>")
        desk.register("speed", "timecode")
        desk.do("play", "<Speed>2X</Speed>")
        first = desk.client.wait_report(lambda report: "channel_timecode" in report and ">0<" not in report)
        self.assertLess(int(tag(first, "ClipPosition")), 200)
        desk.client.wait_report(lambda report: "<Speed>-2X</Speed>" in report)
        desk.client.wait_report(lambda report: "<Speed>2X</Speed>" in report)
        self.assertGreaterEqual(desk.position(), 200)
        desk.do("unload")

    def test_empty_channel(self):
        desk = self.desk("C")
        desk.do("unload")
        self.assertEqual(desk.status(), "idle")
        self.assertEqual(desk.present("clipid"), "<channel_clipid><Channel>C</Channel><ClipID /></channel_clipid>")
        self.assertNotIn("ClipLength", desk.present("info"))
        desk.refused("play", "", "Nothing is loaded on channel C")
        desk.refused("jog", "<JogDistance>1</JogDistance>", "Nothing is loaded on channel C")
        desk.refused("set_loop", "<Loop>off</Loop>", "Nothing is loaded on channel C")
        desk.do("stop")
        desk.refused("cue_clip", "<ClipID>NOTHING</ClipID>", "Clip &apos;NOTHING&apos; does not exist", "clipnotfound")
        desk.refused("cue_clip", "<ClipID>BARS</ClipID><GotoPosition>18000</GotoPosition>",
                     "Position 18000 is beyond the end of &apos;BARS&apos;, which has 18000 fields")
        desk.do("cue_clip", "<ClipID>BARS</ClipID><GotoPosition>0</GotoPosition><ClipPosition>0</ClipPosition>")

    def test_angles(self):
        desk = self.desk("D", "SPORT/GOAL", "<Angle>2</Angle>")
        self.assertEqual(tag(desk.present("info"), "Angle"), "2")
        self.assertEqual(tag(desk.present("info"), "AngleCount"), "4")
        self.assertEqual(tag(desk.present("info"), "AudioTrackCount"), "2")
        desk.do("iso_angle", "<Angle>3</Angle>")
        self.assertEqual(tag(desk.present("info"), "Angle"), "3")
        desk.refused("iso_angle", "<Angle>4</Angle>", "&apos;SPORT/GOAL&apos; has no angle 4")

    def test_ee(self):
        desk = self.desk("E")
        desk.do("ee", "<SonyEditMask>16</SonyEditMask><AutoEE>false</AutoEE>")
        self.assertIn("<EEStatus><SonyEditMask>16</SonyEditMask><AutoEE>false</AutoEE></EEStatus>",
                      desk.present("info"))
        desk.refused("ee", "<SonyEditMask>1024</SonyEditMask><AutoEE>false</AutoEE>",
                     "Edit mask 1024 names tracks that do not exist")

    def test_recording_lengthens_a_clip(self):
        desk = self.desk("F")
        watcher = self.client()
        watcher.answer("<report_register><ReportType>clip_change</ReportType></report_register>")
        desk.client.answer("<create_clip><ClipID>TAPE</ClipID><TrackSet><TrackType>video</TrackType></TrackSet>"
                           "<Channel>F</Channel></create_clip>")
        desk.do("insert_edit", "<SonyEditMask>1023</SonyEditMask>")
        desk.do("play")
        desk.wait_status("record")
        desk.wait_position(lambda position: position >= 10)
        desk.do("insert_edit", "<SonyEditMask>48</SonyEditMask>")
        desk.wait_status("insert")
        desk.do("stop")
        watcher.wait_report(lambda report: report == "<clip_changed><ClipID>TAPE</ClipID></clip_changed>")
        info = desk.client.answer("<get_clip_info><ClipID>TAPE</ClipID></get_clip_info>")
        self.assertEqual(int(tag(info, "ClipLength")), desk.position() + 1)
        self.assertEqual(tag(info, "LoopOut"), str(desk.position()))
        desk.do("insert_edit", "<SonyEditMask>0</SonyEditMask>")
        desk.do("cue_clip", "<ClipID>LOCKED</ClipID>")
        desk.refused("insert_edit", "<SonyEditMask>1</SonyEditMask>", "Clip &apos;LOCKED&apos; is read-only")

    def test_go_live(self):
        desk = self.desk("G")
        desk.do("go_live", "<TimeDelay>5</TimeDelay><MinLatency />")
        desk.wait_status("timedelay")
        place = desk.position()
        desk.wait_position(lambda position: position > place + 3)
        self.assertEqual(tag(desk.present("info"), "AngleCount"), "8")
        for _ in range(2):
            desk.do("jog", "<JogDistance>2147483647</JogDistance>")
        far = desk.present("timecode")
        self.assertEqual(tag(far, "ClipPosition"), "4294967294")
        self.assertIn("<DisplayTimecode><Valid>false</Valid></DisplayTimecode>", far)
        desk.do("go_live", "<ClipID>SPORT/GOAL</ClipID><Angle>1</Angle><TimeDelay>10</TimeDelay>")
        desk.wait_status("stop")
        self.assertEqual(desk.position(), 2999)

    def test_precue(self):
        desk = self.desk("H", "BARS")
        desk.do("precue", "<ClipID>COUNTDOWN</ClipID><GotoPosition>100</GotoPosition><ClipLength>10</ClipLength>")
        desk.do("precue", "<ClipID>SPORT/GOAL</ClipID><PrecueCondition>end_of_clip</PrecueCondition>"
                "<Angle>1</Angle>")
        desk.refused("precue", "<ClipID>COUNTDOWN</ClipID><GotoPosition>600</GotoPosition>",
                     "Position 600 is beyond the end of &apos;COUNTDOWN&apos;, which has 600 fields")
        for place, length, last in ((100, 501, 600), (100, 0xFFFFFFFF, 0xFFFFFFFF), (1, 0xFFFFFFFF, 0xFFFFFFFF)):
            desk.refused("precue", "<ClipID>COUNTDOWN</ClipID><GotoPosition>%d</GotoPosition><ClipLength>%d"
                         "</ClipLength>" % (place, length),
                         "Position %d is beyond the end of &apos;COUNTDOWN&apos;, which has 600 fields" % last)
        self.assertEqual(tag(desk.present("info"), "PrecueCount"), "2")
        desk.do("precue_activate")
        self.assertEqual(desk.position(), 100)
        self.assertEqual(desk.status(), "stop")
        desk.do("play")
        desk.register("clipid")
        desk.client.wait_report(lambda report: "SPORT/GOAL" in report)
        desk.wait_status("play")
        desk.do("precue", "<ClipID>BARS</ClipID><PrecueCondition>previous_stops</PrecueCondition>")
        desk.do("stop")
        self.assertEqual(tag(desk.present("clipid"), "ClipID"), "BARS")
        self.assertEqual(desk.status(), "stop")
        desk.do("precue", "<ClipID>COUNTDOWN</ClipID><PrecueCondition>immediate</PrecueCondition>")
        self.assertEqual(tag(desk.present("clipid"), "ClipID"), "COUNTDOWN")
        desk.do("precue", "<ClipID>BARS</ClipID>")
        desk.do("precue_clear")
        desk.refused("precue_activate", "", "Nothing is precued on channel H")

    def test_precued_for_the_end_ends_a_loop(self):
        desk = self.desk("B", "COUNTDOWN", "<Loop>loop</Loop>")
        desk.do("precue", "<ClipID>BARS</ClipID><PrecueCondition>end_of_clip2</PrecueCondition>")
        desk.do("play", "<Speed>20X</Speed>")
        desk.register("clipid")
        desk.client.wait_report(lambda report: ">BARS<" in report)
        self.assertEqual(tag(desk.present("speed"), "Speed"), "20X")
        desk.do("unload")

    def test_what_waits_for_a_stop_comes_at_the_end_too(self):
        desk = self.desk("B", "COUNTDOWN")
        desk.do("precue", "<ClipID>BARS</ClipID><PrecueCondition>previous_stops</PrecueCondition>"
                "<GotoPosition>30</GotoPosition>")
        desk.do("stop")
        self.assertEqual(tag(desk.present("clipid"), "ClipID"), "COUNTDOWN")
        desk.do("play", "<Speed>100X</Speed>")
        desk.register("clipid")
        desk.client.wait_report(lambda report: ">BARS<" in report)
        self.assertEqual(desk.status(), "stop")
        self.assertEqual(desk.position(), 30)

    def test_what_waits_for_the_switch_waits(self):
        desk = self.desk("B", "COUNTDOWN")
        desk.do("precue", "<ClipID>BARS</ClipID><PrecueCondition>explicit_switch</PrecueCondition>")
        desk.do("play", "<Speed>100X</Speed>")
        desk.wait_status("stop")
        desk.do("stop")
        self.assertEqual(tag(desk.present("info"), "PrecueCount"), "1")
        self.assertEqual(tag(desk.present("clipid"), "ClipID"), "COUNTDOWN")
        desk.do("precue_clear")

    def test_take(self):
        desk = self.desk("C", "COUNTDOWN")
        desk.register("info")
        desk.do("precue", "<ClipID>BARS</ClipID><GotoPosition>9000</GotoPosition>")
        desk.do("take", "<TransitionType>dissolve</TransitionType><TransitionDuration>20</TransitionDuration>"
                "<FollowSpeed>oneX</FollowSpeed>")
        info = desk.client.wait_report(lambda report: "<TransitionInProgress>true<" in report)
        self.assertEqual(tag(info, "ClipID"), "BARS")
        self.assertEqual(desk.status(), "play")
        desk.client.wait_report(lambda report: "<TransitionInProgress>false<" in report)
        desk.do("play", "<Speed>-2X</Speed>")
        for follow, speed in (("follow", "-2X"), ("smart", "1X"), ("none", "0X"), ("smart", "0X"), ("oneX", "1X")):
            desk.do("precue", "<ClipID>BARS</ClipID><GotoPosition>9000</GotoPosition>")
            desk.do("take", "<TransitionType>cut</TransitionType><FollowSpeed>%s</FollowSpeed>" % follow)
            self.assertEqual(tag(desk.present("speed"), "Speed"), speed, follow)
        desk.do("stop")
        desk.refused("take", "", "Nothing is precued on channel C")

    def test_gangs_act_on_the_same_field_or_not_at_all(self):
        client = self.client()
        desks = [self.desk(letter, "BARS") for letter in "DEF"]
        self.assertEqual(client.answer("<gang_play>" + gang("DEF") + "<Speed>3X</Speed></gang_play>"), "<ok />")
        desks[0].wait_position(lambda position: position > 30)
        self.assertEqual(client.answer("<gang_stop>" + gang("FED") + "</gang_stop>"), "<ok />")
        self.assertEqual(len(set(desk.position() for desk in desks)), 1)
        self.assertEqual(client.answer("<gang_gotocmd>" + gang("DE") + "<GotoPosition>700</GotoPosition>"
                                       "</gang_gotocmd>"), "<ok />")
        desks[2].do("cue_clip", "<ClipID>COUNTDOWN</ClipID>")
        self.assertRefused(client, "<gang_gotocmd>" + gang("DEF") + "<GotoPosition>800</GotoPosition></gang_gotocmd>",
                           "Position 800 is beyond the end of &apos;COUNTDOWN&apos;, which has 600 fields")
        self.assertEqual([desk.position() for desk in desks], [700, 700, 0])
        self.assertEqual(client.answer("<gang_stop><ChannelSet></ChannelSet></gang_stop>"), "<ok />")
        self.assertRefused(client, "<gang_stop>" + gang("AL") + "</gang_stop>",
                           "Channel L does not exist, this server has A to H")

    def test_a_refused_gang_leaves_no_trace_on_the_clips(self):
        desk, idle = self.desk("F"), self.desk("H")
        desk.client.answer("<create_clip><ClipID>TRACE</ClipID><TrackSet><TrackType>video</TrackType></TrackSet>"
                           "<Channel>F</Channel></create_clip>")
        idle.do("unload")
        desk.do("insert_edit", "<SonyEditMask>1023</SonyEditMask>")
        desk.do("precue", "<ClipID>COUNTDOWN</ClipID>")
        desk.do("play")
        desk.wait_position(lambda position: position >= 3)
        watcher = self.client()
        watcher.answer("<report_register><ReportType>clip_change</ReportType></report_register>")
        watcher.settled_reports()

        def records():  # what each clip has gone through; its length grows meanwhile
            return [re.findall("<[A-Za-z]*Stamp>.*?<", watcher.answer("<get_clip_info><ClipID>%s</ClipID>"
                                                                      "</get_clip_info>" % clip))
                    for clip in ("TRACE", "COUNTDOWN")]

        before = records()
        self.assertRefused(desk.client, "<gang_play>" + gang("FH") + "</gang_play>", "Nothing is loaded on channel H")
        self.assertRefused(desk.client, "<gang_precue_activate>" + gang("FH") + "</gang_precue_activate>",
                           "Nothing is precued on channel H")
        self.assertEqual(records(), before)
        self.assertEqual(watcher.settled_reports(), [])
        self.assertEqual(desk.status(), "record")
        self.assertEqual(desk.client.answer("<gang_precue_activate>" + gang("F") + "</gang_precue_activate>"), "<ok />")
        self.assertIn("<clip_changed><ClipID>TRACE</ClipID></clip_changed>", watcher.settled_reports())
        after = records()
        for number in range(2):
            self.assertNotEqual(after[number], before[number])

    def test_gangs_keep_their_distance(self):
        client = self.client()
        desks = [self.desk(letter, "BARS", "<GotoPosition>%d</GotoPosition>" % place)
                 for letter, place in (("B", 5000), ("C", 5100), ("G", 9000))]

        def do(command, arguments=""):
            self.assertEqual(client.answer("<%s>%s%s</%s>" % (command, gang("BCG"), arguments, command)), "<ok />")

        for speed in ("1.5X", "-0.75X"):
            do("gang_play", "<Speed>%s</Speed>" % speed)
            place = desks[0].position()
            desks[0].wait_position(lambda position: abs(position - place) > 20)
            do("gang_stop")
            places = [desk.position() for desk in desks]
            self.assertEqual((places[1] - places[0], places[2] - places[0]), (100, 4000), speed)
        do("gang_jog", "<JogDistance>-7</JogDistance>")
        self.assertEqual([desk.position() for desk in desks], [place - 7 for place in places])

    def test_positions_come_once_a_field_at_most(self):
        desk = self.desk("D", "BARS")
        desk.register("timecode")
        start, count = time.monotonic(), 0
        while count < 40:
            desk.do("jog", "<JogDistance>1</JogDistance>")
            count += len([report for report in desk.client.settled_reports() if "channel_timecode" in report])
        self.assertGreaterEqual((time.monotonic() - start) * 50, 37)

    def test_registrations_belong_to_the_connection_and_the_channel_to_the_server(self):
        desk = self.desk("E", "BARS")
        other = Desk(self, "E")
        desk.register("status", "clipid", "info")
        desk.client.settled_reports()
        other.do("cue_clip", "<ClipID>COUNTDOWN</ClipID><GotoPosition>50</GotoPosition>")
        desk.client.wait_report(lambda report: "<ClipID>COUNTDOWN</ClipID>" in report)
        self.assertEqual(other.client.settled_reports(), [])
        desk.client.close()
        again = Desk(self, "E")
        self.assertEqual(again.position(), 50)
        other.do("set_loop", "<Loop>loop</Loop>")
        self.assertEqual(again.client.settled_reports(), [])
        self.assertEqual(tag(again.present("info"), "Loop"), "loop")
        other.do("unload")

    def test_steal(self):
        one, other = self.client(), self.client()
        desk = self.desk("A")
        steal = "<steal_channel><Channel>A</Channel><PlayOrRecord>%s</PlayOrRecord><StealClient>%s</StealClient>" \
                "</steal_channel>"
        self.assertIn(">false<", one.answer(steal % ("record", "ingest")))
        self.assertEqual(tag(desk.present("info"), "StealStatus"), "import")
        self.assertRefused(other, steal % ("play", "play-out"), "Channel A is taken by &apos;ingest&apos;")
        self.assertIn(">true<", one.answer(steal % ("play", "ingest")))
        self.assertEqual(tag(desk.present("info"), "StealStatus"), "export")
        desk.register("info")
        one.close()
        desk.client.wait_report(lambda report: "<StealStatus>available<" in report)
        self.assertIn(">false<", other.answer(steal % ("play", "play-out")))
        self.assertEqual(other.answer("<unsteal_channel />"), "<ok />")
        self.assertEqual(tag(desk.present("info"), "StealStatus"), "available")


class ReportRate(support.Case):
    arguments = ("--standard", "1080_50i", "--report-rate", "5")

    def test_positions_come_more_rarely_but_the_last_one_comes(self):
        desk = Desk(self, "A")
        desk.register("timecode")
        desk.do("play")
        desk.client.wait_report(lambda report: int(tag(report, "ClipPosition")) >= 20)
        desk.do("gotocmd", "<GotoPosition>7000</GotoPosition>")
        desk.client.wait_report(lambda report: int(tag(report, "ClipPosition")) == 7000)

    # A client that registers while a channel moves gets the last position too, also when the channel is back where
    # the other clients saw it last.
    def test_a_place_that_was_left_between_two_reports(self):
        desk = Desk(self, "C")
        desk.register("timecode")
        for field in ("7", "0"):
            desk.do("gotocmd", "<GotoPosition>%s</GotoPosition>" % field)
            desk.client.wait_report(lambda report: tag(report, "ClipPosition") == field)
        late = self.client()
        bodies = ("<jog><Channel>C</Channel><JogDistance>100</JogDistance></jog>",
                  "<channel_report_register><Channel>C</Channel><ChannelReportType>timecode</ChannelReportType>"
                  "</channel_report_register>",
                  "<gotocmd><Channel>C</Channel><GotoPosition>0</GotoPosition></gotocmd>")
        late.send("".join("<cmd><xid>1</xid>%s</cmd>" % body for body in bodies))
        for place in ("<ClipPosition>100<", "<ClipPosition>0<"):
            late.wait_report(lambda report: place in report)

    def test_few_reports_in_a_second(self):
        desk = Desk(self, "B")
        desk.register("timecode")
        desk.do("play", "<Speed>10X</Speed>")
        for _ in range(8):
            desk.client.wait_report(lambda report: "channel_timecode" in report)
        self.assertGreaterEqual(desk.position(), 400, "with one in each field it would be at 80")


class NothingLoaded(support.Case):
    arguments = ("--empty",)

    def test_channels_are_idle(self):
        self.assertEqual(Desk(self, "A").status(), "idle")


class FieldRate(support.Case):
    arguments = ("--standard", "1080_47_95i")

    def test_it_is_the_standard_s_in_both_directions(self):
        desk = Desk(self, "A")
        desk.do("gotocmd", "<GotoPosition>9000</GotoPosition>")
        for speed in (1.0, -1.0, 2.5, -0.5):
            desk.do("play", "<Speed>%gX</Speed>" % speed)
            before = time.monotonic()
            first = desk.position()
            after = time.monotonic()
            desk.wait_position(lambda position: abs(position - first) >= 25 * abs(speed))
            before_last = time.monotonic()
            last = desk.position()
            after_last = time.monotonic()
            with self.subTest(speed=speed):
                fields = (last - first) / speed
                self.assertGreaterEqual(fields, (before_last - after) * 48000 / 1001 - 3)
                self.assertLessEqual(fields, (after_last - before) * 48000 / 1001 + 3)
