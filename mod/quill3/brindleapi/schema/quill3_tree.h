#pragma once

#include "base/astring.h"
#include "base/fixed.h"
#include "schema/enumerations.h"
#include "xml/xml_nodes.h"

#include <cstdint>

/// Reading single values of elements, for callers that have a tag's name as data. A function
/// that fails returns false and stores a text in `err`, unless that is null. On success `err` is unchanged.
/// Any thread.
namespace QUILL3 {

/// Finds the one element called @p name: @p tree itself if it has that name, else its only direct child of
/// that name. No child and more than one child are failures.
/// @param out receives the element; may be null
bool find_one (const XMLTree &tree, const AString &name, XMLTree *out, AString *err);

/// Always false; the text says that within @p element there is no @p name, or that there are several.
bool not_one (uint32_t count, const AString &name, const AString &element, AString *err);
/// Always false; the text is that the element holds the invalid @p value.
bool invalid_value (const AString &element, const AString &value, AString *err);
inline bool invalid_value (const XMLTree &tree, const AString &value, AString *err) {
  return invalid_value (tree.name (), value, err);
}
/// Always false; the text is that the element holds a @p value that is no @p type_name.
bool invalid_typed_value (const AString &element, const AString &type_name, const AString &value,
                          AString *err);
inline bool invalid_typed_value (const XMLTree &tree, const AString &type_name, const AString &value,
                                 AString *err) {
  return invalid_typed_value (tree.name (), type_name, value, err);
}

/// The element's text without white space at its ends.
AString stripped_text (const XMLTree &tree);

/// Readers of an element that is already the one looked for. The text is stripped first. Numbers are as
/// AString reads them, and refused where they do not fit; what stands at @p value is changed on success only.
bool read_u8 (const XMLElement &element, uint8_t *value, AString *err);
bool read_u16 (const XMLElement &element, uint16_t *value, AString *err);
bool read_u32 (const XMLElement &element, uint32_t *value, AString *err);
bool read_u64 (const XMLElement &element, uint64_t *value, AString *err);
bool read_i32 (const XMLElement &element, int32_t *value, AString *err);
/// A decimal with an "X" behind it; without the "X", the raw 32 bits as a signed or unsigned number.
bool read_fixed (const XMLElement &element, Kelvane::fixed *value, AString *err);
/// "true" and "false" as they are spelled, or a signed 32-bit number, which is true unless it is 0.
bool read_bool (const XMLElement &element, bool *value, AString *err);
/// A spelling of the enumeration. @return false, without a text, for what is none.
bool read_spelling (const XMLElement &element, Enumeration which, uint32_t *value);

} // namespace QUILL3
