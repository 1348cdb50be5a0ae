"""watch and wait: a line for each event, the end by time and by condition."""

import json
import signal
import unittest

import tool


class Watch(tool.Case):
    def watch(self, *arguments):
        process = tool.start("--server", self.address, "--timeout", "30s", *arguments)
        self.addCleanup(process.communicate)
        self.addCleanup(process.kill)
        return process

    def events(self, process, last):
        """Events up to the first one that has these members."""
        found = []
        while True:
            found.append(json.loads(process.stdout.readline()))
            if all(found[-1].get(name) == value for name, value in last.items()):
                return found

    def test_the_present_and_changes(self):
        process = self.watch("--json", "watch")
        present = self.events(process, {"event": "watching"})
        self.assertEqual(present[0]["event"], "up")
        self.assertIn(("A", "stopped"), [(each.get("channel"), each.get("status")) for each in present])
        self.control.call("PUT", "/channels/B", {"clip": "NEWS/OPENER", "position": 0, "speed": 2})
        seen = self.events(process, {"event": "speed", "channel": "B", "speed": 2})
        self.assertIn("NEWS/OPENER", [each.get("clip") for each in seen])
        self.control.call("PUT", "/clips/FRESH", {"length": 10})
        self.assertEqual(self.events(process, {"event": "clip_added"})[-1]["clip"], "FRESH")
        self.good("mkdir", "SPORT")
        self.assertEqual(self.events(process, {"event": "directory_added"})[-1]["directory"], "SPORT")
        self.fault(fault="go_away", for_ms=100)
        self.events(process, {"event": "down"})
        self.events(process, {"event": "up"})

    def test_positions_and_text(self):
        self.control.call("PUT", "/channels/A", {"clip": "BARS", "position": 0, "speed": 1})
        process = self.watch("watch", "A", "--positions")
        while " A position 00:00:0" not in process.stdout.readline():
            pass
        process = self.watch("watch", "A")
        self.assertRegex(process.stdout.readline(), r"^\d\d:\d\d:\d\d\.\d{3} %s up$" % self.address)

    def test_the_end(self):
        run = self.tool("watch", "--for", "100ms")
        self.assertEqual((run.status, run.err), (0, ""))
        run = self.tool("watch", "--for", "100ms", "--until", "A playing")
        self.assertEqual(run.status, 4)
        self.assertIn("The condition has not been met.", run.err)
        process = self.watch("watch", "C", "--until", "C at 100")
        process.stdout.readline()
        self.control.call("PUT", "/channels/C", {"clip": "BARS", "position": 100})
        self.assertEqual(process.wait(tool.PATIENCE), 0)

    @unittest.skipUnless(tool.native(), "needs signals or files of this system")
    def test_interrupted(self):
        process = self.watch("watch")
        process.stdout.readline()
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(tool.PATIENCE), -signal.SIGINT)


class Wait(tool.Case):
    def test_conditions(self):
        self.control.call("PUT", "/channels/A", {"clip": "BARS", "position": 50})
        self.control.call("PUT", "/channels/B", {"clip": None})
        for condition in ("A stopped", "0 loaded", "A clip BARS", "A at 25f", "A at 00:00:01:00", "B empty"):
            self.assertEqual(self.good("wait", condition), "", condition)
        self.assertEqual(self.json("wait", "A loaded")["clip"], "BARS")

    def test_a_state_that_does_not_come(self):
        run = tool.Run("--server", self.address, "--timeout", "3s", "wait", "A playing")
        self.assertEqual((run.status, run.err),
                         (4, "orvactl: Channel A has not reached the state within 3 s.\n"))

    def test_bad_conditions(self):
        for condition in ("A", "Z stopped", "A flying", "A at noon", "A clip ", ""):
            self.fails(2, "CONDITION has to be a channel and a state", "wait", condition)
