#include <cstring>

#include "platform/system/SystemMessages.h"

namespace kbx {

std::string systemMessage(std::int64_t number) {
  const bool isInRange = number == static_cast<int>(number);
  const char* text = isInRange ? strerrordesc_np(static_cast<int>(number)) : nullptr;
  return text ? text : "Unknown error: " + std::to_string(number);
}

}  // namespace kbx
