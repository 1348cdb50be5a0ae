#include "faults/message_summary.h"

#include <pugixml.hpp>

namespace sim {

namespace {

void collect_channels (const pugi::xml_node &node, std::set<std::string> &channels) {
  for (const pugi::xml_node &child : node.children ()) {
    if (std::string_view (child.name ()) == "Channel")
      channels.insert (child.text ().get ());
    collect_channels (child, channels);
  }
}

} // namespace

MessageSummary summary_of (std::string_view message) {
  MessageSummary summary;
  pugi::xml_document document;
  if (!document.load_buffer (message.data (), message.size (), pugi::parse_default, pugi::encoding_utf8))
    return summary;
  const pugi::xml_node root = document.first_child ();
  summary.root = root.name ();
  for (const pugi::xml_node &child : root.children ())
    if (std::string_view (child.name ()) == "xid")
      summary.xid = child.text ().get ();
    else if (summary.name.empty ())
      summary.name = child.name ();
  collect_channels (root, summary.channels);
  return summary;
}

} // namespace sim
