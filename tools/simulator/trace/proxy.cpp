#include "trace/proxy.h"

#include "control/control.h"
#include "control/mailbox.h"
#include "control/steered_server.h"
#include "faults/fault_injector.h"
#include "listener.h"
#include "log.h"
#include "trace/buffered_socket.h"
#include "trace/trace.h"

#include <asio.hpp>
#include <csignal>
#include <fmt/format.h>
#include <map>
#include <memory>

namespace sim {

namespace {

using asio::ip::tcp;

// While more bytes than this wait for one side, the other side is not read.
constexpr std::size_t most_unsent = 1u << 20;

// The message without the blanks before it. The trace keeps them, the journal does not.
std::string_view trimmed (std::string_view message) {
  return message.substr (std::min (message.find ('<'), message.size ()));
}

std::int64_t present_milliseconds () {
  using namespace std::chrono;
  return duration_cast<milliseconds> (system_clock::now ().time_since_epoch ()).count ();
}

tcp::endpoint endpoint_of (const std::string &address) {
  return {asio::ip::make_address_v4 (address), port};
}

/// One client with its connection to the server.
class ProxiedConnection : public Endpoint, public std::enable_shared_from_this<ProxiedConnection> {
public:
  ProxiedConnection (asio::io_context &context, Faults &faults, MessageObserver &observer, TraceWriter &trace,
                     tcp::socket client, int number, bool has_faults)
      : context_ (context), observer_ (observer), trace_ (trace), number_ (number), has_faults_ (has_faults),
        client_ (std::make_shared<BufferedSocket> (std::move (client))), to_server_ (context),
        injector_ (
            std::make_shared<FaultInjector> (context, faults, observer, *this, number, client_->peer ())) {}

  void start (const std::string &server, std::function<void ()> ended) {
    ended_ = std::move (ended);
    write_event ("open");
    to_server_.async_connect (endpoint_of (server),
                              [self = shared_from_this ()] (const asio::error_code &error) {
                                if (self->over_)
                                  return;
                                if (!error)
                                  return self->join ();
                                self->write_event ("unreachable");
                                self->end ();
                              });
  }

  void end () {
    if (std::exchange (over_, true))
      return;
    asio::error_code ignored;
    to_server_.close (ignored);
    injector_->detach ();
    for (BufferedSocket *socket : {client_.get (), server_.get ()})
      if (socket)
        socket->on_bytes = nullptr, socket->on_end = nullptr, socket->on_sent = nullptr,
        socket->on_input_end = nullptr;
    pass_rest (TraceLine::From::client, from_client_.rest (), server_.get ());
    pass_rest (TraceLine::From::server, from_server_.rest (), client_.get ());
    client_->finish ();
    if (server_)
      server_->finish ();
    write_event ("close");
    ended_ ();
  }

  FaultInjector &injector () { return *injector_; }
  BufferedSocket &client () { return *client_; }

  /// Ends the connection. With a reset, the connection to the client is reset.
  void close (bool with_reset) {
    if (with_reset)
      client_->reset ();
    end ();
  }

private:
  void join () {
    server_ = std::make_shared<BufferedSocket> (std::move (to_server_));
    const auto self = shared_from_this ();
    client_->on_bytes = [self] (std::string_view bytes) { self->take_from_client (bytes); };
    server_->on_bytes = [self] (std::string_view bytes) { self->take_from_server (bytes); };
    client_->on_sent = server_->on_sent = [self] { self->balance (); };
    client_->on_end = server_->on_end = [self] { self->end_later (); };
    client_->on_input_end = [self] { self->server_->finish_output (); };
    client_->start ();
    server_->start ();
    injector_->refresh ();
  }

  // Reads from each side only while not too much waits to be sent to the other side.
  void balance () {
    if (over_ || !server_)
      return;
    client_->allow_reading (may_read_client_ && server_->unsent () < most_unsent);
    server_->allow_reading (client_->unsent () + injector_->held () < most_unsent);
  }

  void take_from_client (std::string_view bytes) {
    from_client_.feed (bytes);
    if (!has_faults_)
      server_->put (bytes);
    for (std::string message = from_client_.next (); !message.empty (); message = from_client_.next ()) {
      if (!has_faults_)
        observer_.received (number_, message, {});
      else if (injector_->receive (message))
        server_->put (message);
    }
    balance ();
  }

  void take_from_server (std::string_view bytes) {
    from_server_.feed (bytes);
    if (!has_faults_)
      client_->put (bytes);
    for (std::string message = from_server_.next (); !message.empty (); message = from_server_.next ()) {
      if (!has_faults_)
        observer_.sent (number_, message);
      else
        injector_->send (message);
    }
    balance ();
  }

  // Passes on and records the rest of one side, which is a message that did not end.
  void pass_rest (TraceLine::From from, const std::string &rest, BufferedSocket *to) {
    if (has_faults_ && to)
      to->put (rest);
    write_rest (from, rest);
  }

  void write_rest (TraceLine::From from, const std::string &rest) {
    if (rest.empty ())
      return;
    TraceLine line{from, number_, rest};
    line.partial = true;
    trace_.write (line);
  }

  void write_event (const char *event) {
    TraceLine line;
    line.connection = number_;
    line.event = event;
    trace_.write (line);
  }

  // What the fault injector does with the connection to the client.
  void put (std::string_view bytes) override { client_->put (bytes); }
  void finish () override { end_later (); }
  void reset () override {
    client_->reset ();
    end_later ();
  }
  void allow_reading (bool allowed) override {
    may_read_client_ = allowed;
    balance ();
  }

  void end_later () {
    asio::post (context_, [self = shared_from_this ()] { self->end (); });
  }

  asio::io_context &context_;
  MessageObserver &observer_;
  TraceWriter &trace_;
  const int number_;
  const bool has_faults_; ///< faults are applied, so messages are passed on one by one
  const std::shared_ptr<BufferedSocket> client_;
  std::shared_ptr<BufferedSocket> server_; ///< absent until it is connected
  tcp::socket to_server_;
  const std::shared_ptr<FaultInjector> injector_;
  Splitter from_client_{Splitter::Side::client};
  Splitter from_server_{Splitter::Side::server};
  std::function<void ()> ended_;
  bool may_read_client_ = true; ///< no fault forbids it
  bool over_ = false;
};

class Proxy : public MessageObserver, public SteeredServer {
public:
  Proxy (asio::io_context &context, const ProxyOptions &options)
      : context_ (context), options_ (options), trace_ (options.trace),
        random_ (options.seed ? Random (*options.seed) : Random ()), faults_ (context, random_) {
    set_first_faults ();
    listener_.open ();
  }

  const std::string &address () const override { return options_.listen; }
  World &world () override { throw Refusal ("A proxy has no channels, clips or time of its own"); }
  Faults &faults () override { return faults_; }
  Journal &journal () override { return journal_; }

  std::vector<Connection> connections () override {
    std::vector<Connection> list;
    for (const auto &[number, connection] : connections_)
      list.push_back ({number, connection->injector ().address (),
                       connection->client ().unsent () + connection->injector ().held (), nullptr});
    return list;
  }

  bool close_client (int number, bool reset) override {
    return with_connection (number, [=] (ProxiedConnection &connection) { connection.close (reset); });
  }

  bool send_bytes (int number, std::string_view bytes) override {
    return with_connection (number,
                            [=] (ProxiedConnection &connection) { connection.client ().put (bytes); });
  }

  void start_over () override {
    end_all ();
    journal_.clear ();
    faults_.clear ();
    set_first_faults ();
  }

  void pace_changed () override {}

  void received (int client, std::string_view command, const std::vector<Rule> &applied) override {
    TraceLine line{TraceLine::From::client, client, std::string (command)};
    for (const Rule &rule : applied)
      line.faults.emplace_back (name_of (rule.fault));
    trace_.write (line);
    if (is_steered ())
      journal_.add (client, present_milliseconds (), trimmed (command), std::move (line.faults));
  }

  void sent (int client, std::string_view message) override {
    trace_.write ({TraceLine::From::server, client, std::string (message)});
    if (is_steered ())
      journal_.add_sent (client, present_milliseconds (), trimmed (message));
  }

  void end_all () {
    each_connection ([] (ProxiedConnection &connection) { connection.end (); });
  }

private:
  bool is_steered () const { return !options_.steering.control.empty (); }

  void set_first_faults () {
    if (!options_.faults.empty ())
      for (Rule &rule : read_rules (options_.faults))
        faults_.add (std::move (rule));
  }

  void add_connection (tcp::socket socket) {
    const int number = ++last_number_;
    const auto connection =
        std::make_shared<ProxiedConnection> (context_, faults_, *this, trace_, std::move (socket), number,
                                             is_steered () || !options_.faults.empty ());
    connections_[number] = connection;
    connection->start (options_.server, [this, number] { connections_.erase (number); });
  }

  void each_connection (const std::function<void (ProxiedConnection &)> &visit) {
    const std::map<int, std::shared_ptr<ProxiedConnection>> present = connections_;
    for (const auto &[number, connection] : present)
      visit (*connection);
  }

  bool with_connection (int number, const std::function<void (ProxiedConnection &)> &act) {
    const auto found = connections_.find (number);
    if (found == connections_.end ())
      return false;
    const std::shared_ptr<ProxiedConnection> connection = found->second;
    act (*connection);
    return true;
  }

  asio::io_context &context_;
  const ProxyOptions options_;
  TraceWriter trace_;
  Random random_;
  Faults faults_;
  Journal journal_;
  std::map<int, std::shared_ptr<ProxiedConnection>> connections_; ///< by number, until they end
  int last_number_ = 0;
  Listener listener_{
      context_,
      options_.listen,
      faults_,
      {[this] (tcp::socket socket) { add_connection (std::move (socket)); }, [this] { end_all (); },
       [this] {
         each_connection ([] (ProxiedConnection &connection) { connection.injector ().refresh (); });
       },
       [] (const std::string &line) { print_error (line); }}};
};

} // namespace

int run_proxy (const ProxyOptions &options) {
  asio::io_context context (1);
  asio::signal_set signals (context, SIGINT, SIGTERM);
  signals.async_wait ([&] (const asio::error_code &, int) { context.stop (); });
  Proxy proxy (context, options);
  Mailbox mailbox (context);
  std::unique_ptr<Control> control;
  if (!options.steering.control.empty ())
    control = std::make_unique<Control> (mailbox, std::vector<SteeredServer *>{&proxy}, options.steering);
  print_line (fmt::format ("listening on {}:{}", options.listen, port));
  context.run ();
  mailbox.close ();
  proxy.end_all ();
  return 0;
}

} // namespace sim
