#include "listener.h"

#include "options.h"

#include <fmt/format.h>
#include <stdexcept>
#include <utility>

namespace sim {

namespace {

using asio::ip::tcp;

constexpr std::chrono::milliseconds accept_pause{100};

} // namespace

Listener::Listener (asio::io_context &context, const std::string &address, Faults &faults, Actions actions)
    : endpoint_ (asio::ip::make_address_v4 (address), port), faults_ (faults), actions_ (std::move (actions)),
      acceptor_ (context), timer_ (context) {
  faults_.changed = [this] { refresh (); };
}

void Listener::open () {
  acceptor_.open (endpoint_.protocol ());
  acceptor_.set_option (tcp::acceptor::reuse_address (true));
  try {
    acceptor_.bind (endpoint_);
    acceptor_.listen ();
  } catch (const std::exception &problem) {
    throw std::runtime_error (
        fmt::format ("cannot listen on {}:{}: {}", endpoint_.address ().to_string (), port, problem.what ()));
  }
  timer_.cancel ();
  accept ();
}

void Listener::refresh () {
  const bool away = faults_.is_active (Fault::go_away);
  const bool shut = away || faults_.is_active (Fault::refuse_connections);
  if (shut && acceptor_.is_open ())
    acceptor_.close ();
  if (!shut && !acceptor_.is_open ())
    open ();
  if (away)
    actions_.end_all ();
  actions_.refresh ();
}

void Listener::accept () {
  acceptor_.async_accept ([this] (const asio::error_code &error, tcp::socket socket) {
    if (error == asio::error::operation_aborted)
      return;
    if (error)
      return accept_later (error);
    accept_failed_ = false;
    actions_.accept (std::move (socket));
    accept ();
  });
}

// The usual cause is that no descriptor is left. New clients wait in the queue of the system until another
// client disconnects.
void Listener::accept_later (const asio::error_code &error) {
  if (!std::exchange (accept_failed_, true))
    actions_.log (fmt::format ("new clients wait: {}", error.message ()));
  timer_.expires_after (accept_pause);
  timer_.async_wait ([this] (const asio::error_code &cancelled) {
    if (!cancelled && acceptor_.is_open ())
      accept ();
  });
}

} // namespace sim
