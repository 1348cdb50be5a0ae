#pragma once

#include "channels.h"
#include "client.h"
#include "options.h"
#include "standard.h"
#include "values.h"
#include "writer.h"

#include <string>
#include <vector>

namespace sim {

/// The simulated server without its sockets: everything it knows, and who is connected. One thread.
class World {
public:
  explicit World (const Options &given);

  void join (Client &client);
  void leave (Client &client);

  /// Carries out one document and answers it. @throws Malformed when it cannot be answered.
  void receive (Client &client, const std::string &document);

  /// So many fields have gone by.
  void pass_fields (int count);

  /// Sends a report to everyone registered for that kind.
  void report (std::string_view report_type, const std::string &body);

  /// Sends one client the present value of a kind of channel report.
  void report_present (Client &client, int channel, int kind);

  /// Sends the channel reports whose values have changed.
  void report_channels ();

  const Options options;
  const Standard standard;
  Channels channels;

private:
  void send_report (Client &client, const std::string &body);

  std::vector<Client *> clients_;
  std::array<std::array<std::string, 8>, channel_count> reported_; ///< last body of each channel and kind
};

/// A command on its way through its handler. A handler that returns without an answer has said `ok`; one
/// that throws a Refusal has said `error`.
class Call {
public:
  Call (World &whole, Client &from, std::string identifier, const Element &command)
      : world (whole), client (from), arguments (command), xid_ (std::move (identifier)) {}

  /// Sends a row of a stream, which `ok` will end.
  void row (const std::string &body);

  /// Sends the one answer of the command.
  void answer (const std::string &body);

  bool answered () const { return answered_; }

  World &world;
  Client &client;
  const Arguments arguments;

private:
  const std::string xid_;
  bool answered_ = false;
};

using Handler = void (*) (Call &);

/// The handler of a command, or null.
Handler find_handler (std::string_view command);

} // namespace sim
