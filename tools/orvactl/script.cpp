// script: commands from a file or the standard input, one a line, on one connection.
#include "command_line.h"
#include "files.h"
#include "session.h"

#include <iostream>
#include <sstream>

namespace orvactl {

namespace {

/// Runs one line. @throws Problem when it is no command, or one that makes no sense in a script
Exit run_line (Session &session, const std::string &text) {
  const std::vector<std::string> words = split_line (text);
  if (words.empty ())
    return Exit::done;
  const CommandLine line = read_command_line (words, Scope::script);
  if (line.command == nullptr) {
    session.out ().raw (line.answer);
    return Exit::done;
  }
  if (line.command->name == "script" || line.command->name == "top")
    throw Problem (Exit::usage, "\"" + line.command->name + "\" cannot be used in a script.");
  return run_command (session, *line.command, line.arguments);
}

Exit run_numbered (Session &session, const std::string &text, std::size_t number) {
  session.place = "line " + std::to_string (number) + ": ";
  try {
    return run_line (session, text);
  } catch (const Problem &problem) {
    session.complain (problem.status (), problem.what ());
    return problem.status ();
  }
}

Exit run_all (Session &session, std::istream &lines, bool keep_going) {
  Exit status = Exit::done;
  std::size_t number = 0;
  for (std::string text; std::getline (lines, text);) {
    const Exit outcome = run_numbered (session, text, ++number);
    session.out ().flush ();
    if (outcome == Exit::done)
      continue;
    if (status == Exit::done)
      status = outcome;
    if (!keep_going)
      break;
  }
  return status;
}

Exit script (Session &session, const Arguments &arguments) {
  const std::string path = arguments.text_or ("FILE", "-");
  const bool keep_going = arguments.has ("--keep-going");
  if (path == "-")
    return run_all (session, std::cin, keep_going);
  std::istringstream lines (read_file (path));
  return run_all (session, lines, keep_going);
}

} // namespace

Family script_commands () {
  return {{"script",
           "run commands, one a line, on one connection; the first that fails ends it",
           {{"FILE", Takes::file, "the commands; the standard input by default", Need::optional},
            {"--keep-going", Takes::nothing, "go on after a command that failed"}},
           "orvactl script show.orva --keep-going",
           script}};
}

} // namespace orvactl
