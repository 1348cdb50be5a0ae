/* Lists all clips of a server with their length, title and metadata. Then it prints what others add, delete
 * and change, until it is interrupted (Ctrl-C).
 *
 *     clip_browser [address]       127.0.0.1 when none is given
 */
#include "orva.h"
#include "pause.h"
#include "text.h"

#include <signal.h>
#include <stdio.h>

static volatile sig_atomic_t interrupted = 0;

static void interrupt (int number) {
  (void)number;
  interrupted = 1;
}

/* Frames in a second, rounded up. The last part of a timecode counts to this number. */
static uint32_t frames_per_second (uint32_t standard) {
  switch (standard) {
  case ORVA_STANDARD_1080_50I:
  case ORVA_STANDARD_720_50P:
  case ORVA_STANDARD_625_50I:
    return 25;
  case ORVA_STANDARD_1080_48I:
  case ORVA_STANDARD_1080_47_95I:
    return 24;
  default:
    return 30;
  }
}

/* The number of a frame in timecode. Drop frame leaves out two frame numbers at the start of each minute,
 * except every tenth minute. So the timecode agrees with the clock. */
static uint32_t numbered_frame (uint32_t frame, uint32_t drop_frame) {
  const uint32_t per_minute = 60 * 30 - 2;
  const uint32_t per_ten_minutes = 10 * per_minute + 2;
  uint32_t left = frame % per_ten_minutes;
  if (drop_frame != ORVA_DROP_FRAME)
    return frame;
  frame += frame / per_ten_minutes * 18;
  return left < 2 ? frame : frame + (left - 2) / per_minute * 2;
}

static void print_length (uint32_t handle) {
  uint32_t length = 0, standard = 0, start = 0, drop_frame = ORVA_NON_DROP_FRAME, rate, frame, seconds;
  orva_clip_length (handle, &length);
  orva_clip_video_standard (handle, &standard);
  orva_clip_timecode_stripe (handle, &start, &drop_frame);
  rate = frames_per_second (standard);
  frame = numbered_frame (length / 2, drop_frame);
  seconds = frame / rate;
  printf ("%02u:%02u:%02u%c%02u", (unsigned)(seconds / 3600), (unsigned)(seconds / 60 % 60),
          (unsigned)(seconds % 60), drop_frame == ORVA_DROP_FRAME ? ';' : ':', (unsigned)(frame % rate));
}

static void print_metadata (uint32_t handle) {
  orva_char key[TEXT_CAPACITY], value[TEXT_CAPACITY];
  uint32_t keys = 0;
  if (orva_clip_open_metakeys (handle, &keys) != ORVA_OK)
    return;
  while (orva_get_metakey (keys, buffer_of (key)) == ORVA_OK && key[0] != 0) {
    orva_clip_get_meta (handle, key, buffer_of (value));
    printf ("    ");
    print_text (key);
    printf (" = ");
    print_text (value);
    printf ("\n");
  }
  orva_close_metakeys (keys);
}

/* Another program may delete the clip between the list and this call, so the call may fail. */
static void print_clip (uint32_t server, const orva_char *clip) {
  orva_char title[TEXT_CAPACITY];
  uint32_t handle = 0;
  print_text (clip);
  printf ("  ");
  if (orva_open_clip_metadata (server, clip, &handle) != ORVA_OK) {
    print_last_error ("cannot be opened");
    return;
  }
  print_length (handle);
  orva_clip_title (handle, buffer_of (title));
  printf ("  ");
  print_text (title);
  printf ("\n");
  print_metadata (handle);
  orva_close_clip_metadata (handle);
}

static void print_all_clips (uint32_t server) {
  orva_char clip[TEXT_CAPACITY];
  uint32_t list = 0;
  unsigned count = 0;
  must ("listing", orva_open_clip_list (server, &list));
  while (orva_get_clip_name (list, buffer_of (clip)) == ORVA_OK && clip[0] != 0) {
    print_clip (server, clip);
    ++count;
  }
  orva_close_clip_list (list);
  printf ("%u clips.\n", count);
}

typedef uint32_t (*TakeChange) (uint32_t, OrvaStringBuffer);

static void print_changes (uint32_t server, TakeChange take, const char *what, int show) {
  orva_char clip[TEXT_CAPACITY];
  while (take (server, buffer_of (clip)) == ORVA_OK && clip[0] != 0) {
    printf ("%s: ", what);
    if (show) {
      print_clip (server, clip);
    } else {
      print_text (clip);
      printf ("\n");
    }
  }
}

int main (int argc, char **argv) {
  const uint32_t server = orva_connect (parse_address (argc > 1 ? argv[1] : "127.0.0.1"));
  setvbuf (stdout, NULL, _IONBF, 0);
  signal (SIGINT, interrupt);
  while (!interrupted && !orva_connected (server))
    pause_milliseconds (20);
  if (!interrupted) {
    /* Start tracking before listing. So no change is missed. A change in between may be printed twice. */
    must ("tracking", orva_track_clip_changes (server));
    print_all_clips (server);
  }
  while (!interrupted) {
    print_changes (server, orva_track_change_added_clip, "added", 1);
    print_changes (server, orva_track_change_changed_clip, "changed", 1);
    print_changes (server, orva_track_change_deleted_clip, "deleted", 0);
    pause_milliseconds (100);
  }
  orva_close (server);
  printf ("That is all.\n");
  return 0;
}
