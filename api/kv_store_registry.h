#pragma once

#include "api/kv_store.h"
#include "base/atomic_unsigned.h"

#include <map>
#include <memory>
#include <mutex>

/// The open stores of the process by handle. There is one, made when the library is loaded and never
/// destroyed. Its lock is never held while a store is made, called or closed. Any thread may call any member.
class KVStoreRegistry {
public:
  static KVStoreRegistry &instance ();

  KVStoreRegistry () = default;
  KVStoreRegistry (const KVStoreRegistry &) = delete;
  KVStoreRegistry &operator= (const KVStoreRegistry &) = delete;

  /// The store of that handle, null when there is none.
  std::shared_ptr<KVStore> find (uint32_t handle);
  /// Enters a store. @return its handle; the first is 1, and none comes again until the counter wraps around.
  uint32_t insert (std::shared_ptr<KVStore> store);
  /// Takes a store out. @return it, null when there is none.
  std::shared_ptr<KVStore> remove (uint32_t handle);

private:
  std::mutex lock_;
  // Guarded by lock_.
  std::map<uint32_t, std::shared_ptr<KVStore>> stores_;
  atomic_unsigned next_handle_;
};
