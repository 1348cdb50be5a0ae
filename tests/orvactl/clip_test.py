"""clip and meta: one clip, its attributes and its pairs."""

import json
import os
import tempfile

import support
import tool


class Clip(tool.Case):
    def test_show(self):
        lines = self.good("clip", "show", "BARS").splitlines()
        self.assertEqual(lines[0], "name                  BARS")
        self.assertIn("length                00:01:00:00 (3000 fields)", lines)
        self.assertEqual(lines[-1], "meta.Place = Oslo")
        clip = self.json("clip", "show", "NEWS/OPENER")
        self.assertEqual((clip["creator"], clip["project"], clip["tracks"], clip["metadata"]),
                         ("ann", "news", "video,audio", {}))
        self.assertEqual(clip["timecode"]["counting"], "non-drop-frame")

    def test_create_and_delete(self):
        self.good("clip", "create", "NEW", "--length", "50f", "--tracks", "video,key")
        clip = self.json("clip", "show", "NEW")
        self.assertEqual((clip["length"]["fields"], clip["tracks"]), (100, "video,key"))
        self.good("clip", "child", "KID", "NEWS/OPENER", "--angle", "2")
        self.assertEqual(self.json("clip", "show", "KID")["parent_uuid"],
                         self.json("clip", "show", "NEWS/OPENER")["uuid"])
        self.good("clip", "rename", "NEW", "NEWER")
        self.good("clip", "delete", "KID")
        self.good("clip", "create", "ON C", "--channel", "C")
        names = self.json("clips")
        self.assertEqual(("NEW" in names, "NEWER" in names, "KID" in names), (False, True, False))

    def test_set(self):
        self.good("clip", "set", "BARS", "--title", "T \u00e4", "--creator", "c", "--project", "p", "--playback",
                  "both-fields", "--repeat", "loop", "--loop-in", "10", "--loop-out", "20", "--trim-start", "2",
                  "--trim-end", "400")
        clip = self.json("clip", "show", "BARS")
        self.assertEqual([clip[name] for name in ("title", "creator", "project", "playback", "repeat")],
                         ["T \u00e4", "c", "p", "both-fields", "loop"])
        self.assertEqual([clip[name]["fields"] for name in ("loop_in", "loop_out", "trim_start", "trim_end")],
                         [10, 20, 2, 400])
        self.good("clip", "set", "BARS", "--stripe", "10:00:00:00", "--counting", "non-drop-frame")
        self.assertEqual(self.json("clip", "show", "BARS")["timecode_source"], "striped")
        self.good("clip", "set", "BARS", "--timecode", "zero-based")
        self.assertEqual(self.json("clip", "show", "BARS")["timecode_source"], "zero-based")

    def test_failures(self):
        for words in (("show", "NONE"), ("delete", "NONE"), ("rename", "NONE", "X"), ("set", "NONE", "--title", "x"),
                      ("child", "KID", "NONE")):
            self.fails(5, "NONE", "clip", *words)
        self.fails(1, "exists", "clip", "create", "BARS")
        self.fails(1, "LOCKED", "clip", "delete", "LOCKED")
        self.fails(2, "--repeat has to be one of off, loop", "clip", "set", "BARS", "--repeat", "maybe")


class Meta(tool.Case):
    def setUp(self):
        super().setUp()
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.path = os.path.join(self.folder.name, "pairs.json")

    def test_one_pair(self):
        self.good("meta", "set", "BARS", "Key \u00e4", "a\tb")
        self.assertEqual(self.good("meta", "get", "BARS", "Key \u00e4"), "a\\tb\n")
        self.assertEqual(self.json("meta", "get", "BARS", "Key \u00e4"), "a\tb")
        self.good("meta", "set", "BARS", "Empty", "")
        self.assertEqual(self.json("meta", "get", "BARS", "Empty"), "")
        self.assertEqual(self.json("meta", "keys", "BARS"), ["Place", "Key \u00e4", "Empty"])
        self.good("meta", "delete", "BARS", "Place")
        self.fails(5, 'The clip has no key "Place".', "meta", "get", "BARS", "Place")
        self.fails(5, 'The clip has no key "Place".', "meta", "delete", "BARS", "Place")
        self.fails(5, "NONE", "meta", "keys", "NONE")

    def test_files(self):
        pairs = {"Place": "Bergen", **{"k%02d" % i: "value %d" % i for i in range(40)}}
        with open(self.path, "w") as file:
            json.dump(pairs, file)
        self.good("meta", "set", "BARS", "Old", "x")
        self.assertEqual(self.json("meta", "import", "BARS", self.path), {"changed": 41})
        self.assertEqual(tool.jq(self.good("meta", "export", "BARS")), [{**pairs, "Old": "x"}])
        self.assertEqual(self.json("meta", "import", "BARS", self.path, "--replace"), {"changed": 1})
        self.good("meta", "export", "BARS", self.path + "2")
        with open(self.path + "2") as file:
            self.assertEqual(json.load(file), pairs)
        run = self.tool("meta", "import", "BARS", "-", "--replace", input='{"only": "this"}')
        self.assertEqual((run.status, self.json("meta", "keys", "BARS")), (0, ["only"]))

    def test_bad_files_change_nothing(self):
        for text, fault in (("{", "is not JSON"), ("[1]", "has to be a JSON object"),
                            ('{"a": "b", "k": 1}', 'the value of "k" has to be a text')):
            path = support.text_file(self, text)
            self.fails(2, fault, "meta", "import", "BARS", path)
        self.fails(6, "cannot be read", "meta", "import", "BARS", self.path)
        self.fails(6, "cannot be written", "meta", "export", "BARS", "/nonexistent/file")
        self.assertEqual(self.json("meta", "keys", "BARS"), ["Place"])


class VirtualClips(tool.Case):
    def test_changes(self):
        self.good("vclip", "create", "CUT", "00:00:10:00")
        self.good("vclip", "add", "CUT", "NEWS/OPENER", "100", "--from", "50", "--at", "200", "--tracks", "video",
                  "--speed", "2")
        sent = self.commands("vclip_add_segment")[-1]
        self.assertEqual((sent["ClipID"], sent["Speed"]), ("NEWS/OPENER", "2X"))
        self.good("vclip", "clear", "CUT", "200", "10")
        self.good("vclip", "ripple", "CUT", "100", "-20")
        self.good("vclip", "enable", "CUT", "video,audio")
        self.good("vclip", "configure", "CUT", "BARS", "--tracks", "video,audio")
        self.good("load", "A", "CUT", "--virtual", "--at", "10", "--wait")
        self.assertEqual(self.channel("A")["position"], 10)
        self.good("unload", "A")
        self.good("vclip", "free", "CUT")
        self.fails(1, "CUT", "vclip", "free", "CUT")
        self.assertEqual(len(self.commands("vclip_modification_start")), len(self.commands("vclip_modification_end")))

    def test_several_changes_in_a_script(self):
        self.control.call("POST", "/reset")
        script = 'vclip create CUT 500\nvclip begin CUT\nvclip add CUT BARS 100 --tracks video\nvclip add CUT BARS 50 --at 100 --tracks video\n' \
                 'vclip end CUT\nvclip enable CUT all\n'
        self.good("script", input=script)
        self.assertEqual(len(self.commands("vclip_modification_start")), 2)

    def test_a_change_that_fails_is_closed(self):
        self.good("vclip", "create", "CUT", "500")
        self.fails(5, "NONE", "vclip", "add", "CUT", "NONE", "100")
        self.assertEqual(len(self.commands("vclip_modification_start")), len(self.commands("vclip_modification_end")))


class Playlists(tool.Case):
    def test_commands(self):
        for words, command in ((("cue", "A"), "cue_list"), (("cue", "A", "2"), "cue_list"),
                               (("cue", "A", "2", "--next"), "cue_next"), (("play", "A", "3"), "play_now"),
                               (("play", "A", "3", "--next"), "play_next")):
            run = self.tool("playlist", *words)
            self.assertEqual((run.status, run.out), (1, ""), words)
            self.assertIn("No playlist is loaded on channel A", run.err)
        self.assertEqual(len(self.commands()), 5)
        self.fails(2, "--next needs the number of an element.", "playlist", "cue", "A", "--next")
        self.fails(2, "out of its range", "playlist", "play", "A", "65536")
