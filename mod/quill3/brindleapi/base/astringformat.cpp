#include "base/astringformat.h"

#include "base/astringlist.h"

#include <algorithm>
#include <utility>

namespace {

constexpr uint64_t most_placeholder_digits = 2;
constexpr int pointer_columns = 16;

// Digits directly behind `pos`, as far as they matter.
uint64_t digits_behind (const AString &text, AStringPosition pos) {
  uint64_t digits = 0;
  AChar c;
  while (digits <= most_placeholder_digits && text.next (&pos, &c) && c.is_digit ())
    ++digits;
  return digits;
}

void find_placeholder (const AString &text, int64_t start, int64_t *position, int64_t *length) {
  *position = text.find (L1 ('%'), start);
  while (*position >= 0) {
    AStringPosition pos;
    text.seek (&pos, nullptr, static_cast<uint64_t> (*position));
    const uint64_t digits = digits_behind (text, pos);
    *length = static_cast<int64_t> (digits) + 1;
    if (digits != 0 && digits <= most_placeholder_digits)
      return;
    *position = text.find (L1 ('%'), *position + 1);
  }
}

// The number of a piece that is a placeholder, -1 for any other.
int placeholder_number (const AString &piece) {
  int64_t position = -1;
  int64_t length = 1;
  find_placeholder (piece, 0, &position, &length);
  int number = -1;
  if (position == 0)
    piece.drop_left (1).to_int (&number);
  return number;
}

template <class Integer>
AString number_text (Integer value, int width, char fill) {
  if constexpr (std::is_signed_v<Integer>)
    return AString::from_int64 (value, width, fill);
  else
    return AString::from_uint64 (value, width, fill);
}

AString pointer_text (const void *pointer) {
  static_assert (sizeof pointer == sizeof (uint64_t));
  char digits[pointer_columns];
  char *const end = digits + pointer_columns;
  char *begin = end;
  auto value = reinterpret_cast<uintptr_t> (pointer);
  do
    *--begin = "0123456789ABCDEF"[value & 15u];
  while ((value >>= 4) != 0);
  const AString text = AString::from_latin1 (begin, static_cast<size_t> (end - begin));
  return AString ("0x") + AString::pad (text, pointer_columns, ' ');
}

} // namespace

AStringFormat::AStringFormat (const AString &format) {
  std::vector<std::pair<int, size_t>> numbered;
  for (const AString &piece : format.split (ADelimiterFinder (find_placeholder), true, false)) {
    const int number = placeholder_number (piece);
    if (number >= 0)
      numbered.emplace_back (number, pieces_.size ());
    pieces_.push_back (piece);
  }
  std::sort (numbered.rbegin (), numbered.rend ());
  for (const auto &[number, index] : numbered)
    open_.push_back (index);
}

AStringFormat &AStringFormat::arg (const AString &value) {
  if (!open_.empty ()) {
    pieces_[open_.back ()] = value;
    open_.pop_back ();
  }
  return *this;
}

AString AStringFormat::to_string () const {
  if (pieces_.size () == 1)
    return pieces_.front ();
  AStringBuilder builder;
  for (const AString &piece : pieces_)
    builder.append (piece);
  return builder.finish ();
}

AStringFormat &AStringFormat::arg (int value, int width, char fill) {
  return arg (number_text (value, width, fill));
}
AStringFormat &AStringFormat::arg (unsigned value, int width, char fill) {
  return arg (number_text (value, width, fill));
}
AStringFormat &AStringFormat::arg (long value, int width, char fill) {
  return arg (number_text (value, width, fill));
}
AStringFormat &AStringFormat::arg (unsigned long value, int width, char fill) {
  return arg (number_text (value, width, fill));
}
AStringFormat &AStringFormat::arg (long long value, int width, char fill) {
  return arg (number_text (value, width, fill));
}
AStringFormat &AStringFormat::arg (unsigned long long value, int width, char fill) {
  return arg (number_text (value, width, fill));
}
AStringFormat &AStringFormat::arg (const void *pointer) {
  return arg (pointer_text (pointer));
}

AString AString::arg (const AString &value) const {
  return AStringFormat (*this).arg (value);
}
AString AString::arg (const char *latin1) const {
  return arg (AString (latin1));
}
AString AString::arg (int value, int width, char fill) const {
  return arg (number_text (value, width, fill));
}
AString AString::arg (unsigned value, int width, char fill) const {
  return arg (number_text (value, width, fill));
}
AString AString::arg (long value, int width, char fill) const {
  return arg (number_text (value, width, fill));
}
AString AString::arg (unsigned long value, int width, char fill) const {
  return arg (number_text (value, width, fill));
}
AString AString::arg (long long value, int width, char fill) const {
  return arg (number_text (value, width, fill));
}
AString AString::arg (unsigned long long value, int width, char fill) const {
  return arg (number_text (value, width, fill));
}
AString AString::arg (const void *pointer) const {
  return arg (pointer_text (pointer));
}
