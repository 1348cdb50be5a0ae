#pragma once

#include "schema/records.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

/// The commands of commands.inc, as structs in namespace command. Their members are the arguments, with the
/// names of their tags and in the order of writing. An absent argument and a flag that is false are not
/// written; the server decides what then applies.
namespace QUILL3 {

#define COMMAND(name, answers, ...)                                                                          \
  namespace command {                                                                                        \
  struct name {                                                                                              \
    EACH (MEMBER, __VA_ARGS__)                                                                               \
  };                                                                                                         \
  }                                                                                                          \
  ROWS (command::name, __VA_ARGS__)
#include "engine/commands.inc"

/// How many commands there are.
inline constexpr uint32_t command_count = 0
#define COMMAND(name, ...) +1
#include "engine/commands.inc"
    ;

/// A command on its way out: the root `cmd` with the identifier, then the element with the wire name over the
/// arguments. What it refers to must outlive it.
struct CommandDocument {
  const std::string_view xid; ///< ASCII
  const AString &wire_name;
  const Rows rows; ///< of the command's struct
  const void *command;

  void write_to (XMLSink &sink) const;
  XMLTree tree () const;
};

XMLTree make_document (std::string_view xid, const AString &wire_name, const Rows &rows, const void *command);

} // namespace QUILL3
