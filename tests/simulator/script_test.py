"""Scenarios in a file, several servers in one process, and the command line."""

import json
import os
import subprocess
import tempfile
import unittest

import support


class Files(unittest.TestCase):
    def file(self, content):
        handle, name = tempfile.mkstemp(suffix=".json")
        self.addCleanup(os.unlink, name)
        with os.fdopen(handle, "w") as file:
            file.write(content if isinstance(content, str) else json.dumps(content))
        return name

    def run_program(self, *arguments):
        return subprocess.run([support.PROGRAM, *arguments], capture_output=True, text=True, timeout=support.PATIENCE)


class Scenarios(Files):
    def start(self, *steps):
        self.simulator = support.Simulator("--script", self.file({"steps": steps}))
        self.addCleanup(self.simulator.process.communicate)
        self.addCleanup(self.simulator.process.kill)
        client = support.Client(self.simulator.address)
        self.addCleanup(client.close)
        return client

    def assertEnds(self, code, said=""):
        text, _ = self.simulator.process.communicate(timeout=support.PATIENCE)
        self.assertEqual(self.simulator.process.returncode, code, text)
        self.assertIn(said, text)

    def test_what_is_expected(self):
        client = self.start({"faults": [{"fault": "refuse", "command": "stop"}]},
                            {"commands": {"play": {"Channel": "B"}}},
                            {"expect": {"command": "play", "channel": "A", "client": 1, "arguments": {"Speed": "2X"}},
                             "within_ms": 20000},
                            {"do": {"method": "DELETE", "path": "/faults"}},
                            {"expect": {"command": "stop"}, "within_ms": 20000},
                            {"after_ms": 10, "forbid": {"command": "play"}, "for_ms": 50})
        self.assertIn("<error>", client.answer("<stop><Channel>A</Channel></stop>"))
        client.answer("<play><Channel>A</Channel></play>")
        client.answer("<play><Channel>A</Channel><Speed>2X</Speed></play>")
        client.answer("<stop><Channel>A</Channel></stop>")
        self.assertEnds(0)

    def test_what_does_not_come(self):
        client = self.start({"expect": {"command": "play", "channel": "A"}, "within_ms": 300})
        client.answer("<play><Channel>B</Channel></play>")
        self.assertEnds(3, "step 1: the expected 'play' was not sent within 300 ms")

    def test_what_must_not_come(self):
        client = self.start({"expect": {"command": "sync"}, "within_ms": 20000},
                            {"forbid": {"command": "delete_clip"}, "for_ms": 20000})
        client.answer("<sync />")
        client.answer("<delete_clip><ClipID>BARS</ClipID></delete_clip>")
        self.assertEnds(3, "step 2: a forbidden 'delete_clip' was sent")

    def test_an_action_that_fails(self):
        self.start({"expect": {"command": "sync"}, "within_ms": 20000},
                   {"do": {"method": "PUT", "path": "/channels/A", "body": {"clip": "NOSUCH"}}}).answer("<sync />")
        self.assertEnds(3, "step 2: PUT /channels/A fails")

    def test_bad_files(self):
        for content, complaint in (("[", "parse error"), ("{}", "the steps are not a list"),
                                   ([{"expect": {}, "do": {}}], "step 1: a step has one of"),
                                   ([{"sleep": 1}], "there is no member"),
                                   ([{"expect": {"command": 5}}], "\"command\" is not a text")):
            outcome = self.run_program("--address", support.own_address(), "--script", self.file(content))
            self.assertEqual(outcome.returncode, 1)
            self.assertIn(complaint, outcome.stderr)


class Several(Files):
    def beside(self):
        first = support.own_address()
        return first.rsplit(".", 1)[0] + ".251"

    def test_addresses(self):
        simulator = support.Simulator("--address", self.beside())
        clients = [support.Client(simulator.address), support.Client(self.beside())]
        self.assertEqual(clients[0].answer("<delete_clip><ClipID>PROLOGUE</ClipID></delete_clip>"),
                         clients[1].answer("<delete_clip><ClipID>PROLOGUE</ClipID></delete_clip>"))
        for client in clients:
            client.close()
        self.assertEqual(simulator.stop(), 0)
        lines = [line.split(" ", 1)[1] for line in simulator.log if "listening" not in line]
        for address in (simulator.address, self.beside()):
            self.assertIn(address + " #1 connected", lines)
            self.assertTrue(any(line.startswith(address + " #1 1 delete_clip ClipID=PROLOGUE: ") for line in lines), lines)
        self.assertTrue(all(line.startswith((simulator.address + " ", self.beside() + " ")) for line in lines), lines)

    def test_configuration_file(self):
        config = self.file({"servers": [{"address": support.own_address(), "name": "ONE"},
                                        {"address": self.beside(), "name": "TWO", "standard": "720_50p", "empty": True}]})
        process = subprocess.Popen([support.PROGRAM, "--config", config], stdout=subprocess.PIPE, text=True)
        self.addCleanup(process.communicate)
        self.addCleanup(process.kill)
        for address in (support.own_address(), self.beside()):
            self.assertEqual(process.stdout.readline(), "listening on %s:8913\n" % address)
        for address, name in ((support.own_address(), "ONE"), (self.beside(), "TWO")):
            client = support.Client(address)
            self.assertEqual(support.tag(client.answer("<get_computer_name />"), "ComputerName"), name)
            client.close()

    def test_bad_files(self):
        for content, complaint in (([], "not a list"), ([{"name": "ONE"}], "server 1: a server is an object with"),
                                   ([{"address": "127.0.0.1", "colour": 1}], "no such option"),
                                   ([{"address": "nowhere"}], "'nowhere' is not an IPv4 address"),
                                   ([{"address": "127.0.0.1", "rate": 0}], "not a number from 0.001"),
                                   ([{"address": "127.0.0.1"}, {"address": "127.0.0.1"}], "two servers have the address")):
            outcome = self.run_program("--config", self.file(content))
            self.assertEqual(outcome.returncode, 1)
            self.assertIn(complaint, outcome.stderr)


class CommandLine(Files):
    def test_version_and_help(self):
        version = self.run_program("--version")
        self.assertEqual(version.returncode, 0)
        self.assertRegex(version.stdout, r"^orva-simulator \d+\.\d+\.\d+\n$")
        shown = self.run_program("--help")
        self.assertEqual(shown.returncode, 0)
        for word in ("1080_59_94i", "525_59_94i", "Exit status", "--control", "proxy", "replay"):
            self.assertIn(word, shown.stdout)

    def test_what_is_wrong_is_said_on_the_standard_error(self):
        for arguments in (["--address", "localhost"], ["--standard", "PAL"], ["--control", "9913"], ["--what"],
                          ["--rate", "0"], ["--start", "noon"], ["proxy"]):
            outcome = self.run_program(*arguments)
            self.assertEqual((outcome.returncode, outcome.stdout), (2, ""), arguments)
            self.assertTrue(outcome.stderr)

    def test_a_start_that_fails(self):
        outcome = self.run_program("--address", support.own_address(), "--clips", "/nowhere")
        self.assertEqual((outcome.returncode, outcome.stdout), (1, ""))
        self.assertIn("orva-simulator: cannot go on: /nowhere cannot be read", outcome.stderr)
