#pragma once

#include "problem.h"

#include <nlohmann/json.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace orvactl {

/// Keeps its members in the order in which they were entered.
using Json = nlohmann::ordered_json;

/// A text from a server as a terminal may show it: control characters, and those that turn the direction of
/// writing, are shown as \n, \x1b or \u{202e}.
std::string shown (std::string_view text);

/// The number of columns that a text takes in a terminal.
std::size_t width_of (std::string_view text);

/// A cell of a table. The text is shown(), and may have a colour.
struct Cell {
  std::string text;
  const char *colour = "";
  bool right = false; ///< numbers stand at the right
};

inline constexpr const char *red = "\x1b[31m", *green = "\x1b[32m", *yellow = "\x1b[33m", *bold = "\x1b[1m";

/// The lines of a table with a heading; columns are as wide as they have to be.
std::vector<std::string> table_lines (const std::vector<std::string> &heading,
                                      const std::vector<std::vector<Cell>> &rows, bool colours);

/// Writes results to the standard output. A write that fails ends the command with Exit::failed.
class Output {
public:
  Output (bool json, bool one_line) : json_ (json), one_line_ (one_line) {}

  bool json () const { return json_; }
  bool colours () const;

  /// A line of text for people.
  void line (const std::string &text);
  /// One JSON value on a line of its own.
  void object (const Json &value);
  /// One of them, as --json asks for.
  void one (const Json &value, const std::string &text);
  /// The same, and the reader gets it at once.
  void event (const Json &value, const std::string &text);
  /// That a command without a result has been carried out; nothing for people.
  void done ();
  void table (const std::vector<std::string> &heading, const std::vector<std::vector<Cell>> &rows);
  void raw (std::string_view bytes);
  void flush ();

private:
  friend class List;
  bool json_;
  bool one_line_; ///< every JSON value takes one line, because others follow
};

/// A list: a JSON array with an element on each line, or lines of text.
class List {
public:
  explicit List (Output &output) : output_ (output) {}
  void add (const Json &value, const std::string &text);
  void end ();

private:
  Output &output_;
  bool empty_ = true;
};

/// Shows how far a long operation is, on a terminal only.
class Progress {
public:
  Progress (std::string what, std::size_t total);
  ~Progress ();
  void step ();

private:
  std::string what_;
  std::size_t total_;
  std::size_t done_ = 0;
  std::size_t percent_ = 0;
  bool shown_ = false;
};

/// Writes a message to the standard error, as JSON when that is wanted.
void complain (Exit status, const std::string &text, bool json);
/// A message that does not end the command.
void warn (const std::string &text);

} // namespace orvactl
