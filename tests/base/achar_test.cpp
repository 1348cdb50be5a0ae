#include "base/achar.h"

#include "support/assert_counter.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

namespace {

TEST (AChar, HoldsAnyValue) {
  EXPECT_EQ (AChar ().value (), 0u);
  EXPECT_EQ (AChar (0xFFFFFFFFu).value (), 0xFFFFFFFFu);
  EXPECT_EQ (AChar (U'\U0001F600').value (), 0x1F600u);
  EXPECT_EQ (AChar ('\xE9').value (), 0xE9u);
  EXPECT_EQ (L1 ('%').value (), 37u);
}

TEST (AChar, Latin1AndAscii) {
  EXPECT_TRUE (AChar (127u).is_ascii ());
  EXPECT_FALSE (AChar (128u).is_ascii ());
  EXPECT_TRUE (AChar (255u).is_latin1 ());
  EXPECT_FALSE (AChar (256u).is_latin1 ());
  EXPECT_EQ (AChar (255u).to_latin1 ('?'), 255);
  EXPECT_EQ (AChar (256u).to_latin1 ('?'), '?');
}

TEST (AChar, SpaceIsTheSixBlanksNulAndAllBeyondLatin1) {
  for (uint32_t v = 0; v < 256; ++v) {
    const bool expected = v == 0 || v == 9 || v == 10 || v == 11 || v == 12 || v == 13 || v == 32;
    EXPECT_EQ (AChar (v).is_space (), expected) << v;
  }
  for (uint32_t v : {256u, 0x3042u, 0x10FFFFu, 0xFFFFFFFFu})
    EXPECT_TRUE (AChar (v).is_space ()) << v;
}

TEST (AChar, DigitsAndLettersAreAscii) {
  for (uint32_t v = 0; v < 600; ++v) {
    const AChar c (v);
    const bool digit = v >= 48 && v <= 57;
    const bool upper = v >= 65 && v <= 90;
    const bool lower = v >= 97 && v <= 122;
    EXPECT_EQ (c.is_digit (), digit) << v;
    EXPECT_EQ (c.is_alnum (), digit || upper || lower) << v;
    EXPECT_EQ (c.to_lower ().value (), upper ? v + 32 : v) << v;
  }
  EXPECT_EQ (AChar ('0').digit_value (-1), 0);
  EXPECT_EQ (AChar ('9').digit_value (-1), 9);
  EXPECT_EQ (AChar ('a').digit_value (-7), -7);
  EXPECT_EQ (AChar (0xB2u).digit_value (-1), -1);
  EXPECT_EQ (AChar ('7').alnum_value (-1), 7);
  EXPECT_EQ (AChar ('A').alnum_value (-1), 10);
  EXPECT_EQ (AChar ('z').alnum_value (-1), 35);
  EXPECT_EQ (AChar ('_').alnum_value (-1), -1);
  EXPECT_EQ (AChar (0x430u).alnum_value (99), 99);
}

TEST (AChar, OrderIsByValue) {
  EXPECT_LT (AChar ('Z'), AChar ('a'));
  EXPECT_LT (AChar (0xFFFFu), AChar (0x10000u));
  EXPECT_EQ (AChar ('a'), U'a');
}

TEST (Utf8Table, Rows) {
  const AUtf8Row expected[] = {{1, 7, 0, 127}, {2, 5, 192, 2047}, {3, 4, 224, 65535}, {4, 3, 240, 1114111}};
  ASSERT_EQ (std::size (utf8_tbl), 4u);
  for (size_t i = 0; i != 4; ++i) {
    EXPECT_EQ (utf8_tbl[i].length, expected[i].length);
    EXPECT_EQ (utf8_tbl[i].lead_byte_databits, expected[i].lead_byte_databits);
    EXPECT_EQ (utf8_tbl[i].lead_pattern, expected[i].lead_pattern);
    EXPECT_EQ (utf8_tbl[i].largest, expected[i].largest);
  }
}

struct Utf8Case {
  std::string bytes;
  uint32_t value;
  unsigned length; ///< 0: refused
  unsigned reports = 0;
};

const Utf8Case utf8_cases[] = {
    {"A", 0x41, 1},
    {"\x7F", 0x7F, 1},
    {"\xC2\x80", 0x80, 2},
    {"\xDF\xBF", 0x7FF, 2},
    {"\xE0\xA0\x80", 0x800, 3},
    {"\xE2\x82\xAC", 0x20AC, 3},
    {"\xEF\xBF\xBF", 0xFFFF, 3},
    {"\xF0\x90\x80\x80", 0x10000, 4},
    {"\xF4\x8F\xBF\xBF", 0x10FFFF, 4},
    {"A\xFF", 0x41, 1},
    // Accepted although no other codec would: overlong forms, surrogates, values behind the last plane.
    {"\xE0\x81\x81", 0x41, 3},
    {"\xF0\x80\x81\x81", 0x41, 4},
    {"\xED\xA0\x80", 0xD800, 3},
    {"\xF4\x90\x80\x80", 0x110000, 4},
    {"\xF4\xBF\xBF\xBF", 0x13FFFF, 4},
    // Refused.
    {"", 0, 0},
    {std::string ("\0A", 2), 0, 0},
    {"\xC0\x80", 0, 0},
    {"\xC1\xBF", 0, 0},
    {"\xF5\x80\x80\x80", 0, 0},
    {"\xFF\xFF\xFF\xFF", 0, 0},
    {"\xC2", 0, 0},
    {"\xE2\x82", 0, 0},
    {"\xF0\x90\x80", 0, 0},
    {"\xC2\x41", 0, 0},
    {"\xC2\xC2", 0, 0},
    {"\xE2\x41\xAC", 0, 0},
    {"\xE2\x82\x41", 0, 0},
    {"\xF0\x90\x80\x41", 0, 0},
    // A stray continuation byte is reported only when a whole row of the table could have followed.
    {"\x80", 0, 0},
    {"\xBF\xBF\xBF", 0, 0},
    {"\x80\x41\x41\x41", 0, 0, 1},
    {"\xBF\xBF\xBF\xBF\xBF", 0, 0, 1},
};

TEST (Utf8, Decode) {
  AssertCounter asserts;
  for (const Utf8Case &c : utf8_cases) {
    AChar out (0xABCDu);
    unsigned consumed = 99;
    EXPECT_EQ (decode_utf8 (c.bytes.data (), c.bytes.size (), &out, &consumed), c.length != 0) << c.bytes;
    EXPECT_EQ (consumed, c.length) << c.bytes;
    EXPECT_EQ (out.value (), c.length != 0 ? c.value : 0xABCDu) << c.bytes;
    EXPECT_EQ (asserts.take (), c.reports) << c.bytes;
  }
}

TEST (Utf8, DecodeReceivedNeverReports) {
  AssertCounter asserts;
  for (const Utf8Case &c : utf8_cases) {
    AChar out (0xABCDu);
    unsigned consumed = 99;
    EXPECT_EQ (decode_utf8_received (c.bytes.data (), c.bytes.size (), &out, &consumed), c.length != 0);
    EXPECT_EQ (consumed, c.length);
    EXPECT_EQ (out.value (), c.length != 0 ? c.value : 0xABCDu);
  }
  EXPECT_EQ (asserts.count (), 0u);
}

TEST (Utf8, DecodeWithoutOutput) {
  unsigned consumed = 0;
  EXPECT_TRUE (decode_utf8 ("\xE2\x82\xAC", 3, nullptr, &consumed));
  EXPECT_EQ (consumed, 3u);
}

TEST (Utf8, Encode) {
  const struct {
    uint32_t value;
    std::string bytes;
  } cases[] = {{0, std::string (1, '\0')},    {0x7F, "\x7F"},           {0x80, "\xC2\x80"},
               {0x7FF, "\xDF\xBF"},           {0x800, "\xE0\xA0\x80"},  {0xD800, "\xED\xA0\x80"},
               {0xDFFF, "\xED\xBF\xBF"},      {0xFFFF, "\xEF\xBF\xBF"}, {0x10000, "\xF0\x90\x80\x80"},
               {0x10FFFF, "\xF4\x8F\xBF\xBF"}};
  for (const auto &c : cases) {
    char buffer[8] = {};
    unsigned nbytes = 0;
    EXPECT_TRUE (encode_utf8 (AChar (c.value), buffer, sizeof buffer, &nbytes));
    EXPECT_EQ (std::string (buffer, nbytes), c.bytes);
    EXPECT_TRUE (encode_utf8 (AChar (c.value), nullptr, c.bytes.size (), nullptr));
    EXPECT_FALSE (encode_utf8 (AChar (c.value), buffer, c.bytes.size () - 1, &nbytes)) << c.value;
  }
}

TEST (Utf8, EncodeRefusesWhatIsBehindTheLastPlane) {
  AssertCounter asserts;
  char buffer[4];
  unsigned nbytes = 77;
  EXPECT_FALSE (encode_utf8 (AChar (0x110000u), buffer, 4, &nbytes));
  EXPECT_EQ (asserts.take (), 1u);
  EXPECT_FALSE (encode_utf8 (AChar (0x110000u), buffer, 0, &nbytes));
  EXPECT_EQ (asserts.take (), 0u) << "no capacity is looked at first";
  EXPECT_FALSE (encode_utf8_received (AChar (0xFFFFFFFFu), buffer, 4, &nbytes));
  EXPECT_EQ (asserts.take (), 0u);
  EXPECT_EQ (nbytes, 77u);
}

bool comes_back_from_utf8 (uint32_t v) {
  char buffer[4];
  unsigned nbytes = 0;
  unsigned consumed = 0;
  AChar back;
  return encode_utf8 (AChar (v), buffer, 4, &nbytes) && decode_utf8 (buffer, nbytes, &back, &consumed) &&
         back.value () == v && consumed == nbytes;
}

TEST (Utf8, EveryCodePointComesBack) {
  uint32_t v = 1;
  while (v <= 0x10FFFF && comes_back_from_utf8 (v))
    ++v;
  EXPECT_EQ (v, 0x110000u);
}

TEST (Utf16, Decode) {
  const struct {
    std::u16string units;
    uint32_t value;
    unsigned count; ///< 0: refused
  } cases[] = {{u"A", 0x41, 1},
               {{0xD7FF}, 0xD7FF, 1},
               {{0xE000}, 0xE000, 1},
               {{0xFFFF}, 0xFFFF, 1},
               {{0xD800, 0xDC00}, 0x10000, 2},
               {{0xDBFF, 0xDFFF}, 0x10FFFF, 2},
               {{0xD83D, 0xDE00, 0x41}, 0x1F600, 2},
               {{}, 0, 0},
               {{0, 0x41}, 0, 0},
               {{0xDC00, 0x41}, 0, 0},
               {{0xDFFF}, 0, 0},
               {{0xD800}, 0, 0},
               {{0xD800, 0x41}, 0, 0},
               {{0xD800, 0xD800}, 0, 0},
               {{0xD800, 0xE000}, 0, 0}};
  for (const auto &c : cases) {
    AChar out (0xABCDu);
    unsigned count = 99;
    EXPECT_EQ (decode_utf16 (c.units.data (), c.units.size (), &out, &count), c.count != 0);
    EXPECT_EQ (count, c.count);
    EXPECT_EQ (out.value (), c.count != 0 ? c.value : 0xABCDu);
    EXPECT_EQ (decode_utf16 (c.units.data (), c.units.size (), nullptr, nullptr), c.count != 0);
  }
  const uint16_t pair[] = {0xD83D, 0xDE00};
  AChar out;
  EXPECT_TRUE (decode_utf16 (pair, 2, &out, nullptr));
  EXPECT_EQ (out.value (), 0x1F600u);
}

TEST (Utf16, Encode) {
  const struct {
    uint32_t value;
    std::u16string units; ///< empty: refused
  } cases[] = {{0, {0}},
               {0x41, u"A"},
               {0xD7FF, {0xD7FF}},
               {0xE000, {0xE000}},
               {0xFFFF, {0xFFFF}},
               {0x10000, {0xD800, 0xDC00}},
               {0x10FFFF, {0xDBFF, 0xDFFF}},
               {0x1F600, {0xD83D, 0xDE00}},
               {0xD800, {}},
               {0xDBFF, {}},
               {0xDC00, {}},
               {0xDFFF, {}},
               {0x110000, {}},
               {0xFFFFFFFF, {}}};
  for (const auto &c : cases) {
    char16_t units[2] = {};
    unsigned count = 0;
    EXPECT_EQ (encode_utf16 (AChar (c.value), units, 2, &count), !c.units.empty ()) << c.value;
    EXPECT_EQ (std::u16string (units, count), c.units) << c.value;
    EXPECT_FALSE (encode_utf16 (AChar (c.value), units, c.units.empty () ? 0 : c.units.size () - 1, &count));
    EXPECT_EQ (encode_utf16 (AChar (c.value), static_cast<char16_t *> (nullptr), 2, nullptr),
               !c.units.empty ());
  }
  uint16_t units[2] = {};
  EXPECT_TRUE (encode_utf16 (AChar (0x1F600u), units, 2, nullptr));
  EXPECT_EQ (units[0], 0xD83D);
  EXPECT_EQ (units[1], 0xDE00);
}

bool comes_back_from_utf16 (uint32_t v) {
  char16_t units[2];
  unsigned count = 0;
  AChar back;
  if (v >= 0xD800 && v <= 0xDFFF)
    return !encode_utf16 (AChar (v), units, 2, &count);
  return encode_utf16 (AChar (v), units, 2, &count) && decode_utf16 (units, count, &back, nullptr) &&
         back.value () == v;
}

TEST (Utf16, EveryCodePointComesBack) {
  uint32_t v = 1;
  while (v <= 0x10FFFF && comes_back_from_utf16 (v))
    ++v;
  EXPECT_EQ (v, 0x110000u);
}

} // namespace
