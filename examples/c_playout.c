/* Plays a clip out to its end and counts down: playout.cpp in plain C.
 *
 *     c_playout [address [clip]]        127.0.0.1 and COUNTDOWN when none are given
 *
 * The name of the clip must be ASCII.
 */
#include "orva.h"
#include "pause.h"
#include "text.h"

#include <stdio.h>

#define CLIP_CAPACITY 256

static const uint32_t channel = 0; /* A. Commands treat a number above 7 as 0. */

/* Fields in a second, rounded up. A rate that the library does not know reads as 60. */
static uint32_t fields_per_second (uint32_t server) {
  uint32_t frequency = 0;
  must ("frequency", orva_video_frequency (server, &frequency));
  return frequency == ORVA_FREQUENCY_50 ? 50 : frequency >= ORVA_FREQUENCY_48 ? 48 : 60;
}

static uint32_t status_of_channel (uint32_t server) {
  uint32_t status = 0;
  must ("status", orva_channel_status (server, channel, &status));
  return status;
}

/* The fields from the position to the end of the clip. The first query of a kind asks the server to report
 * the value. Later queries send nothing. */
static uint32_t fields_left (uint32_t server) {
  uint32_t length = 0, position = 0;
  must ("length", orva_channel_clip_length (server, channel, &length));
  must ("position", orva_channel_position (server, channel, &position));
  return length > position ? length - position : 0;
}

int main (int argc, char **argv) {
  const char *name = argc > 2 ? argv[2] : "COUNTDOWN";
  orva_char clip[CLIP_CAPACITY] = {0};
  uint32_t server, rate, left, shown = 0xFFFFFFFF;
  size_t i;
  for (i = 0; name[i] != 0 && i + 1 < CLIP_CAPACITY; ++i)
    clip[i] = (orva_char)(unsigned char)name[i];

  server = orva_connect (parse_address (argc > 1 ? argv[1] : "127.0.0.1"));
  orva_wait_until_connected (server); /* waits for ever when there is no server */
  rate = fields_per_second (server);
  must ("loading", orva_cmd_loadclip3 (server, channel, clip, ORVA_REPEAT_OFF, 0));
  must ("playing", orva_cmd_play2 (server, channel, 1.0));

  /* The server answers the command before it reports that the channel plays. So wait for the report. */
  while (status_of_channel (server) != ORVA_CHANNEL_PLAYING)
    pause_milliseconds (1);
  printf ("%s is on air.\n", name);

  while (status_of_channel (server) == ORVA_CHANNEL_PLAYING && (left = fields_left (server)) > 1) {
    if (left / rate != shown)
      printf ("%u seconds left\n", (unsigned)(left / rate));
    shown = left / rate;
    pause_milliseconds (10);
  }
  must ("stopping", orva_cmd_stop1 (server, channel));
  printf ("%s has been played.\n", name);
  orva_close (server);
  return 0;
}

/* Output:
 *
 *     COUNTDOWN is on air.
 *     12 seconds left
 *     11 seconds left
 *     ...
 *     0 seconds left
 *     COUNTDOWN has been played.
 */
