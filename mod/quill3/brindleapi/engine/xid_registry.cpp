#include "engine/xid_registry.h"

#include "platform/threads.h"

#include <new>
#include <optional>

namespace QUILL3 {

namespace {

// Built with the first registry, because a failure must not allocate.
const AString &failure_text () {
  static const AString &text = *new AString ("Failing all outstanding commands");
  return text;
}

uint32_t next_number () {
  static constinit std::atomic<uint32_t> last{0};
  return ++last;
}

constexpr uint32_t code_general = 0;
constexpr unsigned most_digits = 10; // of a number with 32 bits

// Numbers that sort like their texts: the digits at the left end, then how many there are.
uint64_t text_order (uint32_t number) {
  constexpr uint64_t smallest_of_most_digits = 1000000000, above_count = 16;
  uint64_t digits = number;
  unsigned count = most_digits;
  for (; digits != 0 && digits < smallest_of_most_digits; digits *= 10)
    --count;
  return digits * above_count + count;
}

// The number of an identifier of this library, none for any other text.
std::optional<uint32_t> number_of (const AString &xid) {
  if (xid.is_empty () || xid.length () > most_digits ||
      (xid.first_char () == AChar ('0') && xid.length () > 1))
    return std::nullopt;
  uint64_t number = 0;
  const bool is_number = xid.walk_runs ([&number] (const AChar *run, uint64_t count) {
    for (; count != 0 && run->is_digit (); --count)
      number = number * 10 + static_cast<uint64_t> (run++->digit_value (0));
    return count == 0;
  });
  if (!is_number || !std::in_range<uint32_t> (number))
    return std::nullopt;
  return static_cast<uint32_t> (number);
}

} // namespace

bool XIDRegistryEntry::claim () {
  return (state_.fetch_or (ended) & ended) == 0;
}

XIDRegistryEntry::Failure XIDRegistryEntry::claim_failure () {
  uint32_t state = state_;
  for (;;) {
    if ((state & ended) != 0)
      return Failure::refused;
    bool is_running = (state & running) != 0;
    if (state_.compare_exchange_weak (state, state | ended | (is_running ? failed_meanwhile : 0)))
      return is_running ? Failure::later : Failure::now;
  }
}

bool XIDRegistryEntry::begin_item () {
  uint32_t state = state_;
  while ((state & ended) == 0)
    if (state_.compare_exchange_weak (state, state + 1))
      return true;
  return false;
}

bool XIDRegistryEntry::end_item () {
  uint32_t before = state_.fetch_sub (1);
  return (before & failed_meanwhile) != 0 && (before & running) == 1;
}

XIDRegistry::XIDRegistry () {
  if (!lock_.is_valid ())
    throw std::bad_alloc ();
  failure_text ();
}

// A command that a callback sends during a run belongs to that run, also when there is a new link by then.
// C101, C107: doc/compatibility.md
std::string XIDRegistry::issue_id (const Shared &entry) {
  AMutexScope hold (lock_);
  const uint32_t number = free_number ();
  if (!entry->is_awaited ())
    return "none" + std::to_string (number);
  entry->number_ = number;
  Run *run = run_of_this_thread ();
  Table &table = run != nullptr ? run->taken : entries_;
  table.emplace_hint (table.end (), text_order (number), entry);
  return std::to_string (number);
}

uint32_t XIDRegistry::free_number () {
  uint32_t number = 0;
  do
    number = next_number ();
  while (locate (number).table != nullptr);
  return number;
}

XIDRegistry::Location XIDRegistry::locate (uint32_t number) noexcept {
  const uint64_t place = text_order (number);
  Location found{&entries_, entries_.find (place)};
  for (Run *run = runs_; found.entry == found.table->end (); run = run->next) {
    if (run == nullptr)
      return {nullptr, {}};
    found = {&run->taken, run->taken.find (place)};
  }
  return found;
}

XIDRegistry::Shared XIDRegistry::find_entry (const AString &xid) {
  const std::optional<uint32_t> number = number_of (xid);
  if (!number)
    return nullptr;
  AMutexScope hold (lock_);
  const Location found = locate (*number);
  return found.table != nullptr ? found.entry->second : nullptr;
}

uint32_t XIDRegistry::outstanding_count () {
  AMutexScope hold (lock_);
  size_t count = entries_.size ();
  for (const Run *run = runs_; run != nullptr; run = run->next)
    count += run->taken.size ();
  return static_cast<uint32_t> (count);
}

void XIDRegistry::remove_entry (const Shared &entry) noexcept {
  AMutexScope hold (lock_);
  Location found = locate (entry->number_);
  if (found.table != nullptr && found.entry->second == entry)
    found.table->erase (found.entry);
}

bool XIDRegistry::cancel (const AString &xid) {
  Shared entry = find_entry (xid);
  if (entry == nullptr || !entry->claim ())
    return false;
  remove_entry (entry);
  return true;
}

void XIDRegistry::run_error (const Shared &entry) noexcept {
  try {
    entry->callback_for<callback::error> (BodyNumber::error).run (failure_text (), code_general);
  } catch (...) { // the command has failed all the same
  }
}

void XIDRegistry::end_item (const Shared &entry) noexcept {
  if (entry->end_item ())
    run_error (entry);
}

void XIDRegistry::fail (const Shared &entry) noexcept {
  if (entry->claim_failure () == XIDRegistryEntry::Failure::now)
    run_error (entry);
  remove_entry (entry);
}

bool XIDRegistry::withdraw (const Shared &entry) noexcept {
  const bool unheard = entry->claim_failure () == XIDRegistryEntry::Failure::now;
  remove_entry (entry);
  return unheard;
}

XIDRegistry::Run *XIDRegistry::run_of_this_thread () noexcept {
  if (runs_ == nullptr)
    return nullptr;
  const uint32_t thread = platform::thread_number ();
  Run *run = runs_;
  while (run != nullptr && run->thread != thread)
    run = run->next;
  return run;
}

bool XIDRegistry::begin_run (Run &run) noexcept {
  AMutexScope hold (lock_);
  if (run_of_this_thread () != nullptr)
    return false;
  run.taken.swap (entries_);
  run.next = runs_;
  runs_ = &run;
  return true;
}

// C102: doc/compatibility.md
XIDRegistry::Shared XIDRegistry::next_to_fail (Run &run) noexcept {
  AMutexScope hold (lock_);
  if (!run.taken.empty ())
    return run.taken.begin ()->second;
  Run **link = &runs_;
  while (*link != &run)
    link = &(*link)->next;
  *link = run.next;
  return nullptr;
}

void XIDRegistry::fail_all () noexcept {
  Run run{platform::thread_number ()};
  if (!begin_run (run))
    return;
  while (Shared entry = next_to_fail (run))
    fail (entry);
}

} // namespace QUILL3
