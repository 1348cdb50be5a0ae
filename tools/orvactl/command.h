#pragma once

#include "problem.h"

#include <string>
#include <vector>

namespace orvactl {

class Arguments;
class Session;

/// What an argument is. It decides how a value is checked, what help calls it, and how it is completed.
enum class Takes {
  nothing, ///< an option without a value
  text,
  word,     ///< one of the words of the parameter
  channel,  ///< A to H or 0 to 7
  channels, ///< a set of channels, such as A,C-E
  clip,     ///< a clip that exists
  new_clip,
  directory,
  position,    ///< fields, frames or a timecode
  distance,    ///< the same with a sign
  number,      ///< any number
  count,       ///< a whole number that is not negative
  time,        ///< a length of time, such as 10s
  condition,   ///< of a channel, such as "A stopped"
  tracks,      ///< such as video,audio
  edit_tracks, ///< such as bit4,others
  server,      ///< an address, or a name in the configuration
  file
};

enum class Need { required, optional, repeated };

/// An argument of a command. The name of an option begins with "--", any other name is that of a place.
struct Parameter {
  std::string name;
  Takes takes;
  std::string help;
  Need need = Need::required; ///< of an argument without "--"; options can always be left out
  std::vector<std::string> words{};

  bool option () const { return name.starts_with ("--"); }
};

using Run = Exit (*) (Session &, const Arguments &);

/// Whether a command works on one server, on any number of them, or on none.
enum class Servers { one, many, none };

/// A command. Help, completion, suggestions and the checks of the command line all come from this.
struct Command {
  std::string name; ///< one word, or a group and a word, as in "clip show"
  std::string summary;
  std::vector<Parameter> parameters;
  std::string example; ///< a command line
  Run run;
  Servers servers = Servers::one;
  bool hidden = false; ///< not in the list of commands

  std::string group () const { return name.substr (0, name.find (' ')); }
  std::string word () const { return name.substr (name.find (' ') + 1); }
  bool grouped () const { return name.find (' ') != std::string::npos; }
};

/// What the first word of grouped commands is about.
struct Group {
  std::string name;
  std::string summary;
};

const std::vector<Command> &commands ();
const std::vector<Group> &groups ();
/// The options that all commands have.
const std::vector<Parameter> &global_options ();

using Family = std::vector<Command>;

// The families of commands, each in its file.
Family state_commands ();
Family watch_commands ();
Family top_commands ();
Family transport_commands ();
Family load_commands ();
Family record_commands ();
Family clip_list_commands ();
Family clip_commands ();
Family metadata_commands ();
Family virtual_clip_commands ();
Family playlist_commands ();
Family store_commands ();
Family check_commands ();
Family ping_commands ();
Family script_commands ();
Family completion_commands ();

} // namespace orvactl
