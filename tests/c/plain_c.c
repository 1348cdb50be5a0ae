#include "c/plain_c.h"

enum { text_units = 32, generous_milliseconds = 20000 };

typedef struct Text {
  orva_char units[text_units];
} Text;

static Text text_of (const char *latin1) {
  Text text = {{0}};
  size_t i;
  for (i = 0; latin1[i] != 0 && i + 1 < text_units; ++i)
    text.units[i] = (unsigned char)latin1[i];
  return text;
}

static OrvaStringBuffer buffer_of (orva_char *text, uint32_t capacity) {
  OrvaStringBuffer buffer;
  buffer.text = text;
  buffer.capacity = capacity;
  return buffer;
}

static void note (CallResults *results, const char *call, uint32_t code) {
  if (results->step_count != sizeof results->steps / sizeof results->steps[0]) {
    results->steps[results->step_count].call = call;
    results->steps[results->step_count].code = code;
    ++results->step_count;
  }
}

static void ask (CallResults *results, uint32_t server) {
  note (results, "orva_server_name", orva_server_name (server, buffer_of (results->server_name, 16)));
  note (results, "orva_disk_usage2",
        orva_disk_usage2 (server, &results->disk_total, &results->disk_available));
}

static void run (CallResults *results, uint32_t server) {
  const Text clip = text_of ("NEWS\xE9");
  note (results, "orva_cmd_loadclip2", orva_cmd_loadclip2 (server, 1, clip.units, ORVA_REPEAT_LOOP));
  note (results, "orva_cmd_play2", orva_cmd_play2 (server, 1, 1.5));
  note (results, "orva_cmd_gang_stop1", orva_cmd_gang_stop1 (server, 5));
  note (results, "orva_cmd_stop1", orva_cmd_stop1 (server, 1));
  orva_get_last_error (buffer_of (results->error_text, 32));
  note (results, "orva_cmd_playlist_cue_list", orva_cmd_playlist_cue_list (server, 2));
}

static void edit_vclip (CallResults *results, uint32_t server) {
  const Text vclip = text_of ("CUT");
  const Text clip = text_of ("NEWS");
  note (results, "orva_vclip_create", orva_vclip_create (server, vclip.units, 500));
  note (results, "orva_vclip_add_segment1",
        orva_vclip_add_segment1 (server, vclip.units, clip.units, 10, 1, 20, 30));
  note (results, "orva_vclip_ripple", orva_vclip_ripple (server, vclip.units, 5, 40, -50));
}

static void browse (CallResults *results, uint32_t server) {
  const Text clip = text_of ("NEWS");
  uint32_t list = 0;
  size_t i;
  note (results, "orva_clip_exists", orva_clip_exists (server, clip.units, &results->clip_exists));
  note (results, "orva_open_clip_list", orva_open_clip_list (server, &list));
  for (i = 0; i != 2; ++i)
    note (results, "orva_get_clip_name", orva_get_clip_name (list, buffer_of (results->listed[i], 16)));
  orva_close_clip_list (list);
  note (results, "orva_get_clip_name", orva_get_clip_name (list, buffer_of (results->added, 16)));
}

static void follow_changes (CallResults *results, uint32_t server) {
  note (results, "orva_track_clip_changes", orva_track_clip_changes (server));
  /* Its answer comes behind the change that the server has told meanwhile. */
  note (results, "orva_track_directory_changes", orva_track_directory_changes (server));
  note (results, "orva_track_change_added_clip",
        orva_track_change_added_clip (server, buffer_of (results->added, 16)));
}

static void annotate (CallResults *results, uint32_t server) {
  const Text clip = text_of ("NEWS0123");
  const Text key = text_of ("desk");
  const Text value = text_of ("4");
  uint32_t handle = 0;
  note (results, "orva_open_clip_metadata", orva_open_clip_metadata (server, clip.units, &handle));
  note (results, "orva_clip_title", orva_clip_title (handle, buffer_of (results->title, 16)));
  note (results, "orva_clip_length", orva_clip_length (handle, &results->clip_length));
  note (results, "orva_clip_set_meta", orva_clip_set_meta (handle, key.units, value.units));
  note (results, "orva_clip_get_meta",
        orva_clip_get_meta (handle, key.units, buffer_of (results->metadata, 16)));
  note (results, "orva_close_clip_metadata", orva_close_clip_metadata (handle));
}

static void watch (CallResults *results, uint32_t server) {
  note (results, "orva_channel_speed", orva_channel_speed (server, 1, &results->speed));
  note (
      results, "orva_get_notification",
      orva_get_notification (server, generous_milliseconds, &results->notice_kind, &results->notice_channel));
}

static void mirror (CallResults *results, uint32_t server) {
  const Text folder = text_of ("rundown");
  const Text prefix = text_of ("");
  const Text key = text_of ("next");
  const Text value = text_of ("OPENER");
  uint32_t store = 0;
  note (results, "orva_open_kvstore",
        orva_open_kvstore (server, folder.units, prefix.units, ORVA_STORE_READ_WRITE, &store));
  note (results, "orva_kvstore_wait_scan", orva_kvstore_wait_scan (store, generous_milliseconds));
  note (results, "orva_kvstore_get_change",
        orva_kvstore_get_change (store, generous_milliseconds, &results->change_type,
                                 buffer_of (results->change_key, 16), buffer_of (results->change_value, 16)));
  note (results, "orva_kvstore_set", orva_kvstore_set (store, key.units, value.units));
  note (results, "orva_kvstore_flush", orva_kvstore_flush (store, generous_milliseconds));
  orva_close_key_value_store (store);
}

void call_every_family (uint32_t address, CallResults *results) {
  const uint32_t server = orva_connect (address);
  results->connection = server;
  results->connected = orva_wait_until_connected (server);
  ask (results, server);
  run (results, server);
  edit_vclip (results, server);
  browse (results, server);
  follow_changes (results, server);
  annotate (results, server);
  watch (results, server);
  mirror (results, server);
  orva_synchronous (server, 1);
  note (results, "orva_jog1", orva_jog1 (server, 0, -2));
  orva_sync (server);
  orva_close (server);
  results->connected_after_close = orva_connected (server);
  note (results, "orva_cmd_stop1", orva_cmd_stop1 (server, 1));
}
