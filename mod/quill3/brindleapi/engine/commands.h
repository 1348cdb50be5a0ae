#pragma once

#include "engine/commands_channels.h"
#include "engine/commands_clips.h"
#include "engine/commands_lists.h"
#include "engine/commands_reports.h"
#include "engine/commands_server.h"

/// Everything that can be asked of a server. A command is a struct that bears the wire name; its members are
/// the arguments, under the names and in the order of their tags. What is absent or a flag that is false is
/// not written, and what then applies is the server's to decide. commands.inc lists them all.
namespace QUILL3 {

/// How many commands there are.
inline constexpr uint32_t command_count = 0
#define COMMAND(name, ...) +1
#include "engine/commands.inc"
    ;

/// The document of a command: the root `cmd` with the identifier, then the element with the wire name over
/// the arguments.
/// @param rows, command the struct and its rows
XMLTree make_document (const AString &xid, const AString &wire_name, const Rows &rows, const void *command);

} // namespace QUILL3
