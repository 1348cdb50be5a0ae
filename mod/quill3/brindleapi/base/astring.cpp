#include "base/astring.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <cwchar>

namespace {

constexpr size_t format_capacity = 2048;

template <class Fill>
AString built (Fill fill) {
  ARef<AStringStorage> storage = ARef<AStringStorage>::create ();
  fill (*storage);
  storage->finish ();
  return AString::adopt (std::move (storage));
}

size_t length_to_nul (const char *text, size_t most) {
  const void *nul = std::memchr (text, 0, most);
  return nul == nullptr ? most : static_cast<size_t> (static_cast<const char *> (nul) - text);
}

template <class Unit>
size_t length_to_zero (const Unit *text) {
  size_t count = 0;
  while (text[count] != 0)
    ++count;
  return count;
}

size_t ascii_run (const char *text, size_t length) {
  size_t count = 0;
  while (count != length && static_cast<signed char> (text[count]) > 0)
    ++count;
  return count;
}

// Returns the number of bytes that were decoded.
size_t append_decoded (AStringStorage &storage, const char *utf8, size_t utf8_buflen) {
  size_t taken = 0;
  while (taken != utf8_buflen) {
    const size_t ascii = ascii_run (utf8 + taken, utf8_buflen - taken);
    storage.append_latin1 (utf8 + taken, ascii);
    taken += ascii;
    AChar c;
    unsigned bytes_consumed = 0;
    if (!decode_utf8_received (utf8 + taken, utf8_buflen - taken, &c, &bytes_consumed) ||
        !KELVANE_ASSERT (bytes_consumed != 0) || !KELVANE_ASSERT (bytes_consumed <= utf8_buflen - taken))
      return taken;
    storage.append (c);
    taken += bytes_consumed;
  }
  return taken;
}

template <class Unit>
AString from_units (const Unit *text, size_t count) {
  return built ([=] (AStringStorage &storage) {
    for (size_t at = 0; at != count;) {
      const size_t utf16_count = std::min<size_t> (count - at, MAX_UTF16_WCHAR_LENGTH);
      char16_t units[MAX_UTF16_WCHAR_LENGTH] = {};
      std::copy_n (text + at, utf16_count, units);
      AChar c;
      unsigned count_consumed = 0;
      if (!decode_utf16 (units, utf16_count, &c, &count_consumed) || !KELVANE_ASSERT (count_consumed != 0) ||
          !KELVANE_ASSERT (count_consumed <= utf16_count))
        return;
      storage.append (c);
      at += count_consumed;
    }
  });
}

template <class Unit>
AString from_code_points (const Unit *text, size_t count) {
  return built ([=] (AStringStorage &storage) {
    for (size_t at = 0; at != count; ++at)
      storage.append (AChar (static_cast<uint32_t> (text[at])));
  });
}

void append_text (AStringStorage &storage, const AString &text) {
  text.walk_runs ([&] (const AChar *run, uint64_t segment_length) {
    storage.append_uint32 (run, segment_length);
    return true;
  });
}

} // namespace

// -- Making

AString::AString (ARef<AStringStorage> storage, uint64_t start, uint64_t length)
    : storage_ (std::move (storage)), start_offset_ (start) {
  const uint64_t all = store_length ();
  len_ = start < all ? std::min (length, all - start) : 0;
  if (len_ == 0) {
    storage_ = nullptr;
    start_offset_ = 0;
  }
}

AString::AString (const AString &other, uint64_t offset, uint64_t count) {
  const uint64_t available = offset < other.len_ ? other.len_ - offset : 0;
  len_ = std::min (available, count);
  if (len_ == 0)
    return;
  storage_ = other.storage_;
  start_offset_ = other.start_offset_ + offset;
}

AString::AString (AString &&other) noexcept
    : storage_ (std::move (other.storage_)), start_offset_ (std::exchange (other.start_offset_, 0)),
      len_ (std::exchange (other.len_, 0)) {
  other.hash_ = 0;
}

AString &AString::operator= (const AString &other) {
  if (this != &other)
    *this = AString (other);
  return *this;
}

AString &AString::operator= (AString &&other) noexcept {
  AString moved (std::move (other));
  std::swap (storage_, moved.storage_);
  start_offset_ = moved.start_offset_;
  len_ = moved.len_;
  hash_ = 0;
  return *this;
}

AString::AString (const char *latin1) : AString (from_latin1 (latin1)) {}

AString::AString (AChar c) : AString (from_char (c)) {}

AString AString::adopt (ARef<AStringStorage> storage, uint64_t start, uint64_t length) {
  return AString (std::move (storage), start, length);
}

AString AString::from_char (AChar c) {
  return from_utf32 (&c, 1);
}

AString AString::from_latin1 (const char *text) {
  return from_latin1 (text, text == nullptr ? 0 : std::strlen (text));
}

AString AString::from_latin1 (const char *s, size_t length) {
  if (!KELVANE_ASSERT (s != nullptr))
    return {};
  const size_t count = length_to_nul (s, length);
  return count == 0 ? AString ()
                    : built ([=] (AStringStorage &storage) { storage.append_latin1 (s, count); });
}

AString AString::from_latin1 (std::string_view text) {
  return text.empty () ? AString () : from_latin1 (text.data (), text.size ());
}

AString AString::from_utf8 (const char *text) {
  return from_utf8 (text, text == nullptr ? 0 : std::strlen (text));
}

AString AString::from_utf8 (const char *s, size_t length) {
  if (!KELVANE_ASSERT (s != nullptr))
    return {};
  const size_t count = length_to_nul (s, length);
  return count == 0 ? AString ()
                    : built ([=] (AStringStorage &storage) { append_decoded (storage, s, count); });
}

AString AString::from_utf8 (std::string_view text) {
  return text.empty () ? AString () : from_utf8 (text.data (), text.size ());
}

AString AString::from_utf16 (const uint16_t *s) {
  return KELVANE_ASSERT (s != nullptr) ? from_units (s, length_to_zero (s)) : AString ();
}

AString AString::from_utf16 (const uint16_t *s, size_t count) {
  return KELVANE_ASSERT (s != nullptr) ? from_units (s, count) : AString ();
}

AString AString::from_utf16 (const char16_t *s) {
  return KELVANE_ASSERT (s != nullptr) ? from_units (s, length_to_zero (s)) : AString ();
}

AString AString::from_utf16 (const char16_t *s, size_t count) {
  return KELVANE_ASSERT (s != nullptr) ? from_units (s, count) : AString ();
}

AString AString::from_utf16 (std::u16string_view text) {
  return from_units (text.data (), text.size ());
}

AString AString::from_wide (const wchar_t *s) {
  return KELVANE_ASSERT (s != nullptr) ? from_wide (s, std::wcslen (s)) : AString ();
}

AString AString::from_wide (const wchar_t *s, size_t count) {
  static_assert (sizeof (wchar_t) == sizeof (uint16_t) || sizeof (wchar_t) == sizeof (uint32_t));
  if (!KELVANE_ASSERT (s != nullptr))
    return {};
  if constexpr (sizeof (wchar_t) == sizeof (uint16_t))
    return from_units (s, count);
  else
    return from_code_points (s, count);
}

AString AString::from_wide (std::wstring_view text) {
  return text.empty () ? AString () : from_wide (text.data (), text.size ());
}

AString AString::from_utf32 (const uint32_t *s) {
  if (!KELVANE_ASSERT (s != nullptr))
    return {};
  size_t count = 0;
  while (s[count] == 0)
    ++count;
  return from_utf32 (s, count);
}

AString AString::from_utf32 (const uint32_t *s, size_t count) {
  if (!KELVANE_ASSERT (s != nullptr))
    return {};
  return built ([=] (AStringStorage &storage) { storage.append_uint32 (s, count); });
}

AString AString::from_utf32 (const AChar *s, size_t count) {
  if (!KELVANE_ASSERT (s != nullptr))
    return {};
  return built ([=] (AStringStorage &storage) { storage.append_uint32 (s, count); });
}

AString AString::from_utf32 (std::u32string_view text) {
  return from_code_points (text.data (), text.size ());
}

AString AString::format (const char *format, ...) {
  if (!KELVANE_ASSERT (format != nullptr))
    return {};
  char buffer[format_capacity] = {};
  va_list arguments;
  va_start (arguments, format);
  const int printed = std::vsnprintf (buffer, sizeof buffer, format, arguments);
  va_end (arguments);
  return printed < 0 ? AString () : from_latin1 (buffer, sizeof buffer - 1);
}

AString operator+ (const AString &a, const AString &b) {
  if (a.is_empty ())
    return b;
  if (b.is_empty ())
    return a;
  return built ([&] (AStringStorage &storage) {
    append_text (storage, a);
    append_text (storage, b);
  });
}

AString &AString::operator+= (const AString &other) {
  return *this = *this + other;
}

AString operator* (const AString &text, uint64_t count) {
  if (text.is_empty () || count == 0)
    return {};
  return built ([&] (AStringStorage &storage) {
    for (uint64_t i = 0; i != count; ++i)
      append_text (storage, text);
  });
}

AString AString::replace (uint64_t start, uint64_t count, const AString &replacement) const {
  const uint64_t end = count < to_end - start ? start + count : to_end;
  return left (start) + replacement + drop_left (end);
}

void AString::detached (AString *out, uint64_t threshold) const {
  if (!KELVANE_ASSERT (out != nullptr))
    return;
  if (store_length () - len_ > threshold)
    *out = built ([this] (AStringStorage &storage) { append_text (storage, *this); });
  else
    *out = *this;
}

// -- Reading

AChar AString::getchar (uint64_t index, AChar otherwise) const {
  AStringPosition pos;
  AChar c = otherwise;
  seek (&pos, &c, index);
  return c;
}

AChar AString::last_char (AChar otherwise) const {
  return is_empty () ? otherwise : getchar (len_ - 1);
}

bool AString::first (AStringPosition *pos, AChar *c) const {
  return seek (pos, c, 0);
}

bool AString::last (AStringPosition *pos, AChar *c) const {
  return !is_empty () && seek (pos, c, len_ - 1);
}

namespace {

bool read (const AStringPosition *pos, AChar *c) {
  if (c != nullptr)
    *c = pos->current_segment->buf[pos->segment_offset];
  return true;
}

} // namespace

bool AString::seek (AStringPosition *pos, AChar *c, uint64_t index) const {
  return index < len_ && storage_->seek (pos, start_offset_ + index) && read (pos, c);
}

bool AString::next (AStringPosition *pos, AChar *c) const {
  if (!KELVANE_ASSERT (pos != nullptr) || pos->absolute_position + 1 >= start_offset_ + len_)
    return false;
  return storage_->next (pos) && read (pos, c);
}

bool AString::previous (AStringPosition *pos, AChar *c) const {
  if (!KELVANE_ASSERT (pos != nullptr) || is_empty () || pos->absolute_position <= start_offset_)
    return false;
  return storage_->previous (pos) && read (pos, c);
}

bool AString::skip (AStringPosition *pos, uint64_t count) const {
  if (!KELVANE_ASSERT (pos != nullptr))
    return false;
  const uint64_t end = start_offset_ + len_;
  if (pos->absolute_position >= end || count >= end - pos->absolute_position)
    return false;
  return storage_->skip (pos, count);
}

uint64_t AString::run (const AStringPosition *pos, const AChar **address) const {
  if (!KELVANE_ASSERT (pos != nullptr) || !KELVANE_ASSERT (!storage_.is_null ()) ||
      !KELVANE_ASSERT (pos->absolute_position >= start_offset_) ||
      !KELVANE_ASSERT (pos->absolute_position < start_offset_ + len_))
    return 0;
  return std::min (storage_->run (pos, address), start_offset_ + len_ - pos->absolute_position);
}

AStringRuns::AStringRuns (const AString &text, uint64_t from) {
  AStringPosition pos;
  if (!text.seek (&pos, nullptr, from))
    return;
  left_ = text.length () - from;
  enter (pos.current_segment, pos.segment_offset);
}

void AStringRuns::enter (const AStringSegment *segment, uint64_t offset) {
  segment_ = segment;
  if (!KELVANE_ASSERT (segment != nullptr))
    return;
  data_ = segment->buf + offset;
  count_ = std::min (segment->buflen - offset, left_);
  left_ -= count_;
}

AStringIterator &AStringIterator::operator++ () {
  valid_ = valid_ && text_->next (&pos_, &c_);
  return *this;
}

AStringIterator &AStringIterator::operator-- () {
  valid_ = valid_ && text_->previous (&pos_, &c_);
  return *this;
}

// -- Pieces

AString AString::right (uint64_t count) const {
  return count < len_ ? drop_left (len_ - count) : *this;
}

AString AString::strip_prefix (const AString &prefix, bool *done, ACompareMode mode) const {
  const bool there = starts_with (prefix, mode);
  if (done != nullptr)
    *done = there;
  return there ? drop_left (prefix.len_) : *this;
}

AString AString::strip_suffix (const AString &suffix, bool *done, ACompareMode mode) const {
  const bool there = ends_with (suffix, mode);
  if (done != nullptr)
    *done = there;
  return there ? drop_right (suffix.len_) : *this;
}

namespace {

bool is_no_space (AChar c) {
  return !c.is_space ();
}

} // namespace

AString AString::trim_left () const {
  const int64_t begin = find_if (is_no_space);
  return begin < 0 ? AString () : drop_left (static_cast<uint64_t> (begin));
}

AString AString::trim_right () const {
  const int64_t end = is_empty () ? -1 : rfind_if (is_no_space, len_ - 1);
  return left (static_cast<uint64_t> (end + 1));
}

AString AString::trim () const {
  return trim_left ().trim_right ();
}

bool AString::is_blank () const {
  return find_if (is_no_space) < 0;
}

AString AString::leading_digits () const {
  const int64_t end = find_if ([] (AChar c) { return !c.is_digit (); });
  return end < 0 ? *this : left (static_cast<uint64_t> (end));
}

// -- Builder

AStringStorage &AStringBuilder::store () {
  if (storage_.is_null ())
    storage_ = ARef<AStringStorage>::create ();
  return *storage_;
}

void AStringBuilder::append (const AString &text) {
  if (!text.is_empty ())
    append_text (store (), text);
}

void AStringBuilder::append_latin1 (const char *text, size_t length) {
  store ().append_latin1 (text, length);
}

void AStringBuilder::append_uint32 (const AChar *text, size_t count) {
  store ().append_uint32 (text, count);
}

bool AStringBuilder::append_utf8 (const char *text, size_t length) {
  return append_decoded (store (), text, length) == length;
}

AString AStringBuilder::finish () {
  if (storage_.is_null ())
    return {};
  storage_->finish ();
  return AString::adopt (std::exchange (storage_, ARef<AStringStorage> ()));
}
