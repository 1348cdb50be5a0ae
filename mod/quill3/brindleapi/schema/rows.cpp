#include "schema/rows.h"

#include "base/astringformat.h"
#include "schema/codec.h"
#include "schema/quill3_tree.h"

namespace QUILL3 {

namespace {

template <class T>
T &as (void *value) {
  return *static_cast<T *> (value);
}
template <class T>
const T &as (const void *value) {
  return *static_cast<const T *> (value);
}
const char *at (const void *base, size_t offset) {
  return static_cast<const char *> (base) + offset;
}
char *at (void *base, size_t offset) {
  return static_cast<char *> (base) + offset;
}

// -- Writing

XMLTree::List write_vector (const Codec &codec, const void *from) {
  XMLTree::List children;
  const uint32_t count = as<uint32_t> (from);
  for (uint32_t i = 0; i < count; ++i) {
    if (!KELVANE_ASSERT (i < codec.capacity))
      break;
    children.push_back (make_value (codec.element, at (from, codec.first + size_t{i} * codec.stride)));
  }
  return children;
}

struct ListWriter {
  Tag element;
  XMLTree::List children;

  static void take (void *context, const void *element) {
    ListWriter &writer = as<ListWriter> (context);
    writer.children.push_back (make_value (writer.element, element));
  }
};

XMLTree::List write_list (const Codec &codec, const void *from) {
  ListWriter writer{codec.element, {}};
  codec.access->each (from, ListWriter::take, &writer);
  return std::move (writer.children);
}

bool is_written (const Field &field, const void *member) {
  if (field.optional && !as<bool> (member))
    return false;
  return codec_of (field.tag).kind != Kind::flag || as<bool> (at (member, field.value_offset));
}

// -- Reading. `found` is the element of the tag.

// The error names the enclosing element and the tag, not the bad spelling. C89: doc/compatibility.md
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
    // C90: doc/compatibility.md
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
        !get_value (child, codec.element, at (to, codec.first + size_t{count} * codec.stride), err))
      return false;
    ++count;
  }
  return true;
}

bool read_list (const XMLTree &found, const Codec &codec, void *to, AString *err) {
  codec.access->clear (to);
  const AString &element = tag_name (codec.element);
  for (const XMLTree &child : found.children ()) {
    if (!child.name_is (element) || get_value (child, codec.element, codec.access->append (to), err))
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
    return read_record (found, codec.rows, to, err);
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

XMLTree make_value (Tag tag, const void *value) {
  const AString &name = tag_name (tag);
  const Codec &codec = codec_of (tag);
  switch (codec.kind) {
  case Kind::string:
    return write_string (name, as<AString> (value));
  case Kind::u8:
    return write_u8 (name, as<uint8_t> (value));
  case Kind::u16:
    return write_u16 (name, as<uint16_t> (value));
  case Kind::u32:
    return write_u32 (name, as<uint32_t> (value));
  case Kind::u64:
    return write_u64 (name, as<uint64_t> (value));
  case Kind::i32:
    return write_i32 (name, as<int32_t> (value));
  case Kind::fixed:
    return write_fixed (name, as<Kelvane::fixed> (value));
  case Kind::boolean:
    return write_bool (name, as<bool> (value));
  case Kind::enumerated:
    // C92: doc/compatibility.md
    return XMLTree (name, enumeration (codec.enumeration).text_of (as<uint32_t> (value)));
  case Kind::record:
    return XMLTree (name, write_fields (codec.rows, value));
  case Kind::vector:
    return XMLTree (name, write_vector (codec, value));
  case Kind::list:
    return XMLTree (name, write_list (codec, value));
  case Kind::flag:
    break;
  }
  return XMLTree (name);
}

bool get_value (const XMLTree &tree, Tag tag, void *value, AString *err) {
  const AString &name = tag_name (tag);
  const Codec &codec = codec_of (tag);
  // C93: doc/compatibility.md
  if (codec.kind == Kind::flag) {
    as<bool> (value) = tree.has_child (name);
    return true;
  }
  const XMLTree *const found = find_one (tree, name, err);
  return found != nullptr && read_found (tree, *found, codec, value, err);
}

XMLTree::List write_fields (const Rows &rows, const void *from) {
  XMLTree::List children;
  for (const Field &field : rows) {
    const void *const member = at (from, field.offset);
    if (is_written (field, member))
      children.push_back (make_value (field.tag, at (member, field.value_offset)));
  }
  return children;
}

bool read_record (const XMLTree &tree, const Rows &rows, void *to, AString *err) {
  for (const Field &field : rows)
    if (!field.optional && !get_value (tree, field.tag, at (to, field.offset), err))
      return false;
  for (const Field &field : rows)
    if (field.optional)
      as<bool> (at (to, field.offset)) = tree.has_child (tag_name (field.tag));
  for (const Field &field : rows) {
    void *const member = at (to, field.offset);
    if (field.optional && as<bool> (member) &&
        !get_value (tree, field.tag, at (member, field.value_offset), err))
      return false;
  }
  return true;
}

// C96: doc/compatibility.md
bool read_body (const XMLTree &tree, const Rows &rows, void *to, AString *err) {
  for (const Field &field : rows) {
    void *const member = at (to, field.offset);
    if (field.optional)
      as<bool> (member) = get_value (tree, field.tag, at (member, field.value_offset), nullptr);
    else if (!get_value (tree, field.tag, member, err))
      return false;
  }
  return true;
}

} // namespace QUILL3
