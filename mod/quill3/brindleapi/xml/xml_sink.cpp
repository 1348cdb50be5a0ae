#include "xml/xml_sink.h"

void XMLTreeSink::open (const AString &) {
  open_.emplace_back ();
}

void XMLTreeSink::text (const AString &text) {
  open_.back ().text = text;
}

void XMLTreeSink::plain_text (std::string_view text) {
  open_.back ().text = AString::from_latin1 (text);
}

void XMLTreeSink::close (const AString &name) {
  Open &last = open_.back ();
  XMLTree tree =
      last.children.is_empty () ? XMLTree (name, last.text) : XMLTree (name, std::move (last.children));
  open_.pop_back ();
  (open_.empty () ? done_ : open_.back ().children).push_back (std::move (tree));
}

void XMLByteSink::end_start_tag () {
  if (last_ == Last::start)
    bytes_.put_ascii (">");
}

void XMLByteSink::open (const AString &name) {
  end_start_tag ();
  bytes_.put_ascii (last_ == Last::nothing ? "<" : "\r\n<");
  bytes_.put (name);
  last_ = Last::start;
}

void XMLByteSink::text (const AString &text) {
  if (text.is_empty ())
    return;
  end_start_tag ();
  bytes_.put_escaped (text);
  last_ = Last::text;
}

void XMLByteSink::plain_text (std::string_view text) {
  end_start_tag ();
  bytes_.put_ascii (text);
  last_ = Last::text;
}

// C87: doc/compatibility.md
void XMLByteSink::close (const AString &name) {
  if (last_ == Last::start) {
    bytes_.put_ascii (" />");
  } else {
    bytes_.put_ascii (last_ == Last::text ? "</" : "\r\n</");
    bytes_.put (name);
    bytes_.put_ascii (">");
  }
  last_ = Last::element;
}
