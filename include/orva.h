/**
 * @file orva.h
 * Control of a networked video server: plain C functions, usable from C99 and from C++17.
 *
 * A caller names a server by its IPv4 address and gets a connection number. The library keeps the TCP
 * connection to that server up by itself until orva_close(), making it again whenever it is lost.
 *
 * IN THIS FILE, under these titles: Connections, Last error, Waiting or not, Transport and gangs, Clips,
 * Lists of clips and directories, Changes of clips and directories, Metadata handles, Attributes of clips,
 * Virtual clips, Server information, State of channels, Notices, Playlists, Key-value stores. What holds for
 * all functions of a title stands under it, and what holds for all functions at all, here:
 *
 * ORDER OF CALLS. There is no initialisation and no shutdown of the library:
 *
 *     uint32_t server = orva_connect (0x7F000001);       // 127.0.0.1
 *     orva_wait_until_connected (server);                // for those who want to wait
 *     if (orva_cmd_play1 (server, 0) != ORVA_OK) ...     // any number of calls, from any threads
 *     orva_close (server);
 *
 * ARGUMENTS
 *   connection   the number that orva_connect() gave
 *   channel      0 to 7, the channels A to H of the server
 *   mask         a set of channels: bit n stands for channel n, bits 0 to 7; other bits are ignored
 *   speed        1.0 is normal forward play, 0.0 a still, negative values run backwards; held to -200.0 to
 *                200.0 and cut to steps of 1/65536; what is not a number is sent as -32768.0
 *   positions    and lengths: counts of fields, two to a frame
 *   text in      NUL-terminated UTF-16; it ends early at the first unit that is not valid UTF-16
 *   text out     an OrvaStringBuffer, by value
 *
 * RESULTS. A function that returns uint32_t and does not say otherwise returns one of ORVA_OK to
 * ORVA_WRITE_ONLY, and records a text for the calling thread, which orva_get_last_error() fetches. Success
 * records "OK", so a text must be fetched right after the call that failed. Each such function gives
 * ORVA_INVALID_HANDLE for a connection number that is not open, and ORVA_ERROR with "Internal software
 * error" when memory runs out inside the library. On a code other than ORVA_OK the values behind out
 * pointers are left alone, unless the function says otherwise.
 *
 * COMMANDS. A function that sends a command returns when the server has answered, unless orva_synchronous()
 * says otherwise, and costs one round trip. A refusal by the server is ORVA_ERROR with the server's own text.
 * There is no time-out: a server that stays connected and never answers holds the caller for ever. When the
 * connection is down or is lost before the answer, the result is ORVA_ERROR with "Failing all outstanding
 * commands", at once: a command never waits for a connection to come up, and is never repeated.
 *
 * THREADS. Any function may be called from any thread at any time, and calls on one connection do not hold up
 * calls on another. Each connection has one thread of its own inside the library, which blocks all signals
 * and never runs code of the caller.
 *
 * WHAT A CALLER MUST NOT DO
 *   - Pass a null pointer, unless the function says that it may be null. A null text or out pointer is a
 *     fault of the program and ends the process.
 *   - Pass an OrvaStringBuffer whose capacity exceeds the memory behind it.
 *   - Pass a number that a function declares to be a fault of the program: it ends the process too.
 *   - Call a function that waits from a connection's own thread. The library offers no callback that would
 *     allow it; code that finds another way there waits for an answer that nobody can read.
 *   - End a thread inside a call, by cancelling or terminating it, leave a call by a jump, or make one in a
 *     signal handler.
 *   - On Windows, make any call but orva_close() while the process is ending, from DllMain or a destructor of
 *     static storage in a DLL: the system has ended the library's threads by then, and what waits for them
 *     never returns.
 *   - Use the library in a child process between fork() and exec. Connections do not survive the fork; their
 *     sockets are closed by the exec.
 *
 * WHAT A SERVER MUST NOT DO. Nothing that a server sends ends the process. A message of more than 32768
 * bytes, or one that is not well-formed, ends the connection, which is then made again. But two faults of a
 * server hold the caller of a command: after an answer whose contents cannot be read, the command stays open
 * until the connection is lost; and an answer that is readable, but of a kind that does not belong to the
 * command, ends the command without a word, and its caller waits for ever. Of an asynchronous command, that
 * is the connection's thread and socket, which then stay after orva_close(); of the download of a store, it
 * is orva_kvstore_wait_scan(), which then gives ORVA_TIMEOUT for that folder until the connection is gone.
 */
#ifndef ORVA_H
#define ORVA_H

#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32)
#ifdef ORVA_BUILDING
#define ORVA_API __declspec(dllexport)
#else
#define ORVA_API __declspec(dllimport)
#endif
#elif defined(__GNUC__)
#define ORVA_API __attribute__ ((visibility ("default")))
#else
#define ORVA_API
#endif

/** One UTF-16 code unit: the type of L"" on Windows and of u"" elsewhere. */
#if defined(_WIN32)
typedef wchar_t orva_char;
#elif defined(__cplusplus)
typedef char16_t orva_char;
#else
typedef uint_least16_t orva_char; /* what C calls char16_t, where it has the name */
#endif

#ifdef __cplusplus
extern "C" {
#endif

/**
 * The caller's buffer for a text out. It receives at most capacity - 1 units and always a terminator; a text
 * that does not fit is cut between two characters, which is no error. With a capacity of 0 nothing is written
 * at all, and the call still succeeds.
 */
typedef struct OrvaStringBuffer {
  orva_char *text;   /**< the buffer; may be null when capacity is 0 */
  uint32_t capacity; /**< its size in units, the terminator included */
} OrvaStringBuffer;

/** What functions return. Each code has its text for orva_get_last_error(). */
enum OrvaResult {
  ORVA_OK = 0,               /**< "OK" */
  ORVA_NO_CONNECTION = 1,    /**< "No connection to server"; reserved: a lost connection gives ORVA_ERROR */
  ORVA_ERROR = 2,            /**< the text of the failure itself, that of the server for one */
  ORVA_INVALID_HANDLE = 3,   /**< "Invalid handle": unknown connection, list, metadata or store */
  ORVA_READ_ONLY = 4,        /**< "Read only": a write to a store opened for reading */
  ORVA_TIMEOUT = 5,          /**< "Timeout": a wait of a store ran out */
  ORVA_INVALID_ARGUMENT = 6, /**< "Invalid argument": a store opened with a bad mode */
  ORVA_WRITE_ONLY = 7        /**< "Write only": a read of a store opened for writing */
};

/* ---- Connections -------------------------------------------------------------------------------------- */

/**
 * Opens a connection and starts its thread, which tries to reach the server 100 ms later and every 100 ms
 * from then on, and again whenever the connection is lost. Returns at once.
 * @param address IPv4 address of the server in host byte order: 127.0.0.1 is 0x7F000001. The port is 8913.
 * @return the connection number; 0, which no connection ever has, only when memory runs out. Two connections
 *   to one address are independent. When the system has no thread to give, the number is valid and the
 *   connection never comes up: commands fail at once. Records no text. Each connection costs one thread and
 *   one socket.
 */
ORVA_API uint32_t orva_connect (uint32_t address);

/**
 * Closes a connection: its number is unknown from now on. Calls on it that are running on other threads run
 * to their end first, as do asynchronous commands; then the thread and the socket go. An unknown number does
 * nothing. Records no text.
 */
ORVA_API void orva_close (uint32_t connection);

/**
 * Tells whether the server is connected at this moment. No traffic, no wait.
 * @return 1 or 0; 0 for an unknown number. Records no text.
 */
ORVA_API uint8_t orva_connected (uint32_t connection);

/**
 * Waits until the server is connected, looking once a millisecond. There is no time-out: with an unknown or
 * closed number, or a server that never comes up, it never returns.
 * @return always 1. Records no text.
 */
ORVA_API uint8_t orva_wait_until_connected (uint32_t connection);

/* ---- Last error --------------------------------------------------------------------------------------- */

/**
 * Gives the text of the calling thread's last result: "OK", the text of a code, or the text that came with an
 * ORVA_ERROR; the empty text on a thread that has had no result yet. Changes nothing: a second call gives the
 * same text. Threads do not see each other's texts.
 */
ORVA_API void orva_get_last_error (OrvaStringBuffer text);

/* ---- Waiting or not ----------------------------------------------------------------------------------- */

/**
 * Says whether ordinary commands of this connection wait for the server's answer. With 0, the state of a new
 * connection, they do. With any other value (the sense is the reverse of the name) they return ORVA_OK as
 * soon as the command is sent, even if the connection is down, and their outcome is lost. Functions that
 * return data of the server wait in any case. Commands that are already under way keep their manner. An
 * unknown number is ignored. Records no text.
 */
ORVA_API void orva_synchronous (uint32_t connection, uint32_t flag);

/**
 * Waits until no command of this connection is unanswered, looking once a millisecond: the way to know that
 * asynchronous commands have been dealt with. Commands that other threads go on sending count too, so under
 * steady load it need not return. No time-out. An unknown number returns at once. Records no text.
 */
ORVA_API void orva_sync (uint32_t connection);

/* ---- Transport and gangs ------------------------------------------------------------------------------ */
/*
 * Each function is one ordinary command: it waits for the answer unless the connection is asynchronous, and
 * costs one round trip. The functions with "gang" in their names address a set of channels with the same
 * meaning; an empty set is sent as it is. A channel above 7 is taken for channel 0. The numbers at the end of
 * names are overloads: what a shorter form leaves out is for the server to decide. Whether a clip exists or a
 * position makes sense is for the server to say; its refusal is ORVA_ERROR with its text.
 *
 * min_latency: exactly 1 asks the server to act at the earliest moment that it can; every other value does
 * not.
 */

/** How a clip repeats. Any other number is taken for ORVA_REPEAT_OFF. */
enum OrvaRepeat {
  ORVA_REPEAT_OFF = 0,
  ORVA_REPEAT_LOOP = 1,
  ORVA_REPEAT_LOOP_TO = 2,
  ORVA_REPEAT_PINGPONG = 3,
  ORVA_REPEAT_PINGPONG_TO = 4
};

/** When a precued clip takes over. Any other number is taken for ORVA_PRECUE_EXPLICIT_SWITCH. */
enum OrvaPrecueCondition {
  ORVA_PRECUE_EXPLICIT_SWITCH = 0, /**< at orva_precue_activate1() */
  ORVA_PRECUE_PREVIOUS_STOPS = 1,
  ORVA_PRECUE_IMMEDIATE = 2,
  ORVA_PRECUE_END_OF_CLIP = 3
};

/** The change of picture of a take. Any other number is a fault of the program. */
enum OrvaTransition { ORVA_TRANSITION_CUT = 0, ORVA_TRANSITION_DISSOLVE = 1 };

/** The speed after a take. Any other number is a fault of the program. */
enum OrvaFollowSpeed {
  ORVA_FOLLOW_NONE = 0,
  ORVA_FOLLOW_SMART = 1,
  ORVA_FOLLOW_ONE_X = 2,
  ORVA_FOLLOW_FOLLOW = 3
};

/** Starts a channel at the speed that the server chooses. */
ORVA_API uint32_t orva_cmd_play1 (uint32_t connection, uint32_t channel);
/** Starts a channel at a speed. */
ORVA_API uint32_t orva_cmd_play2 (uint32_t connection, uint32_t channel, double speed);
/** Starts a channel at a speed. @param min_latency see above. */
ORVA_API uint32_t orva_cmd_play3 (uint32_t connection, uint32_t channel, double speed, uint32_t min_latency);
/** Starts a set of channels at the speed that the server chooses. */
ORVA_API uint32_t orva_cmd_gang_play1 (uint32_t connection, uint32_t mask);
/** Starts a set of channels at a speed. */
ORVA_API uint32_t orva_cmd_gang_play2 (uint32_t connection, uint32_t mask, double speed);
/** Starts a set of channels at a speed. @param min_latency see above. */
ORVA_API uint32_t orva_cmd_gang_play3 (uint32_t connection, uint32_t mask, double speed,
                                       uint32_t min_latency);
/** Stops a channel. */
ORVA_API uint32_t orva_cmd_stop1 (uint32_t connection, uint32_t channel);
/** Stops a channel. @param min_latency see above. */
ORVA_API uint32_t orva_cmd_stop2 (uint32_t connection, uint32_t channel, uint32_t min_latency);
/** Stops a set of channels. */
ORVA_API uint32_t orva_cmd_gang_stop1 (uint32_t connection, uint32_t mask);
/** Stops a set of channels. @param min_latency see above. */
ORVA_API uint32_t orva_cmd_gang_stop2 (uint32_t connection, uint32_t mask, uint32_t min_latency);

/** Moves a channel by a distance. @param distance fields, backwards when negative. */
ORVA_API uint32_t orva_jog1 (uint32_t connection, uint32_t channel, int32_t distance);
/** Moves a channel by a distance. @param distance fields, backwards when negative. */
ORVA_API uint32_t orva_jog2 (uint32_t connection, uint32_t channel, int32_t distance, uint32_t min_latency);
/** Moves a set of channels by a distance. @param distance fields, backwards when negative. */
ORVA_API uint32_t orva_gang_jog1 (uint32_t connection, uint32_t mask, int32_t distance);
/** Moves a set of channels by a distance. @param distance fields, backwards when negative. */
ORVA_API uint32_t orva_gang_jog2 (uint32_t connection, uint32_t mask, int32_t distance, uint32_t min_latency);
/** Moves a channel to a position. @param position fields. */
ORVA_API uint32_t orva_goto1 (uint32_t connection, uint32_t channel, uint32_t position);
/** Moves a channel to a position. @param position fields. @param min_latency see above. */
ORVA_API uint32_t orva_goto2 (uint32_t connection, uint32_t channel, uint32_t position, uint32_t min_latency);
/** Moves a set of channels to a position. @param position fields. */
ORVA_API uint32_t orva_gang_goto1 (uint32_t connection, uint32_t mask, uint32_t position);
/** Moves a set of channels to a position. @param position fields. @param min_latency see above. */
ORVA_API uint32_t orva_gang_goto2 (uint32_t connection, uint32_t mask, uint32_t position,
                                   uint32_t min_latency);

/** Loads a clip into a channel. @param clip its name. */
ORVA_API uint32_t orva_cmd_loadclip1 (uint32_t connection, uint32_t channel, const orva_char *clip);
/** Loads a clip. @param repeat an OrvaRepeat. */
ORVA_API uint32_t orva_cmd_loadclip2 (uint32_t connection, uint32_t channel, const orva_char *clip,
                                      uint32_t repeat);
/** Loads a clip and goes to a position. @param repeat an OrvaRepeat. @param position fields. */
ORVA_API uint32_t orva_cmd_loadclip3 (uint32_t connection, uint32_t channel, const orva_char *clip,
                                      uint32_t repeat, uint32_t position);
/**
 * Loads a clip with its place on the channel's time line.
 * @param repeat an OrvaRepeat.
 * @param position where to go, in fields; sent also when it is 0.
 * @param loop_in start of the loop, in fields.
 * @param clip_position the clip's position, in fields; sent also when it is 0.
 */
ORVA_API uint32_t orva_cmd_loadclip4 (uint32_t connection, uint32_t channel, const orva_char *clip,
                                      uint32_t repeat, uint32_t position, uint32_t loop_in,
                                      uint32_t clip_position);
/** Loads a clip seen from an angle. @param angle its low 8 bits count. */
ORVA_API uint32_t orva_cmd_loadclip5 (uint32_t connection, uint32_t channel, const orva_char *clip,
                                      uint32_t angle);
/** Loads a clip seen from an angle and goes to a position. @param angle low 8 bits. @param position fields.
 */
ORVA_API uint32_t orva_cmd_loadclip6 (uint32_t connection, uint32_t channel, const orva_char *clip,
                                      uint32_t angle, uint32_t position);
/**
 * Loads a clip seen from an angle, with a position to go to and the clip's own.
 * @param angle its low 8 bits count. @param position fields. @param clip_position fields.
 */
ORVA_API uint32_t orva_cmd_loadclip7 (uint32_t connection, uint32_t channel, const orva_char *clip,
                                      uint32_t angle, uint32_t position, uint32_t clip_position);

/** Prepares a clip to follow the one in the channel. @param condition an OrvaPrecueCondition. */
ORVA_API uint32_t orva_precue1 (uint32_t connection, uint32_t channel, const orva_char *clip,
                                uint32_t condition);
/** Prepares a clip to follow, from a position on. @param position fields. */
ORVA_API uint32_t orva_precue2 (uint32_t connection, uint32_t channel, const orva_char *clip,
                                uint32_t condition, uint32_t position);
/** Prepares a piece of a clip to follow. @param position fields. @param length fields. */
ORVA_API uint32_t orva_precue3 (uint32_t connection, uint32_t channel, const orva_char *clip,
                                uint32_t condition, uint32_t position, uint32_t length);
/**
 * Prepares a piece of a clip to follow, with a loop-in point and with repeating switched off.
 * @param position fields. @param loop_in fields. @param length fields.
 */
ORVA_API uint32_t orva_precue4 (uint32_t connection, uint32_t channel, const orva_char *clip,
                                uint32_t condition, uint32_t position, uint32_t loop_in, uint32_t length);
/** Drops what is prepared on a channel. */
ORVA_API uint32_t orva_precue_clear1 (uint32_t connection, uint32_t channel);
/** Switches a channel to what is prepared. */
ORVA_API uint32_t orva_precue_activate1 (uint32_t connection, uint32_t channel);
/** Switches a set of channels to what is prepared. */
ORVA_API uint32_t orva_gang_precue_activate1 (uint32_t connection, uint32_t mask);

/** Takes the prepared clip. @param type an OrvaTransition. @param duration of the transition, in fields. */
ORVA_API uint32_t orva_take1 (uint32_t connection, uint32_t channel, uint32_t type, uint32_t duration);
/** Takes the prepared clip. @param follow an OrvaFollowSpeed. */
ORVA_API uint32_t orva_take2 (uint32_t connection, uint32_t channel, uint32_t type, uint32_t duration,
                              uint32_t follow);
/** Goes live at the earliest moment. The server chooses what is shown: no clip is named. */
ORVA_API uint32_t orva_go_live1 (uint32_t connection, uint32_t channel);
/** Goes live from an angle, at the earliest moment. @param angle its low 8 bits count. */
ORVA_API uint32_t orva_go_live2 (uint32_t connection, uint32_t channel, uint32_t angle);
/** Goes live with a clip, at the earliest moment. */
ORVA_API uint32_t orva_go_live3 (uint32_t connection, uint32_t channel, const orva_char *clip);
/** Goes live with a clip from an angle, at the earliest moment. @param angle its low 8 bits count. */
ORVA_API uint32_t orva_go_live4 (uint32_t connection, uint32_t channel, const orva_char *clip,
                                 uint32_t angle);
/** Changes the angle of a channel. @param angle its low 8 bits count. */
ORVA_API uint32_t orva_angle1 (uint32_t connection, uint32_t channel, uint32_t angle);
/** Sets the out point of a channel. @param position fields. */
ORVA_API uint32_t orva_set_out1 (uint32_t connection, uint32_t channel, uint32_t position);
/** Takes the out point of a channel away. */
ORVA_API uint32_t orva_clear_out (uint32_t connection, uint32_t channel);
/** Sets how the clip in a channel repeats. @param repeat an OrvaRepeat. */
ORVA_API uint32_t orva_set_repeat (uint32_t connection, uint32_t channel, uint32_t repeat);
/** Exactly as orva_set_repeat(). */
ORVA_API uint32_t orva_set_channel_repeat (uint32_t connection, uint32_t channel, uint32_t repeat);
/** Empties a channel. */
ORVA_API uint32_t orva_unload_channel (uint32_t connection, uint32_t channel);

/*
 * Edit and EE. edit_bits: bit 0 stands for bit 4 of the server's edit mask (0x10), bit 1 for bit 5 (0x20),
 * bit 2 for all its other bits (0x3CF); other bits are ignored. 7 is everything, 0 is nothing.
 */

/** Starts or ends an insert edit of a channel. @param edit_bits see above. */
ORVA_API uint32_t orva_edit1 (uint32_t connection, uint32_t channel, uint32_t edit_bits);
/** Starts or ends an insert edit of a set of channels. @param edit_bits see above. */
ORVA_API uint32_t orva_gang_edit1 (uint32_t connection, uint32_t mask, uint32_t edit_bits);
/** Selects what of a channel is EE. @param mode 1 switches automatic EE off; every other value, on. */
ORVA_API uint32_t orva_ee1 (uint32_t connection, uint32_t channel, uint32_t edit_bits, uint32_t mode);
/** Selects what of a set of channels is EE. @param mode 1 switches automatic EE off; every other, on. */
ORVA_API uint32_t orva_gang_ee1 (uint32_t connection, uint32_t mask, uint32_t edit_bits, uint32_t mode);
/** orva_edit1() with 7. */
ORVA_API uint32_t orva_edit_all_on (uint32_t connection, uint32_t channel);
/** orva_edit1() with 0. */
ORVA_API uint32_t orva_edit_all_off (uint32_t connection, uint32_t channel);
/** orva_gang_edit1() with 7. */
ORVA_API uint32_t orva_gang_edit_all_on (uint32_t connection, uint32_t mask);
/** orva_gang_edit1() with 0. */
ORVA_API uint32_t orva_gang_edit_all_off (uint32_t connection, uint32_t mask);
/** orva_ee1() with 7 and mode 0. */
ORVA_API uint32_t orva_ee_all_on (uint32_t connection, uint32_t channel);
/** orva_ee1() with 0 and mode 0. */
ORVA_API uint32_t orva_ee_all_off (uint32_t connection, uint32_t channel);
/** orva_gang_ee1() with 7 and mode 0. */
ORVA_API uint32_t orva_gang_ee_all_on (uint32_t connection, uint32_t mask);
/** orva_gang_ee1() with 0 and mode 0. */
ORVA_API uint32_t orva_gang_ee_all_off (uint32_t connection, uint32_t mask);

/* ---- Clips -------------------------------------------------------------------------------------------- */
/*
 * A clip is known by its name. These functions are ordinary commands, but for orva_clip_exists().
 *
 * track_mask: bit 0 video, which brings timecode along, bit 1 key, bit 2 audio; other bits are ignored.
 */

/**
 * Asks whether there is such a clip. Waits on an asynchronous connection too.
 * @param exists receives 1 or 0, and 0 when the command failed; may be null: the server is asked all the same
 */
ORVA_API uint32_t orva_clip_exists (uint32_t connection, const orva_char *clip, uint32_t *exists);
/** Gives a clip another name. @param from its name. @param to the new one. */
ORVA_API uint32_t orva_rename_clip (uint32_t connection, const orva_char *from, const orva_char *to);
/** Deletes a clip. */
ORVA_API uint32_t orva_delete_clip (uint32_t connection, const orva_char *clip);
/** Creates an empty clip of the length that the server chooses. */
ORVA_API uint32_t orva_create_clip1 (uint32_t connection, const orva_char *clip, uint32_t track_mask);
/** Creates an empty clip. @param length fields. */
ORVA_API uint32_t orva_create_clip2 (uint32_t connection, const orva_char *clip, uint32_t track_mask,
                                     uint32_t length);
/** Creates an empty clip for a channel. @param channel above 7 is taken for 0. @param length fields. */
ORVA_API uint32_t orva_create_clip3 (uint32_t connection, uint32_t channel, const orva_char *clip,
                                     uint32_t track_mask, uint32_t length);
/** Creates a clip that shares the content of another. @param parent the other's name. */
ORVA_API uint32_t orva_create_child_clip1 (uint32_t connection, const orva_char *clip,
                                           const orva_char *parent);
/** The same, seen from an angle. @param angle its low 8 bits count. */
ORVA_API uint32_t orva_create_child_clip2 (uint32_t connection, const orva_char *clip,
                                           const orva_char *parent, uint32_t angle);
/** Meant to protect a clip. In this version ORVA_ERROR with "Not implemented"; nothing is sent. */
ORVA_API uint32_t orva_set_readonly (uint32_t connection, const orva_char *clip);
/** Meant to lift the protection; fares as orva_set_readonly(). */
ORVA_API uint32_t orva_unset_readonly (uint32_t connection, const orva_char *clip);

/* ---- Lists of clips and directories ------------------------------------------------------------------- */
/*
 * A list is what the server had at one moment: fetched whole, in one round trip, and then read name by name
 * without any traffic. A list handle belongs to the process, not to the connection; it works on after
 * orva_close() and costs memory until it is closed. Several threads may read one list: each name goes to one
 * of them. The two families, and orva_get_metakey(), share their handles and functions.
 */

/**
 * Fetches the names of all clips. Waits on an asynchronous connection too.
 * @param handle receives the list handle, for orva_get_clip_name(), and is left alone on failure; may be
 *   null, and then the names are fetched and dropped
 */
ORVA_API uint32_t orva_open_clip_list (uint32_t connection, uint32_t *handle);
/**
 * Takes the first name off a list, in constant time.
 * @param name receives it; the empty text at the end of the list, as often as one asks, and after
 *   ORVA_INVALID_HANDLE. No name is empty. A name that is cut to fit is gone all the same.
 */
ORVA_API uint32_t orva_get_clip_name (uint32_t handle, OrvaStringBuffer name);
/** Closes a list. An unknown handle does nothing. Records no text. */
ORVA_API void orva_close_clip_list (uint32_t handle);
/** Fetches the names of all directories; otherwise as orva_open_clip_list(). */
ORVA_API uint32_t orva_open_directory_list (uint32_t connection, uint32_t *handle);
/** As orva_get_clip_name(). */
ORVA_API uint32_t orva_get_directory_name (uint32_t handle, OrvaStringBuffer name);
/** As orva_close_clip_list(). */
ORVA_API void orva_close_directory_list (uint32_t handle);
/** Creates a directory. An ordinary command. */
ORVA_API uint32_t orva_create_directory (uint32_t connection, const orva_char *directory);

/* ---- Changes of clips and directories ----------------------------------------------------------------- */
/*
 * From the first call of one of these functions on, the library collects the names that the server reports as
 * added, deleted or changed, until the caller takes them one by one. A name waits in one place at most: a
 * clip that was added and then changed is simply added, one that was added and then deleted is deleted.
 * Names come in the order of their characters, not of the events. No notice tells of them.
 *
 * The first call registers the reports, which is a round trip, on an asynchronous connection too; from then
 * on there is no traffic, the server may be away, and the library registers again by itself whenever the
 * connection is made anew. What happens while it is down is not learned. While the registration fails, so do
 * all of these functions of the kind.
 */

/** Starts collecting changes of clips, unless that has been done. */
ORVA_API uint32_t orva_track_clip_changes (uint32_t connection);
/** Takes one clip that was added. @param clip receives its name, empty when there is none. */
ORVA_API uint32_t orva_track_change_added_clip (uint32_t connection, OrvaStringBuffer clip);
/** Takes one clip that was deleted. @param clip receives its name, empty when there is none. */
ORVA_API uint32_t orva_track_change_deleted_clip (uint32_t connection, OrvaStringBuffer clip);
/** Takes one clip whose attributes have changed. @param clip receives its name, empty when there is none. */
ORVA_API uint32_t orva_track_change_changed_clip (uint32_t connection, OrvaStringBuffer clip);
/** Starts collecting changes of directories, unless that has been done. */
ORVA_API uint32_t orva_track_directory_changes (uint32_t connection);
/** Takes one directory that was added. @param directory receives its name, empty when there is none. */
ORVA_API uint32_t orva_track_change_added_directory (uint32_t connection, OrvaStringBuffer directory);
/** Takes one directory that was deleted. @param directory receives its name, empty when there is none. */
ORVA_API uint32_t orva_track_change_deleted_directory (uint32_t connection, OrvaStringBuffer directory);

/* ---- Metadata handles --------------------------------------------------------------------------------- */
/*
 * A metadata handle is a snapshot of everything that the server knows about one clip. All functions that
 * take one give ORVA_INVALID_HANDLE for a handle that is not open. Reading it costs no traffic and works
 * after orva_close() too; what others change shows only in a new handle. Setting a value is an ordinary
 * command, which changes the clip on the server, and when that has worked, the snapshot; so on an
 * asynchronous connection the snapshot changes whether or not the server accepts. A setter whose connection
 * is closed gives ORVA_INVALID_HANDLE. A handle lives until it is closed, and may be used by several threads.
 */

/**
 * Fetches a clip's snapshot. Waits on an asynchronous connection too. A clip that does not exist is the
 * server's refusal.
 * @param handle receives the metadata handle, and is left alone on failure; may be null, and then the server
 *   is asked and no handle is made
 */
ORVA_API uint32_t orva_open_clip_metadata (uint32_t connection, const orva_char *clip, uint32_t *handle);
/** Closes a metadata handle. @return always ORVA_OK, for an unknown handle too. */
ORVA_API uint32_t orva_close_clip_metadata (uint32_t handle);

/*
 * Free-form pairs of a key and a value, in the order that the server gave. When a key stands there twice, the
 * first pair counts.
 */

/** Whether a key is there. @param has receives 1 or 0, and 0 for an unknown handle; may be null. */
ORVA_API uint32_t orva_clip_has_meta (uint32_t handle, const orva_char *key, uint32_t *has);
/** The value of a key. @param value receives it, empty for an unknown key, which is ORVA_OK, or handle. */
ORVA_API uint32_t orva_clip_get_meta (uint32_t handle, const orva_char *key, OrvaStringBuffer value);
/** Sets the value of a key; a new key goes to the end. */
ORVA_API uint32_t orva_clip_set_meta (uint32_t handle, const orva_char *key, const orva_char *value);
/** Takes a pair away. The server is asked also for a key that the snapshot does not have. */
ORVA_API uint32_t orva_clip_delete_meta (uint32_t handle, const orva_char *key);
/** Makes a list of all keys, a snapshot of its own. @param list receives its handle; may be null. */
ORVA_API uint32_t orva_clip_open_metakeys (uint32_t handle, uint32_t *list);
/** Takes the first key off a list, as orva_get_clip_name(). */
ORVA_API uint32_t orva_get_metakey (uint32_t list, OrvaStringBuffer key);
/** Closes a list of keys. @return always ORVA_OK, for an unknown handle too. */
ORVA_API uint32_t orva_close_metakeys (uint32_t list);

/* ---- Attributes of clips ------------------------------------------------------------------------------ */
/*
 * Through a metadata handle; see above. What the server left out reads as 0 or the empty text. Values that
 * have no number here read as the first of their kind.
 */

/** How the fields of a clip are shown. In a setter, any other number is taken for ORVA_PLAYBACK_FIELD. */
enum OrvaPlayback {
  ORVA_PLAYBACK_FIELD = 0, /**< one by one; also what "automatic" reads as */
  ORVA_PLAYBACK_F12 = 1    /**< 1 and 2 together */
};

/** Where a clip's timecode comes from. In a setter, any other number is a fault of the program. */
enum OrvaTimecodeSource {
  ORVA_TIMECODE_ZERO_BASED = 0,
  ORVA_TIMECODE_STRIPED = 1,          /**< as orva_set_clip_timecode_stripe() says */
  ORVA_TIMECODE_RECORDED = 2,         /**< recorded with the picture */
  ORVA_TIMECODE_RECORDED_0_STRIPE = 3 /**< counted on from the one recorded with the first frame */
};

/** How a timecode counts. In a setter, any other number is taken for ORVA_DROP_FRAME. */
enum OrvaDropFrame { ORVA_DROP_FRAME = 0, ORVA_NON_DROP_FRAME = 1 };

/** The clip's video standard. @param standard receives an OrvaVideoStandard. */
ORVA_API uint32_t orva_clip_video_standard (uint32_t handle, uint32_t *standard);
/** The clip's tracks. @param track_mask receives them: bit 0 video, bit 1 key, bit 2 audio. */
ORVA_API uint32_t orva_get_tracks (uint32_t handle, uint32_t *track_mask);
/** Who made the clip. @param creator receives the text, empty for an unknown handle. */
ORVA_API uint32_t orva_clip_creator (uint32_t handle, OrvaStringBuffer creator);
/** The project of the clip. @param project receives the text, empty for an unknown handle. */
ORVA_API uint32_t orva_clip_project (uint32_t handle, OrvaStringBuffer project);
/** The title of the clip. @param title receives the text, empty for an unknown handle. */
ORVA_API uint32_t orva_clip_title (uint32_t handle, OrvaStringBuffer title);
/** How the clip is shown. @param playback receives an OrvaPlayback. */
ORVA_API uint32_t orva_clip_playback (uint32_t handle, uint32_t *playback);
/** How the clip repeats. @param repeat receives an OrvaRepeat. */
ORVA_API uint32_t orva_clip_repeat (uint32_t handle, uint32_t *repeat);
/** Where the clip's loop starts. @param position receives it in fields. */
ORVA_API uint32_t orva_clip_loop_in_point (uint32_t handle, uint32_t *position);
/** Where the clip's loop ends. @param position receives it in fields. */
ORVA_API uint32_t orva_clip_loop_out_point (uint32_t handle, uint32_t *position);
/** The length of the clip. @param length receives it in fields. */
ORVA_API uint32_t orva_clip_length (uint32_t handle, uint32_t *length);
/** Whether the clip is protected. @param readonly receives 1 or 0. */
ORVA_API uint32_t orva_clip_is_readonly (uint32_t handle, uint32_t *readonly);
/**
 * Where the clip's timecode starts, by the source in use.
 * @param start receives it in fields; 0 when it is based on zero, or when the server does not tell.
 * @param drop_frame receives an OrvaDropFrame. A clip on a standard without drop frame is non-drop whatever
 *   the server says; on the others, 59.94 and those of no known rate, drop frame unless the server says
 *   otherwise.
 */
ORVA_API uint32_t orva_clip_timecode_stripe (uint32_t handle, uint32_t *start, uint32_t *drop_frame);
/** The timecode recorded with the clip's first frame; otherwise as orva_clip_timecode_stripe(). */
ORVA_API uint32_t orva_clip_recorded_timecode0 (uint32_t handle, uint32_t *start, uint32_t *drop_frame);
/** The clip's own identifier. @param uuid receives it, and is left alone for an unknown handle. */
ORVA_API uint32_t orva_clip_uuid (uint32_t handle, OrvaStringBuffer uuid);
/** That of the clip's parent. @param uuid receives it, and is left alone for an unknown handle. */
ORVA_API uint32_t orva_clip_parent_uuid (uint32_t handle, OrvaStringBuffer uuid);
/** How much is trimmed off the start. @param trim receives it in fields. */
ORVA_API uint32_t orva_clip_trim_start (uint32_t handle, uint32_t *trim);
/** How much is trimmed off the end. @param trim receives it in fields. */
ORVA_API uint32_t orva_clip_trim_end (uint32_t handle, uint32_t *trim);
/** Where the clip's timecode comes from. @param source receives an OrvaTimecodeSource. */
ORVA_API uint32_t orva_clip_timecode_source (uint32_t handle, uint32_t *source);

/* Stamps: numbers of the server, which it raises with time; their unit is its own affair. */

/** When the clip was last loaded. @param stamp receives it. */
ORVA_API uint32_t orva_clip_last_loaded (uint32_t handle, uint64_t *stamp);
/** When the clip was last unloaded. @param stamp receives it. */
ORVA_API uint32_t orva_clip_last_unloaded (uint32_t handle, uint64_t *stamp);
/** When the clip was last played. @param stamp receives it. */
ORVA_API uint32_t orva_clip_last_played (uint32_t handle, uint64_t *stamp);
/** When the clip's metadata was last edited. @param stamp receives it. */
ORVA_API uint32_t orva_clip_metadata_last_edited (uint32_t handle, uint64_t *stamp);
/** When the clip's content was last edited. @param stamp receives it. */
ORVA_API uint32_t orva_clip_content_last_edited (uint32_t handle, uint64_t *stamp);

/** Sets who made the clip. */
ORVA_API uint32_t orva_set_clip_creator (uint32_t handle, const orva_char *creator);
/** Sets the project of the clip. */
ORVA_API uint32_t orva_set_clip_project (uint32_t handle, const orva_char *project);
/** Sets the title of the clip. */
ORVA_API uint32_t orva_set_clip_title (uint32_t handle, const orva_char *title);
/** Sets how the clip is shown. @param playback an OrvaPlayback. */
ORVA_API uint32_t orva_set_clip_playback (uint32_t handle, uint32_t playback);
/** Sets how the clip repeats. @param repeat an OrvaRepeat. */
ORVA_API uint32_t orva_set_clip_repeat (uint32_t handle, uint32_t repeat);
/** Sets where the clip's loop starts. @param position fields. */
ORVA_API uint32_t orva_set_clip_loop_in_point (uint32_t handle, uint32_t position);
/** Sets where the clip's loop ends. @param position fields. */
ORVA_API uint32_t orva_set_clip_loop_out_point (uint32_t handle, uint32_t position);
/** Trims the start of the clip. @param trim fields; an odd number is taken for the even one below it. */
ORVA_API uint32_t orva_set_clip_trim_start (uint32_t handle, uint32_t trim);
/** Trims the end of the clip. @param trim fields; an odd number is taken for the even one below it. */
ORVA_API uint32_t orva_set_clip_trim_end (uint32_t handle, uint32_t trim);
/**
 * Stripes the clip with a timecode, and makes that stripe its source.
 * @param start the timecode of the first frame, in fields. @param drop_frame an OrvaDropFrame.
 */
ORVA_API uint32_t orva_set_clip_timecode_stripe (uint32_t handle, uint32_t start, uint32_t drop_frame);
/** Sets where the clip's timecode comes from. @param source an OrvaTimecodeSource. */
ORVA_API uint32_t orva_set_clip_timecode_source (uint32_t handle, uint32_t source);

/* ---- Virtual clips ------------------------------------------------------------------------------------ */
/*
 * A virtual clip is put together on the server from segments of other clips, track by track. The order of
 * calls is orva_vclip_create(), orva_vclip_modification_start(), any number of changes,
 * orva_vclip_modification_end(), orva_cmd_load_vclip1() to 3, and orva_vclip_free() at the end; the library
 * keeps no state and enforces none of it. Each function is one ordinary command, as in the section above.
 *
 * track_mask: bit 0 video, bit 1 key, bit 2 audio; other bits are ignored.
 */

/** Creates an empty virtual clip. @param vclip its name. @param length fields. */
ORVA_API uint32_t orva_vclip_create (uint32_t connection, const orva_char *vclip, uint32_t length);
/** Frees a virtual clip. */
ORVA_API uint32_t orva_vclip_free (uint32_t connection, const orva_char *vclip);
/** Opens a virtual clip for changes. */
ORVA_API uint32_t orva_vclip_modification_start (uint32_t connection, const orva_char *vclip);
/** Ends the changes of a virtual clip. */
ORVA_API uint32_t orva_vclip_modification_end (uint32_t connection, const orva_char *vclip);
/**
 * Puts a piece of a clip into a virtual clip.
 * @param clip the clip that the piece comes from. @param clip_position where it starts there, in fields.
 * @param track_mask the tracks to take. @param vclip_position where it goes, in fields.
 * @param length of the piece, in fields.
 */
ORVA_API uint32_t orva_vclip_add_segment1 (uint32_t connection, const orva_char *vclip, const orva_char *clip,
                                           uint32_t clip_position, uint32_t track_mask,
                                           uint32_t vclip_position, uint32_t length);
/** As orva_vclip_add_segment1(), played at a speed. */
ORVA_API uint32_t orva_vclip_add_segment2 (uint32_t connection, const orva_char *vclip, const orva_char *clip,
                                           uint32_t clip_position, uint32_t track_mask,
                                           uint32_t vclip_position, uint32_t length, double speed);
/** Empties a stretch of a virtual clip. @param vclip_position fields. @param length fields. */
ORVA_API uint32_t orva_vclip_clear_segment (uint32_t connection, const orva_char *vclip, uint32_t track_mask,
                                            uint32_t vclip_position, uint32_t length);
/** Moves everything from a position on. @param vclip_position fields. @param distance fields, signed. */
ORVA_API uint32_t orva_vclip_ripple (uint32_t connection, const orva_char *vclip, uint32_t track_mask,
                                     uint32_t vclip_position, int32_t distance);
/** Chooses the tracks of a virtual clip that are seen and heard. */
ORVA_API uint32_t orva_vclip_track_enable (uint32_t connection, const orva_char *vclip, uint32_t track_mask);
/** Gives tracks of a virtual clip the configuration that they have in a clip. */
ORVA_API uint32_t orva_vclip_cfg_tracks (uint32_t connection, const orva_char *vclip, const orva_char *clip,
                                         uint32_t track_mask);
/** Loads a virtual clip into a channel. */
ORVA_API uint32_t orva_cmd_load_vclip1 (uint32_t connection, uint32_t channel, const orva_char *vclip);
/** Loads a virtual clip into a channel. @param repeat an OrvaRepeat. */
ORVA_API uint32_t orva_cmd_load_vclip2 (uint32_t connection, uint32_t channel, const orva_char *vclip,
                                        uint32_t repeat);
/** Loads a virtual clip into a channel. @param repeat an OrvaRepeat. @param position fields. */
ORVA_API uint32_t orva_cmd_load_vclip3 (uint32_t connection, uint32_t channel, const orva_char *vclip,
                                        uint32_t repeat, uint32_t position);

/* ---- Server information ------------------------------------------------------------------------------- */
/*
 * Nothing is cached: each call is a question to the server and costs one round trip. The functions wait for
 * the answer on an asynchronous connection too, since they have a value to return.
 */

/** Field or frame rates. A rate that is not listed reads as ORVA_FREQUENCY_60. */
enum OrvaVideoFrequency {
  ORVA_FREQUENCY_60 = 0,
  ORVA_FREQUENCY_59_94 = 1,
  ORVA_FREQUENCY_50 = 2,
  ORVA_FREQUENCY_48 = 3,
  ORVA_FREQUENCY_47_95 = 4
};

/** Resolutions. One that is not listed reads as ORVA_RESOLUTION_1080I. */
enum OrvaVideoResolution {
  ORVA_RESOLUTION_1080I = 0,
  ORVA_RESOLUTION_720P = 1,
  ORVA_RESOLUTION_625I = 2,
  ORVA_RESOLUTION_525I = 3
};

/** Video standards. One that is not listed, 4K and progressive 1080 for instance, reads as the first. */
enum OrvaVideoStandard {
  ORVA_STANDARD_1080_60I = 0,
  ORVA_STANDARD_1080_59_94I = 1,
  ORVA_STANDARD_1080_50I = 2,
  ORVA_STANDARD_1080_48I = 3,
  ORVA_STANDARD_1080_47_95I = 4,
  ORVA_STANDARD_720_60P = 5,
  ORVA_STANDARD_720_59_94P = 6,
  ORVA_STANDARD_720_50P = 7,
  ORVA_STANDARD_625_50I = 8,
  ORVA_STANDARD_525_59_94I = 9
};

/** Asks for the server's name. @param name receives it, cut to fit. */
ORVA_API uint32_t orva_server_name (uint32_t connection, OrvaStringBuffer name);
/** Asks for the server's field rate. @param frequency receives an OrvaVideoFrequency. */
ORVA_API uint32_t orva_video_frequency (uint32_t connection, uint32_t *frequency);
/** Asks for the server's resolution. @param resolution receives an OrvaVideoResolution. */
ORVA_API uint32_t orva_video_resolution (uint32_t connection, uint32_t *resolution);
/** Asks for the server's video standard. @param standard receives an OrvaVideoStandard. */
ORVA_API uint32_t orva_video_standard (uint32_t connection, uint32_t *standard);
/**
 * Asks for the server's disk space.
 * @param total receives the size of the disks, in the unit of field_size.
 * @param available receives what is free of it.
 * @param field_size receives the space that one field takes. None of the three may be null.
 */
ORVA_API uint32_t orva_disk_usage1 (uint32_t connection, uint64_t *total, uint64_t *available,
                                    uint32_t *field_size);
/**
 * Asks for the server's disk space in fields: both values are cut to whole frames, so even, and then limited
 * to 0xFFFFFFFF. A server that tells a field size of 0 gives ORVA_ERROR, "Internal software error".
 * @param total receives the number of fields that the disks hold. @param available receives those still free.
 */
ORVA_API uint32_t orva_disk_usage2 (uint32_t connection, uint32_t *total, uint32_t *available);

/* ---- State of channels -------------------------------------------------------------------------------- */
/*
 * The server is not asked: it reports changes, and these functions answer from what it has reported. The
 * first query of a kind on a channel registers the report that feeds it, which is one round trip, and waits
 * for the first value: 5 to 6 seconds at most, after which it gives ORVA_ERROR with "Register for channel
 * item failed unexpectedly", and the next query tries again. From then on a query costs no traffic and never
 * waits, and a change raises a notice. The library registers again by itself whenever the connection is made
 * anew.
 *
 * While the server is away, queries of what has been registered go on giving the last values; only
 * orva_connected() tells. A channel above 7 is ORVA_ERROR with "Channel 8 does not exist" or the like, and
 * nothing is sent. Values of one channel may be from different moments.
 */

/** What a channel does. */
enum OrvaChannelStatus {
  ORVA_CHANNEL_NONE = 0,    /**< no channel, or one in a time delay, or one that the library does not know */
  ORVA_CHANNEL_STOPPED = 1, /**< idle, stopped or showing a test pattern */
  ORVA_CHANNEL_CUEING = 2,
  ORVA_CHANNEL_PLAYING = 3,
  ORVA_CHANNEL_RECORDING = 4 /**< recording, or inserting */
};

/** The clip on a channel. @param clip receives its name, empty when there is none. */
ORVA_API uint32_t orva_channel_clip (uint32_t connection, uint32_t channel, OrvaStringBuffer clip);
/** The length of that clip. @param length receives it in fields, 0 when the server does not tell. */
ORVA_API uint32_t orva_channel_clip_length (uint32_t connection, uint32_t channel, uint32_t *length);
/** Where the channel stands in its clip. @param position receives it in fields. */
ORVA_API uint32_t orva_channel_position (uint32_t connection, uint32_t channel, uint32_t *position);
/** How many clips are cued to follow. @param count receives it, 0 when the server does not tell. */
ORVA_API uint32_t orva_channel_precue_count (uint32_t connection, uint32_t channel, uint32_t *count);
/** What the channel does. @param status receives an OrvaChannelStatus. */
ORVA_API uint32_t orva_channel_status (uint32_t connection, uint32_t channel, uint32_t *status);
/** How the channel repeats its clip. @param repeat receives an OrvaRepeat; other modes read as off. */
ORVA_API uint32_t orva_channel_repeat (uint32_t connection, uint32_t channel, uint32_t *repeat);
/** How fast the channel plays. @param speed receives it; 1.0 is normal forward play. */
ORVA_API uint32_t orva_channel_speed (uint32_t connection, uint32_t channel, double *speed);
/**
 * The camera angle of the channel.
 * @param angle receives it, 0 when the server does not tell. @param angle_count receives how many the clip
 *   has, 1 when the server does not tell. Either may be null; the report is registered all the same.
 */
ORVA_API uint32_t orva_channel_angle (uint32_t connection, uint32_t channel, uint32_t *angle,
                                      uint32_t *angle_count);
/**
 * What the channel shows of its input.
 * @param edit_bits receives the tracks, as orva_ee1() takes them. @param mode receives 1 for manual and 0 for
 *   automatic. Both are 0 when the server does not tell; either may be null.
 */
ORVA_API uint32_t orva_channel_ee (uint32_t connection, uint32_t channel, uint32_t *edit_bits,
                                   uint32_t *mode);

/* ---- Notices ------------------------------------------------------------------------------------------ */

/** Which value of a channel has changed, and so which query gives the new one. */
enum OrvaNotice {
  ORVA_NOTICE_NONE = 0,         /**< the time was up */
  ORVA_NOTICE_CLIP = 1,         /**< orva_channel_clip() */
  ORVA_NOTICE_CLIP_LENGTH = 2,  /**< orva_channel_clip_length() */
  ORVA_NOTICE_POSITION = 3,     /**< orva_channel_position() */
  ORVA_NOTICE_PRECUE_COUNT = 4, /**< orva_channel_precue_count() */
  ORVA_NOTICE_STATUS = 5,       /**< orva_channel_status() */
  ORVA_NOTICE_REPEAT = 6,       /**< orva_channel_repeat() */
  ORVA_NOTICE_SPEED = 7,        /**< orva_channel_speed() */
  ORVA_NOTICE_ANGLE = 8,        /**< orva_channel_angle() */
  ORVA_NOTICE_EE = 9            /**< orva_channel_ee() */
};

/**
 * Waits until a value of some channel has changed, and tells which; the value itself is then asked for. A
 * value that changes many times before the caller looks is told once, so nobody falls behind, and a change
 * after the notice was taken is told again. Only what some query has asked for once is told. Kinds 2, 4, 6, 8
 * and 9 come together, whether they have changed or not.
 * @param timeout how long to wait, in milliseconds; 0 only looks. 0xFFFFFFFF is 49 days, not for ever.
 * @param kind receives an OrvaNotice, ORVA_NOTICE_NONE when the time was up.
 * @param channel receives the channel, 0 when the time was up. Either pointer may be null.
 * @return ORVA_OK, also when the time was up, and then no text is recorded; ORVA_INVALID_HANDLE, at once and
 *   with both values left alone, for a connection that is not open. Any number of threads may wait; each
 *   notice goes to one of them. A connection that is closed meanwhile ends with the last of the waits on it.
 */
ORVA_API uint32_t orva_get_notification (uint32_t connection, uint32_t timeout, uint32_t *kind,
                                         uint32_t *channel);

/* ---- Playlists ---------------------------------------------------------------------------------------- */
/*
 * A channel can play a list of clips that the server holds. The five commands are ordinary ones, to which a
 * channel above 7 is channel 0. An index counts from 0; its low 16 bits count.
 */

/** Plays an element of the channel's list now. */
ORVA_API uint32_t orva_cmd_playlist_play_now (uint32_t connection, uint32_t channel, uint32_t index);
/** Plays an element of the channel's list after the one that is on air. */
ORVA_API uint32_t orva_cmd_playlist_play_next (uint32_t connection, uint32_t channel, uint32_t index);
/** Cues an element of the channel's list now, without playing it. */
ORVA_API uint32_t orva_cmd_playlist_cue_now (uint32_t connection, uint32_t channel, uint32_t index);
/** Cues an element of the channel's list after the one that is on air, without playing it. */
ORVA_API uint32_t orva_cmd_playlist_cue_next (uint32_t connection, uint32_t channel, uint32_t index);
/** Cues the channel's list at its first element. */
ORVA_API uint32_t orva_cmd_playlist_cue_list (uint32_t connection, uint32_t channel);
/**
 * Meant to tell whether a list is loaded on the channel. In this version it asks the server to report, and
 * when the server accepts, waits 5 to 6 seconds and gives ORVA_ERROR with "Register for channel item failed
 * unexpectedly", each time. When the server is away or refuses, and for a channel above 7, it fails at once
 * as the queries above do. Once the server has reported a list, the first query of a channel's clip length,
 * precue count, repeat, angle or E to E mode may return before their first report, with 0, off and the like.
 * @param loaded would receive 1 or 0; may be null.
 */
ORVA_API uint32_t orva_playlist_status (uint32_t connection, uint32_t channel, uint32_t *loaded);
/** Meant to tell how many elements that list has; fares as orva_playlist_status(). @param count may be null.
 */
ORVA_API uint32_t orva_playlist_count (uint32_t connection, uint32_t channel, uint32_t *count);

/* ---- Key-value stores --------------------------------------------------------------------------------- */
/*
 * A store is a view of one part, told by a prefix, of a named metadata database of the server, called a
 * folder here: keys and values that are texts. What a caller sets and erases goes out by itself, on a thread
 * of the store's own, one key at a time, and is tried again every 200 ms until the server has accepted it: a
 * key that the server always refuses may hold up others. Only the last value of a key that is set repeatedly
 * need go out, and settings go before erasures. What changes on the server, whoever changed it, is told as
 * changes; a key that changes many times before the caller looks is told once, with its last state, in the
 * order of first changes. A store that reads and writes is told its own writes too.
 *
 * Stores survive a lost connection. When it is made anew, the folder is downloaded again and every key told
 * again; keys that were erased meanwhile are not told. A store keeps its connection alive after orva_close().
 * On an asynchronous connection a key counts as accepted as soon as it is sent.
 *
 * Handles belong to the process and have numbers of their own, from 1. ORVA_INVALID_HANDLE is given for one
 * that is not open.
 */

/** What a store is for. */
enum OrvaStoreMode { ORVA_STORE_READ = 1, ORVA_STORE_READ_WRITE = 2, ORVA_STORE_WRITE = 3 };

/** What became of a key. */
enum OrvaStoreChange { ORVA_STORE_CHANGE_SET = 1, ORVA_STORE_CHANGE_ERASE = 2 };

/**
 * Opens a store and, in a mode that reads, subscribes its folder and has it downloaded. Returns at once, also
 * while the server is away; only a server that stays connected and stops reading can hold this call, and the
 * close of a store that reads, as it holds all that send.
 * @param folder the name of the database. @param prefix of the keys on the server, part of no key here; may
 *   be empty, and then all keys are the store's. @param mode an OrvaStoreMode.
 * @param handle receives the store.
 * @return ORVA_INVALID_ARGUMENT for another mode; ORVA_ERROR when there is no thread to be had. Costs one
 *   thread in a mode that writes.
 */
ORVA_API uint32_t orva_open_kvstore (uint32_t connection, const orva_char *folder, const orva_char *prefix,
                                     uint32_t mode, uint32_t *handle);
/**
 * Closes a store. In a mode that writes, what is pending has 2 seconds to go out and is lost after that, and
 * the command in hand has 10 more to be answered. A server that keeps the connection up and leaves that
 * command unanswered all this time holds this call for ever, whatever comes later. A handle that is not open
 * does nothing. Records no text.
 */
ORVA_API void orva_close_key_value_store (uint32_t handle);
/** Sets a key. Returns at once. @return ORVA_READ_ONLY for a store that only reads. */
ORVA_API uint32_t orva_kvstore_set (uint32_t handle, const orva_char *key, const orva_char *value);
/** Erases a key. Returns at once. @return ORVA_READ_ONLY for a store that only reads. */
ORVA_API uint32_t orva_kvstore_erase (uint32_t handle, const orva_char *key);
/**
 * Waits until the server has accepted all that is pending, what other threads add meanwhile included.
 * @param timeout in milliseconds; 0 only looks. 0xFFFFFFFF is 49 days, not for ever.
 * @return ORVA_TIMEOUT when the time was up; ORVA_READ_ONLY for a store that only reads; ORVA_OK also when
 * the store is closed meanwhile, whatever became of what was pending.
 */
ORVA_API uint32_t orva_kvstore_flush (uint32_t handle, uint32_t timeout);
/**
 * Waits until the folder has been downloaded: everything in it has then been told as changes.
 * @param timeout as for orva_kvstore_flush().
 * @return ORVA_TIMEOUT when the time was up, in particular when the server refused the download, and for a
 *   store that only writes unless another store of this connection has had the folder downloaded.
 */
ORVA_API uint32_t orva_kvstore_wait_scan (uint32_t handle, uint32_t timeout);
/**
 * Waits for a change and takes it.
 * @param timeout as for orva_kvstore_flush(). @param type receives an OrvaStoreChange.
 * @param key receives the key, cut to fit. @param value receives what it was set to, cut to fit, empty for a
 *   key that was erased.
 * @return ORVA_TIMEOUT when the time was up; ORVA_WRITE_ONLY for a store that only writes. All three are left
 *   alone then. Each change goes to one of the threads that wait. A close of the store does not wake them:
 *   what is left of it, its connection included, stays until their time is up.
 */
ORVA_API uint32_t orva_kvstore_get_change (uint32_t handle, uint32_t timeout, uint32_t *type,
                                           OrvaStringBuffer key, OrvaStringBuffer value);

#ifdef __cplusplus
}
#endif

#endif
