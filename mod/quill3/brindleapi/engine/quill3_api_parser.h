#pragma once

#include "base/afunction.h"
#include "base/enumstring.h"
#include "engine/bodies.h"
#include "xml/xml_nodes.h"

namespace QUILL3 {

/// The numbers of the bodies that a message from the server can hold: first the answers to commands, then the
/// reports.
enum class BodyNumber : uint32_t {
#define REPLY(name, ...) name,
#define REPORT(name, ...) name,
#include "engine/bodies.inc"
};
inline constexpr uint32_t reply_count = 24;
inline constexpr uint32_t report_count = 47;
inline constexpr uint32_t body_count = reply_count + report_count;

/// Interprets received messages: checks the form, finds the body, reads its tags and calls its handler. A
/// message that can't be used is dropped, and its first error is recorded. Threads: the connection's own
/// thread only. The setter of the hook is called before the first message.
class APIParser {
public:
  APIParser () = default;
  APIParser (const APIParser &) = delete;
  APIParser &operator= (const APIParser &) = delete;
  virtual ~APIParser () = default;

  /// The names of the bodies that a `reply` and a `report` can hold, with their numbers. Built on first use,
  /// never destroyed; any thread.
  static const EnumString &reply_bodies ();
  static const EnumString &report_bodies ();

  /// The names that messages are made of: those of the tags with their numbers, then those of the bodies in
  /// their numbering, then `reply` and `report`. Built on first use, never destroyed; any thread.
  static const XMLNameTable &known_names ();

  /// Handles one message. @param message an element `reply` or `report`, whose names have the numbers of
  /// `known_names`.
  void dispatch_message (const XMLNodes &message);
  void dispatch_message (const XMLTree &message);

  /// Records why the present message can't be used. Only the first error of a message is kept.
  /// @param identifier of the command that the message answers, or empty.
  /// @return false, always.
  bool record_error (const AString &identifier, const AString &text);

  /// Sets a hook that is called with each message before it is checked.
  void set_receive_hook (AFunction<void (const XMLTree &)> hook) { receive_hook_ = hook; }

  /// Whether the present message, or the last one, has recorded no error.
  bool error_slot_free () const { return error_slot_free_; }
  /// Identifier of the last message that failed. It stays until a later message fails.
  const AString &first_error_xid () const { return first_error_xid_; }
  /// What was wrong with the last message that failed. It stays until a later message fails.
  const AString &first_error_text () const { return first_error_text_; }

private:
  struct Found;
  struct Delivery;

  bool read_identifier (const XMLElement &message, AString *identifier);
  bool find_body (const XMLElement &message, bool is_reply, const AString &identifier, Found *found);
  template <class Body>
  bool read (const XMLElement &element, const AString &identifier, Body *value);

  bool error_slot_free_ = true;
  AString first_error_xid_;
  AString first_error_text_;
  AFunction<void (const XMLTree &)> receive_hook_;

protected:
  // One handler for each body of bodies.inc, named `on_` and the wire name. It receives the values of the
  // body, in the order of bodies.inc. The handler of a reply receives the identifier of the command before
  // them: `void on_clipid (AString xid, AString ClipID)`. The handlers of this class do nothing. An override
  // may take locks and send commands. It must not wait for a reply, because its own thread is the one that
  // reads replies.
#define REPLY(name, entry, ...)                                                                              \
  virtual void on_##name (AString __VA_OPT__ (, LIST_OF (TYPE_OF, __VA_ARGS__))) {}
#define REPORT(name, ...)                                                                                    \
  virtual void on_##name (LIST_OF (TYPE_OF, __VA_ARGS__)) {}
#include "engine/bodies.inc"
};

} // namespace QUILL3
