#include "c/story.h"

const AnyFunction functions_from_c[] = {
    (AnyFunction)orva_connect,        (AnyFunction)orva_get_last_error, (AnyFunction)orva_sync,
    (AnyFunction)orva_cmd_gang_play3, (AnyFunction)orva_precue4,        (AnyFunction)orva_gang_ee_all_off,
    (AnyFunction)orva_vclip_ripple,   (AnyFunction)orva_disk_usage2,
};
const size_t functions_from_c_count = sizeof functions_from_c / sizeof functions_from_c[0];

static OrvaStringBuffer buffer_of (orva_char *text, uint32_t capacity) {
  OrvaStringBuffer buffer;
  buffer.text = text;
  buffer.capacity = capacity;
  return buffer;
}

Story tell_story (uint32_t address) {
  static const orva_char clip[] = {'N', 'E', 'W', 'S', 0xE9, 0};
  Story story = {0};
  const uint32_t server = orva_connect (address);
  story.connection = server;
  story.connected = orva_wait_until_connected (server);
  story.name_code = orva_server_name (server, buffer_of (story.name, 16));
  story.load_code = orva_cmd_loadclip2 (server, 1, clip, ORVA_REPEAT_LOOP);
  story.play_code = orva_cmd_play2 (server, 1, 1.5);
  story.stop_code = orva_cmd_stop1 (server, 1);
  orva_get_last_error (buffer_of (story.stop_text, 32));
  story.disk_code = orva_disk_usage2 (server, &story.disk_total, &story.disk_available);
  orva_close (server);
  story.closed_code = orva_cmd_stop1 (server, 1);
  return story;
}
