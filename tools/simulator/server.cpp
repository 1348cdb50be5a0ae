#include "server.h"

#include "control/control.h"
#include "control/mailbox.h"
#include "control/steered_server.h"
#include "faults/fault_injector.h"
#include "listener.h"
#include "log.h"
#include "script/script.h"
#include "wire.h"

#include <array>
#include <asio.hpp>
#include <chrono>
#include <csignal>
#include <fmt/format.h>
#include <memory>
#include <netinet/tcp.h>
#include <utility>

namespace sim {

namespace {

using asio::ip::tcp;
using Clock = std::chrono::steady_clock;

// Limits of the bytes that wait to be sent to one client. Above `lagging_bytes`, positions are left out.
// Above `filled_bytes`, a long answer waits. Above `full_bytes`, commands wait. Only reports can exceed the
// last limit.
constexpr std::size_t lagging_bytes = 1u << 20;
constexpr std::size_t filled_bytes = 1u << 16;
constexpr std::size_t full_bytes = 16u << 20;

// A client with more than `idle_bytes` unread that has read nothing for `idle_time` is disconnected. A client
// with more than `most_unread_bytes` unread is disconnected at once.
constexpr std::size_t idle_bytes = 64u << 20;
constexpr std::chrono::seconds idle_time{10};
constexpr std::size_t most_unread_bytes = 512u << 20;

constexpr int parts_in_a_turn = 8; // of a long answer, before others are served
constexpr std::size_t written_at_once = 256u << 10;

// Is called before anything else happens, so that commands find the state of the present field.
void pass_due_fields (World &world) {
  if (const int fields = world.clock.take (); fields > 0)
    world.pass_fields (fields);
}

/// One connection. The server keeps it until it has ended. A read or write that has not finished keeps it
/// alive too.
class Session : public Client, public Endpoint, public std::enable_shared_from_this<Session> {
public:
  Session (World &world, asio::io_context &context, Faults &faults, MessageObserver &observer,
           tcp::socket socket, int client_number, std::function<void (int)> ended)

      : Client (client_number, fmt::format ("{}#{}", world.options.log_prefix, client_number)),
        world_ (world), socket_ (std::move (socket)),
        injector_ (std::make_shared<FaultInjector> (context, faults, observer, *this, client_number,
                                                    peer_address ())),
        ended_ (std::move (ended)) {}

  void start () {
    asio::error_code ignored;
    socket_.set_option (tcp::no_delay (true), ignored);
    world_.join (*this);
    log ("connected");
    read ();
    injector_->refresh ();
  }

  void end (std::string_view why) {
    if (!socket_.is_open ())
      return;
    injector_->detach ();
    asio::error_code ignored;
    socket_.close (ignored);
    output_ended_ = true;
    leave_world (why);
    ended_ (number);
  }

  void send (std::string message) override {
    injector_->send (message);
    if (reads_too_slowly ())
      drop_slow_reader ();
  }

  void produce (Producer producer) override {
    producer_ = std::move (producer);
    fill ();
  }

  bool lags () const override { return unsent () > lagging_bytes; }

  FaultInjector &injector () { return *injector_; }

  std::size_t unsent () const {
    return waiting_.size () + being_written_.size () - written_ + injector_->held ();
  }

  /// Queues bytes after those that wait to be sent. Faults are not applied to them.
  void put (std::string_view bytes) override {
    waiting_ += bytes;
    if (writing_)
      return;
    last_taken_ = Clock::now ();
    write ();
  }

  void reset () override {
    asio::error_code ignored;
    socket_.set_option (tcp::socket::linger (true, 0), ignored);
    end_later ("is reset");
  }

private:
  void finish () override {
    finishing_ = output_ended_ = true;
    if (!writing_)
      end_later ("is disconnected by a fault");
  }

  void allow_reading (bool allowed) override {
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

  void log (std::string_view what) const {
    if (!world_.options.quiet)
      log_line (fmt::format ("{} {}", name, what));
  }

  // Removes the client from the world.
  void leave_world (std::string_view why) {
    if (std::exchange (has_left_, true))
      return;
    world_.leave (*this);
    log (why);
  }

  void read () {
    reading_ = true;
    socket_.async_read_some (asio::buffer (received_),
                             [self = shared_from_this ()] (const asio::error_code &error, std::size_t size) {
                               self->take (error, size);
                             });
  }

  void take (const asio::error_code &error, std::size_t size) {
    reading_ = false;
    if (error == asio::error::eof)
      return end_of_commands ();
    if (error)
      return end ("disconnected");
    try {
      framer_.feed ({received_.data (), size});
    } catch (const Malformed &fault) {
      return end (fmt::format ("is disconnected: {}", fault.what ()));
    }
    go_on ();
  }

  // The client has sent its last command. It still gets its answers, unless it does not read them for long.
  void end_of_commands () {
    leave_world ("disconnected");
    finishing_ = true;
    const unsigned milliseconds = 10'000;
    ::setsockopt (socket_.native_handle (), IPPROTO_TCP, TCP_USER_TIMEOUT, &milliseconds,
                  sizeof milliseconds);
    end_if_done ();
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
      return end (fmt::format ("is disconnected: {}", fault.what ()));
    }
    stalled_ = is_full ();
    if (may_carry_out () && !reading_)
      read ();
  }

  bool may_carry_out () const {
    return !finishing_ && !is_full () && socket_.is_open () && injector_->may_read ();
  }

  bool is_producing () const { return producer_ && !output_ended_; }

  // Whether so much waits to be sent that the next command of the client must wait.
  bool is_full () const { return is_producing () || unsent () >= full_bytes; }

  void carry_out (const std::string &document) {
    if (injector_->receive (document))
      world_.receive (*this, document);
  }

  // Continues a long answer. Other clients are served between its parts, also when a fault removes all of
  // them.
  void fill () {
    for (int part = 0; part < parts_in_a_turn && is_producing () && unsent () < filled_bytes; ++part)
      if (!producer_ ())
        producer_ = nullptr;
    if (is_producing () && !writing_ && unsent () < filled_bytes && !std::exchange (fill_posted_, true))
      asio::post (socket_.get_executor (), [self = shared_from_this ()] {
        self->fill_posted_ = false;
        self->sent_some ();
      });
  }

  void sent_some () {
    fill ();
    if (stalled_ && !is_full ())
      go_on ();
    end_if_done ();
  }

  void end_if_done () {
    if (finishing_ && !is_producing () && !writing_ && (output_ended_ || unsent () == 0))
      end (has_left_ ? "disconnected" : "is disconnected by a fault");
  }

  bool reads_too_slowly () const {
    return unsent () > most_unread_bytes ||
           (unsent () > idle_bytes && writing_ && Clock::now () - last_taken_ > idle_time);
  }

  void drop_slow_reader () {
    waiting_ = {};
    end_later ("is disconnected: it does not read");
  }

  // Ends the connection later, because the caller may be in a loop over all clients.
  void end_later (std::string_view why) {
    finishing_ = true;
    asio::post (socket_.get_executor (), [self = shared_from_this (), why] { self->end (why); });
  }

  void write () {
    if (!socket_.is_open ())
      return;
    writing_ = true;
    if (written_ == being_written_.size ()) {
      being_written_.clear ();
      being_written_.swap (waiting_);
      written_ = 0;
    }
    const std::size_t size = std::min (being_written_.size () - written_, written_at_once);
    socket_.async_write_some (
        asio::buffer (being_written_.data () + written_, size),
        [self = shared_from_this ()] (const asio::error_code &error, std::size_t taken) {
          self->wrote (static_cast<bool> (error), taken);
        });
  }

  void wrote (bool failed, std::size_t taken) {
    written_ += taken;
    last_taken_ = Clock::now ();
    if (failed)
      return end ("disconnected");
    if (written_ == being_written_.size () && waiting_.empty ())
      fill ();
    writing_ = written_ < being_written_.size () || !waiting_.empty ();
    if (writing_) {
      write ();
    } else {
      being_written_ = {};
      written_ = 0;
    }
    sent_some ();
  }

  World &world_;
  tcp::socket socket_;
  const std::shared_ptr<FaultInjector> injector_; ///< passes on everything that is sent
  const std::function<void (int)> ended_;
  Framer framer_;
  std::array<char, 16384> received_{};
  Producer producer_;         ///< sends the rest of a long answer, if any
  std::string waiting_;       ///< not yet handed to the socket
  std::string being_written_; ///< bytes of the present write
  std::size_t written_ = 0;   ///< bytes of `being_written_` that the client has taken
  Clock::time_point last_taken_;
  bool writing_ = false;
  bool reading_ = false;
  bool may_read_ = true;
  bool stalled_ = false; ///< commands wait until the client has taken some of its answers
  bool fill_posted_ = false;
  bool output_ended_ = false; ///< nothing is sent after what is queued
  bool has_left_ = false;     ///< it has been removed from the world
  bool finishing_ = false;    ///< no more commands are carried out
};

class Server : public SteeredServer, public MessageObserver {
public:
  Server (asio::io_context &context, const Options &options)
      : context_ (context), options_ (options), world_ (std::make_unique<World> (options)), timer_ (context) {
    set_first_faults ();
    listener_.open ();
    await_field ();
  }

  const std::string &address () const override { return options_.address; }
  World &world () override { return *world_; }
  Faults &faults () override { return faults_; }
  Journal &journal () override { return journal_; }

  std::vector<Connection> connections () override {
    std::vector<Connection> connections;
    each_session ([&] (Session &session) {
      connections.push_back ({session.number, session.injector ().address (), session.unsent (), &session});
    });
    return connections;
  }

  bool close_client (int number, bool reset) override {
    return with_session (number, [&] (Session &session) {
      reset ? session.reset () : session.end ("is disconnected by a control request");
    });
  }

  bool send_bytes (int number, std::string_view bytes) override {
    return with_session (number, [&] (Session &session) { session.put (bytes); });
  }

  void start_over () override {
    end_all ("is disconnected: the server starts over");
    world_.reset (); // it may hold the file that the next one opens
    world_ = std::make_unique<World> (options_);
    journal_.clear ();
    last_number_ = 0;
    faults_.clear ();
    set_first_faults ();
    pace_changed ();
  }

  void pace_changed () override { await_field (); }

  void end_all (std::string_view why) {
    each_session ([=] (Session &session) { session.end (why); });
  }

private:
  void received (int client, std::string_view command, const std::vector<Rule> &applied) override {
    std::vector<std::string> names;
    for (const Rule &rule : applied)
      names.emplace_back (name_of (rule.fault));
    if (!names.empty () && !options_.quiet)
      world_->log (fmt::format ("#{} {} has the faults {}", client, summary_of (command).name,
                                fmt::join (names, ", ")));
    if (!options_.journal)
      return;
    journal_.add (client, world_->clock.milliseconds (), command, std::move (names));
  }

  void sent (int client, std::string_view message) override {
    if (options_.journal)
      journal_.add_sent (client, world_->clock.milliseconds (), message);
  }

  void set_first_faults () {
    if (!options_.faults.empty ())
      for (Rule &rule : read_rules (options_.faults))
        faults_.add (std::move (rule));
  }

  void add_session (tcp::socket socket) {
    const int number = ++last_number_;
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
  asio::steady_timer timer_;
  Random chances_ = options_.seed ? Random (*options_.seed) : Random ();
  Faults faults_{context_, chances_};
  Journal journal_;
  std::map<int, std::shared_ptr<Session>> sessions_; ///< by number, until they end
  int last_number_ = 0;
  Listener listener_{context_,
                     options_.address,
                     faults_,
                     {[this] (tcp::socket socket) { add_session (std::move (socket)); },
                      [this] { end_all ("is disconnected by a fault"); },
                      [this] { each_session ([] (Session &session) { session.injector ().refresh (); }); },
                      [this] (const std::string &line) { world_->log (line); }}};
};

} // namespace

int serve (const std::vector<Options> &options, const Steering &steering) {
  asio::io_context context (1);
  asio::signal_set signals (context, SIGINT, SIGTERM);
  signals.async_wait ([&] (const asio::error_code &, int) { context.stop (); });
  std::vector<std::unique_ptr<Server>> servers;
  std::vector<SteeredServer *> steered;
  for (const Options &each : options) {
    servers.push_back (std::make_unique<Server> (context, each));
    steered.push_back (servers.back ().get ());
  }
  Mailbox mailbox (context);
  std::unique_ptr<Control> control;
  if (!steering.control.empty ())
    control = std::make_unique<Control> (mailbox, steered, steering);
  ControlApi api (steered);
  std::unique_ptr<Script> script;
  if (!steering.script.empty ())
    script = std::make_unique<Script> (context, api, steering.script);
  for (const Options &each : options)
    print_line (fmt::format ("listening on {}:{}", each.address, port));
  int status = 0;
  if (script)
    script->start ([&] (const std::string &problem) {
      if (!problem.empty ())
        print_error (problem);
      status = problem.empty () ? 0 : status_unexpected;
      context.stop ();
    });
  context.run ();
  mailbox.close ();
  for (const std::unique_ptr<Server> &server : servers)
    server->end_all ("is disconnected: the server ends");
  return status;
}

} // namespace sim
