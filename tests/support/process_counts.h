#pragma once

#include <chrono>
#include <cstddef>

namespace support {

/// What this process has of the system at the moment, to compare before and after. 0 where it is not known,
/// on Windows.
size_t open_descriptors ();
size_t running_threads ();

/// Processor time that the calling thread has used so far.
std::chrono::nanoseconds thread_processor_time ();

} // namespace support
