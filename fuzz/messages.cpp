// Any bytes from a server, cut anywhere: every message that can be made out of them is dispatched to handlers
// that look at every value, and nothing fails an assertion. The first byte says in what pieces the rest
// arrives.

#include "base/kelvane_assert.h"
#include "engine/quill3_api_parser2.h"
#include "xml/xml_parse.h"

#include <algorithm>
#include <cstdlib>

namespace {

using namespace QUILL3;

/// Writes each value it is given, as the one who received it may do.
class Handlers : public APIParser2 {
#define SET(field) value.NAME_OF (field) = std::move (GIVEN (field));
#define REPLY(name, entry, ...)                                                                              \
  void on_##name (AString xid __VA_OPT__ (, LIST_OF (PARAMETER, __VA_ARGS__))) override {                    \
    body::name value;                                                                                        \
    EACH (SET, __VA_ARGS__)                                                                                  \
    write (xid, value);                                                                                      \
  }
#define REPORT(name, ...)                                                                                    \
  void on_##name (LIST_OF (PARAMETER, __VA_ARGS__)) override {                                               \
    body::name value;                                                                                        \
    EACH (SET, __VA_ARGS__)                                                                                  \
    write (AString (), value);                                                                               \
  }
#include "engine/bodies.inc"
#undef SET

  template <class Body>
  void write (const AString &xid, const Body &value) {
    const XMLTree tree ("again", write_fields (value));
    Body again;
    AString text;
    if (!read_body (tree, &again, &text) || tree != XMLTree ("again", write_fields (again)))
      std::abort ();
    written += xid.length () + tree.render_text (XMLLines, true).length ();
  }

public:
  uint64_t written = 0;
};

void fail (const char *, const char *, unsigned) {
  std::abort ();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput (const uint8_t *data, size_t size) {
  kelvane_assert_handler = &fail;
  if (size == 0)
    return 0;
  Handlers handlers;
  const char *bytes = reinterpret_cast<const char *> (data) + 1;
  const size_t piece = data[0] == 0 ? size : data[0];
  for (size_t left = size - 1; left != 0;) {
    const size_t now = std::min (left, piece);
    handlers.feed_bytes (bytes, now);
    if (handlers.stream_failed ())
      handlers.reset_stream ();
    bytes += now;
    left -= now;
  }
  handlers.dispatch_message (
      parse_xml_text (AString::from_utf8 (reinterpret_cast<const char *> (data) + 1, size - 1)));
  return 0;
}
