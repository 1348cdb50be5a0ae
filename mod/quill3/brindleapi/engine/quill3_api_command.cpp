#include "engine/quill3_api_command.h"

#include "base/abuffer.h"

#include <new>

namespace QUILL3 {

APICommand::APICommand () : send_lock_ (new AMutex) {
  if (!send_lock_->is_valid ())
    throw std::bad_alloc ();
}

APICommand::~APICommand () = default;

void APICommand::send_document (const CommandDocument &document, AFunction<bool ()> is_over) {
  if (!send_hook_.is_empty ())
    send_hook_.run (document.tree ());
  AMutexScope hold (*send_lock_);
  write_document (document, is_over);
}

void APICommand::render (const CommandDocument &document, const Output &output) {
  ABuffer buffer (output);
  XMLByteSink sink (buffer.sink ());
  document.write_to (sink);
  sink.finish ();
  buffer.flush ();
}

} // namespace QUILL3
