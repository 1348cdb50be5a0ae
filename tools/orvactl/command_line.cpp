#include "command_line.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <map>

namespace orvactl {

namespace {

const char *const version_text =
    "orvactl " ORVACTL_VERSION "\nlibrary OrvaAPI64 " ORVA_VERSION ", the version that it was built with";

const char *const about = "Controls networked video servers.\n\n"
                          "CHANNELS are letters or numbers, such as A, 0, A,C-E or all. Positions are fields "
                          "(250), frames (125f) or\n"
                          "a timecode (10:00:00:12). Times have a unit, such as 10s or 500ms.";

const char *const ending =
    "Exit status: 0 done, 1 refused by the server, 2 wrong usage, 3 no connection or lost, 4 no answer in\n"
    "time (the outcome is unknown), 5 not found, 6 a file or the output failed, 130 interrupted.\n"
    "Environment: ORVA_SERVER is the server when --server is not given; NO_COLOR switches colours off.\n\n"
    "Example:\n  orvactl --server 10.0.0.5 channels";

/// The parser of one line. It keeps which of its options belongs to which parameter.
class Parser {
public:
  explicit Parser (Scope scope) : app_ (about, "orvactl") {
    app_.set_help_flag ("-h,--help", "print this help");
    app_.get_formatter ()->column_width (34);
    app_.footer (ending);
    app_.require_subcommand (1);
    app_.fallthrough ();
    if (scope == Scope::program) {
      app_.set_version_flag ("--version", version_text, "print the versions of the tool and the library");
      for (const Parameter &option : global_options ())
        add (app_, nullptr, option);
    }
    for (const Command &command : commands ())
      add (command);
  }

  CommandLine parse (const std::vector<std::string> &words) {
    CommandLine line;
    try {
      app_.parse (std::vector<std::string> (words.rbegin (), words.rend ()));
    } catch (const CLI::CallForHelp &) {
      line.answer = app_.help ();
      return line;
    } catch (const CLI::CallForVersion &) {
      line.answer = version_text;
      return line;
    } catch (const CLI::ParseError &error) {
      throw Problem (Exit::usage, explain (words, error));
    }
    for (const auto &[app, command] : apps_)
      if (app->parsed ())
        line.command = command;
    for (const Option &option : options_)
      if (option.command == nullptr || option.command == line.command)
        take (option, line.arguments);
    return line;
  }

private:
  struct Option {
    const CLI::Option *option;
    const Command *command; ///< null for a global option
    const Parameter *parameter;
  };

  void add (const Command &command) {
    CLI::App *parent = &app_;
    if (command.grouped ()) {
      CLI::App *&group = groups_[command.group ()];
      if (group == nullptr)
        group = add_group (command);
      parent = group;
    }
    CLI::App *const app = parent->add_subcommand (command.word (), command.summary);
    app->footer ("Example:\n  " + command.example);
    app->require_subcommand (0);
    if (command.hidden)
      app->group ("");
    for (const Parameter &parameter : command.parameters)
      add (*app, &command, parameter);
    apps_.emplace_back (app, &command);
  }

  CLI::App *add_group (const Command &first) {
    CLI::App *const app = app_.add_subcommand (first.group ());
    for (const Group &group : groups ())
      if (group.name == first.group ())
        app->description (group.summary);
    app->require_subcommand (1);
    app->footer ("Example:\n  " + first.example);
    return app;
  }

  void add (CLI::App &app, const Command *command, const Parameter &parameter) {
    CLI::Option *option = nullptr;
    if (parameter.takes == Takes::nothing) {
      option = app.add_flag (parameter.name, parameter.help);
    } else {
      const auto accept = [] (const CLI::results_t &) { return true; };
      option = app.add_option (parameter.name, accept, help_of (parameter));
      option->type_name (parameter.option () ? value_name (parameter) : "");
      option->multi_option_policy (CLI::MultiOptionPolicy::TakeAll);
      if (parameter.need == Need::repeated)
        option->expected (1, CLI::detail::expected_max_vector_size)->allow_extra_args ();
    }
    if (!parameter.option () && parameter.need == Need::required)
      option->required ();
    options_.push_back ({option, command, &parameter});
  }

  static std::string help_of (const Parameter &parameter) {
    std::string words;
    for (const std::string &word : parameter.words)
      words += (words.empty () ? ": " : ", ") + word;
    return parameter.help + words;
  }

  static void take (const Option &option, Arguments &arguments) {
    const Parameter &parameter = *option.parameter;
    if (option.option->count () == 0)
      return;
    if (parameter.takes == Takes::nothing) {
      arguments.add (parameter.name, "");
      return;
    }
    for (const std::string &value : option.option->results ()) {
      const std::string fault = fault_of (parameter, value);
      if (!fault.empty ())
        throw Problem (Exit::usage, fault);
      arguments.add (parameter.name, value);
    }
  }

  // --- What is wrong with a line

  std::string explain (const std::vector<std::string> &words, const CLI::ParseError &error) const {
    const std::string first = command_word (words);
    if (first.empty ())
      return "A command is missing. \"orvactl --help\" lists all.";
    const std::vector<std::string> names = words_of (first);
    if (names.empty ())
      return "There is no command \"" + first + "\"." + suggestion (first, first_words ());
    const CLI::App *app = app_.get_subcommand (first);
    std::string name = first;
    if (groups_.contains (first)) {
      const auto at = std::find (words.begin (), words.end (), first);
      const std::string second = at + 1 == words.end () ? "" : at[1];
      if (std::find (names.begin (), names.end (), second) == names.end ())
        return (second.empty () ? "\"" + first + "\" needs another word."
                                : "There is no command \"" + first + " " + second + "\".") +
               suggestion (second, names) + " \"orvactl " + first + " --help\" lists all.";
      app = app->get_subcommand (second);
      name += " " + second;
    }
    for (const std::string &word : words)
      if (word.starts_with ("--") && word.size () > 2 && !known_option (*app, word))
        return "\"" + name + "\" has no option \"" + word + "\"." +
               suggestion (word.substr (0, word.find ('=')), option_names (*app));
    return std::string (error.what ()) + ". \"orvactl " + name + " --help\" explains it.";
  }

  static std::vector<std::string> first_words () {
    std::vector<std::string> all;
    for (const Command &command : commands ())
      if (std::find (all.begin (), all.end (), command.group ()) == all.end ())
        all.push_back (command.group ());
    return all;
  }

  /// The second words of a group; the command itself where it is none.
  static std::vector<std::string> words_of (const std::string &first) {
    std::vector<std::string> all;
    for (const Command &command : commands ())
      if (command.group () == first)
        all.push_back (command.word ());
    return all;
  }

  static std::vector<std::string> option_names (const CLI::App &app) {
    std::vector<std::string> names;
    for (const CLI::App *each = &app; each != nullptr; each = each->get_parent ())
      for (const CLI::Option *option : each->get_options ())
        for (const std::string &name : option->get_lnames ())
          names.push_back ("--" + name);
    return names;
  }
  static bool known_option (const CLI::App &app, const std::string &word) {
    const std::vector<std::string> names = option_names (app);
    return std::find (names.begin (), names.end (), word.substr (0, word.find ('='))) != names.end ();
  }

  static std::string suggestion (const std::string &word, const std::vector<std::string> &words) {
    const std::string near = nearest (word, words);
    return near.empty () ? "" : " Did you mean \"" + near + "\"?";
  }

  CLI::App app_;
  std::map<std::string, CLI::App *> groups_;
  std::vector<std::pair<const CLI::App *, const Command *>> apps_;
  std::vector<Option> options_;
};

/// How many letters have to be put in, left out, changed or swapped to turn one word into another.
std::size_t distance (const std::string &a, const std::string &b) {
  std::vector<std::vector<std::size_t>> cost (a.size () + 1, std::vector<std::size_t> (b.size () + 1));
  for (std::size_t i = 0; i <= a.size (); ++i)
    for (std::size_t j = 0; j <= b.size (); ++j) {
      if (i == 0 || j == 0) {
        cost[i][j] = i + j;
        continue;
      }
      cost[i][j] = std::min (
          {cost[i - 1][j] + 1, cost[i][j - 1] + 1, cost[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
        cost[i][j] = std::min (cost[i][j], cost[i - 2][j - 2] + 1);
    }
  return cost[a.size ()][b.size ()];
}

} // namespace

std::string nearest (const std::string &word, const std::vector<std::string> &words) {
  std::string best;
  std::size_t least = std::max<std::size_t> (2, word.size () / 3) + 1;
  for (const std::string &each : words) {
    const std::size_t cost = distance (word, each);
    if (cost < least && cost < each.size ()) {
      least = cost;
      best = each;
    }
  }
  return best;
}

std::string command_word (const std::vector<std::string> &words) {
  for (std::size_t i = 0; i != words.size (); ++i) {
    if (!words[i].starts_with ("-"))
      return words[i];
    for (const Parameter &option : global_options ())
      if (option.name == words[i] && option.takes != Takes::nothing && i + 1 != words.size ())
        ++i;
  }
  return "";
}

CommandLine read_command_line (const std::vector<std::string> &words, Scope scope) {
  return Parser (scope).parse (words);
}

std::vector<std::string> split_line (const std::string &line) {
  std::vector<std::string> words;
  bool inside = false; // a word has begun, maybe an empty one in quotes
  char quote = 0;
  for (std::size_t i = 0; i != line.size (); ++i) {
    const char c = line[i];
    const bool blank = c == ' ' || c == '\t' || c == '\r';
    if (quote == 0 && blank) {
      inside = false;
      continue;
    }
    if (quote == 0 && !inside && c == '#')
      break;
    if (!inside) {
      words.emplace_back ();
      inside = true;
    }
    if (c == '\\' && quote != '\'' && i + 1 != line.size ())
      words.back () += line[++i];
    else if (c == quote)
      quote = 0;
    else if (quote == 0 && (c == '"' || c == '\''))
      quote = c;
    else
      words.back () += c;
  }
  if (quote != 0)
    throw Problem (Exit::usage, "A quote has no end: " + line);
  return words;
}

} // namespace orvactl
