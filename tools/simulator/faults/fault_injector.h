#pragma once

#include "faults/faults.h"

#include <asio.hpp>
#include <deque>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace sim {

/// The socket of one client, as a FaultInjector uses it. None of these functions calls the FaultInjector.
class Endpoint {
public:
  virtual ~Endpoint () = default;

  /// Queues bytes for sending. Never waits.
  virtual void put (std::string_view bytes) = 0;
  /// Closes the connection when all that is queued has been sent.
  virtual void finish () = 0;
  /// Ends the connection at once, with a reset.
  virtual void reset () = 0;
  /// Whether bytes are read from the socket.
  virtual void allow_reading (bool allowed) = 0;
};

/// Sees the messages of all connections.
class MessageObserver {
public:
  virtual ~MessageObserver () = default;

  /// A command has been received, and these rules apply to it.
  virtual void received (int client, std::string_view command, const std::vector<Rule> &applied) = 0;
  /// A message is about to be sent. This is the message before any fault.
  virtual void sent (int client, std::string_view message) = 0;
};

/// Passes on the messages of one connection and applies the faults to them. Without faults they are not
/// changed. One thread.
class FaultInjector : public std::enable_shared_from_this<FaultInjector> {
public:
  FaultInjector (asio::io_context &context, Faults &faults, MessageObserver &observer, Endpoint &endpoint,
                 int client, std::string address)
      : context_ (context), faults_ (faults), observer_ (observer), endpoint_ (&endpoint), client_ (client),
        address_ (std::move (address)) {}

  const std::string &address () const { return address_; }

  /// Must be called before the endpoint is destroyed.
  void detach ();

  /// Must be called for each command that is received. @return whether the command is carried out
  bool receive (std::string_view command);

  /// Sends a whole message.
  void send (std::string_view message);

  /// Must be called when the lasting rules have changed.
  void refresh ();

  /// Whether commands may be read from the socket, and those that have been read may be carried out.
  bool may_read () const;

  /// The number of bytes that wait here.
  std::size_t held () const { return held_; }

private:
  bool frozen () const;
  enum class After { nothing, close, reset };
  struct QueuedBytes {
    std::string bytes;
    std::chrono::milliseconds wait{0}; ///< before it is sent
    bool overtake = false;             ///< later messages are sent while it waits
    bool after_next_answer = false;    ///< it is sent after the next answer, or `most_wait` later
    std::chrono::milliseconds most_wait{0};
    After after = After::nothing;
  };
  struct PendingAnswer {
    std::vector<Rule> rules;
    std::uint64_t rows = 0; ///< messages of the answer so far
  };

  std::vector<Rule> rules_for (const MessageSummary &message);
  void remember (const std::string &xid, std::vector<Rule> rules);
  void apply (std::vector<QueuedBytes> &outgoing, const Rule &rule, const MessageSummary &message);
  void split (std::vector<QueuedBytes> &outgoing, const Rule &rule);
  void dispatch (QueuedBytes bytes);
  void enqueue (QueuedBytes bytes);
  void hold_back (QueuedBytes bytes);
  void release_held_back ();
  void send_queued ();
  void wait_for_front ();
  void call_later (std::chrono::milliseconds wait, std::function<void ()> action);
  void deliver (QueuedBytes bytes);

  asio::io_context &context_;
  Faults &faults_;
  MessageObserver &observer_;
  Endpoint *endpoint_;
  const int client_;
  const std::string address_;
  std::map<std::string, PendingAnswer> pending_; ///< by identifier of the command: the rules for its answer
  std::deque<QueuedBytes> queue_;
  std::vector<QueuedBytes> held_back_; ///< until the next answer or the end of the timer
  std::uint64_t held_back_round_ = 0;  ///< counts the releases of `held_back_`
  std::list<asio::steady_timer> timers_;
  std::size_t held_ = 0;
  bool waiting_ = false; ///< the timer of the first message in the queue runs
  bool over_ = false;    ///< nothing may be sent any more
};

} // namespace sim
