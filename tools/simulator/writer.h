#pragma once

#include "values.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace sim {

/// Writes the text of a message, element by element, without blanks between them.
class Writer {
public:
  Writer &open (std::string_view name);
  Writer &close (std::string_view name);
  Writer &text (std::string_view name, std::string_view value);
  Writer &number (std::string_view name, std::uint64_t value);
  Writer &distance (std::string_view name, std::int64_t value);
  Writer &fixed (std::string_view name, Fixed value) { return text (name, fixed_text (value)); }
  Writer &boolean (std::string_view name, bool value) { return text (name, value ? "true" : "false"); }
  Writer &flag (std::string_view name, bool value);
  /// Writes the word of the tag that has this number.
  Writer &word (std::string_view name, int number);
  /// Adds text that is already written.
  Writer &raw (std::string_view written);

  const std::string &result () const { return out_; }
  std::string take () { return std::move (out_); }

private:
  std::string out_;
};

/// A body without tags: `<ok />`.
std::string empty_body (std::string_view name);

} // namespace sim
