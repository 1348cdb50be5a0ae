#pragma once

#include "base/astring.h"

#include <compare>
#include <cstdint>
#include <initializer_list>
#include <memory>

/// Bytes in a growing block that copies share until one of them writes. A 0 follows the last byte, so the
/// data can be used as a C string. Offsets and counts are in bytes. What is outside the array is clipped, or
/// fails an assertion and does nothing, where a comment says so.
///
/// Threads: one object serves one thread at a time. Copies may live on different threads as long as nobody
/// writes to any of them while another thread reads that very object.
class AByteArray {
public:
  AByteArray () = default;
  AByteArray (const void *bytes, uint64_t length) { assign (bytes, length); }
  /// One to four bytes.
  explicit AByteArray (uint8_t a) { assign (a); }
  AByteArray (uint8_t a, uint8_t b) { assign (a, b); }
  AByteArray (uint8_t a, uint8_t b, uint8_t c) { assign (a, b, c); }
  AByteArray (uint8_t a, uint8_t b, uint8_t c, uint8_t d) { assign (a, b, c, d); }

  uint64_t size () const { return data_ != nullptr ? data_->size : 0; }
  /// The allocated bytes, with that of the terminator; 0 before the first allocation.
  uint64_t capacity () const { return data_ != nullptr ? data_->capacity : 0; }
  bool is_empty () const { return size () == 0; }

  /// Makes the array @p n bytes long; bytes that are new are @p fill.
  void resize (uint64_t n, uint8_t fill = 0);
  /// Makes room for @p n bytes and the terminator by doubling. The block is then no longer shared.
  void reserve (uint64_t n) { own ().reserve (n); }
  void clear () { data_.reset (); }

  /// The bytes, valid until the array is changed or destroyed.
  const uint8_t *data () const { return readable ().data; }
  /// The bytes for writing. A shared block is copied first.
  uint8_t *writable_data () { return own ().data; }
  /// Byte @p n. Beyond the end it is an assertion failure, and the first byte (of an empty array the
  /// terminator).
  uint8_t at (uint64_t n) const;
  uint8_t &at (uint64_t n);

  void assign (const void *bytes, uint64_t length);
  /// Shares the bytes of @p other.
  void assign (const AByteArray &other) { *this = other; }
  void assign (uint8_t a) { assign_bytes ({a}); }
  void assign (uint8_t a, uint8_t b) { assign_bytes ({a, b}); }
  void assign (uint8_t a, uint8_t b, uint8_t c) { assign_bytes ({a, b, c}); }
  void assign (uint8_t a, uint8_t b, uint8_t c, uint8_t d) { assign_bytes ({a, b, c, d}); }

  /// @param bytes none of this array's own
  void append (const void *bytes, uint64_t length);
  void append (const AByteArray &other);
  void append (uint8_t a) { append_bytes ({a}); }
  void append (uint8_t a, uint8_t b) { append_bytes ({a, b}); }
  void append (uint8_t a, uint8_t b, uint8_t c) { append_bytes ({a, b, c}); }
  void append (uint8_t a, uint8_t b, uint8_t c, uint8_t d) { append_bytes ({a, b, c, d}); }
  /// The most significant byte first.
  void append_be16 (uint16_t value);
  void append_be32 (uint32_t value);
  void append_be64 (uint64_t value);

  /// Below 0, 0 or above 0, byte by byte. When one array begins with the other, the shorter one is less.
  static int compare (const AByteArray &a, const AByteArray &b);
  friend bool operator== (const AByteArray &a, const AByteArray &b) {
    return a.size () == b.size () && compare (a, b) == 0;
  }
  friend std::strong_ordering operator<=> (const AByteArray &a, const AByteArray &b) {
    return compare (a, b) <=> 0;
  }

  // -- From and to text

  static AByteArray from_utf8 (const AString &text);
  /// The bytes read as UTF-8, up to the first invalid one.
  AString to_string () const;
  /// The standard alphabet without "=" at the end, with a line feed after every 20 bytes.
  // C73: doc/compatibility.md
  AString to_base64 () const;
  /// Characters outside the alphabet are skipped, and the bits of an incomplete byte are dropped.
  static AByteArray from_base64 (const AString &text);
  /// Two upper-case digits a byte, in lines that end before a byte once they hold @p line_width - 1
  /// characters. There is no form without lines: a width of 0 or 1 puts a line feed before every byte, the
  /// first included.
  // C73: doc/compatibility.md
  AString to_hex (int line_width) const;
  /// Two upper-case digits a byte.
  AByteArray to_hex_bytes () const;
  /// Pairs of digits; what is neither digit nor letter is skipped, and a last digit alone is dropped. Letters
  /// beyond "f" carry on to 35, as `AChar::alnum_value` has them.
  static AByteArray from_hex (const AByteArray &digits);

  // -- Pieces

  /// The first @p n bytes; shared when that is all.
  AByteArray left (uint64_t n) const;
  /// The last @p n bytes. Asking for all of them or more returns none.
  // C72: doc/compatibility.md
  AByteArray right (uint64_t n) const;
  AByteArray mid (uint64_t offset, uint64_t count) const;

  // -- Searching: the offset, or -1

  int64_t find (uint8_t byte, uint64_t from = 0) const;
  /// The last one at or before @p from.
  int64_t rfind (uint8_t byte, uint64_t from = UINT64_MAX) const;
  bool starts_with (const AByteArray &prefix) const;
  void replace_all (uint8_t from, uint8_t to);

  /// Copies bytes out of or into the array, all or none: a range that is not inside it, or starts at its end,
  /// is an assertion failure. @return whether they were copied
  bool read (void *dest, uint64_t numbytes, uint64_t source_offset) const;
  bool write (const void *source, uint64_t numbytes, uint64_t dest_offset);

private:
  struct DataStruct {
    uint64_t capacity = 0; ///< usable bytes from `data`
    uint64_t size = 0;     ///< bytes in use
    std::unique_ptr<uint8_t[]> block;
    uint8_t *data = nullptr; ///< in `block`; on a page boundary when that is large

    void reserve (uint64_t n);
  };

  static std::shared_ptr<DataStruct> fresh (uint64_t room);
  const DataStruct &readable () const;
  DataStruct &own ();
  void assign_bytes (std::initializer_list<uint8_t> bytes) { assign (bytes.begin (), bytes.size ()); }
  void append_bytes (std::initializer_list<uint8_t> bytes) { append (bytes.begin (), bytes.size ()); }

  mutable std::shared_ptr<DataStruct> data_;
};
