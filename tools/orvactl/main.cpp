#include "command_line.h"
#include "session.h"
#include "terminal.h"

#include <algorithm>
#include <cstdio>
#include <exception>

namespace {

using namespace orvactl;

Exit answer (const std::string &text) {
  Output out (false, false);
  out.line (text.substr (0, text.find_last_not_of ('\n') + 1));
  out.flush ();
  return Exit::done;
}

Exit run (const std::vector<std::string> &words) {
  const CommandLine line = read_command_line (words, Scope::program);
  if (line.command == nullptr)
    return answer (line.answer);
  const Command &command = *line.command;
  if (command.servers == Servers::none) {
    Session session ({{}, std::chrono::seconds (5), line.arguments.has ("--json")}, false);
    return run_command (session, command, line.arguments);
  }
  Settings settings = settings_of (line.arguments);
  if (command.servers == Servers::one && settings.servers.size () != 1)
    throw Problem (Exit::usage, "\"" + command.name + "\" works on one server.");
  Session session (std::move (settings), command.name == "script");
  const Exit status = run_command (session, command, line.arguments);
  leave (static_cast<int> (status)); // does not wait for what a server has not answered
}

/// Monitoring systems read the standard output, and have a status of their own for what could not be found
/// out.
Exit unknown (const std::string &text) {
  Output out (false, false);
  out.line ("UNKNOWN - " + shown (text));
  out.flush ();
  return static_cast<Exit> (3);
}

} // namespace

int main (int argc, char **argv) {
  const std::vector<std::string> words = utf8_arguments (argc, argv);
  const bool json = std::find (words.begin (), words.end (), "--json") != words.end ();
  Exit status = Exit::failed;
  try {
    status = run (words);
  } catch (const Problem &problem) {
    status = problem.status ();
    if (command_word (words) == "check")
      status = unknown (problem.what ());
    else
      complain (status, problem.what (), json);
  } catch (const std::exception &error) {
    complain (status, error.what (), json);
  }
  leave (static_cast<int> (status));
}
