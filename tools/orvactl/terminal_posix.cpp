#include "terminal.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <thread>
#include <unistd.h>

namespace orvactl {

namespace {

std::atomic<bool> was_interrupted{false};
static_assert (std::atomic<bool>::is_always_lock_free); // a signal handler may use no other

termios as_before;

void on_interrupt (int) {
  was_interrupted = true;
}

void write_out (const char *text) {
  std::fputs (text, stdout);
  std::fflush (stdout);
}

} // namespace

bool is_terminal (std::FILE *file) {
  return isatty (fileno (file)) != 0;
}

TerminalSize terminal_size () {
  winsize size{};
  if (ioctl (STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0)
    return {};
  return {size.ws_col, size.ws_row};
}

FullScreen::FullScreen () {
  tcgetattr (STDIN_FILENO, &as_before);
  termios raw = as_before;
  raw.c_lflag &= ~static_cast<tcflag_t> (ICANON | ECHO);
  raw.c_cc[VMIN] = 0;
  raw.c_cc[VTIME] = 0;
  tcsetattr (STDIN_FILENO, TCSANOW, &raw);
  write_out ("\x1b[?1049h\x1b[?25l");
}

FullScreen::~FullScreen () {
  write_out ("\x1b[?25h\x1b[?1049l");
  tcsetattr (STDIN_FILENO, TCSANOW, &as_before);
}

std::optional<char> FullScreen::key (std::chrono::milliseconds limit) {
  pollfd input{STDIN_FILENO, POLLIN, 0};
  char c = 0;
  if (poll (&input, 1, static_cast<int> (limit.count ())) <= 0)
    return {};
  if (read (STDIN_FILENO, &c, 1) == 1)
    return c;
  was_interrupted = true; // the terminal is gone
  return {};
}

void catch_interrupts () {
  struct sigaction action {};
  action.sa_handler = on_interrupt;
  action.sa_flags = static_cast<int> (SA_RESETHAND);
  for (const int number : {SIGINT, SIGTERM, SIGHUP})
    sigaction (number, &action, nullptr);
}

bool interrupted () {
  return was_interrupted;
}

bool pause_for (std::chrono::nanoseconds time) {
  const auto end = std::chrono::steady_clock::now () + time;
  while (!was_interrupted) {
    const auto left = end - std::chrono::steady_clock::now ();
    if (left <= left.zero ())
      return true;
    std::this_thread::sleep_for (std::min<std::chrono::nanoseconds> (left, std::chrono::milliseconds (20)));
  }
  return false;
}

std::vector<std::string> utf8_arguments (int argc, char **argv) {
  return std::vector<std::string> (argv + std::min (argc, 1), argv + argc);
}

void leave (int status) {
  _exit (status);
}

} // namespace orvactl
