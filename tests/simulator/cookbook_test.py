"""The programs of doc/cookbook.md against the simulated server: they end well and print what they promise."""

import json
import os
import re
import signal
import tempfile

import support
from examples_test import Program, TRACKS


class Recipe(support.Case):
    def start(self, name, *arguments):
        program = Program(name, *arguments)
        self.addCleanup(program.stop)
        return program

    def run_to_end(self, name, *arguments):
        program = self.start(name, *arguments)
        self.assertEqual(program.end(), 0, program.lines)
        return program.lines

    @property
    def address(self):
        return self.simulator.address

    def expect_lines(self, lines, patterns):
        """Each pattern matches a line, in this order; other lines may stand between."""
        rest = iter(lines)
        for pattern in patterns:
            self.assertTrue(any(re.fullmatch(pattern, line) for line in rest), "no %r in %r" % (pattern, lines))


class Playout(Recipe):
    def test_counts_down(self):
        self.expect_lines(self.run_to_end("playout", self.address, "SHORT"),
                          ["SHORT is on air.", r"00:00:0[12][:;]\d\d(\.5)? left", r"00:00:00[:;]\d\d(\.5)? left",
                           "SHORT has been played."])

    def test_counts_down_in_c(self):
        self.expect_lines(self.run_to_end("c_playout", self.address, "SHORT"),
                          ["SHORT is on air.", "[12] seconds left", "0 seconds left", "SHORT has been played."])

    def test_says_that_there_is_no_such_clip(self):
        program = self.start("playout", self.address, "NOT THERE")
        self.assertEqual(program.end(), 1)
        self.assertIn("NOT THERE", program.lines[-1])

    @classmethod
    def setUpClass(cls):
        with tempfile.NamedTemporaryFile("w", suffix=".txt") as clips:
            clips.write("clip SHORT length=150\n")
            clips.flush()
            cls.arguments = ("--clips", clips.name)
            super().setUpClass()


class Recording(Recipe):
    def test_lists_the_new_clip(self):
        self.expect_lines(self.run_to_end("record", self.address, "TAPE"),
                          [r"\d\d+:\d\d:\d\d[:;]\d\d can be recorded\.", "Channel B records TAPE.", r"BARS  \d+ fields",
                           r"TAPE \(new\)  [1-9]\d+ fields"])

    def test_lists_the_new_clip_in_c(self):
        self.expect_lines(self.run_to_end("c_record", self.address, "C TAPE"),
                          ["Channel B records C TAPE.", r"BARS  \d+ fields", r"C TAPE  [1-9]\d+ fields"])


class Watching(Recipe):
    def setUp(self):
        type(self).simulator = support.Simulator()  # these programs end with the server

    @classmethod
    def setUpClass(cls):
        pass

    @classmethod
    def tearDownClass(cls):
        pass

    def watch(self, name):
        watcher = self.start(name, self.address, "127.255.255.254")
        watcher.wait_for("%s  is there" % self.address)
        watcher.wait_for("%s  H is stopped" % self.address)
        client = self.client()
        self.assertEqual(client.answer("<play><Channel>A</Channel></play>"), "<ok />")
        watcher.wait_for("%s  A is playing" % self.address)
        self.simulator.stop()
        self.assertEqual(watcher.end(), 0)
        self.assertEqual(watcher.lines[-1], "%s  is away" % self.address)
        return watcher.lines

    def test_all_channels_of_servers(self):
        self.assertIn("127.255.255.254  is away", self.watch("watch_all"))

    def test_all_channels_of_servers_in_c(self):
        self.watch("c_watch_all")

    def test_clips(self):
        follower = self.start("follow_clips", self.address)
        follower.wait_for("there is BARS")
        follower.wait_for("there is SPORT/GOAL")
        client = self.client()
        name = "<ClipID>A CLIP</ClipID>"
        self.assertEqual(client.answer("<create_clip>%s%s</create_clip>" % (name, TRACKS)), "<ok />")
        follower.wait_for("added: A CLIP")
        self.assertEqual(client.answer("<modify_clip_attributes>%s<ClipAttrChange><Title>T</Title></ClipAttrChange>"
                                       "</modify_clip_attributes>" % name), "<ok />")
        follower.wait_for("edited: A CLIP")
        self.assertEqual(client.answer("<delete_clip>%s</delete_clip>" % name), "<ok />")
        follower.wait_for("deleted: A CLIP")
        self.simulator.stop()
        self.assertEqual(follower.end(), 0)
        self.assertEqual(follower.lines[-1], "the server is away")

    def test_is_it_alive(self):
        program = self.start("is_it_alive", self.address, "600")
        program.wait_for("alive")
        self.simulator.process.send_signal(signal.SIGSTOP)
        try:
            program.wait_for("connected, but it does not answer")
        finally:
            self.simulator.process.send_signal(signal.SIGCONT)
        program.wait_for_next("alive")
        self.simulator.stop()
        program.wait_for("away")


class OtherRecipes(Recipe):
    def test_gang(self):
        self.assertEqual(self.run_to_end("gang", self.address), ["BARS and NEWS/OPENER have stopped 0 fields apart."])

    def test_playlist(self):
        client = self.client()
        for body in ("<list_save_start><ListID>EVENING</ListID></list_save_start>",
                     "<list_save_element><ListElement><ContentID><ClipID>BARS</ClipID></ContentID></ListElement>"
                     "</list_save_element>",
                     "<list_save_element><ListElement><ContentID><ClipID>COUNTDOWN</ClipID></ContentID></ListElement>"
                     "</list_save_element>",
                     "<list_save_end />",
                     "<list_load><Channel>E</Channel><ListID>EVENING</ListID></list_load>"):
            self.assertEqual(client.answer(body), "<ok />", body)
        self.assertEqual(self.run_to_end("playlist", self.address, "list"),
                         ["On air: COUNTDOWN", "On air: NEWS/STRAP", "On air: SPORT/GOAL", "The list is cued at BARS.",
                          "On air: BARS", "On air: COUNTDOWN"])

    def test_metadata_json(self):
        with tempfile.TemporaryDirectory() as folder:
            file = os.path.join(folder, "clip.json")
            lines = self.run_to_end("metadata_json", "save", self.address, "NEWS/OPENER", file)
            with open(file, encoding="utf-8") as saved:
                opener = json.load(saved)
            self.assertEqual(opener["title"], "The opener")
            self.assertEqual(lines, ["NEWS/OPENER: %d pairs saved" % len(opener["metadata"])])
            opener["metadata"].append({"key": "de\u00e4sk", "value": "\U0001d11e"})
            with open(file, "w", encoding="utf-8") as changed:
                json.dump(opener, changed)
            self.run_to_end("metadata_json", "load", self.address, "BARS", file)
            self.run_to_end("metadata_json", "save", self.address, "BARS", file)
            with open(file, encoding="utf-8") as saved:
                bars = json.load(saved)
            self.assertEqual(bars["title"], "The opener")
            for pair in opener["metadata"]:
                self.assertIn(pair, bars["metadata"])

    def test_shared_store(self):
        first = self.start("shared_store", self.address, "desk1")
        first.wait_for("desk1 = here")
        second = self.start("shared_store", self.address, "desk2")
        second.wait_for("desk1 = here")
        first.wait_for("desk2 = here")
        last = self.start("shared_store", self.address, "end")
        for program in (first, second, last):
            self.assertEqual(program.end(), 0)
            self.assertEqual(program.lines[-1], "end = here")

    def test_clean_end(self):
        self.assertEqual(self.run_to_end("clean_end", self.address),
                         ["The handler has ended.", "The worker has ended: Cancelled.", "All is closed."])
