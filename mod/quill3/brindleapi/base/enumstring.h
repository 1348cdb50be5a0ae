/// A two-way table between small numbers and fixed spellings.
#pragma once

#include "base/astring.h"

#include <concepts>
#include <cstddef>
#include <map>

class AVariant;

/// A row whose spelling is already a text.
struct EnumStringRow {
  uint32_t number;
  AString spelling;
};

/// A row whose spelling is Latin-1 text; null for a number that has none.
struct EnumStringTextRow {
  uint32_t number;
  const char *spelling;
};

/// Built once, then read by any number of threads without a lock. Spellings are compared exactly.
class EnumString {
public:
  /// The first row's number and spelling become the defaults. An empty or null table is a fault and gives an
  /// empty table with the default number 4294967295 and the empty default spelling.
  EnumString (const EnumStringRow *rows, size_t tblcount);
  EnumString (const EnumStringTextRow *rows, size_t tblcount);
  /// @param default_number what a lookup of an unknown spelling gives
  /// @param default_spelling what a lookup of an unknown number gives
  EnumString (const EnumStringRow *rows, size_t tblcount, uint32_t default_number,
              const AString &default_spelling);
  EnumString (const EnumStringTextRow *rows, size_t tblcount, uint32_t default_number,
              const AString &default_spelling);

  /// Adds a pair; an empty spelling is ignored. Two numbers may share a spelling: looking it up returns the
  /// first of them. In the same way, the first spelling of a number is the one that is found.
  // C77: doc/compatibility.md
  void add (uint32_t number, const AString &spelling);

  /// False for an unknown spelling or number. `out` receives the other side on success and may be null.
  bool from_string (const AString &spelling, uint32_t *out = nullptr) const;
  bool to_string (uint32_t number, AString *out = nullptr) const;

  /// The number of a spelling, else the table's default or `otherwise`.
  uint32_t value_of (const AString &spelling) const { return value_of (spelling, default_number_); }
  uint32_t value_of (const AString &spelling, uint32_t otherwise) const;
  /// The spelling of a number, else the table's default or `otherwise`.
  AString text_of (uint32_t number) const { return text_of (number, default_spelling_); }
  AString text_of (uint32_t number, const AString &otherwise) const;

  // Lookups of a value whose type is not known (enumstring_variant.cpp).

  /// An integer must be a number of the table; a text may be a spelling, or the decimal text of a number of
  /// the table. A text that is neither reads as number 0, which succeeds where the table has that number.
  /// `out` receives the number, as above.
  // C77: doc/compatibility.md
  bool from_variant (const AVariant &value, uint32_t *out = nullptr) const;
  // Only an AVariant itself selects these: a plain literal means a spelling.
  template <std::same_as<AVariant> Value>
  uint32_t value_of (const Value &value) const {
    return value_of (value, default_number_);
  }
  template <std::same_as<AVariant> Value>
  uint32_t value_of (const Value &value, uint32_t otherwise) const {
    return from_variant (value, &otherwise), otherwise;
  }
  template <std::same_as<AVariant> Value>
  AString text_of (const Value &value) const {
    return text_of (value, default_spelling_);
  }
  template <std::same_as<AVariant> Value>
  AString text_of (const Value &value, const AString &otherwise) const {
    uint32_t number = 0;
    return from_variant (value, &number) ? text_of (number, otherwise) : otherwise;
  }

private:
  template <class Row>
  void build (const Row *rows, size_t tblcount);

  uint32_t default_number_;
  AString default_spelling_;
  std::map<uint32_t, AString> by_number_;
  std::map<AString, uint32_t> by_spelling_;
};
