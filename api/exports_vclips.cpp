// Exports: virtual clips.
#include "api/export_call.h"
#include "orva.h"

uint32_t orva_vclip_create (uint32_t connection, const orva_char *vclip, uint32_t length) {
  return on_connection (connection, OrvaConnObject::vclip_create, vclip, length);
}

uint32_t orva_vclip_free (uint32_t connection, const orva_char *vclip) {
  return on_connection (connection, OrvaConnObject::vclip_free, vclip);
}

uint32_t orva_vclip_modification_start (uint32_t connection, const orva_char *vclip) {
  return on_connection (connection, OrvaConnObject::vclip_modification_start, vclip);
}

uint32_t orva_vclip_modification_end (uint32_t connection, const orva_char *vclip) {
  return on_connection (connection, OrvaConnObject::vclip_modification_end, vclip);
}

uint32_t orva_vclip_add_segment1 (uint32_t connection, const orva_char *vclip, const orva_char *clip,
                                  uint32_t clip_position, uint32_t track_mask, uint32_t vclip_position,
                                  uint32_t length) {
  return on_connection (connection, OrvaConnObject::vclip_add_segment1, vclip, clip, clip_position,
                        track_mask, vclip_position, length);
}

uint32_t orva_vclip_add_segment2 (uint32_t connection, const orva_char *vclip, const orva_char *clip,
                                  uint32_t clip_position, uint32_t track_mask, uint32_t vclip_position,
                                  uint32_t length, double speed) {
  return on_connection (connection, OrvaConnObject::vclip_add_segment2, vclip, clip, clip_position,
                        track_mask, vclip_position, length, speed);
}

uint32_t orva_vclip_clear_segment (uint32_t connection, const orva_char *vclip, uint32_t track_mask,
                                   uint32_t vclip_position, uint32_t length) {
  return on_connection (connection, OrvaConnObject::vclip_clear_segment, vclip, track_mask, vclip_position,
                        length);
}

uint32_t orva_vclip_ripple (uint32_t connection, const orva_char *vclip, uint32_t track_mask,
                            uint32_t vclip_position, int32_t distance) {
  return on_connection (connection, OrvaConnObject::vclip_ripple, vclip, track_mask, vclip_position,
                        distance);
}

uint32_t orva_vclip_track_enable (uint32_t connection, const orva_char *vclip, uint32_t track_mask) {
  return on_connection (connection, OrvaConnObject::vclip_track_enable, vclip, track_mask);
}

uint32_t orva_vclip_cfg_tracks (uint32_t connection, const orva_char *vclip, const orva_char *clip,
                                uint32_t track_mask) {
  return on_connection (connection, OrvaConnObject::vclip_cfg_tracks, vclip, clip, track_mask);
}

uint32_t orva_cmd_load_vclip1 (uint32_t connection, uint32_t channel, const orva_char *vclip) {
  return on_connection (connection, OrvaConnObject::cmd_load_vclip1, channel, vclip);
}

uint32_t orva_cmd_load_vclip2 (uint32_t connection, uint32_t channel, const orva_char *vclip,
                               uint32_t repeat) {
  return on_connection (connection, OrvaConnObject::cmd_load_vclip2, channel, vclip, repeat);
}

uint32_t orva_cmd_load_vclip3 (uint32_t connection, uint32_t channel, const orva_char *vclip, uint32_t repeat,
                               uint32_t position) {
  return on_connection (connection, OrvaConnObject::cmd_load_vclip3, channel, vclip, repeat, position);
}
