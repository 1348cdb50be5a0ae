#include "base/abytearray.h"

#include "base/kelvane_assert.h"
#include "base/sole_owner.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <string>

namespace {

constexpr uint64_t smallest_capacity = 32;
constexpr uint64_t first_room = smallest_capacity - 1; ///< so that a first byte does not reallocate
constexpr uint64_t too_large = UINT64_MAX / 4;         ///< more than any heap has
constexpr uint64_t page = 4096;
constexpr uint64_t bytes_a_line = 20; ///< of base64

constexpr char b64[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
static_assert (sizeof (b64) == 65);
constexpr char hex_digits[] = "0123456789ABCDEF";

char b64_digit (uint32_t bits) {
  const uint32_t val = bits & 63;
  return KELVANE_ASSERT (val < 64) ? b64[val] : b64[0];
}

/// The number of each ASCII character in the alphabet, -1 for those that are not in it.
constexpr std::array<int8_t, 128> b64_values = [] {
  std::array<int8_t, 128> values{};
  values.fill (-1);
  for (int8_t i = 0; i != 64; ++i)
    values[static_cast<size_t> (b64[i])] = i;
  return values;
}();

int b64_value (AChar c) {
  return c.is_ascii () ? b64_values[c.value ()] : -1;
}

constexpr int no_digit = -1;

} // namespace

void AByteArray::DataStruct::reserve (uint64_t n) {
  if (n >= too_large)
    throw std::bad_alloc ();
  const uint64_t needed = n + 1;
  if (capacity >= needed)
    return;
  uint64_t room = capacity != 0 ? capacity : smallest_capacity;
  while (room < needed)
    room *= 2;
  const bool in_pages = room >= page;
  std::unique_ptr<uint8_t[]> larger (new uint8_t[room + (in_pages ? 2 * page : 0)]);
  uint8_t *start = larger.get ();
  if (in_pages)
    start += (page - reinterpret_cast<uintptr_t> (start) % page) % page;
  if (size != 0)
    std::memcpy (start, data, size);
  start[size] = 0;
  block = std::move (larger);
  data = start;
  capacity = room;
}

std::shared_ptr<AByteArray::DataStruct> AByteArray::fresh (uint64_t room) {
  auto made = std::make_shared<DataStruct> ();
  made->reserve (room);
  return made;
}

const AByteArray::DataStruct &AByteArray::readable () const {
  if (data_ == nullptr)
    data_ = fresh (first_room);
  return *data_;
}

AByteArray::DataStruct &AByteArray::own () {
  if (data_ == nullptr)
    data_ = fresh (first_room);
  else if (!is_sole_owner (data_)) {
    auto copy = fresh (data_->size);
    std::memcpy (copy->data, data_->data, data_->size + 1);
    copy->size = data_->size;
    data_ = std::move (copy);
  }
  return *data_;
}

void AByteArray::resize (uint64_t n, uint8_t fill) {
  DataStruct &mine = own ();
  mine.reserve (n);
  if (n > mine.size)
    std::memset (mine.data + mine.size, fill, n - mine.size);
  mine.size = n;
  mine.data[n] = 0;
}

uint8_t AByteArray::at (uint64_t n) const {
  return data ()[KELVANE_ASSERT (n < size ()) ? n : 0];
}

uint8_t &AByteArray::at (uint64_t n) {
  return writable_data ()[KELVANE_ASSERT (n < size ()) ? n : 0];
}

void AByteArray::assign (const void *bytes, uint64_t length) {
  AByteArray made;
  made.resize (length);
  if (length != 0)
    std::memcpy (made.writable_data (), bytes, length);
  *this = std::move (made);
}

void AByteArray::append (const void *bytes, uint64_t length) {
  if (length == 0)
    return;
  if (is_empty ())
    return assign (bytes, length);
  const uint64_t before = size ();
  resize (before + length);
  std::memcpy (writable_data () + before, bytes, length);
}

void AByteArray::append (const AByteArray &other) {
  const AByteArray source = other; // it may be this array
  append (source.data (), source.size ());
}

void AByteArray::append_be16 (uint16_t value) {
  append (static_cast<uint8_t> (value >> 8), static_cast<uint8_t> (value));
}

void AByteArray::append_be32 (uint32_t value) {
  append (static_cast<uint8_t> (value >> 24), static_cast<uint8_t> (value >> 16),
          static_cast<uint8_t> (value >> 8), static_cast<uint8_t> (value));
}

void AByteArray::append_be64 (uint64_t value) {
  append_be32 (static_cast<uint32_t> (value >> 32));
  append_be32 (static_cast<uint32_t> (value));
}

int AByteArray::compare (const AByteArray &a, const AByteArray &b) {
  const uint64_t shorter = std::min (a.size (), b.size ());
  const int order = shorter != 0 ? std::memcmp (a.data (), b.data (), shorter) : 0;
  if (order != 0)
    return order;
  return a.size () < b.size () ? -1 : a.size () > b.size () ? 1 : 0;
}

AByteArray AByteArray::from_utf8 (const AString &text) {
  const std::string bytes = text.to_std_string ();
  return AByteArray (bytes.data (), bytes.size ());
}

AString AByteArray::to_string () const {
  return AString::from_utf8 (reinterpret_cast<const char *> (data ()), size ());
}

AString AByteArray::to_base64 () const {
  std::string text;
  text.reserve (size () * 4 / 3 + 2);
  uint32_t bits = 0;
  unsigned held = 0;
  for (uint64_t i = 0; i != size (); ++i) {
    bits = bits << 8 | data_->data[i];
    for (held += 8; held >= 6; held -= 6)
      text += b64_digit (bits >> (held - 6));
    if (i % bytes_a_line == bytes_a_line - 1)
      text += '\n';
  }
  if (held != 0)
    text += b64_digit (bits << (6 - held));
  return AString::from_latin1 (text);
}

AByteArray AByteArray::from_base64 (const AString &text) {
  AByteArray bytes;
  bytes.resize (text.length ());
  uint8_t *at = bytes.writable_data ();
  uint32_t bits = 0;
  unsigned held = 0;
  const auto decode = [&] (const AChar *run, uint64_t count) {
    for (uint64_t i = 0; i != count; ++i) {
      const int value = b64_value (run[i]);
      if (value < 0)
        continue;
      bits = bits << 6 | static_cast<uint32_t> (value);
      held += 6;
      if (held < 8)
        continue;
      held -= 8;
      *at++ = static_cast<uint8_t> (bits >> held);
    }
    return true;
  };
  text.walk_runs (decode);
  bytes.resize (static_cast<uint64_t> (at - bytes.data ()));
  return bytes;
}

AString AByteArray::to_hex (int line_width) const {
  const int width = line_width > 0 ? line_width - 1 : 0;
  std::string text;
  text.reserve (size () * 3);
  int in_line = 0;
  for (uint64_t i = 0; i != size (); ++i, in_line += 2) {
    if (in_line >= width) {
      text += '\n';
      in_line = 0;
    }
    text += hex_digits[data_->data[i] >> 4];
    text += hex_digits[data_->data[i] & 15];
  }
  return AString::from_utf8 (text);
}

AByteArray AByteArray::to_hex_bytes () const {
  AByteArray digits;
  digits.resize (size () * 2);
  uint8_t *at = digits.writable_data ();
  for (uint64_t i = 0; i != size (); ++i) {
    *at++ = static_cast<uint8_t> (hex_digits[data_->data[i] >> 4]);
    *at++ = static_cast<uint8_t> (hex_digits[data_->data[i] & 15]);
  }
  return digits;
}

AByteArray AByteArray::from_hex (const AByteArray &digits) {
  AByteArray bytes;
  bytes.resize (digits.size () / 2);
  uint8_t *at = bytes.writable_data ();
  int first = no_digit;
  for (uint64_t i = 0; i != digits.size (); ++i) {
    const int value = AChar (uint32_t{digits.data_->data[i]}).alnum_value (no_digit);
    if (value == no_digit)
      continue;
    if (first == no_digit) {
      first = value;
      continue;
    }
    *at++ = static_cast<uint8_t> ((first << 4) + value);
    first = no_digit;
  }
  bytes.resize (static_cast<uint64_t> (at - bytes.data ()));
  return bytes;
}

AByteArray AByteArray::left (uint64_t n) const {
  if (n == 0 || is_empty ())
    return {};
  return n >= size () ? *this : AByteArray (data (), n);
}

AByteArray AByteArray::right (uint64_t n) const {
  if (n == 0 || n >= size ())
    return {};
  return AByteArray (data () + size () - n, n);
}

AByteArray AByteArray::mid (uint64_t offset, uint64_t count) const {
  if (count == 0 || offset >= size ())
    return {};
  return AByteArray (data () + offset, std::min (count, size () - offset));
}

int64_t AByteArray::find (uint8_t byte, uint64_t from) const {
  if (from >= size ())
    return -1;
  const void *at = std::memchr (data () + from, byte, size () - from);
  return at != nullptr ? static_cast<const uint8_t *> (at) - data () : -1;
}

int64_t AByteArray::rfind (uint8_t byte, uint64_t from) const {
  for (uint64_t i = std::min (from, size () - 1) + 1; !is_empty () && i != 0; --i)
    if (data_->data[i - 1] == byte)
      return static_cast<int64_t> (i - 1);
  return -1;
}

bool AByteArray::starts_with (const AByteArray &prefix) const {
  return prefix.size () <= size () &&
         (prefix.is_empty () || std::memcmp (data (), prefix.data (), prefix.size ()) == 0);
}

void AByteArray::replace_all (uint8_t from, uint8_t to) {
  for (int64_t idx = find (from); idx >= 0; idx = find (from, static_cast<uint64_t> (idx) + 1)) {
    if (!KELVANE_ASSERT (static_cast<uint64_t> (idx) < size ()))
      return;
    writable_data ()[idx] = to;
  }
}

bool AByteArray::read (void *dest, uint64_t numbytes, uint64_t source_offset) const {
  const uint64_t s = size ();
  if (!KELVANE_ASSERT (source_offset < s) || !KELVANE_ASSERT (numbytes <= s) ||
      !KELVANE_ASSERT (source_offset + numbytes <= s))
    return false;
  std::memcpy (dest, data () + source_offset, numbytes);
  return true;
}

bool AByteArray::write (const void *source, uint64_t numbytes, uint64_t dest_offset) {
  const uint64_t s = size ();
  if (!KELVANE_ASSERT (dest_offset < s) || !KELVANE_ASSERT (numbytes <= s) ||
      !KELVANE_ASSERT (dest_offset + numbytes <= s))
    return false;
  std::memcpy (writable_data () + dest_offset, source, numbytes);
  return true;
}
