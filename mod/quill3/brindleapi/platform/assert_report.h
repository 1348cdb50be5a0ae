#pragma once

namespace platform {

/// Tells a failed assertion the way this platform does, whatever NDEBUG says: through the C runtime's
/// wide-character reporter on Windows, elsewhere on standard error; then ends the process. Where the runtime
/// lets its user ignore the report, the function returns. Any thread.
void report_assertion (const char *expression, const char *file, unsigned line);

/// The same text on standard error, and no more.
void print_assertion (const char *expression, const char *file, unsigned line);

} // namespace platform
