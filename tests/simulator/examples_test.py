"""The programs of examples/ against the simulated server."""

import os
import signal
import subprocess
import threading
import time

import support

TRACKS = "<TrackSet><TrackType>video</TrackType></TrackSet>"


class Browser:
    """A running clip_browser, and the lines that it prints."""

    def __init__(self, address):
        program = os.path.join(os.path.dirname(support.PROGRAM), "clip_browser")
        self.process = subprocess.Popen([program, address], stdout=subprocess.PIPE, text=True, encoding="utf-8")
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

    def interrupt(self):
        self.process.send_signal(signal.SIGINT)
        code = self.process.wait(timeout=support.PATIENCE)
        self.reader.join()
        self.process.stdout.close()
        return code

    def stop(self):
        if self.process.poll() is None:
            self.process.kill()
            self.interrupt()


class ClipBrowser(support.Case):
    def test_lists_clips_and_follows_changes(self):
        client = self.client()
        browser = Browser(client.socket.getpeername()[0])
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
