"""record: what it takes, and that it is undone."""

import json
import signal
import unittest

import support
import tool


class Record(tool.Case):
    def assertAtRest(self):
        channel = self.channel("A")
        self.assertEqual((channel["status"], channel["edit_mask"]), ("stop", 0))

    def test_for_some_time(self):
        recorded = self.json("record", "A", "NEWS/TAKE", "--for", "400ms", "--tracks", "video")
        self.assertEqual(recorded["clip"], "NEWS/TAKE")
        self.assertGreater(recorded["length"]["fields"], 5)
        self.assertAtRest()
        self.assertIn("recorded TAKE2 00:00:0", self.good("record", "A", "TAKE2", "--for", "300ms"))

    @unittest.skipUnless(tool.native(), "needs signals or files of this system")
    def test_until_it_is_interrupted(self):
        for number in (signal.SIGINT, signal.SIGTERM):
            clip = "TAKE%d" % number
            process = tool.start("--server", self.address, "--timeout", "30s", "--json", "record", "A", clip)
            support.wait_until(lambda: self.channel("A")["status"] == "record" and self.channel("A")["position"] > 5)
            process.send_signal(number)
            out, err = process.communicate(timeout=tool.PATIENCE)
            self.assertEqual((process.returncode, err), (0, ""))
            self.assertEqual(json.loads(out)["clip"], clip)
            self.assertAtRest()

    @unittest.skipUnless(tool.native(), "needs signals or files of this system")
    def test_interrupted_too_early(self):
        process = tool.start("--server", self.address, "record", "A", "TAKE", "--for", "1h")
        support.wait_until(lambda: self.channel("A")["status"] == "record")
        process.send_signal(signal.SIGINT)
        process.communicate(timeout=tool.PATIENCE)
        self.assertEqual(process.returncode, 130)
        self.assertAtRest()
        self.assertIn("TAKE", self.json("clips"))

    def test_a_step_that_fails_is_undone(self):
        for command in ("insert_edit", "play"):
            self.control.call("POST", "/reset")
            self.fault(fault="refuse", text="Not now", command=command, times=1)
            run = self.tool("record", "A", "TAKE", "--for", "10s")
            self.assertEqual((run.status, run.err), (1, "orvactl: Not now\n"), command)
            channel = self.channel("A")
            self.assertEqual((channel["clip"], channel["edit_mask"]), ("", 0))
            self.assertNotIn("TAKE", self.json("clips"))

    def test_a_clip_that_exists_is_not_touched(self):
        self.fails(1, "exists", "record", "A", "BARS")
        self.assertAtRest()
        self.assertIn("BARS", self.json("clips"))

    def test_ended_by_another(self):
        process = tool.start("--server", self.address, "--timeout", "30s", "record", "A", "TAKE")
        support.wait_until(lambda: self.channel("A")["status"] == "record")
        self.good("stop", "A")
        out, err = process.communicate(timeout=tool.PATIENCE)
        self.assertEqual((process.returncode, err), (1, "orvactl: Another client has ended the recording.\n"))
        self.assertIn("recorded TAKE", out)

    def test_only_started(self):
        self.good("record", "A", "TAKE", "--leave")
        self.assertEqual(self.channel("A")["status"], "record")
