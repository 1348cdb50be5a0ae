"""Faults that are made on purpose, from a file."""

import json
import os
import tempfile
import time
import unittest

import support

OK = "<reply><xid>%d</xid><ok /></reply>"
PLAY = "<play><Channel>%s</Channel></play>"


def command(xid, body):
    return "<cmd><xid>%d</xid>%s</cmd>" % (xid, body)


class Faulty(unittest.TestCase):
    """Each test has a server with faults of its own."""

    def serve(self, *faults, arguments=()):
        handle, name = tempfile.mkstemp(suffix=".json")
        self.addCleanup(os.unlink, name)
        with os.fdopen(handle, "w") as file:
            json.dump(faults, file)
        self.simulator = support.Simulator("--faults", name, *arguments)
        self.addCleanup(self.stop)

    def stop(self):
        self.assertEqual(self.simulator.stop(), 0)

    def client(self):
        client = support.Client(self.simulator.address)
        self.addCleanup(client.close)
        return client

    def assertSilent(self, client):
        """The server answers another client, and this one still has nothing."""
        self.assertEqual(self.client().answer("<sync />"), "<ok />")
        client.socket.setblocking(False)
        with self.assertRaises(BlockingIOError):
            client.socket.recv(1)
        client.socket.settimeout(support.PATIENCE)


class Answers(Faulty):
    def test_refuse(self):
        self.serve({"fault": "refuse", "command": "play", "channel": "A", "text": "It is <warm>", "code": "clipnotfound"})
        client = self.client()
        client.send(command(1, PLAY % "A"))
        self.assertEqual(client.message(), "<reply><xid>1</xid><error><ErrorMessage>It is &lt;warm&gt;</ErrorMessage>"
                         "<ErrorCode>clipnotfound</ErrorCode></error></reply>")
        client.last_xid = 1
        self.assertEqual(client.answer(PLAY % "B"), "<ok />")
        client.answer("<channel_report_register><Channel>A</Channel><ChannelReportType>status</ChannelReportType>"
                      "</channel_report_register>")
        self.assertNotIn("<ChannelStatus>play<", "".join(client.settled_reports()))

    def test_nth_times_and_every_command(self):
        self.serve({"fault": "refuse", "command": "*", "nth": 2}, {"fault": "refuse", "command": "stop", "times": 1})
        client = self.client()
        self.assertEqual(client.answer("<sync />"), "<ok />")
        self.assertIn("<error>", client.answer("<sync />"))
        self.assertEqual(client.answer("<sync />"), "<ok />")
        stop = "<stop><Channel>A</Channel></stop>"
        self.assertIn("<error>", client.answer(stop))
        self.assertEqual(client.answer(stop), "<ok />")

    def test_one_client_only(self):
        self.serve({"fault": "refuse", "command": "sync", "client": 2})
        first, second = self.client(), self.client()
        self.assertEqual(first.answer("<sync />"), "<ok />")
        self.assertIn("<error>", second.answer("<sync />"))

    def outcomes(self, seed):
        self.serve({"fault": "refuse", "command": "sync", "chance": 0.5}, arguments=("--seed", seed))
        client = self.client()
        outcomes = [client.answer("<sync />") for _ in range(64)]
        self.doCleanups()
        return outcomes

    def test_chance_is_repeated_by_the_seed(self):
        first = self.outcomes("7")
        self.assertTrue(5 < first.count("<ok />") < 59)
        self.assertEqual(self.outcomes("7"), first)
        self.assertNotEqual(self.outcomes("8"), first)

    def test_delay_keeps_the_order(self):
        self.serve({"fault": "delay", "command": "play", "ms": [200, 300]})
        client = self.client()
        before = time.monotonic()
        client.send(command(1, PLAY % "A") + command(2, "<sync />"))
        self.assertEqual([client.message(), client.message()], [OK % 1, OK % 2])
        self.assertGreaterEqual(time.monotonic() - before, 0.2)

    def test_delay_that_others_overtake(self):
        self.serve({"fault": "delay", "command": "play", "ms": 200, "overtake": True})
        client = self.client()
        client.send(command(1, PLAY % "A") + command(2, "<sync />"))
        self.assertEqual([client.message(), client.message()], [OK % 2, OK % 1])

    def test_no_answer(self):
        self.serve({"fault": "no_answer", "command": "play"})
        client = self.client()
        client.send(command(1, PLAY % "A"))
        self.assertSilent(client)
        client.send(command(2, "<sync />"))
        self.assertEqual(client.message(), OK % 2)

    def test_no_answer_takes_all_rows(self):
        self.serve({"fault": "no_answer", "command": "download_clipids"})
        client = self.client()
        client.send(command(1, "<download_clipids><DirectoryName></DirectoryName></download_clipids>"))
        client.send(command(2, "<sync />"))
        self.assertEqual(client.message(), OK % 2)

    def test_twice(self):
        self.serve({"fault": "twice", "command": "play"})
        client = self.client()
        client.send(command(1, PLAY % "A") + command(2, "<sync />"))
        self.assertEqual([client.message() for _ in range(3)], [OK % 1, OK % 1, OK % 2])

    def test_out_of_order(self):
        self.serve({"fault": "out_of_order", "command": "play"})
        client = self.client()
        client.send(command(1, PLAY % "A"))
        self.assertSilent(client)
        client.send(command(2, "<sync />"))
        self.assertEqual([client.message(), client.message()], [OK % 2, OK % 1])

    def test_out_of_order_without_another_answer(self):
        self.serve({"fault": "out_of_order", "command": "play", "for_ms": 200}, {"fault": "out_of_order", "command": "stop"})
        client = self.client()
        client.send(command(1, PLAY % "A"))
        self.assertEqual(client.message(), OK % 1)
        client.send(command(2, PLAY % "A") + command(3, "<sync />") + command(4, "<stop><Channel>A</Channel></stop>"))
        self.assertEqual([client.message(), client.message()], [OK % 3, OK % 2])
        self.assertSilent(client)
        client.send(command(5, "<sync />"))
        self.assertEqual([client.message(), client.message()], [OK % 5, OK % 4])

    def test_a_delayed_answer_ends_with_its_connection(self):
        self.serve({"fault": "delay", "command": "play", "ms": 1000000000, "overtake": True})
        for _ in range(3):
            client = self.client()
            client.send(command(1, PLAY % "A") + command(2, "<sync />"))
            self.assertEqual(client.message(), OK % 2)
            client.close()

    def test_wrong_kind(self):
        self.serve({"fault": "wrong_kind", "command": "play"})
        client = self.client()
        client.send(command(1, PLAY % "A"))
        self.assertEqual(client.message(), "<reply><xid>1</xid><computername><ComputerName>WRONG</ComputerName>"
                         "</computername></reply>")

    def test_wrong_kind_with_a_body(self):
        self.serve({"fault": "wrong_kind", "command": "get_computer_name"},
                   {"fault": "wrong_kind", "command": "stop", "body": "<huh>1</huh>"})
        client = self.client()
        self.assertEqual(client.answer("<get_computer_name />"), "<ok />")
        self.assertEqual(client.answer("<stop><Channel>A</Channel></stop>"), "<huh>1</huh>")

    def test_malformed(self):
        self.serve({"fault": "malformed", "command": "play"},
                   {"fault": "malformed", "command": "stop", "message_base64": "PGE+/zwvYT4="})
        client = self.client()
        client.send(command(1, PLAY % "A") + command(2, "<stop><Channel>A</Channel></stop>"))
        expected = b"<reply><xid>1</xid><ok /></wrong></reply><a>\xff</a>"
        self.assertEqual(self.bytes_of(client, len(expected)), expected)

    def test_oversized(self):
        self.serve({"fault": "oversized", "command": "sync", "nth": 1},
                   {"fault": "oversized", "command": "sync", "nth": 2, "bytes": 32769})
        client = self.client()
        self.assertEqual(len(client.answer("<sync />")), 40000 - len("<reply><xid>1</xid></reply>"))
        self.assertEqual(len(client.answer("<sync />")), 32769 - len("<reply><xid>2</xid></reply>"))
        self.assertEqual(client.answer("<sync />"), "<ok />")

    def test_one_row_of_many(self):
        self.serve({"fault": "malformed", "command": "download_clipids", "row": 2, "message": "<torn>"},
                   arguments=("--empty", "--generate", "3"))
        client = self.client()
        client.send(command(1, "<download_clipids><DirectoryName></DirectoryName></download_clipids>"))
        self.assertIn("<clipid>", client.message())
        self.assertEqual(self.bytes_of(client, 6), b"<torn>")
        self.assertIn("<clipid>", client.message())

    def test_cut(self):
        self.serve({"fault": "cut", "command": "sync", "bytes": 9})
        client = self.client()
        client.send(command(1, "<sync />"))
        self.assertEqual(self.rest(client), b"<reply><x")
        self.assertEqual(self.client().answer("<play><Channel>A</Channel></play>"), "<ok />")

    def test_reset(self):
        self.serve({"fault": "reset", "command": "sync"})
        client = self.client()
        client.send(command(1, "<sync />"))
        with self.assertRaises(ConnectionResetError):
            client.message()

    def test_pieces(self):
        self.expect_pieces({"ms": 20})

    def test_pieces_at_the_usual_gap(self):
        self.expect_pieces({})

    def expect_pieces(self, gap):
        self.serve({"fault": "pieces", "command": "sync", "bytes": 5, **gap})
        client = self.client()
        for xid in range(1, 100):  # on a busy machine the client may receive several at once
            client.send(command(xid, "<sync />"))
            whole = (OK % xid).encode()
            pieces = []
            while sum(map(len, pieces)) < len(whole):
                pieces.append(client.socket.recv(100))
            self.assertEqual(b"".join(pieces), whole)
            if max(map(len, pieces)) == 5:
                return
        self.fail("the pieces are not sent one by one")

    def test_reports(self):
        self.serve({"fault": "no_answer", "report": "channel_status", "channel": "A"},
                   {"fault": "twice", "report": "channel_speed"})
        client = self.client()
        for channel in "AB":
            for kind in ("status", "speed"):
                client.answer("<channel_report_register><Channel>%s</Channel><ChannelReportType>%s</ChannelReportType>"
                              "</channel_report_register>" % (channel, kind))
        names = [(report[1:report.index(">")], support.tag(report, "Channel")) for report in client.settled_reports()]
        # A channel may still be cueing at the start, and then it has one more status to report.
        self.assertNotIn(("channel_status", "A"), names)
        self.assertIn(("channel_status", "B"), names)
        for channel in "AB":
            self.assertEqual(names.count(("channel_speed", channel)), 2)

    def bytes_of(self, client, size):
        while len(client.held) < size:
            data = client.socket.recv(65536)
            if not data:
                self.fail("the server has closed the connection")
            client.held += data
        taken, client.held = client.held[:size], client.held[size:]
        return taken

    def rest(self, client):
        while True:
            data = client.socket.recv(65536)
            if not data:
                return client.held
            client.held += data


class Connections(Faulty):
    def wait(self, good):
        end = time.monotonic() + support.PATIENCE
        while not good():
            self.assertLess(time.monotonic(), end, "it does not happen")
            time.sleep(0.01)

    def is_refused(self):
        try:
            self.client().close()
        except ConnectionRefusedError:
            return True
        return False

    def test_stop_reading(self):
        self.serve({"fault": "stop_reading", "command": "play", "for_ms": 300})
        client = self.client()
        before = time.monotonic()
        client.send(command(1, PLAY % "A") + command(2, "<sync />"))
        self.assertEqual(client.message(), OK % 1)
        self.assertEqual(client.message(), OK % 2)
        self.assertGreaterEqual(time.monotonic() - before, 0.3)

    def test_stop_reading_for_good(self):
        self.serve({"fault": "stop_reading", "client": 1})
        client = self.client()
        client.send(command(1, "<sync />"))
        self.assertSilent(client)

    def test_freeze(self):
        self.serve({"fault": "freeze", "command": "play", "for_ms": 300})
        client = self.client()
        before = time.monotonic()
        client.send(command(1, PLAY % "A") + command(2, "<sync />"))
        self.assertSilent(client)
        self.assertEqual([client.message(), client.message()], [OK % 1, OK % 2])
        self.assertGreaterEqual(time.monotonic() - before, 0.3)

    def test_a_frozen_client_may_go(self):
        self.serve({"fault": "freeze", "command": "play"})
        client = self.client()
        client.send(command(1, PLAY % "A"))
        self.assertSilent(client)
        client.close()

    def test_refuse_connections(self):
        self.serve({"fault": "refuse_connections", "command": "play", "for_ms": 300})
        client = self.client()
        self.assertEqual(client.answer(PLAY % "A"), "<ok />")
        self.wait(self.is_refused)
        self.assertEqual(client.answer("<sync />"), "<ok />")
        self.wait(lambda: not self.is_refused())

    def test_go_away_and_come_back(self):
        self.serve({"fault": "go_away", "command": "play", "for_ms": 300})
        client, other = self.client(), self.client()
        client.send(command(1, PLAY % "A"))
        self.assertIsNone(client.message())
        self.assertIsNone(other.message())
        self.wait(lambda: not self.is_refused())
        self.assertEqual(self.client().answer("<sync />"), "<ok />")

    def test_away_from_the_start(self):
        self.serve({"fault": "go_away", "for_ms": 500})
        self.wait(lambda: not self.is_refused())


class Files(unittest.TestCase):
    def assertBad(self, text, complaint):
        with tempfile.NamedTemporaryFile("w", suffix=".json") as file:
            file.write(text)
            file.flush()
            with self.assertRaisesRegex(RuntimeError, complaint):
                support.Simulator("--faults", file.name)

    def test_what_is_wrong_is_named(self):
        self.assertBad("{", "parse error")
        self.assertBad("{}", "the faults are not a list")
        self.assertBad('[{"fault": "sleep"}]', 'fault 1: member "fault": there is no fault "sleep"')
        self.assertBad('[{"command": "play"}]', 'the member "fault" is missing')
        self.assertBad('[{"fault": "refuse", "command": "play", "colour": 1}]', 'member "colour": there is no such member')
        self.assertBad('[{"fault": "delay", "command": "play", "ms": [2, 1]}]', "the wrong way round")
        self.assertBad('[{"fault": "delay", "command": "play", "ms": -1}]', "not a whole number")
        self.assertBad('[{"fault": "oversized", "command": "play", "bytes": 1000000000000}]', "at most 1000000 bytes")
        self.assertBad('[{"fault": "delay"}]', 'needs a "command" or a "report"')
        self.assertBad('[{"fault": "refuse", "report": "channel_status"}]', 'needs a "command"')
        self.assertBad('[{"fault": "refuse", "command": "play", "channel": "a"}]', "not a channel from A to L")
        self.assertBad('[{"fault": "refuse", "command": "play", "chance": 1.5}]', "not a number from 0 to 1")
        self.assertBad('[{"fault": "malformed", "command": "play", "message_base64": "?"}]', "not base64")

    def test_a_file_that_is_not_there(self):
        with self.assertRaisesRegex(RuntimeError, "cannot be read"):
            support.Simulator("--faults", "/nowhere.json")
