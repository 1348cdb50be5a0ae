#include "api/basics/results.h"

#include "platform/threads.h"

namespace {

/// The texts of the codes, made once so that recording one of them allocates nothing but a
/// thread's first entry.
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

ResultCode fixed_result (ResultCode code) {
  return make_result (code, result_text (code));
}

} // namespace

LastErrorTable &LastErrorTable::instance () {
  static LastErrorTable &table = *new LastErrorTable;
  return table;
}

void LastErrorTable::record (uint32_t thread, const AString &text) {
  const AMutexScope hold (lock_);
  texts_[thread] = text;
}

AString LastErrorTable::text (uint32_t thread) const {
  const AMutexScope hold (lock_);
  const auto found = texts_.find (thread);
  return found == texts_.end () ? AString () : found->second;
}

ResultCode make_result (ResultCode code, const AString &text) {
  LastErrorTable::instance ().record (platform::thread_number (), text);
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
  return LastErrorTable::instance ().text (platform::thread_number ());
}
