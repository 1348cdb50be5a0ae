#include "xml/xml_entities.h"

#include "xml/xml_flat_text.h"
#include "xml/xml_parse.h"

namespace {
bool begins_with (const AChar *text, size_t length, std::string_view ascii) {
  if (length < ascii.size ())
    return false;
  for (size_t i = 0; i != ascii.size (); ++i)
    if (text[i] != AChar (ascii[i]))
      return false;
  return true;
}

// C85: doc/compatibility.md
const XMLEntity *entity_at (const AChar *text, size_t length) {
  for (const XMLEntity &row : xml_entities)
    if (begins_with (text, length, row.entity))
      return &row;
  return nullptr;
}
} // namespace

size_t decode_entities_in_place (AChar *text, size_t length) {
  AChar *out = text;
  for (size_t i = 0; i != length;) {
    const XMLEntity *row = text[i] == AChar ('&') ? entity_at (text + i, length - i) : nullptr;
    *out++ = row != nullptr ? AChar (row->character) : text[i];
    i += row != nullptr ? row->entity.size () : 1;
  }
  return static_cast<size_t> (out - text);
}

AString decode_entities (const AString &text) {
  if (!text.contains (AChar ('&')))
    return text;
  std::vector<AChar> flat = flat_text (text);
  return AString::from_utf32 (flat.data (), decode_entities_in_place (flat.data (), flat.size ()));
}

AString encode_entities (const AString &text) {
  const auto is_special = [] (AChar c) { return xml_entity_of (c) != nullptr; };
  if (text.find_if (is_special) < 0)
    return text;
  AStringBuilder out;
  text.walk_runs ([&out] (const AChar *run, uint64_t count) {
    uint64_t taken = 0;
    for (uint64_t i = 0; i != count; ++i)
      if (const XMLEntity *row = xml_entity_of (run[i])) {
        out.append_uint32 (run + taken, i - taken);
        out.append_latin1 (row->entity);
        taken = i + 1;
      }
    out.append_uint32 (run + taken, count - taken);
    return true;
  });
  return out.finish ();
}
