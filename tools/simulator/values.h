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

/// A number with 16 bits behind the point: 65536 is 1.
using Fixed = std::int32_t;
inline constexpr Fixed fixed_one = 65536;

/// A command that is not carried out. The text goes to the client in the reply `error`.
struct Refusal : std::runtime_error {
  explicit Refusal (const std::string &text, std::string_view kind = "general")
      : std::runtime_error (text), code (kind) {}
  std::string_view code; ///< a word of `ErrorCode`
};

/// Reads decimal digits only: no sign, no blanks, no padding.
std::optional<std::uint64_t> read_unsigned (std::string_view text, std::uint64_t most);

/// Reads a 32-bit number, `-` in front when negative.
std::optional<std::int32_t> read_signed (std::string_view text);

/// Reads a decimal fraction with an `X` at its end: `1X`, `-0.5X`.
std::optional<Fixed> read_fixed (std::string_view text);

/// Writes the value with at most fifteen places and an `X` at the end.
std::string fixed_text (Fixed value);

/// The tags of a command or a record that has passed `check_parts`. Asking for a tag that is not there and
/// must be is a fault of this program.
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

  /// The numbers of the words in a list of words, each once, in ascending order.
  std::set<int> words (std::string_view list_tag) const;

private:
  const Element *element_;
};

/// Tests a command or a record against its grammar: every tag known, in its place, once, and well filled.
/// @throws Refusal with a sentence that says what is wrong and where.
void check_parts (const Element &element, const std::vector<struct Part> &parts);

} // namespace sim
