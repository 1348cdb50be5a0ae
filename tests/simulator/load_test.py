"""High load: long listings, slow clients, huge values, and no descriptor left."""

import os
import resource
import socket
import time
import unittest

import support

LISTING = "<cmd><xid>%s</xid><download_clipids /></cmd>"


class Raw:
    """A client that counts what it reads and does not take it apart."""

    def __init__(self, case, receive_buffer=None):
        self.socket = socket.socket()
        if receive_buffer:
            self.socket.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, receive_buffer)
        self.socket.settimeout(support.PATIENCE)
        self.socket.connect((case.simulator.address, support.PORT))
        self.held = b""
        case.addCleanup(self.socket.close)

    def send(self, text):
        self.socket.sendall(text.encode())

    def read_until(self, end):
        """The bytes up to and including an end; when the server closes first, all that was read."""
        parts = []
        while end not in self.held:
            # An end may be split between two reads: so much of the last one is kept.
            kept = max(len(self.held) - len(end), 0)
            parts.append(self.held[:kept])
            data = self.socket.recv(1 << 20)
            if not data:
                raise RuntimeError("the server has closed the connection")
            self.held = self.held[kept:] + data
        size = self.held.index(end) + len(end)
        parts.append(self.held[:size])
        self.held = self.held[size:]
        return b"".join(parts)

    def read_all(self):
        """Everything up to the end of the connection."""
        parts = [self.held]
        while parts[-1] or len(parts) == 1:
            parts.append(self.socket.recv(1 << 20))
        self.held = b""
        return b"".join(parts)


@unittest.skipIf("ASAN_OPTIONS" in os.environ, "a sanitizer keeps freed memory, and takes its time")
class LongListings(support.Case):
    arguments = ("--generate", "100000", "--clips", "/dev/null", "--empty", "--quiet")

    def test_a_client_that_reads_late_gets_everything(self):
        slow, other = Raw(self), self.client()
        other.answer("<sync />")
        before = self.simulator.memory()
        slow.send("".join(LISTING % number for number in range(80)))
        first = slow.read_until(b"</reply>")
        self.assertIn(b"<xid>0</xid>", first)
        for _ in range(20):
            self.assertEqual(other.answer("<sync />"), "<ok />")
        self.assertLess(self.simulator.memory() - before, 16 << 20)
        names = slow.read_until(b"<ok /></reply>").count(b"<clipid>") + 1
        self.assertEqual(names, 100000)
        self.assertEqual(slow.read_until(b"<ok /></reply>").count(b"<clipid>"), 100000)

    def test_what_comes_behind_a_long_listing_waits_for_its_end(self):
        client = Raw(self)
        client.send(LISTING % "a" + "<cmd><xid>b</xid><sync /></cmd>")
        listing = client.read_until(b"<reply><xid>a</xid><ok /></reply>")
        self.assertEqual(listing.count(b"<reply><xid>a</xid><clipid>"), 100000)
        self.assertEqual(client.read_until(b"</reply>"), b"<reply><xid>b</xid><ok /></reply>")

    def test_reports_do_not_wait_for_the_end_of_a_listing(self):
        slow, other = Raw(self, 1 << 16), self.client()
        slow.send("<cmd><xid>r</xid><report_register><ReportType>directory_change</ReportType></report_register></cmd>")
        slow.read_until(b"</reply>")
        slow.send(LISTING % "a" * 10)
        slow.read_until(b"</reply>")
        self.assertEqual(other.answer("<create_directory><DirectoryName>MEANWHILE</DirectoryName></create_directory>"),
                         "<ok />")
        self.assertLess(slow.read_until(b"</report>").count(b"<ok />"), 9)

    def test_a_client_that_has_said_all_still_gets_its_answers(self):
        client = Raw(self)
        client.send(LISTING % "a")
        client.socket.shutdown(socket.SHUT_WR)
        everything = client.read_all()
        self.assertEqual(everything.count(b"<clipid>"), 100000)
        self.assertTrue(everything.endswith(b"<reply><xid>a</xid><ok /></reply>"))

    def test_clients_that_leave_within_a_listing(self):
        before = self.simulator.memory()
        for _ in range(50):
            client = Raw(self)
            client.send(LISTING % "a" * 8)
            client.read_until(b"</reply>")
            client.socket.close()
        other = self.client()
        self.assertEqual(other.answer("<sync />"), "<ok />")
        self.assertLess(self.simulator.memory() - before, 64 << 20)

    def test_a_list_that_changes_while_it_is_sent(self):
        other, slow = self.client(), Raw(self, 1 << 16)
        item = ("<list_save_element><ListElement><ContentID><ClipID>%s</ClipID></ContentID></ListElement>"
                "</list_save_element>" % ("x" * 10000))
        other.answer("<list_save_start><ListID>LONG</ListID></list_save_start>")
        for _ in range(1000):
            other.answer(item)
        other.answer("<list_save_end />")
        slow.send("<cmd><xid>1</xid><download_list><ListID>LONG</ListID></download_list></cmd>")
        slow.read_until(b"</reply>")
        self.assertEqual(other.answer("<list_rename><ListFromID>LONG</ListFromID><ListToID>OTHER</ListToID>"
                                      "</list_rename>"), "<ok />")
        rest = slow.read_until(b"<reply><xid>1</xid><error>") + slow.read_until(b"</error></reply>")
        self.assertLess(rest.count(b"<list_element>"), 999)
        self.assertTrue(rest.endswith(b"<ErrorMessage>Playlist &apos;LONG&apos; has changed while it was being sent"
                                      b"</ErrorMessage><ErrorCode>general</ErrorCode></error></reply>"), rest[-300:])


@unittest.skipIf("ASAN_OPTIONS" in os.environ, "a sanitizer keeps freed memory, and takes its time")
class Directories(support.Case):
    def test_only_what_is_directly_in_a_directory(self):
        client = self.client()
        for name in ("A", "A/B", "A/B/C", "A/D", "A0", "AB"):
            client.answer("<create_directory><DirectoryName>%s</DirectoryName></create_directory>" % name)

        def names(arguments):
            rows = client.ask("<download_directory_names>%s</download_directory_names>" % arguments)
            return [support.tag(row, "DirectoryName") for row in rows[:-1]]

        self.assertEqual(names("<DirectoryName>A</DirectoryName>"), ["A/B", "A/D"])
        self.assertEqual(names("<DirectoryName>A/B</DirectoryName>"), ["A/B/C"])
        self.assertEqual(names("<DirectoryName />"), ["A", "A0", "AB", "NEWS", "SPORT"])
        self.assertEqual(names(""), ["A", "A/B", "A/B/C", "A/D", "A0", "AB", "NEWS", "SPORT"])


@unittest.skipIf("ASAN_OPTIONS" in os.environ, "a sanitizer keeps freed memory, and takes its time")
class HugeValues(support.Case):
    arguments = ("--quiet",)

    def spend(self, size):
        """Processor seconds for a log line of that size."""
        before = self.simulator.cpu_seconds()
        client = self.client()
        client.send("<cmd><xid>1</xid><log><LogFilename>f</LogFilename><LogLine>1</LogLine><LogClient>c</LogClient>"
                    "<LogText>" + "x" * size + "</LogText></log></cmd>")
        self.assertEqual(client.message(), "<reply><xid>1</xid><ok /></reply>")
        client.close()
        return self.simulator.cpu_seconds() - before

    def test_the_cost_of_a_value_grows_with_its_size_only(self):
        parts = sum(self.spend(2 << 20) for _ in range(10))
        self.assertLess(self.spend(20 << 20), 3 * parts + 0.5)

    def test_an_end_tag_may_be_full_of_blanks(self):
        client = self.client()
        client.send("<cmd><xid>1</xid><sync /></cmd" + " " * (2 << 20) + "></cm</cmd>")
        self.assertEqual(client.message(), "<reply><xid>1</xid><ok /></reply>")
        self.assertIsNone(client.message())

    def test_a_value_may_look_like_an_end(self):
        client = self.client()
        text = "<cmd><xid>1</xid><log><LogFilename>&lt;/cmd&gt;</LogFilename><LogLine>1</LogLine><LogClient>/cmd>" \
               "</LogClient><LogText></LogText></log></cmd\n>"
        for byte in (text * 2).encode():
            client.socket.sendall(bytes([byte]))
        for _ in range(2):
            self.assertEqual(client.message(), "<reply><xid>1</xid><ok /></reply>")

    def test_what_is_too_long_ends_the_connection(self):
        client = self.client()
        client.send("<cmd><xid>1</xid><log>")
        piece = b"x" * (1 << 20)
        with self.assertRaises(OSError):
            for _ in range(80):
                client.socket.sendall(piece)
            self.assertIsNone(client.message())
            raise ConnectionError
        self.assertEqual(self.client().answer("<sync />"), "<ok />")


@unittest.skipIf("ASAN_OPTIONS" in os.environ, "a sanitizer keeps freed memory, and takes its time")
class Descriptors(unittest.TestCase):
    def test_clients_wait_without_load_when_none_is_left(self):
        simulator = support.Simulator()
        resource.prlimit(simulator.process.pid, resource.RLIMIT_NOFILE, (16, 16))
        clients = [support.Client(simulator.address) for _ in range(30)]
        served = [client for client in clients[:3] if client.answer("<sync />") == "<ok />"]
        self.assertEqual(len(served), 3)
        began, used = time.monotonic(), simulator.cpu_seconds()
        while time.monotonic() - began < 1.5:
            self.assertEqual(served[0].answer("<sync />"), "<ok />")
            time.sleep(0.1)
        self.assertLess(simulator.cpu_seconds() - used, (time.monotonic() - began) / 3)
        for client in clients[:25]:
            client.close()
        self.assertEqual(clients[-1].answer("<sync />"), "<ok />")
        self.assertEqual(simulator.stop(), 0)
        self.assertEqual(sum("new clients wait: Too many open files" in line for line in simulator.log), 1)
        for client in clients[25:]:
            client.close()
