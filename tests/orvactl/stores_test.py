"""kv: key-value stores, one pair at a time and from and to files."""

import json
import os
import tempfile

import support
import tool


class Stores(tool.Case):
    def setUp(self):
        super().setUp()
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.path = os.path.join(folder.name, "pairs.json")

    def write(self, pairs):
        with open(self.path, "w", encoding="utf-8") as file:
            json.dump(pairs, file)

    def test_one_pair(self):
        self.assertEqual(self.good("kv", "set", "f", "a/\u00e4", "red\n"), "")
        self.assertEqual(self.good("kv", "get", "f", "a/\u00e4"), "red\\n\n")
        self.assertEqual(self.json("kv", "get", "f", "a/\u00e4"), "red\n")
        self.good("kv", "erase", "f", "a/\u00e4")
        self.fails(5, 'There is no key "a/\u00e4".', "kv", "get", "f", "a/\u00e4")

    def test_dump_and_load(self):
        pairs = {"tally/%d" % i: "v%d" % i for i in range(200)}
        self.write(pairs)
        self.assertEqual(self.json("kv", "load", "f", self.path), {"set": 200})
        self.assertEqual(self.json("kv", "dump", "f"), pairs)
        self.assertEqual(self.json("kv", "dump", "f", "tally/1")["99"], "v199")
        self.assertEqual(self.good("kv", "dump", "f", "tally/19").splitlines()[:2], ["0=v190", "1=v191"])
        self.good("kv", "dump", "f", "--file", self.path + "2")
        with open(self.path + "2") as file:
            self.assertEqual(json.load(file), pairs)
        self.good("kv", "load", "f", self.path, "copy/")
        self.assertEqual(self.json("kv", "dump", "f", "copy/"), pairs)

    def test_sync(self):
        self.write({"a": "1", "b": "2", "c": "3"})
        self.good("kv", "load", "f", self.path)
        self.write({"a": "1", "b": "two", "d": "4"})
        changes = [{"event": "set", "key": "b", "value": "two"}, {"event": "set", "key": "d", "value": "4"},
                   {"event": "erase", "key": "c"}]
        self.assertEqual(self.json("kv", "sync", "f", self.path, "--dry-run"), changes)
        self.assertEqual(self.json("kv", "dump", "f"), {"a": "1", "b": "2", "c": "3"})
        self.assertEqual(self.good("kv", "sync", "f", self.path), "set b=two\nset d=4\nerase c\n")
        self.assertEqual(self.json("kv", "dump", "f"), {"a": "1", "b": "two", "d": "4"})
        self.assertEqual(self.json("kv", "sync", "f", self.path), [])

    def test_watch(self):
        self.good("kv", "set", "f", "p/a", "1")
        process = tool.start("--server", self.address, "--timeout", "30s", "--json", "kv", "watch", "f", "p/")
        self.addCleanup(process.communicate)
        self.addCleanup(process.kill)

        def event():
            return json.loads(process.stdout.readline())

        self.assertEqual(event(), {"event": "set", "key": "a", "value": "1"})
        self.good("kv", "set", "f", "p/b", "2")
        self.assertEqual(event(), {"event": "set", "key": "b", "value": "2"})
        self.good("kv", "erase", "f", "p/a")
        self.assertEqual(event(), {"event": "erase", "key": "a"})
        self.assertEqual(self.good("kv", "watch", "f", "p/", "--for", "1s"), "set b=2\n")

    def test_failures(self):
        self.fails(6, "cannot be read", "kv", "load", "f", self.path)
        self.fails(2, "is not JSON", "kv", "load", "f", support.text_file(self, "no"))
        self.fault(fault="freeze", everyone=True)
        for words in (("get", "f", "k"), ("set", "f", "k", "v"), ("dump", "f")):
            run = tool.Run("--server", self.address, "--timeout", "3s", "kv", *words)
            self.assertEqual((run.status, run.out), (4, ""), words)
