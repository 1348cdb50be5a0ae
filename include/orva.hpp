/**
 * @file orva.hpp
 * Control of a networked video server, for programs in C++17 and later. It offers everything that orva.h
 * offers, with objects, exceptions and time limits. It consists of headers only and needs orva.h and the
 * library. The cookbook, doc/cookbook.md, has programs to start with.
 *
 *     #include <orva.hpp>
 *
 *     orva::Server server ("10.0.0.5");
 *     server.wait_until_connected ();
 *     server.channel (orva::A).load ("NEWS/OPENER");
 *     server.channel (orva::A).play (1.0);
 *     server.channel (orva::A).wait_for (orva::Status::playing);
 *
 * SERVERS. An orva::Server keeps a connection up until it is destroyed. Its operations are in groups:
 * server.channel() for one channel, server.channels() for several channels on the same field, server.clip(),
 * server.virtual_clip(), server.store(), and the server itself. A group is cheap to make, to keep and to
 * copy. Once its server is destroyed, its operations fail with `invalid`.
 *
 * ERRORS. An operation that fails throws. Each kind of failure has its own exception class, and all of them
 * are derived from orva::error:
 *   invalid        a bad argument or a closed object; nothing was sent
 *   not_connected  the link was down; nothing was sent
 *   link_lost      the link went down before the answer: the outcome is unknown
 *   refused        the server refused it; what() is the text of the server
 *   timed_out      no answer within the limit: the outcome is unknown
 *   cancelled      another thread ended the wait: the outcome is unknown
 *   unsupported    this version of the library cannot do it; nothing was sent
 *   internal       no memory, no thread, or a fault in the library: the outcome is unknown
 * When an operation of several commands fails, it may have sent some of them. The library never repeats a
 * command by itself.
 *
 * FORMS. Every operation exists in three forms, chosen by a call in front of it:
 *   server.channel (orva::A).play ()              throws a failure
 *   server.nothrow ().channel (orva::A).play ()   returns orva::result<void>, also for a failure
 *   server.async ().channel (orva::A).play ()     returns std::future<orva::result<void>>, at once
 * nothrow() and async() work on each group. Their result can be kept: `const auto quiet = server.nothrow ();`
 *
 * LIMITS. Each operation that waits has a time limit. It is 10 s unless Options, set_limit() or within() set
 * another:
 *   server.within (500ms).channel (orva::A).play ();
 *   server.within (orva::no_limit).clips ();
 * When the limit has passed, the operation fails and its caller continues. The C function cannot be
 * interrupted: it continues on a helper thread until the server answers or the link is lost. cancelled_by()
 * takes an orva::Cancel, with which another thread ends the wait. An operation with a limit or a Cancel runs
 * on a helper thread. A server keeps one idle helper thread for the next operation. With no_limit and without
 * a Cancel an operation runs on the calling thread and costs what the C function costs.
 *
 * TEXTS are UTF-8. A text that is not valid UTF-8, or contains a NUL, is invalid and not sent. Texts from the
 * server are whole, with one exception: a text with half a surrogate pair ends before that half.
 *
 * POSITIONS AND LENGTHS are counts of fields, two to a frame. orva::Position converts them to frames,
 * timecode and time. Timecode and time need the time base of the server, `server.video ().timebase ()`.
 *
 * EVENTS. server.on_event() calls a handler for each event. orva::EventQueue collects the events of any
 * number of servers for one thread. channel().state() returns everything that the server has reported about a
 * channel. channel().wait_for() waits until the effect of a command is reported.
 *
 * THREADS. Any number of threads may use everything here at the same time, with one exception: an object must
 * not be moved or destroyed while another thread uses that same object. Handlers run on a thread of their
 * server.
 *
 * THE END. The destructor of a Server ends the handlers. Operations that begin later fail with `invalid`. The
 * destructor does not wait for operations that are running, even when the server is frozen. They end when the
 * C functions return. Closing a store that writes takes up to 13 s. orva.h lists what a program must not do:
 * for example, end the process during a call on Windows, or make calls between fork and exec.
 *
 * RECORDING. channel().record ("NEW CLIP") creates the clip for the channel, starts an insert edit and plays.
 * end_recording() stops the channel and ends the edit.
 *
 * WHERE EACH FUNCTION OF orva.h IS. "s" is a Server, "ch" s.channel() or s.channels(), "c" s.clip(), "v"
 * s.virtual_clip(), "k" s.store().
 *
 *   orva_connect                          Server
 *   orva_close                            ~Server, s.close()
 *   orva_connected                        s.connected()
 *   orva_wait_until_connected             s.wait_until_connected(); the C function is not called, because it
 *                                         never returns when the connection is closed meanwhile
 *   orva_get_last_error                   error, Failure
 *   orva_synchronous                      s.ignore_answers()
 *   orva_sync                             s.wait_for_answers()
 *
 *   orva_cmd_play1 orva_cmd_play2 orva_cmd_play3
 *   orva_cmd_gang_play1 orva_cmd_gang_play2 orva_cmd_gang_play3
 *                                         ch.play()
 *   orva_cmd_stop1 orva_cmd_stop2 orva_cmd_gang_stop1 orva_cmd_gang_stop2
 *                                         ch.stop()
 *   orva_jog1 orva_jog2 orva_gang_jog1 orva_gang_jog2
 *                                         ch.jog()
 *   orva_goto1 orva_goto2 orva_gang_goto1 orva_gang_goto2
 *                                         ch.go_to()
 *   orva_cmd_loadclip1 orva_cmd_loadclip2 orva_cmd_loadclip3 orva_cmd_loadclip4 orva_cmd_loadclip5
 *   orva_cmd_loadclip6 orva_cmd_loadclip7
 *                                         ch.load(), ch.cue()
 *   orva_precue1 orva_precue2 orva_precue3 orva_precue4
 *                                         ch.precue()
 *   orva_precue_clear1                    ch.precue_clear()
 *   orva_precue_activate1 orva_gang_precue_activate1
 *                                         ch.precue_activate()
 *   orva_take1 orva_take2                 ch.take()
 *   orva_go_live1 orva_go_live2 orva_go_live3 orva_go_live4
 *                                         ch.go_live()
 *   orva_angle1                           ch.set_angle()
 *   orva_set_out1                         ch.set_out()
 *   orva_clear_out                        ch.clear_out()
 *   orva_set_repeat                       ch.set_repeat()
 *   orva_set_channel_repeat               ch.set_repeat(); not called, because it does the same as
 *                                         orva_set_repeat
 *   orva_unload_channel                   ch.unload()
 *   orva_edit1 orva_gang_edit1 orva_edit_all_on orva_edit_all_off orva_gang_edit_all_on
 *   orva_gang_edit_all_off                ch.edit(), ch.record(), ch.end_recording()
 *   orva_ee1 orva_gang_ee1 orva_ee_all_on orva_ee_all_off orva_gang_ee_all_on orva_gang_ee_all_off
 *                                         ch.show_input()
 *
 *   orva_clip_exists                      c.exists()
 *   orva_rename_clip                      c.rename()
 *   orva_delete_clip                      c.erase()
 *   orva_create_clip1 orva_create_clip2 orva_create_clip3
 *                                         c.create(), ch.record()
 *   orva_create_child_clip1 orva_create_child_clip2
 *                                         c.create_child_of()
 *   orva_set_readonly                     c.protect()
 *   orva_unset_readonly                   c.unprotect()
 *   orva_open_clip_list orva_get_clip_name orva_close_clip_list
 *                                         s.clips()
 *   orva_open_directory_list orva_get_directory_name orva_close_directory_list
 *                                         s.directories()
 *   orva_create_directory                 s.create_directory()
 *   orva_track_clip_changes orva_track_change_added_clip orva_track_change_deleted_clip
 *   orva_track_change_changed_clip        ClipAdded, ClipDeleted, ClipEdited of s.on_event() and EventQueue
 *   orva_track_directory_changes orva_track_change_added_directory orva_track_change_deleted_directory
 *                                         DirectoryAdded, DirectoryDeleted of s.on_event() and EventQueue
 *
 *   orva_open_clip_metadata orva_close_clip_metadata
 *                                         c.info(), c.meta(), c.edit()
 *   orva_clip_has_meta orva_clip_get_meta
 *                                         c.meta(), c.info().metadata
 *   orva_clip_open_metakeys orva_get_metakey orva_close_metakeys
 *                                         c.info().metadata
 *   orva_clip_set_meta                    c.set_meta(), c.edit()
 *   orva_clip_delete_meta                 c.erase_meta(), c.edit()
 *   orva_clip_video_standard orva_get_tracks orva_clip_creator orva_clip_project orva_clip_title
 *   orva_clip_playback orva_clip_repeat orva_clip_loop_in_point orva_clip_loop_out_point orva_clip_length
 *   orva_clip_is_readonly orva_clip_timecode_stripe orva_clip_recorded_timecode0 orva_clip_uuid
 *   orva_clip_parent_uuid orva_clip_trim_start orva_clip_trim_end orva_clip_timecode_source
 *   orva_clip_last_loaded orva_clip_last_unloaded orva_clip_last_played orva_clip_metadata_last_edited
 *   orva_clip_content_last_edited         c.info()
 *   orva_set_clip_creator orva_set_clip_project orva_set_clip_title orva_set_clip_playback
 *   orva_set_clip_repeat orva_set_clip_loop_in_point orva_set_clip_loop_out_point orva_set_clip_trim_start
 *   orva_set_clip_trim_end orva_set_clip_timecode_stripe orva_set_clip_timecode_source
 *                                         c.edit()
 *
 *   orva_vclip_create                     v.create()
 *   orva_vclip_free                       v.free()
 *   orva_vclip_modification_start         v.begin_changes()
 *   orva_vclip_modification_end           v.end_changes()
 *   orva_vclip_add_segment1 orva_vclip_add_segment2
 *                                         v.add()
 *   orva_vclip_clear_segment              v.clear()
 *   orva_vclip_ripple                     v.ripple()
 *   orva_vclip_track_enable               v.enable()
 *   orva_vclip_cfg_tracks                 v.configure_as()
 *   orva_cmd_load_vclip1 orva_cmd_load_vclip2 orva_cmd_load_vclip3
 *                                         ch.load_virtual()
 *
 *   orva_server_name                      s.name()
 *   orva_video_frequency                  s.video(), s.healthy()
 *   orva_video_resolution orva_video_standard
 *                                         s.video()
 *   orva_disk_usage1                      s.disk()
 *   orva_disk_usage2                      s.disk_time()
 *
 *   orva_channel_clip orva_channel_clip_length orva_channel_position orva_channel_precue_count
 *   orva_channel_status orva_channel_repeat orva_channel_speed orva_channel_angle orva_channel_ee
 *                                         ch.state(), ch.wait_for(), ch.wait_until(), events of channels
 *   orva_get_notification                 s.on_event(), s.on(), EventQueue
 *
 *   orva_cmd_playlist_play_now            ch.playlist_play_now()
 *   orva_cmd_playlist_play_next           ch.playlist_play_next()
 *   orva_cmd_playlist_cue_now             ch.playlist_cue_now()
 *   orva_cmd_playlist_cue_next            ch.playlist_cue_next()
 *   orva_cmd_playlist_cue_list            ch.playlist_cue()
 *   orva_playlist_status                  ch.playlist_loaded()
 *   orva_playlist_count                   ch.playlist_count()
 *
 *   orva_open_kvstore                     s.store()
 *   orva_close_key_value_store            the destructor of the last copy of k, k.close()
 *   orva_kvstore_set                      k.set()
 *   orva_kvstore_erase                    k.erase()
 *   orva_kvstore_flush                    k.flush()
 *   orva_kvstore_wait_scan                k.wait_loaded()
 *   orva_kvstore_get_change               k.next_change()
 */
#ifndef ORVA_HPP
#define ORVA_HPP

#include "orva/channel.hpp"  // IWYU pragma: export
#include "orva/clip.hpp"     // IWYU pragma: export
#include "orva/events.hpp"   // IWYU pragma: export
#include "orva/limits.hpp"   // IWYU pragma: export
#include "orva/position.hpp" // IWYU pragma: export
#include "orva/result.hpp"   // IWYU pragma: export
#include "orva/server.hpp"   // IWYU pragma: export
#include "orva/store.hpp"    // IWYU pragma: export
#include "orva/values.hpp"   // IWYU pragma: export

#endif
