#include "support/fake_server.h"

#include "support/socket.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <gtest/gtest.h>
#include <map>
#include <mutex>
#include <thread>

namespace support {

using Clock = std::chrono::steady_clock;
using Lock = std::unique_lock<std::mutex>;

// Between two parts of one message, so that the receiver most likely takes them in two reads.
constexpr std::chrono::milliseconds moment{1};

namespace {

// Everything that leaves a connection, in order: bytes, or one of its ends.
struct Outgoing {
  enum class Kind { bytes, end_sending, drop, reset };
  Kind kind = Kind::bytes;
  std::string bytes;
  std::chrono::milliseconds pause{0}; // before it leaves, counted from its predecessor's end
  size_t sent = 0;
};

struct Connection {
  net::Handle handle = net::no_handle;
  bool peer_ended = false;
  std::string received;
  size_t scanned = 0; // bytes of received that are already cut into commands
  std::deque<Outgoing> queue;
  Clock::time_point next_send{};
  Clock::time_point next_read{};
};

bool is_open (const Connection &connection) {
  return connection.handle != net::no_handle;
}

std::string element_name (const std::string &element) {
  const size_t begin = element.find ('<');
  if (begin == std::string::npos)
    return {};
  return element.substr (begin + 1, element.find_first_of (" />\r\n\t", begin + 1) - begin - 1);
}

std::string element_of (const std::string &document) {
  const std::string before = "</xid>", after = "</cmd>";
  const size_t begin = document.find (before);
  const size_t end = document.rfind (after);
  if (begin == std::string::npos || end == std::string::npos)
    return {};
  return document.substr (begin + before.size (), end - begin - before.size ());
}

} // namespace

std::string Command::element () const {
  return element_of (document);
}

std::string text_of (const std::string &document, const std::string &tag) {
  const std::string opening = "<" + tag + ">";
  const size_t begin = document.find (opening);
  if (begin == std::string::npos)
    return {};
  const size_t end = document.find ("</" + tag + ">", begin);
  if (end == std::string::npos)
    return {};
  return document.substr (begin + opening.size (), end - begin - opening.size ());
}

std::string reply_to (const Command &command, const std::string &body) {
  return "<reply><xid>" + command.xid + "</xid>" + body + "</reply>";
}

std::string report_of (const std::string &body) {
  return "<report>" + body + "</report>";
}

class FakeServer::Machine {
public:
  explicit Machine (Start start);
  ~Machine ();

  void perform (void (Machine::*action) ());
  void accept_all ();
  void listen_now ();
  void close_listener ();
  void stall ();
  void enqueue (size_t number, Outgoing item);
  void send (const std::string &bytes, size_t number);
  void wake () const;
  template <typename Predicate>
  bool wait (Lock &lock, Predicate predicate, std::chrono::milliseconds limit);
  bool idle () const;
  size_t open_count () const;
  Connection *find (size_t number);

  // Constant after construction.
  const OwnAddress own_address;
  const uint32_t address = own_address.value ();
  const net::Handle bell = net::open_bell ();

  // Guarded by mutex.
  mutable std::mutex mutex;
  std::condition_variable changed;
  std::deque<Connection> connections;
  std::vector<Command> commands;
  std::map<std::string, Handler> handlers;
  Handler any;
  bool silent = false;
  size_t split_position = 0;
  size_t piece = 0;
  size_t read_count = 0;
  std::chrono::milliseconds read_interval{0};

private:
  void run ();
  void serve (Lock &lock);
  std::vector<net::Watch> watches () const;
  int milliseconds_to_wait () const;
  bool may_read (const Connection &connection) const;
  void read_from (Connection &connection);
  void cut_commands (Lock &lock, size_t number);
  bool cut_one (size_t number, Command &command);
  std::string answer_for (Lock &lock, const Command &command);
  void write_to (Connection &connection);
  bool send_front (Connection &connection);
  void finish (Connection &connection, bool reset);

  // Guarded by mutex.
  net::Handle listener_ = net::no_handle;
  bool accepting_ = false;
  bool stop_ = false;
  void (Machine::*action_) () = nullptr;
  std::vector<net::Handle> fillers_;
  std::vector<size_t> live_; // numbers of the connections that are still open

  std::thread thread_;
};

FakeServer::Machine::Machine (Start start) {
  if (bell == net::no_handle)
    ADD_FAILURE () << "nothing to wake the server with";
  if (start == Start::listening)
    listen_now ();
  thread_ = std::thread ([this] { run (); });
}

FakeServer::Machine::~Machine () {
  {
    const Lock lock (mutex);
    stop_ = true;
  }
  wake ();
  thread_.join ();
  close_listener ();
  for (Connection &connection : connections)
    net::close_handle (connection.handle);
  net::close_handle (bell);
}

void FakeServer::Machine::close_listener () {
  net::close_handle (listener_);
  for (const net::Handle filler : fillers_)
    net::close_handle (filler, true);
  listener_ = net::no_handle;
  fillers_.clear ();
  accepting_ = false;
}

// The thread alone opens and closes what it waits for.
void FakeServer::Machine::perform (void (Machine::*action) ()) {
  Lock lock (mutex);
  if (std::this_thread::get_id () == thread_.get_id ())
    return (this->*action) ();
  changed.wait (lock, [this] { return action_ == nullptr; });
  action_ = action;
  wake ();
  changed.wait (lock, [this] { return action_ == nullptr; });
}

void FakeServer::Machine::listen_now () {
  close_listener ();
  listener_ = net::listen_on (address, server_port, 128);
  accepting_ = listener_ != net::no_handle;
  if (!accepting_)
    ADD_FAILURE () << "cannot listen on " << address_text (address);
}

// The queue of a listener that nobody accepts from holds one connection more than it was asked for.
void FakeServer::Machine::stall () {
  close_listener ();
  listener_ = net::listen_on (address, server_port, 0);
  for (int i = 0; i < 4; ++i)
    fillers_.push_back (net::begin_connect (address, server_port));
}

void FakeServer::Machine::wake () const {
  net::ring (bell);
}

Connection *FakeServer::Machine::find (size_t number) {
  if (connections.empty () || number > connections.size ())
    return nullptr;
  return number == latest ? &connections.back () : &connections[number - 1];
}

void FakeServer::Machine::enqueue (size_t number, Outgoing item) {
  Connection *connection = find (number);
  if (connection == nullptr || !is_open (*connection))
    return;
  connection->queue.push_back (std::move (item));
}

void FakeServer::Machine::send (const std::string &bytes, size_t number) {
  size_t step = piece;
  if (split_position != 0)
    step = split_position;
  if (step == 0)
    step = bytes.size ();
  for (size_t from = 0; from < bytes.size (); from += step) {
    if (from != 0 && split_position != 0)
      step = bytes.size ();
    enqueue (number, {Outgoing::Kind::bytes, bytes.substr (from, step),
                      from == 0 ? std::chrono::milliseconds (0) : moment});
  }
}

template <typename Predicate>
bool FakeServer::Machine::wait (Lock &lock, Predicate predicate, std::chrono::milliseconds limit) {
  return changed.wait_until (lock, Clock::now () + limit, predicate);
}

bool FakeServer::Machine::idle () const {
  return std::all_of (live_.begin (), live_.end (),
                      [this] (size_t number) { return connections[number - 1].queue.empty (); });
}

size_t FakeServer::Machine::open_count () const {
  return static_cast<size_t> (std::count_if (live_.begin (), live_.end (), [this] (size_t number) {
    return is_open (connections[number - 1]) && !connections[number - 1].peer_ended;
  }));
}

// --- the server's thread

void FakeServer::Machine::run () {
  Lock lock (mutex);
  while (!stop_) {
    std::vector<net::Watch> watched = watches ();
    const int time = milliseconds_to_wait ();
    lock.unlock ();
    net::wait_ready (watched, time);
    lock.lock ();
    net::silence (bell);
    serve (lock);
    changed.notify_all ();
  }
}

void FakeServer::Machine::serve (Lock &lock) {
  if (action_ != nullptr)
    (this->*action_) ();
  action_ = nullptr;
  accept_all ();
  for (size_t i = 0; i < live_.size (); ++i) {
    read_from (connections[live_[i] - 1]);
    cut_commands (lock, live_[i]);
    write_to (connections[live_[i] - 1]);
  }
  std::erase_if (live_, [this] (size_t number) { return !is_open (connections[number - 1]); });
}

bool FakeServer::Machine::may_read (const Connection &connection) const {
  if (!is_open (connection) || connection.peer_ended)
    return false;
  if (read_interval.count () == 0)
    return true;
  return read_count != 0 && connection.next_read <= Clock::now ();
}

std::vector<net::Watch> FakeServer::Machine::watches () const {
  std::vector<net::Watch> result{{bell, true}};
  if (accepting_)
    result.push_back ({listener_, true});
  for (const size_t number : live_) {
    const Connection &connection = connections[number - 1];
    const bool write =
        is_open (connection) && !connection.queue.empty () && connection.next_send <= Clock::now ();
    if (write || may_read (connection))
      result.push_back ({connection.handle, may_read (connection), write});
  }
  return result;
}

// A pause between parts and a slow reader need the thread at a time of its own.
int FakeServer::Machine::milliseconds_to_wait () const {
  const auto now = Clock::now ();
  auto next = now + std::chrono::seconds (1);
  for (const size_t number : live_) {
    const Connection &connection = connections[number - 1];
    if (!connection.queue.empty () && connection.next_send > now)
      next = std::min (next, connection.next_send);
    if (read_count != 0 && connection.next_read > now)
      next = std::min (next, connection.next_read);
  }
  const auto rest = std::chrono::duration_cast<std::chrono::milliseconds> (next - now).count ();
  return static_cast<int> (rest) + 1;
}

// Also before a connection is ended, because a client may count as connected while it is still in the queue.
void FakeServer::Machine::accept_all () {
  while (accepting_) {
    const net::Handle handle = net::accept_one (listener_);
    if (handle == net::no_handle)
      return;
    if (read_interval.count () != 0)
      net::shrink_receive_buffer (handle, 2048);
    connections.emplace_back ();
    connections.back ().handle = handle;
    live_.push_back (connections.size ());
  }
}

void FakeServer::Machine::read_from (Connection &connection) {
  char bytes[16384];
  const size_t room = read_interval.count () == 0 ? sizeof bytes : std::min (read_count, sizeof bytes);
  while (may_read (connection)) {
    const int count = net::receive_some (connection.handle, bytes, room);
    if (count == net::would_block)
      return;
    if (count <= 0) {
      connection.peer_ended = true;
      if (count == net::broken)
        finish (connection, false);
      return;
    }
    connection.received.append (bytes, static_cast<size_t> (count));
    connection.next_read = Clock::now () + read_interval;
  }
}

// A client never sends its closing tag inside a text, so the documents can be found without parsing them.
bool FakeServer::Machine::cut_one (size_t number, Command &command) {
  Connection &connection = connections[number - 1];
  const std::string opening = "<cmd>", closing = "</cmd>";
  const size_t begin = connection.received.find (opening, connection.scanned);
  const size_t end = connection.received.find (closing, connection.scanned);
  if (begin == std::string::npos || end == std::string::npos)
    return false;
  connection.scanned = end + closing.size ();
  command.connection = number;
  command.document = connection.received.substr (begin, connection.scanned - begin);
  command.xid = text_of (command.document, "xid");
  command.name = element_name (command.element ());
  return true;
}

void FakeServer::Machine::cut_commands (Lock &lock, size_t number) {
  Command command;
  while (cut_one (number, command)) {
    commands.push_back (command);
    changed.notify_all ();
    const std::string bytes = answer_for (lock, command);
    if (!bytes.empty ())
      send (bytes, number);
  }
}

// A handler runs unlocked, so that it can call the server.
std::string FakeServer::Machine::answer_for (Lock &lock, const Command &command) {
  if (silent)
    return {};
  const auto found = handlers.find (command.name);
  const Handler handler = found == handlers.end () ? any : found->second;
  if (!handler)
    return {};
  lock.unlock ();
  std::string bytes = handler (command);
  lock.lock ();
  return bytes;
}

void FakeServer::Machine::write_to (Connection &connection) {
  while (is_open (connection) && !connection.queue.empty ()) {
    if (connection.next_send > Clock::now () || !send_front (connection))
      return;
    connection.queue.pop_front ();
    if (!connection.queue.empty ())
      connection.next_send = Clock::now () + connection.queue.front ().pause;
  }
  // A client that has left, and for which nothing is left to send.
  if (is_open (connection) && connection.peer_ended)
    finish (connection, false);
}

// True when the item is done with.
bool FakeServer::Machine::send_front (Connection &connection) {
  Outgoing &item = connection.queue.front ();
  if (item.kind == Outgoing::Kind::end_sending) {
    net::end_sending (connection.handle);
    return true;
  }
  if (item.kind != Outgoing::Kind::bytes) {
    finish (connection, item.kind == Outgoing::Kind::reset);
    return false;
  }
  while (item.sent < item.bytes.size ()) {
    const int taken =
        net::send_some (connection.handle, item.bytes.data () + item.sent, item.bytes.size () - item.sent);
    if (taken == net::broken)
      finish (connection, false);
    if (taken < 0)
      return false;
    item.sent += static_cast<size_t> (taken);
  }
  return true;
}

void FakeServer::Machine::finish (Connection &connection, bool reset) {
  net::close_handle (connection.handle, reset);
  connection.handle = net::no_handle;
  connection.queue.clear ();
}

// --- the public face

FakeServer::FakeServer (Start start) : machine_ (std::make_unique<Machine> (start)) {}

FakeServer::~FakeServer () = default;

uint32_t FakeServer::address () const {
  return machine_->address;
}

void FakeServer::listen () {
  machine_->perform (&Machine::listen_now);
}

void FakeServer::refuse () {
  machine_->perform (&Machine::close_listener);
}

void FakeServer::stall () {
  machine_->perform (&Machine::stall);
}

void FakeServer::on (const std::string &name, Handler handler) {
  const Lock lock (machine_->mutex);
  machine_->handlers[name] = std::move (handler);
}

void FakeServer::on_any (Handler handler) {
  const Lock lock (machine_->mutex);
  machine_->any = std::move (handler);
}

void FakeServer::answer (const std::string &name, std::initializer_list<std::string> bodies) {
  on (name, [all = std::vector<std::string> (bodies)] (const Command &command) {
    std::string result;
    for (const std::string &body : all)
      result += reply_to (command, body);
    return result;
  });
}

void FakeServer::answer (const std::string &name, const std::string &body) {
  on (name, [body] (const Command &command) { return reply_to (command, body); });
}

void FakeServer::answer_any (const std::string &body) {
  on_any ([body] (const Command &command) { return reply_to (command, body); });
}

void FakeServer::silent (bool on) {
  const Lock lock (machine_->mutex);
  machine_->silent = on;
}

void FakeServer::split_at (size_t position) {
  const Lock lock (machine_->mutex);
  machine_->split_position = position;
  machine_->piece = 0;
}

void FakeServer::split_into (size_t piece) {
  const Lock lock (machine_->mutex);
  machine_->piece = piece;
  machine_->split_position = 0;
}

void FakeServer::read_slowly (size_t count, std::chrono::milliseconds interval) {
  const Lock lock (machine_->mutex);
  machine_->read_count = count;
  machine_->read_interval = interval;
  machine_->wake ();
}

void FakeServer::send (const std::string &bytes, size_t connection) {
  const Lock lock (machine_->mutex);
  machine_->accept_all ();
  machine_->send (bytes, connection);
  machine_->wake ();
}

void FakeServer::report (const std::string &body, size_t connection) {
  send (report_of (body), connection);
}

void FakeServer::drop (size_t connection) {
  const Lock lock (machine_->mutex);
  machine_->accept_all ();
  machine_->enqueue (connection, {Outgoing::Kind::drop, {}, {}});
  machine_->wake ();
}

void FakeServer::reset (size_t connection) {
  const Lock lock (machine_->mutex);
  machine_->accept_all ();
  machine_->enqueue (connection, {Outgoing::Kind::reset, {}, {}});
  machine_->wake ();
}

void FakeServer::end_sending (size_t connection) {
  const Lock lock (machine_->mutex);
  machine_->accept_all ();
  machine_->enqueue (connection, {Outgoing::Kind::end_sending, {}, {}});
  machine_->wake ();
}

void FakeServer::drop_all () {
  const Lock lock (machine_->mutex);
  machine_->accept_all ();
  for (size_t number = 1; number <= machine_->connections.size (); ++number)
    machine_->enqueue (number, {Outgoing::Kind::drop, {}, {}});
  machine_->wake ();
}

size_t FakeServer::accepted () const {
  const Lock lock (machine_->mutex);
  return machine_->connections.size ();
}

size_t FakeServer::open () const {
  const Lock lock (machine_->mutex);
  return machine_->open_count ();
}

size_t FakeServer::command_count () const {
  const Lock lock (machine_->mutex);
  return machine_->commands.size ();
}

std::vector<Command> FakeServer::commands () const {
  const Lock lock (machine_->mutex);
  return machine_->commands;
}

std::string FakeServer::received (size_t connection) const {
  const Lock lock (machine_->mutex);
  const Connection *found = machine_->find (connection);
  return found == nullptr ? std::string () : found->received;
}

bool FakeServer::idle () const {
  const Lock lock (machine_->mutex);
  return machine_->idle ();
}

void FakeServer::forget () {
  const Lock lock (machine_->mutex);
  machine_->commands.clear ();
  for (Connection &connection : machine_->connections) {
    connection.received.erase (0, connection.scanned);
    connection.scanned = 0;
  }
}

Command FakeServer::command (size_t n, std::chrono::milliseconds limit) {
  if (!wait_for_commands (n, limit))
    return {};
  const Lock lock (machine_->mutex);
  return machine_->commands[n - 1];
}

bool FakeServer::wait_for_commands (size_t count, std::chrono::milliseconds limit) {
  Lock lock (machine_->mutex);
  if (machine_->wait (
          lock, [&] { return machine_->commands.size () >= count; }, limit))
    return true;
  ADD_FAILURE () << "waited for command " << count << ", have " << machine_->commands.size ();
  return false;
}

bool FakeServer::wait_for_connections (size_t count, std::chrono::milliseconds limit) {
  Lock lock (machine_->mutex);
  if (machine_->wait (
          lock, [&] { return machine_->connections.size () >= count; }, limit))
    return true;
  ADD_FAILURE () << "waited for connection " << count << ", have " << machine_->connections.size ();
  return false;
}

bool FakeServer::wait_until_left (std::chrono::milliseconds limit) {
  Lock lock (machine_->mutex);
  if (machine_->wait (
          lock, [&] { return machine_->open_count () == 0; }, limit))
    return true;
  ADD_FAILURE () << "connections still open: " << machine_->open_count ();
  return false;
}

bool FakeServer::wait_until_sent (std::chrono::milliseconds limit) {
  Lock lock (machine_->mutex);
  if (machine_->wait (
          lock, [&] { return machine_->idle (); }, limit))
    return true;
  ADD_FAILURE () << "the client does not take what was sent";
  return false;
}

// --- the client of raw bytes

RawClient::RawClient (uint32_t address) : handle_ (net::connect_to (address, server_port)) {}

RawClient::~RawClient () {
  net::close_handle (handle_);
}

bool RawClient::connected () const {
  return handle_ != net::no_handle;
}

bool RawClient::send (const std::string &bytes) {
  for (size_t sent = 0; sent < bytes.size ();) {
    const int taken = net::send_some (handle_, bytes.data () + sent, bytes.size () - sent);
    if (taken < 0)
      return false;
    sent += static_cast<size_t> (taken);
  }
  return true;
}

bool RawClient::receive_more (std::chrono::milliseconds limit) {
  if (ended_ || !connected ())
    return false;
  std::vector<net::Watch> watched{{handle_, true}};
  net::wait_ready (watched, static_cast<int> (limit.count ()));
  if (!watched[0].can_read)
    return false;
  char bytes[16384];
  const int count = net::receive_some (handle_, bytes, sizeof bytes);
  ended_ = count <= 0;
  reset_ = count < 0;
  if (count > 0)
    pending_.append (bytes, static_cast<size_t> (count));
  return count > 0;
}

std::string RawClient::receive_through (const std::string &text, std::chrono::milliseconds limit) {
  size_t found = pending_.find (text);
  for (size_t before = pending_.size (); found == std::string::npos && receive_more (limit);
       before = pending_.size ())
    found = pending_.find (text, before - std::min (before, text.size ()));
  const size_t end = found == std::string::npos ? pending_.size () : found + text.size ();
  std::string result = pending_.substr (0, end);
  pending_.erase (0, end);
  return result;
}

bool RawClient::wait_for_end (std::chrono::milliseconds limit) {
  while (receive_more (limit)) {
  }
  return ended_;
}

bool RawClient::was_reset () const {
  return reset_;
}

void RawClient::close (bool reset) {
  net::close_handle (handle_, reset);
  handle_ = net::no_handle;
}

} // namespace support
