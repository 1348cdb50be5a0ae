"""Every command on a server that does not answer, that has gone, and whose answers nobody takes."""

import concurrent.futures
import os
import subprocess
import tempfile
import unittest

import support
import tool

# Every command that asks the server. FILE is a JSON file.
LINES = """info
channels A
watch
wait 'A stopped'
play A
play A,B --speed 2 --quick --wait
stop A
jog A -5
goto A 50f
edit A on
ee A on --manual
activate A
load A BARS --at 00:00:01:00
load A BARS --virtual
unload A
precue A BARS --when now
take A --dissolve 10
live A --clip BARS
repeat A loop
out A 100
angle A 1
record A TAKE --for 1s
clips
clips --long
clips --watch
dirs
mkdir X
clip show BARS
clip create X
clip child X BARS
clip rename BARS X
clip delete BARS
clip set BARS --title x
meta get BARS k
meta set BARS k v
meta delete BARS k
meta keys BARS
meta export BARS
meta import BARS FILE
vclip create V 100
vclip free V
vclip begin V
vclip end V
vclip add V BARS 100
vclip clear V 0 10
vclip ripple V 0 10
vclip enable V all
vclip configure V BARS
playlist play A 1
playlist cue A
kv get f k
kv set f k v
kv erase f k
kv watch f
kv dump f
kv load f FILE
kv sync f FILE
ping --count 1
script FILE2
""".splitlines()


class Silence(tool.Case):
    def setUp(self):
        super().setUp()
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.path = os.path.join(folder.name, "pairs")
        for name, text in ((self.path, '{"k": "v"}'), (self.path + "2", "stop A\n")):
            with open(name, "w") as file:
                file.write(text)

    def run_all(self, address, limit):
        """The status and the messages of each line. They do not act, so they may run at a time."""
        def run(line):
            words = subprocess.run(["sh", "-c", "printf '%s\\n' " + line], capture_output=True, text=True)
            arguments = [word.replace("FILE", self.path) for word in words.stdout.split("\n")[:-1]]
            return tool.Run("--server", address, "--timeout", limit, *arguments)

        with concurrent.futures.ThreadPoolExecutor(12) as pool:
            return dict(zip(LINES, pool.map(run, LINES)))

    def test_every_command_is_here(self):
        """All that are in the man page, but those that need a terminal, have states of their own, or need no server."""
        with open(os.path.join(tool.ROOT, "tools/orvactl/orvactl.1"), encoding="utf-8") as file:
            named = [line[4:].strip().strip('"') for line in file if line.startswith(".SS ")]
        missing = [name for name in named if not any((line + " ").startswith(name + " ") for line in LINES)]
        self.assertEqual(missing, ["top", "check", "completion"])

    def test_a_frozen_server(self):
        self.fault(fault="freeze", everyone=True)
        for line, run in self.run_all(self.address, "3s").items():
            with self.subTest(line=line):
                self.assertEqual(run.status, 4, run.err)

    def test_nobody_there(self):
        for line, run in self.run_all("127.255.255.254", "150ms").items():
            with self.subTest(line=line):
                self.assertEqual((run.status, run.out), (3, ""), run.err)
                self.assertIn("No connection to 127.255.255.254 within 150 ms.", run.err)

    @unittest.skipUnless(tool.native(), "needs signals or files of this system")
    def test_a_full_disk(self):
        for line in ("info", "channels", "clips", "clip show BARS", "kv dump f", "watch --for 10s", "ping --count 1",
                     "--version", "play --help", "--json stop A"):
            with open("/dev/full", "w") as full, self.subTest(line=line):
                done = subprocess.run(tool.PROGRAM + ["--server", self.address] + line.split(), stdout=full,
                                      stderr=subprocess.PIPE, env=tool.environment(), timeout=tool.PATIENCE)
                expected = 0 if line == "kv dump f" else 6  # an empty store prints nothing
                self.assertEqual(done.returncode, expected, done.stderr)
