"""top, in a real terminal, and what else a terminal changes."""

import os
import shlex
import shutil
import subprocess
import unittest

import support
import tool


@unittest.skipUnless(shutil.which("tmux") and tool.native(), "there is no tmux")
class Terminal(tool.Case):
    def setUp(self):
        super().setUp()
        self.socket = "%s-%d" % (self._testMethodName, os.getpid())  # a server that ends must not be met again
        self.addCleanup(self.tmux, "kill-server")

    def tmux(self, *arguments):
        return subprocess.run(["tmux", "-L", self.socket, "-f", "/dev/null"] + list(arguments), capture_output=True,
                              text=True, encoding="utf-8", timeout=tool.PATIENCE).stdout

    def run_there(self, *arguments, columns=140, **more):
        command = "trap : INT; %s; echo ended with $?; exec sleep 1000" % shlex.join(tool.PROGRAM + list(arguments))
        settings = ["%s=%s" % each for each in more.items()]
        self.tmux("new-session", "-d", "-x", str(columns), "-y", "30",
                  "env -u NO_COLOR %s sh -c %s" % (shlex.join(settings), shlex.quote(command)))

    def screen(self, *options):
        return self.tmux("capture-pane", "-p", *options)

    def wait_for(self, *texts):
        support.wait_until(lambda: all(text in self.screen() for text in texts))

    def test_channels_live(self):
        self.control.call("PUT", "/channels/B", {"clip": "NEWS/OPENER", "position": 0})
        self.run_there("--server", self.address, "--server", "127.255.255.254", "top", "--interval", "50ms")
        self.wait_for("orvactl top", "sorted by channel", "127.255.255.254  -", "no connection", "NEWS/OPENER")
        lines = self.screen().splitlines()
        self.assertEqual(lines[2].split()[:4], ["SERVER", "CH", "CLIP", "STATUS"])
        self.assertEqual([line.split()[1] for line in lines[3:11]], list("ABCDEFGH"))
        self.control.call("PUT", "/channels/B", {"clip": "BARS", "position": 0, "speed": 1})
        self.wait_for("playing")
        self.assertIn("\x1b[32mplaying", self.screen("-e"))
        self.tmux("send-keys", "s")
        self.wait_for("sorted by status")
        first = [line for line in self.screen().splitlines()[3:] if "no connection" not in line][0]
        self.assertEqual(first.split()[1], "B")
        self.tmux("send-keys", "s")
        self.wait_for("sorted by remaining")
        self.tmux("send-keys", "p")
        self.wait_for("PAUSED")
        self.tmux("send-keys", " ")
        support.wait_until(lambda: "PAUSED" not in self.screen())
        self.fault(fault="go_away")
        support.wait_until(lambda: self.screen().count("no connection") == 2)
        self.tmux("send-keys", "q")
        self.wait_for("ended with 0")
        self.assertNotIn("orvactl top", self.screen())

    def test_a_narrow_terminal_and_an_interrupt(self):
        self.run_there("--server", self.address, "top", columns=40)
        self.wait_for("orvactl top", "BARS")
        self.assertTrue(all(len(line) <= 40 for line in self.screen().splitlines()))
        self.tmux("send-keys", "C-c")
        self.wait_for("ended with 0")

    def test_colours(self):
        self.control.call("PUT", "/channels/A", {"clip": "BARS", "position": 0, "speed": 1})
        self.run_there("--server", self.address, "channels", "A")
        self.wait_for("ended with 0")
        self.assertIn("\x1b[32mplaying", self.screen("-e"))

    def test_no_colours(self):
        self.control.call("PUT", "/channels/A", {"clip": "BARS", "position": 0, "speed": 1})
        self.run_there("--server", self.address, "channels", "A", NO_COLOR="1")
        self.wait_for("ended with 0")
        self.assertNotIn("\x1b[", self.screen("-e"))

    def test_without_a_terminal(self):
        self.fails(2, "top needs a terminal", "top")
