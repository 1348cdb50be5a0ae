// Any bytes through the library's framer and through the first framer, which fuzz/oracle keeps. Both must
// accept or refuse each message, make the same tree, and read the same bodies and records with the same error
// texts. The first byte says in what pieces the rest arrives.

#include "engine/quill3_api_parser2.h"
#include "oracle/oracle.h"
#include "require.h"
#include "schema/records.h"
#include "xml/xml_children.h"
#include "xml/xml_stream_parser.h"

#include <algorithm>

namespace {

using namespace QUILL3;

constexpr uint64_t buffer_size = 32768;

template <class Value>
XMLTree written (const Value &value) {
  return XMLTree ("value", write_fields (value));
}

/// Reads one struct from the nodes, from the tree, and from the tree as it was first done.
template <class Value>
void compare (const XMLElement &element, const XMLTree &tree, bool as_record) {
  Value value, from_tree, expected;
  AString text, text_from_tree, expected_text;
  const Rows rows = rows_of (static_cast<const Value *> (nullptr));
  const bool read = as_record ? read_record (element, &value, &text) : read_body (element, &value, &text);
  const bool read_from_tree = as_record ? read_record (tree, &from_tree, &text_from_tree)
                                        : read_body (tree, &from_tree, &text_from_tree);
  const bool expected_read = as_record ? oracle::read_record (tree, rows, &expected, &expected_text)
                                       : oracle::read_body (tree, rows, &expected, &expected_text);
  require (read == expected_read && read_from_tree == expected_read);
  require (text == expected_text && text_from_tree == expected_text);
  require (!read || (written (value) == written (expected) && written (from_tree) == written (expected)));
}

using Comparison = void (*) (const XMLElement &element, const XMLTree &tree, bool as_record);

struct Body {
  const char *name;
  Comparison compare;
};
constexpr Body bodies[] = {
#define REPLY(name, ...) {#name, &compare<body::name>},
#define REPORT(name, ...) {#name, &compare<body::name>},
#include "engine/bodies.inc"
};
constexpr size_t count = std::size (bodies);

/// Whether the two framers have the same result for the same bytes.
class Streams {
public:
  Streams () {
    own_.set_names (&APIParser::known_names ());
    for (const char *name : {"reply", "report"}) {
      own_.add_element_name (name);
      first_.add_element_name (name);
    }
  }

  void feed (const char *bytes, size_t length) {
    while (length != 0) {
      const uint64_t taken = own_.feed (length, bytes);
      require (taken == first_.feed (length, bytes));
      if (taken == 0) {
        own_.reset ();
        first_.reset ();
      }
      bytes += taken;
      length -= taken;
      take_all ();
      if (own_.is_failed ()) {
        own_.reset ();
        first_.reset ();
      }
    }
  }

private:
  void take_all () {
    for (;;) {
      const XMLNodes *const message = own_.next_nodes ();
      const XMLTree tree = message != nullptr ? message->tree () : XMLTree ();
      require (tree == first_.next_element ());
      require (own_.is_failed () == first_.is_failed () && own_.free_space () == first_.free_space ());
      if (message == nullptr)
        return;
      require (!tree.is_null ());
      compare_bodies (*message, tree);
    }
  }

  // Each child as the body of its name, and as another one, by either rule.
  void compare_bodies (const XMLNodes &message, const XMLTree &tree) {
    auto child = XMLChildren (tree).begin ();
    for (const XMLElement element : message.root ().children ()) {
      for (const Body &body : bodies)
        if (child->name_is (body.name))
          body.compare (element, *child, false);
      bodies[turn_ % count].compare (element, *child, turn_ / count % 2 != 0);
      ++turn_;
      ++child;
    }
    require (child == XMLChildren (tree).end ());
  }

  XMLStreamParser own_{buffer_size};
  oracle::StreamParser first_{buffer_size};
  size_t turn_ = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput (const uint8_t *data, size_t size) {
  if (size == 0)
    return 0;
  Streams streams;
  const char *bytes = reinterpret_cast<const char *> (data) + 1;
  const size_t piece = data[0] == 0 ? size : data[0];
  for (size_t left = size - 1; left != 0;) {
    const size_t now = std::min (left, piece);
    streams.feed (bytes, now);
    bytes += now;
    left -= now;
  }
  return 0;
}
