#include "base/astring.h"

#include "support/assert_counter.h"
#include "support/text_points.h"

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr uint64_t to_end = AString::to_end;

TEST (AStringFind, Char) {
  const AString text = AString ("-abcabc-").mid (1, 6);
  EXPECT_EQ (text.find ('a'), 0);
  EXPECT_EQ (text.find ('a', 1), 3);
  EXPECT_EQ (text.find ('a', 4), -1);
  EXPECT_EQ (text.find ('c', 5), 5);
  EXPECT_EQ (text.find ('c', 6), -1);
  EXPECT_EQ (text.find ('-'), -1) << "outside the view";
  EXPECT_EQ (text.find ('a', 1000), -1);
  EXPECT_EQ (text.find ('b', -5), 1);
  EXPECT_EQ (AString ().find ('a'), -1);
  EXPECT_TRUE (text.contains ('b'));
  EXPECT_FALSE (text.contains ('x'));
  EXPECT_EQ ((AString ("x") * 1000 + "y").find ('y'), 1000);
}

TEST (AStringFind, CharFromTheEnd) {
  const AString text = AString ("-abcabc-").mid (1, 6);
  EXPECT_EQ (text.rfind ('a'), 3);
  EXPECT_EQ (text.rfind ('c'), 5);
  EXPECT_EQ (text.rfind ('-'), -1);
  EXPECT_EQ (text.rfind ('a', 3), 3);
  EXPECT_EQ (text.rfind ('a', 2), 0);
  EXPECT_EQ (text.rfind ('a', 100), 3);
  EXPECT_EQ (text.rfind ('c', 1), -1);
  EXPECT_EQ (text.rfind ('a', -1), -1);
  EXPECT_EQ (AString ().rfind ('a'), -1);
  EXPECT_EQ (("y" + AString ("x") * 1000).rfind ('y'), 0);
}

TEST (AStringFind, Text) {
  const struct {
    const char *text;
    const char *needle;
    int64_t from;
    int64_t expected;
  } cases[] = {{"hello", "l", 0, 2},
               {"hello", "ll", 0, 2},
               {"hello", "lo", 0, 3},
               {"hello", "lo", 4, -1},
               {"hello", "hello", 0, 0},
               {"hello", "hello!", 0, -1},
               {"hello", "x", 0, -1},
               {"hello", "he", 1, -1},
               {"hello", "he", -3, 0},
               {"", "a", 0, -1},
               {"", "ab", 0, -1},
               {"aaab", "aab", 0, 1},
               {"abababac", "ababac", 0, 2},
               {"abcabcabd", "abcabd", 0, 3},
               {"aabaabaaa", "aabaaa", 0, 3},
               {"a,b,c", ",", 2, 3},
               {"mississippi", "issip", 0, 4},
               {"mississippi", "ssi", 3, 5},
               {"hello", "", 0, 0},
               {"hello", "", 3, 0},
               {"", "", 0, 0},
               {"hello", "", 99, 0}};
  for (const auto &c : cases)
    EXPECT_EQ (AString (c.text).find (AString (c.needle), c.from), c.expected) << c.text << " " << c.needle;
  EXPECT_TRUE (AString ("hello").contains (AString ("ell")));
  EXPECT_FALSE (AString ("hello").contains (AString ("elo")));
  EXPECT_TRUE (AString ("hello").contains (AString ()));
}

TEST (AStringFind, TextAcrossSegmentsAndViews) {
  const AString text = AString ("x") * 62 + "abcdef" + AString ("y") * 100;
  EXPECT_EQ (text.find (AString ("abcdef")), 62);
  EXPECT_EQ (text.mid (60).find (AString ("-abcdef-").mid (1, 6)), 2);
  EXPECT_EQ (text.left (67).find (AString ("abcdef")), -1) << "the end lies outside the view";
  const AString long_needle = AString ("ab") * 60 + "c";
  EXPECT_EQ ((AString ("ab") * 5000 + "c").find (long_needle), 9880);
  EXPECT_EQ ((AString ("ab") * 5000).find (long_needle), -1);
}

TEST (AStringFind, AgreesWithAPlainSearch) {
  uint32_t state = 12345;
  const auto next = [&state] (uint32_t below) {
    state = state * 1664525u + 1013904223u;
    return (state >> 16) % below;
  };
  for (int round = 0; round != 3000; ++round) {
    std::string text (next (150), 'a');
    std::string needle (1 + next (round % 10 == 0 ? 40 : 6), 'a');
    for (char &c : text)
      c = static_cast<char> ('a' + next (2));
    for (char &c : needle)
      c = static_cast<char> ('a' + next (2));
    const size_t from = next (static_cast<uint32_t> (text.size ()) + 2);
    const size_t found = text.find (needle, from);
    const int64_t expected = found == std::string::npos ? -1 : static_cast<int64_t> (found);
    ASSERT_EQ (AString::from_latin1 (text).find (AString::from_latin1 (needle), static_cast<int64_t> (from)),
               expected)
        << text << " " << needle << " " << from;
  }
}

TEST (AStringFind, ByCondition) {
  const AString text = AString ("..12..3").mid (1);
  const auto digit = [] (AChar c) { return c.is_digit (); };
  EXPECT_EQ (text.find_if (digit), 1);
  EXPECT_EQ (text.find_if (digit, 3), 5);
  EXPECT_EQ (text.find_if (digit, 6), -1);
  EXPECT_EQ (text.rfind_if (digit, 5), 5);
  EXPECT_EQ (text.rfind_if (digit, 4), 2);
  EXPECT_EQ (text.rfind_if (digit, 0), -1);
  EXPECT_EQ (text.rfind_if (digit, 6), -1);
}

TEST (AStringCompare, Order) {
  const struct {
    const char *a;
    const char *b;
    int exact;
    int caseless;
  } cases[] = {{"", "", 0, 0},         {"a", "", 1, 1},          {"", "a", -1, -1},   {"a", "a", 0, 0},
               {"a", "b", -1, -1},     {"b", "a", 1, 1},         {"abc", "ab", 1, 1}, {"ab", "abc", -1, -1},
               {"abc", "abd", -1, -1}, {"A", "a", -1, 0},        {"Z", "a", -1, 1},   {"ABC", "abd", -1, -1},
               {"a", "\xE9", -1, -1},  {"\xC9", "\xE9", -1, -1}, {"[", "a", -1, -1},  {"@", "`", -1, -1}};
  for (const auto &c : cases) {
    const AString a (c.a);
    const AString b (c.b);
    EXPECT_EQ (AString::compare (a, 0, b, 0), c.exact) << c.a << " " << c.b;
    EXPECT_EQ (AString::compare (a, 0, b, 0, to_end, ACompareCaseless), c.caseless) << c.a << " " << c.b;
    EXPECT_EQ (a < b, c.exact < 0);
    EXPECT_EQ (a > b, c.exact > 0);
    EXPECT_EQ (a == b, c.exact == 0);
    EXPECT_EQ (a != b, c.exact != 0);
    EXPECT_EQ (a.equals_caseless (b), c.caseless == 0);
  }
  EXPECT_TRUE (fresh (U"\uFFFF") < fresh (U"\U00010000")) << "by code point, not by UTF-16 unit";
  EXPECT_FALSE (fresh (U"\u0410").equals_caseless (fresh (U"\u0430"))) << "ASCII letters only";
}

TEST (AStringCompare, OffsetsAndCounts) {
  const AString a ("xxabc");
  const AString b ("yabd");
  EXPECT_EQ (AString::compare (a, 2, b, 1, 2), 0);
  EXPECT_EQ (AString::compare (a, 2, b, 1, 3), -1);
  EXPECT_EQ (AString::compare (a, 2, b, 1, 0), 0);
  EXPECT_EQ (AString::compare (a, 5, b, 4), 0) << "both are at their end";
  EXPECT_EQ (AString::compare (a, 99, b, 99), 0);
  EXPECT_EQ (AString::compare (a, 5, b, 1), -1);
  EXPECT_EQ (AString::compare (a, 2, b, 4), 1);
  EXPECT_EQ (AString::compare (a, 2, b, 1, 100), -1);
  EXPECT_EQ (AString::compare (AString ("ab"), 0, AString ("abc"), 0, 2), 0);
  EXPECT_EQ (AString::compare (AString ("ab"), 0, AString ("abc"), 0, 3), -1);
}

TEST (AStringCompare, AViewEqualsItselfAtAnyOffsets) {
  const AString abc = fresh (U"abc");
  const AString copy = abc;
  EXPECT_EQ (AString::compare (abc, 0, abc, 1), 0);
  EXPECT_EQ (AString::compare (abc, 0, copy, 2, 1), 0);
  EXPECT_EQ (AString::compare (abc, 0, fresh (U"abc"), 1), -1) << "the same text in another store";
  EXPECT_EQ (AString::compare (abc, 0, abc.left (2), 1), -1) << "another view of the same store";
}

TEST (AStringCompare, AcrossSegmentsOfDifferentPhase) {
  const AString a = (AString ("-") * 10 + AString ("x") * 200 + "a").mid (10);
  const AString b = (AString ("-") * 37 + AString ("x") * 200 + "a").mid (37);
  const AString c = AString ("x") * 200 + "b";
  EXPECT_EQ (a, b);
  EXPECT_EQ (AString::compare (a, 0, c, 0), -1);
  EXPECT_EQ (AString::compare (a, 0, c, 0, 200), 0);
  EXPECT_EQ (AString::compare (a, 3, b, 3), 0);
}

TEST (AStringCompare, WithLatin1) {
  const AString text ("ab\xE9");
  EXPECT_TRUE (text.equals ("ab\xE9"));
  EXPECT_FALSE (text.equals ("ab"));
  EXPECT_FALSE (text.equals ("ab\xE9z"));
  EXPECT_FALSE (text.equals ("abe"));
  EXPECT_TRUE (text.equals (std::string_view ("ab\xE9zz", 3)));
  EXPECT_TRUE (AString ().equals (""));
  EXPECT_FALSE (fresh (U"\u0141").equals ("A")) << "only the low byte agrees";
  EXPECT_TRUE (fresh ({U'a', 0}).equals (std::string_view ("a\0", 2)));
  EXPECT_TRUE ("ab\xE9" == text);
  EXPECT_TRUE (text != "x");
  AssertCounter asserts;
  EXPECT_FALSE (text.equals (static_cast<const char *> (nullptr)));
  EXPECT_EQ (asserts.count (), 1u);
}

TEST (AStringCompare, StartsAndEnds) {
  const AString text ("Hello");
  EXPECT_TRUE (text.starts_with ("He"));
  EXPECT_TRUE (text.starts_with (""));
  EXPECT_TRUE (text.starts_with ("Hello"));
  EXPECT_FALSE (text.starts_with ("he"));
  EXPECT_TRUE (text.starts_with ("hE", ACompareCaseless));
  EXPECT_FALSE (text.starts_with ("Hello!"));
  EXPECT_TRUE (text.ends_with ("lo"));
  EXPECT_TRUE (text.ends_with (""));
  EXPECT_FALSE (text.ends_with ("LO"));
  EXPECT_TRUE (text.ends_with ("LO", ACompareCaseless));
  EXPECT_FALSE (text.ends_with ("xHello"));
  EXPECT_FALSE (AString ().ends_with ("x"));
}

TEST (AStringHash, SumsTheCodePoints) {
  EXPECT_EQ (AString ().hash (), 1u);
  EXPECT_EQ (AString ("a").hash (), 12430017993500518788u);
  EXPECT_EQ (AString ("ab").hash (), 4102949809915234491u);
  EXPECT_EQ (AString ("ba").hash (), 4102949809915234491u) << "order does not matter";
  EXPECT_EQ (fresh (U"\U00010348").hash (), 3579462130614010853u);
  const AString text ("-hello-");
  EXPECT_EQ (text.mid (1, 5).hash (), 9084207096449730425u);
  const AString copy = text.mid (1, 5);
  EXPECT_EQ (copy.hash (), 9084207096449730425u);
  EXPECT_EQ (copy.hash (), 9084207096449730425u);
}

} // namespace
