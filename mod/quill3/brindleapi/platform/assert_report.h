#pragma once

namespace platform {

/// Reports a failed assertion as this platform does, also with NDEBUG, and ends the process. On Windows the
/// report is that of the C runtime for wide characters, elsewhere it is a line on standard error. The
/// function returns where the runtime lets its user ignore the report. Any thread.
void report_assertion (const char *expression, const char *file, unsigned line);

/// Writes the same text to standard error and returns.
void print_assertion (const char *expression, const char *file, unsigned line);

} // namespace platform
