#include "xml/xml_parse.h"

#include "xml/xml_nodes.h"

XMLTree parse_xml_text (const AString &text, bool *bad_result, const XMLNameTable *names) {
  XMLNodes nodes (names);
  const bool accepted = nodes.read_text (text);
  if (bad_result != nullptr)
    *bad_result = !accepted;
  return nodes.tree ();
}
