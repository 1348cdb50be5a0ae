#include "api/basics/results.h"

#include "platform/threads.h"

#include <utility>

namespace {

/// The texts of the codes, made once so that recording one of them allocates nothing but a thread's first
/// entry.
struct FixedTexts {
  const AString by_code[ORVA_WRITE_ONLY + 1] = {
      "OK",
      "No connection to server",
      "Internal software error",
      "Invalid handle",
      "Read only",
      "Timeout",
      "Invalid argument",
      "Write only",
  };
};

// Found in the table once, because asking the system for the number of a thread is slow.
thread_local LastText *this_threads_text = nullptr;

LastText &last_text () {
  if (this_threads_text == nullptr)
    this_threads_text = &LastErrorTable::instance ().of (platform::thread_number ());
  return *this_threads_text;
}

ResultCode fixed_result (ResultCode code) {
  last_text ().record_constant (result_text (code));
  return code;
}

} // namespace

void LastText::record_constant (const AString &text) noexcept {
  const bool replaces_own = constant_.load (std::memory_order_relaxed) == nullptr;
  constant_.store (&text, std::memory_order_release);
  if (replaces_own)
    set_own ({});
}

void LastText::record (const AString &text) {
  set_own (text);
  constant_.store (nullptr, std::memory_order_release);
}

void LastText::set_own (AString text) {
  const ShortScope hold (lock_); // the old text is destroyed after its release
  std::swap (own_, text);
}

AString LastText::text () const {
  if (const AString *constant = constant_.load (std::memory_order_acquire))
    return *constant;
  const ShortScope hold (lock_);
  return own_;
}

LastErrorTable &LastErrorTable::instance () {
  static LastErrorTable &table = *new LastErrorTable;
  return table;
}

LastText &LastErrorTable::of (uint32_t thread) {
  const ShortScope hold (lock_);
  return texts_[thread];
}

ResultCode make_result (ResultCode code, const AString &text) {
  last_text ().record (text);
  return code;
}

ResultCode result_ok () {
  return fixed_result (ORVA_OK);
}
ResultCode result_no_connection () {
  return fixed_result (ORVA_NO_CONNECTION);
}
ResultCode result_invalid_handle () {
  return fixed_result (ORVA_INVALID_HANDLE);
}
ResultCode result_read_only () {
  return fixed_result (ORVA_READ_ONLY);
}
ResultCode result_timeout () {
  return fixed_result (ORVA_TIMEOUT);
}
ResultCode result_invalid_argument () {
  return fixed_result (ORVA_INVALID_ARGUMENT);
}
ResultCode result_write_only () {
  return fixed_result (ORVA_WRITE_ONLY);
}

ResultCode result_error (const AString &text) {
  return make_result (ORVA_ERROR, text);
}

ResultCode result_internal_error () noexcept {
  try {
    return fixed_result (ORVA_ERROR);
  } catch (...) {
    return ORVA_ERROR;
  }
}

const AString &result_text (ResultCode code) {
  static const FixedTexts &texts = *new FixedTexts;
  return texts.by_code[code];
}

AString last_error_text () {
  return last_text ().text ();
}
