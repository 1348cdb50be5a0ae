// Any tree whose names the parser knows, with any text: what is written in any format is read back the same,
// as text and as bytes through the framer.
#include "base/amethod.h"
#include "xml/xml_parse.h"
#include "xml/xml_stream_parser.h"

#include <cstdlib>
#include <vector>

namespace {
void expect (bool holds) {
  if (!holds)
    std::abort ();
}

/// Builds a tree from bytes that say what to do next.
class Builder {
public:
  Builder (const uint8_t *data, size_t size) : p_ (data), end_ (data + size) {}

  XMLTree build () {
    open_.emplace_back ("root");
    while (p_ != end_)
      step (next ());
    while (open_.size () > 1)
      close ();
    return open_.back ();
  }
  /// Whether all of the text can be written as UTF-8 and read again.
  bool is_encodable () const { return encodable_; }

private:
  uint8_t next () { return p_ != end_ ? *p_++ : uint8_t{0}; }

  void step (uint8_t what) {
    if (what % 4 == 0 && open_.size () < deepest)
      open_.emplace_back (name ());
    else if (what % 4 == 1 && open_.size () > 1)
      close ();
    else
      open_.back ().add_child (XMLTree (name (), text (what / 4)));
  }
  void close () {
    XMLTree done = std::move (open_.back ());
    open_.pop_back ();
    open_.back ().add_child (std::move (done));
  }
  AString name () {
    static constexpr char alphabet[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_0123456789";
    AStringBuilder name;
    const uint8_t wanted = next ();
    name.append (AChar (alphabet[wanted % 52]));
    for (uint8_t i = 0; i != wanted / 52; ++i)
      name.append (AChar (alphabet[next () % 63]));
    return name.finish ();
  }
  AString text (unsigned length) {
    AStringBuilder text;
    for (unsigned i = 0; i != length; ++i)
      text.append (code_point ());
    return text.finish ();
  }
  AChar code_point () {
    static constexpr uint32_t bases[] = {0, 0, 0, 0x100, 0x2000, 0xD800, 0x1F000, 0x10FF80};
    const uint8_t which = next ();
    const AChar c (which < 128 ? uint32_t{which} : bases[which % 8] + next ());
    encodable_ = encodable_ && c.value () != 0 && c.value () <= 0x10FFFF;
    return c;
  }

  static constexpr size_t deepest = 50; // indentation grows with the square of the depth

  const uint8_t *p_;
  const uint8_t *end_;
  bool encodable_ = true;
  std::vector<XMLTree> open_;
};

class Bytes {
public:
  AByteSink sink () { return AMethod::bind (this, &Bytes::add); }
  std::string all;

private:
  void add (const void *data, uint64_t length) { all.append (static_cast<const char *> (data), length); }
};

void check_bytes (const XMLTree &tree, XMLFormat format, bool contract, const AString &text) {
  Bytes bytes;
  tree.write_to (bytes.sink (), format, contract);
  expect (AString::from_utf8 (bytes.all.data (), bytes.all.size ()) == text);
  const std::string framed = "<framing>" + bytes.all + "</framing>"; // longer than any name in the tree
  XMLStreamParser stream (framed.size ());
  stream.add_element_name ("framing");
  expect (stream.feed (framed.size (), framed.data ()) == framed.size ());
  expect (stream.next_element ().child ("root") == tree);
}

void check (const XMLTree &tree, XMLFormat format, bool contract, bool encodable) {
  const AString text = tree.render_text (format, contract);
  bool bad = true;
  expect (parse_xml_text (text, &bad) == tree && !bad);
  expect (AString (tree.render (format, contract)) == text);
  if (encodable)
    check_bytes (tree, format, contract, text);
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput (const uint8_t *data, size_t size) {
  Builder builder (data, size);
  const XMLTree tree = builder.build ();
  expect (tree == XMLTree (tree));
  for (const XMLFormat format : {XMLCompact, XMLLines, XMLIndented})
    for (const bool contract : {false, true})
      check (tree, format, contract, builder.is_encodable ());
  return 0;
}
