"""Steering from outside: HTTP with JSON at the control address."""

import http.client
import json
import os
import re
import shlex
import socket
import time

import support

CONTROL_PORT = 9913


class Controlled(support.Case):
    """Each test has a server of its own, and a connection to its control address."""

    options = ()

    @classmethod
    def setUpClass(cls):
        pass

    @classmethod
    def tearDownClass(cls):
        pass

    def setUp(self):
        self.authority = "%s:%d" % (support.own_address(), CONTROL_PORT)
        self.simulator = support.Simulator("--control", self.authority, *self.options)
        self.addCleanup(self.end)

    def end(self):
        self.assertEqual(self.simulator.stop(), 0)

    def request(self, method, path, body=None, headers={}):
        """Status and text of the answer."""
        connection = http.client.HTTPConnection(self.simulator.address, CONTROL_PORT, timeout=support.PATIENCE)
        try:
            text = body if body is None or isinstance(body, (str, bytes)) else json.dumps(body)
            connection.request(method, path, text, {"Content-Type": "application/json", **headers})
            response = connection.getresponse()
            return response.status, response.read().decode()
        finally:
            connection.close()

    def call(self, method, path, body=None):
        """The JSON of an answer that is no error."""
        status, text = self.request(method, path, body)
        self.assertEqual(status, 200, text)
        return json.loads(text)

    def assertError(self, status, complaint, method, path, body=None, headers={}):
        answered, text = self.request(method, path, body, headers)
        self.assertEqual(answered, status, text)
        self.assertRegex(json.loads(text)["error"], complaint)

    def wait(self, good):
        end = time.monotonic() + support.PATIENCE
        while not good():
            self.assertLess(time.monotonic(), end, "it does not happen")
            time.sleep(0.01)


class State(Controlled):
    options = ("--name", "STUDIO 1", "--standard", "1080_50i", "--paused")

    def test_whole_state(self):
        state = self.call("GET", "/state")
        self.assertEqual(state["name"], "STUDIO 1")
        self.assertEqual(state["standard"], "1080_50i")
        self.assertEqual([channel["channel"] for channel in state["channels"]], list("ABCDEFGH"))
        self.assertEqual(state["channels"][0]["clip"], "BARS")
        self.assertEqual(state["time"]["paused"], True)
        self.assertEqual(state["clients"], [])
        self.assertEqual(state["faults"], [])
        self.assertEqual(state["lists"], {"playlists": [], "chases": []})

    def test_channel(self):
        channel = self.call("PUT", "/channels/B", {"clip": "BARS", "position": 20, "speed": 2})
        self.assertEqual((channel["clip"], channel["position"], channel["status"]), ("BARS", 20, "cueing"))
        self.call("POST", "/time/step", {"fields": 1})
        channel = self.call("GET", "/channels/B")
        self.assertEqual((channel["position"], channel["speed"], channel["status"]), (20, 2.0, "play"))
        self.call("POST", "/time/step", {"fields": 10})
        self.assertEqual(self.call("GET", "/channels/B")["position"], 40)
        self.assertEqual(self.call("PUT", "/channels/B", {"play": False})["status"], "stop")
        self.assertEqual(self.call("PUT", "/channels/B", {"clip": None})["source"], "nothing")

    def test_channel_refusals(self):
        self.assertError(404, "no channel 'I'", "GET", "/channels/I")
        self.assertError(409, "NOSUCH", "PUT", "/channels/A", {"clip": "NOSUCH"})
        self.assertError(400, "there is no member \"colour\"", "PUT", "/channels/A", {"colour": 1})
        self.assertError(400, "wrong kind of value", "PUT", "/channels/A", {"clip": 1})

    def test_clips(self):
        client = self.client()
        client.answer("<report_register><ReportType>clip_change</ReportType></report_register>")
        made = self.call("PUT", "/clips/PROMO", {"length": 250, "tracks": ["video"], "title": "A <title>",
                                                 "meta": {"Place": "Here"}, "read_only": True})
        self.assertEqual(made["Title"], "A <title>")
        self.assertEqual(client.wait_report(lambda report: "PROMO" in report),
                         "<clip_created><ClipID>PROMO</ClipID></clip_created>")
        self.assertIn("PROMO", self.call("GET", "/clips"))
        self.assertEqual(self.call("GET", "/clips?after=PROLOGUE&limit=1"), ["PROMO"])
        self.assertEqual(self.call("GET", "/clips/PROMO"), made)
        self.call("DELETE", "/clips/PROMO")
        self.assertError(404, "no clip 'PROMO'", "GET", "/clips/PROMO")
        self.assertError(404, "no clip 'PROMO'", "DELETE", "/clips/PROMO")
        self.assertError(409, "is loaded on channel A", "DELETE", "/clips/BARS")
        self.assertError(400, "unknown attribute 'colour'", "PUT", "/clips/PROMO", {"colour": "red"})

    def test_commands(self):
        answers = self.call("POST", "/commands", [{"get_computer_name": {}},
                                                  {"gang_play": {"ChannelSet": ["A", "B"], "Speed": "0.5X"}},
                                                  {"play": {"Channel": "L"}}])["answers"]
        self.assertEqual(answers[0], [{"computername": {"ComputerName": "STUDIO 1"}}])
        self.assertEqual(answers[1], [{"ok": ""}])
        self.assertEqual(answers[2][0]["error"]["ErrorCode"], "general")
        self.call("POST", "/time/step", {"fields": 1})
        self.assertEqual(self.call("GET", "/channels/A")["speed"], 0.5)
        self.assertError(400, "no command 'fly'", "POST", "/commands", {"fly": {}})
        self.assertError(400, "play has no Colour", "POST", "/commands", {"play": {"Colour": "red"}})

    def test_a_pushed_value_is_present_from_then_on(self):
        first = self.client()
        register = "<report_register><ReportType>%s</ReportType></report_register>"
        first.answer(register % "temperature")
        self.call("POST", "/reports", {"kind": "temperature", "body": {"temperature": {"Temperature10": 780}}})
        hot = "<temperature>\r\n<Temperature10>780</Temperature10>\r\n</temperature>"
        first.wait_report(lambda report: report == hot)
        second = self.client()
        second.answer(register % "temperature")
        self.assertEqual(second.settled_reports(), [hot])

    def test_reports_that_only_a_server_would_send(self):
        client = self.client()
        client.answer("<reports_register><ReportSet>%s</ReportSet></reports_register>" %
                      "".join("<ReportType>%s</ReportType>" % kind
                              for kind in ("alerts", "disk_space", "ltc_input", "config_change")))
        client.settled_reports()
        for kind, body in (
                ("alerts", {"alert": {"Alert": {"AlertingPriority": "malfunction", "AlertingLevel": "error",
                                                "AlertName": "fan 2", "AlertNameDescription": "Fan",
                                                "AlertValueDescription": "<stopped>"}}}),
                ("disk_space", {"disk_space_changed": {"DiskSpaceChange": {"TotalDiskSpace": 10,
                                                                           "AvailableDiskSpace": 1}}}),
                ("ltc_input", {"ltc_timecode": {"Timecode": {"Valid": True, "VideoStandard": "1080_50i",
                                                             "FieldNumber": 90000, "DropFrameFlag": "ndf"}}}),
                ("config_change", {"config_changed": {"ConfigurationChange": "ReferenceSource"}})):
            self.call("POST", "/reports", {"kind": kind, "body": body})
            name = next(iter(body))
            client.wait_report(lambda report: report.startswith("<%s>" % name))
        self.assertError(400, "no kind of report 'gossip'", "POST", "/reports", {"kind": "gossip", "body": {"a": {}}})
        self.assertError(400, "not a valid name of an element", "POST", "/reports", {"kind": "alerts", "body": {"<a>": {}}})

    def test_report_of_a_channel_and_to_everyone(self):
        client, other = self.client(), self.client()
        client.answer("<channel_report_register><Channel>C</Channel><ChannelReportType>speed</ChannelReportType>"
                      "</channel_report_register>")
        other.answer("<sync />")
        client.settled_reports()
        self.call("POST", "/reports", {"channel": "C", "kind": "speed",
                                       "body": {"channel_speed": {"Channel": "C", "Speed": "9X"}}})
        self.assertIn("9X", client.wait_report(lambda report: True))
        self.assertEqual(other.settled_reports(), [])
        self.call("POST", "/reports", {"everyone": True, "body": {"surprise": {}}})
        self.assertEqual(other.settled_reports(), ["<surprise />"])

    def test_numbers_that_are_none(self):
        for position in (1e300, -1, 4294967296, 0.5, "1"):
            self.assertError(400, "\"position\" is not a whole number from 0 to 4294967295", "PUT", "/channels/A",
                             {"position": position})
        for fields in (1e300, 4294967297, 1000001, 1.5):
            self.assertError(400, "\"fields\" is not a whole number from 0 to 1000000", "POST", "/time/step",
                             {"fields": fields})
        self.assertError(400, "at least one field", "POST", "/time/step", {"fields": 0})

    def test_a_command_that_is_nested_deep(self):
        client = support.Client(self.simulator.address)
        self.addCleanup(client.close)
        try:
            client.send("<cmd><xid>1</xid>" + "<a>" * 500000 + "</a>" * 500000 + "</cmd>")
            self.assertIsNone(client.message())
        except ConnectionError:
            pass  # it was closed before it had read everything
        self.assertEqual(self.client().answer("<sync />"), "<ok />")

    def test_reports_are_kept(self):
        client = support.Client(self.simulator.address)
        self.addCleanup(client.close)
        for kind in ("status", "timecode"):
            client.answer("<channel_report_register><Channel>A</Channel><ChannelReportType>%s</ChannelReportType>"
                          "</channel_report_register>" % kind)
        mark = self.call("GET", "/reports")["mark"]
        self.call("PUT", "/channels/A", {"play": True})
        self.call("POST", "/time/step", {"fields": 10})
        kept = self.call("GET", "/reports?since=%d" % mark)
        self.assertEqual([(entry["client"], entry["report"]["report"]["channel_status"]["ChannelStatus"])
                          for entry in kept["entries"]], [(1, "play")])
        self.assertEqual(kept["mark"], mark + 1)
        self.assertEqual(kept["entries"][0]["text"], "<report><channel_status><Channel>A</Channel><ChannelStatus>play"
                         "</ChannelStatus><ClipID>BARS</ClipID></channel_status></report>")
        self.call("POST", "/reset")
        self.assertEqual(self.call("GET", "/reports"), {"mark": mark + 1, "entries": []})

    def test_reset(self):
        client = self.client()
        client.answer("<delete_clip><ClipID>PROLOGUE</ClipID></delete_clip>")
        before = self.call("GET", "/clips")
        self.call("PUT", "/clips/EXTRA", {"length": 10})
        self.call("POST", "/faults", {"fault": "refuse", "command": "play"})
        self.call("POST", "/reset")
        self.assertIsNone(client.message())
        self.assertNotIn("EXTRA", self.call("GET", "/clips"))
        self.assertEqual(self.call("GET", "/faults"), [])
        self.assertEqual(self.client().answer("<sync />"), "<ok />")
        self.assertEqual(len(before), len(self.call("GET", "/clips")))


class LongAnswers(Controlled):
    options = ("--generate", "100000")

    def test_they_are_refused(self):
        self.assertError(400, "the answers are too long", "POST", "/commands", [{"download_clipids": {}}] * 1000)
        self.assertEqual(self.call("POST", "/commands", {"sync": {}}), {"answers": [{"ok": ""}]})


class Clients(Controlled):
    def test_journal(self):
        client = self.client()
        client.answer("<sync />")
        mark = self.call("GET", "/journal")["mark"]
        client.answer("<play><Channel>A</Channel><Speed>2X</Speed></play>")
        client.answer("<fly />")
        journal = self.call("GET", "/journal?since=%d" % mark)
        self.assertEqual(journal["mark"], mark + 2)
        play, fly = journal["entries"]
        self.assertEqual((play["client"], play["xid"], play["command"], play["arguments"]),
                         (1, "2", "play", {"Channel": "A", "Speed": "2X"}))
        self.assertEqual(play["text"], "<cmd><xid>2</xid><play><Channel>A</Channel><Speed>2X</Speed></play></cmd>")
        self.assertEqual(play["answers"], ["<reply><xid>2</xid><ok /></reply>"])
        self.assertIn("Unknown command", fly["answers"][0])

    def test_journal_is_bounded(self):
        client = self.client()
        client.send("".join("<cmd><xid>%d</xid><sync /></cmd>" % xid for xid in range(1, 10102)))
        self.wait(lambda: self.call("GET", "/journal?limit=0")["mark"] == 10101)
        entries = self.call("GET", "/journal?limit=1")["entries"]
        self.assertEqual(entries[0]["mark"], 102)

    def test_list_and_close(self):
        stays, goes = self.client(), self.client()
        stays.answer("<report_register><ReportType>alerts</ReportType></report_register>")
        goes.answer("<sync />")
        listed = self.call("GET", "/clients")
        self.assertEqual([entry["client"] for entry in listed], [1, 2])
        self.assertEqual(listed[0]["reports"], ["alerts"])
        self.call("DELETE", "/clients/2")
        self.assertIsNone(goes.message())
        self.assertEqual(stays.answer("<sync />"), "<ok />")
        self.assertError(404, "no client 2", "DELETE", "/clients/2")
        self.call("DELETE", "/clients/1?how=reset")
        with self.assertRaises(ConnectionResetError):
            stays.message()

    def test_bytes_as_they_are(self):
        client = self.client()
        client.answer("<sync />")
        self.call("POST", "/clients/1", b"<report>\xff")
        self.assertEqual(client.socket.recv(100), b"<report>\xff")

    def test_faults(self):
        client = self.client()
        ids = self.call("POST", "/faults", [{"fault": "refuse", "command": "play", "text": "No"},
                                            {"fault": "refuse", "command": "stop"}])["ids"]
        self.assertIn("<ErrorMessage>No<", client.answer("<play><Channel>A</Channel></play>"))
        listed = self.call("GET", "/faults")
        self.assertEqual([(rule["id"], rule["fault"], rule["command"], rule["applied"]) for rule in listed],
                         [(ids[0], "refuse", "play", 1), (ids[1], "refuse", "stop", 0)])
        self.assertEqual(self.call("GET", "/journal")["entries"][-1]["faults"], ["refuse"])
        self.call("DELETE", "/faults/%d" % ids[0])
        self.assertEqual(client.answer("<play><Channel>A</Channel></play>"), "<ok />")
        self.call("DELETE", "/faults")
        self.assertEqual(client.answer("<stop><Channel>A</Channel></stop>"), "<ok />")
        self.assertError(404, "no fault 1", "DELETE", "/faults/1")
        self.assertError(400, "fault 1: member \"chance\"", "POST", "/faults",
                         {"fault": "refuse", "command": "play", "chance": 2})

    def test_freeze_and_thaw(self):
        client = self.client()
        client.answer("<sync />")
        thing = self.call("POST", "/faults", {"fault": "freeze"})["ids"][0]
        client.send("<cmd><xid>2</xid><sync /></cmd>")
        self.assertEqual(len(self.call("GET", "/clients")), 1)
        client.socket.setblocking(False)
        with self.assertRaises(BlockingIOError):
            client.socket.recv(1)
        client.socket.settimeout(support.PATIENCE)
        self.call("DELETE", "/faults/%d" % thing)
        self.assertEqual(client.message(), "<reply><xid>2</xid><ok /></reply>")


class Door(Controlled):
    def test_foreign_pages_and_names(self):
        self.assertError(403, "Host", "GET", "/state", headers={"Host": "evil.example:9913"})
        self.assertError(403, "Host", "GET", "/state", headers={"Host": self.simulator.address})
        self.assertError(403, "other origins", "GET", "/state", headers={"Origin": "http://evil.example"})
        self.assertError(403, "other origins", "POST", "/reset", headers={"Origin": "null"})
        self.assertEqual(self.request("GET", "/state", headers={"Origin": "http://" + self.authority})[0], 200)
        self.assertEqual(self.request("GET", "/state", headers={"Host": "localhost:9913"})[0], 200)

    def test_bounds(self):
        self.assertEqual(self.request("POST", "/commands", "x" * (1 << 20 | 1))[0], 413)
        self.assertError(400, "nested too deep", "POST", "/faults", "[" * 500000)
        self.assertError(400, "parse error", "POST", "/faults", "{")
        self.assertError(404, "no GET /nothing", "GET", "/nothing")
        self.assertError(404, "no server 127.9.9.9", "GET", "/state?server=127.9.9.9")
        self.assertEqual(self.call("GET", "/state")["clients"], [])

    def test_many_connections_that_say_nothing(self):
        sockets = [socket.create_connection((self.simulator.address, CONTROL_PORT)) for _ in range(200)]
        for connection in sockets:
            connection.close()
        self.assertEqual(self.call("GET", "/clients"), [])

    def test_the_page_lists_a_hundred_clients_and_counts_all(self):
        clients = [self.client() for _ in range(150)]
        clients[-1].answer("<sync />")
        page = self.listen_to_events()
        held = b""
        while b"\n\n" not in held:
            held += page.recv(65536)
        state = json.loads(re.search(rb"data: (.*)", held).group(1))
        self.assertEqual((state["client_count"], len(state["clients"])), (150, 100))
        self.assertEqual(len(self.call("GET", "/state")["clients"]), 150)

    def listen_to_events(self):
        connection = socket.create_connection((self.simulator.address, CONTROL_PORT), timeout=support.PATIENCE)
        self.addCleanup(connection.close)
        connection.sendall(b"GET /events HTTP/1.1\r\nHost: %s\r\n\r\n" % self.authority.encode())
        return connection

    def test_eight_pages_can_listen(self):
        pages = [self.listen_to_events() for _ in range(8)]
        for page in pages:
            self.assertTrue(page.recv(65536).startswith(b"HTTP/1.1 200 "))
        self.assertError(503, "too many pages are open", "GET", "/events")
        self.assertEqual(self.call("GET", "/clients"), [])
        pages[0].close()

        def is_free():
            page = self.listen_to_events()
            return page.recv(65536).startswith(b"HTTP/1.1 200 ")
        self.wait(is_free)
        self.assertError(503, "too many pages are open", "GET", "/events")

    def test_events(self):
        connection = self.listen_to_events()
        self.client().answer("<play><Channel>D</Channel><Speed>3X</Speed></play>")
        held = b""
        while b'"speed":3.0' not in held:
            data = connection.recv(65536)
            self.assertTrue(data)
            held = held[-65536:] + data


class Token(Controlled):
    options = ("--control-token", "open sesame")

    def test_nothing_without_it(self):
        self.assertError(401, "token", "GET", "/state")
        self.assertError(401, "token", "GET", "/state", headers={"Authorization": "Bearer open"})
        self.assertEqual(self.request("GET", "/state", headers={"Authorization": "Bearer open sesame"})[0], 200)
        self.assertEqual(self.request("GET", "/state?token=open%20sesame")[0], 200)

    def test_off_loopback_it_is_needed(self):
        with self.assertRaises(RuntimeError):
            support.Simulator("--control", "0.0.0.0:9913")
        with self.assertRaises(RuntimeError):
            support.Simulator("--control", "127.0.0.1")
        with self.assertRaises(RuntimeError):
            support.Simulator("--control", "127.0.0.1:0")


class Document(Controlled):
    """The commands in the document do what it says."""

    def test_every_curl_line(self):
        here = os.path.dirname(os.path.abspath(__file__))
        with open(os.path.join(here, "..", "..", "doc", "simulator.md")) as file:
            lines = [line for line in file if line.startswith("curl ")]
        self.assertGreater(len(lines), 25)
        clients = [self.client(), self.client()]
        for client in clients:
            client.answer("<sync />")
        for line in lines:
            with self.subTest(line=line):
                self.type(shlex.split(line)[1:])

    def type(self, words):
        method, body, url = None, None, words.pop()
        while words:
            option = words.pop(0)
            if option == "-X":
                method = words.pop(0)
            elif option in ("-d", "--json", "--data-binary"):
                body = words.pop(0)
            elif option in ("-H", "--max-time"):
                words.pop(0)
            else:
                self.assertEqual(option, "-N")
        path = url[len("http://127.0.0.1:9913"):]
        if path == "/events":
            return
        status, text = self.request(method or ("GET" if body is None else "POST"), path, body)
        self.assertEqual(status, 200, text)


class Repetition(Controlled):
    """With a seed, a start, and time that passes by command only, two runs give the same answers."""

    options = ("--seed", "5", "--start", "2026-01-31T12:00:00Z", "--paused", "--standard", "1080_50i")

    def run_once(self):
        client = self.client()
        client.answer("<channel_reports_register><ChannelSet><Channel>A</Channel></ChannelSet><ChannelReportSet>"
                      "<ChannelReportType>timecode</ChannelReportType><ChannelReportType>status</ChannelReportType>"
                      "</ChannelReportSet></channel_reports_register>")
        told = client.settled_reports()
        self.call("POST", "/faults", {"fault": "refuse", "command": "sync", "chance": 0.5})
        for _ in range(20):
            told += client.ask("<sync />")
        self.call("DELETE", "/faults")
        told += client.ask("<create_clip><ClipID>NEW</ClipID><TrackSet><TrackType>video</TrackType></TrackSet></create_clip>")
        told += client.ask("<play><Channel>A</Channel></play>")
        self.call("POST", "/time/step", {"fields": 75})
        told += client.ask("<get_clip_info><ClipID>NEW</ClipID></get_clip_info>")
        told += client.ask("<get_clip_info><ClipID>BARS</ClipID></get_clip_info>")
        told += client.settled_reports()
        client.close()
        return told

    def test_two_runs_are_alike(self):
        first = self.run_once()
        self.assertTrue(any("<PlayedStamp>" in text or "Stamp" in text for text in first))
        self.simulator.stop()
        self.simulator = support.Simulator("--control", self.authority, *self.options)
        self.assertEqual(self.run_once(), first)

    def test_time_goes_by_as_fast_as_asked_for(self):
        self.call("PUT", "/channels/A", {"play": True})
        self.call("PUT", "/time", {"paused": False, "rate": 100})
        self.wait(lambda: self.call("GET", "/time")["field"] > 3000)
        self.call("PUT", "/time", {"paused": True})
        field = self.call("GET", "/time")["field"]
        self.assertEqual(self.call("POST", "/time/step", {"fields": 7})["field"], field + 7)
        self.assertError(400, "at least one field", "POST", "/time/step", {"fields": 0})
        self.assertError(400, "the rate must be from", "PUT", "/time", {"rate": 0})
