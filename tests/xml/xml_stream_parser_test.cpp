#include "xml/xml_stream_parser.h"

#include "support/assert_counter.h"

#include <gtest/gtest.h>

namespace {
using namespace std::string_literals;

/// A framer with the names of the protocol, and short words for what the tests do with it.
class Stream {
public:
  explicit Stream (uint64_t bufsize = 32768) : parser (bufsize) {
    parser.add_element_name ("reply");
    parser.add_element_name ("report");
  }
  uint64_t feed (const std::string &bytes) { return parser.feed (bytes.size (), bytes.data ()); }
  /// The next element, written compactly; "-" for none.
  std::string next () {
    const XMLTree tree = parser.next_element ();
    return tree.is_null () ? "-" : tree.render_text (XMLCompact, true).to_std_string ();
  }

  AssertCounter assertions;
  XMLStreamParser parser;
};

TEST (XMLStreamParser, StartsEmptyAndRunning) {
  Stream stream (100);
  EXPECT_EQ (stream.parser.free_space (), 100u);
  EXPECT_FALSE (stream.parser.is_failed ());
  EXPECT_EQ (stream.next (), "-");
  EXPECT_FALSE (stream.parser.is_failed ());
}

TEST (XMLStreamParser, ABufferOfNothingIsAFaultAndGets1024) {
  AssertCounter assertions;
  XMLStreamParser parser (0);
  EXPECT_EQ (assertions.count (), 1u);
  EXPECT_EQ (parser.free_space (), 1024u);
}

TEST (XMLStreamParser, FeedTakesWhatFits) {
  Stream stream (20);
  EXPECT_EQ (stream.feed ("<reply>12</reply>"), 17u);
  EXPECT_EQ (stream.parser.free_space (), 3u);
  EXPECT_EQ (stream.feed ("<reply>"), 3u);
  EXPECT_EQ (stream.parser.free_space (), 0u);
  EXPECT_EQ (stream.feed ("ply>"), 0u);
  EXPECT_EQ (stream.next (), "<reply>12</reply>");
  EXPECT_EQ (stream.parser.free_space (), 17u);
  EXPECT_EQ (stream.feed ("ply></reply>"), 12u);
  EXPECT_EQ (stream.next (), "<reply />");
  EXPECT_EQ (stream.parser.free_space (), 20u);
}

TEST (XMLStreamParser, AFullBufferWithoutAnElementTakesNothingMore) {
  Stream stream (16);
  EXPECT_EQ (stream.feed ("<reply>123</reply>"), 16u);
  EXPECT_EQ (stream.next (), "-");
  EXPECT_EQ (stream.feed ("y>"), 0u);
  EXPECT_FALSE (stream.parser.is_failed ());
}

TEST (XMLStreamParser, JunkCountsAgainstTheBuffer) {
  Stream stream (16);
  EXPECT_EQ (stream.feed ("0123456789abcdefg"), 16u);
  EXPECT_EQ (stream.next (), "-");
  EXPECT_EQ (stream.parser.free_space (), 0u);
  EXPECT_EQ (stream.feed ("<reply/>"), 0u);
}

TEST (XMLStreamParser, FeedingNothingIsNothing) {
  Stream stream;
  EXPECT_EQ (stream.parser.feed (0, nullptr), 0u);
  EXPECT_EQ (stream.parser.free_space (), 32768u);
}

TEST (XMLStreamParser, OneMessageSplitAnywhere) {
  const std::string message =
      "<banner/>< reply >\r\n<Name>\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xAC</Name></ reply\t>";
  for (size_t split = 0; split <= message.size (); ++split) {
    Stream stream;
    stream.feed (message.substr (0, split));
    if (split < message.size ()) {
      EXPECT_EQ (stream.next (), "-");
      stream.feed (message.substr (split));
    }
    EXPECT_EQ (stream.next (), "<reply><Name>\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xAC</Name></reply>");
    EXPECT_EQ (stream.next (), "-");
    EXPECT_EQ (stream.parser.free_space (), 32768u);
  }
}

TEST (XMLStreamParser, OneMessageByteByByte) {
  const std::string message = "x<<re <reply><a>&lt;</a>< / reply >";
  Stream stream;
  for (size_t i = 0; i + 1 < message.size (); ++i) {
    EXPECT_EQ (stream.feed (message.substr (i, 1)), 1u);
    EXPECT_EQ (stream.next (), "-");
  }
  stream.feed (">");
  EXPECT_EQ (stream.next (), "<reply><a>&lt;</a></reply>");
}

TEST (XMLStreamParser, TwoMessagesComeOneByOne) {
  Stream stream;
  stream.feed ("<reply>1</reply> between <report>2</report>");
  EXPECT_EQ (stream.next (), "<reply>1</reply>");
  EXPECT_EQ (stream.next (), "<report>2</report>");
  EXPECT_EQ (stream.next (), "-");
}

TEST (XMLStreamParser, TheLowestPlaceWinsWhateverTheOrderOfNames) {
  Stream stream;
  stream.feed ("<report>1</report><reply>2</reply>");
  EXPECT_EQ (stream.next (), "<report>1</report>");
  EXPECT_EQ (stream.next (), "<reply>2</reply>");
}

TEST (XMLStreamParser, AnUnfinishedElementBlocksThoseBehindIt) {
  Stream stream;
  stream.feed ("<reply><a/><report>1</report>");
  EXPECT_EQ (stream.next (), "-");
  stream.feed ("</reply>");
  EXPECT_EQ (stream.next (), "<reply><a /><report>1</report></reply>");
}

TEST (XMLStreamParser, EmptyElementTagsAreIgnored) {
  Stream stream (40);
  stream.feed ("<reply/><report />");
  EXPECT_EQ (stream.next (), "-");
  EXPECT_EQ (stream.parser.free_space (), 22u);
  stream.feed ("<reply>1</reply>");
  EXPECT_EQ (stream.next (), "<reply>1</reply>");
  EXPECT_EQ (stream.parser.free_space (), 40u);
}

TEST (XMLStreamParser, BlanksInTagsAndText) {
  Stream stream;
  stream.feed ("< reply ><Code> 0 </Code></ reply >");
  const XMLTree tree = stream.parser.next_element ();
  EXPECT_TRUE (tree.name () == "reply");
  ASSERT_EQ (tree.children ().size (), 1u);
  EXPECT_TRUE (tree.child ("Code").text () == " 0 ");
}

TEST (XMLStreamParser, WhatStandsOutsideTheElementsIsDropped) {
  Stream stream;
  stream.feed (
      "<?xml version=\"1.0\"?> hello > <foo>x</foo></reply><!-- < --><reply>1</reply><foo/>\x80\xFF\0"s);
  EXPECT_EQ (stream.next (), "<reply>1</reply>");
  EXPECT_EQ (stream.next (), "-");
  EXPECT_FALSE (stream.parser.is_failed ());
  stream.feed ("<report/><report>2</report>");
  EXPECT_EQ (stream.next (), "<report>2</report>");
  EXPECT_EQ (stream.assertions.count (), 0u);
}

struct TagRow {
  const char *bytes;
  bool matches;
};

TEST (XMLStreamParser, OpeningTags) {
  const TagRow rows[] = {
      {"<reply>", true},          {"< reply >", true},        {"<\t\n\r reply\t\n\r >", true},
      {"<<reply>", true},         {"<reply x=\"1\">", false}, {"<replyx>", false},
      {"<Reply>", false},         {"<repl>", false},          {"<reply<", false},
      {"<\vreply>", false},       {"<reply\f>", false},       {"<re ply>", false},
      {"<\xC4\x80reply>", false}, {"reply>", false},
  };
  for (const TagRow &row : rows) {
    Stream stream;
    stream.feed (row.bytes);
    stream.feed ("1</reply>");
    EXPECT_EQ (stream.next (), row.matches ? "<reply>1</reply>" : "-") << row.bytes;
  }
}

// The framer takes a backspace for white space, the parser does not.
TEST (XMLStreamParser, ABackspaceInATagIsFramedAndThenRefused) {
  for (const char *message : {"<\breply>1</reply>", "<reply\b>1</reply>", "<reply>1<\b/reply>"}) {
    Stream stream;
    stream.feed (message);
    EXPECT_EQ (stream.next (), "-");
    EXPECT_TRUE (stream.parser.is_failed ());
  }
}

TEST (XMLStreamParser, ClosingTags) {
  const TagRow rows[] = {
      {"</reply>", true},    {"< / reply >", true}, {"<\t/\t\treply\r\n >", true},
      {"</Reply>", false},   {"</replyx>", false},  {"</reply/>", false},
      {"</reply x>", false}, {"<\v/reply>", false}, {"</\freply>", false},
      {"</reply\v>", false}, {"</report>", false},  {"<reply/>", false},
      {"</reply", false},    {"</", false},         {"<", false},
  };
  for (const TagRow &row : rows) {
    Stream stream;
    stream.feed ("<reply>1");
    stream.feed (row.bytes);
    EXPECT_EQ (stream.next (), row.matches ? "<reply>1</reply>" : "-") << row.bytes;
    EXPECT_FALSE (stream.parser.is_failed ()) << row.bytes;
  }
}

TEST (XMLStreamParser, TheFirstClosingTagEndsTheElement) {
  Stream stream;
  stream.feed ("<reply><reply>1</reply></reply>");
  EXPECT_EQ (stream.next (), "-");
  EXPECT_TRUE (stream.parser.is_failed ());
}

TEST (XMLStreamParser, ARefusedElementFailsTheStreamAtOnce) {
  Stream stream (64);
  stream.feed ("<reply>1</reply><reply>a>b</reply><reply>2</reply>");
  EXPECT_EQ (stream.next (), "<reply>1</reply>");
  EXPECT_FALSE (stream.parser.is_failed ());
  EXPECT_EQ (stream.next (), "-");
  EXPECT_TRUE (stream.parser.is_failed ());
  const uint64_t space = stream.parser.free_space ();
  EXPECT_EQ (space, 64u - 34u);
  EXPECT_EQ (stream.feed (std::string (1000, 'x')), 1000u);
  EXPECT_EQ (stream.parser.free_space (), space);
  EXPECT_EQ (stream.next (), "-");
  EXPECT_TRUE (stream.parser.is_failed ());
}

TEST (XMLStreamParser, ResetStartsAgainWithTheSameNames) {
  Stream stream;
  stream.feed ("<reply>a>b</reply>");
  EXPECT_EQ (stream.next (), "-");
  stream.parser.reset ();
  EXPECT_FALSE (stream.parser.is_failed ());
  EXPECT_EQ (stream.parser.free_space (), 32768u);
  stream.feed ("<report>1</report>");
  EXPECT_EQ (stream.next (), "<report>1</report>");
}

TEST (XMLStreamParser, ResetDropsAHalfMessage) {
  Stream stream;
  stream.feed ("<reply><a>");
  EXPECT_EQ (stream.next (), "-");
  stream.parser.reset ();
  stream.feed ("</a></reply>");
  EXPECT_EQ (stream.next (), "-");
  EXPECT_FALSE (stream.parser.is_failed ());
  stream.feed ("<report>1</report>");
  EXPECT_EQ (stream.next (), "<report>1</report>");
}

TEST (XMLStreamParser, BytesThatAreNoUtf8EndTheTextSilently) {
  const std::string bad[] = {
      "\0"s,   "\x80"s,  "\xBF\xBF\xBF\xBF"s, "\xC0\x80"s, "\xC1\xBF"s,     "\xF5"s,         "\xFF"s,
      "\xC3"s, "\xC3("s, "\xE2\x82"s,         "\xE2("s,    "\xF0\x9F\x8E"s, "\xF0\x9F\x8E("s};
  for (const std::string &bytes : bad) {
    Stream stream;
    stream.feed ("<reply>x" + bytes + "</reply>");
    EXPECT_EQ (stream.next (), "-") << testing::PrintToString (bytes);
    EXPECT_TRUE (stream.parser.is_failed ());
    EXPECT_EQ (stream.assertions.count (), 0u);
  }
}

TEST (XMLStreamParser, ALenientDecoderLetsThroughOverlongFormsAndSurrogates) {
  Stream stream;
  stream.feed ("<reply>\xE0\x80\xBC"
               "a/></reply><reply>\xED\xA0\x80\xF4\x90\x80\x80</reply>");
  EXPECT_EQ (stream.next (), "<reply><a /></reply>");
  const XMLTree tree = stream.parser.next_element ();
  ASSERT_EQ (tree.text ().length (), 2u);
  EXPECT_EQ (tree.text ().getchar (0).value (), 0xD800u);
  EXPECT_EQ (tree.text ().getchar (1).value (), 0x110000u);
  EXPECT_EQ (stream.assertions.count (), 0u);
}

TEST (XMLStreamParser, AMessageOfExactlyTheBuffer) {
  Stream stream;
  const std::string message = "<reply>" + std::string (32768 - 15, 'x') + "</reply>";
  ASSERT_EQ (message.size (), 32768u);
  EXPECT_EQ (stream.feed (message), 32768u);
  const XMLTree tree = stream.parser.next_element ();
  EXPECT_EQ (tree.text ().length (), 32753u);
  EXPECT_EQ (stream.parser.free_space (), 32768u);
}

TEST (XMLStreamParser, ManyMessagesThroughASmallBuffer) {
  Stream stream (50);
  std::string bytes, expected, got;
  for (int i = 0; i != 200; ++i) {
    const std::string text = std::to_string (i * 7919);
    bytes += "<report>" + text + "</report>";
    expected += "<report>" + text + "</report>";
  }
  for (size_t done = 0; done != bytes.size ();) {
    const uint64_t n = stream.feed (bytes.substr (done, 37));
    ASSERT_NE (n, 0u);
    done += n;
    for (std::string next = stream.next (); next != "-"; next = stream.next ())
      got += next;
  }
  EXPECT_EQ (got, expected);
}

TEST (XMLStreamParser, WithoutNamesNothingComesOut) {
  XMLStreamParser parser (64);
  parser.feed (16, "<reply>1</reply>");
  EXPECT_TRUE (parser.next_element ().is_null ());
  EXPECT_FALSE (parser.is_failed ());
}

TEST (XMLStreamParser, ANameAddedLateIsLookedForFromTheStart) {
  XMLStreamParser parser (64);
  parser.add_element_name ("b");
  parser.feed (16, "<a>1</a><b>2</b>");
  parser.feed (3, "<b>");
  parser.add_element_name ("a");
  EXPECT_TRUE (parser.next_element ().name () == "a");
  EXPECT_TRUE (parser.next_element ().name () == "b");
}

TEST (XMLStreamParser, OneNameMayBeginAnother) {
  XMLStreamParser parser (64);
  parser.add_element_name ("rep");
  parser.add_element_name ("report");
  parser.feed (31, "<report>1</report><rep>2</rep> ");
  EXPECT_TRUE (parser.next_element ().text () == "1");
  EXPECT_TRUE (parser.next_element ().text () == "2");
}
} // namespace
