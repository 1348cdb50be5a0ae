#pragma once

#include "element.h"

#include <cstdint>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace sim {

/// A number with 16 fractional bits: 65536 is 1.
using Fixed = std::int32_t;
inline constexpr Fixed fixed_one = 65536;

/// A command is refused. The text is sent to the client in the reply `error`.
struct Refusal : std::runtime_error {
  explicit Refusal (const std::string &text, std::string_view kind = "general")
      : std::runtime_error (text), code (kind) {}
  std::string_view code; ///< a word of `ErrorCode`
};

/// Reads a number from 0 to `most`: decimal digits only, without a sign, blanks or leading zeros.
std::optional<std::uint64_t> read_unsigned (std::string_view text, std::uint64_t most);

/// Reads a 32-bit number. A negative one starts with `-`.
std::optional<std::int32_t> read_signed (std::string_view text);

/// Reads a decimal fraction with an `X` at its end: `1X`, `-0.5X`.
std::optional<Fixed> read_fixed (std::string_view text);

/// Writes the value with at most fifteen decimal places and an `X` at its end.
std::string fixed_text (Fixed value);

/// The tags of a command or a record that has passed `check_parts`. The `maybe_` functions return nothing for
/// an absent tag. The others must be called only for a tag that is present.
class Arguments {
public:
  explicit Arguments (const Element &element) : element_ (&element) {}

  bool has (std::string_view tag) const { return element_->child (tag) != nullptr; }
  const std::string &text (std::string_view tag) const;
  std::uint32_t number (std::string_view tag) const;
  std::int32_t distance (std::string_view tag) const;
  Fixed fixed (std::string_view tag) const;
  bool boolean (std::string_view tag) const { return text (tag) == "true"; }
  int word (std::string_view tag) const;
  Arguments record (std::string_view tag) const { return Arguments (*element_->child (tag)); }
  const std::vector<Element> &list (std::string_view tag) const { return element_->child (tag)->children; }

  std::optional<std::string> maybe_text (std::string_view tag) const;
  std::optional<std::uint32_t> maybe_number (std::string_view tag) const;
  std::optional<Fixed> maybe_fixed (std::string_view tag) const;
  std::optional<int> maybe_word (std::string_view tag) const;

  /// The numbers of the words in a list of words.
  std::set<int> words (std::string_view list_tag) const;

private:
  const Element *element_;
};

/// Checks a command or a record against its grammar: every tag must be known, in its place, there only once,
/// and have a valid value. @throws Refusal with a sentence that says what is wrong and where.
void check_parts (const Element &element, const std::vector<struct Part> &parts);

} // namespace sim
