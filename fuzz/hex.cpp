// Any bytes decode to at most half their number. The result is the same after it was encoded in either form
// and decoded again.

#include "base/abytearray.h"

extern "C" int LLVMFuzzerTestOneInput (const uint8_t *data, size_t size) {
  const AByteArray digits (data, size);
  const AByteArray bytes = AByteArray::from_hex (digits);
  if (bytes.size () * 2 > size || AByteArray::from_hex (bytes.to_hex_bytes ()) != bytes)
    __builtin_trap ();
  const int width = size != 0 ? data[0] : 0;
  if (AByteArray::from_hex (AByteArray::from_utf8 (bytes.to_hex (width))) != bytes)
    __builtin_trap ();
  return 0;
}
