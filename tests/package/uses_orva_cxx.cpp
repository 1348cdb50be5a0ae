#include <orva.h>
#include <string>

int main () {
  std::basic_string<orva_char> text (40, 0);
  const uint32_t result = orva_cmd_play1 (0, 0);
  orva_get_last_error ({text.data (), static_cast<uint32_t> (text.size ())});
  return result == ORVA_INVALID_HANDLE && text[0] == 'I' ? 0 : 1;
}
