"""A client that speaks to the simulated server in plain bytes, and the server's process."""

import os
import re
import socket
import subprocess
import sys
import tempfile
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
        self.process = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                        text=True)
        self.log = []
        line = self.process.stdout.readline()
        if line != "listening on %s:%d\n" % (self.address, PORT):
            self.process.communicate()
            raise RuntimeError("the simulator says: " + line)

    def cpu_seconds(self):
        """Processor time that the process has used."""
        with open("/proc/%d/stat" % self.process.pid) as file:
            fields = file.read().rpartition(") ")[2].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    def memory(self):
        """Bytes of memory that the process holds."""
        with open("/proc/%d/statm" % self.process.pid) as file:
            return int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")

    def stop(self):
        """Asks for the end and returns the exit code; the log lines are in `log`."""
        self.process.terminate()
        text, _ = self.process.communicate(timeout=PATIENCE)
        self.log = text.splitlines()
        return self.process.returncode


class Client:
    """One connection; `ask` sends a command and returns its replies, reports are kept for later."""

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
        """The next report that satisfies a condition; the ones before it are dropped."""
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
        """The reports that were sent up to now. They come before the answer to a command that is sent now."""
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


def wait_until(true):
    """Calls the condition again and again until it is true."""
    end = time.monotonic() + PATIENCE
    while not true():
        if time.monotonic() > end:
            raise RuntimeError("what was waited for does not happen")
        time.sleep(0.005)


def text_file(case, text):
    """The path of a file with this text, which is there until the test ends."""
    file = tempfile.NamedTemporaryFile("w", suffix=".txt")
    case.addCleanup(file.close)
    file.write(text)
    file.flush()
    return file.name


def tag(report, name):
    """The text of the first tag of that name."""
    return re.search("<%s>(.*?)</%s>" % (name, name), report).group(1)


class Result(unittest.TestResult):
    """Prints what the other test programs print, so that results can be counted in the same way."""

    def startTest(self, test):
        super().startTest(test)
        self.began = time.monotonic()
        self.problems = 0
        print("[ RUN      ] " + test.id(), flush=True)

    def note(self, test, problem):
        self.problems += 1
        print("%s\n%s" % (test.id(), self._exc_info_to_string(problem, test)))

    def addError(self, test, err):
        super().addError(test, err)
        if isinstance(test, unittest.TestCase):
            self.note(test, err)
        else:  # a server that could not be started, or ended badly
            print("[  FAILED  ] %s (0 ms)\n%s" % (test.id(), self._exc_info_to_string(err, test)))

    def addFailure(self, test, err):
        super().addFailure(test, err)
        self.note(test, err)

    def addSubTest(self, test, subtest, err):
        super().addSubTest(test, subtest, err)
        if err is not None:
            self.note(subtest, err)

    def stopTest(self, test):
        super().stopTest(test)
        word = "[  FAILED  ]" if self.problems else "[       OK ]"
        print("%s %s (%d ms)" % (word, test.id(), (time.monotonic() - self.began) * 1000), flush=True)


def flat(suite):
    for test in suite:
        if isinstance(test, unittest.TestSuite):
            yield from flat(test)
        else:
            yield test


def chosen_tests(folder):
    """All tests, or those of this part when the environment asks for a part; arguments are parts of names."""
    tests = list(flat(unittest.defaultTestLoader.discover(folder, "*_test.py")))
    wanted = [test for test in tests if not sys.argv[1:] or any(word in test.id() for word in sys.argv[1:])]
    parts = int(os.environ.get("GTEST_TOTAL_SHARDS", "1"))
    return wanted[int(os.environ.get("GTEST_SHARD_INDEX", "0"))::parts]


def run_all(program, folder):
    """Runs the tests of a folder with this simulator."""
    global PROGRAM
    PROGRAM = program
    suite = unittest.TestSuite(chosen_tests(folder))
    result = Result()
    result.failfast = False
    suite.run(result)
    print("[==========] %d tests ran." % result.testsRun)
    return 0 if result.wasSuccessful() else 1
