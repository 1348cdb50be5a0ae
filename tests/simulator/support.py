"""A client that speaks to the simulated server in plain bytes, and the server's process."""

import os
import re
import socket
import subprocess
import sys
import time
import unittest

PORT = 8913
PATIENCE = 20.0  # seconds until a wait has failed


def own_address():
    """A loopback address that no other running test uses."""
    number = os.getpid()
    return "127.%d.%d.%d" % (64 + number // 62500 % 64, number // 250 % 250 + 1, number % 250 + 1)


class Simulator:
    """One process of the server under test."""

    def __init__(self, *arguments):
        self.address = own_address()
        command = [PROGRAM, "--address", self.address] + list(arguments)
        self.process = subprocess.Popen(command, stdout=subprocess.PIPE, text=True)
        self.log = []
        line = self.process.stdout.readline()
        if line != "listening on %s:%d\n" % (self.address, PORT):
            self.process.communicate()
            raise RuntimeError("the simulator says: " + line)

    def stop(self):
        """Asks for the end, gives the exit code; the log lines stand in `log`."""
        self.process.terminate()
        text, _ = self.process.communicate(timeout=PATIENCE)
        self.log = text.splitlines()
        return self.process.returncode


class Client:
    """One connection; `ask` sends a command and gives its replies, reports are set aside."""

    MESSAGE = re.compile(rb"<(reply|report)>.*?</\1>", re.DOTALL)

    def __init__(self, address):
        self.socket = socket.create_connection((address, PORT), timeout=PATIENCE)
        self.socket.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        self.held = b""
        self.reports = []
        self.last_xid = 0

    def close(self):
        self.socket.close()

    def send(self, text):
        self.socket.sendall(text.encode())

    def message(self):
        """The next reply or report, as text; nothing when the server has closed."""
        while True:
            found = self.MESSAGE.match(self.held)
            if found:
                self.held = self.held[found.end():]
                return found.group().decode()
            data = self.socket.recv(65536)
            if not data:
                return None
            self.held += data

    def ask(self, body):
        """Sends `<cmd>` with the next identifier; the replies as a list of bodies, `ok` or the last one last."""
        self.last_xid += 1
        xid = str(self.last_xid)
        self.send("<cmd><xid>%s</xid>%s</cmd>" % (xid, body))
        start, end = "<reply><xid>%s</xid>" % xid, "</reply>"
        bodies = []
        while True:
            message = self.message()
            if message is None:
                raise RuntimeError("the server has closed the connection")
            if message.startswith("<report>"):
                self.reports.append(message[len("<report>"):-len("</report>")])
                continue
            if not message.startswith(start):
                raise RuntimeError("an answer to something else: " + message)
            bodies.append(message[len(start):-len(end)])
            if not bodies[-1].startswith(STREAMS):
                return bodies

    def answer(self, body):
        """The one reply to a command."""
        bodies = self.ask(body)
        if len(bodies) != 1:
            raise RuntimeError("more than one reply: " + repr(bodies))
        return bodies[0]

    def wait_report(self, good):
        """The next report that is as wished; the ones before it are dropped."""
        end = time.monotonic() + PATIENCE
        while time.monotonic() < end:
            while self.reports:
                report = self.reports.pop(0)
                if good(report):
                    return report
            message = self.message()
            if message is None:
                raise RuntimeError("the server has closed the connection")
            self.reports.append(message[len("<report>"):-len("</report>")])
        raise RuntimeError("no such report came")

    def settled_reports(self):
        """The reports that were sent up to now: an answered command comes behind them."""
        self.answer("<sync />")
        reports, self.reports = self.reports, []
        return reports


# The bodies that `ok` follows.
STREAMS = tuple("<%s>" % name for name in (
    "clipid", "directory_name", "configuration_item", "melt_item", "melt_flags", "listid", "chaseid",
    "list_element", "chase_element", "metadata", "volatile_file_info"))


class Case(unittest.TestCase):
    """Every test of a class shares one server; `arguments` are those of its command line."""

    arguments = ()
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.simulator = Simulator(*cls.arguments)

    @classmethod
    def tearDownClass(cls):
        code = cls.simulator.stop()
        if code != 0:
            raise RuntimeError("the simulator ended with %d" % code)

    def client(self):
        client = Client(self.simulator.address)
        self.addCleanup(client.close)
        return client

    def assertRefused(self, client, body, text, code="general"):
        self.assertEqual(client.answer(body),
                         "<error><ErrorMessage>%s</ErrorMessage><ErrorCode>%s</ErrorCode></error>" % (text, code))


def tag(report, name):
    """The text of the first tag of that name."""
    return re.search("<%s>(.*?)</%s>" % (name, name), report).group(1)


def main():
    global PROGRAM
    PROGRAM = sys.argv.pop(1)
    unittest.main(module="__main__")
