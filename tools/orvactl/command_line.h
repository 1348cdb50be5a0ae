#pragma once

#include "arguments.h"

#include <optional>
#include <string>
#include <vector>

namespace orvactl {

/// A command line that has been read.
struct CommandLine {
  const Command *command = nullptr; ///< null when only help or the version is wanted
  Arguments arguments;              ///< with the global options
  std::string answer;               ///< help or the version
};

/// Whether a line may have the global options.
enum class Scope { program, script };

/// Reads a command line without the name of the program. @throws Problem with Exit::usage
CommandLine read_command_line (const std::vector<std::string> &words, Scope scope);

/// The command of a line that may be wrong: its first word that belongs to no global option. Empty without
/// one.
std::string command_word (const std::vector<std::string> &words);

/// Cuts a line of a script into words. Quotes of both kinds and backslashes work as in a shell; "#" at the
/// start of a word begins a comment. @throws Problem with Exit::usage for a quote without its end
std::vector<std::string> split_line (const std::string &line);

/// The nearest of some words, for a typing error; empty when none is near.
std::string nearest (const std::string &word, const std::vector<std::string> &words);

} // namespace orvactl
