#include "engine/quill3_client.h"

#include "base/amethod.h"
#include "platform/clocks.h"

#include <algorithm>
#include <new>

namespace QUILL3 {

namespace {

constexpr unsigned connect_delay = 100; // milliseconds before each attempt
constexpr unsigned read_wait = 1000;    // milliseconds of one wait for bytes
constexpr unsigned join_delay = 1;      // milliseconds between looks at the thread that is to end
constexpr uint64_t largest_send = 0x7FFFFFFF;
constexpr uint32_t idle_limit = 4; // open commands that keep the idle function from running

} // namespace

struct Client::StartBlock {
  Client *client;
  int32_t priority;
};

Client::Client () : Client (default_server_address) {}

Client::Client (uint32_t server_address) : server_address_ (server_address), stop_semaphore_ (false) {
  // The thread needs all three.
  if (!link_lock_.is_valid () || !stop_semaphore_.is_valid () || !idle_lock_.is_valid ())
    throw std::bad_alloc ();
  platform::sockets_start ();
}

Client::~Client () {
  stop_and_join ();
}

void Client::start_thread (int32_t priority) {
  if (thread_running_.exchange (true))
    return;
  auto *block = new (std::nothrow) StartBlock{this, priority};
  if (block != nullptr &&
      platform::thread_start (&Client::run_thread, block, platform::small_stack, &thread_))
    return;
  delete block;
  thread_running_ = false;
}

void Client::set_idle_function (uint32_t seconds, AFunction<void ()> function) {
  AMutexScope hold (idle_lock_);
  idle_interval_ = seconds;
  idle_function_ = function;
  has_idle_function_ = !function.is_empty ();
}

// -- The end

bool Client::is_own_thread () const {
  return thread_number_ == platform::thread_number ();
}

void Client::stop_and_join () noexcept {
  stop_requested_ = true;
  wake_up_.set ();
  stop_semaphore_.post ();
  if (std::shared_ptr<Link> link = current_link ())
    link->close (); // the thread may be waiting in a send
  if (is_own_thread ())
    return;
  while (thread_running_ && !thread_.was_ended ())
    platform::sleep_milliseconds (join_delay);
}

bool Client::defer_destruction (void (*destroy) (void *), void *holder) noexcept {
  if (!thread_running_ || !is_own_thread ())
    return false;
  destroy_ = destroy;
  holder_ = holder;
  stop_requested_ = true;
  set_abort_take ();
  return true;
}

// -- The connection's thread

// When the last reference was dropped on this thread, it destroys the object. Otherwise the object waits for
// the thread, and `thread_running_` is the last thing that the thread writes.
void Client::run_thread (void *start_block) {
  StartBlock block = *static_cast<StartBlock *> (start_block);
  delete static_cast<StartBlock *> (start_block);
  Client *client = block.client;
  client->thread_number_ = platform::thread_number ();
  platform::thread_set_priority (block.priority);
  client->main_loop ();
  client->replace_link (nullptr);
  if (client->destroy_ != nullptr)
    client->destroy_ (client->holder_);
  else
    client->thread_running_ = false;
}

// C99: doc/compatibility.md
void Client::main_loop () noexcept {
  while (!stop_requested_) {
    stop_semaphore_.wait (connect_delay);
    serve ();
  }
}

// An exception, from an allocation that failed, ends the link: its commands fail, and the next link starts
// afresh.
void Client::serve () noexcept {
  try {
    if (!stop_requested_)
      connect_once ();
    while (!stop_requested_ && connected_)
      poll_once ();
  } catch (...) {
    if (connected_)
      disconnect ();
  }
}

void Client::connect_once () {
  if (connected_)
    return;
  auto link = std::make_shared<Link> ();
  link->socket = platform::socket_open ();
  if (!platform::socket_connect (link->socket, server_address_, server_port, wake_up_))
    return;
  platform::socket_set_no_delay (link->socket);
  replace_link (link);
  connected_ = true;
  last_idle_time_ = seconds_now ();
  if (!stop_requested_)
    on_connected ();
}

void Client::poll_once () {
  const Link &link = own_link ();
  if (link.send_failed)
    return disconnect ();
  call_idle_function ();
  if (stop_requested_ || !connected_)
    return;
  switch (platform::socket_wait_readable (link.socket, read_wait, wake_up_)) {
  case platform::Ready::timed_out:
  case platform::Ready::woken:
    return;
  case platform::Ready::readable:
    return receive (link);
  case platform::Ready::failed:
    return disconnect ();
  }
}

void Client::receive (const Link &link) {
  const std::span<char> place = place_for_bytes ();
  const int64_t count = platform::socket_receive (link.socket, place.data (), place.size ());
  if (count > 0 && !stop_requested_)
    take_bytes (static_cast<uint64_t> (count));
  if (count <= 0 || stream_failed ())
    disconnect ();
}

// C108: doc/compatibility.md
void Client::call_idle_function () {
  if (!has_idle_function_)
    return;
  AFunction<void ()> function;
  uint32_t interval = 0;
  {
    AMutexScope hold (idle_lock_);
    function = idle_function_;
    interval = idle_interval_;
  }
  if (function.is_empty () || outstanding_count () >= idle_limit)
    return;
  int64_t now = seconds_now ();
  if (static_cast<uint32_t> (now - last_idle_time_) < interval)
    return;
  last_idle_time_ = now;
  function.run ();
}

// While this object ends no callback runs any more, because its destruction is no failure.
// C106: doc/compatibility.md
void Client::disconnect () noexcept {
  if (stop_requested_)
    return;
  if (std::shared_ptr<Link> link = current_link ())
    link->close ();
  replace_link (nullptr);
  connected_ = false;
  fail_all_commands ();
  reset_stream ();
  if (stop_requested_)
    return;
  try {
    on_disconnected ();
  } catch (...) { // the link is gone already, and that is all a failure costs
  }
}

// -- Sending

std::shared_ptr<Link> Client::current_link () noexcept {
  AMutexScope hold (link_lock_);
  return link_;
}

void Client::replace_link (std::shared_ptr<Link> link) noexcept {
  AMutexScope hold (link_lock_);
  link_.swap (link);
}

// The link is taken before `is_over` is asked. So a command that is still open has not failed with an earlier
// link, and fails with this one if this one is lost.
void Client::write_document (const CommandDocument &document, const AFunction<bool ()> &is_over) {
  Outgoing outgoing{*this, current_link ()};
  if (is_over.run ())
    return;
  try {
    render (document, AMethod::bind (&outgoing, &Outgoing::send_bytes));
  } catch (...) {
    // A document that was cut off must not be followed by another on the same link.
    if (outgoing.begun)
      outgoing.link->send_failed = true;
    throw;
  }
}

// The commands of a link that is no longer the present one have failed already, when it was lost.
// C100: doc/compatibility.md
void Client::Outgoing::send_bytes (const void *data, uint64_t length) {
  if (link != nullptr && link->is_up ()) {
    begun = true;
    if (!client.transmit_all (link->socket, static_cast<const char *> (data), length))
      link->send_failed = true;
  } else if (!client.stop_requested_ && (link == nullptr || link == client.current_link ())) {
    client.fail_all_commands ();
  }
}

// After a short send the offset advances by what remains, not by what was sent. The platform's send takes all
// bytes or fails, so it makes no difference there. An offset whose rest would lie beyond the bytes is a
// failed send. C98: doc/compatibility.md
bool Client::transmit_all (platform::SocketHandle socket, const char *data, uint64_t length) {
  uint64_t offset = 0;
  uint64_t remaining = length;
  while (remaining != 0) {
    if (offset > length - remaining)
      return false;
    int64_t sent = transmit (socket, data + offset, std::min (remaining, largest_send));
    if (sent < 1)
      return false;
    remaining -= std::min (remaining, static_cast<uint64_t> (sent));
    offset += remaining;
  }
  return true;
}

int64_t Client::transmit (platform::SocketHandle socket, const void *data, uint64_t length) {
  return platform::socket_send (socket, data, length);
}

int64_t Client::seconds_now () {
  return platform::seconds_since_1970 ();
}

} // namespace QUILL3
