/// A list of texts.
#pragma once

#include "base/astring.h"
#include "base/ns_list.h"

/// A list of AString that copies share until one of them is changed. A copy only raises a count. One thread
/// at a time.
class AStringList {
public:
  uint32_t size () const { return list_.size (); }
  bool is_empty () const { return size () == 0; }
  void append (AString text) { list_.write ().push_back (std::move (text)); }
  /// The element at `index`, which must be below `size`. The cost is linear. An index past the end is a fault
  /// and returns the empty text.
  const AString &at (uint32_t index) const;
  auto begin () const { return list_.read ().begin (); }
  auto end () const { return list_.read ().end (); }

  /// Removes the first element and returns it; the empty text when there is none. Constant time, after one
  /// copy if the list is shared.
  AString take_first ();

  /// True when both share one list, so that no copy was made.
  bool shares_list_with (const AStringList &other) const { return &list_.read () == &other.list_.read (); }

  friend bool operator== (const AStringList &a, const AStringList &b);

private:
  cow_list<AString> list_;
};
