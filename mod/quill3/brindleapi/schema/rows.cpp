#include "schema/rows.h"

#include "base/astringformat.h"
#include "schema/codec.h"
#include "schema/quill3_tree.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <limits>

namespace QUILL3 {

namespace {

constexpr unsigned most_fixed_places = 15;

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

template <class Number>
void write_number (XMLSink &sink, const void *value) {
  char digits[std::numeric_limits<Number>::digits10 + 2]; // one for the sign
  const auto end = std::to_chars (digits, std::end (digits), as<Number> (value)).ptr;
  sink.plain_text ({digits, static_cast<size_t> (end - digits)});
}

void write_vector (XMLSink &sink, const Codec &codec, const void *from) {
  const uint32_t count = as<uint32_t> (from);
  for (uint32_t i = 0; i < count; ++i) {
    if (!KELVANE_ASSERT (i < codec.capacity))
      break;
    write_value (sink, codec.element, at (from, codec.first + size_t{i} * codec.stride));
  }
}

struct ListWriter {
  XMLSink &sink;
  Tag element;

  static void take (void *context, const void *element) {
    const ListWriter &writer = as<ListWriter> (context);
    write_value (writer.sink, writer.element, element);
  }
};

void write_list (XMLSink &sink, const Codec &codec, const void *from) {
  ListWriter writer{sink, codec.element};
  codec.access->each (from, ListWriter::take, &writer);
}

bool is_written (const Field &field, const void *member) {
  if (field.optional && !as<bool> (member))
    return false;
  return codec_of (field.tag).kind != Kind::flag || as<bool> (at (member, field.value_offset));
}

void write_content (XMLSink &sink, const Codec &codec, const void *value) {
  switch (codec.kind) {
  case Kind::string:
    return sink.text (as<AString> (value));
  case Kind::u8:
    return write_number<uint8_t> (sink, value);
  case Kind::u16:
    return write_number<uint16_t> (sink, value);
  case Kind::u32:
    return write_number<uint32_t> (sink, value);
  case Kind::u64:
    return write_number<uint64_t> (sink, value);
  case Kind::i32:
    return write_number<int32_t> (sink, value);
  case Kind::fixed: // without zeros at the end: one is `1X`
    return sink.text (AString::from_fixed (as<Kelvane::fixed> (value), most_fixed_places));
  case Kind::boolean:
    return sink.text (as<bool> (value) ? word_true () : word_false ());
  case Kind::enumerated: // C92: doc/compatibility.md
    return sink.text (enumeration (codec.enumeration).text_of (as<uint32_t> (value)));
  case Kind::record:
    return write_fields (sink, codec.rows, value);
  case Kind::vector:
    return write_vector (sink, codec, value);
  case Kind::list:
    return write_list (sink, codec, value);
  case Kind::flag:
    break;
  }
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

void write_value (XMLSink &sink, Tag tag, const void *value) {
  const AString &name = tag_name (tag);
  sink.open (name);
  write_content (sink, codec_of (tag), value);
  sink.close (name);
}

XMLTree make_value (Tag tag, const void *value) {
  XMLTreeSink sink;
  write_value (sink, tag, value);
  return sink.take_first ();
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

void write_fields (XMLSink &sink, const Rows &rows, const void *from) {
  for (const Field &field : rows) {
    const void *const member = at (from, field.offset);
    if (is_written (field, member))
      write_value (sink, field.tag, at (member, field.value_offset));
  }
}

XMLTree::List write_fields (const Rows &rows, const void *from) {
  XMLTreeSink sink;
  write_fields (sink, rows, from);
  return sink.take ();
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
