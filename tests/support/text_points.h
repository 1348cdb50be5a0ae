#pragma once

#include "base/astring.h"

#include <ostream>
#include <string>

/// The code points of a text, read one by one, to compare with a literal.
inline std::u32string points (const AString &text) {
  std::u32string all;
  for (const AChar c : text)
    all.push_back (static_cast<char32_t> (c.value ()));
  return all;
}

/// A text in a store of its own.
inline AString fresh (const std::u32string &text) {
  return AString::from_utf32 (text);
}

/// For failure messages.
inline std::ostream &operator<< (std::ostream &out, const AString &text) {
  return out << '"' << text.to_std_string () << '"';
}
