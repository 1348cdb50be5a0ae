// completion: scripts for shells, and the words that they offer.
#include "command_line.h"
#include "completion_scripts.h"
#include "session.h"

#include <algorithm>

namespace orvactl {

namespace {

using Words = std::vector<std::string>;

/// A server must not hold a shell up for longer.
constexpr orva::Limit patience = std::chrono::seconds (1);
constexpr std::size_t most_names = 500;

/// What the words before the one that is being typed mean.
struct Context {
  Arguments global;
  Words places;                       ///< words that are no options, with the command
  const Parameter *expects = nullptr; ///< an option whose value is being typed
};

const Command *command_of (const Words &places, std::size_t &words) {
  for (const Command &command : commands ()) {
    words = command.grouped () ? 2 : 1;
    if (places.size () >= words && places[0] == command.group () &&
        (!command.grouped () || places[1] == command.word ()))
      return &command;
  }
  return nullptr;
}

const Parameter *option_named (const std::string &name, const Words &places) {
  std::size_t words = 0;
  const Command *const command = command_of (places, words);
  for (const auto *list : {&global_options (), command == nullptr ? nullptr : &command->parameters})
    if (list != nullptr)
      for (const Parameter &each : *list)
        if (each.name == name)
          return &each;
  return nullptr;
}

Context context_of (const Words &before) {
  Context context;
  for (const std::string &word : before) {
    if (context.expects != nullptr) {
      context.global.add (context.expects->name, word);
      context.expects = nullptr;
    } else if (!word.starts_with ("-")) {
      context.places.push_back (word);
    } else {
      const Parameter *const option = option_named (word, context.places);
      context.expects = option == nullptr || option->takes == Takes::nothing ? nullptr : option;
    }
  }
  return context;
}

/// Asks the server, within a limit. A failure offers nothing.
Words ask_server (const Context &context, bool directories) {
  try {
    const Settings settings = settings_of (context.global);
    const Clock clock (std::min (settings.limit, patience));
    Link link (settings.servers.front (), clock);
    return directories ? link.ask ().directories () : link.ask ().clips ();
  } catch (const std::exception &) {
    return {};
  }
}

Words server_names (const Context &context) {
  Words names;
  try {
    for (const ServerName &each : read_configuration (context.global).named)
      names.push_back (each.label);
  } catch (const Problem &) { // nothing to offer
  }
  return names;
}

Words values_of (const Parameter &parameter, const Context &context) {
  switch (parameter.takes) {
  case Takes::word:
    return parameter.words;
  case Takes::channel:
    return {"A", "B", "C", "D", "E", "F", "G", "H"};
  case Takes::channels:
    return {"A", "B", "C", "D", "E", "F", "G", "H", "all"};
  case Takes::clip:
    return ask_server (context, false);
  case Takes::directory:
    return ask_server (context, true);
  case Takes::server:
    return server_names (context);
  case Takes::tracks:
    return {"video", "key", "audio", "video,audio", "all", "none"};
  case Takes::edit_tracks:
    return {"bit4", "bit5", "others", "all", "none"};
  default:
    return {};
  }
}

Words first_words (const std::string &group) {
  Words all;
  for (const Command &command : commands ())
    if (!command.hidden && (group.empty () || (command.grouped () && command.group () == group)))
      all.push_back (group.empty () ? command.group () : command.word ());
  all.erase (std::unique (all.begin (), all.end ()), all.end ());
  return all;
}

Words candidates (const Context &context, bool option) {
  if (context.expects != nullptr)
    return values_of (*context.expects, context);
  std::size_t words = 0;
  const Command *const command = command_of (context.places, words);
  if (option) {
    Words names = {"--help"};
    for (const auto *list : {&global_options (), command == nullptr ? nullptr : &command->parameters})
      if (list != nullptr)
        for (const Parameter &each : *list)
          if (each.option ())
            names.push_back (each.name);
    return names;
  }
  if (command == nullptr)
    return context.places.size () > 1 ? Words ()
                                      : first_words (context.places.empty () ? "" : context.places[0]);
  std::size_t place = context.places.size () - words;
  for (const Parameter &each : command->parameters)
    if (!each.option () && place-- == 0)
      return values_of (each, context);
  return {};
}

Exit complete (Session &session, const Arguments &arguments) {
  Words before = arguments.all ("WORDS");
  const std::string typed = before.empty () ? "" : before.back ();
  if (!before.empty ())
    before.pop_back ();
  std::size_t count = 0;
  for (const std::string &word : candidates (context_of (before), typed.starts_with ("-")))
    if (word.starts_with (typed) && shown (word) == word && ++count <= most_names)
      session.out ().line (word);
  return Exit::done;
}

Exit completion (Session &session, const Arguments &arguments) {
  session.out ().raw (arguments.text ("SHELL") == "bash" ? bash_completion : zsh_completion);
  return Exit::done;
}

} // namespace

Family completion_commands () {
  return {{"completion",
           "print the completion script of a shell",
           {{"SHELL", Takes::word, "", Need::required, {"bash", "zsh"}}},
           "source <(orvactl completion bash)",
           completion,
           Servers::none},
          {"complete",
           "print the words that may follow, for the scripts of shells",
           {{"WORDS", Takes::text, "the words before the cursor, behind --", Need::repeated}},
           "orvactl complete -- play ''",
           complete,
           Servers::none,
           true}};
}

} // namespace orvactl
