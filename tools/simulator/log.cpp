#include "log.h"

#include "message_limits.h"

#include <chrono>
#include <cstdio>
#include <ctime>
#include <fmt/format.h>
#include <poll.h>
#include <string>
#include <unistd.h>
#include <utility>

namespace sim {

namespace {

constexpr std::size_t longest_line = 4000; // bytes that fit into a pipe that is ready for writing

void write_all (std::string_view text, int output = STDOUT_FILENO) {
  while (!text.empty ()) {
    const ssize_t written = ::write (output, text.data (), text.size ());
    if (written <= 0)
      return;
    text.remove_prefix (static_cast<std::size_t> (written));
  }
}

bool output_is_ready () {
  pollfd output = {STDOUT_FILENO, POLLOUT, 0};
  return ::poll (&output, 1, 0) == 1 && (output.revents & POLLOUT) != 0;
}

std::string time_of_day () {
  using namespace std::chrono;
  const auto now = system_clock::now ();
  const std::time_t seconds = system_clock::to_time_t (now);
  std::tm parts{};
  ::localtime_r (&seconds, &parts);
  const auto milliseconds =
      duration_cast<std::chrono::milliseconds> (now.time_since_epoch ()).count () % 1000;
  return fmt::format ("{:02}:{:02}:{:02}.{:03}", parts.tm_hour, parts.tm_min, parts.tm_sec, milliseconds);
}

std::uint64_t lines_missing = 0;

void write_line (std::string_view line) {
  write_all (fmt::format ("{} {}\n", time_of_day (), line));
}

} // namespace

void log_line (std::string_view line) {
  if (lines_missing > 0 && output_is_ready ())
    write_line (fmt::format ("{} lines are missing here, because nobody read them in time",
                             std::exchange (lines_missing, 0)));
  if (output_is_ready ())
    write_line (shortened (line, longest_line));
  else
    ++lines_missing;
}

void print_line (std::string_view line) {
  write_all (std::string (line) + '\n');
}

void print_error (std::string_view line) {
  write_all (fmt::format ("orva-simulator: {}\n", line), STDERR_FILENO);
}

} // namespace sim
