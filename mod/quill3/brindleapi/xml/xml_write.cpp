#include "xml/xml_byte_output.h"
#include "xml/xml_children.h"
#include "xml/xml_parse.h"

#include <vector>

namespace {
constexpr uint64_t blanks_per_level = 4;
constexpr uint64_t shared_blanks = 128;

enum Mark { OpenTag, EndTag, EndOfTag, EndOfEmptyTag, LineBreak };
constexpr std::string_view mark_texts[] = {"<", "</", ">", " />", "\r\n"};

const AString &mark_string (Mark mark) {
  static const AString *strings = new AString[]{
      AString::from_latin1 (mark_texts[OpenTag]), AString::from_latin1 (mark_texts[EndTag]),
      AString::from_latin1 (mark_texts[EndOfTag]), AString::from_latin1 (mark_texts[EndOfEmptyTag]),
      AString::from_latin1 (mark_texts[LineBreak])};
  return strings[mark];
}

const AString &blank_string () {
  static const AString &blanks = *new AString (AString (" ") * shared_blanks);
  return blanks;
}

/// Takes the pieces as a list.
class ListOutput {
public:
  void put (Mark mark) { list_.append (mark_string (mark)); }
  void put (const AString &text) { list_.append (text); }
  void put_escaped (const AString &text) { list_.append (encode_entities (text)); }
  void put_blanks (uint64_t count) {
    for (; count > shared_blanks; count -= shared_blanks)
      list_.append (blank_string ());
    if (count != 0)
      list_.append (blank_string ().left (count));
  }
  AStringList finish () { return std::move (list_); }

private:
  AStringList list_;
};

/// Takes the pieces as one text.
class TextOutput {
public:
  void put (Mark mark) { builder_.append_latin1 (mark_texts[mark]); }
  void put (const AString &text) { builder_.append (text); }
  void put_escaped (const AString &text) { builder_.append (encode_entities (text)); }
  void put_blanks (uint64_t count) {
    for (; count != 0; --count)
      builder_.append (AChar (' '));
  }
  AString finish () { return builder_.finish (); }

private:
  AStringBuilder builder_;
};

/// Takes the pieces as UTF-8.
class ByteOutput : public XMLByteOutput {
public:
  using XMLByteOutput::put;
  using XMLByteOutput::XMLByteOutput;

  void put (Mark mark) { put_ascii (mark_texts[mark]); }
  void put_blanks (uint64_t count) {
    for (; count != 0; --count)
      put_ascii (" ");
  }
};

// C88: doc/compatibility.md
AString attribute_text (const XMLTree &tree) {
  AStringBuilder text;
  for (const auto &[name, value] : tree.attributes ()) {
    text.append_latin1 (" ");
    text.append (name);
    text.append_latin1 ("=\"");
    text.append (encode_entities (value));
    text.append_latin1 ("\"");
  }
  return text.finish ();
}

/// Walks a tree and puts its pieces into an output.
template <class Output>
class XMLWriter {
public:
  XMLWriter (Output &output, XMLFormat format, bool contract)
      : output_ (output), format_ (format), contract_ (contract) {}

  void write (const XMLTree &root) {
    element (root);
    while (!open_.empty ()) {
      Open &last = open_.back ();
      line_break ();
      if (last.next == XMLChildren::Iterator ()) {
        end_of_children (*last.tree);
        continue;
      }
      const XMLTree &child = *last.next;
      ++last.next;
      element (child);
    }
  }

private:
  struct Open {
    const XMLTree *tree;
    XMLChildren::Iterator next;
  };

  // C87: doc/compatibility.md
  void element (const XMLTree &tree) {
    if (!KELVANE_ASSERT (!tree.is_null ()))
      return;
    indent ();
    output_.put (OpenTag);
    output_.put (tree.name ());
    if (!tree.attributes ().empty ())
      output_.put (attribute_text (tree));
    if (tree.has_children ())
      begin_children (tree);
    else
      leaf (tree);
  }
  void begin_children (const XMLTree &tree) {
    output_.put (EndOfTag);
    open_.push_back ({&tree, XMLChildren (tree).begin ()});
  }
  void end_of_children (const XMLTree &tree) {
    open_.pop_back ();
    indent ();
    end_tag (tree);
  }
  void leaf (const XMLTree &tree) {
    if (contract_ && tree.text ().is_empty ())
      return output_.put (EndOfEmptyTag);
    output_.put (EndOfTag);
    output_.put_escaped (tree.text ());
    end_tag (tree);
  }
  void end_tag (const XMLTree &tree) {
    output_.put (EndTag);
    output_.put (tree.name ());
    output_.put (EndOfTag);
  }
  void line_break () {
    if (format_ != XMLCompact)
      output_.put (LineBreak);
  }
  void indent () {
    if (format_ == XMLIndented)
      output_.put_blanks (open_.size () * blanks_per_level);
  }

  Output &output_;
  XMLFormat format_;
  bool contract_;
  std::vector<Open> open_;
};

template <class Output>
auto write_tree (const XMLTree &tree, Output &&output, XMLFormat format, bool contract) {
  if (format > XMLIndented)
    (void)KELVANE_ASSERT (0);
  else
    XMLWriter<Output> (output, format, contract).write (tree);
  return output.finish ();
}
} // namespace

AStringList XMLTree::render (XMLFormat format, bool contract) const {
  return write_tree (*this, ListOutput (), format, contract);
}

AString XMLTree::render_text (XMLFormat format, bool contract) const {
  return write_tree (*this, TextOutput (), format, contract);
}

void XMLTree::write_to (const AByteSink &sink, XMLFormat format, bool contract) const {
  write_tree (*this, ByteOutput (sink), format, contract);
}
