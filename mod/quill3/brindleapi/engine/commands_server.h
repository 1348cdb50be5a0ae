#pragma once

#include "schema/records.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

/// Commands on the server as a whole: what it is, its settings, exports, its dictionary and its log. See
/// commands.h.
namespace QUILL3::command {

/// Asks for the server's name.
struct get_computer_name {};
RECORD (get_computer_name, no_fields);

/// Asks for the server's video standard.
struct get_video_standard {};
RECORD (get_video_standard, no_fields);

/// Asks for the state of the storage.
struct get_disk_usage {};
RECORD (get_disk_usage, no_fields);

/// Asks for the source of the reference.
struct get_reference_source {};
RECORD (get_reference_source, no_fields);

/// Asks for all settings.
struct get_configuration {};
RECORD (get_configuration, no_fields);

/// Asks for one setting.
struct get_one_configuration {
  AString ConfigurationItemName{};
};
inline constexpr Field get_one_configuration_rows[] = {FIELD (get_one_configuration, ConfigurationItemName)};
RECORD (get_one_configuration, get_one_configuration_rows);

/// Changes one setting.
struct set_configuration {
  AString ConfigurationItemName{};
  AString ConfigurationItemValue{};
};
inline constexpr Field set_configuration_rows[] = {FIELD (set_configuration, ConfigurationItemName),
                                                   FIELD (set_configuration, ConfigurationItemValue)};
RECORD (set_configuration, set_configuration_rows);

/// Asks for the version of the server's software.
struct get_version_info {};
RECORD (get_version_info, no_fields);

/// Puts a text into the server's trace.
struct debug_label {
  AString DebugString{};
};
inline constexpr Field debug_label_rows[] = {FIELD (debug_label, DebugString)};
RECORD (debug_label, debug_label_rows);

/// Asks for the compression.
struct get_compression_info {};
RECORD (get_compression_info, no_fields);

/// Asks for all melt lists.
struct download_melts {};
RECORD (download_melts, no_fields);

/// Begins an export; export_add and export_end follow on the same connection.
struct export_start {};
RECORD (export_start, no_fields);

/// Adds a clip, or a part of one, to the export.
struct export_add {
  AString ClipID{};
  AString Filename{};
  AOption<uint32_t> ClipPosition{}; ///< in fields
  AOption<uint32_t> ClipLength{};   ///< in fields
  AOption<uint8_t> Angle{};
};
inline constexpr Field export_add_rows[] = {FIELD (export_add, ClipID), FIELD (export_add, Filename),
                                            FIELD (export_add, ClipPosition), FIELD (export_add, ClipLength),
                                            FIELD (export_add, Angle)};
RECORD (export_add, export_add_rows);

/// Ends the export.
struct export_end {};
RECORD (export_end, no_fields);

/// Asks whoever exports for the clip of a channel.
struct export_initiate {
  uint32_t Channel{}; ///< enumeration Channel
};
inline constexpr Field export_initiate_rows[] = {FIELD (export_initiate, Channel)};
RECORD (export_initiate, export_initiate_rows);

/// Sets an entry of the dictionary.
struct userdict_set {
  AString Key{};
  AString Value{};
};
inline constexpr Field userdict_set_rows[] = {FIELD (userdict_set, Key), FIELD (userdict_set, Value)};
RECORD (userdict_set, userdict_set_rows);

/// Takes an entry out of the dictionary.
struct userdict_erase {
  AString Key{};
};
inline constexpr Field userdict_erase_rows[] = {FIELD (userdict_erase, Key)};
RECORD (userdict_erase, userdict_erase_rows);

/// Sets an entry of the dictionary that belongs to this connection.
struct userdict_own {
  AString Key{};
  AString Value{};
};
inline constexpr Field userdict_own_rows[] = {FIELD (userdict_own, Key), FIELD (userdict_own, Value)};
RECORD (userdict_own, userdict_own_rows);

/// Asks for reports of changes to an entry of the dictionary.
struct userdict_watch {
  AString Key{};
};
inline constexpr Field userdict_watch_rows[] = {FIELD (userdict_watch, Key)};
RECORD (userdict_watch, userdict_watch_rows);

/// No more reports of changes to an entry of the dictionary.
struct userdict_unwatch {
  AString Key{};
};
inline constexpr Field userdict_unwatch_rows[] = {FIELD (userdict_unwatch, Key)};
RECORD (userdict_unwatch, userdict_unwatch_rows);

/// Changes nothing; answered when everything before it has been done.
struct sync {};
RECORD (sync, no_fields);

/// Adds a line to the server's log.
struct log {
  AString LogFilename{};
  uint32_t LogLine{};
  AString LogClient{};
  AString LogText{};
  bool LogError{};
};
inline constexpr Field log_rows[] = {FIELD (log, LogFilename), FIELD (log, LogLine), FIELD (log, LogClient),
                                     FIELD (log, LogText), FIELD (log, LogError)};
RECORD (log, log_rows);

} // namespace QUILL3::command

#pragma GCC diagnostic pop
