#include "command.h"

#include <iterator>

namespace orvactl {

const std::vector<Command> &commands () {
  static const std::vector<Command> all = [] {
    std::vector<Command> list;
    for (const auto family :
         {state_commands, top_commands, watch_commands, transport_commands, load_commands, record_commands,
          clip_list_commands, clip_commands, metadata_commands, virtual_clip_commands, playlist_commands,
          store_commands, check_commands, ping_commands, script_commands, completion_commands}) {
      Family more = family ();
      list.insert (list.end (), std::make_move_iterator (more.begin ()),
                   std::make_move_iterator (more.end ()));
    }
    return list;
  }();
  return all;
}

const std::vector<Group> &groups () {
  static const std::vector<Group> all = {
      {"clip", "one clip: look at it, make it, change it"},
      {"meta", "free-form pairs of a key and a value of a clip"},
      {"vclip", "virtual clips, which are put together from pieces of other clips"},
      {"playlist", "the list of a channel that the server holds"},
      {"kv", "key-value stores that the server keeps"},
  };
  return all;
}

const std::vector<Parameter> &global_options () {
  static const std::vector<Parameter> all = {
      {"--server", Takes::server, "address of the server, or its name in the configuration; may be repeated"},
      {"--timeout", Takes::time, "how long a command may take, such as 2s or 500ms; 5s by default"},
      {"--json", Takes::nothing, "print JSON"},
      {"--config", Takes::file, "the configuration file"},
  };
  return all;
}

} // namespace orvactl
