#pragma once

#include "schema/aoption.h"
#include "schema/each.h"
#include "schema/tags.h"

#include <cstddef>
#include <iterator>

/// Records, commands and message bodies have one shape: a plain struct whose members bear the names of their
/// tags. Three tables name the members of all of them, once and in the order of writing: records.inc,
/// commands.inc and bodies.inc.
///
///     REPORT (channel_status, FIELD (Channel), FIELD (ChannelStatus), OPTION (ClipID))
///
/// FIELD is a member that is always there, of the tag's type in memory. OPTION is a member that may be
/// absent, an AOption of that type. From this line come the struct and the rows by which it is written and
/// read:
///
///     struct channel_status {             // in namespace QUILL3::body
///       uint32_t Channel{};
///       uint32_t ChannelStatus{};
///       AOption<AString> ClipID{};
///     };
///
///     body::channel_status status;
///     AString err;
///     if (!read_body (tree, &status, &err))
///       record_error (xid, err);
namespace QUILL3 {

/// One row: a member and the tag that carries it.
struct Field {
  Tag tag;
  bool optional;        ///< the member is an AOption
  uint8_t value_offset; ///< of the value within the member; the flag of an AOption is at its beginning
  uint16_t offset;      ///< of the member within the struct
};

/// The most rows of a struct.
inline constexpr size_t most_rows = 64;

/// The rows of a struct. `rows_of (static_cast<const S *> (nullptr))` gives those of S.
struct Rows {
  const Field *fields;
  uint16_t count;
  uint16_t size; ///< of the struct

  const Field *begin () const { return fields; }
  const Field *end () const { return fields + count; }
};

/// Holds the rows of the struct S as `fields`, with one more behind them: an array can't be empty.
template <class S>
struct FieldsOf;

template <class S>
constexpr Rows rows_of (const S *) {
  static_assert (sizeof (S) <= UINT16_MAX && std::size (FieldsOf<S>::fields) - 1 <= most_rows);
  return {FieldsOf<S>::fields, std::size (FieldsOf<S>::fields) - 1, sizeof (S)};
}

/// The elements of the members of a struct, in the order of the rows. Absent members and flags that are not
/// set have none.
void write_fields (XMLSink &sink, const Rows &rows, const void *from);
XMLTree::List write_fields (const Rows &rows, const void *from);
/// Reads a struct by the rule of records: first the required members in order, then the optional ones that
/// exist. The first failure ends it: a required member that is missing, or any member that is doubled or bad.
/// Unknown children are ignored.
/// @param element its children are the members; the table of its names begins with those of the tags
/// @param err may be null; receives the text of the failure
bool read_record (const XMLElement &element, const Rows &rows, void *to, AString *err);
bool read_record (const XMLTree &tree, const Rows &rows, void *to, AString *err);
/// Reads a struct by the rule of message bodies: all members in order. Required members are read as above. An
/// optional member that is missing, doubled or bad is absent.
bool read_body (const XMLElement &element, const Rows &rows, void *to, AString *err);
bool read_body (const XMLTree &tree, const Rows &rows, void *to, AString *err);

template <class S>
XMLTree::List write_fields (const S &from) {
  return write_fields (rows_of (&from), &from);
}
template <class S, class Element>
bool read_record (const Element &element, S *to, AString *err) {
  return read_record (element, rows_of (static_cast<const S *> (to)), to, err);
}
template <class S, class Element>
bool read_body (const Element &element, S *to, AString *err) {
  return read_body (element, rows_of (static_cast<const S *> (to)), to, err);
}

// In an AOption the value is behind a flag of one byte, at the next place that fits its alignment.
template <class Member>
inline constexpr size_t value_offset = 0;
template <class Value>
inline constexpr size_t value_offset<AOption<Value>> = alignof (Value);

template <class Member>
consteval Field make_field (Tag tag, size_t offset) {
  return {tag, value_offset<Member> != 0, static_cast<uint8_t> (value_offset<Member>),
          static_cast<uint16_t> (offset)};
}

} // namespace QUILL3

/// What a line of a table says of a member: `TYPE_OF (OPTION (ClipID))` is its type, `NAME_OF` its name, and
/// `GIVEN` the name of a parameter that brings its value.
#define TYPE_OF(field) TYPE_OF_##field
#define TYPE_OF_FIELD(tag) QUILL3::tag_type::tag
#define TYPE_OF_OPTION(tag) AOption<QUILL3::tag_type::tag>
#define NAME_OF(field) NAME_OF_##field
#define NAME_OF_FIELD(tag) tag
#define NAME_OF_OPTION(tag) tag
#define GIVEN(field) GIVEN_##field
#define GIVEN_FIELD(tag) given_##tag
#define GIVEN_OPTION(tag) given_##tag

/// The declaration of a member and of a parameter.
#define MEMBER(field) TYPE_OF (field) NAME_OF (field){};
#define PARAMETER(field) TYPE_OF (field) GIVEN (field)

/// The rows of a struct, from its line of a table. Belongs in namespace QUILL3. gcc and clang warn of
/// offsetof in structs that hold lists or options: switch "-Winvalid-offsetof" off around it.
#define ROWS(name, ...)                                                                                      \
  template <>                                                                                                \
  struct FieldsOf<name> {                                                                                    \
    using Struct = name;                                                                                     \
    static constexpr Field fields[] = {EACH (FIELD_ROW, __VA_ARGS__) Field{}};                               \
  };
#define FIELD_ROW(field)                                                                                     \
  make_field<TYPE_OF (field)> (Tag::NAME_OF (field), offsetof (Struct, NAME_OF (field))),
