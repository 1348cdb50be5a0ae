"""clips, dirs and mkdir, and following what becomes of clips."""

import json
import unittest

import support
import tool

NAMES = ["BARS", "LOCKED", "NEWS/CLOSER", "NEWS/OPENER", "NEWS/\u00c4 1"]


class Clips(tool.Case):
    def test_names(self):
        self.assertEqual(self.good("clips").splitlines(), NAMES)
        self.assertEqual(self.json("clips"), NAMES)

    def test_patterns(self):
        for pattern, names in (("NEWS/*", NAMES[2:]), ("*OP?NER", ["NEWS/OPENER"]), ("NEWS/? 1", NAMES[4:]),
                               ("[A-L]*", NAMES[:2]), ("[!A-L]*", NAMES[2:]), ("nothing", []), ("*", NAMES)):
            self.assertEqual(self.json("clips", pattern), names, pattern)

    def test_long(self):
        lines = self.good("clips", "B*", "--long").splitlines()
        self.assertEqual(lines[1].split()[:6], ["BARS", "00:01:00:00", "1500", "1080i50", "video,audio", "no"])
        self.assertEqual(self.json("clips", "--long")[3]["creator"], "ann")

    def test_directories(self):
        self.assertEqual(self.good("dirs"), "NEWS\n")
        self.good("mkdir", "SPORT")
        self.assertEqual(self.json("dirs"), ["NEWS", "SPORT"])
        self.fails(1, "", "mkdir", "SPORT")

    def test_following(self):
        process = tool.start("--server", self.address, "--json", "clips", "NEW*", "--watch", "--long")
        self.addCleanup(process.communicate)
        self.addCleanup(process.kill)

        def event():
            return json.loads(process.stdout.readline())

        self.assertEqual([(event()["event"]) for _ in range(3)], ["present"] * 3)
        self.control.call("PUT", "/clips/NEWER", {"length": 50})
        self.control.call("PUT", "/clips/OTHER", {"length": 50})
        added = event()
        self.assertEqual((added["event"], added["clip"], added["info"]["length"]["frames"]), ("added", "NEWER", 25))
        self.control.call("DELETE", "/clips/NEWER")
        self.assertEqual(event(), {"event": "deleted", "clip": "NEWER"})
        self.fault(fault="go_away")
        self.assertEqual(process.wait(tool.PATIENCE), 3)


class ManyClips(tool.Case):
    arguments = ("--generate", "20000")

    def test_all_are_listed(self):
        names = self.good("clips", "GENERATED*").splitlines()
        self.assertEqual((len(names), names[-1]), (20000, "GENERATED0020000"))

    @unittest.skipUnless(tool.native(), "needs signals or files of this system")
    def test_a_full_disk_and_a_closed_pipe(self):
        with open("/dev/full", "w") as full:
            done = tool.subprocess.run(tool.PROGRAM + ["--server", self.address, "clips"], stdout=full,
                                       stderr=tool.subprocess.PIPE, env=tool.environment(), timeout=tool.PATIENCE)
        self.assertEqual(done.returncode, 6)
        self.assertIn(b"No space left on device", done.stderr)
        process = tool.start("--server", self.address, "clips")
        process.stdout.readline()
        process.stdout.close()
        self.assertIn(process.wait(tool.PATIENCE), (-13, 6))
        process.stderr.close()
