#pragma once

#include "base/afunction.h"
#include "base/enumstring.h"
#include "engine/bodies.h"
#include "xml/xml_nodes.h"

namespace QUILL3 {

/// The bodies that a message from the server can hold, in one numbering: 0 to 23 the answers to commands, 24
/// to 70 the reports.
enum class BodyNumber : uint32_t {
#define REPLY(name, ...) name,
#define REPORT(name, ...) name,
#include "engine/bodies.inc"
};
inline constexpr uint32_t reply_count = 24;
inline constexpr uint32_t report_count = 47;
inline constexpr uint32_t body_count = reply_count + report_count;

/// Gives a received message its meaning: checks its form, finds out which of the 71 known bodies it holds,
/// reads the body's tags and calls the handler of that name. A message that can't be used is dropped with a
/// record of its first error. Threads: the connection's own thread only, but for the hook's setter, which
/// belongs in front of the first message.
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

  /// Notes why the message in hand can't be used; of several errors in one message the first is kept.
  /// @param identifier of the command that the message answers, empty where none is known.
  /// @return false, always.
  bool record_error (const AString &identifier, const AString &text);

  /// Sets what is called with each message before anything about it is checked.
  void set_receive_hook (AFunction<void (const XMLTree &)> hook) { receive_hook_ = hook; }

  /// True while the message in hand, or the last one, has recorded no error.
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
