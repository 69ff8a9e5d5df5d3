#include <simdjson.h>

#include "platform/text/UTF8.h"

namespace kbx {

bool isUTF8(std::string_view bytes) noexcept {
  return simdjson::validate_utf8(bytes.data(), bytes.size());
}

}  // namespace kbx
