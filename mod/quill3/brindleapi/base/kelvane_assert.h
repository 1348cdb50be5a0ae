#pragma once

#include <atomic>

/// What a failed assertion ends in: is given the expression, the file and the line to show, and may return.
/// Any thread may call it.
using kelvane_assert_handler_function = void (*) (const char *expression, const char *file, unsigned line);

/// The one place where failed assertions of the whole library arrive. At first the platform's reporter, which
/// ends the process; a library built with ORVA_ASSERT_CONTINUE prints and goes on instead. Tests and fuzzers
/// put a function here that counts and returns.
extern std::atomic<kelvane_assert_handler_function> kelvane_assert_handler;

/// Reports a failed assertion. The three arguments are dropped on purpose: every failure shows the expression
/// "0" and one line of the reporter's own module, so that field reports of different releases compare equal.
/// @return false, when the handler lets the process live; the caller then takes its recovery path.
// C79: doc/compatibility.md
bool kelvane_assert_report (const char *file, unsigned line, const char *expression);

/// The same for assertions inside expressions of headers; it shows another line.
bool kelvane_assert_report_value (const char *file, unsigned line, const char *expression);

/// An expression: true when the condition holds, else reports and is false. The recovery path belongs to
/// every use: `if (!KELVANE_ASSERT (p != nullptr)) return {};`
#define KELVANE_ASSERT(condition)                                                                            \
  ((condition) ? true : kelvane_assert_report (__FILE__, static_cast<unsigned> (__LINE__), #condition))

/// KELVANE_ASSERT for inline code of headers.
#define KELVANE_ASSERT_VALUE(condition)                                                                      \
  ((condition) ? true : kelvane_assert_report_value (__FILE__, static_cast<unsigned> (__LINE__), #condition))
