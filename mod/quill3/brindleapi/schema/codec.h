#pragma once

#include "schema/rows.h"

#include <type_traits>

/// What tags.inc says of a tag, for the functions that read and write values.
namespace QUILL3 {

/// The ways of writing and reading a value.
enum class Kind : uint8_t {
  string,
  u8,
  u16,
  u32,
  u64,
  i32,
  fixed,
  boolean,
  flag,
  enumerated,
  record,
  vector,
  list
};

/// Access to a std::list, for code that does not know the type of its elements.
struct ListAccess {
  void (*clear) (void *list);
  void *(*append) (void *list); ///< a new element at the end
  void (*drop_last) (void *list);
  void (*each) (const void *list, void (*take) (void *context, const void *element), void *context);
};

/// One tag's line of tags.inc.
struct Codec {
  Kind kind{};
  Enumeration enumeration{};  ///< of an enumerated tag
  Tag reported{};             ///< the tag that a bad spelling is reported as
  Tag element{};              ///< of a vector or list
  uint16_t capacity{};        ///< of a vector
  uint16_t first{};           ///< offset of a vector's first element; its count is at its beginning
  uint16_t stride{};          ///< from one element of a vector to the next
  Rows rows{};                ///< of a record
  const ListAccess *access{}; ///< of a list
};

const Codec &codec_of (Tag tag);

} // namespace QUILL3
