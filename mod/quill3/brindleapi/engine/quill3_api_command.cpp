#include "engine/quill3_api_command.h"

#include "base/abuffer.h"

#include <new>

namespace QUILL3 {

APICommand::APICommand () : send_lock_ (new AMutex) {
  if (!send_lock_->is_valid ())
    throw std::bad_alloc ();
}

APICommand::~APICommand () = default;

void APICommand::send_document (const XMLTree &document, AFunction<bool ()> is_over) {
  send_hook_.run (document);
  AMutexScope hold (*send_lock_);
  write_document (document, is_over);
}

void APICommand::render (const XMLTree &document, const Output &output) {
  ABuffer buffer (output);
  document.write_to (buffer.sink (), XMLLines, true);
  buffer.flush ();
}

} // namespace QUILL3
