#include "base/astring.h"

#include "support/assert_counter.h"
#include "support/text_points.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

namespace {

const AString &mixed () {
  static const AString &text = *new AString (fresh (U"a\u00E9\u20AC\U0001F600z"));
  return text;
}

TEST (AStringExport, Latin1) {
  char buffer[8] = {};
  size_t written = 99;
  mixed ().copy_latin1 (buffer, 8, '?', &written, true, '.');
  EXPECT_EQ (std::string (buffer, 8), "a\xE9??z...");
  EXPECT_EQ (written, 5u);
  mixed ().copy_latin1 (buffer, 3, '!', &written);
  EXPECT_EQ (std::string (buffer, 8), "a\xE9!?z...");
  EXPECT_EQ (written, 3u);
  mixed ().copy_latin1 (buffer, 8, '#');
  EXPECT_EQ (std::string (buffer, 8), "a\xE9##z...");
  AString ().copy_latin1 (buffer, 2, '#', &written, true);
  EXPECT_EQ (std::string (buffer, 8), "  ##z...");
  EXPECT_EQ (written, 0u);
}

TEST (AStringExport, Latin1Terminated) {
  std::string buffer (6, '*');
  EXPECT_EQ (mixed ().copy_latin1_z (buffer.data (), 6, '?'), 5u);
  EXPECT_EQ (buffer, std::string ("a\xE9??z\0", 6));
  buffer.assign (6, '*');
  EXPECT_EQ (mixed ().copy_latin1_z (buffer.data (), 3, '?'), 2u);
  EXPECT_EQ (buffer, std::string ("a\xE9\0***", 6));
  EXPECT_EQ (mixed ().copy_latin1_z (buffer.data (), 1, '?'), 0u)
      << "room for the terminator alone is enough";
  EXPECT_EQ (buffer, std::string ("\0\xE9\0***", 6));
}

TEST (AStringExport, Utf8) {
  const std::string whole = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z";
  const size_t fits[] = {0, 1, 1, 3, 3, 3, 6, 6, 6, 6, 10, 11, 11};
  for (size_t room = 1; room != std::size (fits); ++room) {
    std::string buffer (room, '*');
    size_t written = 99;
    mixed ().copy_utf8 (buffer.data (), room, &written);
    EXPECT_EQ (written, fits[room]);
    EXPECT_EQ (buffer, whole.substr (0, fits[room]) + std::string (room - fits[room], '*'));
    mixed ().copy_utf8 (buffer.data (), room, nullptr, true, '.');
    EXPECT_EQ (buffer, whole.substr (0, fits[room]) + std::string (room - fits[room], '.'));
  }
  std::string surrogate (4, '*');
  fresh ({U'a', 0xD800, U'b'}).copy_utf8 (surrogate.data (), 4);
  EXPECT_EQ (surrogate, "a\xED\xA0\x80") << "a surrogate value takes three bytes";
}

TEST (AStringExport, Utf8IntoNothing) {
  AssertCounter asserts;
  size_t written = 99;
  AString ().copy_utf8 (nullptr, 0, &written);
  EXPECT_EQ (written, 0u);
  EXPECT_EQ (asserts.take (), 0u);
  written = 99;
  AString ("a").copy_utf8 (nullptr, 0, &written, true);
  EXPECT_EQ (written, 0u);
  EXPECT_EQ (asserts.take (), 1u);
}

TEST (AStringExport, Utf8Terminated) {
  std::string buffer (3, '*');
  EXPECT_EQ (fresh (U"a\u20AC").copy_utf8_z (buffer.data (), 3), 1u);
  EXPECT_EQ (buffer, std::string ("a\0*", 3));
  EXPECT_EQ (fresh (U"\u20AC").copy_utf8_z (buffer.data (), 1), 0u);
  EXPECT_EQ (buffer, std::string ("\0\0*", 3));
  buffer.assign (12, '*');
  EXPECT_EQ (mixed ().copy_utf8_z (buffer.data (), 12), 11u);
  EXPECT_EQ (buffer, std::string ("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z\0", 12));
}

template <class Unit>
void expect_utf16 () {
  const std::u16string whole = u"a\u00E9\u20AC\U0001F600z";
  const size_t fits[] = {0, 1, 2, 3, 3, 5, 6, 6, 6};
  for (size_t room = 1; room != std::size (fits); ++room) {
    std::vector<Unit> buffer (room, Unit (7));
    size_t written = 99;
    mixed ().copy_utf16 (buffer.data (), room, &written);
    EXPECT_EQ (written, fits[room]);
    for (size_t i = 0; i != room; ++i)
      EXPECT_EQ (buffer[i], i < fits[room] ? whole[i] : 7u);
    mixed ().copy_utf16 (buffer.data (), room, nullptr, true);
    for (size_t i = 0; i != room; ++i)
      EXPECT_EQ (buffer[i], i < fits[room] ? whole[i] : 0u);
    buffer.assign (room, Unit (7));
    EXPECT_EQ (mixed ().copy_utf16_z (buffer.data (), room), fits[room - 1]);
    for (size_t i = 0; i != room; ++i)
      EXPECT_EQ (buffer[i], i < fits[room - 1] ? whole[i] : i == fits[room - 1] ? 0u : 7u);
  }
}

TEST (AStringExport, Utf16) {
  expect_utf16<uint16_t> ();
  expect_utf16<char16_t> ();
}

TEST (AStringExport, Utf16StopsAtWhatHasNoEncoding) {
  AssertCounter asserts;
  for (const char32_t bad :
       {char32_t (0xD800), char32_t (0xDFFF), char32_t (0x110000), char32_t (0xFFFFFFFF)}) {
    const AString text = fresh ({U'a', bad, U'b'});
    std::array<char16_t, 4> buffer{9, 9, 9, 9};
    size_t written = 99;
    text.copy_utf16 (buffer.data (), 4, &written, true);
    EXPECT_EQ (written, 1u);
    EXPECT_EQ (buffer, (std::array<char16_t, 4>{u'a', 0, 0, 0}));
    EXPECT_EQ (text.to_u16string (), u"a");
  }
  EXPECT_EQ (asserts.count (), 0u);
}

TEST (AStringExport, Utf32) {
  std::array<uint32_t, 4> buffer{9, 9, 9, 9};
  size_t written = 99;
  fresh ({U'a', 0xD800}).copy_uint32 (buffer.data (), 4, &written);
  EXPECT_EQ (written, 2u);
  EXPECT_EQ (buffer, (std::array<uint32_t, 4>{'a', 0xD800, 9, 9}));
  mixed ().copy_uint32 (buffer.data (), 3, &written);
  EXPECT_EQ (written, 3u);
  EXPECT_EQ (buffer, (std::array<uint32_t, 4>{'a', 0xE9, 0x20AC, 9}));
  AString ("x").copy_uint32 (buffer.data (), 4, nullptr, true);
  EXPECT_EQ (buffer, (std::array<uint32_t, 4>{'x', 0, 0, 0}));
  EXPECT_EQ (mixed ().copy_uint32_z (buffer.data (), 4), 3u);
  EXPECT_EQ (buffer, (std::array<uint32_t, 4>{'a', 0xE9, 0x20AC, 0}));
  EXPECT_EQ (mixed ().copy_uint32_z (buffer.data (), 1), 0u);
  EXPECT_EQ (buffer[0], 0u);
  const AString text = AString ("x") * 100 + "yz";
  std::vector<uint32_t> all (103, 7);
  EXPECT_EQ (text.mid (1).copy_uint32_z (all.data (), all.size ()), 101u);
  EXPECT_EQ (all[98], 'x');
  EXPECT_EQ (all[100], 'z');
  EXPECT_EQ (all[101], 0u);
  EXPECT_EQ (all[102], 7u);
}

TEST (AStringExport, Wide) {
  const std::wstring whole = L"a\u00E9\u20AC\U0001F600z";
  std::wstring buffer (whole.size () + 2, L'*');
  size_t written = 99;
  mixed ().copy_wchar (buffer.data (), buffer.size (), &written);
  EXPECT_EQ (written, whole.size ());
  EXPECT_EQ (buffer, whole + L"**");
  mixed ().copy_wchar (buffer.data (), buffer.size (), nullptr, true);
  EXPECT_EQ (buffer, whole + std::wstring (2, L'\0'));
  buffer.assign (buffer.size (), L'*');
  EXPECT_EQ (mixed ().copy_wchar_z (buffer.data (), whole.size () + 1), whole.size ());
  EXPECT_EQ (buffer, whole + L'\0' + L'*');
  EXPECT_EQ (mixed ().copy_wchar_z (buffer.data (), 3), 2u);
  EXPECT_EQ (buffer[2], L'\0');
  EXPECT_EQ (mixed ().copy_wchar_z (buffer.data (), 1), 0u);
  EXPECT_EQ (buffer[0], L'\0');
}

TEST (AStringExport, WrongBuffersAreReportedAndLeftAlone) {
  AssertCounter asserts;
  const AString text ("abc");
  char bytes[2] = {'*', '*'};
  char16_t units[2] = {9, 9};
  uint32_t wide[2] = {9, 9};
  wchar_t wchars[2] = {9, 9};
  const auto each = [&] (size_t room, char *b, char16_t *u, uint32_t *w, wchar_t *c) {
    size_t written[4] = {9, 9, 9, 9};
    text.copy_latin1 (b, room, '?', &written[0], true);
    text.copy_utf16 (u, room, &written[1], true);
    text.copy_uint32 (w, room, &written[2], true);
    text.copy_wchar (c, room, &written[3], true);
    for (const size_t count : written)
      EXPECT_EQ (count, 0u);
    text.copy_latin1 (b, room, '?');
    text.copy_utf16 (u, room);
    text.copy_uint32 (w, room);
    text.copy_wchar (c, room);
    EXPECT_EQ (asserts.take (), room == 0 ? 6u : 8u); // code points may go into no room at all
    EXPECT_EQ (text.copy_latin1_z (b, room, '?'), 0u);
    EXPECT_EQ (text.copy_utf8_z (b, room), 0u);
    EXPECT_EQ (text.copy_utf16_z (u, room), 0u);
    EXPECT_EQ (text.copy_uint32_z (w, room), 0u);
    EXPECT_EQ (text.copy_wchar_z (c, room), 0u);
    EXPECT_EQ (asserts.take (), 5u);
  };
  each (0, bytes, units, wide, wchars);
  EXPECT_EQ (bytes[0], '*');
  EXPECT_EQ (units[0], 9);
  EXPECT_EQ (wide[0], 9u);
  EXPECT_EQ (wchars[0], 9);
  each (2, nullptr, nullptr, nullptr, nullptr);
  size_t written = 9;
  text.copy_utf8 (nullptr, 2, &written);
  EXPECT_EQ (written, 0u);
  text.append_utf8_to (nullptr);
  EXPECT_EQ (asserts.take (), 2u);
}

struct Collected {
  std::vector<std::string> portions;
  std::vector<std::vector<uint32_t>> runs;

  static void take_bytes (void *self, const void *data, uint64_t length) {
    static_cast<Collected *> (self)->portions.emplace_back (static_cast<const char *> (data), length);
  }
  static void take_run (void *self, const AChar *run, uint64_t count) {
    std::vector<uint32_t> values;
    for (uint64_t i = 0; i != count; ++i)
      values.push_back (run[i].value ());
    static_cast<Collected *> (self)->runs.push_back (values);
  }

  AByteSink bytes () { return AByteSink::with_pointer (take_bytes, this); }
  std::string all () const {
    std::string text;
    for (const std::string &portion : portions)
      text += portion;
    return text;
  }
};

TEST (AStringExport, EachRun) {
  Collected got;
  const AString text = AString ("abc") + AString ("x") * 70;
  text.mid (1, 66).each_run (ARunSink::with_pointer (Collected::take_run, &got));
  ASSERT_EQ (got.runs.size (), 2u);
  EXPECT_EQ (got.runs[0].size (), 63u);
  EXPECT_EQ (got.runs[0][0], 'b');
  EXPECT_EQ (got.runs[1], (std::vector<uint32_t>{'x', 'x', 'x'}));
  AString ().each_run (ARunSink::with_pointer (Collected::take_run, &got));
  EXPECT_EQ (got.runs.size (), 2u);
  text.each_run (ARunSink ());
}

TEST (AStringExport, EachUtf8InPortions) {
  Collected ascii;
  (AString ("x") * 300).each_utf8 (ascii.bytes ());
  ASSERT_EQ (ascii.portions.size (), 3u);
  EXPECT_EQ (ascii.portions[0], std::string (125, 'x')) << "flushed once a long sequence might not fit";
  EXPECT_EQ (ascii.portions[1], std::string (125, 'x'));
  EXPECT_EQ (ascii.portions[2], std::string (50, 'x'));

  for (size_t before = 120; before != 130; ++before) {
    Collected got;
    (AString ("x") * before + fresh (U"\U0001F600") + "y").each_utf8 (got.bytes ());
    EXPECT_EQ (got.all (), std::string (before, 'x') + "\xF0\x9F\x98\x80y");
    for (const std::string &portion : got.portions) {
      EXPECT_LE (portion.size (), 128u);
      EXPECT_NE (portion[0] & 0xC0, 0x80) << "no portion begins inside a code point";
    }
  }

  Collected wide;
  (fresh (U"\u20AC") * 100).each_utf8 (wide.bytes ());
  ASSERT_EQ (wide.portions.size (), 3u);
  EXPECT_EQ (wide.portions[0].size (), 126u);
  EXPECT_EQ (wide.portions[2].size (), 48u);

  Collected none;
  AString ().each_utf8 (none.bytes ());
  EXPECT_TRUE (none.portions.empty ());
}

TEST (AStringExport, EachUtf8StopsAtWhatHasNoEncoding) {
  AssertCounter asserts;
  Collected got;
  fresh ({U'a', U'\u00E9', 0x110000, U'b'}).each_utf8 (got.bytes ());
  EXPECT_EQ (got.all (), "a\xC3\xA9");
  EXPECT_EQ (fresh ({U'a', 0xFFFFFFFF, U'b'}).to_std_string (), "a");
  std::string buffer (4, '*');
  fresh ({U'a', 0x110000, U'b'}).copy_utf8 (buffer.data (), 4);
  EXPECT_EQ (buffer, "a***");
  EXPECT_EQ (asserts.count (), 0u) << "a server can send such a value";
}

TEST (AStringExport, Strings) {
  EXPECT_EQ (mixed ().to_std_string (), "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z");
  EXPECT_EQ (mixed ().to_u16string (), u"a\u00E9\u20AC\U0001F600z");
  EXPECT_EQ (AString ().to_std_string (), "");
  EXPECT_EQ (AString ().to_u16string (), u"");
  EXPECT_EQ ((fresh (U"\U0001F600") * 100).to_u16string ().size (), 200u);
  EXPECT_EQ (fresh ({U'a', 0, U'b'}).to_std_string (), std::string ("a\0b", 3));
  std::string out = "<";
  mixed ().mid (1, 2).append_utf8_to (&out);
  EXPECT_EQ (out, "<\xC3\xA9\xE2\x82\xAC");
}

} // namespace
