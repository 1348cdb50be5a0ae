#pragma once

#include "support/own_address.h"
#include "support/wait.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

namespace support {

/// The port on which every server of this protocol listens.
inline constexpr uint16_t server_port = 8913;

/// One `cmd` document as it came from a client.
struct Command {
  size_t connection = 0; ///< which accepted connection brought it, counted from 1
  std::string xid;       ///< text of its `xid`
  std::string name;      ///< wire name of the command
  std::string document;  ///< every byte from `<cmd>` to `</cmd>`

  /// The document from behind `</xid>` to before `</cmd>`, line ends included: the command's own element.
  std::string element () const;
};

/// The text between the first `<tag>` and the `</tag>` behind it; empty when there is none.
std::string text_of (const std::string &document, const std::string &tag);

/// `<reply><xid>` and so on around a body, for the command's own identifier.
std::string reply_to (const Command &command, const std::string &body);

/// `<report>` around a body.
std::string report_of (const std::string &body);

/// A scripted server: a real socket on port 8913 of a loopback address of its own, so that any number of them
/// run side by side, in one process and in many. One thread accepts, reads, cuts out commands, runs the
/// script and sends; it is joined by the destructor.
///
/// Every member may be called from any thread, from within a handler too, except that the members that wait
/// must not be called from a handler. What is sent leaves in the order of the calls. A connection is named by
/// its number, counted from 1 in order of arrival; `latest` stands for the one that arrived last.
class FakeServer {
public:
  /// What a handler returns is sent as it is on the connection of the command; an empty text sends nothing.
  using Handler = std::function<std::string (const Command &)>;

  static constexpr size_t latest = 0;

  enum class Start {
    listening, ///< accepts from the first moment
    refusing   ///< has its address, but nobody listens there until `listen`
  };

  explicit FakeServer (Start start = Start::listening);
  ~FakeServer ();
  FakeServer (const FakeServer &) = delete;
  FakeServer &operator= (const FakeServer &) = delete;

  /// The server's own address, in host byte order.
  uint32_t address () const;

  // --- how connections are taken

  /// Accepts connections, from now on or again.
  void listen ();

  /// From now on connections are refused. Those that stand are left alone.
  void refuse ();

  /// From now on an attempt to connect neither succeeds nor fails: the listen queue is full. Linux kernels
  /// only (Wine upon one included). Ended by `listen`, `refuse` or destruction.
  void stall ();

  // --- the script

  /// Answers each command of that name through a handler, which runs on the server's thread.
  void on (const std::string &name, Handler handler);

  /// Answers each command that has no handler of its own.
  void on_any (Handler handler);

  /// Answers each command of that name with these bodies, one reply after the other, with its own identifier.
  void answer (const std::string &name, std::initializer_list<std::string> bodies);
  void answer (const std::string &name, const std::string &body);

  /// Answers each command that has no answer of its own with this body.
  void answer_any (const std::string &body);

  /// While silent, commands are collected and no handler runs. Those that came meanwhile stay unanswered.
  void silent (bool on);

  // --- how bytes leave and arrive

  /// Each later message leaves in two parts, cut before this byte, with a moment between them. 0: whole.
  void split_at (size_t position);

  /// Each later message leaves in pieces of this many bytes, with a moment between them. 0: whole.
  void split_into (size_t piece);

  /// Reads at most this many bytes per interval from each connection, with a small receive buffer for those
  /// accepted later. A count of 0 reads nothing at all; an interval of 0 reads at full speed again.
  void read_slowly (size_t count, std::chrono::milliseconds interval);

  // --- what the server does by itself

  /// Sends bytes as they are. Nothing happens when there is no such connection any more.
  void send (const std::string &bytes, size_t connection = latest);

  /// Sends a report with this body.
  void report (const std::string &body, size_t connection = latest);

  /// Closes the connection in an orderly way, behind everything sent so far.
  void drop (size_t connection = latest);

  /// Aborts the connection behind everything sent so far. Under Wine the client may see an orderly end first.
  void reset (size_t connection = latest);

  /// Ends the sending direction behind everything sent so far and goes on reading.
  void end_sending (size_t connection = latest);

  void drop_all ();

  // --- what was seen

  size_t accepted () const;      ///< connections accepted so far
  size_t open () const;          ///< of these, how many are not closed by either side
  size_t command_count () const; ///< complete commands, over all connections
  std::vector<Command> commands () const;

  /// All bytes that came on a connection.
  std::string received (size_t connection = latest) const;

  /// True once everything sent so far has been handed to the operating system, or its connection is gone.
  bool idle () const;

  /// Forgets commands and received bytes; numbers of connections go on.
  void forget ();

  // --- waiting; a limit that passes is a test failure of its own

  /// Waits for the n-th command since the start or `forget`, counted from 1. An empty one when the limit
  /// passed.
  Command command (size_t n, std::chrono::milliseconds limit = generous);

  /// Waits until this many commands have come. False when the limit passed.
  bool wait_for_commands (size_t count, std::chrono::milliseconds limit = generous);

  /// Waits until this many connections have been accepted. False when the limit passed.
  bool wait_for_connections (size_t count, std::chrono::milliseconds limit = generous);

  /// Waits until no connection is open. False when the limit passed.
  bool wait_until_left (std::chrono::milliseconds limit = generous);

  /// Waits until `idle`. False when the limit passed.
  bool wait_until_sent (std::chrono::milliseconds limit = generous);

private:
  class Machine;
  std::unique_ptr<Machine> machine_;
};

/// A client of raw bytes, for what the library would never send and to test servers. Used by one thread.
class RawClient {
public:
  explicit RawClient (uint32_t address);
  ~RawClient ();
  RawClient (const RawClient &) = delete;
  RawClient &operator= (const RawClient &) = delete;

  bool connected () const;

  /// Sends all bytes. False when the connection is gone.
  bool send (const std::string &bytes);

  /// Waits until the bytes received so far contain the text, and returns all up to its end, which are then
  /// forgotten. Returns what there is when the connection ended or the limit passed.
  std::string receive_through (const std::string &text, std::chrono::milliseconds limit = generous);

  /// Waits for the server's end of the connection, orderly or not. False when the limit passed.
  bool wait_for_end (std::chrono::milliseconds limit = generous);

  /// How it ended: true for a reset, false for an orderly end. Meaningful after `wait_for_end`.
  bool was_reset () const;

  void close (bool reset = false);

private:
  bool receive_more (std::chrono::milliseconds limit);

  intptr_t handle_;
  std::string pending_;
  bool ended_ = false;
  bool reset_ = false;
};

} // namespace support
