#pragma once

#include <chrono>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

namespace orvactl {

// What the platforms do differently: terminals, signals and the encoding of arguments. One source for each.

bool is_terminal (std::FILE *file);

struct TerminalSize {
  std::size_t columns = 80, rows = 24;
};
TerminalSize terminal_size ();

/// Makes keys readable one by one and shows the other screen of the terminal; the destructor undoes it.
class FullScreen {
public:
  FullScreen ();
  ~FullScreen ();
  FullScreen (const FullScreen &) = delete;
  FullScreen &operator= (const FullScreen &) = delete;

  /// Waits for a key; none when the time has passed.
  std::optional<char> key (std::chrono::milliseconds limit);
};

/// From now on Ctrl-C, and a request to end, only set what interrupted() returns. A second one ends the
/// process.
void catch_interrupts ();
bool interrupted ();
/// Waits so long, or until interrupted(). @return false when it was interrupted
bool pause_for (std::chrono::nanoseconds time);

/// Prepares the standard output for UTF-8 and returns the arguments in UTF-8, without the name of the
/// program.
std::vector<std::string> utf8_arguments (int argc, char **argv);

/// Ends the process at once, without waiting for threads. All output must have been flushed.
[[noreturn]] void leave (int status);

} // namespace orvactl
