#include "xml/xml_names.h"

#include <cstring>

namespace {

// From the length and at most eight characters of each end, which together are the whole of a short name.
uint32_t hash_of (std::string_view name) {
  constexpr size_t part = sizeof (uint64_t);
  uint64_t first = 0, last = 0;
  if (name.size () >= part) {
    std::memcpy (&first, name.data (), part);
    std::memcpy (&last, name.data () + name.size () - part, part);
  } else {
    for (const char c : name)
      first = first << 8 | static_cast<unsigned char> (c);
  }
  const uint64_t mixed = (first ^ (last >> 29 | last << 35) ^ name.size ()) * 0x9E3779B97F4A7C15u;
  return static_cast<uint32_t> (mixed >> 32);
}

} // namespace

void XMLNameTable::add (const AString &name) {
  std::string text = name.to_std_string ();
  if (text.empty () || find (text) != unknown)
    return;
  const uint32_t hash = hash_of (text);
  entries_.push_back ({name, std::move (text), hash});
  if (entries_.size () * 4 > slots_.size ())
    grow ();
  else
    place (static_cast<uint32_t> (entries_.size () - 1));
}

uint32_t XMLNameTable::find (std::string_view name) const {
  if (slots_.empty ())
    return unknown;
  const uint32_t hash = hash_of (name);
  const size_t mask = slots_.size () - 1;
  for (size_t i = slot_of (hash); slots_[i] != 0; i = (i + 1) & mask) {
    const Entry &e = entries_[slots_[i] - 1];
    if (e.hash == hash && e.text == name)
      return slots_[i] - 1;
  }
  return unknown;
}

uint32_t XMLNameTable::find_text (const AString &name) const {
  return find (name.to_std_string ());
}

void XMLNameTable::grow () {
  slots_.assign (slots_.empty () ? 64 : slots_.size () * 2, 0);
  for (uint32_t i = 0; i != entries_.size (); ++i)
    place (i);
}

void XMLNameTable::place (uint32_t entry) {
  const size_t mask = slots_.size () - 1;
  size_t i = slot_of (entries_[entry].hash);
  while (slots_[i] != 0)
    i = (i + 1) & mask;
  slots_[i] = entry + 1;
}
