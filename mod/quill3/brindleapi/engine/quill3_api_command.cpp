#include "engine/quill3_api_command.h"

#include "base/abuffer.h"
#include "base/amethod.h"

#include <new>

namespace QUILL3 {

APICommand::APICommand () : send_lock_ (new AMutex) {
  if (!send_lock_->is_valid ())
    throw std::bad_alloc ();
}

APICommand::~APICommand () = default;

void APICommand::send_command (const AString &xid, const AString &name, const Rows &rows,
                               const void *arguments, AFunction<bool ()> is_over) {
  send_document (make_document (xid, name, rows, arguments), is_over);
}

void APICommand::send_document (const XMLTree &document, AFunction<bool ()> is_over) {
  send_hook_.run (document);
  AMutexScope hold (*send_lock_);
  write_document (document, is_over);
}

void APICommand::write_document (const XMLTree &document, const AFunction<bool ()> &is_over) {
  if (is_over.run ())
    return;
  ABuffer buffer (AMethod::bind (this, &APICommand::send_bytes));
  document.write_to (buffer.sink (), XMLLines, true);
  buffer.flush ();
}

} // namespace QUILL3
