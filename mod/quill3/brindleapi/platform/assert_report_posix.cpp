#include "platform/assert_report.h"

#include <stdio.h>
#include <stdlib.h>

void platform::print_assertion (const char *expression, const char *file, unsigned line) {
  fprintf (stderr, "Assertion failed: %s, file %s, line %u\n", expression, file, line);
}

void platform::report_assertion (const char *expression, const char *file, unsigned line) {
  print_assertion (expression, file, line);
  abort ();
}
