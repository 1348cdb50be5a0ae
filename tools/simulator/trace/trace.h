#pragma once

#include <chrono>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace sim {

/// A line of a trace: a message, or an event such as the begin or end of a connection.
struct TraceLine {
  enum class From { client, server, nobody } from = From::nobody;
  int connection = 0;
  std::string message{};             ///< any bytes
  bool partial = false;              ///< the connection ended before the message did
  std::string event{};               ///< `open`, `close` or `unreachable`; empty for a message
  std::vector<std::string> faults{}; ///< names of the faults that were applied to the command
};

/// Writes a trace, line by line. One thread.
class TraceWriter {
public:
  /// @throws std::runtime_error when the file cannot be written
  explicit TraceWriter (const std::string &file);

  /// Writes the line with the present time. @throws std::runtime_error when that fails
  void write (const TraceLine &line);

private:
  const std::string file_;
  std::ofstream stream_;
};

/// Reads the lines of a trace. @throws std::runtime_error that names the file and the line that cannot be
/// read
std::vector<TraceLine> read_trace (const std::string &file);

/// Splits the bytes of one direction into messages. No byte is lost or changed: blanks between two messages
/// belong to the second.
class Splitter {
public:
  enum class Side { client, server };
  explicit Splitter (Side side) : side_ (side) {}

  void feed (std::string_view bytes) { held_ += bytes; }
  /// The next message, or empty when none is complete. When more than a megabyte has come without an end, all
  /// of it counts as one message.
  std::string next ();
  /// The bytes that are left when the connection ends.
  std::string rest () { return std::move (held_); }

private:
  std::size_t find_end ();

  const Side side_;
  std::string held_;
  std::size_t searched_ = 0; ///< no message ends before this
};

} // namespace sim
