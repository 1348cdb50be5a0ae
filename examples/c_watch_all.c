/* Watches what the channels of several servers do, on one thread: watch_all.cpp in plain C.
 *
 *     c_watch_all [address...]        127.0.0.1 when none is given; ends when the last link is lost
 */
#include "orva.h"
#include "text.h"

#include <stdio.h>

#define MOST_SERVERS 20
#define CHANNELS 8

typedef struct Watched {
  const char *address;
  uint32_t server;
  int up;
  int registered; /* the status of the channels below this number is reported */
} Watched;

static void print_status (const Watched *watched, uint32_t channel) {
  static const char *const words[] = {"none", "stopped", "cueing", "playing", "recording"};
  uint32_t status = 0;
  if (orva_channel_status (watched->server, channel, &status) == ORVA_OK && status <= ORVA_CHANNEL_RECORDING)
    printf ("%s  %c is %s\n", watched->address, (char)('A' + channel), words[status]);
}

/* There is no notice for the link, so query it. Returns 1 when the link has been lost since the last call. */
static int look_at_link (Watched *watched) {
  const int up = orva_connected (watched->server);
  const int went = watched->up && !up;
  if (up != watched->up)
    printf ("%s  is %s\n", watched->address, up ? "there" : "away");
  watched->up = up;
  return went;
}

/* Registers the report of one more channel. The first query of a channel does this, and may wait for some
 * seconds. */
static void register_next (Watched *watched) {
  uint32_t status = 0;
  if (!watched->up || watched->registered == CHANNELS)
    return;
  if (orva_channel_status (watched->server, (uint32_t)watched->registered, &status) == ORVA_OK)
    print_status (watched, (uint32_t)watched->registered++);
}

/* Waits 5 ms for a notice of one server, so that the other servers get their turn soon. */
static void take_notice (const Watched *watched) {
  uint32_t kind = ORVA_NOTICE_NONE, channel = 0;
  orva_get_notification (watched->server, 5, &kind, &channel);
  if (kind == ORVA_NOTICE_STATUS)
    print_status (watched, channel);
}

int main (int argc, char **argv) {
  Watched all[MOST_SERVERS] = {{0}};
  int count = argc > 1 ? argc - 1 : 1, up = 0, i;
  if (count > MOST_SERVERS)
    count = MOST_SERVERS;
  setvbuf (stdout, NULL, _IONBF, 0);
  for (i = 0; i != count; ++i) {
    all[i].address = argc > 1 ? argv[i + 1] : "127.0.0.1";
    all[i].server = orva_connect (parse_address (all[i].address));
  }
  for (;;) {
    int went = 0;
    for (i = 0, up = 0; i != count; ++i) {
      went += look_at_link (&all[i]);
      up += all[i].up;
      register_next (&all[i]);
      take_notice (&all[i]);
    }
    if (went != 0 && up == 0)
      break;
  }
  for (i = 0; i != count; ++i)
    orva_close (all[i].server);
  return 0;
}

/* Output, while somebody plays channel A and then ends the server:
 *
 *     127.0.0.1  is there
 *     127.0.0.1  A is stopped
 *     ...
 *     127.0.0.1  A is playing
 *     127.0.0.1  is away
 */
