#pragma once

#include "base/astring.h"

#include <list>
#include <string>
#include <string_view>

/// Names that are taken in the order in which they were added. They are kept compactly, as UTF-16 one after
/// the other; each costs its units and four bytes more. One thread at a time.
class NameList {
public:
  /// Adds a name up to its first code point that has no UTF-16. When memory runs out, the list is unchanged.
  void append (const AString &name);

  /// Takes the first name, in constant time; the empty text when none is left. It is valid until the list is
  /// called again or destroyed.
  std::u16string_view take_first ();

private:
  // Each name has its length in front, in two units. A block that has been read is freed.
  std::list<std::u16string> blocks_;
  size_t read_ = 0; ///< units of the first block that were taken
};
