"""A database that another program has locked, or that is full: commands are refused, and the server goes on."""

import os
import resource
import signal
import sqlite3
import tempfile
import unittest

import support
from support import tag
from transport_test import Desk

VIDEO = "<TrackSet><TrackType>video</TrackType></TrackSet>"


class Database(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.path = os.path.join(directory.name, "clips.db")
        self.start()

    def start(self):
        self.simulator = support.Simulator("--database", self.path)
        self.addCleanup(self.simulator.process.kill)
        self.c = self.client()

    def client(self):
        client = support.Client(self.simulator.address)
        self.addCleanup(client.close)
        return client

    def restart(self):
        self.assertEqual(self.simulator.stop(), 0)
        self.start()

    def hold(self):
        other = sqlite3.connect(self.path, isolation_level=None, timeout=support.PATIENCE)
        self.addCleanup(other.close)
        other.execute("BEGIN IMMEDIATE")
        return other

    def create(self, name, arguments=""):
        return self.c.answer("<create_clip><ClipID>%s</ClipID>%s%s</create_clip>" % (name, VIDEO, arguments))

    def length(self, name):
        return int(tag(self.c.answer("<get_clip_info><ClipID>%s</ClipID></get_clip_info>" % name), "ClipLength"))

    def test_a_held_database_refuses_changes_only(self):
        other = self.hold()
        refusal = "<error><ErrorMessage>The database cannot be used now: database is locked</ErrorMessage>" \
                  "<ErrorCode>general</ErrorCode></error>"
        space = self.c.answer("<get_disk_usage />")
        for body in ("<create_clip><ClipID>NEW</ClipID>%s<ClipLength>5</ClipLength></create_clip>" % VIDEO,
                     "<delete_clip><ClipID>COUNTDOWN</ClipID></delete_clip>",
                     "<rename_clip><FromID>COUNTDOWN</FromID><ToID>OTHER</ToID></rename_clip>",
                     "<create_directory><DirectoryName>NEW</DirectoryName></create_directory>",
                     "<rename_dir><FromDir>NEWS</FromDir><ToDir>OLDS</ToDir></rename_dir>",
                     "<modify_clip_attributes><ClipID>BARS</ClipID><ClipAttrChange><Title>x</Title></ClipAttrChange>"
                     "</modify_clip_attributes>",
                     "<metadata_set><MetadataDatabase>d</MetadataDatabase><MetadataList><Metadata><Key>k</Key><Value>v"
                     "</Value></Metadata></MetadataList></metadata_set>"):
            self.assertEqual(self.c.answer(body), refusal, body)
        self.c.answer("<list_save_start><ListID>L</ListID></list_save_start>")
        self.assertEqual(self.c.answer("<list_save_end />"), refusal)
        self.assertEqual(self.c.answer("<get_disk_usage />"), space)
        self.assertEqual(self.c.answer("<play><Channel>A</Channel></play>"), "<ok />")
        self.assertEqual(len(self.c.ask("<download_clipids />")), 7)
        other.execute("ROLLBACK")
        self.assertEqual(self.create("NEW"), "<ok />")
        self.assertEqual(self.c.answer("<get_disk_usage />"), space)

    def test_a_database_that_is_held_for_a_moment_is_waited_for(self):
        other = self.hold()
        self.c.send("<cmd><xid>1</xid><create_directory><DirectoryName>D</DirectoryName></create_directory></cmd>")
        other.execute("ROLLBACK")
        self.assertEqual(self.c.message(), "<reply><xid>1</xid><ok /></reply>")

    def test_what_happens_meanwhile_is_stored_later(self):
        desk = Desk(self, "B")
        self.create("TAPE", "<Channel>B</Channel>")
        desk.do("insert_edit", "<SonyEditMask>1023</SonyEditMask>")
        desk.do("play")
        desk.wait_position(lambda position: position >= 20)
        other = self.hold()
        desk.do("stop")
        length = desk.position() + 1
        self.assertEqual(self.length("TAPE"), length)
        other.execute("ROLLBACK")

        def stored():
            return other.execute("SELECT untrimmed FROM clips WHERE id = 'TAPE' AND played_stamp > 0").fetchall()
        support.wait_until(lambda: stored() == [(length,)])
        self.restart()
        self.assertEqual(self.length("TAPE"), length)

    def test_a_full_disk(self):
        size = os.path.getsize(self.path) + 40000
        old = signal.getsignal(signal.SIGXFSZ)
        self.addCleanup(signal.signal, signal.SIGXFSZ, old)
        resource.prlimit(self.simulator.process.pid, resource.RLIMIT_FSIZE, (size, resource.RLIM_INFINITY))
        text = "<Value>%s</Value>" % ("v" * 10000)
        change = "<metadata_set><MetadataDatabase>d</MetadataDatabase><MetadataList>%s</MetadataList></metadata_set>"
        answers = [self.c.answer(change % "".join("<Metadata><Key>%d-%d</Key>%s</Metadata>" % (number, part, text)
                                                  for part in range(3))) for number in range(200)]
        self.assertRegex(answers[-1], "The database cannot be used now: ")
        space = self.c.answer("<get_disk_usage />")
        self.assertIn("The database cannot be used now: ", self.create("NEW", "<ClipLength>9</ClipLength>"))
        self.assertEqual(self.c.answer("<get_disk_usage />"), space)
        self.assertEqual(len(self.c.ask("<download_clipids />")), 7)
        resource.prlimit(self.simulator.process.pid, resource.RLIMIT_FSIZE,
                         (resource.RLIM_INFINITY, resource.RLIM_INFINITY))
        self.assertEqual(self.create("NEW"), "<ok />")

    def test_a_database_that_is_held_at_the_start(self):
        self.assertEqual(self.simulator.stop(), 0)
        other = self.hold()
        self.start()
        self.assertEqual(len(self.c.ask("<download_clipids />")), 7)
        self.assertIn("database is locked", self.create("NEW"))
        other.execute("ROLLBACK")
        self.assertEqual(self.create("NEW"), "<ok />")

    def test_a_new_database_that_is_held_at_the_start(self):
        self.assertEqual(self.simulator.stop(), 0)
        self.path += ".new"
        other = self.hold()
        other.execute("CREATE TABLE t (x)")
        with self.assertRaisesRegex(RuntimeError, "cannot go on: .*database is locked"):
            support.Simulator("--database", self.path)

    def test_what_is_no_database(self):
        with open(self.path + ".txt", "w") as file:
            file.write("no database " * 100)
        self.assertEqual(self.simulator.stop(), 0)
        with self.assertRaisesRegex(RuntimeError, "cannot go on: .*file is not a database"):
            support.Simulator("--database", self.path + ".txt")
