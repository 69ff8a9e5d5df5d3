#include "platform/text/StringEncoding.h"

#include "platform/text/CharsetConverter.h"

namespace kbx {

Ref<NSString> stringWithCharset(std::string_view bytes, const char* charset) {
  auto units = decodeCharset(bytes, charset, true);
  return units ? NSString::stringWithUTF16(*units) : nullptr;
}

}  // namespace kbx
