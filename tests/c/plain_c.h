/* A small program in plain C that uses the library, and what its calls returned. The test is in C++. */
#ifndef TESTS_C_PLAIN_C_H
#define TESTS_C_PLAIN_C_H

#include "orva.h"

#ifdef __cplusplus
extern "C" {
#endif

/* One call that gave a result. */
typedef struct Step {
  const char *call;
  uint32_t code;
} Step;

typedef struct CallResults {
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
} CallResults;

/* Uses every family of functions once or more: connects, asks, loads, plays, lists, follows changes, edits,
   waits for notices, mirrors a store, is refused a stop, and closes. */
void call_every_family (uint32_t address, CallResults *results);

#ifdef __cplusplus
}
#endif

#endif
