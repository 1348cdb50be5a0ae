#!/usr/bin/env python3
"""Measures the simulator under high load: its memory, its processor time and the delay of other clients.

usage: measure_load.py PROGRAM
"""

import resource
import selectors
import socket
import sys
import threading
import time

import support

CLIENTS, CLIPS, LISTINGS = 5000, 1000000, 8
REPORT_CLIENTS, SECONDS = 64, 20


def delays(client, count):
    """Round trips of a command in milliseconds, in ascending order."""
    result = []
    for _ in range(count):
        start = time.perf_counter()
        client.answer("<sync />")
        result.append((time.perf_counter() - start) * 1000)
    return sorted(result)


def show_delays(what, times):
    print("%s: delay of another client %.2f ms in the middle, %.2f ms for 99 of 100, %.2f ms at most"
          % (what, times[len(times) // 2], times[len(times) * 99 // 100], times[-1]))


def show_memory(what, simulator):
    print("%s: %.1f MB of memory" % (what, simulator.memory() / 1e6), flush=True)


def many_clients():
    simulator = support.Simulator("--generate", str(CLIPS), "--quiet")
    show_memory("%d clips" % CLIPS, simulator)
    other = support.Client(simulator.address)
    show_delays("1 client", delays(other, 2000))
    clients = [support.Client(simulator.address) for _ in range(CLIENTS)]
    for client in clients:
        client.answer("<sync />")
    show_memory("%d clients" % CLIENTS, simulator)
    show_delays("%d clients" % CLIENTS, delays(other, 2000))
    slow = clients[0].socket
    slow.sendall(b"".join(b"<cmd><xid>%d</xid><download_clipids /></cmd>" % number for number in range(LISTINGS)))
    show_delays("a client that reads nothing of %d listings" % LISTINGS, delays(other, 2000))
    show_memory("a client that reads nothing", simulator)
    received, stop = [0], threading.Event()

    def read():
        while not stop.is_set():
            received[0] += len(slow.recv(1 << 20))
    reader = threading.Thread(target=read)
    reader.start()
    show_delays("a client that reads the listings as fast as it can", delays(other, 2000))
    show_memory("a client that reads the listings", simulator)
    stop.set()
    simulator.process.kill()
    simulator.process.communicate()
    reader.join()
    for client in clients:
        client.close()


def reports():
    simulator = support.Simulator("--quiet", "--standard", "1080_60i")
    clients = [support.Client(simulator.address) for _ in range(REPORT_CLIENTS)]
    for letter in "ABCDEFGH":
        clients[0].answer("<cue_clip><Channel>%s</Channel><ClipID>BARS</ClipID><Loop>loop</Loop></cue_clip>" % letter)
        for client in clients:
            client.answer("<channel_report_register><Channel>%s</Channel><ChannelReportType>timecode</ChannelReportType>"
                          "</channel_report_register>" % letter)
    clients[0].answer("<gang_play><ChannelSet>%s</ChannelSet></gang_play>"
                      % "".join("<Channel>%s</Channel>" % letter for letter in "ABCDEFGH"))
    selector = selectors.DefaultSelector()
    for client in clients:
        client.socket.setblocking(False)
        selector.register(client.socket, selectors.EVENT_READ)
    size, count = 0, 0
    began, used = time.monotonic(), simulator.cpu_seconds()
    while time.monotonic() - began < SECONDS:
        for key, _ in selector.select(0.1):
            data = key.fileobj.recv(1 << 20)
            size += len(data)
            count += data.count(b"</report>")
        time.sleep(0.005)  # leaves the processor to the simulator
    passed, used = time.monotonic() - began, simulator.cpu_seconds() - used
    print("%d clients with the positions of 8 channels: %.0f reports (%.1f MB) in a second, %.0f %% of a core"
          % (REPORT_CLIENTS, count / passed, size / passed / 1e6, 100 * used / passed))
    simulator.process.kill()
    simulator.process.communicate()


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    support.PROGRAM = sys.argv[1]
    hard = resource.getrlimit(resource.RLIMIT_NOFILE)[1]
    resource.setrlimit(resource.RLIMIT_NOFILE, (hard, hard))
    reports()
    many_clients()
