"""No message is longer than 32768 bytes, whatever clients set, ask or send."""

import unittest

import support
from support import tag

LIMIT = 32768
VIDEO = "<TrackSet><TrackType>video</TrackType></TrackSet>"


class Sizes(support.Case):
    arguments = ("--quiet",)

    def setUp(self):
        self.c = self.client()
        message = self.c.message

        def checked():
            text = message()
            if text is not None:
                self.assertLessEqual(len(text.encode()), LIMIT, text[:200])
            return text

        self.c.message = checked

    def ok(self, body):
        self.assertEqual(self.c.answer(body), "<ok />")

    def too_long(self, body):
        self.assertRegex(self.c.answer(body), "^<error><ErrorMessage>[^<]* would be longer than a message may be: ")

    def settle(self):
        self.c.ask("<sync />")

    def test_pairs_of_a_clip(self):
        def modify(pairs):
            return ("<modify_clip_attributes><ClipID>BARS</ClipID><ClipAttrChange><MetadataList>%s</MetadataList>"
                    "</ClipAttrChange></modify_clip_attributes>" % pairs)

        def pair(number):
            return "<Metadata><Key>key%d</Key><Value>%s</Value></Metadata>" % (number, "v" * 100)

        before = self.c.answer("<get_clip_info><ClipID>BARS</ClipID></get_clip_info>")
        self.too_long(modify("".join(pair(number) for number in range(300))))
        self.assertEqual(self.c.answer("<get_clip_info><ClipID>BARS</ClipID></get_clip_info>"), before)
        self.assertIn("1000 pairs", self.c.answer(modify("".join(pair(number) for number in range(1001)))))
        kept = 0
        while self.c.answer(modify(pair(kept))) == "<ok />":
            kept += 1
        self.assertGreater(kept, 150)
        self.assertIn("key%d<" % (kept - 1), self.c.answer("<get_clip_info><ClipID>BARS</ClipID></get_clip_info>"))
        self.too_long("<create_child_clip><ClipID>%s</ClipID><ParentClipID>BARS</ParentClipID></create_child_clip>"
                      % ("x" * 10000))
        self.too_long("<rename_clip><FromID>BARS</FromID><ToID>%s</ToID></rename_clip>" % ("x" * 10000))

    def test_texts_of_a_clip(self):
        for name in ("Title", "Creator", "Project", "ID8"):
            self.too_long("<modify_clip_attributes><ClipID>COUNTDOWN</ClipID><ClipAttrChange><%s>%s</%s>"
                          "</ClipAttrChange></modify_clip_attributes>" % (name, "&amp;" * 7000, name))

    def test_names(self):
        name = "n" * 33000
        self.too_long("<create_clip><ClipID>%s</ClipID>%s</create_clip>" % (name, VIDEO))
        self.too_long("<create_directory><DirectoryName>%s</DirectoryName></create_directory>" % name)
        self.too_long("<rename_dir><FromDir>NEWS</FromDir><ToDir>%s</ToDir></rename_dir>" % name)
        self.too_long("<clip_exists><ClipID>%s</ClipID></clip_exists>" % name)
        self.too_long("<vclip_create><VClipID>%s</VClipID><ClipLength>5</ClipLength></vclip_create>" % name)
        for kind, tag_name in (("list", "List"), ("chase", "Chase")):
            self.too_long("<%s_save_start><%sID>%s</%sID></%s_save_start>" % (kind, tag_name, name, tag_name, kind))
        self.ok("<list_save_start><ListID>S</ListID></list_save_start>")
        self.ok("<list_save_end />")
        self.too_long("<list_rename><ListFromID>S</ListFromID><ListToID>%s</ListToID></list_rename>" % name)
        for command in ("clipids", "directory_names", "listids", "chaseids"):
            self.assertEqual(self.c.ask("<download_%s />" % command)[-1], "<ok />")

    def test_the_longest_names_work(self):
        self.c.ask("<channel_reports_register><ChannelSet><Channel>A</Channel></ChannelSet><ChannelReportSet>" +
                   "".join("<ChannelReportType>%s</ChannelReportType>" % kind
                           for kind in ("status", "clipid", "info", "listplay")) +
                   "</ChannelReportSet></channel_reports_register>")
        name = "&apos;" * 2666  # 15996 bytes
        self.ok("<create_clip><ClipID>%s</ClipID>%s<ClipLength>50</ClipLength><Channel>A</Channel></create_clip>"
                % (name, VIDEO))
        self.settle()
        self.assertIn(name, "".join(self.c.ask("<download_clipids />")))
        self.assertIn(name, self.c.answer("<get_clip_info><ClipID>%s</ClipID></get_clip_info>" % name))
        self.ok("<vclip_create><VClipID>%s</VClipID><ClipLength>50</ClipLength></vclip_create>" % name)
        self.ok("<vclip_modification_start><VClipID>%s</VClipID></vclip_modification_start>" % name)
        self.ok("<vclip_add_segment><VClipID>%s</VClipID><ClipID>%s</ClipID><ClipPosition>0</ClipPosition>%s"
                "<VClipPosition>0</VClipPosition><ClipLength>10</ClipLength></vclip_add_segment>" % (name, name, VIDEO))
        rows = self.c.ask("<get_volatile_file_info><ClipID>%s</ClipID></get_volatile_file_info>" % name)
        self.assertEqual(len(rows), 2)
        self.assertIn(name, rows[0])
        self.assertIn("is loaded on", self.c.answer("<delete_clip><ClipID>%s</ClipID></delete_clip>" % name))
        self.ok("<unload><Channel>A</Channel></unload>")
        self.ok("<delete_clip><ClipID>%s</ClipID></delete_clip>" % name)

    def test_items_of_lists(self):
        item = ("<ListElement><ContentID><ClipID>%s</ClipID><VClipID>%s</VClipID></ContentID></ListElement>")
        self.ok("<list_save_start><ListID>ITEMS</ListID></list_save_start>")
        self.too_long("<list_save_element>" + item % ("c" * 16000, "v" * 17000) + "</list_save_element>")
        self.ok("<list_save_element>" + item % ("c" * 15000, "v" * 16000) + "</list_save_element>")
        self.ok("<list_save_end />")
        self.assertEqual(len(self.c.ask("<download_list><ListID>ITEMS</ListID></download_list>")), 2)
        self.c.ask("<channel_report_register><Channel>B</Channel><ChannelReportType>listplay</ChannelReportType>"
                   "</channel_report_register>")
        self.ok("<list_load><Channel>B</Channel><ListID>ITEMS</ListID></list_load>")
        self.too_long("<list_insert><Channel>B</Channel><ListIndex>0</ListIndex>" + item % ("c", "v" * 40000) +
                      "</list_insert>")
        self.settle()

    def test_segments_are_split(self):
        self.ok("<vclip_create><VClipID>SEGMENTS</VClipID><ClipLength>2000</ClipLength></vclip_create>")
        self.ok("<vclip_modification_start><VClipID>SEGMENTS</VClipID></vclip_modification_start>")
        for number in range(1000):
            self.ok("<vclip_add_segment><VClipID>SEGMENTS</VClipID><ClipID>BARS</ClipID><ClipPosition>%d"
                    "</ClipPosition>%s<VClipPosition>%d</VClipPosition><ClipLength>1</ClipLength></vclip_add_segment>"
                    % (number, VIDEO, number * 2))
        rows = self.c.ask("<get_volatile_file_info><ClipID>SEGMENTS</ClipID></get_volatile_file_info>")
        self.assertGreater(len(rows), 2)
        self.assertEqual(sum(row.count("<Key>") for row in rows), 1000)
        self.assertEqual(rows[-1], "<ok />")

    def test_a_virtual_clip_without_segments(self):
        self.ok("<vclip_create><VClipID>EMPTY</VClipID><ClipLength>20</ClipLength></vclip_create>")
        self.assertEqual(self.c.ask("<get_volatile_file_info><ClipID>EMPTY</ClipID></get_volatile_file_info>"),
                         ["<volatile_file_info><KeyList></KeyList></volatile_file_info>", "<ok />"])

    def test_entries_of_the_dictionary(self):
        entry = "<Key>long</Key><Value>%s</Value>"
        self.ok("<userdict_watch><Key>long</Key></userdict_watch>")
        self.too_long("<userdict_set>" + entry % ("v" * 33000) + "</userdict_set>")
        self.too_long("<userdict_own>" + entry % ("&lt;" * 9000) + "</userdict_own>")
        self.ok("<userdict_set>" + entry % ("v" * 32000) + "</userdict_set>")
        report = self.c.wait_report(lambda text: text.startswith("<userdict_change>"))
        self.assertEqual(len(tag(report, "Value")), 32000)

    def test_metadata(self):
        pair = "<Metadata><Key>%s</Key><Value>%s</Value></Metadata>"
        change = "<metadata_set><MetadataDatabase>db</MetadataDatabase><MetadataList>%s</MetadataList></metadata_set>"
        self.ok("<watch_metadata_database><MetadataDatabase>db</MetadataDatabase></watch_metadata_database>")
        self.assertIn("too long", self.c.answer(change % (pair % ("k", "v" * 32700))))
        self.ok(change % "".join(pair % ("k%d" % number, "v" * 20000) for number in range(3)))
        self.settle()
        self.assertEqual(len(self.c.ask("<download_metadata><MetadataDatabase>db</MetadataDatabase>"
                                        "</download_metadata>")), 4)

    def test_configuration(self):
        setting = "<set_configuration><ConfigurationItemName>OperatorMessage</ConfigurationItemName>" \
                  "<ConfigurationItemValue>%s</ConfigurationItemValue></set_configuration>"
        self.ok("<report_register><ReportType>config_change</ReportType></report_register>")
        self.too_long(setting % ("v" * 11000))
        self.ok(setting % ("v" * 10000))
        self.settle()
        self.assertEqual(self.c.ask("<get_configuration />")[-1], "<ok />")

    def test_texts_echoed_in_errors(self):
        long = "&apos;" * 20000
        for body in ("<fly%s />" % ("x" * 40000), "<get_clip_info><ClipID>%s</ClipID></get_clip_info>" % long,
                     "<play><Channel>%s</Channel></play>" % long, "<list_load><Channel>A</Channel><ListID>%s</ListID>"
                     "</list_load>" % long, "<userdict_erase><Key>%s</Key></userdict_erase>" % long,
                     "<get_one_configuration><ConfigurationItemName>%s</ConfigurationItemName></get_one_configuration>"
                     % ("é" * 40000)):
            self.assertIn(self.c.answer(body)[:6], ("<error", "<ok />"), body[:50])
        text = tag(self.c.answer("<get_clip_info><ClipID>x%s</ClipID></get_clip_info>" % ("é" * 40000)), "ErrorMessage")
        self.assertIn("é...é", text)
        self.assertTrue(text.endswith("é&apos; does not exist"), text[-30:])

    def test_identifiers(self):
        self.c.send("<cmd><xid>%s</xid><sync /></cmd>" % ("&lt;" * 50))
        self.assertEqual(self.c.message(), "<reply><xid>%s</xid><ok /></reply>" % ("&lt;" * 50))
        self.c.send("<cmd><xid>%s</xid><sync /></cmd>" % ("x" * 33000))
        self.assertIsNone(self.c.message())

    def test_lists_have_as_many_items_as_there_are_indices(self):
        client = self.client()
        client.answer("<chase_save_start><ChaseID>C</ChaseID></chase_save_start>")
        item = "<cmd><xid>i</xid><chase_save_element><ChaseElement><ContentID></ContentID></ChaseElement>" \
               "</chase_save_element></cmd>"
        for _ in range(64):
            client.send(item * 1024)
            for _ in range(1024):
                self.assertEqual(client.message(), "<reply><xid>i</xid><ok /></reply>")
        client.send(item)
        self.assertIn("A list has 65536 items at most", client.message())


class Start(unittest.TestCase):
    def test_a_name_of_the_server_that_is_too_long(self):
        with self.assertRaisesRegex(RuntimeError, "The configuration item ComputerName would be longer"):
            support.Simulator("--name", "x" * 12000)
