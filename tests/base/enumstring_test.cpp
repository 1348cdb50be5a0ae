#include "base/enumstring.h"

#include "support/assert_counter.h"
#include "support/text_points.h"

#include <gtest/gtest.h>

namespace {

const EnumStringTextRow colours[] = {{3, "red"}, {1, "green"}, {2, nullptr}, {4, "Blue"}};

TEST (EnumString, BothWays) {
  const EnumString table (colours, 4);
  uint32_t number = 0;
  AString spelling;
  EXPECT_TRUE (table.from_string ("green", &number));
  EXPECT_EQ (number, 1u);
  EXPECT_TRUE (table.to_string (4, &spelling));
  EXPECT_EQ (spelling, "Blue");
  EXPECT_TRUE (table.from_string ("red"));
  EXPECT_TRUE (table.to_string (3));
  EXPECT_FALSE (table.from_string ("pink", &number));
  EXPECT_EQ (number, 1u) << "left alone on failure";
  EXPECT_FALSE (table.to_string (9, &spelling));
  EXPECT_EQ (spelling, "Blue");
}

TEST (EnumString, DefaultsAreTheFirstRow) {
  const EnumString table (colours, 4);
  EXPECT_EQ (table.value_of ("pink"), 3u);
  EXPECT_EQ (table.value_of ("pink", 77), 77u);
  EXPECT_EQ (table.value_of ("green", 77), 1u);
  EXPECT_EQ (table.value_of ("green"), 1u);
  EXPECT_EQ (table.text_of (99), "red");
  EXPECT_EQ (table.text_of (99, "?"), "?");
  EXPECT_EQ (table.text_of (4, "?"), "Blue");
  EXPECT_EQ (table.text_of (4), "Blue");
}

TEST (EnumString, GivenDefaults) {
  const EnumString table (colours, 4, 88, "unknown");
  EXPECT_EQ (table.value_of ("pink"), 88u);
  EXPECT_EQ (table.text_of (99), "unknown");
  EXPECT_EQ (table.value_of ("red"), 3u);
  const EnumStringRow rows[] = {{5, AString ("five")}};
  const EnumString texts (rows, 1, 6, "six");
  EXPECT_EQ (texts.value_of ("five"), 5u);
  EXPECT_EQ (texts.value_of ("x"), 6u);
  EXPECT_EQ (texts.text_of (1), "six");
}

TEST (EnumString, RowsOfTexts) {
  const EnumStringRow rows[] = {{5, AString ("five")}, {6, AString ()}, {7, fresh (U"\u20AC")}};
  const EnumString table (rows, 3);
  EXPECT_EQ (table.value_of (fresh (U"\u20AC")), 7u);
  EXPECT_TRUE (table.text_of (5).shares_store_with (rows[0].spelling));
  EXPECT_EQ (table.text_of (6), "five") << "an empty spelling is no entry";
  EXPECT_FALSE (table.from_string (AString ()));
}

TEST (EnumString, SpellingsAreLatin1) {
  const EnumStringTextRow rows[] = {{1, "caf\xE9"}};
  EXPECT_EQ (EnumString (rows, 1).text_of (1), fresh (U"caf\u00E9"));
}

TEST (EnumString, ANullSpellingIsNoEntry) {
  const EnumString table (colours, 4);
  EXPECT_FALSE (table.to_string (2));
  EXPECT_EQ (table.text_of (2), "red");
  const EnumStringTextRow null_first[] = {{9, nullptr}, {1, "one"}};
  const EnumString other (null_first, 2);
  EXPECT_EQ (other.value_of ("x"), 9u);
  EXPECT_EQ (other.text_of (5), "");
}

TEST (EnumString, LookupsAreExact) {
  const EnumString table (colours, 4);
  for (const char *near : {"Red", "RED", "red ", "re", "", "blue"})
    EXPECT_FALSE (table.from_string (near)) << near;
}

TEST (EnumString, TheFirstRowWinsInEachDirection) {
  const EnumStringTextRow rows[] = {{1, "one"}, {1, "uno"}, {2, "one"}, {3, "three"}};
  const EnumString table (rows, 4);
  EXPECT_EQ (table.text_of (1), "one") << "two spellings of a number: the first is written";
  EXPECT_EQ (table.value_of ("uno", 0), 1u) << "and both are read";
  EXPECT_EQ (table.value_of ("one", 0), 1u) << "two numbers of a spelling: it reads as the first";
  EXPECT_EQ (table.text_of (2), "one") << "and both write it";
}

TEST (EnumString, AddsLater) {
  EnumString table (colours, 4);
  table.add (2, "amber");
  table.add (3, "scarlet");
  table.add (7, "");
  EXPECT_EQ (table.text_of (2), "amber");
  EXPECT_EQ (table.text_of (3), "red");
  EXPECT_EQ (table.value_of ("scarlet"), 3u);
  EXPECT_FALSE (table.to_string (7));
}

TEST (EnumString, WithoutRows) {
  AssertCounter asserts;
  const EnumString none (colours, 0);
  const EnumString null (static_cast<const EnumStringRow *> (nullptr), 3);
  EXPECT_EQ (asserts.take (), 2u);
  for (const EnumString *table : {&none, &null}) {
    EXPECT_EQ (table->value_of ("red"), 4294967295u);
    EXPECT_EQ (table->text_of (3), "");
    EXPECT_FALSE (table->from_string ("red"));
  }
  const EnumString defaults (colours, 0, 5, "five");
  const EnumString null_defaults (static_cast<const EnumStringTextRow *> (nullptr), 2, 5, "five");
  EXPECT_EQ (asserts.take (), 2u);
  EXPECT_EQ (defaults.value_of ("red"), 5u);
  EXPECT_EQ (null_defaults.text_of (3), "five");
}

} // namespace
