#include "base/kelvane_assert.h"

#include "platform/assert_report.h"

namespace {

constexpr unsigned report_line = 9;
constexpr unsigned report_value_line = 15;

#ifdef ORVA_ASSERT_CONTINUE
constexpr kelvane_assert_handler_function default_handler = platform::print_assertion;
#else
constexpr kelvane_assert_handler_function default_handler = platform::report_assertion;
#endif

bool report (unsigned line) {
  kelvane_assert_handler.load () ("0", __FILE__, line);
  return false;
}

} // namespace

constinit std::atomic<kelvane_assert_handler_function> kelvane_assert_handler{default_handler};

bool kelvane_assert_report (const char *, unsigned, const char *) {
  return report (report_line);
}

bool kelvane_assert_report_value (const char *, unsigned, const char *) {
  return report (report_value_line);
}
