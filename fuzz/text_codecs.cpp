// Text from outside in UTF-8 and UTF-16: it decodes to what a model says, fails no assertion, and is the same
// after it was encoded again.
#include "base/astring.h"
#include "require.h"

#include <algorithm>
#include <atomic>
#include <string>
#include <vector>

namespace {

// The code point that `bytes` begins with, decoded by bit patterns. Gives its length, 0 when it is refused.
size_t model_utf8 (const unsigned char *bytes, size_t available, uint32_t *value) {
  if (available == 0 || bytes[0] == 0 || bytes[0] == 0xC0 || bytes[0] == 0xC1 || bytes[0] > 0xF4)
    return 0;
  size_t length = 1;
  while (length < 4 && (bytes[0] << length & 0x80) != 0)
    ++length;
  if ((bytes[0] & 0x80) == 0)
    length = 1;
  else if ((bytes[0] & 0x40) == 0)
    return 0;
  if (length > available)
    return 0;
  *value = length == 1 ? bytes[0] : bytes[0] & (0x7Fu >> length);
  for (size_t i = 1; i != length; ++i) {
    if (bytes[i] < 0x80 || bytes[i] > 0xBF)
      return 0;
    *value = *value * 64 + (bytes[i] & 0x3Fu);
  }
  return length;
}

std::u32string model_text (const unsigned char *bytes, size_t size) {
  std::u32string text;
  uint32_t value = 0;
  while (const size_t length = model_utf8 (bytes, size, &value)) {
    text.push_back (value);
    bytes += length;
    size -= length;
  }
  return text;
}

std::u32string points (const AString &text) {
  std::u32string all;
  for (const AChar c : text)
    all.push_back (c.value ());
  return all;
}

void check_decoder (const unsigned char *bytes, size_t size) {
  const auto before = kelvane_assert_handler.exchange (count_report);
  for (size_t at = 0; at <= size; ++at) {
    const auto *text = reinterpret_cast<const char *> (bytes + at);
    uint32_t value = 0;
    const size_t expected = model_utf8 (bytes + at, size - at, &value);
    AChar c;
    unsigned consumed = 0;
    reports = 0;
    require (decode_utf8 (text, size - at, &c, &consumed) == (expected != 0) && consumed == expected);
    require (expected == 0 || c.value () == value);
    require (reports == (size - at >= 4 && bytes[at] >= 0x80 && bytes[at] < 0xC0 ? 1u : 0u));
  }
  kelvane_assert_handler = before;
}

void check_utf8 (const unsigned char *bytes, size_t size) {
  const std::u32string expected = model_text (bytes, size);
  const AString text = AString::from_utf8 (reinterpret_cast<const char *> (bytes), size);
  require (points (text) == expected);
  // An overlong form can hold a code point 0, whose own encoding ends a text.
  const auto ends_round = [] (char32_t c) { return c > 0x10FFFF || c == 0; };
  const auto kept = std::find_if (expected.begin (), expected.end (), ends_round) - expected.begin ();
  const std::string out = text.to_std_string ();
  require (AString::from_utf8 (out) == text.left (static_cast<uint64_t> (kept)));
  std::vector<char> buffer (1 + bytes[0], '*');
  const size_t length = text.copy_utf8_z (buffer.data (), buffer.size ());
  require (length < buffer.size () && buffer[length] == 0 &&
           out.compare (0, length, buffer.data (), length) == 0);
  require (length == out.size () || buffer.size () - 1 - length < 4);
}

void check_utf16 (const unsigned char *bytes, size_t size) {
  std::u16string units;
  for (size_t i = 0; i + 1 < size; i += 2)
    units.push_back (static_cast<char16_t> (bytes[i] * 256 + bytes[i + 1]));
  const AString text = AString::from_utf16 (units);
  const std::u16string back = text.to_u16string ();
  require (units.compare (0, back.size (), back) == 0);
  if (back.size () == units.size ())
    return;
  // What follows must be what is refused.
  const char16_t stop = units[back.size ()];
  const bool high = stop >= 0xD800 && stop < 0xDC00;
  const bool pair = back.size () + 1 < units.size () && units[back.size () + 1] >= 0xDC00 &&
                    units[back.size () + 1] < 0xE000;
  require (stop == 0 || (stop >= 0xDC00 && stop < 0xE000) || (high && !pair));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput (const unsigned char *data, size_t size) {
  if (size == 0)
    return 0;
  check_decoder (data, size);
  check_utf8 (data, size);
  check_utf16 (data, size);
  return 0;
}
