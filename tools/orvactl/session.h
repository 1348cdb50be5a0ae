#pragma once

#include "arguments.h"
#include "output.h"
#include "settings.h"

#include <deque>
#include <memory>
#include <optional>
#include <set>
#include <string>

namespace orvactl {

/// When a command has to have ended.
class Clock {
public:
  explicit Clock (orva::Limit limit) : limit_ (limit) { restart (); }
  /// Gives the whole limit again, for the next of several steps.
  void restart () { end_ = std::chrono::steady_clock::now () + limit_; }
  orva::Limit limit () const { return limit_; }
  orva::Limit left () const {
    return std::max (orva::Limit (0), orva::Limit (end_ - std::chrono::steady_clock::now ()));
  }

private:
  orva::Limit limit_;
  std::chrono::steady_clock::time_point end_;
};

/// A server that is being worked with.
class Link {
public:
  Link (const ServerName &name, const Clock &clock) : name_ (name), clock_ (clock), server_ (name.address) {}

  const std::string &label () const { return name_.label; }
  orva::Server &server () { return server_; }

  /// Waits until the server is connected. @throws Problem with Exit::no_connection
  void connect ();
  /// The operations of the connected server, within what is left of the time limit.
  orva::ServerControl<orva::throwing> ask ();
  /// What the server says of its video; asked once.
  const orva::Video &video ();
  orva::Timebase base () { return video ().timebase (); }
  /// A position as it was written, in fields.
  orva::Position position (const WrittenPosition &written);
  std::optional<orva::Position> position_if (const Arguments &arguments, const std::string &name);

private:
  const ServerName name_;
  const Clock &clock_;
  orva::Server server_;
  std::optional<orva::Video> video_;
};

/// What a command works with: servers, limits and the output.
class Session {
public:
  /// @param several whether more than one command runs in this session
  Session (Settings settings, bool several);

  Output &out () { return out_; }
  Clock &clock () { return clock_; }
  const Settings &settings () const { return settings_; }
  /// The servers that were named. A link is opened with the first use of this.
  std::deque<Link> &links ();
  /// The server, for a command that works on one.
  Link &link () { return links ().front (); }
  orva::ServerControl<orva::throwing> ask () { return link ().ask (); }
  /// The virtual clips that an earlier command of this session has opened for changes.
  std::set<std::string> open_virtual_clips{};
  /// Where in a script the command is, as text in front of its messages.
  std::string place{};
  /// Writes a message to the standard error.
  void complain (Exit status, const std::string &text) const {
    orvactl::complain (status, place + text, out_.json ());
  }

private:
  const Settings settings_;
  Output out_;
  Clock clock_;
  std::deque<Link> links_;
};

/// Runs a command and writes its message when it fails.
Exit run_command (Session &session, const Command &command, const Arguments &arguments);

} // namespace orvactl
