#include "glob.h"

namespace orvactl {

namespace {

/// The bytes of the first character of a text that is not empty.
std::string_view first_character (std::string_view text) {
  std::size_t length = 1;
  while (length < text.size () && (static_cast<unsigned char> (text[length]) & 0xC0u) == 0x80)
    ++length;
  return text.substr (0, length);
}

std::string_view take_character (std::string_view &text) {
  const std::string_view first = first_character (text);
  text.remove_prefix (first.size ());
  return first;
}

/// Compares a character with what is between brackets, which `set` begins with. UTF-8 sorts as its characters
/// do.
bool fits_set (std::string_view set, std::string_view character) {
  const bool inverse = set.starts_with ('!') || set.starts_with ('^');
  if (inverse)
    set.remove_prefix (1);
  bool found = false;
  while (!set.empty ()) {
    const std::string_view low = take_character (set);
    std::string_view high = low;
    if (set.size () >= 2 && set.front () == '-') {
      set.remove_prefix (1);
      high = take_character (set);
    }
    found = found || (low <= character && character <= high);
  }
  return found != inverse;
}

/// Takes one element of the pattern. @return whether the character fits it
bool take_fitting (std::string_view &pattern, std::string_view character) {
  const std::size_t end =
      pattern.find (']', pattern.starts_with ("[!") || pattern.starts_with ("[^") ? 3 : 2);
  if (pattern.front () == '[' && end != std::string_view::npos) {
    const std::string_view set = pattern.substr (1, end - 1);
    pattern.remove_prefix (end + 1);
    return fits_set (set, character);
  }
  const std::string_view wanted = take_character (pattern);
  return wanted == "?" || wanted == character;
}

} // namespace

bool fits (std::string_view pattern, std::string_view name) {
  // After a mismatch the last "*" takes one character more.
  std::string_view after_star, name_there;
  bool star = false;
  while (!name.empty ()) {
    if (pattern.starts_with ('*')) {
      star = true;
      pattern.remove_prefix (1);
      after_star = pattern;
      name_there = name;
      continue;
    }
    std::string_view rest = name;
    const std::string_view character = take_character (rest);
    if (!pattern.empty () && take_fitting (pattern, character)) {
      name = rest;
      continue;
    }
    if (!star)
      return false;
    take_character (name_there);
    name = name_there;
    pattern = after_star;
  }
  return pattern.find_first_not_of ('*') == std::string_view::npos;
}

} // namespace orvactl
