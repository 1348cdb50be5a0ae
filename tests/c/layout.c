/*
 * The interface as callers have compiled it in: values, sizes, offsets and signatures. A program that was
 * built against an older header must work with a newer library, so nothing here ever changes; new names may
 * be added.
 */
#include "orva.h"

#define EQUAL(what, value) _Static_assert((what) == (value), #what " has changed")
#define SAME_TYPE(function, type)                                                                            \
  _Static_assert(_Generic(&(function), type : 1, default : 0), #function " has changed")

/* The types. */

EQUAL (sizeof (orva_char), 2);
EQUAL ((orva_char)-1 > 0, 1);
EQUAL (sizeof (OrvaStringBuffer), 16);
EQUAL (_Alignof(OrvaStringBuffer), 8);
EQUAL (offsetof (OrvaStringBuffer, text), 0);
EQUAL (offsetof (OrvaStringBuffer, capacity), 8);
EQUAL (sizeof ((OrvaStringBuffer *)0)->capacity, 4);

/* OrvaResult */

EQUAL (ORVA_OK, 0);
EQUAL (ORVA_NO_CONNECTION, 1);
EQUAL (ORVA_ERROR, 2);
EQUAL (ORVA_INVALID_HANDLE, 3);
EQUAL (ORVA_READ_ONLY, 4);
EQUAL (ORVA_TIMEOUT, 5);
EQUAL (ORVA_INVALID_ARGUMENT, 6);
EQUAL (ORVA_WRITE_ONLY, 7);

/* OrvaRepeat */

EQUAL (ORVA_REPEAT_OFF, 0);
EQUAL (ORVA_REPEAT_LOOP, 1);
EQUAL (ORVA_REPEAT_LOOP_TO, 2);
EQUAL (ORVA_REPEAT_PINGPONG, 3);
EQUAL (ORVA_REPEAT_PINGPONG_TO, 4);

/* OrvaPrecueCondition */

EQUAL (ORVA_PRECUE_EXPLICIT_SWITCH, 0);
EQUAL (ORVA_PRECUE_PREVIOUS_STOPS, 1);
EQUAL (ORVA_PRECUE_IMMEDIATE, 2);
EQUAL (ORVA_PRECUE_END_OF_CLIP, 3);

/* OrvaTransition */

EQUAL (ORVA_TRANSITION_CUT, 0);
EQUAL (ORVA_TRANSITION_DISSOLVE, 1);

/* OrvaFollowSpeed */

EQUAL (ORVA_FOLLOW_NONE, 0);
EQUAL (ORVA_FOLLOW_SMART, 1);
EQUAL (ORVA_FOLLOW_ONE_X, 2);
EQUAL (ORVA_FOLLOW_FOLLOW, 3);

/* OrvaPlayback */

EQUAL (ORVA_PLAYBACK_FIELD, 0);
EQUAL (ORVA_PLAYBACK_F12, 1);

/* OrvaTimecodeSource */

EQUAL (ORVA_TIMECODE_ZERO_BASED, 0);
EQUAL (ORVA_TIMECODE_STRIPED, 1);
EQUAL (ORVA_TIMECODE_RECORDED, 2);
EQUAL (ORVA_TIMECODE_RECORDED_0_STRIPE, 3);

/* OrvaDropFrame */

EQUAL (ORVA_DROP_FRAME, 0);
EQUAL (ORVA_NON_DROP_FRAME, 1);

/* OrvaVideoFrequency */

EQUAL (ORVA_FREQUENCY_60, 0);
EQUAL (ORVA_FREQUENCY_59_94, 1);
EQUAL (ORVA_FREQUENCY_50, 2);
EQUAL (ORVA_FREQUENCY_48, 3);
EQUAL (ORVA_FREQUENCY_47_95, 4);

/* OrvaVideoResolution */

EQUAL (ORVA_RESOLUTION_1080I, 0);
EQUAL (ORVA_RESOLUTION_720P, 1);
EQUAL (ORVA_RESOLUTION_625I, 2);
EQUAL (ORVA_RESOLUTION_525I, 3);

/* OrvaVideoStandard */

EQUAL (ORVA_STANDARD_1080_60I, 0);
EQUAL (ORVA_STANDARD_1080_59_94I, 1);
EQUAL (ORVA_STANDARD_1080_50I, 2);
EQUAL (ORVA_STANDARD_1080_48I, 3);
EQUAL (ORVA_STANDARD_1080_47_95I, 4);
EQUAL (ORVA_STANDARD_720_60P, 5);
EQUAL (ORVA_STANDARD_720_59_94P, 6);
EQUAL (ORVA_STANDARD_720_50P, 7);
EQUAL (ORVA_STANDARD_625_50I, 8);
EQUAL (ORVA_STANDARD_525_59_94I, 9);

/* OrvaChannelStatus */

EQUAL (ORVA_CHANNEL_NONE, 0);
EQUAL (ORVA_CHANNEL_STOPPED, 1);
EQUAL (ORVA_CHANNEL_CUEING, 2);
EQUAL (ORVA_CHANNEL_PLAYING, 3);
EQUAL (ORVA_CHANNEL_RECORDING, 4);

/* OrvaNotice */

EQUAL (ORVA_NOTICE_NONE, 0);
EQUAL (ORVA_NOTICE_CLIP, 1);
EQUAL (ORVA_NOTICE_CLIP_LENGTH, 2);
EQUAL (ORVA_NOTICE_POSITION, 3);
EQUAL (ORVA_NOTICE_PRECUE_COUNT, 4);
EQUAL (ORVA_NOTICE_STATUS, 5);
EQUAL (ORVA_NOTICE_REPEAT, 6);
EQUAL (ORVA_NOTICE_SPEED, 7);
EQUAL (ORVA_NOTICE_ANGLE, 8);
EQUAL (ORVA_NOTICE_EE, 9);

/* OrvaStoreMode */

EQUAL (ORVA_STORE_READ, 1);
EQUAL (ORVA_STORE_READ_WRITE, 2);
EQUAL (ORVA_STORE_WRITE, 3);

/* OrvaStoreChange */

EQUAL (ORVA_STORE_CHANGE_SET, 1);
EQUAL (ORVA_STORE_CHANGE_ERASE, 2);

/* The functions. */

SAME_TYPE (orva_connect, uint32_t (*) (uint32_t));
SAME_TYPE (orva_close, void (*) (uint32_t));
SAME_TYPE (orva_connected, uint8_t (*) (uint32_t));
SAME_TYPE (orva_wait_until_connected, uint8_t (*) (uint32_t));
SAME_TYPE (orva_get_last_error, void (*) (OrvaStringBuffer));
SAME_TYPE (orva_synchronous, void (*) (uint32_t, uint32_t));
SAME_TYPE (orva_sync, void (*) (uint32_t));
SAME_TYPE (orva_cmd_play1, uint32_t (*) (uint32_t, uint32_t));
SAME_TYPE (orva_cmd_play2, uint32_t (*) (uint32_t, uint32_t, double));
SAME_TYPE (orva_cmd_play3, uint32_t (*) (uint32_t, uint32_t, double, uint32_t));
SAME_TYPE (orva_cmd_gang_play1, uint32_t (*) (uint32_t, uint32_t));
SAME_TYPE (orva_cmd_gang_play2, uint32_t (*) (uint32_t, uint32_t, double));
SAME_TYPE (orva_cmd_gang_play3, uint32_t (*) (uint32_t, uint32_t, double, uint32_t));
SAME_TYPE (orva_cmd_stop1, uint32_t (*) (uint32_t, uint32_t));
SAME_TYPE (orva_cmd_stop2, uint32_t (*) (uint32_t, uint32_t, uint32_t));
SAME_TYPE (orva_cmd_gang_stop1, uint32_t (*) (uint32_t, uint32_t));
SAME_TYPE (orva_cmd_gang_stop2, uint32_t (*) (uint32_t, uint32_t, uint32_t));
SAME_TYPE (orva_jog1, uint32_t (*) (uint32_t, uint32_t, int32_t));
SAME_TYPE (orva_jog2, uint32_t (*) (uint32_t, uint32_t, int32_t, uint32_t));
SAME_TYPE (orva_gang_jog1, uint32_t (*) (uint32_t, uint32_t, int32_t));
SAME_TYPE (orva_gang_jog2, uint32_t (*) (uint32_t, uint32_t, int32_t, uint32_t));
SAME_TYPE (orva_goto1, uint32_t (*) (uint32_t, uint32_t, uint32_t));
SAME_TYPE (orva_goto2, uint32_t (*) (uint32_t, uint32_t, uint32_t, uint32_t));
SAME_TYPE (orva_gang_goto1, uint32_t (*) (uint32_t, uint32_t, uint32_t));
SAME_TYPE (orva_gang_goto2, uint32_t (*) (uint32_t, uint32_t, uint32_t, uint32_t));
SAME_TYPE (orva_cmd_loadclip1, uint32_t (*) (uint32_t, uint32_t, const orva_char *));
SAME_TYPE (orva_cmd_loadclip2, uint32_t (*) (uint32_t, uint32_t, const orva_char *, uint32_t));
SAME_TYPE (orva_cmd_loadclip3, uint32_t (*) (uint32_t, uint32_t, const orva_char *, uint32_t, uint32_t));
SAME_TYPE (orva_cmd_loadclip4,
           uint32_t (*) (uint32_t, uint32_t, const orva_char *, uint32_t, uint32_t, uint32_t, uint32_t));
SAME_TYPE (orva_cmd_loadclip5, uint32_t (*) (uint32_t, uint32_t, const orva_char *, uint32_t));
SAME_TYPE (orva_cmd_loadclip6, uint32_t (*) (uint32_t, uint32_t, const orva_char *, uint32_t, uint32_t));
SAME_TYPE (orva_cmd_loadclip7,
           uint32_t (*) (uint32_t, uint32_t, const orva_char *, uint32_t, uint32_t, uint32_t));
SAME_TYPE (orva_precue1, uint32_t (*) (uint32_t, uint32_t, const orva_char *, uint32_t));
SAME_TYPE (orva_precue2, uint32_t (*) (uint32_t, uint32_t, const orva_char *, uint32_t, uint32_t));
SAME_TYPE (orva_precue3, uint32_t (*) (uint32_t, uint32_t, const orva_char *, uint32_t, uint32_t, uint32_t));
SAME_TYPE (orva_precue4,
           uint32_t (*) (uint32_t, uint32_t, const orva_char *, uint32_t, uint32_t, uint32_t, uint32_t));
SAME_TYPE (orva_precue_clear1, uint32_t (*) (uint32_t, uint32_t));
SAME_TYPE (orva_precue_activate1, uint32_t (*) (uint32_t, uint32_t));
SAME_TYPE (orva_gang_precue_activate1, uint32_t (*) (uint32_t, uint32_t));
SAME_TYPE (orva_take1, uint32_t (*) (uint32_t, uint32_t, uint32_t, uint32_t));
SAME_TYPE (orva_take2, uint32_t (*) (uint32_t, uint32_t, uint32_t, uint32_t, uint32_t));
SAME_TYPE (orva_go_live1, uint32_t (*) (uint32_t, uint32_t));
SAME_TYPE (orva_go_live2, uint32_t (*) (uint32_t, uint32_t, uint32_t));
SAME_TYPE (orva_go_live3, uint32_t (*) (uint32_t, uint32_t, const orva_char *));
SAME_TYPE (orva_go_live4, uint32_t (*) (uint32_t, uint32_t, const orva_char *, uint32_t));
SAME_TYPE (orva_angle1, uint32_t (*) (uint32_t, uint32_t, uint32_t));
SAME_TYPE (orva_set_out1, uint32_t (*) (uint32_t, uint32_t, uint32_t));
SAME_TYPE (orva_clear_out, uint32_t (*) (uint32_t, uint32_t));
SAME_TYPE (orva_set_repeat, uint32_t (*) (uint32_t, uint32_t, uint32_t));
SAME_TYPE (orva_set_channel_repeat, uint32_t (*) (uint32_t, uint32_t, uint32_t));
SAME_TYPE (orva_unload_channel, uint32_t (*) (uint32_t, uint32_t));
SAME_TYPE (orva_edit1, uint32_t (*) (uint32_t, uint32_t, uint32_t));
SAME_TYPE (orva_gang_edit1, uint32_t (*) (uint32_t, uint32_t, uint32_t));
SAME_TYPE (orva_ee1, uint32_t (*) (uint32_t, uint32_t, uint32_t, uint32_t));
SAME_TYPE (orva_gang_ee1, uint32_t (*) (uint32_t, uint32_t, uint32_t, uint32_t));
SAME_TYPE (orva_edit_all_on, uint32_t (*) (uint32_t, uint32_t));
SAME_TYPE (orva_edit_all_off, uint32_t (*) (uint32_t, uint32_t));
SAME_TYPE (orva_gang_edit_all_on, uint32_t (*) (uint32_t, uint32_t));
SAME_TYPE (orva_gang_edit_all_off, uint32_t (*) (uint32_t, uint32_t));
SAME_TYPE (orva_ee_all_on, uint32_t (*) (uint32_t, uint32_t));
SAME_TYPE (orva_ee_all_off, uint32_t (*) (uint32_t, uint32_t));
SAME_TYPE (orva_gang_ee_all_on, uint32_t (*) (uint32_t, uint32_t));
SAME_TYPE (orva_gang_ee_all_off, uint32_t (*) (uint32_t, uint32_t));
SAME_TYPE (orva_clip_exists, uint32_t (*) (uint32_t, const orva_char *, uint32_t *));
SAME_TYPE (orva_rename_clip, uint32_t (*) (uint32_t, const orva_char *, const orva_char *));
SAME_TYPE (orva_delete_clip, uint32_t (*) (uint32_t, const orva_char *));
SAME_TYPE (orva_create_clip1, uint32_t (*) (uint32_t, const orva_char *, uint32_t));
SAME_TYPE (orva_create_clip2, uint32_t (*) (uint32_t, const orva_char *, uint32_t, uint32_t));
SAME_TYPE (orva_create_clip3, uint32_t (*) (uint32_t, uint32_t, const orva_char *, uint32_t, uint32_t));
SAME_TYPE (orva_create_child_clip1, uint32_t (*) (uint32_t, const orva_char *, const orva_char *));
SAME_TYPE (orva_create_child_clip2, uint32_t (*) (uint32_t, const orva_char *, const orva_char *, uint32_t));
SAME_TYPE (orva_set_readonly, uint32_t (*) (uint32_t, const orva_char *));
SAME_TYPE (orva_unset_readonly, uint32_t (*) (uint32_t, const orva_char *));
SAME_TYPE (orva_open_clip_list, uint32_t (*) (uint32_t, uint32_t *));
SAME_TYPE (orva_get_clip_name, uint32_t (*) (uint32_t, OrvaStringBuffer));
SAME_TYPE (orva_close_clip_list, void (*) (uint32_t));
SAME_TYPE (orva_open_directory_list, uint32_t (*) (uint32_t, uint32_t *));
SAME_TYPE (orva_get_directory_name, uint32_t (*) (uint32_t, OrvaStringBuffer));
SAME_TYPE (orva_close_directory_list, void (*) (uint32_t));
SAME_TYPE (orva_create_directory, uint32_t (*) (uint32_t, const orva_char *));
SAME_TYPE (orva_track_clip_changes, uint32_t (*) (uint32_t));
SAME_TYPE (orva_track_change_added_clip, uint32_t (*) (uint32_t, OrvaStringBuffer));
SAME_TYPE (orva_track_change_deleted_clip, uint32_t (*) (uint32_t, OrvaStringBuffer));
SAME_TYPE (orva_track_change_changed_clip, uint32_t (*) (uint32_t, OrvaStringBuffer));
SAME_TYPE (orva_track_directory_changes, uint32_t (*) (uint32_t));
SAME_TYPE (orva_track_change_added_directory, uint32_t (*) (uint32_t, OrvaStringBuffer));
SAME_TYPE (orva_track_change_deleted_directory, uint32_t (*) (uint32_t, OrvaStringBuffer));
SAME_TYPE (orva_open_clip_metadata, uint32_t (*) (uint32_t, const orva_char *, uint32_t *));
SAME_TYPE (orva_close_clip_metadata, uint32_t (*) (uint32_t));
SAME_TYPE (orva_clip_has_meta, uint32_t (*) (uint32_t, const orva_char *, uint32_t *));
SAME_TYPE (orva_clip_get_meta, uint32_t (*) (uint32_t, const orva_char *, OrvaStringBuffer));
SAME_TYPE (orva_clip_set_meta, uint32_t (*) (uint32_t, const orva_char *, const orva_char *));
SAME_TYPE (orva_clip_delete_meta, uint32_t (*) (uint32_t, const orva_char *));
SAME_TYPE (orva_clip_open_metakeys, uint32_t (*) (uint32_t, uint32_t *));
SAME_TYPE (orva_get_metakey, uint32_t (*) (uint32_t, OrvaStringBuffer));
SAME_TYPE (orva_close_metakeys, uint32_t (*) (uint32_t));
SAME_TYPE (orva_clip_video_standard, uint32_t (*) (uint32_t, uint32_t *));
SAME_TYPE (orva_get_tracks, uint32_t (*) (uint32_t, uint32_t *));
SAME_TYPE (orva_clip_creator, uint32_t (*) (uint32_t, OrvaStringBuffer));
SAME_TYPE (orva_clip_project, uint32_t (*) (uint32_t, OrvaStringBuffer));
SAME_TYPE (orva_clip_title, uint32_t (*) (uint32_t, OrvaStringBuffer));
SAME_TYPE (orva_clip_playback, uint32_t (*) (uint32_t, uint32_t *));
SAME_TYPE (orva_clip_repeat, uint32_t (*) (uint32_t, uint32_t *));
SAME_TYPE (orva_clip_loop_in_point, uint32_t (*) (uint32_t, uint32_t *));
SAME_TYPE (orva_clip_loop_out_point, uint32_t (*) (uint32_t, uint32_t *));
SAME_TYPE (orva_clip_length, uint32_t (*) (uint32_t, uint32_t *));
SAME_TYPE (orva_clip_is_readonly, uint32_t (*) (uint32_t, uint32_t *));
SAME_TYPE (orva_clip_timecode_stripe, uint32_t (*) (uint32_t, uint32_t *, uint32_t *));
SAME_TYPE (orva_clip_recorded_timecode0, uint32_t (*) (uint32_t, uint32_t *, uint32_t *));
SAME_TYPE (orva_clip_uuid, uint32_t (*) (uint32_t, OrvaStringBuffer));
SAME_TYPE (orva_clip_parent_uuid, uint32_t (*) (uint32_t, OrvaStringBuffer));
SAME_TYPE (orva_clip_trim_start, uint32_t (*) (uint32_t, uint32_t *));
SAME_TYPE (orva_clip_trim_end, uint32_t (*) (uint32_t, uint32_t *));
SAME_TYPE (orva_clip_timecode_source, uint32_t (*) (uint32_t, uint32_t *));
SAME_TYPE (orva_clip_last_loaded, uint32_t (*) (uint32_t, uint64_t *));
SAME_TYPE (orva_clip_last_unloaded, uint32_t (*) (uint32_t, uint64_t *));
SAME_TYPE (orva_clip_last_played, uint32_t (*) (uint32_t, uint64_t *));
SAME_TYPE (orva_clip_metadata_last_edited, uint32_t (*) (uint32_t, uint64_t *));
SAME_TYPE (orva_clip_content_last_edited, uint32_t (*) (uint32_t, uint64_t *));
SAME_TYPE (orva_set_clip_creator, uint32_t (*) (uint32_t, const orva_char *));
SAME_TYPE (orva_set_clip_project, uint32_t (*) (uint32_t, const orva_char *));
SAME_TYPE (orva_set_clip_title, uint32_t (*) (uint32_t, const orva_char *));
SAME_TYPE (orva_set_clip_playback, uint32_t (*) (uint32_t, uint32_t));
SAME_TYPE (orva_set_clip_repeat, uint32_t (*) (uint32_t, uint32_t));
SAME_TYPE (orva_set_clip_loop_in_point, uint32_t (*) (uint32_t, uint32_t));
SAME_TYPE (orva_set_clip_loop_out_point, uint32_t (*) (uint32_t, uint32_t));
SAME_TYPE (orva_set_clip_trim_start, uint32_t (*) (uint32_t, uint32_t));
SAME_TYPE (orva_set_clip_trim_end, uint32_t (*) (uint32_t, uint32_t));
SAME_TYPE (orva_set_clip_timecode_stripe, uint32_t (*) (uint32_t, uint32_t, uint32_t));
SAME_TYPE (orva_set_clip_timecode_source, uint32_t (*) (uint32_t, uint32_t));
SAME_TYPE (orva_vclip_create, uint32_t (*) (uint32_t, const orva_char *, uint32_t));
SAME_TYPE (orva_vclip_free, uint32_t (*) (uint32_t, const orva_char *));
SAME_TYPE (orva_vclip_modification_start, uint32_t (*) (uint32_t, const orva_char *));
SAME_TYPE (orva_vclip_modification_end, uint32_t (*) (uint32_t, const orva_char *));
SAME_TYPE (orva_vclip_add_segment1, uint32_t (*) (uint32_t, const orva_char *, const orva_char *, uint32_t,
                                                  uint32_t, uint32_t, uint32_t));
SAME_TYPE (orva_vclip_add_segment2, uint32_t (*) (uint32_t, const orva_char *, const orva_char *, uint32_t,
                                                  uint32_t, uint32_t, uint32_t, double));
SAME_TYPE (orva_vclip_clear_segment,
           uint32_t (*) (uint32_t, const orva_char *, uint32_t, uint32_t, uint32_t));
SAME_TYPE (orva_vclip_ripple, uint32_t (*) (uint32_t, const orva_char *, uint32_t, uint32_t, int32_t));
SAME_TYPE (orva_vclip_track_enable, uint32_t (*) (uint32_t, const orva_char *, uint32_t));
SAME_TYPE (orva_vclip_cfg_tracks, uint32_t (*) (uint32_t, const orva_char *, const orva_char *, uint32_t));
SAME_TYPE (orva_cmd_load_vclip1, uint32_t (*) (uint32_t, uint32_t, const orva_char *));
SAME_TYPE (orva_cmd_load_vclip2, uint32_t (*) (uint32_t, uint32_t, const orva_char *, uint32_t));
SAME_TYPE (orva_cmd_load_vclip3, uint32_t (*) (uint32_t, uint32_t, const orva_char *, uint32_t, uint32_t));
SAME_TYPE (orva_server_name, uint32_t (*) (uint32_t, OrvaStringBuffer));
SAME_TYPE (orva_video_frequency, uint32_t (*) (uint32_t, uint32_t *));
SAME_TYPE (orva_video_resolution, uint32_t (*) (uint32_t, uint32_t *));
SAME_TYPE (orva_video_standard, uint32_t (*) (uint32_t, uint32_t *));
SAME_TYPE (orva_disk_usage1, uint32_t (*) (uint32_t, uint64_t *, uint64_t *, uint32_t *));
SAME_TYPE (orva_disk_usage2, uint32_t (*) (uint32_t, uint32_t *, uint32_t *));
SAME_TYPE (orva_channel_clip, uint32_t (*) (uint32_t, uint32_t, OrvaStringBuffer));
SAME_TYPE (orva_channel_clip_length, uint32_t (*) (uint32_t, uint32_t, uint32_t *));
SAME_TYPE (orva_channel_position, uint32_t (*) (uint32_t, uint32_t, uint32_t *));
SAME_TYPE (orva_channel_precue_count, uint32_t (*) (uint32_t, uint32_t, uint32_t *));
SAME_TYPE (orva_channel_status, uint32_t (*) (uint32_t, uint32_t, uint32_t *));
SAME_TYPE (orva_channel_repeat, uint32_t (*) (uint32_t, uint32_t, uint32_t *));
SAME_TYPE (orva_channel_speed, uint32_t (*) (uint32_t, uint32_t, double *));
SAME_TYPE (orva_channel_angle, uint32_t (*) (uint32_t, uint32_t, uint32_t *, uint32_t *));
SAME_TYPE (orva_channel_ee, uint32_t (*) (uint32_t, uint32_t, uint32_t *, uint32_t *));
SAME_TYPE (orva_get_notification, uint32_t (*) (uint32_t, uint32_t, uint32_t *, uint32_t *));
SAME_TYPE (orva_cmd_playlist_play_now, uint32_t (*) (uint32_t, uint32_t, uint32_t));
SAME_TYPE (orva_cmd_playlist_play_next, uint32_t (*) (uint32_t, uint32_t, uint32_t));
SAME_TYPE (orva_cmd_playlist_cue_now, uint32_t (*) (uint32_t, uint32_t, uint32_t));
SAME_TYPE (orva_cmd_playlist_cue_next, uint32_t (*) (uint32_t, uint32_t, uint32_t));
SAME_TYPE (orva_cmd_playlist_cue_list, uint32_t (*) (uint32_t, uint32_t));
SAME_TYPE (orva_playlist_status, uint32_t (*) (uint32_t, uint32_t, uint32_t *));
SAME_TYPE (orva_playlist_count, uint32_t (*) (uint32_t, uint32_t, uint32_t *));
SAME_TYPE (orva_open_kvstore,
           uint32_t (*) (uint32_t, const orva_char *, const orva_char *, uint32_t, uint32_t *));
SAME_TYPE (orva_close_key_value_store, void (*) (uint32_t));
SAME_TYPE (orva_kvstore_set, uint32_t (*) (uint32_t, const orva_char *, const orva_char *));
SAME_TYPE (orva_kvstore_erase, uint32_t (*) (uint32_t, const orva_char *));
SAME_TYPE (orva_kvstore_flush, uint32_t (*) (uint32_t, uint32_t));
SAME_TYPE (orva_kvstore_wait_scan, uint32_t (*) (uint32_t, uint32_t));
SAME_TYPE (orva_kvstore_get_change,
           uint32_t (*) (uint32_t, uint32_t, uint32_t *, OrvaStringBuffer, OrvaStringBuffer));

/* A file that declares nothing is no file in C. */
extern int orva_layout_is_checked;
