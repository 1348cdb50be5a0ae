#include "schema/rows.h"

#include "base/astringformat.h"
#include "schema/codec.h"
#include "schema/quill3_tree.h"

#include <algorithm>

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

// -- Reading

/// The nodes of a tree that somebody else has made.
class TreeNodes : public XMLNodes {
public:
  explicit TreeNodes (const XMLTree &tree) : XMLNodes (&tag_table ()) { read_tree (tree); }
};

bool is_tag (const XMLElement &element, Tag tag) {
  return element.name_number () == static_cast<uint32_t> (tag);
}

/// How often a tag stands in an element, and where first.
struct Occurrence {
  uint32_t count;
  uint32_t first; ///< a place

  void note (const XMLElement &element) {
    if (count++ == 0)
      first = element.place ();
  }
};

/// Where the members of a struct stand among the children of an element, found in one pass.
class Places {
public:
  Places (const XMLElement &element, const Rows &rows) : rows_ (rows) {
    std::fill_n (places_, rows.count, Occurrence{0, 0});
    const Field *next = rows.begin (); // children stand in the order of the rows, as a rule
    for (const XMLElement child : element.children ())
      next = note (child, next);
  }

  const Occurrence &of (const Field &field) const { return places_[&field - rows_.begin ()]; }

private:
  const Field *note (const XMLElement &child, const Field *next) {
    for (uint16_t i = 0; i != rows_.count; ++i, ++next) {
      if (next == rows_.end ())
        next = rows_.begin ();
      if (!is_tag (child, next->tag))
        continue;
      places_[next - rows_.begin ()].note (child);
      return next + 1;
    }
    return next;
  }

  const Rows &rows_;
  Occurrence places_[most_rows];
};

// The error names the enclosing element and the tag, not the bad spelling. C89: doc/compatibility.md
bool read_enumerated (const XMLElement &enclosing, const XMLElement &found, const Codec &codec, uint32_t *to,
                      AString *err) {
  return read_spelling (found, codec.enumeration, to) ||
         invalid_value (enclosing.name (), tag_name (codec.reported), err);
}

bool read_found (const XMLElement &enclosing, const XMLElement &found, const Codec &codec, void *to,
                 AString *err);

bool read_vector (const XMLElement &found, const Codec &codec, void *to, AString *err) {
  const Codec &of_element = codec_of (codec.element);
  uint32_t &count = as<uint32_t> (to);
  count = 0;
  uint32_t there = 0;
  for (const XMLElement child : found.children ())
    there += is_tag (child, codec.element);
  if (there > codec.capacity) {
    // C90: doc/compatibility.md
    if (err != nullptr)
      *err = AStringFormat ("Tag %1 contains %u subelements. The maximum is %2.")
                 .arg (found.name ())
                 .arg (unsigned{codec.capacity});
    return false;
  }
  for (const XMLElement child : found.children ()) {
    if (!is_tag (child, codec.element))
      continue;
    if (!read_found (child, child, of_element, at (to, codec.first + size_t{count} * codec.stride), err))
      return false;
    ++count;
  }
  return true;
}

bool read_list (const XMLElement &found, const Codec &codec, void *to, AString *err) {
  const Codec &of_element = codec_of (codec.element);
  codec.access->clear (to);
  for (const XMLElement child : found.children ()) {
    if (!is_tag (child, codec.element) ||
        read_found (child, child, of_element, codec.access->append (to), err))
      continue;
    codec.access->drop_last (to);
    return false;
  }
  return true;
}

bool read_found (const XMLElement &enclosing, const XMLElement &found, const Codec &codec, void *to,
                 AString *err) {
  switch (codec.kind) {
  case Kind::string:
    as<AString> (to) = found.text (); // C97: doc/compatibility.md
    return true;
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

// An element of the tag's name is the tag itself. C93, C95: doc/compatibility.md
bool read_member (const XMLElement &element, Tag tag, const Occurrence &place, void *to, AString *err) {
  const Codec &codec = codec_of (tag);
  if (codec.kind == Kind::flag) {
    as<bool> (to) = place.count != 0;
    return true;
  }
  if (is_tag (element, tag))
    return read_found (element, element, codec, to, err);
  if (place.count != 1)
    return not_one (place.count, tag_name (tag), element.name (), err);
  return read_found (element, element.at (place.first), codec, to, err);
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

bool get_value (const XMLElement &element, Tag tag, void *value, AString *err) {
  Occurrence place{0, 0};
  for (const XMLElement child : element.children ())
    if (is_tag (child, tag))
      place.note (child);
  return read_member (element, tag, place, value, err);
}

bool get_value (const XMLTree &tree, Tag tag, void *value, AString *err) {
  return get_value (TreeNodes (tree).root (), tag, value, err);
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

bool read_record (const XMLElement &element, const Rows &rows, void *to, AString *err) {
  const Places places (element, rows);
  for (const Field &field : rows)
    if (!field.optional && !read_member (element, field.tag, places.of (field), at (to, field.offset), err))
      return false;
  for (const Field &field : rows) {
    void *const member = at (to, field.offset);
    if (!field.optional)
      continue;
    as<bool> (member) = places.of (field).count != 0;
    if (as<bool> (member) &&
        !read_member (element, field.tag, places.of (field), at (member, field.value_offset), err))
      return false;
  }
  return true;
}

// C96: doc/compatibility.md
bool read_body (const XMLElement &element, const Rows &rows, void *to, AString *err) {
  const Places places (element, rows);
  for (const Field &field : rows) {
    void *const member = at (to, field.offset);
    const Occurrence &place = places.of (field);
    if (field.optional)
      as<bool> (member) = read_member (element, field.tag, place, at (member, field.value_offset), nullptr);
    else if (!read_member (element, field.tag, place, member, err))
      return false;
  }
  return true;
}

bool read_record (const XMLTree &tree, const Rows &rows, void *to, AString *err) {
  return read_record (TreeNodes (tree).root (), rows, to, err);
}
bool read_body (const XMLTree &tree, const Rows &rows, void *to, AString *err) {
  return read_body (TreeNodes (tree).root (), rows, to, err);
}

} // namespace QUILL3
