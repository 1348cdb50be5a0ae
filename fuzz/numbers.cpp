// Number parsers and printers against a model that calculates with 128 bits and with decimal digits. The
// input is one text in Latin-1; its bytes also serve as numbers to print.
#include "base/astring.h"
#include "require.h"

#include <atomic>
#include <cstring>
#include <string>

namespace {

__extension__ using uint128 = unsigned __int128;

std::string trimmed (const std::string &text) {
  const char *blanks = " \t\n\r\v\f";
  const size_t first = text.find_first_not_of (blanks);
  return first == std::string::npos ? "" : text.substr (first, text.find_last_not_of (blanks) + 1 - first);
}

bool drop_front (std::string *text, const std::string &prefix) {
  const bool there = text->compare (0, prefix.size (), prefix) == 0;
  if (there)
    text->erase (0, prefix.size ());
  return there;
}

bool model_uint64 (std::string text, uint64_t *value) {
  text = trimmed (text);
  const bool letters = drop_front (&text, "0x");
  *value = 0;
  for (const char c : text) {
    uint128 digit = 0;
    if (c >= '0' && c <= '9')
      digit = static_cast<unsigned> (c - '0');
    else if (letters && c >= 'a' && c <= 'z')
      digit = static_cast<unsigned> (c - 'a' + 10);
    else if (letters && c >= 'A' && c <= 'Z')
      digit = static_cast<unsigned> (c - 'A' + 10);
    else
      return false;
    const auto raised = static_cast<uint64_t> ((uint128 (*value) * 10 + digit) & UINT64_MAX);
    if (raised < *value)
      return false;
    *value = raised;
  }
  return !text.empty ();
}

bool model_int64 (std::string text, __int128 *value) {
  text = trimmed (text);
  const bool minus = drop_front (&text, "-");
  if (!minus)
    drop_front (&text, "+");
  uint64_t magnitude = 0;
  if (!model_uint64 (text, &magnitude))
    return false;
  *value = minus ? -static_cast<__int128> (magnitude) : static_cast<__int128> (magnitude);
  return *value >= INT64_MIN && *value <= INT64_MAX;
}

// Doubles the decimal fraction sixteen times; what is carried out are its binary places.
bool model_fraction (std::string digits, uint32_t *bits) {
  *bits = 0;
  if (digits.find_first_not_of ("0123456789") != std::string::npos)
    return false;
  for (int place = 0; place != 16; ++place) {
    int carry = 0;
    for (size_t i = digits.size (); i-- != 0;) {
      const int doubled = (digits[i] - '0') * 2 + carry;
      digits[i] = static_cast<char> ('0' + doubled % 10);
      carry = doubled / 10;
    }
    *bits = *bits * 2 + static_cast<uint32_t> (carry);
  }
  return true;
}

bool model_fixed (std::string text, uint32_t *bits) {
  text = trimmed (text);
  if (text.empty ())
    return false;
  if (text.back () != 'X') {
    __int128 number = 0;
    uint64_t natural = 0;
    if (model_int64 (text, &number) && number >= INT32_MIN && number <= INT32_MAX)
      *bits = static_cast<uint32_t> (number);
    else if (model_uint64 (text, &natural) && natural <= UINT32_MAX)
      *bits = static_cast<uint32_t> (natural);
    else
      return false;
    return true;
  }
  text.pop_back ();
  const bool minus = drop_front (&text, "-");
  if (!minus)
    drop_front (&text, "+");
  const size_t dot = text.find ('.');
  const std::string whole = text.substr (0, dot);
  const std::string fraction = dot == std::string::npos ? "" : text.substr (dot + 1);
  uint64_t units = 0;
  uint32_t places = 0;
  if (whole.compare (0, 2, "0x") == 0 || fraction.compare (0, 2, "0x") == 0 ||
      (!whole.empty () && !model_uint64 (whole, &units)) || units > (minus ? 32768u : 32767u) ||
      !model_fraction (fraction, &places))
    return false;
  const int64_t number = static_cast<int64_t> (units * 65536 + places);
  *bits = static_cast<uint32_t> (minus ? -number : number);
  return true;
}

template <class T>
void check_width (bool fits, __int128 expected, bool (AString::*parse) (T *) const, const AString &text) {
  T value = 77;
  const bool ok = (text.*parse) (&value);
  require (ok == fits);
  require (value == (ok ? static_cast<T> (expected) : T (77)));
}

template <class T>
bool holds (__int128 value) {
  return static_cast<__int128> (static_cast<T> (value)) == value;
}

void check_parsers (const std::string &bytes) {
  const AString text = AString::from_latin1 (bytes);
  uint64_t natural = 0;
  const bool is_natural = model_uint64 (bytes, &natural);
  const auto n = static_cast<__int128> (natural);
  check_width (is_natural, n, &AString::to_uint64, text);
  check_width (is_natural && holds<uint32_t> (n), n, &AString::to_uint32, text);
  check_width (is_natural && holds<uint16_t> (n), n, &AString::to_uint16, text);
  check_width (is_natural && holds<uint8_t> (n), n, &AString::to_uint8, text);
  __int128 number = 0;
  const bool is_number = model_int64 (bytes, &number);
  check_width (is_number, number, &AString::to_int64, text);
  check_width (is_number && holds<int32_t> (number), number, &AString::to_int32, text);
  check_width (is_number && holds<int16_t> (number), number, &AString::to_int16, text);
  check_width (is_number && holds<int8_t> (number), number, &AString::to_int8, text);
  uint32_t bits = 0;
  const bool is_fixed = model_fixed (bytes, &bits);
  Kelvane::fixed value{77};
  require (text.to_fixed_received (&value) == is_fixed);
  require (static_cast<uint32_t> (value.raw) == (is_fixed ? bits : 77u));
  const auto before = kelvane_assert_handler.exchange (count_report);
  reports = 0;
  require (text.to_fixed () == is_fixed && reports <= (is_fixed ? 0u : 1u));
  kelvane_assert_handler = before;
}

std::string model_pad (const std::string &text, int width, char fill) {
  const size_t magnitude = static_cast<size_t> (width < 0 ? -width : width);
  const std::string filling (magnitude > text.size () ? magnitude - text.size () : 0, fill);
  return width > 0 ? filling + text : text + filling;
}

std::string model_decimal (int32_t raw, unsigned decimals) {
  const auto magnitude = static_cast<uint32_t> (raw < 0 ? -static_cast<int64_t> (raw) : raw);
  uint64_t scale = 1;
  for (unsigned i = 0; i != decimals; ++i)
    scale *= 10;
  uint128 scaled = uint128 (magnitude) * scale;
  if (((scaled & 65535) * 10 >> 16) >= 5)
    scaled += 65536;
  scaled >>= 16;
  std::string digits = std::to_string (static_cast<uint64_t> (scaled % scale));
  digits.insert (0, decimals - digits.size (), '0');
  digits.erase (digits.find_last_not_of ('0') + 1);
  return (raw < 0 && scaled != 0 ? "-" : "") + std::to_string (static_cast<uint64_t> (scaled / scale)) +
         (digits.empty () ? "" : "." + digits) + "X";
}

void check_printers (uint64_t bits, int width, unsigned decimals) {
  const auto number = static_cast<int64_t> (bits);
  require (AString::from_uint64 (bits, width, '.').to_std_string () ==
           model_pad (std::to_string (bits), width, '.'));
  const std::string magnitude = std::to_string (number < 0 ? 0 - bits : bits);
  const int less = number < 0 ? (width > 0) - (width < 0) : 0;
  require (AString::from_int64 (number, width, '0').to_std_string () ==
           (number < 0 ? "-" : "") + model_pad (magnitude, width - less, '0'));
  const Kelvane::fixed value{static_cast<int32_t> (bits)};
  Kelvane::fixed back;
  require (AString::from_fixed (value, 15).to_fixed (&back) && back == value);
  require (AString::from_fixed (value, decimals).to_std_string () == model_decimal (value.raw, decimals));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput (const unsigned char *data, size_t size) {
  std::string bytes (reinterpret_cast<const char *> (data), size);
  uint64_t bits = 0;
  std::memcpy (&bits, data, size < sizeof bits ? size : sizeof bits);
  check_printers (bits, size == 0 ? 0 : static_cast<signed char> (data[size - 1]),
                  1 + static_cast<unsigned> (size % 19));
  check_parsers (bytes.substr (0, bytes.find ('\0')));
  return 0;
}
