#include "api/connection/connection_registry.h"

ConnectionRegistry &connections () {
  static ConnectionRegistry &registry = *new ConnectionRegistry;
  return registry;
}
