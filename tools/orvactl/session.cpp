#include "session.h"

namespace orvactl {

void Link::connect () {
  const orva::result<void> connected = server_.nothrow ().within (clock_.left ()).wait_until_connected ();
  if (!connected)
    throw Problem (Exit::no_connection,
                   "No connection to " + name_.label + " within " + time_text (clock_.limit ()) + ".");
}

orva::ServerControl<orva::throwing> Link::ask () {
  if (!server_.connected ())
    connect ();
  return server_.within (clock_.left ());
}

const orva::Video &Link::video () {
  if (!video_)
    video_ = ask ().video ();
  return *video_;
}

orva::Position Link::position (const WrittenPosition &written) {
  if (written.fields)
    return *written.fields;
  if (!base ().certain ())
    warn ("It is not certain that " + name_.label + " counts 60 fields in a second. Fields are certain.");
  return written.at (base ());
}

std::optional<orva::Position> Link::position_if (const Arguments &arguments, const std::string &name) {
  const auto written = arguments.written_if (name);
  return written ? std::optional (position (*written)) : std::nullopt;
}

Session::Session (Settings settings, bool several)
    : settings_ (std::move (settings)), out_ (settings_.json, several), clock_ (settings_.limit) {}

std::deque<Link> &Session::links () {
  if (links_.empty ())
    for (const ServerName &name : settings_.servers)
      links_.emplace_back (name, clock_);
  return links_;
}

namespace {

/// The clip among the arguments that does not exist; nothing when all are there or it cannot be found out.
std::optional<std::string> missing_clip (Session &session, const Command &command,
                                         const Arguments &arguments) {
  for (const Parameter &parameter : command.parameters) {
    if (parameter.takes != Takes::clip || !arguments.has (parameter.name))
      continue;
    const std::string &clip = arguments.text (parameter.name);
    const orva::result<bool> exists =
        session.link ().server ().nothrow ().within (session.clock ().left ()).clip (clip).exists ();
    if (exists && !*exists)
      return clip;
  }
  return {};
}

Exit explain (Session &session, const Command &command, const Arguments &arguments,
              const orva::error &error) {
  Exit status = exit_of (error.kind ());
  if (error.kind () == orva::Kind::refused && missing_clip (session, command, arguments))
    status = Exit::not_found;
  session.complain (status, error.what ());
  return status;
}

} // namespace

namespace {

/// What was printed before a failure is not lost. A failure to write it has been told already, or does not
/// matter now.
void flush_quietly (Output &out) {
  try {
    out.flush ();
  } catch (const Problem &) {
  }
}

} // namespace

Exit run_command (Session &session, const Command &command, const Arguments &arguments) {
  try {
    session.clock ().restart ();
    const Exit status = command.run (session, arguments);
    session.out ().flush ();
    return status;
  } catch (const Problem &problem) {
    flush_quietly (session.out ());
    session.complain (problem.status (), problem.what ());
    return problem.status ();
  } catch (const orva::error &error) {
    flush_quietly (session.out ());
    return explain (session, command, arguments, error);
  }
}

} // namespace orvactl
