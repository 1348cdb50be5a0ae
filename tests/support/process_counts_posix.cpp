#include "support/process_counts.h"

#include <dirent.h>
#include <time.h>

namespace {

size_t entries_of (const char *folder) {
  size_t count = 0;
  DIR *all = opendir (folder);
  while (all != nullptr && readdir (all) != nullptr)
    ++count;
  if (all != nullptr)
    closedir (all);
  return count;
}

} // namespace

size_t support::open_descriptors () {
  return entries_of ("/proc/self/fd");
}

size_t support::running_threads () {
  return entries_of ("/proc/self/task");
}

std::chrono::nanoseconds support::thread_processor_time () {
  timespec used;
  clock_gettime (CLOCK_THREAD_CPUTIME_ID, &used);
  return std::chrono::seconds (used.tv_sec) + std::chrono::nanoseconds (used.tv_nsec);
}
