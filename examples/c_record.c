/* Records for two seconds, and lists all clips with their lengths: record.cpp in plain C.
 *
 *     c_record [address [clip]]        127.0.0.1 and C TAPE when none are given
 *
 * The name of the clip must be ASCII.
 */
#include "orva.h"
#include "pause.h"
#include "text.h"

#include <stdio.h>

#define CLIP_CAPACITY 256
#define ALL_TRACKS 7

static const uint32_t channel = 1; /* B */

static void wait_for_status (uint32_t server, uint32_t wanted) {
  uint32_t status = ORVA_CHANNEL_NONE;
  do {
    must ("status", orva_channel_status (server, channel, &status));
    pause_milliseconds (1);
  } while (status != wanted);
}

static void print_length (uint32_t server, const orva_char *clip) {
  uint32_t metadata = 0, length = 0;
  must ("metadata", orva_open_clip_metadata (server, clip, &metadata));
  must ("length", orva_clip_length (metadata, &length));
  orva_close_clip_metadata (metadata);
  print_text (clip);
  printf ("  %u fields\n", (unsigned)length);
}

int main (int argc, char **argv) {
  const char *name = argc > 2 ? argv[2] : "C TAPE";
  orva_char clip[CLIP_CAPACITY] = {0};
  orva_char each[TEXT_CAPACITY];
  uint32_t server, list = 0;
  size_t i;
  for (i = 0; name[i] != 0 && i + 1 < CLIP_CAPACITY; ++i)
    clip[i] = (orva_char)(unsigned char)name[i];

  server = orva_connect (parse_address (argc > 1 ? argv[1] : "127.0.0.1"));
  orva_wait_until_connected (server);

  /* To record, create a clip for the channel, start an insert edit of all tracks, and play. */
  must ("creating", orva_create_clip3 (server, channel, clip, ALL_TRACKS, 0));
  must ("edit", orva_edit_all_on (server, channel));
  must ("playing", orva_cmd_play2 (server, channel, 1.0));
  wait_for_status (server, ORVA_CHANNEL_RECORDING);
  printf ("Channel B records %s.\n", name);
  pause_milliseconds (2000);
  must ("stopping", orva_cmd_stop1 (server, channel));
  must ("edit off", orva_edit_all_off (server, channel));
  wait_for_status (server, ORVA_CHANNEL_STOPPED);

  must ("list", orva_open_clip_list (server, &list));
  for (;;) {
    must ("name", orva_get_clip_name (list, buffer_of (each)));
    if (each[0] == 0)
      break;
    print_length (server, each);
  }
  orva_close_clip_list (list);
  orva_close (server);
  return 0;
}

/* Output:
 *
 *     Channel B records C TAPE.
 *     BARS  21600 fields
 *     C TAPE  121 fields
 *     ...
 */
