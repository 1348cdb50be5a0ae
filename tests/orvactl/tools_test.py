"""check, ping, script and completion."""

import os
import re
import shutil
import signal
import subprocess
import unittest

import support
import tool


class Check(tool.Case):
    def test_well(self):
        text = self.good("check", "--warning-time", "30s", "--critical-time", "60s")
        self.assertRegex(text, r"^OK - STUDIO is well \| time=\d\.\d{6}s;30;60;0 disk_free=\d+\.\d%;20:;10:;0;100\n$")
        json = self.json("check", "--warning-time", "30s", "--critical-time", "60s")
        self.assertEqual((json["state"], json["text"]), ("OK", "STUDIO is well"))
        self.assertGreater(json["disk_free"], 50)

    def test_what_is_wrong(self):
        slow = ("--warning-time", "30s", "--critical-time", "60s")
        for arguments, status, word, text in (
                (slow + ("--warning-disk", "101"), 1, "WARNING", "% of its disk is free"),
                (slow + ("--warning-disk", "101", "--critical-disk", "101"), 2, "CRITICAL", "% of its disk is free"),
                (("--warning-time", "0s", "--critical-time", "60s"), 1, "WARNING", "it answers after 0."),
                (("--critical-time", "0s", "--warning-time", "0s"), 2, "CRITICAL", "it answers after 0."),
                (slow + ("--playing", "A"), 2, "CRITICAL", "channel A is stopped")):
            run = self.tool("check", *arguments)
            self.assertEqual((run.status, run.err), (status, ""), run.out)
            self.assertTrue(run.out.startswith(word + " - "), run.out)
            self.assertIn(text, run.out)
        self.control.call("PUT", "/channels/A", {"clip": "BARS", "position": 0, "speed": 1})
        self.good("check", "--playing", "A", *slow)

    def test_no_answer_and_bad_usage(self):
        run = tool.Run("--server", "127.255.255.254", "--timeout", "200ms", "check")
        self.assertEqual((run.status, run.out),
                         (2, "CRITICAL - No connection to 127.255.255.254 within 200 ms.\n"))
        run = tool.Run("check", "--playing", "Z")
        self.assertEqual(run.status, 3)
        self.assertIn("UNKNOWN - --playing has to be channels", run.out)
        self.fault(fault="freeze", everyone=True)
        run = tool.Run("--server", self.address, "--timeout", "3s", "check")
        self.assertEqual((run.status, run.out[:11]), (2, "CRITICAL - "))


class Ping(tool.Case):
    def test_text(self):
        lines = self.good("ping", "--count", "3", "--interval", "10ms").splitlines()
        for number in range(3):
            self.assertRegex(lines[number], r"^answer from %s: seq=%d time=\d+\.\d{3} ms$" % (self.address, number + 1))
        self.assertEqual(lines[3:6], ["", "--- %s ping statistics ---" % self.address, "3 sent, 3 answered, 0% lost"])
        self.assertRegex(lines[6], r"^min/avg/max/mdev = [\d.]+/[\d.]+/[\d.]+/[\d.]+ ms$")

    def test_json_and_a_lost_answer(self):
        self.fault(fault="no_answer", command="get_computer_name", nth=2)
        values = tool.jq(tool.Run("--server", self.address, "--timeout", "3s", "--json", "ping", "--count", "3",
                                  "--interval", "1ms").out)
        self.assertEqual([value.get("error") for value in values[:3]], [None, "timed_out", None])
        self.assertEqual((values[3]["sent"], values[3]["answered"], values[3]["lost_percent"]), (3, 2, 33))

    @unittest.skipUnless(tool.native(), "needs signals or files of this system")
    def test_interrupted(self):
        process = tool.start("--server", self.address, "ping", "--interval", "1h")
        process.stdout.readline()
        process.send_signal(signal.SIGINT)
        out, _ = process.communicate(timeout=tool.PATIENCE)
        self.assertEqual(process.returncode, 0)
        self.assertIn("1 sent, 1 answered, 0% lost", out)

    def test_a_frozen_server(self):
        self.fault(fault="freeze", everyone=True)
        run = tool.Run("--server", self.address, "--timeout", "3s", "ping", "--count", "2", "--interval", "1ms")
        self.assertEqual(run.status, 4)
        self.assertIn("2 sent, 0 answered, 100% lost", run.out)


class Script(tool.Case):
    def test_one_connection(self):
        script = "# a comment\n\nload A 'NEWS/\u00c4 1' --wait\nclip set \"NEWS/\u00c4 1\" --title a\\ \"b'c\"\nplay A\n"
        self.assertEqual(self.good("script", input=script), "")
        self.assertEqual(self.json("clip", "show", "NEWS/\u00c4 1")["title"], "a b'c")
        path = support.text_file(self, "channels A\nclips\n")
        values = tool.jq(self.good("--json", "script", path))
        self.assertEqual((values[0][0]["channel"], values[1][0]), ("A", "BARS"))
        self.assertEqual(len(self.good("--json", "script", path).splitlines()), 2)

    def test_the_first_failure_ends_it(self):
        run = self.tool("script", input="stop A\nload A NONE\nstop B\n")
        self.assertEqual((run.status, run.err), (5, "orvactl: line 2: Clip 'NONE' does not exist\n"))
        self.assertEqual([sent["Channel"] for sent in self.commands("stop")], ["A"])

    def test_keep_going(self):
        run = self.tool("script", "--keep-going", input='stpo A\nload A "NONE\ntop\nload A NONE\nstop B\n')
        self.assertEqual(run.status, 2)
        self.assertEqual(run.err.splitlines(), [
            'orvactl: line 1: There is no command "stpo". Did you mean "stop"?',
            'orvactl: line 2: A quote has no end: load A "NONE', 'orvactl: line 3: "top" cannot be used in a script.',
            "orvactl: line 4: Clip 'NONE' does not exist"])
        self.assertEqual([sent["Channel"] for sent in self.commands("stop")], ["B"])

    def test_a_server_that_goes_in_the_middle(self):
        self.fault(fault="go_away", command="stop", channel="B")
        run = tool.Run("--server", self.address, "--timeout", "3s", "script", input="stop A\nstop B\nstop C\n")
        self.assertEqual(run.status, 3)
        self.assertIn("line 2: ", run.err)

    def test_a_file_that_is_not_there(self):
        self.fails(6, "cannot be read", "script", "/nonexistent/script")


class Completion(tool.Case):
    def words(self, *typed, **more):
        run = tool.Run("complete", "--", *typed, ORVA_SERVER=self.address, **more)
        self.assertEqual((run.status, run.err), (0, ""))
        return run.out.splitlines()

    def test_words(self):
        self.assertEqual(self.words("pl"), ["play", "playlist"])
        self.assertEqual(self.words("playlist", ""), ["play", "cue"])
        self.assertEqual(self.words("play", "a"), ["all"])
        self.assertEqual(self.words("play", "A", "--s"), ["--server", "--speed"])
        self.assertEqual(self.words("repeat", "A", "loop"), ["loop", "loop-to"])
        self.assertEqual(self.words("load", "A", "NEWS/O"), ["NEWS/OPENER"])
        self.assertEqual(self.words("--server", self.address, "load", "A", "--repeat", "ping"),
                         ["pingpong", "pingpong-to"])
        self.assertEqual(self.words("nonsense", "x", ""), [])
        path = support.text_file(self, '[servers]\nstudio1 = "127.0.0.1"\nhall = "127.0.0.2"\n')
        self.assertEqual(self.words("--config", path, "--server", "stu"), ["studio1"])

    def test_a_server_that_does_not_answer(self):
        run = tool.Run("complete", "--", "load", "A", "", ORVA_SERVER="127.255.255.254")
        self.assertEqual((run.status, run.out, run.err), (0, "", ""))

    @unittest.skipUnless(tool.native(), "needs signals or files of this system")
    def test_bash(self):
        script = """eval "$(orvactl completion bash)"
            COMP_WORDS=(orvactl load A 'NEWS/') COMP_CWORD=3; _orvactl; printf '%s|' "${COMPREPLY[@]}"
            COMP_WORDS=(orvactl st) COMP_CWORD=1; _orvactl; printf '%s|' "${COMPREPLY[@]}" """
        self.assertEqual(self.shell("bash", script), "NEWS/CLOSER|NEWS/OPENER|NEWS/\u00c4\\ 1|stop|")

    @unittest.skipUnless(tool.native(), "needs signals or files of this system")
    def test_zsh(self):
        script = """compdef () { : }; eval "$(orvactl completion zsh)"
            compadd () { shift; printf '%s|' "$@" }; _files () { printf files }
            words=(orvactl load A NEWS/) CURRENT=4; _orvactl
            words=(orvactl kv load f '') CURRENT=5; _orvactl"""
        self.assertEqual(self.shell("zsh", script), "NEWS/CLOSER|NEWS/OPENER|NEWS/\u00c4 1|files")

    def shell(self, shell, script):
        if len(tool.PROGRAM) != 1 or shutil.which(shell) is None:
            self.skipTest("there is no " + shell)
        path = os.path.dirname(tool.PROGRAM[0]) + ":" + os.environ["PATH"]
        done = subprocess.run([shell, "-c", script], capture_output=True, text=True, timeout=tool.PATIENCE,
                              env=tool.environment(ORVA_SERVER=self.address, PATH=path, LC_ALL="C.UTF-8"))
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return done.stdout
