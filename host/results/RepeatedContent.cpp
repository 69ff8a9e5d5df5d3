#include "host/results/RepeatedContent.h"

namespace kbx {

bool RepeatedContent::enter(const NSObject* collection, std::size_t count, std::size_t indent) {
  const bool isFirst = _entered.insert(collection).second;
  if (isFirst && _openRepeated == 0) return true;
  _spent += (count + 1) * (kEach + indent);
  if (isSpent()) return false;
  ++_openRepeated;
  return true;
}

bool RepeatedContent::take(std::size_t length) noexcept {
  if (_openRepeated == 0) return true;
  if (isSpent()) return false;
  _spent += length;
  return true;
}

}  // namespace kbx
