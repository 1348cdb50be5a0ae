#include "engine/xid_registry.h"

#include "base/atomic_unsigned.h"

#include <new>

namespace QUILL3 {

namespace {

// Made with the first registry, because failing must not have to allocate.
const AString &failure_text () {
  static const AString &text = *new AString ("Failing all outstanding commands");
  return text;
}

const AString &fault_text () {
  static const AString &text = *new AString ("Internal software error");
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
#include "engine/replies.inc"
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
  fault_text ();
}

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
    if (!entries_.contains (xid))
      return xid;
  }
}

void XIDRegistry::enter (const Shared &entry) {
  AMutexScope hold (lock_);
  entry->xid_ = free_number ();
  entries_.emplace (entry->xid_, entry);
}

XIDRegistry::Shared XIDRegistry::find_entry (const AString &xid) {
  AMutexScope hold (lock_);
  auto found = entries_.find (xid);
  return found != entries_.end () ? found->second : nullptr;
}

uint32_t XIDRegistry::outstanding_count () {
  AMutexScope hold (lock_);
  return static_cast<uint32_t> (entries_.size ());
}

void XIDRegistry::remove_entry (const Shared &entry) noexcept {
  AMutexScope hold (lock_);
  auto found = entries_.find (entry->xid_);
  if (found != entries_.end () && found->second == entry)
    entries_.erase (found);
}

bool XIDRegistry::cancel (const AString &xid) {
  Shared entry = find_entry (xid);
  if (entry == nullptr || !entry->claim ())
    return false;
  remove_entry (entry);
  return true;
}

void XIDRegistry::tell (const Shared &entry, const AString &text) noexcept {
  try {
    entry->error.run (text, code_general);
  } catch (...) { // it has been told; what it does with that is its own affair
  }
}

void XIDRegistry::end_item (const Shared &entry) noexcept {
  if (entry->end_item ())
    tell (entry, failure_text ());
}

void XIDRegistry::fail (const Shared &entry, const AString &text) noexcept {
  if (entry->claim_failure () == XIDRegistryEntry::Failure::now)
    tell (entry, text);
  remove_entry (entry);
}

void XIDRegistry::fail_with_fault (const Shared &entry) noexcept {
  fail (entry, fault_text ());
}

// A thread that finds `failing_` set leaves its commands to the thread that set it. That is safe because the
// mark goes under the lock that has just shown the table empty: a command entered before that is seen here,
// and one entered after it finds the mark gone.
XIDRegistry::Shared XIDRegistry::first_to_fail () noexcept {
  AMutexScope hold (lock_);
  if (!entries_.empty ())
    return entries_.begin ()->second;
  failing_ = false;
  return nullptr;
}

void XIDRegistry::fail_all () noexcept {
  if (failing_.exchange (true))
    return;
  while (Shared entry = first_to_fail ())
    fail (entry, failure_text ());
}

} // namespace QUILL3
