"""Documents in, replies out: framing, identifiers, refusals, and what ends a connection."""

import os
import re
import select
import unittest

import support


class Answers(support.Case):
    arguments = ("--name", "STÜDIO <1>", "--standard", "1080_50i")

    def test_name_is_given_with_the_identifier(self):
        client = self.client()
        client.send("<cmd>\r\n<xid>none41</xid>\r\n<get_computer_name />\r\n</cmd>")
        self.assertEqual(client.message(),
                         "<reply><xid>none41</xid><computername><ComputerName>STÜDIO &lt;1&gt;</ComputerName>"
                         "</computername></reply>")

    def test_standard_has_its_rate_and_resolution(self):
        self.assertEqual(self.client().answer("<get_video_standard />"),
                         "<video_standard><VideoStandard>1080_50i</VideoStandard><VideoRate>50</VideoRate>"
                         "<VideoResolution>1080i</VideoResolution></video_standard>")

    def test_documents_are_cut_anywhere(self):
        client = self.client()
        text = "<cmd>\r\n<xid>a&amp;b</xid>\r\n<sync />\r\n</cmd>\r\n<cmd><xid>2</xid><sync></sync></cmd >"
        for byte in text.encode():
            client.socket.sendall(bytes([byte]))
        self.assertEqual(client.message(), "<reply><xid>a&amp;b</xid><ok /></reply>")
        self.assertEqual(client.message(), "<reply><xid>2</xid><ok /></reply>")

    def test_many_documents_in_one_piece(self):
        client = self.client()
        client.send("".join("<cmd><xid>%d</xid><sync /></cmd>" % number for number in range(500)))
        for number in range(500):
            self.assertEqual(client.message(), "<reply><xid>%d</xid><ok /></reply>" % number)

    def test_refusals_are_worded(self):
        client = self.client()
        self.assertRefused(client, "<fly />", "Unknown command &apos;fly&apos;")
        self.assertRefused(client, "<play />", "Tag Channel is missing in play")
        self.assertRefused(client, "<play><Channel>A</Channel><Channel>B</Channel></play>",
                           "Tag Channel occurs twice in play")
        self.assertRefused(client, "<play><Speed>1X</Speed><Channel>A</Channel></play>",
                           "Tag Channel in play is in the wrong place")
        self.assertRefused(client, "<play><Channel>A</Channel><Colour>red</Colour></play>",
                           "Tag Colour is not allowed in play")
        self.assertRefused(client, "<play><Channel>a</Channel></play>",
                           "Tag Channel in play holds the bad value &apos;a&apos;")
        self.assertRefused(client, "<play><Channel>I</Channel></play>",
                           "Channel I does not exist, this server has A to H")
        self.assertRefused(client, "<play><Channel><Channel>A</Channel></Channel></play>",
                           "Tag Channel in play holds elements instead of a value")
        self.assertRefused(client, "<gang_stop><ChannelSet>A</ChannelSet></gang_stop>",
                           "Tag ChannelSet in gang_stop holds text instead of elements")
        self.assertRefused(client, "<gang_stop><ChannelSet><Key>A</Key></ChannelSet></gang_stop>",
                           "Tag Key is not allowed in ChannelSet")
        self.assertRefused(client, "<gang_stop><ChannelSet>" + "<Channel>A</Channel>" * 13 + "</ChannelSet></gang_stop>",
                           "Tag ChannelSet holds 13 elements, more than 12")
        self.assertRefused(client, "<sync />" * 2, "The document holds 2 commands")
        self.assertRefused(client, "", "The document holds no command")

    def test_speeds_are_read_strictly(self):
        client = self.client()
        for speed in ("fast", "1", "X", "1.X", ".5X", "+1X", "01X", "32768X", "-32769X", " 1X", "1x"):
            self.assertRefused(client, "<play><Channel>H</Channel><Speed>%s</Speed></play>" % speed,
                               "Tag Speed in play holds the bad value &apos;%s&apos;" % speed)


class Endings(support.Case):
    def assertSentAway(self, text):
        client = self.client()
        client.socket.sendall(text if isinstance(text, bytes) else text.encode())
        self.assertIsNone(client.message(), text)

    def test_what_is_no_document_ends_the_connection(self):
        self.assertSentAway("GET / HTTP/1.1\r\n")
        self.assertSentAway("<reply><xid>1</xid><ok /></reply>")
        self.assertSentAway("<?xml version='1.0'?><cmd><xid>1</xid><sync /></cmd>")
        self.assertSentAway("<cmdx><xid>1</xid></cmdx>")
        self.assertSentAway("<cmd><xid>1</xid><sync></cmd>")
        self.assertSentAway("<cmd><xid a='1'>1</xid><sync /></cmd>")
        self.assertSentAway("<cmd><xid>1</xid><!-- note --><sync /></cmd>")
        self.assertSentAway("<cmd><xid>1</xid><![CDATA[x]]><sync /></cmd>")
        self.assertSentAway("<cmd><xid>1</xid>text<sync /></cmd>")
        self.assertSentAway("<cmd><sync /></cmd>")
        self.assertSentAway("<cmd>" + "<a>" * 100 + "</a>" * 100 + "</cmd>")
        self.assertSentAway(b"<cmd><xid>\xff</xid><sync /></cmd>")
        self.assertSentAway(b"<cmd><xid>\xed\xa0\x80</xid><sync /></cmd>")
        self.assertSentAway(b"<cmd><xid>a\0b</xid><sync /></cmd>")

    def test_others_stay_when_one_is_sent_away(self):
        stays = self.client()
        self.assertEqual(stays.answer("<sync />"), "<ok />")
        self.assertSentAway("<cmd>nonsense</cmd>")
        self.assertEqual(stays.answer("<sync />"), "<ok />")


class Strictness(support.Case):
    arguments = ("--strict",)

    def test_only_the_expected_bytes_pass(self):
        client = self.client()
        good = "<cmd>\r\n<xid>%d</xid>\r\n<log>\r\n<LogFilename />\r\n<LogLine>4</LogLine>\r\n" \
               "<LogClient>a&apos;b</LogClient>\r\n<LogText>&gt;</LogText>\r\n</log>\r\n</cmd>"
        client.send(good % 1)
        self.assertNotIn("expected form", client.message())
        for number, (old, new) in enumerate((("\r\n<xid>", "\n<xid>"), ("<LogFilename />", "<LogFilename/>"),
                                             ("<LogFilename />", "<LogFilename></LogFilename>"),
                                             ("&apos;", "'"), ("&gt;", ">"), ("</log>\r\n", "</log>"))):
            client.send((good % (number + 2)).replace(old, new))
            self.assertIn("The document is not written in the expected form", client.message())


class Process(unittest.TestCase):
    def test_log_and_clean_end(self):
        simulator = support.Simulator()
        client = support.Client(simulator.address)
        client.answer("<play><Channel>B</Channel><Speed>-0.5X</Speed></play>")
        client.answer("<fly />")
        self.assertEqual(simulator.stop(), 0)
        log = "\n".join(simulator.log)
        self.assertIn(" #1 connected", log)
        self.assertIn(" #1 1 play Channel=B Speed=-0.5X: ok", log)
        self.assertIn(" #1 2 fly : error, Unknown command 'fly'", log)
        client.close()

    def test_a_log_that_nobody_reads_stops_nothing(self):
        simulator = support.Simulator("--verbose")
        client = support.Client(simulator.address)
        for _ in range(3000):
            client.answer("<sync />")
        self.assertEqual(simulator.stop(), 0)
        client.close()

    def test_the_log_says_how_many_lines_are_missing(self):
        simulator = support.Simulator()
        client = support.Client(simulator.address)
        for _ in range(5000):
            client.answer("<sync />")
        read = b""
        while select.select([simulator.process.stdout], [], [], 0.2)[0]:
            read += os.read(simulator.process.stdout.fileno(), 1 << 20)
        client.answer("<debug_label><DebugString>after</DebugString></debug_label>")
        self.assertEqual(simulator.stop(), 0)
        log = read.decode() + "\n".join(simulator.log)
        missing = re.search(r"(\d+) lines are missing here, because nobody read them in time", log)
        self.assertEqual(int(missing.group(1)) + log.count(" sync : ok"), 5000)
        client.close()

    def test_an_address_that_is_taken(self):
        simulator = support.Simulator()
        with self.assertRaisesRegex(RuntimeError, "cannot listen on %s:8913: .*Address already in use" % support.own_address()):
            support.Simulator()
        self.assertEqual(simulator.stop(), 0)

    def test_it_comes_back_at_once(self):
        for _ in range(3):
            simulator = support.Simulator()
            client = support.Client(simulator.address)
            self.assertEqual(client.answer("<sync />"), "<ok />")
            self.assertEqual(simulator.stop(), 0)
            self.assertIsNone(client.message())
            client.close()
