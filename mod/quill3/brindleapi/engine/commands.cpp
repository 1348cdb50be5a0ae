#include "engine/commands.h"

namespace QUILL3 {

XMLTree make_document (const AString &xid, const AString &wire_name, const Rows &rows, const void *command) {
  static const AString &root = *new AString ("cmd");
  return XMLTree (root, make_child_list (make_xid (xid), XMLTree (wire_name, write_fields (rows, command))));
}

} // namespace QUILL3
