#include "faults/message_summary.h"

#include <pugixml.hpp>

namespace sim {

namespace {

// Does not use recursion, because a client decides how deep its messages are nested.
class ChannelCollector : public pugi::xml_tree_walker {
public:
  bool for_each (pugi::xml_node &node) override {
    if (std::string_view (node.name ()) == "Channel")
      channels.insert (node.text ().get ());
    return true;
  }

  std::set<std::string> channels;
};

} // namespace

MessageSummary summary_of (std::string_view message) {
  MessageSummary summary;
  pugi::xml_document document;
  if (!document.load_buffer (message.data (), message.size (), pugi::parse_default, pugi::encoding_utf8))
    return summary;
  pugi::xml_node root = document.first_child ();
  summary.root = root.name ();
  for (const pugi::xml_node &child : root.children ())
    if (std::string_view (child.name ()) == "xid")
      summary.xid = child.text ().get ();
    else if (summary.name.empty ())
      summary.name = child.name ();
  ChannelCollector collector;
  root.traverse (collector);
  summary.channels = std::move (collector.channels);
  return summary;
}

} // namespace sim
