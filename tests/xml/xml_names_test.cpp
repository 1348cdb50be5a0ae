#include "xml/xml_names.h"

#include "xml/xml_parse.h"
#include "xml/xml_stream_parser.h"

#include <gtest/gtest.h>

namespace {
const AString *find (const XMLNameTable &table, std::string_view name) {
  const uint32_t number = table.find (name);
  EXPECT_EQ (table.find_text (AString::from_utf8 (name)), number);
  return number != XMLNameTable::unknown ? &table.name (number) : nullptr;
}

TEST (XMLNameTable, FindsWhatWasAdded) {
  XMLNameTable table;
  EXPECT_EQ (find (table, "ClipID"), nullptr);
  const AString clip ("ClipID");
  table.add (clip);
  ASSERT_NE (find (table, "ClipID"), nullptr);
  EXPECT_TRUE (find (table, "ClipID")->shares_store_with (clip));
  EXPECT_EQ (find (table, "clipID"), nullptr);
  EXPECT_EQ (find (table, "ClipI"), nullptr);
  EXPECT_EQ (find (table, "ClipID1"), nullptr);
  EXPECT_EQ (find (table, ""), nullptr);
}

TEST (XMLNameTable, TheFirstOfEqualNamesStaysAndEmptyOnesAreNone) {
  XMLNameTable table;
  const AString one ("Key"), two ("Key");
  table.add (one);
  table.add (two);
  table.add (AString ());
  EXPECT_EQ (table.size (), 1u);
  EXPECT_TRUE (find (table, "Key")->shares_store_with (one));
}

TEST (XMLNameTable, NumbersNamesInTheirOrder) {
  XMLNameTable table;
  for (const char *name : {"Key", "Value", "Key", "Other"})
    table.add (name);
  EXPECT_EQ (table.find ("Key"), 0u);
  EXPECT_EQ (table.find ("Value"), 1u);
  EXPECT_EQ (table.find ("Other"), 2u);
  EXPECT_EQ (table.find ("Another"), XMLNameTable::unknown);
  EXPECT_EQ (table.find_text (AString::from_utf8 ("\xC3\xA9")), XMLNameTable::unknown);
}

TEST (XMLNameTable, HoldsManyNames) {
  XMLNameTable table;
  for (unsigned i = 0; i != 1000; ++i)
    table.add (AString ("Name") + AString::from_uint32 (i));
  EXPECT_EQ (table.size (), 1000u);
  EXPECT_TRUE (*find (table, "Name0") == "Name0");
  EXPECT_TRUE (*find (table, "Name999") == "Name999");
  EXPECT_EQ (find (table, "Name1000"), nullptr);
}

TEST (XMLNameTable, ParsedTreesTakeKnownNamesFromIt) {
  XMLNameTable table;
  const AString reply ("reply"), key ("Key");
  table.add (reply);
  table.add (key);
  const XMLTree text = parse_xml_text ("<reply><Key>k</Key><Other/></reply>", nullptr, &table);
  EXPECT_TRUE (text.name ().shares_store_with (reply));
  EXPECT_TRUE (text.child (key).name ().shares_store_with (key));
  EXPECT_EQ (text.children ().size (), 2u);
  EXPECT_TRUE (text.has_child ("Other"));

  XMLStreamParser stream (100);
  stream.add_element_name ("reply");
  stream.set_names (&table);
  stream.feed (27, "<reply><Key>k</Key></reply>");
  const XMLTree framed = stream.next_element ();
  EXPECT_TRUE (framed.name ().shares_store_with (reply));
  EXPECT_TRUE (framed.child (key).name ().shares_store_with (key));
  EXPECT_TRUE (framed.child ("Key").text () == "k");
}
} // namespace
