#include "trace/proxy.h"

#include "faults/fault_injector.h"
#include "log.h"
#include "trace/buffered_socket.h"
#include "trace/trace.h"

#include <asio.hpp>
#include <csignal>
#include <fmt/format.h>
#include <map>
#include <memory>
#include <set>

namespace sim {

namespace {

using asio::ip::tcp;

constexpr unsigned short port = 8913;

tcp::endpoint endpoint_of (const std::string &address) {
  return {asio::ip::make_address_v4 (address), port};
}

/// One client with its connection to the server.
class ProxiedConnection : public Endpoint, public std::enable_shared_from_this<ProxiedConnection> {
public:
  ProxiedConnection (asio::io_context &context, Faults &faults, MessageObserver &observer, TraceWriter &trace,
                     tcp::socket client, int number, bool has_faults)
      : context_ (context), trace_ (trace), number_ (number), has_faults_ (has_faults),
        client_ (std::make_shared<BufferedSocket> (std::move (client))), to_server_ (context),
        injector_ (
            std::make_shared<FaultInjector> (context, faults, observer, *this, number, client_->peer ())) {}

  void start (const std::string &server, std::function<void ()> ended) {
    ended_ = std::move (ended);
    write_event ("open");
    to_server_.async_connect (endpoint_of (server),
                              [self = shared_from_this ()] (const asio::error_code &error) {
                                if (error) {
                                  self->write_event ("unreachable");
                                  return self->end ();
                                }
                                self->join ();
                              });
  }

  void end () {
    if (std::exchange (over_, true))
      return;
    injector_->detach ();
    for (BufferedSocket *socket : {client_.get (), server_.get ()})
      if (socket)
        socket->on_bytes = nullptr, socket->on_end = nullptr;
    write_rest (TraceLine::From::client, from_client_.rest ());
    write_rest (TraceLine::From::server, from_server_.rest ());
    client_->finish ();
    if (server_)
      server_->finish ();
    write_event ("close");
    ended_ ();
  }

  FaultInjector &injector () { return *injector_; }

private:
  void join () {
    server_ = std::make_shared<BufferedSocket> (std::move (to_server_));
    const auto self = shared_from_this ();
    client_->on_bytes = [self] (std::string_view bytes) { self->take_from_client (bytes); };
    server_->on_bytes = [self] (std::string_view bytes) { self->take_from_server (bytes); };
    client_->on_end = server_->on_end = [self] { self->end_later (); };
    client_->start ();
    server_->start ();
    injector_->refresh ();
  }

  void take_from_client (std::string_view bytes) {
    from_client_.feed (bytes);
    if (!has_faults_)
      server_->put (bytes);
    for (std::string message = from_client_.next (); !message.empty (); message = from_client_.next ()) {
      if (!has_faults_)
        trace_.write ({TraceLine::From::client, number_, message});
      else if (injector_->receive (message))
        server_->put (message);
    }
  }

  void take_from_server (std::string_view bytes) {
    from_server_.feed (bytes);
    if (!has_faults_)
      client_->put (bytes);
    for (std::string message = from_server_.next (); !message.empty (); message = from_server_.next ()) {
      if (!has_faults_)
        trace_.write ({TraceLine::From::server, number_, message});
      else
        injector_->send (message);
    }
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

  // What the faults do to the client's side.
  void put (std::string_view bytes) override { client_->put (bytes); }
  void finish () override { end_later (); }
  void reset () override {
    client_->reset ();
    end_later ();
  }
  void allow_reading (bool allowed) override { client_->allow_reading (allowed); }

  void end_later () {
    asio::post (context_, [self = shared_from_this ()] { self->end (); });
  }

  asio::io_context &context_;
  TraceWriter &trace_;
  const int number_;
  const bool has_faults_; ///< faults are put in: messages go one by one
  const std::shared_ptr<BufferedSocket> client_;
  std::shared_ptr<BufferedSocket> server_; ///< absent until it is reached
  tcp::socket to_server_;
  const std::shared_ptr<FaultInjector> injector_;
  Splitter from_client_{Splitter::Side::client};
  Splitter from_server_{Splitter::Side::server};
  std::function<void ()> ended_;
  bool over_ = false;
};

class Proxy : public MessageObserver {
public:
  Proxy (asio::io_context &context, const ProxyOptions &options)
      : context_ (context), options_ (options), acceptor_ (context), trace_ (options.trace),
        random_ (options.seed ? Random (*options.seed) : Random ()), faults_ (context, random_) {
    faults_.changed = [this] { refresh (); };
    if (!options.faults.empty ())
      for (Rule &rule : read_rules (options.faults))
        faults_.add (std::move (rule));
    open ();
  }

  void received (int client, std::string_view command, const std::vector<Rule> &applied) override {
    TraceLine line{TraceLine::From::client, client, std::string (command)};
    for (const Rule &rule : applied)
      line.faults.emplace_back (name_of (rule.fault));
    trace_.write (line);
  }

  void sent (int client, std::string_view message) override {
    trace_.write ({TraceLine::From::server, client, std::string (message)});
  }

  void end_all () {
    const std::map<int, std::shared_ptr<ProxiedConnection>> present = connections_;
    for (const auto &[number, connection] : present)
      connection->end ();
  }

private:
  void open () {
    const tcp::endpoint endpoint = endpoint_of (options_.listen);
    acceptor_.open (endpoint.protocol ());
    acceptor_.set_option (tcp::acceptor::reuse_address (true));
    acceptor_.bind (endpoint);
    acceptor_.listen ();
    accept ();
  }

  void accept () {
    acceptor_.async_accept ([this] (const asio::error_code &error, tcp::socket socket) {
      if (error)
        return;
      const int number = ++last_number_;
      const auto connection = std::make_shared<ProxiedConnection> (
          context_, faults_, *this, trace_, std::move (socket), number, !options_.faults.empty ());
      connections_[number] = connection;
      connection->start (options_.server, [this, number] { connections_.erase (number); });
      accept ();
    });
  }

  void refresh () {
    const bool away = faults_.is_active (Fault::go_away);
    const bool shut = away || faults_.is_active (Fault::refuse_connections);
    if (shut && acceptor_.is_open ())
      acceptor_.close ();
    if (!shut && !acceptor_.is_open ())
      open ();
    if (away)
      end_all ();
    const std::map<int, std::shared_ptr<ProxiedConnection>> present = connections_;
    for (const auto &[number, connection] : present)
      connection->injector ().refresh ();
  }

  asio::io_context &context_;
  const ProxyOptions options_;
  tcp::acceptor acceptor_;
  TraceWriter trace_;
  Random random_;
  Faults faults_;
  std::map<int, std::shared_ptr<ProxiedConnection>> connections_; ///< by number, until they end
  int last_number_ = 0;
};

} // namespace

int run_proxy (const ProxyOptions &options) {
  asio::io_context context (1);
  asio::signal_set signals (context, SIGINT, SIGTERM);
  signals.async_wait ([&] (const asio::error_code &, int) { context.stop (); });
  Proxy proxy (context, options);
  print_line (fmt::format ("listening on {}:{}", options.listen, port));
  context.run ();
  proxy.end_all ();
  return 0;
}

} // namespace sim
