/* Prints what the channels of a server do, until it is interrupted (Ctrl-C). It asks for each value once.
 * From then on the server reports changes. Each change raises a notice, and reading the new value sends
 * nothing. With the name of a clip, the program watches channel A only and also controls it: it loads the
 * clip, plays, jogs, plays backwards, stops, and ends.
 *
 *     watch_channels [address [clip]]      127.0.0.1 when none is given
 */
#include "orva.h"
#include "pause.h"
#include "text.h"

#include <signal.h>
#include <stdio.h>

#define QUIET_MILLISECONDS 500

static volatile sig_atomic_t interrupted = 0;

static void interrupt (int number) {
  (void)number;
  interrupted = 1;
}

/* --- Values */

static void print_clip (uint32_t server, uint32_t channel) {
  orva_char clip[TEXT_CAPACITY];
  must ("clip", orva_channel_clip (server, channel, buffer_of (clip)));
  printf ("clip \"");
  print_text (clip);
  printf ("\"");
}

static void print_clip_length (uint32_t server, uint32_t channel) {
  uint32_t fields = 0;
  must ("clip length", orva_channel_clip_length (server, channel, &fields));
  printf ("clip length %u", (unsigned)fields);
}

static void print_position (uint32_t server, uint32_t channel) {
  uint32_t field = 0;
  must ("position", orva_channel_position (server, channel, &field));
  printf ("position %u", (unsigned)field);
}

static void print_precue_count (uint32_t server, uint32_t channel) {
  uint32_t count = 0;
  must ("precued clips", orva_channel_precue_count (server, channel, &count));
  printf ("precued clips %u", (unsigned)count);
}

static void print_status (uint32_t server, uint32_t channel) {
  static const char *const words[] = {"none", "stopped", "cueing", "playing", "recording"};
  uint32_t status = 0;
  must ("status", orva_channel_status (server, channel, &status));
  printf ("status %s", words[status]);
}

static void print_repeat (uint32_t server, uint32_t channel) {
  static const char *const words[] = {"off", "loop", "loop to", "ping-pong", "ping-pong to"};
  uint32_t repeat = 0;
  must ("repeat", orva_channel_repeat (server, channel, &repeat));
  printf ("repeat %s", words[repeat]);
}

static void print_speed (uint32_t server, uint32_t channel) {
  double speed = 0;
  must ("speed", orva_channel_speed (server, channel, &speed));
  printf ("speed %.2f", speed);
}

static void print_angle (uint32_t server, uint32_t channel) {
  uint32_t angle = 0, count = 0;
  must ("angle", orva_channel_angle (server, channel, &angle, &count));
  printf ("angle %u of %u", (unsigned)angle, (unsigned)count);
}

static void print_ee (uint32_t server, uint32_t channel) {
  uint32_t tracks = 0, manual = 0;
  must ("input", orva_channel_ee (server, channel, &tracks, &manual));
  printf ("input %s, tracks %u", manual ? "manual" : "automatic", (unsigned)tracks);
}

typedef void (*PrintValue) (uint32_t server, uint32_t channel);

/* The index is an OrvaNotice. */
static const PrintValue print_value[] = {
    NULL,         print_clip,   print_clip_length, print_position, print_precue_count,
    print_status, print_repeat, print_speed,       print_angle,    print_ee};

static void print_channel (uint32_t server, uint32_t channel, uint32_t kind) {
  printf ("%c  ", (int)('A' + channel));
  print_value[kind](server, channel);
  printf ("\n");
}

/* Asks once for a value of each report. Clip length, precued clips, repeat, angle and input are in one
 * report, so asking for one of them is enough. The first values raise notices too. */
static void register_channel (uint32_t server, uint32_t channel) {
  orva_char clip[TEXT_CAPACITY];
  uint32_t number = 0;
  double speed = 0;
  must ("asking for the clip", orva_channel_clip (server, channel, buffer_of (clip)));
  must ("asking for the clip length", orva_channel_clip_length (server, channel, &number));
  must ("asking for the status", orva_channel_status (server, channel, &number));
  must ("asking for the speed", orva_channel_speed (server, channel, &speed));
  must ("asking for the position", orva_channel_position (server, channel, &number));
}

/* --- Notices */

/* Waits for a notice and prints the new value. Returns 0 when there was no notice. */
static int watch_once (uint32_t server, uint32_t milliseconds) {
  uint32_t kind = ORVA_NOTICE_NONE, channel = 0;
  must ("waiting", orva_get_notification (server, milliseconds, &kind, &channel));
  if (kind == ORVA_NOTICE_NONE)
    return 0;
  print_channel (server, channel, kind);
  return 1;
}

/* Prints up to a number of notices. Returns early when nothing changes for half a second. */
static void watch (uint32_t server, unsigned notices) {
  for (; notices > 0 && !interrupted; --notices)
    if (!watch_once (server, QUIET_MILLISECONDS))
      return;
}

/* --- Control */

static void control (uint32_t server, uint32_t channel, const char *name) {
  orva_char clip[TEXT_CAPACITY];
  size_t i;
  for (i = 0; i + 1 < TEXT_CAPACITY && name[i] != '\0'; ++i)
    clip[i] = (orva_char)(unsigned char)name[i];
  clip[i] = 0;

  watch (server, ORVA_NOTICE_EE); /* the highest kind is the number of kinds: one notice of each */
  printf ("Loading %s.\n", name);
  must ("loading", orva_cmd_loadclip1 (server, channel, clip));
  watch (server, 20);
  printf ("Playing at 1.0.\n");
  must ("playing", orva_cmd_play2 (server, channel, 1.0));
  watch (server, 8);
  printf ("Jogging 250 fields on.\n");
  must ("jogging", orva_jog1 (server, channel, 250));
  watch (server, 20);
  printf ("Playing backwards at 0.5.\n");
  must ("playing backwards", orva_cmd_play2 (server, channel, -0.5));
  watch (server, 6);
  printf ("Stopping.\n");
  must ("stopping", orva_cmd_stop1 (server, channel));
  watch (server, 20);
}

int main (int argc, char **argv) {
  const uint32_t server = orva_connect (parse_address (argc > 1 ? argv[1] : "127.0.0.1"));
  const char *const clip = argc > 2 ? argv[2] : NULL;
  const uint32_t channels = clip != NULL ? 1 : 8;
  uint32_t channel;
  setvbuf (stdout, NULL, _IONBF, 0);
  signal (SIGINT, interrupt);
  while (!interrupted && !orva_connected (server))
    pause_milliseconds (20);
  for (channel = 0; channel < channels && !interrupted; ++channel)
    register_channel (server, channel);
  if (clip != NULL && !interrupted)
    control (server, 0, clip);
  while (clip == NULL && !interrupted)
    watch_once (server, 100);
  orva_close (server);
  printf ("That is all.\n");
  return 0;
}
