#include "engine/xid_registry.h"

#include "base/atomic_unsigned.h"
#include "platform/threads.h"

#include <new>

namespace QUILL3 {

namespace {

// Made with the first registry, because failing must not have to allocate.
const AString &failure_text () {
  static const AString &text = *new AString ("Failing all outstanding commands");
  return text;
}

const AString &untracked_prefix () {
  static const AString &word = *new AString ("none");
  return word;
}

uint32_t next_number () {
  static atomic_unsigned &counter = *new atomic_unsigned;
  return ++counter;
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
    if (place_of (xid).table == nullptr)
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

XIDRegistry::Place XIDRegistry::place_of (const AString &xid) noexcept {
  Place place{&entries_, entries_.find (xid)};
  for (Run *run = runs_; place.at == place.table->end (); run = run->next) {
    if (run == nullptr)
      return {nullptr, {}};
    place = {&run->taken, run->taken.find (xid)};
  }
  return place;
}

XIDRegistry::Shared XIDRegistry::find_entry (const AString &xid) {
  AMutexScope hold (lock_);
  Place place = place_of (xid);
  return place.table != nullptr ? place.at->second : nullptr;
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
  Place place = place_of (entry->xid_);
  if (place.table != nullptr && place.at->second == entry)
    place.table->erase (place.at);
}

bool XIDRegistry::cancel (const AString &xid) {
  Shared entry = find_entry (xid);
  if (entry == nullptr || !entry->claim ())
    return false;
  remove_entry (entry);
  return true;
}

void XIDRegistry::tell (const Shared &entry) noexcept {
  try {
    entry->error.run (failure_text (), code_general);
  } catch (...) { // it has been told; what it does with that is its own affair
  }
}

void XIDRegistry::end_item (const Shared &entry) noexcept {
  if (entry->end_item ())
    tell (entry);
}

void XIDRegistry::fail (const Shared &entry) noexcept {
  if (entry->claim_failure () == XIDRegistryEntry::Failure::now)
    tell (entry);
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

bool XIDRegistry::begin (Run &run) noexcept {
  AMutexScope hold (lock_);
  if (run_of_this_thread () != nullptr)
    return false;
  run.taken.swap (entries_);
  run.next = runs_;
  runs_ = &run;
  return true;
}

// C102: doc/compatibility.md
XIDRegistry::Shared XIDRegistry::next_of (Run &run) noexcept {
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
  if (!begin (run))
    return;
  while (Shared entry = next_of (run))
    fail (entry);
}

} // namespace QUILL3
