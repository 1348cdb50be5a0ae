#include "configuration.h"

#include "message_limits.h"
#include "vocabulary.h"

#include <algorithm>
#include <fmt/format.h>

namespace sim {

namespace {

std::vector<std::string> words_of (std::string_view tag) {
  const std::vector<std::string_view> &words = find_tag (tag)->words;
  return {words.begin (), words.end ()};
}

ConfigurationItem item (const char *name, const char *access, const std::string &value,
                        std::vector<std::string> allowed, bool requires_reboot) {
  return {name, access, value, value, value, std::move (allowed), requires_reboot};
}

} // namespace

namespace {

void check_item_size (const ConfigurationItem &known) {
  constexpr std::size_t room_for_report = 100;
  Writer out;
  write_configuration_item (out, known);
  check_size (fmt::format ("The configuration item {}", known.name), out.result ().size () + room_for_report);
}

} // namespace

Configuration::Configuration (const Options &options)
    : items_ ({
          item ("ComputerName", "eng", options.name, {}, true),
          item ("OperatorMessage", "user", "", {}, false),
          item ("ReferenceSource", "user", "freerun", words_of ("ReferenceSource"), false),
          item ("VideoStandard", "eng", options.standard, words_of ("VideoStandard"), true),
      }) {
  for (const ConfigurationItem &known : items_)
    check_item_size (known);
}

const ConfigurationItem &Configuration::find (const std::string &name) const {
  for (const ConfigurationItem &known : items_)
    if (known.name == name)
      return known;
  throw Refusal (fmt::format ("There is no configuration item '{}'", name), "configname_invalid");
}

const ConfigurationItem &Configuration::set (const std::string &name, const std::string &value) {
  const std::vector<std::string> &allowed = find (name).allowed;
  if (!allowed.empty () && std::find (allowed.begin (), allowed.end (), value) == allowed.end ())
    throw Refusal (fmt::format ("'{}' is not a valid value for {}", value, name), "configvalue_invalid");
  const auto found = std::find_if (items_.begin (), items_.end (),
                                   [&] (const ConfigurationItem &known) { return known.name == name; });
  ConfigurationItem longest = *found;
  longest.effective = longest.boot = longest.saved = value;
  check_item_size (longest);
  found->saved = value;
  if (!found->requires_reboot)
    found->effective = value;
  return *found;
}

void write_configuration_item (Writer &out, const ConfigurationItem &known) {
  out.open ("ConfigurationItem").text ("ConfigurationItemName", known.name);
  out.text ("ConfigurationItemAccess", known.access);
  out.text ("ConfigurationItemEffectiveValue", known.effective);
  out.text ("ConfigurationItemBootValue", known.boot).text ("ConfigurationItemSavedValue", known.saved);
  out.open ("ConfigurationItemAllowedValues");
  for (const std::string &value : known.allowed)
    out.text ("ConfigurationItemValue", value);
  out.close ("ConfigurationItemAllowedValues");
  out.flag ("ConfigurationItemRequiresReboot", known.requires_reboot).close ("ConfigurationItem");
}

} // namespace sim
