/**
 * @file orva/text.hpp
 * Conversions between the UTF-8 of callers and the UTF-16 of the C functions. Both refuse invalid text.
 */
#ifndef ORVA_TEXT_HPP
#define ORVA_TEXT_HPP

#include "../orva.h"
#include "result.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace orva::detail {

/** Decodes the first character. @param bytes not empty @return its length in bytes, 0 when it is not valid */
inline std::size_t decode_utf8 (std::string_view bytes, char32_t &character) {
  const auto byte = [&] (std::size_t i) { return static_cast<unsigned char> (bytes[i]); };
  const unsigned first = byte (0);
  const std::size_t length = first < 0x80 ? 1 : first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  if (length == 0 || first > 0xF4 || bytes.size () < length)
    return 0;
  character = length == 1 ? first : first & (0x7Fu >> length);
  for (std::size_t i = 1; i != length; ++i) {
    if ((byte (i) & 0xC0u) != 0x80)
      return 0;
    character = character << 6 | (byte (i) & 0x3Fu);
  }
  const char32_t least = length == 4 ? 0x10000 : length == 3 ? 0x800 : 0;
  const bool surrogate = character >= 0xD800 && character < 0xE000;
  return character < least || character > 0x10FFFF || surrogate ? 0 : length;
}

inline void append_utf8 (char32_t character, std::string &text) {
  const auto tail = [&] (unsigned shift) {
    text += static_cast<char> (0x80 | ((character >> shift) & 0x3F));
  };
  if (character < 0x80) {
    text += static_cast<char> (character);
    return;
  }
  if (character < 0x800) {
    text += static_cast<char> (0xC0 | character >> 6);
  } else if (character < 0x10000) {
    text += static_cast<char> (0xE0 | character >> 12);
    tail (6);
  } else {
    text += static_cast<char> (0xF0 | character >> 18);
    tail (12);
    tail (6);
  }
  tail (0);
}

/** A text in the form that the C functions take, or the reason why it is not valid. */
class Wide {
public:
  explicit Wide (std::string_view text) {
    units_.reserve (text.size ());
    while (!text.empty ()) {
      char32_t character = 0;
      const std::size_t length = decode_utf8 (text, character);
      if (length == 0 || character == 0) {
        bad_ = length == 0 ? "A text is not valid UTF-8" : "A text contains a NUL character";
        return;
      }
      append (character);
      text.remove_prefix (length);
    }
  }

  /** The reason why the text is not valid; null for a valid text. */
  const char *bad () const { return bad_; }
  const orva_char *c () const { return units_.c_str (); }

private:
  void append (char32_t character) {
    if (character < 0x10000) {
      units_ += static_cast<orva_char> (character);
      return;
    }
    units_ += static_cast<orva_char> (0xD800 + ((character - 0x10000) >> 10));
    units_ += static_cast<orva_char> (0xDC00 + ((character - 0x10000) & 0x3FF));
  }

  std::basic_string<orva_char> units_;
  const char *bad_ = nullptr;
};

/**
 * Converts a text of the library to UTF-8. Half a surrogate pair has no UTF-8. It is not replaced by another
 * character, because the new text could be the name of another clip.
 * @throws internal for half a surrogate pair
 */
inline std::string narrow (std::basic_string_view<orva_char> units) {
  std::string text;
  text.reserve (units.size ());
  for (std::size_t i = 0; i != units.size (); ++i) {
    char32_t character = static_cast<char32_t> (units[i]);
    if (character >= 0xD800 && character < 0xE000) {
      const char32_t second = i + 1 == units.size () ? 0 : static_cast<char32_t> (units[++i]);
      if (character >= 0xDC00 || second < 0xDC00 || second >= 0xE000)
        throw internal ("The library gave a text that is not valid UTF-16");
      character = 0x10000 + ((character - 0xD800) << 10) + (second - 0xDC00);
    }
    append_utf8 (character, text);
  }
  return text;
}

/** The length of the longest message that the library accepts. No text of a server is longer. */
inline constexpr std::uint32_t longest_text = 32768;

/**
 * Reads a whole text.
 * @param fill takes an OrvaStringBuffer and returns a result code. It is called again with a larger buffer
 *   when the text may have been cut.
 * @param capacity size of the first buffer
 */
template <class Fill>
std::uint32_t read_text (Fill fill, std::string &text, std::uint32_t capacity = 256) {
  for (;; capacity *= 4) {
    const std::unique_ptr<orva_char[]> units (new orva_char[capacity]);
    units[0] = 0;
    const std::uint32_t code = fill (OrvaStringBuffer{units.get (), capacity});
    if (code != ORVA_OK)
      return code;
    const std::basic_string_view<orva_char> all (units.get ());
    if (all.size () + 2 < capacity) {
      text = narrow (all);
      return code;
    }
  }
}

/** Reads a whole text with one call, for a function that removes the text that it returns. */
template <class Fill>
std::uint32_t take_text (Fill fill, std::string &text) {
  return read_text (fill, text, longest_text + 4);
}

/** The text of this thread's last failure. */
inline std::string last_error () {
  std::string text;
  read_text (
      [] (OrvaStringBuffer buffer) -> std::uint32_t {
        orva_get_last_error (buffer);
        return ORVA_OK;
      },
      text);
  return text;
}

} // namespace orva::detail

#endif
