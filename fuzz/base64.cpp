// Any text decodes to at most three bytes for four characters. The bytes are the same after they were encoded
// and decoded again.

#include "base/abytearray.h"

extern "C" int LLVMFuzzerTestOneInput (const uint8_t *data, size_t size) {
  const AString text = AString::from_latin1 (reinterpret_cast<const char *> (data), size);
  const AByteArray bytes = AByteArray::from_base64 (text);
  if (bytes.size () * 4 > text.length () * 3 || AByteArray::from_base64 (bytes.to_base64 ()) != bytes)
    __builtin_trap ();
  return 0;
}
