"""The proxy that records messages, and the replay of what it has recorded."""

import base64
import http.client
import json
import os
import re
import socket
import subprocess
import tempfile
import unittest

import support


class Process:
    """The proxy or the replay; gives the client an address like a server."""

    def __init__(self, *arguments):
        self.process = subprocess.Popen([support.PROGRAM, *arguments], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                        text=True)
        self.first = self.process.stdout.readline()

    def end(self):
        """Exit status and what was said on the standard error."""
        _, said = self.process.communicate(timeout=support.PATIENCE)
        return self.process.returncode, said


class Traced(unittest.TestCase):
    def setUp(self):
        self.server = support.own_address()
        self.between = self.server.rsplit(".", 1)[0] + ".252"
        handle, self.trace = tempfile.mkstemp(suffix=".jsonl")
        os.close(handle)
        self.addCleanup(os.unlink, self.trace)

    def start(self, *arguments):
        process = Process(*arguments)
        self.addCleanup(process.process.communicate)
        self.addCleanup(process.process.kill)
        self.assertEqual(process.first, "listening on %s:8913\n" % self.between)
        return process

    def proxy(self, *arguments):
        return self.start("proxy", "--listen", self.between, "--server", self.server, "--trace", self.trace, *arguments)

    def replay(self):
        return self.start("replay", self.trace, "--listen", self.between)

    def simulate(self):
        simulator = support.Simulator()
        self.addCleanup(simulator.stop)
        return simulator

    def client(self):
        client = support.Client(self.between)
        self.addCleanup(client.close)
        return client

    def lines(self):
        with open(self.trace, "rb") as file:
            return [json.loads(line) for line in file]

    def stop(self, process):
        process.process.terminate()
        self.assertEqual(process.end(), (0, ""))


class Proxy(Traced):
    def test_everything_passes_and_is_written(self):
        self.simulate()
        proxy = self.proxy()
        client = self.client()
        client.send("<cmd>\r\n<xid>1</xid><sync /></cmd>\r\n <cmd><xid>2</xid><fly /></cmd >")
        self.assertEqual(client.message(), "<reply><xid>1</xid><ok /></reply>")
        refusal = client.message()
        client.socket.sendall(b"<cmd>\xff")
        client.socket.shutdown(1)
        self.assertIsNone(client.message())
        self.stop(proxy)
        lines = self.lines()
        for line in lines:
            self.assertRegex(line["time"], r"^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{6}Z$")
            self.assertEqual(line["connection"], 1)
        self.assertEqual([line.get("event") for line in lines if "event" in line], ["open", "close"])
        sent = [line for line in lines if line.get("direction") == "client"]
        self.assertEqual([line.get("message") for line in sent],
                         ["<cmd>\r\n<xid>1</xid><sync /></cmd>", "\r\n <cmd><xid>2</xid><fly /></cmd >", None])
        self.assertEqual(base64.b64decode(sent[2]["base64"]), b"<cmd>\xff")
        self.assertTrue(sent[2]["partial"])
        self.assertEqual([line["message"] for line in lines if line.get("direction") == "server"],
                         ["<reply><xid>1</xid><ok /></reply>", refusal])

    def test_a_server_that_is_not_there(self):
        proxy = self.proxy()
        self.assertIsNone(self.client().message())
        self.stop(proxy)
        self.assertEqual([line["event"] for line in self.lines()], ["open", "unreachable", "close"])

    def test_faults_in_the_traffic_of_a_server(self):
        self.simulate()
        with tempfile.NamedTemporaryFile("w", suffix=".json") as file:
            json.dump([{"fault": "refuse", "command": "play", "text": "No"},
                       {"fault": "twice", "command": "sync"}], file)
            file.flush()
            proxy = self.proxy("--faults", file.name)
        client = self.client()
        self.assertIn("<ErrorMessage>No<", client.answer("<play><Channel>A</Channel></play>"))
        client.send("<cmd><xid>2</xid><sync /></cmd>")
        self.assertEqual([client.message(), client.message()], ["<reply><xid>2</xid><ok /></reply>"] * 2)
        self.stop(proxy)
        self.assertEqual([line["faults"] for line in self.lines() if "faults" in line], [["refuse"], ["twice"]])

    def test_a_client_that_has_sent_its_last_command_gets_its_answers(self):
        self.simulate()
        self.proxy()
        client = self.client()
        client.send("<cmd><xid>1</xid><download_clipids><DirectoryName></DirectoryName></download_clipids></cmd>"
                    "<cmd><xid>2</xid><sync /></cmd>")
        client.socket.shutdown(socket.SHUT_WR)
        messages = []
        while messages[-1:] != [None]:
            messages.append(client.message())
        self.assertEqual(messages[-2], "<reply><xid>2</xid><ok /></reply>")

    def call(self, method, path, body=None):
        connection = http.client.HTTPConnection(self.between, 9914, timeout=support.PATIENCE)
        try:
            connection.request(method, path, body and json.dumps(body))
            response = connection.getresponse()
            return response.status, json.loads(response.read())
        finally:
            connection.close()

    def test_it_is_steered(self):
        self.simulate()
        self.proxy("--control", self.between + ":9914")
        client = self.client()
        client.answer("<report_register><ReportType>alerts</ReportType></report_register>")
        self.assertEqual(self.call("POST", "/faults", {"fault": "refuse", "command": "play", "text": "No"}),
                         (200, {"ids": [1]}))
        self.assertIn("<ErrorMessage>No<", client.answer("<play><Channel>A</Channel></play>"))
        self.assertEqual(self.call("DELETE", "/faults"), (200, {"ok": True}))
        self.assertEqual(client.answer("<play><Channel>A</Channel></play>"), "<ok />")
        status, journal = self.call("GET", "/journal")
        self.assertEqual([(entry["command"], entry["faults"]) for entry in journal["entries"][1:]],
                         [("play", ["refuse"]), ("play", [])])
        self.assertIn("<ok />", journal["entries"][2]["answers"][0])
        status, clients = self.call("GET", "/clients")
        self.assertEqual([entry["client"] for entry in clients], [1])
        for path in ("/state", "/channels/A", "/clips", "/time"):
            self.assertEqual(self.call("GET", path), (409, {"error": "A proxy has no channels, clips or time of its own"}))
        self.assertEqual(self.call("GET", "/")[0], 404)
        self.assertEqual(self.call("DELETE", "/clients/1"), (200, {"ok": True}))
        self.assertIsNone(client.message())
        client = self.client()
        client.answer("<sync />")
        self.assertEqual(self.call("POST", "/reset"), (200, {"ok": True}))
        self.assertIsNone(client.message())
        self.assertEqual(self.call("GET", "/journal")[1]["entries"], [])

    def memory(self, process):
        with open("/proc/%d/statm" % process.process.pid) as file:
            return int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")

    def fill(self, sender, most=256 << 20):
        """Sends until nothing is taken any more; the number of bytes that were taken."""
        piece = (b"<report>" + b"x" * 8000 + b"</report>") * 8
        sender.settimeout(1)
        sent = 0
        try:
            while sent < most:
                sent += sender.send(piece)
        except socket.timeout:
            pass
        return sent

    def drain(self, receiver, size):
        receiver.settimeout(support.PATIENCE)
        while size > 0:
            size -= len(receiver.recv(1 << 20))
        self.assertEqual(size, 0)

    @unittest.skipIf("ASAN_OPTIONS" in os.environ, "a sanitizer keeps freed memory")
    def test_what_one_side_does_not_take_is_not_read_from_the_other(self):
        for options in ((), ("--control", self.between + ":9914")):
            with self.subTest(options=options), socket.create_server((self.server, 8913)) as listener:
                proxy = self.proxy(*options)
                client = socket.create_connection((self.between, 8913))
                server = listener.accept()[0]
                before = self.memory(proxy)
                for sender, receiver in ((server, client), (client, server)):
                    sent = self.fill(sender)
                    self.assertLess(sent, 256 << 20)
                    self.assertLess(self.memory(proxy) - before, 32 << 20)
                    if not options: # otherwise the rest of a message may be on its way
                        self.drain(receiver, sent)
                client.close()
                server.close()
                proxy.process.kill()
                proxy.process.communicate()

    def test_a_proxy_of_itself(self):
        status, said = Process("proxy", "--listen", self.between, "--server", self.between, "--trace", self.trace).end()
        self.assertEqual(status, 2)
        self.assertIn("the proxy cannot be its own server", said)

    def test_a_trace_that_cannot_be_written(self):
        process = Process("proxy", "--listen", self.between, "--server", self.server, "--trace", "/nowhere/trace")
        status, said = process.end()
        self.assertEqual(status, 1)
        self.assertIn("/nowhere/trace cannot be written", said)


class Replay(Traced):
    def record(self):
        simulator = support.Simulator()
        proxy = self.proxy()
        client = self.client()
        answers = [client.answer("<get_computer_name />"), client.answer("<fly />")]
        client.close()
        proxy.process.terminate()
        proxy.end()
        simulator.stop()
        return answers

    def test_the_same_again(self):
        answers = self.record()
        replay = self.replay()
        client = self.client()
        client.last_xid = 70
        self.assertEqual([client.answer("<get_computer_name />"), client.answer("<fly />")], answers)
        self.assertEqual(replay.end(), (0, ""))

    def test_a_client_that_departs(self):
        self.record()
        replay = self.replay()
        client = self.client()
        client.answer("<get_computer_name />")
        client.send("<cmd><xid>2</xid><swim /></cmd>")
        status, said = replay.end()
        self.assertEqual(status, 3)
        self.assertRegex(said, "connection 1, line 4: instead of <cmd><xid>2</xid><fly /></cmd> the client sends "
                               "<cmd><xid>2</xid><swim /></cmd>")

    def test_a_client_that_goes(self):
        self.record()
        replay = self.replay()
        self.client().close()
        status, said = replay.end()
        self.assertEqual(status, 3)
        self.assertIn("connection 1, line 2: instead of <cmd><xid>1</xid><get_computer_name /></cmd> the client disconnects",
                      said)

    def test_a_directory_is_no_file(self):
        folder = tempfile.gettempdir()
        status, said = Process("replay", folder, "--listen", self.between).end()
        self.assertEqual(status, 1)
        self.assertIn(folder + " cannot be read to its end", said)
        with self.assertRaisesRegex(RuntimeError, folder + " cannot be read to its end"):
            support.Simulator("--clips", folder)

    def test_a_file_that_is_no_trace(self):
        for content, complaint in (("{", "line 1: .*parse error"), ('{"connection": 1, "direction": "up"}', "no direction 'up'")):
            with open(self.trace, "w") as file:
                file.write(content)
            status, said = Process("replay", self.trace, "--listen", self.between).end()
            self.assertEqual(status, 1)
            self.assertTrue(re.search(complaint, said), said)
