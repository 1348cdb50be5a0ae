/* What a small program in plain C does with the library, for a test that looks at the results. */
#ifndef TESTS_C_STORY_H
#define TESTS_C_STORY_H

#include "orva.h"

#ifdef __cplusplus
extern "C" {
#endif

/* One call that gave a result. */
typedef struct Step {
  const char *call;
  uint32_t code;
} Step;

typedef struct Story {
  uint32_t connection;
  uint8_t connected;
  uint8_t connected_after_close;
  Step steps[64];
  size_t step_count;
  orva_char error_text[32];
  orva_char server_name[16];
  uint32_t disk_total;
  uint32_t disk_available;
  uint32_t clip_exists;
  orva_char listed[2][16];
  orva_char added[16];
  orva_char title[16];
  orva_char metadata[16];
  uint32_t clip_length;
  double speed;
  uint32_t notice_kind;
  uint32_t notice_channel;
  uint32_t change_type;
  orva_char change_key[16];
  orva_char change_value[16];
} Story;

/* Uses every family of functions once or more: connects, asks, loads, plays, lists, follows changes, edits,
   waits for notices, mirrors a store, is refused a stop, and closes. */
void tell_story (uint32_t address, Story *story);

#ifdef __cplusplus
}
#endif

#endif
