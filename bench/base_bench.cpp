// The queue beside a mutex and a std::deque, and the byte encodings in bytes a second beside a plain copy.

#include "base/abytearray.h"
#include "base/atomic_vqueue.h"

#include <benchmark/benchmark.h>

#include <deque>
#include <mutex>

namespace {

/// What most programs would write in place of AVQueue.
class LockedQueue {
public:
  void push (void *value) {
    const std::lock_guard lock (mutex_);
    values_.push_back (value);
  }
  void *pop () {
    const std::lock_guard lock (mutex_);
    if (values_.empty ())
      return nullptr;
    void *value = values_.front ();
    values_.pop_front ();
    return value;
  }

private:
  std::mutex mutex_;
  std::deque<void *> values_;
};

template <class Queue>
void push_and_pop (benchmark::State &state) {
  static Queue &queue = *new Queue;
  int value = 0;
  for (auto _ : state) {
    queue.push (&value);
    benchmark::DoNotOptimize (queue.pop ());
  }
  state.SetItemsProcessed (state.iterations ());
}
BENCHMARK (push_and_pop<LockedQueue>)->Threads (1)->Threads (2)->Threads (8)->UseRealTime ();
BENCHMARK (push_and_pop<AVQueue>)->Threads (1)->Threads (2)->Threads (8)->UseRealTime ();

const AByteArray &sample () {
  static const AByteArray &bytes = *[] {
    auto *made = new AByteArray;
    for (unsigned i = 0; i != 1 << 16; ++i)
      made->append (static_cast<uint8_t> (i * 167));
    return made;
  }();
  return bytes;
}

template <class Work>
void encoding (benchmark::State &state, Work work) {
  for (auto _ : state)
    benchmark::DoNotOptimize (work ());
  state.SetBytesProcessed (state.iterations () * static_cast<int64_t> (sample ().size ()));
}

void copy (benchmark::State &state) {
  encoding (state, [] { return AByteArray (sample ().data (), sample ().size ()); });
}
void to_base64 (benchmark::State &state) {
  encoding (state, [] { return sample ().to_base64 (); });
}
void from_base64 (benchmark::State &state) {
  const AString text = sample ().to_base64 ();
  encoding (state, [&] { return AByteArray::from_base64 (text); });
}
void to_hex_bytes (benchmark::State &state) {
  encoding (state, [] { return sample ().to_hex_bytes (); });
}
void from_hex (benchmark::State &state) {
  const AByteArray digits = sample ().to_hex_bytes ();
  encoding (state, [&] { return AByteArray::from_hex (digits); });
}
BENCHMARK (copy);
BENCHMARK (to_base64);
BENCHMARK (from_base64);
BENCHMARK (to_hex_bytes);
BENCHMARK (from_hex);

} // namespace

BENCHMARK_MAIN ();
