#pragma once

#include <cstddef>

namespace support {

/// What this process has of the system at the moment, to compare before and after. 0 where it is not told, on
/// Windows.
size_t open_descriptors ();
size_t running_threads ();

} // namespace support
