#pragma once

#include "schema/aoption.h"
#include "schema/tags.h"

#include <cstddef>
#include <type_traits>
#include <utility>

/// Records, commands and message bodies have one shape: a plain struct whose members bear the names of their
/// tags, and beside it rows that name the members in the order of writing.
///
///     struct channel_status {             // in namespace QUILL3::body
///       uint32_t Channel{};
///       uint32_t ChannelStatus{};
///       AOption<AString> ClipID{};        // AOption: may be absent
///     };
///     inline constexpr Field channel_status_rows[] = {
///       FIELD (channel_status, Channel), FIELD (channel_status, ChannelStatus), FIELD (channel_status,
///       ClipID)};
///     RECORD (channel_status, channel_status_rows);
///     struct ok {};
///     RECORD (ok, no_fields);
///
/// A member's type is the tag's (`tag_type::ClipID`), or an AOption of it where the member may be absent;
/// every member has `{}`. A member that bears the name of its type needs the type qualified:
/// `QUILL3::ClipInfo ClipInfo{};`. A flag is a plain bool. Structs and rows may stand in any namespace. gcc
/// and clang warn of offsetof in structs that hold lists or options: switch "-Winvalid-offsetof" off around
/// the rows.
///
///     body::channel_status status;
///     AString err;
///     if (!read_body (tree, &status, &err))
///       record_error (xid, err);
namespace QUILL3 {

/// One row: a member and the tag that carries it. Made by FIELD.
struct Field {
  Tag tag;
  bool optional;        ///< the member is an AOption
  uint8_t alignment;    ///< of the member
  uint8_t value_offset; ///< of the value within the member; the flag of an AOption is at its beginning
  uint16_t offset;      ///< of the member within the struct
  uint16_t size;        ///< of the member
};

/// The rows of a struct. `rows_of (static_cast<const S *> (nullptr))` gives those of S.
struct Rows {
  const Field *fields;
  uint16_t count;
  uint16_t size; ///< of the struct

  const Field *begin () const { return fields; }
  const Field *end () const { return fields + count; }
};

/// Stands for the rows of a struct without members.
struct NoFields {};
inline constexpr NoFields no_fields;

/// The elements of all members of a struct, in the order of the rows: what is present of optional ones, and
/// flags that are set.
XMLTree::List write_fields (const Rows &rows, const void *from);
/// Reads a struct by the rule of records: first the required members in order, then which of the optional
/// ones are there, then those. The first failure ends it: a required one that is missing, or any that is
/// doubled or bad. Unknown children are passed over.
/// @param tree the element whose children are the members
/// @param err may be null; gets the text of the failure
bool read_record (const XMLTree &tree, const Rows &rows, void *to, AString *err);
/// Reads a struct by the rule of message bodies: members in order, required ones as above; an optional one
/// that is missing, doubled or bad is simply absent.
bool read_body (const XMLTree &tree, const Rows &rows, void *to, AString *err);

template <class S>
XMLTree::List write_fields (const S &from) {
  return write_fields (rows_of (&from), &from);
}
template <class S>
bool read_record (const XMLTree &tree, S *to, AString *err) {
  return read_record (tree, rows_of (static_cast<const S *> (to)), to, err);
}
template <class S>
bool read_body (const XMLTree &tree, S *to, AString *err) {
  return read_body (tree, rows_of (static_cast<const S *> (to)), to, err);
}

/// A row's two sides must fit: the member is of the tag's type, or an AOption of it.
template <class Member, class Value>
consteval Field make_field (Tag tag, size_t offset) {
  constexpr bool optional = std::is_same_v<Member, AOption<Value>>;
  static_assert (optional || std::is_same_v<Member, Value>, "a member has the type of its tag");
  // behind its flag the value stands at its alignment
  constexpr size_t value_offset = optional ? alignof (Value) : 0;
  return {tag,
          optional,
          alignof (Member),
          static_cast<uint8_t> (value_offset),
          static_cast<uint16_t> (offset),
          static_cast<uint16_t> (sizeof (Member))};
}

/// Converts to anything, to count the members of a struct.
struct AnyMember {
  template <class T>
  operator T () const;
};
template <class S, size_t... I>
consteval bool takes_members (std::index_sequence<I...>) {
  return requires {
    S{(static_cast<void> (I), AnyMember{})...};
  };
}

/// Whether the rows name every member of S in order: the offsets follow one another up to the struct's end,
/// and there is no further member, not even a bool hidden in padding.
template <class S, size_t N>
consteval bool covers (const Field (&rows)[N]) {
  size_t end = 0;
  for (const Field &row : rows) {
    if (row.offset != (end + row.alignment - 1) / row.alignment * row.alignment)
      return false;
    end = row.offset + size_t{row.size};
  }
  return (end + alignof (S) - 1) / alignof (S) * alignof (S) == sizeof (S) &&
         takes_members<S> (std::make_index_sequence<N> ()) &&
         !takes_members<S> (std::make_index_sequence<N + 1> ());
}
template <class S>
consteval bool covers (NoFields) {
  return std::is_empty_v<S>;
}

template <class S, size_t N>
consteval Rows make_rows (const Field (&rows)[N]) {
  static_assert (sizeof (S) <= UINT16_MAX);
  return {rows, N, sizeof (S)};
}
template <class S>
consteval Rows make_rows (NoFields) {
  return {nullptr, 0, sizeof (S)};
}

} // namespace QUILL3

/// The row of the member @p name, which bears the name of its tag.
#define FIELD(Struct, name)                                                                                  \
  QUILL3::make_field<decltype (Struct::name), QUILL3::tag_type::name> (QUILL3::Tag::name,                    \
                                                                       offsetof (Struct, name))

/// Ties a struct to its rows and proves that they name every member in order.
#define RECORD(Struct, rows)                                                                                 \
  constexpr QUILL3::Rows rows_of (const Struct *) {                                                          \
    return QUILL3::make_rows<Struct> (rows);                                                                 \
  }                                                                                                          \
  static_assert (QUILL3::covers<Struct> (rows), "the rows of " #Struct " name every member in order")
