/**
 * @file orva.h
 * Control of a networked video server: plain C functions, usable from C99 and from C++17.
 *
 * A caller names a server by its IPv4 address and gets a connection number. The library keeps the TCP
 * connection to that server open until orva_close(). When the connection is lost, it connects again by
 * itself.
 *
 * Programs for common work, from playing a clip to recording one, are in doc/cookbook.md.
 *
 * SECTIONS of this file: Connections, Last error, Waiting or not, Transport and gangs, Clips, Lists of clips
 * and directories, Changes of clips and directories, Metadata handles, Attributes of clips, Virtual clips,
 * Server information, State of channels, Notices, Playlists, Key-value stores. The rules for all functions of
 * a section are at its beginning. The rules for all functions are here.
 *
 * ORDER OF CALLS. The library needs no initialisation and no shutdown:
 *
 *     uint32_t server = orva_connect (0x7F000001);       // 127.0.0.1
 *     orva_wait_until_connected (server);                // only if you want to wait
 *     if (orva_cmd_play1 (server, 0) != ORVA_OK) ...     // any number of calls, from any threads
 *     orva_close (server);
 *
 * ARGUMENTS
 *   connection   the number that orva_connect() returned
 *   channel      0 to 7, the channels A to H of the server
 *   mask         a set of channels: bit n is channel n, for bits 0 to 7; other bits are ignored
 *   speed        1.0 is normal forward play, 0.0 is a still, negative values play backwards. The value is
 *                limited to -200.0 to 200.0 and cut to steps of 1/65536. A value that is not a number is sent
 *                as -32768.0.
 *   positions    and lengths: counts of fields, two to a frame
 *   text in      NUL-terminated UTF-16: u"NEWS" in C11 and C++, L"NEWS" on Windows. The text ends before the
 *                first unit that is not valid UTF-16.
 *   text out     an OrvaStringBuffer, by value
 *
 * RESULTS. A function that returns uint32_t returns one of the codes ORVA_OK to ORVA_WRITE_ONLY, unless it
 * says otherwise. It also records a text for the calling thread, which orva_get_last_error() returns. Success
 * records "OK", so fetch the text right after the call that failed. Each such function returns
 * ORVA_INVALID_HANDLE for a connection number that is not open. It returns ORVA_ERROR with "Internal software
 * error" when the library has no memory. When the code is not ORVA_OK, the variables behind out pointers keep
 * their values, unless the function says otherwise.
 *
 * COMMANDS. A function that sends a command returns when the server has answered, and costs one round trip.
 * orva_synchronous() switches this waiting off for ordinary commands. A refusal by the server is ORVA_ERROR
 * with the server's own text. There is no time limit: a server that stays connected and never answers holds
 * the caller for ever. When the connection is down, or is lost before the answer, the function returns
 * ORVA_ERROR with "Failing all outstanding commands" at once. A command never waits for a connection and is
 * never sent twice.
 *
 * THREADS. Any function may be called from any thread at any time. Calls on one connection do not hold up
 * calls on another. Each connection has one thread inside the library. That thread blocks all signals and
 * never runs code of the caller.
 *
 * WHAT A CALLER MUST NOT DO
 *   - Pass a null pointer, unless the function says that it may be null. A null text or out pointer is a
 *     fault of the program and ends the process.
 *   - Pass an OrvaStringBuffer whose capacity is larger than the memory behind it.
 *   - Pass a number that a function calls a fault of the program. It ends the process too.
 *   - Call, on a connection's own thread, a function that waits. The library never runs code of the caller on
 *     that thread. Code that gets there another way waits for an answer that nobody can read.
 *   - End a thread inside a call, by cancelling or terminating it. Leave a call by a jump. Make a call in a
 *     signal handler.
 *   - On Windows: make any call but orva_close() while the process is ending, from DllMain or from a
 *     destructor of static storage in a DLL. The system has ended the library's threads by then, and a call
 *     that waits for them never returns.
 *   - Use the library in a child process between fork() and exec. Connections do not survive the fork. The
 *     exec closes their sockets.
 *
 * WHAT A SERVER MUST NOT DO. Nothing that a server sends ends the process. A message of more than 32768
 * bytes, or one that is not well-formed, ends the connection, and the library connects again. Two faults of a
 * server hold the caller of a command:
 *   - An answer whose contents cannot be read. The command stays open until the connection is lost.
 *   - A readable answer of a kind that does not belong to the command. It ends the command without a result,
 *     and the caller waits for ever. If the command was asynchronous, the connection's thread and socket stay
 *     after orva_close(). If it was the download of a store, orva_kvstore_wait_scan() returns ORVA_TIMEOUT
 *     for that folder until the connection is gone.
 */
#ifndef ORVA_H
#define ORVA_H

#include <stddef.h>
#include <stdint.h>

/** The version of this header. It fits a library with the same major version and the same or a later minor
 * one.
 */
#define ORVA_VERSION_MAJOR 1
#define ORVA_VERSION_MINOR 0
#define ORVA_VERSION_PATCH 0
#define ORVA_VERSION "1.0.0"

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
 * The caller's buffer for a text out. It receives at most capacity - 1 units and always a terminator. A text
 * that does not fit is cut between two characters, and this is no error. With a capacity of 0 nothing is
 * written, and the call still succeeds.
 */
typedef struct OrvaStringBuffer {
  orva_char *text;   /**< the buffer; may be null when capacity is 0 */
  uint32_t capacity; /**< its size in units, including the terminator */
} OrvaStringBuffer;

/** What functions return. Each code has its text for orva_get_last_error(). */
enum OrvaResult {
  ORVA_OK = 0,             /**< "OK" */
  ORVA_NO_CONNECTION = 1,  /**< "No connection to server"; never returned: a lost connection is ORVA_ERROR */
  ORVA_ERROR = 2,          /**< the text of the failure, for example the text of the server */
  ORVA_INVALID_HANDLE = 3, /**< "Invalid handle": unknown connection, list, metadata or store */
  ORVA_READ_ONLY = 4,      /**< "Read only": a write to a store opened for reading */
  ORVA_TIMEOUT = 5,        /**< "Timeout": a wait of a store ran out */
  ORVA_INVALID_ARGUMENT = 6, /**< "Invalid argument": a store opened with a bad mode */
  ORVA_WRITE_ONLY = 7        /**< "Write only": a read of a store opened for writing */
};

/* ---- Connections -------------------------------------------------------------------------------------- */

/**
 * Opens a connection and returns at once. The connection's thread tries to connect after 100 ms, and again
 * 100 ms after each failure and each loss. Records no text. Each connection costs one thread and one socket.
 * Two connections to one address are independent.
 * @param address IPv4 address of the server in host byte order: 127.0.0.1 is 0x7F000001. The port is 8913.
 * @return the connection number. It is 0 only when memory runs out; no connection has the number 0. When the
 *   system cannot start a thread, the number is valid and the connection never comes up: commands fail at
 *   once.
 */
ORVA_API uint32_t orva_connect (uint32_t address);

/**
 * Closes a connection. Its number is unknown from now on. Calls on other threads that use the connection, and
 * asynchronous commands, run to their end. Then the thread ends and the socket is closed. An unknown number
 * does nothing. Records no text.
 */
ORVA_API void orva_close (uint32_t connection);

/**
 * Returns whether the server is connected at this moment. Sends nothing and does not wait.
 * @return 1 or 0; 0 for an unknown number. Records no text.
 */
ORVA_API uint8_t orva_connected (uint32_t connection);

/**
 * Waits until the server is connected. It looks once a millisecond. There is no time limit: for an unknown or
 * closed number, or a server that never comes up, it never returns.
 * @return always 1. Records no text.
 */
ORVA_API uint8_t orva_wait_until_connected (uint32_t connection);

/* ---- Last error --------------------------------------------------------------------------------------- */

/**
 * Returns the text of the calling thread's last result: "OK", the text of a code, or the text of an
 * ORVA_ERROR. On a thread without a result it returns the empty text. A second call returns the same text.
 * Threads do not see each other's texts.
 */
ORVA_API void orva_get_last_error (OrvaStringBuffer text);

/* ---- Waiting or not ----------------------------------------------------------------------------------- */

/**
 * Chooses whether ordinary commands of this connection wait for the server's answer. The flag means the
 * opposite of the name: with 0 they wait, and this is the state of a new connection. With any other value
 * they return ORVA_OK as soon as the command is sent, even if the connection is down. Their outcome is lost.
 * Functions that return data from the server always wait. Commands that have already been sent are not
 * affected. An unknown number is ignored. Records no text.
 */
ORVA_API void orva_synchronous (uint32_t connection, uint32_t flag);

/**
 * Waits until every command of this connection has been answered. It looks once a millisecond. Use it to
 * learn that asynchronous commands are done. Commands that other threads send meanwhile count too, so under
 * steady load it may never return. There is no time limit. For an unknown number it returns at once. Records
 * no text.
 */
ORVA_API void orva_sync (uint32_t connection);

/* ---- Transport and gangs ------------------------------------------------------------------------------ */
/*
 * Each function is one ordinary command: it waits for the answer unless the connection is asynchronous, and
 * costs one round trip. The functions with "gang" in their names do the same for a set of channels at once.
 * An empty set is sent too. A channel above 7 means channel 0. Functions whose names differ in the number at
 * the end differ in their arguments only. The server decides what a missing argument means. The server checks
 * whether a clip exists and whether a position is possible. Its refusal is ORVA_ERROR with its text.
 *
 * min_latency: 1 asks the server to act as early as it can. Every other value does not.
 */

/** How a clip repeats. Any other number means ORVA_REPEAT_OFF. */
enum OrvaRepeat {
  ORVA_REPEAT_OFF = 0,
  ORVA_REPEAT_LOOP = 1,
  ORVA_REPEAT_LOOP_TO = 2,
  ORVA_REPEAT_PINGPONG = 3,
  ORVA_REPEAT_PINGPONG_TO = 4
};

/** When a precued clip follows. Any other number means ORVA_PRECUE_EXPLICIT_SWITCH. */
enum OrvaPrecueCondition {
  ORVA_PRECUE_EXPLICIT_SWITCH = 0, /**< at orva_precue_activate1() */
  ORVA_PRECUE_PREVIOUS_STOPS = 1,
  ORVA_PRECUE_IMMEDIATE = 2,
  ORVA_PRECUE_END_OF_CLIP = 3
};

/** How the picture changes in a take. Any other number is a fault of the program. */
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
 * Loads a clip, goes to a position, and sends a loop-in point and a clip position.
 * @param repeat an OrvaRepeat.
 * @param position where to go, in fields; it is sent even when it is 0.
 * @param loop_in start of the loop, in fields.
 * @param clip_position the clip's position, in fields; it is sent even when it is 0.
 */
ORVA_API uint32_t orva_cmd_loadclip4 (uint32_t connection, uint32_t channel, const orva_char *clip,
                                      uint32_t repeat, uint32_t position, uint32_t loop_in,
                                      uint32_t clip_position);
/** Loads a clip at a camera angle. @param angle only its low 8 bits count. */
ORVA_API uint32_t orva_cmd_loadclip5 (uint32_t connection, uint32_t channel, const orva_char *clip,
                                      uint32_t angle);
/** Loads a clip at a camera angle and goes to a position. @param angle low 8 bits. @param position fields. */
ORVA_API uint32_t orva_cmd_loadclip6 (uint32_t connection, uint32_t channel, const orva_char *clip,
                                      uint32_t angle, uint32_t position);
/**
 * Loads a clip at a camera angle, goes to a position, and sends a clip position.
 * @param angle only its low 8 bits count. @param position where to go, in fields.
 * @param clip_position the clip's position, in fields.
 */
ORVA_API uint32_t orva_cmd_loadclip7 (uint32_t connection, uint32_t channel, const orva_char *clip,
                                      uint32_t angle, uint32_t position, uint32_t clip_position);

/** Precues a clip: it will follow the one on the channel. @param condition an OrvaPrecueCondition. */
ORVA_API uint32_t orva_precue1 (uint32_t connection, uint32_t channel, const orva_char *clip,
                                uint32_t condition);
/** Precues a clip from a position on. @param position fields. */
ORVA_API uint32_t orva_precue2 (uint32_t connection, uint32_t channel, const orva_char *clip,
                                uint32_t condition, uint32_t position);
/** Precues a part of a clip. @param position fields. @param length fields. */
ORVA_API uint32_t orva_precue3 (uint32_t connection, uint32_t channel, const orva_char *clip,
                                uint32_t condition, uint32_t position, uint32_t length);
/**
 * Precues a part of a clip with a loop-in point and with repeating switched off.
 * @param position fields. @param loop_in fields. @param length fields.
 */
ORVA_API uint32_t orva_precue4 (uint32_t connection, uint32_t channel, const orva_char *clip,
                                uint32_t condition, uint32_t position, uint32_t loop_in, uint32_t length);
/** Removes all precued clips of a channel. */
ORVA_API uint32_t orva_precue_clear1 (uint32_t connection, uint32_t channel);
/** Switches a channel to its precued clip. */
ORVA_API uint32_t orva_precue_activate1 (uint32_t connection, uint32_t channel);
/** Switches a set of channels to their precued clips. */
ORVA_API uint32_t orva_gang_precue_activate1 (uint32_t connection, uint32_t mask);

/** Takes the next clip. @param type an OrvaTransition. @param duration of the transition, in fields. */
ORVA_API uint32_t orva_take1 (uint32_t connection, uint32_t channel, uint32_t type, uint32_t duration);
/** Takes the next clip. @param follow the speed after the take, an OrvaFollowSpeed. */
ORVA_API uint32_t orva_take2 (uint32_t connection, uint32_t channel, uint32_t type, uint32_t duration,
                              uint32_t follow);
/** Goes live as early as possible. No clip is named: the server chooses what it shows. */
ORVA_API uint32_t orva_go_live1 (uint32_t connection, uint32_t channel);
/** Goes live at a camera angle as early as possible. @param angle only its low 8 bits count. */
ORVA_API uint32_t orva_go_live2 (uint32_t connection, uint32_t channel, uint32_t angle);
/** Goes live with a clip as early as possible. */
ORVA_API uint32_t orva_go_live3 (uint32_t connection, uint32_t channel, const orva_char *clip);
/** Goes live with a clip at a camera angle, as early as possible. @param angle only its low 8 bits count. */
ORVA_API uint32_t orva_go_live4 (uint32_t connection, uint32_t channel, const orva_char *clip,
                                 uint32_t angle);
/** Changes the camera angle of a channel. @param angle only its low 8 bits count. */
ORVA_API uint32_t orva_angle1 (uint32_t connection, uint32_t channel, uint32_t angle);
/** Sets the out point of a channel. @param position fields. */
ORVA_API uint32_t orva_set_out1 (uint32_t connection, uint32_t channel, uint32_t position);
/** Removes the out point of a channel. */
ORVA_API uint32_t orva_clear_out (uint32_t connection, uint32_t channel);
/** Sets how the clip in a channel repeats. @param repeat an OrvaRepeat. */
ORVA_API uint32_t orva_set_repeat (uint32_t connection, uint32_t channel, uint32_t repeat);
/** Does exactly what orva_set_repeat() does. */
ORVA_API uint32_t orva_set_channel_repeat (uint32_t connection, uint32_t channel, uint32_t repeat);
/** Unloads the clip of a channel. */
ORVA_API uint32_t orva_unload_channel (uint32_t connection, uint32_t channel);

/*
 * Edit and E to E (the channel shows its input). edit_bits: bit 0 is bit 4 of the server's edit mask (0x10),
 * bit 1 is bit 5 (0x20), and bit 2 is all its other bits (0x3CF). Other bits are ignored. 7 is everything, 0
 * is nothing.
 */

/**
 * Starts or ends an insert edit of a channel. @param edit_bits see above.
 * To record: orva_create_clip3() for the channel, orva_edit_all_on(), orva_cmd_play2() at 1.0; to end it,
 * orva_cmd_stop1() and orva_edit_all_off(). A whole program is in the cookbook, doc/cookbook.md.
 */
ORVA_API uint32_t orva_edit1 (uint32_t connection, uint32_t channel, uint32_t edit_bits);
/** Starts or ends an insert edit of a set of channels. @param edit_bits see above. */
ORVA_API uint32_t orva_gang_edit1 (uint32_t connection, uint32_t mask, uint32_t edit_bits);
/** Selects what a channel shows E to E. @param mode 1 is manual; every other value is automatic. */
ORVA_API uint32_t orva_ee1 (uint32_t connection, uint32_t channel, uint32_t edit_bits, uint32_t mode);
/** Selects what a set of channels shows E to E. @param mode 1 is manual; every other is automatic. */
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
 * A clip is known by its name. All functions but orva_clip_exists() are ordinary commands.
 *
 * track_mask: bit 0 is video and timecode, bit 1 is key, bit 2 is audio; other bits are ignored.
 */

/**
 * Asks whether a clip exists. Waits on an asynchronous connection too.
 * @param exists receives 1 or 0, and 0 when the command failed. It may be null; the server is asked anyway.
 */
ORVA_API uint32_t orva_clip_exists (uint32_t connection, const orva_char *clip, uint32_t *exists);
/** Renames a clip. @param from its present name. @param to its new name. */
ORVA_API uint32_t orva_rename_clip (uint32_t connection, const orva_char *from, const orva_char *to);
/** Deletes a clip. */
ORVA_API uint32_t orva_delete_clip (uint32_t connection, const orva_char *clip);
/** Creates an empty clip of the length that the server chooses. */
ORVA_API uint32_t orva_create_clip1 (uint32_t connection, const orva_char *clip, uint32_t track_mask);
/** Creates an empty clip. @param length fields. */
ORVA_API uint32_t orva_create_clip2 (uint32_t connection, const orva_char *clip, uint32_t track_mask,
                                     uint32_t length);
/** Creates an empty clip for a channel. @param channel above 7 means 0. @param length fields. */
ORVA_API uint32_t orva_create_clip3 (uint32_t connection, uint32_t channel, const orva_char *clip,
                                     uint32_t track_mask, uint32_t length);
/** Creates a clip that shares the content of another clip. @param parent the name of that clip. */
ORVA_API uint32_t orva_create_child_clip1 (uint32_t connection, const orva_char *clip,
                                           const orva_char *parent);
/** The same at a camera angle. @param angle only its low 8 bits count. */
ORVA_API uint32_t orva_create_child_clip2 (uint32_t connection, const orva_char *clip,
                                           const orva_char *parent, uint32_t angle);
/** Would protect a clip. Not available: returns ORVA_ERROR with "Not implemented" and sends nothing. */
ORVA_API uint32_t orva_set_readonly (uint32_t connection, const orva_char *clip);
/** Would remove the protection. Not available, as orva_set_readonly(). */
ORVA_API uint32_t orva_unset_readonly (uint32_t connection, const orva_char *clip);

/* ---- Lists of clips and directories ------------------------------------------------------------------- */
/*
 * A list holds what the server had at one moment. It is fetched in one round trip and then read name by name
 * without traffic. A list handle belongs to the process, not to the connection. It works after orva_close()
 * and costs memory until it is closed. Several threads may read one list; each name goes to one of them. The
 * functions for clips, directories and keys (orva_get_metakey()) read and close each other's lists.
 */

/**
 * Fetches the names of all clips. Waits on an asynchronous connection too.
 * @param handle receives the list handle for orva_get_clip_name(). It keeps its value on failure. It may be
 *   null; then the names are fetched and dropped.
 */
ORVA_API uint32_t orva_open_clip_list (uint32_t connection, uint32_t *handle);
/**
 * Takes the first name off a list, in constant time.
 * @param name receives the name. At the end of the list it receives the empty text with ORVA_OK, at every
 *   further call too. With ORVA_INVALID_HANDLE it also receives the empty text. No name is empty. A name that
 *   was cut to fit cannot be read again.
 */
ORVA_API uint32_t orva_get_clip_name (uint32_t handle, OrvaStringBuffer name);
/** Closes a list. An unknown handle does nothing. Records no text. */
ORVA_API void orva_close_clip_list (uint32_t handle);
/** Fetches the names of all directories. Otherwise like orva_open_clip_list(). */
ORVA_API uint32_t orva_open_directory_list (uint32_t connection, uint32_t *handle);
/** Like orva_get_clip_name(). */
ORVA_API uint32_t orva_get_directory_name (uint32_t handle, OrvaStringBuffer name);
/** Like orva_close_clip_list(). */
ORVA_API void orva_close_directory_list (uint32_t handle);
/** Creates a directory. An ordinary command. */
ORVA_API uint32_t orva_create_directory (uint32_t connection, const orva_char *directory);

/* ---- Changes of clips and directories ----------------------------------------------------------------- */
/*
 * After the first call of one of these functions the library collects the names that the server reports as
 * added, deleted or changed. The caller takes them one by one. A name is in one set at most: a clip that was
 * added and then changed is "added", and one that was added and then deleted is "deleted". Names are returned
 * in the order of their characters, not of the events. There are no notices of them.
 *
 * The first call registers the reports. This is one round trip, on an asynchronous connection too. After that
 * nothing is sent, and the functions work while the server is away. The library registers again by itself
 * after each new connection. Changes while the connection is lost are missed. When the registration fails,
 * all functions for the same kind of name fail.
 */

/** Starts collecting changes of clips. Does nothing if this has started. */
ORVA_API uint32_t orva_track_clip_changes (uint32_t connection);
/** Takes one clip that was added. @param clip receives its name, empty when there is none. */
ORVA_API uint32_t orva_track_change_added_clip (uint32_t connection, OrvaStringBuffer clip);
/** Takes one clip that was deleted. @param clip receives its name, empty when there is none. */
ORVA_API uint32_t orva_track_change_deleted_clip (uint32_t connection, OrvaStringBuffer clip);
/** Takes one clip whose attributes have changed. @param clip receives its name, empty when there is none. */
ORVA_API uint32_t orva_track_change_changed_clip (uint32_t connection, OrvaStringBuffer clip);
/** Starts collecting changes of directories. Does nothing if this has started. */
ORVA_API uint32_t orva_track_directory_changes (uint32_t connection);
/** Takes one directory that was added. @param directory receives its name, empty when there is none. */
ORVA_API uint32_t orva_track_change_added_directory (uint32_t connection, OrvaStringBuffer directory);
/** Takes one directory that was deleted. @param directory receives its name, empty when there is none. */
ORVA_API uint32_t orva_track_change_deleted_directory (uint32_t connection, OrvaStringBuffer directory);

/* ---- Metadata handles --------------------------------------------------------------------------------- */
/*
 * A metadata handle is a snapshot of everything that the server knows about one clip. All functions that take
 * one return ORVA_INVALID_HANDLE for a handle that is not open. Reading a snapshot sends nothing and works
 * after orva_close() too. It does not show later changes by others; open a new handle for them. A setter is
 * an ordinary command. It changes the clip on the server first and then the snapshot. When the server
 * refuses, the snapshot does not change. On an asynchronous connection the snapshot changes in any case. A
 * setter whose connection is closed returns ORVA_INVALID_HANDLE. A handle stays open until it is closed.
 * Several threads may use it.
 */

/**
 * Fetches a clip's snapshot. Waits on an asynchronous connection too. The server refuses a clip that does not
 * exist.
 * @param handle receives the metadata handle. It keeps its value on failure. It may be null; then the server
 *   is asked and no handle is made.
 */
ORVA_API uint32_t orva_open_clip_metadata (uint32_t connection, const orva_char *clip, uint32_t *handle);
/** Closes a metadata handle. @return always ORVA_OK, for an unknown handle too. */
ORVA_API uint32_t orva_close_clip_metadata (uint32_t handle);

/*
 * Free-form pairs of a key and a value, in the order of the server. When a clip has two pairs with one key,
 * the first one counts.
 */

/** Whether the clip has a key. @param has receives 1 or 0, and 0 for an unknown handle; may be null. */
ORVA_API uint32_t orva_clip_has_meta (uint32_t handle, const orva_char *key, uint32_t *has);
/**
 * The value of a key. A key that the clip does not have is no error.
 * @param value receives the value. It receives the empty text for an unknown key or an unknown handle.
 */
ORVA_API uint32_t orva_clip_get_meta (uint32_t handle, const orva_char *key, OrvaStringBuffer value);
/** Sets the value of a key. A new key is put at the end. */
ORVA_API uint32_t orva_clip_set_meta (uint32_t handle, const orva_char *key, const orva_char *value);
/** Deletes a pair. The command is sent even when the snapshot does not have the key. */
ORVA_API uint32_t orva_clip_delete_meta (uint32_t handle, const orva_char *key);
/** Makes a list of all present keys. @param list receives its list handle; may be null. */
ORVA_API uint32_t orva_clip_open_metakeys (uint32_t handle, uint32_t *list);
/** Takes the first key off a list, like orva_get_clip_name(). */
ORVA_API uint32_t orva_get_metakey (uint32_t list, OrvaStringBuffer key);
/** Closes a list of keys. @return always ORVA_OK, for an unknown handle too. */
ORVA_API uint32_t orva_close_metakeys (uint32_t list);

/* ---- Attributes of clips ------------------------------------------------------------------------------ */
/*
 * These functions need a metadata handle; see above. An attribute that the server left out reads as 0 or the
 * empty text. A value that has no number here reads as the first of its kind.
 */

/** How the fields of a clip are shown. In a setter, any other number means ORVA_PLAYBACK_FIELD. */
enum OrvaPlayback {
  ORVA_PLAYBACK_FIELD = 0, /**< one by one; "automatic" reads as this too */
  ORVA_PLAYBACK_F12 = 1    /**< fields 1 and 2 together */
};

/** Where a clip's timecode is taken from. In a setter, any other number is a fault of the program. */
enum OrvaTimecodeSource {
  ORVA_TIMECODE_ZERO_BASED = 0,
  ORVA_TIMECODE_STRIPED = 1,          /**< set with orva_set_clip_timecode_stripe() */
  ORVA_TIMECODE_RECORDED = 2,         /**< recorded with the picture */
  ORVA_TIMECODE_RECORDED_0_STRIPE = 3 /**< counted on from the one recorded with the first frame */
};

/** How a timecode counts. In a setter, any other number means ORVA_DROP_FRAME. */
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
 * The first timecode of the clip, from its timecode source.
 * @param start receives it in fields. It is 0 for a zero-based source and when the server left it out.
 * @param drop_frame receives an OrvaDropFrame. At 60, 50, 48 and 47.95 it is always non-drop. At 59.94, and
 *   for a standard without a known rate, it is drop frame unless the server says non-drop.
 */
ORVA_API uint32_t orva_clip_timecode_stripe (uint32_t handle, uint32_t *start, uint32_t *drop_frame);
/** The timecode recorded with the first frame, whatever the source. Else like orva_clip_timecode_stripe(). */
ORVA_API uint32_t orva_clip_recorded_timecode0 (uint32_t handle, uint32_t *start, uint32_t *drop_frame);
/** The identifier of the clip. @param uuid receives it. It keeps its value for an unknown handle. */
ORVA_API uint32_t orva_clip_uuid (uint32_t handle, OrvaStringBuffer uuid);
/** The identifier of the clip's parent. @param uuid receives it. It keeps its value for an unknown handle. */
ORVA_API uint32_t orva_clip_parent_uuid (uint32_t handle, OrvaStringBuffer uuid);
/** How much is trimmed at the start. @param trim receives it in fields. */
ORVA_API uint32_t orva_clip_trim_start (uint32_t handle, uint32_t *trim);
/** How much is trimmed at the end. @param trim receives it in fields. */
ORVA_API uint32_t orva_clip_trim_end (uint32_t handle, uint32_t *trim);
/** Where the clip's timecode is taken from. @param source receives an OrvaTimecodeSource. */
ORVA_API uint32_t orva_clip_timecode_source (uint32_t handle, uint32_t *source);

/* Stamps are numbers of the server that grow with time. The server chooses their unit. */

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
/** Trims the start of the clip. @param trim fields; an odd number is lowered by 1. */
ORVA_API uint32_t orva_set_clip_trim_start (uint32_t handle, uint32_t trim);
/** Trims the end of the clip. @param trim fields; an odd number is lowered by 1. */
ORVA_API uint32_t orva_set_clip_trim_end (uint32_t handle, uint32_t trim);
/**
 * Stripes the clip: gives it a timecode that starts at a given value, and makes this its timecode source.
 * @param start the timecode of the first frame, in fields. @param drop_frame an OrvaDropFrame.
 */
ORVA_API uint32_t orva_set_clip_timecode_stripe (uint32_t handle, uint32_t start, uint32_t drop_frame);
/** Sets where the clip's timecode is taken from. @param source an OrvaTimecodeSource. */
ORVA_API uint32_t orva_set_clip_timecode_source (uint32_t handle, uint32_t source);

/* ---- Virtual clips ------------------------------------------------------------------------------------ */
/*
 * The server puts a virtual clip together from segments of other clips, track by track. The order of calls is
 * orva_vclip_create(), orva_vclip_modification_start(), any number of changes, orva_vclip_modification_end(),
 * one of orva_cmd_load_vclip1() to 3, and orva_vclip_free() at the end. The library keeps no state and does
 * not check this order. Each function is one ordinary command.
 *
 * track_mask: bit 0 is video, bit 1 is key, bit 2 is audio; other bits are ignored.
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
 * Puts a segment of a clip into a virtual clip.
 * @param clip the clip to take the segment from.
 * @param clip_position where the segment starts in that clip, in fields.
 * @param track_mask the tracks to take.
 * @param vclip_position where the segment starts in the virtual clip, in fields.
 * @param length of the segment, in fields.
 */
ORVA_API uint32_t orva_vclip_add_segment1 (uint32_t connection, const orva_char *vclip, const orva_char *clip,
                                           uint32_t clip_position, uint32_t track_mask,
                                           uint32_t vclip_position, uint32_t length);
/** Like orva_vclip_add_segment1(), for a segment that plays at a speed. */
ORVA_API uint32_t orva_vclip_add_segment2 (uint32_t connection, const orva_char *vclip, const orva_char *clip,
                                           uint32_t clip_position, uint32_t track_mask,
                                           uint32_t vclip_position, uint32_t length, double speed);
/** Clears a range of a virtual clip. @param vclip_position start, in fields. @param length fields. */
ORVA_API uint32_t orva_vclip_clear_segment (uint32_t connection, const orva_char *vclip, uint32_t track_mask,
                                            uint32_t vclip_position, uint32_t length);
/** Moves all segments from a position on. @param vclip_position fields. @param distance fields, signed. */
ORVA_API uint32_t orva_vclip_ripple (uint32_t connection, const orva_char *vclip, uint32_t track_mask,
                                     uint32_t vclip_position, int32_t distance);
/** Selects the tracks of a virtual clip that are played. */
ORVA_API uint32_t orva_vclip_track_enable (uint32_t connection, const orva_char *vclip, uint32_t track_mask);
/** Configures tracks of a virtual clip like those of a clip. */
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
 * Nothing is cached: each call asks the server and costs one round trip. The functions wait for the answer on
 * an asynchronous connection too, because they return a value.
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

/** Video standards. One that is not listed, such as 4K or progressive 1080, reads as the first. */
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
 * Asks for the server's disk space. None of the three pointers may be null.
 * @param total receives the size of the disks, in the unit of field_size.
 * @param available receives the free part of it, in the same unit.
 * @param field_size receives the space that one field takes.
 */
ORVA_API uint32_t orva_disk_usage1 (uint32_t connection, uint64_t *total, uint64_t *available,
                                    uint32_t *field_size);
/**
 * Asks for the server's disk space in fields. Both values are rounded down to whole frames and then limited
 * to 0xFFFFFFFF. When the server reports a field size of 0, the result is ORVA_ERROR with "Internal software
 * error".
 * @param total receives the number of fields that the disks hold.
 * @param available receives the number of fields that are free.
 */
ORVA_API uint32_t orva_disk_usage2 (uint32_t connection, uint32_t *total, uint32_t *available);

/* ---- State of channels -------------------------------------------------------------------------------- */
/*
 * The server reports changes, and these functions return the last reported values. The first query of a kind
 * on a channel registers the report. This is one round trip, also on an asynchronous connection. Then it
 * waits for the first value. After 5 to 6 seconds without a value it returns ORVA_ERROR with "Register for
 * channel item failed unexpectedly", and the next query tries again. Later queries send nothing and never
 * wait, and each change raises a notice. The library registers again by itself after each new connection.
 *
 * While the server is away, queries of registered values return the last ones. Only orva_connected() shows
 * that they may be old. For a channel above 7 a query sends nothing and returns ORVA_ERROR with "Channel 8
 * does not exist" or the like. Values of one channel may be from different moments.
 */

/** What a channel does. */
enum OrvaChannelStatus {
  ORVA_CHANNEL_NONE = 0,    /**< no channel, a time delay, or a status that the library does not know */
  ORVA_CHANNEL_STOPPED = 1, /**< idle, stopped or showing a test pattern */
  ORVA_CHANNEL_CUEING = 2,
  ORVA_CHANNEL_PLAYING = 3,
  ORVA_CHANNEL_RECORDING = 4 /**< recording, or inserting */
};

/** The clip on a channel. @param clip receives its name, empty when there is none. */
ORVA_API uint32_t orva_channel_clip (uint32_t connection, uint32_t channel, OrvaStringBuffer clip);
/** The length of that clip. @param length receives it in fields, 0 when the server left it out. */
ORVA_API uint32_t orva_channel_clip_length (uint32_t connection, uint32_t channel, uint32_t *length);
/** The position of the channel in its clip. @param position receives it in fields. */
ORVA_API uint32_t orva_channel_position (uint32_t connection, uint32_t channel, uint32_t *position);
/** The number of precued clips. @param count receives it, 0 when the server left it out. */
ORVA_API uint32_t orva_channel_precue_count (uint32_t connection, uint32_t channel, uint32_t *count);
/** What the channel does. @param status receives an OrvaChannelStatus. */
ORVA_API uint32_t orva_channel_status (uint32_t connection, uint32_t channel, uint32_t *status);
/** How the channel repeats its clip. @param repeat receives an OrvaRepeat; other modes read as off. */
ORVA_API uint32_t orva_channel_repeat (uint32_t connection, uint32_t channel, uint32_t *repeat);
/** How fast the channel plays. @param speed receives it; 1.0 is normal forward play. */
ORVA_API uint32_t orva_channel_speed (uint32_t connection, uint32_t channel, double *speed);
/**
 * The camera angle of the channel. Either pointer may be null; the report is registered anyway.
 * @param angle receives the angle, 0 when the server left it out.
 * @param angle_count receives the number of angles of the clip, 1 when the server left it out.
 */
ORVA_API uint32_t orva_channel_angle (uint32_t connection, uint32_t channel, uint32_t *angle,
                                      uint32_t *angle_count);
/**
 * What the channel shows E to E. Both values are 0 when the server left them out. Either pointer may be null.
 * @param edit_bits receives the bits that orva_ee1() takes.
 * @param mode receives 1 for manual and 0 for automatic.
 */
ORVA_API uint32_t orva_channel_ee (uint32_t connection, uint32_t channel, uint32_t *edit_bits,
                                   uint32_t *mode);

/* ---- Notices ------------------------------------------------------------------------------------------ */

/** Which value of a channel has changed, and so which query gives the new one. */
enum OrvaNotice {
  ORVA_NOTICE_NONE = 0,         /**< no change within the time */
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
 * Waits until a value of a channel has changed and returns which one. A query then returns the new value. A
 * value that changes many times before the caller looks gives one notice, so a slow caller never falls
 * behind. A change after the caller took the notice gives a new one. There are notices only for values that
 * a query has asked for once. ORVA_NOTICE_CLIP_LENGTH, _PRECUE_COUNT, _REPEAT, _ANGLE and _EE come together,
 * whether all of them have changed or not. Any number of threads may wait; each notice goes to one of them.
 * A connection that is closed meanwhile ends after the last of these waits. Either pointer may be null.
 * @param timeout how long to wait, in milliseconds; 0 does not wait. 0xFFFFFFFF is 49 days, not for ever.
 * @param kind receives an OrvaNotice, ORVA_NOTICE_NONE when there was no change within the time.
 * @param channel receives the channel, 0 when there was no change within the time.
 * @return ORVA_OK, whether there was a notice or not; no text is recorded. ORVA_INVALID_HANDLE at once for a
 *   connection that is not open; kind and channel keep their values.
 */
ORVA_API uint32_t orva_get_notification (uint32_t connection, uint32_t timeout, uint32_t *kind,
                                         uint32_t *channel);

/* ---- Playlists ---------------------------------------------------------------------------------------- */
/*
 * A channel can play a list of clips of the server. The five commands are ordinary ones. In them a channel
 * above 7 means channel 0. An index starts at 0, and only its low 16 bits count.
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
 * Would return whether a list is loaded on the channel. Not available: it registers the report, waits 5 to 6
 * seconds, and returns ORVA_ERROR with "Register for channel item failed unexpectedly" each time. When the
 * server is away or refuses, and for a channel above 7, it fails at once like the queries of channel state.
 * When the server has reported a list, the first query of clip length, precue count, repeat, angle or E to E
 * of that channel may return before their first report, with 0 or off.
 * @param loaded would receive 1 or 0; may be null.
 */
ORVA_API uint32_t orva_playlist_status (uint32_t connection, uint32_t channel, uint32_t *loaded);
/** Would return the number of elements of that list. Not available, as above. @param count may be null. */
ORVA_API uint32_t orva_playlist_count (uint32_t connection, uint32_t channel, uint32_t *count);

/* ---- Key-value stores --------------------------------------------------------------------------------- */
/*
 * A folder is a named metadata database of the server. Its keys and values are texts. A store is a view of
 * the part of a folder whose keys begin with a prefix.
 *
 * Writing: the caller sets and erases keys without waiting. A thread of the store sends them one by one. It
 * tries again every 200 ms until the server has accepted a key, so a key that the server always refuses may
 * hold up others. Of several values for one key, perhaps only the last one is sent. All settings are sent
 * before any erasure.
 *
 * Reading: the store reports each change of a key, whoever made it, including its own writes. A key that
 * changes many times before the caller looks is reported once, with its last state. The keys are in the
 * order of their first changes.
 *
 * A store survives a lost connection. After each new connection the library downloads the folder again, and
 * the store reports every key again. It does not report keys that were erased meanwhile. A store keeps its
 * connection alive after orva_close(). On an asynchronous connection a key counts as accepted when it is
 * sent.
 *
 * Store handles belong to the process and have their own numbers, from 1. The functions return
 * ORVA_INVALID_HANDLE for a handle that is not open.
 */

/** What a store is for. */
enum OrvaStoreMode { ORVA_STORE_READ = 1, ORVA_STORE_READ_WRITE = 2, ORVA_STORE_WRITE = 3 };

/** How a key has changed. */
enum OrvaStoreChange { ORVA_STORE_CHANGE_SET = 1, ORVA_STORE_CHANGE_ERASE = 2 };

/**
 * Opens a store and returns at once, also while the server is away. A store that reads subscribes to its
 * folder and downloads it. A store that writes costs one thread. A server that stays connected and stops
 * reading can hold this call and the close of a store that reads, like every call that sends.
 * @param folder the name of the database.
 * @param prefix what all keys of this store begin with on the server. The other functions take and
 *   return keys without it. It may be empty; then the store has all keys of the folder.
 * @param mode an OrvaStoreMode.
 * @param handle receives the store handle.
 * @return ORVA_INVALID_ARGUMENT for another mode; ORVA_ERROR when the system cannot start a thread.
 */
ORVA_API uint32_t orva_open_kvstore (uint32_t connection, const orva_char *folder, const orva_char *prefix,
                                     uint32_t mode, uint32_t *handle);
/**
 * Closes a store. A store that writes first waits up to 2 seconds for its pending keys; those that are left
 * are lost. Then it waits up to 10 seconds for the answer to the command that it has just sent. Known limit:
 * if this answer does not come in time, the call never returns, even if the connection is lost later. A
 * handle that is not open does nothing. Records no text.
 */
ORVA_API void orva_close_key_value_store (uint32_t handle);
/** Sets a key. Returns at once. @return ORVA_READ_ONLY for a store that only reads. */
ORVA_API uint32_t orva_kvstore_set (uint32_t handle, const orva_char *key, const orva_char *value);
/** Erases a key. Returns at once. @return ORVA_READ_ONLY for a store that only reads. */
ORVA_API uint32_t orva_kvstore_erase (uint32_t handle, const orva_char *key);
/**
 * Waits until the server has accepted all pending keys, including those that other threads add meanwhile.
 * @param timeout in milliseconds; 0 does not wait. 0xFFFFFFFF is 49 days, not for ever.
 * @return ORVA_TIMEOUT when keys are still pending after this time; ORVA_READ_ONLY for a store that only
 *   reads; ORVA_OK also when the store is closed meanwhile, even if pending keys were lost.
 */
ORVA_API uint32_t orva_kvstore_flush (uint32_t handle, uint32_t timeout);
/**
 * Waits until the folder has been downloaded. All its keys are then available as changes.
 * @param timeout as for orva_kvstore_flush().
 * @return ORVA_TIMEOUT when there was no download within this time. This is also the result when the server
 *   refused the download. A store that only writes does not download; it returns ORVA_TIMEOUT unless another
 *   store of this connection has downloaded the folder.
 */
ORVA_API uint32_t orva_kvstore_wait_scan (uint32_t handle, uint32_t timeout);
/**
 * Waits for a change and takes it. Each change goes to one of the waiting threads. Closing the store does not
 * wake them: the store and its connection stay alive until the time of the last of them is up.
 * @param timeout as for orva_kvstore_flush().
 * @param type receives an OrvaStoreChange.
 * @param key receives the key, cut to fit.
 * @param value receives the new value, cut to fit; it is empty for a key that was erased.
 * @return ORVA_TIMEOUT when there was no change within this time; ORVA_WRITE_ONLY for a store that only
 *   writes. In both cases type, key and value keep their contents.
 */
ORVA_API uint32_t orva_kvstore_get_change (uint32_t handle, uint32_t timeout, uint32_t *type,
                                           OrvaStringBuffer key, OrvaStringBuffer value);

#ifdef __cplusplus
}
#endif

#endif
