#pragma once

#include "base/astring.h"
#include "base/enumstring.h"

#include <cstdint>
#include <string_view>

/// The enumerations of the protocol: small numbers in memory, fixed spellings on the wire. The numbers of
/// each begin at 0 and follow the order of enumerations.inc. All tables are built when the library is loaded
/// and never destroyed. Any thread may read them.
namespace QUILL3 {

/// Names the tables.
enum class Enumeration : uint8_t {
#define ENUMERATION(name, ...) name,
#include "schema/enumerations.inc"
};

/// How many tables there are.
inline constexpr uint32_t enumeration_count = 0
#define ENUMERATION(name, ...) +1
#include "schema/enumerations.inc"
    ;

/// The table of @p which. Its default number is -1 and its default spelling empty.
const EnumString &enumeration (Enumeration which);

/// The number of a spelling that lies in bytes. @return false if it is none, and @p value stays as it was.
bool number_of_spelling (Enumeration which, std::string_view spelling, uint32_t *value);

/// @return whether @p value has a spelling in @p which.
bool is_valid (Enumeration which, uint32_t value);

/// For each enumeration E: `E_to_string (value)`: the spelling, or the empty text for a number that has none.
/// `E_from_string (text, value)`: false if @p text is no spelling, and @p value is then unchanged; it may be
/// null. Spellings are case-sensitive. `E_is_valid (value)`: whether the number has a spelling.
#define ENUMERATION(name, ...)                                                                               \
  AString name##_to_string (uint32_t value);                                                                 \
  bool name##_from_string (const AString &text, uint32_t *value);                                            \
  bool name##_is_valid (uint32_t value);
#include "schema/enumerations.inc"

} // namespace QUILL3
