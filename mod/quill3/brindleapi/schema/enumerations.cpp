#include "schema/enumerations.h"

#include <algorithm>
#include <span>

namespace QUILL3 {

namespace {

#define ENUMERATION(name, ...) constexpr std::string_view name##_spellings[] = {__VA_ARGS__};
#include "schema/enumerations.inc"

/// In the order of their numbers.
constexpr std::span<const std::string_view> spellings[] = {
#define ENUMERATION(name, ...) name##_spellings,
#include "schema/enumerations.inc"
};

template <uint32_t Count>
EnumString *build (const std::string_view (&table)[Count]) {
  EnumStringTextRow rows[Count];
  for (uint32_t i = 0; i < Count; ++i)
    rows[i] = {i, table[i].data ()};
  return new EnumString (rows, Count, UINT32_MAX, AString ());
}

struct Tables {
  const EnumString *of[enumeration_count];
};

const Tables &tables () {
  static const Tables &built = *new Tables{{
#define ENUMERATION(name, ...) build (name##_spellings),
#include "schema/enumerations.inc"
  }};
  return built;
}

[[maybe_unused]] const Tables &built_at_load = tables ();

} // namespace

const EnumString &enumeration (Enumeration which) {
  return *tables ().of[static_cast<uint32_t> (which)];
}

bool number_of_spelling (Enumeration which, std::string_view spelling, uint32_t *value) {
  const auto all = spellings[static_cast<uint32_t> (which)];
  const auto found = std::find (all.begin (), all.end (), spelling);
  if (found == all.end ())
    return false;
  *value = static_cast<uint32_t> (found - all.begin ());
  return true;
}

bool is_valid (Enumeration which, uint32_t value) {
  return enumeration (which).to_string (value);
}

#define ENUMERATION(name, ...)                                                                               \
  AString name##_to_string (uint32_t value) {                                                                \
    return enumeration (Enumeration::name).text_of (value);                                                  \
  }                                                                                                          \
  bool name##_from_string (const AString &text, uint32_t *value) {                                           \
    return enumeration (Enumeration::name).from_string (text, value);                                        \
  }                                                                                                          \
  bool name##_is_valid (uint32_t value) {                                                                    \
    return is_valid (Enumeration::name, value);                                                              \
  }
#include "schema/enumerations.inc"

} // namespace QUILL3
