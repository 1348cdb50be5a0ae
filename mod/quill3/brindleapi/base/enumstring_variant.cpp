#include "base/avariant.h"
#include "base/enumstring.h"

bool EnumString::from_variant (const AVariant &value, uint32_t *out) const {
  if (!value.is_integer () && from_string (value.get_string (AString ()), out))
    return true;
  const uint32_t number = static_cast<uint32_t> (value.get_int32 (0));
  if (!to_string (number))
    return false;
  if (out != nullptr)
    *out = number;
  return true;
}
