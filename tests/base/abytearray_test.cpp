#include "base/abytearray.h"
#include "support/assert_counter.h"

#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <string>

namespace {

AByteArray bytes (std::string_view text) {
  return AByteArray (text.data (), text.size ());
}

std::string text_of (const AByteArray &array) {
  return std::string (reinterpret_cast<const char *> (array.data ()), array.size ());
}

/// The first @p n of the bytes 0, 1, 2 ...
AByteArray counting (unsigned n) {
  AByteArray array;
  for (unsigned i = 0; i != n; ++i)
    array.append (static_cast<uint8_t> (i));
  return array;
}

TEST (AByteArray, constructors) {
  EXPECT_TRUE (AByteArray ().is_empty ());
  EXPECT_EQ (text_of (AByteArray ("abc", 2)), "ab");
  EXPECT_EQ (text_of (AByteArray (uint8_t{'a'})), "a");
  EXPECT_EQ (text_of (AByteArray ('a', 'b')), "ab");
  EXPECT_EQ (text_of (AByteArray ('a', 'b', 'c')), "abc");
  EXPECT_EQ (text_of (AByteArray ('a', 'b', 'c', 'd')), "abcd");
}

TEST (AByteArray, a_zero_stands_behind_the_last_byte) {
  AByteArray array;
  EXPECT_EQ (array.data ()[0], 0);
  array.append ("abc", 3);
  EXPECT_STREQ (reinterpret_cast<const char *> (array.data ()), "abc");
  array.resize (2);
  EXPECT_STREQ (reinterpret_cast<const char *> (array.data ()), "ab");
  array.resize (5000, 'x');
  EXPECT_EQ (array.data ()[5000], 0);
}

TEST (AByteArray, capacity_doubles_and_counts_the_terminator) {
  AByteArray array;
  EXPECT_EQ (array.capacity (), 0u);
  array.append (uint8_t{1});
  EXPECT_EQ (array.capacity (), 32u);
  array.resize (31);
  EXPECT_EQ (array.capacity (), 32u);
  array.resize (32);
  EXPECT_EQ (array.capacity (), 64u);
  array.reserve (300);
  EXPECT_EQ (array.capacity (), 512u);
  EXPECT_EQ (array.size (), 32u);
  AByteArray read_only;
  read_only.data ();
  EXPECT_EQ (read_only.capacity (), 32u);
  EXPECT_TRUE (read_only.is_empty ());
}

TEST (AByteArray, large_blocks_start_on_a_page) {
  AByteArray array;
  array.resize (2047);
  EXPECT_EQ (array.capacity (), 2048u);
  array.resize (4000, 7);
  EXPECT_EQ (array.capacity (), 4096u);
  EXPECT_EQ (reinterpret_cast<uintptr_t> (array.data ()) % 4096, 0u);
  EXPECT_EQ (array.at (3999), 7);
  array.resize (100000);
  EXPECT_EQ (reinterpret_cast<uintptr_t> (array.data ()) % 4096, 0u);
  EXPECT_EQ (array.at (3999), 7);
}

TEST (AByteArray, more_than_any_heap_has_is_refused) {
  AByteArray array = bytes ("ab");
  EXPECT_THROW (array.resize (UINT64_MAX), std::bad_alloc);
  EXPECT_THROW (array.reserve (UINT64_MAX / 2), std::bad_alloc);
  EXPECT_EQ (text_of (array), "ab");
}

TEST (AByteArray, resize_fills_what_is_new) {
  AByteArray array = bytes ("ab");
  array.resize (4, 'z');
  EXPECT_EQ (text_of (array), "abzz");
  array.resize (1);
  EXPECT_EQ (text_of (array), "a");
  array.resize (0);
  EXPECT_TRUE (array.is_empty ());
  array = bytes ("ab");
  array.clear ();
  EXPECT_TRUE (array.is_empty ());
}

TEST (AByteArray, copies_share_until_one_writes) {
  AByteArray first = bytes ("abc");
  AByteArray copy = first;
  EXPECT_EQ (first.data (), copy.data ());
  copy.writable_data ()[0] = 'x';
  EXPECT_EQ (text_of (first), "abc");
  EXPECT_EQ (text_of (copy), "xbc");
  AByteArray assigned;
  assigned.assign (first);
  EXPECT_EQ (first.data (), assigned.data ());
  assigned.append (uint8_t{'d'});
  EXPECT_EQ (text_of (first), "abc");
  EXPECT_EQ (text_of (assigned), "abcd");
}

TEST (AByteArray, at) {
  AByteArray array = bytes ("abc");
  array.at (1) = 'x';
  EXPECT_EQ (std::as_const (array).at (1), 'x');
  AssertCounter failures;
  EXPECT_EQ (std::as_const (array).at (3), 'a');
  EXPECT_EQ (array.at (UINT64_MAX), 'a');
  EXPECT_EQ (std::as_const (*std::make_unique<AByteArray> ()).at (0), 0);
  EXPECT_EQ (failures.count (), 3u);
}

TEST (AByteArray, assign) {
  AByteArray array = bytes ("abc");
  array.assign (uint8_t{'1'});
  EXPECT_EQ (text_of (array), "1");
  array.assign ('1', '2');
  EXPECT_EQ (text_of (array), "12");
  array.assign ('1', '2', '3');
  EXPECT_EQ (text_of (array), "123");
  array.assign ('1', '2', '3', '4');
  EXPECT_EQ (text_of (array), "1234");
  array.assign ("xy", 2);
  EXPECT_EQ (text_of (array), "xy");
  array.assign (nullptr, 0);
  EXPECT_TRUE (array.is_empty ());
}

TEST (AByteArray, append) {
  AByteArray array;
  array.append (nullptr, 0);
  EXPECT_EQ (array.capacity (), 0u);
  array.append ("ab", 2);
  array.append (uint8_t{'1'});
  array.append ('2', '3');
  array.append ('4', '5', '6');
  array.append ('7', '8', '9', '0');
  EXPECT_EQ (text_of (array), "ab1234567890");
  array.append (array);
  EXPECT_EQ (text_of (array), "ab1234567890ab1234567890");
}

TEST (AByteArray, append_in_network_order) {
  AByteArray array;
  array.append_be16 (0x0102);
  array.append_be32 (0x03040506);
  array.append_be64 (0x0708090A0B0C0D0E);
  ASSERT_EQ (array.size (), 14u);
  for (uint8_t i = 0; i != 14; ++i)
    EXPECT_EQ (array.at (i), i + 1);
}

TEST (AByteArray, comparison) {
  EXPECT_TRUE (bytes ("") == bytes (""));
  EXPECT_TRUE (bytes ("a") == bytes ("a"));
  EXPECT_TRUE (bytes ("a") != bytes ("b"));
  EXPECT_TRUE (bytes ("a") < bytes ("b"));
  EXPECT_TRUE (bytes ("a") < bytes ("aa"));
  EXPECT_TRUE (bytes ("b") > bytes ("aa"));
  EXPECT_TRUE (bytes ("") < bytes ("a"));
  EXPECT_TRUE (bytes ("a") <= bytes ("a"));
  EXPECT_TRUE (bytes ("b") >= bytes ("a"));
  EXPECT_TRUE (bytes ("\x80") > bytes ("\x7F"));
  EXPECT_EQ (AByteArray::compare (bytes ("a"), bytes ("a")), 0);
  EXPECT_LT (AByteArray::compare (bytes ("a"), bytes ("ab")), 0);
  EXPECT_GT (AByteArray::compare (bytes ("ab"), bytes ("a")), 0);
}

TEST (AByteArray, utf8) {
  EXPECT_EQ (text_of (AByteArray::from_utf8 (AString::from_utf8 ("a\xC3\xA9"))), "a\xC3\xA9");
  EXPECT_TRUE (AByteArray::from_utf8 (AString ()).is_empty ());
  EXPECT_TRUE (bytes ("a\xC3\xA9").to_string () == AString::from_utf8 ("a\xC3\xA9"));
  EXPECT_TRUE (bytes ("ab\xFF"
                      "cd")
                   .to_string () == "ab");
  EXPECT_TRUE (AByteArray ().to_string ().is_empty ());
}

TEST (AByteArray, to_base64) {
  EXPECT_TRUE (AByteArray ().to_base64 ().is_empty ());
  EXPECT_TRUE (AByteArray (1, 2, 3).to_base64 () == "AQID");
  EXPECT_TRUE (AByteArray (uint8_t{0}).to_base64 () == "AA");
  EXPECT_TRUE (AByteArray (0xFF, 0xFE).to_base64 () == "//4");
  EXPECT_TRUE (counting (19).to_base64 () == "AAECAwQFBgcICQoLDA0ODxAREg");
  EXPECT_TRUE (counting (20).to_base64 () == "AAECAwQFBgcICQoLDA0ODxAREh\nM");
  EXPECT_TRUE (counting (21).to_base64 () == "AAECAwQFBgcICQoLDA0ODxAREh\nMU");
  EXPECT_TRUE (counting (40).to_base64 () == "AAECAwQFBgcICQoLDA0ODxAREh\nMUFRYXGBkaGxwdHh8gISIjJCUmJ\nw");
}

TEST (AByteArray, from_base64) {
  EXPECT_TRUE (AByteArray::from_base64 ("AQID") == AByteArray (1, 2, 3));
  EXPECT_TRUE (AByteArray::from_base64 ("A\nQI\n\nD=") == AByteArray (1, 2, 3));
  EXPECT_TRUE (AByteArray::from_base64 (AString::from_utf8 ("A\xC3\xA9Q\xE2\x82\xAC"
                                                            "ID")) == AByteArray (1, 2, 3));
  EXPECT_TRUE (AByteArray::from_base64 ("AQIDB") == AByteArray (1, 2, 3)); // six bits make no byte
  EXPECT_TRUE (AByteArray::from_base64 ("//4") == AByteArray (0xFF, 0xFE));
  EXPECT_TRUE (AByteArray::from_base64 ("").is_empty ());
  EXPECT_TRUE (AByteArray::from_base64 ("?*-").is_empty ());
}

TEST (AByteArray, base64_there_and_back) {
  for (unsigned n = 0; n != 100; ++n)
    EXPECT_TRUE (AByteArray::from_base64 (counting (n).to_base64 ()) == counting (n)) << n;
}

// There is no form without lines.
TEST (AByteArray, to_hex) {
  EXPECT_TRUE (AByteArray (uint8_t{171}).to_hex (80) == "AB");
  EXPECT_TRUE (counting (3).to_hex (0) == "\n00\n01\n02");
  EXPECT_TRUE (counting (3).to_hex (1) == "\n00\n01\n02");
  EXPECT_TRUE (counting (3).to_hex (2) == "00\n01\n02");
  EXPECT_TRUE (counting (3).to_hex (3) == "00\n01\n02");
  EXPECT_TRUE (counting (3).to_hex (4) == "0001\n02");
  EXPECT_TRUE (counting (3).to_hex (5) == "0001\n02");
  EXPECT_TRUE (counting (3).to_hex (INT32_MIN) == "\n00\n01\n02");
  EXPECT_TRUE (AByteArray ().to_hex (0).is_empty ());
}

TEST (AByteArray, to_hex_bytes) {
  EXPECT_EQ (text_of (AByteArray (0, 171, 255).to_hex_bytes ()), "00ABFF");
  EXPECT_TRUE (AByteArray ().to_hex_bytes ().is_empty ());
}

TEST (AByteArray, from_hex) {
  EXPECT_TRUE (AByteArray::from_hex (bytes ("A B")) == AByteArray (uint8_t{171}));
  EXPECT_TRUE (AByteArray::from_hex (bytes ("abCD")) == AByteArray (0xAB, 0xCD));
  EXPECT_TRUE (AByteArray::from_hex (bytes ("-1.2/3")) == AByteArray (uint8_t{0x12}));
  EXPECT_TRUE (AByteArray::from_hex (bytes ("ZZ")) == AByteArray (uint8_t{(35 * 16 + 35) % 256}));
  EXPECT_TRUE (AByteArray::from_hex (bytes ("\xFF"
                                            "1\x80"
                                            "2")) == AByteArray (uint8_t{0x12}));
  EXPECT_TRUE (AByteArray::from_hex (bytes ("")).is_empty ());
  EXPECT_TRUE (AByteArray::from_hex (counting (255).to_hex_bytes ()) == counting (255));
}

TEST (AByteArray, pieces) {
  const AByteArray array = bytes ("abcd");
  EXPECT_TRUE (array.left (0).is_empty ());
  EXPECT_EQ (text_of (array.left (3)), "abc");
  EXPECT_EQ (array.left (4).data (), array.data ());
  EXPECT_EQ (array.left (9).data (), array.data ());
  EXPECT_TRUE (AByteArray ().left (3).is_empty ());
  EXPECT_TRUE (array.right (0).is_empty ());
  EXPECT_EQ (text_of (array.right (3)), "bcd");
  EXPECT_TRUE (array.right (4).is_empty ());
  EXPECT_TRUE (array.right (9).is_empty ());
  EXPECT_EQ (text_of (array.mid (1, 2)), "bc");
  EXPECT_EQ (text_of (array.mid (1, UINT64_MAX)), "bcd");
  EXPECT_TRUE (array.mid (1, 0).is_empty ());
  EXPECT_TRUE (array.mid (4, 1).is_empty ());
}

TEST (AByteArray, find) {
  const AByteArray array = bytes ("abcabc");
  EXPECT_EQ (array.find ('b'), 1);
  EXPECT_EQ (array.find ('b', 2), 4);
  EXPECT_EQ (array.find ('b', 5), -1);
  EXPECT_EQ (array.find ('b', 6), -1);
  EXPECT_EQ (array.find ('x'), -1);
  EXPECT_EQ (AByteArray ().find (0), -1);
  EXPECT_EQ (array.find (0, 1), -1); // neither the terminator nor what lies behind it is found
}

TEST (AByteArray, rfind) {
  const AByteArray array = bytes ("abcabc");
  EXPECT_EQ (array.rfind ('b'), 4);
  EXPECT_EQ (array.rfind ('b', 6), 4);
  EXPECT_EQ (array.rfind ('b', 4), 4);
  EXPECT_EQ (array.rfind ('b', 3), 1);
  EXPECT_EQ (array.rfind ('b', 0), -1);
  EXPECT_EQ (array.rfind ('a', 0), 0);
  EXPECT_EQ (AByteArray ().rfind (0), -1);
}

TEST (AByteArray, starts_with) {
  EXPECT_TRUE (bytes ("abc").starts_with (bytes ("ab")));
  EXPECT_TRUE (bytes ("abc").starts_with (AByteArray ()));
  EXPECT_TRUE (AByteArray ().starts_with (AByteArray ()));
  EXPECT_FALSE (bytes ("a").starts_with (bytes ("ab")));
  EXPECT_FALSE (bytes ("abc").starts_with (bytes ("ac")));
}

TEST (AByteArray, replace_all) {
  AByteArray array = bytes ("abcabc");
  const AByteArray copy = array;
  array.replace_all ('b', 'x');
  EXPECT_EQ (text_of (array), "axcaxc");
  array.replace_all ('x', 'x');
  array.replace_all ('q', 'z');
  EXPECT_EQ (text_of (array), "axcaxc");
  EXPECT_EQ (text_of (copy), "abcabc");
}

TEST (AByteArray, read_and_write) {
  AByteArray array = bytes ("abcd");
  char out[5] = "....";
  EXPECT_TRUE (array.read (out, 2, 1));
  EXPECT_STREQ (out, "bc..");
  EXPECT_TRUE (array.write ("xy", 2, 2));
  EXPECT_EQ (text_of (array), "abxy");
  EXPECT_TRUE (array.read (out, 0, 3));
  EXPECT_TRUE (array.read (out, 4, 0));
  EXPECT_STREQ (out, "abxy");
}

TEST (AByteArray, read_and_write_out_of_range_do_nothing) {
  AByteArray array = bytes ("abcd");
  char out[5] = "....";
  AssertCounter failures;
  EXPECT_FALSE (array.read (out, 0, 4));
  EXPECT_FALSE (array.read (out, 5, 0));
  EXPECT_FALSE (array.read (out, 2, 3));
  EXPECT_FALSE (AByteArray ().read (out, 0, 0));
  EXPECT_FALSE (array.write ("xxxxx", 0, 4));
  EXPECT_FALSE (array.write ("xxxxx", 5, 0));
  EXPECT_FALSE (array.write ("xxxxx", 4, 1));
  EXPECT_EQ (failures.count (), 7u);
  EXPECT_STREQ (out, "....");
  EXPECT_EQ (text_of (array), "abcd");
}

} // namespace
