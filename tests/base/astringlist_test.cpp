#include "base/astringlist.h"

#include "support/assert_counter.h"
#include "support/text_points.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Texts = std::vector<std::string>;

Texts texts (const AStringList &list) {
  Texts all;
  for (const AString &text : list)
    all.push_back (text.to_std_string ());
  return all;
}

AStringList list_of (const Texts &all) {
  AStringList list;
  for (const std::string &text : all)
    list.append (AString::from_utf8 (text));
  return list;
}

TEST (AStringList, EmptyWithoutAList) {
  const AStringList list;
  EXPECT_EQ (list.size (), 0u);
  EXPECT_TRUE (list.is_empty ());
  EXPECT_TRUE (list.begin () == list.end ());
  EXPECT_TRUE (AStringList (list) == list);
}

TEST (AStringList, AppendsInOrder) {
  const AStringList list = list_of ({"a", "b", "c"});
  EXPECT_EQ (list.size (), 3u);
  EXPECT_EQ (list.at (0), "a");
  EXPECT_EQ (list.at (2), "c");
  EXPECT_EQ (texts (list), (Texts{"a", "b", "c"}));
}

TEST (AStringList, AtPastTheEndIsReported) {
  AssertCounter asserts;
  EXPECT_EQ (list_of ({"a"}).at (1), "");
  EXPECT_EQ (AStringList ().at (0), "");
  EXPECT_EQ (asserts.count (), 2u);
}

TEST (AStringList, CopiesShareUntilWritten) {
  const AStringList first = list_of ({"a", "b"});
  AStringList copy = first;
  EXPECT_TRUE (copy.shares_list_with (first));
  copy.append ("c");
  EXPECT_FALSE (copy.shares_list_with (first));
  EXPECT_EQ (texts (first), (Texts{"a", "b"}));
  EXPECT_EQ (texts (copy), (Texts{"a", "b", "c"}));
  EXPECT_TRUE (copy.at (0).shares_store_with (first.at (0))) << "the texts are still shared";
}

TEST (AStringList, TakesItsFirst) {
  AStringList list = list_of ({"a", "b", "c"});
  const AStringList copy = list;
  EXPECT_EQ (list.take_first (), "a");
  EXPECT_EQ (texts (copy), (Texts{"a", "b", "c"}));
  EXPECT_EQ (texts (list), (Texts{"b", "c"}));
  EXPECT_EQ (list.take_first (), "b");
  EXPECT_EQ (list.take_first (), "c");
  EXPECT_EQ (list.size (), 0u);
  EXPECT_EQ (list.take_first (), "");
  list.append ("d");
  EXPECT_EQ (texts (list), (Texts{"d"}));
}

TEST (AStringList, LongListsAreReadOffInLinearTime) {
  AStringList list;
  for (uint32_t i = 0; i != 20000; ++i)
    list.append (AString::from_uint32 (i));
  for (uint32_t i = 0; i != 20000; ++i) {
    uint32_t number = 0;
    ASSERT_TRUE (list.take_first ().to_uint32 (&number));
    ASSERT_EQ (number, i);
  }
  EXPECT_TRUE (list.is_empty ());
}

TEST (AStringList, Equality) {
  EXPECT_TRUE (list_of ({"a", "b"}) == list_of ({"a", "b"}));
  EXPECT_FALSE (list_of ({"a", "b"}) == list_of ({"a", "c"}));
  EXPECT_FALSE (list_of ({"a", "b"}) == list_of ({"a"}));
  EXPECT_FALSE (list_of ({"a"}) == AStringList ());
}

TEST (AStringSplit, BySeparator) {
  const struct {
    const char *text;
    const char *separator;
    bool keep_empty;
    Texts expected;
  } cases[] = {{"a,,b", ",", false, {"a", "b"}},
               {"a,,b", ",", true, {"a", "", "b"}},
               {"a,", ",", true, {"a", ""}},
               {"a,", ",", false, {"a"}},
               {",a", ",", true, {"", "a"}},
               {",a", ",", false, {"a"}},
               {",", ",", true, {"", ""}},
               {",", ",", false, {}},
               {"", ",", true, {}},
               {"", ",", false, {}},
               {"abc", ",", true, {"abc"}},
               {"a--b-c", "--", true, {"a", "b-c"}},
               {"a---b", "--", true, {"a", "-b"}},
               {"----", "--", true, {"", "", ""}},
               {"abc", "", true, {"abc"}},
               {"abc", "", false, {"abc"}},
               {"abc", "abc", true, {"", ""}},
               {"abc", "abcd", true, {"abc"}}};
  for (const auto &c : cases)
    EXPECT_EQ (texts (AString (c.text).split (AString (c.separator), c.keep_empty)), c.expected) << c.text;
}

TEST (AStringSplit, PiecesShareTheStore) {
  const AString text = AString ("xx,yy,zz").mid (1);
  for (const AString &piece : text.split (","))
    EXPECT_TRUE (piece.shares_store_with (text));
}

// Finds runs of digits.
void find_digits (const AString &text, int64_t start, int64_t *position, int64_t *length) {
  EXPECT_EQ (*position, -1);
  EXPECT_EQ (*length, 1);
  const auto from = static_cast<uint64_t> (start);
  *position = text.find_if ([] (AChar c) { return c.is_digit (); }, from);
  if (*position >= 0)
    *length = static_cast<int64_t> (text.mid (static_cast<uint64_t> (*position)).leading_digits ().length ());
}

TEST (AStringSplit, ByFinder) {
  const ADelimiterFinder digits (find_digits);
  const AString text ("ab12c3");
  EXPECT_EQ (texts (text.split (digits, false, false)), (Texts{"ab", "c"}));
  EXPECT_EQ (texts (text.split (digits, true, false)), (Texts{"ab", "12", "c", "3"}));
  EXPECT_EQ (texts (text.split (digits, true, true)), (Texts{"ab", "12", "c", "3", ""}));
  EXPECT_EQ (texts (text.split (digits, false, true)), (Texts{"ab", "c", ""}));
  EXPECT_EQ (texts (AString ("12ab").split (digits, true, false)), (Texts{"12", "ab"}));
  EXPECT_EQ (texts (AString ().split (digits, true, true)), (Texts{}));
  EXPECT_EQ (texts (text.split (ADelimiterFinder (), true, true)), (Texts{"ab12c3"}));
}

void find_nothing_long (const AString &text, int64_t start, int64_t *position, int64_t *length) {
  *position = text.find ('|', start);
  *length = 0;
}

TEST (AStringSplit, ADelimiterOfNoLengthCountsAsOne) {
  const ADelimiterFinder finder (find_nothing_long);
  EXPECT_EQ (texts (AString ("a|b||c").split (finder, true, true)), (Texts{"a", "b", "", "c"}));
  EXPECT_EQ (texts (AString ("a|b||c").split (finder, true, false)), (Texts{"a", "b", "c"}));
}

void find_behind (const AString &, int64_t start, int64_t *position, int64_t *length) {
  *position = start == 0 ? 2 : 0;
  *length = 1;
}
void find_negative_length (const AString &, int64_t, int64_t *position, int64_t *length) {
  *position = 1;
  *length = -5;
}
void find_far_away (const AString &, int64_t start, int64_t *position, int64_t *) {
  *position = start + 1000;
}

TEST (AStringSplit, WrongFindersComeToAnEnd) {
  AssertCounter asserts;
  EXPECT_EQ (texts (AString ("abcd").split (ADelimiterFinder (find_behind), false, false)),
             (Texts{"ab", "d"}));
  EXPECT_EQ (asserts.take (), 1u);
  EXPECT_EQ (texts (AString ("abcd").split (ADelimiterFinder (find_negative_length), false, false)),
             (Texts{"abcd"}));
  EXPECT_EQ (asserts.take (), 1u);
  EXPECT_EQ (texts (AString ("abcd").split (ADelimiterFinder (find_far_away), false, false)),
             (Texts{"abcd"}));
  EXPECT_EQ (asserts.take (), 0u);
}

TEST (AStringSplit, LongTexts) {
  const AStringList pieces = (AString ("a,") * 50000).split (",", false);
  EXPECT_EQ (pieces.size (), 50000u);
}

TEST (AStringJoin, WithAndWithoutSeparator) {
  const AStringList list = list_of ({"a", "", "bc"});
  EXPECT_EQ (AString (list), "abc");
  EXPECT_EQ (AString (list, ", "), "a, , bc");
  EXPECT_EQ (AString (AStringList (), ","), "");
  const AStringList one = list_of ({"only"});
  EXPECT_EQ (AString (one, ","), "only");
  EXPECT_TRUE (AString (one, ",").shares_store_with (one.at (0)));
  EXPECT_EQ (AString (list_of ({"", ""}), ""), "");
}

TEST (AStringJoin, UndoesSplit) {
  for (const char *text : {"a,b,c", ",", ",,a", "a", "a,,"})
    EXPECT_EQ (AString (AString (text).split (",", true), ","), text);
}

} // namespace
