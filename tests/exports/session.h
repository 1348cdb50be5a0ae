#pragma once

#include "exports/short_form.h"
#include "orva.h"
#include "support/fake_server.h"

#include <string>
#include <string_view>
#include <vector>

/// Text as the exports take it, from ASCII.
inline std::basic_string<orva_char> wide (std::string_view ascii) {
  return std::basic_string<orva_char> (ascii.begin (), ascii.end ());
}

/// What a buffer of this capacity holds after `fill` has been given it, as ASCII up to the terminator.
template <typename Fill>
std::string filled (Fill fill, uint32_t capacity = 256) {
  std::vector<orva_char> units (capacity, orva_char ('#'));
  fill (OrvaStringBuffer{units.data (), capacity});
  std::string ascii;
  for (size_t i = 0; i < units.size () && units[i] != 0; ++i)
    ascii += char (units[i]);
  return ascii;
}

/// The calling thread's last error.
inline std::string last_error () {
  return filled (orva_get_last_error);
}

/// The body of an answer that refuses a command.
inline std::string refused (const std::string &text) {
  return "<error><ErrorMessage>" + text + "</ErrorMessage><ErrorCode>general</ErrorCode></error>";
}

/// The document that a client writes around an element, with CR LF for each '|' of the pattern.
inline std::string document (const std::string &xid, std::string_view pattern) {
  std::string bytes = "<cmd>\r\n<xid>" + xid + "</xid>\r\n";
  for (const char c : pattern)
    bytes += c == '|' ? std::string ("\r\n") : std::string (1, c);
  return bytes + "\r\n</cmd>";
}

/// A connection that closes itself.
class Session {
public:
  explicit Session (uint32_t address) : number_ (orva_connect (address)) {}
  explicit Session (const support::FakeServer &server) : Session (server.address ()) {
    orva_wait_until_connected (number_);
  }
  ~Session () { orva_close (number_); }
  Session (const Session &) = delete;
  Session &operator= (const Session &) = delete;

  operator uint32_t () const { return number_; }

private:
  uint32_t number_;
};

/// A call on the connection `c` and the command that it sends.
struct WireRow {
  const char *what;
  uint32_t (*call) (uint32_t connection);
  const char *command; ///< in the short form of `document_of`
};

#define SENDS(call, command)                                                                                 \
  {                                                                                                          \
#call, [](uint32_t c) { return call; }, command                                                          \
  }

/// Makes each call on a server that accepts everything and compares what arrives, byte by byte.
void expect_wire (const std::vector<WireRow> &rows);
