"""Channels that move."""

import time

import support
from support import tag


class Moving(support.Case):
    arguments = ("--standard", "1080_50i")

    def test_a_playing_channel_advances_at_the_field_rate(self):
        client = self.client()
        client.answer("<channel_report_register><Channel>A</Channel><ChannelReportType>timecode</ChannelReportType>"
                      "</channel_report_register>")
        client.wait_report(lambda report: tag(report, "ClipPosition") == "0")
        start = time.monotonic()
        self.assertEqual(client.answer("<play><Channel>A</Channel></play>"), "<ok />")
        client.wait_report(lambda report: int(tag(report, "ClipPosition")) >= 50)
        self.assertGreater(time.monotonic() - start, 0.9)
        self.assertEqual(client.answer("<stop><Channel>A</Channel></stop>"), "<ok />")

    def test_gangs_move_together(self):
        client = self.client()
        client.answer("<channel_reports_register><ChannelSet><Channel>C</Channel><Channel>D</Channel></ChannelSet>"
                      "<ChannelReportSet><ChannelReportType>status</ChannelReportType>"
                      "<ChannelReportType>timecode</ChannelReportType></ChannelReportSet>"
                      "</channel_reports_register>")
        gang = "<ChannelSet><Channel>C</Channel><Channel>D</Channel></ChannelSet>"
        client.answer("<gang_play>" + gang + "<Speed>2X</Speed></gang_play>")
        client.wait_report(lambda report: tag(report, "Channel") == "D" and "Position>4<" in report)
        client.answer("<gang_stop>" + gang + "</gang_stop>")
        reports = client.settled_reports()
        last = {}
        for report in reports:
            if "channel_timecode" in report:
                last[tag(report, "Channel")] = tag(report, "ClipPosition")
        self.assertEqual(last.get("C"), last.get("D"))


if __name__ == "__main__":
    support.main()
