#include "base/astringlist.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <type_traits>

namespace {

constexpr uint64_t int64_smallest_magnitude = 9223372036854775808u;
constexpr unsigned fraction_bits = 16;
constexpr uint32_t fraction_mask = (1u << fraction_bits) - 1;
constexpr unsigned parse_bits = 60; // binary places while a fraction is read
constexpr unsigned most_decimals = 20;
constexpr size_t most_digits = 20;

bool has_hex_prefix (const AString &text) {
  return text.getchar (0) == L1 ('0') && text.getchar (1) == L1 ('x');
}

// Removes a sign at the front. True for a minus.
bool take_sign (AString *text) {
  const AChar c = text->first_char ();
  if (c == L1 ('+') || c == L1 ('-'))
    *text = text->drop_left (1);
  return c == L1 ('-');
}

template <class Narrow, class Wide>
bool narrow (bool ok, Wide wide, Narrow *out) {
  const Narrow value = static_cast<Narrow> (wide);
  if (!ok || value != wide)
    return false;
  if (out != nullptr)
    *out = value;
  return true;
}

template <class Narrow>
bool parse (const AString &text, Narrow *out) {
  if constexpr (std::is_signed_v<Narrow>) {
    int64_t wide = 0;
    const bool ok = text.to_int64 (&wide);
    return narrow (ok, wide, out);
  } else {
    uint64_t wide = 0;
    const bool ok = text.to_uint64 (&wide);
    return narrow (ok, wide, out);
  }
}

// Writes the decimal digits so that they end before `end`, at least `least` of them. Returns their start.
char *write_digits (char *end, uint64_t value, unsigned least = 1) {
  for (; value != 0 || least != 0; value /= 10) {
    *--end = static_cast<char> ('0' + value % 10);
    least -= least != 0;
  }
  return end;
}

AString from_digits (uint64_t value) {
  char digits[most_digits];
  const char *begin = write_digits (digits + most_digits, value);
  return AString::from_latin1 (begin, static_cast<size_t> (digits + most_digits - begin));
}

uint64_t magnitude_of (int64_t value) {
  const auto bits = static_cast<uint64_t> (value);
  return value < 0 ? 0 - bits : bits;
}

// The fraction of a decimal with 16 binary places, cut. The digits are taken from the last to the first.
bool parse_fraction (const AString &digits, bool received, uint32_t *fraction) {
  uint64_t fx_result = 0;
  AStringPosition pos;
  AChar c;
  for (bool ok = digits.last (&pos, &c); ok; ok = digits.previous (&pos, &c)) {
    if (!c.is_digit ()) {
      static_cast<void> (received || KELVANE_ASSERT (L1 ('0') <= c && c <= L1 ('9')));
      return false;
    }
    fx_result = (fx_result + (static_cast<uint64_t> (c.digit_value (0)) << parse_bits)) / 10;
  }
  *fraction = static_cast<uint32_t> (fx_result >> (parse_bits - fraction_bits));
  return true;
}

bool parse_whole (const AString &digits, bool negative, uint32_t *whole) {
  uint64_t value = 0;
  if (!digits.is_empty () && !digits.to_uint64 (&value))
    return false;
  *whole = static_cast<uint32_t> (value);
  return value <= (negative ? 32768u : 32767u);
}

bool parse_raw (const AString &text, uint32_t *bits) {
  int32_t raw = 0;
  if (!text.to_int32 (&raw))
    return text.to_uint32 (bits);
  *bits = static_cast<uint32_t> (raw);
  return true;
}

// `text` is not empty.
bool parse_decimal (AString text, bool received, uint32_t *bits) {
  text = text.drop_right (1);
  const bool negative = take_sign (&text);
  const int64_t dot = text.find (L1 ('.'));
  const uint64_t whole_length = dot < 0 ? text.length () : static_cast<uint64_t> (dot);
  const AString whole_part = text.left (whole_length);
  const AString fraction_part = dot < 0 ? AString () : text.drop_left (whole_length + 1);
  uint32_t whole = 0;
  uint32_t fraction = 0;
  if (has_hex_prefix (whole_part) || has_hex_prefix (fraction_part) ||
      !parse_whole (whole_part, negative, &whole) || !parse_fraction (fraction_part, received, &fraction))
    return false;
  *bits = whole << fraction_bits | fraction;
  if (negative)
    *bits = 0 - *bits;
  return true;
}

// C64: doc/compatibility.md
bool parse_fixed (const AString &untrimmed, bool received, Kelvane::fixed *out) {
  const AString text = untrimmed.trim ();
  if (text.is_empty ())
    return false;
  uint32_t bits = 0;
  const bool ok =
      text.last_char () == L1 ('X') ? parse_decimal (text, received, &bits) : parse_raw (text, &bits);
  if (ok && out != nullptr)
    out->raw = std::bit_cast<int32_t> (bits);
  return ok;
}

// A magnitude in decimal. `digits` are the `decimals` places behind the point.
struct Decimal {
  uint32_t whole = 0;
  uint64_t digits = 0;
  unsigned decimals = 0;
};

// All in 64 bits, which 20 places exceed: they wrap around.
Decimal to_decimal (uint32_t magnitude, unsigned decimals) {
  Decimal d{magnitude >> fraction_bits, 0, std::min (decimals, most_decimals)};
  uint32_t fraction = magnitude & fraction_mask;
  uint64_t scale = 1;
  for (unsigned i = 0; i != d.decimals; ++i) {
    fraction *= 10;
    d.digits = d.digits * 10 + (fraction >> fraction_bits);
    fraction &= fraction_mask;
    scale *= 10;
  }
  if ((fraction * 10) >> fraction_bits >= 5)
    ++d.digits;
  if (d.digits >= scale) {
    ++d.whole;
    d.digits %= scale;
  }
  return d;
}

AString print_decimal (bool negative, const Decimal &d) {
  char text[1 + most_digits + 1 + most_digits + 1];
  char *const end = text + sizeof text;
  char *begin = write_digits (end, d.digits, d.decimals);
  char *stop =
      std::find_if (std::make_reverse_iterator (end), std::make_reverse_iterator (begin), [] (char c) {
        return c != '0';
      }).base ();
  if (stop != begin)
    *--begin = '.';
  begin = write_digits (begin, d.whole);
  if (negative && (d.whole != 0 || d.digits != 0))
    *--begin = '-';
  AStringBuilder builder;
  builder.append_latin1 (begin, static_cast<size_t> (stop - begin));
  builder.append (L1 ('X'));
  return builder.finish ();
}

} // namespace

// -- Parsing

bool AString::to_uint64 (uint64_t *out) const {
  AString digits = trim ();
  const bool hexadecimal = has_hex_prefix (digits);
  if (hexadecimal)
    digits = digits.drop_left (2);
  if (digits.is_empty ())
    return false;
  uint64_t value = 0;
  const auto refused = [&] (AChar c) {
    const int digit = hexadecimal ? c.alnum_value (-1) : c.digit_value (-1);
    const uint64_t before = value;
    // Times ten for hexadecimal too. C62, C63: doc/compatibility.md
    value = value * 10 + static_cast<uint64_t> (digit);
    return digit < 0 || value < before;
  };
  if (digits.find_if (refused) >= 0)
    return false;
  if (out != nullptr)
    *out = value;
  return true;
}

bool AString::to_int64 (int64_t *out) const {
  AString digits = trim ();
  const bool negative = take_sign (&digits);
  uint64_t magnitude = 0;
  if (!digits.to_uint64 (&magnitude) || magnitude > int64_smallest_magnitude - (negative ? 0 : 1))
    return false;
  if (out != nullptr)
    *out = std::bit_cast<int64_t> (negative ? 0 - magnitude : magnitude);
  return true;
}

bool AString::to_uint32 (uint32_t *out) const {
  return parse (*this, out);
}
bool AString::to_uint16 (uint16_t *out) const {
  return parse (*this, out);
}
bool AString::to_uint8 (uint8_t *out) const {
  return parse (*this, out);
}
bool AString::to_int32 (int32_t *out) const {
  return parse (*this, out);
}
bool AString::to_int16 (int16_t *out) const {
  return parse (*this, out);
}
bool AString::to_int8 (int8_t *out) const {
  return parse (*this, out);
}

static_assert (sizeof (short) == sizeof (int16_t) && sizeof (unsigned short) == sizeof (uint16_t));
static_assert (sizeof (int) == sizeof (int32_t) && sizeof (unsigned) == sizeof (uint32_t));
static_assert (sizeof (long) == sizeof (int32_t) || sizeof (long) == sizeof (int64_t));
static_assert (sizeof (long long) == sizeof (int64_t) && sizeof (unsigned long long) == sizeof (uint64_t));

bool AString::to_short (short *out) const {
  return parse (*this, out);
}
bool AString::to_int (int *out) const {
  return parse (*this, out);
}
bool AString::to_long (long *out) const {
  return parse (*this, out);
}
bool AString::to_long_long (long long *out) const {
  return parse (*this, out);
}
bool AString::to_unsigned_short (unsigned short *out) const {
  return parse (*this, out);
}
bool AString::to_unsigned (unsigned *out) const {
  return parse (*this, out);
}
bool AString::to_unsigned_long (unsigned long *out) const {
  return parse (*this, out);
}
bool AString::to_unsigned_long_long (unsigned long long *out) const {
  return parse (*this, out);
}

bool AString::to_fixed (Kelvane::fixed *out) const {
  return parse_fixed (*this, false, out);
}

bool AString::to_fixed_received (Kelvane::fixed *out) const {
  return parse_fixed (*this, true, out);
}

unsigned AString::to_ip_address (unsigned otherwise) const {
  const AStringList pieces = split (from_char (L1 ('.')));
  uint8_t bytes[sizeof otherwise];
  if (pieces.size () != sizeof bytes)
    return otherwise;
  uint8_t *byte = bytes;
  for (const AString &piece : pieces)
    if (!piece.to_uint8 (byte++))
      return otherwise;
  return std::bit_cast<unsigned> (bytes);
}

// -- Printing

AString AString::pad (const AString &text, int width, char fill) {
  const uint64_t magnitude = magnitude_of (width);
  if (magnitude <= text.length ())
    return text;
  const AString filling = from_char (AChar (fill)) * (magnitude - text.length ());
  return width > 0 ? filling + text : text + filling;
}

AString AString::from_uint64 (uint64_t value, int width, char fill) {
  return pad (from_digits (value), width, fill);
}
AString AString::from_uint32 (uint32_t value, int width, char fill) {
  return from_uint64 (value, width, fill);
}
AString AString::from_uint16 (uint16_t value, int width, char fill) {
  return from_uint64 (value, width, fill);
}
AString AString::from_uint8 (uint8_t value, int width, char fill) {
  return from_uint64 (value, width, fill);
}

AString AString::from_int64 (int64_t value, int width, char fill) {
  if (value >= 0)
    return from_uint64 (magnitude_of (value), width, fill);
  const int towards_zero = (width < 0) - (width > 0);
  return from_char (L1 ('-')) + from_uint64 (magnitude_of (value), width + towards_zero, fill);
}

AString AString::from_int32 (int32_t value, int width, char fill) {
  return from_int64 (value, width, fill);
}
AString AString::from_int16 (int16_t value, int width, char fill) {
  return from_int64 (value, width, fill);
}
AString AString::from_int8 (int8_t value, int width, char fill) {
  return from_int64 (value, width, fill);
}

// C64: doc/compatibility.md
AString AString::from_fixed (Kelvane::fixed value, unsigned decimals) {
  const bool negative = value.raw < 0;
  const auto magnitude = static_cast<uint32_t> (magnitude_of (value.raw));
  if (decimals != 0 && (magnitude & fraction_mask) != 0)
    return print_decimal (negative, to_decimal (magnitude, decimals));
  const uint32_t rounded = (magnitude + (1u << (fraction_bits - 1))) >> fraction_bits;
  AStringBuilder builder;
  if (negative)
    builder.append (L1 ('-'));
  builder.append (from_digits (rounded));
  builder.append (L1 ('X'));
  return builder.finish ();
}

AString AString::from_ip_address (unsigned address) {
  uint8_t bytes[sizeof address];
  std::memcpy (bytes, &address, sizeof address);
  AStringBuilder builder;
  for (const uint8_t &byte : bytes) {
    if (&byte != bytes)
      builder.append (L1 ('.'));
    builder.append (from_digits (byte));
  }
  return builder.finish ();
}
