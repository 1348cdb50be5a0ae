#include "base/astringformat.h"

#include "support/text_points.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

TEST (AStringFormat, FillsInTheOrderOfTheNumbers) {
  EXPECT_EQ (AStringFormat ("%1").arg ("x").to_string (), "x");
  EXPECT_EQ (AStringFormat ("%2 %1").arg ("a").arg ("b").to_string (), "b a");
  EXPECT_EQ (AStringFormat ("%7-%3-%5").arg ("a").arg ("b").arg ("c").to_string (), "c-a-b");
  EXPECT_EQ (AStringFormat ("%0 %1").arg ("zero").arg ("one").to_string (), "zero one");
  EXPECT_EQ (AStringFormat ("%1 %0").arg ("zero").arg ("one").to_string (), "one zero");
  EXPECT_EQ (AStringFormat ("Tag '%1' not found within '%2'").arg ("Speed").arg ("play").to_string (),
             "Tag 'Speed' not found within 'play'");
}

TEST (AStringFormat, EachCallFillsOnePiece) {
  EXPECT_EQ (AStringFormat ("%1 and %1").arg ("a").to_string (), "a and %1");
  EXPECT_EQ (AStringFormat ("%1 and %1").arg ("a").arg ("b").to_string (), "a and b");
  EXPECT_EQ (AStringFormat ("%2%1%2%1").arg ("a").arg ("b").arg ("c").arg ("d").to_string (), "cadb");
}

TEST (AStringFormat, AdjacentPlaceholders) {
  EXPECT_EQ (AStringFormat ("%1%2").arg ("a").arg ("b").to_string (), "ab");
  EXPECT_EQ (AStringFormat ("%1%2").arg ("a").to_string (), "a%2");
}

TEST (AStringFormat, WhatIsNoPlaceholderIsLiteral) {
  for (const char *literal : {"%", "%%", "50%", "100% of it", "%123", "%1234 ", "% 1", "%a1", "", "plain"})
    EXPECT_EQ (AStringFormat (literal).arg ("x").to_string (), literal);
  EXPECT_EQ (AStringFormat ("%12").arg ("x").to_string (), "x");
  EXPECT_EQ (AStringFormat ("%12 %2").arg ("two").arg ("twelve").to_string (), "twelve two");
  EXPECT_EQ (AStringFormat ("%%1").arg ("x").to_string (), "%x");
  EXPECT_EQ (AStringFormat ("%123%1").arg ("x").to_string (), "%123x");
  EXPECT_EQ (AStringFormat ("%1a").arg ("x").to_string (), "xa");
  EXPECT_EQ (AStringFormat ("%01 %2").arg ("a").arg ("b").to_string (), "a b");
  EXPECT_EQ (AStringFormat (fresh (U"%1\u0661")).arg ("x").to_string (), fresh (U"x\u0661"))
      << "ASCII digits only";
}

TEST (AStringFormat, SurplusAndMissingValues) {
  EXPECT_EQ (AStringFormat ("%1").arg ("a").arg ("b").to_string (), "a");
  EXPECT_EQ (AStringFormat ("").arg ("a").arg (1).to_string (), "");
  EXPECT_EQ (AStringFormat ("%1 %2").to_string (), "%1 %2");
}

TEST (AStringFormat, ValuesAreNotSearched) {
  EXPECT_EQ (AStringFormat ("%1 %2").arg ("%2").arg ("b").to_string (), "%2 b");
  EXPECT_EQ (AStringFormat ("%1").arg ("%1").arg ("x").to_string (), "%1");
}

TEST (AStringFormat, Numbers) {
  EXPECT_EQ (AStringFormat ("%1").arg (7, 3, '0').to_string (), "007");
  EXPECT_EQ (AStringFormat ("%1|").arg (7, -3, ' ').to_string (), "7  |");
  EXPECT_EQ (AStringFormat ("%1").arg (7, 3).to_string (), "  7");
  EXPECT_EQ (AStringFormat ("%1").arg (-5, 3, '0').to_string (), "-05");
  EXPECT_EQ (AStringFormat ("%1 %2").arg (INT_MIN).arg (UINT_MAX).to_string (), "-2147483648 4294967295");
  EXPECT_EQ (AStringFormat ("%1 %2").arg (-3L).arg (3UL).to_string (), "-3 3");
  EXPECT_EQ (AStringFormat ("%1 %2").arg (LLONG_MIN).arg (ULLONG_MAX).to_string (),
             "-9223372036854775808 18446744073709551615");
  EXPECT_EQ (AStringFormat ("%1 %2").arg (INT64_MAX).arg (UINT64_MAX).to_string (),
             "9223372036854775807 18446744073709551615");
}

TEST (AStringFormat, Pointers) {
  const auto pointer = [] (uintptr_t value) { return reinterpret_cast<const void *> (value); };
  EXPECT_EQ (AStringFormat ("%1").arg (pointer (0x1F)).to_string (), "0x              1F");
  EXPECT_EQ (AStringFormat ("%1").arg (pointer (0)).to_string (), "0x               0");
  EXPECT_EQ (AStringFormat ("%1").arg (pointer (0xFEDCBA9876543210)).to_string (), "0xFEDCBA9876543210");
}

TEST (AStringFormat, OneWholePieceSharesItsStore) {
  const AString value = fresh (U"value");
  EXPECT_TRUE (AString (AStringFormat ("%1").arg (value)).shares_store_with (value));
}

TEST (AStringFormat, LatinTextValues) {
  const char *text = "caf\xE9";
  EXPECT_EQ (AStringFormat ("<%1>").arg (text).to_string (), "<caf\xE9>") << "a text, not a pointer";
}

TEST (AStringArg, FormatsAfresh) {
  EXPECT_EQ (AString ("%2 %1").arg ("a").arg ("b"), "b a");
  EXPECT_EQ (AString ("%1 %2").arg ("%2").arg ("b"), "b %2") << "a chain sees what the values brought in";
  EXPECT_EQ (AString ("%1").arg (AString ("x")), "x");
  EXPECT_EQ (AString ("%1").arg (7, 3, '0'), "007");
  EXPECT_EQ (AString ("%1 %2 %3 %4 %5 %6").arg (-1).arg (2u).arg (-3L).arg (4UL).arg (-5LL).arg (6ULL),
             "-1 2 -3 4 -5 6");
  EXPECT_EQ (AString ("%1").arg (static_cast<const void *> (nullptr)), "0x               0");
  EXPECT_EQ (AString ("none").arg (1), "none");
}

} // namespace
