/// Message templates with numbered placeholders.
#pragma once

#include "base/astring.h"

#include <vector>

/// A template such as "Channel %1 does not exist", filled by one `arg` call for each placeholder.
///
/// A placeholder is "%" and one or two digits; a "%" that no digit or more than two follow is literal. Each
/// `arg` fills one placeholder, the first of those with the lowest number that are left, so "%1 and %1" takes
/// two calls. Surplus values vanish, placeholders that are left stay as they are, and a value is not searched
/// for placeholders. There are no errors.
// C70: doc/compatibility.md
class AStringFormat {
public:
  explicit AStringFormat (const AString &format);

  AStringFormat &arg (const AString &value);
  AStringFormat &arg (const char *latin1) { return arg (AString (latin1)); }
  /// @param width, fill as in AString::from_int64
  AStringFormat &arg (int value, int width = 0, char fill = ' ');
  AStringFormat &arg (unsigned value, int width = 0, char fill = ' ');
  AStringFormat &arg (long value, int width = 0, char fill = ' ');
  AStringFormat &arg (unsigned long value, int width = 0, char fill = ' ');
  AStringFormat &arg (long long value, int width = 0, char fill = ' ');
  AStringFormat &arg (unsigned long long value, int width = 0, char fill = ' ');
  /// "0x" and 16 columns of hexadecimal, blanks in front.
  // C71: doc/compatibility.md
  AStringFormat &arg (const void *pointer);

  AString to_string () const;
  operator AString () const { return to_string (); }

private:
  std::vector<AString> pieces_; ///< literal runs and placeholders, in order
  std::vector<size_t> open_;    ///< indices of the placeholders still open, the next to fill last
};
