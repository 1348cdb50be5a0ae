/// One code point of text and its UTF-8 and UTF-16 codecs.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>

/// One code point. Any 32-bit value may be held; what is valid is a matter of the codecs.
/// Classification knows Latin-1 at most: there is no Unicode case or class table anywhere.
class AChar {
public:
  constexpr AChar () = default;
  /// The code point of a Latin-1 byte.
  constexpr AChar (char latin1) : value_ (static_cast<unsigned char> (latin1)) {}
  constexpr AChar (char32_t value) : value_ (value) {}
  constexpr explicit AChar (uint32_t value) : value_ (value) {}

  constexpr uint32_t value () const { return value_; }

  constexpr bool is_ascii () const { return value_ < 128; }
  constexpr bool is_latin1 () const { return value_ < 256; }

  /// The value when it is below 256, else `substitute`.
  constexpr unsigned char to_latin1 (unsigned char substitute) const {
    return is_latin1 () ? static_cast<unsigned char> (value_) : substitute;
  }

  /// True for blank, tab, line feed, carriage return, vertical tab and form feed, and also for code point 0
  /// and for every code point from 256 up.
  // C65: doc/compatibility.md
  constexpr bool is_space () const {
    return value_ == ' ' || (value_ >= '\t' && value_ <= '\r') || value_ == 0 || !is_latin1 ();
  }

  /// "0" to "9".
  constexpr bool is_digit () const { return value_ >= '0' && value_ <= '9'; }
  /// 0 to 9 for a digit, else `otherwise`.
  constexpr int digit_value (int otherwise) const {
    return is_digit () ? static_cast<int> (value_ - '0') : otherwise;
  }

  /// ASCII digits and letters.
  constexpr bool is_alnum () const { return alnum_value (-1) >= 0; }
  /// 0 to 9 for a digit, 10 to 35 for an ASCII letter of either case, else `otherwise`.
  constexpr int alnum_value (int otherwise) const {
    const uint32_t lower = to_lower ().value_;
    return lower >= 'a' && lower <= 'z' ? static_cast<int> (lower - 'a') + 10 : digit_value (otherwise);
  }

  /// Adds 32 to "A" to "Z"; everything else is unchanged, accented letters included.
  constexpr AChar to_lower () const { return AChar (value_ >= 'A' && value_ <= 'Z' ? value_ + 32 : value_); }

  constexpr bool operator== (const AChar &) const = default;
  constexpr std::strong_ordering operator<=> (const AChar &) const = default;

private:
  uint32_t value_ = 0;
};

static_assert (sizeof (AChar) == sizeof (uint32_t));

/// The code point of a Latin-1 byte, spelled where a plain character literal would be ambiguous.
constexpr AChar L1 (char latin1) {
  return AChar (latin1);
}

/// The longest encodings of one code point, in bytes and in 16-bit units.
inline constexpr unsigned MAX_UTF8_CHAR_LENGTH = 4;
inline constexpr unsigned MAX_UTF16_WCHAR_LENGTH = 2;

/// One row of the table that drives UTF-8 in both directions.
struct AUtf8Row {
  unsigned length;             ///< bytes in the sequence
  unsigned lead_byte_databits; ///< payload bits in the lead byte
  uint32_t lead_pattern;       ///< fixed bits of the lead byte
  uint32_t largest;            ///< largest code point of the row
};
inline constexpr AUtf8Row utf8_tbl[] = {
    {1, 7, 0, 127}, {2, 5, 192, 2047}, {3, 4, 224, 65535}, {4, 3, 240, 1114111}};

/// Decodes the code point at the start of `bytes`.
/// Refused: no bytes, NUL, lead bytes 192, 193 and from 245 up, a sequence longer than what is available, a
/// byte inside a sequence that is no continuation byte, and a stray continuation byte. The last one fails an
/// assertion when at least four bytes are available; received text goes through decode_utf8_received.
/// Accepted: overlong forms of three and four bytes, surrogate values, and values above 1114111 that a lead
/// byte of 244 can express.
/// @param bytes_available bytes that may be read
/// @param out receives the code point on success; may be null
/// @param bytes_consumed receives the length of the sequence, 0 on failure; never null
bool decode_utf8 (const char *bytes, size_t bytes_available, AChar *out, unsigned *bytes_consumed);

/// As decode_utf8, for bytes from outside the process: a stray continuation byte is refused like everything
/// else, and nothing is ever reported.
// C66: doc/compatibility.md
bool decode_utf8_received (const char *bytes, size_t bytes_available, AChar *out, unsigned *bytes_consumed);

/// Encodes `c` at `bytes`. Surrogate values are encoded like any other. False, with nothing written, when
/// `capacity` does not hold the sequence; a value above 1114111 fails an assertion as well.
/// @param bytes may be null to learn the length
/// @param nbytes receives the length of the sequence on success; may be null
bool encode_utf8 (AChar c, char *bytes, size_t capacity, unsigned *nbytes);

/// As encode_utf8, but a value above 1114111 is refused without a report: received text can hold one.
bool encode_utf8_received (AChar c, char *bytes, size_t capacity, unsigned *nbytes);

/// Decodes the code point at the start of `units`. Refused: no units, a zero unit, a low surrogate in front,
/// a high surrogate that no low one follows.
/// @param out receives the code point on success; may be null
/// @param count_consumed receives 1 or 2 on success, 0 on failure; may be null
bool decode_utf16 (const uint16_t *units, size_t units_available, AChar *out, unsigned *count_consumed);
bool decode_utf16 (const char16_t *units, size_t units_available, AChar *out, unsigned *count_consumed);

/// Encodes `c` at `units`. False, with nothing written, when `capacity` does not hold it, for surrogate
/// values and for values above 1114111.
/// @param units may be null to learn the length
/// @param count receives 1 or 2 on success; may be null
bool encode_utf16 (AChar c, uint16_t *units, size_t capacity, unsigned *count);
bool encode_utf16 (AChar c, char16_t *units, size_t capacity, unsigned *count);
