"""The command line, the configuration, help and the man page."""

import os
import re
import tempfile
import unittest

import support
import tool


def options(text):
    return set(re.findall(r"(?<![\w-])--[a-z][a-z-]*", text))


class Help(tool.Case):
    def commands(self):
        """Every command line that has help of its own, with it."""
        found = {}
        groups = [()]
        while groups:
            group = groups.pop()
            run = tool.Run(*group, "--help")
            self.assertEqual((run.status, run.err), (0, ""))
            found[group] = run.out
            below = re.search(r"\nSubcommands:\n((?:  .*\n)*)", run.out)
            if below:
                groups += [group + (word,) for word in re.findall(r"^  (\S+)", below.group(1), re.M)]
        return found

    def test_every_help_ends_in_an_example(self):
        for words, text in self.commands().items():
            with self.subTest(words=words):
                self.assertRegex(text, r"\nExample:\n  .*orvactl.*\n$")

    def test_examples_are_right(self):
        for words, text in self.commands().items():
            with self.subTest(words=words):
                self.assertIn(" ".join(words), text.rpartition("Example:\n")[2])

    def test_version(self):
        self.assertRegex(tool.Run("--version").out, r"^orvactl \d+\.\d+\.\d+\nlibrary OrvaAPI64 \d+\.\d+\.\d+")


class Lines(tool.Case):
    def test_typing_errors(self):
        for words, text in ((("chanels",), 'There is no command "chanels". Did you mean "channels"?'),
                            (("play", "A", "--spede", "1"), '"play" has no option "--spede". Did you mean "--speed"?'),
                            (("xyzzyxyzzy",), 'There is no command "xyzzyxyzzy".'),
                            ((), "A command is missing."),
                            (("load", "A"), "CLIP is required"),
                            (("stop", "A", "B"), "B")):
            with self.subTest(words=words):
                self.fails(2, text, *words)

    def test_no_server_is_needed_to_see_that(self):
        run = tool.Run("play", "Z")
        self.assertEqual(run.status, 2)
        self.assertIn("CHANNELS has to be", run.err)
        run = tool.Run("play", "A")
        self.assertEqual((run.status, run.err), (2, "orvactl: No server is named. Use --server, ORVA_SERVER or the "
                                                    "configuration file.\n"))

    def test_options_may_stand_anywhere(self):
        run = tool.Run("info", "--json", "--server", self.address)
        self.assertEqual(tool.jq(run.out)[0]["name"], "STUDIO")

    def test_a_clip_with_a_strange_name(self):
        for name in ("-5", "stop", "--json", "[x]", ""):
            run = self.tool("load", "A", "--", name)
            self.assertEqual(run.status, 5 if name else run.status, name)
            self.assertNotEqual(run.status, 0)
            if name:
                self.assertEqual(self.commands("cue_clip")[-1]["ClipID"], name)


class Configuration(tool.Case):
    def file(self, text):
        return support.text_file(self, text)

    def test_named_servers_and_defaults(self):
        path = self.file('server = "studio1"\ntimeout = "30s"\n[servers]\nstudio1 = "%s"\nother = "127.255.255.254"\n'
                         % self.address)
        self.assertEqual(tool.jq(tool.Run("--config", path, "--json", "info").out, ".server"), ["studio1"])
        run = tool.Run("--config", path, "--server", "studio2", "info")
        self.assertEqual((run.status, run.err), (2, 'orvactl: "studio2" is neither an IPv4 address nor the name of a '
                                                    'server in the configuration. Did you mean "studio1"?\n'))
        run = tool.Run("--config", path, "--timeout", "100ms", "info", ORVA_SERVER="other")
        self.assertEqual((run.status, run.err), (3, "orvactl: No connection to other within 100 ms.\n"))

    @unittest.skipUnless(tool.native(), "needs signals or files of this system")
    def test_the_users_own_file(self):
        with tempfile.TemporaryDirectory() as home:
            os.makedirs(home + "/.config/orva")
            with open(home + "/.config/orva/config.toml", "w") as file:
                file.write('server = ["%s"]\n' % self.address)
            self.assertEqual(tool.Run("info", HOME=home).status, 0)

    def test_bad_files(self):
        for text, fault in (("\nserver = [", "line 2: "), ("\nsrever = 1", 'line 2: "srever" is unknown'),
                            ('[servers]\nx = "1.2.3"', 'line 2: the address of "x" is not an IPv4 address'),
                            ('timeout = "soon"', 'line 1: "timeout" is a number of seconds'),
                            ("timeout = -1", 'line 1: "timeout" is')):
            path = self.file(text)
            run = tool.Run("--config", path, "info")
            self.assertEqual((run.status, run.out), (2, ""))
            self.assertIn(path + ", " + fault, run.err)
        self.assertEqual(tool.Run("--config", "/nonexistent/file", "info").status, 2)
