#include "schema/quill3_tree.h"

#include "base/astringformat.h"
#include "schema/enumerations.h"
#include "schema/tags.h"

namespace QUILL3 {

namespace {

// Filled in one go, so that no value is searched for placeholders.
bool fail (AString *err, const char *format, const AString &first, const AString &second) {
  if (err != nullptr)
    *err = AStringFormat (format).arg (first).arg (second);
  return false;
}

template <class T>
bool read_number (const XMLTree &tree, bool (AString::*parse) (T *) const, T *value, AString *err) {
  const AString text = stripped_text (tree);
  return (text.*parse) (value) || invalid_value (tree, text, err);
}

} // namespace

// C95: doc/compatibility.md
const XMLTree *find_one (const XMLTree &tree, const AString &name, AString *err) {
  if (tree.name_is (name))
    return &tree;
  const uint32_t count = tree.count_children (name);
  if (count == 1)
    return &tree.child (name);
  fail (err, count == 0 ? "Tag '%1' not found within '%2'" : "More than one tag '%1' found within '%2'", name,
        tree.name ());
  return nullptr;
}

bool find_one (const XMLTree &tree, const AString &name, XMLTree *out, AString *err) {
  const XMLTree *const found = find_one (tree, name, err);
  if (found != nullptr && out != nullptr)
    *out = *found;
  return found != nullptr;
}

bool invalid_value (const XMLTree &tree, const AString &value, AString *err) {
  return fail (err, "Tag %1 contains invalid value '%2'", tree.name (), value);
}

bool invalid_typed_value (const XMLTree &tree, const AString &type_name, const AString &value, AString *err) {
  if (err != nullptr)
    *err = AStringFormat ("Tag %1 contains invalid %3 value '%2'")
               .arg (tree.name ())
               .arg (value)
               .arg (type_name);
  return false;
}

AString stripped_text (const XMLTree &tree) {
  return tree.text ().trim ();
}

// C97: doc/compatibility.md
bool read_string (const XMLTree &tree, AString *value, AString *) {
  *value = tree.text ();
  return true;
}
bool read_u8 (const XMLTree &tree, uint8_t *value, AString *err) {
  return read_number (tree, &AString::to_uint8, value, err);
}
bool read_u16 (const XMLTree &tree, uint16_t *value, AString *err) {
  return read_number (tree, &AString::to_uint16, value, err);
}
bool read_u32 (const XMLTree &tree, uint32_t *value, AString *err) {
  return read_number (tree, &AString::to_uint32, value, err);
}
bool read_u64 (const XMLTree &tree, uint64_t *value, AString *err) {
  return read_number (tree, &AString::to_uint64, value, err);
}
bool read_i32 (const XMLTree &tree, int32_t *value, AString *err) {
  return read_number (tree, &AString::to_int32, value, err);
}
bool read_fixed (const XMLTree &tree, Kelvane::fixed *value, AString *err) {
  return read_number (tree, &AString::to_fixed_received, value, err);
}
// C91: doc/compatibility.md
bool read_bool (const XMLTree &tree, bool *value, AString *err) {
  const AString text = stripped_text (tree);
  uint32_t word = 0;
  int32_t number = 0;
  if (booleans_from_string (text, &word))
    *value = word != 0;
  else if (text.to_int32 (&number))
    *value = number != 0;
  else
    return invalid_typed_value (tree, word_boolean (), text, err);
  return true;
}

XMLTree write_string (const AString &name, const AString &value) {
  return XMLTree (name, value);
}
XMLTree write_u8 (const AString &name, uint8_t value) {
  return write_u32 (name, value);
}
XMLTree write_u16 (const AString &name, uint16_t value) {
  return write_u32 (name, value);
}
XMLTree write_u32 (const AString &name, uint32_t value) {
  return XMLTree (name, value);
}
XMLTree write_u64 (const AString &name, uint64_t value) {
  return XMLTree (name, value);
}
XMLTree write_i32 (const AString &name, int32_t value) {
  return XMLTree (name, int64_t{value});
}
XMLTree write_fixed (const AString &name, Kelvane::fixed value) {
  return XMLTree (name, AString::from_fixed (value, 15));
}
XMLTree write_bool (const AString &name, bool value) {
  return XMLTree (name, value ? word_true () : word_false ());
}

} // namespace QUILL3
