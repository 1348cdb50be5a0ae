#include "values.h"

#include "vocabulary.h"

#include <charconv>
#include <fmt/format.h>
#include <limits>

namespace sim {

namespace {

bool all_digits (std::string_view text) {
  return text.find_first_not_of ("0123456789") == text.npos;
}

// The first 16 binary places of a decimal fraction. The rest is cut off.
std::uint32_t binary_fraction (std::string_view digits) {
  std::uint64_t value = 0, whole = 1;
  for (const char digit : digits.substr (0, 18)) {
    value = value * 10 + static_cast<std::uint64_t> (digit - '0');
    whole *= 10;
  }
  std::uint32_t bits = 0;
  for (int place = 0; place < 16; ++place) {
    value *= 2;
    bits = bits * 2 + (value >= whole ? 1 : 0);
    value -= value >= whole ? whole : 0;
  }
  return bits;
}

std::uint64_t most_of (Form form) {
  switch (form) {
  case Form::u8:
    return std::numeric_limits<std::uint8_t>::max ();
  case Form::u16:
    return std::numeric_limits<std::uint16_t>::max ();
  case Form::u32:
    return std::numeric_limits<std::uint32_t>::max ();
  default:
    return std::numeric_limits<std::uint64_t>::max ();
  }
}

bool is_good_text (const Tag &tag, const std::string &text) {
  switch (tag.form) {
  case Form::u8:
  case Form::u16:
  case Form::u32:
  case Form::u64:
    return read_unsigned (text, most_of (tag.form)).has_value ();
  case Form::i32:
    return read_signed (text).has_value ();
  case Form::fixed:
    return read_fixed (text).has_value ();
  case Form::boolean:
    return text == "true" || text == "false";
  case Form::flag:
    return text.empty ();
  case Form::word:
    return word_number (tag.name, text) >= 0;
  default:
    return true;
  }
}

void check_list (const Element &element, const Tag &tag) {
  if (tag.capacity != 0 && element.children.size () > tag.capacity)
    throw Refusal (fmt::format ("Tag {} holds {} elements, more than {}", tag.name, element.children.size (),
                                tag.capacity));
  const std::vector<Part> one = {{tag.parts.front ().name, false}};
  for (const Element &child : element.children) {
    if (child.name != tag.parts.front ().name)
      throw Refusal (fmt::format ("Tag {} is not allowed in {}", child.name, tag.name));
    Element alone;
    alone.name = tag.name;
    alone.children = {child};
    check_parts (alone, one);
  }
}

void check_value (const Element &element, std::string_view where) {
  const Tag &tag = *find_tag (element.name);
  const bool compound = tag.form == Form::record || tag.form == Form::list;
  if (!compound && !element.children.empty ())
    throw Refusal (fmt::format ("Tag {} in {} holds elements instead of a value", element.name, where));
  if (compound && !element.text.empty ())
    throw Refusal (fmt::format ("Tag {} in {} holds text instead of elements", element.name, where));
  if (tag.form == Form::record)
    check_parts (element, tag.parts);
  else if (tag.form == Form::list)
    check_list (element, tag);
  else if (!is_good_text (tag, element.text))
    throw Refusal (fmt::format ("Tag {} in {} holds the bad value '{}'", element.name, where, element.text));
}

void check_known (const Element &element, const std::vector<Part> &parts) {
  for (const Element &child : element.children) {
    bool known = false;
    for (const Part &part : parts)
      known = known || part.name == child.name;
    if (!known)
      throw Refusal (fmt::format ("Tag {} is not allowed in {}", child.name, element.name));
  }
}

} // namespace

std::optional<std::uint64_t> read_unsigned (std::string_view text, std::uint64_t most) {
  if (text.empty () || !all_digits (text) || (text.size () > 1 && text.front () == '0'))
    return std::nullopt;
  std::uint64_t value = 0;
  const auto [end, error] = std::from_chars (text.data (), text.data () + text.size (), value);
  if (error != std::errc () || end != text.data () + text.size () || value > most)
    return std::nullopt;
  return value;
}

std::optional<std::int32_t> read_signed (std::string_view text) {
  const bool negative = text.starts_with ('-');
  const auto size = read_unsigned (text.substr (negative ? 1 : 0), negative ? 2147483648u : 2147483647u);
  if (!size)
    return std::nullopt;
  return static_cast<std::int32_t> (negative ? -static_cast<std::int64_t> (*size)
                                             : static_cast<std::int64_t> (*size));
}

std::optional<Fixed> read_fixed (std::string_view text) {
  if (!text.ends_with ('X'))
    return std::nullopt;
  text.remove_suffix (1);
  const bool negative = text.starts_with ('-');
  text.remove_prefix (negative ? 1 : 0);
  const std::size_t point = std::min (text.find ('.'), text.size ());
  const std::string_view digits = text.substr (std::min (point + 1, text.size ()));
  const auto whole = read_unsigned (text.substr (0, point), 32768);
  if (!whole || !all_digits (digits) || (point != text.size () && digits.empty ()))
    return std::nullopt;
  const std::int64_t bits = static_cast<std::int64_t> (*whole * 65536 + binary_fraction (digits));
  if (bits > (negative ? 2147483648 : 2147483647))
    return std::nullopt;
  return static_cast<Fixed> (negative ? -bits : bits);
}

std::string fixed_text (Fixed value) {
  const std::uint64_t bits =
      static_cast<std::uint64_t> (value < 0 ? -std::int64_t{value} : std::int64_t{value});
  std::string text = fmt::format ("{}{}", value < 0 ? "-" : "", bits >> 16);
  if (const std::uint64_t fraction = bits & 0xFFFF; fraction != 0) {
    // A fraction of 65536 times ten to the fifteenth, rounded: five to the fifteenth, halved.
    text += fmt::format (".{:015}", (fraction * 30517578125u + 1) / 2);
    while (text.back () == '0')
      text.pop_back ();
  }
  return text + 'X';
}

const std::string &Arguments::text (std::string_view tag) const {
  return element_->child (tag)->text;
}

std::uint32_t Arguments::number (std::string_view tag) const {
  return static_cast<std::uint32_t> (*read_unsigned (text (tag), 0xFFFFFFFFu));
}

std::int32_t Arguments::distance (std::string_view tag) const {
  return *read_signed (text (tag));
}

Fixed Arguments::fixed (std::string_view tag) const {
  return *read_fixed (text (tag));
}

int Arguments::word (std::string_view tag) const {
  return word_number (tag, text (tag));
}

std::optional<std::string> Arguments::maybe_text (std::string_view tag) const {
  return has (tag) ? std::optional (text (tag)) : std::nullopt;
}

std::optional<std::uint32_t> Arguments::maybe_number (std::string_view tag) const {
  return has (tag) ? std::optional (number (tag)) : std::nullopt;
}

std::optional<Fixed> Arguments::maybe_fixed (std::string_view tag) const {
  return has (tag) ? std::optional (fixed (tag)) : std::nullopt;
}

std::optional<int> Arguments::maybe_word (std::string_view tag) const {
  return has (tag) ? std::optional (word (tag)) : std::nullopt;
}

std::set<int> Arguments::words (std::string_view list_tag) const {
  std::set<int> numbers;
  for (const Element &element : list (list_tag))
    numbers.insert (word_number (element.name, element.text));
  return numbers;
}

void check_parts (const Element &element, const std::vector<Part> &parts) {
  if (!element.text.empty ())
    throw Refusal (fmt::format ("{} holds text instead of elements", element.name));
  check_known (element, parts);
  std::size_t next = 0;
  for (const Part &part : parts) {
    const Element *found = element.child (part.name);
    if (!found && !part.optional)
      throw Refusal (fmt::format ("Tag {} is missing in {}", part.name, element.name));
    if (!found)
      continue;
    if (found != &element.children[next])
      throw Refusal (fmt::format ("Tag {} in {} is in the wrong place", part.name, element.name));
    check_value (*found, element.name);
    ++next;
  }
  if (next != element.children.size ())
    throw Refusal (fmt::format ("Tag {} occurs twice in {}", element.children[next].name, element.name));
}

} // namespace sim
