#include "api/kv_store_registry.h"

#include "api/connection_registry.h"

#include <utility>

KVStoreRegistry &KVStoreRegistry::instance () {
  static KVStoreRegistry &registry = *new KVStoreRegistry;
  return registry;
}

namespace {
// Made while the library is loaded.
[[maybe_unused]] const KVStoreRegistry &made_at_load = KVStoreRegistry::instance ();
} // namespace

std::shared_ptr<KVStore> KVStoreRegistry::find (uint32_t handle) {
  const std::lock_guard hold (lock_);
  const auto found = stores_.find (handle);
  return found != stores_.end () ? found->second : nullptr;
}

uint32_t KVStoreRegistry::insert (std::shared_ptr<KVStore> store) {
  const std::lock_guard hold (lock_);
  for (;;) {
    const uint32_t handle = draw_number (next_handle_);
    if (stores_.try_emplace (handle, std::move (store)).second)
      return handle;
  }
}

std::shared_ptr<KVStore> KVStoreRegistry::remove (uint32_t handle) {
  const std::lock_guard hold (lock_);
  auto entry = stores_.extract (handle);
  return entry ? std::move (entry.mapped ()) : nullptr;
}
