"""Metadata databases and the user dictionary: what is kept, and who gets reports of it."""

import re

import support

DATABASE = "<MetadataDatabase>%s</MetadataDatabase>"


def pairs(*items):
    return "<MetadataList>" + "".join("<Metadata><Key>%s</Key><Value>%s</Value></Metadata>" % one
                                      for one in items) + "</MetadataList>"


def keys(*names):
    return "<KeyList>" + "".join("<Key>%s</Key>" % name for name in names) + "</KeyList>"


def prefix(text):
    return "<MetadataPrefix>%s</MetadataPrefix>" % text if text else "<MetadataPrefix />"


class Databases(support.Case):
    def set(self, client, name, items, rest=""):
        self.assertEqual(client.answer("<metadata_set>" + DATABASE % name + pairs(*items) + rest + "</metadata_set>"),
                         "<ok />")

    def erase(self, client, name, names, rest=""):
        self.assertEqual(client.answer("<metadata_erase>" + DATABASE % name + keys(*names) + rest +
                                       "</metadata_erase>"), "<ok />")

    def watch(self, client, name, rest=""):
        self.assertEqual(client.answer("<watch_metadata_database>" + DATABASE % name + rest +
                                       "</watch_metadata_database>"), "<ok />")

    def download(self, client, name, rest=""):
        return client.ask("<download_metadata>" + DATABASE % name + rest + "</download_metadata>")

    def test_download(self):
        client = self.client()
        self.assertEqual(self.download(client, "unknown"), ["<ok />"])
        self.set(client, "down", [("b", "1"), ("a/x", "2"), ("a/y", "&lt;ü&gt;"), ("a", "4")])
        self.assertEqual(self.download(client, "down"), [
            "<metadata>" + DATABASE % "down" + prefix("") + pairs(("a", "4"), ("a/x", "2"), ("a/y", "&lt;ü&gt;"),
                                                                 ("b", "1")) + "</metadata>", "<ok />"])
        self.assertEqual(self.download(client, "down", prefix("a/")), [
            "<metadata>" + DATABASE % "down" + prefix("a/") + pairs(("x", "2"), ("y", "&lt;ü&gt;")) + "</metadata>",
            "<ok />"])
        self.erase(client, "down", ["b", "never"])
        self.assertNotIn("<Key>b</Key>", self.download(client, "down")[0])

    def test_a_large_download_comes_in_rows(self):
        client = self.client()
        for start in range(0, 1000, 100):
            self.set(client, "large", [("key%04d" % number, "v" * 100) for number in range(start, start + 100)])
        rows = self.download(client, "large")
        self.assertEqual(rows.pop(), "<ok />")
        self.assertGreater(len(rows), 4)
        self.assertLess(max(len(row) for row in rows), 32000)
        found = [key for row in rows for key in re.findall("<Key>(.*?)</Key>", row)]
        self.assertEqual(found, ["key%04d" % number for number in range(1000)])

    def test_every_watcher_hears_of_changes(self):
        actor, one, inner, other = (self.client() for _ in range(4))
        self.watch(actor, "heard")
        self.watch(one, "heard")
        self.watch(inner, "heard", prefix("a/"))
        self.watch(other, "else")
        self.set(actor, "heard", [("a/x", "1"), ("b", "2")])
        self.set(actor, "heard", [("y", "3")], prefix("a/"))
        self.erase(actor, "heard", ["b", "never"])
        self.erase(actor, "heard", ["never"])
        self.erase(actor, "heard", ["x"], prefix("a/"))
        change = "<metadata_change>" + DATABASE % "heard" + "%s</metadata_change>"
        remove = "<metadata_remove>" + DATABASE % "heard" + "%s</metadata_remove>"
        all_of_it = [change % (prefix("") + pairs(("a/x", "1"), ("b", "2"))),
                     change % (prefix("a/") + pairs(("y", "3"))), remove % (prefix("") + keys("b")),
                     remove % (prefix("a/") + keys("x"))]
        self.assertEqual(actor.settled_reports(), all_of_it)
        self.assertEqual(one.settled_reports(), all_of_it)
        self.assertEqual(inner.settled_reports(), [change % (prefix("") + pairs(("a/x", "1"))), all_of_it[1],
                                                   all_of_it[3]])
        self.assertEqual(other.settled_reports(), [])
        self.assertEqual(one.answer("<unwatch_metadata_database>" + DATABASE % "heard" +
                                    "</unwatch_metadata_database>"), "<ok />")
        self.set(actor, "heard", [("c", "4")])
        self.assertEqual(one.settled_reports(), [])

    def test_what_is_long_is_told_in_several_messages(self):
        client = self.client()
        self.watch(client, "long")
        items = [("key%d" % number, "&lt;" * (1500 + 900 * number)) for number in range(6)] + [
            ("huge", "x" * 32200)]
        self.set(client, "long", items)
        reports = client.settled_reports()
        self.assertGreater(len(reports), 3)
        self.assertLess(max(len(report) for report in reports), 32700)
        self.assertEqual(re.findall("<Key>(.*?)</Key><Value>(.*?)</Value>", "".join(reports)), items)
        rows = self.download(client, "long")
        self.assertLess(max(len(row) for row in rows), 32700)
        self.assertEqual(re.findall("<Key>(.*?)</Key><Value>(.*?)</Value>", "".join(rows)), sorted(items))
        self.assertRefused(client, "<metadata_set>" + DATABASE % "long" + pairs(("huge", "x" * 32500)) +
                           "</metadata_set>", "A key and its value are too long for a message")
        self.erase(client, "long", [key for key, _ in items])
        self.assertEqual(self.download(client, "long"), ["<ok />"])

    def test_reports_stand_behind_the_answer(self):
        client = self.client()
        self.watch(client, "order")
        self.set(client, "order", [("k", "1")])
        self.assertEqual(client.reports, [])
        self.assertEqual(len(client.settled_reports()), 1)

    def test_a_client_has_one_watch_of_a_database(self):
        actor, one, other = (self.client() for _ in range(3))
        self.watch(one, "watch", prefix("a/"))
        self.watch(one, "watch", prefix("b/"))
        self.watch(other, "watch")
        self.set(actor, "watch", [("a/x", "1"), ("b/x", "2")])
        self.assertEqual([re.findall("<Key>(.*?)</Key>", report) for report in one.settled_reports()], [["b/x"]])
        self.assertEqual(one.answer("<unwatch_metadata_database>" + DATABASE % "watch" +
                                    "</unwatch_metadata_database>"), "<ok />")
        other.settled_reports()
        self.set(actor, "watch", [("b/y", "3")])
        self.assertEqual(one.settled_reports(), [])
        self.assertEqual(len(other.settled_reports()), 1)
        self.watch(one, "watch")
        one.close()
        self.set(actor, "watch", [("b/y", "4")])
        self.assertEqual(len(other.settled_reports()), 1)

    def test_databases_are_apart(self):
        client = self.client()
        self.set(client, "one", [("k", "1"), ("%", "2"), ("K", "3")])
        self.set(client, "One", [("k", "4")])
        self.erase(client, "One", ["K"])
        self.assertEqual(self.download(client, "one", prefix("k")), [
            "<metadata>" + DATABASE % "one" + prefix("k") +
            "<MetadataList><Metadata><Key /><Value>1</Value></Metadata></MetadataList></metadata>", "<ok />"])
        self.assertEqual(self.download(client, "one", prefix("%"))[0].count("<Key"), 1)
        self.assertEqual(self.download(client, "one")[0].count("<Key>"), 3)

    def test_a_bad_change_changes_nothing(self):
        client = self.client()
        self.assertRefused(client, "<metadata_set>" + DATABASE % "bad" + pairs(("k", "v"), ("", "w")) +
                           "</metadata_set>", "A key is empty")
        self.assertEqual(self.download(client, "bad"), ["<ok />"])
        self.assertRefused(client, "<unwatch_metadata_database>" + DATABASE % "bad" + "</unwatch_metadata_database>",
                           "Metadata database &apos;bad&apos; is not being watched")

    def test_user_dictionary(self):
        one, two = self.client(), self.client()
        body = "<userdict_change><Key>k</Key>%s</userdict_change>"
        one.answer("<userdict_set><Key>k</Key><Value>1</Value></userdict_set>")
        two.answer("<userdict_watch><Key>k</Key></userdict_watch>")
        one.answer("<userdict_own><Key>k</Key><Value>2</Value></userdict_own>")
        self.assertEqual(two.settled_reports(), [body % "<Value>1</Value>", body % "<Value>2</Value>"])
        self.assertRefused(two, "<userdict_set><Key>k</Key><Value>3</Value></userdict_set>",
                           "Key &apos;k&apos; belongs to another client")
        one.close()
        two.wait_report(lambda report: report == body % "<Value />")
        two.answer("<userdict_unwatch><Key>k</Key></userdict_unwatch>")
        two.answer("<userdict_set><Key>k</Key><Value>3</Value></userdict_set>")
        two.answer("<userdict_erase><Key>k</Key></userdict_erase>")
        self.assertEqual(two.settled_reports(), [])


class Refusing(support.Case):
    arguments = ("--refuse-metadata", "3")

    def test_every_third_change_is_refused(self):
        client = self.client()
        answers = [client.answer("<metadata_set>" + DATABASE % "m" + pairs(("k%d" % number, "v")) + "</metadata_set>")
                   for number in range(7)]
        self.assertEqual([answer == "<ok />" for answer in answers], [True, True, False, True, True, False, True])
        self.assertEqual(answers[2], "<error><ErrorMessage>The change of metadata is refused, as this server was asked "
                         "to do</ErrorMessage><ErrorCode>general</ErrorCode></error>")

    def test_a_refused_change_changes_nothing_and_is_told_to_nobody(self):
        client = self.client()
        client.answer("<watch_metadata_database>" + DATABASE % "r" + "</watch_metadata_database>")
        erase = "<metadata_erase>" + DATABASE % "r" + keys("k") + "</metadata_erase>"
        change = "<metadata_set>" + DATABASE % "r" + pairs(("k", "%d")) + "</metadata_set>"
        while client.answer(change % 0) == "<ok />":
            pass
        client.settled_reports()
        self.assertEqual([client.answer(change % 1), client.answer(change % 2)], ["<ok />"] * 2)
        self.assertIn("<error>", client.answer(erase))
        self.assertEqual(client.ask("<download_metadata>" + DATABASE % "r" + "</download_metadata>")[0].count(
            "<Value>2</Value>"), 1)
        self.assertEqual([client.answer(erase), client.answer(erase)], ["<ok />"] * 2)
        self.assertIn("<error>", client.answer(change % 3))
        self.assertEqual(client.ask("<download_metadata>" + DATABASE % "r" + "</download_metadata>"), ["<ok />"])
        self.assertEqual(len(client.settled_reports()), 3)
