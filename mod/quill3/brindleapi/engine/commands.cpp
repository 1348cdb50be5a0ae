#include "engine/commands.h"

namespace QUILL3 {

void CommandDocument::write_to (XMLSink &sink) const {
  static const AString &root = *new AString ("cmd");
  sink.open (root);
  sink.open (tag_name (Tag::xid));
  sink.plain_text (xid);
  sink.close (tag_name (Tag::xid));
  sink.open (wire_name);
  write_fields (sink, rows, command);
  sink.close (wire_name);
  sink.close (root);
}

XMLTree CommandDocument::tree () const {
  XMLTreeSink sink;
  write_to (sink);
  return sink.take_first ();
}

XMLTree make_document (std::string_view xid, const AString &wire_name, const Rows &rows,
                       const void *command) {
  return CommandDocument{xid, wire_name, rows, command}.tree ();
}

} // namespace QUILL3
