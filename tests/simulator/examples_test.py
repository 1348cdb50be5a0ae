"""The programs of examples/ against the simulated server."""

import os
import signal
import subprocess
import tempfile
import threading
import time

import support

TRACKS = "<TrackSet><TrackType>video</TrackType></TrackSet>"


class Program:
    """A running example, what it is told, and the lines that it prints."""

    def __init__(self, name, address):
        program = os.path.join(os.path.dirname(support.PROGRAM), name)
        self.process = subprocess.Popen([program, address], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
                                        encoding="utf-8")
        self.lines = []
        self.reader = threading.Thread(target=self._read)
        self.reader.start()

    def _read(self):
        for line in self.process.stdout:
            self.lines.append(line.rstrip("\n"))

    def wait_for(self, line):
        end = time.monotonic() + support.PATIENCE
        while line not in self.lines:
            if time.monotonic() > end:
                raise AssertionError("no line %r in %r" % (line, self.lines))
            time.sleep(0.01)

    def say(self, line):
        self.process.stdin.write(line + "\n")
        self.process.stdin.flush()

    def lines_from(self, line):
        return self.lines[self.lines.index(line):]

    def interrupt(self):
        self.process.send_signal(signal.SIGINT)
        return self.end()

    def end(self):
        """Ends the input, waits for the end of the program and gives its code."""
        self.process.stdin.close()
        code = self.process.wait(timeout=support.PATIENCE)
        self.reader.join()
        self.process.stdout.close()
        return code

    def stop(self):
        if not self.process.stdout.closed:
            self.process.kill()
            self.end()


class ClipBrowser(support.Case):
    def test_lists_clips_and_follows_changes(self):
        client = self.client()
        browser = Program("clip_browser", client.socket.getpeername()[0])
        self.addCleanup(browser.stop)
        browser.wait_for("NEWS/OPENER  00:00:30:00  The opener")
        browser.wait_for("    desk = foreign")
        browser.wait_for("    cleared = yes")

        self.assertEqual(client.answer("<create_clip><ClipID>A CLIP</ClipID>%s<ClipLength>5400</ClipLength>"
                                       "</create_clip>" % TRACKS), "<ok />")
        browser.wait_for("added: A CLIP  00:01:30;02  ")
        self.assertEqual(client.answer("<modify_clip_attributes><ClipID>A CLIP</ClipID><ClipAttrChange><Title>ä\U0001d11e"
                                       "</Title></ClipAttrChange></modify_clip_attributes>"), "<ok />")
        browser.wait_for("changed: A CLIP  00:01:30;02  ä\U0001d11e")
        self.assertEqual(client.answer("<delete_clip><ClipID>A CLIP</ClipID></delete_clip>"), "<ok />")
        browser.wait_for("deleted: A CLIP")
        self.assertEqual(browser.interrupt(), 0)
        self.assertEqual(browser.lines[-1], "That is all.")


class Mirror(support.Case):
    """Two processes, one table. The server keeps it in a file, so that it can go away and come back."""

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.arguments = ("--database", os.path.join(cls.folder.name, "table"))
        super().setUpClass()

    @classmethod
    def tearDownClass(cls):
        super().tearDownClass()
        cls.folder.cleanup()

    def mirror(self):
        mirror = Program("mirror", self.simulator.address)
        self.addCleanup(mirror.stop)
        mirror.wait_for("Ready.")
        return mirror

    def test_each_shows_what_the_other_does(self):
        one, other = self.mirror(), self.mirror()
        one.say("cue=ä\U0001d11e")
        other.wait_for("cue = ä\U0001d11e")
        other.say("cue=2 = 3")
        one.wait_for("cue = 2 = 3")
        one.say("-cue")
        other.wait_for("cue is gone")
        one.say("last=a")
        other.wait_for("last = a")
        for what in ("no change", "=", "-"):
            one.say(what)
        one.say("")
        one.wait_for("That is the table.")
        self.assertEqual(other.end(), 0)
        self.assertEqual(one.end(), 0)
        self.assertEqual(one.lines_from("Ready."), ["Ready.", "cue = 2 = 3"] + ["KEY=VALUE or -KEY, please"] * 3 +
                         ["last = a", "That is the table.", "That is all."])
        self.assertEqual(other.lines_from("Ready."), ["Ready.", "cue = ä\U0001d11e", "cue is gone", "last = a",
                                                      "That is all."])
        self.mirror().wait_for("last = a")

    def test_what_is_typed_while_the_server_is_away_arrives(self):
        one, other = self.mirror(), self.mirror()
        one.say("before=1")
        other.wait_for("before = 1")
        self.simulator.stop()
        one.say("away=1")
        one.say("away=2")
        other.say("other=3")
        one.say("")
        one.wait_for("That is the table.")
        type(self).simulator = support.Simulator(*self.arguments)
        other.wait_for("away = 2")
        one.wait_for("other = 3")
        self.assertEqual(one.end(), 0)
        self.assertEqual(other.end(), 0)
