#pragma once

#include "base/astring.h"

#include <concepts>
#include <cstdint>

/// What an `AVariant` holds.
enum AVariantType : uint32_t {
  AVariantEmpty = 0,
  AVariantUint32 = 1,
  AVariantUint64 = 2,
  AVariantInt32 = 3,
  AVariantInt64 = 4,
  AVariantBool = 5,
  AVariantChar = 6,
  AVariantString = 7
};

/// One value of a small closed set of types. Conversions never fail: each getter takes the value to return
/// when the content can't be converted.
///
/// Threads: any number may read one AVariant; changing it while another thread uses it is a race.
class AVariant {
public:
  AVariant () noexcept = default;
  /// Nothing but a bool: a pointer does not become one.
  template <std::same_as<bool> Bool>
  AVariant (Bool value) noexcept : AVariant (AVariantBool, value ? 1U : 0U) {}
  AVariant (AChar value) noexcept : AVariant (AVariantChar, value.value ()) {}
  /// An integer of up to 32 bits becomes a 32-bit one of its signedness, a longer one a 64-bit one.
  template <std::integral Integer>
  requires (!std::same_as<Integer, bool>) AVariant (Integer value)
  noexcept : AVariant (type_of<Integer> (), word_of (value)) {}
  AVariant (const AString &value);
  /// Latin-1 text.
  AVariant (const char *value) : AVariant (AString (value)) {}
  AVariant (const AVariant &other) { *this = other; }
  AVariant (AVariant &&other) noexcept { swap (other); }
  AVariant &operator= (const AVariant &other);
  AVariant &operator= (AVariant &&other) noexcept;
  ~AVariant () { clear (); }

  void swap (AVariant &other) noexcept;
  /// Becomes empty.
  void clear () noexcept;
  uint32_t type () const { return type_; }
  bool is_empty () const { return type_ == AVariantEmpty; }
  /// True for the four integer types.
  bool is_integer () const;

  // The numeric getters cut a number to their width without a range test, after it was sign-extended where
  // its type is signed; a text is parsed as a number of the getter's type.
  uint32_t get_uint32 (uint32_t otherwise) const;
  uint64_t get_uint64 (uint64_t otherwise) const;
  int32_t get_int32 (int32_t otherwise) const;
  int64_t get_int64 (int64_t otherwise) const;
  /// A text is false when it is empty, "0" or exactly "false"; "False" is true.
  // C76: doc/compatibility.md
  bool get_bool (bool otherwise) const;
  /// The first code point of a text; a number as a code point.
  AChar get_achar (AChar otherwise) const;
  /// Numbers in decimal, bools as "false" or "true".
  AString get_string (const AString &otherwise) const;

  /// The value as another type, with 0, false or the empty text where it can't be converted. An unknown type
  /// is an assertion failure and gives an empty variant.
  AVariant convert_to (uint32_t type) const;

  /// Values of different types are equal when converting either to the other's type makes them so: 5 equals
  /// "5", and an empty variant equals any number.
  // C76: doc/compatibility.md
  friend bool operator== (const AVariant &a, const AVariant &b);

private:
  AVariant (AVariantType type, uint64_t word) noexcept : word_ (word), type_ (type) {}

  template <class Integer>
  static constexpr AVariantType type_of () {
    if constexpr (std::signed_integral<Integer>)
      return sizeof (Integer) <= 4 ? AVariantInt32 : AVariantInt64;
    return sizeof (Integer) <= 4 ? AVariantUint32 : AVariantUint64;
  }
  template <class Integer>
  static constexpr uint64_t word_of (Integer value) {
    if constexpr (std::signed_integral<Integer>)
      return static_cast<uint64_t> (static_cast<int64_t> (value));
    else
      return static_cast<uint64_t> (value);
  }
  template <class Number>
  Number get_number (Number otherwise, bool (AString::*parse) (Number *) const) const;
  static bool equal_of_one_type (const AVariant &a, const AVariant &b);

  AString *storage () const { return reinterpret_cast<AString *> (static_cast<uintptr_t> (word_)); }

  uint64_t word_ = 0; ///< the number, or the address of an owned text
  uint32_t type_ = AVariantEmpty;
};
