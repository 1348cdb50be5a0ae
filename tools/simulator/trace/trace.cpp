#include "trace/trace.h"

#include "base64.h"
#include "control/json.h"

#include <ctime>
#include <fmt/format.h>
#include <stdexcept>
#include <utf8.h>

namespace sim {

namespace {

constexpr std::size_t most_bytes = 1u << 20;

[[noreturn]] void refuse (const std::string &text) {
  throw std::runtime_error (text);
}

// `2026-01-31T12:00:00.000000Z`
std::string present_time () {
  using namespace std::chrono;
  const auto since = duration_cast<microseconds> (system_clock::now ().time_since_epoch ()).count ();
  const std::time_t seconds = static_cast<std::time_t> (since / 1'000'000);
  std::tm parts{};
  ::gmtime_r (&seconds, &parts);
  return fmt::format ("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:06}Z", parts.tm_year + 1900, parts.tm_mon + 1,
                      parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec, since % 1'000'000);
}

TraceLine::From side_of (const std::string &direction) {
  if (direction == "client")
    return TraceLine::From::client;
  if (direction == "server")
    return TraceLine::From::server;
  refuse (fmt::format ("there is no direction '{}'", direction));
}

TraceLine line_of (const Json &json) {
  TraceLine line;
  line.connection = static_cast<int> (whole_number (json, "connection", INT32_MAX));
  if (json.contains ("event")) {
    line.event = json["event"].get<std::string> ();
    return line;
  }
  line.from = side_of (json.at ("direction").get<std::string> ());
  line.partial = json.value ("partial", false);
  if (!json.contains ("base64")) {
    line.message = json.at ("message").get<std::string> ();
    return line;
  }
  const auto bytes = bytes_of_base64 (json["base64"].get<std::string> ());
  if (!bytes)
    refuse ("\"base64\" is not base64");
  line.message = *bytes;
  return line;
}

} // namespace

TraceWriter::TraceWriter (const std::string &file) : file_ (file), stream_ (file, std::ios::binary) {
  if (!stream_)
    refuse (file + " cannot be written");
}

void TraceWriter::write (const TraceLine &line) {
  Json json = {{"time", present_time ()}, {"connection", line.connection}};
  if (!line.event.empty ()) {
    json["event"] = line.event;
  } else {
    json["direction"] = line.from == TraceLine::From::client ? "client" : "server";
    if (utf8::is_valid (line.message.begin (), line.message.end ()))
      json["message"] = line.message;
    else
      json["base64"] = base64_of (line.message);
    if (line.partial)
      json["partial"] = true;
    if (!line.faults.empty ())
      json["faults"] = line.faults;
  }
  stream_ << json_text (json) << '\n' << std::flush;
  if (!stream_)
    refuse (file_ + " cannot be written any more");
}

std::vector<TraceLine> read_trace (const std::string &file) {
  std::ifstream stream (file, std::ios::binary);
  if (!stream)
    refuse (file + " cannot be read");
  std::vector<TraceLine> lines;
  int number = 0;
  for (std::string text; std::getline (stream, text);) {
    ++number;
    try {
      lines.push_back (line_of (parse_json (text)));
    } catch (const std::exception &problem) {
      refuse (fmt::format ("{}, line {}: {}", file, number, problem.what ()));
    }
  }
  if (stream.bad ())
    refuse (file + " cannot be read to its end");
  return lines;
}

std::string Splitter::next () {
  std::size_t end = find_end ();
  if (end == held_.npos && held_.size () > most_bytes)
    end = held_.size ();
  if (end == held_.npos)
    return "";
  std::string message = held_.substr (0, end);
  held_.erase (0, end);
  searched_ = 0;
  return message;
}

std::size_t Splitter::find_end () {
  const auto is_end_tag = [this] (std::string_view name) {
    return side_ == Side::client ? name == "cmd" : name == "reply" || name == "report";
  };
  for (std::size_t at = held_.find ("</", searched_); at != held_.npos; at = held_.find ("</", at + 2)) {
    const std::size_t close = held_.find ('>', at);
    if (close == held_.npos) {
      searched_ = at;
      return close;
    }
    const std::string_view name = std::string_view (held_).substr (at + 2, close - at - 2);
    if (is_end_tag (name.substr (0, std::min (name.find_first_of (" \t\r\n"), name.size ()))))
      return close + 1;
  }
  searched_ = held_.empty () ? 0 : held_.size () - 1;
  return held_.npos;
}

} // namespace sim
