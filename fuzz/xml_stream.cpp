// Bytes in chunks through the framer and the parser, and through a plain model. At every step both must have
// the same elements, refusals and free room. A failed assertion ends the run: nothing that a server sends may
// cause one.
#include "../tests/xml/xml_model.h"
#include "xml/xml_parse.h"
#include "xml/xml_stream_parser.h"

#include <algorithm>
#include <cstdlib>

namespace {
void expect (bool holds) {
  if (!holds)
    std::abort ();
}

class Comparison {
public:
  explicit Comparison (uint64_t bufsize) : bufsize_ (bufsize), stream_ (bufsize) {
    model_.names = {"reply", "report"};
    for (const std::string &name : model_.names)
      stream_.add_element_name (name);
  }

  /// True when the buffer takes no more.
  bool feed (const std::string &bytes) {
    for (size_t done = 0; done != bytes.size ();) {
      const size_t rest = bytes.size () - done;
      const size_t n = model_.failed ? rest : std::min<size_t> (rest, bufsize_ - model_.bytes.size ());
      expect (stream_.feed (rest, bytes.data () + done) == n);
      if (n == 0)
        return true;
      if (!model_.failed)
        model_.bytes.append (bytes, done, n);
      done += n;
      take_all ();
    }
    return false;
  }

private:
  void take_all () {
    for (bool more = true; more;) {
      const XMLTree tree = stream_.next_element ();
      expect (same (tree, model_.next ()));
      expect (stream_.is_failed () == model_.failed);
      expect (stream_.free_space () == bufsize_ - model_.bytes.size ());
      more = !tree.is_null ();
    }
  }

  uint64_t bufsize_;
  XMLStreamParser stream_;
  xml_model::Stream model_;
};

void compare_text (const std::string &bytes) {
  const AString text = AString::from_utf8 (bytes.data (), bytes.size ());
  bool bad = false;
  const XMLTree tree = parse_xml_text (text, &bad);
  expect (bad == tree.is_null ());
  expect (same (tree, xml_model::parse (xml_model::decode_utf8 (bytes))));
  if (!bad)
    expect (parse_xml_text (tree.render_text (XMLIndented, true)) == tree);
}
} // namespace

// The first byte chooses the size of the buffer, the second how the rest is cut into chunks.
extern "C" int LLVMFuzzerTestOneInput (const uint8_t *data, size_t size) {
  if (size < 2)
    return 0;
  const std::string bytes (reinterpret_cast<const char *> (data) + 2, size - 2);
  compare_text (bytes);
  Comparison comparison (16u + data[0] * data[0]);
  uint32_t random = data[1];
  bool full = false;
  for (size_t done = 0; done < bytes.size () && !full;) {
    random = random * 1664525 + 1013904223;
    const size_t chunk = data[1] == 0 ? bytes.size () : 1 + (random >> 24) % (1 + data[1] % 64u);
    full = comparison.feed (bytes.substr (done, chunk));
    done += chunk;
  }
  return 0;
}
