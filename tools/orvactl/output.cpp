#include "output.h"
#include "terminal.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace orvactl {

namespace {

/// Takes the first character of a text. The library gives valid UTF-8; a byte of anything else is taken
/// alone.
char32_t take_character (std::string_view &text, std::string_view &bytes) {
  const auto first = static_cast<unsigned char> (text.front ());
  const std::size_t length = first < 0xC0 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  bytes = text.substr (0, std::min (length, text.size ()));
  text.remove_prefix (bytes.size ());
  char32_t character = length == 1 ? first : first & (0x7Fu >> length);
  for (const char c : bytes.substr (1))
    character = character << 6 | (static_cast<unsigned char> (c) & 0x3Fu);
  return character;
}

bool hidden (char32_t c) {
  const bool control = c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x2028 || c == 0x2029;
  const bool direction = c == 0x200E || c == 0x200F || c == 0x061C || (c >= 0x202A && c <= 0x202E) ||
                         (c >= 0x2066 && c <= 0x2069);
  return control || direction;
}

std::string escaped (char32_t c) {
  if (c == '\n' || c == '\t' || c == '\r')
    return c == '\n' ? "\\n" : c == '\t' ? "\\t" : "\\r";
  char text[16];
  std::snprintf (text, sizeof text, c < 0x100 ? "\\x%02x" : "\\u{%x}", static_cast<unsigned> (c));
  return text;
}

bool wide (char32_t c) {
  return (c >= 0x1100 && c <= 0x115F) || (c >= 0x2E80 && c <= 0xA4CF) || (c >= 0xAC00 && c <= 0xD7A3) ||
         (c >= 0xF900 && c <= 0xFAFF) || (c >= 0xFE30 && c <= 0xFE6F) || (c >= 0xFF00 && c <= 0xFF60) ||
         (c >= 0xFFE0 && c <= 0xFFE6) || (c >= 0x1F300 && c <= 0x1FAFF) || (c >= 0x20000 && c <= 0x3FFFD);
}

bool combining (char32_t c) {
  return (c >= 0x0300 && c <= 0x036F) || (c >= 0x200B && c <= 0x200D) || (c >= 0xFE00 && c <= 0xFE0F);
}

std::string padded (const Cell &cell, std::size_t width, bool last, bool colours) {
  const std::string blanks (width - std::min (width, width_of (cell.text)), ' ');
  const bool coloured = colours && *cell.colour != 0;
  const std::string text = coloured ? cell.colour + cell.text + "\x1b[0m" : cell.text;
  return cell.right ? blanks + text : last ? text : text + blanks;
}

std::string dumped (const Json &value) {
  return value.dump (-1, ' ', true, Json::error_handler_t::replace);
}

} // namespace

std::string shown (std::string_view text) {
  std::string all;
  for (std::string_view bytes; !text.empty ();) {
    const char32_t c = take_character (text, bytes);
    all += hidden (c) ? escaped (c) : std::string (bytes);
  }
  return all;
}

std::size_t width_of (std::string_view text) {
  std::size_t width = 0;
  for (std::string_view bytes; !text.empty ();) {
    const char32_t c = take_character (text, bytes);
    width += combining (c) ? 0 : wide (c) ? 2 : 1;
  }
  return width;
}

std::vector<std::string> table_lines (const std::vector<std::string> &heading,
                                      const std::vector<std::vector<Cell>> &rows, bool colours) {
  std::vector<std::size_t> widths;
  for (const std::string &title : heading)
    widths.push_back (width_of (title));
  for (const auto &row : rows)
    for (std::size_t i = 0; i != row.size (); ++i)
      widths[i] = std::max (widths[i], width_of (row[i].text));
  std::vector<std::vector<Cell>> all (1);
  for (std::size_t i = 0; i != heading.size (); ++i)
    all[0].push_back ({heading[i], bold, !rows.empty () && rows[0][i].right});
  all.insert (all.end (), rows.begin (), rows.end ());
  std::vector<std::string> lines;
  for (const auto &row : all) {
    std::string line;
    for (std::size_t i = 0; i != row.size (); ++i)
      line += (i == 0 ? "" : "  ") + padded (row[i], widths[i], i + 1 == row.size (), colours);
    lines.push_back (line);
  }
  return lines;
}

bool Output::colours () const {
  const char *const off = std::getenv ("NO_COLOR");
  return !json_ && is_terminal (stdout) && (off == nullptr || *off == 0);
}

void Output::raw (std::string_view bytes) {
  if (std::fwrite (bytes.data (), 1, bytes.size (), stdout) != bytes.size ())
    throw Problem (Exit::failed, std::string ("The standard output: ") + std::strerror (errno));
}

void Output::flush () {
  if (std::fflush (stdout) != 0)
    throw Problem (Exit::failed, std::string ("The standard output: ") + std::strerror (errno));
}

void Output::line (const std::string &text) {
  raw (text + "\n");
}

void Output::object (const Json &value) {
  line (dumped (value));
}

void Output::one (const Json &value, const std::string &text) {
  if (json_)
    object (value);
  else
    line (text);
}

void Output::event (const Json &value, const std::string &text) {
  one (value, text);
  flush ();
}

void Output::done () {
  if (json_)
    object ({{"done", true}});
}

void Output::table (const std::vector<std::string> &heading, const std::vector<std::vector<Cell>> &rows) {
  for (const std::string &text : table_lines (heading, rows, colours ()))
    line (text);
}

void List::add (const Json &value, const std::string &text) {
  if (!output_.json ()) {
    output_.line (text);
    return;
  }
  const std::string_view end_of_line = output_.one_line_ ? "" : "\n";
  output_.raw (std::string (empty_ ? "[" : ",") + std::string (end_of_line) + dumped (value));
  empty_ = false;
}

void List::end () {
  if (output_.json ())
    output_.line (empty_ ? "[]" : output_.one_line_ ? "]" : "\n]");
}

Progress::Progress (std::string what, std::size_t total)
    : what_ (std::move (what)), total_ (total), shown_ (total > 50 && is_terminal (stderr)) {}

Progress::~Progress () {
  if (shown_)
    std::fprintf (stderr, "\r\x1b[K");
}

void Progress::step () {
  ++done_;
  const std::size_t percent = done_ * 100 / std::max<std::size_t> (total_, 1);
  if (!shown_ || percent == percent_)
    return;
  percent_ = percent;
  std::fprintf (stderr, "\r%s: %zu of %zu (%zu %%)\x1b[K", what_.c_str (), done_, total_, percent);
}

void complain (Exit status, const std::string &text, bool json) {
  const Json object = {{"error", word_of (status)}, {"exit", static_cast<int> (status)}, {"text", text}};
  std::fprintf (stderr, "%s\n", json ? dumped (object).c_str () : ("orvactl: " + shown (text)).c_str ());
}

void warn (const std::string &text) {
  std::fprintf (stderr, "orvactl: %s\n", shown (text).c_str ());
}

} // namespace orvactl
