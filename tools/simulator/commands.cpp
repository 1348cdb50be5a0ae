#include "commands.h"

#include "vocabulary.h"

#include <fmt/format.h>

namespace sim {

namespace {

int existing_channel (int number) {
  if (number >= channel_count)
    throw Refusal (fmt::format ("Channel {} does not exist, this server has A to {}",
                                word_at ("Channel", number), word_at ("Channel", channel_count - 1)));
  return number;
}

Handlers all_handlers () {
  Handlers handlers;
  add_server_commands (handlers);
  add_report_commands (handlers);
  add_transport_commands (handlers);
  add_cue_commands (handlers);
  add_clip_commands (handlers);
  add_vclip_commands (handlers);
  add_list_commands (handlers);
  add_listplay_commands (handlers);
  add_metadata_commands (handlers);
  add_dictionary_commands (handlers);
  return handlers;
}

} // namespace

Handler find_handler (std::string_view command) {
  static const Handlers &handlers = *new Handlers (all_handlers ());
  const auto found = handlers.find (command);
  return found == handlers.end () ? nullptr : found->second;
}

int channel_of (const Arguments &arguments) {
  return existing_channel (arguments.word ("Channel"));
}

std::set<int> channels_of (const Arguments &arguments) {
  const std::set<int> channels = arguments.words ("ChannelSet");
  for (const int channel : channels)
    existing_channel (channel);
  return channels;
}

} // namespace sim
