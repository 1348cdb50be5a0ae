#include "faults/glance.h"

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

Glance glance_at (std::string_view message) {
  Glance glance;
  pugi::xml_document document;
  if (!document.load_buffer (message.data (), message.size (), pugi::parse_default, pugi::encoding_utf8))
    return glance;
  const pugi::xml_node root = document.first_child ();
  glance.root = root.name ();
  for (const pugi::xml_node &child : root.children ())
    if (std::string_view (child.name ()) == "xid")
      glance.xid = child.text ().get ();
    else if (glance.name.empty ())
      glance.name = child.name ();
  collect_channels (root, glance.channels);
  return glance;
}

} // namespace sim
