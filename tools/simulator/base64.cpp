#include "base64.h"

#include <cstdint>

namespace sim {

namespace {

constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

} // namespace

std::string base64_of (std::string_view bytes) {
  std::string text;
  for (std::size_t at = 0; at < bytes.size (); at += 3) {
    const std::string_view group = bytes.substr (at, 3);
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < 3; ++i)
      bits = bits << 8 | (i < group.size () ? static_cast<unsigned char> (group[i]) : 0u);
    for (std::size_t i = 0; i < 4; ++i)
      text += i <= group.size () ? digits[bits >> (18 - 6 * i) & 63] : '=';
  }
  return text;
}

std::optional<std::string> bytes_of_base64 (std::string_view text) {
  if (text.size () % 4 != 0)
    return std::nullopt;
  std::size_t padding = 0;
  while (padding < 2 && text.ends_with ('=')) {
    text.remove_suffix (1);
    ++padding;
  }
  std::string bytes;
  std::uint32_t bits = 0;
  int held = 0;
  for (const char c : text) {
    const std::size_t digit = digits.find (c);
    if (digit == digits.npos)
      return std::nullopt;
    bits = (bits << 6 | static_cast<std::uint32_t> (digit)) & 0xFFFF;
    if (held += 6; held >= 8)
      bytes += static_cast<char> (bits >> (held -= 8) & 0xFF);
  }
  return bytes;
}

} // namespace sim
