#include "schema/enumerations.h"

namespace QUILL3 {

namespace {

#define ENUMERATION(name, ...) constexpr const char *name##_spellings[] = {__VA_ARGS__};
#include "schema/enumerations.inc"

template <uint32_t Count>
EnumString *build (const char *const (&spellings)[Count]) {
  EnumStringTextRow rows[Count];
  for (uint32_t i = 0; i < Count; ++i)
    rows[i] = {i, spellings[i]};
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
