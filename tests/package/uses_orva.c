/* Needs the header, the library and no server: what can be told without one. */
#include <orva.h>
#include <stdio.h>

static int failures = 0;

static void expect (int right, const char *what) {
  if (!right) {
    printf ("wrong: %s\n", what);
    ++failures;
  }
}

static int is_text (const orva_char *text, const char *expected) {
  while (*expected != 0 && *text == (orva_char)(unsigned char)*expected) {
    ++text;
    ++expected;
  }
  return *text == 0 && *expected == 0;
}

int main (void) {
  orva_char text[40];
  OrvaStringBuffer buffer = {text, 40};
  const uint32_t connection = orva_connect (0x7F000001);
  expect (connection != 0, "a connection has a number");
  expect (orva_connected (connection) == 0, "no connection is up at once");
  orva_close (connection);
  expect (orva_cmd_stop1 (connection, 0) == ORVA_INVALID_HANDLE, "a closed number is unknown");
  orva_get_last_error (buffer);
  expect (is_text (text, "Invalid handle"), "the text of an unknown number");
  return failures == 0 ? 0 : 1;
}
