#include "api/connection/completion.h"

#include <new>

Completion::Completion (Connection connection, bool waits)
    : connection_ (std::move (connection)), text_ (result_text (ORVA_OK)) {
  if (waits && !finished_.emplace (false).is_valid ())
    throw std::bad_alloc ();
  connection_->command_started ();
}

void Completion::succeed () {
  link_ = connection_->links ();
  finish ();
}

void Completion::fail (AString text, uint32_t) {
  code_ = ORVA_ERROR;
  text_ = std::move (text);
  finish ();
}

void Completion::finish () {
  if (finished_.has_value ())
    finished_->post ();
  connection_->command_finished ();
  self_ = nullptr; // the last step: the waiter may have dropped its reference by now
}

ResultCode Completion::wait () {
  if (!finished_.has_value ())
    return result_ok ();
  finished_->wait ();
  return make_result (code_, text_);
}
