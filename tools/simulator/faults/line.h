#pragma once

#include "faults/faults.h"

#include <asio.hpp>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace sim {

/// The socket of one client, as a Line uses it. None of these calls the Line back before it returns.
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
  virtual void let_read (bool allowed) = 0;
};

/// Sees the messages of all connections.
class Witness {
public:
  virtual ~Witness () = default;

  /// A command has come, and these faults have struck it.
  virtual void received (int client, std::string_view command, const std::vector<Rule> &struck) = 0;
  /// A message is to be sent, as it is before any fault.
  virtual void sent (int client, std::string_view message) = 0;
};

/// The messages of one connection, and what the faults do to them. Without faults everything passes
/// unchanged. One thread.
class Line : public std::enable_shared_from_this<Line> {
public:
  Line (asio::io_context &context, Faults &faults, Witness &witness, Endpoint &endpoint, int client,
        std::string address)
      : context_ (context), faults_ (faults), witness_ (witness), endpoint_ (&endpoint), client_ (client),
        address_ (std::move (address)) {}

  const std::string &address () const { return address_; }

  /// The endpoint is about to go.
  void detach () { endpoint_ = nullptr; }

  /// A command has come. @return whether it is to be carried out
  bool receive (std::string_view command);

  /// A whole message is to be sent.
  void send (std::string_view message);

  /// The standing rules have changed.
  void refresh ();

  /// Commands may be read from the socket, and those that have been read may be carried out.
  bool may_read () const;

  /// Bytes that wait here.
  std::size_t held () const { return held_; }

private:
  bool frozen () const;
  enum class After { nothing, close, reset };
  struct Parcel {
    std::string bytes;
    std::chrono::milliseconds wait{0}; ///< before it is sent
    bool overtake = false;             ///< others go on while it waits
    bool behind_next = false;          ///< it goes behind the next answer
    After after = After::nothing;
  };
  struct Owed {
    std::vector<Rule> rules;
    std::uint64_t rows = 0; ///< messages of the answer that have come by
  };

  std::vector<Rule> rules_for (const Glance &message);
  void owe (const std::string &xid, std::vector<Rule> rules);
  void bend (std::vector<Parcel> &parcels, const Rule &rule, const Glance &message);
  void split (std::vector<Parcel> &parcels, const Rule &rule);
  void dispatch (Parcel parcel);
  void enqueue (Parcel parcel);
  void release_held_back ();
  void pump ();
  void wait_for_front ();
  void deliver (Parcel parcel);

  asio::io_context &context_;
  Faults &faults_;
  Witness &witness_;
  Endpoint *endpoint_;
  const int client_;
  const std::string address_;
  std::map<std::string, Owed> owed_; ///< by identifier of the command: what strikes its answer
  std::deque<Parcel> queue_;
  std::vector<Parcel> held_back_;
  std::size_t held_ = 0;
  bool waiting_ = false; ///< the timer of the front parcel runs
  bool over_ = false;    ///< nothing may be sent any more
};

} // namespace sim
