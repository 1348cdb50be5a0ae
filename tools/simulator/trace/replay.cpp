#include "trace/replay.h"

#include "log.h"
#include "options.h"
#include "trace/buffered_socket.h"
#include "trace/trace.h"

#include <asio.hpp>
#include <csignal>
#include <deque>
#include <fmt/format.h>
#include <map>
#include <memory>

namespace sim {

namespace {

using asio::ip::tcp;

constexpr std::string_view open_tag = "<xid>", close_tag = "</xid>";

std::string_view identifier_of (std::string_view message) {
  const std::size_t open = message.find (open_tag);
  const std::size_t close = message.find (close_tag);
  if (open == message.npos || close == message.npos || close < open)
    return {};
  return message.substr (open + open_tag.size (), close - open - open_tag.size ());
}

std::string with_identifier (std::string_view message, std::string_view identifier) {
  const std::string_view old = identifier_of (message);
  if (old.empty ())
    return std::string (message);
  const auto at = static_cast<std::size_t> (old.data () - message.data ());
  return fmt::format ("{}{}{}", message.substr (0, at), identifier, message.substr (at + old.size ()));
}

/// A connection that is played.
class PlayedConnection {
public:
  /// @param ended is called once: with an empty text when all was played, or with what the client did instead
  PlayedConnection (std::deque<TraceLine> lines, std::shared_ptr<BufferedSocket> client,
                    std::function<void (std::string)> ended)
      : lines_ (std::move (lines)), client_ (std::move (client)), ended_ (std::move (ended)) {
    client_->on_bytes = [this] (std::string_view bytes) { take (bytes); };
    client_->on_end = [this] { leave (); };
    client_->start ();
    play ();
  }

  ~PlayedConnection () { client_->on_bytes = nullptr, client_->on_end = nullptr; }

private:
  void take (std::string_view bytes) {
    from_client_.feed (bytes);
    for (std::string message = from_client_.next (); !message.empty (); message = from_client_.next ())
      arrived_.push_back (std::move (message));
    play ();
  }

  // Sends what the server sent, up to the next message of the client that has not arrived.
  void play () {
    while (!over_ && !lines_.empty ()) {
      const TraceLine &line = lines_.front ();
      if (line.from == TraceLine::From::server)
        client_->put (with_identifier (line.message, identifier_for (line.message)));
      else if (line.from == TraceLine::From::client && !line.partial && !compare (line))
        return;
      lines_.pop_front ();
      ++place_;
    }
    if (over_)
      return;
    if (!arrived_.empty ())
      return fail (fmt::format ("the trace has ended, and the client sends {}", arrived_.front ()));
    end ("");
  }

  // Whether the client has sent this message.
  bool compare (const TraceLine &line) {
    if (arrived_.empty ())
      return false;
    const std::string message = std::move (arrived_.front ());
    arrived_.pop_front ();
    if (with_identifier (message, "") != with_identifier (line.message, "")) {
      fail (fmt::format ("instead of {} the client sends {}", line.message, message));
      return false;
    }
    identifiers_[std::string (identifier_of (line.message))] = identifier_of (message);
    return true;
  }

  std::string identifier_for (std::string_view message) const {
    const std::string old (identifier_of (message));
    const auto found = identifiers_.find (old);
    return found == identifiers_.end () ? old : found->second;
  }

  void leave () {
    for (const TraceLine &line : lines_)
      if (line.from == TraceLine::From::client && !line.partial)
        return fail (fmt::format ("instead of {} the client disconnects", line.message));
    end ("");
  }

  void fail (const std::string &how) { end (fmt::format ("line {}: {}", place_ + 1, how)); }

  void end (const std::string &problem) {
    if (std::exchange (over_, true))
      return;
    client_->finish ();
    ended_ (problem);
  }

  std::deque<TraceLine> lines_;
  const std::shared_ptr<BufferedSocket> client_;
  const std::function<void (std::string)> ended_;
  Splitter from_client_{Splitter::Side::client};
  std::deque<std::string> arrived_;
  std::map<std::string, std::string> identifiers_; ///< by identifier of the trace: that of the client
  std::size_t place_ = 0;
  bool over_ = false;
};

std::deque<std::deque<TraceLine>> connections_of (const std::string &file) {
  std::map<int, std::deque<TraceLine>> by_number;
  for (TraceLine &line : read_trace (file))
    if (line.from != TraceLine::From::nobody || line.event == "open")
      by_number[line.connection].push_back (std::move (line));
  std::deque<std::deque<TraceLine>> connections;
  for (auto &[number, lines] : by_number)
    connections.push_back (std::move (lines));
  return connections;
}

} // namespace

int run_replay (const ReplayOptions &options) {
  asio::io_context context (1);
  asio::signal_set signals (context, SIGINT, SIGTERM);
  signals.async_wait ([&] (const asio::error_code &, int) { context.stop (); });
  std::deque<std::deque<TraceLine>> connections = connections_of (options.trace);
  std::size_t left = connections.size ();
  int status = 0, number = 0;
  std::vector<std::unique_ptr<PlayedConnection>> played;
  const auto ended = [&] (int part, const std::string &problem) {
    if (!problem.empty ()) {
      print_error (fmt::format ("connection {}, {}", part, problem));
      status = status_unexpected;
    }
    if (--left == 0 || status != 0)
      asio::post (context, [&] { context.stop (); });
  };
  tcp::acceptor acceptor (context, {asio::ip::make_address_v4 (options.listen), port});
  std::function<void ()> accept = [&] {
    acceptor.async_accept ([&] (const asio::error_code &error, tcp::socket socket) {
      if (error)
        return;
      if (!connections.empty ()) {
        std::deque<TraceLine> lines = std::move (connections.front ());
        connections.pop_front ();
        played.push_back (std::make_unique<PlayedConnection> (
            std::move (lines), std::make_shared<BufferedSocket> (std::move (socket)),
            [&, part = ++number] (const std::string &problem) { ended (part, problem); }));
      }
      accept ();
    });
  };
  accept ();
  print_line (fmt::format ("listening on {}:{}", options.listen, port));
  if (left > 0)
    context.run ();
  return status;
}

} // namespace sim
