#include "base/astring.h"

#include "support/assert_counter.h"
#include "support/text_points.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

constexpr uint64_t to_end = AString::to_end;

// The code points 1, 2, 3 ... so that every index has a value of its own.
AString counting (uint32_t length) {
  AStringBuilder builder;
  for (uint32_t i = 1; i <= length; ++i)
    builder.append (AChar (i));
  return builder.finish ();
}

// -- Empty texts

TEST (AString, EmptyTextsHaveNoStore) {
  const AString abc ("abc");
  for (const AString &empty :
       {AString (), AString (""), abc.left (0), abc.right (0), abc.mid (3, 1), abc.mid (7),
        AString (abc, 1, 0), abc.drop_left (3), abc.drop_right (4), AString::from_utf8 (""),
        AString::from_utf16 (u""), AString::from_wide (L""), AString::from_utf32 (U"")}) {
    EXPECT_TRUE (empty.is_empty ());
    EXPECT_EQ (empty.length (), 0u);
    EXPECT_EQ (empty.store_length (), 0u);
    EXPECT_TRUE (empty == AString ());
    EXPECT_TRUE (empty.begin () == empty.end ());
  }
}

// -- Makers

TEST (AStringMakers, Latin1) {
  EXPECT_EQ (points (AString ("a\xE9\xFF")), U"a\u00E9\u00FF");
  EXPECT_EQ (points (AString::from_latin1 ("abc")), U"abc");
  EXPECT_EQ (points (AString::from_latin1 ("abcdef", 4)), U"abcd");
  EXPECT_EQ (points (AString::from_latin1 ("ab\0cd", 5)), U"ab") << "the length is an upper limit";
  EXPECT_EQ (points (AString::from_latin1 (std::string_view ("ab\x80"))), U"ab\u0080");
  EXPECT_TRUE (AString::from_latin1 (std::string_view ()).is_empty ());
}

TEST (AStringMakers, Utf8) {
  EXPECT_EQ (points (AString::from_utf8 ("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z")),
             U"a\u00E9\u20AC\U0001F600z");
  EXPECT_EQ (points (AString::from_utf8 ("abcdef", 3)), U"abc");
  EXPECT_EQ (points (AString::from_utf8 (std::string ("x\xC3\xA9"))), U"x\u00E9");
  EXPECT_TRUE (AString::from_utf8 (std::string_view ()).is_empty ());
}

TEST (AStringMakers, Utf8EndsSilentlyAtTheFirstBadPlace) {
  AssertCounter asserts;
  const struct {
    std::string bytes;
    std::u32string expected;
  } cases[] = {{"ab\xFF"
                "cd",
                U"ab"},
               {std::string ("ab\0cd", 5), U"ab"},
               {"ab\x80zzzz", U"ab"},
               {"\xBF\xBF\xBF\xBF\xBF", U""},
               {"ab\xC3", U"ab"},
               {"ab\xE2\x82", U"ab"},
               {"ab\xE2\x82z", U"ab"},
               {"\xC3\xA9\xC3z", U"\u00E9"},
               {"ab\xF4\xBF\xBF\xBF", {U'a', U'b', 0x13FFFF}},
               {"\xED\xA0\x80", {0xD800}}};
  for (const auto &c : cases)
    EXPECT_EQ (points (AString::from_utf8 (c.bytes.data (), c.bytes.size ())), c.expected) << c.bytes;
  EXPECT_EQ (asserts.count (), 0u);
}

TEST (AStringMakers, Utf8RunsOfAnyLength) {
  for (size_t before : {0u, 1u, 62u, 63u, 64u, 65u, 127u, 128u, 129u, 1000u}) {
    const AString text =
        AString::from_utf8 (std::string (before, 'a') + "\xE2\x82\xAC" + std::string (70, 'b'));
    EXPECT_EQ (points (text), std::u32string (before, U'a') + U'\u20AC' + std::u32string (70, U'b'));
  }
}

TEST (AStringMakers, Utf16) {
  EXPECT_EQ (points (AString::from_utf16 (u"a\u20AC\U0001F600")), U"a\u20AC\U0001F600");
  EXPECT_EQ (points (AString::from_utf16 (u"abcd", 2)), U"ab");
  EXPECT_EQ (points (AString::from_utf16 (std::u16string (u"xyz"))), U"xyz");
  const uint16_t units[] = {0x61, 0xD83D, 0xDE00, 0x62, 0};
  EXPECT_EQ (points (AString::from_utf16 (units)), U"a\U0001F600b");
  EXPECT_EQ (points (AString::from_utf16 (units, 3)), U"a\U0001F600");
}

TEST (AStringMakers, Utf16EndsSilentlyAtTheFirstBadPlace) {
  AssertCounter asserts;
  const std::u16string lone_low = {u'a', u'b', 0xDC00, u'c'};
  const std::u16string last_high = {u'a', u'b', 0xD800};
  const std::u16string high_alone = {u'a', 0xD800, u'b'};
  const std::u16string zero = {u'a', 0, u'b'};
  EXPECT_EQ (points (AString::from_utf16 (lone_low)), U"ab");
  EXPECT_EQ (points (AString::from_utf16 (last_high)), U"ab");
  EXPECT_EQ (points (AString::from_utf16 (high_alone)), U"a");
  EXPECT_EQ (points (AString::from_utf16 (zero)), U"a");
  const uint16_t pair_cut[] = {0x61, 0xD83D, 0xDE00};
  EXPECT_EQ (points (AString::from_utf16 (pair_cut, 2)), U"a");
  EXPECT_EQ (asserts.count (), 0u);
}

TEST (AStringMakers, WideBySizeOfItsUnit) {
  EXPECT_EQ (points (AString::from_wide (L"a\u20AC\U0001F600")), U"a\u20AC\U0001F600");
  EXPECT_EQ (points (AString::from_wide (L"abcd", 2)), U"ab");
  EXPECT_EQ (points (AString::from_wide (std::wstring (L"xyz"))), U"xyz");
  EXPECT_TRUE (AString::from_wide (std::wstring_view ()).is_empty ());
}

TEST (AStringMakers, Utf32IsUnchecked) {
  const uint32_t text[] = {0x61, 0, 0xD800, 0xFFFFFFFF};
  EXPECT_EQ (points (AString::from_utf32 (text, 4)), (std::u32string{0x61, 0, 0xD800, 0xFFFFFFFF}));
  const AChar chars[] = {AChar ('a'), AChar (0u)};
  EXPECT_EQ (points (AString::from_utf32 (chars, 2)), (std::u32string{U'a', 0}));
  EXPECT_EQ (points (AString::from_utf32 (U"xyz")), U"xyz");
  EXPECT_TRUE (AString::from_utf32 (text, 0).is_empty ());
}

TEST (AStringMakers, TerminatedUtf32CountsTheZerosInFront) {
  const uint32_t ordinary[] = {0x61, 0x62, 0};
  EXPECT_TRUE (AString::from_utf32 (ordinary).is_empty ());
  const uint32_t zeros[] = {0, 0, 0x61};
  EXPECT_EQ (points (AString::from_utf32 (zeros)), (std::u32string{0, 0}));
}

TEST (AStringMakers, OneChar) {
  EXPECT_EQ (points (AString (AChar (U'\u20AC'))), U"\u20AC");
  EXPECT_EQ (points (AString::from_char ('x')), U"x");
  EXPECT_EQ (points (AString::from_char (AChar (0u))), (std::u32string{0}));
}

TEST (AStringMakers, NullIsReportedAndEmpty) {
  AssertCounter asserts;
  const std::vector<AString> made = {AString (static_cast<const char *> (nullptr)),
                                     AString::from_latin1 (static_cast<const char *> (nullptr)),
                                     AString::from_latin1 (nullptr, 3),
                                     AString::from_utf8 (static_cast<const char *> (nullptr)),
                                     AString::from_utf8 (nullptr, 3),
                                     AString::from_utf16 (static_cast<const uint16_t *> (nullptr)),
                                     AString::from_utf16 (static_cast<const uint16_t *> (nullptr), 3),
                                     AString::from_utf16 (static_cast<const char16_t *> (nullptr)),
                                     AString::from_utf16 (static_cast<const char16_t *> (nullptr), 3),
                                     AString::from_wide (static_cast<const wchar_t *> (nullptr)),
                                     AString::from_wide (nullptr, 3),
                                     AString::from_utf32 (static_cast<const uint32_t *> (nullptr)),
                                     AString::from_utf32 (static_cast<const uint32_t *> (nullptr), 3),
                                     AString::from_utf32 (static_cast<const AChar *> (nullptr), 3)};
  EXPECT_EQ (asserts.count (), made.size ());
  for (const AString &text : made)
    EXPECT_TRUE (text.is_empty ());
}

TEST (AStringMakers, Format) {
  EXPECT_EQ (points (AString::format ("%d-%s-%c", 42, "x\xE9", 'y')), U"42-x\u00E9-y");
  EXPECT_EQ (AString::format ("%s", std::string (2047, 'a').c_str ()).length (), 2047u);
  EXPECT_EQ (points (AString::format ("%s", (std::string (2047, 'a') + "bc").c_str ())),
             std::u32string (2047, U'a'));
  EXPECT_TRUE (AString::format ("%s", "").is_empty ());
  AssertCounter asserts;
  const char *no_format = nullptr;
  EXPECT_TRUE (AString::format (no_format, 1).is_empty ());
  EXPECT_EQ (asserts.count (), 1u);
}

// -- Sharing and values

TEST (AString, CopiesAndSubstringsShareTheStore) {
  const AString text = fresh (U"hello world");
  const AString copy (text);
  AString assigned;
  assigned = text;
  EXPECT_TRUE (copy.shares_store_with (text));
  EXPECT_TRUE (assigned.shares_store_with (text));
  for (const AString &piece :
       {text.left (3), text.right (3), text.mid (2, 4), text.drop_left (2), text.drop_right (2),
        AString (text, 4, 3), text.mid (2).mid (2).left (2), text.trim (), text.strip_prefix ("hello")})
    EXPECT_TRUE (piece.shares_store_with (text)) << piece;
  EXPECT_FALSE (fresh (U"hello world").shares_store_with (text));
}

TEST (AString, SubstringsClip) {
  const AString abc ("abc");
  EXPECT_EQ (points (abc.mid (1, to_end)), U"bc");
  EXPECT_TRUE (abc.mid (1, to_end).shares_store_with (abc));
  EXPECT_EQ (points (abc.mid (1, 1)), U"b");
  EXPECT_EQ (points (abc.mid (2, 100)), U"c");
  EXPECT_EQ (points (abc.mid (to_end, to_end)), U"");
  EXPECT_EQ (points (abc.left (2)), U"ab");
  EXPECT_EQ (points (abc.left (9)), U"abc");
  EXPECT_EQ (points (abc.right (2)), U"bc");
  EXPECT_EQ (points (abc.right (9)), U"abc");
  EXPECT_EQ (points (abc.drop_left (1)), U"bc");
  EXPECT_EQ (points (abc.drop_right (1)), U"ab");
  EXPECT_EQ (points (abc.drop_right (to_end)), U"");
  EXPECT_EQ (points (abc.mid (1).mid (1)), U"c") << "a view on a view";
  EXPECT_EQ (points (abc.left (2).right (1)), U"b");
  EXPECT_EQ (points (abc.left (2).mid (1, to_end)), U"b") << "the store holds more than the view";
}

TEST (AString, MovesLeaveTheEmptyText) {
  AString text = fresh (U"hello");
  const uint64_t hash = text.hash ();
  AString moved (std::move (text));
  EXPECT_EQ (points (moved), U"hello");
  EXPECT_TRUE (text.is_empty ()); // NOLINT(bugprone-use-after-move): what is left is promised
  EXPECT_EQ (text.hash (), 1u);
  EXPECT_EQ (moved.hash (), hash);
  AString target = fresh (U"old");
  EXPECT_NE (target.hash (), hash);
  target = std::move (moved);
  EXPECT_EQ (points (target), U"hello");
  EXPECT_EQ (target.hash (), hash) << "assignment forgets the hash of the old text";
  AString &same = target;
  target = std::move (same);
  EXPECT_EQ (points (target), U"hello");
  target = same;
  EXPECT_EQ (points (target), U"hello");
}

TEST (AString, AdoptClipsToTheStore) {
  ARef<AStringStorage> store = ARef<AStringStorage>::create ();
  store->append_latin1 ("abcdef", 6);
  store->finish ();
  const struct {
    uint64_t start;
    uint64_t length;
    const char *expected;
  } cases[] = {{0, to_end, "abcdef"}, {0, 6, "abcdef"}, {2, 3, "cde"}, {2, to_end, "cdef"}, {4, 3, "ef"},
               {5, to_end - 3, "f"},  {6, 1, ""},       {9, 1, ""},    {2, 0, ""}};
  for (const auto &c : cases) {
    const AString text = AString::adopt (store, c.start, c.length);
    EXPECT_EQ (text, c.expected);
    EXPECT_EQ (text.store_length (), *c.expected == 0 ? 0u : 6u) << "an empty text lets go of the store";
  }
  EXPECT_TRUE (AString::adopt (ARef<AStringStorage> (), 3, 4).is_empty ());
}

// -- Stores

TEST (AStringStorage, SegmentsOfSixtyFour) {
  AStringStorage store;
  EXPECT_EQ (store.head, nullptr);
  for (int i = 0; i != 64; ++i)
    store.append ('a');
  EXPECT_EQ (store.head, store.tail);
  EXPECT_EQ (store.head->buflen, 64u);
  EXPECT_TRUE (store.head->full ());
  EXPECT_EQ (store.head->next, nullptr);
  store.append ('b');
  EXPECT_NE (store.head, store.tail);
  EXPECT_EQ (store.head->next, store.tail);
  EXPECT_EQ (store.tail->buflen, 1u);
  EXPECT_EQ (store.len, 65u);
  EXPECT_FALSE (store.is_ctor_done ());
  store.finish ();
  EXPECT_TRUE (store.is_ctor_done ());
}

TEST (AStringStorage, OnlyTheLastSegmentIsShort) {
  AStringStorage store;
  const uint32_t wide[] = {1, 2, 3};
  store.append_uint32 (wide, 3);
  store.append_latin1 (std::string (200, 'x').data (), 200);
  store.append ('y');
  store.append_uint32 (std::vector<AChar> (100, AChar ('z')).data (), 100);
  store.append_latin1 ("", 0);
  store.finish ();
  EXPECT_EQ (store.len, 304u);
  uint64_t segments = 0;
  for (const AStringSegment *segment = store.head; segment != nullptr; segment = segment->next, ++segments)
    EXPECT_EQ (segment->buflen, segment == store.tail ? 304u % 64 : 64u);
  EXPECT_EQ (segments, 5u);
}

TEST (AStringStorage, FinishedStoresTakeNoMore) {
  AssertCounter asserts;
  AStringStorage store;
  store.append ('a');
  store.finish ();
  store.append ('b');
  store.append_latin1 ("b", 1);
  const uint32_t wide[] = {1};
  store.append_uint32 (wide, 1);
  store.finish ();
  EXPECT_EQ (asserts.count (), 4u);
  EXPECT_EQ (store.len, 1u);
}

TEST (AStringStorage, UnfinishedStoresAreNotRead) {
  ARef<AStringStorage> store = ARef<AStringStorage>::create ();
  store->append_latin1 ("abc", 3);
  AssertCounter asserts;
  AStringPosition pos;
  EXPECT_FALSE (store->seek (&pos, 0));
  EXPECT_EQ (asserts.take (), 1u);
  pos = {store->head, 0, 0};
  EXPECT_FALSE (store->next (&pos));
  EXPECT_FALSE (store->skip (&pos, 1));
  EXPECT_FALSE (store->previous (&pos));
  EXPECT_EQ (store->run (&pos, nullptr), 0u);
  EXPECT_EQ (asserts.take (), 4u);
  const AString early = AString::adopt (store);
  EXPECT_EQ (early.getchar (0, '?'), '?');
  EXPECT_GT (asserts.take (), 0u);
}

TEST (AStringStorage, Positions) {
  for (uint32_t length : {1u, 63u, 64u, 65u, 130u, 256u, 257u, 700u}) {
    AStringStorage store;
    for (uint32_t i = 0; i != length; ++i)
      store.append (AChar (i));
    store.finish ();
    AStringPosition pos;
    for (uint32_t i = 0; i != length; ++i) {
      ASSERT_TRUE (store.seek (&pos, i));
      const AChar *at = nullptr;
      ASSERT_EQ (store.run (&pos, &at), std::min (length, i / 64 * 64 + 64) - i);
      ASSERT_EQ (at->value (), i);
      ASSERT_EQ (pos.absolute_position, i);
      AStringPosition moved = pos;
      ASSERT_EQ (store.next (&moved), i + 1 < length);
      ASSERT_EQ (moved.absolute_position, i + 1 < length ? i + 1 : i);
      moved = pos;
      ASSERT_EQ (store.previous (&moved), i > 0);
      ASSERT_EQ (moved.absolute_position, i > 0 ? i - 1 : 0);
      for (uint32_t count : {1u, 5u, 64u, 100u, 600u}) {
        moved = pos;
        ASSERT_EQ (store.skip (&moved, count), i + count < length);
        if (i + count >= length)
          continue;
        ASSERT_EQ (moved.current_segment->buf[moved.segment_offset].value (), i + count);
        ASSERT_EQ (moved.absolute_position, i + count);
      }
    }
    EXPECT_FALSE (store.seek (&pos, length));
    EXPECT_FALSE (store.seek (&pos, to_end));
  }
}

TEST (AStringStorage, WrongPositionsAreReported) {
  AStringStorage store;
  store.append_latin1 ("abc", 3);
  store.finish ();
  AssertCounter asserts;
  EXPECT_FALSE (store.seek (nullptr, 0));
  EXPECT_FALSE (store.next (nullptr));
  EXPECT_FALSE (store.previous (nullptr));
  EXPECT_FALSE (store.skip (nullptr, 1));
  EXPECT_EQ (store.run (nullptr, nullptr), 0u);
  EXPECT_EQ (asserts.take (), 5u);
  AStringPosition nowhere;
  EXPECT_FALSE (store.next (&nowhere));
  EXPECT_FALSE (store.skip (&nowhere, 1));
  EXPECT_EQ (store.run (&nowhere, nullptr), 0u);
  EXPECT_EQ (asserts.take (), 3u);
  AStringPosition behind{store.head, 3, 3};
  EXPECT_FALSE (store.next (&behind));
  EXPECT_EQ (store.run (&behind, nullptr), 0u);
  EXPECT_EQ (asserts.take (), 2u);
  AStringPosition crooked{store.head, 1, 0};
  EXPECT_FALSE (store.previous (&crooked));
  EXPECT_EQ (asserts.take (), 1u);
  AStringPosition pos{store.head, 0, 0};
  EXPECT_FALSE (store.skip (&pos, 0));
  EXPECT_EQ (asserts.take (), 1u);
}

TEST (AStringStorage, BrokenChainsAreReportedAndEndTheWalk) {
  ARef<AStringStorage> store = ARef<AStringStorage>::create ();
  store->append_latin1 (std::string (100, 'a').data (), 100);
  store->finish ();
  AStringSegment *cut = std::exchange (store->head->next, nullptr);
  const AString text = AString::adopt (store);
  AssertCounter asserts;
  EXPECT_EQ (text.getchar (99, '?'), '?');
  EXPECT_EQ (asserts.take (), 1u);
  AStringPosition pos;
  ASSERT_TRUE (text.seek (&pos, nullptr, 63));
  EXPECT_FALSE (text.next (&pos));
  EXPECT_EQ (asserts.take (), 0u);
  EXPECT_EQ (text.to_std_string (), std::string (64, 'a'));
  EXPECT_EQ (asserts.take (), 1u);
  store->head->next = cut;
  cut->buflen = 1;
  EXPECT_EQ (text.getchar (99, '?'), '?');
  EXPECT_EQ (asserts.take (), 1u);
}

TEST (AStringStorage, LongChainsAreFreedWithoutRecursion) {
  const AString text = AString ("0123456789") * 500000;
  EXPECT_EQ (text.length (), 5000000u);
  EXPECT_EQ (text.getchar (4999999), '9');
}

// -- Reading

TEST (AStringReading, Getchar) {
  const AString text = counting (200).mid (10, 100);
  EXPECT_EQ (text.getchar (0), AChar (11u));
  EXPECT_EQ (text.getchar (99), AChar (110u));
  EXPECT_EQ (text.getchar (100), AChar ());
  EXPECT_EQ (text.getchar (100, '!'), '!') << "the store goes on, the view does not";
  EXPECT_EQ (text.getchar (to_end, '!'), '!');
  EXPECT_EQ (text.first_char (), AChar (11u));
  EXPECT_EQ (text.last_char ('!'), AChar (110u));
  EXPECT_EQ (AString ().last_char ('!'), '!');
  EXPECT_EQ (AString ().first_char ('!'), '!');
}

TEST (AStringReading, CursorsClipToTheView) {
  const AString text = counting (300).mid (60, 140); // 61 to 200
  AStringPosition pos;
  AChar c;
  ASSERT_TRUE (text.first (&pos, &c));
  EXPECT_EQ (c, AChar (61u));
  EXPECT_EQ (pos.absolute_position, 60u);
  EXPECT_EQ (text.index_of (pos), 0u);
  EXPECT_FALSE (text.previous (&pos, &c));
  for (uint32_t v = 62; v <= 200; ++v) {
    ASSERT_TRUE (text.next (&pos, &c));
    ASSERT_EQ (c, AChar (v));
  }
  EXPECT_FALSE (text.next (&pos, &c));
  EXPECT_EQ (text.index_of (pos), 139u);
  for (uint32_t v = 199; v >= 61; --v) {
    ASSERT_TRUE (text.previous (&pos, &c));
    ASSERT_EQ (c, AChar (v));
  }
  ASSERT_TRUE (text.last (&pos, &c));
  EXPECT_EQ (c, AChar (200u));
  ASSERT_TRUE (text.seek (&pos, &c, 139));
  EXPECT_FALSE (text.seek (&pos, &c, 140));
  ASSERT_TRUE (text.seek (&pos, nullptr, 10));
  EXPECT_TRUE (text.skip (&pos, 129));
  EXPECT_EQ (text.index_of (pos), 139u);
  EXPECT_FALSE (text.skip (&pos, 1));
  EXPECT_FALSE (text.skip (&pos, to_end));
  ASSERT_TRUE (text.first (&pos));
  EXPECT_FALSE (text.skip (&pos, 140));
  EXPECT_TRUE (text.next (&pos));
  EXPECT_TRUE (text.previous (&pos));
}

TEST (AStringReading, CursorsOfTheEmptyText) {
  AStringPosition pos;
  AChar c;
  const AString empty;
  EXPECT_FALSE (empty.first (&pos, &c));
  EXPECT_FALSE (empty.last (&pos, &c));
  EXPECT_FALSE (empty.seek (&pos, &c, 0));
  EXPECT_FALSE (empty.next (&pos, &c));
  EXPECT_FALSE (empty.previous (&pos, &c));
  pos.absolute_position = 5;
  EXPECT_FALSE (empty.previous (&pos, &c));
  EXPECT_FALSE (empty.skip (&pos, 1));
}

TEST (AStringReading, RunsClipToTheView) {
  const AString text = counting (300).mid (60, 140);
  AStringPosition pos;
  ASSERT_TRUE (text.first (&pos));
  const AChar *at = nullptr;
  EXPECT_EQ (text.run (&pos, &at), 4u);
  EXPECT_EQ (*at, AChar (61u));
  ASSERT_TRUE (text.skip (&pos, 4));
  EXPECT_EQ (text.run (&pos, &at), 64u);
  ASSERT_TRUE (text.skip (&pos, 64));
  EXPECT_EQ (text.run (&pos, nullptr), 64u);
  ASSERT_TRUE (text.skip (&pos, 64));
  EXPECT_EQ (text.run (&pos, &at), 8u);
  EXPECT_EQ (*at, AChar (193u));
}

TEST (AStringReading, WrongCursorsAreReported) {
  const AString whole = counting (100);
  const AString text = whole.mid (10, 20);
  AssertCounter asserts;
  EXPECT_FALSE (text.next (nullptr));
  EXPECT_FALSE (text.previous (nullptr));
  EXPECT_FALSE (text.skip (nullptr, 1));
  EXPECT_FALSE (text.seek (nullptr, nullptr, 0));
  EXPECT_EQ (text.run (nullptr, nullptr), 0u);
  EXPECT_EQ (asserts.take (), 5u);
  AStringPosition pos;
  whole.seek (&pos, nullptr, 9);
  EXPECT_EQ (text.run (&pos, nullptr), 0u);
  whole.seek (&pos, nullptr, 30);
  EXPECT_EQ (text.run (&pos, nullptr), 0u);
  EXPECT_EQ (AString ().run (&pos, nullptr), 0u);
  EXPECT_EQ (asserts.take (), 3u);
}

TEST (AStringReading, Iterators) {
  const AString text = counting (130).mid (1);
  uint32_t expected = 2;
  for (const AChar c : text)
    ASSERT_EQ (c, AChar (expected++));
  EXPECT_EQ (expected, 131u);

  AStringIterator at = text.begin ();
  EXPECT_TRUE (at == text.begin ());
  EXPECT_FALSE (at == text.end ());
  ++at;
  EXPECT_FALSE (at == text.begin ());
  EXPECT_EQ (*at, AChar (3u));
  --at;
  EXPECT_TRUE (at == text.begin ());
  --at;
  EXPECT_TRUE (at == text.end ()) << "before the beginning is the end";
  EXPECT_EQ (*at, AChar ());
  ++at;
  EXPECT_TRUE (at == AStringIterator ());

  const AString copy = text;
  EXPECT_FALSE (copy.begin () == text.begin ()) << "iterators belong to one object";
  EXPECT_TRUE (copy.end () == text.end ());
  EXPECT_EQ (*AString ().begin (), AChar ());
}

TEST (AStringReading, Runs) {
  const AString text = counting (300).mid (60, 140);
  std::vector<uint64_t> lengths;
  EXPECT_TRUE (text.walk_runs ([&] (const AChar *, uint64_t count) {
    lengths.push_back (count);
    return true;
  }));
  EXPECT_EQ (lengths, (std::vector<uint64_t>{4, 64, 64, 8}));
  lengths.clear ();
  EXPECT_FALSE (text.walk_runs (
      [&] (const AChar *run, uint64_t count) {
        EXPECT_EQ (run->value (), lengths.empty () ? 67u : 129u);
        lengths.push_back (count);
        return lengths.size () < 2;
      },
      6));
  EXPECT_EQ (lengths, (std::vector<uint64_t>{62, 64}));
  EXPECT_TRUE (text.walk_runs ([] (const AChar *, uint64_t) { return false; }, 140));

  AStringRuns runs (text, 2);
  EXPECT_EQ (runs.count (), 2u);
  runs.advance (1);
  EXPECT_EQ (runs.data ()->value (), 64u);
  runs.advance (1);
  EXPECT_EQ (runs.count (), 64u);
  EXPECT_TRUE (AStringRuns (AString ()).at_end ());
}

// -- Pieces

TEST (AStringPieces, StripPrefixAndSuffix) {
  const AString text ("none12345");
  bool done = false;
  EXPECT_EQ (text.strip_prefix ("none", &done), "12345");
  EXPECT_TRUE (done);
  EXPECT_EQ (text.strip_prefix ("None", &done), "none12345");
  EXPECT_FALSE (done);
  EXPECT_EQ (text.strip_prefix ("NONE", &done, ACompareCaseless), "12345");
  EXPECT_TRUE (done);
  EXPECT_EQ (text.strip_prefix ("", &done), "none12345");
  EXPECT_TRUE (done);
  EXPECT_EQ (text.strip_suffix ("45"), "none123");
  EXPECT_EQ (text.strip_suffix ("54", &done), "none12345");
  EXPECT_FALSE (done);
  EXPECT_EQ (AString ("fileX").strip_suffix ("x", &done, ACompareCaseless), "file");
  EXPECT_TRUE (done);
  EXPECT_EQ (text.strip_suffix ("xnone12345", &done), "none12345");
  EXPECT_FALSE (done);
  EXPECT_EQ (text.strip_suffix (text, &done), "");
  EXPECT_TRUE (done);
}

TEST (AStringPieces, Trim) {
  const AString text (" \t\n\r\v\f a b \f\v\r\n\t ");
  EXPECT_EQ (text.trim_left (), "a b \f\v\r\n\t ");
  EXPECT_EQ (text.trim_right (), " \t\n\r\v\f a b");
  EXPECT_EQ (text.trim (), "a b");
  EXPECT_EQ (AString ("a b").trim (), "a b");
  EXPECT_EQ (AString (" ").trim (), "");
  EXPECT_EQ (AString ().trim (), "");
  EXPECT_EQ (AString ("\xA0x\xA0").trim (), "\xA0x\xA0") << "a no-break space is no white space here";
  const AString lengthy = AString (" ") * 1000 + "x" + AString (" ") * 1000;
  EXPECT_EQ (lengthy.trim (), "x");
  EXPECT_TRUE (lengthy.trim ().shares_store_with (lengthy));
}

TEST (AStringPieces, TrimTakesCharactersBeyondLatin1AndNul) {
  EXPECT_EQ (fresh (U"abc\u0100").trim_right (), "abc");
  EXPECT_EQ (fresh (U"\u3042abc").trim_left (), "abc");
  EXPECT_EQ (fresh ({U'\0', U'a', U'\0'}).trim (), "a");
  EXPECT_EQ (fresh (U"a\u0100b").trim (), fresh (U"a\u0100b"));
}

TEST (AStringPieces, Blank) {
  EXPECT_TRUE (AString ().is_blank ());
  EXPECT_TRUE (AString (" \t\r\n").is_blank ());
  EXPECT_TRUE (fresh (U"\u0100").is_blank ());
  EXPECT_FALSE (AString ("  x").is_blank ());
  EXPECT_TRUE ((AString (" ") * 200).is_blank ());
}

TEST (AStringPieces, LeadingDigits) {
  EXPECT_EQ (AString ("123abc").leading_digits (), "123");
  EXPECT_EQ (AString ("123").leading_digits (), "123");
  EXPECT_EQ (AString ("abc").leading_digits (), "");
  EXPECT_EQ (AString ().leading_digits (), "");
  EXPECT_EQ (fresh (U"1\u0662").leading_digits (), "1") << "ASCII digits only";
}

// -- Making

TEST (AStringMaking, Concatenation) {
  const AString a ("abc");
  const AString b ("def");
  const AString none;
  EXPECT_EQ (a + b, "abcdef");
  EXPECT_TRUE ((a + none).shares_store_with (a));
  EXPECT_TRUE ((none + b).shares_store_with (b));
  EXPECT_TRUE ((none + none).is_empty ());
  EXPECT_EQ (a.mid (1) + b.left (2), "bcde") << "views are honoured";
  AString sum = a;
  sum += b;
  sum += sum;
  EXPECT_EQ (sum, "abcdefabcdef");
  EXPECT_EQ (points (counting (100) + counting (3)), points (counting (100)) + U"\x1\x2\x3");
}

TEST (AStringMaking, Repetition) {
  EXPECT_EQ (AString ("ab") * 3, "ababab");
  EXPECT_EQ (AString ("ab") * 1, "ab");
  EXPECT_EQ (AString ("ab") * 0, "");
  EXPECT_EQ (AString () * 5, "");
  EXPECT_EQ (points (AString ("x") * 129), std::u32string (129, U'x'));
}

TEST (AStringMaking, Replace) {
  const AString text ("hello");
  EXPECT_EQ (text.replace (1, 3, "ipp"), "hippo");
  EXPECT_EQ (text.replace (0, 0, "o"), "ohello");
  EXPECT_EQ (text.replace (5, 0, "!"), "hello!");
  EXPECT_EQ (text.replace (9, 2, "!"), "hello!");
  EXPECT_EQ (text.replace (2, 100, "p"), "hep");
  EXPECT_EQ (text.replace (2, to_end, "p"), "hep");
  EXPECT_EQ (text.replace (1, 2, ""), "hlo");
  EXPECT_EQ (AString ().replace (0, 0, "x"), "x");
}

TEST (AStringMaking, Detached) {
  const AString store = counting (100);
  AString out ("old");
  AString ().detached (&out, 32);
  EXPECT_TRUE (out.is_empty ());
  store.left (68).detached (&out, 32);
  EXPECT_TRUE (out.shares_store_with (store)) << "32 more are no more than the threshold";
  const AString small = store.left (67);
  small.detached (&out, 32);
  EXPECT_FALSE (out.shares_store_with (store));
  EXPECT_EQ (out, small);
  EXPECT_EQ (out.store_length (), 67u);
  store.detached (&out, 0);
  EXPECT_TRUE (out.shares_store_with (store));
  AString self = store.mid (3, 2);
  self.detached (&self, 0);
  EXPECT_EQ (points (self), (std::u32string{4, 5}));
  EXPECT_EQ (self.store_length (), 2u);
  AssertCounter asserts;
  store.detached (nullptr, 0);
  EXPECT_EQ (asserts.count (), 1u);
}

TEST (AStringBuilder, CollectsPieces) {
  AStringBuilder builder;
  EXPECT_TRUE (builder.is_empty ());
  EXPECT_TRUE (builder.finish ().is_empty ());
  builder.append ('a');
  builder.append (AString ("xbcx").mid (1, 2));
  builder.append (AString ());
  builder.append_latin1 ("d\xE9");
  const AChar euro (U'\u20AC');
  builder.append_uint32 (&euro, 1);
  EXPECT_TRUE (builder.append_utf8 ("\xE2\x82\xAC", 3));
  EXPECT_FALSE (builder.append_utf8 ("z\x80yyyy", 6));
  EXPECT_EQ (builder.length (), 8u);
  EXPECT_EQ (points (builder.finish ()), U"abcd\u00E9\u20AC\u20ACz");
  EXPECT_TRUE (builder.is_empty ());
  builder.append ('q');
  EXPECT_EQ (builder.finish (), "q");
}

// -- Threads

TEST (AStringThreads, FinishedStoresAndHashesAreShared) {
  for (int round = 0; round != 20; ++round) {
    const AString text = counting (500);
    uint64_t expected = counting (500).hash ();
    std::vector<std::thread> threads;
    for (uint32_t t = 0; t != 4; ++t)
      threads.emplace_back ([&text, t, expected] {
        EXPECT_EQ (text.hash (), expected);
        for (uint32_t i = 0; i != 100; ++i) {
          const AString copy = text;
          const AString piece = copy.mid (t * 50 + i, 70);
          EXPECT_EQ (piece.getchar (69), AChar (t * 50 + i + 70));
          EXPECT_EQ (text.find (AChar (i + 1)), static_cast<int64_t> (i));
          EXPECT_TRUE (copy == text);
        }
      });
    for (std::thread &thread : threads)
      thread.join ();
    EXPECT_EQ (text.hash (), expected);
  }
}

TEST (AStringThreads, TheLastReferenceMayFallAnywhere) {
  for (int round = 0; round != 50; ++round) {
    AString text = counting (300);
    std::thread other ([copy = text.mid (100)] () mutable {
      EXPECT_EQ (copy.getchar (0), AChar (101u));
      copy = AString ();
    });
    text = AString ();
    other.join ();
  }
}

} // namespace
