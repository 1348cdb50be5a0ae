#include "xml/xml_parse.h"

#include "support/assert_counter.h"
#include "xml/xml_nodes.h"

#include <gtest/gtest.h>

namespace {
/// The tree of a text, written compactly and contracted; "refused" when there is none. As bytes it must be
/// read alike, unless there is a NUL, which ends bytes.
std::string parsed (const AString &text) {
  AssertCounter assertions;
  bool bad = false;
  const XMLTree tree = parse_xml_text (text, &bad);
  EXPECT_EQ (bad, tree.is_null ());
  const std::string bytes = text.to_std_string ();
  XMLNodes nodes;
  if (!text.contains (AChar ())) {
    EXPECT_EQ (nodes.read_bytes (bytes), !bad);
    EXPECT_TRUE (nodes.tree () == tree);
  }
  EXPECT_EQ (assertions.count (), 0u);
  return tree.is_null () ? "refused" : tree.render_text (XMLCompact, true).to_std_string ();
}

std::string parsed (const char *utf8) {
  return parsed (AString::from_utf8 (utf8));
}

struct Row {
  const char *text;
  const char *expected;
};

class XMLAccepted : public testing::TestWithParam<Row> {};
TEST_P (XMLAccepted, Text) {
  EXPECT_EQ (parsed (GetParam ().text), GetParam ().expected) << GetParam ().text;
}

constexpr Row elements[] = {
    {"<a/>", "<a />"},
    {"<a></a>", "<a />"},
    {"  <a/>\t\r\n", "<a />"},
    {"<a />", "<a />"},
    {"< a / >", "<a />"},
    {"< a ></ a >", "<a />"},
    {"< a >< / a >", "<a />"},
    {"<\v\fa\v\f/\v\f>", "<a />"},
    {"<A1_b2__>x</A1_b2__>", "<A1_b2__>x</A1_b2__>"},
    {"<zZ9/>", "<zZ9 />"},
    {"<a>text</a>", "<a>text</a>"},
    {"<a> text </a>", "<a> text </a>"},
    {"<a> </a>", "<a> </a>"},
    {"<a>\r\n</a>", "<a>\r\n</a>"},
    {"<a><b/></a>", "<a><b /></a>"},
    {"<a> <b/> </a>", "<a><b /></a>"},
    {"<a>\r\n<b> x </b>\r\n<c/>\r\n</a>", "<a><b> x </b><c /></a>"},
    {"<a><a><a>x</a></a><a/></a>", "<a><a><a>x</a></a><a /></a>"},
    {"<a><b></b><b>2</b><b/></a>", "<a><b /><b>2</b><b /></a>"},
    {"<a>/</a>", "<a>/</a>"},
    {"<a>=\"!?-</a>", "<a>=&quot;!?-</a>"},
};
INSTANTIATE_TEST_SUITE_P (Elements, XMLAccepted, testing::ValuesIn (elements));

constexpr Row entity_rows[] = {
    {"<a>&lt;&amp;</a>", "<a>&lt;&amp;</a>"},
    {"<a>&bogus;</a>", "<a>&amp;bogus;</a>"},
    {"<a>b&gt;c</a>", "<a>b&gt;c</a>"},
    {"<a>&apos;&quot;</a>", "<a>&apos;&quot;</a>"},
    {"<a>&</a>", "<a>&amp;</a>"},
    {"<a>&lt</a>", "<a>&amp;lt</a>"},
    {"<a>&#65;</a>", "<a>&amp;#65;</a>"},
    {"<a>&amp;lt;</a>", "<a>&amp;lt;</a>"},
};
INSTANTIATE_TEST_SUITE_P (Entities, XMLAccepted, testing::ValuesIn (entity_rows));

// Every code point from U+0100 up is white space: it may stand around names and beside elements.
constexpr Row wide[] = {
    {"<a>\xC4\x80<b/>\xE2\x82\xAC</a>", "<a><b /></a>"},
    {"<a><b/>\xF0\x9F\x8E\xAC<c/></a>", "<a><b /><c /></a>"},
    {"\xC4\x80<a/>\xE2\x82\xAC", "<a />"},
    {"<\xC4\x80\x61\xC4\x80/\xC4\x80>", "<a />"},
    {"<a>x</\xC4\x80\x61>", "<a>x</a>"},
    {"<a>\xC4\x80</a>", "<a>\xC4\x80</a>"},
    {"<a>\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xAC</a>", "<a>\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xAC</a>"},
};
INSTANTIATE_TEST_SUITE_P (Wide, XMLAccepted, testing::ValuesIn (wide));

class XMLRefused : public testing::TestWithParam<const char *> {};
TEST_P (XMLRefused, Text) {
  EXPECT_EQ (parsed (GetParam ()), "refused") << GetParam ();
}

constexpr const char *brackets[] = {
    "<a>b>c</a>", ">",          "a>",        "<a/>>",         "<",  "<a",  "<a></a",
    "<a>x<</a>",  "<a>x</a><",  "<a><b</a>", "<a><b<c/></a>", "<>", "< >", "<a><></a>",
    "<a>< ></a>", "<\xC4\x80>", "<a>></a>"};
INSTANTIATE_TEST_SUITE_P (Brackets, XMLRefused, testing::ValuesIn (brackets));

constexpr const char *slashes[] = {"</a/>",    "</>",        "</ >",  "</ />",        "<//>",  "</a></a>",
                                   "<a></a/>", "<a></></a>", "<a//>", "<a><//b></a>", "< / >", "<a/b>"};
INSTANTIATE_TEST_SUITE_P (Slashes, XMLRefused, testing::ValuesIn (slashes));

constexpr const char *beyond_the_subset[] = {
    "<a b=\"c\"></a>",   "<a b='c'/>",           "<a b></a>",
    "<a><!-- c --></a>", "<!-- c --><a/>",       "<?xml version=\"1.0\"?><a/>",
    "<!DOCTYPE a><a/>",  "<a><![CDATA[x]]></a>", "<a x='>'/>"};
INSTANTIATE_TEST_SUITE_P (BeyondTheSubset, XMLRefused, testing::ValuesIn (beyond_the_subset));

constexpr const char *bad_names[] = {
    "<1a/>",       "<_a/>",        "<a-b/>",           "<a:b/>",     "<a.b/>",      "<a b/>",
    "<\xC3\xA9/>", "<a\xC3\xA9/>", "<a\xC4\x80\x62/>", "<a>x</a-b>", "<a\xC2\x80/>"};
INSTANTIATE_TEST_SUITE_P (Names, XMLRefused, testing::ValuesIn (bad_names));

constexpr const char *structure[] = {
    "</a>",     "<a></b>",   "<a></A>",   "<a></aa>",  "<aa></a>",      "<a><b></a></b>",
    "<a/><b/>", "<a/> <b/>", "<a/></a>",  "<a/> </b>", "<a></a><a>",    "<a></a><a></a>",
    "x<a/>",    "<a/>x",     "<a/>&amp;", "<a>",       "<a><b></b>",    "<a><b/>",
    "",         "   ",       "text",      "\xC4\x80",  "<a><b></c></a>"};
INSTANTIATE_TEST_SUITE_P (Structure, XMLRefused, testing::ValuesIn (structure));

constexpr const char *mixed[] = {"<a>x<b/></a>",         "<a><b/>x</a>",        "<a><b/> <c/>x</a>",
                                 "<a><b/>x<c/></a>",     "<a>&amp;<b/></a>",    "<a><b>x<c/></b></a>",
                                 "<a>\xC4\x80x<b/></a>", "<a>\xC3\xA9<b/></a>", "<a><b/>x<c/> </a>"};
INSTANTIATE_TEST_SUITE_P (MixedContent, XMLRefused, testing::ValuesIn (mixed));

TEST (XMLParse, NulCountsAsWhiteSpace) {
  const uint32_t around[] = {0, '<', 0, 'a', 0, '>', '<', 'b', '/', '>', 0, '<', '/', 'a', '>', 0};
  EXPECT_EQ (parsed (AString::from_utf32 (around, 16)), "<a><b /></a>");
  const uint32_t inside[] = {'<', 'a', 0, 'b', '/', '>'};
  EXPECT_EQ (parsed (AString::from_utf32 (inside, 6)), "refused");
}

TEST (XMLParse, BadResultMayBeNullAndIsAlwaysSet) {
  EXPECT_TRUE (parse_xml_text ("<a").is_null ());
  EXPECT_FALSE (parse_xml_text ("<a/>").is_null ());
  bool bad = true;
  (void)parse_xml_text ("<a/>", &bad);
  EXPECT_FALSE (bad);
  (void)parse_xml_text ("<a", &bad);
  EXPECT_TRUE (bad);
}

TEST (XMLParse, TextIsKeptDecoded) {
  const XMLTree tree = parse_xml_text ("<a>&lt;b&gt; &amp;amp; &bogus;</a>");
  EXPECT_TRUE (tree.text () == "<b> &amp; &bogus;");
}

TEST (XMLParse, BlankTextBesideChildrenIsDropped) {
  const XMLTree tree = parse_xml_text ("<a> \n<b/>\t</a>");
  EXPECT_TRUE (tree.text ().is_empty ());
  EXPECT_EQ (tree.children ().size (), 1u);
}

TEST (XMLParse, OnlyTheWholeTextIsSharedWithItsPieces) {
  const AString text = AString ("<name>") + AString ("x") * 100 + "</name>";
  const XMLTree near = parse_xml_text (text);
  EXPECT_TRUE (near.text ().shares_store_with (text));
  EXPECT_FALSE (near.name ().shares_store_with (text));
  EXPECT_EQ (near.name ().store_length (), 4u);
  const AString longer = AString ("<r><name>") + AString ("x") * 100 + "</name><more>12345</more></r>";
  const XMLTree far = parse_xml_text (longer);
  EXPECT_FALSE (far.child ("name").text ().shares_store_with (longer));
  EXPECT_EQ (far.child ("name").text ().store_length (), 100u);
}

TEST (XMLParse, AViewOfALongerTextIsParsedAlone) {
  const AString text ("junk <a><b>x</b></a> more");
  EXPECT_EQ (parsed (text.mid (5, 15)), "<a><b>x</b></a>");
  EXPECT_EQ (parsed (text), "refused");
}

TEST (XMLParse, LongTextsCrossSegments) {
  const AString long_name = AString ("n") * 200;
  const AString long_text = AString ("text & ") * 100;
  const XMLTree tree =
      parse_xml_text (AString ("<") + long_name + ">" + encode_entities (long_text) + "</" + long_name + ">");
  EXPECT_TRUE (tree.name () == long_name);
  EXPECT_TRUE (tree.text () == long_text);
}

struct EntityCase {
  const char *coded;
  const char *plain;
};

TEST (XMLEntities, Decode) {
  const EntityCase rows[] = {
      {"", ""},
      {"plain", "plain"},
      {"&apos;&lt;&gt;&quot;&amp;", "'<>\"&"},
      {"a&lt;b&lt;c", "a<b<c"},
      {"&amp;lt;", "&lt;"},
      {"&amp;amp;amp;", "&amp;amp;"},
      {"&", "&"},
      {"&&lt;", "&<"},
      {"&l&lt;t;", "&l<t;"},
      {"&#65;&nbsp;&unknown;", "&#65;&nbsp;&unknown;"},
      {"&LT;", "&LT;"},
      {"&lt", "&lt"},
      {"lt;", "lt;"},
      {"x&gt;", "x>"},
      {"&quot;x&quo", "\"x&quo"},
  };
  for (const EntityCase &row : rows)
    EXPECT_EQ (decode_entities (row.coded).to_std_string (), row.plain) << row.coded;
}

TEST (XMLEntities, Encode) {
  const EntityCase rows[] = {
      {"", ""},
      {"plain", "plain"},
      {"&apos;&lt;&gt;&quot;&amp;", "'<>\"&"},
      {"&amp;lt;", "&lt;"},
      {"a&amp;&amp;b", "a&&b"},
      {"x&lt;", "x<"},
  };
  for (const EntityCase &row : rows)
    EXPECT_EQ (encode_entities (row.plain).to_std_string (), row.coded) << row.plain;
}

TEST (XMLEntities, TextsWithoutAnyAreSharedNotCopied) {
  const AString text ("nothing to do #;");
  EXPECT_TRUE (decode_entities (text).shares_store_with (text));
  EXPECT_TRUE (encode_entities (text).shares_store_with (text));
  const AString bare ("fish & chips");
  EXPECT_TRUE (decode_entities (bare) == bare);
}

TEST (XMLEntities, LongTextsCrossSegments) {
  std::string plain, coded;
  for (int i = 0; i != 200; ++i) {
    plain += std::string (static_cast<size_t> (i % 7), 'x') + "&\xC3\xA9<";
    coded += std::string (static_cast<size_t> (i % 7), 'x') + "&amp;\xC3\xA9&lt;";
  }
  EXPECT_EQ (encode_entities (AString::from_utf8 (plain)).to_std_string (), coded);
  EXPECT_EQ (decode_entities (AString::from_utf8 (coded)).to_std_string (), plain);
}
} // namespace
