/* What a small program in plain C does with the library, for a test that looks at the results. */
#ifndef TESTS_C_STORY_H
#define TESTS_C_STORY_H

#include "orva.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct Story {
  uint32_t connection;
  uint8_t connected;
  uint32_t name_code;
  orva_char name[16];
  uint32_t load_code;
  uint32_t play_code;
  uint32_t stop_code;
  orva_char stop_text[32];
  uint32_t disk_code;
  uint32_t disk_total;
  uint32_t disk_available;
  uint32_t closed_code;
} Story;

/* Connects, asks, loads, plays, is refused a stop, and closes. */
Story tell_story (uint32_t address);

/* Addresses of functions of each family, as C sees them. */
typedef void (*AnyFunction) (void);
extern const AnyFunction functions_from_c[];
extern const size_t functions_from_c_count;

#ifdef __cplusplus
}
#endif

#endif
