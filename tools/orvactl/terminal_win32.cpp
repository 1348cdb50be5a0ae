#include "terminal.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <conio.h>
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>
#include <thread>

namespace orvactl {

namespace {

std::atomic<bool> was_interrupted{false};

BOOL WINAPI on_interrupt (DWORD) {
  return was_interrupted.exchange (true) ? FALSE : TRUE;
}

std::string utf8 (const wchar_t *text) {
  const int length = WideCharToMultiByte (CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
  std::string bytes (static_cast<std::size_t> (std::max (length, 1)), '\0');
  WideCharToMultiByte (CP_UTF8, 0, text, -1, bytes.data (), length, nullptr, nullptr);
  bytes.pop_back ();
  return bytes;
}

void write_out (const char *text) {
  std::fputs (text, stdout);
  std::fflush (stdout);
}

} // namespace

bool is_terminal (std::FILE *file) {
  return _isatty (_fileno (file)) != 0;
}

TerminalSize terminal_size () {
  CONSOLE_SCREEN_BUFFER_INFO info{};
  if (GetConsoleScreenBufferInfo (GetStdHandle (STD_OUTPUT_HANDLE), &info) == 0)
    return {};
  return {static_cast<std::size_t> (info.srWindow.Right - info.srWindow.Left + 1),
          static_cast<std::size_t> (info.srWindow.Bottom - info.srWindow.Top + 1)};
}

FullScreen::FullScreen () {
  write_out ("\x1b[?1049h\x1b[?25l");
}

FullScreen::~FullScreen () {
  write_out ("\x1b[?25h\x1b[?1049l");
}

std::optional<char> FullScreen::key (std::chrono::milliseconds limit) {
  const auto end = std::chrono::steady_clock::now () + limit;
  while (_kbhit () == 0) {
    if (std::chrono::steady_clock::now () >= end || was_interrupted)
      return {};
    std::this_thread::sleep_for (std::chrono::milliseconds (20));
  }
  return static_cast<char> (_getch ());
}

void catch_interrupts () {
  SetConsoleCtrlHandler (on_interrupt, TRUE);
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

std::vector<std::string> utf8_arguments (int, char **) {
  _setmode (_fileno (stdout), _O_BINARY);
  SetConsoleOutputCP (CP_UTF8);
  const HANDLE console = GetStdHandle (STD_OUTPUT_HANDLE);
  DWORD mode = 0;
  if (GetConsoleMode (console, &mode) != 0)
    SetConsoleMode (console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
  int count = 0;
  wchar_t **const words = CommandLineToArgvW (GetCommandLineW (), &count);
  std::vector<std::string> arguments;
  for (int i = 1; words != nullptr && i < count; ++i)
    arguments.push_back (utf8 (words[i]));
  LocalFree (words);
  return arguments;
}

// No call of the library may be made while the process ends, so nothing is destroyed.
void leave (int status) {
  TerminateProcess (GetCurrentProcess (), static_cast<UINT> (status));
  for (;;) {
  }
}

} // namespace orvactl
