#include "server.h"

#include "control/control.h"
#include "control/mailbox.h"
#include "control/steered.h"
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

// Fields that are due have gone by before anything else happens.
void pass_due_fields (World &world) {
  if (const int fields = world.clock.take (); fields > 0)
    world.pass_fields (fields);
}

/// One connection. The server keeps it until it has ended, a read or a write under way until that is over.
class Session : public Client, public Endpoint, public std::enable_shared_from_this<Session> {
public:
  Session (World &world, asio::io_context &context, Faults &faults, Witness &witness, tcp::socket socket,
           int client_number, std::function<void (int)> ended)
      : Client (client_number), world_ (world), socket_ (std::move (socket)),
        line_ (std::make_shared<Line> (context, faults, witness, *this, client_number, peer_address ())),
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

  std::size_t unsent () const { return waiting_.size () + line_->held (); }

  /// Queues bytes behind what waits to be sent, past all faults.
  void put (std::string_view bytes) override {
    waiting_ += bytes;
    if (!writing_)
      write ();
  }

  void reset () override {
    asio::error_code ignored;
    socket_.set_option (tcp::socket::linger (true, 0), ignored);
    end_later ("is reset");
  }

private:
  void finish () override {
    finishing_ = true;
    if (!writing_)
      end_later ("is sent away by a fault");
  }

  void let_read (bool allowed) override {
    if (allowed == may_read_)
      return;
    may_read_ = allowed;
    if (allowed)
      asio::post (socket_.get_executor (), [self = shared_from_this ()] { self->go_on (); });
  }

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
    if (!socket_.is_open ())
      return;
    pass_due_fields (world_);
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

class Server : public Steered, public Witness {
public:
  Server (asio::io_context &context, const Options &options)
      : context_ (context), options_ (options), world_ (std::make_unique<World> (options)),
        acceptor_ (context), timer_ (context) {
    faults_.changed = [this] { refresh_faults (); };
    set_first_faults ();
    open ();
    await_field ();
  }

  World &world () override { return *world_; }
  Faults &faults () override { return faults_; }
  Journal &journal () override { return journal_; }

  std::vector<Connection> connections () override {
    std::vector<Connection> connections;
    each_session ([&] (Session &session) {
      connections.push_back ({session.number, session.line ().address (), session.unsent (), &session});
    });
    return connections;
  }

  bool close_client (int number, bool reset) override {
    return with_session (
        number, [&] (Session &session) { reset ? session.reset () : session.end ("is sent away by hand"); });
  }

  bool send_bytes (int number, std::string_view bytes) override {
    return with_session (number, [&] (Session &session) { session.put (bytes); });
  }

  void start_over () override {
    end_all ("is sent away: the server starts over");
    world_.reset (); // it may hold the file that the next one opens
    world_ = std::make_unique<World> (options_);
    journal_.clear ();
    greeted_ = 0;
    faults_.clear ();
    set_first_faults ();
    pace_changed ();
  }

  void pace_changed () override { await_field (); }

  void end_all (std::string_view why) {
    each_session ([=] (Session &session) { session.end (why); });
  }

private:
  void received (int client, std::string_view command, const std::vector<Rule> &struck) override {
    if (options_.control.empty ())
      return;
    std::vector<std::string> names;
    for (const Rule &rule : struck)
      names.emplace_back (name_of (rule.fault));
    journal_.add (client, world_->clock.milliseconds (), command, std::move (names));
  }

  void sent (int client, std::string_view message) override {
    if (!options_.control.empty ())
      journal_.answer (client, message);
  }

  void set_first_faults () {
    if (!options_.faults.empty ())
      for (Rule &rule : read_rules (options_.faults))
        faults_.add (std::move (rule));
  }

  void open () {
    const tcp::endpoint endpoint (asio::ip::make_address_v4 (options_.address), port);
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
    const auto session = std::make_shared<Session> (*world_, context_, faults_, *this, std::move (socket),
                                                    number, [this] (int ended) { sessions_.erase (ended); });
    sessions_[number] = session;
    session->start ();
  }

  void each_session (const std::function<void (Session &)> &visit) {
    const std::map<int, std::shared_ptr<Session>> present = sessions_;
    for (const auto &[number, session] : present)
      visit (*session);
  }

  bool with_session (int number, const std::function<void (Session &)> &act) {
    const auto found = sessions_.find (number);
    if (found == sessions_.end ())
      return false;
    const std::shared_ptr<Session> session = found->second;
    act (*session);
    return true;
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
    timer_.cancel ();
    const auto next = world_->clock.next ();
    if (!next)
      return;
    timer_.expires_at (*next);
    timer_.async_wait ([this] (const asio::error_code &error) {
      if (error)
        return;
      pass_due_fields (*world_);
      await_field ();
    });
  }

  asio::io_context &context_;
  const Options options_;
  std::unique_ptr<World> world_;
  tcp::acceptor acceptor_;
  asio::steady_timer timer_;
  Random chances_ = options_.seed ? Random (*options_.seed) : Random ();
  Faults faults_{context_, chances_};
  Journal journal_;
  std::map<int, std::shared_ptr<Session>> sessions_; ///< by number, until they end
  int greeted_ = 0;
};

} // namespace

void serve (const Options &options) {
  asio::io_context context (1);
  asio::signal_set signals (context, SIGINT, SIGTERM);
  signals.async_wait ([&] (const asio::error_code &, int) { context.stop (); });
  Server server (context, options);
  Mailbox mailbox (context);
  const std::unique_ptr<Control> control =
      options.control.empty ()
          ? nullptr
          : std::make_unique<Control> (mailbox, std::vector<Steered *>{&server}, options);
  say (fmt::format ("listening on {}:{}", options.address, port));
  context.run ();
  mailbox.close ();
  server.end_all ("is sent away: the server ends");
}

} // namespace sim
