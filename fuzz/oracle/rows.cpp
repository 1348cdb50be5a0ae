#include "oracle/oracle.h"

#include "base/astringformat.h"
#include "schema/codec.h"

namespace oracle {

using QUILL3::booleans_from_string;
using QUILL3::Codec;
using QUILL3::codec_of;
using QUILL3::enumeration;
using QUILL3::Field;
using QUILL3::Kind;
using QUILL3::Rows;
using QUILL3::Tag;
using QUILL3::tag_name;
using QUILL3::word_boolean;

namespace {
// Filled in one go, so that no value is searched for placeholders.
bool fail (AString *err, const char *format, const AString &first, const AString &second) {
  if (err != nullptr)
    *err = AStringFormat (format).arg (first).arg (second);
  return false;
}

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

template <class T>
bool read_number (const XMLTree &tree, bool (AString::*parse) (T *) const, T *value, AString *err) {
  const AString text = stripped_text (tree);
  return (text.*parse) (value) || invalid_value (tree, text, err);
}

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

template <class T>
T &as (void *value) {
  return *static_cast<T *> (value);
}
char *at (void *base, size_t offset) {
  return static_cast<char *> (base) + offset;
}

// -- Reading. `found` is the element of the tag.

// The error for a bad spelling names the enclosing element and the tag, not the spelling. People search logs
// for this wording.
bool read_enumerated (const XMLTree &enclosing, const XMLTree &found, const Codec &codec, uint32_t *to,
                      AString *err) {
  return enumeration (codec.enumeration).from_string (stripped_text (found), to) ||
         invalid_value (enclosing, tag_name (codec.reported), err);
}

bool read_vector (const XMLTree &found, const Codec &codec, void *to, AString *err) {
  uint32_t &count = as<uint32_t> (to);
  count = 0;
  const AString &element = tag_name (codec.element);
  if (found.count_children (element) > codec.capacity) {
    // The first number is never filled in: the text has always been this one.
    if (err != nullptr)
      *err = AStringFormat ("Tag %1 contains %u subelements. The maximum is %2.")
                 .arg (found.name ())
                 .arg (unsigned{codec.capacity});
    return false;
  }
  for (const XMLTree &child : found.children ()) {
    if (!child.name_is (element))
      continue;
    if (!KELVANE_ASSERT (count < codec.capacity) ||
        !oracle::get_value (child, codec.element, at (to, codec.first + size_t{count} * codec.stride), err))
      return false;
    ++count;
  }
  return true;
}

bool read_list (const XMLTree &found, const Codec &codec, void *to, AString *err) {
  codec.access->clear (to);
  const AString &element = tag_name (codec.element);
  for (const XMLTree &child : found.children ()) {
    if (!child.name_is (element) || oracle::get_value (child, codec.element, codec.access->append (to), err))
      continue;
    codec.access->drop_last (to);
    return false;
  }
  return true;
}

bool read_found (const XMLTree &enclosing, const XMLTree &found, const Codec &codec, void *to, AString *err) {
  switch (codec.kind) {
  case Kind::string:
    return read_string (found, &as<AString> (to), err);
  case Kind::u8:
    return read_u8 (found, &as<uint8_t> (to), err);
  case Kind::u16:
    return read_u16 (found, &as<uint16_t> (to), err);
  case Kind::u32:
    return read_u32 (found, &as<uint32_t> (to), err);
  case Kind::u64:
    return read_u64 (found, &as<uint64_t> (to), err);
  case Kind::i32:
    return read_i32 (found, &as<int32_t> (to), err);
  case Kind::fixed:
    return read_fixed (found, &as<Kelvane::fixed> (to), err);
  case Kind::boolean:
    return read_bool (found, &as<bool> (to), err);
  case Kind::enumerated:
    return read_enumerated (enclosing, found, codec, &as<uint32_t> (to), err);
  case Kind::record:
    return oracle::read_record (found, codec.rows, to, err);
  case Kind::vector:
    return read_vector (found, codec, to, err);
  case Kind::list:
    return read_list (found, codec, to, err);
  case Kind::flag:
    break;
  }
  return true;
}

} // namespace

bool get_value (const XMLTree &tree, Tag tag, void *value, AString *err) {
  const AString &name = tag_name (tag);
  const Codec &codec = codec_of (tag);
  if (codec.kind == Kind::flag) {
    as<bool> (value) = tree.has_child (name);
    return true;
  }
  const XMLTree *const found = find_one (tree, name, err);
  return found != nullptr && read_found (tree, *found, codec, value, err);
}

bool read_record (const XMLTree &tree, const Rows &rows, void *to, AString *err) {
  for (const Field &field : rows)
    if (!field.optional && !oracle::get_value (tree, field.tag, at (to, field.offset), err))
      return false;
  for (const Field &field : rows)
    if (field.optional)
      as<bool> (at (to, field.offset)) = tree.has_child (tag_name (field.tag));
  for (const Field &field : rows) {
    void *const member = at (to, field.offset);
    if (field.optional && as<bool> (member) &&
        !oracle::get_value (tree, field.tag, at (member, field.value_offset), err))
      return false;
  }
  return true;
}

bool read_body (const XMLTree &tree, const Rows &rows, void *to, AString *err) {
  for (const Field &field : rows) {
    void *const member = at (to, field.offset);
    if (field.optional)
      as<bool> (member) = oracle::get_value (tree, field.tag, at (member, field.value_offset), nullptr);
    else if (!oracle::get_value (tree, field.tag, member, err))
      return false;
  }
  return true;
}

} // namespace oracle
