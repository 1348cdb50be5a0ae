#include "api/handles/numbers.h"

uint32_t next_nonzero (std::atomic<uint32_t> &counter) noexcept {
  uint32_t number;
  do
    number = ++counter;
  while (number == 0);
  return number;
}

uint32_t next_unique_number () noexcept {
  static constinit std::atomic<uint32_t> counter{0};
  return next_nonzero (counter);
}
