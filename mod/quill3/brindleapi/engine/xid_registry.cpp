#include "engine/xid_registry.h"

#include "platform/threads.h"

#include <new>

namespace QUILL3 {

namespace {

// Built with the first registry, because a failure must not allocate.
const AString &failure_text () {
  static const AString &text = *new AString ("Failing all outstanding commands");
  return text;
}

const AString &untracked_prefix () {
  static const AString &word = *new AString ("none");
  return word;
}

uint32_t next_number () {
  static constinit std::atomic<uint32_t> last{0};
  return ++last;
}

constexpr uint32_t code_general = 0;

} // namespace

bool XIDRegistryEntry::is_awaited () const {
#define REPLY(name, ...)                                                                                     \
  if (!name.is_empty ())                                                                                     \
    return true;
#include "engine/bodies.inc"
  return false;
}

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

// C101: doc/compatibility.md
AString XIDRegistry::issue_id (const Shared &entry) {
  if (!entry->is_awaited ())
    return untracked_prefix () + free_number ();
  enter (entry);
  return entry->xid_;
}

AString XIDRegistry::free_number () {
  AMutexScope hold (lock_);
  for (;;) {
    AString xid = AString::from_uint32 (next_number ());
    if (locate (xid).table == nullptr)
      return xid;
  }
}

// A command that a callback sends during a run belongs to that run, also when there is a new link by then.
// C107: doc/compatibility.md
void XIDRegistry::enter (const Shared &entry) {
  AMutexScope hold (lock_);
  entry->xid_ = free_number ();
  Run *run = run_of_this_thread ();
  (run != nullptr ? run->taken : entries_).emplace (entry->xid_, entry);
}

XIDRegistry::Location XIDRegistry::locate (const AString &xid) noexcept {
  Location found{&entries_, entries_.find (xid)};
  for (Run *run = runs_; found.entry == found.table->end (); run = run->next) {
    if (run == nullptr)
      return {nullptr, {}};
    found = {&run->taken, run->taken.find (xid)};
  }
  return found;
}

XIDRegistry::Shared XIDRegistry::find_entry (const AString &xid) {
  AMutexScope hold (lock_);
  Location found = locate (xid);
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
  Location found = locate (entry->xid_);
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
    entry->error.run (failure_text (), code_general);
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
