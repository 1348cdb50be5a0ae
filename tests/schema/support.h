#pragma once

#include "xml/xml_parse.h"

#include <string>

/// The tree of a piece of XML that the test writes out.
inline XMLTree parsed (const char *text) {
  return parse_xml_text (AString::from_utf8 (text));
}
inline XMLTree parsed (const std::string &text) {
  return parsed (text.c_str ());
}

/// A tree as XML without line breaks; empty for the null tree.
inline std::string written (const XMLTree &tree) {
  return tree.is_null () ? std::string () : tree.render_text (XMLCompact, true).to_std_string ();
}

/// The XML of an element around what is inside it.
inline std::string element (const std::string &name, const std::string &inside) {
  return inside.empty () ? "<" + name + " />" : "<" + name + ">" + inside + "</" + name + ">";
}
