/* The first steps with a server: connect, ask its name, play and stop a channel. It also shows what a caller
 * sees when the server goes away and comes back.
 *
 *     first_steps [address]        127.0.0.1 when none is given
 */
#include "orva.h"
#include "pause.h"

#include <stdio.h>
#include <stdlib.h>

#define NAME_CAPACITY 64

/* Prints the text of this thread's last result. */
static void print_last_error (const char *before, uint32_t code) {
  orva_char units[NAME_CAPACITY];
  OrvaStringBuffer buffer = {units, NAME_CAPACITY};
  size_t i;
  orva_get_last_error (buffer);
  printf ("%s: code %u, \"", before, (unsigned)code);
  for (i = 0; units[i] != 0; ++i)
    putchar (units[i] < 128 ? (char)units[i] : '?');
  printf ("\"\n");
}

/* Ends the program when a call that must succeed has failed. */
static void must (const char *what, uint32_t code) {
  if (code == ORVA_OK)
    return;
  print_last_error (what, code);
  exit (1);
}

static void print_name (uint32_t server) {
  orva_char units[NAME_CAPACITY];
  OrvaStringBuffer buffer = {units, NAME_CAPACITY};
  size_t i;
  must ("asking for the name", orva_server_name (server, buffer));
  printf ("The server's name is ");
  for (i = 0; units[i] != 0; ++i)
    putchar (units[i] < 128 ? (char)units[i] : '?');
  printf (".\n");
}

static void play_and_stop (uint32_t server) {
  const uint32_t channel = 0;
  must ("playing", orva_cmd_play1 (server, channel));
  printf ("Channel A plays.\n");
  pause_milliseconds (500);
  must ("playing backwards", orva_cmd_play2 (server, channel, -0.5));
  printf ("Channel A plays backwards at half speed.\n");
  pause_milliseconds (500);
  must ("stopping", orva_cmd_stop1 (server, channel));
  printf ("Channel A has stopped.\n");
}

/* Without a connection a command fails at once. The library connects again by itself. */
static void lose_and_find (uint32_t server) {
  uint32_t code = ORVA_OK;
  printf ("Now take the server away.\n");
  while ((code = orva_cmd_stop1 (server, 0)) == ORVA_OK)
    pause_milliseconds (100);
  print_last_error ("The server is gone", code);
  printf ("Now bring it back.\n");
  orva_wait_until_connected (server);
  printf ("The server is back.\n");
}

static uint32_t parse_address (const char *text) {
  unsigned a = 0, b = 0, c = 0, d = 0;
  if (sscanf (text, "%u.%u.%u.%u", &a, &b, &c, &d) != 4 || a > 255 || b > 255 || c > 255 || d > 255) {
    printf ("not an address: %s\n", text);
    exit (2);
  }
  return (uint32_t)(a << 24 | b << 16 | c << 8 | d);
}

int main (int argc, char **argv) {
  const char *address = argc > 1 ? argv[1] : "127.0.0.1";
  uint32_t server;
  setvbuf (stdout, NULL, _IONBF, 0);
  printf ("Looking for a server at %s.\n", address);
  server = orva_connect (parse_address (address));
  orva_wait_until_connected (server);
  printf ("Found it.\n");
  print_name (server);
  play_and_stop (server);
  lose_and_find (server);
  print_name (server);
  must ("playing", orva_cmd_play1 (server, 0));
  printf ("Channel A plays again. That is all.\n");
  orva_close (server);
  return 0;
}
