"""play, stop, jog, goto, edit, ee and activate: one command for any number of channels, and --wait."""

import tool


class Transport(tool.Case):
    def setUp(self):
        super().setUp()
        for letter in "ABC":
            self.control.call("PUT", "/channels/" + letter, {"clip": "BARS", "position": 100})

    def test_one_channel_and_a_gang(self):
        for arguments, command, expected in (
                (("play", "A"), "play", {"Channel": "A"}),
                (("play", "b", "--speed", "1.5"), "play", {"Channel": "B", "Speed": "1.5X"}),
                (("play", "A,C", "--speed", "-2"), "gang_play", {"ChannelSet": {"Channel": ["A", "C"]}, "Speed": "-2X"}),
                (("stop", "0-2"), "gang_stop", {"ChannelSet": {"Channel": ["A", "B", "C"]}}),
                (("stop", "A,A"), "stop", {"Channel": "A"}),
                (("activate", "A,B"), "gang_precue_activate", {"ChannelSet": {"Channel": ["A", "B"]}})):
            with self.subTest(arguments=arguments):
                self.control.call("POST", "/reset")
                if arguments[0] == "activate":
                    for letter in "AB":
                        self.good("precue", letter, "BARS")
                self.assertEqual(self.good(*arguments), "")
                sent = self.commands(command)
                self.assertEqual(len(sent), 1, self.control.call("GET", "/journal?since=0&limit=99"))
                self.assertEqual({name: sent[0][name] for name in expected}, expected)

    def test_nothing_else_is_sent(self):
        self.good("stop", "A-H")
        self.assertEqual(self.commands(), [{"ChannelSet": {"Channel": list("ABCDEFGH")}}])

    def test_done_as_json(self):
        self.assertEqual(self.json("stop", "A"), {"done": True})

    def test_positions(self):
        for written, fields in (("250", 250), ("125f", 250), ("00:00:05:00", 250), ("00:00:05:00.5", 251)):
            self.good("goto", "A", written)
            self.assertEqual(self.commands("gotocmd")[-1]["GotoPosition"], str(fields), written)
        for written, fields in (("-10", -10), ("-5f", -10), ("-00:00:01:00", -50), ("3", 3)):
            self.good("jog", "A", written)
            self.assertEqual(self.commands("jog")[-1]["JogDistance"], str(fields), written)

    def test_waiting(self):
        states = self.json("play", "A,C", "--wait")
        self.assertEqual([(each["channel"], each["status"]) for each in states], [("A", "playing"), ("C", "playing")])
        self.assertEqual(self.json("stop", "A,C", "--wait")[0]["status"], "stopped")
        self.assertEqual(self.json("goto", "A", "500", "--wait")[0]["position"]["fields"], 500)
        self.assertEqual(self.json("jog", "A", "-20", "--wait")[0]["position"]["fields"], 480)
        self.assertEqual(self.json("jog", "A", "-9999", "--wait")[0]["position"]["fields"], 0)
        self.assertEqual(self.good("goto", "A", "500", "--wait"), "")

    def test_a_state_that_is_not_reached(self):
        self.control.call("PUT", "/time", {"paused": True})
        run = tool.Run("--server", self.address, "--timeout", "3s", "goto", "A", "700", "--wait")
        self.assertEqual((run.status, run.out), (4, ""))
        self.assertIn("Channel A has not reached the state within 3 s.", run.err)

    def test_edit_and_input(self):
        self.good("edit", "A", "on")
        self.assertEqual(self.channel("A")["edit_mask"], 1023)
        self.good("edit", "A", "off")
        self.assertEqual(self.channel("A")["edit_mask"], 0)
        self.good("edit", "A,B", "on", "--tracks", "bit4")
        self.assertEqual([self.channel(letter)["edit_mask"] for letter in "AB"], [16, 16])
        self.assertEqual(self.json("ee", "C", "on", "--manual", "--wait")[0]["input_mode"], "manual")
        self.assertEqual(self.json("ee", "C", "off", "--wait")[0]["input"], "none")

    def test_refusals_and_bad_words(self):
        self.control.call("PUT", "/channels/B", {"clip": None})
        error = self.fails(1, "", "play", "B")
        self.assertEqual(error["error"], "refused")
        self.fails(2, "CHANNELS has to be channels such as", "play", "A,Z")
        self.fails(2, "CHANNELS has to be channels such as", "play", "D-B")
        self.fails(2, "--speed has to be a number", "play", "A", "--speed", "fast")
        self.fails(2, "POSITION has to be a position", "goto", "A", "-5")
        self.fails(2, "No timecode of this rate", "goto", "A", "00:00:00:30")
        self.fails(2, "STATE has to be one of on, off", "edit", "A", "maybe")


class Load(tool.Case):
    def test_load(self):
        states = self.json("load", "A", "NEWS/OPENER", "--at", "00:00:02:00", "--wait")
        self.assertEqual((states[0]["clip"], states[0]["position"]["fields"]), ("NEWS/OPENER", 100))
        self.good("load", "B", "BARS", "--repeat", "loop", "--loop-in", "100", "--out", "200f")
        sent = self.commands("cue_clip")[-1]
        self.assertEqual((sent["LoopIn"], sent["ClipPosition"]), ("100", "400"))
        self.good("load", "B", "NEWS/OPENER", "--angle", "2")
        self.assertEqual(self.channel("B")["angle"], 2)
        self.assertEqual(self.json("unload", "B", "--wait")[0]["clip"], "")
        self.assertEqual(self.channel("B")["clip"], "")

    def test_a_clip_that_is_not_there(self):
        error = self.fails(5, "Clip 'NONE' does not exist", "load", "A", "NONE")
        self.assertEqual(error["error"], "not_found")
        self.fails(5, "NONE", "precue", "A", "NONE")

    def test_wrong_use(self):
        self.fails(2, "either a clip or --clear", "precue", "A")
        self.fails(2, "either a position or --clear", "out", "A")
        self.fails(2, "not with both", "load", "A", "BARS", "--angle", "1", "--repeat", "loop")
        self.fails(2, "out of its range", "angle", "A", "256")
        self.fails(2, "CHANNEL has to be one channel", "load", "A,B", "BARS")

    def test_precue_and_take(self):
        self.good("load", "A", "BARS", "--wait")
        self.assertEqual(self.json("precue", "A", "NEWS/CLOSER", "--at", "10", "--wait")[0]["precued"], 1)
        self.good("precue", "A", "NEWS/OPENER", "--when", "end-of-clip", "--length", "50", "--loop-in", "5")
        self.good("take", "A", "--wait")
        self.assertEqual(self.channel("A")["clip"], "NEWS/CLOSER")
        self.good("precue", "A", "--clear")
        self.good("precue", "A", "BARS")
        self.good("take", "A", "--dissolve", "25f", "--follow", "smart")
        sent = self.commands("take")[-1]
        self.assertEqual((sent["TransitionDuration"], sent["FollowSpeed"]), ("50", "smart"))

    def test_how_it_plays(self):
        self.good("load", "A", "NEWS/OPENER", "--wait")
        self.assertEqual(self.json("repeat", "A", "pingpong", "--wait")[0]["repeat"], "pingpong")
        self.assertEqual(self.json("angle", "A", "2", "--wait")[0]["angle"], 2)
        self.good("out", "A", "400")
        self.assertEqual(self.channel("A")["out"], 400)
        self.good("out", "A", "--clear")
        self.assertEqual(self.channel("A")["out"], 499)
        self.good("live", "B")
        self.assertEqual(self.channel("B")["source"], "live")
