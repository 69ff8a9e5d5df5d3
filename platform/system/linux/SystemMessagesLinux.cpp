#include <cstring>

#include "platform/system/SystemMessages.h"

namespace kbx {

std::string systemMessage(int number) {
  const char* text = strerrordesc_np(number);
  return text ? text : "Unknown error: " + std::to_string(number);
}

}  // namespace kbx
