#pragma once

#include <string_view>
#include <vector>

namespace sim {

/// How the value of a tag is written.
enum class Form { text, u8, u16, u32, u64, i32, fixed, boolean, flag, word, record, list };

/// One tag of a record or a command.
struct Part {
  std::string_view name;
  bool optional = false;
};

/// The values that a tag may have.
struct Tag {
  std::string_view name;
  Form form = Form::text;
  std::vector<std::string_view> words; ///< form word: the spellings, in the order of their numbers
  std::vector<Part> parts;             ///< form record: its tags in order; form list: the one element tag
  std::size_t capacity = 0;            ///< form list: the most elements; 0: any number
};

/// A command: its name and its argument tags in order.
struct Grammar {
  std::string_view name;
  std::vector<Part> parts;
};

/// The tag of that name, or null.
const Tag *find_tag (std::string_view name);

/// The command of that name, or null.
const Grammar *find_command (std::string_view name);

/// All commands, in no particular order.
std::vector<const Grammar *> all_commands ();

/// The number of a word of a tag, or -1 when the tag has no such word.
int word_number (std::string_view tag, std::string_view word);

/// The word of that number, or empty when the tag has no such word.
std::string_view word_at (std::string_view tag, int number);

} // namespace sim
