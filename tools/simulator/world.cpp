#include "world.h"

#include "log.h"
#include "vocabulary.h"
#include "wire.h"

#include <algorithm>
#include <fmt/format.h>

namespace sim {

namespace {

std::string report_text (const std::string &body) {
  return "<report>" + body + "</report>";
}

std::string reply_text (const std::string &xid, const std::string &body) {
  return "<reply>" + Writer ().text ("xid", xid).raw (body).take () + "</reply>";
}

std::string error_body (std::string_view text, std::string_view code) {
  return Writer ()
      .open ("error")
      .text ("ErrorMessage", text)
      .text ("ErrorCode", code)
      .close ("error")
      .take ();
}

// `Channel=A Transition{TransitionType=cut}`
std::string readable (const Element &element) {
  std::string line;
  for (const Element &child : element.children) {
    line += line.empty () ? "" : " ";
    line += child.name;
    if (!child.children.empty ())
      line += '{' + readable (child) + '}';
    else if (!child.text.empty ())
      line += '=' + child.text;
  }
  std::replace_if (
      line.begin (), line.end (), [] (char c) { return c >= 0 && c < ' '; }, '?');
  return line;
}

const Element &command_of (const Element &root) {
  if (root.children.size () < 2)
    throw Refusal ("The document holds no command");
  if (root.children.size () > 2)
    throw Refusal (fmt::format ("The document holds {} commands", root.children.size () - 1));
  if (root.children.front ().name != "xid")
    throw Refusal ("Tag xid in cmd stands in the wrong place");
  return root.children.back ();
}

void check_command (const Element &command) {
  const Grammar *grammar = find_command (command.name);
  if (!grammar)
    throw Refusal (fmt::format ("Unknown command '{}'", command.name));
  check_parts (command, grammar->parts);
}

void carry_out (Call &call, const Element &command) {
  const Handler handler = find_handler (command.name);
  if (!handler)
    throw Refusal (fmt::format ("The simulator does not do '{}'", command.name));
  handler (call);
}

const std::string &identifier_of (const Element &root) {
  const Element *xid = root.child ("xid");
  if (root.name != "cmd" || !xid || !xid->children.empty ())
    throw Malformed ("a document without an identifier");
  return xid->text;
}

} // namespace

World::World (const Options &given)
    : options (given), standard (find_standard (given.standard).value ()), channels (standard) {}

void World::join (Client &client) {
  clients_.push_back (&client);
}

void World::leave (Client &client) {
  clients_.erase (std::remove (clients_.begin (), clients_.end (), &client), clients_.end ());
}

void World::receive (Client &client, const std::string &document) {
  if (options.verbose)
    log_line (fmt::format ("#{} got {}", client.number, document));
  const Element root = parse_document (document);
  const std::string &xid = identifier_of (root);
  std::string outcome = "ok";
  std::string line = "?";
  try {
    if (options.strict && canonical_text (root) != document)
      throw Refusal ("The document is not written in the expected form");
    const Element &command = command_of (root);
    line = command.name + ' ' + readable (command);
    check_command (command);
    Call call (*this, client, xid, command);
    carry_out (call, command);
    if (!call.answered ())
      call.answer (empty_body ("ok"));
  } catch (const Refusal &refusal) {
    outcome = std::string ("error, ") + refusal.what ();
    client.send (reply_text (xid, error_body (refusal.what (), refusal.code)));
  }
  if (!options.quiet)
    log_line (fmt::format ("#{} {} {}: {}", client.number, xid, line, outcome));
  report_channels ();
}

void World::pass_fields (int count) {
  for (int field = 0; field < count; ++field)
    channels.pass_field ();
  report_channels ();
}

void World::send_report (Client &client, const std::string &body) {
  client.send (report_text (body));
}

void World::report (std::string_view report_type, const std::string &body) {
  const int kind = word_number ("ReportType", report_type);
  for (Client *client : clients_)
    if (client->reports.contains (kind))
      send_report (*client, body);
}

void World::report_present (Client &client, int channel, int kind) {
  if (const std::string body = channels.report_body (channel, kind); !body.empty ())
    send_report (client, body);
}

void World::report_channels () {
  for (int channel = 0; channel < channel_count; ++channel)
    for (int kind = 0; kind < 8; ++kind) {
      std::string &last = reported_[static_cast<std::size_t> (channel)][static_cast<std::size_t> (kind)];
      std::string body = channels.report_body (channel, kind);
      if (body == last)
        continue;
      last = std::move (body);
      for (Client *client : clients_)
        if (client->channel_reports.contains ({channel, kind}))
          send_report (*client, last);
    }
}

void Call::row (const std::string &body) {
  client.send (reply_text (xid_, body));
}

void Call::answer (const std::string &body) {
  answered_ = true;
  client.send (reply_text (xid_, body));
}

} // namespace sim
