"""The man page and the help say the same."""

import os
import re
import shutil
import subprocess
import unittest

import tool
from usage_test import Help, options


class Manual(Help):
    def page(self):
        with open(os.path.join(tool.ROOT, "tools/orvactl/orvactl.1"), encoding="utf-8") as file:
            return file.read().replace("\\-", "-")

    def sections(self):
        """What the page says of each command."""
        found = {}
        for text in re.split(r"^\.SS ", self.page().partition(".SH COMMANDS\n")[2].partition("\n.SH ")[0], flags=re.M)[1:]:
            title, _, body = text.partition("\n")
            found[title.strip().strip('"')] = body
        return found

    def test_every_option(self):
        sections = self.sections()
        for words, text in self.commands().items():
            name = " ".join(words)
            if not words or "\nSubcommands:" in text:
                continue
            with self.subTest(command=name):
                self.assertIn(name, sections)
                described = options("".join(re.findall(r"^\.TP\n(.*)$", sections[name], re.M)))
                self.assertEqual(described, options(text.partition("\nExample:")[0]) - {"--help", "--server", "--json"}
                                 - self.mentioned(text))
        known = {" ".join(words) for words in self.commands()}
        self.assertEqual(set(sections) - known, set())

    def mentioned(self, text):
        """Options that a help text only speaks of."""
        own = set(re.findall(r"^  (?:-\w,)?(--[a-z-]+)", text, re.M))
        return options(text) - own

    def test_global_options(self):
        own = set(re.findall(r"^  (?:-\w,)?(--[a-z-]+)", self.commands()[()], re.M))
        described = options("".join(re.findall(r"^\.TP\n(.*)$", self.page().partition(".SH OPTIONS\n")[2]
                                               .partition("\n.SH ")[0], re.M)))
        self.assertEqual(described, own)

    def test_exit_statuses(self):
        described = re.findall(r"^\.TP\n\.B (\d+)$", self.page(), re.M)
        self.assertEqual(described, ["0", "1", "2", "3", "4", "5", "6", "130"])

    @unittest.skipUnless(shutil.which("mandoc"), "there is no mandoc")
    def test_layout(self):
        done = subprocess.run(["mandoc", "-T", "lint", "-W", "warning",
                               os.path.join(tool.ROOT, "tools/orvactl/orvactl.1")], capture_output=True, text=True)
        faults = [line for line in done.stdout.splitlines() if "missing date" not in line and "bad section" not in line]
        self.assertEqual(faults, [])


del Help  # its tests run once
