#include "server.h"

#include "faults/line.h"
#include "log.h"
#include "wire.h"

#include <array>
#include <asio.hpp>
#include <chrono>
#include <csignal>
#include <fmt/format.h>
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

/// One connection. The server keeps it until it has ended, a read or a write under way until that is over.
class Session : public Client, public Endpoint, public std::enable_shared_from_this<Session> {
public:
  Session (World &world, FieldClock &clock, asio::io_context &context, Faults &faults, tcp::socket socket,
           int client_number, std::function<void (int)> ended)
      : Client (client_number), world_ (world), clock_ (clock), socket_ (std::move (socket)),
        line_ (std::make_shared<Line> (context, faults, *this, client_number, peer_address ())),
        ended_ (std::move (ended)) {}

  void start () {
    asio::error_code ignored;
    socket_.set_option (tcp::no_delay (true), ignored);
    world_.join (*this);
    note ("comes");
    read ();
    line_->refresh ();
  }

  void end (std::string_view why) {
    if (!socket_.is_open ())
      return;
    line_->detach ();
    asio::error_code ignored;
    socket_.close (ignored);
    world_.leave (*this);
    note (why);
    ended_ (number);
  }

  void send (std::string message) override {
    line_->send (message);
    if (unsent () > hopeless_bytes)
      give_up ();
  }

  bool lags () const override { return unsent () > lagging_bytes; }

  Line &line () { return *line_; }

private:
  // What the faults have let through.
  void put (std::string_view bytes) override {
    waiting_ += bytes;
    if (!writing_)
      write ();
  }

  void finish () override {
    finishing_ = true;
    if (!writing_)
      end_later ("is sent away by a fault");
  }

  void reset () override {
    asio::error_code ignored;
    socket_.set_option (tcp::socket::linger (true, 0), ignored);
    end_later ("is reset by a fault");
  }

  void let_read (bool allowed) override {
    if (allowed == may_read_)
      return;
    may_read_ = allowed;
    if (allowed)
      asio::post (socket_.get_executor (), [self = shared_from_this ()] { self->go_on (); });
  }

  std::size_t unsent () const { return waiting_.size () + line_->held (); }

  std::string peer_address () const {
    asio::error_code error;
    const tcp::endpoint peer = socket_.remote_endpoint (error);
    return error ? "" : peer.address ().to_string ();
  }

  void note (std::string_view what) const {
    if (!world_.options.quiet)
      log_line (fmt::format ("#{} {}", number, what));
  }

  void read () {
    reading_ = true;
    socket_.async_read_some (asio::buffer (received_),
                             [self = shared_from_this ()] (const asio::error_code &error, std::size_t size) {
                               error ? self->end ("goes") : self->take (size);
                             });
  }

  void take (std::size_t size) {
    reading_ = false;
    try {
      framer_.feed ({received_.data (), size});
    } catch (const Malformed &fault) {
      return end (fmt::format ("is sent away: {}", fault.what ()));
    }
    go_on ();
  }

  // Carries out what has been read, then reads on.
  void go_on () {
    pass_due_fields (world_, clock_);
    try {
      while (may_carry_out ())
        if (const auto document = framer_.next ())
          carry_out (*document);
        else
          break;
    } catch (const Malformed &fault) {
      return end (fmt::format ("is sent away: {}", fault.what ()));
    }
    if (may_carry_out () && !reading_)
      read ();
  }

  bool may_carry_out () const { return !finishing_ && socket_.is_open () && line_->may_read (); }

  void carry_out (const std::string &document) {
    if (line_->receive (document))
      world_.receive (*this, document);
  }

  void give_up () {
    waiting_.clear ();
    end_later ("is sent away: it does not read");
  }

  // Later, because whoever sends may be walking over all clients.
  void end_later (std::string_view why) {
    finishing_ = true;
    asio::post (socket_.get_executor (), [self = shared_from_this (), why] { self->end (why); });
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
    else if (finishing_)
      end ("is sent away by a fault");
  }

  World &world_;
  FieldClock &clock_;
  tcp::socket socket_;
  const std::shared_ptr<Line> line_; ///< what is sent passes through it
  const std::function<void (int)> ended_;
  Framer framer_;
  std::array<char, 16384> received_{};
  std::string waiting_; ///< not yet handed to the socket
  std::string going_;   ///< what the write under way refers to
  bool writing_ = false;
  bool reading_ = false;
  bool may_read_ = true;
  bool finishing_ = false; ///< nothing more is carried out
};

class Server {
public:
  explicit Server (World &world)
      : world_ (world), signals_ (context_, SIGINT, SIGTERM), acceptor_ (context_), timer_ (context_),
        clock_ (world.standard) {}

  void run () {
    faults_.changed = [this] { refresh_faults (); };
    if (!world_.options.faults.empty ())
      for (Rule &rule : read_rules (world_.options.faults))
        faults_.add (std::move (rule));
    open ();
    signals_.async_wait ([this] (const asio::error_code &, int) { context_.stop (); });
    await_field ();
    say (fmt::format ("listening on {}:{}", world_.options.address, port));
    context_.run ();
    end_all ("is sent away: the server ends");
  }

private:
  void open () {
    const tcp::endpoint endpoint (asio::ip::make_address_v4 (world_.options.address), port);
    acceptor_.open (endpoint.protocol ());
    acceptor_.set_option (tcp::acceptor::reuse_address (true));
    acceptor_.bind (endpoint);
    acceptor_.listen ();
    accept ();
  }

  void accept () {
    acceptor_.async_accept ([this] (const asio::error_code &error, tcp::socket socket) {
      if (!error)
        greet (std::move (socket));
      if (error != asio::error::operation_aborted)
        accept ();
    });
  }

  void greet (tcp::socket socket) {
    const int number = ++greeted_;
    const auto session = std::make_shared<Session> (world_, clock_, context_, faults_, std::move (socket),
                                                    number, [this] (int ended) { sessions_.erase (ended); });
    sessions_[number] = session;
    session->start ();
  }

  void each_session (const std::function<void (Session &)> &visit) {
    const std::map<int, std::shared_ptr<Session>> present = sessions_;
    for (const auto &[number, session] : present)
      visit (*session);
  }

  void end_all (std::string_view why) {
    each_session ([=] (Session &session) { session.end (why); });
  }

  void refresh_faults () {
    const bool away = faults_.stands (Fault::go_away);
    const bool shut = away || faults_.stands (Fault::refuse_connections);
    if (shut && acceptor_.is_open ())
      acceptor_.close ();
    if (!shut && !acceptor_.is_open ())
      open ();
    if (away)
      end_all ("is sent away by a fault");
    each_session ([] (Session &session) { session.line ().refresh (); });
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
  Random random_ = world_.options.seed ? Random (*world_.options.seed) : Random ();
  Faults faults_{context_, random_};
  std::map<int, std::shared_ptr<Session>> sessions_; ///< by number, until they end
  int greeted_ = 0;
};

} // namespace

void serve (World &world) {
  Server (world).run ();
}

} // namespace sim
