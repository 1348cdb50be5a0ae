#include "platform/assert_report.h"

#include <stdio.h>
#include <string>
#include <wchar.h>

extern "C" __declspec(dllimport) void __cdecl _wassert (const wchar_t *message, const wchar_t *file,
                                                        unsigned line);

namespace {

std::wstring widened (const char *ascii) {
  std::wstring wide;
  while (*ascii != 0)
    wide.push_back (static_cast<wchar_t> (*ascii++));
  return wide;
}

} // namespace

void platform::print_assertion (const char *expression, const char *file, unsigned line) {
  fprintf (stderr, "Assertion failed: %s, file %s, line %u\n", expression, file, line);
  fflush (stderr);
}

void platform::report_assertion (const char *expression, const char *file, unsigned line) {
  _wassert (widened (expression).c_str (), widened (file).c_str (), line);
}
