/// The five named entities, for the parser and the writer.
#pragma once

#include "base/achar.h"

#include <cstddef>
#include <string_view>

/// A character and what it is written as.
struct XMLEntity {
  char character;
  std::string_view entity;
};
inline constexpr XMLEntity xml_entities[] = {
    {'\'', "&apos;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'&', "&amp;"}};

/// The row of a character, null for all but the five.
inline const XMLEntity *xml_entity_of (AChar c) {
  if (c > AChar ('>'))
    return nullptr;
  for (const XMLEntity &row : xml_entities)
    if (c == AChar (row.character))
      return &row;
  return nullptr;
}

/// `decode_entities` in place. @return the new length, never more than @p length
size_t decode_entities_in_place (AChar *text, size_t length);
