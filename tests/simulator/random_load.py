#!/usr/bin/env python3
"""Random commands, faults and control requests against the simulator. Prints its memory at the start and at the end.

The exit status is 1 when the simulator ends by itself, reports an error of its own or of a sanitizer, or holds more
memory at the end than at the start.

usage: random_load.py PROGRAM [MINUTES [SEED]]
"""

import http.client
import json
import os
import random
import re
import socket
import struct
import sys
import threading
import time
import unittest.mock

import support
from random_test import CLIPS, KINDS, Dice

CONTROL_PORT = 9913
WORKERS = 12
FINDING = re.compile(r"Sanitizer|runtime error|cannot go on|terminate called|Assertion")
MOST_GROWTH = 32 << 20  # bytes, for what the allocator keeps
STREAMS = ("<download_clipids />", "<download_directories />", "<get_computer_name />", "<sync />", "<fly />",
           "<watch_metadata_database><MetadataDatabase>M</MetadataDatabase><MetadataPrefix /></watch_metadata_database>",
           "<download_metadata><MetadataDatabase>M</MetadataDatabase><MetadataPrefix /></download_metadata>")
FAULTS = ("refuse", "delay", "no_answer", "twice", "out_of_order", "wrong_kind", "malformed", "oversized", "cut", "reset",
          "pieces", "stop_reading", "freeze", "refuse_connections", "go_away")


class Load:
    def __init__(self, minutes, seed):
        self.seed, self.end = seed, time.monotonic() + minutes * 60
        self.authority = "%s:%d" % (support.own_address(), CONTROL_PORT)
        # Freed memory that the address sanitizer keeps would count as growth.
        options = os.environ.get("ASAN_OPTIONS", "") + ":quarantine_size_mb=16"
        with unittest.mock.patch.dict(os.environ, ASAN_OPTIONS=options):
            self.simulator = support.Simulator("--control", self.authority, "--quiet", "--seed", str(seed))
        self.findings, self.commands, self.requests = [], 0, 0
        self.output = threading.Thread(target=self.read_output)
        self.output.start()

    def read_output(self):
        for line in self.simulator.process.stdout:
            if self.findings or FINDING.search(line):
                self.findings.append(line.rstrip())

    def goes_on(self):
        return time.monotonic() < self.end and self.simulator.process.poll() is None

    def request(self, method, path, body=None):
        connection = http.client.HTTPConnection(self.simulator.address, CONTROL_PORT, timeout=60)
        try:
            connection.request(method, path, body if isinstance(body, (bytes, type(None))) else json.dumps(body))
            connection.getresponse().read()
            self.requests += 1
        except (OSError, http.client.HTTPException):
            pass  # whether it still runs is checked elsewhere
        finally:
            connection.close()

    def command(self, dice):
        kind = dice.random()
        if kind < 0.8:
            return dice.command()
        if kind < 0.9:
            return dice.choice(STREAMS)
        if kind < 0.95:
            return ("<metadata_set><MetadataDatabase>M</MetadataDatabase><Key>%d</Key><Value>%s</Value></metadata_set>"
                    % (dice.randint(0, 99), "v" * dice.randint(0, 2000)))
        return "<channel_report_register>%s<ChannelReportType>%s</ChannelReportType></channel_report_register>" % (
            dice.channel(), dice.choice(KINDS))

    def be_a_client(self, dice):
        """One connection: commands, some without reading the answers, and a random end."""
        with socket.create_connection((self.simulator.address, support.PORT), timeout=1) as client:
            reads = dice.random() < 0.9
            for number in range(dice.randint(1, 300)):
                text = "<cmd><xid>%d</xid>%s</cmd>" % (number, self.command(dice))
                if dice.random() < 0.002:
                    text = text[:dice.randint(0, len(text))] + dice.choice(("\0", "<", "</cmd>", "&x;", "\xff"))
                client.sendall(text.encode("latin-1"))
                self.commands += 1
                if reads and not client.recv(1 << 16):
                    return
            if dice.random() < 0.2:
                client.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
            elif dice.random() < 0.2:
                client.shutdown(socket.SHUT_WR)
                while client.recv(1 << 16):
                    pass

    def work(self, number):
        dice = Dice(self.seed * 1000 + number)
        while self.goes_on():
            try:
                self.be_a_client(dice)
            except OSError:
                time.sleep(0.02)  # a fault, or a bad document

    def fault(self, dice):
        rule = {"fault": dice.choice(FAULTS), "chance": 0.05, "times": dice.randint(1, 20), "for_ms": dice.randint(0, 300)}
        rule[dice.choice(("command", "command", "report"))] = "*"
        if rule["fault"] in ("delay", "pieces"):
            rule["ms"] = [0, dice.randint(0, 50)]
            rule["bytes"] = dice.randint(1, 50)
        return rule

    def steer(self):
        dice = random.Random(self.seed)
        calls = (
            lambda: ("POST", "/faults", self.fault(dice)),
            lambda: ("DELETE", "/faults", None),
            lambda: ("GET", dice.choice(("/state", "/journal", "/reports", "/clients", "/clips?limit=5", "/faults", "/")), None),
            lambda: ("PUT", "/channels/" + dice.choice("ABCDEFGHZ"), {"clip": dice.choice(CLIPS + (None,)),
                                                                      "position": dice.randint(0, 700),
                                                                      "speed": dice.uniform(-300, 300)}),
            lambda: ("PUT", "/clips/" + dice.choice(CLIPS), {"length": dice.randint(0, 1000), "tracks": ["video"]}),
            lambda: ("DELETE", "/clips/" + dice.choice(CLIPS), None),
            lambda: ("DELETE", "/clients/%d?how=%s" % (dice.randint(1, 50), dice.choice(("close", "reset"))), None),
            lambda: ("PUT", "/time", {"rate": dice.choice((0.5, 1, 10, 1000)), "paused": dice.random() < 0.1}),
            lambda: ("POST", "/time/step", {"fields": dice.randint(1, 1000)}),
            lambda: ("POST", "/reports", {"everyone": True, "body": {"temperature": {"Temperature10": 480}}}),
            lambda: (dice.choice(("PUT", "POST")), "/" + dice.choice(("state", "time", "clips/x", "faults")),
                     bytes(dice.randint(0, 255) for _ in range(dice.randint(0, 200)))),
        )
        while self.goes_on():
            self.request(*dice.choice(calls)())
            if dice.random() < 0.002:
                self.request("POST", "/reset")
            time.sleep(0.01)

    def memory_at_rest(self):
        for _ in range(2):
            self.request("POST", "/reset")
        time.sleep(0.5)
        return self.simulator.memory()

    def run(self, may_grow=False):
        """Whether all went well. A short run may grow: the journal is not yet full."""
        threads = [threading.Thread(target=self.work, args=(number,)) for number in range(WORKERS)]
        threads.append(threading.Thread(target=self.steer))
        for thread in threads:
            thread.start()
        # The journal and the memory that the allocator keeps are full after a while.
        warm = (self.end - time.monotonic()) / 4
        time.sleep(warm)
        start = self.memory_at_rest() if self.goes_on() else 0
        print("memory at the start: %.1f MB" % (start / 1e6), flush=True)
        for thread in threads:
            thread.join()
        alive = self.simulator.process.poll() is None
        end = self.memory_at_rest() if alive else 0
        print("memory at the end: %.1f MB" % (end / 1e6))
        self.simulator.process.terminate()
        status = self.simulator.process.wait()
        self.output.join()
        print("%d commands, %d control requests, exit status %d, seed %d"
              % (self.commands, self.requests, status, self.seed))
        for line in self.findings[:200]:
            print(line)
        return alive and status == 0 and not self.findings and (may_grow or end <= start * 1.2 + MOST_GROWTH)


if __name__ == "__main__":
    if len(sys.argv) not in (2, 3, 4):
        sys.exit(__doc__)
    support.PROGRAM = sys.argv[1]
    minutes = float(sys.argv[2]) if len(sys.argv) > 2 else 45
    seed = int(sys.argv[3]) if len(sys.argv) > 3 else time.time_ns() % 1000000
    sys.exit(0 if Load(minutes, seed).run() else 1)
