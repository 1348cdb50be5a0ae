#pragma once

#include "api/conn_object.h"
#include "api/results.h"
#include "base/aref.h"
#include "base/atomic_unsigned.h"

#include <cstdint>
#include <memory>

/// Counts up by one, passing over 0. @return the new value. Any thread.
uint32_t draw_number (atomic_unsigned &counter);

/// Draws the next of the numbers that connections, list handles and metadata handles share, so that no two of
/// them coincide until the counter wraps around. Never 0. Any thread.
uint32_t next_unique_number ();

/// The connections of the process by number. There is one, made at first use and never destroyed. Its lock is
/// held for operations on the map only, never while a command waits, with one exception: an object whose last
/// reference `remove` drops is destroyed under it. Any thread may call any member.
class ConnectionRegistry {
public:
  static ConnectionRegistry &instance ();

  /// Throws std::bad_alloc when there is no lock to be had.
  ConnectionRegistry ();
  ConnectionRegistry (const ConnectionRegistry &) = delete;
  ConnectionRegistry &operator= (const ConnectionRegistry &) = delete;
  ~ConnectionRegistry ();

  /// The connection of that number, null when there is none. Leaves the last error alone.
  ARef<OrvaConnObject> lookup (uint32_t connection) const;

  /// The same as a result: 0, which is not recorded, or "Invalid handle", which is.
  /// @param found receives the connection, null when there is none
  ResultCode find (uint32_t connection, ARef<OrvaConnObject> &found) const;

  /// Enters a connection under a new number. @return the number.
  uint32_t insert (ARef<OrvaConnObject> object);

  /// Takes a connection out; an unknown number does nothing. When nobody else refers to the object this ends
  /// its thread first, and all lookups wait for that.
  void remove (uint32_t connection);

private:
  struct Implementation;
  const std::unique_ptr<Implementation> implementation_;
};
