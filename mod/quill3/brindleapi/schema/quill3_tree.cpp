#include "schema/quill3_tree.h"

#include "base/astringformat.h"
#include "schema/enumerations.h"
#include "schema/tags.h"

#include <algorithm>
#include <utility>

namespace QUILL3 {

namespace {

// Filled in one go, so that no value is searched for placeholders.
bool fail (AString *err, const char *format, const AString &first, const AString &second) {
  if (err != nullptr)
    *err = AStringFormat (format).arg (first).arg (second);
  return false;
}

// What is nothing but a few digits, as almost all numbers are, needs no text made of it.
bool plain_digits (std::string_view text, uint64_t *value) {
  constexpr size_t most = 18; // fit into 64 bits whatever they are
  if (text.empty () || text.size () > most)
    return false;
  uint64_t number = 0;
  for (const char c : text) {
    if (c < '0' || c > '9')
      return false;
    number = number * 10 + static_cast<uint64_t> (c - '0');
  }
  *value = number;
  return true;
}

// The same for a decimal with an "X" behind it, whose whole part fits with either sign.
bool plain_fixed (std::string_view text, Kelvane::fixed *value) {
  constexpr unsigned fraction_bits = 16, places = 60; // binary places while the fraction is read
  if (!text.ends_with ('X'))
    return false;
  text.remove_suffix (1);
  const bool negative = text.starts_with ('-');
  text.remove_prefix (negative ? 1 : 0);
  const size_t dot = std::min (text.find ('.'), text.size ());
  uint64_t whole = 0, fraction = 0;
  if (!plain_digits (text.substr (0, dot), &whole) || whole > INT16_MAX)
    return false;
  for (size_t i = text.size (); i > dot + 1; --i) { // from the last digit to the first
    const char c = text[i - 1];
    if (c < '0' || c > '9')
      return false;
    fraction = (fraction + (static_cast<uint64_t> (c - '0') << places)) / 10;
  }
  const auto raw = static_cast<int32_t> (whole << fraction_bits | fraction >> (places - fraction_bits));
  value->raw = negative ? -raw : raw;
  return true;
}

template <class T>
bool read_number (const XMLElement &element, bool (AString::*parse) (T *) const, T *value, AString *err) {
  std::string_view plain;
  uint64_t number = 0;
  if (element.ascii (&plain) && plain_digits (plain, &number) && std::in_range<T> (number)) {
    *value = static_cast<T> (number);
    return true;
  }
  const AString text = element.text ().trim ();
  return (text.*parse) (value) || invalid_value (element.name (), text, err);
}

} // namespace

bool not_one (uint32_t count, const AString &name, const AString &element, AString *err) {
  return fail (err,
               count == 0 ? "Tag '%1' not found within '%2'" : "More than one tag '%1' found within '%2'",
               name, element);
}

// C95: doc/compatibility.md
bool find_one (const XMLTree &tree, const AString &name, XMLTree *out, AString *err) {
  const bool is_itself = tree.name_is (name);
  const uint32_t count = is_itself ? 1 : tree.count_children (name);
  if (count != 1)
    return not_one (count, name, tree.name (), err);
  if (out != nullptr)
    *out = is_itself ? tree : tree.child (name);
  return true;
}

bool invalid_value (const AString &element, const AString &value, AString *err) {
  return fail (err, "Tag %1 contains invalid value '%2'", element, value);
}

bool invalid_typed_value (const AString &element, const AString &type_name, const AString &value,
                          AString *err) {
  if (err != nullptr)
    *err = AStringFormat ("Tag %1 contains invalid %3 value '%2'").arg (element).arg (value).arg (type_name);
  return false;
}

AString stripped_text (const XMLTree &tree) {
  return tree.text ().trim ();
}

bool read_u8 (const XMLElement &element, uint8_t *value, AString *err) {
  return read_number (element, &AString::to_uint8, value, err);
}
bool read_u16 (const XMLElement &element, uint16_t *value, AString *err) {
  return read_number (element, &AString::to_uint16, value, err);
}
bool read_u32 (const XMLElement &element, uint32_t *value, AString *err) {
  return read_number (element, &AString::to_uint32, value, err);
}
bool read_u64 (const XMLElement &element, uint64_t *value, AString *err) {
  return read_number (element, &AString::to_uint64, value, err);
}
bool read_i32 (const XMLElement &element, int32_t *value, AString *err) {
  return read_number (element, &AString::to_int32, value, err);
}

bool read_fixed (const XMLElement &element, Kelvane::fixed *value, AString *err) {
  std::string_view plain;
  if (element.ascii (&plain) && plain_fixed (plain, value))
    return true;
  const AString text = element.text ().trim ();
  return text.to_fixed_received (value) || invalid_value (element.name (), text, err);
}

// C91: doc/compatibility.md
bool read_bool (const XMLElement &element, bool *value, AString *err) {
  uint32_t word = 0;
  int32_t number = 0;
  if (read_spelling (element, Enumeration::booleans, &word))
    *value = word != 0;
  else if (read_i32 (element, &number, nullptr))
    *value = number != 0;
  else
    return invalid_typed_value (element.name (), word_boolean (), element.text ().trim (), err);
  return true;
}

bool read_spelling (const XMLElement &element, Enumeration which, uint32_t *value) {
  std::string_view plain;
  if (element.ascii (&plain) && number_of_spelling (which, plain, value))
    return true;
  return enumeration (which).from_string (element.text ().trim (), value);
}

} // namespace QUILL3
