#include "message_limits.h"

#include "wire.h"

#include <fmt/format.h>

namespace sim {

void check_size (std::string_view what, std::size_t size, std::size_t most) {
  if (size > most)
    throw Refusal (fmt::format ("{} would be longer than a message may be: {} bytes, {} are possible", what,
                                size, most));
}

void check_name_length (const std::string &name) {
  check_size ("The name", escaped (name).size (), longest_name);
}

std::string shortened (std::string_view text, std::size_t most) {
  if (text.size () <= most)
    return std::string (text);
  const auto is_inside = [text] (std::size_t at) {
    return at < text.size () && (static_cast<unsigned char> (text[at]) & 0xC0) == 0x80;
  };
  std::size_t first = most * 2 / 3, last = text.size () - most / 3;
  while (is_inside (first))
    --first;
  while (is_inside (last))
    ++last;
  return fmt::format ("{}...{}", text.substr (0, first), text.substr (last));
}

} // namespace sim
