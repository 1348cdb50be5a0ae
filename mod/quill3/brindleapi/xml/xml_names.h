/// The names that a parser knows beforehand.
#pragma once

#include "base/astring.h"

#include <vector>

/// A set of names. A parser that is given one takes the name of an element from it instead of building a text
/// of its own, so that known names cost no store and a lookup by the same AString compares in constant time.
/// The parser works the same without; it knows no name itself.
///
/// Threads: filled by one; afterwards `find` may be called from any.
class XMLNameTable {
public:
  /// Adds a copy that shares the store of @p name. A name that is there already, or empty, changes nothing.
  void add (const AString &name);

  /// The name with these code points, null when it is unknown. Constant time.
  const AString *find (const AChar *text, size_t length) const;

  size_t size () const { return entries_.size (); }

private:
  struct Entry {
    AString name;
    std::vector<AChar> text;
    size_t hash;
  };

  void grow ();
  void place (uint32_t entry);

  std::vector<Entry> entries_;
  std::vector<uint32_t>
      slots_; ///< 1 + index of an entry, 0 when free; a power of two, at least half of it free
};
