#include "base/avariant.h"
#include "support/assert_counter.h"

#include <gtest/gtest.h>

#include <cstring>
#include <utility>

namespace {

TEST (AVariant, types_of_its_constructors) {
  EXPECT_EQ (AVariant ().type (), 0u);
  EXPECT_EQ (AVariant (uint8_t{1}).type (), 1u);
  EXPECT_EQ (AVariant (uint16_t{1}).type (), 1u);
  EXPECT_EQ (AVariant (1U).type (), 1u);
  EXPECT_EQ (AVariant (1ULL).type (), 2u);
  EXPECT_EQ (AVariant (int8_t{1}).type (), 3u);
  EXPECT_EQ (AVariant (1).type (), 3u);
  EXPECT_EQ (AVariant (1LL).type (), 4u);
  EXPECT_EQ (AVariant (1L).type (), sizeof (long) == 4 ? 3u : 4u);
  EXPECT_EQ (AVariant (1UL).type (), sizeof (long) == 4 ? 1u : 2u);
  EXPECT_EQ (AVariant (true).type (), 5u);
  EXPECT_EQ (AVariant (AChar (U'x')).type (), 6u);
  EXPECT_EQ (AVariant (AString ("x")).type (), 7u);
  EXPECT_EQ (AVariant ("x").type (), 7u);
}

TEST (AVariant, is_integer) {
  EXPECT_FALSE (AVariant ().is_integer ());
  EXPECT_TRUE (AVariant (1U).is_integer ());
  EXPECT_TRUE (AVariant (1ULL).is_integer ());
  EXPECT_TRUE (AVariant (1).is_integer ());
  EXPECT_TRUE (AVariant (1LL).is_integer ());
  EXPECT_FALSE (AVariant (true).is_integer ());
  EXPECT_FALSE (AVariant (AChar (U'1')).is_integer ());
  EXPECT_FALSE (AVariant ("1").is_integer ());
}

TEST (AVariant, empty_gives_what_the_caller_falls_back_on) {
  const AVariant empty;
  EXPECT_EQ (empty.get_uint32 (1), 1u);
  EXPECT_EQ (empty.get_uint64 (2), 2u);
  EXPECT_EQ (empty.get_int32 (-3), -3);
  EXPECT_EQ (empty.get_int64 (-4), -4);
  EXPECT_TRUE (empty.get_bool (true));
  EXPECT_FALSE (empty.get_bool (false));
  EXPECT_EQ (empty.get_achar (AChar (U'y')), AChar (U'y'));
  EXPECT_TRUE (empty.get_string ("z") == "z");
}

TEST (AVariant, numbers_are_cut_to_the_width_asked_for) {
  EXPECT_EQ (AVariant (-1).get_uint32 (0), 4294967295u);
  EXPECT_EQ (AVariant (-1).get_uint64 (0), UINT64_MAX);
  EXPECT_EQ (AVariant (-1).get_int64 (0), -1);
  EXPECT_EQ (AVariant (4294967295U).get_uint64 (0), 4294967295u);
  EXPECT_EQ (AVariant (4294967295U).get_int32 (0), -1);
  EXPECT_EQ (AVariant (4294967295U).get_int64 (0), 4294967295);
  EXPECT_EQ (AVariant (0x123456789ULL).get_uint32 (0), 0x23456789u);
  EXPECT_EQ (AVariant (INT64_MIN).get_int32 (7), 0);
  EXPECT_EQ (AVariant (true).get_int32 (7), 1);
  EXPECT_EQ (AVariant (AChar (U'A')).get_uint32 (7), 65u);
  EXPECT_EQ (AVariant (0x100000041ULL).get_achar (AChar (U'y')), AChar (U'A'));
}

TEST (AVariant, texts_are_parsed) {
  EXPECT_EQ (AVariant ("abc").get_int32 (7), 7);
  EXPECT_EQ (AVariant ("12").get_int32 (7), 12);
  EXPECT_EQ (AVariant ("-12").get_int64 (7), -12);
  EXPECT_EQ (AVariant ("-12").get_uint32 (7), 7u);
  EXPECT_EQ (AVariant ("4294967296").get_uint32 (7), 7u);
  EXPECT_EQ (AVariant ("4294967296").get_uint64 (7), 4294967296u);
  EXPECT_EQ (AVariant ("2147483648").get_int32 (7), 7);
  EXPECT_EQ (AVariant ("").get_int32 (7), 7);
}

TEST (AVariant, bools) {
  EXPECT_TRUE (AVariant (5).get_bool (false));
  EXPECT_FALSE (AVariant (0).get_bool (true));
  EXPECT_FALSE (AVariant (false).get_bool (true));
  EXPECT_TRUE (AVariant (AChar (U'0')).get_bool (false));
  EXPECT_FALSE (AVariant ("").get_bool (true));
  EXPECT_FALSE (AVariant ("0").get_bool (true));
  EXPECT_FALSE (AVariant ("false").get_bool (true));
  EXPECT_TRUE (AVariant ("False").get_bool (false));
  EXPECT_TRUE (AVariant (" 0").get_bool (false));
}

TEST (AVariant, characters) {
  EXPECT_EQ (AVariant ("hello").get_achar (AChar (U'y')), AChar (U'h'));
  EXPECT_EQ (AVariant ("").get_achar (AChar (U'y')), AChar (U'y'));
  EXPECT_EQ (AVariant (true).get_achar (AChar (U'y')), AChar (U'\1'));
}

TEST (AVariant, strings) {
  EXPECT_TRUE (AVariant (4294967295U).get_string ("z") == "4294967295");
  EXPECT_TRUE (AVariant (UINT64_MAX).get_string ("z") == "18446744073709551615");
  EXPECT_TRUE (AVariant (-5).get_string ("z") == "-5");
  EXPECT_TRUE (AVariant (INT64_MIN).get_string ("z") == "-9223372036854775808");
  EXPECT_TRUE (AVariant (false).get_string ("z") == "false");
  EXPECT_TRUE (AVariant (true).get_string ("z") == "true");
  EXPECT_TRUE (AVariant (AChar (U'A')).get_string ("z") == "A");
  EXPECT_TRUE (AVariant ("text").get_string ("z") == "text");
  EXPECT_TRUE (AVariant ("").get_string ("z").is_empty ());
}

TEST (AVariant, copies_own_their_text) {
  const AVariant first ("text");
  AVariant copy (first);
  copy.clear ();
  EXPECT_TRUE (copy.is_empty ());
  EXPECT_TRUE (first.get_string ("z") == "text");
  copy = first;
  AVariant *const same = &copy;
  copy = *same;
  EXPECT_TRUE (copy.get_string ("z") == "text");
  copy = 7;
  EXPECT_EQ (copy.type (), 3u);
  EXPECT_EQ (copy.get_int32 (0), 7);
  copy = first;
  AVariant moved (std::move (copy));
  EXPECT_TRUE (moved.get_string ("z") == "text");
  copy = std::move (moved);
  EXPECT_TRUE (copy.get_string ("z") == "text");
  AVariant number (9);
  copy.swap (number);
  EXPECT_EQ (copy.get_int32 (0), 9);
  EXPECT_TRUE (number.get_string ("z") == "text");
}

TEST (AVariant, convert_to) {
  EXPECT_TRUE (AVariant (5).convert_to (0).is_empty ());
  EXPECT_EQ (AVariant ("5").convert_to (1).get_uint32 (0), 5u);
  EXPECT_EQ (AVariant ("x").convert_to (2).get_uint64 (9), 0u);
  EXPECT_EQ (AVariant ("-5").convert_to (3).get_int32 (0), -5);
  EXPECT_EQ (AVariant ("-5").convert_to (4).type (), 4u);
  EXPECT_FALSE (AVariant ().convert_to (5).get_bool (true));
  EXPECT_EQ (AVariant ("x").convert_to (6).get_uint32 (0), 120u);
  EXPECT_TRUE (AVariant (-5).convert_to (7).get_string ("z") == "-5");
  EXPECT_TRUE (AVariant ().convert_to (7).get_string ("z").is_empty ());
  EXPECT_EQ (AVariant ().convert_to (7).type (), 7u);
}

TEST (AVariant, convert_to_an_unknown_type_reports) {
  AssertCounter failures;
  EXPECT_TRUE (AVariant (5).convert_to (8).is_empty ());
  EXPECT_EQ (failures.count (), 1u);
}

/// A variant whose type no constructor makes.
AVariant of_unknown_type () {
  struct Words {
    uint64_t word;
    uint32_t type;
  };
  static_assert (sizeof (Words) == sizeof (AVariant));
  const Words words{5, 8};
  AVariant variant;
  std::memcpy (static_cast<void *> (&variant), &words, sizeof variant);
  return variant;
}

TEST (AVariant, an_unknown_type_reports_and_gives_the_fall_back) {
  const AVariant unknown = of_unknown_type ();
  AssertCounter failures;
  EXPECT_FALSE (unknown.is_integer ());
  EXPECT_EQ (unknown.get_uint32 (7), 7u);
  EXPECT_EQ (unknown.get_uint64 (7), 7u);
  EXPECT_EQ (unknown.get_int32 (7), 7);
  EXPECT_EQ (unknown.get_int64 (7), 7);
  EXPECT_TRUE (unknown.get_bool (true));
  EXPECT_EQ (unknown.get_achar (AChar (U'y')), AChar (U'y'));
  EXPECT_TRUE (unknown.get_string ("z") == "z");
  EXPECT_EQ (failures.take (), 8u);
  EXPECT_FALSE (unknown == of_unknown_type ());
  EXPECT_EQ (failures.take (), 1u);
}

TEST (AVariant, equality) {
  EXPECT_TRUE (AVariant () == AVariant ());
  EXPECT_TRUE (AVariant () == AVariant (5));
  EXPECT_TRUE (AVariant (5) == AVariant ());
  EXPECT_TRUE (AVariant (5) == AVariant (AString ("5")));
  EXPECT_TRUE (AVariant ("5") == AVariant (5));
  EXPECT_TRUE (AVariant (true) == AVariant (1));
  EXPECT_TRUE (AVariant (true) == AVariant (2)); // 2 as a bool is true
  EXPECT_TRUE (AVariant (5U) == AVariant (5LL));
  EXPECT_FALSE (AVariant (5) == AVariant (6));
  EXPECT_FALSE (AVariant (5) == AVariant ("6"));
  EXPECT_TRUE (AVariant ("a") == AVariant (AString ("a")));
  EXPECT_FALSE (AVariant ("a") == AVariant ("b"));
  EXPECT_TRUE (AVariant ("05") == AVariant (5)); // the text as a number
  EXPECT_TRUE (AVariant (-1) == AVariant (4294967295U));
}

} // namespace
