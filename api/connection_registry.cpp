#include "api/connection_registry.h"

#include "base/amutex.h"

#include <map>
#include <new>
#include <utility>

uint32_t draw_number (atomic_unsigned &counter) {
  uint32_t drawn;
  do
    drawn = ++counter;
  while (drawn == 0);
  return drawn;
}

uint32_t next_unique_number () {
  static constinit atomic_unsigned counter;
  return draw_number (counter);
}

struct ConnectionRegistry::Implementation {
  AMutex lock;
  std::map<uint32_t, ARef<OrvaConnObject>> connections KELVANE_GUARDED_BY (lock);
};

ConnectionRegistry &ConnectionRegistry::instance () {
  static ConnectionRegistry &registry = *new ConnectionRegistry;
  return registry;
}

ConnectionRegistry::ConnectionRegistry () : implementation_ (std::make_unique<Implementation> ()) {
  if (!implementation_->lock.is_valid ())
    throw std::bad_alloc ();
}

ConnectionRegistry::~ConnectionRegistry () = default;

ARef<OrvaConnObject> ConnectionRegistry::lookup (uint32_t connection) const {
  const AMutexScope hold (implementation_->lock);
  const auto found = implementation_->connections.find (connection);
  return found == implementation_->connections.end () ? nullptr : found->second;
}

ResultCode ConnectionRegistry::find (uint32_t connection, ARef<OrvaConnObject> &found) const {
  found = lookup (connection);
  return found.is_null () ? result_invalid_handle () : ResultCode{ORVA_OK};
}

uint32_t ConnectionRegistry::insert (ARef<OrvaConnObject> object) {
  for (;;) {
    const uint32_t number = next_unique_number ();
    const AMutexScope hold (implementation_->lock);
    if (implementation_->connections.try_emplace (number, object).second)
      return number;
  }
}

void ConnectionRegistry::remove (uint32_t connection) {
  const AMutexScope hold (implementation_->lock);
  implementation_->connections.erase (connection);
}
