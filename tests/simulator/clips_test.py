"""The clip store: attributes, names, directories, changes reported to everyone, and what is kept in a file."""

import os
import re
import tempfile
import unittest

import support
from support import tag

VIDEO = "<TrackSet><TrackType>video</TrackType><TrackType>audio</TrackType></TrackSet>"


class Clips(support.Case):
    def create(self, client, clip, extra="<ClipLength>100</ClipLength>"):
        self.assertEqual(client.answer("<create_clip><ClipID>%s</ClipID>%s%s</create_clip>" % (clip, VIDEO, extra)),
                         "<ok />")

    def info(self, client, clip):
        return client.answer("<get_clip_info><ClipID>%s</ClipID></get_clip_info>" % clip)

    def modify(self, client, clip, change):
        return client.answer("<modify_clip_attributes><ClipID>%s</ClipID><ClipAttrChange>%s</ClipAttrChange>"
                             "</modify_clip_attributes>" % (clip, change))

    def test_the_whole_record(self):
        client = self.client()
        info = self.info(client, "NEWS/OPENER")
        info = re.sub("<(ClipUUID|MetaEditStamp|ContentEditStamp)>[0-9a-f-]*</", r"<\1>*</", info)
        self.assertEqual(info, (
            "<clipinfo><ClipInfo><ClipID>NEWS/OPENER</ClipID><VideoStandard>1080_59_94i</VideoStandard>"
            "<TrackInfoVector><TrackInfo><TrackType>video</TrackType></TrackInfo><TrackInfo><TrackType>key</TrackType>"
            "</TrackInfo><TrackInfo><TrackType>audio</TrackType></TrackInfo><TrackInfo><TrackType>timecode</TrackType>"
            "</TrackInfo></TrackInfoVector><Title>The opener</Title><Creator /><Project>News</Project>"
            "<Playback>auto</Playback><Interp>auto</Interp><Loop>off</Loop><LoopOut>1799</LoopOut><LoopIn>0</LoopIn>"
            "<ClipLength>1800</ClipLength><TimecodeSource>striped</TimecodeSource><StripeTimecode><Valid>true</Valid>"
            "<VideoStandard>1080_59_94i</VideoStandard><FieldNumber>216000</FieldNumber><DropFrameFlag>ndf"
            "</DropFrameFlag></StripeTimecode><ReadOnly>false</ReadOnly><ID8 /><ReadOnlyMeta>false</ReadOnlyMeta>"
            "<ReadOnlyContent>false</ReadOnlyContent><MetadataList><Metadata><Key>desk</Key><Value>foreign</Value>"
            "</Metadata><Metadata><Key>cleared</Key><Value>yes</Value></Metadata></MetadataList>"
            "<SpecialClipType>normal</SpecialClipType><ISOCount>1</ISOCount><SSMSpeed>1</SSMSpeed>"
            "<CompressionBitrate>100</CompressionBitrate><TrimStart>0</TrimStart><TrimEnd>0</TrimEnd>"
            "<ClipLengthUntrimmed>1800</ClipLengthUntrimmed><CompressionType>avci</CompressionType>"
            "<ClipUUID>*</ClipUUID><Angle>0</Angle><LoadedStamp>0</LoadedStamp><UnloadedStamp>0</UnloadedStamp>"
            "<PlayedStamp>0</PlayedStamp><MetaEditStamp>*</MetaEditStamp><ContentEditStamp>*</ContentEditStamp>"
            "<ClipFileType>simulated</ClipFileType></ClipInfo></clipinfo>"))

    def test_attributes_change(self):
        client = self.client()
        self.create(client, "ATTR")
        self.assertEqual(self.modify(client, "ATTR", "<ID8>EIGHT</ID8><Title>ä &amp; b</Title><Creator>c</Creator>"
                                     "<Project> p </Project><Playback>f12</Playback><Interp>off</Interp>"
                                     "<Loop>pingpong</Loop><LoopOut>90</LoopOut><LoopIn>10</LoopIn>"
                                     "<TimecodeSource>rectc</TimecodeSource><TrimStart>4</TrimStart>"
                                     "<TrimEnd>6</TrimEnd><TrackAttrVector><TrackAttr><TrackType>audio</TrackType>"
                                     "<TrimStart>2</TrimStart></TrackAttr></TrackAttrVector><Frame0Timecode>"
                                     "<FieldNumber>-9</FieldNumber><DropFrameFlag>df</DropFrameFlag>"
                                     "</Frame0Timecode>"), "<ok />")
        info = self.info(client, "ATTR")
        for part in ("<ID8>EIGHT</ID8>", "<Title>ä &amp; b</Title>", "<Creator>c</Creator>", "<Project> p </Project>",
                     "<Playback>f12</Playback><Interp>off</Interp><Loop>pingpong</Loop><LoopOut>90</LoopOut>"
                     "<LoopIn>10</LoopIn><ClipLength>90</ClipLength><TimecodeSource>rectc</TimecodeSource>",
                     "<StripeTimecode><Valid>false</Valid></StripeTimecode>",
                     "<TrackInfo><TrackType>audio</TrackType><TrimStart>2</TrimStart></TrackInfo>",
                     "<Frame0Timecode><FieldNumber>-9</FieldNumber><DropFrameFlag>df</DropFrameFlag></Frame0Timecode>"
                     "<TrimStart>4</TrimStart><TrimEnd>6</TrimEnd><ClipLengthUntrimmed>100</ClipLengthUntrimmed>"):
            self.assertIn(part, info)
        self.assertEqual(self.modify(client, "ATTR", "<TrimStart>95</TrimStart>"),
                         "<error><ErrorMessage>Trimming 95 and 6 fields leaves nothing of clip &apos;ATTR&apos;, which "
                         "has 100</ErrorMessage><ErrorCode>general</ErrorCode></error>")
        self.assertIn("<TrimStart>4</TrimStart>", self.info(client, "ATTR"))

    def test_pairs_keep_their_places(self):
        client = self.client()
        self.create(client, "PAIRS")
        pair = "<Metadata><Key>%s</Key><Value>%s</Value></Metadata>"
        self.modify(client, "PAIRS", "<MetadataList>" + pair % ("b", "1") + pair % ("a", "2") + "</MetadataList>")
        self.modify(client, "PAIRS", "<MetadataList>" + pair % ("b", "3") + pair % ("c", "") + "</MetadataList>"
                    "<KeyList><Key>a</Key><Key>unknown</Key></KeyList>")
        self.assertIn("<MetadataList><Metadata><Key>b</Key><Value>3</Value></Metadata><Metadata><Key>c</Key><Value />"
                      "</Metadata></MetadataList>", self.info(client, "PAIRS"))
        self.modify(client, "PAIRS", "<KeyList><Key>b</Key><Key>c</Key></KeyList>")
        self.assertNotIn("MetadataList", self.info(client, "PAIRS"))

    def test_everyone_registered_hears_of_changes(self):
        actor, one, two, nobody = (self.client() for _ in range(4))
        for watcher in (one, two):
            watcher.answer("<reports_register><ReportSet><ReportType>clip_change</ReportType>"
                           "<ReportType>directory_change</ReportType></ReportSet></reports_register>")
        actor.answer("<create_directory><DirectoryName>HEARD</DirectoryName></create_directory>")
        self.create(actor, "HEARD/A")
        self.modify(actor, "HEARD/A", "<Title>t</Title>")
        actor.answer("<rename_clip><FromID>HEARD/A</FromID><ToID>HEARD/B</ToID></rename_clip>")
        actor.answer("<create_child_clip><ClipID>C</ClipID><ParentClipID>HEARD/B</ParentClipID></create_child_clip>")
        actor.answer("<delete_clip><ClipID>C</ClipID></delete_clip>")
        actor.answer("<rename_dir><FromDir>HEARD</FromDir><ToDir>MOVED</ToDir></rename_dir>")
        clip, directory = "<clip_%s><ClipID>%s</ClipID></clip_%s>", "<directory_%s><DirectoryName>%s</DirectoryName>" \
            "</directory_%s>"
        expected = [directory % ("created", "HEARD", "created"), clip % ("created", "HEARD/A", "created"),
                    clip % ("changed", "HEARD/A", "changed"), clip % ("deleted", "HEARD/A", "deleted"),
                    clip % ("created", "HEARD/B", "created"), clip % ("created", "C", "created"),
                    clip % ("deleted", "C", "deleted"), directory % ("deleted", "HEARD", "deleted"),
                    directory % ("created", "MOVED", "created"), clip % ("deleted", "HEARD/B", "deleted"),
                    clip % ("created", "MOVED/B", "created")]
        self.assertEqual(one.settled_reports(), expected)
        self.assertEqual(two.settled_reports(), expected)
        self.assertEqual(nobody.settled_reports(), [])

    def test_directories(self):
        client = self.client()
        for name in ("D", "D/E", "D/E/F"):
            client.answer("<create_directory><DirectoryName>%s</DirectoryName></create_directory>" % name)
        self.create(client, "D/1")
        self.create(client, "D/E/2")
        self.assertEqual(client.ask("<download_clipids><DirectoryName>D</DirectoryName></download_clipids>"),
                         ["<clipid><ClipID>D/1</ClipID></clipid>", "<ok />"])
        self.assertEqual(client.ask("<download_directory_names><DirectoryName>D</DirectoryName>"
                                    "</download_directory_names>"),
                         ["<directory_name><DirectoryName>D/E</DirectoryName></directory_name>", "<ok />"])
        self.assertIn("<directory_name><DirectoryName>D/E/F</DirectoryName></directory_name>",
                      client.ask("<download_directory_names />"))
        self.assertRefused(client, "<create_clip><ClipID>X/1</ClipID>" + VIDEO + "</create_clip>",
                           "Directory &apos;X&apos; does not exist")
        self.assertRefused(client, "<create_clip><ClipID>D/E</ClipID>" + VIDEO + "</create_clip>",
                           "Directory &apos;D/E&apos; exists already")
        self.assertRefused(client, "<download_clipids><DirectoryName>X</DirectoryName></download_clipids>",
                           "Directory &apos;X&apos; does not exist")
        self.assertRefused(client, "<rename_dir><FromDir>D</FromDir><ToDir>D/G</ToDir></rename_dir>",
                           "Directory &apos;D&apos; cannot be moved into itself")
        self.assertEqual(client.answer("<rename_dir><FromDir>D/E</FromDir><ToDir>G</ToDir></rename_dir>"), "<ok />")
        self.assertIn("<Exists>true<", client.answer("<clip_exists><ClipID>G/2</ClipID></clip_exists>"))

    def test_refusals(self):
        client = self.client()
        self.assertRefused(client, "<get_clip_info><ClipID>NO</ClipID></get_clip_info>",
                           "Clip &apos;NO&apos; does not exist", "clipnotfound")
        self.assertRefused(client, "<rename_clip><FromID>NO</FromID><ToID>N2</ToID></rename_clip>",
                           "Clip &apos;NO&apos; does not exist", "clipnotfound")
        self.assertRefused(client, "<create_clip><ClipID>BARS</ClipID>" + VIDEO + "</create_clip>",
                           "Clip &apos;BARS&apos; exists already")
        self.assertRefused(client, "<create_clip><ClipID />" + VIDEO + "</create_clip>", "&apos;&apos; is not a valid name")
        self.assertRefused(client, "<create_clip><ClipID>x</ClipID><TrackSet></TrackSet></create_clip>",
                           "A clip needs a track")
        self.assertRefused(client, "<delete_clip><ClipID>BARS</ClipID></delete_clip>",
                           "&apos;BARS&apos; is loaded on channel A")
        self.assertRefused(client, "<create_clip><ClipID>HUGE</ClipID>" + VIDEO + "<ClipLength>4000000000</ClipLength>"
                           "</create_clip>", "The disk is full")
        locked = "Clip &apos;LOCKED&apos; is read-only"
        self.assertIn("<ReadOnly>true</ReadOnly>", self.info(client, "LOCKED"))
        self.assertRefused(client, "<delete_clip><ClipID>LOCKED</ClipID></delete_clip>", locked)
        self.assertRefused(client, "<rename_clip><FromID>LOCKED</FromID><ToID>N2</ToID></rename_clip>", locked)
        self.assertRefused(client, "<modify_clip_attributes><ClipID>LOCKED</ClipID><ClipAttrChange><Title>t</Title>"
                           "</ClipAttrChange></modify_clip_attributes>", locked)

    def test_children(self):
        client = self.client()
        client.answer("<create_child_clip><ClipID>KID</ClipID><ParentClipID>SPORT/GOAL</ParentClipID><Angle>3</Angle>"
                      "</create_child_clip>")
        kid, parent = self.info(client, "KID"), self.info(client, "SPORT/GOAL")
        self.assertEqual(tag(kid, "ParentUUID"), tag(parent, "ClipUUID"))
        self.assertNotEqual(tag(kid, "ClipUUID"), tag(parent, "ClipUUID"))
        self.assertEqual(tag(kid, "Angle"), "3")
        self.assertEqual(tag(kid, "ClipLength"), "3000")
        self.assertNotIn("ParentUUID", parent)
        self.assertRefused(client, "<create_child_clip><ClipID>KID2</ClipID><ParentClipID>SPORT/GOAL</ParentClipID>"
                           "<Angle>4</Angle></create_child_clip>", "&apos;SPORT/GOAL&apos; has no angle 4")

    def test_stamps_move(self):
        client = self.client()
        self.create(client, "STAMP")

        def stamps():
            info = self.info(client, "STAMP")
            return [int(tag(info, name)) for name in ("LoadedStamp", "UnloadedStamp", "PlayedStamp", "MetaEditStamp",
                                                      "ContentEditStamp")]

        last = stamps()
        self.assertEqual(last[:3], [0, 0, 0])
        for command, moved in (("<cue_clip><Channel>H</Channel><ClipID>STAMP</ClipID></cue_clip>", 0),
                               ("<play><Channel>H</Channel></play>", 2),
                               ("<cue_clip><Channel>H</Channel><ClipID>BARS</ClipID></cue_clip>", 1),
                               ("<modify_clip_attributes><ClipID>STAMP</ClipID><ClipAttrChange /></"
                                "modify_clip_attributes>", 3)):
            self.assertEqual(client.answer(command), "<ok />")
            now = stamps()
            self.assertGreater(now[moved], max(last))
            last[moved] = now[moved]
            self.assertEqual(now, last)

    def test_a_loaded_clip_is_known_anew(self):
        client = self.client()
        self.create(client, "FRESH")
        client.answer("<cue_clip><Channel>G</Channel><ClipID>FRESH</ClipID><GotoPosition>90</GotoPosition></cue_clip>")
        client.answer("<channel_report_register><Channel>G</Channel><ChannelReportType>info</ChannelReportType>"
                      "</channel_report_register>")
        client.settled_reports()
        self.modify(client, "FRESH", "<TrimEnd>50</TrimEnd>")
        self.assertIn("<ClipLength>50</ClipLength>", client.settled_reports()[-1])
        self.assertIn("<ClipPosition>49</ClipPosition>",
                      client.answer("<get_current_timecode><Channel>G</Channel></get_current_timecode>"))
        client.answer("<rename_clip><FromID>FRESH</FromID><ToID>STALE</ToID></rename_clip>")
        self.assertIn("<ClipID>STALE</ClipID>", client.settled_reports()[-1])

    def test_disk_space(self):
        client = self.client()
        client.answer("<report_register><ReportType>disk_space</ReportType></report_register>")
        before = int(tag(client.settled_reports()[-1], "AvailableDiskSpace"))
        usage = client.answer("<get_disk_usage />")
        self.assertEqual(int(tag(usage, "AvailableDiskSpace")), before)
        self.create(client, "SPACE", "<ClipLength>10</ClipLength>")
        self.assertEqual(int(tag(client.settled_reports()[-1], "AvailableDiskSpace")),
                         before - 10 * int(tag(usage, "FieldSize")))

    def test_long_and_strange_names(self):
        client = self.client()
        for name in ("x" * 4000, "\U0001F3AC clip", " blank ", "a&lt;b&gt;&quot;&apos;&amp;"):
            self.create(client, name)
            self.assertEqual(client.answer("<clip_exists><ClipID>%s</ClipID></clip_exists>" % name),
                             "<clipexists><ClipID>%s</ClipID><Exists>true</Exists></clipexists>" % name)
        self.assertIn("<clipid><ClipID> blank </ClipID></clipid>", client.ask("<download_clipids />"))


class Kept(unittest.TestCase):
    def test_a_file_is_found_again(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "server.db")
            with self.run_on(path) as client:
                client.answer("<create_clip><ClipID>KEPT</ClipID>" + VIDEO + "</create_clip>")
                client.answer("<delete_clip><ClipID>COUNTDOWN</ClipID></delete_clip>")
                client.answer("<metadata_set><MetadataDatabase>m</MetadataDatabase><MetadataList><Metadata><Key>k"
                              "</Key><Value>v</Value></Metadata></MetadataList></metadata_set>")
                client.answer("<list_save_start><ListID>L</ListID></list_save_start>")
                client.answer("<list_save_end />")
                uuid = tag(client.answer("<get_clip_info><ClipID>KEPT</ClipID></get_clip_info>"), "ClipUUID")
            with self.run_on(path) as client:
                info = client.answer("<get_clip_info><ClipID>KEPT</ClipID></get_clip_info>")
                self.assertEqual(tag(info, "ClipUUID"), uuid)
                self.assertIn(">false<", client.answer("<clip_exists><ClipID>COUNTDOWN</ClipID></clip_exists>"))
                self.assertIn("<Value>v</Value>", client.ask(
                    "<download_metadata><MetadataDatabase>m</MetadataDatabase></download_metadata>")[0])
                self.assertEqual(client.ask("<download_listids />"), ["<listid><ListID>L</ListID></listid>", "<ok />"])

    def run_on(self, path):
        return Running("--database", path)

    def test_a_killed_server_has_lost_nothing(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "server.db")
            running = self.run_on(path)
            with running as client:
                for number in range(50):
                    client.answer("<metadata_set><MetadataDatabase>m</MetadataDatabase><MetadataList><Metadata>"
                                  "<Key>%d</Key><Value>v</Value></Metadata></MetadataList></metadata_set>" % number)
                running.kill()
            with self.run_on(path) as client:
                rows = client.ask("<download_metadata><MetadataDatabase>m</MetadataDatabase></download_metadata>")
                self.assertEqual(rows[0].count("<Key>"), 50)

    def test_clips_of_a_file(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "clips.txt")
            with open(path, "w", encoding="utf-8") as file:
                file.write('# a comment\n\ndirectory "My clips"\nclip "My clips/Ä 1" length=12 tracks=video,key '
                           'title="A title" stripe=7 meta.k="v w" read_only_meta\nclip SHORT\n')
            with Running("--clips", path, "--standard", "625_50i") as client:
                self.assertEqual(client.ask("<download_clipids />"), [
                    "<clipid><ClipID>My clips/Ä 1</ClipID></clipid>", "<clipid><ClipID>SHORT</ClipID></clipid>",
                    "<ok />"])
                info = client.answer("<get_clip_info><ClipID>My clips/Ä 1</ClipID></get_clip_info>")
                for part in ("<VideoStandard>625_50i</VideoStandard>", "<Title>A title</Title>",
                             "<ClipLength>12</ClipLength>", "<FieldNumber>7</FieldNumber>", "<Value>v w</Value>",
                             "<ReadOnly>false</ReadOnly>", "<ReadOnlyMeta>true</ReadOnlyMeta>"):
                    self.assertIn(part, info)
            for word, fault in (("length=long", "'long' is not a number"), ("angles=256", "'256' is not a number up to 255"),
                                ("stripe=2147483648", "'2147483648' is not a number up to 2147483647")):
                with open(path, "w", encoding="utf-8") as file:
                    file.write("clip GOOD\nclip BAD %s\n" % word)
                with self.assertRaisesRegex(RuntimeError, "clips.txt, line 2: " + fault):
                    support.Simulator("--clips", path)

    def test_an_empty_server(self):
        with Running("--clips", "/dev/null") as client:
            self.assertEqual(client.ask("<download_clipids />"), ["<ok />"])
            client.answer("<channel_report_register><Channel>A</Channel><ChannelReportType>status</ChannelReportType>"
                          "</channel_report_register>")
            self.assertIn(">idle<", client.settled_reports()[0])

    def test_any_number_of_clips(self):
        with Running("--generate", "5000") as client:
            names = client.ask("<download_clipids />")
            self.assertEqual(len(names), 5000 + 6 + 1)
            self.assertIn("<clipid><ClipID>GENERATED0005000</ClipID></clipid>", names)


class Running:
    """A server and a client of it. Both are ended with the block."""

    def __init__(self, *arguments):
        self.simulator = support.Simulator(*arguments)

    def __enter__(self):
        self.client = support.Client(self.simulator.address)
        return self.client

    def kill(self):
        self.simulator.process.kill()

    def __exit__(self, *_):
        self.client.close()
        self.simulator.stop()
