#include "base/amethod.h"
#include "support/assert_counter.h"
#include "xml/xml_attributes.h"
#include "xml/xml_tree.h"

#include <gtest/gtest.h>

#include <thread>

namespace {
/// Collects what a tree is written to.
class Sink {
public:
  AByteSink take () { return AMethod::bind (this, &Sink::add); }

  std::string bytes;
  std::vector<std::string> portions;

private:
  void add (const void *data, uint64_t length) {
    portions.emplace_back (static_cast<const char *> (data), length);
    bytes += portions.back ();
  }
};

std::string joined (const AStringList &pieces) {
  std::string all;
  for (const AString &piece : pieces)
    all += piece.to_std_string ();
  return all;
}

/// The text of a tree by all three ways of writing, if they agree.
std::string written (const XMLTree &tree, XMLFormat format, bool contract) {
  Sink sink;
  tree.write_to (sink.take (), format, contract);
  const std::string text = tree.render_text (format, contract).to_std_string ();
  EXPECT_EQ (sink.bytes, text);
  EXPECT_EQ (joined (tree.render (format, contract)), text);
  return text;
}

XMLTree metadata () {
  return XMLTree ("Metadata", make_child_list (XMLTree ("Key", "a<b"), XMLTree ("Value", "")));
}

TEST (XMLWrite, TheFormats) {
  const XMLTree m = metadata ();
  EXPECT_EQ (written (m, XMLCompact, false), "<Metadata><Key>a&lt;b</Key><Value></Value></Metadata>");
  EXPECT_EQ (written (m, XMLCompact, true), "<Metadata><Key>a&lt;b</Key><Value /></Metadata>");
  EXPECT_EQ (written (m, XMLLines, true), "<Metadata>\r\n<Key>a&lt;b</Key>\r\n<Value />\r\n</Metadata>");
  EXPECT_EQ (written (m, XMLLines, false),
             "<Metadata>\r\n<Key>a&lt;b</Key>\r\n<Value></Value>\r\n</Metadata>");
  EXPECT_EQ (written (m, XMLIndented, true),
             "<Metadata>\r\n    <Key>a&lt;b</Key>\r\n    <Value />\r\n</Metadata>");
}

TEST (XMLWrite, ThreeLevels) {
  const XMLTree tree ("a", make_child_list (XMLTree ("b", XMLTree ("c", "x")), XMLTree ("d")));
  EXPECT_EQ (written (tree, XMLCompact, true), "<a><b><c>x</c></b><d /></a>");
  EXPECT_EQ (written (tree, XMLLines, true), "<a>\r\n<b>\r\n<c>x</c>\r\n</b>\r\n<d />\r\n</a>");
  EXPECT_EQ (written (tree, XMLIndented, true),
             "<a>\r\n    <b>\r\n        <c>x</c>\r\n    </b>\r\n    <d />\r\n</a>");
  EXPECT_EQ (written (tree, XMLIndented, false),
             "<a>\r\n    <b>\r\n        <c>x</c>\r\n    </b>\r\n    <d></d>\r\n</a>");
}

TEST (XMLWrite, ACommandAsItGoesOut) {
  XMLTree stop ("stop", XMLTree ("Channel", "A"));
  const XMLTree command ("cmd", make_child_list (XMLTree ("xid", "7"), stop));
  EXPECT_EQ (written (command, XMLLines, true),
             "<cmd>\r\n<xid>7</xid>\r\n<stop>\r\n<Channel>A</Channel>\r\n</stop>\r\n</cmd>");
}

TEST (XMLWrite, OnlyAnEmptyTextIsContracted) {
  EXPECT_EQ (written (XMLTree ("a"), XMLCompact, false), "<a></a>");
  EXPECT_EQ (written (XMLTree ("a"), XMLCompact, true), "<a />");
  EXPECT_EQ (written (XMLTree ("a"), XMLLines, true), "<a />");
  EXPECT_EQ (written (XMLTree ("a"), XMLIndented, true), "<a />");
  EXPECT_EQ (written (XMLTree ("a", " "), XMLCompact, true), "<a> </a>");
}

TEST (XMLWrite, AllFiveSpecialCharactersAreEscaped) {
  EXPECT_EQ (written (XMLTree ("a", "'<>\"&"), XMLCompact, true), "<a>&apos;&lt;&gt;&quot;&amp;</a>");
  EXPECT_EQ (written (XMLTree ("a", "x&y&&z"), XMLCompact, true), "<a>x&amp;y&amp;&amp;z</a>");
}

TEST (XMLWrite, NothingElseIsEscaped) {
  const char text[] = "\x01\x07\t\n\r\x7F~=;#0/9:A@\xE9";
  EXPECT_EQ (written (XMLTree ("a", text), XMLCompact, true), "<a>\x01\x07\t\n\r\x7F~=;#0/9:A@\xC3\xA9</a>");
}

TEST (XMLWrite, NamesAreNotEscaped) {
  EXPECT_EQ (written (XMLTree ("a<&b"), XMLCompact, false), "<a<&b></a<&b>");
}

TEST (XMLWrite, ChildrenWinOverText) {
  XMLTree tree ("a", "lost");
  tree.add_child (XMLTree ("b"));
  EXPECT_EQ (written (tree, XMLCompact, true), "<a><b /></a>");
}

TEST (XMLWrite, AttributesFollowTheNameInKeyOrder) {
  XMLTree tree = metadata ();
  XMLTreeAttributes::set (tree, "id", "x\"y");
  EXPECT_EQ (written (tree, XMLCompact, true),
             "<Metadata id=\"x&quot;y\"><Key>a&lt;b</Key><Value /></Metadata>");
  XMLTree leaf ("a");
  XMLTreeAttributes::set (leaf, "z", "<");
  XMLTreeAttributes::set (leaf, "b&", "'&");
  EXPECT_EQ (written (leaf, XMLCompact, true), "<a b&=\"&apos;&amp;\" z=\"&lt;\" />");
  EXPECT_EQ (written (leaf, XMLIndented, false), "<a b&=\"&apos;&amp;\" z=\"&lt;\"></a>");
}

TEST (XMLWrite, IndentationGoesOnBeyondTheSharedBlanks) {
  XMLTree tree ("x");
  for (int i = 0; i != 70; ++i)
    tree = XMLTree ("p", std::move (tree));
  const std::string text = written (tree, XMLIndented, true);
  const std::string longest (280, ' '), next (276, ' ');
  EXPECT_NE (text.find ("\r\n" + longest + "<x />\r\n" + next + "</p>\r\n"), std::string::npos);
  for (size_t depth = 0; depth != 70; ++depth)
    EXPECT_NE (text.find ((depth ? "\r\n" : "") + std::string (depth * 4, ' ') + "<p>\r\n"),
               std::string::npos);
}

TEST (XMLWrite, IndentationOfExactlyTheSharedBlanks) {
  XMLTree tree ("x");
  for (int i = 0; i != 32; ++i)
    tree = XMLTree ("p", std::move (tree));
  EXPECT_NE (written (tree, XMLIndented, true).find ("\r\n" + std::string (128, ' ') + "<x />\r\n"),
             std::string::npos);
}

TEST (XMLWrite, TextBecomesUtf8) {
  const AString text = AString::from_utf8 ("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xAC");
  EXPECT_EQ (written (XMLTree ("a", text), XMLCompact, true), "<a>\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xAC</a>");
}

TEST (XMLWrite, ATextEndsWhereItCannotBeEncoded) {
  AssertCounter assertions;
  const uint32_t bad[] = {'o', 'k', 1114112, 'x'};
  const XMLTree tree ("a",
                      make_child_list (XMLTree ("b", AString::from_utf32 (bad, 4)), XMLTree ("c", "on")));
  Sink sink;
  tree.write_to (sink.take (), XMLCompact, true);
  EXPECT_EQ (sink.bytes, "<a><b>ok</b><c>on</c></a>");
  EXPECT_EQ (assertions.count (), 0u);
}

TEST (XMLWrite, TheNullTreeIsAFault) {
  AssertCounter assertions;
  Sink sink;
  XMLTree ().write_to (sink.take (), XMLLines, true);
  EXPECT_EQ (assertions.take (), 1u);
  EXPECT_TRUE (sink.portions.empty ());
  EXPECT_EQ (XMLTree ().render (XMLCompact, false).size (), 0u);
  EXPECT_EQ (assertions.take (), 1u);
  EXPECT_TRUE (XMLTree ().render_text (XMLIndented, false).is_empty ());
  EXPECT_EQ (assertions.take (), 1u);
}

TEST (XMLWrite, AnUnknownFormatIsAFault) {
  AssertCounter assertions;
  const auto bad = static_cast<XMLFormat> (3);
  Sink sink;
  metadata ().write_to (sink.take (), bad, true);
  EXPECT_EQ (assertions.take (), 1u);
  EXPECT_TRUE (sink.portions.empty ());
  EXPECT_EQ (metadata ().render (bad, true).size (), 0u);
  EXPECT_EQ (assertions.take (), 1u);
  EXPECT_TRUE (metadata ().render_text (bad, true).is_empty ());
  EXPECT_EQ (assertions.take (), 1u);
}

TEST (XMLWrite, ANullTreeAmongTheChildrenIsLeftOut) {
  AssertCounter assertions;
  XMLTree tree ("a", XMLTree ());
  tree.add_child (XMLTree ("b"));
  EXPECT_EQ (tree.render_text (XMLCompact, true).to_std_string (), "<a><b /></a>");
  EXPECT_EQ (assertions.take (), 1u);
}

TEST (XMLWrite, PiecesComeFromTheTree) {
  const AString text = AString ("t") * 200;
  const XMLTree tree ("Name", text);
  bool shared = false;
  for (const AString &piece : tree.render (XMLCompact, true))
    shared = shared || (piece == text && piece.shares_store_with (text));
  EXPECT_TRUE (shared);
}

TEST (XMLWrite, PortionsAreBoundedAndCutNoCodePoint) {
  XMLTree tree ("a");
  for (int i = 0; i != 300; ++i)
    tree.add_child (XMLTree ("b", AString::from_utf8 ("\xE2\x82\xAC&\xF0\x9F\x8E\xAC\xC3\xA9")));
  Sink sink;
  tree.write_to (sink.take (), XMLLines, true);
  std::string expected = "<a>";
  for (int i = 0; i != 300; ++i)
    expected += "\r\n<b>\xE2\x82\xAC&amp;\xF0\x9F\x8E\xAC\xC3\xA9</b>";
  expected += "\r\n</a>";
  EXPECT_EQ (sink.bytes, expected);
  for (const std::string &portion : sink.portions) {
    EXPECT_FALSE (portion.empty ());
    EXPECT_LE (portion.size (), 1024u);
    EXPECT_NE (static_cast<unsigned char> (portion[0]) & 0xC0u, 0x80u);
  }
}

TEST (XMLWrite, AnEmptySinkIsNoError) {
  metadata ().write_to (AByteSink (), XMLLines, true);
}

TEST (XMLWrite, ThreadsShareTheConstantPieces) {
  std::vector<std::thread> threads;
  std::atomic<int> right = 0;
  for (int i = 0; i != 4; ++i)
    threads.emplace_back ([&right] {
      const XMLTree tree ("a", XMLTree ("b"));
      right += joined (tree.render (XMLIndented, true)) == "<a>\r\n    <b />\r\n</a>";
    });
  for (std::thread &t : threads)
    t.join ();
  EXPECT_EQ (right.load (), 4);
}
} // namespace
