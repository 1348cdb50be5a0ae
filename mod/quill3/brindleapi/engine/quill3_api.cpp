#include "engine/quill3_api.h"

#include "base/amethod.h"
#include "engine/xid_registry.h"

namespace QUILL3 {

namespace {

enum class CommandNumber : uint32_t {
#define COMMAND(name, ...) name,
#include "engine/commands.inc"
};

const AString *make_command_names () {
  auto *names = new AString[command_count];
#define COMMAND(name, ...) names[static_cast<uint32_t> (CommandNumber::name)] = #name;
#include "engine/commands.inc"
  return names;
}

// Each wire name is one text for the whole process.
const AString &command_name (CommandNumber number) {
  static const AString *names = make_command_names ();
  return names[static_cast<uint32_t> (number)];
}

} // namespace

API::API () : registry_ (new XIDRegistry) {}

API::~API () = default;

uint32_t API::outstanding_count () {
  return registry_->outstanding_count ();
}

bool API::cancel_command (const AString &xid) {
  return registry_->cancel (xid);
}

void API::fail_all_commands () noexcept {
  registry_->fail_all ();
}

// The command is open before its first byte leaves, so that no reply can overtake it and a failure finds it.
void API::open_command (const Shared &entry, const AString &name, const Rows &rows, const void *arguments,
                        AString *xid) {
  const std::string issued = registry_->issue_id (entry);
  try {
    if (xid != nullptr)
      *xid = AString::from_latin1 (issued);
    send_document ({issued, name, rows, arguments},
                   AMethod::bind (entry.get (), &XIDRegistryEntry::has_ended));
  } catch (...) { // out of memory: passed on, unless the command has ended meanwhile and its callback has run
    if (!entry->is_awaited () || registry_->withdraw (entry))
      throw;
  }
  if (is_ending ()) // open commands are no longer failed, so this one would wait for ever
    registry_->fail (entry);
}

#define EMPTY(reply) callback::reply ()
#define CALLBACK(reply) callback::reply reply
#define PASS(reply) reply
#define SET(reply) entry->set (BodyNumber::reply, reply);
#define COMMAND(name, answers, ...)                                                                          \
  AString API::name (const command::name &arguments) {                                                       \
    return name (arguments, LIST_OF (EMPTY, NAMES answers), callback::error ());                             \
  }                                                                                                          \
  AString API::name (const command::name &arguments, LIST_OF (CALLBACK, NAMES answers),                      \
                     callback::error error) {                                                                \
    AString xid;                                                                                             \
    send (arguments, LIST_OF (PASS, NAMES answers), error, &xid);                                            \
    return xid;                                                                                              \
  }                                                                                                          \
  void API::send (const command::name &arguments, LIST_OF (CALLBACK, NAMES answers), callback::error error,  \
                  AString *xid) {                                                                            \
    auto entry = std::make_shared<XIDRegistryEntry> ();                                                      \
    EACH (SET, NAMES answers)                                                                                \
    entry->set (BodyNumber::error, error);                                                                   \
    open_command (entry, command_name (CommandNumber::name), rows_of (&arguments), &arguments, xid);         \
  }
#include "engine/commands.inc"
#undef EMPTY
#undef CALLBACK
#undef PASS
#undef SET

#define VALUE(field) std::move (GIVEN (field))
#define REPLY(name, entry, ...)                                                                              \
  void API::on_##name (AString xid __VA_OPT__ (, LIST_OF (PARAMETER, __VA_ARGS__))) {                        \
    registry_->fire<callback::name> (xid, Entry::entry,                                                      \
                                     BodyNumber::name __VA_OPT__ (, LIST_OF (VALUE, __VA_ARGS__)));          \
  }
#include "engine/bodies.inc"
#undef VALUE

} // namespace QUILL3
