#include "server.h"

#include "log.h"
#include "wire.h"

#include <array>
#include <asio.hpp>
#include <chrono>
#include <csignal>
#include <fmt/format.h>
#include <list>
#include <memory>

namespace sim {

namespace {

using asio::ip::tcp;
using Clock = std::chrono::steady_clock;

constexpr unsigned short port = 8913;
constexpr std::size_t lagging_bytes = 1u << 20;
constexpr std::size_t hopeless_bytes = 512u << 20;

/// Counts the fields that have gone by since the start.
class FieldClock {
public:
  explicit FieldClock (const Standard &standard) : standard_ (standard), start_ (Clock::now ()) {}

  Clock::time_point next () const {
    return start_ + std::chrono::nanoseconds (nanoseconds_of_fields (standard_, passed_ + 1));
  }

  /// The fields since the last call; after a long sleep of the machine not more than some seconds of them.
  int take () {
    const auto since =
        std::chrono::duration_cast<std::chrono::microseconds> (Clock::now () - start_).count ();
    const std::int64_t total = fields_in_microseconds (standard_, since);
    const std::int64_t due = total - passed_;
    passed_ = total;
    return static_cast<int> (std::clamp<std::int64_t> (due, 0, 600));
  }

private:
  const Standard standard_;
  const Clock::time_point start_;
  std::int64_t passed_ = 0;
};

// Fields that are due have gone by before anything else happens.
void pass_due_fields (World &world, FieldClock &clock) {
  if (const int fields = clock.take (); fields > 0)
    world.pass_fields (fields);
}

/// One connection. It keeps itself alive while a read or a write is under way.
class Session : public Client, public std::enable_shared_from_this<Session> {
public:
  Session (World &world, FieldClock &clock, tcp::socket socket, int client_number)
      : Client (client_number), world_ (world), clock_ (clock), socket_ (std::move (socket)) {}

  void start () {
    asio::error_code ignored;
    socket_.set_option (tcp::no_delay (true), ignored);
    world_.join (*this);
    note ("comes");
    read ();
  }

  void end (std::string_view why) {
    if (!socket_.is_open ())
      return;
    asio::error_code ignored;
    socket_.close (ignored);
    world_.leave (*this);
    note (why);
  }

  void send (std::string message) override {
    waiting_ += message;
    if (!writing_)
      write ();
    else if (waiting_.size () > hopeless_bytes)
      give_up ();
  }

  bool lags () const override { return waiting_.size () > lagging_bytes; }

private:
  void note (std::string_view what) const {
    if (!world_.options.quiet)
      log_line (fmt::format ("#{} {}", number, what));
  }

  void read () {
    socket_.async_read_some (asio::buffer (received_),
                             [self = shared_from_this ()] (const asio::error_code &error, std::size_t size) {
                               error ? self->end ("goes") : self->take (size);
                             });
  }

  void take (std::size_t size) {
    pass_due_fields (world_, clock_);
    try {
      framer_.feed ({received_.data (), size});
      while (const auto document = framer_.next ())
        world_.receive (*this, *document);
    } catch (const Malformed &fault) {
      return end (fmt::format ("is sent away: {}", fault.what ()));
    }
    if (socket_.is_open ())
      read ();
  }

  // Later, because whoever sends may be walking over all clients.
  void give_up () {
    waiting_.clear ();
    asio::post (socket_.get_executor (),
                [self = shared_from_this ()] { self->end ("is sent away: it does not read"); });
  }

  void write () {
    if (!socket_.is_open ())
      return;
    writing_ = true;
    going_.swap (waiting_);
    asio::async_write (socket_, asio::buffer (going_),
                       [self = shared_from_this ()] (const asio::error_code &error, std::size_t) {
                         self->written (static_cast<bool> (error));
                       });
  }

  void written (bool failed) {
    writing_ = false;
    going_.clear ();
    if (failed)
      end ("goes");
    else if (!waiting_.empty ())
      write ();
  }

  World &world_;
  FieldClock &clock_;
  tcp::socket socket_;
  Framer framer_;
  std::array<char, 16384> received_{};
  std::string waiting_; ///< not yet handed to the socket
  std::string going_;   ///< what the write under way refers to
  bool writing_ = false;
};

class Server {
public:
  explicit Server (World &world)
      : world_ (world), signals_ (context_, SIGINT, SIGTERM), acceptor_ (context_), timer_ (context_),
        clock_ (world.standard) {}

  void run () {
    const tcp::endpoint endpoint (asio::ip::make_address_v4 (world_.options.address), port);
    acceptor_.open (endpoint.protocol ());
    acceptor_.set_option (tcp::acceptor::reuse_address (true));
    acceptor_.bind (endpoint);
    acceptor_.listen ();
    signals_.async_wait ([this] (const asio::error_code &, int) { context_.stop (); });
    accept ();
    await_field ();
    say (fmt::format ("listening on {}:{}", world_.options.address, port));
    context_.run ();
    for (const std::weak_ptr<Session> &entry : sessions_)
      if (const auto session = entry.lock ())
        session->end ("is sent away: the server ends");
  }

private:
  void accept () {
    acceptor_.async_accept ([this] (const asio::error_code &error, tcp::socket socket) {
      if (!error)
        greet (std::move (socket));
      accept ();
    });
  }

  void greet (tcp::socket socket) {
    sessions_.remove_if ([] (const std::weak_ptr<Session> &entry) { return entry.expired (); });
    const auto session = std::make_shared<Session> (world_, clock_, std::move (socket), ++greeted_);
    sessions_.push_back (session);
    session->start ();
  }

  void await_field () {
    timer_.expires_at (clock_.next ());
    timer_.async_wait ([this] (const asio::error_code &) {
      pass_due_fields (world_, clock_);
      await_field ();
    });
  }

  World &world_;
  asio::io_context context_{1};
  asio::signal_set signals_;
  tcp::acceptor acceptor_;
  asio::steady_timer timer_;
  FieldClock clock_;
  std::list<std::weak_ptr<Session>> sessions_;
  int greeted_ = 0;
};

} // namespace

void serve (World &world) {
  Server (world).run ();
}

} // namespace sim
