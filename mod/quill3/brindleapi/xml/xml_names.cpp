#include "xml/xml_names.h"

#include "xml/xml_flat_text.h"

#include <algorithm>

namespace {
size_t hash_of (const AChar *text, size_t length) {
  size_t hash = length;
  for (size_t i = 0; i != length; ++i)
    hash = hash * 31 + text[i].value ();
  return hash ^ (hash >> 15);
}
} // namespace

void XMLNameTable::add (const AString &name) {
  std::vector<AChar> text = flat_text (name);
  if (text.empty () || find (text.data (), text.size ()) != nullptr)
    return;
  const size_t hash = hash_of (text.data (), text.size ());
  entries_.push_back ({name, std::move (text), hash});
  if (entries_.size () * 2 > slots_.size ())
    grow ();
  else
    place (static_cast<uint32_t> (entries_.size () - 1));
}

const AString *XMLNameTable::find (const AChar *text, size_t length) const {
  if (slots_.empty ())
    return nullptr;
  const size_t hash = hash_of (text, length);
  const size_t mask = slots_.size () - 1;
  for (size_t i = hash & mask; slots_[i] != 0; i = (i + 1) & mask) {
    const Entry &e = entries_[slots_[i] - 1];
    if (e.hash == hash && std::equal (e.text.begin (), e.text.end (), text, text + length))
      return &e.name;
  }
  return nullptr;
}

void XMLNameTable::grow () {
  slots_.assign (slots_.empty () ? 64 : slots_.size () * 2, 0);
  for (uint32_t i = 0; i != entries_.size (); ++i)
    place (i);
}

void XMLNameTable::place (uint32_t entry) {
  const size_t mask = slots_.size () - 1;
  size_t i = entries_[entry].hash & mask;
  while (slots_[i] != 0)
    i = (i + 1) & mask;
  slots_[i] = entry + 1;
}
