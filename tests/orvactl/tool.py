"""Runs orvactl against a simulated server of the test's own."""

import json
import os
import shutil
import subprocess
import tempfile
import unittest
import urllib.parse
import urllib.request

import support

# So many seconds may pass before a run of the program has hung.
PATIENCE = 60
PROGRAM = ""
ROOT = ""


def find(program, root):
    """Says which program is tested. ORVACTL in the environment names another, with a launcher before it if need be."""
    global PROGRAM, ROOT
    PROGRAM = os.environ.get("ORVACTL", program).split()
    ROOT = root


def native():
    """Whether the program runs by itself. Signals, terminals and special files do not reach one behind a launcher."""
    return len(PROGRAM) == 1


def environment(**more):
    """The environment of a run: nothing of the user's own configuration."""
    kept = {name: value for name, value in os.environ.items()
            if name not in ("ORVA_SERVER", "NO_COLOR", "XDG_CONFIG_HOME", "APPDATA")}
    kept["HOME"] = "/nonexistent"
    kept.update(more)
    return kept


def jq(text, expression="."):
    """What `jq` makes of a text; it fails when the text is not JSON."""
    done = subprocess.run(["jq", "-c", expression], input=text, capture_output=True, text=True, timeout=PATIENCE)
    if done.returncode != 0:
        raise AssertionError("jq says %r of %r" % (done.stderr, text))
    return [json.loads(line) for line in done.stdout.split("\n") if line]


class Run:
    """What a run of the program left behind."""

    def __init__(self, *arguments, input=None, **more):
        done = subprocess.run(PROGRAM + list(arguments), input=input, capture_output=True, timeout=PATIENCE,
                              env=environment(**more), text=True, encoding="utf-8")
        self.status, self.out, self.err = done.returncode, done.stdout, done.stderr


class Control:
    """The control address of a simulator."""

    def __init__(self, address):
        self.base = "http://" + address

    def call(self, method, path, body=None):
        request = urllib.request.Request(self.base + path, method=method,
                                         data=None if body is None else json.dumps(body).encode())
        if body is not None:
            request.add_header("Content-Type", "application/json")
        with urllib.request.urlopen(request, timeout=PATIENCE) as answer:
            return json.loads(answer.read() or b"null")


class Case(unittest.TestCase):
    """Every test of a class shares one server, which is as new at the beginning of each test."""

    maxDiff = None
    arguments = ("--standard", "1080_50i", "--name", "STUDIO")
    clips = """directory NEWS
clip BARS length=3000 title="Colour bars" meta.Place=Oslo
clip "NEWS/OPENER" length=500 tracks=video,audio angles=3 title=Opener creator=ann project=news
clip "NEWS/CLOSER" length=250
clip "NEWS/\u00c4 1" length=50
clip LOCKED length=100 read_only
"""

    @classmethod
    def setUpClass(cls):
        folder = tempfile.mkdtemp()
        cls.addClassCleanup(shutil.rmtree, folder)
        path = os.path.join(folder, "clips")
        with open(path, "w", encoding="utf-8") as file:
            file.write(cls.clips)
        address = support.own_address()
        cls.control_address = address + ":9913"
        cls.simulator = support.Simulator("--quiet", "--clips", path, "--control", cls.control_address,
                                          *cls.arguments)
        cls.control = Control(cls.control_address)
        cls.address = cls.simulator.address

    @classmethod
    def tearDownClass(cls):
        cls.simulator.stop()

    def setUp(self):
        self.control.call("POST", "/reset")

    def tool(self, *arguments, **more):
        """Runs the program on the server; a generous limit, so that a busy machine does not matter."""
        return Run("--server", self.address, "--timeout", "30s", *arguments, **more)

    def good(self, *arguments, **more):
        """The output of a run that must succeed."""
        run = self.tool(*arguments, **more)
        self.assertEqual((run.status, run.err), (0, ""), arguments)
        return run.out

    def json(self, *arguments, **more):
        """The one JSON value that a run prints."""
        values = jq(self.good("--json", *arguments, **more))
        self.assertEqual(len(values), 1, arguments)
        return values[0]

    def fails(self, status, text, *arguments, **more):
        """A run that must end with this status and name this reason, once as text and once as JSON."""
        run = self.tool(*arguments, **more)
        self.assertEqual((run.status, run.out), (status, ""), (arguments, run.err))
        self.assertIn(text, run.err)
        self.assertTrue(run.err.startswith("orvactl: "), run.err)
        again = self.tool("--json", *arguments, **more)
        self.assertEqual((again.status, again.out), (status, ""))
        error = jq(again.err)[-1]
        self.assertEqual(error["exit"], status)
        self.assertIn(text, error["text"])
        return error

    def fault(self, **rule):
        self.control.call("POST", "/faults", rule)

    def commands(self, name=None):
        """The commands that the server got, or those of one name, with their arguments."""
        entries = self.control.call("GET", "/journal?since=0&limit=10000")["entries"]
        return [entry["arguments"] for entry in entries if name is None or entry["command"] == name]

    def channel(self, letter):
        return self.control.call("GET", "/channels/" + letter)


def start(*arguments, **more):
    """A run that goes on; the caller ends it."""
    return subprocess.Popen(PROGRAM + list(arguments), stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                            encoding="utf-8", env=environment(**more))
