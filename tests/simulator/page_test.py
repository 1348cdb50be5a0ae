"""The page at the control address, in a browser without a screen."""

import base64
import http.client
import json
import os
import shutil
import socket
import subprocess
import tempfile
import time
import unittest

import support
from control_test import Controlled

NAME = "<b onclick=alert(1)>&amp;\"' CLIP"


def escaped(text):
    return (text.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;").replace('"', "&quot;")
            .replace("'", "&apos;"))


class Browser:
    """Chromium, driven over WebDriver."""

    def __init__(self, width, height):
        with socket.socket() as probe:
            probe.bind(("127.0.0.1", 0))
            self.port = probe.getsockname()[1]
        self.folder = tempfile.mkdtemp()
        self.driver = subprocess.Popen(["chromedriver", "--port=%d" % self.port], stdout=subprocess.DEVNULL,
                                       stderr=subprocess.DEVNULL)
        end = time.monotonic() + support.PATIENCE
        while True:
            try:
                self.call("GET", "/status")
                break
            except OSError:
                if time.monotonic() > end:
                    raise
                time.sleep(0.05)
        flags = ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
                 "--disable-background-networking", "--disable-component-update", "--disable-sync",
                 "--disable-dev-shm-usage", "--window-size=%d,%d" % (width, height), "--user-data-dir=" + self.folder]
        options = {"goog:chromeOptions": {"args": flags}}
        self.session = self.call("POST", "/session", {"capabilities": {"alwaysMatch": options}})["sessionId"]

    def call(self, method, path, body=None):
        connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=120)
        try:
            connection.request(method, path, json.dumps(body) if body is not None else None,
                               {"Content-Type": "application/json"})
            value = json.loads(connection.getresponse().read())["value"]
        finally:
            connection.close()
        if isinstance(value, dict) and "error" in value:
            raise RuntimeError(value["message"])
        return value

    def open(self, url):
        self.call("POST", "/session/%s/url" % self.session, {"url": url})

    def run(self, script, *arguments):
        return self.call("POST", "/session/%s/execute/sync" % self.session, {"script": script, "args": arguments})

    def run_until_told(self, script, *arguments):
        return self.call("POST", "/session/%s/execute/async" % self.session, {"script": script, "args": arguments})

    def screenshot(self):
        return base64.b64decode(self.call("GET", "/session/%s/screenshot" % self.session))

    def close(self):
        try:
            self.call("DELETE", "/session/" + self.session)
        finally:
            self.driver.terminate()
            self.driver.wait()
            shutil.rmtree(self.folder, ignore_errors=True)


@unittest.skipUnless(shutil.which("chromedriver") and shutil.which("chromium"), "there is no Chromium here")
class Page(Controlled):
    def browse(self, width=1000, height=1100):
        self.browser = Browser(width, height)
        self.addCleanup(self.browser.close)
        self.browser.open("http://%s/" % self.authority)
        self.wait(lambda: self.text("#channel-H"))

    def text(self, selector):
        return self.browser.run("const found = document.querySelector(arguments[0]); return found ? found.innerText : '';",
                                selector)

    def test_what_a_command_does_is_there_within_half_a_second(self):
        self.browse()
        delays = []
        for speed in ("3", "2", "1", "0.5", "-1"):  # a machine that is busy gets several attempts
            delays.append(self.browser.run_until_told("""
                const [speed, done] = arguments, began = performance.now();
                const seen = () => document.getElementById("channel-D").innerText.includes(speed + "X");
                call("POST", "/commands", {play: {Channel: "D", Speed: speed + "X"}});
                const look = () => seen() ? done(performance.now() - began) : setTimeout(look, 5);
                look();""", speed))
            if delays[-1] < 500:
                break
        self.assertLess(min(delays), 500)

    def test_names_are_text(self):
        client = self.client()
        self.call("PUT", "/channels/A", {"clip": None})
        client.answer("<create_clip><ClipID>%s</ClipID><TrackSet><TrackType>video</TrackType></TrackSet>"
                      "<ClipLength>100</ClipLength></create_clip>" % escaped(NAME))
        self.assertEqual(client.answer("<cue_clip><Channel>A</Channel><ClipID>%s</ClipID></cue_clip>" % escaped(NAME)),
                         "<ok />")
        self.browse()
        self.wait(lambda: NAME in self.text("#channel-A"))
        self.wait(lambda: NAME in self.text("#clips"))
        self.assertEqual(self.browser.run("return document.querySelectorAll('b').length"), 0)

    def test_buttons_make_faults(self):
        client = self.client()
        self.browse()
        self.browser.run("[...document.querySelectorAll('button')].find(b => b.textContent === 'Refuse all').click()")
        self.wait(lambda: "<error>" in client.answer("<sync />"))
        self.wait(lambda: "refuse *" in self.text("#faults"))
        self.wait(lambda: "sync" in self.text("#commands"))
        self.browser.run("[...document.querySelectorAll('button')].find(b => b.textContent === 'Remove all').click()")
        self.wait(lambda: "<ok />" in client.answer("<sync />"))

    def test_a_phone_shows_it_whole(self):
        self.browse(500, 900)
        self.assertLessEqual(self.browser.run("return document.documentElement.scrollWidth - innerWidth"), 0)
        self.assertEqual(self.browser.run("return performance.getEntriesByType('resource')"
                                          ".filter(r => !r.name.startsWith(location.origin)).length"), 0)

    def test_screenshot(self):
        self.call("PUT", "/channels/B", {"clip": "BARS", "speed": 1})
        self.client().answer("<precue><Channel>B</Channel><ClipID>BARS</ClipID></precue>")
        self.call("POST", "/commands", [{"set_loop": {"Channel": "C", "Loop": "loop"}}, {"play": {"Channel": "C"}}])
        self.browse()
        picture = self.browser.screenshot()
        self.assertTrue(picture.startswith(b"\x89PNG"))
        wanted = os.environ.get("ORVA_SCREENSHOT")
        if wanted:
            with open(wanted, "wb") as file:
                file.write(picture)
