#include "base/avariant.h"
#include "base/enumstring.h"

#include <gtest/gtest.h>

namespace {

constexpr EnumStringTextRow rows[] = {{0, "off"}, {1, "on"}, {7, "seven"}};

const EnumString &with_zero () {
  static const EnumString &table = *new EnumString (rows, 3);
  return table;
}

const EnumString &without_zero () {
  static const EnumString &table = *new EnumString (rows + 1, 2, 99, "none");
  return table;
}

TEST (EnumString, integers_must_be_numbers_of_the_table) {
  uint32_t out = 5;
  EXPECT_TRUE (with_zero ().from_variant (AVariant (7), &out));
  EXPECT_EQ (out, 7u);
  EXPECT_TRUE (with_zero ().from_variant (AVariant (1ULL), nullptr));
  EXPECT_FALSE (with_zero ().from_variant (AVariant (2), &out));
  EXPECT_FALSE (with_zero ().from_variant (AVariant (-1), &out));
  EXPECT_EQ (out, 7u);
}

TEST (EnumString, texts_may_be_spellings_or_numbers) {
  uint32_t out = 5;
  EXPECT_TRUE (with_zero ().from_variant (AVariant ("seven"), &out));
  EXPECT_EQ (out, 7u);
  EXPECT_TRUE (with_zero ().from_variant (AVariant ("1"), &out));
  EXPECT_EQ (out, 1u);
  EXPECT_FALSE (with_zero ().from_variant (AVariant ("2"), &out));
  EXPECT_EQ (out, 1u);
}

TEST (EnumString, an_unknown_text_reads_as_number_0) {
  uint32_t out = 5;
  EXPECT_TRUE (with_zero ().from_variant (AVariant ("Seven"), &out));
  EXPECT_EQ (out, 0u);
  EXPECT_TRUE (with_zero ().from_variant (AVariant (), &out));
  EXPECT_FALSE (without_zero ().from_variant (AVariant ("Seven"), &out));
  EXPECT_FALSE (without_zero ().from_variant (AVariant (), &out));
}

TEST (EnumString, bools_and_characters_by_text_then_number) {
  uint32_t out = 5;
  EXPECT_TRUE (with_zero ().from_variant (AVariant (true), &out));
  EXPECT_EQ (out, 1u);
  EXPECT_TRUE (without_zero ().from_variant (AVariant (AChar (U'\7')), &out));
  EXPECT_EQ (out, 7u);
}

TEST (EnumString, value_of_and_text_of_variants) {
  EXPECT_EQ (without_zero ().value_of ("on"), 1u);
  EXPECT_EQ (without_zero ().value_of (AVariant ("on")), 1u);
  EXPECT_EQ (without_zero ().value_of (AVariant ("x")), 99u);
  EXPECT_EQ (without_zero ().value_of (AVariant (3), 42), 42u);
  EXPECT_TRUE (without_zero ().text_of (AVariant ("7")) == "seven");
  EXPECT_TRUE (without_zero ().text_of (AVariant (3)) == "none");
  EXPECT_TRUE (without_zero ().text_of (AVariant (3), "other") == "other");
}

} // namespace
