"""info and channels: text and JSON, positions in all forms, several servers, servers that do not answer."""

import support
import tool


def position(fields, timecode):
    return {"fields": fields, "frames": fields // 2, "timecode": timecode}


class Info(tool.Case):
    def test_text(self):
        lines = self.good("info").splitlines()
        self.assertEqual(lines[:5], ["address     " + self.address, "name        STUDIO", "standard    1080i50",
                                     "rate        50 fields a second", "resolution  1080i"])
        self.assertRegex(lines[5], r"^disk        \d+ % free: \d+:\d\d:\d\d:\d\d of \d+:\d\d:\d\d:\d\d$")

    def test_json(self):
        info = self.json("info")
        self.assertEqual(list(info), ["server", "address", "name", "standard", "rate", "resolution", "certain", "disk"])
        self.assertEqual((info["name"], info["standard"], info["certain"]), ("STUDIO", "1080i50", True))
        disk = info["disk"]
        self.assertEqual(disk["available_time"]["fields"], disk["available"] // disk["field_size"] // 2 * 2)


class Channels(tool.Case):
    def setUp(self):
        super().setUp()
        self.control.call("PUT", "/channels/A", {"clip": "NEWS/OPENER", "position": 251})
        self.control.call("PUT", "/channels/C", {"clip": None})

    def test_text(self):
        lines = self.good("channels", "A,C").splitlines()
        self.assertEqual(lines[0].split(), ["CH", "CLIP", "STATUS", "POSITION", "FRAME", "LENGTH", "FRAMES",
                                            "REMAINING", "SPEED", "REPEAT", "ANGLE", "INPUT", "PRECUED"])
        self.assertEqual(lines[1].split(), ["A", "NEWS/OPENER", "stopped", "00:00:05:00.5", "125", "00:00:10:00", "250",
                                            "00:00:04:24.5", "0", "off", "0/3", "off", "0"])
        self.assertEqual(lines[2].split()[:3], ["C", "-", "stopped"])
        self.assertEqual(len(lines), 3)

    def test_json(self):
        channel = self.json("channels", "0")[0]
        self.assertEqual(channel, {
            "channel": "A", "clip": "NEWS/OPENER", "status": "stopped", "position": position(251, "00:00:05:00.5"),
            "length": position(500, "00:00:10:00"), "remaining": position(249, "00:00:04:24.5"), "speed": 0,
            "repeat": "off", "angle": 0, "angles": 3, "input": "none", "input_mode": "automatic", "precued": 0,
            "server": self.address})

    def test_all_channels(self):
        self.assertEqual([each["channel"] for each in self.json("channels")], list("ABCDEFGH"))

    def test_names_are_never_raw(self):
        name = "red\x1b[31m\tBELL\u0085\u202edrow"
        self.control.call("PUT", "/clips/" + tool.urllib.parse.quote(name), {"length": 100})
        self.control.call("PUT", "/channels/B", {"clip": name})
        out = self.good("channels", "B")
        self.assertIn("red\\x1b[31m\\tBELL\\x85\\u{202e}drow", out)
        self.assertEqual(len(out.splitlines()), 2)
        text = self.good("--json", "channels", "B")
        self.assertTrue(text.isascii())
        self.assertEqual(tool.jq(text)[0][0]["clip"], name)


class SeveralServers(tool.Case):
    def test_each_is_shown(self):
        other = support.Simulator.__new__(support.Simulator)
        address = "127.%d.77.%d" % (64 + self.simulator.process.pid % 60, self.simulator.process.pid % 250 + 1)
        other.process = tool.subprocess.Popen([support.PROGRAM, "--address", address, "--name", "OTHER", "--quiet"],
                                              stdout=tool.subprocess.PIPE, text=True)
        self.addCleanup(other.stop)
        other.process.stdout.readline()
        infos = tool.jq(self.good("--server", address, "--json", "info"))
        self.assertEqual([info["name"] for info in infos], ["STUDIO", "OTHER"])
        lines = self.good("--server", address, "channels", "B").splitlines()
        self.assertEqual([line.split()[0] for line in lines], ["SERVER", self.address, address])
        error = self.fails(2, "works on one server", "--server", address, "play", "A")
        self.assertEqual(error["error"], "usage")


class NoAnswer(tool.Case):
    def test_nobody_listens(self):
        run = tool.Run("--server", "127.255.255.254", "--timeout", "200ms", "channels")
        self.assertEqual((run.status, run.out), (3, ""))
        self.assertEqual(run.err, "orvactl: No connection to 127.255.255.254 within 200 ms.\n")

    def test_a_frozen_server(self):
        self.fault(fault="freeze", everyone=True)
        run = tool.Run("--server", self.address, "--timeout", "3s", "channels")
        self.assertEqual((run.status, run.out), (4, ""))
        self.assertIn("the outcome is unknown", run.err)

    def test_a_server_that_goes(self):
        self.fault(fault="go_away", command="get_disk_usage", for_ms=1)
        self.fails(3, "The link was lost before the answer", "info")
