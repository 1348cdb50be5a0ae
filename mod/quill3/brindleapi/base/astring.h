/// The library's only text type.
#pragma once

#include "base/afunction.h"
#include "base/aref.h"
#include "base/astring_storage.h"
#include "base/fixed.h"

#include <compare>
#include <string>
#include <string_view>

class AString;
class AStringIterator;
class AStringList;

/// Receives code points that are contiguous in memory: their address and their number. They are valid during
/// the call only.
using ARunSink = AFunction<void (const AChar *run, uint64_t count)>;

/// Finds the next delimiter of `text` at or after `start`: stores its position, below 0 when there is none,
/// and its length. Called with -1 and 1 stored there.
using ADelimiterFinder =
    AFunction<void (const AString &text, int64_t start, int64_t *position, int64_t *length)>;

/// How texts are compared.
enum ACompareMode : unsigned {
  ACompareExact = 0,
  ACompareCaseless = 1 ///< "A" to "Z" count as "a" to "z"; no other letter is folded
};

/// An immutable sequence of code points: a view (offset and length) on a shared store. Copies, substrings and
/// moves cost no characters, and nothing ever edits a store, so texts need no locks.
///
/// Nothing here fails. Badly encoded input ends the text at the first bad place. A full buffer ends the
/// output at a code-point boundary. Offsets and counts out of range are clipped. Offsets and counts are in
/// code points; positions that a search returns are signed, -1 for "not found".
///
/// Threads: any number may read and copy one AString; assigning to it while another thread uses it is a race.
/// `hash` may be called from any thread.
///
/// Cost: every text that is not empty takes at least one segment of 64 code points of four bytes. Where no
/// cost is given, an operation is linear in the characters that it reads. To build a text from many pieces,
/// use AStringBuilder: each `+` copies both sides.
class AString {
public:
  /// As a count: up to the end.
  static constexpr uint64_t to_end = UINT64_MAX;

  AString () = default;
  AString (const AString &other)
      : storage_ (other.storage_), start_offset_ (other.start_offset_), len_ (other.len_) {}
  AString (AString &&other) noexcept;
  AString &operator= (const AString &other);
  AString &operator= (AString &&other) noexcept;
  ~AString () = default;

  /// Latin-1 text up to its NUL. A null pointer is a fault and leaves the empty text.
  AString (const char *latin1);
  explicit AString (AChar c);
  /// `count` code points of `other` from `offset`, sharing its store. Constant time.
  AString (const AString &other, uint64_t offset, uint64_t count);
  /// The texts of a list in order. A list of one element gives that element and shares its store.
  explicit AString (const AStringList &list);
  /// The same with `separator` between the elements.
  AString (const AStringList &list, const AString &separator);

  // -- Makers. The text ends at the first invalid sequence; the rest is dropped without a report. So all of
  // them may be given bytes from outside. A null pointer is a fault and leaves the empty text.

  /// Each byte becomes the code point of the same value, up to a NUL or `length`.
  static AString from_latin1 (const char *text);
  static AString from_latin1 (const char *text, size_t length);
  static AString from_latin1 (std::string_view text);
  /// UTF-8 up to a NUL or `length`. See decode_utf8 for what is refused.
  static AString from_utf8 (const char *text);
  static AString from_utf8 (const char *text, size_t length);
  static AString from_utf8 (std::string_view text);
  /// UTF-16 up to a zero unit or `count`. See decode_utf16 for what is refused.
  static AString from_utf16 (const uint16_t *text);
  static AString from_utf16 (const uint16_t *text, size_t count);
  static AString from_utf16 (const char16_t *text);
  static AString from_utf16 (const char16_t *text, size_t count);
  static AString from_utf16 (std::u16string_view text);
  /// Wide text is decoded by the size of its unit: UTF-16 where it has 16 bits, else code points unchecked.
  static AString from_wide (const wchar_t *text);
  static AString from_wide (const wchar_t *text, size_t count);
  static AString from_wide (std::wstring_view text);
  /// Counts the zero elements in front, not those before a zero: an ordinary text gives the empty text, and
  /// some zeros give as many code points 0. Pass a count for a text.
  // C67: doc/compatibility.md
  static AString from_utf32 (const uint32_t *text);
  /// Code points, unchecked.
  static AString from_utf32 (const uint32_t *text, size_t count);
  static AString from_utf32 (const AChar *text, size_t count);
  static AString from_utf32 (std::u32string_view text);
  /// A text of one code point.
  static AString from_char (AChar c);
  /// printf into 2048 bytes, read as Latin-1: what is beyond 2047 bytes is cut.
  [[gnu::format (printf, 1, 2)]] static AString format (const char *format, ...);
  /// A view of a finished store, clipped to it.
  static AString adopt (ARef<AStringStorage> storage, uint64_t start = 0, uint64_t length = to_end);

  // -- Reading. Constant time unless said otherwise.

  uint64_t length () const { return len_; }
  bool is_empty () const { return len_ == 0; }
  /// The code point at `index`, `otherwise` past the end.
  AChar getchar (uint64_t index, AChar otherwise = AChar ()) const;
  AChar first_char (AChar otherwise = AChar ()) const { return getchar (0, otherwise); }
  AChar last_char (AChar otherwise = AChar ()) const;
  /// True when the two views lie in one store.
  bool shares_store_with (const AString &other) const { return storage_ == other.storage_; }
  /// Code points in the whole store, those outside the view included.
  uint64_t store_length () const { return storage_.is_null () ? 0 : storage_->len; }

  // Cursors. Each returns false and leaves `pos` unchanged where the view has no such position. `c` receives
  // the code point at the position and may be null.
  bool first (AStringPosition *pos, AChar *c = nullptr) const;
  bool last (AStringPosition *pos, AChar *c = nullptr) const;
  bool seek (AStringPosition *pos, AChar *c, uint64_t index) const;
  bool next (AStringPosition *pos, AChar *c = nullptr) const;
  bool previous (AStringPosition *pos, AChar *c = nullptr) const;
  bool skip (AStringPosition *pos, uint64_t count) const;
  /// The run of code points from `pos` that is contiguous in memory, clipped to the view: returns their
  /// number, and stores their address if `address` is not null.
  uint64_t run (const AStringPosition *pos, const AChar **address) const;
  /// The index in this view of a cursor that it produced.
  uint64_t index_of (const AStringPosition &pos) const { return pos.absolute_position - start_offset_; }

  /// Calls `take (const AChar *run, uint64_t count)` for each run from index `from` on, until it returns
  /// false. True when it was called for all runs.
  template <class Take>
  bool walk_runs (Take take, uint64_t from = 0) const;
  /// The index of the first code point at or after `from` for which `wanted (AChar)` holds, or -1.
  template <class Wanted>
  int64_t find_if (Wanted wanted, uint64_t from = 0) const;
  /// The index of the last code point at or before `from` for which `wanted (AChar)` holds, or -1.
  template <class Wanted>
  int64_t rfind_if (Wanted wanted, uint64_t from) const;

  AStringIterator begin () const;
  AStringIterator end () const;

  // -- Searching. Linear.

  int64_t find (AChar c, int64_t from = 0) const;
  /// An empty needle is found at 0, whatever `from`.
  int64_t find (const AString &needle, int64_t from = 0) const;
  int64_t rfind (AChar c) const;
  /// The last `c` at or before `from`.
  int64_t rfind (AChar c, int64_t from) const;
  bool contains (AChar c) const { return find (c) >= 0; }
  bool contains (const AString &needle) const { return find (needle) >= 0; }

  // -- Comparison, by code-point value.

  /// -1, 0 or 1 for at most `max_count` code points of `a` from `a_offset` against those of `b` from
  /// `b_offset`. Two views of the same part of one store are equal whatever the offsets.
  // C68: doc/compatibility.md
  static int compare (const AString &a, uint64_t a_offset, const AString &b, uint64_t b_offset,
                      uint64_t max_count = to_end, ACompareMode mode = ACompareExact);
  bool equals_caseless (const AString &other) const;
  /// Against Latin-1 text, without making a text of it. A null pointer is a fault, and equals nothing.
  bool equals (const char *latin1) const;
  bool equals (std::string_view latin1) const;
  bool starts_with (const AString &prefix, ACompareMode mode = ACompareExact) const;
  bool ends_with (const AString &suffix, ACompareMode mode = ACompareExact) const;

  friend bool operator== (const AString &a, const AString &b) {
    return a.len_ == b.len_ && compare (a, 0, b, 0) == 0;
  }
  friend bool operator== (const AString &a, const char *latin1) { return a.equals (latin1); }
  friend std::strong_ordering operator<=> (const AString &a, const AString &b) {
    return compare (a, 0, b, 0) <=> 0;
  }

  /// Never 0; 1 for the empty text. Does not depend on the order of the code points. Computed once for each
  /// AString object; copies compute their own.
  // C69: doc/compatibility.md
  uint64_t hash () const;

  // -- Pieces, sharing the store. Constant time, but for those that look for blanks.

  AString left (uint64_t count) const { return AString (*this, 0, count); }
  AString right (uint64_t count) const;
  AString mid (uint64_t offset, uint64_t count = to_end) const { return AString (*this, offset, count); }
  AString drop_left (uint64_t count) const { return AString (*this, count, to_end); }
  AString drop_right (uint64_t count) const { return left (count < len_ ? len_ - count : 0); }
  /// Without the prefix or suffix if it is there; `done` receives whether it was, and may be null.
  AString strip_prefix (const AString &prefix, bool *done = nullptr, ACompareMode mode = ACompareExact) const;
  AString strip_suffix (const AString &suffix, bool *done = nullptr, ACompareMode mode = ACompareExact) const;
  /// Without white space at the ends, as AChar::is_space has it: code points from 256 up are taken off too.
  AString trim_left () const;
  AString trim_right () const;
  AString trim () const;
  /// Whether the text is empty or white space only.
  bool is_blank () const;
  AString leading_digits () const;

  // -- Making

  friend AString operator+ (const AString &a, const AString &b);
  AString &operator+= (const AString &other);
  friend AString operator* (const AString &text, uint64_t count);
  /// The `count` code points from `start` replaced.
  AString replace (uint64_t start, uint64_t count, const AString &replacement) const;
  /// Stores the same text in `out`, in a store of its own if this one holds more than `threshold` code points
  /// beside it, so that a small text does not keep a large store alive.
  void detached (AString *out, uint64_t threshold) const;

  // -- Export. No null terminator unless the name ends in `_z`; `written` receives the units written before
  // any padding and may be null; with `pad` the rest of the buffer is filled. The `_z` forms always
  // terminate, in a buffer of one unit too, and return the units before the terminator. A buffer of no units
  // is a fault. Output ends before the first code point that has no room or no encoding.

  void copy_latin1 (char *buffer, size_t latin1_buflen, char substitute, size_t *written = nullptr,
                    bool pad = false, char padding = ' ') const;
  size_t copy_latin1_z (char *buffer, size_t latin1_buflen, char substitute) const;
  /// A buffer of no bytes takes the empty text.
  void copy_utf8 (char *buffer, size_t utf8_buflen, size_t *written = nullptr, bool pad = false,
                  char padding = ' ') const;
  size_t copy_utf8_z (char *buffer, size_t utf8_buflen) const;
  void copy_utf16 (uint16_t *buffer, size_t utf16_bufcount, size_t *written = nullptr,
                   bool pad = false) const;
  void copy_utf16 (char16_t *buffer, size_t utf16_bufcount, size_t *written = nullptr,
                   bool pad = false) const;
  size_t copy_utf16_z (uint16_t *buffer, size_t utf16_bufcount) const;
  size_t copy_utf16_z (char16_t *buffer, size_t utf16_bufcount) const;
  void copy_uint32 (uint32_t *buffer, size_t uint32_bufcount, size_t *written = nullptr,
                    bool pad = false) const;
  size_t copy_uint32_z (uint32_t *buffer, size_t uint32_bufcount) const;
  /// UTF-16 where a wide character has 16 bits, else code points.
  void copy_wchar (wchar_t *buffer, size_t wchar_bufcount, size_t *written = nullptr, bool pad = false) const;
  size_t copy_wchar_z (wchar_t *buffer, size_t wchar_bufcount) const;
  /// Passes each run to the sink.
  void each_run (const ARunSink &sink) const;
  /// Passes the UTF-8 form to the sink in pieces of at most 128 bytes. No piece ends inside a code point.
  /// Stops at a code point that cannot be encoded.
  void each_utf8 (const AByteSink &sink) const;
  /// The UTF-8 form appended to `out`; the same text as each_utf8.
  void append_utf8_to (std::string *out) const;
  std::string to_std_string () const;
  /// The UTF-16 form appended to `out`. It ends at a code point that has none.
  void append_utf16_to (std::u16string *out) const;
  std::u16string to_u16string () const;

  // -- Numbers (astring_numbers.cpp). White space at the ends is ignored. Each stores its result, if `out` is
  // not null, and returns true. For a text that is no such number it returns false and stores nothing.

  /// Decimal digits, or "0x" and digits or letters, "a" or "A" to "z" or "Z" counting 10 to 35. Both are
  /// weighed by powers of ten: "0x1A" is 20. A text that wraps around 64 bits is noticed only if some digit
  /// makes the number smaller.
  bool to_uint64 (uint64_t *out = nullptr) const;
  bool to_uint32 (uint32_t *out = nullptr) const;
  bool to_uint16 (uint16_t *out = nullptr) const;
  bool to_uint8 (uint8_t *out = nullptr) const;
  /// As to_uint64, after an optional sign.
  bool to_int64 (int64_t *out = nullptr) const;
  bool to_int32 (int32_t *out = nullptr) const;
  bool to_int16 (int16_t *out = nullptr) const;
  bool to_int8 (int8_t *out = nullptr) const;
  bool to_short (short *out = nullptr) const;
  bool to_int (int *out = nullptr) const;
  bool to_long (long *out = nullptr) const;
  bool to_long_long (long long *out = nullptr) const;
  bool to_unsigned_short (unsigned short *out = nullptr) const;
  bool to_unsigned (unsigned *out = nullptr) const;
  bool to_unsigned_long (unsigned long *out = nullptr) const;
  bool to_unsigned_long_long (unsigned long long *out = nullptr) const;
  /// A decimal with an "X" behind it, its fraction cut to 16 bits; or, without the "X", the raw 32-bit
  /// number. The whole part is at most 32767, with a minus 32768. A character in the fraction that is no
  /// digit fails an assertion: text from outside goes through to_fixed_received.
  bool to_fixed (Kelvane::fixed *out = nullptr) const;
  /// As to_fixed, without a report for a bad fraction.
  bool to_fixed_received (Kelvane::fixed *out = nullptr) const;
  /// The address in memory order: the first of the four numbers is the first byte.
  unsigned to_ip_address (unsigned otherwise) const;

  /// Decimal digits, padded as `pad` does; a minus is written before zeros of padding.
  static AString from_uint64 (uint64_t value, int width = 0, char fill = ' ');
  static AString from_uint32 (uint32_t value, int width = 0, char fill = ' ');
  static AString from_uint16 (uint16_t value, int width = 0, char fill = ' ');
  static AString from_uint8 (uint8_t value, int width = 0, char fill = ' ');
  static AString from_int64 (int64_t value, int width = 0, char fill = ' ');
  static AString from_int32 (int32_t value, int width = 0, char fill = ' ');
  static AString from_int16 (int16_t value, int width = 0, char fill = ' ');
  static AString from_int8 (int8_t value, int width = 0, char fill = ' ');
  /// A decimal with at most `decimals` places and an "X" behind it, zeros at the end left out.
  /// @param decimals 0 rounds to a whole number, halves up. 16 show every value exactly. From 20 on the
  /// digits exceed 64 bits, and the result is defined but useless.
  static AString from_fixed (Kelvane::fixed value, unsigned decimals);
  /// Four numbers with dots, the first byte in memory first.
  static AString from_ip_address (unsigned address);
  /// `text` padded to |width| code points: at the front for a positive width, at the end for a negative one.
  static AString pad (const AString &text, int width, char fill);

  // -- Lists (astringlist.cpp). The pieces share the store.

  /// The pieces between separators. An empty separator is never found.
  AStringList split (const AString &separator, bool keep_empty = true) const;
  /// The same with delimiters that `finder` finds, kept as pieces of their own on request.
  AStringList split (const ADelimiterFinder &finder, bool keep_delimiters, bool keep_empty) const;

  // -- Templates (astringformat.cpp). Each call fills the lowest of the placeholders "%0" to "%99" once, and
  // a chain of calls sees placeholders inside the values. AStringFormat does not, and fills several faster.

  AString arg (const AString &value) const;
  AString arg (const char *latin1) const;
  AString arg (int value, int width = 0, char fill = ' ') const;
  AString arg (unsigned value, int width = 0, char fill = ' ') const;
  AString arg (long value, int width = 0, char fill = ' ') const;
  AString arg (unsigned long value, int width = 0, char fill = ' ') const;
  AString arg (long long value, int width = 0, char fill = ' ') const;
  AString arg (unsigned long long value, int width = 0, char fill = ' ') const;
  /// "0x" and 16 columns of hexadecimal, blanks in front.
  AString arg (const void *pointer) const;

private:
  AString (ARef<AStringStorage> storage, uint64_t start, uint64_t length);

  ARef<AStringStorage> storage_; ///< null exactly for empty texts
  uint64_t start_offset_ = 0;
  uint64_t len_ = 0;
  mutable uint64_t hash_ = 0; ///< 0 until computed; written by compare and set only
};

/// Walks a text by runs of code points that are contiguous in memory. The text, or a copy of it, must outlive
/// it.
class AStringRuns {
public:
  explicit AStringRuns (const AString &text, uint64_t from = 0);

  bool at_end () const { return count_ == 0; }
  const AChar *data () const { return data_; }
  uint64_t count () const { return count_; }
  /// Advances by `count` code points, at most to the end of the run.
  void advance (uint64_t count) {
    data_ += count;
    count_ -= count;
    if (count_ == 0 && left_ != 0)
      enter (segment_->next, 0);
  }

private:
  void enter (const AStringSegment *segment, uint64_t offset);

  const AStringSegment *segment_ = nullptr;
  const AChar *data_ = nullptr;
  uint64_t count_ = 0; ///< in this run
  uint64_t left_ = 0;  ///< behind this run
};

/// Walks the code points of one AString, which must outlive it and not be assigned to.
class AStringIterator {
public:
  AStringIterator () = default;
  explicit AStringIterator (const AString *text) : text_ (text) { valid_ = text->first (&pos_, &c_); }

  /// The current code point, 0 at the end.
  AChar operator* () const { return valid_ ? c_ : AChar (); }
  AStringIterator &operator++ ();
  AStringIterator &operator-- ();
  /// Two are equal at the end of any text, or at the same place of the same AString object.
  friend bool operator== (const AStringIterator &a, const AStringIterator &b) {
    return a.valid_ == b.valid_ &&
           (!a.valid_ || (a.text_ == b.text_ && a.pos_.absolute_position == b.pos_.absolute_position));
  }

private:
  const AString *text_ = nullptr;
  AChar c_;
  bool valid_ = false;
  AStringPosition pos_;
};

inline AStringIterator AString::begin () const {
  return AStringIterator (this);
}
inline AStringIterator AString::end () const {
  return AStringIterator ();
}

/// Builds a text from pieces in linear time. One thread at a time.
class AStringBuilder {
public:
  void append (AChar c) { store ().append (c); }
  void append (const AString &text);
  void append_latin1 (const char *text, size_t length);
  void append_latin1 (std::string_view text) { append_latin1 (text.data (), text.size ()); }
  void append_uint32 (const AChar *text, size_t count);
  /// Decodes received UTF-8 up to the first invalid sequence. True when all bytes were decoded.
  bool append_utf8 (const char *text, size_t length);

  uint64_t length () const { return storage_.is_null () ? 0 : storage_->len; }
  bool is_empty () const { return length () == 0; }

  /// The text so far. The builder is empty afterwards and can be used again.
  AString finish ();

private:
  AStringStorage &store ();

  ARef<AStringStorage> storage_;
};

template <class Take>
bool AString::walk_runs (Take take, uint64_t from) const {
  for (AStringRuns runs (*this, from); !runs.at_end (); runs.advance (runs.count ()))
    if (!take (runs.data (), runs.count ()))
      return false;
  return true;
}

template <class Wanted>
int64_t AString::rfind_if (Wanted wanted, uint64_t from) const {
  AStringPosition pos;
  AChar c;
  for (bool ok = seek (&pos, &c, from); ok; ok = previous (&pos, &c))
    if (wanted (c))
      return static_cast<int64_t> (index_of (pos));
  return -1;
}

template <class Wanted>
int64_t AString::find_if (Wanted wanted, uint64_t from) const {
  int64_t index = static_cast<int64_t> (from);
  const auto passes = [&] (const AChar *run, uint64_t count) {
    for (uint64_t i = 0; i != count; ++i, ++index)
      if (wanted (run[i]))
        return false;
    return true;
  };
  return walk_runs (passes, from) ? -1 : index;
}
