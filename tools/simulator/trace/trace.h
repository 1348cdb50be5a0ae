#pragma once

#include <chrono>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace sim {

/// A line of a trace: a message, or that a connection has begun or ended.
struct TraceLine {
  enum class From { client, server, nobody } from = From::nobody;
  int connection = 0;
  std::string message{};             ///< any bytes
  bool partial = false;              ///< the connection ended before the message did
  std::string event{};               ///< `open`, `close` or `unreachable`, when it is no message
  std::vector<std::string> faults{}; ///< names of those that have applied it
};

/// Writes a trace, line by line. One thread.
class TraceWriter {
public:
  /// @throws std::runtime_error when the file cannot be written
  explicit TraceWriter (const std::string &file);

  /// Writes it with the present time. @throws std::runtime_error when that fails
  void write (const TraceLine &line);

private:
  const std::string file_;
  std::ofstream stream_;
};

/// @throws std::runtime_error that names the file and the line that cannot be read
std::vector<TraceLine> read_trace (const std::string &file);

/// Cuts the bytes of one direction into messages. Whatever the bytes are, the pieces put together are the
/// same bytes: blanks between messages belong to the one that follows.
class Splitter {
public:
  enum class Side { client, server };
  explicit Splitter (Side side) : side_ (side) {}

  void feed (std::string_view bytes) { held_ += bytes; }
  /// The next message, or empty when none is complete. More than a megabyte without an end is cut off.
  std::string next ();
  /// What is left when the connection ends.
  std::string rest () { return std::move (held_); }

private:
  std::size_t find_end ();

  const Side side_;
  std::string held_;
  std::size_t searched_ = 0; ///< no message ends before this
};

} // namespace sim
