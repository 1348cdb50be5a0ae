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

const AString &word_reply () {
  static const AString &word = *new AString ("reply");
  return word;
}

const AString &word_report () {
  static const AString &word = *new AString ("report");
  return word;
}

} // namespace

struct APIParser::Found {
  uint32_t number = 0;
  const XMLTree *body = nullptr;
};

template <class Body>
bool APIParser::read (const XMLTree &tree, const AString &identifier, Body *value) {
  AString text;
  return read_body (tree, value, &text) || record_error (identifier, text);
}

// One function for each body, so that the stack holds the values of one body and not of all.
struct APIParser::Delivery {
  using Function = void (*) (APIParser &to, const AString &identifier, const XMLTree &tree);

#define VALUE(field) std::move (value.NAME_OF (field))
#define REPLY(name, entry, ...)                                                                              \
  static void name (APIParser &to, const AString &identifier, const XMLTree &tree) {                         \
    body::name value;                                                                                        \
    if (to.read (tree, identifier, &value))                                                                  \
      to.on_##name (identifier __VA_OPT__ (, LIST_OF (VALUE, __VA_ARGS__)));                                 \
  }
#define REPORT(name, ...)                                                                                    \
  static void name (APIParser &to, const AString &identifier, const XMLTree &tree) {                         \
    body::name value;                                                                                        \
    if (to.read (tree, identifier, &value))                                                                  \
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

// C105: doc/compatibility.md
void APIParser::dispatch_message (const XMLTree &message) {
  error_slot_free_ = true;
  receive_hook_.run (message);
  bool is_reply = message.name_is (word_reply ());
  if (!is_reply && !message.name_is (word_report ())) {
    record_error ({}, "XML Message is not a <reply> or <report> message");
    return;
  }
  AString identifier;
  Found found;
  if (is_reply && !read_identifier (message, &identifier))
    return;
  if (!find_body (message, is_reply ? reply_bodies () : report_bodies (), identifier, &found))
    return;
  if (!KELVANE_ASSERT (found.number < body_count)) {
    record_error (identifier, "Internal software error");
    return;
  }
  Delivery::by_number[found.number](*this, identifier, *found.body);
}

bool APIParser::read_identifier (const XMLTree &message, AString *identifier) {
  AString text;
  return get_xid (message, identifier, &text) || record_error ({}, text);
}

// A child that is no body of this kind of message is passed over, so a body that only a newer server knows
// counts as none.
bool APIParser::find_body (const XMLTree &message, const EnumString &names, const AString &identifier,
                           Found *found) {
  for (const XMLTree &child : message.children ()) {
    uint32_t number = 0;
    if (!names.from_string (child.name (), &number))
      continue;
    if (found->body != nullptr)
      return record_error (identifier, "XML Message contains multiple commands");
    *found = {number, &child};
  }
  return found->body != nullptr || record_error (identifier, "XML Message contains no commands");
}

} // namespace QUILL3
