#include "schema/tags.h"

#include "schema/codec.h"
#include "schema/records.h"

namespace QUILL3 {

namespace {

constexpr Codec string{.kind = Kind::string};
constexpr Codec u8{.kind = Kind::u8};
constexpr Codec u16{.kind = Kind::u16};
constexpr Codec u32{.kind = Kind::u32};
constexpr Codec u64{.kind = Kind::u64};
constexpr Codec i32{.kind = Kind::i32};
constexpr Codec fixed{.kind = Kind::fixed};
constexpr Codec boolean{.kind = Kind::boolean};
constexpr Codec flag{.kind = Kind::flag};

constexpr Codec enumerated (Enumeration which, Tag reported) {
  return {.kind = Kind::enumerated, .enumeration = which, .reported = reported};
}

template <class S>
constexpr Codec record () {
  return {.kind = Kind::record, .rows = rows_of (static_cast<const S *> (nullptr))};
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
template <class V>
constexpr Codec vector (Tag element) {
  static_assert (offsetof (V, count) == 0);
  return {.kind = Kind::vector,
          .element = element,
          .capacity = V::capacity,
          .first = offsetof (V, vec),
          .stride = sizeof (V::vec[0])};
}
#pragma GCC diagnostic pop

template <class L>
constexpr ListAccess access{[] (void *list) { static_cast<L *> (list)->clear (); },
                            [] (void *list) -> void * { return &static_cast<L *> (list)->emplace_back (); },
                            [] (void *list) { static_cast<L *> (list)->pop_back (); },
                            [] (const void *list, void (*take) (void *, const void *), void *context) {
                              for (const auto &element : *static_cast<const L *> (list))
                                take (context, &element);
                            }};

template <class L>
constexpr Codec list (Tag element) {
  return {.kind = Kind::list, .element = element, .access = &access<L>};
}

constexpr Codec codecs[] = {
#define TAG(name, type, codec) codec,
#include "schema/tags.inc"
};

const AString *build_names () {
  AString *const names = new AString[tag_count];
  AString *next = names;
#define TAG(name, type, codec) *next++ = AString (#name);
#include "schema/tags.inc"
  return names;
}

[[maybe_unused]] const AString *const built_at_load[] = {tag_names (), &word_boolean (), &word_true (),
                                                         &word_false ()};

} // namespace

const Codec &codec_of (Tag tag) {
  return codecs[static_cast<uint32_t> (tag)];
}

const AString *tag_names () {
  static const AString *const names = build_names ();
  return names;
}

void add_tag_names (XMLNameTable *table) {
  for (uint32_t tag = 0; tag != tag_count; ++tag)
    table->add (tag_names ()[tag]);
}

const XMLNameTable &tag_table () {
  static const XMLNameTable &table = *[] {
    auto *const made = new XMLNameTable;
    add_tag_names (made);
    return made;
  }();
  return table;
}

const AString &word_boolean () {
  static const AString &word = *new AString ("boolean");
  return word;
}
const AString &word_true () {
  static const AString &word = *new AString ("true");
  return word;
}
const AString &word_false () {
  static const AString &word = *new AString ("false");
  return word;
}

#define TAG(name, type, codec)                                                                               \
  XMLTree make_##name (const tag_type::name &value) {                                                        \
    return make_value (Tag::name, &value);                                                                   \
  }                                                                                                          \
  bool get_##name (const XMLTree &tree, tag_type::name *value, AString *err) {                               \
    return get_value (tree, Tag::name, value, err);                                                          \
  }                                                                                                          \
  bool has_##name (const XMLTree &tree) {                                                                    \
    return tree.has_child (tag_name (Tag::name));                                                            \
  }
#define FLAG(name)                                                                                           \
  XMLTree make_##name () {                                                                                   \
    return XMLTree (tag_name (Tag::name));                                                                   \
  }                                                                                                          \
  bool get_##name (const XMLTree &tree, bool *value, AString *err) {                                         \
    return get_value (tree, Tag::name, value, err);                                                          \
  }                                                                                                          \
  bool has_##name (const XMLTree &tree) {                                                                    \
    return tree.has_child (tag_name (Tag::name));                                                            \
  }
#include "schema/tags.inc"

} // namespace QUILL3
