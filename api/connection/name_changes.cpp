#include "api/connection/name_changes.h"

// A name is entered in one set before it is erased from the others: when memory runs out in between, it is
// not lost.

void NameChanges::added (const AString &name) {
  if (name.is_empty ())
    return;
  const AMutexScope hold (lock_);
  added_.insert (name);
  deleted_.erase (name);
  changed_.erase (name);
}

void NameChanges::changed (const AString &name) {
  if (name.is_empty ())
    return;
  const AMutexScope hold (lock_);
  if (added_.contains (name))
    return;
  changed_.insert (name);
  deleted_.erase (name);
}

void NameChanges::deleted (const AString &name) {
  if (name.is_empty ())
    return;
  const AMutexScope hold (lock_);
  deleted_.insert (name);
  added_.erase (name);
  changed_.erase (name);
}

AString NameChanges::take_first (Names &names) {
  if (names.empty ())
    return {};
  AString taken = *names.begin ();
  names.erase (names.begin ());
  return taken;
}

AString NameChanges::take_added () {
  const AMutexScope hold (lock_);
  return take_first (added_);
}

AString NameChanges::take_changed () {
  const AMutexScope hold (lock_);
  return take_first (changed_);
}

AString NameChanges::take_deleted () {
  const AMutexScope hold (lock_);
  return take_first (deleted_);
}
