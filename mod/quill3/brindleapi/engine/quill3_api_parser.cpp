#include "engine/quill3_api_parser.h"

#include "base/kelvane_assert.h"

#include <iterator>

namespace QUILL3 {

namespace {

constexpr EnumStringTextRow reply_rows[] = {
#define REPLY(name, ...) {static_cast<uint32_t> (BodyNumber::name), #name},
#include "engine/bodies.inc"
};
constexpr EnumStringTextRow report_rows[] = {
#define REPORT(name, ...) {static_cast<uint32_t> (BodyNumber::name), #name},
#include "engine/bodies.inc"
};
static_assert (std::size (reply_rows) == reply_count);
static_assert (std::size (report_rows) == report_count);

template <size_t N>
const EnumString &make_names (const EnumStringTextRow (&rows)[N]) {
  return *new EnumString (rows, N, UINT32_MAX, AString ());
}

constexpr uint32_t first_body = tag_count; ///< number of the first body's name
constexpr uint32_t word_reply = first_body + body_count;
constexpr uint32_t word_report = word_reply + 1;

const XMLNameTable *make_known_names () {
  auto *const names = new XMLNameTable;
  add_tag_names (names);
#define REPLY(name, ...) names->add (#name);
#define REPORT(name, ...) names->add (#name);
#include "engine/bodies.inc"
  names->add ("reply");
  names->add ("report");
  return names;
}

} // namespace

struct APIParser::Found {
  uint32_t number = body_count; ///< none
  XMLElement body{};
};

template <class Body>
bool APIParser::read (const XMLElement &element, const AString &identifier, Body *value) {
  AString text;
  return read_body (element, value, &text) || record_error (identifier, text);
}

// One function for each body, so that the stack holds the values of one body and not of all.
struct APIParser::Delivery {
  using Function = void (*) (APIParser &to, const AString &identifier, const XMLElement &element);

#define VALUE(field) std::move (value.NAME_OF (field))
#define REPLY(name, entry, ...)                                                                              \
  static void name (APIParser &to, const AString &identifier, const XMLElement &element) {                   \
    body::name value;                                                                                        \
    if (to.read (element, identifier, &value))                                                               \
      to.on_##name (identifier __VA_OPT__ (, LIST_OF (VALUE, __VA_ARGS__)));                                 \
  }
#define REPORT(name, ...)                                                                                    \
  static void name (APIParser &to, const AString &identifier, const XMLElement &element) {                   \
    body::name value;                                                                                        \
    if (to.read (element, identifier, &value))                                                               \
      to.on_##name (LIST_OF (VALUE, __VA_ARGS__));                                                           \
  }
#include "engine/bodies.inc"
#undef VALUE

  static constexpr Function by_number[] = {
#define REPLY(name, ...) &Delivery::name,
#define REPORT(name, ...) &Delivery::name,
#include "engine/bodies.inc"
  };
  static_assert (std::size (by_number) == body_count);
};

const EnumString &APIParser::reply_bodies () {
  static const EnumString &names = make_names (reply_rows);
  return names;
}

const EnumString &APIParser::report_bodies () {
  static const EnumString &names = make_names (report_rows);
  return names;
}

// C104: doc/compatibility.md
bool APIParser::record_error (const AString &identifier, const AString &text) {
  if (!error_slot_free_)
    return false;
  error_slot_free_ = false;
  first_error_xid_ = identifier;
  first_error_text_ = text;
  return false;
}

const XMLNameTable &APIParser::known_names () {
  static const XMLNameTable &names = *make_known_names ();
  return names;
}

void APIParser::dispatch_message (const XMLTree &message) {
  XMLNodes nodes (&known_names ());
  nodes.read_tree (message);
  dispatch_message (nodes);
}

void APIParser::dispatch_message (const XMLNodes &nodes) {
  error_slot_free_ = true;
  if (!receive_hook_.is_empty ())
    receive_hook_.run (nodes.tree ());
  const XMLElement message = nodes.root ();
  const bool is_reply = message.name_number () == word_reply;
  if (!is_reply && message.name_number () != word_report) {
    record_error ({}, "XML Message is not a <reply> or <report> message");
    return;
  }
  AString identifier;
  Found found;
  if (is_reply && !read_identifier (message, &identifier))
    return;
  if (!find_body (message, is_reply, identifier, &found))
    return;
  Delivery::by_number[found.number](*this, identifier, found.body);
}

bool APIParser::read_identifier (const XMLElement &message, AString *identifier) {
  AString text;
  return get_value (message, Tag::xid, identifier, &text) || record_error ({}, text);
}

// Children that are no body of this kind of message are ignored. So a message with a body of a newer server
// counts as one without a body.
// C105: doc/compatibility.md
bool APIParser::find_body (const XMLElement &message, bool is_reply, const AString &identifier,
                           Found *found) {
  for (const XMLElement child : message.children ()) {
    const uint32_t number = child.name_number () - first_body; // wraps around for a tag
    if (number >= body_count || (number < reply_count) != is_reply)
      continue;
    if (found->number != body_count)
      return record_error (identifier, "XML Message contains multiple commands");
    *found = {number, child};
  }
  return found->number != body_count || record_error (identifier, "XML Message contains no commands");
}

} // namespace QUILL3
