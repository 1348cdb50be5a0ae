#include "base/achar.h"

#include "base/kelvane_assert.h"

#include <iterator>

namespace {

constexpr unsigned continuation_bits = 6;
constexpr uint32_t continuation_pattern = 128;
constexpr uint32_t largest_code_point = std::rbegin (utf8_tbl)->largest;
constexpr uint32_t first_high_surrogate = 55296;
constexpr uint32_t first_low_surrogate = 56320;
constexpr uint32_t last_surrogate = 57343;
constexpr uint32_t first_of_pairs = 65536;

enum class Row { found, too_long, none };

// The row of a lead byte. Lengths are looked at in the table's order, so a short input is refused before its
// lead byte is found to fit no row.
Row find_row (uint32_t lead, size_t available, const AUtf8Row **found) {
  for (const AUtf8Row &row : utf8_tbl) {
    if (row.length > available)
      return Row::too_long;
    if (lead >> row.lead_byte_databits == row.lead_pattern >> row.lead_byte_databits) {
      *found = &row;
      return Row::found;
    }
  }
  return Row::none;
}

bool gather (const char *bytes, const AUtf8Row &row, uint32_t *value) {
  *value = static_cast<unsigned char> (bytes[0]) - row.lead_pattern;
  for (unsigned i = 1; i != row.length; ++i) {
    const uint32_t byte = static_cast<unsigned char> (bytes[i]);
    if (byte >> continuation_bits != continuation_pattern >> continuation_bits)
      return false;
    *value = (*value << continuation_bits) + byte - continuation_pattern;
  }
  return true;
}

bool never_leads (uint32_t byte) {
  return byte == 0 || byte == 192 || byte == 193 || byte >= 245;
}

bool decode (const char *bytes, size_t available, AChar *out, unsigned *consumed, bool received) {
  *consumed = 0;
  if (available == 0)
    return false;
  const uint32_t lead = static_cast<unsigned char> (bytes[0]);
  if (never_leads (lead))
    return false;
  const AUtf8Row *row = nullptr;
  const Row outcome = find_row (lead, available, &row);
  if (outcome == Row::none && !received)
    kelvane_assert_report (__FILE__, __LINE__, "0");
  uint32_t value = 0;
  if (outcome != Row::found || !gather (bytes, *row, &value))
    return false;
  if (out != nullptr)
    *out = AChar (value);
  *consumed = row->length;
  return true;
}

void write_sequence (uint32_t v, const AUtf8Row &row, char *bytes) {
  for (unsigned i = row.length; i-- > 1; v >>= continuation_bits)
    bytes[i] = static_cast<char> (continuation_pattern + (v & ((1u << continuation_bits) - 1)));
  if (KELVANE_ASSERT ((v >> row.lead_byte_databits) == 0))
    bytes[0] = static_cast<char> (row.lead_pattern + v);
}

bool encode (AChar c, char *bytes, size_t capacity, unsigned *nbytes, bool received) {
  if (capacity == 0)
    return false;
  const AUtf8Row *row = utf8_tbl;
  while (row != std::end (utf8_tbl) && row->largest < c.value ())
    ++row;
  if (row == std::end (utf8_tbl)) {
    if (!received)
      kelvane_assert_report (__FILE__, __LINE__, "0");
    return false;
  }
  if (capacity < row->length)
    return false;
  if (bytes != nullptr)
    write_sequence (c.value (), *row, bytes);
  if (nbytes != nullptr)
    *nbytes = row->length;
  return true;
}

bool is_high_surrogate (uint32_t v) {
  return v >= first_high_surrogate && v < first_low_surrogate;
}
bool is_low_surrogate (uint32_t v) {
  return v >= first_low_surrogate && v <= last_surrogate;
}

// The units of the code point at the start, 0 when it is refused.
template <class Unit>
unsigned utf16_length (const Unit *units, size_t available) {
  if (available == 0 || units[0] == 0 || is_low_surrogate (units[0]))
    return 0;
  if (!is_high_surrogate (units[0]))
    return 1;
  return available > 1 && is_low_surrogate (units[1]) ? 2 : 0;
}

template <class Unit>
bool decode_units (const Unit *units, size_t available, AChar *out, unsigned *consumed) {
  const unsigned length = utf16_length (units, available);
  if (consumed != nullptr)
    *consumed = length;
  if (length == 0)
    return false;
  uint32_t value = units[0];
  if (length == 2)
    value = ((value & 1023u) << 10) + (units[1] & 1023u) + first_of_pairs;
  if (out != nullptr)
    *out = AChar (value);
  return true;
}

template <class Unit>
bool encode_units (AChar c, Unit *units, size_t capacity, unsigned *count) {
  const uint32_t v = c.value ();
  const unsigned length = v < first_of_pairs ? 1 : 2;
  if (capacity < length || v > largest_code_point || is_high_surrogate (v) || is_low_surrogate (v))
    return false;
  if (units != nullptr && length == 1)
    units[0] = static_cast<Unit> (v);
  if (units != nullptr && length == 2) {
    units[0] = static_cast<Unit> (first_high_surrogate + ((v - first_of_pairs) >> 10));
    units[1] = static_cast<Unit> (first_low_surrogate + (v & 1023u));
  }
  if (count != nullptr)
    *count = length;
  return true;
}

} // namespace

bool decode_utf8 (const char *bytes, size_t bytes_available, AChar *out, unsigned *bytes_consumed) {
  return decode (bytes, bytes_available, out, bytes_consumed, false);
}

bool decode_utf8_received (const char *bytes, size_t bytes_available, AChar *out, unsigned *bytes_consumed) {
  return decode (bytes, bytes_available, out, bytes_consumed, true);
}

bool encode_utf8 (AChar c, char *bytes, size_t capacity, unsigned *nbytes) {
  return encode (c, bytes, capacity, nbytes, false);
}

bool encode_utf8_received (AChar c, char *bytes, size_t capacity, unsigned *nbytes) {
  return encode (c, bytes, capacity, nbytes, true);
}

bool decode_utf16 (const uint16_t *units, size_t units_available, AChar *out, unsigned *count_consumed) {
  return decode_units (units, units_available, out, count_consumed);
}

bool decode_utf16 (const char16_t *units, size_t units_available, AChar *out, unsigned *count_consumed) {
  return decode_units (units, units_available, out, count_consumed);
}

bool encode_utf16 (AChar c, uint16_t *units, size_t capacity, unsigned *count) {
  return encode_units (c, units, capacity, count);
}

bool encode_utf16 (AChar c, char16_t *units, size_t capacity, unsigned *count) {
  return encode_units (c, units, capacity, count);
}
