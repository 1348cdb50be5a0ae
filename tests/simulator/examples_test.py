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
    """A running example, its input, and the lines that it prints."""

    def __init__(self, name, *arguments):
        program = os.path.join(os.path.dirname(support.PROGRAM), name)
        self.process = subprocess.Popen([program, *arguments], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        text=True, encoding="utf-8")
        self.lines = []
        self.seen = 0
        self.reader = threading.Thread(target=self._read)
        self.reader.start()

    def _read(self):
        for line in self.process.stdout:
            self.lines.append(line.rstrip("\n"))

    def wait_for(self, line, first=0):
        end = time.monotonic() + support.PATIENCE
        while line not in self.lines[first:]:
            if time.monotonic() > end:
                raise AssertionError("no line %r in %r" % (line, self.lines[first:]))
            time.sleep(0.01)

    def wait_for_next(self, line):
        """Waits for such a line, after the last line that this has found."""
        self.wait_for(line, self.seen)
        self.seen = self.lines.index(line, self.seen) + 1

    def say(self, line):
        self.process.stdin.write(line + "\n")
        self.process.stdin.flush()

    def lines_from(self, line):
        return self.lines[self.lines.index(line):]

    def interrupt(self):
        self.process.send_signal(signal.SIGINT)
        return self.end()

    def end(self):
        """Ends the input, waits for the end of the program and returns its exit code."""
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


class WatchChannels(support.Case):
    arguments = ("--standard", "1080_50i", "--report-rate", "10")

    def test_tells_what_others_do(self):
        client = self.client()
        watcher = Program("watch_channels", self.simulator.address)
        self.addCleanup(watcher.stop)
        for channel in "ABCDEFGH":
            for value in ("clip \"BARS\"", "clip length 18000", "precued clips 0", "repeat off", "angle 0 of 1",
                          "input automatic, tracks 0", "status stopped", "speed 0.00", "position 0"):
                watcher.wait_for_next("%s  %s" % (channel, value))

        def do(command, channel, arguments=""):
            self.assertEqual(client.answer("<%s><Channel>%s</Channel>%s</%s>" % (command, channel, arguments, command)),
                             "<ok />", command)

        do("cue_clip", "C", "<ClipID>SPORT/GOAL</ClipID><Loop>pingpong</Loop><GotoPosition>40</GotoPosition>"
           "<Angle>2</Angle>")
        for value in ("clip \"SPORT/GOAL\"", "clip length 3000", "repeat ping-pong", "angle 2 of 4", "position 40"):
            watcher.wait_for_next("C  " + value)
        do("play", "H", "<Speed>0.25X</Speed>")
        watcher.wait_for_next("H  status playing")
        watcher.wait_for_next("H  speed 0.25")
        do("precue", "B", "<ClipID>COUNTDOWN</ClipID>")
        watcher.wait_for_next("B  precued clips 1")
        do("ee", "A", "<SonyEditMask>1023</SonyEditMask><AutoEE>false</AutoEE>")
        watcher.wait_for_next("A  input manual, tracks 7")
        self.assertEqual(watcher.interrupt(), 0)
        self.assertEqual(watcher.lines[-1], "That is all.")

    def test_works_a_channel(self):
        watcher = Program("watch_channels", self.simulator.address, "NEWS/OPENER")
        self.addCleanup(watcher.stop)
        for line in ("A  clip \"BARS\"", "Loading NEWS/OPENER.", "A  clip \"NEWS/OPENER\"", "A  clip length 1800",
                     "Playing at 1.0.", "A  status playing", "A  speed 1.00", "Jogging 250 fields on.",
                     "A  status stopped", "A  speed 0.00", "Playing backwards at 0.5.", "A  status playing",
                     "A  speed -0.50", "Stopping.", "A  status stopped", "A  speed 0.00", "That is all."):
            watcher.wait_for_next(line)
        self.assertEqual(watcher.end(), 0)
        positions = [int(line.split()[-1]) for line in watcher.lines if line.startswith("A  position")]
        self.assertTrue(any(250 <= position for position in positions), positions)
        self.assertNotEqual(positions, sorted(positions))

    def test_says_why_it_ends(self):
        watcher = Program("watch_channels", self.simulator.address, "NOTHING")
        self.addCleanup(watcher.stop)
        watcher.wait_for_next("loading: Clip 'NOTHING' does not exist")
        self.assertEqual(watcher.end(), 1)
