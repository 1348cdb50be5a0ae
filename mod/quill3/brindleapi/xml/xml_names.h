/// The names that a parser knows beforehand.
#pragma once

#include "base/astring.h"

#include <string>
#include <string_view>
#include <vector>

/// A set of names, numbered from 0 in the order in which they were added. A parser that has such a table
/// looks up the number of each element's name in it. Readers then compare numbers, and a tree shares the text
/// of the name. A parser also works without a table.
///
/// Threads: one thread fills it; afterwards any thread may read it.
class XMLNameTable {
public:
  /// The number of a name that is not in the table.
  static constexpr uint32_t unknown = UINT32_MAX;

  /// Adds a copy that shares the store of @p name. An empty name, or one that is in the table, changes
  /// nothing.
  void add (const AString &name);

  /// The number of a name, `unknown` when it is not in the table. Constant time.
  uint32_t find (std::string_view name) const;
  uint32_t find_text (const AString &name) const;

  /// @param number below `size`
  const AString &name (uint32_t number) const { return entries_[number].name; }
  size_t size () const { return entries_.size (); }

private:
  struct Entry {
    AString name;
    std::string text;
    uint32_t hash;
  };

  size_t slot_of (uint32_t hash) const { return (hash ^ (hash >> 15)) & (slots_.size () - 1); }
  void grow ();
  void place (uint32_t entry);

  std::vector<Entry> entries_;
  /// 1 + number of an entry, 0 when free; a power of two, three quarters of it free
  std::vector<uint32_t> slots_;
};
