#include "base/astring.h"

#include "support/assert_counter.h"
#include "support/text_points.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>

namespace {

using Kelvane::fixed;

TEST (AStringParse, Uint64) {
  const struct {
    const char *text;
    bool ok;
    uint64_t value;
  } cases[] = {{"0", true, 0},
               {"12", true, 12},
               {" 12 ", true, 12},
               {"\t\r\n7\v\f", true, 7},
               {"007", true, 7},
               {"18446744073709551615", true, 18446744073709551615u},
               {"18446744073709551616", false, 0},
               {"99999999999999999999", false, 0},
               // Wraps, but no digit made the number smaller.
               {"30000000000000000000", true, 11553255926290448384u},
               {"0x10", true, 10},
               {"0xA", true, 10},
               {"0x1A", true, 20},
               {"0xa", true, 10},
               {"0xz", true, 35},
               {"0xZ0", true, 350},
               {" 0x5 ", true, 5},
               {"", false, 0},
               {"   ", false, 0},
               {"0x", false, 0},
               {"0X10", false, 0},
               {"x10", false, 0},
               {"-1", false, 0},
               {"+1", false, 0},
               {"12a", false, 0},
               {"1 2", false, 0},
               {"1.0", false, 0},
               {"0x1-", false, 0},
               {"0x ", false, 0},
               {"\xB2", false, 0}};
  for (const auto &c : cases) {
    uint64_t value = 4711;
    EXPECT_EQ (AString (c.text).to_uint64 (&value), c.ok) << c.text;
    EXPECT_EQ (value, c.ok ? c.value : 4711u) << c.text;
    EXPECT_EQ (AString (c.text).to_uint64 (), c.ok) << c.text;
  }
  EXPECT_FALSE (fresh (U"\u0661").to_uint64 ()) << "beyond Latin-1 counts as blank, nothing is left";
  uint64_t value = 0;
  EXPECT_TRUE (fresh (U"\u06615\u0661").to_uint64 (&value));
  EXPECT_EQ (value, 5u);
}

TEST (AStringParse, Unsigned) {
  uint32_t u32 = 1;
  uint16_t u16 = 1;
  uint8_t u8 = 1;
  EXPECT_TRUE (AString ("4294967295").to_uint32 (&u32));
  EXPECT_EQ (u32, 4294967295u);
  EXPECT_FALSE (AString ("4294967296").to_uint32 (&u32));
  EXPECT_TRUE (AString ("65535").to_uint16 (&u16));
  EXPECT_EQ (u16, 65535);
  EXPECT_FALSE (AString ("65536").to_uint16 (&u16));
  EXPECT_TRUE (AString ("255").to_uint8 (&u8));
  EXPECT_EQ (u8, 255);
  EXPECT_FALSE (AString ("256").to_uint8 (&u8));
  EXPECT_EQ (u8, 255) << "left alone on failure";
  for (const char *bad : {"", "   ", "0x", "-1", "12a"})
    EXPECT_FALSE (AString (bad).to_uint32 (&u32)) << bad;
  EXPECT_TRUE (AString (" 12 ").to_uint32 (&u32));
  EXPECT_EQ (u32, 12u);
  EXPECT_TRUE (AString ("1").to_uint32 () && AString ("1").to_uint16 () && AString ("1").to_uint8 ());
}

TEST (AStringParse, Int64) {
  const struct {
    const char *text;
    bool ok;
    int64_t value;
  } cases[] = {{"0", true, 0},
               {"-0", true, 0},
               {"+5", true, 5},
               {"-5", true, -5},
               {" - 5 ", true, -5},
               {"-0x10", true, -10},
               {"9223372036854775807", true, INT64_MAX},
               {"9223372036854775808", false, 0},
               {"-9223372036854775808", true, INT64_MIN},
               {"-9223372036854775809", false, 0},
               {"", false, 0},
               {"-", false, 0},
               {"+", false, 0},
               {"--5", false, 0},
               {"+-5", false, 0},
               {"5-", false, 0}};
  for (const auto &c : cases) {
    int64_t value = 4711;
    EXPECT_EQ (AString (c.text).to_int64 (&value), c.ok) << c.text;
    EXPECT_EQ (value, c.ok ? c.value : 4711) << c.text;
    EXPECT_EQ (AString (c.text).to_int64 (), c.ok) << c.text;
  }
}

TEST (AStringParse, Signed) {
  int32_t i32 = 1;
  int16_t i16 = 1;
  int8_t i8 = 1;
  EXPECT_TRUE (AString ("-2147483648").to_int32 (&i32));
  EXPECT_EQ (i32, INT32_MIN);
  EXPECT_FALSE (AString ("-2147483649").to_int32 (&i32));
  EXPECT_FALSE (AString ("2147483648").to_int32 (&i32));
  EXPECT_TRUE (AString ("-32768").to_int16 (&i16));
  EXPECT_EQ (i16, -32768);
  EXPECT_FALSE (AString ("32768").to_int16 (&i16));
  EXPECT_TRUE (AString ("-128").to_int8 (&i8));
  EXPECT_EQ (i8, -128);
  EXPECT_FALSE (AString ("-129").to_int8 (&i8));
  EXPECT_FALSE (AString ("128").to_int8 (&i8));
  EXPECT_EQ (i8, -128);
}

TEST (AStringParse, NamedTypes) {
  short s = 0;
  int i = 0;
  long l = 0;
  long long ll = 0;
  unsigned short us = 0;
  unsigned u = 0;
  unsigned long ul = 0;
  unsigned long long ull = 0;
  EXPECT_TRUE (AString ("-32768").to_short (&s));
  EXPECT_EQ (s, SHRT_MIN);
  EXPECT_FALSE (AString ("32768").to_short (&s));
  EXPECT_TRUE (AString ("-2147483648").to_int (&i));
  EXPECT_EQ (i, INT_MIN);
  EXPECT_FALSE (AString ("2147483648").to_int (&i));
  EXPECT_TRUE (AString ("2147483647").to_long (&l));
  EXPECT_EQ (l, 2147483647);
  EXPECT_EQ (AString ("2147483648").to_long (&l), sizeof (long) == 8) << "as wide as the platform's long";
  EXPECT_TRUE (AString ("-9223372036854775808").to_long_long (&ll));
  EXPECT_EQ (ll, LLONG_MIN);
  EXPECT_TRUE (AString ("65535").to_unsigned_short (&us));
  EXPECT_EQ (us, 65535);
  EXPECT_FALSE (AString ("65536").to_unsigned_short (&us));
  EXPECT_TRUE (AString ("4294967295").to_unsigned (&u));
  EXPECT_EQ (u, UINT_MAX);
  EXPECT_FALSE (AString ("4294967296").to_unsigned (&u));
  EXPECT_TRUE (AString ("4294967295").to_unsigned_long (&ul));
  EXPECT_EQ (ul, 4294967295u);
  EXPECT_EQ (AString ("4294967296").to_unsigned_long (&ul), sizeof (long) == 8);
  EXPECT_TRUE (AString ("18446744073709551615").to_unsigned_long_long (&ull));
  EXPECT_EQ (ull, ULLONG_MAX);
}

struct FixedCase {
  const char *text;
  bool ok;
  int32_t raw;
  unsigned reports = 0;
};

const FixedCase fixed_cases[] = {
    {"1.5X", true, 98304},
    {"-1.5X", true, -98304},
    {"+1.5X", true, 98304},
    {" 1.5X ", true, 98304},
    {"1X", true, 65536},
    {"0X", true, 0},
    {"-0X", true, 0},
    {".5X", true, 32768},
    {"-.5X", true, -32768},
    {"1.X", true, 65536},
    {"X", true, 0},
    {".X", true, 0},
    {"-X", true, 0},
    {"32767X", true, 2147418112},
    {"32767.99999X", true, 2147483647},
    {"32768X", false, 0},
    {"-32768X", true, INT32_MIN},
    {"-32769X", false, 0},
    // The bits of -32768.5 in 33, of which 32 are kept.
    {"-32768.5X", true, 2147450880},
    {"0.00001525878906250X", true, 1},
    {"0.00001525878906249X", true, 0},
    {"0.99999999999999999999999999999999999999X", true, 65535},
    {"0.10000000000000000000000000000000000000X", true, 6553},
    {"- 1X", true, -65536},
    {"0x10X", false, 0},
    {"- 0x10X", true, -655360},
    {"1.0x5X", false, 0},
    {"99999999999999999999X", false, 0},
    // Without the letter, the raw 32 bits.
    {"65536", true, 65536},
    {"-1", true, -1},
    {"2147483648", true, INT32_MIN},
    {"4294967295", true, -1},
    {"4294967296", false, 0},
    {"0x10", true, 10},
    {"1.5", false, 0},
    {"1.5x", false, 0},
    {"", false, 0},
    {"   ", false, 0},
    {"--1X", false, 0},
    {"aX", false, 0},
    {"1 X", true, 65536},
    // A fraction with anything but digits is reported.
    {"1.2.3X", false, 0, 1},
    {"1.5aX", false, 0, 1},
    {"1.-5X", false, 0, 1},
    {"1. 5X", false, 0, 1},
    {"1.5 X", false, 0, 1},
};

TEST (AStringParse, Fixed) {
  AssertCounter asserts;
  for (const FixedCase &c : fixed_cases) {
    fixed value{4711};
    EXPECT_EQ (AString (c.text).to_fixed (&value), c.ok) << c.text;
    EXPECT_EQ (value.raw, c.ok ? c.raw : 4711) << c.text;
    EXPECT_EQ (asserts.take (), c.reports) << c.text;
    EXPECT_EQ (AString (c.text).to_fixed (), c.ok) << c.text;
    asserts.take ();
  }
}

TEST (AStringParse, FixedReceivedNeverReports) {
  AssertCounter asserts;
  for (const FixedCase &c : fixed_cases) {
    fixed value{4711};
    EXPECT_EQ (AString (c.text).to_fixed_received (&value), c.ok) << c.text;
    EXPECT_EQ (value.raw, c.ok ? c.raw : 4711) << c.text;
  }
  EXPECT_FALSE (fresh (U"1.\u0661X").to_fixed_received ());
  EXPECT_EQ (asserts.count (), 0u);
}

TEST (AStringParse, IpAddress) {
  const uint8_t bytes[] = {192, 168, 0, 7};
  unsigned expected = 0;
  std::memcpy (&expected, bytes, 4);
  EXPECT_EQ (AString ("192.168.0.7").to_ip_address (5), expected);
  EXPECT_EQ (AString (" 192. 168 .0.7 ").to_ip_address (5), expected);
  EXPECT_EQ (AString ("0.0.0.0").to_ip_address (5), 0u);
  EXPECT_EQ (AString ("255.255.255.255").to_ip_address (5), 0xFFFFFFFFu);
  for (const char *bad : {"", "1.2.3", "1.2.3.4.5", "1.2.3.256", "1.2.3.", "1..2.3.4", "1.2.3.a", "1.2.3.-1"})
    EXPECT_EQ (AString (bad).to_ip_address (5), 5u) << bad;
}

TEST (AStringPrint, Uint64) {
  EXPECT_EQ (AString::from_uint64 (0), "0");
  EXPECT_EQ (AString::from_uint64 (18446744073709551615u), "18446744073709551615");
  EXPECT_EQ (AString::from_uint64 (42, 5), "   42");
  EXPECT_EQ (AString::from_uint64 (42, -5, '.'), "42...");
  EXPECT_EQ (AString::from_uint64 (42, 5, '0'), "00042");
  EXPECT_EQ (AString::from_uint64 (42, 2, '0'), "42");
  EXPECT_EQ (AString::from_uint64 (42, 1, '0'), "42");
  EXPECT_EQ (AString::from_uint32 (4294967295u, 11, ' '), " 4294967295");
  EXPECT_EQ (AString::from_uint16 (65535), "65535");
  EXPECT_EQ (AString::from_uint8 (255), "255");
}

TEST (AStringPrint, Int64) {
  EXPECT_EQ (AString::from_int64 (0), "0");
  EXPECT_EQ (AString::from_int64 (INT64_MIN), "-9223372036854775808");
  EXPECT_EQ (AString::from_int64 (INT64_MAX), "9223372036854775807");
  EXPECT_EQ (AString::from_int64 (-5, 3, '0'), "-05");
  EXPECT_EQ (AString::from_int64 (5, 3, '0'), "005");
  EXPECT_EQ (AString::from_int64 (-5, 4, ' '), "-  5");
  EXPECT_EQ (AString::from_int64 (-5, -4, '.'), "-5..");
  EXPECT_EQ (AString::from_int64 (-5, 1, '0'), "-5");
  EXPECT_EQ (AString::from_int64 (-5, 0, '0'), "-5");
  EXPECT_EQ (AString::from_int64 (-5, -1, '0'), "-5");
  EXPECT_EQ (AString::from_int32 (INT32_MIN, 12, '0'), "-02147483648");
  EXPECT_EQ (AString::from_int16 (-32768), "-32768");
  EXPECT_EQ (AString::from_int8 (-128), "-128");
}

TEST (AStringPrint, Pad) {
  const AString text ("ab");
  EXPECT_EQ (AString::pad (text, 4, '.'), "..ab");
  EXPECT_EQ (AString::pad (text, -4, '.'), "ab..");
  for (int width : {0, 1, 2, -1, -2})
    EXPECT_TRUE (AString::pad (text, width, '.').shares_store_with (text)) << width;
  EXPECT_EQ (points (AString::pad ("", 200, '\xE9')), std::u32string (200, U'\u00E9'));
}

TEST (AStringPrint, Fixed) {
  const struct {
    int32_t raw;
    unsigned decimals;
    const char *expected;
  } cases[] = {{98304, 3, "1.5X"},
               {65536, 3, "1X"},
               {-98304, 3, "-1.5X"},
               {32768, 0, "1X"},
               {-32768, 0, "-1X"},
               {-1, 0, "-0X"},
               {1, 0, "0X"},
               {0, 0, "0X"},
               {0, 15, "0X"},
               {32767, 0, "0X"},
               {98304, 0, "2X"},
               {-98304, 0, "-2X"},
               {INT32_MIN, 0, "-32768X"},
               {INT32_MIN, 15, "-32768X"},
               {INT32_MAX, 0, "32768X"},
               {INT32_MAX, 15, "32767.999984741210938X"},
               {INT32_MAX, 3, "32768X"},
               {INT32_MIN + 1, 15, "-32767.999984741210938X"},
               {1, 15, "0.000015258789063X"},
               {-1, 15, "-0.000015258789063X"},
               {1, 16, "0.0000152587890625X"},
               {1, 5, "0.00002X"},
               {1, 4, "0X"},
               {-1, 4, "0X"},
               {65535, 4, "1X"},
               {-65535, 4, "-1X"},
               {65535, 5, "0.99998X"},
               {6553, 1, "0.1X"},
               {-32768, 15, "-0.5X"},
               {131072 + 16384, 15, "2.25X"},
               {131072 + 16384, 1, "2.3X"},
               {32768, 19, "0.5X"},
               // Twenty places wrap around 64 bits.
               {32768, 20, "1.05340232221128654848X"},
               {32768, 99, "1.05340232221128654848X"}};
  for (const auto &c : cases)
    EXPECT_EQ (AString::from_fixed (fixed{c.raw}, c.decimals), c.expected) << c.raw << " " << c.decimals;
}

bool comes_back (int32_t raw) {
  fixed back;
  return AString::from_fixed (fixed{raw}, 15).to_fixed (&back) && back.raw == raw;
}

TEST (AStringPrint, EveryFixedFractionComesBack) {
  for (int32_t fraction = 0; fraction != 65536; ++fraction)
    ASSERT_TRUE (comes_back (fraction)) << fraction;
  for (const int32_t whole : {1, 32767, -1, -32768})
    for (int32_t fraction = 0; fraction < 65536; fraction += 257)
      ASSERT_TRUE (comes_back (whole * 65536 + fraction)) << whole << " " << fraction;
  for (const int32_t edge :
       {INT32_MIN, INT32_MIN + 1, -65537, -65536, -65535, -1, 65535, 65536, 65537, INT32_MAX})
    ASSERT_TRUE (comes_back (edge)) << edge;
}

TEST (AStringPrint, FixedOrder) {
  EXPECT_LT (fixed{-1}, fixed{0});
  EXPECT_EQ (fixed{}, fixed{0});
}

TEST (AStringPrint, IpAddress) {
  const uint8_t bytes[] = {10, 0, 200, 255};
  unsigned address = 0;
  std::memcpy (&address, bytes, 4);
  EXPECT_EQ (AString::from_ip_address (address), "10.0.200.255");
  EXPECT_EQ (AString::from_ip_address (0), "0.0.0.0");
}

} // namespace
