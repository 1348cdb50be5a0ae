"""A session that was recorded through the simulator's proxy gives the same answers when it is replayed."""

import os
import subprocess
import tempfile

import support
import tool

SCRIPT = """info
channels
load A NEWS/OPENER --at 50 --wait
load B LOCKED --repeat loop --loop-in 10 --out 80 --wait
repeat B off --wait
angle A 1 --wait
out A 400
out A --clear
goto A 100 --wait
jog A,B 2
precue A NEWS/CLOSER --wait
activate A
take A
edit C on
edit C off
ee C on --wait
ee C off
live D
unload E --wait
clips
clips 'NEWS/*' --long
dirs
mkdir SPORT
clip create NEW --length 100
clip child KID NEWS/OPENER --angle 2
clip set NEW --title T --trim-end 50
clip show NEW
clip rename NEW NEWER
clip delete NEWER
load A NONE
meta set BARS k v
meta get BARS k
meta keys BARS
meta export BARS
meta delete BARS k
vclip create CUT 500
vclip add CUT BARS 100 --tracks video
vclip clear CUT 0 10
vclip ripple CUT 5 5
vclip enable CUT all
vclip free CUT
playlist cue A
playlist play A 1
wait 'A loaded'
stop A-H
"""


class Replay(tool.Case):
    def server(self, *arguments):
        process = subprocess.Popen([support.PROGRAM] + list(arguments), stdout=subprocess.PIPE,
                                   stderr=subprocess.STDOUT, text=True)
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        self.assertIn("listening on", process.stdout.readline())
        return process

    def session(self, address):
        """As text: then --wait prints nothing, where JSON shows a state that may be on its way to the next one."""
        run = tool.Run("--server", address, "--timeout", "30s", "script", "--keep-going", input=SCRIPT)
        return run.status, run.out.replace(address, "SERVER"), run.err

    def test_every_command(self):
        first, second = self.address.rpartition(".")[0] + ".251", self.address.rpartition(".")[0] + ".252"
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "trace.jsonl")
            proxy = self.server("proxy", "--listen", first, "--server", self.address, "--trace", path)
            recorded = self.session(first)
            proxy.terminate()
            proxy.wait(tool.PATIENCE)
            replay = self.server("replay", path, "--listen", second)
            replayed = self.session(second)
            self.assertEqual(replay.wait(tool.PATIENCE), 0, replay.stdout.read())
        self.assertEqual(replayed, recorded)
        self.assertEqual((recorded[0], len(recorded[2].splitlines())), (1, 4), recorded[2])
